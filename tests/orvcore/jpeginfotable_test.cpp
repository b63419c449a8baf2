// SPDX-License-Identifier: Apache-2.0
#include "orvcore/jpeginfotable.h"

#include <gtest/gtest.h>

#include <functional>

#include "orvcore/jpegtabletext.h"
#include "tests/orvcore/catalogue.h"
#include "tests/orvcore/slotfiles.h"

namespace {

using support::EncodeJpeg;
using support::ValueOf;

// ITU-T T.81 Annex K, tables K.3 to K.6.
char const* const kLumaDc = "0 1 5 1 1 1 1 1 1 0 0 0 0 0 0 0 \nTotal:12 ";
char const* const kLumaAc = "0 2 1 3 3 2 4 3 5 5 4 4 0 0 1 125 \nTotal:162 ";
char const* const kChromaDc = "0 3 1 1 1 1 1 1 1 1 1 0 0 0 0 0 \nTotal:12 ";
char const* const kChromaAc = "0 2 1 2 4 4 3 4 7 5 4 4 0 1 2 119 \nTotal:162 ";

// The luma table of the same annex at quality 90: each step times 0.2, rounded.
char const* const kLuma90 =
    "   3    2    2    3    5    8   10   12\n"
    "   2    2    3    4    5   12   12   11\n"
    "   3    3    3    5    8   11   14   11\n"
    "   3    3    4    6   10   17   16   12\n"
    "   4    4    7   11   14   22   21   15\n"
    "   5    7   11   13   16   21   23   18\n"
    "  10   13   16   17   21   24   24   20\n"
    "  14   18   19   20   22   20   21   20\n";

// A picture of 64 by 48 pixels of so many components, at quality 90 before `settings`.
std::string Encode(int components, std::function<void(jpeg_compress_struct&)> const& settings = nullptr) {
    support::JpegScanlines picture;
    picture.width = 64;
    picture.height = 48;
    picture.components = components;
    picture.space = components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    picture.settings = [&settings](jpeg_compress_struct& info) {
        jpeg_set_quality(&info, 90, TRUE);
        if (settings) settings(info);
    };
    picture.fill = [](std::vector<unsigned char>& row, unsigned y) {
        for (size_t x = 0; x < row.size(); ++x) row[x] = static_cast<unsigned char>(x + 2 * y);
    };
    return support::EncodeScanlines(picture);
}

// The colours' table is flat and stands under the third index; there is none under the second.
void UseThirdTable(jpeg_compress_struct& info) {
    const std::vector<unsigned> sevens(64, 7);
    jpeg_add_quant_table(&info, 2, sevens.data(), 100, TRUE);
    info.comp_info[1].quant_tbl_no = 2;
    info.comp_info[2].quant_tbl_no = 2;
}

class JpegTables : public support::Slots {
protected:
    static VecVecString Quantisation() { return JpegInfoTable(Evidence).Evaluate(); }
    static VecVecString Huffman() { return JpegInfoTable2(Evidence).Evaluate(); }
    // A picture at quality 90 with a thumbnail at 75 and a preview at 60.
    static std::string WithEmbedded() {
        return support::WithExif(EncodeJpeg(640, 480, 90), "Haldenmann", "Lumora 60", EncodeJpeg(160, 120, 75)) +
               EncodeJpeg(320, 240, 60);
    }
};

}  // namespace

TEST(JpegTableText, QuantizationTable_HasColumnsOfFour) {
    EXPECT_EQ("   1    2    3    4    5    6    7   88\n 255 6553   -1    0    0    0    0    0\n",
              QuantizationTableText({{1, 2, 3, 4, 5, 6, 7, 88}, {255, 6553, -1, 0, 0, 0, 0, 0}}));
}

TEST(JpegTableText, EmptyQuantizationTable_GivesAnEmptyText) {
    EXPECT_EQ("", QuantizationTableText({}));
}

TEST(JpegTableText, RowOfNineNumbers_ShowsEight) {
    EXPECT_EQ("   1    2    3    4    5    6    7    8\n", QuantizationTableText({{1, 2, 3, 4, 5, 6, 7, 8, 9}}));
}

TEST(JpegTableText, HuffmanRow_ShowsCountsAndTotal) {
    const std::vector<std::vector<int>> table = {{0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0}};
    EXPECT_EQ(kLumaDc, HuffmanRowText(table, 0));
}

TEST(JpegTableText, HuffmanRowOfZeros_GivesAnEmptyText) {
    EXPECT_EQ("", HuffmanRowText({std::vector<int>(16, 0)}, 0));
}

TEST(JpegTableText, HuffmanRowThatIsMissing_GivesAnEmptyText) {
    EXPECT_EQ("", HuffmanRowText({}, 0));
    EXPECT_EQ("", HuffmanRowText({std::vector<int>(16, 1)}, 1));
}

TEST(JpegTableText, SeventeenthCount_IsLeftOut) {
    std::vector<int> counts(17, 0);
    counts[0] = 2;
    counts[16] = 9;
    EXPECT_EQ("2 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 \nTotal:2 ", HuffmanRowText({counts}, 0));
}

TEST_F(JpegTables, TotalWord_KeepsTheLanguageOfItsFirstUse) {
    const std::vector<std::vector<int>> table = {{3}};
    EXPECT_EQ("3 \nTotal:3 ", HuffmanRowText(table, 0));
    ASSERT_TRUE(support::UseTranslations(dir, {{"Total:", "Totale:"}}));
    EXPECT_EQ("3 \nTotal:3 ", HuffmanRowText(table, 0));
}

TEST_F(JpegTables, TotalWord_IsTranslated) {
    ASSERT_TRUE(support::UseTranslations(dir, {{"Total:", "Totale:"}}));
    EXPECT_EQ("3 \nTotale:3 ", HuffmanRowText({{3}}, 0));
}

TEST_F(JpegTables, NoFile_GivesDefaultRows) {
    const VecVecString rows = Quantisation();
    ASSERT_EQ(28u, rows.size());
    EXPECT_EQ((VecString{"Compatible Cameras (Internal)", "[]"}), rows[0]);
    EXPECT_EQ((VecString{"Compatible Software (User)", "[]"}), rows[3]);
    for (size_t i = 4; i < rows.size(); ++i) EXPECT_EQ("", rows[i][1]) << rows[i][0];
    for (VecString const& row : Huffman()) EXPECT_EQ("", row[1]) << row[0];
}

TEST_F(JpegTables, Titles_StandInTheirOrder) {
    const VecString quantisation = support::Column(Quantisation(), 0);
    EXPECT_EQ((VecString{"Compatible Cameras (Internal)", "Compatible Software (Internal)", "Compatible Cameras (User)",
                         "Compatible Software (User)", "Image Quality", "Standard Table", "Color Space",
                         "Chroma Subsampling", "QT Hash", "QT 1 (Luma)", "QT 2 (Chroma)", "QT 3 (Chroma)"}),
              VecString(quantisation.begin(), quantisation.begin() + 12));
    for (size_t i = 4; i < 12; ++i) {
        EXPECT_EQ("Thumbnail " + quantisation[i], quantisation[i + 8]);
        EXPECT_EQ("Preview " + quantisation[i], quantisation[i + 16]);
    }
    const VecString huffman = support::Column(Huffman(), 0);
    ASSERT_EQ(21u, huffman.size());
    EXPECT_EQ("HT 1 (Luma   - DC Class)", huffman[0]);
    EXPECT_EQ("Thumbnail HT 2 (Chroma - AC Class)", huffman[10]);
    EXPECT_EQ("Preview HTs Are Standard", huffman[20]);
}

TEST_F(JpegTables, JpegWithoutThumbnail_FillsTheFirstTwelveRows) {
    LoadBytes(EncodeJpeg(640, 480, 90), "a.jpg");
    const VecVecString rows = Quantisation();
    EXPECT_EQ("90", rows[4][1]);
    EXPECT_EQ("true", rows[5][1]);
    EXPECT_EQ("YCbCr", rows[6][1]);
    EXPECT_EQ("4:2:0", rows[7][1]);
    EXPECT_EQ(32u, rows[8][1].length());
    EXPECT_EQ(kLuma90, rows[9][1]);
    EXPECT_EQ("   3    4    5    9   20   20   20   20\n", rows[10][1].BeforeFirst('\n') + "\n");
    EXPECT_EQ("", rows[11][1]);
    for (size_t i = 12; i < rows.size(); ++i) EXPECT_EQ("", rows[i][1]) << rows[i][0];
}

TEST_F(JpegTables, GreyJpeg_HasNoTablesForColours) {
    LoadBytes(Encode(1), "grey.jpg");
    const VecVecString rows = Quantisation();
    EXPECT_EQ("Grayscale", rows[6][1]);
    EXPECT_EQ("", rows[7][1]);
    EXPECT_EQ(kLuma90, rows[9][1]);
    EXPECT_EQ("", rows[10][1]);
    EXPECT_EQ("", rows[11][1]);
    const VecString huffman = support::Column(Huffman(), 1);
    EXPECT_EQ((VecString{kLumaDc, kLumaAc, "", "", "", "", "true"}), VecString(huffman.begin(), huffman.begin() + 7));
}

TEST_F(JpegTables, TableUnderTheThirdIndex_LeavesTheSecondRowEmpty) {
    LoadBytes(Encode(3, UseThirdTable), "third.jpg");
    const VecVecString rows = Quantisation();
    EXPECT_EQ(kLuma90, rows[9][1]);
    EXPECT_EQ("", rows[10][1]);
    wxString sevens;
    for (int i = 0; i < 8; ++i) sevens += "   7    7    7    7    7    7    7    7\n";
    EXPECT_EQ(sevens, rows[11][1]);
}

// Without EXIF data to tell them apart, the first embedded picture counts as the thumbnail.
TEST_F(JpegTables, OneEmbeddedPicture_FillsTheThumbnailsRowsAlone) {
    LoadBytes(EncodeJpeg(640, 480, 90) + EncodeJpeg(320, 240, 60), "a.jpg");
    const VecVecString rows = Quantisation();
    EXPECT_EQ((VecString{"Thumbnail Image Quality", "60"}), rows[12]);
    EXPECT_EQ((VecString{"Thumbnail Chroma Subsampling", "4:2:0"}), rows[15]);
    for (size_t i = 20; i < 28; ++i) EXPECT_EQ("", rows[i][1]) << rows[i][0];
    const VecVecString huffman = Huffman();
    EXPECT_EQ(kLumaDc, huffman[7][1]);
    EXPECT_EQ("true", huffman[13][1]);
    for (size_t i = 14; i < 21; ++i) EXPECT_EQ("", huffman[i][1]) << huffman[i][0];
}

TEST_F(JpegTables, EmbeddedPictures_FillTheirOwnRows) {
    LoadBytes(WithEmbedded(), "a.jpg");
    const VecVecString rows = Quantisation();
    EXPECT_EQ("90", ValueOf(rows, "Image Quality"));
    EXPECT_EQ("75", ValueOf(rows, "Thumbnail Image Quality"));
    EXPECT_EQ("60", ValueOf(rows, "Preview Image Quality"));
    EXPECT_EQ("true", ValueOf(rows, "Thumbnail Standard Table"));
    EXPECT_EQ("true", ValueOf(rows, "Preview Standard Table"));
    EXPECT_EQ("   8    6    5    8   12   20   26   31", ValueOf(rows, "Thumbnail QT 1 (Luma)").BeforeFirst('\n'));
    EXPECT_NE(ValueOf(rows, "QT Hash"), ValueOf(rows, "Preview QT Hash"));
}

TEST_F(JpegTables, EmbeddedPictures_HaveTheirOwnHuffmanRows) {
    LoadBytes(WithEmbedded(), "a.jpg");
    const VecVecString rows = Huffman();
    for (size_t first : {0, 7, 14}) {
        EXPECT_EQ(kLumaDc, rows[first][1]);
        EXPECT_EQ(kLumaAc, rows[first + 1][1]);
        EXPECT_EQ(kChromaDc, rows[first + 2][1]);
        EXPECT_EQ(kChromaAc, rows[first + 3][1]);
        EXPECT_EQ("", rows[first + 4][1]);
        EXPECT_EQ("", rows[first + 5][1]);
        EXPECT_EQ("true", rows[first + 6][1]);
    }
}

TEST_F(JpegTables, JpegWithoutThumbnail_LeavesTheLaterHuffmanRows) {
    LoadBytes(EncodeJpeg(640, 480, 90), "a.jpg");
    const VecVecString rows = Huffman();
    EXPECT_EQ("true", rows[6][1]);
    for (size_t i = 7; i < rows.size(); ++i) EXPECT_EQ("", rows[i][1]) << rows[i][0];
}

TEST_F(JpegTables, FileThatIsNoJpeg_GivesDefaultRows) {
    LoadBytes(support::PlainBmp(), "a.bmp");
    ASSERT_TRUE(context->HasFile(Evidence));
    EXPECT_EQ("[]", Quantisation()[0][1]);
    EXPECT_EQ("", ValueOf(Quantisation(), "Image Quality"));
    EXPECT_EQ("", ValueOf(Huffman(), "HTs Are Standard"));
}

TEST_F(JpegTables, EmptiedSlot_GivesDefaultRowsAgain) {
    LoadBytes(EncodeJpeg(64, 48), "a.jpg");
    JpegInfoTable table(Evidence);
    EXPECT_EQ("90", ValueOf(table.Evaluate(), "Image Quality"));
    Load("");
    EXPECT_EQ("", ValueOf(table.Evaluate(), "Image Quality"));
}

TEST_F(JpegTables, UserRecords_AreListed) {
    LoadBytes(EncodeJpeg(64, 48), "a.jpg");
    const wxString hash = context->GetImageQtHash(Evidence);
    ASSERT_EQ(32u, hash.length());
    JpegSignature camera;
    camera.editorClass = "1";
    camera.make = "Acme";
    camera.model = "X1";
    camera.quality = "FINE";
    camera.signature = hash;
    JpegSignature program = camera;
    program.editorClass = "2";
    program.softwareName = "Paint 7";
    context->UpdateUserQtDatabase(1, camera);
    context->UpdateUserQtDatabase(2, program);
    const VecVecString rows = Quantisation();
    EXPECT_EQ("[\"Acme,X1,FINE\"]", rows[2][1]);
    EXPECT_TRUE(rows[3][1].Contains("Paint 7"));
}

TEST_F(JpegTables, TruthValues_AreTranslated) {
    LoadBytes(EncodeJpeg(64, 48), "a.jpg");
    ASSERT_TRUE(support::UseTranslations(dir, {{"true", "vero"}, {"false", "falso"}}));
    EXPECT_EQ("vero", ValueOf(Quantisation(), "Standard Table"));
    EXPECT_EQ("vero", ValueOf(Huffman(), "HTs Are Standard"));
}
