// SPDX-License-Identifier: Apache-2.0
#include "orvcore/batchprocessing.h"

#include <sys/stat.h>
#include <unistd.h>

#include "orvcore/reportstyle.h"
#include "tests/orvcore/batchengine.h"
#include "tests/orvcore/resultfilters.h"
#include "tolbase/exception.h"
#include "tolbase/progress.h"

namespace {

using support::BatchHeader;
using support::Number;
using support::SavingFilter;
using Status = OrvFilterConfiguration::FilterStatus;

class Batch : public support::Batch {};

}  // namespace

TEST_F(Batch, Tsv_HasALineForEachFileFilterAndConfiguration) {
    const wxString first = Jpeg("a.jpg");
    const wxString second = Jpeg("b.jpg", 32, 32, 2);
    AddFilter("Alpha", {Number("n", 3)})->warns = {"b.jpg"};
    AddFilter("Beta", {CreateParameterOption("Mode", "", {"Low", "High"}, 0)});
    EXPECT_EQ(out + "/r.tsv", Process(Listed({first, second}, 2, out + "/r.tsv")));
    const auto line = [&](const wxString& file, const wxString& name, const wxString& rest, const wxString& saved) {
        return file + "\t" + rest + "\t" + out + "/" + name + saved + "\n";
    };
    EXPECT_EQ(BatchHeader + line(first, "a.jpg", "Alpha\t3\tOk", "-Alpha-3.txt") +
                  line(first, "a.jpg", "Beta\tLow\tOk", "-Beta-Low.txt") +
                  line(first, "a.jpg", "Beta\tHigh\tOk", "-Beta-High.txt") +
                  line(second, "b.jpg", "Alpha\t3\tWarning", "-Alpha-3.txt") +
                  line(second, "b.jpg", "Beta\tLow\tOk", "-Beta-Low.txt") +
                  line(second, "b.jpg", "Beta\tHigh\tOk", "-Beta-High.txt"),
              ReadFile(out + "/r.tsv"));
    EXPECT_EQ("Alpha of " + second, ReadFile(out + "/b.jpg-Alpha-3.txt"));
}

TEST_F(Batch, OutputPath_IsThatOfTheFileThatIsThere) {
    auto* const table = Add(new support::TextFilter("Table"));
    table->Out() = {CreateParameterTable("Table", "")};
    table->Out()[0].Set(boost::any(VecVecString{{"a", "b"}}));
    auto* const text = Add(new support::CustomFilter("Text"));
    text->SetText("words");
    table->onApply = [table](OrvFileId id) { table->SetStatusOf(id, Status::Ok); };
    text->onApply = [text](OrvFileId id) { text->SetStatusOf(id, Status::Ok); };
    VecString told;
    monitor.onResult = [&told](OrvBatchResult const& result) { told.push_back(result.outputPath); };
    const wxString file = Jpeg("a.jpg");
    const wxString report = ReadFile(Process(Listed({file}, 2, out + "/r.tsv")));
    EXPECT_EQ((VecString{out + "/a.jpg-Table.html", out + "/a.jpg-Text.txt"}), told);
    EXPECT_TRUE(report.Contains("\tOk\t" + out + "/a.jpg-Table.html\n")) << report;
    for (const wxString& path : told) EXPECT_TRUE(wxFileExists(path)) << path;
}

TEST_F(Batch, LinkInPlaceOfAResult_IsReplaced) {
    Add(new support::CustomFilter("Text"))->SetText("words");
    AddFilter("Alpha");
    const wxString victim = support::WriteBytes(dir / "victim", "precious");
    std::filesystem::create_directories(out.utf8_string());
    for (char const* name : {"/a.jpg-Text.txt", "/a.jpg-Alpha.txt"}) {
        std::filesystem::create_symlink(victim.utf8_string(), out.utf8_string() + name);
    }
    const wxString file = Jpeg("a.jpg");
    Process(Listed({file}, 2, out + "/r.tsv"));
    EXPECT_EQ("precious", ReadFile(victim));
    EXPECT_EQ("Alpha of " + file, ReadFile(out + "/a.jpg-Alpha.txt"));
    EXPECT_FALSE(std::filesystem::is_symlink((out + "/a.jpg-Text.txt").utf8_string()));
}

TEST_F(Batch, Report_CanBeReadBeforeItStandsInItsPlace) {
    AddFilter("Alpha");
    wxString readable;
    bool stoodThere = true;
    monitor.onReport = [&](const wxString& path) {
        readable = ReadFile(path);
        stoodThere = wxFileExists(out + "/r.tsv");
    };
    const wxString report = ReadFile(Process(Listed({Jpeg("a.jpg")}, 2, out + "/r.tsv")));
    EXPECT_FALSE(stoodThere);
    EXPECT_EQ(report, readable);
    EXPECT_TRUE(report.StartsWith(BatchHeader));
}

TEST_F(Batch, OutputModes_SaveNothingFilesOrBoth) {
    SavingFilter* filter = AddFilter("Alpha");
    const wxString file = Jpeg("a.jpg");
    EXPECT_EQ("", Process(Listed({file}, 0, out + "/r.tsv")));
    EXPECT_FALSE(wxDirExists(out));
    EXPECT_TRUE(filter->saved.empty());
    EXPECT_EQ("", Process(Listed({file}, 1, out + "/r.tsv")));
    EXPECT_TRUE(wxFileExists(out + "/a.jpg-Alpha.txt"));
    EXPECT_FALSE(wxFileExists(out + "/r.tsv"));
}

TEST_F(Batch, KindOfReport_GoesByTheEndingOfTheName) {
    AddFilter("Alpha");
    const wxString file = Jpeg("a.jpg");
    for (const char* name : {"R.HTM", "r.html", "r.HtMl5", "HTMLreport"})
        EXPECT_TRUE(ReadFile(Process(Listed({file}, 2, out + "/" + name))).StartsWith("<!DOCTYPE html>")) << name;
    for (const char* name : {"r.tsv", "r.pdf", "report", "r.html.txt", ".txt"})
        EXPECT_TRUE(ReadFile(Process(Listed({file}, 2, out + "/" + name))).StartsWith(BatchHeader)) << name;
    EXPECT_TRUE(ReadFile(Process(Listed({file}, 2, dir / "x.html/r.tsv"))).StartsWith(BatchHeader));
}

TEST_F(Batch, Html_BeginsWithStyleHeadAndProgram) {
    support::WriteBytes(dir / "documents/report-style/style.css", "h1 { color: teal; }");
    support::WriteBytes(dir / "documents/report-style/head.html", "<p>our <b>laboratory</b></p>\n");
    AppVersion version;
    version.SetAppName("Test & Co");
    version.SetBuildDate("1 May 2024");
    version.SetEngineRevision("r7");
    version.SetPlatform("Linux <64>");
    context->SetAppVersion(version);
    const wxString html = Html({});
    EXPECT_TRUE(html.Contains("<style>\nh1 { color: teal; }\n</style>"));
    EXPECT_TRUE(
        html.Contains("<body>\n<p>our <b>laboratory</b></p>\n<h1>Test &amp; Co Report</h1>\n<hr>\n"
                      "Report Generation: "));
    EXPECT_TRUE(
        html.EndsWith("<br>\nProgram Version Info: <br>\nBuild date: 1 May 2024<br>\nRevision: r7<br>\n"
                      "Platform: Linux &lt;64&gt;<br>\n<hr>\n</body>\n</html>\n"));
}

TEST_F(Batch, HtmlWithoutStyleFiles_IsComplete) {
    const wxString html = Html({});
    EXPECT_TRUE(html.StartsWith("<!DOCTYPE html>"));
    EXPECT_TRUE(html.Contains("<body>\n<h1> Report</h1>\n<hr>\nReport Generation: "));
}

TEST_F(Batch, Html_HasHeadingsFragmentsAndAnchorsAcrossFiles) {
    AddFilter("Alpha", {Number("n", 3)});
    AddFilter("Beta");
    const wxString html = Html({Jpeg("a.jpg"), Jpeg("b.jpg")});
    const wxString fragment = "<br>\n<h3 id=\"anchor2\">Alpha 3</h3>\n<br>\n<p>data b.jpg-Alpha-3.txt in " + out +
                              "</p>\n<p>n: 3<br>\n</p>\n<p></p>\n<br>\n";
    EXPECT_TRUE(html.Contains("<h2>File 1: a.jpg</h2>\n<br>\n<h3 id=\"anchor0\">Alpha 3</h3>"));
    EXPECT_TRUE(html.Contains("<h3 id=\"anchor1\">Beta </h3>"));
    EXPECT_TRUE(html.Contains("<hr>\n<h2>File 2: b.jpg</h2>\n" + fragment));
    EXPECT_TRUE(html.EndsWith("<br>\n<hr>\n</body>\n</html>\n"));
}

TEST_F(Batch, OneFile_HasNoNumber) {
    AddFilter("Alpha");
    EXPECT_TRUE(Html({Jpeg("a.jpg")}).Contains("<h2>File: a.jpg</h2>\n"));
}

TEST_F(Batch, HostileNames_AreEscapedInBothReports) {
    AddFilter("Alpha");
    const wxString name = wxString::FromUTF8("<b>&\"写\t真.jpg");
    const wxString file = Jpeg(name);
    EXPECT_TRUE(Html({file}).Contains(wxString::FromUTF8("<h2>File: &lt;b&gt;&amp;&quot;写\t真.jpg</h2>")));
    const wxString tsv = ReadFile(Process(Listed({file}, 2, out + "/r.tsv")));
    EXPECT_EQ(2, tsv.Freq('\n'));
    EXPECT_EQ(8, tsv.Freq('\t'));
    EXPECT_TRUE(tsv.Contains(dir / wxString::FromUTF8("in/<b>&\"写\\t真.jpg\tAlpha\t\tOk\t")));
}

TEST_F(Batch, Warning_StandsOutInTheHtml) {
    AddFilter("Alpha")->warns = {"a.jpg"};
    EXPECT_TRUE(Html({Jpeg("a.jpg")}).Contains("Alpha <span class=\"warning\">!- WARNING! -</span></h3>"));
}

TEST_F(Batch, FilesOfTheEvidence_FollowTheFirstParameter) {
    SavingFilter* filter = AddFilter("Alpha");
    Jpeg("x/deep/c.jpg");
    Jpeg("b.jpg");
    Jpeg("x/a.jpg");
    Jpeg("x/b.jpg");
    Load(dir / "in/x/a.jpg");
    const auto count = [&](int mode) {
        filter->saved.clear();
        Process(Parameters(mode, 0, 1, out + "/r.tsv"));
        return filter->saved.size();
    };
    EXPECT_EQ(1U, count(0));
    EXPECT_EQ(2U, count(1));
    EXPECT_EQ(3U, count(2));
    EXPECT_EQ(4U, count(3));
    EXPECT_EQ(0U, count(4));
    EXPECT_EQ(dir / "in/x/a.jpg", context->GetFilename(Evidence));
}

TEST_F(Batch, WithoutEvidence_ThereIsNoFile) {
    AddFilter("Alpha");
    for (const int mode : {0, 1, 2, 3}) {
        EXPECT_EQ(BatchHeader, ReadFile(Process(Parameters(mode, 0, 2, out + "/r.tsv"))));
    }
}

TEST_F(Batch, Selection_TakesAFileAFolderOrAList) {
    SavingFilter* filter = AddFilter("Alpha");
    const wxString first = Jpeg("a.jpg");
    const wxString second = Jpeg("b.jpg");
    Jpeg("deep/c.jpg");
    const auto saved = [&](const wxString& text) {
        filter->saved.clear();
        VecParameter parameters = Parameters(0, 0, 1, out + "/r.tsv");
        parameters.push_back(CreateParameterString("list", "", text));
        Process(parameters);
        return filter->saved.size();
    };
    EXPECT_EQ(1U, saved(first));
    EXPECT_EQ(2U, saved(dir / "in"));
    EXPECT_EQ(2U, saved(first + "|" + second));
    EXPECT_EQ(0U, saved(first + "|" + dir / "in/gone.jpg"));
    EXPECT_EQ(0U, saved(""));
}

TEST_F(Batch, WithASelection_TheChoiceOfFiltersIsIgnored) {
    SavingFilter* first = AddFilter("Alpha");
    SavingFilter* second = AddFilter("Beta");
    context->SetActiveFilter(first);
    VecParameter parameters = Parameters(0, 2, 1, out + "/r.tsv");
    parameters.push_back(CreateParameterString("list", "", Jpeg("a.jpg")));
    Process(parameters);
    EXPECT_EQ(1U, first->saved.size());
    EXPECT_EQ(1U, second->saved.size());
}

TEST_F(Batch, ActiveFilter_RunsItsEnabledConfigurationsOrItsPresentParameters) {
    AddFilter("Beta");
    SavingFilter* filter = AddFilter("Alpha", {CreateParameterOption("Mode", "", {"A", "B", "C"}, 0)});
    context->SetActiveFilter(filter);
    Load(Jpeg("a.jpg"));
    filter->EnableConfiguration(1, false);
    const wxString stem = out + "/a.jpg-Alpha-";
    Process(Parameters(0, 1, 1, out + "/r.tsv"));
    EXPECT_EQ(VecString({stem + "A.txt", stem + "C.txt"}), filter->saved);
    filter->saved.clear();
    Go(filter, support::WithFirst(filter->Input(), 1));
    Process(Parameters(0, 2, 1, out + "/r.tsv"));
    EXPECT_EQ(VecString({stem + "B.txt"}), filter->saved);
}

TEST_F(Batch, WithoutAnActiveFilter_NothingRuns) {
    AddFilter("Alpha");
    Load(Jpeg("a.jpg"));
    for (const int mode : {1, 2}) EXPECT_EQ(BatchHeader, ReadFile(Process(Parameters(0, mode, 2, out + "/r.tsv"))));
}

TEST_F(Batch, SlotsAndActiveFilter_AreRestored) {
    SavingFilter* filter = AddFilter("Alpha", {CreateParameterOption("Mode", "", {"A", "B", "C"}, 0)});
    context->SetActiveFilter(filter);
    const wxString first = Jpeg("a.jpg");
    const wxString second = Jpeg("b.jpg");
    Load(first);
    Load(second, Reference);
    Run([&] { iface->Configure(filter, 1, VecParameter(), VecParameter(), false); });
    Process(Listed({Jpeg("c.jpg")}, 2, out + "/r.tsv"));
    EXPECT_EQ(first, context->GetFilename(Evidence));
    EXPECT_EQ(second, context->GetFilename(Reference));
    EXPECT_EQ(filter, context->GetActiveFilter());
    EXPECT_EQ(1, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_EQ(1, filter->GetActiveConfiguration());
    EXPECT_EQ(Status::Ok, filter->GetStatus(Evidence));
}

TEST_F(Batch, ReferenceIsEmpty_WhileFilesAreExamined) {
    SavingFilter* filter = AddFilter("Alpha");
    Load(Jpeg("a.jpg"));
    Load(Jpeg("b.jpg"), Reference);
    Process(Parameters(0, 0, 1, out + "/r.tsv"));
    EXPECT_EQ(VecString({out + "/a.jpg-Alpha.txt"}), filter->saved);
}

TEST_F(Batch, FileThatCantBeLoaded_IsCreditedWithNothing) {
    SavingFilter* filter = AddFilter("Alpha", {Number("n", 3)});
    filter->warns = {"a.jpg"};
    const wxString first = Jpeg("a.jpg");
    const wxString broken = support::WriteBytes(dir / "in/broken.jpg", "no picture");
    const wxString gone = dir / "in/gone.jpg";
    const wxString last = Jpeg("b.jpg");
    Process(Listed({first, broken, gone, last}, 2, out + "/r.tsv"));
    EXPECT_EQ(BatchHeader + first + "\tAlpha\t3\tWarning\t" + out + "/a.jpg-Alpha-3.txt\n" + broken +
                  "\tAlpha\t3\tNot Calculated\t\n" + gone + "\tAlpha\t3\tNot Calculated\t\n" + last +
                  "\tAlpha\t3\tOk\t" + out + "/b.jpg-Alpha-3.txt\n",
              ReadFile(out + "/r.tsv"));
    EXPECT_EQ(2U, filter->saved.size());
    const wxString html = Html({first, broken});
    EXPECT_TRUE(
        html.Contains("<h2>File 2: broken.jpg</h2>\n<p><span class=\"warning\">File format not supported."
                      "</span></p>\n"));
    EXPECT_TRUE(html.EndsWith("supported.</span></p>\n<hr>\n</body>\n</html>\n"));
    EXPECT_FALSE(html.Mid(html.find("File 2")).Contains("WARNING!"));
}

TEST_F(Batch, FailingFilter_IsToldAndTheOthersGoOn) {
    AddFilter("Alpha", {Number("n", 3)})->throws = {"a.jpg"};
    AddFilter("Beta");
    const wxString file = Jpeg("a.jpg");
    Process(Listed({file}, 2, out + "/r.tsv"));
    EXPECT_EQ(
        BatchHeader + file + "\tAlpha\t3\tNot Calculated\t\n" + file + "\tBeta\t\tOk\t" + out + "/a.jpg-Beta.txt\n",
        ReadFile(out + "/r.tsv"));
    EXPECT_TRUE(Html({file}).Contains("<span class=\"warning\">broken &lt; inside</span>"));
}

TEST_F(Batch, ResultThatCantBeSaved_IsToldWhateverWasThrown) {
    SavingFilter* filter = AddFilter("Alpha");
    const wxString file = Jpeg("a.jpg");
    wxString told;
    monitor.onResult = [&told](OrvBatchResult const& result) { told = result.error + "|" + result.outputPath; };
    filter->onSave = [] { throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "no room"); };
    Process(Listed({file}, 2, out + "/r.tsv"));
    EXPECT_EQ("no room|", told);
    filter->onSave = [] { throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, wxString()); };
    Process(Listed({file}, 2, out + "/r.tsv"));
    EXPECT_EQ("Unknown exception|", told);
    filter->onSave = [] { throw std::runtime_error("torn"); };
    Process(Listed({file}, 2, out + "/r.tsv"));
    EXPECT_EQ("torn|", told);
    filter->onSave = [] { throw 7; };
    Process(Listed({file}, 2, out + "/r.tsv"));
    EXPECT_EQ("Unknown exception|", told);
    EXPECT_EQ(BatchHeader + file + "\tAlpha\t\tOk\t\n", ReadFile(out + "/r.tsv"));
}

TEST_F(Batch, FilterThatThrowsBeforeItsRun_IsNotCreditedWithTheRunBefore) {
    SavingFilter* filter = AddFilter("Alpha", {CreateParameterOption("Mode", "", {"A", "B"}, 0)});
    filter->onPreApply = [filter] {
        if (filter->GetParametersInput()[0].GetValue<int>() == 1) throw std::runtime_error("no model");
    };
    const wxString file = Jpeg("a.jpg");
    Process(Listed({file}, 2, out + "/r.tsv"));
    EXPECT_EQ(BatchHeader + file + "\tAlpha\tA\tOk\t" + out + "/a.jpg-Alpha-A.txt\n" + file +
                  "\tAlpha\tB\tNot Calculated\t\n",
              ReadFile(out + "/r.tsv"));
    EXPECT_EQ(1U, filter->saved.size());
    EXPECT_TRUE(Html({file}).Contains("<h3 id=\"anchor1\">Alpha B</h3>\n<br>\n<p><span class=\"warning\">no model"));
}

TEST_F(Batch, FilesOfOneName_KeepBothResults) {
    AddFilter("Alpha");
    const wxString first = Jpeg("x/a.jpg");
    const wxString second = Jpeg("y/a.jpg");
    Process(Listed({first, second}, 2, out + "/r.tsv"));
    EXPECT_EQ("Alpha of " + first, ReadFile(out + "/a.jpg-Alpha.txt"));
    EXPECT_EQ("Alpha of " + second, ReadFile(out + "/a.jpg-Alpha (2).txt"));
    EXPECT_TRUE(ReadFile(out + "/r.tsv").EndsWith(second + "\tAlpha\t\tOk\t" + out + "/a.jpg-Alpha (2).txt\n"));
}

TEST_F(Batch, Results_NeverReplaceAnExaminedFileOrTheReport) {
    AddFilter("Alpha");
    const wxString file = Jpeg("a.jpg");
    const wxString second = support::WriteBytes(dir / "in/a.jpg-Alpha.txt", support::EncodeJpeg(16, 16));
    Process(Listed({file, second}, 2, dir / "in/a.jpg-Alpha (2).html"));
    EXPECT_EQ(support::EncodeJpeg(16, 16), support::ReadBytes(second));
    EXPECT_EQ("Alpha of " + file, ReadFile(dir / "in/a.jpg-Alpha (3).txt"));
    EXPECT_TRUE(ReadFile(dir / "in/a.jpg-Alpha (2).html").StartsWith("<!DOCTYPE"));
}

TEST_F(Batch, ReportInThePlaceOfAnExaminedFile_IsRefused) {
    AddFilter("Alpha");
    const wxString file = Jpeg("a.jpg");
    const std::string before = support::ReadBytes(file);
    EXPECT_EQ("", Process(Listed({file}, 2, file)));
    EXPECT_EQ(before, support::ReadBytes(file));
    EXPECT_EQ("The report would replace an examined file: " + file, monitor.failure);
}

TEST_F(Batch, OutputFolderThatIsAFile_IsToldAndLeavesTheFile) {
    SavingFilter* filter = AddFilter("Alpha");
    support::WriteBytes(dir / "occupied", "x");
    EXPECT_EQ("", Process(Listed({Jpeg("a.jpg")}, 2, dir / "occupied/r.html")));
    EXPECT_EQ("The folder can't be made: " + dir / "occupied", monitor.failure);
    EXPECT_EQ("x", support::ReadBytes(dir / "occupied"));
    EXPECT_TRUE(filter->saved.empty());
}

TEST_F(Batch, FullDiskUnderTheReport_IsToldAndNothingHalfStays) {
    AddFilter("Alpha");
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
    ASSERT_TRUE(CreateDirIfNotExists(out));
    ASSERT_EQ(0, symlink("/dev/full", PathToBytes(out + "/r.html").c_str()));
    EXPECT_EQ("", Process(Listed({Jpeg("a.jpg")}, 2, out + "/r.html")));
    EXPECT_EQ("The report can't be written: " + out + "/r.html", monitor.failure);
    EXPECT_EQ("Alpha of " + dir / "in/a.jpg", ReadFile(out + "/a.jpg-Alpha.txt"));
}

TEST_F(Batch, Report_ReplacesTheOldOneInOneStepAndLeavesNothingBeside) {
    SavingFilter* filter = AddFilter("Alpha");
    support::WriteBytes(out + "/r.tsv", "old");
    std::string during;
    filter->onPreApply = [&] { during = support::ReadBytes(out + "/r.tsv"); };
    Process(Listed({Jpeg("a.jpg")}, 2, out + "/r.tsv"));
    EXPECT_EQ("old", during);
    EXPECT_EQ(2U, static_cast<size_t>(std::distance(std::filesystem::directory_iterator(PathToBytes(out)),
                                                    std::filesystem::directory_iterator())));
}

TEST_F(Batch, ReportOfLongNames_StaysWithinWhatAFileSystemTakes) {
    SavingFilter* filter = AddFilter("Alpha");
    const wxString file = Jpeg(wxString('n', 246) + ".jpg");
    Process(Listed({file}, 1, out + "/r.tsv"));
    ASSERT_EQ(1U, filter->saved.size());
    EXPECT_TRUE(wxFileExists(filter->saved[0]));
    EXPECT_TRUE(filter->saved[0].EndsWith(".txt"));
}

TEST_F(Batch, WidthOptions_ReachTheContext) {
    StartOptions();
    VecVecParameter options = context->GetProgramOptions();
    options[0].Find("Report Max Image Width")->Set(boost::any(320));
    options[0].Find("Report Min Image Width")->Set(boost::any(200));
    OnWorker([&] { context->SetProgramOptions(options); });
    Process(Listed({}, 0, out + "/r.tsv"));
    EXPECT_EQ(320, context->GetOutputImageMaxWidth());
    EXPECT_EQ(200, context->GetOutputImageMinWidth());
}

TEST_F(Batch, Events_OfItsRunsAreDroppedButForTheLast) {
    SavingFilter* filter = AddFilter("Alpha");
    Load(Jpeg("a.jpg"));
    recorder.events.clear();
    Process(Listed({Jpeg("b.jpg"), Jpeg("c.jpg")}, 0, ""));
    for (const int id : recorder.Ids()) EXPECT_EQ(OrvCommandIdFilterStarted, id);
    context->SetActiveFilter(filter);
    recorder.events.clear();
    Process(Listed({Jpeg("b.jpg")}, 0, ""));
    EXPECT_EQ(OrvCommandIdFilterDone, recorder.Ids().back());
}

TEST_F(Batch, Monitor_HearsOfEachFileAndResult) {
    AddFilter("Alpha", {Number("n", 3)})->warns = {"a.jpg"};
    VecString heard;
    monitor.onFile = [&](const wxString& file, const wxString& error) {
        heard.push_back(GetFilenameNoPath(file) + ":" + error);
    };
    monitor.onResult = [&](const OrvBatchResult& result) {
        heard.push_back(result.filter + ":" + result.configuration + ":" + wxString::Format("%d", result.status) + ":" +
                        result.outputPath + ":" + result.error);
    };
    Process(Listed({Jpeg("a.jpg"), dir / "in/gone.jpg"}, 0, ""));
    EXPECT_EQ(VecString({"a.jpg:", "Alpha:3:2::", "gone.jpg:The file does not exist.",
                         "Alpha:3:0::The file does not exist."}),
              heard);
    EXPECT_EQ(2U, monitor.files);
    EXPECT_EQ(2U, monitor.filesProcessed);
    EXPECT_FALSE(monitor.aborted);
}

TEST_F(Batch, ParameterOfAWrongType_ThrowsBeforeAnythingIsTouched) {
    const wxString first = Jpeg("a.jpg");
    Load(first);
    VecParameter parameters = Parameters(0, 0, 2, "");
    parameters[3] = CreateParameterVectorString("report", "", {"a"});
    EXPECT_THROW(Process(parameters), TolException);
    EXPECT_EQ(first, context->GetFilename(Evidence));
}

TEST_F(Batch, SecondRun_GivesTheSameReport) {
    AddFilter("Alpha", {Number("n", 3)});
    const VecString files = {Jpeg("x/a.jpg"), Jpeg("y/a.jpg"), Jpeg("b.jpg")};
    const std::string first = support::ReadBytes(Process(Listed(files, 2, out + "/r.tsv")));
    EXPECT_EQ(first, support::ReadBytes(Process(Listed(files, 2, out + "/r.tsv"))));
}

TEST_F(Batch, ReportStyle_IsCopiedOnceAndNeverReplaced) {
    const wxString source = dir / "installed";
    support::WriteBytes(source + "/style.css", "a {}");
    support::WriteBytes(source + "/head.html", "<p>");
    support::WriteBytes(dir / "documents/report-style/head.html", "mine");
    EXPECT_TRUE(OrvInstallReportStyle(dir / "documents", source));
    EXPECT_EQ("a {}", support::ReadBytes(dir / "documents/report-style/style.css"));
    EXPECT_EQ("mine", support::ReadBytes(dir / "documents/report-style/head.html"));
    EXPECT_FALSE(OrvInstallReportStyle(dir / "other", dir / "nowhere"));
    EXPECT_FALSE(OrvInstallReportStyle("", source));
}

TEST_F(Batch, ReportStyleOfTheBuild_IsFoundAndWhole) {
    const wxString folder = OrvFindReportStyle();
    ASSERT_FALSE(folder.empty());
    EXPECT_TRUE(ReadFile(folder + "/style.css").Contains("span.warning"));
    EXPECT_FALSE(ReadFile(folder + "/style.css").Contains("url("));
    EXPECT_TRUE(ReadFile(folder + "/head.html").Contains("<header"));
}
