// SPDX-License-Identifier: Apache-2.0
// orvelle cache: the stored results of one file.
#include <algorithm>

#include "apps/cli/arguments.h"
#include "apps/cli/cachefolder.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/gridtext.h"
#include "apps/cli/json.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/separated.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "tolbase/htmlwriter.h"

namespace cli {

namespace {

std::string Counted(size_t count, char const* thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string TotalText(CacheFolder const& cache) {
    return Counted(cache.CountOwn(), "file") + ", " + std::to_string(cache.OwnBytes()) + " bytes";
}

size_t CountForeign(CacheFolder const& cache) {
    return cache.Files().size() - cache.CountOwn();
}

Grid Rows(CacheFolder const& cache) {
    Grid grid = {{"Filter", "Parameters", "Status", "Bytes", "Date"}};
    for (CachedResult const& result : cache.Results()) {
        grid.push_back(
            {result.filter, result.parameters, result.status, std::to_string(result.bytes), result.modified});
    }
    return grid;
}

Json ResultJson(CachedResult const& result) {
    Json files = Json::array();
    for (std::string const& name : result.files) files.push_back(Valid(name));
    return {{"filter", Valid(result.filter)}, {"parameters", Valid(result.parameters)},
            {"status", result.status},        {"bytes", result.bytes},
            {"modified", result.modified},    {"files", files}};
}

void WriteJson(CacheFolder const& cache, Output& output) {
    Json results = Json::array();
    for (CachedResult const& result : cache.Results()) results.push_back(ResultJson(result));
    Json others = Json::array();
    for (CachedFile const& file : cache.Files()) {
        if (file.isResult) continue;
        others.push_back({{"name", Valid(file.name)}, {"bytes", file.bytes}, {"own", file.isOwn}});
    }
    const Json value = {
        {"schema", "orvelle/cache/1"},
        {"tool", ToolJson()},
        {"input", InputJson(cache.Input())},
        {"folder", Valid(cache.Path())},
        {"results", results},
        {"other_files", others},
        {"total", {{"results", cache.Results().size()}, {"files", cache.CountOwn()}, {"bytes", cache.OwnBytes()}}}};
    output.Write(JsonText(value, false) + "\n");
}

void WriteJsonLines(CacheFolder const& cache, Output& output) {
    for (CachedResult const& result : cache.Results()) {
        Json object = {{"schema", "orvelle/cache/1"}};
        object.update(ResultJson(result));
        output.Write(JsonText(object, true) + "\n");
    }
}

void WriteHtml(CacheFolder const& cache, Output& output) {
    wxString rows;
    for (auto const& row : Rows(cache)) {
        VecString cells;
        for (std::string const& cell : row) cells.push_back(FromUtf8(cell));
        rows += HtmlWriter::DoTrRedExcl(cells);
    }
    output.Write(
        ToUtf8(HtmlWriter::DoHeader(wxString(), "Cache") + HtmlWriter::DoTable(rows) + HtmlWriter::DoFooter()));
}

void WriteText(CacheFolder const& cache, Output& output) {
    output.Write("Folder " + Printable(cache.Path()) + "\n");
    if (!cache.Results().empty()) output.Write(GridText(Rows(cache)));
    output.Write(Counted(cache.Results().size(), "result") + "; " + TotalText(cache) + "\n");
}

class CacheCommand : public Command {
public:
    void Define(CLI::App& app) override {
        app.require_subcommand(1);
        m_show = app.add_subcommand("show", "List what is stored of one image's results");
        AddText(*m_show, "FILE", m_file, "The image")->required()->type_name("");
        m_output.Define(*m_show);
        m_clear = app.add_subcommand("clear", "Remove what is stored of one image's results");
        AddText(*m_clear, "FILE", m_file, "The image")->required()->type_name("");
        app.footer(
            "Where the cache lies is told by the options \"Cache Location\" and \"Custom Cache Folder\". What is in\n"
            "the folder of a file's results and was put there by others stays.");
    }

    ExitCode Run(Environment& environment) override {
        return m_show->parsed() ? Show(environment) : Clear(environment);
    }

private:
    ExitCode Show(Environment& environment) {
        Output output(m_output.path, m_output.force);
        if (output.IsFile(m_file)) throw Failure(ExitOutput, m_output.path, "is an examined file itself");
        Session session(environment);
        const CacheFolder cache(session, m_file);
        const std::string format = m_output.Format();
        if (format == "json") {
            WriteJson(cache, output);
        } else if (format == "jsonl") {
            WriteJsonLines(cache, output);
        } else if (format == "html") {
            WriteHtml(cache, output);
        } else if (format == "text") {
            WriteText(cache, output);
        } else {
            for (auto const& row : Rows(cache)) output.Write(SeparatedLine(format, row));
        }
        output.Commit();
        return ExitDone;
    }

    ExitCode Clear(Environment& environment) {
        Output output("", false);
        Session session(environment);
        CacheFolder cache(session, m_file);
        if (cache.Files().empty()) {
            environment.terminal.Warning(m_file, "nothing is stored");
            return ExitDone;
        }
        cache.Remove();
        output.Write(Printable(cache.Path()) + ": removed " + TotalText(cache) + "\n");
        output.Commit();
        if (CountForeign(cache) > 0) {
            environment.terminal.Warning(cache.Path(),
                                         Counted(CountForeign(cache), "file") + " that the cache did not make stayed");
        }
        return ExitDone;
    }

    CLI::App* m_show = nullptr;
    CLI::App* m_clear = nullptr;
    OutputOptions m_output;
    std::string m_file;
};

}  // namespace

std::unique_ptr<Command> MakeCacheCommand() {
    return std::make_unique<CacheCommand>();
}

}  // namespace cli
