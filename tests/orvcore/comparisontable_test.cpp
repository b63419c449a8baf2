// SPDX-License-Identifier: Apache-2.0
#include "orvcore/comparisontable.h"

#include <gtest/gtest.h>

#include <memory>

#include "orvcore/exifinfotable.h"
#include "tests/orvcore/catalogue.h"
#include "tests/orvcore/slotfiles.h"

namespace {

using support::Column;
using support::EncodeJpeg;
using support::WithTags;
using Tags = std::vector<std::pair<unsigned, std::string>>;

constexpr unsigned kMake = 0x010F;
constexpr unsigned kModel = 0x0110;
constexpr unsigned kSoftware = 0x0131;

VecString const kHeader = {"#Id", "Name", "Evidence Image Value", "Reference Image Value", "Comparison"};

class Comparison : public support::Slots {
protected:
    void LoadTags(Tags const& tags, OrvFileId id) {
        LoadBytes(WithTags(EncodeJpeg(64, 48), tags), id == Evidence ? "e.jpg" : "r.jpg", id);
    }
    static VecVecString Exif(bool useDetails = true) {
        ExifInfoTableComparison comparison(useDetails);
        comparison.Evaluate(Evidence);
        return comparison.Evaluate(Reference);
    }
    // Rows whose name is in the group IFD0, without their numbers.
    static VecVecString Ifd0(VecVecString const& table) {
        VecVecString rows;
        for (VecString const& row : table) {
            if (row[1].StartsWith("IFD0:")) rows.push_back(VecString(row.begin() + 1, row.end()));
        }
        return rows;
    }
    static VecString Row(VecVecString const& table, wxString const& name) {
        for (VecString const& row : table) {
            if (row[1] == name) return row;
        }
        return {};
    }
};

// The JPEG stream with the day on which it was taken, in an XMP packet behind its SOI marker.
std::string WithXmpDate(std::string const& jpeg) {
    const std::string payload = std::string("http://ns.adobe.com/xap/1.0/\0", 29) +
                                "<x:xmpmeta xmlns:x='adobe:ns:meta/'>"
                                "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                                "<rdf:Description rdf:about='' xmlns:exif='http://ns.adobe.com/exif/1.0/'"
                                " exif:DateTimeOriginal='2020-01-02T03:04:05'/></rdf:RDF></x:xmpmeta>";
    const std::size_t length = payload.size() + 2;
    return jpeg.substr(0, 2) + "\xFF\xE1" + static_cast<char>(length >> 8) + static_cast<char>(length & 0xFF) +
           payload + jpeg.substr(2);
}

// A comparison of two rows whose values the test gives.
class FixedTable : public OrvInfoTable {
public:
    FixedTable(OrvFileId id, VecString values) : OrvInfoTable(id), m_values(std::move(values)) {
        m_parameters.push_back(CreateParameterOutputString("First", ""));
        m_parameters.push_back(CreateParameterOutputString("Second", ""));
    }
    VecVecString Evaluate() override {
        ++evaluations;
        for (size_t i = 0; i < m_values.size(); ++i) m_parameters[i].Set(m_values[i]);
        return GenerateTable();
    }
    int evaluations = 0;

private:
    VecString m_values;
};

class FixedComparison : public OrvInfoTableComparison {
public:
    FixedComparison()
        : OrvInfoTableComparison(new FixedTable(Evidence, {"a", "b"}), new FixedTable(Reference, {"a", "B"})) {}
    int Evaluations(OrvFileId id) const {
        return static_cast<FixedTable const&>(id == Evidence ? *m_evidence : *m_reference).evaluations;
    }
};

}  // namespace

TEST_F(Comparison, NoFiles_GiveHeaderAndDefaultRows) {
    JpegDimplesGlobalTableComparison comparison;
    EXPECT_EQ((VecVecString{kHeader,
                            {"1", "JPEG dimples presence:", "", "", ""},
                            {"2", "Dimples strenght:", "", "", ""},
                            {"3", "Offset (x,y):", "", "", ""}}),
              comparison.GenerateTable());
}

TEST_F(Comparison, NoFiles_HideDefaultTextsAndFillNoComparison) {
    JpegInfoTableComparison jpeg;
    jpeg.Evaluate(Evidence);
    const VecVecString rows = jpeg.Evaluate(Reference);
    ASSERT_EQ(29u, rows.size());
    EXPECT_EQ((VecString{"1", "Compatible Cameras (Internal)", "", "", ""}), rows[1]);
    for (size_t i = 1; i < rows.size(); ++i) EXPECT_EQ("", rows[i][4]) << rows[i][1];
    ImageInfoTableComparison image;
    EXPECT_EQ((VecString{"5", "Image Encoded Size", "", "", "", "", ""}),
              Row(image.Evaluate(Evidence), "Image Encoded Size"));
}

TEST_F(Comparison, EveryKind_HasItsRowsAtOnce) {
    EXPECT_EQ(29u, JpegInfoTableComparison().GenerateTable().size());
    EXPECT_EQ(22u, JpegInfoTableComparison2().GenerateTable().size());
    EXPECT_EQ(43u, ImageInfoTableComparison().GenerateTable().size());
    EXPECT_EQ((VecVecString{kHeader}), ExifInfoTableComparison(true).GenerateTable());
    EXPECT_EQ((VecVecString{kHeader}), ExifInfoTableComparison(false).GenerateTable());
}

TEST_F(Comparison, BothLoaded_MarksWhatDiffers) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg", Evidence);
    LoadBytes(EncodeJpeg(64, 48), "r.jpg", Reference);
    FixedComparison comparison;
    comparison.Evaluate(Evidence);
    EXPECT_EQ((VecVecString{kHeader, {"1", "First", "a", "a", ""}, {"2", "Second", "b", "B", "!Different"}}),
              comparison.Evaluate(Reference));
}

TEST_F(Comparison, OnlyTheReferenceLoaded_ShowsNoDifference) {
    LoadBytes(EncodeJpeg(64, 48), "r.jpg", Reference);
    FixedComparison comparison;
    comparison.Evaluate(Evidence);
    EXPECT_EQ((VecVecString{kHeader, {"1", "First", "", "a", ""}, {"2", "Second", "", "B", ""}}),
              comparison.Evaluate(Reference));
}

TEST_F(Comparison, JpegOfTheReferenceAlone_ShowsNoDifference) {
    LoadBytes(EncodeJpeg(64, 48, 80), "r.jpg", Reference);
    JpegInfoTableComparison comparison;
    comparison.Evaluate(Evidence);
    const VecVecString rows = comparison.Evaluate(Reference);
    EXPECT_EQ((VecString{"5", "Image Quality", "", "80", ""}), rows[5]);
    EXPECT_EQ((VecString{"8", "Chroma Subsampling", "", "4:2:0", ""}), rows[8]);
    for (size_t i = 1; i < rows.size(); ++i) EXPECT_EQ("", rows[i][4]) << rows[i][1];
}

TEST_F(Comparison, Evaluate_ComputesTheNamedSideAlone) {
    FixedComparison comparison;
    comparison.Evaluate(Evidence);
    comparison.Evaluate(Evidence);
    comparison.Evaluate(Reference);
    comparison.Evaluate(static_cast<OrvFileId>(7));
    EXPECT_EQ(2, comparison.Evaluations(Evidence));
    EXPECT_EQ(1, comparison.Evaluations(Reference));
}

TEST_F(Comparison, Reset_EmptiesTheNamedSideAlone) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg", Evidence);
    LoadBytes(EncodeJpeg(64, 48), "r.jpg", Reference);
    FixedComparison comparison;
    comparison.Evaluate(Evidence);
    comparison.Evaluate(Reference);
    EXPECT_EQ((VecVecString{kHeader, {"1", "First", "", "a", "!Different"}, {"2", "Second", "", "B", "!Different"}}),
              comparison.Reset(Evidence));
    EXPECT_EQ((VecString{"Reference Image Value", "a", "B"}), Column(comparison.Reset(static_cast<OrvFileId>(-1)), 3));
}

TEST_F(Comparison, Copy_SharesItsTablesAndOutlivesItsSource) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg", Evidence);
    auto source = std::make_unique<FixedComparison>();
    FixedComparison copy(*source);
    source->Evaluate(Evidence);
    EXPECT_EQ(1, copy.Evaluations(Evidence));
    source.reset();
    EXPECT_EQ("a", copy.GenerateTable()[1][2]);
}

TEST_F(Comparison, DifferentText_IsTranslatedAroundItsMarker) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg", Evidence);
    LoadBytes(EncodeJpeg(64, 48), "r.jpg", Reference);
    ASSERT_TRUE(support::UseTranslations(dir, {{"%sDifferent", "%sDiverso"}}));
    FixedComparison comparison;
    comparison.Evaluate(Evidence);
    EXPECT_EQ("!Diverso", comparison.Evaluate(Reference)[2][4]);
}

TEST_F(Comparison, JpegTables_DifferInQualityAndTables) {
    LoadBytes(EncodeJpeg(64, 48, 90), "e.jpg", Evidence);
    LoadBytes(EncodeJpeg(64, 48, 80), "r.jpg", Reference);
    JpegInfoTableComparison comparison;
    comparison.Evaluate(Evidence);
    const VecVecString rows = comparison.Evaluate(Reference);
    EXPECT_EQ((VecString{"5", "Image Quality", "90", "80", "!Different"}), rows[5]);
    EXPECT_EQ((VecString{"7", "Color Space", "YCbCr", "YCbCr", ""}), rows[7]);
    EXPECT_EQ("!Different", rows[10][4]);
}

TEST_F(Comparison, ExifOfEqualFiles_HasNoMarks) {
    LoadTags({{kMake, "Abc"}}, Evidence);
    LoadTags({{kMake, "Abc"}}, Reference);
    for (const bool useDetails : {true, false}) {
        const VecVecString rows = Exif(useDetails);
        ASSERT_GT(rows.size(), 1u);
        for (size_t i = 1; i < rows.size(); ++i) EXPECT_EQ("", rows[i][4]) << rows[i][1];
        EXPECT_EQ((VecVecString{{"IFD0:Make", "Abc", "Abc", ""}}), Ifd0(rows));
    }
}

TEST_F(Comparison, ExifDifferences_AreSoftForValuesAndHardForNames) {
    LoadTags({{kMake, "Abc"}, {kModel, "X1"}}, Evidence);
    LoadTags({{kMake, "abc"}, {kSoftware, "P7"}}, Reference);
    EXPECT_EQ((VecVecString{{"IFD0:Make", "Abc", "abc", "?Different"},
                            {"IFD0:Model", "X1", "", "!Only in Evidence"},
                            {"IFD0:Software", "", "P7", "!Only in Reference"}}),
              Ifd0(Exif()));
}

TEST_F(Comparison, ExifDuplicates_ArePairedInTheirOrder) {
    LoadTags({{kMake, "A"}, {kMake, "B"}}, Evidence);
    LoadTags({{kMake, "A"}, {kMake, "C"}, {kMake, "D"}}, Reference);
    EXPECT_EQ((VecVecString{{"IFD0:Make", "A", "A", ""},
                            {"IFD0:Make", "B", "C", "?Different"},
                            {"IFD0:Make", "", "D", "!Only in Reference"}}),
              Ifd0(Exif()));
}

TEST_F(Comparison, ExifNumbers_GoOnBehindTheEvidence) {
    LoadTags({{kMake, "A"}}, Evidence);
    LoadTags({{kModel, "B"}, {kSoftware, "C"}}, Reference);
    const VecVecString rows = Exif();
    for (size_t i = 1; i < rows.size(); ++i) EXPECT_EQ(wxString::Format("%d", static_cast<int>(i)), rows[i][0]);
    EXPECT_EQ("!Only in Reference", rows.back()[4]);
}

TEST_F(Comparison, OnlyTheEvidenceLoaded_HasNoOnlyInEvidence) {
    LoadTags({{kMake, "A"}}, Evidence);
    EXPECT_EQ((VecVecString{{"IFD0:Make", "A", "", ""}}), Ifd0(Exif()));
}

TEST_F(Comparison, OnlyTheReferenceLoaded_StartsItsExifNumbersAtTwo) {
    LoadTags({{kMake, "A"}}, Reference);
    const VecVecString rows = Exif();
    EXPECT_EQ("2", rows[1][0]);
    EXPECT_EQ("3", rows[2][0]);
    EXPECT_EQ((VecVecString{{"IFD0:Make", "", "A", ""}}), Ifd0(rows));
}

TEST_F(Comparison, EvidenceWithoutMetadata_MarksTheReferencesNames) {
    LoadBytes(support::PlainBmp(), "e.bmp", Evidence);
    LoadTags({{kMake, "A"}}, Reference);
    const VecVecString rows = Exif();
    EXPECT_EQ("2", rows[1][0]);
    EXPECT_EQ((VecVecString{{"IFD0:Make", "", "A", "!Only in Reference"}}), Ifd0(rows));
}

TEST_F(Comparison, ReferenceWithoutMetadata_MarksTheEvidencesNames) {
    LoadTags({{kMake, "A"}, {kModel, "B"}}, Evidence);
    LoadBytes(support::PlainBmp(), "r.bmp", Reference);
    for (const bool useDetails : {true, false}) {
        const VecVecString rows = Exif(useDetails);
        EXPECT_EQ("1", rows[1][0]);
        EXPECT_EQ(
            (VecVecString{{"IFD0:Make", "A", "", "!Only in Evidence"}, {"IFD0:Model", "B", "", "!Only in Evidence"}}),
            Ifd0(rows));
    }
}

TEST_F(Comparison, FilesWithoutMetadata_GiveTheHeaderAlone) {
    LoadBytes(support::PlainBmp(), "e.bmp", Evidence);
    LoadBytes(support::PlainBmp(), "r.bmp", Reference);
    EXPECT_EQ((VecVecString{kHeader}), Exif(true));
    EXPECT_EQ((VecVecString{kHeader}), Exif(false));
}

TEST_F(Comparison, ExifTableThatOutlivesItsFile_HasNoMarks) {
    LoadTags({{kMake, "A"}}, Evidence);
    LoadTags({{kMake, "B"}}, Reference);
    ExifInfoTableComparison comparison(true);
    comparison.Evaluate(Evidence);
    comparison.Evaluate(Reference);
    Load("", Evidence);
    EXPECT_EQ((VecVecString{{"IFD0:Make", "", "B", ""}}), Ifd0(comparison.GenerateTable()));
}

TEST_F(Comparison, ExifTexts_AreTranslated) {
    ASSERT_TRUE(support::UseTranslations(
        dir, {{"?Different", "?Diverso"}, {"!Only in Evidence", "!Solo E"}, {"!Only in Reference", "!Solo R"}}));
    LoadTags({{kMake, "A"}, {kModel, "X"}}, Evidence);
    LoadTags({{kMake, "B"}, {kSoftware, "Y"}}, Reference);
    EXPECT_EQ((VecString{"?Diverso", "!Solo E", "!Solo R"}), Column(Ifd0(Exif()), 3));
}

TEST_F(Comparison, Images_HaveSevenColumns) {
    ImageInfoTableComparison comparison;
    EXPECT_EQ((VecString{"#Id", "Name", "Evidence Image Value", "Evidence Image Warnings", "Reference Image Value",
                         "Reference Image Warnings", "Comparison"}),
              comparison.GenerateTable()[0]);
    EXPECT_EQ((VecString{"1", "Filename", "", "", "", "", ""}), comparison.Evaluate(Evidence)[1]);
}

TEST_F(Comparison, ImagesOfDifferentSizes_AreHardInSizeAndPlainInFileFacts) {
    LoadBytes(EncodeJpeg(640, 480), "e.jpg", Evidence);
    LoadBytes(EncodeJpeg(320, 240), "r.jpg", Reference);
    ImageInfoTableComparison comparison;
    comparison.Evaluate(Evidence);
    const VecVecString rows = comparison.Evaluate(Reference);
    EXPECT_EQ("!Different", Row(rows, "Image Encoded Size")[6]);
    EXPECT_EQ("Different", Row(rows, "File Size")[6]);
    EXPECT_EQ("Different", Row(rows, "Filename")[6]);
    EXPECT_EQ("Different", Row(rows, "MD5")[6]);
    EXPECT_EQ("", Row(rows, "Format")[6]);
    EXPECT_EQ("640x480", Row(rows, "Image Encoded Size")[2]);
    EXPECT_EQ("320x240", Row(rows, "Image Encoded Size")[4]);
}

TEST_F(Comparison, ImagesThatShareNothing_AreHardFromFormatToHuffmanTables) {
    LoadBytes(WithXmpDate(EncodeJpeg(64, 48)), "e.jpg", Evidence);
    LoadBytes(support::PlainBmp(), "r.bmp", Reference);
    ImageInfoTableComparison comparison;
    comparison.Evaluate(Evidence);
    const VecVecString rows = comparison.Evaluate(Reference);
    EXPECT_EQ("Different", Row(rows, "Full Path")[6]);
    EXPECT_EQ((VecString{"3", "Format", "JPEG", "BMP", "!Different"}),
              (VecString{rows[3][0], rows[3][1], rows[3][2], rows[3][4], rows[3][6]}));
    EXPECT_EQ((VecString{"30", "JPEG HT is standard IJG", "true", "", "!Different"}),
              (VecString{rows[30][0], rows[30][1], rows[30][2], rows[30][4], rows[30][6]}));
    EXPECT_EQ((VecString{"31", "Exif DateTimeOriginal", "2020:01:02 03:04:05", "", "Different"}),
              (VecString{rows[31][0], rows[31][1], rows[31][2], rows[31][4], rows[31][6]}));
}

TEST_F(Comparison, Images_KeepTheWarningsOfBothSides) {
    // Sizes that are no multiples of 4 are a hard finding.
    LoadBytes(EncodeJpeg(641, 481), "e.jpg", Evidence);
    LoadBytes(EncodeJpeg(643, 483), "r.jpg", Reference);
    ImageInfoTableComparison comparison;
    comparison.Evaluate(Evidence);
    const VecString first = Row(comparison.Evaluate(Reference), "Image Encoded Size");
    EXPECT_TRUE(first[3].StartsWith("!"));
    EXPECT_TRUE(first[5].StartsWith("!"));
    EXPECT_EQ(first, Row(comparison.Evaluate(Evidence), "Image Encoded Size"));
}

TEST_F(Comparison, HardWarnings_AreCountedOnTheEvidencesSideAlone) {
    LoadBytes(EncodeJpeg(641, 481), "e.jpg", Evidence);
    LoadBytes(EncodeJpeg(641, 481), "r.jpg", Reference);
    ImageInfoTableComparison comparison;
    int count = -5;
    comparison.Evaluate(Reference, &count);
    EXPECT_EQ(-5, count);
    comparison.Evaluate(Evidence, &count);
    EXPECT_GE(count, 2);
    comparison.Evaluate(Evidence, nullptr);
}

TEST_F(Comparison, ImageSideThatWasReset_CountsAsWithoutAFile) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg", Evidence);
    LoadBytes(EncodeJpeg(32, 48), "r.jpg", Reference);
    ImageInfoTableComparison comparison;
    comparison.Evaluate(Evidence);
    comparison.Evaluate(Reference);
    const VecVecString rows = comparison.Reset(Evidence);
    for (size_t i = 1; i < rows.size(); ++i) {
        EXPECT_EQ("", rows[i][2]);
        EXPECT_EQ("", rows[i][3]);
        EXPECT_EQ("", rows[i][6]);
    }
    EXPECT_EQ("32x48", Row(rows, "Image Encoded Size")[4]);
}
