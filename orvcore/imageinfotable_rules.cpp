// SPDX-License-Identifier: Apache-2.0
// The rule list, which rows show which rule, and the tests.
#include <wx/translation.h>

#include <algorithm>

#include "orvcore/imageinfotable_facts.h"
#include "orvcore/imageinfotable_private.h"

namespace {

constexpr int Hard = 1;
constexpr int Soft = 0;

// Places in the rule list.
enum RuleIndex : size_t {
    FileSizeSmall = 0,
    FileSizeBig = 1,
    ResolutionLow = 2,
    ResolutionHigh = 3,
    OddWidth = 4,
    OddHeight = 5,
    UnknownResolution = 6,
    BitsPerPixel = 7,
    Channels = 8,
    OddAspectRatio = 9,
    MakeMissing = 11,
    ModelMissing = 12,
    EditingSoftware = 13,
    UnexpectedIcc = 14,
    UnusualFormat = 15,
    CreateDateDiffers = 16,
    ModifyDateDiffers = 17,
    OnlySoftware = 21,
    UnknownSignature = 22,
    OtherCamera = 23,
    NoSubsampling = 24,
    HuffmanTables = 25,
    ThumbnailMissing = 26
};

// A camera of the database reads "make,model,quality"; makes may hold commas.
bool IsEntryOf(wxString const& entry, wxString const& makeAndModel) {
    wxString rest;
    return entry.Lower().StartsWith(makeAndModel, &rest) && (rest.empty() || rest.StartsWith(","));
}

bool HoldsCamera(VecString const& cameras, wxString const& make, wxString const& model) {
    const wxString makeAndModel = make.Lower() + "," + model.Lower();
    return std::any_of(cameras.begin(), cameras.end(),
                       [&makeAndModel](wxString const& entry) { return IsEntryOf(entry, makeAndModel); });
}

}  // namespace

std::vector<ImageWarningRule> MakeImageWarningRules() {
    return {
        {RuleGreaterEqual, Soft, wxTRANSLATE("File Size is small")},
        {RuleLessEqual, Soft, wxTRANSLATE("File Size is big")},
        {RuleGreaterEqual, Soft, wxTRANSLATE("Resolution is low")},
        {RuleLessEqual, Soft, wxTRANSLATE("Resolution is high")},
        {RuleMultipleOf, Hard, wxTRANSLATE("Odd width")},
        {RuleMultipleOf, Hard, wxTRANSLATE("Odd height")},
        {RuleKnownResolution, Hard, wxTRANSLATE("Unkown resolution for this device")},
        {RuleEqual, Hard, wxTRANSLATE("BPP"), wxTRANSLATE("Bits per pixel are not")},
        {RuleEqual, Hard, wxTRANSLATE("Channels are not")},
        {RuleAspectRatio, Hard, wxTRANSLATE("Odd aspect ratio")},
        {RulePresent, Hard, wxTRANSLATE("EXIF Main Info is is missing")},
        {RulePresent, Hard, wxTRANSLATE("EXIF Make is missing")},
        {RulePresent, Hard, wxTRANSLATE("EXIF Model is missing")},
        {RuleExcludedWords, Hard, wxTRANSLATE("EXIF Software is an editing application")},
        {RuleEqual, Hard, wxTRANSLATE("ICC Metadata not expected for this model")},
        {RuleRequiredWords, Hard, wxTRANSLATE("Format is not a standard one")},
        {RuleSameDate, Hard, wxTRANSLATE("EXIF CreateDate differs significantly from Exif DateTimeOriginal")},
        {RuleSameDate, Hard, wxTRANSLATE("EXIF ModifyDate differs significantly from Exif DateTimeOriginal")},
        {RuleEqual, Soft, wxTRANSLATE("MAC Last Modification is different than Exif ModifyDate")},
        {RuleEqual, Soft, wxTRANSLATE("MAC Last Modification is different than Exif DateTimeOriginal")},
        {RuleEqual, Soft, wxTRANSLATE("MAC Last Modification is different than Exif CreateDate")},
        {RuleEqualSilent, Hard, wxTRANSLATE("Compression signature is compatible only with software")},
        {RuleEqualSilent, Soft, wxTRANSLATE("Compression signature is incompatible, database is incomplete")},
        {RuleEqualSilent, Soft, wxTRANSLATE("Compression signature is incompatible with the actual camera make-model")},
        {RuleNotContains, Hard, wxTRANSLATE("No chroma subsampling")},
        {RuleEqual, Hard, wxTRANSLATE("Huffman tables are not IJG standard")},
        {RulePresent, Hard, wxTRANSLATE("Thumbnail is missing")},
    };
}

std::vector<std::vector<int>> MakeImageWarningRowMap() {
    std::vector<std::vector<int>> map(ImageRowCountExtended);
    map[RowFormat] = {UnusualFormat};
    map[RowEncodedSize] = {ResolutionLow, ResolutionHigh, OddWidth, OddHeight, UnknownResolution};
    map[RowAspectRatio] = {OddAspectRatio};
    map[RowChannels] = {Channels};
    map[RowBpp] = {BitsPerPixel};
    map[RowThumbnailSize] = {ThumbnailMissing};
    map[RowIccFields] = {UnexpectedIcc};
    map[RowMake] = {MakeMissing};
    map[RowModel] = {ModelMissing};
    map[RowSoftware] = {EditingSoftware};
    map[RowQtHash] = {OnlySoftware, UnknownSignature, OtherCamera};
    map[RowChromaSubsampling] = {NoSubsampling};
    map[RowHtIsStandard] = {HuffmanTables};
    map[RowCreateDate] = {CreateDateDiffers};
    map[RowModifyDate] = {ModifyDateDiffers};
    map[RowFileSize] = {FileSizeSmall, FileSizeBig};
    return map;
}

void ImageInfoTable::TestRules(Facts const& facts) {
    TestSizes(facts);
    TestMetadata(facts);
    TestCompression(facts);
    std::vector<Image> thumbnails;
    if (facts.thumbnail.IsOk()) thumbnails.push_back(facts.thumbnail);
    m_rules[ThumbnailMissing].TestPresence(thumbnails);
}

void ImageInfoTable::TestSizes(Facts const& facts) {
    ImageDetailsExifTool const& details = facts.details;
    m_rules[FileSizeSmall].Test<int64_t>(details.FileSize, m_minFileSize);
    m_rules[FileSizeBig].Test<int64_t>(details.FileSize, m_maxFileSize);
    m_rules[ResolutionLow].Test<int>(details.NormalizedShortSide, m_minPixelSize);
    m_rules[ResolutionHigh].Test<int>(details.NormalizedLongSide, m_maxPixelSize);
    m_rules[OddWidth].TestMultiple(details.EncodedWidth, m_widthMultiple);
    m_rules[OddHeight].TestMultiple(details.EncodedHeight, m_heightMultiple);
    m_rules[UnknownResolution].TestResolution(details.Make, details.Model,
                                              Resolution{details.NormalizedLongSide, details.NormalizedShortSide});
    m_rules[BitsPerPixel].Test<int>(details.BitsPerPixel, m_expectedBpp);
    m_rules[Channels].Test<int>(details.Channels, m_expectedChannels);
}

void ImageInfoTable::TestMetadata(Facts const& facts) {
    ImageDetailsExifTool const& details = facts.details;
    m_rules[MakeMissing].TestTextPresence(details.Make);
    m_rules[ModelMissing].TestTextPresence(details.Model);
    m_rules[EditingSoftware].TestWords(details.Software, m_softwareKeywords);
    m_rules[UnusualFormat].TestWords(details.Format, m_formatWhitelist);
    m_rules[OddAspectRatio].TestAspectRatio(facts.aspectRatio, m_aspectWhitelist);

    ImageWarningRule writesNoIcc(RuleExcludedWords, Soft, wxString());
    writesNoIcc.TestWords(details.Model.Lower(), m_iccModels);
    if (writesNoIcc.Passed) m_rules[UnexpectedIcc].Test<int>(details.IccFieldCount, 0);

    m_rules[CreateDateDiffers].Test<wxString>(details.CreateDate, details.DateTimeOriginal);
    m_rules[ModifyDateDiffers].Test<wxString>(details.DateTimeOriginal, details.ModifyDate);
}

ImageInfoTable::CompressionVerdict ImageInfoTable::GetCompressionVerdict(Facts const& facts) const {
    const bool cameraFound = facts.internal.cameraFound || facts.user.cameraFound;
    const bool softwareFound = facts.internal.softwareFound || facts.user.softwareFound;
    CompressionVerdict verdict;
    verdict.onlySoftware = !cameraFound && softwareFound;
    verdict.unknown = !cameraFound && !softwareFound;
    verdict.modelFound = cameraFound && (HoldsCamera(facts.internal.cameras, facts.details.Make, facts.details.Model) ||
                                         HoldsCamera(facts.user.cameras, facts.details.Make, facts.details.Model));
    return verdict;
}

void ImageInfoTable::TestCompression(Facts const& facts) {
    const CompressionVerdict verdict = GetCompressionVerdict(facts);
    const bool noCamera = facts.details.Make.empty() && facts.details.Model.empty();
    m_rules[NoSubsampling].Test<wxString>(facts.details.ChromaSubsampling, "4:4:4");
    if (m_warnSoftwareQt) m_rules[OnlySoftware].Test<bool>(verdict.onlySoftware, false);
    if (m_warnCameraNotFound && !noCamera) m_rules[UnknownSignature].Test<bool>(verdict.unknown, false);
    if (m_warnQtNotFound && !noCamera) m_rules[OtherCamera].Test<bool>(!verdict.modelFound, false);
    if (facts.jpeg.IsValid) m_rules[HuffmanTables].Test<bool>(true, facts.HasStandardHuffmanTables());
}
