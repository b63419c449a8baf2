// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/filterwriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "apps/cli/gridtext.h"
#include "apps/cli/recordlines.h"
#include "apps/cli/separated.h"
#include "apps/cli/text.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace cli {

namespace {

char const* const SlotNames[] = {"evidence", "reference"};
char const* const SlotTitles[] = {"Evidence", "Reference"};

// The shortest text that reads back to the same float.
std::string FloatText(float value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

// The double of that text, so that JSON shows as few digits. JSON has no number that is none.
Json FloatJson(float value) {
    if (!std::isfinite(value)) return nullptr;
    const std::string text = FloatText(value);
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

std::string StatusText(FilterSlot const& slot) {
    return ToUtf8(OrvFilterConfiguration::GetStatusString(slot.status));
}

std::string MarkersText(std::vector<std::vector<float>> const& groups) {
    std::string text;
    for (std::vector<float> const& group : groups) {
        for (const float position : group) text += (text.empty() ? "" : " ") + FloatText(position);
    }
    return text;
}

std::string ResultText(FilterResult const& result) {
    FilterSlot const& evidence = result.slots[Evidence];
    if (result.kind == ResultKind::Picture && evidence.channels > 0) {
        return "picture of " + std::to_string(evidence.picture.width) + "x" + std::to_string(evidence.picture.height) +
               " pixels, " + std::to_string(evidence.channels) + (evidence.channels == 1 ? " channel" : " channels");
    }
    if (result.kind == ResultKind::Plot && evidence.plot.IsOk()) {
        const size_t series = evidence.plot.y.size();
        return "plot of " + std::to_string(evidence.plot.x.size()) + " points, " + std::to_string(series) + " series";
    }
    return result.kind == ResultKind::Picture || result.kind == ResultKind::Plot ? "nothing to show" : "";
}

// What was run on what, and all that is a single value.
Grid Summary(FilterResult const& result, std::string const& savedTo) {
    Grid grid = {{"Filter", result.filter}};
    const auto add = [&grid](std::string const& name, std::string const& value) {
        if (!value.empty()) grid.push_back({name, value});
    };
    for (const int id : {Evidence, Reference}) {
        FilterSlot const& slot = result.slots[static_cast<size_t>(id)];
        if (!slot.loaded) continue;
        add(SlotTitles[id], slot.record.path);
        add(std::string(SlotTitles[id]) + " SHA256", slot.record.sha256);
    }
    for (VecParameter const* list : {&result.parameters, &result.postParameters}) {
        for (Parameter const& parameter : *list)
            grid.push_back({ToUtf8(parameter.Name()), ToUtf8(parameter.ToReport())});
    }
    for (const int id : {Evidence, Reference}) {
        FilterSlot const& slot = result.slots[static_cast<size_t>(id)];
        if (slot.loaded) add(id == Evidence ? "Status" : "Reference Status", StatusText(slot));
    }
    for (Parameter const& parameter : result.outputs) {
        if (!IsTable(parameter)) add(ToUtf8(parameter.Name()), ToUtf8(parameter.ToReport()));
    }
    add("Result", ResultText(result));
    add("Vertical Markers", MarkersText(result.slots[Evidence].plot.verticalMarkers));
    add("Horizontal Markers", MarkersText(result.slots[Evidence].plot.horizontalMarkers));
    add("Output", savedTo);
    return grid;
}

std::vector<std::string> Utf8Cells(VecString const& row) {
    std::vector<std::string> cells;
    for (wxString const& cell : row) cells.push_back(ToUtf8(cell));
    return cells;
}

// The points of both slots under a header.
Grid Points(FilterResult const& result) {
    size_t most = 0;
    for (FilterSlot const& slot : result.slots) most = std::max(most, slot.plot.y.size());
    Grid grid = {{"Slot", "X"}};
    for (size_t series = 1; series <= most; ++series) grid[0].push_back("Y" + std::to_string(series));
    for (const int id : {Evidence, Reference}) {
        OrvPlotData const& plot = result.slots[static_cast<size_t>(id)].plot;
        for (size_t i = 0; i < plot.x.size(); ++i) {
            std::vector<std::string> row = {SlotNames[id], FloatText(plot.x[i])};
            for (std::vector<float> const& series : plot.y)
                row.push_back(i < series.size() ? FloatText(series[i]) : "");
            row.resize(most + 2);
            grid.push_back(std::move(row));
        }
    }
    return grid;
}

// ---- csv, tsv, ssv ----

// Every row of every table, and each single value, behind the name of its output.
Grid OutputRows(FilterResult const& result) {
    Grid grid;
    for (Parameter const& parameter : result.outputs) {
        const std::string name = ToUtf8(parameter.Name());
        if (!IsTable(parameter)) {
            grid.push_back({name, ToUtf8(parameter.ToReport())});
            continue;
        }
        for (VecString const& row : parameter.GetValue<VecVecString>()) {
            grid.push_back({name});
            for (std::string& cell : Utf8Cells(row)) grid.back().push_back(std::move(cell));
        }
    }
    size_t widest = 2;
    for (auto const& row : grid) widest = std::max(widest, row.size());
    for (auto& row : grid) row.resize(widest);
    std::vector<std::string> header = {"Output"};
    for (size_t column = 1; column < widest; ++column) header.push_back("Column " + std::to_string(column));
    grid.insert(grid.begin(), std::move(header));
    return grid;
}

Grid SeparatedRows(FilterResult const& result, std::string const& savedTo) {
    if (result.kind == ResultKind::Plot) return Points(result);
    if (result.kind == ResultKind::Tables) return OutputRows(result);
    Grid grid;
    if (result.kind == ResultKind::Text) {
        grid = {{"Text"}};
        for (std::string const& line : SplitLines(result.text)) grid.push_back({line});
        if (grid.size() > 1 && grid.back().front().empty()) grid.pop_back();
        return grid;
    }
    grid = Summary(result, savedTo);
    grid.insert(grid.begin(), {"Name", "Value"});
    return grid;
}

// ---- json ----

Json FileJson(FilterSlot const& slot) {
    return slot.loaded ? InputJson(slot.record) : Json();
}

Json FloatsJson(std::vector<float> const& values) {
    Json array = Json::array();
    for (const float value : values) array.push_back(FloatJson(value));
    return array;
}

Json ListsJson(std::vector<std::vector<float>> const& lists) {
    Json array = Json::array();
    for (std::vector<float> const& list : lists) array.push_back(FloatsJson(list));
    return array;
}

Json PlotJson(OrvPlotData const& plot) {
    if (!plot.IsOk()) return nullptr;
    return {{"x", FloatsJson(plot.x)},
            {"series", ListsJson(plot.y)},
            {"vertical_markers", ListsJson(plot.verticalMarkers)},
            {"horizontal_markers", ListsJson(plot.horizontalMarkers)}};
}

Json ResultJson(FilterResult const& result) {
    Json value = {{"kind", ResultKindName(result.kind)}};
    FilterSlot const& evidence = result.slots[Evidence];
    if (result.kind == ResultKind::Picture) {
        value["width"] = evidence.picture.width;
        value["height"] = evidence.picture.height;
        value["channels"] = evidence.channels;
    } else if (result.kind == ResultKind::Plot) {
        for (const int id : {Evidence, Reference})
            value[SlotNames[id]] = PlotJson(result.slots[static_cast<size_t>(id)].plot);
    } else if (result.kind == ResultKind::Text) {
        value["text"] = Valid(result.text);
    }
    return value;
}

Json WholeJson(FilterResult const& result, std::string const& savedTo) {
    FilterSlot const& evidence = result.slots[Evidence];
    FilterSlot const& reference = result.slots[Reference];
    Json outputs = Json::array();
    for (Parameter const& parameter : result.outputs) {
        outputs.push_back({{"name", Valid(ToUtf8(parameter.Name()))},
                           {IsTable(parameter) ? "table" : "value", ValueJson(parameter)}});
    }
    Json value = {{"schema", "orvelle/filter/1"},
                  {"tool", ToolJson()},
                  {"run",
                   {{"started", evidence.record.started},
                    {"seconds", evidence.record.seconds},
                    {"from_cache", {{"evidence", evidence.fromCache}, {"reference", reference.fromCache}}}}},
                  {"filter", Valid(result.filter)},
                  {"parameters", ValuesJson(result.parameters)},
                  {"post_parameters", ValuesJson(result.postParameters)},
                  {"evidence", FileJson(evidence)},
                  {"reference", FileJson(reference)},
                  {"status", StatusText(evidence)},
                  {"reference_status", reference.loaded ? Json(StatusText(reference)) : Json()},
                  {"outputs", outputs},
                  {"result", ResultJson(result)}};
    if (!savedTo.empty()) value["saved_to"] = Valid(savedTo);
    return value;
}

// ---- text ----

// All lines but for the break at the end, each made printable: what steers a terminal may come from the file.
void WriteTextLines(std::string const& text, Output& output) {
    std::vector<std::string> lines = SplitLines(text);
    if (!lines.empty() && lines.back().empty()) lines.pop_back();
    for (std::string const& line : lines) output.Write(Printable(line) + "\n");
}

void WriteText(FilterResult const& result, std::string const& savedTo, Output& output) {
    output.Write(GridText(Summary(result, savedTo)));
    for (Parameter const& parameter : result.outputs) {
        if (!IsTable(parameter)) continue;
        Grid grid;
        size_t widest = 0;
        for (VecString const& row : parameter.GetValue<VecVecString>()) {
            grid.push_back(Utf8Cells(row));
            widest = std::max(widest, row.size());
        }
        if (grid.empty()) continue;
        for (auto& row : grid) row.resize(widest);
        // A cell with several lines keeps them in its own column, so none of them can pass for a row.
        std::vector<size_t> blocks;
        for (size_t column = 1; column < widest; ++column) blocks.push_back(column);
        output.Write("\n" + GridText(grid, blocks));
    }
    if (result.kind == ResultKind::Plot) output.Write("\n" + GridText(Points(result)));
    if (result.kind == ResultKind::Text) {
        output.Write("\n");
        WriteTextLines(result.text, output);
    }
}

// ---- html ----

wxString RowsHtml(Grid const& grid) {
    wxString rows;
    for (auto const& row : grid) {
        VecString cells;
        for (std::string const& cell : row) cells.push_back(FromUtf8(cell));
        rows += HtmlWriter::DoTrRedExcl(cells);
    }
    return HtmlWriter::DoTable(rows);
}

void WriteHtml(FilterResult const& result, std::string const& savedTo, Output& output) {
    wxString page = HtmlWriter::DoHeader(wxString(), FromUtf8(result.filter)) +
                    HtmlWriter::DoH(1, EscapeHtmlString(FromUtf8(result.filter)), wxString()) +
                    RowsHtml(Summary(result, savedTo));
    for (Parameter const& parameter : result.outputs) {
        if (!IsTable(parameter)) continue;
        page += HtmlWriter::DoH(2, EscapeHtmlString(parameter.Name()), wxString());
        wxString rows;
        for (VecString const& row : parameter.GetValue<VecVecString>()) rows += HtmlWriter::DoTrRedExcl(row);
        page += HtmlWriter::DoTable(rows);
    }
    if (result.kind == ResultKind::Plot) page += RowsHtml(Points(result));
    if (result.kind == ResultKind::Text) page += HtmlWriter::DoPre(EscapeHtmlString(FromUtf8(result.text)));
    output.Write(ToUtf8(page + HtmlWriter::DoFooter()));
}

}  // namespace

void WriteFilterResult(FilterResult const& result, std::string const& format, std::string const& savedTo,
                       Output& output) {
    if (format == "json" || format == "jsonl") {
        output.Write(JsonText(WholeJson(result, savedTo), format == "jsonl") + "\n");
    } else if (format == "html") {
        WriteHtml(result, savedTo, output);
    } else if (format == "text") {
        WriteText(result, savedTo, output);
    } else {
        for (auto const& row : SeparatedRows(result, savedTo)) output.Write(SeparatedLine(format, row));
    }
}

}  // namespace cli
