// SPDX-License-Identifier: Apache-2.0
#include "filters/huffmantables.h"
#include "filters/jpegtables.h"
#include "orvcore/jpeginfotable.h"
#include "tests/filters/filterengine.h"

namespace {

using support::EncodeJpeg;
using support::RowOf;
using support::TableOf;

class JpegFilters : public support::FilterEngine {};

// ITU-T T.81 Annex K, table K.1, at quality 90: each step times 0.2, rounded.
char const* const Luma90 =
    "   3    2    2    3    5    8   10   12\n"
    "   2    2    3    4    5   12   12   11\n"
    "   3    3    3    5    8   11   14   11\n"
    "   3    3    4    6   10   17   16   12\n"
    "   4    4    7   11   14   22   21   15\n"
    "   5    7   11   13   16   21   23   18\n"
    "  10   13   16   17   21   24   24   20\n"
    "  14   18   19   20   22   20   21   20\n";

}  // namespace

TEST_F(JpegFilters, Tables_ShowTheQuantisation) {
    auto* filter = Add<OrvFilterJpegTables>();
    EXPECT_TRUE(filter->IsOnlyForJpeg());
    Load(Jpeg("a.jpg"));
    Go(filter);
    VecVecString const table = TableOf(filter);
    EXPECT_EQ(28U, table.size());
    EXPECT_EQ((VecString{"QT 1 (Luma)", Luma90}), RowOf(table, "QT 1 (Luma)"));
    EXPECT_EQ((VecString{"Image Quality", "90"}), RowOf(table, "Image Quality"));
    EXPECT_EQ((VecString{"Standard Table", "true"}), RowOf(table, "Standard Table"));
    EXPECT_EQ(JpegInfoTable(Evidence).Evaluate(), table);
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(JpegFilters, TwoQualities_DifferInTheTablesAndNotInTheSampling) {
    auto* filter = Add<OrvFilterJpegTables>();
    Load(Jpeg("a.jpg"));
    Load(Bytes("b.jpg", EncodeJpeg(64, 48, 75)), Reference);
    Go(filter);
    EXPECT_EQ((VecString{"5", "Image Quality", "90", "75", "!Different"}), RowOf(TableOf(filter), "Image Quality"));
    EXPECT_EQ("!Different", RowOf(TableOf(filter), "QT 1 (Luma)").at(4));
    EXPECT_EQ((VecString{"8", "Chroma Subsampling", "4:2:0", "4:2:0", ""}),
              RowOf(TableOf(filter), "Chroma Subsampling"));
}

TEST_F(JpegFilters, HuffmanTables_ShowTheCounts) {
    auto* filter = Add<OrvFilterHuffmanTables>();
    EXPECT_TRUE(filter->IsOnlyForJpeg());
    Load(Jpeg("a.jpg"));
    Go(filter);
    VecVecString const table = TableOf(filter);
    EXPECT_EQ(21U, table.size());
    // ITU-T T.81 Annex K, table K.3.
    EXPECT_EQ("0 1 5 1 1 1 1 1 1 0 0 0 0 0 0 0 \nTotal:12 ", RowOf(table, "HT 1 (Luma   - DC Class)").at(1));
    EXPECT_EQ((VecString{"HTs Are Standard", "true"}), RowOf(table, "HTs Are Standard"));
    EXPECT_EQ((VecString{"Thumbnail HTs Are Standard", ""}), RowOf(table, "Thumbnail HTs Are Standard"));
    EXPECT_EQ(JpegInfoTable2(Evidence).Evaluate(), table);
}

TEST_F(JpegFilters, SavedPage_KeepsTheLinesOfATable) {
    auto* filter = Add<OrvFilterJpegTables>();
    Load(Jpeg("a.jpg"));
    Go(filter);
    EXPECT_NE(std::string::npos, Saved(filter).find(std::string("<pre>") + Luma90));
}
