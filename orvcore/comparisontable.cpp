// SPDX-License-Identifier: Apache-2.0
#include "orvcore/comparisontable.h"

#include <wx/debug.h>

#include <algorithm>

#include "orvcore/context.h"
#include "orvcore/exifinfotable.h"
#include "orvcore/imageinfotable.h"
#include "orvcore/jpegdimplestable.h"
#include "orvcore/jpeginfotable.h"
#include "orvcore/tablewriter.h"
#include "tolbase/parser.h"

namespace {

// Rows of the image information that two different photographs of one camera would share.
constexpr size_t FirstHardRow = 2;
constexpr size_t LastHardRow = 29;

wxString Cell(VecVecString const& table, size_t row, size_t column) {
    return row < table.size() && column < table[row].size() ? table[row][column] : wxString();
}

wxString RowNumber(size_t number) {
    return ToString<int>(static_cast<int>(number));
}

// The text is looked up with its place for the marker in it.
wxString DifferentText(char const* marker) {
    wxString text = OrvTranslate("%sDifferent");
    text.Replace("%s", marker, false);
    return text;
}

// Row of the Reference whose name is this, or its end.
VecVecString::iterator FindName(VecVecString& rows, wxString const& name) {
    return std::find_if(rows.begin(), rows.end(),
                        [&name](VecString const& row) { return row.size() >= 2 && row[0] == name; });
}

VecVecString FourColumnHeader() {
    return {{"#Id", "Name", "Evidence Image Value", "Reference Image Value", "Comparison"}};
}

}  // namespace

OrvInfoTableComparison::OrvInfoTableComparison(OrvInfoTable* evidence, OrvInfoTable* reference)
    : m_evidence(evidence), m_reference(reference) {
    m_evidence->Reset();
    m_reference->Reset();
}

OrvInfoTableComparison::~OrvInfoTableComparison() = default;

VecVecString OrvInfoTableComparison::Evaluate(OrvFileId id) {
    if (id == Evidence) m_evidence->Evaluate();
    if (id == Reference) m_reference->Evaluate();
    return GenerateTable();
}

VecVecString OrvInfoTableComparison::Reset(OrvFileId id) {
    if (id == Evidence) m_evidence->Reset();
    if (id == Reference) m_reference->Reset();
    return GenerateTable();
}

VecVecString OrvInfoTableComparison::GenerateTable() {
    const bool hasEvidence = GetContext()->HasFile(Evidence);
    const bool hasReference = GetContext()->HasFile(Reference);
    VecVecString const& evidence = m_evidence->GetTable();
    VecVecString const& reference = m_reference->GetTable();
    VecVecString result = FourColumnHeader();
    for (size_t i = 0; i < evidence.size(); ++i) {
        const wxString first = hasEvidence ? Cell(evidence, i, 1) : wxString();
        const wxString second = hasReference ? Cell(reference, i, 1) : wxString();
        const bool different = hasEvidence && hasReference && first != second;
        result.push_back({RowNumber(i + 1), Cell(evidence, i, 0), first, second,
                          different ? DifferentText(OrvMarkerHard) : wxString()});
    }
    return result;
}

ExifInfoTableComparison::ExifInfoTableComparison(bool useDetails)
    : OrvInfoTableComparison(new ExifInfoTable(Evidence, useDetails), new ExifInfoTable(Reference, useDetails)) {}

VecVecString ExifInfoTableComparison::GenerateTable() {
    const bool hasEvidence = GetContext()->HasFile(Evidence);
    const bool hasReference = GetContext()->HasFile(Reference);
    VecVecString const& evidence = m_evidence->GetTable();
    VecVecString ref = m_reference->GetTable();
    // A table that outlives its file says nothing of a difference.
    const bool hasBoth = hasEvidence && hasReference;
    VecVecString result = FourColumnHeader();
    for (size_t i = 0; i < evidence.size(); ++i) {
        const wxString name = Cell(evidence, i, 0);
        const wxString value = hasEvidence ? Cell(evidence, i, 1) : wxString();
        wxString referenceValue;
        wxString comparison;
        if (hasReference) {
            const auto found = FindName(ref, name);
            if (found != ref.end()) {
                referenceValue = (*found)[1];
                [[maybe_unused]] const size_t s1 = ref.size();
                ref.erase(found);
                wxASSERT(ref.size() == s1 - 1);
                if (hasBoth && value != referenceValue) comparison = OrvTranslate("?Different");
            } else if (hasBoth) {
                comparison = OrvTranslate("!Only in Evidence");
            }
        }
        result.push_back({RowNumber(i + 1), name, value, referenceValue, comparison});
    }
    // The numbers go on from the last index, which counts as 0 where there was no row: the first is then 2.
    const size_t lastIndex = evidence.empty() ? 0 : evidence.size() - 1;
    const wxString onlyReference = hasBoth ? OrvTranslate("!Only in Reference") : wxString();
    for (size_t k = 0; k < ref.size(); ++k) {
        const wxString value = hasReference ? Cell(ref, k, 1) : wxString();
        result.push_back({RowNumber(lastIndex + 2 + k), Cell(ref, k, 0), wxString(), value, onlyReference});
    }
    return result;
}

ImageInfoTableComparison::ImageInfoTableComparison()
    : OrvInfoTableComparison(new ImageInfoTable(Evidence, true), new ImageInfoTable(Reference, true)) {}

VecVecString ImageInfoTableComparison::Evaluate(OrvFileId id, int* hardWarningCount) {
    if (id == Evidence) static_cast<ImageInfoTable&>(*m_evidence).Evaluate(hardWarningCount);
    if (id == Reference) m_reference->Evaluate();
    return GenerateTable();
}

VecVecString ImageInfoTableComparison::GenerateTable() {
    VecVecString const& evidence = m_evidence->GetTable();
    VecVecString const& reference = m_reference->GetTable();
    // Without a file name the side was reset after the load; its values are defaults.
    const bool hasEvidence = GetContext()->HasFile(Evidence) && !Cell(evidence, 0, 1).empty();
    const bool hasReference = GetContext()->HasFile(Reference) && !Cell(reference, 0, 1).empty();
    const auto cell = [](bool has, VecVecString const& table, size_t row, size_t column) {
        return has ? Cell(table, row, column) : wxString();
    };
    VecVecString result = {{"#Id", "Name", "Evidence Image Value", "Evidence Image Warnings", "Reference Image Value",
                            "Reference Image Warnings", "Comparison"}};
    for (size_t i = 0; i < evidence.size(); ++i) {
        const wxString first = cell(hasEvidence, evidence, i, 1);
        const wxString second = cell(hasReference, reference, i, 1);
        wxString comparison;
        if (hasEvidence && hasReference && first != second) {
            comparison = DifferentText(i >= FirstHardRow && i <= LastHardRow ? OrvMarkerHard : "");
        }
        result.push_back({RowNumber(i + 1), Cell(evidence, i, 0), first, cell(hasEvidence, evidence, i, 2), second,
                          cell(hasReference, reference, i, 2), comparison});
    }
    return result;
}

JpegInfoTableComparison::JpegInfoTableComparison()
    : OrvInfoTableComparison(new JpegInfoTable(Evidence), new JpegInfoTable(Reference)) {}

JpegInfoTableComparison2::JpegInfoTableComparison2()
    : OrvInfoTableComparison(new JpegInfoTable2(Evidence), new JpegInfoTable2(Reference)) {}

JpegDimplesGlobalTableComparison::JpegDimplesGlobalTableComparison()
    : OrvInfoTableComparison(new JpegDimplesGlobalTable(Evidence), new JpegDimplesGlobalTable(Reference)) {}
