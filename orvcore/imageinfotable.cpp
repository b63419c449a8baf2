// SPDX-License-Identifier: Apache-2.0
#include "orvcore/imageinfotable.h"

#include <wx/datetime.h>
#include <wx/filename.h>
#include <wx/gdicmn.h>
#include <wx/log.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "orvcore/context.h"
#include "orvcore/imageinfotable_facts.h"
#include "orvcore/imageinfotable_private.h"
#include "orvcore/tablewriter.h"
#include "tolbase/hash.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"

namespace {

constexpr double MegabytesPerByte = 9.5367431640625e-07;

constexpr std::array<char const*, 30> ShortTitles = {
    "Filename",
    "Full Path",
    "Format",
    "Format Description",
    "Image Encoded Size",
    "Image Displayed Size",
    "Image Normalized Size",
    "Aspect Ratio",
    "Number of Channels",
    "BPP",
    "Thumbnail Size",
    "Thumbnail Normalized Size",
    "Preview Size",
    "Preview Normalized Size",
    "Exif rotate tag",
    "Number of Exif fields",
    "Number of MakerNotes fields",
    "Number of IPTC fields",
    "Number of XMP fields",
    "Number of Photoshop fields",
    "Number of ICC fields",
    "Exif Make",
    "Exif Model",
    "Exif Software",
    "Serial Number",
    "JPEG Quality",
    "JPEG QT is standard IJG",
    "JPEG QT Hash",
    "Jpeg Chroma Subsampling",
    "JPEG HT is standard IJG",
};

constexpr std::array<char const*, 12> ExtendedTitles = {
    "Exif DateTimeOriginal",
    "Exif CreateDate",
    "Exif ModifyDate",
    "File Size",
    "Last File Access",
    "File Creation",
    "Last File Modification",
    "MD5",
    "SHA1",
    "SHA256",
    "SHA384",
    "SHA512",
};

bool IsSizeRow(size_t row) {
    return (row >= RowEncodedSize && row <= RowNormalizedSize) ||
           (row >= RowThumbnailSize && row <= RowPreviewNormalizedSize);
}

Parameter MakeRow(size_t row, char const* title) {
    return IsSizeRow(row) ? CreateParameterImageResolution(title, "") : CreateParameterOutputString(title, "");
}

wxString TranslatedBool(bool value) {
    return OrvTranslate(ToString<bool>(value));
}

wxSize SizeOf(Image const& image) {
    return image.IsOk() ? wxSize(image.Width(), image.Height()) : wxSize(0, 0);
}

wxString TimeText(wxDateTime const& time) {
    return time.IsValid() ? time.Format("%Y:%m:%d %H:%M:%S") : wxString();
}

}  // namespace

wxString FormatTwoDecimals(double number) {
    std::array<char, 400> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, 2).ptr;
    return wxString::FromAscii(text.data(), static_cast<size_t>(end - text.data()));
}

ImageInfoTable::ImageInfoTable(OrvFileId fileId, bool extended)
    : OrvInfoTable(fileId), m_extended(extended), m_rules(MakeImageWarningRules()), m_rowMap(MakeImageWarningRowMap()) {
    for (size_t i = 0; i < ShortTitles.size(); ++i) m_parameters.push_back(MakeRow(i, ShortTitles[i]));
    if (!extended) return;
    for (char const* title : ExtendedTitles) m_parameters.push_back(CreateParameterOutputString(title, ""));
}

VecVecString ImageInfoTable::Evaluate() {
    return Evaluate(nullptr);
}

VecVecString ImageInfoTable::Evaluate(int* hardWarningCount) {
    m_parameters.Reset();
    for (ImageWarningRule& rule : m_rules) rule.Clear();
    LoadConfiguration();

    const wxString path = GetContext()->GetFilename(m_fileId);
    if (!path.empty()) EvaluateFile(path);

    if (hardWarningCount != nullptr) *hardWarningCount = 0;
    m_table.clear();
    for (size_t row = 0; row < m_parameters.size(); ++row) m_table.push_back(BuildRow(row, hardWarningCount));
    return m_table;
}

void ImageInfoTable::EvaluateFile(wxString const& path) {
    OrvContext* const context = GetContext();
    Facts facts;
    facts.path = path;
    facts.details = context->GetImageDetails(m_fileId);
    facts.image = context->GetImage(m_fileId);
    facts.thumbnail = context->GetImageThumbnail(m_fileId);
    facts.preview = context->GetImagePreview(m_fileId);
    // A short side of 0 gives what the division gives, and the row shows it.
    facts.aspectRatio =
        static_cast<double>(facts.details.NormalizedLongSide) / static_cast<double>(facts.details.NormalizedShortSide);
    facts.jpeg = context->GetImageJpegInfo(m_fileId);
    if (facts.jpeg.IsValid) SearchSignatures(facts);

    FillImageRows(facts);
    FillMetadataRows(facts);
    FillJpegRows(facts);
    if (m_extended) FillFileRows(facts);
    TestRules(facts);
}

VecVecString ImageInfoTable::Reset() {
    return OrvInfoTable::Reset();
}

void ImageInfoTable::SetText(size_t row, wxString const& text) {
    m_parameters[row].Set(boost::any(text));
}

void ImageInfoTable::SetNumber(size_t row, int number) {
    SetText(row, ToString<int>(number));
}

void ImageInfoTable::SetSize(size_t row, int width, int height) {
    m_parameters[row].Set(boost::any(wxSize(width, height)));
}

void ImageInfoTable::SetImageSize(size_t row, size_t normalizedRow, Image const& image) {
    const wxSize size = SizeOf(image);
    SetSize(row, size.x, size.y);
    SetSize(normalizedRow, std::max(size.x, size.y), std::min(size.x, size.y));
}

void ImageInfoTable::FillImageRows(Facts const& facts) {
    ImageDetailsExifTool const& details = facts.details;
    const wxSize displayed = SizeOf(facts.image);
    SetText(RowFilename, wxFileName(details.Filename).GetFullName());
    SetText(RowFullPath, facts.path);
    SetText(RowFormat, details.Format);
    SetText(RowFormatDescription, details.FormatDescription);
    SetSize(RowEncodedSize, details.EncodedWidth, details.EncodedHeight);
    SetSize(RowDisplayedSize, displayed.x, displayed.y);
    SetSize(RowNormalizedSize, details.NormalizedLongSide, details.NormalizedShortSide);
    SetText(RowAspectRatio, FormatTwoDecimals(facts.aspectRatio));
    SetNumber(RowChannels, details.Channels);
    SetNumber(RowBpp, details.BitsPerPixel);
    SetImageSize(RowThumbnailSize, RowThumbnailNormalizedSize, facts.thumbnail);
    SetImageSize(RowPreviewSize, RowPreviewNormalizedSize, facts.preview);
}

void ImageInfoTable::FillMetadataRows(Facts const& facts) {
    ImageDetailsExifTool const& details = facts.details;
    SetText(RowRotateTag, details.RotateTag);
    SetNumber(RowExifFields, details.ExifFieldCount);
    SetNumber(RowMakerNotesFields, details.MakerNotesFieldCount);
    SetNumber(RowIptcFields, details.IptcFieldCount);
    SetNumber(RowXmpFields, details.XmpFieldCount);
    SetNumber(RowPhotoshopFields, details.PhotoshopFieldCount);
    SetNumber(RowIccFields, details.IccFieldCount);
    SetText(RowMake, details.Make);
    SetText(RowModel, details.Model);
    SetText(RowSoftware, details.Software);
    SetText(RowSerialNumber, details.SerialNumber);
}

void ImageInfoTable::SearchSignatures(Facts& facts) const {
    const std::vector<JpegSignature> signatures = GetContext()->GetListOfSignaturesInUserQtDatabase();
    OrvSignatureSearch& internal = facts.internal;
    OrvSignatureSearch& user = facts.user;
    facts.jpeg.FindSimilarSignaturesInInternalDatabase(internal.softwareFound, internal.cameraFound, internal.cameras,
                                                       internal.software, internal.standard);
    facts.jpeg.FindSimilarSignaturesInUserDatabase(signatures, user.softwareFound, user.cameraFound, user.cameras,
                                                   user.software, user.standard);
}

void ImageInfoTable::FillJpegRows(Facts const& facts) {
    JpegInfo const& jpeg = facts.jpeg;
    if (!jpeg.IsValid) return;
    if (!jpeg.QualityEstimates.empty()) SetNumber(RowJpegQuality, jpeg.QualityEstimates[0]);
    SetText(RowQtIsStandard, TranslatedBool(!facts.internal.standard.empty()));
    SetText(RowQtHash, jpeg.QtHash);
    SetText(RowChromaSubsampling, jpeg.ChromaSubsampling);
    SetText(RowHtIsStandard, TranslatedBool(facts.HasStandardHuffmanTables()));
}

void ImageInfoTable::FillFileRows(Facts const& facts) {
    SetText(RowDateTimeOriginal, facts.details.DateTimeOriginal);
    SetText(RowCreateDate, facts.details.CreateDate);
    SetText(RowModifyDate, facts.details.ModifyDate);

    // The file may have gone since it was loaded: what can't be read is left out rather than made up, and the table
    // itself tells it, so wxWidgets need not.
    const wxLogNull quiet;
    const wxFileName file(facts.path);
    if (!file.FileExists()) return;
    const wxULongLong size = file.GetSize();
    if (size != wxInvalidSize) {
        const uint64_t bytes = size.GetValue();
        SetText(RowFileSize, ToString<double>(static_cast<double>(bytes) * MegabytesPerByte) + " MB (" +
                                 ToString<uint64_t>(bytes) + " bytes)");
    }
    wxDateTime access;
    wxDateTime modification;
    wxDateTime creation;
    if (file.GetTimes(&access, &modification, &creation)) {
        SetText(RowLastAccess, TimeText(access));
        SetText(RowCreation, TimeText(creation));
        SetText(RowLastModification, TimeText(modification));
    }
    FillHashRows(facts.path);
}

void ImageInfoTable::FillHashRows(wxString const& path) {
    const std::vector<wxString> hashes = TcvCalcHashesFromFile(path, {MD5, SHA1, SHA256, SHA384, SHA512});
    for (size_t i = 0; i < hashes.size(); ++i) SetText(RowMd5 + i, hashes[i]);
}

VecString ImageInfoTable::BuildRow(size_t row, int* hardWarningCount) const {
    VecString messages;
    bool hard = false;
    for (const int index : m_rowMap[row]) {
        ImageWarningRule const& rule = m_rules[static_cast<size_t>(index)];
        if (!rule.Evaluated || rule.Passed) continue;
        messages.push_back(rule.Message());
        if (rule.Severity != 1) continue;
        hard = true;
        if (hardWarningCount != nullptr) ++*hardWarningCount;
    }
    wxString warnings = CatVecString(messages, "\n");
    if (!warnings.empty()) warnings = (hard ? OrvMarkerHard : OrvMarkerSoft) + warnings;
    return {m_parameters[row].Name(), m_parameters[row].ToText(), warnings};
}
