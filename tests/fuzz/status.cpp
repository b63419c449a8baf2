// SPDX-License-Identifier: Apache-2.0
// Status files and the stamps of cache folders.
#include "orvcore/filter.h"
#include "orvcore/filtercache.h"
#include "tests/fuzz/engine.h"
#include "tests/fuzz/target.h"
#include "tolbase/file.h"

namespace fuzz {

namespace {

void RunStatus(std::string const& bytes) {
    static InputFile const file("a.status");
    auto const status = OrvFilterConfiguration::GetStatusFromFile(file.Hold(bytes));
    Require(status >= OrvFilterConfiguration::NotCalculated && status <= OrvFilterConfiguration::Unsupported,
            "a status is one of four");
    wxString const text = OrvFilterConfiguration::GetStatusString(status);
    bool const same = Text(bytes) == text;
    Require(same || status == OrvFilterConfiguration::NotCalculated, "a status file holds its text alone");
}

void RunStamp(std::string const& bytes) {
    static wxString const folder = Folder() + "/stamped";
    static InputFile const file([] {
        CreateDirIfNotExists(folder);
        return filtercache::StampPath(folder).Mid(Folder().length() + 1);
    }());
    OrvFilter const* const filter = Engine().GetFilters().front();
    file.Hold(bytes);
    filtercache::Stamp stamp(folder);
    if (!stamp.IsValid()) return;
    stamp.Covers(*filter);
    stamp.Enter(*filter);
    Require(stamp.Covers(*filter), "what is entered is covered");
}

// The first byte tells which.
void Run(std::string const& bytes) {
    if (bytes.empty()) return;
    (bytes[0] == 's' ? RunStatus : RunStamp)(bytes.substr(1));
}

std::vector<std::string> Seeds() {
    std::vector<std::string> seeds;
    for (wxString const& text : OrvFilterConfiguration::sm_statusStrings)
        seeds.push_back("s" + std::string(text.utf8_str()));
    wxString const folder = Folder() + "/seed";
    CreateDirIfNotExists(folder);
    filtercache::Stamp stamp;
    for (OrvFilter const* filter : Engine().GetFilters()) stamp.Enter(*filter);
    Require(stamp.Write(folder), "a stamp can be written");
    std::string const bytes = BytesOf(filtercache::StampPath(folder));
    seeds.push_back("f" + bytes);
    seeds.push_back("f" + bytes + "filter: 2 Histogram\nfilter: 99999999999 x\nfilter: -1 y\n");
    seeds.push_back("f" + bytes + "end\n");
    return seeds;
}

}  // namespace

Target StatusTarget() {
    return {"status", Run, Seeds};
}

}  // namespace fuzz
