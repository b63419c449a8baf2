// SPDX-License-Identifier: Apache-2.0
#include "tolimage/imageio.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

#include "tolbase/bytereader.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/filebytes.h"
#include "tolbase/largepages.h"
#include "tolbase/limits.h"
#include "tolimage/codec.h"
#include "tolimage/codec_bmp.h"
#include "tolimage/codec_heif.h"
#include "tolimage/codec_jpeg.h"
#include "tolimage/codec_png.h"
#include "tolimage/codec_raw.h"
#include "tolimage/codec_tiff.h"
#include "tolimage/codec_webp.h"
#include "tolimage/exiftool.h"

namespace {

struct Remarks {
    wxString error;
    wxString warning;
};

Remarks& ThreadRemarks() {
    thread_local Remarks remarks;
    return remarks;
}

wxString Text(std::string const& utf8) {
    return wxString::FromUTF8(utf8.c_str());
}

wxString KindText(ByteErrorKind kind) {
    switch (kind) {
        case ByteErrorKind::Truncated:
            return "Truncated: ";
        case ByteErrorKind::Corrupt:
            return "Corrupt: ";
        case ByteErrorKind::Unsupported:
            break;
    }
    return "Unsupported: ";
}

// Runs a decoder and keeps the reason of its failure.
template <class Work>
Image Guarded(Work work) {
    ThreadRemarks() = Remarks();
    wxString& error = ThreadRemarks().error;
    try {
        return work();
    } catch (codec::DecodeError const& failure) {
        error = KindText(failure.GetKind()) + Text(failure.what());
    } catch (codec::ImplausibleSize const& failure) {
        error = "Refused: " + Text(failure.what());
    } catch (ByteError const& failure) {
        error = KindText(failure.GetKind()) + Text(failure.what());
    } catch (TolException const& failure) {
        error = failure.GetMessage();
    } catch (std::bad_alloc const&) {
        error = "Refused: memory is short";
    } catch (std::exception const& failure) {
        error = "Corrupt: " + Text(failure.what());
    }
    return Image();
}

// The bytes of a regular file, not set to zero first. Null with a reason where that can't be had.
struct FileBytes {
    std::unique_ptr<unsigned char, void (*)(void*)> data{nullptr, std::free};
    size_t size = 0;

    ByteView View() const { return ByteView(data.get(), size); }
};

FileBytes ReadWhole(wxString const& path) {
    const tolbase::FileDescriptor file = tolbase::OpenRegularFile(PathToBytes(path));
    struct stat info {};
    if (!file.IsOk() || fstat(file.Get(), &info) != 0) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           "Unreadable: the file is missing, can't be opened or is no regular file");
    }
    CheckTolLimit(TolLimit::FileBytes, static_cast<uint64_t>(info.st_size));
    FileBytes bytes;
    const auto expected = static_cast<size_t>(info.st_size);
    bytes.data.reset(static_cast<unsigned char*>(std::malloc(std::max<size_t>(expected, 1))));
    if (!bytes.data) throw std::bad_alloc();
    tolbase::UseLargePages(bytes.data.get(), expected);
    while (bytes.size < expected) {
        const ssize_t count = read(file.Get(), bytes.data.get() + bytes.size, expected - bytes.size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        bytes.size += static_cast<size_t>(count);
    }
    return bytes;
}

// 8 bits, one or three channels.
Image Normalise(Image const& image) {
    const Image shallow = image.To8Bit();
    switch (shallow.Channels()) {
        case 2:
            return shallow.ToGray();
        case 4:
            return shallow.ToColor();
        default:
            return shallow;
    }
}

bool IsJpegOrPng(ByteView file) {
    const codec::Format format = codec::Sniff(file);
    return format == codec::Format::Jpeg || format == codec::Format::Png;
}

Image OwnThumbnail(ByteView file) {
    switch (codec::Sniff(file)) {
        case codec::Format::Heif:
            return codec::DecodeHeifThumbnail(file);
        case codec::Format::Raw:
            return codec::DecodeRawThumbnail(file);
        default:
            return Image();
    }
}

bool Encode(wxString const& extension, Image const& image, int quality, std::string& bytes) {
    if (extension == "tif" || extension == "tiff") return codec::EncodeTiff(image, bytes);
    if (extension == "bmp") return codec::EncodeBmp(Normalise(image), bytes);
    if (extension == "webp") return codec::EncodeWebP(image.To8Bit(), quality, bytes);
    if (extension == "jpg" || extension == "jpeg") return codec::EncodeJpeg(Normalise(image), quality, bytes);
    return false;
}

// A picture with the same pixels that any of the encoders takes.
Image Savable(_IplImage const* header, bool keepDeep) {
    Image image = Image::FromMat(cv::cvarrToMat(header));
    if (!(keepDeep && header->depth == IPL_DEPTH_16U)) image = image.To8Bit();
    return image.Channels() == 2 ? image.ToGray() : image;
}

}  // namespace

namespace codec {

void Warn(std::string const& remark) {
    if (ThreadRemarks().warning.empty()) ThreadRemarks().warning = Text(remark);
}

}  // namespace codec

_IplImage* tcvLoadImage(wxString const& path, bool color, bool asStored) {
    Image image = Guarded([&] {
        const FileBytes bytes = ReadWhole(path);
        const Image stored = codec::Decode(bytes.View());
        if (!color) return stored.ToGray();
        return asStored ? stored : Normalise(stored);
    });
    return image.Release();
}

_IplImage* tcvLoadOwnImage(wxString const& path) {
    Image image = Guarded([&] {
        const FileBytes bytes = ReadWhole(path);
        const bool png = codec::Sniff(bytes.View()) == codec::Format::Png;
        return png ? codec::DecodePng(bytes.View(), codec::PngSums::OfChunks) : codec::Decode(bytes.View());
    });
    return image.Release();
}

wxString tcvLastLoadError() {
    return ThreadRemarks().error;
}

wxString tcvLastLoadWarning() {
    return ThreadRemarks().warning;
}

Image DecodeImageFromMemory(unsigned char const* data, size_t size) {
    return Guarded([&] { return Normalise(codec::Decode(ByteView(data, data == nullptr ? 0 : size))); });
}

_IplImage* tcvLoadThumbnail(wxString const& path) {
    Image image = Guarded([&] {
        const FileBytes bytes = ReadWhole(path);
        return IsJpegOrPng(bytes.View()) ? Image() : Normalise(OwnThumbnail(bytes.View()));
    });
    // An error here is the file's own; its EXIF thumbnail may still be whole.
    const bool ask = !image.IsOk() && !ThreadRemarks().error.StartsWith("Unreadable");
    if (ask) {
        const std::string coded = ExifToolReadBinary(path, "ThumbnailImage");
        if (coded.empty()) {
            ThreadRemarks() = Remarks();
            return nullptr;
        }
        image = DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(coded.data()), coded.size());
    }
    return image.Release();
}

bool tcvEncodeImage(wxString const& format, _IplImage const* image, int quality, ImagePacking packing,
                    std::string& bytes) {
    try {
        if (image == nullptr || image->imageData == nullptr) return false;
        const wxString extension = format.Lower();
        const bool keepDeep = extension == "png" || extension == "tif" || extension == "tiff";
        const Image savable = Savable(image, keepDeep);
        if (extension == "png") return codec::EncodePng(savable, bytes, packing == ImagePacking::Small);
        return Encode(extension, savable, std::clamp(quality, 1, 100), bytes);
    } catch (std::exception const&) {
        return false;
    }
}

bool tcvSaveImage(wxString const& path, _IplImage const* image, int quality) {
    try {
        std::string bytes;
        const wxString extension = path.AfterLast('/').AfterLast('.');
        return tcvEncodeImage(extension, image, quality, ImagePacking::Small, bytes) &&
               WriteFileAtomically(path, bytes);
    } catch (std::exception const&) {
        return false;
    }
}

VecString GetReadableImageFormats() {
    return {"jpg",  "jpeg", "jpe", "jfif", "mpo", "png", "tif", "tiff", "bmp", "dib", "gif", "webp",
            "heic", "heif", "hif", "avif", "pbm", "pgm", "ppm", "pnm",  "ico", "cur", "tga", "3fr",
            "arw",  "cr2",  "cr3", "crw",  "dcr", "dng", "erf", "iiq",  "kdc", "mef", "mos", "mrw",
            "nef",  "nrw",  "orf", "pef",  "raf", "raw", "rw2", "rwl",  "sr2", "srf", "srw", "x3f"};
}

VecString GetWritableImageFormats() {
    return {"jpg", "jpeg", "png", "tif", "tiff", "bmp", "webp"};
}

ImageProbe tcvProbeImage(wxString const& path) {
    try {
        const FileBytes bytes = ReadWhole(path);
        return codec::Probe(bytes.View());
    } catch (std::exception const&) {
        return ImageProbe();
    }
}
