// SPDX-License-Identifier: Apache-2.0
#include "tolimage/components.h"

#include <curl/curl.h>
#include <libheif/heif.h>
#include <libraw/libraw_version.h>
#include <openssl/crypto.h>
#include <png.h>
#include <tiffio.h>
#include <webp/decode.h>
#include <wx/version.h>
#include <zlib.h>

#include <boost/version.hpp>
#include <nlohmann/json.hpp>
#include <opencv2/core/utility.hpp>
#include <qpdf/QPDF.hh>
#include <string>

#include <cstdio>

#include <jpeglib.h>

#include "tolimage/exiftool.h"

namespace {

wxString Text(std::string const& utf8) {
    return wxString::FromUTF8(utf8);
}

wxString Dotted(int major, int minor, int patch) {
    return Text(std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch));
}

#define ORV_TEXT_OF(x) #x
#define ORV_TEXT(x) ORV_TEXT_OF(x)
// libjpeg-turbo has no call that tells its version.
constexpr char const* kJpegTurbo = ORV_TEXT(LIBJPEG_TURBO_VERSION);
#undef ORV_TEXT
#undef ORV_TEXT_OF

wxString CurlVersion() {
    return Text(curl_version_info(CURLVERSION_NOW)->version);
}

// "LIBTIFF, Version 4.5.0" and a copyright in further lines.
wxString TiffVersion() {
    return Text(TIFFGetVersion()).BeforeFirst('\n').AfterLast(' ');
}

wxString WebPVersion() {
    const int version = WebPGetDecoderVersion();
    return Dotted(version >> 16, version >> 8 & 0xFF, version & 0xFF);
}

wxString ExifToolText() {
    const wxString version = ExifToolVersion();
    return version.empty() ? wxString("not found") : version;
}

}  // namespace

std::vector<std::pair<wxString, wxString>> GetComponentVersions() {
    return {{"OpenCV", Text(cv::getVersionString())},
            {"wxWidgets", Dotted(wxMAJOR_VERSION, wxMINOR_VERSION, wxRELEASE_NUMBER)},
            {"Boost", Dotted(BOOST_VERSION / 100000, BOOST_VERSION / 100 % 1000, BOOST_VERSION % 100)},
            {"nlohmann-json",
             Dotted(NLOHMANN_JSON_VERSION_MAJOR, NLOHMANN_JSON_VERSION_MINOR, NLOHMANN_JSON_VERSION_PATCH)},
            {"libcurl", CurlVersion()},
            {"OpenSSL", Text(OpenSSL_version(OPENSSL_VERSION_STRING))},
            {"ExifTool", ExifToolText()},
            {"libjpeg-turbo", Text(kJpegTurbo)},
            {"libpng", Text(png_get_libpng_ver(nullptr))},
            {"zlib", Text(zlibVersion())},
            {"libtiff", TiffVersion()},
            {"libwebp", WebPVersion()},
            {"libheif", Text(heif_get_version())},
            {"LibRaw", Dotted(LIBRAW_MAJOR_VERSION, LIBRAW_MINOR_VERSION, LIBRAW_PATCH_VERSION)},
            {"qpdf", Text(QPDF::QPDFVersion())}};
}
