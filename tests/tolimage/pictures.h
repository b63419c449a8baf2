// SPDX-License-Identifier: Apache-2.0
// Pictures and small files of many formats, made by hand, for the tests of this library.
#pragma once
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <wx/string.h>
#include <zlib.h>

#include <cstdint>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/tempdir.h"
#include "tolbase/image.h"
#include "tolimage/imageio.h"

extern char** environ;

namespace pictures {

// Runs a program without a shell; its exit status.
inline int Run(std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    pid_t pid = -1;
    if (posix_spawnp(&pid, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0) return -1;
    int status = 0;
    if (waitpid(pid, &status, 0) != pid) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Writes tags by ExifTool itself; throws if it refuses.
inline void Exif(wxString const& path, std::vector<std::string> const& tags) {
    std::vector<std::string> arguments = {"exiftool", "-q", "-q", "-m", "-overwrite_original"};
    arguments.insert(arguments.end(), tags.begin(), tags.end());
    arguments.emplace_back(path.utf8_str().data());
    if (Run(arguments) != 0) throw std::runtime_error("exiftool refused");
}

inline Image Plain(int width, int height, int blue, int green, int red) {
    Image image = Image::Create(width, height, IPL_DEPTH_8U, 3);
    cv::Mat(image).setTo(cv::Scalar(blue, green, red));
    return image;
}

// Blocks of changing colours, so that a JPEG of it has something in each block.
inline Image Pattern(int width, int height) {
    Image image = Image::Create(width, height, IPL_DEPTH_8U, 3);
    cv::Mat pixels = image;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            pixels.at<cv::Vec3b>(y, x) = {static_cast<uchar>(x * 7 + y), static_cast<uchar>(y * 5 ^ x),
                                          static_cast<uchar>((x / 8 + y / 8) * 40)};
        }
    }
    return image;
}

inline wxString SaveJpeg(wxString const& path, int width = 64, int height = 48, int quality = 90) {
    Image image = Pattern(width, height);
    if (!tcvSaveImage(path, image, quality)) throw std::runtime_error("no JPEG");
    return path;
}

inline std::string Big(uint32_t value, int bytes) {
    std::string result;
    for (int i = bytes - 1; i >= 0; --i) result.push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
    return result;
}

inline std::string Little(uint32_t value, int bytes) {
    const std::string big = Big(value, bytes);
    return std::string(big.rbegin(), big.rend());
}

inline std::string Bytes(std::initializer_list<int> values) {
    std::string result;
    for (const int value : values) result.push_back(static_cast<char>(value));
    return result;
}

inline std::string Chunk(std::string const& type, std::string const& data) {
    const std::string body = type + data;
    const uLong crc = crc32(0, reinterpret_cast<Bytef const*>(body.data()), static_cast<uInt>(body.size()));
    return Big(static_cast<uint32_t>(data.size()), 4) + body + Big(static_cast<uint32_t>(crc), 4);
}

inline std::string Deflated(std::string const& data) {
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    std::string result(size, '\0');
    compress2(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<Bytef const*>(data.data()),
              static_cast<uLong>(data.size()), 9);
    result.resize(size);
    return result;
}

// A PNG of the given rows, each with its filter byte in front.
inline std::string Png(int width, int height, int depth, int type, std::string const& rows,
                       std::string const& before = std::string()) {
    return Bytes({0x89, 'P', 'N', 'G', 13, 10, 26, 10}) +
           Chunk("IHDR", Big(static_cast<uint32_t>(width), 4) + Big(static_cast<uint32_t>(height), 4) +
                             Bytes({depth, type, 0, 0, 0})) +
           before + Chunk("IDAT", Deflated(rows)) + Chunk("IEND", "");
}

// One entry of a little-endian TIFF directory.
inline std::string Entry(int tag, int type, uint32_t count, uint32_t value) {
    return Little(static_cast<uint32_t>(tag), 2) + Little(static_cast<uint32_t>(type), 2) + Little(count, 4) +
           Little(value, 4);
}

// A little-endian TIFF with one strip of unpacked samples; `more` are further entries, sorted behind tag 279.
inline std::string Tiff(int width, int height, int bits, int samples, int photometric, std::string const& pixels,
                        std::vector<std::string> const& front = {}, std::vector<std::string> const& more = {}) {
    std::vector<std::string> entries = front;
    const uint32_t start = 400;
    // Up to two short values stand in the entry itself.
    const std::string depths = samples <= 2 ? Entry(258, 3, static_cast<uint32_t>(samples),
                                                    static_cast<uint32_t>(samples == 2 ? bits | bits << 16 : bits))
                                            : Entry(258, 3, static_cast<uint32_t>(samples), 390 - 2U * 4U);
    entries.push_back(Entry(256, 3, 1, static_cast<uint32_t>(width)));
    entries.push_back(Entry(257, 3, 1, static_cast<uint32_t>(height)));
    entries.push_back(depths);
    entries.push_back(Entry(259, 3, 1, 1));
    entries.push_back(Entry(262, 3, 1, static_cast<uint32_t>(photometric)));
    entries.push_back(Entry(273, 4, 1, start));
    entries.push_back(Entry(277, 3, 1, static_cast<uint32_t>(samples)));
    entries.push_back(Entry(278, 3, 1, static_cast<uint32_t>(height)));
    entries.push_back(Entry(279, 4, 1, static_cast<uint32_t>(pixels.size())));
    for (std::string const& entry : more) entries.push_back(entry);
    std::string file = std::string("II*\0", 4) + Little(8, 4) + Little(static_cast<uint32_t>(entries.size()), 2);
    for (std::string const& entry : entries) file += entry;
    file.resize(382, '\0');
    for (int i = 0; i < samples; ++i) file += Little(static_cast<uint32_t>(bits), 2);
    file.resize(start, '\0');
    return file + pixels;
}

// A folder to load such files from.
class PictureFiles : public ::testing::Test {
protected:
    Image Load(std::string const& bytes, bool asStored = false) {
        return Image(tcvLoadImage(support::WriteBytes(dir / "picture.bin", bytes), true, asStored));
    }
    ImageProbe Probe(std::string const& bytes) {
        return tcvProbeImage(support::WriteBytes(dir / "picture.bin", bytes));
    }
    support::TempDir dir;
};

}  // namespace pictures
