// SPDX-License-Identifier: Apache-2.0
// The heads of BMP, GIF, PNM, ICO and TGA files, so that sizes are known before wxImage takes memory. Private to this
// library.
#pragma once
#include <cstdint>
#include <vector>

#include "tolimage/codec.h"

namespace codec {

struct GifHead {
    int width = 0;  // of the canvas
    int height = 0;
    int frameWidth = 0;  // the greatest of all frames
    int frameHeight = 0;
    int bits = 0;
    std::vector<uint64_t> transparencyFlags;  // offsets of the bytes whose lowest bit says "one colour is transparent"
};
// Throws ByteError for a file that breaks off before its first frame.
GifHead ReadGifHead(ByteView file);

struct IcoEntry {
    uint64_t directory = 0;  // offset of the entry in the directory
    uint64_t offset = 0;     // of the picture
    uint64_t length = 0;
    int width = 0;
    int height = 0;
    int bits = 0;
};
// The entry with most pixels, of those the deepest.
IcoEntry LargestIcoEntry(ByteView file);

// Fills the size, channels and depth; throws ByteError or DecodeError for a head that makes no sense.
void ReadHead(Format format, ByteView file, ImageProbe& probe);
// What CheckSize takes for these formats.
uint64_t PixelsPerByte(Format format);

}  // namespace codec
