// SPDX-License-Identifier: Apache-2.0
// Tells an ordinary TIFF from a camera's RAW by its first directory, without libtiff.
#include "tolimage/codec_tiff.h"

namespace codec {
namespace {

constexpr uint16_t kNewSubfileType = 254;
constexpr uint16_t kPhotometric = 262;
constexpr uint16_t kSubIfds = 330;
constexpr uint16_t kDngVersion = 50706;
constexpr uint32_t kColorFilterArray = 32803;
constexpr uint32_t kLinearRaw = 34892;
constexpr uint32_t kMaxSubIfds = 16;

struct Head {
    bool read = false;
    uint32_t subfileType = 0;
    uint32_t photometric = 0;
    bool dng = false;
    uint32_t subIfds = 0;
    uint64_t subIfdsAt = 0;
};

// One directory of a classic TIFF.
Head ReadHead(ByteView file, uint64_t at, bool bigEndian) {
    Head head;
    const uint16_t entries = file.U16(at, bigEndian);
    for (uint16_t i = 0; i < entries; ++i) {
        const uint64_t entry = at + 2 + uint64_t{12} * i;
        const uint16_t tag = file.U16(entry, bigEndian);
        const bool isShort = file.U16(entry + 2, bigEndian) == 3;
        const uint32_t value = isShort ? file.U16(entry + 8, bigEndian) : file.U32(entry + 8, bigEndian);
        if (tag == kNewSubfileType) head.subfileType = value;
        if (tag == kPhotometric) head.photometric = value;
        if (tag == kDngVersion) head.dng = true;
        if (tag == kSubIfds) {
            head.subIfds = file.U32(entry + 4, bigEndian);
            head.subIfdsAt = head.subIfds == 1 ? entry + 8 : value;
        }
    }
    head.read = true;
    return head;
}

bool IsMosaic(Head const& head) {
    return head.photometric == kColorFilterArray || head.photometric == kLinearRaw;
}

bool HasMosaicBelow(ByteView file, Head const& head, bool bigEndian) {
    for (uint32_t i = 0; i < head.subIfds && i < kMaxSubIfds; ++i) {
        const uint32_t at = file.U32(head.subIfdsAt + uint64_t{4} * i, bigEndian);
        if (IsMosaic(ReadHead(file, at, bigEndian))) return true;
    }
    return false;
}

}  // namespace

bool IsOrdinaryTiff(ByteView file) {
    try {
        const bool bigEndian = file.At(0) == 'M';
        if (file.U16(2, bigEndian) == 43) return true;  // BigTIFF: no camera writes its RAW so
        const Head head = ReadHead(file, file.U32(4, bigEndian), bigEndian);
        // A reduced picture in front is how cameras show a preview of what follows.
        if (head.dng || IsMosaic(head) || (head.subfileType & 1U) != 0) return false;
        return !HasMosaicBelow(file, head, bigEndian);
    } catch (ByteError const&) {
        // Broken or cut off: libtiff says so better than a guess.
        return true;
    }
}

}  // namespace codec
