// SPDX-License-Identifier: Apache-2.0
// The main table: what is known of the file in a slot, row by row, and the warnings that the rules raise on each row.
//
// Threading: Evaluate reads the context's slots without a lock; it runs on the worker thread or on a batch's thread
// while no load runs. Ownership: rules, row map and configuration are the object's own, copied and moved member-wise.
#pragma once

#include <cstdint>
#include <vector>

#include "orvcore/imagewarningrule.h"
#include "orvcore/infotable.h"
#include "tolbase/export.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"

class ORV_API ImageInfoTable : public OrvInfoTable {
public:
    // The extended form has 42 rows: dates, file size, file times and hashes behind the 30 of the short one.
    ImageInfoTable(OrvFileId fileId, bool extended);

    // Rows of three cells: name, value, warnings. Rules that are hard and failed in a visible row are counted into
    // `hardWarningCount` unless it is null. In the extended form the file on disk is read at this time; what can't be
    // read leaves its row at the default text.
    VecVecString Evaluate(int* hardWarningCount);
    VecVecString Evaluate() override;

    // Rows of two cells with the default texts.
    VecVecString Reset() override;

    // Takes the thresholds and lists from the options group "File Format" of the context. Called by each Evaluate. The
    // aspect ratio whitelist is only ever added to.
    void LoadConfiguration();

    // Adds the group "File Format" to the context's options; only the first call of the process does.
    static void RegisterProgramOptions();

    // Index of the group "File Format" among the option groups; -1 before RegisterProgramOptions.
    static int GetOptionGroupId() { return m_optionGroupId; }

    bool IsExtended() const { return m_extended; }

    // The 27 rules with the results of the last Evaluate: one that is not Evaluated had nothing to say, one that is
    // has Passed or not.
    std::vector<ImageWarningRule> const& GetRules() const { return m_rules; }

    // For each of 42 rows, the indices into GetRules of the rules shown in it, in display order. Rows beyond the
    // form's own are neither shown nor counted.
    std::vector<std::vector<int>> const& GetRowRules() const { return m_rowMap; }

private:
    struct CompressionVerdict {
        bool onlySoftware = false;
        bool unknown = true;
        bool modelFound = false;
    };
    struct Facts;

    void EvaluateFile(wxString const& path);
    void SearchSignatures(Facts& facts) const;
    void SetText(size_t row, wxString const& text);
    void SetNumber(size_t row, int number);
    void SetSize(size_t row, int width, int height);
    void SetImageSize(size_t row, size_t normalizedRow, Image const& image);
    void FillImageRows(Facts const& facts);
    void FillMetadataRows(Facts const& facts);
    void FillJpegRows(Facts const& facts);
    void FillFileRows(Facts const& facts);
    void FillHashRows(wxString const& path);

    void TestRules(Facts const& facts);
    void TestSizes(Facts const& facts);
    void TestMetadata(Facts const& facts);
    void TestCompression(Facts const& facts);
    CompressionVerdict GetCompressionVerdict(Facts const& facts) const;

    VecString BuildRow(size_t row, int* hardWarningCount) const;

    bool m_extended;
    std::vector<ImageWarningRule> m_rules;
    std::vector<std::vector<int>> m_rowMap;

    int64_t m_minFileSize = 0;
    int64_t m_maxFileSize = 0;
    int m_minPixelSize = 0;
    int m_maxPixelSize = 0;
    int m_widthMultiple = 0;
    int m_heightMultiple = 0;
    int m_expectedBpp = 0;
    int m_expectedChannels = 0;
    bool m_warnSoftwareQt = false;
    bool m_warnCameraNotFound = false;
    bool m_warnQtNotFound = false;
    VecString m_softwareKeywords;
    VecString m_formatWhitelist;
    VecString m_iccModels;
    std::vector<double> m_aspectWhitelist;

    static int m_optionGroupId;
};
