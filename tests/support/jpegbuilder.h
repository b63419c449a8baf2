// SPDX-License-Identifier: Apache-2.0
// Builds JPEG byte strings marker by marker, the malformed ones too. What it makes need not be decodable.
#pragma once
#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace support {

// A quantisation table in zigzag order that counts up from `first`: no encoder's.
inline std::array<int, 64> CountingTable(int first) {
    std::array<int, 64> table{};
    for (size_t k = 0; k < 64; ++k) table[k] = first + static_cast<int>(k);
    return table;
}

inline std::array<int, 64> FlatTable(int value) {
    std::array<int, 64> table{};
    table.fill(value);
    return table;
}

class JpegBuilder {
public:
    using Table = std::array<int, 64>;
    struct Component {
        int id, factors, table;  // factors as the file holds them: 0x21 is 2x1
    };

    JpegBuilder& Bytes(std::string const& bytes) {
        m_bytes += bytes;
        return *this;
    }
    JpegBuilder& Marker(int code) {
        m_bytes += '\xFF';
        return Byte(code);
    }
    JpegBuilder& Segment(int code, std::string const& payload) {
        Marker(code);
        Word(static_cast<int>(payload.size()) + 2);
        return Bytes(payload);
    }
    // A segment whose length field says something else.
    JpegBuilder& LyingSegment(int code, int length, std::string const& payload) {
        Marker(code);
        Word(length);
        return Bytes(payload);
    }
    JpegBuilder& Soi() { return Marker(0xD8); }
    JpegBuilder& Eoi() { return Marker(0xD9); }
    JpegBuilder& App(int number, std::string const& payload) { return Segment(0xE0 + number, payload); }
    JpegBuilder& Jfif() { return App(0, std::string("JFIF\0\1\1\0\0\1\0\1\0\0", 14)); }
    JpegBuilder& Adobe(int transform) {
        return App(14, std::string("Adobe\0\x64\0\0\0\0", 11) + static_cast<char>(transform));
    }
    JpegBuilder& Comment(std::string const& text) { return Segment(0xFE, text); }

    // Tables of one segment, each with its index, in zigzag order.
    JpegBuilder& Dqt(std::initializer_list<std::pair<int, Table>> tables, bool isWide = false) {
        std::string payload;
        for (auto const& [index, table] : tables) {
            payload += static_cast<char>(index + (isWide ? 16 : 0));
            for (const int value : table) {
                if (isWide) payload += static_cast<char>(value / 256);
                payload += static_cast<char>(value % 256);
            }
        }
        return Segment(0xDB, payload);
    }
    JpegBuilder& Dqt(int index, Table const& table) { return Dqt({{index, table}}); }

    JpegBuilder& Frame(int code, int width, int height, std::vector<Component> const& components, int precision = 8) {
        std::string payload;
        for (const int part : {precision, height / 256, height % 256, width / 256, width % 256}) {
            payload += static_cast<char>(part);
        }
        payload += static_cast<char>(components.size());
        for (Component const& c : components) {
            for (const int part : {c.id, c.factors, c.table}) payload += static_cast<char>(part);
        }
        return Segment(code, payload);
    }
    // Three components: the first with these factors, the others 1x1.
    JpegBuilder& ColourFrame(int code, int width, int height, int factors) {
        return Frame(code, width, height, {{1, factors, 0}, {2, 0x11, 1}, {3, 0x11, 1}});
    }
    JpegBuilder& GreyFrame(int width, int height) { return Frame(0xC0, width, height, {{1, 0x11, 0}}); }

    JpegBuilder& Dht(int tableClass, int index, std::array<int, 16> const& counts, std::string const& values) {
        std::string payload(1, static_cast<char>(tableClass * 16 + index));
        for (const int count : counts) payload += static_cast<char>(count);
        return Segment(0xC4, payload + values);
    }
    // The luminance DC table of ITU-T T.81, table K.3.
    JpegBuilder& StandardDcTable(int index = 0) {
        return Dht(0, index, {0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0},
                   std::string("\0\1\2\3\4\5\6\7\10\11\12\13", 12));
    }
    JpegBuilder& RestartInterval(int units) {
        return Segment(0xDD, {static_cast<char>(units / 256), static_cast<char>(units % 256)});
    }
    JpegBuilder& Scan(std::string const& data = std::string("\x12\x34\xFF\0\x56", 5)) {
        Segment(0xDA, std::string("\1\1\0\0\x3F\0", 6));
        return Bytes(data);
    }
    JpegBuilder& Restart(int number) { return Marker(0xD0 + number).Bytes("\x55"); }

    std::string const& Build() const { return m_bytes; }

private:
    JpegBuilder& Byte(int value) {
        m_bytes += static_cast<char>(value);
        return *this;
    }
    JpegBuilder& Word(int value) { return Byte(value / 256).Byte(value % 256); }

    std::string m_bytes;
};

// A small grey picture with one counting table, whole from SOI to EOI.
inline std::string SmallJpeg(int first = 1, int width = 8, int height = 8) {
    return JpegBuilder()
        .Soi()
        .Dqt(0, CountingTable(first))
        .GreyFrame(width, height)
        .StandardDcTable()
        .Scan()
        .Eoi()
        .Build();
}

}  // namespace support
