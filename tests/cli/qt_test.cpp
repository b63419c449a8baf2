// SPDX-License-Identifier: Apache-2.0
// orvelle qt: the user's file of signatures, lists and matches.
#include <filesystem>
#include <thread>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

constexpr char const* One = "0123456789ABCDEF0123456789ABCDEF";
constexpr char const* Two = "FEDCBA9876543210FEDCBA9876543210";

class Qt : public CliTest {
protected:
    std::string File() const { return Documents() + "/qt/userqt.csv"; }

    Ended Add(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"qt", "add"});
        return Orvelle(arguments);
    }

    std::string UserList() const { return Orvelle({"qt", "list", "--database", "user", "--format", "csv"}).out; }
};

constexpr char const* Header = "Database,Number,Class,Make,Model,Quality,Software,Signature,Rotated Signature\r\n";

TEST_F(Qt, Add_WritesALineThatTheEngineReads) {
    EXPECT_EQ(0, Add({"--class", "camera", "--make", "Acme, Inc.", "--model", "Shooter 5", "--quality", "FINE",
                      "--signature", One, "--rotated", "fedcba9876543210fedcba9876543210", "--subsampling", "2x1"})
                     .status);
    EXPECT_EQ(
        std::string("SIG 1 ,\"Acme, Inc.\",\"Shooter 5\",\"FINE\",\"") + One + "\",\"" + Two + "\",\"2x1\",\"\",\"\"\n",
        ReadFile(File()));
    EXPECT_EQ(std::string(Header) + "user,1,camera,\"Acme, Inc.\",Shooter 5,FINE,," + One + "," + Two + "\r\n",
              UserList());
}

TEST_F(Qt, AddSoftware_IsListedAsSuch) {
    EXPECT_EQ(0, Add({"--class", "software", "--make", "Paint", "--vendor", "Acme", "--software", "Paint 3",
                      "--signature", One})
                     .status);
    EXPECT_EQ(std::string("SIG 2 ,\"Paint\",\"\",\"\",\"") + One + "\",\"\",\"\",\"Acme\",\"Paint 3\"\n",
              ReadFile(File()));
    EXPECT_EQ(std::string(Header) + "user,1,software,Paint,,,Paint 3," + One + ",\r\n", UserList());
}

TEST_F(Qt, Add_RefusesWhatTheFileCannotHold) {
    for (auto const& [value, reason] : std::vector<std::pair<std::string, std::string>>{
             {"a/b", "the make has a slash, which would begin a comment"},
             {"a\"b", "the make has a double quote, which the file can't hold"},
             {"a\nb", "the make has a line break or control character"}}) {
        const Ended ended = Add({"--class", "camera", "--make", value, "--signature", One});
        EXPECT_EQ(2, ended.status);
        EXPECT_EQ("orvelle: qt add: " + reason + "\n", ended.err);
    }
    EXPECT_EQ("orvelle: --signature: takes 32 hexadecimal digits\n",
              Add({"--class", "camera", "--signature", "123"}).err);
    EXPECT_EQ(2, Add({"--class", "camera", "--make", "Acme"}).status);
    EXPECT_EQ(2, Add({"--make", "Acme", "--signature", One}).status);
    EXPECT_EQ(2, Add({"--class", "phone", "--signature", One}).status);
    EXPECT_FALSE(Exists(File()));
}

TEST_F(Qt, AddFromJpeg_MatchesThatJpeg) {
    const std::string photo = Photo("a.jpg");
    EXPECT_FALSE(Contains(Orvelle({"qt", "match", photo}).out, "Acme Optics"));
    EXPECT_EQ(0, Add({"--class", "camera", photo, "--quality", "BEST"}).status);
    const std::string digest = RunProgram("exiftool", {"-s3", "-n", "-JPEGDigest", photo}).out.substr(0, 32);
    std::string upper = digest;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(0u, ReadFile(File()).find("SIG 1 ,\"Acme Optics\",\"Shooter 5\",\"BEST\",\"" + upper + "\",\""))
        << ReadFile(File());
    const std::string match = Orvelle({"qt", "match", photo}).out;
    EXPECT_TRUE(Contains(match, "Compatible Cameras (User)")) << match;
    EXPECT_TRUE(Contains(match, "Acme Optics,Shooter 5,BEST")) << match;
    EXPECT_FALSE(Contains(Orvelle({"info", photo}).out, "incompatible with the actual camera"));
}

TEST_F(Qt, AddFromWhatIsNoJpeg_Fails) {
    EXPECT_EQ(3, Add({"--class", "camera", Path("none.jpg")}).status);
    EXPECT_EQ(3, Add({"--class", "camera", Write("a.jpg", "no picture")}).status);
    EXPECT_FALSE(Exists(File()));
}

TEST_F(Qt, Match_OfStandardTables_NamesTheQuality) {
    const std::string out = Orvelle({"qt", "match", Photo("a.jpg"), "--format", "csv"}).out;
    EXPECT_TRUE(Contains(out, ",Standard Tables (IJG),")) << out;
    EXPECT_TRUE(Contains(out, "90")) << out;
}

TEST_F(Qt, ListInternal_HasManyOfBothClasses) {
    const Ended ended = Orvelle({"qt", "list", "--database", "internal", "--format", "csv"});
    EXPECT_EQ(0, ended.status);
    EXPECT_GT(CountOf(ended.out, "\r\ninternal,,camera,"), 100u);
    EXPECT_GT(CountOf(ended.out, "\r\ninternal,,software,"), 10u);
    const std::string software = Orvelle({"qt", "list", "--class", "software", "--format", "csv"}).out;
    EXPECT_EQ(0u, CountOf(software, ",camera,"));
    EXPECT_EQ(CountOf(ended.out, "\r\ninternal,,software,"), CountOf(software, "\r\ninternal,,software,"));
}

TEST_F(Qt, Remove_TakesTheNumberedOneAndKeepsAllElse) {
    std::filesystem::create_directories(Documents() + "/qt");
    const std::string a = std::string("SIG 1 ,\"A\",\"\",\"\",\"") + One + "\",\"\",\"\",\"\",\"\"\n";
    const std::string b = std::string("x 2 ,\"B\",\"\",\"\",\"") + Two + "\",\"\",\"\",\"\",\"b\"\r\n";
    const std::string c = std::string("SIG 1 ,\"C\",\"\",\"\",\"") + Two + "\",\"\",\"\",\"\",\"\"\n";
    const std::string head = "// my cameras\nword class,make\n\n";
    WriteFile(File(), head + a + "\n" + b + c);
    EXPECT_EQ(3u, CountOf(UserList(), "\r\nuser,"));
    EXPECT_TRUE(Contains(UserList(), "\r\nuser,2,software,B,,,b,"));
    EXPECT_EQ(0, Orvelle({"qt", "remove", "2"}).status);
    EXPECT_EQ(head + a + "\n" + c, ReadFile(File()));
    EXPECT_EQ(0, Orvelle({"qt", "remove", "1"}).status);
    EXPECT_EQ(head + "\n" + c, ReadFile(File()));
}

TEST_F(Qt, RemoveOfWhatIsNotThere_ChangesNothing) {
    ASSERT_EQ(0, Add({"--class", "camera", "--make", "A", "--signature", One}).status);
    const std::string before = ReadFile(File());
    for (char const* const number : {"0", "2", "x", "-1", "99999999999999999999"}) {
        const Ended ended = Orvelle({"qt", "remove", "--", number});
        EXPECT_EQ(2, ended.status);
        EXPECT_EQ(std::string("orvelle: NUMBER: no signature ") + number + ": the database has 1\n", ended.err);
    }
    EXPECT_EQ(before, ReadFile(File()));
}

TEST_F(Qt, FileInUtf16_KeepsItsTexts) {
    std::filesystem::create_directories(Documents() + "/qt");
    const std::string line = std::string("SIG 1 ,\"\xc3\xbc\",\"\",\"\",\"") + One + "\",\"\",\"\",\"\",\"\"\n";
    const Ended encoded = RunProgram("iconv", {"-f", "UTF-8", "-t", "UTF-16"}, {{}, line, "", "", false});
    WriteFile(File(), encoded.out);
    ASSERT_TRUE(Contains(UserList(), "\r\nuser,1,camera,\xc3\xbc,")) << UserList();
    ASSERT_EQ(0, Add({"--class", "camera", "--make", "B", "--signature", Two}).status);
    EXPECT_EQ(line + "SIG 1 ,\"B\",\"\",\"\",\"" + Two + "\",\"\",\"\",\"\",\"\"\n", ReadFile(File()));
}

TEST_F(Qt, FileWithoutLineEnd_IsContinuedOnALineOfItsOwn) {
    std::filesystem::create_directories(Documents() + "/qt");
    WriteFile(File(), std::string("SIG 1 ,\"A\",\"\",\"\",\"") + One + "\",\"\",\"\",\"\",\"\"");
    ASSERT_EQ(0, Add({"--class", "camera", "--make", "B", "--signature", Two}).status);
    EXPECT_EQ(2u, CountOf(UserList(), "\r\nuser,"));
}

TEST_F(Qt, AddsAtOneTime_AreAllKept) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; ++i) {
        threads.emplace_back([this, i] {
            Add({"--class", "camera", "--make", "M" + std::to_string(i), "--signature", One});
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(6u, CountOf(UserList(), "\r\nuser,"));
}

TEST_F(Qt, UnwritablePlace_EndsWithFive) {
    std::filesystem::create_directories(Documents());
    WriteFile(Documents() + "/qt", "a file");
    const Ended ended = Add({"--class", "camera", "--make", "A", "--signature", One});
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: " + File() + ": can't be written\n", ended.err);
}

}  // namespace
