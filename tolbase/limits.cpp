// SPDX-License-Identifier: Apache-2.0
#include "tolbase/limits.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <stdexcept>
#include <string>

namespace {

constexpr size_t kCount = static_cast<size_t>(TolLimit::Count);
constexpr uint64_t kMiB = 1024U * 1024U;

constexpr std::array<TolLimitInfo, kCount> kInfos{{
    {"file-bytes", "bytes of a file that is read whole", 1024 * kMiB},
    {"pixels-per-image", "pixels of one picture", 256 * kMiB},
    {"image-side", "pixels along one side of a picture", 1000000},
    {"segment-bytes", "bytes of one segment", 256 * kMiB},
    {"segments", "segments of one file", 1000000},
    {"embedded-images", "pictures embedded in one file", 64},
    {"embedded-image-bytes", "bytes of one embedded picture", 256 * kMiB},
    {"metadata-values", "metadata values of one file", 100000},
    {"metadata-value-bytes", "bytes of one metadata value", kMiB},
    {"nesting-depth", "structures within structures", 64},
    {"seconds-per-file", "seconds of waiting for one file's metadata", 60},
    {"json-depth", "values within values of a JSON text", 512},
    {"json-bytes", "bytes of a JSON text", 256 * kMiB},
    {"user-database-bytes", "bytes of a user's signature file", 256 * kMiB},
    {"pdf-objects", "objects of one PDF", 1000000},
    {"download-bytes", "bytes of one file taken from the web", 256 * kMiB},
    {"web-answer-bytes", "bytes of one web service's answer", 16 * kMiB},
    {"web-seconds", "seconds of one web request", 60},
    {"web-attempts", "attempts at one web request", 4},
    {"web-backoff-milliseconds", "milliseconds before a second attempt", 1000},
    {"web-threads", "web requests at the same time", 4},
    {"web-photos", "photographs of one web search", 500},
}};

// 0 stands for the default, so that nothing has to run before the first use.
std::array<std::atomic<uint64_t>, kCount>& Values() {
    static std::array<std::atomic<uint64_t>, kCount> values{};
    return values;
}

size_t Index(TolLimit limit) {
    const auto index = static_cast<size_t>(limit);
    if (index >= kCount) throw std::out_of_range("no such limit");
    return index;
}

wxString Sentence(TolLimit limit, uint64_t asked) {
    TolLimitInfo const& info = GetTolLimitInfo(limit);
    return wxString::FromUTF8("Refused: " + std::to_string(asked) + " " + info.description + ", and the limit \"" +
                              info.name + "\" is " + std::to_string(GetTolLimit(limit)));
}

}  // namespace

TolLimitError::TolLimitError(TolLimit limit, uint64_t asked)
    : TolException(__FILE__, __LINE__, ExceptionGeneral, 82, Sentence(limit, asked)), m_limit(limit), m_asked(asked) {}

TolLimitInfo const& GetTolLimitInfo(TolLimit limit) {
    return kInfos[Index(limit)];
}

uint64_t GetTolLimit(TolLimit limit) {
    const uint64_t set = Values()[Index(limit)].load(std::memory_order_relaxed);
    return set != 0 ? set : GetTolLimitInfo(limit).defaultValue;
}

void SetTolLimit(TolLimit limit, uint64_t value) {
    Values()[Index(limit)].store(value, std::memory_order_relaxed);
}

bool FindTolLimit(wxString const& name, TolLimit& limit) {
    const auto found =
        std::find_if(kInfos.begin(), kInfos.end(), [&](TolLimitInfo const& info) { return name == info.name; });
    if (found == kInfos.end()) return false;
    limit = static_cast<TolLimit>(found - kInfos.begin());
    return true;
}

void ResetTolLimits() {
    for (auto& value : Values()) value.store(0, std::memory_order_relaxed);
}

bool IsWithinTolLimit(TolLimit limit, uint64_t asked) {
    return asked <= GetTolLimit(limit);
}

void CheckTolLimit(TolLimit limit, uint64_t asked) {
    if (!IsWithinTolLimit(limit, asked)) throw TolLimitError(limit, asked);
}

void CheckPictureSize(int64_t width, int64_t height) {
    // A negative side becomes a huge one.
    const auto w = static_cast<uint64_t>(width);
    const auto h = static_cast<uint64_t>(height);
    CheckTolLimit(TolLimit::ImageSide, std::max(w, h));
    const bool wraps = h != 0 && w > std::numeric_limits<uint64_t>::max() / h;
    CheckTolLimit(TolLimit::PixelsPerImage, wraps ? std::numeric_limits<uint64_t>::max() : w * h);
}
