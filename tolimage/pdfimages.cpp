// SPDX-License-Identifier: Apache-2.0
#include "tolimage/pdfimages.h"

#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFLogger.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <string>
#include <vector>

#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/hash.h"
#include "tolbase/limits.h"
#include "tolimage/codec.h"
#include "tolimage/codec_png.h"
#include "tolimage/pdfpipeline.h"
#include "tolimage/subimages.h"

namespace {

constexpr size_t kStemLength = 32;

// A picture as it goes to a file.
struct Found {
    std::string bytes;
    char const* extension = nullptr;
};

int Whole(QPDFObjectHandle dictionary, std::string const& key) {
    QPDFObjectHandle value = dictionary.getKey(key);
    if (!value.isInteger()) return 0;
    const long long number = value.getIntValue();
    return number > 0 && number <= 0x7FFFFFFF ? static_cast<int>(number) : 0;
}

// The filters' names in their order; a lone filter need not stand in an array.
std::vector<std::string> Filters(QPDFObjectHandle dictionary) {
    std::vector<std::string> names;
    QPDFObjectHandle filter = dictionary.getKey("/Filter");
    if (filter.isName()) names.push_back(filter.getName());
    if (!filter.isArray()) return names;
    const int count = std::min(filter.getArrayNItems(), 16);
    for (int i = 0; i < count; ++i) {
        QPDFObjectHandle item = filter.getArrayItem(i);
        names.push_back(item.isName() ? item.getName() : std::string());
    }
    return names;
}

// The stream's bytes, decoded up to that level. Throws where that is not possible in full.
std::string StreamBytes(QPDFObjectHandle stream, qpdf_stream_decode_level_e level) {
    PdfBytes bytes(GetTolLimit(TolLimit::EmbeddedImageBytes));
    bool filtered = false;
    const bool whole = stream.pipeStreamData(&bytes, &filtered, 0, level, true, false);
    std::string result = bytes.Take();
    if (!whole || (level != qpdf_dl_none && !filtered)) throw std::runtime_error("a stream that can't be decoded");
    return result;
}

// All but the last item of an array.
QPDFObjectHandle WithoutLast(QPDFObjectHandle array) {
    QPDFObjectHandle shorter = QPDFObjectHandle::newArray();
    for (int i = 0; array.isArray() && i + 1 < array.getArrayNItems(); ++i) shorter.appendItem(array.getArrayItem(i));
    return shorter;
}

// A picture's own coded form. Codings that are wrapped around it are taken off, on a stream of their own since qpdf
// decodes all of a stream's codings or none.
std::string CodedPicture(QPDF& document, QPDFObjectHandle stream, size_t filters) {
    std::string bytes = StreamBytes(stream, qpdf_dl_none);
    if (filters < 2) return bytes;
    QPDFObjectHandle wrapping = QPDFObjectHandle::newStream(&document, bytes);
    wrapping.getDict().replaceKey("/Filter", WithoutLast(stream.getDict().getKey("/Filter")));
    QPDFObjectHandle parameters = stream.getDict().getKey("/DecodeParms");
    if (parameters.isArray()) wrapping.getDict().replaceKey("/DecodeParms", WithoutLast(parameters));
    return StreamBytes(wrapping, qpdf_dl_generalized);
}

// Number of channels of a colour space that PNG can hold, with the table of an indexed one; 0 for any other.
int Channels(QPDFObjectHandle space, std::string& palette) {
    if (space.isName()) {
        if (space.getName() == "/DeviceGray") return 1;
        return space.getName() == "/DeviceRGB" ? 3 : 0;
    }
    if (!space.isArray() || space.getArrayNItems() < 2 || !space.getArrayItem(0).isName()) return 0;
    const std::string kind = space.getArrayItem(0).getName();
    if (kind == "/CalGray") return 1;
    if (kind == "/CalRGB") return 3;
    if (kind == "/ICCBased" && space.getArrayItem(1).isStream()) {
        const int count = Whole(space.getArrayItem(1).getDict(), "/N");
        return count == 1 || count == 3 ? count : 0;
    }
    if (kind != "/Indexed" || space.getArrayNItems() < 4) return 0;
    std::string none;
    QPDFObjectHandle base = space.getArrayItem(1);
    if ((base.isArray() && base.getArrayNItems() > 0 && base.getArrayItem(0).isNameAndEquals("/Indexed")) ||
        Channels(base, none) != 3) {
        return 0;
    }
    QPDFObjectHandle table = space.getArrayItem(3);
    if (table.isString()) palette = table.getStringValue();
    if (table.isStream()) palette = StreamBytes(table, qpdf_dl_generalized);
    return palette.empty() ? 0 : 1;
}

// Samples of the stream as a picture in BGR order.
Image FromSamples(std::string const& samples, int width, int height, int channels, std::string const& palette) {
    const size_t rowBytes = static_cast<size_t>(width) * static_cast<size_t>(channels);
    if (samples.size() / rowBytes < static_cast<size_t>(height)) return Image();
    Image image = codec::NewImage(width, height, IPL_DEPTH_8U, palette.empty() ? channels : 3);
    for (int y = 0; y < height; ++y) {
        auto const* from = reinterpret_cast<unsigned char const*>(samples.data()) + rowBytes * static_cast<size_t>(y);
        unsigned char* to = image.Data() + static_cast<size_t>(image.Step()) * static_cast<size_t>(y);
        for (int x = 0; x < width; ++x, from += channels) {
            if (!palette.empty()) {
                const size_t entry = size_t{3} * *from;
                for (size_t c = 0; c < 3; ++c) {
                    *to++ = entry + 2 < palette.size() ? static_cast<unsigned char>(palette[entry + 2 - c]) : 0;
                }
            } else if (channels == 1) {
                *to++ = *from;
            } else {
                for (int c = 2; c >= 0; --c) *to++ = from[c];
            }
        }
    }
    return image;
}

Found FromLossless(QPDFObjectHandle stream, int width, int height) {
    QPDFObjectHandle dictionary = stream.getDict();
    Found found;
    std::string palette;
    const int channels = Channels(dictionary.getKey("/ColorSpace"), palette);
    if (Whole(dictionary, "/BitsPerComponent") != 8 || channels == 0) return found;
    const int64_t claimed = int64_t{width} * height * channels;
    if (!IsWithinTolLimit(TolLimit::EmbeddedImageBytes, static_cast<uint64_t>(claimed))) return found;
    const Image image = FromSamples(StreamBytes(stream, qpdf_dl_specialized), width, height, channels, palette);
    if (image.IsOk() && codec::EncodePng(image, found.bytes)) found.extension = "png";
    return found;
}

Found Extract(QPDF& document, QPDFObjectHandle stream, int minimumSide) {
    QPDFObjectHandle dictionary = stream.getDict();
    const int width = Whole(dictionary, "/Width");
    const int height = Whole(dictionary, "/Height");
    Found found;
    if (width == 0 || height == 0 || std::min(width, height) < minimumSide) return found;
    const std::vector<std::string> filters = Filters(dictionary);
    const std::string last = filters.empty() ? std::string() : filters.back();
    if (last == "/DCTDecode" || last == "/DCT" || last == "/JPXDecode") {
        found.bytes = CodedPicture(document, stream, filters.size());
        found.extension = last == "/JPXDecode" ? "jp2" : "jpg";
        return found;
    }
    CheckPictureSize(width, height);
    return FromLossless(stream, width, height);
}

int MinimumSide(VecParameter const& parameters) {
    for (size_t i = 0; i < parameters.size(); ++i) {
        if (parameters[i].Name() == "Minimum Side") return std::max(0, parameters[i].GetValue<int>());
    }
    return 0;
}

void WriteFound(Found const& found, wxString const& path) {
    if (CreateDirIfNotExists(path.BeforeLast('/')) && WriteFileAtomically(path, found.bytes)) return;
    throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "The file can't be written: " + path);
}

wxString Folder(wxString const& path, wxString const& stem) {
    return TolGetDumpFolder() + "/" + stem + "-" + TcvCalcHashFromFile(path, HashAlgorithm::MD5, true);
}

// Picture streams by their object's number, as the document lists them.
class Walk {
public:
    Walk(QPDF& document, VecParameter const& parameters)
        : m_document(document), m_minimumSide(MinimumSide(parameters)) {}

    template <class Take>
    void Run(Take take) {
        CheckTolLimit(TolLimit::PdfObjects, m_document.getObjectCount());
        uint64_t count = 0;
        for (QPDFObjectHandle& object : m_document.getAllObjects()) {
            if (count >= GetTolLimit(TolLimit::EmbeddedImages)) return;
            const Found found = Look(object);
            if (found.extension == nullptr || found.bytes.empty()) continue;
            take(found, object.getObjectID());
            ++count;
        }
    }

private:
    // A picture that can't be read says nothing about the others.
    Found Look(QPDFObjectHandle& object) const {
        try {
            if (!object.isStream() || !object.getDict().getKey("/Subtype").isNameAndEquals("/Image")) return Found();
            return Extract(m_document, object, m_minimumSide);
        } catch (TolException const&) {
            return Found();
        } catch (std::exception const&) {
            return Found();
        }
    }

    QPDF& m_document;
    int m_minimumSide;
};

}  // namespace

VecString tcvDumpImagesFromPdf(wxString const& path, VecParameter const& parameters) {
    VecString files;
    struct stat info {};
    const std::string native = PathToBytes(path);
    if (path.empty() || stat(native.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return files;
    CheckTolLimit(TolLimit::FileBytes, static_cast<uint64_t>(info.st_size));
    QPDF document;
    const std::shared_ptr<QPDFLogger> silent = QPDFLogger::create();
    silent->setOutputStreams(nullptr, nullptr);
    silent->setInfo(silent->discard());
    silent->setWarn(silent->discard());
    silent->setError(silent->discard());
    document.setLogger(silent);
    document.setSuppressWarnings(true);
    const wxString stem = GetFilenameNoPath(path).BeforeLast('.').empty()
                              ? GetFilenameNoPath(path).Left(kStemLength)
                              : GetFilenameNoPath(path).BeforeLast('.').Left(kStemLength);
    try {
        document.processFile(native.c_str());
        wxString folder;
        Walk(document, parameters).Run([&](Found const& found, int number) {
            if (folder.empty()) folder = Folder(path, stem);
            const wxString file =
                folder + "/" + stem + "-" + wxString::FromUTF8(std::to_string(number)) + "." + found.extension;
            WriteFound(found, file);
            files.push_back(file);
        });
    } catch (QPDFExc const&) {
        // No PDF, or one that qpdf can't mend.
    }
    return files;
}
