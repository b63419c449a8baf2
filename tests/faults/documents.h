// SPDX-License-Identifier: Apache-2.0
// The files that a user's work stands in, each with an old and a new state and the way it is written.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/cli/failure.h"
#include "apps/cli/userqt.h"
#include "orvcore/project.h"
#include "orvcore/smscollection.h"
#include "tests/faults/rounds.h"
#include "tests/orvcore/smssamples.h"
#include "tests/support/engine.h"
#include "tolbase/exception.h"

namespace faults {

struct Document {
    std::string name;
    wxString path;
    // Writes the first or the second state. False if the writer tells that it failed; nothing if it never tells.
    std::function<std::optional<bool>(bool second)> save;
    std::string states[2];  // what stands there after each
};

class Documents : public support::Engine {
protected:
    // All of them, in folders of their own beneath the test's; the files are not there yet.
    std::vector<Document> Make() {
        StartOptions();
        std::vector<Document> all = {Settings(), Project(), Page(), Platforms(), Tables()};
        for (Document& document : all) {
            for (bool const second : {false, true}) {
                EXPECT_NE(std::optional<bool>(false), document.save(second)) << document.name;
                document.states[second ? 1 : 0] = support::ReadBytes(document.path);
                EXPECT_FALSE(document.states[second ? 1 : 0].empty()) << document.name;
            }
            EXPECT_NE(document.states[0], document.states[1]) << document.name;
        }
        return all;
    }

private:
    Document Settings() {
        wxString const path = dir / "settings/default.ovs";
        VecVecParameter const options = context->GetProgramOptions();
        const auto save = [this, path, options](bool second) -> std::optional<bool> {
            VecVecParameter changed = options;
            changed[0].Find("JPG Save Quality")->Set(boost::any(second ? 70 : 80));
            context->SetProgramOptions(changed);
            context->SaveProgramOptions(path);
            return {};
        };
        return {"settings", path, save, {}};
    }
    std::shared_ptr<OrvProject> MakeProject(bool second) {
        auto project = std::make_shared<OrvProject>();
        OrvBookmark bookmark;
        bookmark.evidence = dir / "in/none.jpg";
        for (int i = 0; i < (second ? 40 : 20); ++i) {
            bookmark.name = "finding " + wxString::FromUTF8(std::to_string(i));
            project->AddBookmark(bookmark);
        }
        return project;
    }
    static std::optional<bool> Told(std::function<void()> const& write) {
        try {
            write();
        } catch (TolException const&) {
            return false;
        } catch (cli::Failure const&) {
            return false;
        }
        return true;
    }
    Document Project() {
        wxString const path = support::WriteBytes(dir / "project/findings.json", "");
        const auto save = [this, path](bool second) { return Told([&] { MakeProject(second)->SaveProject(path); }); };
        return {"project", path, save, {}};
    }
    Document Page() {
        wxString const source = support::WriteBytes(dir / "page/source.json", "");
        const auto projects = std::make_shared<std::vector<std::shared_ptr<OrvProject>>>();
        for (bool const second : {false, true}) {
            projects->push_back(MakeProject(second));
            projects->back()->SaveProject(source);
        }
        const auto save = [projects](bool second) -> std::optional<bool> {
            return (*projects)[second ? 1 : 0]->WriteReport();
        };
        return {"page", projects->front()->GetReportPath(), save, {}};
    }
    Document Platforms() {
        wxString const path = support::WriteBytes(dir / "platforms/user.json", "");
        const auto save = [path](bool second) -> std::optional<bool> {
            SMSCollection collection;
            while (!collection.GetSignatures().empty()) {
                wxString const hash = collection.GetSignatures().front().GetFeatureHash();
                collection.RemoveEntryFromDatabase(hash);
            }
            for (int i = 0; i < (second ? 20 : 10); ++i) {
                wxString const hash = "hash" + wxString::FromUTF8(std::to_string(i));
                collection.AddEntryToDatabase(Signature("Platform", Feature(640 + i, 480), hash, SMS_User));
            }
            collection.SaveUserSignatures(path);
            return {};
        };
        return {"platforms", path, save, {}};
    }
    Document Tables() {
        wxString const path = dir / "tables/userqt.csv";
        const auto save = [path](bool second) {
            return Told([&] {
                cli::UserQtFile file(PathToBytes(path));
                while (file.Count() > 0) file.Remove(file.Count() - 1);
                JpegSignature record;
                record.editorClass = "1";
                record.make = second ? "Acme" : "Other";
                for (int i = 0; i < (second ? 30 : 15); ++i) file.Append(record);
                file.Save();
            });
        };
        return {"tables", path, save, {}};
    }
};

}  // namespace faults
