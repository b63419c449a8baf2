// SPDX-License-Identifier: Apache-2.0
#include "orvcore/imageinfotable.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <wx/datetime.h>
#include <wx/filefn.h>
#include <wx/filename.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "orvcore/imageinfotable_private.h"
#include "orvcore/tablewriter.h"
#include "tests/orvcore/catalogue.h"
#include "tests/orvcore/photos.h"
#include "tests/support/engine.h"
#include "tolimage/imageio.h"
#include "tolimage/metadata.h"

namespace {

using support::CameraFacts;
using support::JpegForm;
using support::MakePhoto;

// What a program prints, run without a shell; the file's path is its only argument.
std::string OutputOf(std::string const& program, wxString const& path) {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) return std::string();
    const std::string file(path.utf8_str());
    const pid_t child = fork();
    if (child == 0) {
        dup2(pipe[1], STDOUT_FILENO);
        close(pipe[0]);
        close(pipe[1]);
        execlp(program.c_str(), program.c_str(), file.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    close(pipe[1]);
    std::string output;
    std::array<char, 512> block{};
    ssize_t count = 0;
    while ((count = read(pipe[0], block.data(), block.size())) > 0)
        output.append(block.data(), static_cast<size_t>(count));
    close(pipe[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return output;
}

class ImageTable : public support::Engine {
protected:
    ImageTable() { StartOptions(); }

    wxString Photo(JpegForm const& form, CameraFacts const& facts) {
        return support::WriteBytes(dir / "in/photo.jpg", MakePhoto(form, facts));
    }
    void LoadPhoto(JpegForm const& form = {}, CameraFacts const& facts = {}) { Load(Photo(form, facts)); }

    // An option of the group "File Format", set as the options dialog would.
    void SetOption(size_t index, boost::any const& value) {
        VecVecParameter options = context->GetProgramOptions();
        options[static_cast<size_t>(ImageInfoTable::GetOptionGroupId())][index].Set(value);
        context->SetProgramOptions(options);
    }
};

wxString CellOf(VecVecString const& table, wxString const& title, size_t cell) {
    for (VecString const& row : table) {
        if (row.at(0) == title) return row.at(cell);
    }
    ADD_FAILURE() << "no row " << title;
    return wxString();
}

wxString ValueOf(VecVecString const& table, wxString const& title) {
    return CellOf(table, title, 1);
}
wxString WarningsOf(VecVecString const& table, wxString const& title) {
    return CellOf(table, title, 2);
}

const std::array<char const*, 42> Titles = {"Filename",
                                            "Full Path",
                                            "Format",
                                            "Format Description",
                                            "Image Encoded Size",
                                            "Image Displayed Size",
                                            "Image Normalized Size",
                                            "Aspect Ratio",
                                            "Number of Channels",
                                            "BPP",
                                            "Thumbnail Size",
                                            "Thumbnail Normalized Size",
                                            "Preview Size",
                                            "Preview Normalized Size",
                                            "Exif rotate tag",
                                            "Number of Exif fields",
                                            "Number of MakerNotes fields",
                                            "Number of IPTC fields",
                                            "Number of XMP fields",
                                            "Number of Photoshop fields",
                                            "Number of ICC fields",
                                            "Exif Make",
                                            "Exif Model",
                                            "Exif Software",
                                            "Serial Number",
                                            "JPEG Quality",
                                            "JPEG QT is standard IJG",
                                            "JPEG QT Hash",
                                            "Jpeg Chroma Subsampling",
                                            "JPEG HT is standard IJG",
                                            "Exif DateTimeOriginal",
                                            "Exif CreateDate",
                                            "Exif ModifyDate",
                                            "File Size",
                                            "Last File Access",
                                            "File Creation",
                                            "Last File Modification",
                                            "MD5",
                                            "SHA1",
                                            "SHA256",
                                            "SHA384",
                                            "SHA512"};

}  // namespace

TEST_F(ImageTable, EmptySlot_GivesDefaultRowsWithoutWarnings) {
    for (const bool extended : {false, true}) {
        ImageInfoTable table(Evidence, extended);
        int hard = 7;
        const VecVecString rows = table.Evaluate(&hard);
        EXPECT_EQ(hard, 0);
        ASSERT_EQ(rows.size(), extended ? 42u : 30u);
        for (size_t i = 0; i < rows.size(); ++i) {
            const bool isSize = (i >= 4 && i <= 6) || (i >= 10 && i <= 13);
            EXPECT_EQ(rows[i], (VecString{Titles[i], isSize ? "0x0" : "", ""}));
        }
        for (ImageWarningRule const& rule : table.GetRules()) EXPECT_FALSE(rule.Evaluated) << rule.Name;
    }
}

TEST_F(ImageTable, Reset_GivesTwoCellsARow) {
    LoadPhoto();
    ImageInfoTable table(Evidence, true);
    const VecVecString evaluated = table.Evaluate();
    for (VecString const& row : evaluated) EXPECT_EQ(row.size(), 3u);
    EXPECT_EQ(table.GetTable(), evaluated);
    const VecVecString reset = table.Reset();
    ASSERT_EQ(reset.size(), 42u);
    EXPECT_EQ(reset[0], (VecString{"Filename", ""}));
    for (VecString const& row : reset) EXPECT_EQ(row.size(), 2u);
    EXPECT_EQ(table.GetTable(), reset);
}

TEST_F(ImageTable, Photograph_FillsTheImageRows) {
    LoadPhoto({}, {"Haldenmann", "Lumora 60", "V1.0", "", "", "", support::EncodeJpeg(120, 160)});
    ImageInfoTable table(Evidence, false);
    const VecVecString rows = table.Evaluate();
    const std::map<wxString, wxString> expected = {{"Filename", "photo.jpg"},
                                                   {"Full Path", dir / "in/photo.jpg"},
                                                   {"Format", "JPEG"},
                                                   {"Image Encoded Size", "800x600"},
                                                   {"Image Displayed Size", "800x600"},
                                                   {"Image Normalized Size", "800x600"},
                                                   {"Aspect Ratio", "1.33"},
                                                   {"Number of Channels", "3"},
                                                   {"BPP", "24"},
                                                   {"Thumbnail Size", "120x160"},
                                                   {"Thumbnail Normalized Size", "160x120"},
                                                   {"Exif Make", "Haldenmann"},
                                                   {"Exif Model", "Lumora 60"},
                                                   {"Exif Software", "V1.0"},
                                                   {"Number of ICC fields", "0"},
                                                   {"JPEG Quality", "90"},
                                                   {"JPEG QT is standard IJG", "true"},
                                                   {"Jpeg Chroma Subsampling", "4:2:0"},
                                                   {"JPEG HT is standard IJG", "true"}};
    for (auto const& [title, value] : expected) EXPECT_EQ(ValueOf(rows, title), value) << title;
}

TEST_F(ImageTable, OddSides_ShareOneMark) {
    LoadPhoto({1001, 750});
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Image Encoded Size"),
              "!Odd width (1001 is not multiple of 4)\nOdd height (750 is not multiple of 4)");
}

TEST_F(ImageTable, SoftAndHardTogether_GetTheHardMark) {
    LoadPhoto({602, 600});
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Image Encoded Size"),
              "!Resolution is low (600 < 640)\nOdd width (602 is not multiple of 4)");
}

TEST_F(ImageTable, SoftAlone_GetsTheSoftMark) {
    LoadPhoto({800, 600});
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Image Encoded Size"), "?Resolution is low (600 < 640)");
}

TEST_F(ImageTable, FileWithoutExif_MissesMakeModelAndThumbnail) {
    Load(support::WriteBytes(dir / "in/plain.jpg", support::EncodeForm({})));
    ImageInfoTable table(Evidence, false);
    int hard = -1;
    const VecVecString rows = table.Evaluate(&hard);
    EXPECT_EQ(WarningsOf(rows, "Exif Make"), "!EXIF Make is missing");
    EXPECT_EQ(WarningsOf(rows, "Exif Model"), "!EXIF Model is missing");
    EXPECT_EQ(WarningsOf(rows, "Thumbnail Size"), "!Thumbnail is missing");
    // The tables of quality 90 are known of programs alone or of cameras as well; both ways a count of its own.
    const bool onlySoftware = !table.GetRules()[21].Passed;
    EXPECT_EQ(hard, onlySoftware ? 4 : 3);
}

TEST_F(ImageTable, Thumbnail_Passes) {
    LoadPhoto({}, {"Haldenmann", "Lumora 60", "", "", "", "", support::EncodeJpeg(160, 120)});
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Thumbnail Size"), "");
    EXPECT_TRUE(table.GetRules()[26].Passed);
    EXPECT_EQ(table.GetRules()[26].Value, "Present");
}

TEST_F(ImageTable, Png_KeepsTheJpegRowsAndCountsAsUnknown) {
    const wxString path = dir / "in/photo.png";
    support::WriteBytes(path, "");
    ASSERT_TRUE(tcvSaveImage(path, Image::FromMat(cv::Mat(640, 800, CV_8UC3, cv::Scalar(10, 90, 200))), 0));
    support::WriteBytes(path, support::WithExifChunk(support::ReadBytes(path), support::MakeExif({})));
    Load(path);
    ImageInfoTable table(Evidence, false);
    const VecVecString rows = table.Evaluate();
    EXPECT_EQ(ValueOf(rows, "Exif Make"), "Haldenmann");
    for (size_t row = 25; row < 30; ++row) EXPECT_EQ(rows[row][1], "") << rows[row][0];
    EXPECT_EQ(WarningsOf(rows, "JPEG QT Hash"),
              "?Compression signature is incompatible, database is incomplete\n"
              "Compression signature is incompatible with the actual camera make-model");
    EXPECT_FALSE(table.GetRules()[25].Evaluated);
    EXPECT_EQ(WarningsOf(rows, "Format"), "!Format is not a standard one");
}

TEST_F(ImageTable, NoCamera_LeavesTheCameraRulesAlone) {
    Load(support::WriteBytes(dir / "in/plain.jpg", support::EncodeForm({})));
    ImageInfoTable table(Evidence, false);
    table.Evaluate();
    EXPECT_TRUE(table.GetRules()[21].Evaluated);
    EXPECT_FALSE(table.GetRules()[22].Evaluated);
    EXPECT_FALSE(table.GetRules()[23].Evaluated);
}

TEST_F(ImageTable, SwitchesOff_LeaveTheCompressionRulesAlone) {
    LoadPhoto();
    for (const size_t option : {8u, 9u, 10u}) SetOption(option, 0);
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "JPEG QT Hash"), "");
    for (const size_t rule : {21u, 22u, 23u}) EXPECT_FALSE(table.GetRules()[rule].Evaluated);
}

TEST_F(ImageTable, UsersRecord_NamesTheCamera) {
    LoadPhoto({}, {"OLYMPUS OPTICAL CO.,LTD", "C40Z,D40Z", "", "", "", "", ""});
    JpegSignature record;
    record.editorClass = "1";
    record.make = "Olympus Optical Co.,Ltd";
    record.model = "c40z,d40z";
    record.quality = "HQ";
    record.signature = context->GetImageQtHash(Evidence);
    ImageInfoTable table(Evidence, false);
    table.Evaluate();
    EXPECT_FALSE(table.GetRules()[23].Passed);
    OnWorker([&] { context->UpdateUserQtDatabase(1, record); });
    EXPECT_EQ(WarningsOf(table.Evaluate(), "JPEG QT Hash"), "");
    EXPECT_TRUE(table.GetRules()[23].Passed);
}

TEST_F(ImageTable, UsersRecordOfALongerModel_IsAnotherCamera) {
    LoadPhoto({}, {"Haldenmann", "Lumora 6", "", "", "", "", ""});
    JpegSignature record;
    record.editorClass = "1";
    record.make = "Haldenmann";
    record.model = "Lumora 60";
    record.signature = context->GetImageQtHash(Evidence);
    OnWorker([&] { context->UpdateUserQtDatabase(1, record); });
    ImageInfoTable table(Evidence, false);
    table.Evaluate();
    EXPECT_TRUE(table.GetRules()[22].Passed);
    EXPECT_FALSE(table.GetRules()[23].Passed);
}

TEST_F(ImageTable, FullColourSampling_IsAFinding) {
    JpegForm form;
    form.subsampled = false;
    LoadPhoto(form);
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Jpeg Chroma Subsampling"), "!No chroma subsampling");
}

TEST_F(ImageTable, OptimisedHuffmanTables_ShowBothTruthValues) {
    JpegForm form;
    form.optimisedTables = true;
    LoadPhoto(form);
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "JPEG HT is standard IJG"),
              "!Huffman tables are not IJG standard (true different false)");
}

TEST_F(ImageTable, EditingSoftware_IsFoundByTheUsersKeyword) {
    LoadPhoto({}, {"Haldenmann", "Lumora 60", "Adobe PHOTOSHOP 21.0", "", "", "", ""});
    SetOption(11, VecString{"photoshop"});
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Exif Software"), "!EXIF Software is an editing application");
}

TEST_F(ImageTable, IccOfAModelThatWritesIt_IsNotTested) {
    const std::string bytes = MakePhoto({}, {"Apple", "iPhone 7", "", "", "", "", ""});
    Load(support::WriteBytes(dir / "in/photo.jpg", support::WithIccProfile(bytes)));
    ImageInfoTable table(Evidence, false);
    const VecVecString rows = table.Evaluate();
    EXPECT_NE(ValueOf(rows, "Number of ICC fields"), "0");
    EXPECT_EQ(WarningsOf(rows, "Number of ICC fields"), "");
    EXPECT_FALSE(table.GetRules()[14].Evaluated);
}

TEST_F(ImageTable, IccOfAnotherModel_IsAFinding) {
    Load(support::WriteBytes(dir / "in/photo.jpg", support::WithIccProfile(MakePhoto({}, {}))));
    ImageInfoTable table(Evidence, false);
    const VecVecString rows = table.Evaluate();
    EXPECT_EQ(WarningsOf(rows, "Number of ICC fields"),
              "!ICC Metadata not expected for this model (" + ValueOf(rows, "Number of ICC fields") + " different 0)");
}

TEST_F(ImageTable, FileSizesAtTheLimits_Pass) {
    std::string bytes = MakePhoto({}, {});
    ASSERT_LT(bytes.size(), 100000u);
    bytes.resize(100000, '\0');
    Load(support::WriteBytes(dir / "in/photo.jpg", bytes));
    ImageInfoTable table(Evidence, true);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "File Size"), "");
    bytes.resize(99999);
    Load(support::WriteBytes(dir / "in/photo.jpg", bytes));
    EXPECT_EQ(WarningsOf(table.Evaluate(), "File Size"), "?File Size is small (99999 < 100000)");
}

TEST_F(ImageTable, FileSizeOption_MayStandAsText) {
    LoadPhoto();
    VecVecParameter options = context->GetProgramOptions();
    options[static_cast<size_t>(ImageInfoTable::GetOptionGroupId())][0].SetUnchecked(wxString("10"));
    context->SetProgramOptions(options);
    ImageInfoTable table(Evidence, true);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "File Size"), "");
    EXPECT_EQ(table.GetRules()[0].Reference, "10");
}

TEST_F(ImageTable, DifferingDates_AreCountedOnlyWhereTheyAreShown) {
    CameraFacts facts;
    facts.originalDate = "2021:05:06 10:20:30";
    facts.createDate = "2021:05:06 12:20:36";
    facts.modifyDate = "2022:01:01 00:00:00";
    LoadPhoto({}, facts);
    ImageInfoTable shortForm(Evidence, false);
    ImageInfoTable longForm(Evidence, true);
    int hardShort = -1;
    int hardLong = -1;
    shortForm.Evaluate(&hardShort);
    const VecVecString rows = longForm.Evaluate(&hardLong);
    EXPECT_FALSE(shortForm.GetRules()[16].Passed);
    EXPECT_TRUE(shortForm.GetRules()[16].Evaluated);
    EXPECT_EQ(hardLong, hardShort + 2);
    EXPECT_EQ(WarningsOf(rows, "Exif CreateDate"), "!EXIF CreateDate differs significantly from Exif DateTimeOriginal");
    EXPECT_EQ(WarningsOf(rows, "Exif ModifyDate"), "!EXIF ModifyDate differs significantly from Exif DateTimeOriginal");
}

TEST_F(ImageTable, CreateDateThreeSecondsLater_Passes) {
    CameraFacts facts;
    facts.originalDate = "2021:05:06 10:20:30";
    facts.createDate = "2021:05:06 10:20:33";
    LoadPhoto({}, facts);
    ImageInfoTable table(Evidence, true);
    const VecVecString rows = table.Evaluate();
    EXPECT_EQ(ValueOf(rows, "Exif CreateDate"), "2021:05:06 10:20:33");
    EXPECT_EQ(WarningsOf(rows, "Exif CreateDate"), "");
    EXPECT_EQ(WarningsOf(rows, "Exif ModifyDate"), "");
}

TEST_F(ImageTable, Hashes_AreThoseOfTheSystemsPrograms) {
    LoadPhoto();
    ImageInfoTable table(Evidence, true);
    const VecVecString rows = table.Evaluate();
    const wxString path = dir / "in/photo.jpg";
    const std::map<wxString, std::string> programs = {{"MD5", "md5sum"},
                                                      {"SHA1", "sha1sum"},
                                                      {"SHA256", "sha256sum"},
                                                      {"SHA384", "sha384sum"},
                                                      {"SHA512", "sha512sum"}};
    for (auto const& [title, program] : programs) {
        const wxString hash = ValueOf(rows, title);
        EXPECT_GE(hash.length(), 32u);
        EXPECT_EQ(wxString::FromUTF8(OutputOf(program, path)).BeforeFirst(' '), hash) << title;
    }
}

TEST_F(ImageTable, FileSizeRow_TellsMegabytesAndBytes) {
    std::string bytes = MakePhoto({}, {});
    bytes.resize(1572864, '\0');
    Load(support::WriteBytes(dir / "in/photo.jpg", bytes));
    ImageInfoTable table(Evidence, true);
    EXPECT_EQ(ValueOf(table.Evaluate(), "File Size"), "1.5 MB (1572864 bytes)");
}

TEST_F(ImageTable, FileTimes_AreTheFilesOwn) {
    const wxString path = Photo({}, {});
    Load(path);
    const wxDateTime written(6, wxDateTime::May, 2021, 7, 8, 9);
    ASSERT_TRUE(wxFileName(path).SetTimes(nullptr, &written, nullptr));
    ImageInfoTable table(Evidence, true);
    EXPECT_EQ(ValueOf(table.Evaluate(), "Last File Modification"), "2021:05:06 07:08:09");
}

TEST_F(ImageTable, FileGoneSinceItWasLoaded_LeavesTheRowsOfTheDiskEmpty) {
    LoadPhoto();
    ASSERT_TRUE(wxRemoveFile(dir / "in/photo.jpg"));
    ImageInfoTable table(Evidence, true);
    const VecVecString rows = table.Evaluate();
    EXPECT_EQ(ValueOf(rows, "Image Encoded Size"), "800x600");
    for (size_t row = 33; row < 42; ++row) EXPECT_EQ(rows[row][1], "") << rows[row][0];
}

TEST_F(ImageTable, MultipleOfZero_SwitchesTheRuleOff) {
    LoadPhoto({1001, 750});
    SetOption(4, 0);
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Image Encoded Size"), "!Odd height (750 is not multiple of 4)");
    EXPECT_FALSE(table.GetRules()[4].Evaluated);
    EXPECT_TRUE(table.GetRules()[5].Evaluated);
}

TEST_F(ImageTable, AspectWhitelist_IsOnlyEverAddedTo) {
    LoadPhoto({1600, 800});
    SetOption(13, VecString{"2.00", "nonsense"});
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Aspect Ratio"), "");
    SetOption(13, VecString{"1.00"});
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Aspect Ratio"), "");
    ImageInfoTable fresh(Evidence, false);
    EXPECT_EQ(WarningsOf(fresh.Evaluate(), "Aspect Ratio"), "!Odd aspect ratio");
}

TEST_F(ImageTable, EditedOptions_CountFromTheNextEvaluation) {
    LoadPhoto();
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "BPP"), "");
    SetOption(6, 32);
    SetOption(7, 4);
    const VecVecString rows = table.Evaluate();
    EXPECT_EQ(WarningsOf(rows, "BPP"), "!BPP (24 different 32)");
    EXPECT_EQ(WarningsOf(rows, "Number of Channels"), "!Channels are not (3 different 4)");
}

TEST_F(ImageTable, TwoSlots_SpeakOfTheirOwnFiles) {
    Load(support::WriteBytes(dir / "in/a.jpg", MakePhoto({}, {})), Evidence);
    Load(support::WriteBytes(dir / "in/b.jpg", MakePhoto({1000, 800}, {})), Reference);
    ImageInfoTable evidence(Evidence, false);
    ImageInfoTable reference(Reference, false);
    EXPECT_EQ(ValueOf(evidence.Evaluate(), "Image Encoded Size"), "800x600");
    EXPECT_EQ(ValueOf(reference.Evaluate(), "Image Encoded Size"), "1000x800");
}

TEST_F(ImageTable, RulesWithoutARow_AreNeverEvaluated) {
    LoadPhoto();
    ImageInfoTable table(Evidence, true);
    table.Evaluate();
    for (const size_t rule : {10u, 18u, 19u, 20u}) EXPECT_FALSE(table.GetRules()[rule].Evaluated) << rule;
}

TEST_F(ImageTable, RuleList_HasTheAgreedOrder) {
    const ImageInfoTable table(Evidence, false);
    std::vector<ImageWarningRule> const& rules = table.GetRules();
    ASSERT_EQ(rules.size(), 27u);
    const int kinds[27] = {2, 3, 2, 3, 6, 6, 16, 5, 5, 11, 7, 7, 7, 9, 5, 10, 14, 14, 5, 5, 5, 4, 4, 4, 12, 5, 7};
    const int severities[27] = {0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 1, 0, 0, 1, 1, 1};
    for (size_t i = 0; i < 27; ++i) {
        EXPECT_EQ(static_cast<int>(rules[i].Kind), kinds[i]) << i;
        EXPECT_EQ(rules[i].Severity, severities[i]) << i;
        EXPECT_EQ(rules[i].Description, i == 7 ? "Bits per pixel are not" : "") << i;
    }
    EXPECT_EQ(rules[6].Name, "Unkown resolution for this device");
    EXPECT_EQ(rules[10].Name, "EXIF Main Info is is missing");
}

TEST_F(ImageTable, RowMap_NamesTheRulesOfEachRow) {
    const ImageInfoTable table(Evidence, false);
    const std::map<size_t, std::vector<int>> expected = {
        {2, {15}},  {4, {2, 3, 4, 5, 6}}, {7, {9}},   {8, {8}},    {9, {7}},           {10, {26}},
        {20, {14}}, {21, {11}},           {22, {12}}, {23, {13}},  {27, {21, 22, 23}}, {28, {24}},
        {29, {25}}, {31, {16}},           {32, {17}}, {33, {0, 1}}};
    ASSERT_EQ(table.GetRowRules().size(), 42u);
    for (size_t row = 0; row < 42; ++row) {
        const auto entry = expected.find(row);
        EXPECT_EQ(table.GetRowRules()[row], entry != expected.end() ? entry->second : std::vector<int>()) << row;
    }
}

TEST_F(ImageTable, OptionGroup_HasItsFifteenDefaults) {
    const VecParameter group = context->GetOptionGroup("File Format");
    ASSERT_EQ(group.size(), 15u);
    EXPECT_EQ(group[0].Name(), "Min File Size");
    EXPECT_EQ(group[0].GetValue<int64_t>(), 100000);
    EXPECT_EQ(group[1].GetValue<int64_t>(), 10000000);
    const int numbers[6] = {640, 6000, 4, 4, 24, 3};
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ(group[i + 2].GetValue<int>(), numbers[i]);
    for (size_t i = 8; i < 11; ++i) {
        EXPECT_EQ(group[i].Strings(), (VecString{"No", "Yes"}));
        EXPECT_EQ(group[i].GetValue<int>(), 1);
    }
    EXPECT_EQ(group[11].GetValue<VecString>(), GetKnownsSoftwareStrings());
    EXPECT_EQ(group[12].GetValue<VecString>(), (VecString{"JPEG", "TIFF", "RAW"}));
    EXPECT_EQ(group[13].GetValue<VecString>(), (VecString{"1.33", "1.78", "1.50", "1.00"}));
    EXPECT_EQ(group[14].GetValue<VecString>(),
              (VecString{"iPhone 7", "iPhone 7 Plus", "iPhone 8", "iPhone 8 Plus", "iPhone X", "iPad Pro"}));
    for (Parameter const& option : group) EXPECT_EQ(option.GetDescription(), "");
}

TEST_F(ImageTable, SecondRegistration_AddsNothing) {
    const size_t groups = context->GetProgramOptions().size();
    const int id = ImageInfoTable::GetOptionGroupId();
    EXPECT_EQ(id, 1);
    ImageInfoTable::RegisterProgramOptions();
    EXPECT_EQ(context->GetProgramOptions().size(), groups);
    EXPECT_EQ(ImageInfoTable::GetOptionGroupId(), id);
}

TEST_F(ImageTable, OptionsWithoutTheGroup_AreTakenAsTheDefaults) {
    LoadPhoto({1001, 750});
    context->SetProgramOptions(VecVecParameter(context->GetProgramOptions()));
    VecVecParameter general;
    general.Add("General Settings", context->GetOptionGroup("General Settings"));
    context->SetProgramOptions(general);
    ImageInfoTable table(Evidence, false);
    EXPECT_EQ(WarningsOf(table.Evaluate(), "Image Encoded Size"),
              "!Odd width (1001 is not multiple of 4)\nOdd height (750 is not multiple of 4)");
}

TEST_F(ImageTable, Copy_KeepsRulesAndTable) {
    LoadPhoto();
    ImageInfoTable table(Evidence, false);
    const VecVecString rows = table.Evaluate();
    ImageInfoTable copy(table);
    table.Reset();
    EXPECT_EQ(copy.GetTable(), rows);
    EXPECT_TRUE(copy.GetRules()[0].Evaluated);
    EXPECT_EQ(copy.Evaluate(), rows);
}

TEST_F(ImageTable, Catalogue_TranslatesTruthValues) {
    LoadPhoto();
    ASSERT_TRUE(support::UseTranslations(dir, {{"true", "vero"}, {"false", "falso"}}));
    ImageInfoTable table(Evidence, false);
    const VecVecString rows = table.Evaluate();
    EXPECT_EQ(ValueOf(rows, "JPEG HT is standard IJG"), "vero");
    EXPECT_EQ(ValueOf(rows, "JPEG QT is standard IJG"), "vero");
}

TEST(FormatTwoDecimals, Numbers_AreRoundedWithAPoint) {
    EXPECT_EQ(FormatTwoDecimals(4.0 / 3.0), "1.33");
    EXPECT_EQ(FormatTwoDecimals(1.005e15), "1005000000000000.00");
    EXPECT_EQ(FormatTwoDecimals(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(FormatTwoDecimals(std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(FormatTwoDecimals(std::numeric_limits<double>::max()).length(), 312u);
}
