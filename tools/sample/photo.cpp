// SPDX-License-Identifier: Apache-2.0
#include "tools/sample/photo.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "tools/sample/exifwriter.h"
#include "tools/sample/jpegcodec.h"
#include "tools/sample/noise.h"

namespace sample {
namespace {

constexpr char const* TakenAt = "2023:09:17 10:42:36";
constexpr int SharedQuality = 62;
constexpr int ProgramQuality = 91;
constexpr int ThumbnailLongSide = 160;

// The mean over each pixel's area.
Picture Shrink(Picture const& picture, int width, int height) {
    Picture small(width, height);
    for (int y = 0; y < height; ++y) {
        const int top = y * picture.height / height;
        const int bottom = std::max(top + 1, (y + 1) * picture.height / height);
        for (int x = 0; x < width; ++x) {
            const int left = x * picture.width / width;
            const int right = std::max(left + 1, (x + 1) * picture.width / width);
            for (int channel = 0; channel < 3; ++channel) {
                int sum = 0;
                for (int v = top; v < bottom; ++v) {
                    for (int u = left; u < right; ++u) sum += picture.At(u, v)[channel];
                }
                small.At(x, y)[channel] = static_cast<unsigned char>(sum / ((bottom - top) * (right - left)));
            }
        }
    }
    return small;
}

std::string MakeThumbnail(Picture const& picture) {
    const int longSide = std::max(picture.width, picture.height);
    const int width = std::max(8, picture.width * ThumbnailLongSide / longSide);
    const int height = std::max(8, picture.height * ThumbnailLongSide / longSide);
    return EncodeAsProgram(Shrink(picture, width, height), 84);
}

void AddMainTags(ExifWriter& exif, std::string const& software, std::string const& modified) {
    exif.Ascii(ExifDirectory::Main, 0x010F, "Haldenmann");
    exif.Ascii(ExifDirectory::Main, 0x0110, "Lumora 60");
    exif.Short(ExifDirectory::Main, 0x0112, {1});
    exif.Rational(ExifDirectory::Main, 0x011A, {{300, 1}});
    exif.Rational(ExifDirectory::Main, 0x011B, {{300, 1}});
    exif.Short(ExifDirectory::Main, 0x0128, {2});
    exif.Ascii(ExifDirectory::Main, 0x0131, software);
    exif.Ascii(ExifDirectory::Main, 0x0132, modified);
    exif.Short(ExifDirectory::Main, 0x0213, {2});
}

void AddExposureTags(ExifWriter& exif) {
    exif.Rational(ExifDirectory::Exif, 0x829A, {{1, 400}});
    exif.Rational(ExifDirectory::Exif, 0x829D, {{71, 10}});
    exif.Short(ExifDirectory::Exif, 0x8822, {2});
    exif.Short(ExifDirectory::Exif, 0x8827, {200});
    exif.Undefined(ExifDirectory::Exif, 0x9000, "0230");
    exif.Ascii(ExifDirectory::Exif, 0x9003, TakenAt);
    exif.Ascii(ExifDirectory::Exif, 0x9004, TakenAt);
    exif.Undefined(ExifDirectory::Exif, 0x9101, std::string("\x01\x02\x03\0", 4));
    exif.Rational(ExifDirectory::Exif, 0x9102, {{3, 1}});
    exif.SignedRational(ExifDirectory::Exif, 0x9204, 0, 3);
    exif.Rational(ExifDirectory::Exif, 0x9205, {{30, 10}});
    exif.Short(ExifDirectory::Exif, 0x9207, {5});
    exif.Short(ExifDirectory::Exif, 0x9208, {0});
    exif.Short(ExifDirectory::Exif, 0x9209, {16});
    exif.Rational(ExifDirectory::Exif, 0x920A, {{124, 10}});
    exif.Short(ExifDirectory::Exif, 0xA405, {26});
}

void AddCameraTags(ExifWriter& exif, int width, int height, uint32_t seed) {
    exif.Undefined(ExifDirectory::Exif, 0xA000, "0100");
    exif.Short(ExifDirectory::Exif, 0xA001, {1});
    exif.Long(ExifDirectory::Exif, 0xA002, static_cast<uint32_t>(width));
    exif.Long(ExifDirectory::Exif, 0xA003, static_cast<uint32_t>(height));
    exif.Short(ExifDirectory::Exif, 0xA217, {2});
    exif.Undefined(ExifDirectory::Exif, 0xA300, "\x03");
    exif.Undefined(ExifDirectory::Exif, 0xA301, "\x01");
    exif.Short(ExifDirectory::Exif, 0xA401, {0});
    exif.Short(ExifDirectory::Exif, 0xA402, {0});
    exif.Short(ExifDirectory::Exif, 0xA403, {0});
    exif.Rational(ExifDirectory::Exif, 0xA404, {{1, 1}});
    exif.Short(ExifDirectory::Exif, 0xA406, {1});
    exif.Ascii(ExifDirectory::Exif, 0xA431, "6021" + std::to_string(10000 + seed % 90000));
    exif.Ascii(ExifDirectory::Interoperability, 0x0001, "R98");
    exif.Undefined(ExifDirectory::Interoperability, 0x0002, "0100");
}

std::string MakeExif(Picture const& picture, std::string const& thumbnail, uint32_t seed, std::string const& software,
                     std::string const& modified) {
    ExifWriter exif;
    AddMainTags(exif, software, modified);
    AddExposureTags(exif);
    AddCameraTags(exif, picture.width, picture.height, seed);
    exif.SetThumbnail(thumbnail);
    return exif.MakePayload();
}

std::string Join(std::string const& jpeg, std::string const& exif) {
    std::string joined = InsertExif(jpeg, exif);
    if (joined.empty()) throw std::runtime_error("the EXIF data don't fit into a segment");
    return joined;
}

Picture Cut(Picture const& picture, Box const& box) {
    Picture part(box.width, box.height);
    for (int y = 0; y < box.height; ++y) {
        std::copy_n(picture.At(box.x, box.y + y), static_cast<size_t>(box.width) * 3, part.At(0, y));
    }
    return part;
}

// Pastes the object with its corner at (left, top) and gives the least box around what was changed.
Box Paste(Picture& picture, Picture const& part, Cutout const& object, int left, int top) {
    int right = 0;
    int bottom = 0;
    Box changed{picture.width, picture.height, 0, 0};
    for (int y = 0; y < part.height; ++y) {
        for (int x = 0; x < part.width; ++x) {
            const float opacity =
                object.coverage[static_cast<size_t>(y) * static_cast<size_t>(part.width) + static_cast<size_t>(x)];
            if (opacity <= 0) continue;
            unsigned char* target = picture.At(left + x, top + y);
            for (int channel = 0; channel < 3; ++channel) {
                const float mixed = Mix(target[channel], part.At(x, y)[channel], opacity);
                target[channel] = static_cast<unsigned char>(std::lround(mixed));
            }
            changed.x = std::min(changed.x, left + x);
            changed.y = std::min(changed.y, top + y);
            right = std::max(right, left + x + 1);
            bottom = std::max(bottom, top + y + 1);
        }
    }
    if (right == 0) throw std::runtime_error("the object to paste lies outside the picture");
    changed.width = right - changed.x;
    changed.height = bottom - changed.y;
    return changed;
}

}  // namespace

Photo MakePhoto(Picture const& picture, uint32_t seed) {
    Photo photo;
    photo.thumbnail = MakeThumbnail(picture);
    photo.jpeg = Join(EncodeAsCamera(picture), MakeExif(picture, photo.thumbnail, seed, "Lumora 60 V1.02", TakenAt));
    return photo;
}

TamperedPhoto Tamper(Photo const& photo, Cutout const& object, uint32_t seed) {
    const Picture original = Decode(photo.jpeg);
    const Picture part = Cut(original, object.box);
    Picture picture = Decode(EncodeAsProgram(original, SharedQuality));
    // Off the 8 by 8 grid in both directions.
    const int left = std::clamp((object.box.x - picture.width * 27 / 100) / 8 * 8 + 3, 0, picture.width - part.width);
    const int top = std::clamp((object.box.y + picture.height / 60) / 8 * 8 + 5, 0, picture.height - part.height);
    TamperedPhoto tampered;
    tampered.region = Paste(picture, part, object, left, top);
    tampered.jpeg = Join(EncodeAsProgram(picture, ProgramQuality),
                         MakeExif(picture, photo.thumbnail, seed, "GIMP 2.10.34", "2023:11:02 21:15:08"));
    return tampered;
}

}  // namespace sample
