// SPDX-License-Identifier: Apache-2.0
#include "filters/jpegstructure.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <utility>

#include "orvcore/context.h"
#include "orvcore/jpeginfotable.h"
#include "orvcore/tablewriter.h"
#include "tolbase/file.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"
#include "tolimage/jpeginfo.h"
#include "tolimage/jpegmarkers.h"

namespace {

// More rows tell a reader nothing.
constexpr size_t GreatestMarkerRows = 2000;
// So much of a segment is read to name it.
constexpr int64_t IdentifierBytes = 64;

constexpr int App0 = 0xE0;
constexpr int App15 = 0xEF;
constexpr int Com = 0xFE;
constexpr int Rst0 = 0xD0;
constexpr int Rst7 = 0xD7;

constexpr char const* MarkerTitle = "Marker ";
constexpr char const* ProblemTitle = "Problem";

wxString Number(int64_t number) {
    return ToString<int64_t>(number);
}

wxString Hexadecimal(int64_t number) {
    wxString text;
    for (; number != 0 || text.empty(); number >>= 4) text = wxString("0123456789ABCDEF"[number & 15]) + text;
    return "0x" + text;
}

void AddCodingRows(JpegInfo const& info, VecVecString& rows) {
    rows.push_back({"Coding Process", info.Process});
    rows.push_back({"Size", Number(info.Width) + "x" + Number(info.Height)});
    rows.push_back({"Bits per Sample", Number(info.Precision)});
    rows.push_back({"Components", Number(info.ComponentCount)});
    rows.push_back({"Scans", Number(info.ScanCount)});
    rows.push_back(
        {"Restart Interval", info.RestartInterval == 0 ? wxString("none") : Number(info.RestartInterval) + " MCUs"});
    rows.push_back({"End of Image", info.HasEndOfImage ? "present" : "missing"});
    rows.push_back({"Bytes Behind the End", Number(info.TrailerBytes)});
    rows.push_back({"Embedded JPEG Pictures", Number(info.EmbeddedImageCount)});
}

// Those rows of another table that tell something, between two indices.
void AddRowsOf(VecVecString const& table, size_t first, size_t last, VecVecString& rows) {
    for (size_t i = first; i < std::min(last, table.size()); ++i) {
        if (!table[i][1].empty()) rows.push_back(table[i]);
    }
}

// What a segment calls itself: the printable characters that it begins with.
wxString IdentifierOf(std::ifstream& file, JpegMarkerPos const& marker) {
    bool const isNamed = (marker.code >= App0 && marker.code <= App15) || marker.code == Com;
    int64_t const size = std::min(marker.length - 4, IdentifierBytes);
    if (!isNamed || size <= 0 || !file) return wxString();
    std::string bytes(static_cast<size_t>(size), '\0');
    file.seekg(marker.offset + 4);
    file.read(bytes.data(), size);
    auto const end =
        std::find_if(bytes.begin(), bytes.begin() + file.gcount(), [](char c) { return c < 0x20 || c == 0x7F; });
    file.clear();
    wxString const text = wxString::FromAscii(bytes.data(), static_cast<size_t>(end - bytes.begin()));
    return text.length() < 2 ? wxString() : " " + text;
}

std::vector<JpegMarker> MarkersToShow() {
    std::vector<JpegMarker> markers = InitJpegMarkers();
    // Restart markers come by the thousand; the interval tells all of them.
    markers.erase(std::remove_if(markers.begin(), markers.end(),
                                 [](JpegMarker const& marker) { return marker.code >= Rst0 && marker.code <= Rst7; }),
                  markers.end());
    return markers;
}

// The names in their order; equal neighbours are counted.
wxString OrderOf(VecString const& names) {
    VecString parts;
    for (size_t i = 0; i < names.size();) {
        size_t const start = i;
        while (i < names.size() && names[i] == names[start]) ++i;
        parts.push_back(i - start == 1 ? names[start] : names[start] + " x" + Number(static_cast<int64_t>(i - start)));
    }
    return CatVecString(parts, ", ");
}

void AddMarkerRows(wxString const& path, VecVecString& rows) {
    std::vector<JpegMarkerPos> const markers = FindJpegMarkers(path, MarkersToShow());
    std::ifstream file(PathToBytes(path), std::ios::binary);
    VecString names;
    for (JpegMarkerPos const& marker : markers) names.push_back(marker.name + IdentifierOf(file, marker));
    rows.push_back({"Order of Segments", OrderOf(names)});
    size_t const shown = std::min(markers.size(), GreatestMarkerRows);
    for (size_t i = 0; i < shown; ++i) {
        wxString value =
            names[i] + ", offset " + Number(markers[i].offset) + " (" + Hexadecimal(markers[i].offset) + ")";
        if (markers[i].length > 0) value += ", " + Number(markers[i].length) + " bytes";
        rows.push_back({MarkerTitle + Number(static_cast<int64_t>(i + 1)), value});
    }
    if (shown < markers.size()) {
        rows.push_back({"Further Markers", Number(static_cast<int64_t>(markers.size() - shown)) + " (not listed)"});
    }
}

bool IsPlace(wxString const& name) {
    return name.StartsWith(MarkerTitle);
}

// The rows of the other side that no row has taken yet, by name, in their order.
class WaitingRows {
public:
    explicit WaitingRows(VecVecString const& rows) : m_rows(rows), m_taken(rows.size(), false) {
        for (size_t i = 0; i < rows.size(); ++i) m_places.emplace(rows[i][0], i);
    }
    // The first row of that name, which is then taken; null if there is none.
    VecString const* Take(wxString const& name) {
        auto const found = m_places.lower_bound(name);
        if (found == m_places.end() || found->first != name) return nullptr;
        size_t const index = found->second;
        m_places.erase(found);
        m_taken[index] = true;
        return &m_rows[index];
    }
    VecVecString Rest() const {
        VecVecString rest;
        for (size_t i = 0; i < m_rows.size(); ++i) {
            if (!m_taken[i]) rest.push_back(m_rows[i]);
        }
        return rest;
    }

private:
    VecVecString const& m_rows;
    std::vector<bool> m_taken;
    std::multimap<wxString, size_t> m_places;
};

}  // namespace

OrvJpegStructureTable::OrvJpegStructureTable(OrvFileId fileId) : OrvInfoTable(fileId) {}

VecVecString OrvJpegStructureTable::Evaluate() {
    m_table.clear();
    OrvContext const* context = GetContext();
    wxString const path = context->GetFilename(m_fileId);
    JpegInfo const info = context->GetImageJpegInfo(m_fileId);
    if (path.empty() || !info.IsValid) return m_table;
    VecVecString rows;
    AddCodingRows(info, rows);
    AddRowsOf(JpegInfoTable(m_fileId).Evaluate(), 4, 12, rows);
    AddRowsOf(JpegInfoTable2(m_fileId).Evaluate(), 0, 7, rows);
    for (wxString const& problem : info.Problems) rows.push_back({ProblemTitle, OrvMarkerHard + problem});
    AddMarkerRows(path, rows);
    m_table = std::move(rows);
    return m_table;
}

VecVecString OrvJpegStructureTable::Reset() {
    m_table.clear();
    return m_table;
}

VecVecString OrvJpegStructureTable::GenerateTable() {
    return m_table;
}

OrvJpegStructureComparison::OrvJpegStructureComparison()
    : OrvInfoTableComparison(new OrvJpegStructureTable(Evidence), new OrvJpegStructureTable(Reference)) {}

VecVecString OrvJpegStructureComparison::GenerateTable() {
    VecVecString const& evidence = m_evidence->GetTable();
    VecVecString const& reference = m_reference->GetTable();
    bool const hasBoth = !evidence.empty() && !reference.empty();
    VecVecString result = {{"#Id", "Name", "Evidence Image Value", "Reference Image Value", "Comparison"}};
    auto const add = [&](wxString const& name, wxString const& first, wxString const& second, wxString const& mark) {
        bool const isMarked = hasBoth && !mark.empty() && !IsPlace(name);
        result.push_back(
            {ToString<uint64_t>(result.size()), name, first, second, isMarked ? OrvTranslate(mark) : wxString()});
    };
    WaitingRows waiting(reference);
    for (VecString const& row : evidence) {
        VecString const* other = waiting.Take(row[0]);
        if (other == nullptr) {
            add(row[0], row[1], wxString(), "!Only in Evidence");
        } else {
            add(row[0], row[1], (*other)[1], row[1] == (*other)[1] ? "" : "!Different");
        }
    }
    for (VecString const& row : waiting.Rest()) add(row[0], wxString(), row[1], "!Only in Reference");
    return result;
}

OrvFilterJpegStructure::OrvFilterJpegStructure()
    : OrvFilterTable("JPEG Structure", std::make_unique<OrvJpegStructureComparison>()) {
    m_onlyForJpeg = true;
    m_description =
        "Lists how the JPEG is built: coding, quantisation and Huffman tables, the order of the segments and the place "
        "of each marker, and what is wrong with the structure.";
}

OrvFilter::FilterStatus OrvFilterJpegStructure::GetVerdict(VecVecString const& rows) const {
    bool const hasProblem = std::any_of(rows.begin(), rows.end(),
                                        [](VecString const& row) { return row[0] == ProblemTitle && !row[1].empty(); });
    return hasProblem ? FilterStatus::Warning : FilterStatus::Ok;
}
