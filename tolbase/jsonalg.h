// SPDX-License-Identifier: Apache-2.0
// The answers to the Griffeye plug-in as JSON texts. The layouts are written down in
// docs/schema/plugin-analysis.schema.json and docs/schema/plugin-batch.schema.json.
//
// Both are arrays of objects in the order of the maps' keys; every text gives valid JSON: control characters are
// escaped, and what is no character (half of a surrogate pair) becomes U+FFFD. No state: any thread. Ownership: plain
// values.
#pragma once
#include <wx/string.h>

#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "tolbase/export.h"

class ORV_API TolJsonAlg {
public:
    // What a batch found for one file.
    struct GriffeyeOrvBatchReport {
        wxString text;
        int severity = 0;  // 0 nothing, 1 only the file-format filter warned, 2 another one did
        wxString identifier;
    };
    // By the file's path.
    using GriffeyeOrvBatchReportsMap = std::map<wxString, GriffeyeOrvBatchReport>;
    // Whether the file is without warnings, its identifier, the report text.
    using GriffeyeOrvAnalysisRow = std::tuple<bool, wxString, wxString>;

    // What stands in front of the report's path in a batch's report text.
    static const wxString GriffeyeOrvReportMarker;

    // [{"path": "...", "identifier": "...", "severity": 0, "text": "..."}, ...]
    static wxString GetGriffeyeOrvBatchAsJSONString(const GriffeyeOrvBatchReportsMap& reports);

    // [{"path": "...", "identifier": "...", "no_warnings": true, "text": "..."}, ...]
    static wxString GetGriffeyeOrvFFAnalysisAsJSONString(const std::map<wxString, GriffeyeOrvAnalysisRow>& rows) {
        return AnalysisToJson(rows);
    }
    // The same for a map of rows that derive from such a tuple.
    template <class Row>
    static wxString GetGriffeyeOrvFFAnalysisAsJSONString(const std::map<wxString, Row>& rows) {
        return AnalysisToJson(rows);
    }

private:
    // Objects, appended one by one.
    class Array {
    public:
        void Add(const wxString& path, const wxString& identifier, const char* name, const char* value,
                 const wxString& text);
        wxString Close();

    private:
        std::string m_json = "[";
    };

    static void AddRow(Array& array, const wxString& path, const GriffeyeOrvAnalysisRow& row);
    static wxString Finish(Array& array);

    template <class Map>
    static wxString AnalysisToJson(const Map& rows) {
        Array array;
        for (const auto& [path, row] : rows) AddRow(array, path, row);
        return Finish(array);
    }
};

using GriffeyeOrvBatchReportsMap = TolJsonAlg::GriffeyeOrvBatchReportsMap;
