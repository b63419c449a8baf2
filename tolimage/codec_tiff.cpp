// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_tiff.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "tolbase/limits.h"

namespace codec {
namespace {

// Blank fax pages take a bit for a whole row.
constexpr uint64_t kPixelsPerByte = 65536;

// libtiff's view of bytes in memory, growing when written to.
struct Memory {
    unsigned char const* data = nullptr;
    uint64_t size = 0;
    std::string* target = nullptr;
    uint64_t position = 0;
    char remark[256] = {};
};

extern "C" {
tsize_t ReadMemory(thandle_t handle, void* buffer, tsize_t length) {
    auto* memory = static_cast<Memory*>(handle);
    if (memory->position >= memory->size || length <= 0) return 0;
    const auto count =
        static_cast<tsize_t>(std::min<uint64_t>(static_cast<uint64_t>(length), memory->size - memory->position));
    std::memcpy(buffer, memory->data + memory->position, static_cast<size_t>(count));
    memory->position += static_cast<uint64_t>(count);
    return count;
}
tsize_t ReadTarget(thandle_t handle, void* buffer, tsize_t length) {
    auto* memory = static_cast<Memory*>(handle);
    memory->data = reinterpret_cast<unsigned char const*>(memory->target->data());
    memory->size = memory->target->size();
    return ReadMemory(handle, buffer, length);
}
tsize_t WriteNothing(thandle_t, void*, tsize_t) {
    return -1;
}
tsize_t WriteTarget(thandle_t handle, void* buffer, tsize_t length) {
    auto* memory = static_cast<Memory*>(handle);
    if (length <= 0) return 0;
    const uint64_t end = memory->position + static_cast<uint64_t>(length);
    if (end > memory->target->size()) memory->target->resize(end);
    std::memcpy(&(*memory->target)[memory->position], buffer, static_cast<size_t>(length));
    memory->position = end;
    return length;
}
toff_t SeekMemory(thandle_t handle, toff_t offset, int whence) {
    auto* memory = static_cast<Memory*>(handle);
    const uint64_t size = memory->target != nullptr ? memory->target->size() : memory->size;
    const uint64_t base = whence == SEEK_CUR ? memory->position : whence == SEEK_END ? size : 0;
    memory->position = base + offset;
    return memory->position;
}
int CloseMemory(thandle_t) {
    return 0;
}
toff_t SizeOfMemory(thandle_t handle) {
    auto* memory = static_cast<Memory*>(handle);
    return memory->target != nullptr ? memory->target->size() : memory->size;
}
int OnTiffError(TIFF*, void* user, char const*, char const* format, va_list arguments) {
    auto* memory = static_cast<Memory*>(user);
    if (memory->remark[0] == 0) std::vsnprintf(memory->remark, sizeof memory->remark, format, arguments);
    return 1;
}
int OnTiffWarning(TIFF*, void*, char const*, char const*, va_list) {
    return 1;
}
}

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

TiffHandle OpenTiff(Memory& memory, char const* mode) {
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (options == nullptr) return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(options, OnTiffError, &memory);
    TIFFOpenOptionsSetWarningHandlerExtR(options, OnTiffWarning, &memory);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, static_cast<tmsize_t>(GetTolLimit(TolLimit::FileBytes)));
    const bool writes = memory.target != nullptr;
    TIFF* tiff = TIFFClientOpenExt("memory", mode, &memory, writes ? ReadTarget : ReadMemory,
                                   writes ? WriteTarget : WriteNothing, SeekMemory, CloseMemory, SizeOfMemory, nullptr,
                                   nullptr, options);
    TIFFOpenOptionsFree(options);
    return TiffHandle(tiff);
}

struct Layout {
    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t bits = 1;
    uint16_t samples = 1;
    uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    uint16_t planar = PLANARCONFIG_CONTIG;
    uint16_t kind = SAMPLEFORMAT_UINT;
    uint16_t compression = COMPRESSION_NONE;
};

bool ReadLayout(TIFF* tiff, Layout& layout) {
    if (TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &layout.width) == 0) return false;
    if (TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &layout.height) == 0) return false;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &layout.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &layout.samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &layout.planar);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &layout.kind);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &layout.compression);
    if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &layout.photometric) == 0 && layout.samples >= 3) {
        layout.photometric = PHOTOMETRIC_RGB;
    }
    return true;
}

[[noreturn]] void Fail(Memory const& memory) {
    throw DecodeError(ByteErrorKind::Corrupt,
                      memory.remark[0] != 0 ? memory.remark : "the TIFF structure can't be read");
}

// Layouts whose samples can be taken as they are.
bool IsPlain(Layout const& layout) {
    const bool depth = (layout.kind == SAMPLEFORMAT_UINT && (layout.bits == 8 || layout.bits == 16)) ||
                       (layout.kind == SAMPLEFORMAT_IEEEFP && layout.bits == 32);
    const bool grey = layout.photometric == PHOTOMETRIC_MINISBLACK || layout.photometric == PHOTOMETRIC_MINISWHITE;
    const bool colour = layout.photometric == PHOTOMETRIC_RGB && layout.samples >= 3;
    return depth && layout.samples >= 1 && layout.samples <= 16 && (grey || colour);
}

int TargetChannels(Layout const& layout) {
    if (layout.photometric == PHOTOMETRIC_RGB) return layout.samples >= 4 ? 4 : 3;
    return layout.samples >= 2 ? 2 : 1;
}

int TargetDepth(Layout const& layout) {
    if (layout.kind == SAMPLEFORMAT_IEEEFP) return IPL_DEPTH_32F;
    return layout.bits == 16 ? IPL_DEPTH_16U : IPL_DEPTH_8U;
}

// Puts samples of file order into the picture: red and blue change places, further samples are left out.
class Placer {
public:
    Placer(Layout const& layout, Image& image)
        : m_image(image),
          m_sampleBytes(layout.bits / 8U),
          m_samples(layout.samples),
          m_channels(image.Channels()),
          m_separate(layout.planar == PLANARCONFIG_SEPARATE) {}

    // One run of a row; `sample` counts only where the samples stand in planes of their own.
    void Put(uint32_t x, uint32_t y, uint32_t count, unsigned char const* source, int sample) {
        unsigned char* row = m_image.Data() + static_cast<size_t>(m_image.Step()) * y;
        const size_t pixelBytes = m_sampleBytes * static_cast<size_t>(m_channels);
        const size_t sourceStep = m_separate ? m_sampleBytes : m_sampleBytes * m_samples;
        const int from = m_separate ? sample : 0;
        const int to = m_separate ? sample + 1 : m_channels;
        for (int c = from; c < to && c < m_channels; ++c) {
            unsigned char* target = row + pixelBytes * x + m_sampleBytes * static_cast<size_t>(Swapped(c));
            unsigned char const* at = source + (m_separate ? 0 : m_sampleBytes * static_cast<size_t>(c));
            for (uint32_t i = 0; i < count; ++i, target += pixelBytes, at += sourceStep) {
                std::memcpy(target, at, m_sampleBytes);
            }
        }
    }
    int Planes() const { return m_separate ? m_channels : 1; }
    size_t SourcePixelBytes() const { return m_separate ? m_sampleBytes : m_sampleBytes * m_samples; }

private:
    int Swapped(int channel) const { return m_channels >= 3 && channel < 3 ? 2 - channel : channel; }

    Image& m_image;
    size_t m_sampleBytes;
    size_t m_samples;
    int m_channels;
    bool m_separate;
};

// Both give the number of strips' rows or tiles that could be read.
uint64_t ReadByRows(TIFF* tiff, Layout const& layout, Placer& placer) {
    const tmsize_t lineBytes = TIFFScanlineSize(tiff);
    if (lineBytes <= 0 || static_cast<uint64_t>(lineBytes) < uint64_t{layout.width} * placer.SourcePixelBytes())
        return 0;
    std::vector<unsigned char> line(static_cast<size_t>(lineBytes));
    uint64_t rows = 0;
    for (int plane = 0; plane < placer.Planes(); ++plane) {
        for (uint32_t y = 0; y < layout.height; ++y, ++rows) {
            if (TIFFReadScanline(tiff, line.data(), y, static_cast<uint16_t>(plane)) < 0) return rows;
            placer.Put(0, y, layout.width, line.data(), plane);
        }
    }
    return rows;
}

uint64_t ReadByTiles(TIFF* tiff, Layout const& layout, Placer& placer, Memory& memory) {
    uint32_t tileWidth = 0;
    uint32_t tileHeight = 0;
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileHeight);
    const tmsize_t tileBytes = TIFFTileSize(tiff);
    if (tileWidth == 0 || tileHeight == 0 || tileBytes <= 0) return 0;
    CheckSize(tileWidth, tileHeight, memory.size, kPixelsPerByte);
    const size_t rowBytes = placer.SourcePixelBytes() * tileWidth;
    if (static_cast<uint64_t>(tileBytes) < uint64_t{rowBytes} * tileHeight) return 0;
    std::vector<unsigned char> tile(static_cast<size_t>(tileBytes));
    uint64_t done = 0;
    for (int plane = 0; plane < placer.Planes(); ++plane) {
        for (uint64_t y = 0; y < layout.height; y += tileHeight) {
            for (uint64_t x = 0; x < layout.width; x += tileWidth, ++done) {
                if (TIFFReadTile(tiff, tile.data(), static_cast<uint32_t>(x), static_cast<uint32_t>(y), 0,
                                 static_cast<uint16_t>(plane)) < 0) {
                    return done;
                }
                const uint64_t columns = std::min<uint64_t>(tileWidth, layout.width - x);
                const uint64_t rows = std::min<uint64_t>(tileHeight, layout.height - y);
                for (uint64_t i = 0; i < rows; ++i) {
                    placer.Put(static_cast<uint32_t>(x), static_cast<uint32_t>(y + i), static_cast<uint32_t>(columns),
                               tile.data() + i * rowBytes, plane);
                }
            }
        }
    }
    return done;
}

// White and black change places.
void Invert(Image& image) {
    cv::Mat matrix = image;
    const double top = matrix.depth() == CV_8U ? 255.0 : matrix.depth() == CV_16U ? 65535.0 : 1.0;
    matrix.convertTo(matrix, -1, -1.0, top);
}

Image DecodePlain(TIFF* tiff, Layout const& layout, Memory& memory) {
    Image image = NewImage(static_cast<int>(layout.width), static_cast<int>(layout.height), TargetDepth(layout),
                           TargetChannels(layout));
    Placer placer(layout, image);
    const bool tiled = TIFFIsTiled(tiff) != 0;
    const uint64_t done = tiled ? ReadByTiles(tiff, layout, placer, memory) : ReadByRows(tiff, layout, placer);
    if (done == 0) Fail(memory);
    if (memory.remark[0] != 0) Warn(std::string("TIFF: ") + memory.remark);
    if (layout.photometric == PHOTOMETRIC_MINISWHITE && image.Channels() == 1) Invert(image);
    return image;
}

// libtiff's own conversion, asked for in the picture's own orientation so that nothing is turned.
Image DecodeConverted(TIFF* tiff, Layout const& layout, Memory& memory) {
    char why[1024] = {};
    TIFFRGBAImage converter{};
    if (TIFFRGBAImageOK(tiff, why) == 0 || TIFFRGBAImageBegin(&converter, tiff, 0, why) == 0) {
        throw DecodeError(ByteErrorKind::Unsupported, why);
    }
    converter.req_orientation = converter.orientation;
    std::vector<uint32_t> raster(static_cast<size_t>(layout.width) * layout.height);
    const int done = TIFFRGBAImageGet(&converter, raster.data(), layout.width, layout.height);
    TIFFRGBAImageEnd(&converter);
    if (done == 0) Fail(memory);
    if (memory.remark[0] != 0) Warn(std::string("TIFF: ") + memory.remark);
    Image image = NewImage(static_cast<int>(layout.width), static_cast<int>(layout.height), IPL_DEPTH_8U, 3);
    for (uint32_t y = 0; y < layout.height; ++y) {
        unsigned char* target = image.Data() + static_cast<size_t>(image.Step()) * y;
        uint32_t const* source = raster.data() + static_cast<size_t>(layout.width) * y;
        for (uint32_t x = 0; x < layout.width; ++x, target += 3) {
            target[0] = static_cast<unsigned char>(TIFFGetB(source[x]));
            target[1] = static_cast<unsigned char>(TIFFGetG(source[x]));
            target[2] = static_cast<unsigned char>(TIFFGetR(source[x]));
        }
    }
    return image;
}

}  // namespace

Image DecodeTiff(ByteView file) {
    Memory memory;
    memory.data = file.Data();
    memory.size = file.Size();
    const TiffHandle tiff = OpenTiff(memory, "rm");
    Layout layout;
    if (!tiff || !ReadLayout(tiff.get(), layout)) Fail(memory);
    CheckSize(layout.width, layout.height, file.Size(), kPixelsPerByte);
    memory.remark[0] = 0;
    return IsPlain(layout) ? DecodePlain(tiff.get(), layout, memory) : DecodeConverted(tiff.get(), layout, memory);
}

void ProbeTiff(ByteView file, ImageProbe& probe) {
    Memory memory;
    memory.data = file.Data();
    memory.size = file.Size();
    const TiffHandle tiff = OpenTiff(memory, "rm");
    Layout layout;
    if (!tiff || !ReadLayout(tiff.get(), layout) || layout.width > 0x7FFFFFFFU || layout.height > 0x7FFFFFFFU) return;
    probe.width = static_cast<int>(layout.width);
    probe.height = static_cast<int>(layout.height);
    probe.channels = layout.photometric == PHOTOMETRIC_PALETTE ? 3 : layout.samples;
    probe.bitsPerPixel = layout.bits * layout.samples;
}

bool EncodeTiff(cv::Mat const& picture, std::string& bytes) {
    const int channels = picture.channels();
    if (channels == 2 || channels > 4 || (picture.depth() != CV_8U && picture.depth() != CV_16U)) return false;
    bytes.clear();
    Memory memory;
    memory.target = &bytes;
    TiffHandle tiff = OpenTiff(memory, "wm");
    if (!tiff) return false;
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(picture.cols));
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(picture.rows));
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, picture.depth() == CV_16U ? 16 : 8);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, channels);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff.get(), TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff.get(), 0));
    if (channels == 4) {
        const uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff.get(), TIFFTAG_EXTRASAMPLES, 1, &alpha);
    }
    const size_t rowBytes = picture.elemSize() * static_cast<size_t>(picture.cols);
    const size_t sample = picture.elemSize1();
    std::vector<unsigned char> row(rowBytes);
    for (int y = 0; y < picture.rows; ++y) {
        std::memcpy(row.data(), picture.ptr(y), rowBytes);
        for (size_t at = 0; channels >= 3 && at < rowBytes; at += picture.elemSize()) {
            std::swap_ranges(row.data() + at, row.data() + at + sample, row.data() + at + 2 * sample);
        }
        if (TIFFWriteScanline(tiff.get(), row.data(), static_cast<uint32_t>(y), 0) < 0) return false;
    }
    return TIFFFlush(tiff.get()) != 0;
}

}  // namespace codec
