// SPDX-License-Identifier: Apache-2.0
#include "tolimage/photo.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double EarthCircumferenceKm = 40075.017;
constexpr int LowestLevel = 1;
constexpr int HighestLevel = 16;

bool IsFormat(PhotoSizeFormat format) {
    return format >= PhotoSizeSquare && format < PhotoSizeCount;
}

// Lower case, without what makers spell now so and now so.
wxString Plain(wxString const& text) {
    wxString plain;
    for (wxUniChar const c : text.Lower()) {
        if (!wxString(" _-").Contains(wxString(c))) plain += c;
    }
    return plain;
}

wxString WithoutStart(wxString const& text, wxString const& start) {
    return !start.empty() && text.length() > start.length() && text.StartsWith(start) ? text.Mid(start.length()) : text;
}

}  // namespace

wxSize Photo::GetPhotoSize(PhotoSizeFormat format) const {
    return IsFormat(format) ? m_files[static_cast<std::size_t>(format)].size : wxSize(0, 0);
}

wxString Photo::GetPhotoLink(PhotoSizeFormat format) const {
    return IsFormat(format) ? m_files[static_cast<std::size_t>(format)].link : wxString();
}

void Photo::SetPhotoFile(PhotoSizeFormat format, wxString const& link, wxSize const& size) {
    if (!IsFormat(format)) return;
    File& file = m_files[static_cast<std::size_t>(format)];
    file.link = link;
    file.size = size;
}

double PhotoAccuracyOfLevel(int level) {
    return level < LowestLevel || level > HighestLevel ? 0.0 : std::ldexp(EarthCircumferenceKm, -level);
}

TagFilter::TagFilter(TagFilterType type, wxString const& exifDirectory, wxString const& exifTag,
                     VecString const& values)
    : m_type(type), m_tag(exifDirectory + ":" + exifTag), m_values(values) {}

void TagFilter::SetFilterCameraModel(wxString const& model) {
    m_model = model;
}

void TagFilter::SetFilterCamMakeCamModel(wxString const& make, wxString const& model) {
    m_make = make;
    m_model = model;
}

void TagFilter::SetFilterPhotoSize(int width, int height) {
    m_width = std::max(width, 0);
    m_height = std::max(height, 0);
}

bool TagFilter::IsMetadataNeeded() const {
    return m_type == TagFilterExclude || !m_make.empty() || !m_model.empty();
}

bool TagFilter::AcceptsSize(wxSize const& size) const {
    if (m_width == 0 || m_height == 0) return true;
    return size.GetWidth() == m_width && size.GetHeight() == m_height;
}

bool TagFilter::AcceptsModel(Photo const& photo) const {
    wxString const wanted = Plain(m_model);
    if (wanted.empty()) return true;
    wxString const model = Plain(photo.GetModel());
    if (model.empty()) return false;
    // "NIKON CORPORATION" writes "NIKON D90".
    wxString const ownFirst = Plain(photo.GetMake().BeforeFirst(' '));
    for (wxString const& make : {Plain(m_make), Plain(photo.GetMake()), ownFirst}) {
        if (WithoutStart(model, make) == WithoutStart(wanted, make)) return true;
    }
    return false;
}

bool TagFilter::Accepts(Photo const& photo, std::map<wxString, wxString> const& tags) const {
    if (!AcceptsSize(photo.GetPhotoSize(PhotoSizeOriginal)) || !AcceptsModel(photo)) return false;
    if (!Plain(photo.GetMake()).StartsWith(Plain(m_make))) return false;
    if (m_type != TagFilterExclude) return true;
    // Metadata that aren't shown may hold anything.
    if (tags.empty()) return false;
    auto const found = tags.find(m_tag);
    if (found == tags.end()) return true;
    wxString const text = found->second.Lower();
    return std::none_of(m_values.begin(), m_values.end(),
                        [&text](wxString const& value) { return !value.empty() && text.Contains(value.Lower()); });
}
