// SPDX-License-Identifier: Apache-2.0
// orvelle social: verdicts, the user's own signatures, and how often the classifier is right.
#include <sys/stat.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/pictures.h"
#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;

namespace {

// 48 numbers: a size, no thumbnail, no EXIF, 11 markers, 4:2:0, and 7 for every coefficient.
std::vector<int> Vector(int width, int height) {
    std::vector<int> numbers = {width, height, 0, 0, 0, 11, 2, 0};
    numbers.resize(48, 7);
    return numbers;
}

class Social : public CliTest {
protected:
    std::string Database() const { return Documents() + "/socialmediasig/usersms.json"; }

    void WriteDatabase(std::string const& bytes) const {
        std::filesystem::create_directories(Documents() + "/socialmediasig");
        WriteFile(Database(), bytes);
    }

    // `count` signatures of one vector: files f1, f2, ...
    void WriteSignatures(std::string const& platform, std::vector<int> const& vector, int count) const {
        json list = json::array();
        for (int i = 1; i <= count; ++i) {
            const std::string number = std::to_string(i);
            list.push_back({{"File", "f" + number},
                            {"SocName", platform},
                            {"FeatVect", vector},
                            {"FeatHash", "hash" + number},
                            {"Date", "2020-02-0" + number}});
        }
        WriteDatabase(json{{"SMSCollection", list}}.dump());
    }

    // A table of samples: a line of group, source, file and vector for each.
    std::string Labels(std::vector<std::tuple<std::string, std::string, std::string, std::vector<int>>> const& rows) {
        std::string text = "group\tsource\tfile_id\twidth";
        for (int i = 1; i < 48; ++i) text += "\tn" + std::to_string(i);
        for (auto const& [group, source, file, vector] : rows) {
            text += "\n" + group + "\t" + source + "\t" + file;
            for (const int number : vector) text += "\t" + std::to_string(number);
        }
        return Write("labels.tsv", text + "\n");
    }
};

constexpr char const* Positive = "Image likely comes from a Social Media Platform";
constexpr char const* Negative = "Image was likely not processed by a Social Media Platform";

TEST_F(Social, PictureLargerThanAnySample_IsNotClassified) {
    JpegKind kind;
    kind.width = 6000;
    const Ended ended = Orvelle({"social", Write("a.jpg", EncodeKind(kind))});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(std::string("Classification:                 ") + Negative +
                  "\nClosest Social Platform:        -\nSimilarity Score:               -\nClassification Source:      "
                  "    -\n"
                  "Closest File Id:                -\nDate of Reference File (Y/M/D): -\nOptional message:\n",
              ended.out);
}

TEST_F(Social, NameOfAScheme_IsToldWithANegativeVerdict) {
    JpegKind kind;
    kind.width = 6000;
    const std::string path = Write("12_34_56_n.jpg", EncodeKind(kind));
    const json rows = json::parse(Orvelle({"social", path, "--format", "json"}).out)[0]["result"]["rows"];
    ASSERT_EQ(7u, rows.size());
    EXPECT_EQ("Filename is compatible with Facebook, Instagram", rows[6]["value"]);
    EXPECT_EQ("optional_message", rows[6]["key"]);
}

TEST_F(Social, OwnSignatures_AreComparedToo) {
    // Names of no platform's scheme.
    const std::string a = Photo("sample one.jpg");
    const std::string b = Photo("sample two.jpg");
    const std::string c = Photo("sample three.jpg");
    ASSERT_EQ(0, Orvelle({"sms", "add", "--name", "Chatty", "--date", "2021-05-06", a, b, c}).status);
    const std::string questioned = Photo("the question.jpg");
    const json rows = json::parse(Orvelle({"social", questioned, "--format", "json"}).out)[0]["result"]["rows"];
    EXPECT_EQ(Positive, rows[0]["value"]);
    EXPECT_EQ("Chatty", rows[1]["value"]);
    EXPECT_EQ("1.0000", rows[2]["value"]);
    EXPECT_EQ("User database", rows[3]["value"]);
    // Of equals the one that stands later in the list.
    EXPECT_EQ(c, rows[4]["value"]);
    EXPECT_EQ("2021-05-06", rows[5]["value"]);
    EXPECT_EQ("", rows[6]["value"]);
}

TEST_F(Social, AllFormats_HaveTheVerdict) {
    JpegKind kind;
    kind.width = 6000;
    const std::string path = Write("a.jpg", EncodeKind(kind));
    for (char const* const format : {"text", "json", "jsonl", "csv", "tsv", "ssv", "html"}) {
        const Ended ended = Orvelle({"social", path, "--format", format, "--fail-on", "soft"});
        EXPECT_EQ(0, ended.status) << format;
        EXPECT_TRUE(Contains(ended.out, Negative)) << format;
        EXPECT_TRUE(Contains(ended.out, "Date of Reference File (Y/M/D):")) << format;
    }
}

TEST_F(Social, NoJpeg_HasEmptyRowsAndAWarning) {
    const std::string path = Write("a.ppm", DottedPpm(0, 0, 128));
    const Ended ended = Orvelle({"social", path, "--format", "csv"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("orvelle: " + path + ": warning: no JPEG with quantisation tables: not classified\n", ended.err);
    EXPECT_TRUE(Contains(ended.out, path + ",evidence,Classification:,,\r\n")) << ended.out;
}

TEST_F(Social, OddJpegs_GiveAVerdict) {
    std::vector<std::string> arguments = {"social", "--format", "csv", "--wide"};
    for (const int components : {1, 4}) {
        JpegKind kind;
        kind.components = components;
        arguments.push_back(Write(std::to_string(components) + " components.jpg", EncodeKind(kind)));
    }
    JpegKind wide;
    wide.quality = 2;
    wide.wideTables = true;
    arguments.push_back(Write("16 bits.jpg", EncodeKind(wide)));
    arguments.push_back(Write("thousand markers.jpg", WithComments(support::EncodeJpeg(64, 48), 1000)));
    arguments.push_back(Write("no thumbnail.jpg", support::EncodeJpeg(64, 48)));
    const Ended ended = Orvelle(arguments);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("", ended.err);
    EXPECT_EQ(5u, CountOf(ended.out, Positive) + CountOf(ended.out, Negative)) << ended.out;
}

TEST_F(Social, BrokenDatabase_IsToldAndTheRestUsed) {
    const std::string photo = Photo("a.jpg");
    const std::string head =
        "orvelle: " + Database() + ": warning: your own signatures are used as far as they could be read: ";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"{\"SMSCollection\": [ {\"File\": }", "broken: "},
        {"\x01\x02\xff\xfe", "broken: "},
        {"[1,2,3]", "not a file of signatures: it has no list \"SMSCollection\"\n"},
        {"{\"SMSCollection\": 7}", "not a file of signatures: it has no list \"SMSCollection\"\n"},
        {"{\"SMSCollection\": [{\"File\": \"x\"}, 5, null]}", "3 of 3 entries are no signatures\n"},
        {std::string(3000, '['), "broken: "}};
    for (auto const& [bytes, reason] : cases) {
        WriteDatabase(bytes);
        const Ended ended = Orvelle({"social", photo});
        EXPECT_EQ(0, ended.status) << bytes.substr(0, 40);
        EXPECT_EQ(0u, ended.err.find(head + reason)) << ended.err;
        EXPECT_EQ(1u, Lines(ended.err).size());
        EXPECT_TRUE(Contains(ended.out, "Classification:"));
        EXPECT_EQ(bytes, ReadFile(Database()));
    }
}

TEST_F(Social, DatabaseThatIsNone_IsTold) {
    const std::string photo = Photo("a.jpg");
    std::filesystem::create_directories(Database());
    EXPECT_TRUE(Contains(Orvelle({"social", photo}).err, "not a regular file\n"));
    std::filesystem::remove(Database());
    mkfifo(Database().c_str(), 0600);
    EXPECT_TRUE(Contains(Orvelle({"social", photo}).err, "not a regular file\n"));
    std::filesystem::remove(Database());
    WriteDatabase(std::string(5000, ' '));
    ASSERT_EQ(0, Orvelle({"options", "set", "user-database-bytes", "4096"}).status);
    const Ended huge = Orvelle({"social", photo});
    EXPECT_EQ(0, huge.status);
    EXPECT_TRUE(Contains(huge.err, "larger than the limit \"user-database-bytes\" (5000 > 4096)\n")) << huge.err;
}

TEST_F(Social, OddPlatformName_SteersNoTerminal) {
    WriteSignatures("A\x1b[2J<b>\"\xe2\x80\xae,\nClassification: forged", Vector(640, 480), 3);
    const std::string photo = Photo("a.jpg");
    for (char const* const format : {"text", "json", "csv", "html"}) {
        EXPECT_EQ(0, Orvelle({"social", photo, "--format", format}).status) << format;
    }
    const Ended list = Orvelle({"sms", "list", "--database", "user"});
    EXPECT_EQ(0, list.status);
    EXPECT_FALSE(Contains(list.out, "\x1b"));
    EXPECT_EQ(4u, Lines(list.out).size()) << list.out;
    EXPECT_FALSE(Contains(list.out, "\nClassification")) << list.out;
}

TEST_F(Social, Evaluate_CountsWhatIsNamed) {
    WriteSignatures("Chatty", Vector(640, 480), 4);
    const std::string labels = Labels({{"chatty", "s1", "f1", Vector(640, 480)},
                                       {"none:camera", "s2", "", Vector(6000, 480)},
                                       {"none:camera", "s2", "", Vector(6000, 4000)},
                                       {"none:copy", "s3", "", Vector(640, 480)}});
    const Ended ended = Orvelle({"social", "--evaluate", labels, "--leave-out", "file"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(
        "Group       Samples Named rightly Share   Right among several Share   Not classified Share\n"
        "Chatty      1       1             100.0 % 1                   100.0 % 0              0.0 %\n"
        "none:camera 2                                                         2              100.0 %\n"
        "none:copy   1                                                         0              0.0 %\n"
        "\n"
        "Group       Chatty Not classified\n"
        "Chatty      1      0\n"
        "none:camera 0      2\n"
        "none:copy   1      0\n"
        "\n"
        "Files that no platform touched: 3, said to be from one: 1 (33.3 %)\n"
        "Samples: 4, each without itself alone\n"
        "Signatures: 6076, left out of some comparison: 1\n",
        ended.out);
}

TEST_F(Social, EvaluateWithoutItsSource_LeavesAllItsFilesOut) {
    WriteSignatures("Chatty", Vector(640, 480), 4);
    const std::string labels = Labels({{"chatty", "s1", "f1", Vector(640, 480)},
                                       {"chatty", "s1", "f2", Vector(640, 480)},
                                       {"chatty", "s1", "f3", Vector(640, 480)},
                                       {"chatty", "s1", "f4", Vector(640, 480)}});
    const json value = json::parse(Orvelle({"social", "--evaluate", labels, "--format", "json"}).out);
    EXPECT_EQ("source", value["left_out"]);
    EXPECT_EQ(4, value["samples"]);
    EXPECT_EQ(4, value["signatures_left_out"]);
    EXPECT_EQ(0, value["groups"][0]["right"]);
    EXPECT_EQ(0.0, value["groups"][0]["recall"]);
    EXPECT_TRUE(value["false_positive_rate"].is_null());
    const json alone =
        json::parse(Orvelle({"social", "--evaluate", labels, "--leave-out", "file", "--format", "json"}).out);
    EXPECT_EQ(4, alone["groups"][0]["right"]);
    EXPECT_EQ(1.0, alone["groups"][0]["recall"]);
}

TEST_F(Social, EvaluateInAllFormats_HasTheFigures) {
    WriteSignatures("Chatty", Vector(640, 480), 4);
    const std::string labels = Labels({{"none:copy", "", "", Vector(640, 480)}});
    EXPECT_EQ(
        "Group,Samples,Named rightly,Share,Right among several,Share,Not classified,Share,Taken for Chatty\r\n"
        "none:copy,1,,,,,0,0.0 %,1\r\n",
        Orvelle({"social", "--evaluate", labels, "--format", "csv"}).out);
    const json line = json::parse(Orvelle({"social", "--evaluate", labels, "--format", "jsonl"}).out);
    EXPECT_EQ("none:copy", line["group"]);
    EXPECT_EQ(1, line["named"]["Chatty"]);
    EXPECT_EQ(1, line["false_positives"]);
    EXPECT_EQ(1.0, line["false_positive_rate"]);
    EXPECT_TRUE(Contains(Orvelle({"social", "--evaluate", labels, "--format", "html"}).out,
                         "said to be from one: 1 (100.0 %)"));
}

TEST_F(Social, EvaluateOverFiles_GoesOnBehindABrokenOne) {
    JpegKind kind;
    kind.width = 6000;
    Write("folder/big.jpg", EncodeKind(kind));
    Write("folder/text.jpg", "no picture");
    const std::string labels =
        Write("labels.tsv", "file\tgroup\nfolder/none.jpg\tnone\nfolder/text.jpg\tnone\nfolder/big.jpg\tnone:camera\n");
    const Ended ended = Orvelle({"social", "--evaluate", labels, "--format", "csv"});
    EXPECT_EQ(3, ended.status);
    EXPECT_TRUE(Contains(ended.out, "none:camera,1,,,,,1,100.0 %\r\n")) << ended.out;
    ASSERT_EQ(2u, Lines(ended.err).size()) << ended.err;
    EXPECT_EQ("orvelle: " + labels + ": line 2: no such file: " + Path("folder/none.jpg"), Lines(ended.err)[0]);
    EXPECT_EQ("orvelle: " + labels + ": line 3: no JPEG with quantisation tables: " + Path("folder/text.jpg"),
              Lines(ended.err)[1]);
}

TEST_F(Social, EvaluateOfWhatCannotBeRead_NamesTheLine) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"file\nx.jpg\n", "line 1: no column \"group\""},
        {"group\twidth\n", "line 1: fewer than 48 columns from \"width\" on"},
        {"", "line 0: no line names the columns"},
        {"group\tfile\nnone\n", "line 2: another number of cells than of columns"},
        {"group\tfile\n", "no samples"}};
    for (auto const& [text, reason] : cases) {
        const std::string labels = Write("labels.tsv", text);
        const Ended ended = Orvelle({"social", "--evaluate", labels});
        EXPECT_EQ(3, ended.status) << text;
        EXPECT_EQ("orvelle: " + labels + ": " + reason + "\n", ended.err);
        EXPECT_EQ("", ended.out);
    }
    EXPECT_EQ("orvelle: " + Path("none") + ": no such file\n", Orvelle({"social", "--evaluate", Path("none")}).err);
    EXPECT_EQ(3, Orvelle({"social", "--evaluate", Path("")}).status);
    EXPECT_EQ(2, Orvelle({"social", "--evaluate", Path("none"), "a.jpg"}).status);
    EXPECT_EQ(2, Orvelle({"social"}).status);
}

}  // namespace
