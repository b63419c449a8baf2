// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/webkey.h"

#include <cstdlib>

#include "apps/cli/failure.h"
#include "apps/cli/inputs.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "orvcore/interface.h"

namespace cli {

namespace {

constexpr char const* Group = "Web Services";

Parameter& OptionOf(VecVecParameter& options, std::string const& name) {
    for (Parameter& option : options.Group(Group)) {
        if (ToUtf8(option.Name()) == name) return option;
    }
    throw Failure(ExitInternal, name, "no such option");
}

std::string FirstLine(std::string const& text) {
    std::string line = text.substr(0, text.find('\n'));
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
    return line;
}

}  // namespace

std::string FindKey(Session& session, std::string const& file, bool environment, std::string const& option) {
    if (!file.empty()) return Valid(FirstLine(ReadText(file)));
    char const* const variable = environment ? std::getenv("ORVELLE_API_KEY") : nullptr;
    if (variable != nullptr && *variable != '\0') return Valid(FirstLine(variable));
    if (option.empty()) return "";
    VecVecParameter options = session.Interface().GetProgramOptions();
    return ToUtf8(OptionOf(options, option).GetValue<wxString>());
}

void UseKey(Session& session, std::string const& option, std::string const& key) {
    VecVecParameter options = session.Interface().GetProgramOptions();
    OptionOf(options, option).Set(FromUtf8(key));
    session.Interface().SetProgramOptions(options);
}

}  // namespace cli
