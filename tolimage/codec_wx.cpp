// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_wx.h"

#include <wx/image.h>
#include <wx/log.h>
#include <wx/mstream.h>

#include <cstring>
#include <memory>
#include <vector>

#include "tolimage/codec_heads.h"
#include "tolimage/codec_png.h"

namespace codec {
namespace {

std::unique_ptr<wxImageHandler> NewHandler(Format format) {
    switch (format) {
        case Format::Bmp:
            return std::make_unique<wxBMPHandler>();
        case Format::Gif:
            return std::make_unique<wxGIFHandler>();
        case Format::Pnm:
            return std::make_unique<wxPNMHandler>();
        case Format::Ico:
            return std::make_unique<wxICOHandler>();
        default:
            return std::make_unique<wxTGAHandler>();
    }
}

Image FromWxImage(wxImage const& source) {
    const int width = source.GetWidth();
    const int height = source.GetHeight();
    Image image = NewImage(width, height, IPL_DEPTH_8U, 3);
    unsigned char const* from = source.GetData();
    for (int y = 0; y < height; ++y) {
        unsigned char* to = image.Data() + static_cast<size_t>(image.Step()) * static_cast<size_t>(y);
        for (int x = 0; x < width; ++x, from += 3, to += 3) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        }
    }
    return image;
}

Image Load(Format format, void const* data, size_t size) {
    const wxLogNull quiet;
    wxMemoryInputStream stream(data, size);
    wxImage picture;
    if (!NewHandler(format)->LoadFile(&picture, stream, false, 0) || !picture.IsOk()) {
        throw DecodeError(ByteErrorKind::Corrupt, "the picture can't be decoded");
    }
    return FromWxImage(picture);
}

// wxImage paints what is transparent in a colour of its own; without the flag it uses the palette.
Image LoadGif(ByteView file, GifHead const& head) {
    std::vector<unsigned char> bytes(file.Data(), file.Data() + file.Size());
    for (const uint64_t at : head.transparencyFlags) bytes[static_cast<size_t>(at)] &= 0xFEU;
    return Load(Format::Gif, bytes.data(), bytes.size());
}

Image LoadIco(ByteView file) {
    const IcoEntry entry = LargestIcoEntry(file);
    const ByteView part = file.Sub(entry.offset, entry.length, "an icon's picture");
    if (part.Matches(0, "\x89PNG", 4)) return DecodePng(part);
    // One picture with a directory of its own is what the handler reads at index 0.
    std::vector<unsigned char> bytes = {0, 0, 1, 0, 1, 0};
    const ByteView directory = file.Sub(entry.directory, 12);
    bytes.insert(bytes.end(), directory.Data(), directory.Data() + directory.Size());
    const unsigned char place[] = {22, 0, 0, 0};
    bytes.insert(bytes.end(), place, place + sizeof place);
    bytes.insert(bytes.end(), part.Data(), part.Data() + part.Size());
    return Load(Format::Ico, bytes.data(), bytes.size());
}

}  // namespace

Image DecodeByWx(Format format, ByteView file) {
    ImageProbe probe;
    GifHead gif;
    if (format == Format::Gif) {
        gif = ReadGifHead(file);
        CheckSize(gif.width, gif.height, file.Size(), PixelsPerByte(format));
        CheckSize(gif.frameWidth, gif.frameHeight, file.Size(), PixelsPerByte(format));
        return LoadGif(file, gif);
    }
    ReadHead(format, file, probe);
    CheckSize(probe.width, probe.height, file.Size(), PixelsPerByte(format));
    return format == Format::Ico ? LoadIco(file) : Load(format, file.Data(), file.Size());
}

void ProbeByWx(Format format, ByteView file, ImageProbe& probe) {
    try {
        ReadHead(format, file, probe);
    } catch (ByteError const&) {
        probe.width = probe.height = 0;
    } catch (DecodeError const&) {
        probe.width = probe.height = 0;
    }
}

namespace {

void Append(std::string& bytes, uint32_t value, int count) {
    for (int i = 0; i < count; ++i) bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
}

}  // namespace

bool EncodeBmp(cv::Mat const& picture, std::string& bytes) {
    const int channels = picture.channels();
    if (picture.depth() != CV_8U || (channels != 1 && channels != 3)) return false;
    const uint64_t rowBytes = (static_cast<uint64_t>(picture.cols) * static_cast<uint64_t>(channels) + 3) / 4 * 4;
    const uint64_t pixelBytes = rowBytes * static_cast<uint64_t>(picture.rows);
    const uint32_t paletteBytes = channels == 1 ? 1024 : 0;
    const uint32_t start = 54 + paletteBytes;
    if (pixelBytes + start > 0x7FFFFFFFU) return false;
    bytes.clear();
    bytes.reserve(static_cast<size_t>(pixelBytes) + start);
    bytes += "BM";
    Append(bytes, static_cast<uint32_t>(pixelBytes) + start, 4);
    Append(bytes, 0, 4);
    Append(bytes, start, 4);
    Append(bytes, 40, 4);
    Append(bytes, static_cast<uint32_t>(picture.cols), 4);
    Append(bytes, static_cast<uint32_t>(picture.rows), 4);
    Append(bytes, 1, 2);
    Append(bytes, static_cast<uint32_t>(8 * channels), 2);
    Append(bytes, 0, 4);
    Append(bytes, static_cast<uint32_t>(pixelBytes), 4);
    Append(bytes, 2835, 4);  // 72 dots to the inch
    Append(bytes, 2835, 4);
    Append(bytes, channels == 1 ? 256 : 0, 4);
    Append(bytes, 0, 4);
    for (uint32_t i = 0; i < paletteBytes / 4; ++i) Append(bytes, i << 16 | i << 8 | i, 4);
    const size_t used = static_cast<size_t>(picture.cols) * static_cast<size_t>(channels);
    for (int y = picture.rows - 1; y >= 0; --y) {
        bytes.append(reinterpret_cast<char const*>(picture.ptr(y)), used);
        bytes.append(static_cast<size_t>(rowBytes) - used, '\0');
    }
    return true;
}

}  // namespace codec
