// SPDX-License-Identifier: Apache-2.0
#include "tolcore/camerasizes.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "tolcore/camera_sizetable.h"

namespace {

// EXIF texts are often padded, and makers change the case of their own names from one model to the next.
std::string Key(std::string const& text) {
    constexpr std::string_view padding(" \0", 2);
    const size_t first = text.find_first_not_of(padding);
    if (first == std::string::npos) return {};
    std::string key = text.substr(first, text.find_last_not_of(padding) - first + 1);
    for (char& c : key) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return key;
}

char const* Text(uint32_t offset) {
    return &kCameraSizePool[offset];
}

using MakeModel = std::pair<std::string, std::string>;
MakeModel KeyOf(PackedCameraSize const& record) {
    return {Key(Text(record.make)), Key(Text(record.model))};
}

}  // namespace

DpReviewInfo::DpReviewInfo() = default;
DpReviewInfo::DpReviewInfo(std::string makeText, std::string modelText, Resolution largestSize,
                           std::vector<Resolution> allSizes, std::string url)
    : make(std::move(makeText)),
      model(std::move(modelText)),
      largest(largestSize),
      resolutions(std::move(allSizes)),
      referenceUrl(std::move(url)) {}
DpReviewInfo::~DpReviewInfo() = default;

bool DpReviewInfo::hasResolution(Resolution const& size) const {
    return std::find(resolutions.begin(), resolutions.end(), size) != resolutions.end();
}

bool DpReviewCollection::find(std::string const& make, std::string const& model, DpReviewInfo& info) const {
    const MakeModel wanted(Key(make), Key(model));
    PackedCameraSize const* const end = kCameraSizes + kCameraSizeCount;
    PackedCameraSize const* const found =
        std::lower_bound(kCameraSizes, end, wanted,
                         [](PackedCameraSize const& record, MakeModel const& key) { return KeyOf(record) < key; });
    if (found == end || KeyOf(*found) != wanted) return false;
    std::vector<Resolution> sizes;
    for (uint32_t i = 0; i < found->sizeCount; ++i) {
        PackedResolution const& size = kCameraSizeLists[found->firstSize + i];
        sizes.push_back({size.longSide, size.shortSide});
    }
    info = DpReviewInfo(Text(found->make), Text(found->model), {found->longSide, found->shortSide}, std::move(sizes),
                        Text(found->reference));
    return true;
}

size_t DpReviewCollection::size() const {
    return kCameraSizeCount;
}
