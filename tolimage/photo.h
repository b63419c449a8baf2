// SPDX-License-Identifier: Apache-2.0
// Photographs that a web service told of, and what decides whether one is wanted.
//
// Threads: plain values, each for one thread at a time. Ownership: copies are independent.
#pragma once
#include <wx/gdicmn.h>
#include <wx/string.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

#include "tolbase/export.h"
#include "tolbase/types.h"

// The sizes in which a service offers a photograph. Only the original bears witness to a camera.
enum PhotoSizeFormat : int {
    PhotoSizeSquare = 0,
    PhotoSizeThumbnail = 1,
    PhotoSizeSmall = 2,
    PhotoSizeMedium = 3,
    PhotoSizeMedium640 = 4,
    PhotoSizeLarge = 5,
    PhotoSizeOriginal = 6,
    PhotoSizeCount = 7
};

class ORV_API Photo {
public:
    // The service's own id; of Google's pictures, which have none, the MD5 of the link.
    wxString const& GetPhotoId() const { return m_id; }
    wxString const& GetOwnerId() const { return m_owner; }
    // As the file's metadata give them; empty where the service tells nothing.
    wxString const& GetMake() const { return m_make; }
    wxString const& GetModel() const { return m_model; }
    wxString const& GetSoftware() const { return m_software; }
    // Seconds since 1970-01-01 UTC, as text; empty if unknown.
    wxString const& GetUploadDate() const { return m_uploadDate; }
    // 0 by 0 and an empty link for a format that the service doesn't offer, and for one that is none.
    wxSize GetPhotoSize(PhotoSizeFormat format) const;
    wxString GetPhotoLink(PhotoSizeFormat format) const;
    // Latitude and longitude in degrees.
    std::pair<double, double> GetPhotoLoc() const { return m_location; }
    // Kilometres; 0 if unknown. The service tells the zoom level (1 the world, 16 a street) of the map on which the
    // place was marked; this is the width of such a map's tile at the equator, 40075.017 km / 2^level.
    double GetAccuracy() const { return m_accuracy; }

    void SetPhotoId(wxString const& text) { m_id = text; }
    void SetOwnerId(wxString const& text) { m_owner = text; }
    void SetMake(wxString const& text) { m_make = text; }
    void SetModel(wxString const& text) { m_model = text; }
    void SetSoftware(wxString const& text) { m_software = text; }
    void SetUploadDate(wxString const& text) { m_uploadDate = text; }
    // Nothing happens for a format that is none.
    void SetPhotoFile(PhotoSizeFormat format, wxString const& link, wxSize const& size);
    void SetPhotoLoc(double latitude, double longitude) { m_location = {latitude, longitude}; }
    void SetAccuracy(double kilometres) { m_accuracy = kilometres; }

private:
    struct File {
        wxString link;
        wxSize size = wxSize(0, 0);
    };
    wxString m_id;
    wxString m_owner;
    wxString m_make;
    wxString m_model;
    wxString m_software;
    wxString m_uploadDate;
    std::array<File, PhotoSizeCount> m_files;
    std::pair<double, double> m_location{0.0, 0.0};
    double m_accuracy = 0.0;
};

// Kilometres of a map's zoom level, as told at Photo::GetAccuracy; 0 for a level outside 1 to 16.
ORV_API double PhotoAccuracyOfLevel(int level);

enum TagFilterType : int {
    TagFilterNone = 0,     // the tag doesn't matter
    TagFilterExclude = 1,  // photographs whose tag holds one of the values are left out
};

// Which photographs are wanted. A condition on metadata that the service doesn't show is not met: what can't be checked
// is left out.
class ORV_API TagFilter {
public:
    TagFilter() = default;
    // `values` are sought in the tag's text without case, empty ones never.
    TagFilter(TagFilterType type, wxString const& exifDirectory, wxString const& exifTag, VecString const& values);

    // The model has to be this one, alone or behind the make; an empty text lifts the condition. Without case, and
    // blanks, "_" and "-" don't count.
    void SetFilterCameraModel(wxString const& model);
    // The make has to begin with this one ("NIKON CORPORATION" for "nikon"), and a model is also accepted with or
    // without the make in front. Empty texts lift their condition.
    void SetFilterCamMakeCamModel(wxString const& make, wxString const& model);
    // Exactly this size in pixels; a zero or less lifts the condition.
    void SetFilterPhotoSize(int width, int height);

    bool IsMetadataNeeded() const;
    // `tags` are the photograph's metadata by "directory:tag" ("IFD0:Software").
    bool Accepts(Photo const& photo, std::map<wxString, wxString> const& tags) const;
    bool AcceptsSize(wxSize const& size) const;

    TagFilterType GetType() const { return m_type; }
    wxString const& GetMake() const { return m_make; }
    wxString const& GetModel() const { return m_model; }
    wxSize GetSize() const { return {m_width, m_height}; }

private:
    bool AcceptsModel(Photo const& photo) const;

    TagFilterType m_type = TagFilterNone;
    wxString m_tag;
    VecString m_values;
    wxString m_make;
    wxString m_model;
    int m_width = 0;
    int m_height = 0;
};
