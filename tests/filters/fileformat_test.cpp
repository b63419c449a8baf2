// SPDX-License-Identifier: Apache-2.0
#include "filters/fileformat.h"

#include "orvcore/imageinfotable.h"
#include "tests/filters/filterengine.h"

namespace {

using support::EncodeJpeg;
using support::RowOf;
using support::TableOf;

class FileFormat : public support::FilterEngine {};

class Verdicts : public OrvFilterFileFormat {
public:
    using OrvFilterFileFormat::GetVerdict;
};

}  // namespace

TEST_F(FileFormat, New_IsAFileAnalysisWithOneTable) {
    auto* filter = Add<OrvFilterFileFormat>();
    EXPECT_EQ("File Format", filter->GetName());
    EXPECT_EQ("File Analysis", filter->GetAnalysisTypeString());
    EXPECT_TRUE(filter->HasSingleConfiguration());
    EXPECT_FALSE(filter->IsOnlyForJpeg());
    ASSERT_EQ(1U, filter->GetParametersOutput().size());
    EXPECT_EQ(90, filter->GetParametersOutput()[0].GetType());
}

TEST_F(FileFormat, Table_IsTheExtendedInformation) {
    auto* filter = Add<OrvFilterFileFormat>();
    Load(Jpeg("a.jpg", 101, 48));
    Go(filter);
    VecVecString const table = TableOf(filter);
    ASSERT_EQ(42U, table.size());
    EXPECT_EQ((VecString{"Filename", "a.jpg", ""}), table[0]);
    EXPECT_EQ((VecString{"Exif Make", "", "!EXIF Make is missing"}), RowOf(table, "Exif Make"));
    EXPECT_EQ("JPEG Quality", table[25][0]);
    EXPECT_EQ("90", table[25][1]);
    EXPECT_EQ("SHA512", table[41][0]);
    EXPECT_EQ(ImageInfoTable(Evidence, true).Evaluate(), table);
}

TEST_F(FileFormat, HardFinding_IsAWarning) {
    auto* filter = Add<OrvFilterFileFormat>();
    Load(Jpeg("a.jpg"));
    Load(Jpeg("b.jpg"), Reference);
    Go(filter);
    EXPECT_EQ("Warning", filter->GetStatusString(Evidence));
    EXPECT_EQ("Warning", filter->GetStatusString(Reference));
    EXPECT_NE(wxString::npos, filter->GetReport(dir / "r.html", "", "").find("!- WARNING! -"));
}

TEST_F(FileFormat, TwoFiles_ShowTheWarningsOfBoth) {
    auto* filter = Add<OrvFilterFileFormat>();
    Load(Jpeg("a.jpg"));
    Load(Bytes("b.jpg", support::WithExif(EncodeJpeg(64, 48), "Haldenmann", "Lumora 60")), Reference);
    Go(filter);
    EXPECT_EQ((VecString{"22", "Exif Make", "", "!EXIF Make is missing", "Haldenmann", "", "!Different"}),
              RowOf(TableOf(filter), "Exif Make"));
}

TEST(FileFormatVerdict, OnlyAHardMark_Warns) {
    Verdicts const filter;
    EXPECT_EQ(OrvFilterConfiguration::Ok, filter.GetVerdict({{"Format", "!JPEG", ""}, {"BPP", "24", "?odd"}}));
    EXPECT_EQ(OrvFilterConfiguration::Warning, filter.GetVerdict({{"Format", "JPEG", ""}, {"BPP", "24", "!odd"}}));
    EXPECT_EQ(OrvFilterConfiguration::Ok, filter.GetVerdict({{"Format", "JPEG"}}));
}
