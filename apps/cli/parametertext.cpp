// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/parametertext.h"

#include <algorithm>
#include <set>

#include "apps/cli/failure.h"
#include "apps/cli/text.h"
#include "tolbase/exception.h"
#include "tolbase/parser.h"
#include "tolbase/serializer.h"
#include "tolbase/text.h"

namespace cli {

namespace {

wxString Plain(wxString const& name) {
    wxString plain;
    for (const wxUniChar c : name.Lower()) {
        if (wxString(" _-").Find(c) == wxNOT_FOUND) plain += c;
    }
    return plain;
}

std::string NamesOf(VecParameter const& parameters) {
    std::string names;
    for (Parameter const& parameter : parameters) names += (names.empty() ? "" : ", ") + ToUtf8(parameter.Name());
    return names;
}

// Where the name ends in a text of the form NAME=VALUE. Names may hold "=" themselves ("Scale (0 = auto)"): a whole
// name goes before one that ends at the first.
size_t EndOfName(std::string const& setting, std::vector<wxString> const& names) {
    const size_t first = setting.find('=');
    for (size_t at = first; at != std::string::npos; at = setting.find('=', at + 1)) {
        const wxString name = Plain(FromUtf8(setting.substr(0, at)));
        const auto isMeant = [&name](wxString const& each) { return Plain(each) == name; };
        if (std::any_of(names.begin(), names.end(), isMeant)) return at;
    }
    return first;
}

}  // namespace

std::string Takes(Parameter const& parameter) {
    if (parameter.GetType() == ParameterTypeOption) {
        return "one of: " + ToUtf8(CatVecString(parameter.Strings(), ", "));
    }
    if (parameter.GetType() == ParameterTypeVectorString) return "one or more texts";
    try {
        // Past nine digits the bounds are those of the number's type.
        const double most = parameter.GetMaximum();
        const std::string range = ToUtf8(ToString(parameter.GetMinimum())) + " to " + ToUtf8(ToString(most));
        if (parameter.Holds<double>()) return most < 1e9 ? "a number from " + range : "a number";
        return most < 1e9 ? "a whole number from " + range : "a whole number";
    } catch (TolException const&) {
        return parameter.GetType() == ParameterTypeBool ? "true or false" : "a text";
    }
}

bool SetParameter(Parameter& parameter, std::string const& text) {
    if (!IsUtf8(text)) return false;
    const wxString value = FromUtf8(text);
    // A refused value and an equal one look alike; from another value on, an equal one does not.
    Parameter fresh = parameter;
    if (fresh.SetString(value)) {
        parameter = fresh;
        return true;
    }
    return value == parameter.ToText() || value == parameter.ToReport();
}

void SetParameters(VecParameter& parameters, std::vector<std::string> const& settings, std::string const& option) {
    std::vector<wxString> names;
    for (Parameter const& parameter : parameters) names.push_back(parameter.Name());
    std::set<size_t> seen;
    for (std::string const& setting : settings) {
        const size_t equals = EndOfName(setting, names);
        if (equals == std::string::npos || equals == 0) {
            throw Failure(ExitUsage, option, "\"" + setting + "\" is not of the form PARAMETER=VALUE");
        }
        const std::string name = setting.substr(0, equals);
        const size_t index = FindName(names, FromUtf8(Valid(name)));
        if (index < names.size() && !seen.insert(index).second) {
            throw Failure(ExitUsage, option, "the parameter \"" + ToUtf8(names[index]) + "\" is given twice");
        }
        if (index == names.size()) {
            const std::string known = names.empty() ? "it has none" : "it has: " + NamesOf(parameters);
            throw Failure(ExitUsage, option, "the filter has no parameter \"" + name + "\"; " + known);
        }
        if (index > names.size()) {
            throw Failure(ExitUsage, option, "several parameters begin with \"" + name + "\": " + NamesOf(parameters));
        }
        if (SetParameter(parameters[index], setting.substr(equals + 1))) continue;
        throw Failure(ExitUsage, option,
                      ToUtf8(parameters[index].Name()) + " takes " + Takes(parameters[index]) + ", not \"" +
                          setting.substr(equals + 1) + "\"");
    }
}

size_t FindName(std::vector<wxString> const& names, wxString const& wanted) {
    const wxString plain = Plain(wanted);
    size_t found = names.size();
    for (size_t i = 0; i < names.size(); ++i) {
        if (Plain(names[i]) == plain) return i;
        if (plain.empty() || !Plain(names[i]).StartsWith(plain)) continue;
        found = found == names.size() ? i : names.size() + 1;
    }
    return found;
}

}  // namespace cli
