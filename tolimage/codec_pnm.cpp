// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_pnm.h"

#include <algorithm>

namespace codec {
namespace {

constexpr uint64_t kPixelsPerByte = 8;

struct Head {
    int kind = 0;  // 1 to 6
    int64_t width = 0;
    int64_t height = 0;
    int64_t top = 1;  // the greatest value
    uint64_t data = 0;

    bool IsBitmap() const { return kind == 1 || kind == 4; }
    bool IsText() const { return kind <= 3; }
    int Channels() const { return kind == 3 || kind == 6 ? 3 : 1; }
};

// Comments run from '#' to the end of their line.
void SkipBlanks(ByteView file, uint64_t& at) {
    for (;; ++at) {
        const unsigned char c = file.At(at);
        if (c == '#') {
            while (file.At(at) != '\n') ++at;
        } else if (c > ' ') {
            return;
        }
    }
}

int64_t Number(ByteView file, uint64_t& at) {
    SkipBlanks(file, at);
    int64_t value = 0;
    const uint64_t start = at;
    for (; file.Has(at, 1) && file.At(at) >= '0' && file.At(at) <= '9' && value < (int64_t{1} << 32); ++at) {
        value = value * 10 + (file.At(at) - '0');
    }
    if (at == start || value >= (int64_t{1} << 31)) throw DecodeError(ByteErrorKind::Corrupt, "a number in a PNM file");
    return value;
}

Head ReadHead(ByteView file) {
    Head head;
    head.kind = file.At(1) - '0';
    uint64_t at = 2;
    head.width = Number(file, at);
    head.height = Number(file, at);
    if (!head.IsBitmap()) head.top = Number(file, at);
    if (head.top < 1 || head.top > 65535) throw DecodeError(ByteErrorKind::Corrupt, "the greatest value of a PNM file");
    head.data = at + 1;
    return head;
}

// The samples one after the other, whatever their form.
class Samples {
public:
    Samples(ByteView file, Head const& head) : m_file(file), m_head(head), m_at(head.data) {}

    int Next() {
        if (m_head.kind == 1) {
            SkipBlanks(m_file, m_at);
            return m_file.At(m_at++) == '1' ? 0 : 1;
        }
        if (m_head.kind == 4) return NextBit();
        if (m_head.IsText()) return static_cast<int>(std::min(Number(m_file, m_at), m_head.top));
        const int bytes = m_head.top > 255 ? 2 : 1;
        const int value = bytes == 2 ? m_file.U16(m_at, true) : m_file.At(m_at);
        m_at += static_cast<uint64_t>(bytes);
        return std::min(value, static_cast<int>(m_head.top));
    }
    // Packed rows begin at whole bytes.
    void EndRow() {
        if (m_bit > 0) ++m_at;
        m_bit = 0;
    }

private:
    int NextBit() {
        const int black = m_file.At(m_at) >> (7 - m_bit) & 1;
        if (++m_bit == 8) {
            m_bit = 0;
            ++m_at;
        }
        return 1 - black;
    }

    ByteView m_file;
    Head const& m_head;
    uint64_t m_at;
    int m_bit = 0;
};

void Fill(Samples& samples, Head const& head, Image& image) {
    const int channels = head.Channels();
    const bool deep = head.top > 255;
    const int64_t full = deep ? 65535 : 255;
    for (int y = 0; y < image.Height(); ++y, samples.EndRow()) {
        unsigned char* row = image.Data() + static_cast<size_t>(image.Step()) * static_cast<size_t>(y);
        for (int x = 0; x < image.Width(); ++x) {
            for (int c = 0; c < channels; ++c) {
                const int64_t value = (samples.Next() * full + head.top / 2) / head.top;
                const int place = x * channels + (channels == 3 ? 2 - c : 0);
                if (deep) {
                    reinterpret_cast<uint16_t*>(row)[place] = static_cast<uint16_t>(value);
                } else {
                    row[place] = static_cast<unsigned char>(value);
                }
            }
        }
    }
}

}  // namespace

void ReadPnmHead(ByteView file, ImageProbe& probe) {
    const Head head = ReadHead(file);
    probe.width = static_cast<int>(head.width);
    probe.height = static_cast<int>(head.height);
    probe.channels = head.Channels();
    probe.bitsPerPixel = head.IsBitmap() ? 1 : probe.channels * (head.top > 255 ? 16 : 8);
}

Image DecodePnm(ByteView file) {
    const Head head = ReadHead(file);
    CheckSize(head.width, head.height, file.Size(), kPixelsPerByte);
    Image image = NewImage(static_cast<int>(head.width), static_cast<int>(head.height),
                           head.top > 255 ? IPL_DEPTH_16U : IPL_DEPTH_8U, head.Channels());
    Samples samples(file, head);
    if (!file.Has(head.data, 1)) throw ByteError(ByteErrorKind::Truncated, file.Size(), "samples");
    try {
        Fill(samples, head, image);
    } catch (ByteError const& error) {
        Warn(std::string("PNM: ") + error.what());
    } catch (DecodeError const& error) {
        Warn(std::string("PNM: ") + error.what());
    }
    return image;
}

}  // namespace codec
