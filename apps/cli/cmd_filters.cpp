// SPDX-License-Identifier: Apache-2.0
// orvelle filters: which filters there are, and what each is worth.
#include <algorithm>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/filterchoice.h"
#include "apps/cli/filterfacts.h"
#include "apps/cli/gridtext.h"
#include "apps/cli/recordlines.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/separated.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "filters/filtertexts.h"
#include "orvcore/filter.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace cli {

namespace {

constexpr size_t TextWidth = 96;
constexpr char const* Indent = "    ";
// More configurations than this are shortened for a person; machines get all.
constexpr size_t MostShown = 8;

OrvFilterExplanation const* ExplanationOf(OrvFilter const& filter) {
    return OrvExplainFilter(filter.GetName());
}

// Lines of at most TextWidth characters behind an indent; the line breaks of the text stay.
std::string Wrapped(std::string const& text) {
    std::string result;
    for (std::string const& paragraph : SplitLines(text)) {
        std::string line;
        for (size_t start = 0; start < paragraph.size();) {
            const size_t end = std::min(paragraph.find(' ', start), paragraph.size());
            const std::string word = paragraph.substr(start, end - start);
            if (!line.empty() && CountCharacters(line) + CountCharacters(word) + 1 > TextWidth) {
                result += Indent + line + "\n";
                line.clear();
            }
            line += (line.empty() ? "" : " ") + word;
            start = end + 1;
        }
        result += line.empty() ? "\n" : Indent + line + "\n";
    }
    return result;
}

std::string WrappedFlush(std::string const& text) {
    std::string result;
    for (std::string const& line : SplitLines(Wrapped(text))) {
        if (!line.empty()) result += line.substr(line.find_first_not_of(' ')) + "\n";
    }
    return result;
}

std::string ConfigurationText(OrvFilterConfiguration const& configuration) {
    const std::string values = ValuesText(configuration);
    return (values.empty() ? "without parameters" : values) + (configuration.IsEnabled() ? "" : " (disabled)");
}

// All of them, or the first and the last ones.
std::vector<std::string> ConfigurationTexts(OrvFilter const& filter) {
    std::vector<std::string> texts;
    const std::vector<OrvFilterConfiguration> all = filter.GetConfigurations();
    for (size_t i = 0; i < all.size(); ++i) {
        if (all.size() > MostShown && i >= MostShown / 2 && i + 1 < all.size()) {
            if (i == MostShown / 2)
                texts.push_back("... " + std::to_string(all.size() - MostShown / 2 - 1) + " more ...");
            continue;
        }
        texts.push_back(ConfigurationText(all[i]));
    }
    return texts;
}

std::string KindText(OrvFilter const& filter) {
    std::string text = ToUtf8(filter.GetAnalysisTypeString()) + "; gives ";
    switch (ResultKindOf(filter)) {
        case ResultKind::Picture:
            text += "a picture";
            break;
        case ResultKind::Plot:
            text += "a plot";
            break;
        case ResultKind::Tables:
            text += "a table";
            break;
        case ResultKind::Text:
            text += "a text";
            break;
        default:
            text += "nothing to save";
    }
    return text + (filter.IsOnlyForJpeg() ? "; JPEG files only" : "");
}

// ---- the list as text ----

struct ParameterLine {
    char const* option;
    Parameter parameter;
};

std::vector<ParameterLine> ParameterLines(OrvFilter const& filter) {
    std::vector<ParameterLine> lines;
    for (Parameter const& parameter : filter.GetParametersInput()) lines.push_back({"--set", parameter});
    for (Parameter const& parameter : filter.GetParametersPostProcessing()) lines.push_back({"--post", parameter});
    return lines;
}

// Every line of a grid behind the indent.
std::string Indented(std::string const& text) {
    std::string result;
    for (std::string const& line : SplitLines(text)) result += line.empty() ? "" : Indent + line + "\n";
    return result;
}

std::string ListEntry(OrvFilter const& filter) {
    std::string text = ToUtf8(filter.GetName()) + " (" + KindText(filter) + ")\n";
    Grid grid;
    for (ParameterLine const& line : ParameterLines(filter)) {
        grid.push_back({line.option, ToUtf8(line.parameter.Name()),
                        Takes(line.parameter) + "; default " + ToUtf8(line.parameter.ToReport())});
    }
    text += Indented(GridText(grid));
    if (filter.GetParametersInput().empty()) return text;
    std::string configurations = "configurations: ";
    for (std::string const& each : ConfigurationTexts(filter)) {
        configurations += (configurations.back() == ' ' ? "" : "; ") + each;
    }
    return text + Wrapped(configurations);
}

// ---- one filter as text ----

std::string Section(std::string const& title, std::string const& body) {
    return body.empty() ? "" : "\n" + title + "\n" + body;
}

std::string ParametersText(VecParameter const& parameters) {
    std::string text;
    for (Parameter const& parameter : parameters) {
        text += Indent + ToUtf8(parameter.Name()) + ": " + Takes(parameter) + "; default " +
                ToUtf8(parameter.ToReport()) + "\n";
        if (parameter.GetDescription().empty()) continue;
        for (std::string const& line : SplitLines(Wrapped(ToUtf8(parameter.GetDescription())))) {
            if (!line.empty()) text += Indent + line + "\n";
        }
    }
    return text;
}

std::string OutputsText(VecParameter const& outputs) {
    std::string text;
    for (Parameter const& parameter : outputs) {
        const std::string description = ToUtf8(parameter.GetDescription());
        text += Wrapped(ToUtf8(parameter.Name()) + (description.empty() ? "" : ": " + description));
    }
    return text;
}

std::string Page(OrvFilter const& filter) {
    std::string text = ToUtf8(filter.GetName()) + "\n" + KindText(filter) + "\n";
    if (!filter.GetDescription().empty()) text += "\n" + WrappedFlush(ToUtf8(filter.GetDescription()));
    OrvFilterExplanation const* const explanation = ExplanationOf(filter);
    if (explanation != nullptr) {
        text += Section("Method", Wrapped(explanation->method)) + Section("Source", Wrapped(explanation->source)) +
                Section("Where it fails", Wrapped(explanation->limits));
    }
    text += Section("Parameters (--set)", ParametersText(filter.GetParametersInput()));
    text += Section("Post-processing (--post)", ParametersText(filter.GetParametersPostProcessing()));
    text += Section("Outputs", OutputsText(filter.GetParametersOutput()));
    if (filter.GetParametersInput().empty()) return text;
    std::string configurations;
    for (std::string const& each : ConfigurationTexts(filter)) configurations += Wrapped(each);
    return text + Section("Configurations", configurations);
}

// ---- rows for csv, tsv, ssv and html ----

void AddRows(OrvFilter const& filter, bool explain, Grid& grid) {
    const std::string name = ToUtf8(filter.GetName());
    grid.push_back({name, "filter", "", KindText(filter), "", ToUtf8(filter.GetDescription())});
    for (ParameterLine const& line : ParameterLines(filter)) {
        grid.push_back({name, std::string(line.option) == "--set" ? "parameter" : "post-processing",
                        ToUtf8(line.parameter.Name()), Takes(line.parameter), ToUtf8(line.parameter.ToReport()),
                        ToUtf8(line.parameter.GetDescription())});
    }
    for (Parameter const& parameter : filter.GetParametersOutput()) {
        grid.push_back({name, "output", ToUtf8(parameter.Name()), "", "", ToUtf8(parameter.GetDescription())});
    }
    for (OrvFilterConfiguration const& configuration : filter.GetConfigurations()) {
        grid.push_back({name, "configuration", ValuesText(configuration), "",
                        configuration.IsEnabled() ? "enabled" : "disabled", ""});
    }
    OrvFilterExplanation const* const explanation = explain ? ExplanationOf(filter) : nullptr;
    if (explanation == nullptr) return;
    grid.push_back({name, "method", "", "", "", explanation->method});
    grid.push_back({name, "source", "", "", "", explanation->source});
    grid.push_back({name, "limits", "", "", "", explanation->limits});
}

Grid Rows(std::vector<OrvFilter*> const& filters, bool explain) {
    Grid grid = {{"Filter", "Kind", "Name", "Takes", "Value", "Description"}};
    for (OrvFilter const* filter : filters) AddRows(*filter, explain, grid);
    return grid;
}

std::string Html(std::vector<OrvFilter*> const& filters, bool explain) {
    wxString rows;
    for (auto const& row : Rows(filters, explain)) {
        VecString cells;
        for (std::string const& cell : row) cells.push_back(FromUtf8(cell));
        rows += HtmlWriter::DoTrRedExcl(cells);
    }
    return ToUtf8(HtmlWriter::DoHeader(wxString(), "Filters") + HtmlWriter::DoTable(rows) + HtmlWriter::DoFooter());
}

// ---- json ----

Json ExplainedJson(OrvFilter const& filter) {
    Json value = FilterJson(filter);
    if (OrvFilterExplanation const* const explanation = ExplanationOf(filter)) {
        value["method"] = explanation->method;
        value["source"] = explanation->source;
        value["limits"] = explanation->limits;
    }
    return value;
}

std::string JsonOf(std::vector<OrvFilter*> const& filters, bool lines) {
    if (lines) {
        std::string text;
        for (OrvFilter const* filter : filters) {
            Json object = {{"schema", "orvelle/filters/1"}};
            object.update(ExplainedJson(*filter));
            text += JsonText(object, true) + "\n";
        }
        return text;
    }
    Json value = {{"schema", "orvelle/filters/1"}, {"tool", ToolJson()}, {"filters", Json::array()}};
    for (OrvFilter const* filter : filters) value["filters"].push_back(ExplainedJson(*filter));
    return JsonText(value, false) + "\n";
}

class FiltersCommand : public Command {
public:
    void Define(CLI::App& app) override {
        AddText(app, "NAME", m_name, "Explain this filter; its name or the beginning of it")->type_name("");
        m_output.Define(app);
        app.footer(
            "Parameters of the calculation are given to \"orvelle filter\" with --set, those of the post-processing\n"
            "with --post. The configurations are those that a batch runs; the settings may change them.");
    }

    ExitCode Run(Environment& environment) override {
        Session session(environment);
        std::vector<OrvFilter*> filters = session.Context().GetFilters();
        const bool explain = !m_name.empty();
        if (explain) filters = {&ChooseFilter(session.Context(), m_name)};
        Output output(m_output.path, m_output.force);
        output.Write(Text(filters, explain));
        output.Commit();
        return ExitDone;
    }

private:
    std::string Text(std::vector<OrvFilter*> const& filters, bool explain) const {
        const std::string format = m_output.Format();
        if (format == "json" || format == "jsonl") return JsonOf(filters, format == "jsonl");
        if (format == "html") return Html(filters, explain);
        std::string text;
        if (format != "text") {
            for (auto const& row : Rows(filters, explain)) text += SeparatedLine(format, row);
        } else if (explain) {
            text = Page(*filters.front());
        } else {
            for (OrvFilter const* filter : filters) text += (text.empty() ? "" : "\n") + ListEntry(*filter);
        }
        return text;
    }

    OutputOptions m_output;
    std::string m_name;
};

}  // namespace

std::unique_ptr<Command> MakeFiltersCommand() {
    return std::make_unique<FiltersCommand>();
}

}  // namespace cli
