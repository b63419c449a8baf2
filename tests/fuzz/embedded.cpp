// SPDX-License-Identifier: Apache-2.0
// The search for pictures inside other files.
#include "tests/fuzz/target.h"
#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tolbase/exception.h"
#include "tolbase/limits.h"
#include "tolimage/jpeg_embedded.h"
#include "tolimage/subimages.h"

namespace fuzz {

namespace {

void CheckFound(std::vector<EmbeddedJpeg> const& found, size_t size) {
    Require(found.size() <= GetTolLimit(TolLimit::EmbeddedImages), "no more pictures than the limit");
    for (EmbeddedJpeg const& picture : found) {
        ByteView const bytes = picture.Bytes();
        Require(picture.offset < size, "a picture begins within the file");
        Require(bytes.Size() <= size && bytes.Matches(0, "\xFF\xD8", 2), "a picture begins as one");
        uint64_t looked = 0;
        Require(MeasureJpeg(bytes, looked) == bytes.Size(), "a picture is whole, and nothing hangs on it");
    }
}

void Run(std::string const& bytes) {
    static InputFile const file("input.jpg");
    ByteView const view(bytes.data(), bytes.size());
    try {
        CheckFound(FindEmbeddedJpegs(view), bytes.size());
        CheckFound(FindJpegsAnywhere(view), bytes.size());
        std::vector<Image> images;
        std::vector<JpegInfo> infos;
        tcvSaveSubImages(file.Hold(bytes), images, infos);
        Require(images.size() == infos.size(), "a record for each picture");
    } catch (TolException const&) {
    }
}

std::vector<std::string> Seeds() {
    using support::JpegBuilder;
    std::string const small = support::EncodeJpeg(8, 8);
    std::string const photo = support::WithExif(support::EncodeJpeg(16, 16), "Acme", "Shooter", small);
    std::string const profile = std::string("MPF\0II*\0", 8) + small;
    JpegBuilder cut;
    cut.Soi().App(2, "PART1" + small.substr(0, 200)).App(2, "PART2" + small.substr(200));
    cut.Bytes(support::SmallJpeg().substr(2));
    return {photo, photo + small + "x" + small,
            JpegBuilder().Soi().App(2, profile).Bytes(support::SmallJpeg().substr(2)).Build(), cut.Build(),
            "not a picture" + small + small.substr(0, 100) + support::SmallJpeg()};
}

}  // namespace

Target EmbeddedTarget() {
    return {"embedded", Run, Seeds};
}

}  // namespace fuzz
