// SPDX-License-Identifier: Apache-2.0
// Packings that few files have: runs, tiles, bit fields, palettes of other kinds, frames smaller than their canvas. The
// files are put together byte by byte as the formats' descriptions say.
#include <gtest/gtest.h>
#include <libheif/heif.h>

#include <cstring>
#include <memory>
#include <utility>

#include "tests/tolimage/pictures.h"

using namespace pictures;

namespace {

class ImageDecoders : public PictureFiles {};
class BmpDecoder : public PictureFiles {};
class TgaDecoder : public PictureFiles {};
class TiffDecoder : public PictureFiles {};
class WebPDecoder : public PictureFiles {};
class HeifDecoder : public PictureFiles {};

// A row as text: "b,g,r b,g,r", or the grey values.
std::string Row(Image& image, int y) {
    std::string text;
    for (int x = 0; x < image.Width(); ++x) {
        if (x > 0) text += " ";
        for (int c = 0; c < image.Channels(); ++c)
            text += (c > 0 ? "," : "") + std::to_string(image.Data()[image.Step() * y + x * image.Channels() + c]);
    }
    return text;
}

// With an information header of 40 bytes; `behind` stands between it and the pixels.
std::string Bmp(int width, int height, int bits, int compression, std::string const& behind, std::string const& pixels,
                int used = 0) {
    const auto start = static_cast<uint32_t>(54 + behind.size());
    std::string info;
    for (const int value : {40, width, height}) info += Little(static_cast<uint32_t>(value), 4);
    info += Little(1, 2) + Little(static_cast<uint32_t>(bits), 2);
    for (const int value : {compression, 0, 0, 0, used, 0}) info += Little(static_cast<uint32_t>(value), 4);
    return "BM" + Little(start + static_cast<uint32_t>(pixels.size()), 4) + Little(0, 4) + Little(start, 4) + info +
           behind + pixels;
}

// Black, (10, 20, 30) and (40, 50, 60) as blue, green, red.
const std::string Palette = Bytes({0, 0, 0, 0, 10, 20, 30, 0, 40, 50, 60, 0});

// A grey TIFF of 20 by 18 pixels in four tiles of 16 by 16; the sample at (x, y) is x + 10 * y.
std::string TiledTiff() {
    const std::vector<std::string> entries = {
        Entry(256, 3, 1, 20), Entry(257, 3, 1, 18), Entry(258, 3, 1, 8),  Entry(259, 3, 1, 1),   Entry(262, 3, 1, 1),
        Entry(277, 3, 1, 1),  Entry(322, 3, 1, 16), Entry(323, 3, 1, 16), Entry(324, 4, 4, 200), Entry(325, 4, 4, 216)};
    std::string file = std::string("II*\0", 4) + Little(8, 4) + Little(static_cast<uint32_t>(entries.size()), 2);
    for (std::string const& entry : entries) file += entry;
    file.resize(200, '\0');
    for (uint32_t tile = 0; tile < 4; ++tile) file += Little(232 + 256 * tile, 4);
    for (int tile = 0; tile < 4; ++tile) file += Little(256, 4);
    for (int tile = 0; tile < 4; ++tile)
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                file.push_back(static_cast<char>(x + 16 * (tile % 2) + 10 * (y + 16 * (tile / 2))));
    return file;
}

std::string RiffChunk(std::string const& name, std::string const& data) {
    return name + Little(static_cast<uint32_t>(data.size()), 4) + data + (data.size() % 2 == 1 ? "x" : "");
}

// An animation on a canvas of 20 by 12 whose one frame is the picture at (x, y), both even.
std::string AnimatedWebP(std::string const& picture, int width, int height, int x, int y) {
    const std::string chunk = picture.substr(12);
    const auto place = [](int value) { return Little(static_cast<uint32_t>(value), 3); };
    const std::string frame = place(x / 2) + place(y / 2) + place(width - 1) + place(height - 1) + place(100);
    std::string body = RiffChunk("VP8X", Bytes({2, 0, 0, 0}) + place(19) + place(11)) +
                       RiffChunk("ANIM", std::string(6, '\0')) +
                       RiffChunk("ANMF", frame + std::string(1, '\0') + chunk);
    body = "WEBP" + body;
    return "RIFF" + Little(static_cast<uint32_t>(body.size()), 4) + body;
}

// 64 by 48 pixels, the left half (200, 100, 50), the right one (10, 20, 30) as red, green, blue; false without an
// encoder.
bool SaveTwoColours(wxString const& path) {
    const std::unique_ptr<heif_context, void (*)(heif_context*)> context(heif_context_alloc(), heif_context_free);
    heif_encoder* encoder = nullptr;
    if (heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, &encoder).code != heif_error_Ok)
        return false;
    heif_encoder_set_lossy_quality(encoder, 95);
    heif_image* image = nullptr;
    heif_image_create(64, 48, heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image);
    heif_image_add_plane(image, heif_channel_interleaved, 64, 48, 8);
    int step = 0;
    uint8_t* pixels = heif_image_get_plane(image, heif_channel_interleaved, &step);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            std::memcpy(pixels + y * step + 3 * x, x < 32 ? "\xC8\x64\x32" : "\x0A\x14\x1E", 3);
    heif_image_handle* handle = nullptr;
    EXPECT_EQ(heif_error_Ok, heif_context_encode_image(context.get(), image, encoder, nullptr, &handle).code);
    heif_image_handle_release(handle);
    heif_image_release(image);
    heif_encoder_release(encoder);
    EXPECT_EQ(heif_error_Ok, heif_context_write_to_file(context.get(), path.utf8_str()).code);
    return true;
}

}  // namespace

TEST_F(BmpDecoder, RunsOfBytes_GiveRunsLiteralsAndJumps) {
    const std::string runs = Bytes({4, 1, 0, 0, /**/ 0, 3, 2, 1, 2, 0, 0, 0, /**/ 0, 2, 2, 0, 2, 2, 0, 1});
    Image picture = Load(Bmp(4, 3, 8, 1, Palette, runs, 3));
    ASSERT_EQ(3, picture.Height()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("0,0,0 0,0,0 40,50,60 40,50,60", Row(picture, 0));
    EXPECT_EQ("40,50,60 10,20,30 40,50,60 0,0,0", Row(picture, 1));
    EXPECT_EQ("10,20,30 10,20,30 10,20,30 10,20,30", Row(picture, 2));
}

TEST_F(BmpDecoder, RunsOfNibbles_GiveRunsAndLiterals) {
    const std::string runs = Bytes({5, 0x12, 0, 0, /**/ 0, 5, 0x12, 0x21, 0x20, 0, 0, 1});
    Image picture = Load(Bmp(5, 2, 4, 2, Palette, runs, 3));
    ASSERT_EQ(2, picture.Height()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("10,20,30 40,50,60 40,50,60 10,20,30 40,50,60", Row(picture, 0));
    EXPECT_EQ("10,20,30 40,50,60 10,20,30 40,50,60 10,20,30", Row(picture, 1));
}

TEST_F(BmpDecoder, RunsBeyondThePicture_AreLeftOut) {
    Image picture = Load(Bmp(2, 1, 8, 1, Palette, Bytes({200, 1, 0, 2, 9, 9, 3, 2, 0, 1}), 3));
    ASSERT_EQ(1, picture.Height()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("10,20,30 10,20,30", Row(picture, 0));
}

TEST_F(BmpDecoder, RunsThatBreakOff_GiveWhatCameBefore) {
    Image picture = Load(Bmp(4, 2, 8, 1, Palette, Bytes({4, 1, 0, 0, 0, 3, 2}), 3));
    ASSERT_EQ(2, picture.Height()) << tcvLastLoadError().utf8_str();
    EXPECT_TRUE(tcvLastLoadWarning().StartsWith("BMP: ")) << tcvLastLoadWarning().utf8_str();
    EXPECT_EQ("10,20,30 10,20,30 10,20,30 10,20,30", Row(picture, 1));
}

TEST_F(BmpDecoder, BitFields_AreSpreadToEightBits) {
    const std::string masks = Little(0xF800, 4) + Little(0x07E0, 4) + Little(0x001F, 4);
    const std::string pixels = Little(0xF800, 2) + Little(0x07E0, 2) + Little(0x001F, 2) + Little(0x8410, 2);
    Image picture = Load(Bmp(4, 1, 16, 3, masks, pixels));
    ASSERT_EQ(4, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("0,0,255 0,255,0 255,0,0 132,130,132", Row(picture, 0));
}

TEST_F(BmpDecoder, SixteenAndThirtyTwoBitsWithoutMasks_HaveTheUsualOnes) {
    Image sixteen = Load(Bmp(2, 1, 16, 0, "", Little(0x7C00, 2) + Little(0x03FF, 2)));
    EXPECT_EQ("0,0,255 255,255,0", Row(sixteen, 0));
    Image thirtyTwo = Load(Bmp(1, 2, 32, 0, "", Bytes({1, 2, 3, 0, 4, 5, 6, 0})));
    EXPECT_EQ("4,5,6", Row(thirtyTwo, 0));
    EXPECT_EQ("1,2,3", Row(thirtyTwo, 1));
}

TEST_F(BmpDecoder, OneBitFromTheTop_IsReadFromTheHighestBit) {
    const std::string pixels = Bytes({0xA0, 0x40, 0, 0, /**/ 0x01, 0x80, 0, 0});
    Image picture = Load(Bmp(10, -2, 1, 0, Palette.substr(0, 8), pixels));
    ASSERT_EQ(10, picture.Width()) << tcvLastLoadError().utf8_str();
    const std::string o = "0,0,0";
    const std::string i = "10,20,30";
    EXPECT_EQ(i + " " + o + " " + i + " " + o + " " + o + " " + o + " " + o + " " + o + " " + o + " " + i,
              Row(picture, 0));
    EXPECT_EQ(o + " " + o + " " + o + " " + o + " " + o + " " + o + " " + o + " " + i + " " + i + " " + o,
              Row(picture, 1));
}

TEST_F(BmpDecoder, HeadOfTwelveBytes_HasAPaletteOfThreeBytesAnEntry) {
    const std::string core = Little(12, 4) + Little(2, 2) + Little(1, 2) + Little(1, 2) + Little(1, 2);
    const std::string file =
        "BM" + Little(36, 4) + Little(0, 4) + Little(32, 4) + core + Bytes({1, 2, 3, 7, 8, 9}) + Bytes({0x40, 0, 0, 0});
    Image picture = Load(file);
    ASSERT_EQ(2, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("1,2,3 7,8,9", Row(picture, 0));
}

TEST_F(BmpDecoder, UnknownDepthAndCompression_AreUnsupported) {
    EXPECT_FALSE(Load(Bmp(2, 2, 7, 0, "", std::string(64, '\0'))).IsOk());
    EXPECT_EQ("Unsupported: BMP with 7 bits", tcvLastLoadError());
    EXPECT_FALSE(Load(Bmp(2, 2, 24, 9, "", std::string(64, '\0'))).IsOk());
    EXPECT_EQ("Unsupported: BMP compression 9", tcvLastLoadError());
}

TEST_F(BmpDecoder, Probe_TellsSizeAndDepth) {
    const ImageProbe probe = Probe(Bmp(4, -3, 16, 0, "", std::string(24, '\0')));
    EXPECT_EQ("BMP", probe.format);
    EXPECT_EQ(4, probe.width);
    EXPECT_EQ(3, probe.height);
    EXPECT_EQ(3, probe.channels);
    EXPECT_EQ(16, probe.bitsPerPixel);
}

TEST_F(TgaDecoder, Packets_GiveRunsAndLiteralsFromTheBottom) {
    const std::string head = Bytes({0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 2, 0, 24, 0});
    Image picture = Load(head + Bytes({0x82, 1, 2, 3, /**/ 2, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    ASSERT_EQ(3, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("4,5,6 7,8,9 10,11,12", Row(picture, 0));
    EXPECT_EQ("1,2,3 1,2,3 1,2,3", Row(picture, 1));
}

TEST_F(TgaDecoder, PaletteOfFifteenBits_IsSpread) {
    const std::string head = Bytes({0, 1, 1, 0, 0, 2, 0, 16, 0, 0, 0, 0, 3, 0, 1, 0, 8, 0x20});
    Image picture = Load(head + Little(0x7C00, 2) + Little(0x03E1, 2) + Bytes({1, 0, 5}));
    ASSERT_EQ(3, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("8,255,0 0,0,255 0,0,0", Row(picture, 0));
}

TEST_F(TgaDecoder, FromTheRight_IsTurned) {
    const std::string head = Bytes({0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 3, 0, 1, 0, 8, 0x30});
    Image picture = Load(head + Bytes({7, 8, 9}));
    ASSERT_EQ(1, picture.Channels()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("9 8 7", Row(picture, 0));
}

TEST_F(TgaDecoder, Probe_TellsAlphaAndGrey) {
    const auto head = [](int kind, int bits) {
        return Bytes({0, 0, kind, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 4, 0, bits, 0x20}) + std::string(80, '\1');
    };
    const ImageProbe alpha = Probe(head(2, 32));
    EXPECT_EQ("TGA", alpha.format);
    EXPECT_EQ(5, alpha.width);
    EXPECT_EQ(4, alpha.height);
    EXPECT_EQ(4, alpha.channels);
    EXPECT_EQ(32, alpha.bitsPerPixel);
    EXPECT_EQ(1, Probe(head(3, 8)).channels);
    EXPECT_EQ(3, Probe(head(2, 24)).channels);
}

TEST_F(ImageDecoders, GifCodesThatAreJustBeingMade_AreKnown) {
    // Six pixels of colour 1: the codes 4 (clear), 1, 6, 7, each of three bits, and 5 (end) of four.
    const std::string palette = Bytes({0, 0, 0, 200, 100, 50, 0, 0, 0, 0, 0, 0});
    const std::string gif = "GIF89a" + Little(6, 2) + Little(1, 2) + Bytes({0x91, 0, 0}) + palette + "," +
                            std::string(4, '\0') + Little(6, 2) + Little(1, 2) + Bytes({0, 2, 2, 0x8C, 0x5F, 0}) + ";";
    Image picture = Load(gif);
    ASSERT_EQ(6, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("50,100,200 50,100,200 50,100,200 50,100,200 50,100,200 50,100,200", Row(picture, 0));
    const ImageProbe probe = Probe(gif);
    EXPECT_EQ("GIF", probe.format);
    EXPECT_EQ(6, probe.width);
    EXPECT_EQ(1, probe.height);
    EXPECT_EQ(2, probe.bitsPerPixel);
}

TEST_F(ImageDecoders, IcoProbe_TellsTheLargestPicture) {
    const std::string png = Png(3, 2, 8, 2, std::string(20, '\0'));
    const auto size = static_cast<uint32_t>(png.size());
    const ImageProbe probe =
        Probe(Bytes({0, 0, 1, 0, 1, 0}) + Bytes({3, 2, 0, 0, 1, 0, 32, 0}) + Little(size, 4) + Little(22, 4) + png);
    EXPECT_EQ("ICO", probe.format);
    EXPECT_EQ(3, probe.width);
    EXPECT_EQ(2, probe.height);
    EXPECT_EQ(32, probe.bitsPerPixel);
}

TEST_F(TiffDecoder, Tiles_ArePutInTheirPlacesAndCutAtTheEdge) {
    Image picture = Load(TiledTiff());
    ASSERT_EQ(20, picture.Width()) << tcvLastLoadError().utf8_str();
    ASSERT_EQ(18, picture.Height());
    EXPECT_EQ("0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19", Row(picture, 0));
    EXPECT_EQ("170 171 172 173 174 175 176 177 178 179 180 181 182 183 184 185 186 187 188 189", Row(picture, 17));
    EXPECT_EQ("", tcvLastLoadWarning());
}

TEST_F(TiffDecoder, TileThatIsCutOff_LeavesTheOthers) {
    const std::string whole = TiledTiff();
    Image picture = Load(whole.substr(0, whole.size() - 100));
    ASSERT_EQ(20, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_TRUE(tcvLastLoadWarning().StartsWith("TIFF: ")) << tcvLastLoadWarning().utf8_str();
    EXPECT_EQ("0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19", Row(picture, 0));
    EXPECT_EQ(175, picture.Data()[picture.Step() * 17 + 5]);
}

TEST_F(TiffDecoder, TilesOfNoWidth_AreNoPicture) {
    std::string file = TiledTiff();
    file.replace(file.find(Entry(322, 3, 1, 16)), 12, Entry(322, 3, 1, 0));
    EXPECT_FALSE(Load(file).IsOk());
    EXPECT_TRUE(tcvLastLoadError().StartsWith("Corrupt: ")) << tcvLastLoadError().utf8_str();
}

TEST_F(TiffDecoder, PlanesOfTheirOwn_AreJoined) {
    // Planar configuration 2: a strip for each of red, green and blue.
    std::string file = Tiff(2, 1, 8, 3, 2, Bytes({10, 11, 20, 21, 30, 31}), {}, {Entry(284, 3, 1, 2)});
    file.replace(file.find(Entry(273, 4, 1, 400)), 12, Entry(273, 4, 3, 340));
    file.replace(file.find(Entry(279, 4, 1, 6)), 12, Entry(279, 4, 3, 352));
    for (uint32_t plane = 0; plane < 3; ++plane) {
        file.replace(340 + 4 * plane, 4, Little(400 + 2 * plane, 4));
        file.replace(352 + 4 * plane, 4, Little(2, 4));
    }
    Image picture = Load(file);
    ASSERT_EQ(2, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ("30,20,10 31,21,11", Row(picture, 0));
}

TEST_F(WebPDecoder, FrameSmallerThanItsCanvas_StandsOnBlack) {
    ASSERT_TRUE(tcvSaveImage(dir / "a.webp", Plain(8, 6, 10, 120, 230), 95));
    const std::string still = support::ReadBytes(dir / "a.webp");
    Image picture = Load(AnimatedWebP(still, 8, 6, 4, 2));
    ASSERT_EQ(20, picture.Width()) << tcvLastLoadError().utf8_str();
    ASSERT_EQ(12, picture.Height());
    unsigned char const* inside = picture.Data() + picture.Step() * 4 + 8 * 3;
    EXPECT_NEAR(10, inside[0], 4);
    EXPECT_NEAR(120, inside[1], 4);
    EXPECT_NEAR(230, inside[2], 4);
    for (int const x : {0, 3, 12, 19}) EXPECT_EQ(0, picture.Data()[picture.Step() * 4 + x * 3 + 2]) << x;
    EXPECT_EQ(0, picture.Data()[picture.Step() * 1 + 8 * 3 + 2]);
    EXPECT_EQ(0, picture.Data()[picture.Step() * 8 + 8 * 3 + 2]);
}

TEST_F(WebPDecoder, FrameOfTheCanvas_IsThePicture) {
    ASSERT_TRUE(tcvSaveImage(dir / "a.webp", Plain(20, 12, 10, 120, 230), 95));
    Image picture = Load(AnimatedWebP(support::ReadBytes(dir / "a.webp"), 20, 12, 0, 0));
    ASSERT_EQ(20, picture.Width()) << tcvLastLoadError().utf8_str();
    ASSERT_EQ(12, picture.Height());
    EXPECT_NEAR(230, picture.Data()[2], 4);
}

TEST_F(WebPDecoder, FrameOutsideItsCanvas_IsCorrupt) {
    ASSERT_TRUE(tcvSaveImage(dir / "a.webp", Plain(8, 6, 10, 120, 230), 95));
    EXPECT_FALSE(Load(AnimatedWebP(support::ReadBytes(dir / "a.webp"), 8, 6, 16, 2)).IsOk());
    EXPECT_TRUE(tcvLastLoadError().StartsWith("Corrupt: ")) << tcvLastLoadError().utf8_str();
}

TEST_F(HeifDecoder, EncodedPicture_HasItsSizeAndColours) {
    const wxString path = dir / "a.heic";
    if (!SaveTwoColours(path)) GTEST_SKIP() << "libheif has no encoder here";
    Image read(tcvLoadImage(path, true, false));
    ASSERT_EQ(64, read.Width()) << tcvLastLoadError().utf8_str();
    ASSERT_EQ(48, read.Height());
    const std::vector<std::pair<int, std::vector<int>>> expected = {{8, {50, 100, 200}}, {56, {30, 20, 10}}};
    for (auto const& [x, colour] : expected)
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(colour[static_cast<size_t>(c)], read.Data()[read.Step() * 24 + x * 3 + c], 6) << x << " " << c;
    EXPECT_EQ("HEIC", tcvProbeImage(path).format);
    EXPECT_EQ(64, tcvProbeImage(path).width);
    EXPECT_EQ(48, tcvProbeImage(path).height);
    EXPECT_EQ(24, tcvProbeImage(path).bitsPerPixel);
    const std::string whole = support::ReadBytes(path);
    EXPECT_FALSE(Load(whole.substr(0, whole.size() / 2)).IsOk());
    EXPECT_NE("", tcvLastLoadError());
}
