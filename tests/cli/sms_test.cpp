// SPDX-License-Identifier: Apache-2.0
// orvelle sms: the user's file of platform signatures.
#include <sys/stat.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/cli/pictures.h"
#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Sms : public CliTest {
protected:
    std::string File() const { return Documents() + "/socialmediasig/usersms.json"; }
    void WriteDatabase(std::string const& bytes) const {
        std::filesystem::create_directories(Documents() + "/socialmediasig");
        WriteFile(File(), bytes);
    }
    std::string UserList() const { return Orvelle({"sms", "list", "--database", "user", "--format", "csv"}).out; }
    json Stored() const { return json::parse(ReadFile(File()))["SMSCollection"]; }
    Ended Add(std::string const& file, std::string const& name = "Chatty") const {
        return Orvelle({"sms", "add", file, "--name", name, "--date", "2021-05-06"});
    }
};

constexpr char const* Header = "Database,Number,Platform,Date,File,Hash\r\n";

TEST_F(Sms, Add_StoresTheFingerprint) {
    const std::string photo = Write("a.jpg", support::EncodeJpeg(64, 48, 50));
    const Ended ended = Add(photo);
    EXPECT_EQ(0, ended.status) << ended.err;
    const json stored = Stored();
    ASSERT_EQ(1u, stored.size());
    EXPECT_EQ(photo, stored[0]["File"]);
    EXPECT_EQ("Chatty", stored[0]["SocName"]);
    EXPECT_EQ("2021-05-06", stored[0]["Date"]);
    // Size, thumbnail, EXIF fields; SOI, APP0, two DQT, SOF0, four DHT, SOS, EOI; 4:2:0; table K.1 in zigzag order.
    const std::vector<int> head = {64, 48, 0, 0, 0, 11, 2, 0, 16, 11, 12, 14, 12, 10, 16, 14};
    const std::vector<int> vector = stored[0]["FeatVect"];
    ASSERT_EQ(48u, vector.size());
    EXPECT_EQ(head, std::vector<int>(vector.begin(), vector.begin() + 16));
    // Table K.2.
    EXPECT_EQ((std::vector<int>{17, 18, 18, 24, 21, 24, 47, 26}), std::vector<int>(vector.begin() + 40, vector.end()));
    EXPECT_EQ(0u, UserList().find(Header + std::string("user,1,Chatty,2021-05-06,") + photo + ","));
}

TEST_F(Sms, AddOfSeveral_TakesFoldersAndSkipsWhatIsThere) {
    Photo("set/b.jpg");
    const std::string a = Photo("set/a.jpg");
    ASSERT_EQ(0, Add(a).status);
    const Ended ended = Orvelle({"sms", "add", "--name", "Chatty", "--date", "2021-05-06", Path("set")});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("orvelle: " + a + ": warning: is there already, as number 1\n", ended.err);
    EXPECT_EQ(3u, Lines(UserList()).size());
    // The same file of another platform is another signature.
    EXPECT_EQ(0, Add(a, "Other").status);
    EXPECT_EQ(3u, Stored().size());
}

TEST_F(Sms, AddOfWhatHasNoFingerprint_Fails) {
    const std::string text = Write("a.jpg", "no picture");
    const std::string ppm = Write("a.ppm", DottedPpm(0, 0, 128));
    EXPECT_EQ(3, Add(text).status);
    EXPECT_EQ(3, Add(Path("none.jpg")).status);
    const Ended ended = Add(ppm);
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("orvelle: " + ppm + ": not a JPEG with a whole quantisation table\n", ended.err);
    EXPECT_FALSE(Exists(File()));
}

TEST_F(Sms, Add_RefusesOddNamesAndDates) {
    const std::string photo = Photo("a.jpg");
    for (auto const& [name, reason] : std::vector<std::pair<std::string, std::string>>{
             {"", "is empty"},
             {" x", "begins or ends with a blank"},
             {"a,b", "has a comma, which separates names in results"},
             {"a\nb", "has a line break, a control character or a mark that turns text"},
             {"a\xe2\x80\xae"
              "b",
              "has a line break, a control character or a mark that turns text"},
             {"a\xff", "is not UTF-8"}}) {
        const Ended ended = Add(photo, name);
        EXPECT_EQ(2, ended.status) << name;
        EXPECT_EQ("orvelle: --name: " + reason + "\n", ended.err);
    }
    for (char const* const date : {"2021-13-01", "2021-02-30", "21-02-03", "today", "2021/02/03"}) {
        EXPECT_EQ(2, Orvelle({"sms", "add", photo, "--name", "A", "--date", date}).status) << date;
    }
    EXPECT_EQ(2, Orvelle({"sms", "add", photo}).status);
    EXPECT_FALSE(Exists(File()));
    // Letters of any script, and quotes, are no harm.
    EXPECT_EQ(0, Add(photo, "\xd0\x92\xd0\x9a <\"&>").status);
    EXPECT_EQ("\xd0\x92\xd0\x9a <\"&>", Stored()[0]["SocName"]);
}

TEST_F(Sms, WithoutADate_TodayIsStored) {
    ASSERT_EQ(0, Orvelle({"sms", "add", Photo("a.jpg"), "--name", "Chatty"}).status);
    std::string today = RunProgram("date", {"+%F"}).out;
    today.pop_back();
    EXPECT_EQ(today, Stored()[0]["Date"]);
}

TEST_F(Sms, Remove_TakesTheNumberedOne) {
    for (char const* const name : {"a.jpg", "b.jpg", "c.jpg"}) ASSERT_EQ(0, Add(Photo(name)).status);
    EXPECT_EQ(0, Orvelle({"sms", "remove", "2"}).status);
    ASSERT_EQ(2u, Stored().size());
    EXPECT_EQ(Path("a.jpg"), Stored()[0]["File"]);
    EXPECT_EQ(Path("c.jpg"), Stored()[1]["File"]);
    EXPECT_EQ(0, Orvelle({"sms", "remove", "1"}).status);
    EXPECT_EQ(0, Orvelle({"sms", "remove", "1"}).status);
    EXPECT_EQ("null\n", ReadFile(File()).back() == '\n' ? ReadFile(File()) : ReadFile(File()) + "\n");
    EXPECT_EQ(Header, UserList());
}

TEST_F(Sms, RemoveOfTwins_TakesTheOneThatIsMeant) {
    json list = json::array();
    for (char const* const name : {"First", "Second"}) {
        list.push_back(
            {{"File", name}, {"SocName", name}, {"FeatVect", std::vector<int>(48, 5)}, {"FeatHash", "same"}});
    }
    WriteDatabase(json{{"SMSCollection", list}}.dump());
    EXPECT_EQ(0, Orvelle({"sms", "remove", "2"}).status);
    ASSERT_EQ(1u, Stored().size());
    EXPECT_EQ("First", Stored()[0]["File"]);
}

TEST_F(Sms, RemoveOfWhatIsNotThere_ChangesNothing) {
    ASSERT_EQ(0, Add(Photo("a.jpg")).status);
    const std::string before = ReadFile(File());
    for (char const* const number : {"0", "2", "x", "-1", "99999999999999999999"}) {
        const Ended ended = Orvelle({"sms", "remove", "--", number});
        EXPECT_EQ(2, ended.status);
        EXPECT_EQ(std::string("orvelle: NUMBER: no signature ") + number + ": the database has 1\n", ended.err);
    }
    EXPECT_EQ(before, ReadFile(File()));
}

TEST_F(Sms, List_HasTheCompiledSignatures) {
    const std::string out = Orvelle({"sms", "list", "--format", "csv"}).out;
    EXPECT_EQ(6072u, CountOf(out, "\r\ninternal,,"));
    const std::string whatsapp = Orvelle({"sms", "list", "--platform", "Whatsapp", "--format", "csv"}).out;
    EXPECT_EQ(688u, CountOf(whatsapp, "\r\ninternal,,Whatsapp,"));
    EXPECT_EQ(689u, Lines(whatsapp).size());
}

TEST_F(Sms, ExportAndImport_CarryThemOver) {
    ASSERT_EQ(0, Add(Photo("a.jpg")).status);
    ASSERT_EQ(0, Add(Photo("b.jpg")).status);
    const std::string file = Path("export.json");
    EXPECT_EQ(0, Orvelle({"sms", "export", "-o", file}).status);
    EXPECT_EQ(ReadFile(File()), ReadFile(file));
    EXPECT_EQ(5, Orvelle({"sms", "export", "-o", file}).status);
    ASSERT_EQ(0, Orvelle({"sms", "remove", "1"}).status);
    const Ended ended = Orvelle({"sms", "import", file});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("orvelle: " + Path("b.jpg") + ": warning: is there already, as number 1\n", ended.err);
    ASSERT_EQ(2u, Stored().size());
    EXPECT_EQ(Path("a.jpg"), Stored()[1]["File"]);
}

TEST_F(Sms, ImportOfWhatIsNone_ChangesNothing) {
    const std::string path = Write("x.json", "{\"SMSCollection\": [{\"File\": \"x\"}]}");
    EXPECT_EQ("orvelle: " + path + ": 1 of 1 entries are no signatures\n", Orvelle({"sms", "import", path}).err);
    EXPECT_EQ(3, Orvelle({"sms", "import", Path("none.json")}).status);
    const json odd = {{"File", "x"}, {"SocName", "a\nb"}, {"FeatVect", std::vector<int>(48, 5)}, {"FeatHash", "h"}};
    const std::string names = Write("y.json", json{{"SMSCollection", {odd}}}.dump());
    const Ended ended = Orvelle({"sms", "import", names});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("orvelle: " + names +
                  ": the platform's name \"a\\nb\" has a line break, a control character or a mark that turns text\n",
              ended.err);
    EXPECT_FALSE(Exists(File()));
}

TEST_F(Sms, BrokenFile_IsLeftAloneUnlessForced) {
    const std::string broken = "{\"SMSCollection\": [ {\"File\": }";
    WriteDatabase(broken);
    const std::string photo = Photo("a.jpg");
    const Ended refused = Add(photo);
    EXPECT_EQ(3, refused.status);
    EXPECT_TRUE(Contains(refused.err, "; nothing was changed\n")) << refused.err;
    EXPECT_EQ(3, Orvelle({"sms", "remove", "1"}).status);
    EXPECT_EQ(3, Orvelle({"sms", "export"}).status);
    EXPECT_EQ(3, Orvelle({"sms", "list", "--database", "user"}).status);
    EXPECT_EQ(broken, ReadFile(File()));
    EXPECT_EQ(0, Orvelle({"sms", "add", photo, "--name", "Chatty", "--force"}).status);
    EXPECT_EQ(1u, Stored().size());
    EXPECT_EQ(broken, ReadFile(File() + ".bak"));
}

TEST_F(Sms, AddsAtOneTime_AreAllKept) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        const std::string photo = Photo("p" + std::to_string(i) + ".jpg");
        threads.emplace_back([this, photo] { Add(photo); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(4u, Stored().size());
}

TEST_F(Sms, UnwritablePlace_EndsWithFive) {
    std::filesystem::create_directories(Documents());
    WriteFile(Documents() + "/socialmediasig", "a file");
    const Ended ended = Add(Photo("a.jpg"));
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: " + File() + ": can't be written\n", ended.err);
}

TEST_F(Sms, FileNameNotInUtf8_ComesBackAsItWas) {
    ASSERT_EQ(0, Add(Photo("caf\xe9.jpg")).status);
    EXPECT_TRUE(Contains(UserList(), "/caf\\xe9.jpg,")) << UserList();
    EXPECT_EQ(0, Add(Photo("b.jpg")).status);
    EXPECT_EQ(3u, Lines(UserList()).size());
}

}  // namespace
