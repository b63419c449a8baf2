// SPDX-License-Identifier: Apache-2.0
// ExifTool's answers, values and binary ones.
#include "tests/fuzz/target.h"
#include "tolbase/exception.h"
#include "tolbase/limits.h"
#include "tolbase/text.h"
#include "tolimage/exiftool_answer.h"

namespace fuzz {

namespace {

constexpr uint64_t LongestValue = 64;
constexpr uint64_t MostValues = 50;

void Run(std::string const& bytes) {
    SetTolLimit(TolLimit::MetadataValueBytes, LongestValue);
    SetTolLimit(TolLimit::MetadataValues, MostValues);
    try {
        ExifToolValues const values = ParseExifToolAnswer(bytes);
        // One more tells how many were left out.
        Require(values.size() <= MostValues + 1, "no more values than the limit");
        for (ExifToolValue const& value : values) {
            // Each byte of another encoding is at most two in UTF-8.
            Require(TolToUtf8(value.value).size() <= 2 * LongestValue + 16, "no longer value than the limit");
        }
    } catch (TolException const&) {
    }
    try {
        Require(ParseExifToolBinary(bytes).size() <= bytes.size(), "what is unpacked is smaller");
    } catch (TolException const&) {
    }
    ExifToolText(bytes);
}

std::vector<std::string> Seeds() {
    std::string const head = "Array(Array(\n  \"SourceFile\" => \"/a.jpg\",\n  ";
    std::string many = head;
    for (int i = 0; i < 60; ++i) many += "\"EXIF:IFD0:Tag" + std::to_string(i) + "\" => " + std::to_string(i) + ",\n  ";
    return {
        head + "\"EXIF:IFD0:Make\" => \"Acme\",\n  \"JFIF:JFIFVersion\" => 1.01\n));\n",
        head +
            "\"MakerNotes:Canon:Copy12:LensType\" => \"n/a\",\n  \"XMP:XMP-dc:Subject\" => Array(\"a\",\"b\")\n));\n",
        head + "\"A:T\" => \"a\\\"b\\\\c\\nd\\re\\tf\\$g\\x01h\xE4\",\n  \"A:U\" => -1e-05\n));\n",
        head + "\"A:T\" => \"" + std::string(100, 'v') + "\"\n));\n",
        many + "\"Z:T\" => \"\"\n));\n",
        "[{\n  \"SourceFile\": \"/a.jpg\",\n  \"EXIF:ThumbnailImage\": \"base64:/9j/4AAQSkZJRg==\"\n}]\n"};
}

}  // namespace

Target ExifToolTarget() {
    return {"exiftool", Run, Seeds};
}

}  // namespace fuzz
