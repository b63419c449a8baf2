// SPDX-License-Identifier: Apache-2.0
// orvelle match: many files against the compression signature of one.
#include <signal.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/pictures.h"
#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Match : public CliTest {
protected:
    std::string Jpeg(std::string const& name, int quality, int width = 64) const {
        return Write(name, support::EncodeJpeg(width, 48, quality));
    }

    static std::string Hash(std::string const& path) {
        std::string digest = RunProgram("exiftool", {"-s3", "-n", "-JPEGDigest", path}).out.substr(0, 32);
        for (char& c : digest) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return digest;
    }
};

constexpr char const* Header =
    "#Id,Filename,Full Path,Image Size,Image Quality,Chroma Subsampling,QT Hash,Differences\r\n";

TEST_F(Match, Rows_CountWhatDiffers) {
    const std::string evidence = Jpeg("e.jpg", 90);
    const std::string same = Jpeg("set/same.jpg", 90);
    const std::string other = Jpeg("set/other.jpg", 50, 72);
    const Ended ended = Orvelle({"match", evidence, same, other, evidence, "--format", "csv"});
    EXPECT_EQ(0, ended.status) << ended.err;
    const std::string hash = Hash(evidence);
    EXPECT_EQ(Header + ("0,e.jpg," + evidence + ",64x48,90,4:2:0," + hash + ",0\r\n") +
                  // Name and path.
                  "1,same.jpg," + same + ",64x48,90,4:2:0," + hash + ",2\r\n" +
                  // Name, path, size, quality, hash.
                  "2,other.jpg," + other + ",72x48,50,4:2:0,!" + Hash(other) + ",5\r\n" + "3,e.jpg," + evidence +
                  ",64x48,90,4:2:0," + hash + ",0\r\n",
              ended.out);
}

TEST_F(Match, FailOn_FiresForADifferingHash) {
    const std::string evidence = Jpeg("e.jpg", 90);
    const std::string same = Jpeg("same.jpg", 90, 72);
    const std::string other = Jpeg("other.jpg", 50);
    EXPECT_EQ(0, Orvelle({"match", evidence, same, "--fail-on", "soft"}).status);
    EXPECT_EQ(0, Orvelle({"match", evidence, other}).status);
    EXPECT_EQ(1, Orvelle({"match", evidence, same, other, "--fail-on", "hard"}).status);
    EXPECT_EQ(1, Orvelle({"match", evidence, other, "--fail-on", "soft", "--format", "json"}).status);
    EXPECT_EQ(3, Orvelle({"match", evidence, other, Path("none.jpg"), "--fail-on", "hard"}).status);
}

TEST_F(Match, FailingFile_HasNoRowAndTheOthersKeepTheirNumbers) {
    const std::string evidence = Jpeg("e.jpg", 90);
    const std::string broken = Write("broken.jpg", "\xff\xd8\xff\xe0 broken");
    const std::string last = Jpeg("last.jpg", 90);
    const Ended ended = Orvelle({"match", evidence, broken, last, "--format", "csv"});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ(0u, ended.err.find("orvelle: " + broken + ": File format not supported.")) << ended.err;
    EXPECT_FALSE(Contains(ended.out, "broken.jpg"));
    EXPECT_TRUE(Contains(ended.out, "\r\n2,last.jpg,")) << ended.out;
}

TEST_F(Match, FileThatIsNoJpeg_HasItsNameAlone) {
    const std::string evidence = Jpeg("e.jpg", 90);
    const std::string ppm = Write("a.ppm", DottedPpm(0, 0, 128));
    const std::string out = Orvelle({"match", evidence, ppm, "--format", "csv"}).out;
    EXPECT_TRUE(Contains(out, "\r\n1,a.ppm," + ppm + ",")) << out;
    EXPECT_TRUE(Contains(out, ",!,6\r\n")) << out;
    const Ended reversed = Orvelle({"match", ppm, evidence, "--format", "csv"});
    EXPECT_EQ("orvelle: " + ppm + ": warning: no JPEG with quantisation tables: it has no signature to match\n",
              reversed.err);
}

TEST_F(Match, EvidenceThatCannotBeExamined_EndsTheRun) {
    const Ended ended = Orvelle({"match", Path("none.jpg"), Jpeg("a.jpg", 90), "--format", "csv"});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: " + Path("none.jpg") + ": no such file\n", ended.err);
}

TEST_F(Match, Folder_StandsForItsImages) {
    const std::string evidence = Jpeg("e.jpg", 90);
    Jpeg("set/b.jpg", 90);
    Jpeg("set/a.jpg", 90);
    Jpeg("set/sub/c.jpg", 90);
    const std::string flat = Orvelle({"match", evidence, Path("set"), "--format", "csv"}).out;
    EXPECT_EQ(4u, Lines(flat).size());
    EXPECT_TRUE(Contains(Lines(flat).at(2), "1,a.jpg,"));
    EXPECT_EQ(5u, Lines(Orvelle({"match", evidence, "-r", Path("set"), "--format", "csv"}).out).size());
    Surroundings surroundings;
    surroundings.input = Path("set/b.jpg") + "\n";
    EXPECT_EQ(3u, Lines(Orvelle({"match", evidence, "--files-from", "-", "--format", "csv"}, surroundings).out).size());
    EXPECT_EQ(2, Orvelle({"match", evidence}).status);
}

TEST_F(Match, Json_NamesEachInput) {
    const std::string evidence = Jpeg("e.jpg", 90);
    const std::string other = Jpeg("caf\xe9.jpg", 50);
    const json value = json::parse(Orvelle({"match", evidence, other, "--format", "json"}).out);
    EXPECT_EQ("orvelle/match/1", value["schema"]);
    EXPECT_EQ(evidence, value["evidence"]["path"]);
    ASSERT_EQ(2u, value["rows"].size());
    EXPECT_EQ(0, value["rows"][0]["id"]);
    EXPECT_EQ(0, value["rows"][0]["differences"]);
    EXPECT_EQ("64x48", value["rows"][1]["image_size"]);
    EXPECT_EQ("50", value["rows"][1]["image_quality"]);
    EXPECT_EQ("!" + Hash(other), value["rows"][1]["qt_hash"]);
    EXPECT_EQ(4, value["rows"][1]["differences"]);
    EXPECT_EQ(RunProgram("sha256sum", {other}).out.substr(0, 64), value["rows"][1]["input"]["sha256"]);
}

TEST_F(Match, AllFormats_HaveTheSameCells) {
    const std::string evidence = Jpeg("e.jpg", 90);
    const std::string other = Jpeg("other.jpg", 50);
    const std::string hash = "!" + Hash(other);
    for (char const* const format : {"text", "json", "jsonl", "csv", "tsv", "ssv", "html"}) {
        const Ended ended = Orvelle({"match", evidence, other, "--format", format});
        EXPECT_EQ(0, ended.status) << format;
        for (std::string const& cell : {std::string("other.jpg"), std::string("4:2:0"), hash}) {
            EXPECT_TRUE(Contains(ended.out, cell)) << format << ": " << cell;
        }
    }
    const std::string lines = Orvelle({"match", evidence, other, "--format", "jsonl"}).out;
    EXPECT_EQ(2u, Lines(lines).size());
    EXPECT_EQ("e.jpg", json::parse(Lines(lines)[0])["filename"]);
}

TEST_F(Match, Interrupted_LeavesWholeRows) {
    const std::string evidence = Jpeg("e.jpg", 90);
    std::vector<std::string> arguments = {"--documents", Documents(), "match", evidence, "--format", "csv"};
    const std::string big = Write("big.jpg", support::EncodeJpeg(4000, 3000, 90));
    for (int i = 0; i < 200; ++i) arguments.push_back(big);
    Running running(arguments);
    for (int i = 0; i < 3; ++i) running.ReadLine();
    running.Signal(SIGINT);
    const Ended ended = running.Wait();
    EXPECT_EQ(130, ended.status);
    EXPECT_LT(Lines(ended.out).size(), 190u);
    if (!ended.out.empty()) {
        EXPECT_EQ('\n', ended.out.back());
    }
    EXPECT_TRUE(Contains(ended.err, "orvelle: interrupted: ")) << ended.err;
}

TEST_F(Match, OutputFile_NeverReplacesAnExaminedOne) {
    const std::string evidence = Jpeg("e.jpg", 90);
    const std::string other = Jpeg("other.jpg", 50);
    const std::string before = ReadFile(other);
    EXPECT_EQ(5, Orvelle({"match", evidence, other, "-o", other, "--force"}).status);
    EXPECT_EQ(before, ReadFile(other));
}

}  // namespace
