// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec.h"

#include "tolbase/limits.h"
#include "tolimage/codec_bmp.h"
#include "tolimage/codec_gif.h"
#include "tolimage/codec_heif.h"
#include "tolimage/codec_jpeg.h"
#include "tolimage/codec_png.h"
#include "tolimage/codec_pnm.h"
#include "tolimage/codec_raw.h"
#include "tolimage/codec_tga.h"
#include "tolimage/codec_tiff.h"
#include "tolimage/codec_webp.h"

namespace codec {
namespace {

constexpr int64_t kFreePixels = int64_t{16} << 20;

bool Starts(ByteView file, std::string const& magic, uint64_t offset = 0) {
    return file.Matches(offset, magic.data(), magic.size());
}

bool IsPnm(ByteView file) {
    return file.Has(0, 3) && file.At(0) == 'P' && file.At(1) >= '1' && file.At(1) <= '6' &&
           (file.At(2) == ' ' || (file.At(2) >= '\t' && file.At(2) <= '\r') || file.At(2) == '#');
}

bool IsRawMagic(ByteView file) {
    return Starts(file, "FUJIFILMCCD-RAW") || Starts(file, "FOVb") || Starts(file, std::string("\0MRM", 4)) ||
           Starts(file, "HEAPCCDR", 6) || Starts(file, std::string("IIU\0", 4)) || Starts(file, "IIRO") ||
           Starts(file, "IIRS") || Starts(file, "MMOR") || Starts(file, "ftypcrx", 4) || Starts(file, "CR\x02", 8);
}

bool IsTiffMagic(ByteView file) {
    return Starts(file, std::string("II*\0", 4)) || Starts(file, std::string("MM\0*", 4)) ||
           Starts(file, std::string("II+\0", 4)) || Starts(file, std::string("MM\0+", 4));
}

// A TIFF container that libtiff reads as an ordinary picture stays one; LibRaw is asked about the others.
Image DecodeTiffOrRaw(ByteView file) {
    if (IsOrdinaryTiff(file)) return DecodeTiff(file);
    try {
        return DecodeRaw(file);
    } catch (DecodeError const&) {
        return DecodeTiff(file);
    }
}

}  // namespace

ImplausibleSize::ImplausibleSize(int64_t width, int64_t height, uint64_t bytes)
    : std::runtime_error(std::to_string(width) + "x" + std::to_string(height) + " pixels in a file of " +
                         std::to_string(bytes) + " bytes") {}

Format Sniff(ByteView file) {
    if (Starts(file, "\xFF\xD8\xFF")) return Format::Jpeg;
    if (Starts(file, "\x89PNG\r\n\x1A\n")) return Format::Png;
    if (IsRawMagic(file)) return Format::Raw;
    if (IsTiffMagic(file)) return IsOrdinaryTiff(file) || !IsRaw(file) ? Format::Tiff : Format::Raw;
    if (Starts(file, "RIFF") && Starts(file, "WEBP", 8)) return Format::WebP;
    if (Starts(file, "jP  \r\n\x87\n", 4) || Starts(file, "\xFF\x4F\xFF\x51")) return Format::Jpeg2000;
    if (Starts(file, "\xFF\x0A") || Starts(file, "JXL \r\n\x87\n", 4)) return Format::JpegXl;
    if (Starts(file, "ftyp", 4)) return IsHeif(file) ? Format::Heif : Format::Unknown;
    if (Starts(file, "8BPS")) return Format::Photoshop;
    if (Starts(file, "GIF87a") || Starts(file, "GIF89a")) return Format::Gif;
    if (IsBmp(file)) return Format::Bmp;
    if (IsPnm(file)) return Format::Pnm;
    if (IsIco(file)) return Format::Ico;
    if (IsTga(file)) return Format::Tga;
    // Rubbish behind the first marker, which JPEG decoders pass over.
    if (Starts(file, "\xFF\xD8")) return Format::Jpeg;
    return Format::Unknown;
}

char const* FormatName(Format format, ByteView file) {
    switch (format) {
        case Format::Jpeg:
            return "JPEG";
        case Format::Png:
            return "PNG";
        case Format::Tiff:
            return "TIFF";
        case Format::WebP:
            return "WEBP";
        case Format::Heif:
            return HeifName(file);
        case Format::Raw:
            return "RAW";
        case Format::Bmp:
            return "BMP";
        case Format::Gif:
            return "GIF";
        case Format::Pnm:
            return "PNM";
        case Format::Ico:
            return "ICO";
        case Format::Tga:
            return "TGA";
        case Format::Jpeg2000:
            return "JP2";
        case Format::JpegXl:
            return "JXL";
        case Format::Photoshop:
            return "PSD";
        case Format::Unknown:
            break;
    }
    return "";
}

void CheckSize(int64_t width, int64_t height, uint64_t bytes, uint64_t pixelsPerByte) {
    if (width <= 0 || height <= 0) throw DecodeError(ByteErrorKind::Corrupt, "the picture has no size");
    CheckPictureSize(width, height);
    const int64_t pixels = width * height;
    if (pixels > kFreePixels && static_cast<uint64_t>(pixels) / pixelsPerByte > bytes) {
        throw ImplausibleSize(width, height, bytes);
    }
}

namespace {

Image Fitting(Image image) {
    if (!image.IsOk()) throw DecodeError(ByteErrorKind::Unsupported, "the picture does not fit into memory");
    return image;
}

}  // namespace

Image NewImage(int width, int height, int depth, int channels) {
    return Fitting(Image::Create(width, height, depth, channels));
}

Image NewUnsetImage(int width, int height, int depth, int channels) {
    return Fitting(Image::CreateUnset(width, height, depth, channels));
}

Image Decode(ByteView file) {
    const Format format = Sniff(file);
    switch (format) {
        case Format::Jpeg:
            return DecodeJpeg(file);
        case Format::Png:
            return DecodePng(file);
        case Format::Tiff:
            return DecodeTiffOrRaw(file);
        case Format::WebP:
            return DecodeWebP(file);
        case Format::Heif:
            return DecodeHeif(file);
        case Format::Raw:
            return DecodeRaw(file);
        case Format::Pnm:
            return DecodePnm(file);
        case Format::Bmp:
            return DecodeBmp(file);
        case Format::Gif:
            return DecodeGif(file);
        case Format::Ico:
            return DecodeIco(file);
        case Format::Tga:
            return DecodeTga(file);
        case Format::Jpeg2000:
        case Format::JpegXl:
        case Format::Photoshop:
            throw DecodeError(ByteErrorKind::Unsupported,
                              std::string("pictures of the format ") + FormatName(format, file) + " are not decoded");
        case Format::Unknown:
            break;
    }
    if (file.IsEmpty()) throw DecodeError(ByteErrorKind::Truncated, "the file is empty");
    throw DecodeError(ByteErrorKind::Unsupported, "the content is no picture of a known format");
}

namespace {

void ProbeFormat(Format format, ByteView file, ImageProbe& probe) {
    switch (format) {
        case Format::Jpeg:
            return ProbeJpeg(file, probe);
        case Format::Png:
            return ProbePng(file, probe);
        case Format::Tiff:
            return ProbeTiff(file, probe);
        case Format::WebP:
            return ProbeWebP(file, probe);
        case Format::Heif:
            return ProbeHeif(file, probe);
        case Format::Raw:
            return ProbeRaw(file, probe);
        case Format::Bmp:
            return ProbeBmp(file, probe);
        case Format::Gif:
            return ProbeGif(file, probe);
        case Format::Pnm:
            return ReadPnmHead(file, probe);
        case Format::Ico:
            return ProbeIco(file, probe);
        case Format::Tga:
            return ProbeTga(file, probe);
        default:
            return;
    }
}

}  // namespace

ImageProbe Probe(ByteView file) {
    ImageProbe probe;
    const Format format = Sniff(file);
    try {
        ProbeFormat(format, file, probe);
    } catch (std::runtime_error const&) {
        // A head that makes no sense tells no size.
        probe = ImageProbe();
    }
    probe.format = FormatName(format, file);
    probe.ok = probe.width > 0 && probe.height > 0;
    return probe;
}

}  // namespace codec
