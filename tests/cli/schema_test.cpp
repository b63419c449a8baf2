// SPDX-License-Identifier: Apache-2.0
// The JSON of batches, tables, bundles, projects and searches against the schemas that are published.
#include <filesystem>

#include "tests/cli/web.h"
#include "tests/support/pdfbuilder.h"

using namespace clitest;

namespace {

class Schema : public WebTest {
protected:
    // Empty where the text fits the schema.
    std::string Mismatch(std::string const& json, std::string const& schema) const {
        WriteFile(Folder() + "/value.json", json);
        const std::string code =
            "import json,sys,jsonschema\n"
            "s=json.load(open(sys.argv[2]))\n"
            "jsonschema.Draft202012Validator.check_schema(s)\n"
            "v=json.load(open(sys.argv[1],encoding='utf-8'))\n"
            "for e in jsonschema.Draft202012Validator(s).iter_errors(v): print(e.message)\n";
        const Ended ended = RunProgram("python3", {"-c", code, Folder() + "/value.json",
                                                   std::string(ORVELLE_SCHEMAS) + "/" + schema + ".schema.json"});
        return ended.out + ended.err;
    }
    // Each line of it.
    std::string MismatchOfLines(std::string const& lines, std::string const& schema) const {
        std::string found;
        for (std::string const& line : Lines(lines)) found += Mismatch(line, schema);
        return found;
    }
    // The command's json and jsonl.
    void Fits(std::vector<std::string> arguments, std::string const& schema) const {
        arguments.insert(arguments.end(), {"--format", "json"});
        const std::string json = Orvelle(arguments).out;
        EXPECT_EQ("", Mismatch(json, schema)) << arguments[0] << json;
        arguments.back() = "jsonl";
        const std::string lines = Orvelle(arguments).out;
        EXPECT_NE("", lines) << arguments[0];
        EXPECT_EQ("", MismatchOfLines(lines, schema)) << arguments[0];
    }
};

TEST_F(Schema, TablesOverManyFiles_Fit) {
    const std::string odd = Photo("f/odd.jpg", 1001, 751);
    Photo("f/a.jpg");
    Fits({"table", Path("f")}, "table");
    Fits({"table", Path("f"), "--status-only"}, "table");
    Fits({"multi", odd, Path("f")}, "multi");
    EXPECT_EQ("", Mismatch("[]", "table"));
    EXPECT_NE("", Mismatch("[{}]", "table"));
    EXPECT_NE("", Mismatch("{}", "multi"));
}

TEST_F(Schema, BatchAndBundle_Fit) {
    const std::string photo = Photo("caf\xe9.jpg");
    Fits({"batch", "--status", "--filter", "EXIF", "--filter", "Noise", photo}, "batch-status");
    const std::string report = Folder() + "/out/r.html";
    ASSERT_EQ(0, Orvelle({"batch", "--filter", "EXIF", "--output", report, photo}).status);
    EXPECT_EQ("", Mismatch(ReadFile(report + ".manifest.json"), "manifest"));
    EXPECT_TRUE(Contains(ReadFile(report + ".manifest.json"), "caf%E9.jpg-EXIF.html"));
    Fits({"verify", report + ".manifest.json"}, "verify");
    std::filesystem::remove(report);
    Fits({"verify", report + ".manifest.json"}, "verify");
    for (char const* const schema : {"manifest", "batch-status", "verify"}) EXPECT_NE("", Mismatch("{}", schema));
}

TEST_F(Schema, Carve_Fits) {
    Fits({"carve", Photo("a.jpg"), "--force", "--folder", Folder() + "/carved"}, "carve");
    EXPECT_NE("", Mismatch("{}", "carve"));
}

TEST_F(Schema, ProjectAndBookmarks_Fit) {
    const std::string project = Path("case.orv");
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"project", "new", project}).status);
    EXPECT_EQ("", Mismatch(ReadFile(project), "project"));
    ASSERT_EQ(0, Orvelle({"bookmark", "add", project, "--filter", "Channels", "--evidence", photo}).status);
    ASSERT_EQ(0, Orvelle({"bookmark", "add", project, "--filter", "Error Level Analysis", "--evidence", photo,
                          "--reference", photo, "--set", "Quality=85", "--note", "\xc3\xa9", "--status", "to check"})
                     .status);
    EXPECT_EQ("", Mismatch(ReadFile(project), "project"));
    Fits({"bookmark", "list", project}, "bookmark");
    std::filesystem::remove(photo);
    Fits({"project", "check", project}, "project-check");
    for (char const* const schema : {"project", "bookmark", "project-check"}) EXPECT_NE("", Mismatch("{}", schema));
}

TEST_F(Schema, PlugIn_Fits) {
    const std::string map = Write("map.json", "{\"" + Photo("a.jpg", 1001, 751) + "\":\"1\"}");
    EXPECT_EQ("", Mismatch(Orvelle({"plugin", "analysis", "--map", map}).out, "plugin-analysis"));
    EXPECT_EQ("", Mismatch(Orvelle({"plugin", "batch", "--filter", "File Format", "--map", map, "--output",
                                    Folder() + "/out/r.html"})
                               .out,
                           "plugin-batch"));
}

TEST_F(Schema, Searches_Fit) {
    support::FakeFlickr flickr;
    flickr.photos.resize(1);
    flickr.photos[0].id = "11";
    flickr.photos[0].place = "\"latitude\":45.51,\"longitude\":9.26,\"accuracy\":16,";
    Set("Flickr Endpoint", flickr.server.Url("/services/rest/"));
    const std::string key = Key("key-of-flickr");
    Fits({"search", "camera", "--make", "Canon", "--key-file", key}, "search");
    Fits({"search", "geo", "--lat", "45", "--lon", "9", "--key-file", key}, "search");
    Fits({"search", "geo", "--lat", "45", "--lon", "9", "--unit", "mi", "--key-file", key}, "search");
    support::WebServer server([](std::string const&) {
        return support::HttpAnswer("200 OK", R"({"results":[{"url":"https://example.org/b.jpg","width":null}]})");
    });
    Set("Sightings Endpoint", server.Url("/"));
    Fits({"search", "sightings", "--make", "Canon", "--key-file", key}, "search");
    EXPECT_EQ("", Mismatch("[]", "search"));
    EXPECT_NE("", Mismatch("[{}]", "search"));
}

}  // namespace
