// SPDX-License-Identifier: Apache-2.0
#include "orvcore/socialmediatable.h"

#include <algorithm>
#include <charconv>

#include "orvcore/context.h"
#include "orvcore/smscollection.h"
#include "orvcore/translate.h"
#include "tolbase/parameter.h"
#include "tolimage/imagedetails.h"
#include "tolimage/jpeginfo.h"

namespace {

// The decision: the three best surviving neighbours must reach this mean similarity.
constexpr int kNeighbours = 3;
constexpr double kThreshold = 0.99;
// Up to this side, and below this similarity, a match is less to be trusted.
constexpr int kLowResolution = 1600;
constexpr double kSureSimilarity = 0.999;

wxString const kSeparator = ", ";

wxString FourDecimals(double number) {
    char digits[64];
    auto const result = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, 4);
    return wxString::FromAscii(digits, static_cast<size_t>(result.ptr - digits));
}

wxString SourceText(SMS_Type type) {
    if (type == SMS_User) return OrvTranslate("User database");
    return type == SMS_Internal ? OrvTranslate("Internal database") : wxString();
}

void CutSeparator(wxString& text) {
    if (!text.empty()) text.RemoveLast(std::min(text.length(), kSeparator.length()));
}

// The texts of the seven rows.
struct Rows {
    wxString verdict, platforms, scores, sources, files, dates, message;
};

wxString LowResolutionNote(SMS_ClassifResult const& result, ImageDetailsExifTool const& details) {
    bool const isSmall = std::max(details.EncodedWidth, details.EncodedHeight) <= kLowResolution;
    if (!isSmall || result.similarities.empty() || result.similarities.front() >= kSureSimilarity) return wxString();
    return OrvTranslate("False positives are more probable on low resolution images\n");
}

void FillPlatforms(SMS_ClassifResult const& result, wxString const& file, Rows& rows) {
    for (size_t i = 0; i < result.socialNames.size(); ++i) {
        wxString const& name = result.socialNames[i];
        rows.platforms += name + kSeparator;
        rows.dates += result.signatures[i].GetDate() + kSeparator;
        rows.scores += FourDecimals(result.similarities[i]) + kSeparator;
        rows.files += result.signatures[i].GetFile() + kSeparator;
        if (!SMSCollection::CheckFilenameCompatibility(file, name)) {
            rows.message += OrvTranslate("Filename does not match any known " + name + " naming scheme\n") + kSeparator;
        }
        rows.sources += SourceText(result.sources[i]) + kSeparator;
    }
    // The message may end with the note on the resolution instead, which then loses its own end.
    for (wxString* text : {&rows.platforms, &rows.dates, &rows.scores, &rows.files, &rows.message, &rows.sources}) {
        CutSeparator(*text);
    }
}

Rows Describe(wxString const& file, JpegInfo const& info, ImageDetailsExifTool const& details) {
    SMS_ClassifResult const result = SMSCollection().ClassifyImage(file, info, details, kNeighbours, kThreshold);
    Rows rows;
    if (result.status == 0) {
        rows.verdict = OrvTranslate("Image likely comes from a Social Media Platform");
        rows.message = LowResolutionNote(result, details);
        FillPlatforms(result, file, rows);
    } else {
        rows.verdict = OrvTranslate("Image was likely not processed by a Social Media Platform");
        for (wxString* text : {&rows.platforms, &rows.scores, &rows.sources, &rows.files, &rows.dates}) *text = "-";
    }
    VecString const compatible = SMSCollection::GetFilenameCompatibilityList(file);
    if (!compatible.empty()) {
        rows.message += OrvTranslate("Filename is compatible with ");
        for (wxString const& name : compatible) rows.message += name + kSeparator;
        CutSeparator(rows.message);
    }
    return rows;
}

}  // namespace

SocialMediaTable::SocialMediaTable(OrvFileId fileId) : OrvInfoTable(fileId) {
    for (char const* name :
         {"Classification:", "Closest Social Platform:", "Similarity Score:", "Classification Source:",
          "Closest File Id:", "Date of Reference File (Y/M/D):", "Optional message:"}) {
        m_parameters.push_back(CreateParameterOutputString(name, ""));
    }
}

VecVecString SocialMediaTable::Evaluate() {
    m_parameters.Reset();
    OrvContext const* context = GetContext();
    wxString const file = context->GetFilename(m_fileId);
    if (!file.empty()) {
        JpegInfo const info = context->GetImageJpegInfo(m_fileId);
        if (info.IsValid) {
            Rows const rows = Describe(file, info, context->GetImageDetails(m_fileId));
            size_t row = 0;
            for (wxString const* text : {&rows.verdict, &rows.platforms, &rows.scores, &rows.sources, &rows.files,
                                         &rows.dates, &rows.message}) {
                m_parameters[row++].Set(*text);
            }
        }
    }
    return GenerateTable();
}

SocialMediaTableComparison::SocialMediaTableComparison()
    : OrvInfoTableComparison(new SocialMediaTable(Evidence), new SocialMediaTable(Reference)) {}
