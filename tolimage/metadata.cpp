// SPDX-License-Identifier: Apache-2.0
#include "tolimage/metadata.h"

#include <algorithm>
#include <array>

#include "tolimage/details_rows.h"
#include "tolimage/exiftool.h"

bool IsMetadataValue(ExifToolValue const& value) {
    return value.group0 != "ExifTool" && value.group0 != "File" && value.group0 != "Composite" &&
           value.group1 != "System";
}

wxString MetadataName(ExifToolValue const& value) {
    return value.group1 + ":" + value.tag;
}

VecVecString MetadataRows(ExifToolValues const& values) {
    VecVecString rows;
    for (ExifToolValue const& value : values) {
        if (IsMetadataValue(value)) rows.push_back({MetadataName(value), value.value});
    }
    return rows;
}

bool IsRawType(wxString const& fileType) {
    static const std::array<char const*, 34> types = {"3FR", "ARQ", "ARW", "CR2", "CR3", "CRW",  "CS1", "DCR", "DNG",
                                                      "ERF", "FFF", "GPR", "IIQ", "K25", "KDC",  "MEF", "MOS", "MRW",
                                                      "NEF", "NRW", "ORF", "PEF", "RAF", "RAW",  "RW2", "RWL", "RWZ",
                                                      "SR2", "SRF", "SRW", "X3F", "CRM", "CIFF", "ORI"};
    return std::any_of(types.begin(), types.end(), [&](char const* type) { return fileType == type; });
}

void tcvLoadImageMetadata(wxString const& path, std::vector<NameValueDesc>& list) {
    for (ExifToolValue const& value : ExifToolRead(path)) {
        if (IsMetadataValue(value)) list.push_back(NameValueDesc(MetadataName(value), value.value, value.group0));
    }
}

VecString GetKnownsSoftwareStrings() {
    // Left out on purpose: words that cameras' own names hold ("camera", "photo", "image", "capture", makers' names),
    // and short ones that a firmware's code may spell by chance, such as "vsco", "dxo" and "b612" in Samsung's.
    return {"photoshop",
            "lightroom",
            "adobe",
            "gimp",
            "paint.net",
            "paint shop",
            "paintshop",
            "photo-paint",
            "corel",
            "photofiltre",
            "photoscape",
            "photoimpact",
            "photodirector",
            "photodraw",
            "photolab",
            "photoplus",
            "photopos",
            "photoworks",
            "photo mechanic",
            "photo gallery",
            "photo editor",
            "photo viewer",
            "photo supreme",
            "picasa",
            "picsart",
            "picmonkey",
            "pixlr",
            "pixelmator",
            "snapseed",
            "polarr",
            "vscocam",
            "facetune",
            "meitu",
            "beautyplus",
            "fotor",
            "canva",
            "affinity",
            "acdsee",
            "acd systems",
            "irfanview",
            "xnview",
            "faststone",
            "imagemagick",
            "graphicsmagick",
            "imageready",
            "fireworks",
            "inkscape",
            "krita",
            "darktable",
            "rawtherapee",
            "digikam",
            "gwenview",
            "shotwell",
            "showfoto",
            "capture one",
            "capture nx",
            "viewnx",
            "nx studio",
            "digital photo professional",
            "zoombrowser",
            "imagebrowser",
            "aperture",
            "iphoto",
            "luminar",
            "perfectly clear",
            "photomatix",
            "aurora hdr",
            "on1 photo",
            "dxo optics",
            "dxo pureraw",
            "topaz",
            "nik collection",
            "noise ninja",
            "neat image",
            "ptgui",
            "hugin",
            "autostitch",
            "panorama factory",
            "microsoft office",
            "microsoft ice",
            "windows photo",
            "windows live",
            "ms paint",
            "ulead",
            "microsoft picture it",
            "digital image suite",
            "magix",
            "serif",
            "zoner",
            "gallery remote",
            "jasc",
            "jpegmini",
            "mozjpeg",
            "libformat",
            "perfect365",
            "prisma",
            "faceapp",
            "remini",
            "midjourney",
            "dall-e",
            "stable diffusion",
            "generative fill"};
}
