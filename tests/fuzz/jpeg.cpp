// SPDX-License-Identifier: Apache-2.0
// The reader of JPEG structure: tables, markers, coefficients, decoding.
#include "tolimage/jpeginfo.h"

#include "tests/fuzz/target.h"
#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tolbase/exception.h"
#include "tolimage/imageio.h"
#include "tolimage/jpeg_segments.h"
#include "tolimage/jpeg_tables.h"
#include "tolimage/jpegcoefficients.h"
#include "tolimage/jpegmarkers.h"

namespace fuzz {

namespace {

void CheckRecord(JpegInfo const& info) {
    if (!info.IsValid) {
        Require(info.QuantizationTables.empty() && info.QualityEstimates.empty(), "a bad record has no entries");
        return;
    }
    Require(info.QuantizationTables.size() == 3 && info.HuffmanTables.size() == 3, "three entries a kind of table");
    Require(!info.QualityEstimates.empty(), "a good record has a quality");
    for (const int quality : info.QualityEstimates) Require(quality >= 1 && quality <= 100, "a quality is 1 to 100");
    Require(info.Width >= 0 && info.Width <= 65535 && info.Height >= 0 && info.Height <= 65535, "sides fit 16 bits");
    Require(info.QtHash.empty() || info.QtHash.length() == 32, "a digest has 32 digits");
    Require(info.TrailerBytes >= 0 && info.ScanCount >= 0, "counts are not negative");
}

void CheckMarkers(wxString const& path, size_t size) {
    int64_t last = -1;
    for (JpegMarkerPos const& marker : FindJpegMarkers(path, InitJpegMarkers())) {
        Require(marker.offset > last, "markers come in the order of the file");
        Require(marker.length >= 0 && marker.offset + marker.length <= static_cast<int64_t>(size),
                "a segment ends within the file");
        last = marker.offset;
    }
}

void CheckTransposition(std::string const& bytes) {
    JpegWalker walker(ByteView(bytes.data(), bytes.size()));
    JpegSegment segment;
    while (walker.Next(segment)) {
        if (segment.code != JpegDqt) continue;
        ByteView const payload = segment.payload;
        std::string const original(reinterpret_cast<char const*>(payload.Data()), payload.Size());
        std::string const once = TransposeJpegDqt(payload);
        Require(TransposeJpegDqt(ByteView(once.data(), once.size())) == original, "two quarter turns change nothing");
    }
}

void Run(std::string const& bytes) {
    static InputFile const file("input.jpg");
    try {
        JpegInfo quick;
        JpegInfo whole;
        tcvJpegReadTablesFromMemory(bytes.data(), bytes.size(), quick, 1, false, false);
        tcvJpegReadTablesFromMemory(bytes.data(), bytes.size(), whole, 2, true, true);
        CheckRecord(quick);
        CheckRecord(whole);
        // A lossless frame needs no table, and may stand anywhere.
        Require(quick.IsValid == whole.IsValid || whole.Process.Contains("ossless"),
                "the depth doesn't decide whether a record is good");
    } catch (TolException const&) {
    }
    CheckTransposition(bytes);
    wxString const& path = file.Hold(bytes);
    try {
        CheckMarkers(path, bytes.size());
    } catch (TolException const&) {
    }
    try {
        const int place = static_cast<int>(bytes.size() % 64);
        JpegCoefficients const found = ReadJpegCoefficients(path, place % 3, place);
        size_t const blocks = static_cast<size_t>(found.blocksAcross) * static_cast<size_t>(found.blocksDown);
        Require(found.values.size() == blocks, "a coefficient for each block");
    } catch (TolException const&) {
    }
    DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size());
}

std::vector<std::string> Seeds() {
    using support::JpegBuilder;
    JpegBuilder progressive;
    progressive.Soi().Jfif().Dqt({{0, support::CountingTable(1)}, {1, support::FlatTable(300)}}, true);
    progressive.ColourFrame(0xC2, 17, 9, 0x22).StandardDcTable().Scan().StandardDcTable(1).Scan().Eoi();
    JpegBuilder restarts;
    restarts.Soi().Adobe(2).Comment("a comment").Dqt(0, support::FlatTable(7)).RestartInterval(1);
    restarts.Frame(0xC0, 32, 8, {{1, 0x11, 0}, {2, 0x21, 0}, {3, 0x11, 0}, {4, 0x11, 0}}).StandardDcTable();
    restarts.Scan().Restart(0).Restart(1).Segment(0xDC, std::string("\0\x10", 2)).Eoi().Bytes("behind the end");
    JpegBuilder lying;
    lying.Soi().LyingSegment(0xE1, 60000, "Exif").Dqt(0, support::FlatTable(1)).Frame(0xC3, 8, 8, {{1, 0x11, 0}}).Eoi();
    return {support::SmallJpeg(),
            progressive.Build(),
            restarts.Build(),
            lying.Build(),
            support::EncodeJpeg(24, 16, 90, 1),
            support::EncodeJpeg(9, 33, 30, 2),
            support::WithExif(support::EncodeJpeg(16, 16), "Acme", "Shooter", support::EncodeJpeg(8, 8))};
}

}  // namespace

Target JpegTarget() {
    return {"jpeg", Run, Seeds};
}

}  // namespace fuzz
