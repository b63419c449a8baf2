// SPDX-License-Identifier: Apache-2.0
// orvelle bookmark: the findings of a project, one by one.
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/filterchoice.h"
#include "apps/cli/json.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/projectfile.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "orvcore/filter.h"
#include "tolbase/file.h"
#include "tolbase/json.h"

namespace cli {

namespace {

constexpr char const* StatusWords = "Undefined, OK, Warning, To Check";

wxString TextOf(std::string const& option, std::string const& value) {
    if (!IsUtf8(value)) throw Failure(ExitUsage, option, "not UTF-8");
    return FromUtf8(value);
}

OrvBookmarkStatus StatusOf(std::string const& text) {
    const OrvBookmarkStatus status = OrvBookmark::StatusFromText(TextOf("--status", text));
    if (status < 0) throw Failure(ExitUsage, "--status", "\"" + text + "\" is none of: " + StatusWords);
    return status;
}

// The absolute path of an image that is there.
wxString ImageOf(std::string const& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        throw Failure(ExitInput, path, errno == ENOENT ? "no such file" : std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) throw Failure(ExitInput, path, "not a regular file");
    return PathFromBytes(AbsolutePath(path));
}

std::string FilterText(OrvBookmark const& bookmark) {
    std::string text = ToUtf8(bookmark.GetFilterName());
    std::string parameters;
    for (Parameter const& parameter : bookmark.parameters) {
        parameters += (parameters.empty() ? "" : ", ") + ToUtf8(parameter.Name()) + "=" + ToUtf8(parameter.ToReport());
    }
    if (!parameters.empty()) text += " (" + parameters + ")";
    return bookmark.IsOk() ? text : text + " [unknown filter]";
}

Json BookmarkJson(size_t number, OrvBookmark const& bookmark) {
    Json parameters = Json::object();
    for (Parameter const& parameter : bookmark.parameters) {
        parameters[Valid(ToUtf8(parameter.Name()))] = Valid(ToUtf8(parameter.ToReport()));
    }
    return {{"number", number},
            {"status", Valid(ToUtf8(bookmark.GetStatusText()))},
            {"name", Valid(ToUtf8(bookmark.name))},
            {"filter", Valid(ToUtf8(bookmark.GetFilterName()))},
            {"known_filter", bookmark.IsOk()},
            {"parameters", parameters},
            {"evidence", Valid(ToUtf8(bookmark.evidence))},
            {"reference", Valid(ToUtf8(bookmark.reference))},
            {"note", Valid(ToUtf8(bookmark.note))}};
}

class BookmarkCommand : public Command {
public:
    void Define(CLI::App& app) override {
        app.require_subcommand(1);
        m_add = app.add_subcommand("add", "Add a bookmark behind the others");
        DefineProject(*m_add);
        m_filterOption = AddText(*m_add, "--filter", m_filter, "The filter that was looked at")->required();
        DefineFields(*m_add);
        m_add->get_option("--evidence")->required();
        m_list = app.add_subcommand("list", "Show the bookmarks, one line each");
        DefineProject(*m_list);
        m_output.Define(*m_list);
        m_set = app.add_subcommand("set", "Change one bookmark");
        DefineProject(*m_set);
        DefineNumber(*m_set);
        DefineFields(*m_set);
        m_remove = app.add_subcommand("remove", "Remove one bookmark; later ones move up");
        DefineProject(*m_remove);
        DefineNumber(*m_remove);
    }

    ExitCode Run(Environment& environment) override {
        Session session(environment);
        if (m_list->parsed()) return List();
        ProjectFile file(m_path);
        std::vector<OrvBookmark> bookmarks = file.Project().GetBookmarks();
        if (m_add->parsed()) {
            bookmarks.push_back(MakeBookmark(session));
        } else {
            const size_t index = file.IndexOf(m_number);
            if (m_set->parsed()) {
                Change(*m_set, bookmarks[index]);
            } else {
                bookmarks.erase(bookmarks.begin() + static_cast<std::ptrdiff_t>(index));
            }
        }
        file.Save(bookmarks);
        return ExitDone;
    }

private:
    void DefineProject(CLI::App& app) {
        AddText(app, "PROJECT", m_path, "The project's file")->required()->type_name("");
    }

    void DefineNumber(CLI::App& app) {
        AddText(app, "NUMBER", m_number, "The bookmark's number, as \"bookmark list\" tells it")
            ->required()
            ->type_name("");
    }

    void DefineFields(CLI::App& app) {
        AddText(app, "--name", m_name, "Its title");
        AddText(app, "--evidence", m_evidence, "The questioned image")->type_name("FILE");
        AddText(app, "--reference", m_reference, "The image that it is compared with")->type_name("FILE");
        AddText(app, "--note", m_note, "A remark");
        AddText(app, "--status", m_status, std::string("One of: ") + StatusWords);
        // One value an option, so that the arguments behind it stay arguments.
        AddEach(app, "--set", m_settings, "A parameter of the filter; may be given several times")
            ->type_name("PARAMETER=VALUE");
    }

    // Takes over what was given.
    void Change(CLI::App& app, OrvBookmark& bookmark) {
        if (app.count("--name") > 0) bookmark.name = TextOf("--name", m_name);
        if (app.count("--note") > 0) bookmark.note = TextOf("--note", m_note);
        if (app.count("--status") > 0) bookmark.status = StatusOf(m_status);
        if (app.count("--evidence") > 0) bookmark.evidence = ImageOf(m_evidence);
        if (app.count("--reference") > 0) bookmark.reference = m_reference.empty() ? wxString() : ImageOf(m_reference);
        if (m_settings.empty()) return;
        if (!bookmark.IsOk()) {
            throw Failure(ExitUsage, "--set", "the bookmark's filter is unknown: " + ToUtf8(bookmark.GetFilterName()));
        }
        SetParameters(bookmark.parameters, m_settings, "--set");
    }

    OrvBookmark MakeBookmark(Session& session) {
        OrvBookmark bookmark;
        bookmark.filter = &ChooseFilter(session.Context(), m_filter);
        bookmark.name = bookmark.filter->GetName();
        bookmark.parameters = bookmark.filter->GetParametersInput();
        bookmark.parameters.Reset();
        Change(*m_add, bookmark);
        return bookmark;
    }

    ExitCode List() const {
        Output output(m_output.path, m_output.force);
        std::vector<OrvBookmark> bookmarks;
        {
            const ProjectFile file(m_path);
            if (output.IsFile(m_path)) throw Failure(ExitOutput, m_output.path, "is the project itself");
            bookmarks = file.Project().GetBookmarks();
        }
        const std::string format = m_output.Format();
        if (format == "json" || format == "jsonl") {
            WriteJson(bookmarks, format == "jsonl", output);
        } else if (format == "text") {
            WriteText(bookmarks, output);
        } else {
            WriteTable(bookmarks, format, output);
        }
        output.Commit();
        return ExitDone;
    }

    static void WriteJson(std::vector<OrvBookmark> const& bookmarks, bool lines, Output& output) {
        Json all = Json::array();
        size_t number = 0;
        for (OrvBookmark const& bookmark : bookmarks) {
            const Json value = BookmarkJson(++number, bookmark);
            if (lines) {
                output.Write(JsonText(value, true) + "\n");
            } else {
                all.push_back(value);
            }
        }
        if (!lines) output.Write(JsonText(all, false) + "\n");
    }

    static std::vector<std::string> Row(size_t number, OrvBookmark const& bookmark) {
        return {std::to_string(number), ToUtf8(bookmark.GetStatusText()), ToUtf8(bookmark.name),
                FilterText(bookmark),   ToUtf8(bookmark.evidence),        ToUtf8(bookmark.reference)};
    }

    static void WriteText(std::vector<OrvBookmark> const& bookmarks, Output& output) {
        std::vector<std::vector<std::string>> rows;
        std::vector<size_t> widths(6, 0);
        for (size_t i = 0; i < bookmarks.size(); ++i) {
            rows.push_back(Row(i + 1, bookmarks[i]));
            for (size_t k = 0; k < rows.back().size(); ++k) {
                rows.back()[k] = Printable(rows.back()[k]);
                widths[k] = std::max(widths[k], CountCharacters(rows.back()[k]));
            }
        }
        for (auto const& row : rows) {
            std::string line;
            for (size_t k = 0; k < row.size(); ++k) {
                line += row[k] + std::string(widths[k] - CountCharacters(row[k]) + 2, ' ');
            }
            line.erase(line.find_last_not_of(' ') + 1);
            output.Write(line + "\n");
        }
    }

    static void WriteTable(std::vector<OrvBookmark> const& bookmarks, std::string const& format, Output& output) {
        PlainTable table;
        table.title = "Bookmarks";
        table.titles = {"Number", "Status", "Name", "Filter", "Evidence", "Reference", "Note"};
        for (size_t i = 0; i < bookmarks.size(); ++i) {
            table.rows.push_back(Row(i + 1, bookmarks[i]));
            table.rows.back().push_back(ToUtf8(bookmarks[i].note));
        }
        WritePlainTable(table, format, output);
    }

    CLI::App* m_add = nullptr;
    CLI::App* m_list = nullptr;
    CLI::App* m_set = nullptr;
    CLI::App* m_remove = nullptr;
    CLI::Option* m_filterOption = nullptr;
    OutputOptions m_output;
    std::string m_path;
    std::string m_number;
    std::string m_name;
    std::string m_filter;
    std::string m_evidence;
    std::string m_reference;
    std::string m_note;
    std::string m_status;
    std::vector<std::string> m_settings;
};

}  // namespace

std::unique_ptr<Command> MakeBookmarkCommand() {
    return std::make_unique<BookmarkCommand>();
}

}  // namespace cli
