// SPDX-License-Identifier: Apache-2.0
// Forms of results, and files that they are written to.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class OutputFile : public CliTest {};
class Formats : public CliTest {};

// Cells of a CSV text by an independent reader, joined by "|", rows by line feeds.
std::string Cells(std::string const& file, std::string const& separator) {
    const std::string code =
        "import csv,sys\n"
        "for r in csv.reader(open(sys.argv[1], newline='', encoding='utf-8'), delimiter=sys.argv[2], strict=True):\n"
        "    print('|'.join(c.replace('\\n', '<LF>') for c in r))\n";
    const Ended ended = RunProgram("python3", {"-c", code, file, separator});
    EXPECT_EQ("", ended.err);
    return ended.out;
}

TEST_F(OutputFile, Existing_IsKeptWithoutForce) {
    const std::string photo = Photo("a.jpg");
    const std::string target = Folder() + "/out.txt";
    WriteFile(target, "precious");
    const Ended ended = Orvelle({"info", photo, "-o", target});
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: " + target + ": exists (--force replaces it)\n", ended.err);
    EXPECT_EQ("precious", ReadFile(target));
    EXPECT_EQ(0, Orvelle({"info", photo, "-o", target, "--force"}).status);
    EXPECT_EQ(0u, ReadFile(target).find("Filename "));
    EXPECT_EQ((std::vector<std::string>{"documents", "evidence", "out.txt"}), List(Folder()));
}

TEST_F(OutputFile, HoldsWhatStandardOutputWould) {
    const std::string photo = Photo("a.jpg");
    const std::string target = Folder() + "/out";
    const Ended ended = Orvelle({"info", photo, "-o", target});
    EXPECT_EQ("", ended.out);
    EXPECT_EQ(Orvelle({"info", photo}).out, ReadFile(target));
}

TEST_F(OutputFile, EndingChoosesTheFormat) {
    const std::string photo = Photo("a.jpg");
    for (auto const& [ending, start] : std::vector<std::pair<std::string, std::string>>{{"json", "[\n{"},
                                                                                        {"jsonl", "{\"schema\""},
                                                                                        {"CSV", "Path,Slot,"},
                                                                                        {"tsv", "Path\tSlot"},
                                                                                        {"ssv", "Path;Slot"},
                                                                                        {"htm", "<!DOCTYPE html>"},
                                                                                        {"dat", "Filename "}}) {
        const std::string target = Folder() + "/out." + ending;
        ASSERT_EQ(0, Orvelle({"info", photo, "-o", target}).status);
        EXPECT_EQ(start, ReadFile(target).substr(0, start.size())) << ending;
    }
    const std::string target = Folder() + "/out2.csv";
    ASSERT_EQ(0, Orvelle({"info", photo, "-o", target, "--format", "json"}).status);
    EXPECT_EQ("[\n{", ReadFile(target).substr(0, 3));
}

TEST_F(OutputFile, UnwritableFolder_EndsBeforeAnyFileIsExamined) {
    const Ended ended = Orvelle({"info", "missing.jpg", "-o", "/proc/r.csv"});
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ(0u, ended.err.find("orvelle: /proc/r.csv: can't be written: ")) << ended.err;
    EXPECT_EQ(1u, Lines(ended.err).size());
}

TEST_F(OutputFile, NeverReplacesAnExaminedFile) {
    const std::string photo = Photo("a.jpg");
    const std::string before = ReadFile(photo);
    std::filesystem::create_symlink(photo, Folder() + "/link.jpg");
    for (std::string const& target : {photo, Folder() + "/link.jpg", Path("../evidence/a.jpg")}) {
        EXPECT_EQ(5, Orvelle({"info", photo, "-o", target, "--force"}).status);
        EXPECT_EQ(5, Orvelle({"info", Path(""), "-o", target, "--force"}).status);
        const std::string other = Photo("sub/b.jpg");
        EXPECT_EQ(5, Orvelle({"info", other, "--reference", photo, "-o", target, "--force"}).status);
        EXPECT_EQ(before, ReadFile(photo));
    }
    EXPECT_TRUE(std::filesystem::is_symlink(Folder() + "/link.jpg"));
}

TEST_F(OutputFile, Pipe_IsWrittenAsItStands) {
    const std::string pipe = Folder() + "/pipe";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    const int reader = open(pipe.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_LE(0, reader);
    EXPECT_EQ(0, Orvelle({"info", Photo("a.jpg"), "-o", pipe, "--format", "json"}).status);
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
    char first = 0;
    EXPECT_EQ(1, read(reader, &first, 1));
    EXPECT_EQ('[', first);
    close(reader);
}

TEST_F(OutputFile, AllFilesFailing_StillGivesAValidResult) {
    const std::string target = Folder() + "/out.json";
    EXPECT_EQ(3, Orvelle({"info", Path("none.jpg"), "-o", target}).status);
    EXPECT_EQ("[]\n", ReadFile(target));
}

TEST_F(Formats, Csv_IsQuotedAsRfc4180Says) {
    const std::string photo = Photo("a,\"b\"\nc.jpg", 1001, 751);
    const std::string target = Folder() + "/out.csv";
    ASSERT_EQ(0, Orvelle({"info", photo, "-o", target}).status);
    const std::string cells = Cells(target, ",");
    EXPECT_EQ("Path|Slot|Title|Value|Warnings", Lines(cells).at(0));
    const std::string shown = Path("a,\"b\"<LF>c.jpg");
    EXPECT_TRUE(Contains(cells, shown + "|evidence|Filename|a,\"b\"<LF>c.jpg|\n")) << cells;
    EXPECT_TRUE(Contains(cells,
                         "|Image Encoded Size|1001x751|!Odd width (1001 is not multiple of 4)<LF>Odd height "
                         "(751 is not multiple of 4)"))
        << cells;
}

TEST_F(Formats, Ssv_HasTheSameCells) {
    const std::string photo = Photo("a;b.jpg");
    ASSERT_EQ(0, Orvelle({"info", photo, "-o", Folder() + "/out.csv"}).status);
    ASSERT_EQ(0, Orvelle({"info", photo, "-o", Folder() + "/out.ssv"}).status);
    EXPECT_EQ(Cells(Folder() + "/out.csv", ","), Cells(Folder() + "/out.ssv", ";"));
}

TEST_F(Formats, Tsv_HasALineForEachRowWhateverTheName) {
    const std::string photo = Photo("a\tb\nc\\d.jpg");
    const std::vector<std::string> lines = Lines(Orvelle({"info", photo, "--format", "tsv"}).out);
    for (std::string const& line : lines) EXPECT_EQ(4u, CountOf(line, "\t")) << line;
    EXPECT_EQ(Path("a\\tb\\nc\\\\d.jpg") + "\tevidence\tFilename\ta\\tb\\nc\\\\d.jpg\t", lines.at(1));
}

TEST_F(Formats, Wide_HasALineForEachFile) {
    const std::string a = Photo("a.jpg");
    const std::string b = Photo("b.jpg", 1001, 751);
    const std::string target = Folder() + "/out.csv";
    ASSERT_EQ(0, Orvelle({"info", "--wide", a, b, "-o", target}).status);
    const std::vector<std::string> lines = Lines(Cells(target, ","));
    ASSERT_EQ(3u, lines.size());
    EXPECT_EQ(0u, lines[0].find("Path|Slot|Filename|Full Path|Format|")) << lines[0];
    EXPECT_TRUE(Contains(lines[0], "|JPEG HT is standard IJG|Hard Warnings|Soft Warnings|Warnings"));
    for (std::string const& line : lines) EXPECT_EQ(34u, CountOf(line, "|")) << line;
    EXPECT_TRUE(Contains(lines[2], "|1001x751|")) << lines[2];
}

TEST_F(Formats, CellThatLooksLikeAFormula_StaysAsItIs) {
    const std::string photo = Photo("=1+2.jpg");
    EXPECT_TRUE(Contains(Orvelle({"info", photo, "--format", "csv"}).out, ",Filename,=1+2.jpg,\r\n"));
}

TEST_F(Formats, Html_EscapesWhatTheFileSays) {
    const std::string photo = Photo("<script>alert(1)&.jpg", 1001, 751);
    const std::string out = Orvelle({"info", photo, "--format", "html"}).out;
    EXPECT_EQ(0u, out.find("<!DOCTYPE html>"));
    EXPECT_FALSE(Contains(out, "<script"));
    EXPECT_TRUE(Contains(out, "&lt;script&gt;alert(1)&amp;.jpg"));
    EXPECT_TRUE(Contains(out, "!Odd width (1001 is not multiple of 4)"));
    EXPECT_TRUE(Contains(out, "</html>"));
}

TEST_F(Formats, SameInput_GivesTheSameBytes) {
    const std::string photo = Photo("a.jpg");
    for (std::string const format : {"text", "csv", "tsv", "ssv", "html"}) {
        const std::string first = Orvelle({"info", photo, "--format", format}).out;
        EXPECT_EQ(first, Orvelle({"info", photo, "--format", format}).out) << format;
    }
}

}  // namespace
