// SPDX-License-Identifier: Apache-2.0
#include "orvcore/batchtable.h"

#include "orvcore/batchslots.h"
#include "orvcore/context.h"
#include "orvcore/imageinfotable_private.h"
#include "tolbase/file.h"
#include "tolbase/parser.h"
#include "tolbase/progress.h"

namespace {

// Rows whose differences count: those in front name the file, those behind differ between any two files.
constexpr size_t FirstComparedRow = 2;
constexpr size_t LastComparedRow = 29;

wxString NumberText(size_t number) {
    return ToString<uint64_t>(number);
}

wxString ImageCell(size_t index) {
    return OrvMarkerImage + NumberText(index);
}

wxString const& CellOf(VecString const& row, size_t column) {
    static const wxString none;
    return column < row.size() ? row[column] : none;
}

// The cells of an empty slot's row that tell which file it stands for; `first` is the place of the table's first row.
void NameFile(VecString& row, size_t first, wxString const& file) {
    if (row.size() <= first + RowFullPath) return;
    row[first + RowFilename] = GetFilenameNoPath(file);
    row[first + RowFullPath] = file;
}

}  // namespace

ImageInfoTableBatch::ImageInfoTableBatch() : ImageInfoTableBatch(true) {}

ImageInfoTableBatch::ImageInfoTableBatch(bool extended) : ImageInfoTable(Evidence, extended) {}

VecString ImageInfoTableBatch::GetHeader() const {
    VecString header = {"#Id", "Image"};
    for (Parameter const& parameter : m_parameters) header.push_back(parameter.Name());
    header.insert(header.end(), {"Warnings (hard)", "Warnings (soft)"});
    return header;
}

VecString ImageInfoTableBatch::EvaluateEvidence(size_t number, bool& hard) {
    // Each evaluation adds to what the table has learnt from the options; over thousands of files that would be felt.
    static_cast<ImageInfoTable&>(*this) = ImageInfoTable(Evidence, IsExtended());
    ImageInfoTable::Evaluate();
    GetContext()->AddThumbnail(GetContext()->GetImageThumbnail(Evidence));

    VecString row = {NumberText(number), ImageCell(number - 1)};
    size_t hardCount = 0;
    size_t softCount = 0;
    for (VecString const& line : m_table) {
        wxString value = CellOf(line, 1);
        wxString const& warning = CellOf(line, 2);
        if (!warning.empty() && value.empty()) value = "- empty -";
        if (warning.StartsWith(OrvMarkerHard)) {
            value.Prepend(OrvMarkerHard);
            ++hardCount;
        } else if (warning.StartsWith(OrvMarkerSoft)) {
            value.Prepend(OrvMarkerSoft);
            ++softCount;
        }
        row.push_back(value);
    }
    if (hardCount > 0 || softCount > 0) row[0].Prepend(hardCount > 0 ? OrvMarkerHard : OrvMarkerSoft);
    row.push_back(NumberText(hardCount));
    row.push_back(NumberText(softCount));
    hard = hardCount > 0;
    return row;
}

VecString ImageInfoTableBatch::EvaluateFile(wxString const& file, size_t number, wxString const& cleanFolder,
                                            wxString const& flaggedFolder) {
    const wxString reason = OrvLoadAlone(file, Evidence);
    bool hard = false;
    VecString row = EvaluateEvidence(number, hard);
    if (!reason.empty()) {
        // Nothing is known of the file, so nothing may call it clean.
        m_failures.emplace_back(file, reason);
        row[0] = OrvMarkerHard + NumberText(number);
        NameFile(row, 2, file);
        return row;
    }
    wxString const& target = hard ? flaggedFolder : cleanFolder;
    if (!target.empty()) {
        OrvEmptySlot(Evidence);
        MoveFile(file, target);
    }
    return row;
}

void ImageInfoTableBatch::MoveFile(wxString const& file, wxString const& folder) {
    wxString movedTo;
    if (!MoveFileToFolder(file, folder, &movedTo)) {
        m_notMoved.push_back(file);
    } else if (movedTo != file) {
        m_moved.emplace_back(file, movedTo);
    }
}

VecVecString ImageInfoTableBatch::Evaluate(VecString const& files, wxString const& cleanFolder,
                                           wxString const& flaggedFolder) {
    GetContext()->ClearThumbnails();
    tcvInitProgress2(OrvProgressTotal(files.size()));
    tcvSetProgressString2(OrvProcessingFilesText(files.size()));
    m_failures.clear();
    m_moved.clear();
    m_notMoved.clear();
    OrvSlotKeeper slots;
    VecVecString table;
    for (size_t i = 0; i < files.size(); ++i) {
        if (tcvSetProgress2(-1) == 0) break;
        tcvSetProgressString(OrvProcessingFileText(files[i]));
        OrvPrefetchNext(files, i);
        if (table.empty()) table.push_back(GetHeader());
        table.push_back(EvaluateFile(files[i], i + 1, cleanFolder, flaggedFolder));
    }
    tcvDeinitProgress2();
    slots.Restore();
    return table;
}

ImageInfoTableMultiComparison::ImageInfoTableMultiComparison() : ImageInfoTableMultiComparison(true) {}

ImageInfoTableMultiComparison::ImageInfoTableMultiComparison(bool extended)
    : ImageInfoTable(Evidence, extended), m_second(Reference, extended) {}

VecVecString ImageInfoTableMultiComparison::Start() {
    m_standard = ImageInfoTable::Evaluate();
    VecString header = {"#Id", "Image", "Differences"};
    VecString row = {"0", ImageCell(0), "0"};
    for (VecString const& line : m_standard) {
        header.push_back(CellOf(line, 0));
        row.push_back(CellOf(line, 1));
    }
    GetContext()->AddThumbnail(GetContext()->GetImageThumbnail(Evidence));
    return {header, row};
}

VecString ImageInfoTableMultiComparison::EvaluateReference(size_t number) {
    m_second = ImageInfoTable(Reference, IsExtended());
    GetContext()->AddThumbnail(GetContext()->GetImageThumbnail(Reference));
    const VecVecString table = m_second.Evaluate();
    VecString row = {NumberText(number), ImageCell(number), wxString()};
    size_t differences = 0;
    for (size_t i = 0; i < table.size(); ++i) {
        wxString value = CellOf(table[i], 1);
        const bool compared = i >= FirstComparedRow && i <= LastComparedRow && i < m_standard.size();
        if (compared && value != CellOf(m_standard[i], 1)) {
            value.Prepend(OrvMarkerHard);
            ++differences;
        }
        row.push_back(value);
    }
    row[2] = NumberText(differences);
    return row;
}

VecVecString ImageInfoTableMultiComparison::Evaluate(VecString const& files) {
    GetContext()->ClearThumbnails();
    VecVecString table = Start();
    m_failures.clear();
    OrvSlotKeeper slots;
    const wxString evidence = GetContext()->GetFilename(Evidence);
    tcvInitProgress2(OrvProgressTotal(files.size()));
    tcvSetProgressString2(OrvProcessingFilesText(files.size()));
    size_t number = 0;
    for (size_t i = 0; i < files.size(); ++i) {
        if (tcvSetProgress2(-1) == 0) break;
        if (files[i] == evidence) continue;
        ++number;
        tcvSetProgressString(OrvProcessingFileText(files[i]));
        OrvPrefetchNext(files, i);
        const wxString reason = OrvLoadAlone(files[i], Reference);
        table.push_back(EvaluateReference(number));
        if (reason.empty()) continue;
        m_failures.emplace_back(files[i], reason);
        NameFile(table.back(), 3, files[i]);
    }
    tcvDeinitProgress2();
    slots.Restore();
    return table;
}
