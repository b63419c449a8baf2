// SPDX-License-Identifier: Apache-2.0
// Files for the tests of tables that read the slots: JPEG streams with chosen EXIF texts, and pictures without
// metadata.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "tests/support/engine.h"

namespace support {

// The JPEG stream with an EXIF directory of these tags, in this order; texts have one to three characters, and a tag
// may stand there twice.
inline std::string WithTags(std::string const& jpeg, std::vector<std::pair<unsigned, std::string>> const& tags) {
    ExifBytes tiff;
    tiff.Raw(std::string("II*\0", 4));
    tiff.Long(8);
    tiff.Short(static_cast<unsigned>(tags.size()));
    for (auto const& [tag, text] : tags) {
        tiff.Short(tag);
        tiff.Short(2);
        tiff.Long(text.size() + 1);
        tiff.Raw((text + std::string(3, '\0')).substr(0, 4));
    }
    tiff.Long(0);
    const std::string payload = std::string("Exif\0\0", 6) + tiff.Bytes();
    const std::size_t length = payload.size() + 2;
    return jpeg.substr(0, 2) + "\xFF\xE1" + static_cast<char>(length >> 8) + static_cast<char>(length & 0xFF) +
           payload + jpeg.substr(2);
}

// A BMP of 16 by 16 grey pixels: it holds no metadata at all.
inline std::string PlainBmp() {
    ExifBytes bytes;
    bytes.Raw("BM");
    for (const std::size_t value : {54 + 768, 0, 54, 40, 16, 16}) bytes.Long(value);
    bytes.Short(1);
    bytes.Short(24);
    for (const std::size_t value : {0, 768, 2835, 2835, 0, 0}) bytes.Long(value);
    bytes.Raw(std::string(768, '\x60'));
    return bytes.Bytes();
}

// An engine with its options, and short ways to put files into the slots.
class Slots : public Engine {
protected:
    Slots() { StartOptions(); }
    wxString LoadBytes(std::string const& bytes, wxString const& name, OrvFileId id = Evidence) {
        wxString const path = WriteBytes(dir / ("in/" + name), bytes);
        Load(path, id);
        return path;
    }
};

// The cells of one column.
inline VecString Column(VecVecString const& table, std::size_t column) {
    VecString cells;
    for (VecString const& row : table) cells.push_back(column < row.size() ? row[column] : wxString("(none)"));
    return cells;
}

// The value of the row with this name in a table of names and values.
inline wxString ValueOf(VecVecString const& table, wxString const& name) {
    for (VecString const& row : table) {
        if (row[0] == name) return row[1];
    }
    return "(no such row)";
}

}  // namespace support
