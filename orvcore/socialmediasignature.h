// SPDX-License-Identifier: Apache-2.0
// The fingerprint of one JPEG file: 48 numbers that tell how it was last encoded, and the platform it came from.
//
// Threads: a plain value; each thread uses its own copy. Making one from a file reads the file and asks ExifTool.
// Ownership: owns all it holds. Files are opened read-only.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tolbase/export.h"
#include "tolbase/jsonobject.h"
#include "tolbase/types.h"

struct ImageDetailsExifTool;
struct JpegInfo;

// Where a signature comes from. Every questioned image is internal.
enum SMS_Type : int32_t {
    SMS_Internal = 0,  // the compiled table
    SMS_User = 1       // the user's own file
};

// Places in the vector of numbers.
enum SMS_Feature : int {
    SMS_FeatureWidth = 0,  // of the picture, in pixels
    SMS_FeatureHeight = 1,
    SMS_FeatureThumbnailWidth = 2,  // of the EXIF thumbnail, 0 without one
    SMS_FeatureThumbnailHeight = 3,
    SMS_FeatureExifCount = 4,     // EXIF fields
    SMS_FeatureMarkerCount = 5,   // all markers of the main image, restart markers excepted
    SMS_FeatureSubsampling2 = 6,  // second digit of "4:2:0", 0 if it is not known
    SMS_FeatureSubsampling3 = 7,  // third digit of it
    SMS_FeatureLuminance = 8,     // 32 coefficients of the first quantisation table, zigzag order
    SMS_FeatureChrominance = 40,  // 8 coefficients of the second one, or of the first where there is no second
    SMS_FeatureCount = 48
};

class ORV_API SocialMediaSignature : public JsonObject {
public:
    // Empty texts, an empty vector; not valid.
    SocialMediaSignature() = default;
    // Stores what it is given and computes nothing.
    SocialMediaSignature(wxString const& file, wxString const& socName, wxString const& date, wxString const& featHash,
                         std::vector<int> feature, SMS_Type type);
    // Computes vector and hash of an image already analysed; `file` is read again for its markers and its thumbnail.
    // An empty `date` stands for today. A poor image gives zeros or a shorter vector, which IsValid refuses; nothing is
    // thrown for it. What the readers throw (ExifTool missing, a limit passed) passes through.
    SocialMediaSignature(wxString const& file, wxString const& socName, JpegInfo const& info,
                         ImageDetailsExifTool const& details, SMS_Type type, wxString const& date);
    // The same for a file not analysed yet.
    SocialMediaSignature(wxString const& file, wxString const& socName, SMS_Type type, wxString const& date);
    SocialMediaSignature(SocialMediaSignature const&) = default;
    SocialMediaSignature(SocialMediaSignature&&) noexcept = default;
    SocialMediaSignature& operator=(SocialMediaSignature const&) = default;
    SocialMediaSignature& operator=(SocialMediaSignature&&) noexcept = default;

    // The path of the file, or 32 hexadecimal digits that stand for it in the compiled table.
    wxString const& GetFile() const { return m_file; }
    // Empty for a questioned image.
    wxString const& GetSocialName() const { return m_socialName; }
    // 32 hexadecimal digits over file, platform and vector. Not compared with them on reading.
    wxString const& GetFeatureHash() const { return m_featureHash; }
    std::vector<int> const& GetFeature() const { return m_feature; }
    // ISO date by which the sample was collected.
    wxString const& GetDate() const { return m_date; }
    SMS_Type GetType() const { return m_type; }
    void SetType(SMS_Type type) { m_type = type; }

    // 48 numbers, and neither platform, hash nor file empty.
    bool IsValid() const;
    // File, platform, date, hash.
    VecString GetAsVecString() const;

    // The keys "File", "SocName", "FeatVect" (not for an empty vector), "FeatHash", "Date"; the type is not stored.
    wxJSONValue WriteToJson() const override;
    // A missing text is empty; an array that has not 48 elements leaves the vector as it was.
    void ReadFromJson(wxJSONValue const& value) override;

private:
    void Compute(wxString const& date);
    static void ComputeFeature(wxString const& file, std::vector<int>& out);
    static void ComputeFeature(wxString const& file, JpegInfo const& info, ImageDetailsExifTool const& details,
                               std::vector<int>& out);

    wxString m_file;
    wxString m_socialName;
    wxString m_featureHash;
    std::vector<int> m_feature;
    wxString m_date;
    SMS_Type m_type = SMS_Internal;
};
