// SPDX-License-Identifier: Apache-2.0
#include "orvcore/jpegsignaturetable.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/orvcore/catalogue.h"
#include "tests/orvcore/slotfiles.h"
#include "tolbase/progress.h"

namespace {

using support::EncodeJpeg;

class SignatureMatch : public support::Slots {
protected:
    VecVecString Match(VecString const& files) {
        VecVecString rows;
        OnWorker([&] { rows = JpegInfoTableSignatureMatch().Evaluate(files); });
        return rows;
    }
    wxString File(wxString const& name, std::string const& bytes) {
        return support::WriteBytes(dir / ("in/" + name), bytes);
    }
};

}  // namespace

TEST_F(SignatureMatch, SignatureWithoutFile_HasDefaultRows) {
    EXPECT_EQ((VecVecString{{"Filename", ""},
                            {"Full Path", ""},
                            {"Image Size", "0x0"},
                            {"Image Quality", ""},
                            {"Chroma Subsampling", ""},
                            {"QT Hash", ""}}),
              JpegInfoTableSignature(Evidence).Evaluate());
}

TEST_F(SignatureMatch, SignatureOfAJpeg_HasItsFacts) {
    const wxString path = LoadBytes(EncodeJpeg(640, 480, 80), "photo.one.jpg", Reference);
    EXPECT_EQ((VecVecString{{"Filename", "photo.one.jpg"},
                            {"Full Path", path},
                            {"Image Size", "640x480"},
                            {"Image Quality", "80"},
                            {"Chroma Subsampling", "4:2:0"},
                            {"QT Hash", context->GetImageQtHash(Reference)}}),
              JpegInfoTableSignature(Reference).Evaluate());
}

TEST_F(SignatureMatch, SignatureOfAnotherFormat_HasNameAndPathAlone) {
    const wxString path = LoadBytes(support::PlainBmp(), "a.bmp");
    EXPECT_EQ((VecString{"a.bmp", path, "0x0", "", "", ""}),
              support::Column(JpegInfoTableSignature(Evidence).Evaluate(), 1));
}

TEST_F(SignatureMatch, EmptyList_GivesHeaderAndEvidence) {
    const wxString path = LoadBytes(EncodeJpeg(64, 48), "e.jpg");
    EXPECT_EQ((VecVecString{{"#Id", "Filename", "Full Path", "Image Size", "Image Quality", "Chroma Subsampling",
                             "QT Hash", "Differences"},
                            {"0", "e.jpg", path, "64x48", "90", "4:2:0", context->GetImageQtHash(Evidence), "0"}}),
              Match({}));
}

TEST_F(SignatureMatch, EvidencesOwnPath_HasNoDifferences) {
    const wxString path = LoadBytes(EncodeJpeg(64, 48), "e.jpg");
    const VecVecString rows = Match({path});
    ASSERT_EQ(3u, rows.size());
    VecString expected = rows[1];
    expected[0] = "1";
    EXPECT_EQ(expected, rows[2]);
}

TEST_F(SignatureMatch, SameTablesUnderAnotherName_DifferInNameAndPath) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg");
    const VecVecString rows = Match({File("other.jpg", EncodeJpeg(64, 48, 90, 2))});
    EXPECT_EQ("2", rows[2][7]);
    EXPECT_EQ(rows[1][6], rows[2][6]);
}

TEST_F(SignatureMatch, AnotherHash_IsMarkedInItsCellAlone) {
    LoadBytes(EncodeJpeg(64, 48, 90), "e.jpg");
    const VecVecString rows = Match({File("r.jpg", EncodeJpeg(32, 48, 70))});
    EXPECT_EQ("!" + context->GetImageQtHash(Reference), rows[2][6]);
    for (const size_t column : {0, 1, 2, 3, 4, 5, 7}) EXPECT_FALSE(rows[2][column].StartsWith("!")) << column;
    // Name, path, size, quality and hash.
    EXPECT_EQ("5", rows[2][7]);
}

TEST_F(SignatureMatch, FileThatIsNoJpeg_DiffersInAll) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg");
    const wxString path = File("a.bmp", support::PlainBmp());
    EXPECT_EQ((VecString{"1", "a.bmp", path, "0x0", "", "", "!", "6"}), Match({path})[2]);
}

TEST_F(SignatureMatch, FilesThatCannotBeLoaded_AreNamedAndTheRunGoesOn) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg");
    const wxString good = File("good.jpg", EncodeJpeg(64, 48));
    const wxString broken = File("broken.jpg", "no picture");
    const VecVecString rows = Match({good, broken, dir / "missing.jpg", good});
    ASSERT_EQ(6u, rows.size());
    EXPECT_EQ((VecString{"2", "broken.jpg", broken, "0x0", "", "", "!", "6"}), rows[3]);
    EXPECT_EQ((VecString{"3", "missing.jpg", dir / "missing.jpg", "0x0", "", "", "!", "6"}), rows[4]);
    EXPECT_EQ("4", rows[5][0]);
    EXPECT_EQ("2", rows[5][7]);
}

TEST_F(SignatureMatch, ReferenceSlot_HoldsTheLastFile) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg");
    const wxString last = File("last.jpg", EncodeJpeg(32, 32));
    Match({File("first.jpg", EncodeJpeg(64, 48)), last});
    EXPECT_EQ(last, context->GetFilename(Reference));
}

TEST_F(SignatureMatch, EvidenceMissing_ComparesWithDefaults) {
    const VecVecString rows = Match({File("r.jpg", EncodeJpeg(64, 48))});
    EXPECT_EQ((VecString{"0", "", "", "0x0", "", "", "", "0"}), rows[1]);
    EXPECT_EQ("6", rows[2][7]);
}

TEST_F(SignatureMatch, Abort_EndsTheWalkAndKeepsTheRows) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg");
    const VecString files(300, File("r.jpg", EncodeJpeg(16, 16)));
    std::atomic<bool> ended{false};
    wxString text;
    int total = 0;
    std::thread user([&] {
        while (!ended && tcvGetProgress2().value < 3) std::this_thread::yield();
        text = tcvGetProgress2().text;
        total = tcvGetProgress2().total;
        tcvAbortAllProgress();
    });
    const VecVecString rows = Match(files);
    ended = true;
    user.join();
    EXPECT_GE(rows.size(), 4u);
    EXPECT_LT(rows.size(), 302u);
    EXPECT_EQ("Processing 300 files", text);
    EXPECT_EQ(300, total);
    EXPECT_FALSE(tcvHasAborted2());
}

TEST_F(SignatureMatch, AbortOfEarlierWork_DoesNotCount) {
    LoadBytes(EncodeJpeg(64, 48), "e.jpg");
    const wxString file = File("r.jpg", EncodeJpeg(16, 16));
    VecVecString rows;
    OnWorker([&] {
        tcvAbortAllProgress();
        rows = JpegInfoTableSignatureMatch().Evaluate({file});
    });
    EXPECT_EQ(3u, rows.size());
}
