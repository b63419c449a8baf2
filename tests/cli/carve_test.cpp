// SPDX-License-Identifier: Apache-2.0
// orvelle carve and coordinates: the pictures inside a file, and where it was taken.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/program.h"
#include "tests/support/pdfbuilder.h"

using namespace clitest;

namespace {

class Carve : public CliTest {
protected:
    std::string Target() const { return Folder() + "/carved"; }
    Ended Run(std::string const& file, std::vector<std::string> more = {}) const {
        more.insert(more.begin(), {"carve", "--folder", Target()});
        more.insert(more.end(), {"--", file});
        return Orvelle(more);
    }
    static std::string Sha256(std::string const& path) { return RunProgram("sha256sum", {path}).out.substr(0, 64); }
};

class Coordinates : public CliTest {};

TEST_F(Carve, EmbeddedJpeg_IsWrittenByteForByte) {
    const std::string photo = Photo("a.jpg");
    const std::string bytes = ReadFile(photo);
    const Ended ended = Run(photo, {"--format", "csv"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("", ended.err);
    const std::string file = Target() + "/a-embedded-01.jpg";
    EXPECT_EQ(std::vector<std::string>{"a-embedded-01.jpg"}, List(Target()));
    // The thumbnail that the photograph was made with.
    EXPECT_TRUE(support::EncodeJpeg(160, 120, 75, 1) == ReadFile(file));
    EXPECT_EQ("Path,Bytes,SHA256\r\n" + file + "," + std::to_string(std::filesystem::file_size(file)) + "," +
                  Sha256(file) + "\r\n",
              ended.out);
    EXPECT_EQ(bytes, ReadFile(photo));
}

TEST_F(Carve, PicturesOfAPdf_AreTakenOut) {
    const std::string one = support::EncodeJpeg(64, 48, 90, 1);
    const std::string two = support::EncodeJpeg(80, 60, 80, 2);
    const std::string pdf =
        Write("case.pdf", support::Pdf({{support::PdfImageHead(64, 48, "/Filter /DCTDecode"), one},
                                        {support::PdfImageHead(80, 60, "/Filter /DCTDecode"), two}}));
    const Ended ended = Run(pdf, {"--format", "json"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ((std::vector<std::string>{"case-3.jpg", "case-4.jpg"}), List(Target()));
    EXPECT_TRUE(one == ReadFile(Target() + "/case-3.jpg"));
    EXPECT_TRUE(two == ReadFile(Target() + "/case-4.jpg"));
    EXPECT_EQ(Target() + "/case-3.jpg", nlohmann::json::parse(ended.out)["rows"][0]["path"]);
}

TEST_F(Carve, FolderWithFiles_IsLeftAlone) {
    std::filesystem::create_directories(Target());
    WriteFile(Target() + "/a-embedded-01.jpg", "mine");
    const std::string photo = Photo("a.jpg");
    const Ended ended = Run(photo);
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: " + Target() + ": has files already (--force writes among them)\n", ended.err);
    EXPECT_EQ("mine", ReadFile(Target() + "/a-embedded-01.jpg"));
    WriteFile(Target() + "/other.txt", "mine");
    EXPECT_EQ(0, Run(photo, {"--force"}).status);
    EXPECT_EQ("mine", ReadFile(Target() + "/other.txt"));
    EXPECT_TRUE(support::EncodeJpeg(160, 120, 75, 1) == ReadFile(Target() + "/a-embedded-01.jpg"));
}

TEST_F(Carve, FolderThatIsAFile_EndsWithFive) {
    for (char const* const bytes : {"", "x"}) {
        WriteFile(Target(), bytes);
        const Ended ended = Run(Photo("a.jpg"));
        EXPECT_EQ(5, ended.status);
        EXPECT_EQ("orvelle: " + Target() + ": can't be written: not a folder\n", ended.err);
        EXPECT_EQ(bytes, ReadFile(Target()));
    }
}

TEST_F(Carve, NamesInTheFile_LeadNowhere) {
    const std::string jpeg = support::EncodeJpeg(64, 48, 90, 1);
    const std::string names = "/Name /..#2f..#2fevil /F (../../evil.jpg) /Filter /DCTDecode";
    const std::string pdf =
        Write("deep/..%2f..%2fcase.pdf", support::Pdf({{support::PdfImageHead(64, 48, names), jpeg}}));
    EXPECT_EQ(0, Run(pdf).status);
    size_t found = 0;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(Folder())) {
        if (!entry.is_regular_file() || ReadFile(entry.path().string()) != jpeg) continue;
        ++found;
        EXPECT_EQ(Target(), entry.path().parent_path().string());
    }
    EXPECT_EQ(1U, found);
}

TEST_F(Carve, TruncatedFiles_EndWithAWord) {
    const std::string photo = ReadFile(Photo("a.jpg"));
    const std::string pdf =
        support::Pdf({{support::PdfImageHead(64, 48, "/Filter /DCTDecode"), support::EncodeJpeg(64, 48, 90, 1)}});
    for (const size_t parts : {2, 3, 7, 20, 100}) {
        for (std::string const& whole : {photo, pdf}) {
            const Ended ended = Run(Write("cut", whole.substr(0, whole.size() * (parts - 1) / parts)), {"--force"});
            EXPECT_TRUE(ended.status == 0 || ended.status == 3) << ended.status << ended.err;
            EXPECT_TRUE(ended.out.empty() == !ended.err.empty()) << ended.out << ended.err;
        }
    }
}

TEST_F(Carve, FileWithoutPictures_LeavesNoFolder) {
    const Ended ended = Run(Write("a.txt", "no picture at all"));
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: " + Path("a.txt") + ": no pictures inside\n", ended.err);
    EXPECT_FALSE(Exists(Target()));
}

TEST_F(Carve, FolderByDefault_StandsInTheCurrentOne) {
    Surroundings surroundings;
    surroundings.folder = Folder();
    EXPECT_EQ(0, Orvelle({"carve", Photo("a.jpg")}, surroundings).status);
    EXPECT_EQ(std::vector<std::string>{"a-embedded-01.jpg"}, List(Folder() + "/a.jpg-carved"));
    EXPECT_EQ(std::vector<std::string>{"a.jpg"}, List(Path("")));
}

TEST_F(Carve, WrongInput_EndsWithThree) {
    for (std::string const& file : {Path("none.jpg"), Folder(), std::string("/dev/null")}) {
        const Ended ended = Run(file);
        EXPECT_EQ(3, ended.status) << file;
        EXPECT_EQ(0U, ended.err.find("orvelle: " + file + ": ")) << ended.err;
    }
    EXPECT_EQ(2, Orvelle({"carve"}).status);
    EXPECT_FALSE(Exists(Target()));
}

TEST_F(Coordinates, Position_IsWhatExifToolSays) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, RunProgram("exiftool", {"-q", "-overwrite_original", "-GPSLatitude=45.5", "-GPSLatitudeRef=S",
                                         "-GPSLongitude=9.25", "-GPSLongitudeRef=W", photo})
                     .status);
    const Ended ended = Orvelle({"coordinates", photo});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("-45.5 -9.25\n", ended.out);
    EXPECT_EQ("", ended.err);
    Surroundings german;
    german.environment = {{"LC_ALL", "de_DE.UTF-8"}};
    EXPECT_EQ(ended.out, Orvelle({"coordinates", photo}, german).out);
}

TEST_F(Coordinates, NoPosition_EndsWithThree) {
    const std::string photo = Photo("plain.jpg");
    const Ended ended = Orvelle({"coordinates", photo});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: " + photo + ": No GPS coordinates available.\n", ended.err);
}

TEST_F(Coordinates, WrongUse_IsTold) {
    EXPECT_EQ(3, Orvelle({"coordinates", Path("none.jpg")}).status);
    EXPECT_EQ(3, Orvelle({"coordinates", Write("a.jpg", "no picture")}).status);
    EXPECT_EQ(2, Orvelle({"coordinates"}).status);
    EXPECT_EQ(2, Orvelle({"coordinates", "a.jpg", "b.jpg"}).status);
}

}  // namespace
