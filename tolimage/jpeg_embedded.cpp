// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpeg_embedded.h"

#include <algorithm>
#include <string_view>

#include "tolbase/limits.h"
#include "tolimage/jpeg_segments.h"

namespace {

// The least length of a DQT payload: an index and 64 values.
constexpr size_t kLeastTable = 65;

bool MayHoldPictures(int code) {
    return (code >= JpegApp0 && code <= JpegApp15) || code == JpegCom;
}

class Finder {
public:
    explicit Finder(ByteView file)
        : m_budget(16 * static_cast<uint64_t>(file.Size()) + 65536), m_most(GetTolLimit(TolLimit::EmbeddedImages)) {}

    std::vector<EmbeddedJpeg> found;

    bool IsFull() const { return found.size() >= m_most || m_budget == 0; }

    // All whole pictures of a region. `unfinished` gets the place of a picture at the region's very start that the
    // region doesn't hold whole.
    void Search(ByteView region, bool* beginsPicture) {
        uint64_t at = 0;
        while (!IsFull()) {
            at = Find(region, at);
            if (at >= region.Size()) return;
            const uint64_t length = Measure(region.From(at));
            if (length != 0) {
                Add({region.Base() + at, region.Sub(at, length), {}, false});
                at += length;
            } else {
                if (at == 0 && beginsPicture != nullptr) *beginsPicture = true;
                ++at;
            }
        }
    }

    // Takes the picture that begins with these bytes, if they hold it whole.
    void TakeJoined(uint64_t offset, std::string const& bytes) {
        const uint64_t length = Measure(ByteView(bytes.data(), bytes.size()));
        if (length != 0 && !IsFull()) Add({offset, {}, bytes.substr(0, static_cast<size_t>(length)), false});
    }

private:
    static uint64_t Find(ByteView region, uint64_t from) {
        const std::string_view text(reinterpret_cast<char const*>(region.Data()), region.Size());
        const size_t at = text.find("\xFF\xD8\xFF", static_cast<size_t>(from));
        return at == std::string_view::npos ? region.Size() : at;
    }

    // Hostile bytes can hold a start in every third byte, each to be followed to the end: the work has a bound.
    uint64_t Measure(ByteView view) {
        uint64_t looked = 0;
        const uint64_t length = MeasureJpeg(view, looked);
        m_budget -= std::min(m_budget, looked);
        return length;
    }

    void Add(EmbeddedJpeg picture) {
        if (IsWithinTolLimit(TolLimit::EmbeddedImageBytes, picture.Bytes().Size())) found.push_back(std::move(picture));
    }

    uint64_t m_budget;
    uint64_t m_most;
};

// Some makers cut a preview over several segments of one kind: the payloads from `first` on, one behind the other.
std::string JoinPayloads(std::vector<JpegSegment> const& segments, size_t first) {
    std::string bytes;
    for (size_t i = first; i < segments.size() && segments[i].code == segments[first].code; ++i) {
        bytes += segments[i].payload.ToString();
    }
    return bytes;
}

// The thumbnail's place that IFD1 of EXIF data tells (TIFF tag 0x0201), from the start of the file; 0 if it tells none.
uint64_t ExifThumbnailOffset(JpegSegment const& segment) {
    constexpr uint16_t kOffsetTag = 0x0201;
    if (segment.code != JpegApp0 + 1 || !segment.payload.Matches(0, "Exif\0\0", 6)) return 0;
    try {
        const ByteView tiff = segment.payload.From(6);
        const bool isBig = tiff.Matches(0, "MM", 2);
        if (!isBig && !tiff.Matches(0, "II", 2)) return 0;
        const uint64_t ifd0 = tiff.U32(4, isBig);
        const uint64_t ifd1 = tiff.U32(ifd0 + 2 + 12U * tiff.U16(ifd0, isBig), isBig);
        if (ifd1 == 0) return 0;
        const unsigned count = tiff.U16(ifd1, isBig);
        for (unsigned i = 0; i < count; ++i) {
            const uint64_t entry = ifd1 + 2 + 12U * i;
            if (tiff.U16(entry, isBig) == kOffsetTag) return tiff.Base() + tiff.U32(entry + 8, isBig);
        }
    } catch (ByteError const&) {
        // Broken EXIF data name no thumbnail; whatever picture they hold is found all the same.
    }
    return 0;
}

}  // namespace

uint64_t MeasureJpeg(ByteView view, uint64_t& looked) {
    JpegWalker walker(view);
    JpegSegment segment;
    bool hasTable = false;
    bool hasFrame = false;
    bool hasScan = false;
    bool isSound = true;
    while (isSound && walker.Next(segment)) {
        isSound = segment.isComplete && segment.skipped == 0;
        hasTable = hasTable || (segment.code == JpegDqt && segment.payload.Size() >= kLeastTable);
        hasFrame = hasFrame || (IsJpegFrame(segment.code) && segment.payload.Size() >= 9);
        hasScan = hasScan || segment.code == JpegSos;
        if (segment.code == JpegSos && !(hasTable && hasFrame)) isSound = false;
    }
    looked += walker.SearchedBytes();
    return isSound && hasScan && walker.HasSeenEoi() ? walker.Position() : 0;
}

std::vector<EmbeddedJpeg> FindEmbeddedJpegs(ByteView file) {
    Finder finder(file);
    std::vector<JpegSegment> segments;
    JpegWalker walker(file);
    JpegSegment segment;
    while (walker.Next(segment)) {
        if (segment.isComplete && MayHoldPictures(segment.code)) segments.push_back(segment);
        CheckTolLimit(TolLimit::Segments, segments.size());
    }
    for (size_t i = 0; i < segments.size() && !finder.IsFull(); ++i) {
        bool beginsPicture = false;
        finder.Search(segments[i].payload, &beginsPicture);
        const bool goesOn = i + 1 < segments.size() && segments[i + 1].code == segments[i].code;
        if (beginsPicture && goesOn) finder.TakeJoined(segments[i].payload.Base(), JoinPayloads(segments, i));
    }
    finder.Search(file.From(walker.Position()), nullptr);
    for (JpegSegment const& holder : segments) {
        const uint64_t place = ExifThumbnailOffset(holder);
        for (EmbeddedJpeg& picture : finder.found) {
            if (place != 0 && picture.offset == place) picture.isExifThumbnail = true;
        }
    }
    return std::move(finder.found);
}

std::vector<EmbeddedJpeg> FindJpegsAnywhere(ByteView file) {
    Finder finder(file);
    finder.Search(file, nullptr);
    return std::move(finder.found);
}
