// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_gif.h"

#include <algorithm>
#include <array>

namespace codec {
namespace {

// A code of twelve bits stands for at most 4,096 pixels.
constexpr uint64_t kPixelsPerByte = 4096;
constexpr int kMaxCodes = 4096;

struct Frame {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool interlaced = false;
    ByteView palette;
    uint64_t data = 0;  // of the byte that tells the code's length
};

int PaletteEntries(unsigned packed) {
    return (packed & 0x80U) != 0 ? 2 << (packed & 7U) : 0;
}

// Past sub-blocks, each of which begins with its length.
uint64_t SkipSubBlocks(ByteView file, uint64_t at) {
    while (file.At(at) != 0) at += 1 + uint64_t{file.At(at)};
    return at + 1;
}

Frame FirstFrame(ByteView file) {
    const int global = PaletteEntries(file.At(10));
    Frame frame;
    frame.palette = file.Sub(13, uint64_t{3} * static_cast<unsigned>(global), "the palette");
    uint64_t at = 13 + frame.palette.Size();
    while (file.At(at) == 0x21) at = SkipSubBlocks(file, at + 2);
    if (file.At(at) != 0x2C) throw ByteError(ByteErrorKind::Corrupt, at, "a frame");
    frame.left = file.U16(at + 1, false);
    frame.top = file.U16(at + 3, false);
    frame.width = file.U16(at + 5, false);
    frame.height = file.U16(at + 7, false);
    const unsigned packed = file.At(at + 9);
    frame.interlaced = (packed & 0x40U) != 0;
    const int local = PaletteEntries(packed);
    at += 10;
    if (local > 0) frame.palette = file.Sub(at, uint64_t{3} * static_cast<unsigned>(local), "the palette");
    frame.data = at + uint64_t{3} * static_cast<unsigned>(local);
    return frame;
}

// The codes of the sub-blocks, their first bit the lowest.
class Codes {
public:
    Codes(ByteView file, uint64_t at) : m_file(file), m_at(at) {}

    // -1 at the end of the data.
    int Next(int bits) {
        while (m_have < bits) {
            if (m_left == 0) {
                if (!m_file.Has(m_at, 1) || m_file.At(m_at) == 0) return -1;
                m_left = m_file.At(m_at++);
            }
            if (!m_file.Has(m_at, 1)) return -1;
            m_buffer |= static_cast<unsigned>(m_file.At(m_at++)) << m_have;
            m_have += 8;
            --m_left;
        }
        const auto code = static_cast<int>(m_buffer & ((1U << bits) - 1));
        m_buffer >>= bits;
        m_have -= bits;
        return code;
    }

private:
    ByteView m_file;
    uint64_t m_at;
    int m_left = 0;
    unsigned m_buffer = 0;
    int m_have = 0;
};

// Gives the palette indices in their order to `put`, which says when it has enough; false if the data end before.
class Lzw {
public:
    Lzw(ByteView file, uint64_t at) : m_codes(file, at + 1), m_minimum(file.At(at)) {
        if (m_minimum < 1 || m_minimum > 11) throw ByteError(ByteErrorKind::Corrupt, at, "a code length of 1 to 11");
    }

    template <class Put>
    bool Run(Put put) {
        const int clear = 1 << m_minimum;
        Reset();
        for (;;) {
            const int code = m_codes.Next(m_bits);
            if (code < 0 || code == clear + 1) return false;
            if (code == clear) {
                Reset();
                continue;
            }
            if (code > m_next || (m_previous < 0 && code >= clear)) return false;
            const int length = Expand(code, clear);
            for (int i = length; i > 0; --i) {
                if (!put(m_stack[static_cast<size_t>(i - 1)])) return true;
            }
        }
    }

private:
    void Reset() {
        m_bits = m_minimum + 1;
        m_next = (1 << m_minimum) + 2;
        m_previous = -1;
    }

    // The code's indices, the last one first, on the stack; and the new code that it makes with the one before.
    int Expand(int code, int clear) {
        int length = 0;
        int at = code;
        if (code == m_next) {
            m_stack[static_cast<size_t>(length++)] = m_first;
            at = m_previous;
        }
        // Each code's prefix is smaller than itself, so this ends.
        while (at >= clear + 2) {
            m_stack[static_cast<size_t>(length++)] = m_suffix[static_cast<size_t>(at)];
            at = m_prefix[static_cast<size_t>(at)];
        }
        m_first = static_cast<unsigned char>(at);
        m_stack[static_cast<size_t>(length++)] = m_first;
        if (m_previous >= 0 && m_next < kMaxCodes) {
            m_prefix[static_cast<size_t>(m_next)] = static_cast<uint16_t>(m_previous);
            m_suffix[static_cast<size_t>(m_next)] = m_first;
            ++m_next;
            if (m_next == 1 << m_bits && m_bits < 12) ++m_bits;
        }
        m_previous = code;
        return length;
    }

    Codes m_codes;
    int m_minimum;
    int m_bits = 0;
    int m_next = 0;
    int m_previous = -1;
    unsigned char m_first = 0;
    std::array<uint16_t, kMaxCodes> m_prefix{};
    std::array<unsigned char, kMaxCodes> m_suffix{};
    std::array<unsigned char, kMaxCodes + 2> m_stack{};
};

// The rows of an interlaced frame in the order of the file: every eighth, the fourths between, and so on.
class RowOrder {
public:
    RowOrder(int height, bool interlaced) : m_height(height), m_interlaced(interlaced) {}

    int Row() const { return m_row; }
    // False behind the last row.
    bool Advance() {
        if (!m_interlaced) return ++m_row < m_height;
        m_row += kSteps[m_pass];
        while (m_row >= m_height && m_pass < 3) m_row = kStarts[++m_pass];
        return m_row < m_height;
    }

private:
    static constexpr int kStarts[4] = {0, 4, 2, 1};
    static constexpr int kSteps[4] = {8, 8, 4, 2};
    int m_height;
    bool m_interlaced;
    int m_row = 0;
    int m_pass = 0;
};

}  // namespace

Image DecodeGif(ByteView file) {
    const int width = file.U16(6, false);
    const int height = file.U16(8, false);
    const Frame frame = FirstFrame(file);
    CheckSize(width, height, file.Size(), kPixelsPerByte);
    CheckSize(frame.width, frame.height, file.Size(), kPixelsPerByte);
    Image image = NewImage(width, height, IPL_DEPTH_8U, 3);
    RowOrder order(frame.height, frame.interlaced);
    int x = 0;
    Lzw lzw(file, frame.data);
    const bool whole = lzw.Run([&](unsigned char index) {
        const int column = frame.left + x;
        const int row = frame.top + order.Row();
        const uint64_t entry = uint64_t{3} * index;
        if (column < width && row < height && frame.palette.Has(entry, 3)) {
            unsigned char* pixel = image.Data() + static_cast<size_t>(image.Step()) * static_cast<size_t>(row) +
                                   3 * static_cast<size_t>(column);
            for (uint64_t c = 0; c < 3; ++c) pixel[2 - c] = frame.palette.At(entry + c);
        }
        if (++x < frame.width) return true;
        x = 0;
        return order.Advance();
    });
    if (!whole) {
        if (x == 0 && order.Row() == 0) throw DecodeError(ByteErrorKind::Corrupt, "GIF data without a row");
        Warn("GIF: the data end before the last row");
    }
    return image;
}

void ProbeGif(ByteView file, ImageProbe& probe) {
    probe.width = file.U16(6, false);
    probe.height = file.U16(8, false);
    probe.channels = 3;
    probe.bitsPerPixel = static_cast<int>(file.At(10) & 7U) + 1;
}

}  // namespace codec
