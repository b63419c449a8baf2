// SPDX-License-Identifier: Apache-2.0
// Writes EXIF data as a camera does: a little-endian TIFF block (Exif 2.3, section 4.5) with the main directory, the
// EXIF directory and a thumbnail. Plain values; one thread at a time.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace sample {

enum class ExifDirectory { Main, Exif, Interoperability };

class ExifWriter {
public:
    // Each replaces an earlier value of the tag.
    void Ascii(ExifDirectory directory, uint16_t tag, std::string const& text);
    void Byte(ExifDirectory directory, uint16_t tag, std::string const& bytes);
    void Undefined(ExifDirectory directory, uint16_t tag, std::string const& bytes);
    void Short(ExifDirectory directory, uint16_t tag, std::vector<uint16_t> const& values);
    void Long(ExifDirectory directory, uint16_t tag, uint32_t value);
    void Rational(ExifDirectory directory, uint16_t tag, std::vector<std::pair<uint32_t, uint32_t>> const& values);
    void SignedRational(ExifDirectory directory, uint16_t tag, int32_t numerator, int32_t denominator);

    // A JPEG stream; it gets the second directory. Empty for none.
    void SetThumbnail(std::string const& jpeg) { m_thumbnail = jpeg; }

    // The payload of an APP1 segment: "Exif", two NULs, the TIFF block.
    std::string MakePayload() const;

private:
    struct Value {
        uint16_t type = 0;
        uint32_t count = 0;
        std::string bytes;
    };
    using Directory = std::map<uint16_t, Value>;

    void Set(ExifDirectory directory, uint16_t tag, uint16_t type, uint32_t count, std::string const& bytes);
    static void Append(std::string& tiff, Directory const& directory, uint32_t next);
    static uint32_t SizeOf(Directory const& directory);
    Directory MakeThumbnailDirectory(uint32_t offset) const;

    std::array<Directory, 3> m_directories;
    std::string m_thumbnail;
};

// The JPEG with the payload as its first APP1 segment, in the place of a JFIF segment where it has one. Empty if the
// payload is longer than a segment holds.
std::string InsertExif(std::string const& jpeg, std::string const& payload);

}  // namespace sample
