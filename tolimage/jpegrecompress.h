// SPDX-License-Identifier: Apache-2.0
// JPEG in memory: what a picture becomes when it is saved once more, the ground of error level analysis and of JPEG
// ghosts.
//
// Encoder and decoder are libjpeg-turbo's with the accurate integer transform, so the same picture and settings give
// the same result on every run.
//
// Threads: any; no state. Ownership: plain values.
#pragma once
#include <array>
#include <functional>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "tolbase/export.h"

// How much of the chroma is kept.
enum class JpegSampling : int {
    Full = 0,       // 4:4:4
    Halved = 1,     // 4:2:2
    Quartered = 2,  // 4:2:0
};

// How a picture is saved: baseline, standard Huffman tables.
struct JpegEncoding {
    // 1 to 100 on the scale of the IJG: the tables of ITU-T T.81 Annex K are scaled by it. Taken as the nearest of
    // these where it lies outside.
    int quality = 90;
    // Of no meaning for a grey picture.
    JpegSampling sampling = JpegSampling::Full;
    // Instead of the quality: one table for all components, or one for luma and one for chroma, each in the picture's
    // own (row-major) order with steps from 1 to 32,767. More than two are an error.
    std::vector<std::array<int, 64>> tables;
};

// The picture as a JPEG file. `picture` has 8 bits and one channel (grey) or three (blue, green, red), and at most
// 65,500 pixels a side. Throws TolException (82) for any other picture, for tables that can't be written, and where
// memory is short.
ORV_API std::string EncodeJpegToMemory(cv::Mat const& picture, JpegEncoding const& encoding);

// The picture behind encoding and decoding, of the same size and channels. Without chroma subsampling any size will do,
// and all processors work; with it the limit of EncodeJpegToMemory holds. An empty matrix once the user has aborted.
// Throws as EncodeJpegToMemory does.
ORV_API cv::Mat RecompressJpeg(cv::Mat const& picture, JpegEncoding const& encoding);

// The same without chroma subsampling (`sampling` is not looked at) and tile by tile, so that no whole picture has to
// be held: blocks of 8 by 8 pixels have nothing to do with each other then, and the tiles are whole blocks. `take` gets
// the place of each tile and its pixels, on several threads at once and in any order; places never overlap. Gives the
// number of tiles; stops early once the user has aborted.
ORV_API int RecompressJpegTiles(cv::Mat const& picture, JpegEncoding const& encoding,
                                std::function<void(cv::Rect const& place, cv::Mat const& tile)> const& take);
