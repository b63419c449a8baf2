// SPDX-License-Identifier: Apache-2.0
#include "orvcore/batchtable.h"

#include <algorithm>
#include <thread>

#include "orvcore/tablewriter.h"
#include "tests/orvcore/photos.h"
#include "tests/orvcore/slotfiles.h"
#include "tolbase/file.h"
#include "tolbase/progress.h"

namespace {

using support::CameraFacts;
using support::JpegForm;

class BatchTables : public support::Slots {
protected:
    // A photograph whose one hard finding is the odd width, if that is wanted.
    wxString Photo(wxString const& name, bool odd = false, std::string const& make = "Haldenmann") {
        JpegForm form;
        form.width = odd ? 801 : 800;
        CameraFacts facts;
        facts.make = make;
        facts.thumbnail = support::EncodeJpeg(160, 120);
        return support::WriteBytes(dir / ("in/" + name), support::MakePhoto(form, facts));
    }
    // A photograph taken at a time of day, with Huffman tables made for it if that is wanted.
    wxString PhotoAt(wxString const& name, std::string const& time, bool optimised = false) {
        JpegForm form;
        form.optimisedTables = optimised;
        CameraFacts facts;
        facts.originalDate = "2021:05:06 " + time;
        return support::WriteBytes(dir / ("in/" + name), support::MakePhoto(form, facts));
    }
    VecVecString Batch(VecString const& files, wxString const& clean = "", wxString const& flagged = "") {
        VecVecString table;
        OnWorker([&] { table = batch.Evaluate(files, clean, flagged); });
        return table;
    }
    VecVecString Compare(VecString const& files) {
        VecVecString table;
        OnWorker([&] { table = comparison.Evaluate(files); });
        return table;
    }
    static bool Exists(wxString const& path) { return wxFileExists(path); }

    ImageInfoTableBatch batch;
    ImageInfoTableMultiComparison comparison;
};

size_t Place(VecString const& header, wxString const& title) {
    return static_cast<size_t>(std::find(header.begin(), header.end(), title) - header.begin());
}

wxString Cell(VecVecString const& table, size_t row, wxString const& title) {
    return table.at(row).at(Place(table.at(0), title));
}

}  // namespace

TEST_F(BatchTables, NoFiles_GiveNoTable) {
    EXPECT_TRUE(Batch({}).empty());
}

TEST_F(BatchTables, Header_HasTheNamesBetweenNumberAndCounts) {
    const VecVecString table = Batch({Photo("a.jpg")});
    ASSERT_EQ(2U, table.size());
    const VecString& header = table[0];
    ASSERT_EQ(46U, header.size());
    EXPECT_EQ(VecString({"#Id", "Image", "Filename", "Full Path", "Format"}),
              VecString(header.begin(), header.begin() + 5));
    EXPECT_EQ(VecString({"SHA512", "Warnings (hard)", "Warnings (soft)"}), VecString(header.end() - 3, header.end()));
    EXPECT_EQ(46U, table[1].size());
}

TEST_F(BatchTables, ShortForm_HasThirtyColumnsOfFacts) {
    VecVecString table;
    OnWorker([&] { table = ImageInfoTableBatch(false).Evaluate({Photo("a.jpg")}, "", ""); });
    EXPECT_EQ(34U, table.at(0).size());
}

TEST_F(BatchTables, Rows_NameNumberAndThumbnail) {
    const VecVecString table = Batch({Photo("a.jpg"), support::WriteBytes(dir / "in/b.bmp", support::PlainBmp())});
    EXPECT_EQ("*IMG*0", table.at(1)[1]);
    EXPECT_EQ("*IMG*1", table.at(2)[1]);
    EXPECT_EQ("b.bmp", Cell(table, 2, "Filename"));
    const std::vector<Image> thumbnails = context->GetThumbnails();
    ASSERT_EQ(2U, thumbnails.size());
    EXPECT_EQ(20, thumbnails[0].Width());
    EXPECT_FALSE(thumbnails[1].IsOk());
}

TEST_F(BatchTables, MarkersAndCounts_AgreeWithTheTableOfTheFile) {
    const VecVecString table = Batch({Photo("a.jpg", true)});
    Load(dir / "in/a.jpg");
    ImageInfoTable single(Evidence, true);
    size_t hard = 0;
    size_t soft = 0;
    OnWorker([&] {
        for (VecString const& row : single.Evaluate()) {
            hard += row[2].StartsWith("!") ? 1U : 0U;
            soft += row[2].StartsWith("?") ? 1U : 0U;
        }
    });
    EXPECT_GT(hard, 0U);
    EXPECT_GT(soft, 0U);
    EXPECT_EQ("!1", table.at(1)[0]);
    EXPECT_EQ(wxString::Format("%zu", hard), Cell(table, 1, "Warnings (hard)"));
    EXPECT_EQ(wxString::Format("%zu", soft), Cell(table, 1, "Warnings (soft)"));
    EXPECT_EQ("!801x600", Cell(table, 1, "Image Encoded Size"));
}

TEST_F(BatchTables, OneHardAndThreeSoftWarnings_AreCountedApart) {
    const wxString file = support::WriteBytes(dir / "in/a.jpg", support::MakePhoto(JpegForm(), CameraFacts()));
    const VecVecString table = Batch({file});
    EXPECT_EQ("!1", table.at(1)[0]);
    EXPECT_EQ("1", Cell(table, 1, "Warnings (hard)")) << FormatTable(table);
    EXPECT_EQ("3", Cell(table, 1, "Warnings (soft)")) << FormatTable(table);
    EXPECT_EQ("!0x0", Cell(table, 1, "Thumbnail Size"));
    EXPECT_EQ("?800x600", Cell(table, 1, "Image Encoded Size"));
    EXPECT_TRUE(Cell(table, 1, "JPEG QT Hash").StartsWith("?"));
    EXPECT_TRUE(Cell(table, 1, "File Size").StartsWith("?"));
    EXPECT_EQ("a.jpg", Cell(table, 1, "Filename"));
}

TEST_F(BatchTables, WarningOnAnEmptyValue_ShowsMarkerAndEmpty) {
    const VecVecString table = Batch({support::WriteBytes(dir / "in/b.bmp", support::PlainBmp())});
    EXPECT_EQ("!- empty -", Cell(table, 1, "Exif Make"));
    EXPECT_EQ("", Cell(table, 1, "Serial Number"));
}

TEST_F(BatchTables, RunTwice_GivesTheSameTable) {
    const VecString files = {Photo("a.jpg", true), Photo("b.jpg")};
    const VecVecString first = Batch(files);
    EXPECT_EQ(first, Batch(files));
    EXPECT_EQ(2U, context->GetThumbnails().size());
}

TEST_F(BatchTables, Slots_AreRestored) {
    const wxString first = Photo("a.jpg");
    const wxString second = Photo("b.jpg");
    Load(first);
    Load(second, Reference);
    Batch({Photo("c.jpg")});
    EXPECT_EQ(first, context->GetFilename(Evidence));
    EXPECT_EQ(second, context->GetFilename(Reference));
    EXPECT_TRUE(context->GetImage(Reference).IsOk());
}

TEST_F(BatchTables, WithoutFolders_NothingMoves) {
    const wxString odd = Photo("odd.jpg", true);
    Batch({odd});
    EXPECT_TRUE(Exists(odd));
    EXPECT_TRUE(batch.GetMoved().empty());
}

TEST_F(BatchTables, FlaggedFolderAlone_TakesOnlyHardWarnings) {
    const wxString odd = Photo("odd.jpg", true);
    const wxString clean = Photo("clean.jpg");
    const VecVecString table = Batch({odd, clean}, "", dir / "flagged");
    ASSERT_EQ("0", Cell(table, 2, "Warnings (hard)")) << FormatTable(table);
    EXPECT_NE("0", Cell(table, 2, "Warnings (soft)"));
    EXPECT_FALSE(Exists(odd));
    EXPECT_TRUE(Exists(dir / "flagged/odd.jpg"));
    EXPECT_TRUE(Exists(clean));
    ASSERT_EQ(1U, batch.GetMoved().size());
    EXPECT_EQ(dir / "flagged/odd.jpg", batch.GetMoved()[0].second);
}

TEST_F(BatchTables, CleanFolder_TakesFilesWithSoftWarnings) {
    const wxString clean = Photo("clean.jpg");
    const VecVecString table = Batch({clean}, dir / "clean", "");
    ASSERT_TRUE(table.at(1)[0].StartsWith("?")) << FormatTable(table);
    EXPECT_TRUE(Exists(dir / "clean/clean.jpg"));
    EXPECT_FALSE(Exists(clean));
}

TEST_F(BatchTables, MovedEvidence_LeavesItsSlotEmpty) {
    const wxString odd = Photo("odd.jpg", true);
    Load(odd);
    Batch({odd}, "", dir / "flagged");
    EXPECT_FALSE(Exists(odd));
    EXPECT_FALSE(context->HasFile(Evidence));
    EXPECT_FALSE(context->GetImage(Evidence).IsOk());
}

TEST_F(BatchTables, ClashOfNames_KeepsBothFiles) {
    const wxString odd = Photo("odd.jpg", true);
    support::WriteBytes(dir / "flagged/odd.jpg", "there before");
    Batch({odd}, "", dir / "flagged");
    EXPECT_EQ("there before", support::ReadBytes(dir / "flagged/odd.jpg"));
    EXPECT_TRUE(Exists(dir / "flagged/odd (2).jpg"));
}

TEST_F(BatchTables, FolderThatIsAFile_LeavesTheFileWhereItIs) {
    const wxString odd = Photo("odd.jpg", true);
    support::WriteBytes(dir / "occupied", "x");
    Batch({odd}, "", dir / "occupied");
    EXPECT_TRUE(Exists(odd));
    EXPECT_EQ(VecString({odd}), batch.GetNotMoved());
}

TEST_F(BatchTables, FileThatCantBeLoaded_GivesANamedRowAndStays) {
    const wxString broken = support::WriteBytes(dir / "in/broken.jpg", "no picture");
    const VecVecString table = Batch({Photo("a.jpg"), broken, Photo("c.jpg")}, dir / "clean", dir / "flagged");
    ASSERT_EQ(4U, table.size());
    EXPECT_EQ("!2", table[2][0]);
    EXPECT_EQ("*IMG*1", table[2][1]);
    EXPECT_EQ("broken.jpg", Cell(table, 2, "Filename"));
    EXPECT_EQ(broken, Cell(table, 2, "Full Path"));
    for (size_t i = 4; i + 2 < table[2].size(); ++i) EXPECT_TRUE(table[2][i].empty() || table[2][i] == "0x0") << i;
    EXPECT_EQ("c.jpg", Cell(table, 3, "Filename"));
    EXPECT_TRUE(Exists(broken));
    ASSERT_EQ(1U, batch.GetFailures().size());
    EXPECT_EQ("File format not supported.", batch.GetFailures()[0].second);
}

TEST_F(BatchTables, FileThatVanishes_IsNoEndOfTheRun) {
    const VecVecString table = Batch({Photo("a.jpg"), dir / "in/gone.jpg", Photo("c.jpg")});
    ASSERT_EQ(4U, table.size());
    EXPECT_EQ("", Cell(table, 2, "Exif Make"));
    EXPECT_EQ("Haldenmann", Cell(table, 3, "Exif Make"));
    ASSERT_EQ(1U, batch.GetFailures().size());
    EXPECT_EQ("The file does not exist.", batch.GetFailures()[0].second);
}

TEST_F(BatchTables, UnloadableFile_IsNotOkInTheStatusForm) {
    const VecVecString table = Batch({dir / "in/gone.jpg"});
    SaveImageInfoTableByExtension(dir / "status.tsv", table, true);
    EXPECT_EQ("Warning\t*IMG*0", support::ReadBytes(dir / "status.tsv"));
}

TEST_F(BatchTables, Abort_KeepsTheRowsSoFarAndRestores) {
    const wxString first = Photo("a.jpg");
    const wxString second = Photo("b.jpg");
    Load(second);
    VecVecString table;
    OnWorker([&] {
        std::thread aborter([] {
            while (tcvGetProgress2().value < 1) std::this_thread::yield();
            tcvAbortAllProgress();
        });
        table = batch.Evaluate(VecString(200, first), "", "");
        aborter.join();
    });
    EXPECT_GE(table.size(), 2U);
    EXPECT_LT(table.size(), 200U);
    EXPECT_EQ(second, context->GetFilename(Evidence));
    EXPECT_FALSE(tcvHasAborted());
    EXPECT_FALSE(tcvHasAborted2());
}

TEST_F(BatchTables, Comparison_ListsTheEvidenceOnceAsTheStandard) {
    const wxString evidence = Photo("a.jpg");
    const wxString other = Photo("b.jpg", false, "Otherco");
    Load(evidence);
    const VecVecString table = Compare({evidence, other});
    ASSERT_EQ(3U, table.size());
    EXPECT_EQ(VecString({"#Id", "Image", "Differences", "Filename"}),
              VecString(table[0].begin(), table[0].begin() + 4));
    EXPECT_EQ(VecString({"0", "*IMG*0", "0", "a.jpg"}), VecString(table[1].begin(), table[1].begin() + 4));
    EXPECT_EQ(VecString({"1", "*IMG*1", "1", "b.jpg"}), VecString(table[2].begin(), table[2].begin() + 4));
    EXPECT_EQ("!Otherco", Cell(table, 2, "Exif Make"));
    EXPECT_EQ("Haldenmann", Cell(table, 1, "Exif Make"));
    EXPECT_EQ(2U, context->GetThumbnails().size());
}

TEST_F(BatchTables, DifferencesAtTheFirstRowsAndFromThirtyOn_DontCount) {
    const wxString evidence = Photo("a.jpg");
    Load(evidence);
    const VecVecString table = Compare({support::WriteBytes(dir / "in/copy.jpg", support::ReadBytes(evidence))});
    EXPECT_EQ("0", table.at(2)[2]);
    EXPECT_EQ("copy.jpg", Cell(table, 2, "Filename"));
    EXPECT_EQ(dir / "in/copy.jpg", Cell(table, 2, "Full Path"));
    support::WriteBytes(dir / "in/longer.jpg", support::ReadBytes(evidence) + "behind the end");
    const VecVecString longer = Compare({dir / "in/longer.jpg"});
    EXPECT_EQ("0", longer.at(2)[2]);
    EXPECT_NE(Cell(longer, 1, "MD5"), Cell(longer, 2, "MD5"));
    EXPECT_FALSE(Cell(longer, 2, "MD5").StartsWith("!"));
}

TEST_F(BatchTables, RowsOneAndThirty_AreBesideTheComparedOnes) {
    Load(PhotoAt("a.jpg", "10:20:30"));
    const wxString later = PhotoAt("b.jpg", "11:20:30");
    const VecVecString table = Compare({later, PhotoAt("c.jpg", "10:20:30", true)});
    ASSERT_EQ(4U, table.size());
    EXPECT_EQ("Full Path", table[0].at(3 + 1));
    EXPECT_EQ("Exif DateTimeOriginal", table[0].at(3 + 30));
    EXPECT_EQ("0", table[2][2]) << FormatTable(table);
    EXPECT_EQ(later, table[2].at(3 + 1));
    EXPECT_EQ("2021:05:06 10:20:30", table[1].at(3 + 30));
    EXPECT_EQ("2021:05:06 11:20:30", table[2].at(3 + 30));
    EXPECT_EQ("JPEG HT is standard IJG", table[0].at(3 + 29));
    EXPECT_EQ("1", table[3][2]) << FormatTable(table);
    EXPECT_EQ("!false", table[3].at(3 + 29));
}

TEST_F(BatchTables, ComparisonOfNothing_HasHeaderAndStandard) {
    Load(Photo("a.jpg"));
    EXPECT_EQ(2U, Compare({}).size());
}

TEST_F(BatchTables, ComparisonWithABrokenFile_GoesOnFromAnEmptySlot) {
    const wxString evidence = Photo("a.jpg");
    Load(evidence);
    Load(Photo("r.jpg"), Reference);
    const wxString broken = support::WriteBytes(dir / "in/broken.jpg", "no picture");
    const VecVecString table = Compare({broken, Photo("b.jpg")});
    ASSERT_EQ(4U, table.size());
    EXPECT_EQ("broken.jpg", Cell(table, 2, "Filename"));
    EXPECT_EQ("!", Cell(table, 2, "Exif Make"));
    EXPECT_EQ("0", table[3][2]);
    EXPECT_EQ("File format not supported.", comparison.GetFailures().at(0).second);
    EXPECT_EQ(evidence, context->GetFilename(Evidence));
    EXPECT_EQ(dir / "in/r.jpg", context->GetFilename(Reference));
}

TEST_F(BatchTables, FileByFile_GivesTheSameRows) {
    const wxString first = Photo("a.jpg", true);
    const VecVecString table = Batch({first});
    Load(first);
    bool hard = false;
    VecString row;
    OnWorker([&] { row = batch.EvaluateEvidence(1, hard); });
    EXPECT_TRUE(hard);
    EXPECT_EQ(table.at(0), batch.GetHeader());
    EXPECT_EQ(table.at(1), row);
}
