// SPDX-License-Identifier: Apache-2.0
#include "tools/sample/exifwriter.h"

#include <cstddef>

namespace sample {
namespace {

constexpr uint16_t TypeByte = 1;
constexpr uint16_t TypeAscii = 2;
constexpr uint16_t TypeShort = 3;
constexpr uint16_t TypeLong = 4;
constexpr uint16_t TypeRational = 5;
constexpr uint16_t TypeUndefined = 7;
constexpr uint16_t TypeSignedRational = 10;
constexpr uint16_t TagExifDirectory = 0x8769;
constexpr uint16_t TagInteroperability = 0xA005;
constexpr uint32_t HeaderSize = 8;
constexpr uint32_t EntrySize = 12;
constexpr size_t InlineBytes = 4;
constexpr size_t MaxSegment = 65533;

std::string Bytes16(uint32_t value) {
    return {static_cast<char>(value & 0xFFU), static_cast<char>((value >> 8U) & 0xFFU)};
}

std::string Bytes32(uint32_t value) {
    return Bytes16(value & 0xFFFFU) + Bytes16(value >> 16U);
}

// Values stand at even offsets.
uint32_t PaddedSize(size_t size) {
    return static_cast<uint32_t>(size + size % 2);
}

}  // namespace

void ExifWriter::Set(ExifDirectory directory, uint16_t tag, uint16_t type, uint32_t count, std::string const& bytes) {
    m_directories.at(static_cast<size_t>(directory))[tag] = Value{type, count, bytes};
}

void ExifWriter::Ascii(ExifDirectory directory, uint16_t tag, std::string const& text) {
    Set(directory, tag, TypeAscii, static_cast<uint32_t>(text.size() + 1), text + '\0');
}

void ExifWriter::Byte(ExifDirectory directory, uint16_t tag, std::string const& bytes) {
    Set(directory, tag, TypeByte, static_cast<uint32_t>(bytes.size()), bytes);
}

void ExifWriter::Undefined(ExifDirectory directory, uint16_t tag, std::string const& bytes) {
    Set(directory, tag, TypeUndefined, static_cast<uint32_t>(bytes.size()), bytes);
}

void ExifWriter::Short(ExifDirectory directory, uint16_t tag, std::vector<uint16_t> const& values) {
    std::string bytes;
    for (const uint16_t value : values) bytes += Bytes16(value);
    Set(directory, tag, TypeShort, static_cast<uint32_t>(values.size()), bytes);
}

void ExifWriter::Long(ExifDirectory directory, uint16_t tag, uint32_t value) {
    Set(directory, tag, TypeLong, 1, Bytes32(value));
}

void ExifWriter::Rational(ExifDirectory directory, uint16_t tag,
                          std::vector<std::pair<uint32_t, uint32_t>> const& values) {
    std::string bytes;
    for (auto const& value : values) bytes += Bytes32(value.first) + Bytes32(value.second);
    Set(directory, tag, TypeRational, static_cast<uint32_t>(values.size()), bytes);
}

void ExifWriter::SignedRational(ExifDirectory directory, uint16_t tag, int32_t numerator, int32_t denominator) {
    Set(directory, tag, TypeSignedRational, 1,
        Bytes32(static_cast<uint32_t>(numerator)) + Bytes32(static_cast<uint32_t>(denominator)));
}

uint32_t ExifWriter::SizeOf(Directory const& directory) {
    uint32_t size = 2 + EntrySize * static_cast<uint32_t>(directory.size()) + 4;
    for (auto const& entry : directory) {
        if (entry.second.bytes.size() > InlineBytes) size += PaddedSize(entry.second.bytes.size());
    }
    return size;
}

// Writes the directory at the end of the block, its long values behind it.
void ExifWriter::Append(std::string& tiff, Directory const& directory, uint32_t next) {
    auto place = static_cast<uint32_t>(tiff.size() + 2 + EntrySize * directory.size() + 4);
    std::string values;
    tiff += Bytes16(static_cast<uint32_t>(directory.size()));
    for (auto const& [tag, value] : directory) {
        tiff += Bytes16(tag) + Bytes16(value.type) + Bytes32(value.count);
        std::string bytes = value.bytes;
        if (bytes.size() <= InlineBytes) {
            bytes.resize(InlineBytes, '\0');
            tiff += bytes;
            continue;
        }
        bytes.resize(PaddedSize(bytes.size()), '\0');
        tiff += Bytes32(place);
        place += static_cast<uint32_t>(bytes.size());
        values += bytes;
    }
    tiff += Bytes32(next) + values;
}

ExifWriter::Directory ExifWriter::MakeThumbnailDirectory(uint32_t offset) const {
    Directory directory;
    directory[0x0103] = {TypeShort, 1, Bytes16(6)};
    directory[0x011A] = {TypeRational, 1, Bytes32(72) + Bytes32(1)};
    directory[0x011B] = {TypeRational, 1, Bytes32(72) + Bytes32(1)};
    directory[0x0128] = {TypeShort, 1, Bytes16(2)};
    directory[0x0201] = {TypeLong, 1, Bytes32(offset)};
    directory[0x0202] = {TypeLong, 1, Bytes32(static_cast<uint32_t>(m_thumbnail.size()))};
    return directory;
}

std::string ExifWriter::MakePayload() const {
    Directory main = m_directories[0];
    Directory exif = m_directories[1];
    Directory const& interoperability = m_directories[2];
    // The pointers take part in the sizes, so they are set before these are taken.
    if (!exif.empty() || !interoperability.empty()) main[TagExifDirectory] = {TypeLong, 1, Bytes32(0)};
    if (!interoperability.empty()) exif[TagInteroperability] = {TypeLong, 1, Bytes32(0)};
    const uint32_t exifPlace = HeaderSize + SizeOf(main);
    const uint32_t interoperabilityPlace = exifPlace + (exif.empty() ? 0 : SizeOf(exif));
    const uint32_t thumbnailPlace = interoperabilityPlace + (interoperability.empty() ? 0 : SizeOf(interoperability));
    if (!exif.empty()) main[TagExifDirectory].bytes = Bytes32(exifPlace);
    if (!interoperability.empty()) exif[TagInteroperability].bytes = Bytes32(interoperabilityPlace);

    std::string tiff = "II" + Bytes16(42) + Bytes32(HeaderSize);
    Append(tiff, main, m_thumbnail.empty() ? 0 : thumbnailPlace);
    if (!exif.empty()) Append(tiff, exif, 0);
    if (!interoperability.empty()) Append(tiff, interoperability, 0);
    if (!m_thumbnail.empty()) {
        Append(tiff, MakeThumbnailDirectory(thumbnailPlace + SizeOf(MakeThumbnailDirectory(0))), 0);
        tiff += m_thumbnail;
    }
    return std::string("Exif\0\0", 6) + tiff;
}

std::string InsertExif(std::string const& jpeg, std::string const& payload) {
    if (payload.size() > MaxSegment || jpeg.size() < 20) return std::string();
    size_t rest = 2;
    if (jpeg.compare(2, 2, "\xFF\xE0") == 0) {
        rest += 2 + (static_cast<unsigned char>(jpeg[4]) << 8U) + static_cast<unsigned char>(jpeg[5]);
    }
    const size_t length = payload.size() + 2;
    const std::string head = {'\xFF', '\xE1', static_cast<char>(length >> 8U), static_cast<char>(length & 0xFFU)};
    return jpeg.substr(0, 2) + head + payload + jpeg.substr(rest);
}

}  // namespace sample
