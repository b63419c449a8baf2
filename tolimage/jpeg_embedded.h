// SPDX-License-Identifier: Apache-2.0
// Finding whole JPEG pictures inside other bytes.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "tolbase/bytereader.h"

// An embedded picture, byte for byte. Its bytes lie in the file or, where it was cut over several segments, in
// `joined`.
struct EmbeddedJpeg {
    uint64_t offset = 0;  // of its SOI in the file
    ByteView view;        // into the file; empty if `joined` holds it
    std::string joined;
    bool isExifThumbnail = false;  // the one that the EXIF data name as their thumbnail

    ByteView Bytes() const { return joined.empty() ? view : ByteView(joined.data(), joined.size(), offset); }
};

// The length of the whole picture that begins at the view's start, or 0 if none does. It must have an SOI, segments
// that follow each other without foreign bytes, a quantisation table, a frame, a scan and an EOI. `looked` grows by the
// bytes that had to be searched.
uint64_t MeasureJpeg(ByteView view, uint64_t& looked);

// The pictures in a JPEG's segments, in the order of the file, and then those behind its end. No more than the limit
// "embedded-images".
std::vector<EmbeddedJpeg> FindEmbeddedJpegs(ByteView file);
// The pictures anywhere in a file of another format.
std::vector<EmbeddedJpeg> FindJpegsAnywhere(ByteView file);
