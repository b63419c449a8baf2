// SPDX-License-Identifier: Apache-2.0
// orvelle download: the photographs that a search found.
#include <algorithm>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/inputs.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/json.h"
#include "apps/cli/output.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "apps/cli/work.h"
#include "orvcore/webmediasearch.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolbase/progress.h"

namespace cli {

namespace {

// A transfer goes on for a few seconds after an abort.
constexpr std::chrono::seconds PatienceForTransfer{10};

std::string TextAt(Json const& object, std::initializer_list<char const*> keys) {
    for (char const* key : keys) {
        const auto found = object.find(key);
        if (found == object.end()) continue;
        if (found->is_string()) return found->get<std::string>();
        if (found->is_number_integer()) return std::to_string(found->get<int64_t>());
    }
    return "";
}

// Pairs of id and link.
VecString ReadLinks(std::string const& path) {
    const auto refuse = [&path](std::string const& reason) -> Failure {
        return {ExitInput, path == "-" ? "standard input" : path, reason};
    };
    VecString list;
    try {
        const Json value = Json::parse(ReadText(path));
        if (!value.is_array()) throw refuse("is no list of photographs, as \"search --format json\" gives it");
        for (Json const& object : value) {
            const std::string link = object.is_object() ? TextAt(object, {"link", "url", "image"}) : "";
            if (link.empty()) throw refuse("entry " + std::to_string(list.size() / 2 + 1) + " has no link");
            std::string id = TextAt(object, {"web_photo_id", "id"});
            if (id.empty()) id = std::to_string(list.size() / 2 + 1);
            list.push_back(FromUtf8(id));
            list.push_back(FromUtf8(link));
        }
    } catch (nlohmann::json::exception const& error) {
        throw refuse("is no JSON: " + std::string(error.what()));
    }
    return list;
}

class DownloadCommand : public Command {
public:
    void Define(CLI::App& app) override {
        AddText(app, "LIST", m_list, "What \"orvelle search ... --format json\" printed; - is standard input")
            ->required()
            ->type_name("");
        AddText(app, "--folder", m_folder, "Where the files go; made if need be")->required()->type_name("DIR");
        app.add_flag("--force", m_force, "Replace files that exist");
        app.add_option("--timeout", m_timeout, "Seconds without a byte after which a download is given up")
            ->type_name("SECONDS")
            ->check(CLI::Range(1, 3600));
        app.footer(
            "Each photograph is saved as its id and the link's ending. Only http and https. A link that fails is told\n"
            "and the others are tried; behind more than three failures in a row the rest is left out.");
    }

    ExitCode Run(Environment& environment) override {
        const VecString list = ReadLinks(m_list);
        Session session(environment);
        session.SetPatience(PatienceForTransfer);
        if (m_timeout > 0) SetTolLimit(TolLimit::WebSeconds, static_cast<uint64_t>(m_timeout));
        if (!CreateDirIfNotExists(PathFromBytes(m_folder))) throw Failure(ExitOutput, m_folder, "can't be written");
        const auto work = [list, folder = PathFromBytes(m_folder), force = m_force] {
            VecString links = list;
            wxString target = folder;
            wxString error;
            DownloadImageFromWeb(links, target, error, force);
        };
        const size_t total = list.size() / 2;
        session.SetWaiting([&] {
            // The one that is under way stands behind those that are done.
            if (!tcvGetProgress().text.empty()) TellBegun(environment, GetDownloadResults().size() + 1, total);
        });
        RunWork(session, "Download", work);
        session.SetWaiting({});
        TellBegun(environment, GetDownloadResults().size(), total);
        return Tell(environment, total);
    }

private:
    void TellBegun(Environment& environment, size_t number, size_t total) {
        for (; m_begun < std::min(number, total); ++m_begun) {
            environment.terminal.Step("Downloading Image " + std::to_string(m_begun + 1) + " of " +
                                      std::to_string(total));
        }
    }

    ExitCode Tell(Environment& environment, size_t total) const {
        ExitCode code = ExitDone;
        Output output("", false);
        const std::vector<OrvDownloadResult> results = GetDownloadResults();
        for (OrvDownloadResult const& result : results) {
            if (result.error.empty()) {
                output.Write(Printable(PathToBytes(result.file)) + "\n");
                continue;
            }
            environment.terminal.Error(ToUtf8(result.link), ToUtf8(result.error));
            code = Worse(code, result.exists ? ExitOutput : ExitNetwork);
        }
        output.Commit();
        if (results.size() < total && !IsInterrupted()) {
            environment.terminal.Error(
                "", std::to_string(total - results.size()) + " left out behind more than three failures in a row");
            code = Worse(code, ExitNetwork);
        }
        return Worse(code, InterruptionCode());
    }

    std::string m_list;
    std::string m_folder;
    int m_timeout = 0;
    bool m_force = false;
    size_t m_begun = 0;
};

}  // namespace

std::unique_ptr<Command> MakeDownloadCommand() {
    return std::make_unique<DownloadCommand>();
}

}  // namespace cli
