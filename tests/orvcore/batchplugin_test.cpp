// SPDX-License-Identifier: Apache-2.0
// Batches for another program's plug-in, and batches that are stopped.
#include <sys/stat.h>

#include "tests/orvcore/batchengine.h"
#include "tolbase/exception.h"
#include "tolbase/progress.h"

namespace {

using support::BatchHeader;
using support::Number;
using support::SavingFilter;
using Status = OrvFilterConfiguration::FilterStatus;

class BatchPlugin : public support::Batch {};
class BatchAbort : public support::Batch {};

}  // namespace

TEST_F(BatchPlugin, Severity_RisesAndNeverFalls) {
    SavingFilter* format = AddFilter("File Format");
    SavingFilter* other = AddFilter("Noise", {Number("n", 3)});
    SavingFilter* again = AddFilter("Later");
    format->warns = {"a.jpg", "b.jpg"};
    other->warns = {"b.jpg", "c.jpg"};
    again->warns = {};
    const wxString first = Jpeg("a.jpg"), second = Jpeg("b.jpg"), third = Jpeg("c.jpg"), fourth = Jpeg("d.jpg");
    fileMap = {{first, "id-a"}, {second, "id-b"}, {third, "id-c"}};
    Process(Listed({first, second, third, fourth}, 0, "/r/x.html"), true);
    ASSERT_EQ(4U, reports.size());
    EXPECT_EQ(1, reports[first].severity);
    EXPECT_EQ(2, reports[second].severity);
    EXPECT_EQ(2, reports[third].severity);
    EXPECT_EQ(0, reports[fourth].severity);
    EXPECT_EQ("File Format flagged a warning\nNoise (3) flagged a warning\nOrvelle report: \"/r/x.html\"\n",
              reports[second].text);
    EXPECT_EQ("Orvelle report: \"/r/x.html\"\n", reports[fourth].text);
    EXPECT_EQ("id-c", reports[third].identifier);
    EXPECT_EQ("", reports[fourth].identifier);
}

TEST_F(BatchPlugin, LaterFileFormatWarning_LeavesTheHigherSeverity) {
    AddFilter("Noise")->warns = {"a.jpg"};
    AddFilter("File Format")->warns = {"a.jpg"};
    const wxString file = Jpeg("a.jpg");
    Process(Listed({file}, 0, ""), true);
    EXPECT_EQ(2, reports[file].severity);
}

TEST_F(BatchPlugin, EntryThatIsThere_IsKept) {
    AddFilter("Noise")->warns = {"a.jpg"};
    const wxString file = Jpeg("a.jpg");
    fileMap = {{file, "new"}};
    reports[file] = {"before\n", 1, "old"};
    Process(Listed({file}, 0, "r"), true);
    EXPECT_EQ("before\nNoise flagged a warning\nOrvelle report: \"r\"\n", reports[file].text);
    EXPECT_EQ(2, reports[file].severity);
    EXPECT_EQ("old", reports[file].identifier);
}

TEST_F(BatchPlugin, FileThatCantBeLoaded_IsFlaggedWithTheReason) {
    AddFilter("Noise")->warns = {"a.jpg"};
    const wxString broken = support::WriteBytes(dir / "in/broken.jpg", "no picture");
    Process(Listed({Jpeg("a.jpg"), broken}, 0, "r"), true);
    EXPECT_EQ(2, reports[broken].severity);
    EXPECT_EQ("File format not supported.\nOrvelle report: \"r\"\n", reports[broken].text);
}

TEST_F(BatchPlugin, WhatIsNoFile_IsFlaggedWithTheReason) {
    AddFilter("Noise");
    const wxString pipe = dir / "pipe.jpg";
    ASSERT_EQ(0, mkfifo(pipe.utf8_str(), 0600));
    const wxString missing = dir / "missing.jpg";
    Process(Listed({pipe, missing}, 0, "r"), true);
    EXPECT_EQ(2, reports[pipe].severity);
    EXPECT_EQ("Not a regular file.\nOrvelle report: \"r\"\n", reports[pipe].text);
    EXPECT_EQ(2, reports[missing].severity);
    EXPECT_EQ("The file does not exist.\nOrvelle report: \"r\"\n", reports[missing].text);
}

TEST_F(BatchPlugin, ReportInAFolderThatTakesNone_IsToldInEachEntry) {
    AddFilter("Noise");
    const wxString file = Jpeg("a.jpg");
    EXPECT_EQ("", Process(Listed({file}, 2, "/proc/self/r.tsv"), true));
    EXPECT_TRUE(reports[file].text.Contains("The report can't be written: /proc/self/r.tsv\n")) << reports[file].text;
}

TEST_F(BatchPlugin, ReportThatCantBeWritten_IsToldInEachEntry) {
    AddFilter("Noise")->warns = {"a.jpg"};
    support::WriteBytes(dir / "occupied", "x");
    const wxString file = Jpeg("a.jpg");
    EXPECT_EQ("", Process(Listed({file}, 2, dir / "occupied/r.html"), true));
    EXPECT_EQ(2, reports[file].severity);
    EXPECT_TRUE(reports[file].text.EndsWith("The folder can't be made: " + dir / "occupied" + "\n"));
}

TEST_F(BatchAbort, InTheMiddle_WritesWhatWasDoneAndRestores) {
    SavingFilter* filter = AddFilter("Alpha", {CreateParameterOption("Mode", "", {"A", "B"}, 0)});
    SavingFilter* second = AddFilter("Beta");
    context->SetActiveFilter(filter);
    const wxString loaded = Jpeg("loaded.jpg");
    Load(loaded);
    filter->onPreApply = [&] {
        const bool stop = context->GetFilename(Evidence).EndsWith("b.jpg");
        if (stop) tcvAbortAllProgress();
    };
    const wxString first = Jpeg("a.jpg");
    Process(Listed({first, Jpeg("b.jpg"), Jpeg("c.jpg")}, 2, out + "/r.tsv"));
    const wxString tsv = ReadFile(out + "/r.tsv");
    EXPECT_TRUE(tsv.StartsWith(BatchHeader + first + "\tAlpha\tA\tOk\t"));
    EXPECT_EQ(5, tsv.Freq('\n'));
    EXPECT_TRUE(tsv.EndsWith("b.jpg\tAlpha\tA\tNot Calculated\t\n"));
    EXPECT_FALSE(tsv.Contains("c.jpg"));
    EXPECT_EQ(1, second->Count("Apply:E"));
    EXPECT_TRUE(monitor.aborted);
    EXPECT_EQ(2U, monitor.filesProcessed);
    EXPECT_EQ(loaded, context->GetFilename(Evidence));
    EXPECT_EQ(0, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_EQ(Status::Ok, filter->GetStatus(Evidence));
}

TEST_F(BatchAbort, InTheMiddle_RestoresBothSlotsAndTheActiveFilter) {
    SavingFilter* filter = AddFilter("Alpha", {CreateParameterOption("Mode", "", {"A", "B", "C"}, 0)});
    AddFilter("Beta");
    context->SetActiveFilter(filter);
    const wxString evidence = Jpeg("e.jpg");
    const wxString reference = Jpeg("r.jpg", 32, 32);
    Load(evidence);
    Load(reference, Reference);
    Run([&] { iface->Configure(filter, 1, VecParameter(), VecParameter(), false); });
    filter->onPreApply = [&] {
        if (context->GetFilename(Evidence).EndsWith("b.jpg")) tcvAbortAllProgress();
    };
    Process(Listed({Jpeg("a.jpg"), Jpeg("b.jpg")}, 2, out + "/r.tsv"));
    EXPECT_TRUE(monitor.aborted);
    EXPECT_TRUE(ReadFile(out + "/r.tsv").Contains("a.jpg\tAlpha\tC\tOk\t"));
    EXPECT_EQ(evidence, context->GetFilename(Evidence));
    EXPECT_EQ(reference, context->GetFilename(Reference));
    EXPECT_EQ(32, context->GetImage(Reference).Width());
    EXPECT_EQ(filter, context->GetActiveFilter());
    EXPECT_EQ(1, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_EQ(1, filter->GetActiveConfiguration());
}

TEST_F(BatchAbort, Html_TellsWhatWasNotExamined) {
    SavingFilter* filter = AddFilter("Alpha");
    filter->onPreApply = [] { tcvAbortAllProgress(); };
    const wxString html = Html({Jpeg("a.jpg"), Jpeg("b.jpg")});
    EXPECT_TRUE(html.Contains("Processing interrupted by user."));
    EXPECT_TRUE(html.Contains("<p><span class=\"warning\">Processing was interrupted: results may be missing.</span>"));
    EXPECT_TRUE(
        html.Contains("<h2>File 2: b.jpg</h2>\n<p><span class=\"warning\">Not examined: processing was "
                      "interrupted.</span></p>\n<hr>\n"));
}

TEST_F(BatchAbort, Plugin_NeverTakesAnUnexaminedFileForClean) {
    AddFilter("Alpha")->onPreApply = [] { tcvAbortAllProgress(); };
    const wxString first = Jpeg("a.jpg");
    const wxString second = Jpeg("b.jpg");
    Process(Listed({first, second}, 0, "r"), true);
    ASSERT_EQ(2U, reports.size());
    EXPECT_EQ(2, reports[first].severity);
    EXPECT_EQ("Not examined: processing was interrupted.\nOrvelle report: \"r\"\n", reports[second].text);
    EXPECT_EQ(2, reports[second].severity);
}

TEST_F(BatchAbort, Progress_CountsConfigurationsTimesFiles) {
    AddFilter("Beta");
    SavingFilter* filter = AddFilter("Alpha", {CreateParameterOption("Mode", "", {"A", "B"}, 0)});
    TcvProgress seen;
    filter->onPreApply = [&] { seen = tcvGetProgress2(); };
    Process(Listed({Jpeg("a.jpg"), Jpeg("b.jpg")}, 0, ""));
    EXPECT_EQ(6, seen.total);
    EXPECT_EQ(6, seen.value);
    EXPECT_EQ("Batch Processing 2 files with 3 configurations", seen.text);
    EXPECT_EQ(0, tcvGetProgress2().total);
}
