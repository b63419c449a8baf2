// SPDX-License-Identifier: Apache-2.0
// The signatures of pictures from social platforms, compiled and the user's own, and the classifier that compares a
// questioned picture with them.
//
// Threads: all objects share one list without a lock. Whoever adds, removes or loads must see to it that nobody
// searches meanwhile (a SocialMediaTable is evaluated on the worker thread). Searches only read; several may run at
// once. Ownership: the list belongs to the process; an object is a handle without data of its own.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "orvcore/socialmediasignature.h"
#include "tolbase/export.h"
#include "tolbase/jsonobject.h"
#include "tolbase/types.h"

struct ImageDetailsExifTool;
struct JpegInfo;

// A signature with its likeness to the questioned one.
struct SMS_KnnEntry {
    SocialMediaSignature signature;
    double similarity = 0.0;  // rounded to single precision
};

struct SMS_KnnResult {
    float similaritySum = 0.0F;            // of all neighbours, added in single precision
    std::vector<SMS_KnnEntry> neighbours;  // best first
};

// The vectors run in parallel, one element for each reported platform. Where nothing was classified, `similarities` and
// `socialNames` hold one 0.0 and one empty text, the other two nothing.
struct SMS_ClassifResult {
    int32_t status = 1;  // 0: classified; 1: not classified
    std::vector<double> similarities;
    std::vector<SocialMediaSignature> signatures;
    VecString socialNames;
    std::vector<SMS_Type> sources;
};

class ORV_API SMSCollection : public JsonObject {
public:
    // Loads the compiled table, once in the life of the process. How many signatures came in; 0 from the second call
    // on.
    uint64_t LoadInternalSignatures();
    // Loads the user's file, once. How many signatures came in; 0 too where there is no such file, and then a later
    // call may succeed. What the file holds besides valid signatures is dropped.
    uint64_t LoadUserSignatures(wxString const& path);
    // Writes the user's signatures, making the file if it does not exist. A file that could not be taken in whole is
    // first put aside, under its name with ".bak" at the end. See Write.
    void SaveUserSignatures(wxString const& path);
    // Appends a copy, whether valid and new or not. Always true.
    bool AddEntryToDatabase(SocialMediaSignature const& signature);
    // Removes the first signature with that hash, of whatever type. False if there is none. Ranges and largest sides
    // keep what the removed one brought in.
    bool RemoveEntryFromDatabase(wxString const& featHash);
    // The first signature of that type with the same hash; its place goes to `index` unless that is null.
    bool FindEntryInDatabase(SocialMediaSignature const& signature, SMS_Type type, size_t* index) const;
    // A row for each signature of that type: file, platform, date, hash.
    VecVecString GetAsVecVecString(SMS_Type type) const;
    uint64_t GetTotalNumberOfSMSInDatabase() const;
    // All signatures: the compiled ones, then those of the user's file, then those added later. The reference holds
    // until the list changes.
    std::vector<SocialMediaSignature> const& GetSignatures() const;
    // Widens the range of each element to what the list holds. Ranges never shrink.
    void ComputeNormalizationParams();
    // Raises the largest side of each platform to what the list holds. Sides never shrink.
    void ComputeMinMaxSmpResolution();

    // One key "SMSCollection" with the signatures of type SMS_User; null if there are none.
    wxJSONValue WriteToJson() const override;
    // Appends the valid signatures under that key as SMS_User. Those that the list holds already come in again.
    void ReadFromJson(wxJSONValue const& value) override;
    // The file is replaced in one step, or stays as it is where that can't be done; nothing is thrown.
    void Write(wxString const& path) const override;
    // Takes what can be recovered of the file, often nothing if it is broken; nothing is thrown. A file larger than the
    // limit "user-database-bytes", or nested deeper than "json-depth", gives nothing.
    void Read(wxString const& path) override;

    // The `k` signatures that are most like the vector by the cosine of the normalised numbers, the most alike first,
    // of equals the one that stands later in the list. Where the list has fewer than `k` with a likeness above zero,
    // copies of its first signature with 0.0 fill up. Nothing for an empty list.
    SMS_KnnResult FindKnns(std::vector<int> const& feature, size_t k) const;
    SMS_KnnResult FindKnns(SocialMediaSignature const& signature, size_t k) const;
    // Does the vector look like a platform's? It does if the `k` best of those neighbours whose platform has samples at
    // least as large as the picture reach a mean similarity of `threshold`.
    SMS_ClassifResult ClassifyFeature(std::vector<int> const& feature, unsigned int const& k,
                                      double const& threshold) const;
    // The same for a file already analysed. The file isn't added to the list.
    SMS_ClassifResult ClassifyImage(wxString const& file, JpegInfo const& info, ImageDetailsExifTool const& details,
                                    int const& k, double const& threshold) const;

    // May a file of this name come from the platform? True if it has no known naming scheme, or if one fits the name
    // without folder and extension.
    static bool CheckFilenameCompatibility(wxString const& file, wxString const& socialName);
    // Every platform one of whose schemes fits, once for each scheme.
    static VecString GetFilenameCompatibilityList(wxString const& file);

private:
    static std::vector<SocialMediaSignature> m_collection;
    static std::vector<std::vector<int>> m_normalizVectMinMax;  // minimum and maximum of each element
    static std::map<wxString, uint64_t> m_socialMaxSupportedRes;
    static bool m_internalSigLoaded;
    static bool m_userSigLoaded;
};
