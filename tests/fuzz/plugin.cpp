// SPDX-License-Identifier: Apache-2.0
// The answers to the plug-in: always JSON, with every text as it was.
#include <nlohmann/json.hpp>

#include "orvcore/griffeyetable.h"
#include "tests/fuzz/target.h"
#include "tolbase/jsonalg.h"
#include "tolbase/text.h"

namespace fuzz {

namespace {

// A text, and that what is no character of it is told as such.
void CheckText(nlohmann::json const& value, wxString const& text) {
    Require(value.get<std::string>() == TolToUtf8(text), "a text arrives as it was");
}

void CheckBatch(std::vector<wxString> const& texts) {
    GriffeyeOrvBatchReportsMap reports;
    for (size_t i = 0; i + 2 < texts.size(); i += 3)
        reports[texts[i]] = {texts[i + 1], static_cast<int>(i % 3), texts[i + 2]};
    auto const json = nlohmann::json::parse(TolToUtf8(TolJsonAlg::GetGriffeyeOrvBatchAsJSONString(reports)));
    Require(json.size() == reports.size(), "an entry for each file");
    size_t index = 0;
    for (auto const& [path, report] : reports) {
        nlohmann::json const& entry = json[index++];
        CheckText(entry.at("path"), path);
        CheckText(entry.at("text"), report.text);
        CheckText(entry.at("identifier"), report.identifier);
        Require(entry.at("severity") == report.severity, "a severity arrives");
    }
}

void CheckAnalysis(std::vector<wxString> const& texts) {
    MultiReport::Map rows;
    for (size_t i = 0; i + 2 < texts.size(); i += 3) {
        ImageInfoTableGriffeyePlugin::ResultRow result;
        result.rows = {{"Name", texts[i + 1], texts[i + 2]}, {"Warnings", i % 2 == 0 ? "0" : "1", ""}};
        rows.emplace(texts[i], MultiReport::Row(result, texts[i + 2]));
    }
    auto const json = nlohmann::json::parse(TolToUtf8(TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(rows)));
    Require(json.size() == rows.size(), "an entry for each file");
    size_t index = 0;
    for (auto const& [path, row] : rows) {
        nlohmann::json const& entry = json[index++];
        CheckText(entry.at("path"), path);
        CheckText(entry.at("identifier"), std::get<1>(row));
        CheckText(entry.at("text"), std::get<2>(row));
        Require(entry.at("no_warnings") == std::get<0>(row), "the verdict arrives");
    }
}

void Run(std::string const& bytes) {
    std::vector<wxString> texts;
    for (std::string const& line : Lines(bytes)) {
        // Line ends have to come through, too.
        std::string text = line;
        for (char& c : text) c = c == '\x02' ? '\n' : c;
        texts.push_back(Text(text));
    }
    CheckBatch(texts);
    CheckAnalysis(texts);
}

std::vector<std::string> Seeds() {
    return {"/a.jpg\nno finding\nid-1\n/b.jpg\n<b>finding</b>\x02 two lines\nid-2",
            "/quoted \"name\".jpg\n\\ and / and \t\x01\x1F\x7F\n",
            "\xE2\x80\xA8\xE2\x80\xA9\n\xF0\x9F\x98\x80\n\xED\xA0\x80\n\n!\n\xFF\xFE\n\n",
            "!hard & soft\n!<x>\n!!\nsame\nsame\nsame\nsame\nsame\nsame"};
}

}  // namespace

Target PluginTarget() {
    return {"plugin", Run, Seeds};
}

}  // namespace fuzz
