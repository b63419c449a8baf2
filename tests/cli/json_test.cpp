// SPDX-License-Identifier: Apache-2.0
// JSON results: read by independent programs, checked against the schemas that are published.
#include <filesystem>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class JsonResult : public CliTest {
protected:
    // What a Python expression over `v`, the parsed text, prints.
    std::string Ask(std::string const& json, std::string const& expression) const {
        const std::string file = Folder() + "/value.json";
        WriteFile(file, json);
        const std::string code =
            "import json,sys\nv=json.load(open(sys.argv[1],encoding='utf-8'))\nprint(" + expression + ")";
        const Ended ended = RunProgram("python3", {"-c", code, file}, Utf8());
        EXPECT_EQ("", ended.err) << json;
        return ended.out.empty() ? "" : ended.out.substr(0, ended.out.size() - 1);
    }

    static Surroundings Utf8() {
        Surroundings surroundings;
        surroundings.environment = {{"PYTHONIOENCODING", "utf-8"}, {"LC_ALL", "C.UTF-8"}};
        return surroundings;
    }

    // Empty where the text fits the schema.
    std::string Mismatch(std::string const& json, std::string const& schema) const {
        const std::string file = Folder() + "/value.json";
        WriteFile(file, json);
        const std::string code =
            "import json,sys,jsonschema\n"
            "s=json.load(open(sys.argv[2]))\n"
            "jsonschema.Draft202012Validator.check_schema(s)\n"
            "for e in jsonschema.Draft202012Validator(s).iter_errors(json.load(open(sys.argv[1]))): print(e.message)\n";
        const Ended ended =
            RunProgram("python3", {"-c", code, file, std::string(ORVELLE_SCHEMAS) + "/" + schema}, Utf8());
        return ended.out + ended.err;
    }
};

TEST_F(JsonResult, Info_FitsItsSchema) {
    const std::string photo = Photo("a.jpg", 1001, 751);
    EXPECT_EQ("", Mismatch(Orvelle({"info", photo, photo, "--format", "json"}).out, "info.schema.json"));
    EXPECT_EQ("", Mismatch(Orvelle({"info", "-x", photo, "--format", "json"}).out, "info.schema.json"));
    EXPECT_EQ("", Mismatch(Orvelle({"info", photo, "--format", "jsonl"}).out, "info.schema.json"));
    EXPECT_EQ("", Mismatch("[]", "info.schema.json"));
    EXPECT_NE("", Mismatch("[{}]", "info.schema.json"));
}

TEST_F(JsonResult, OtherCommands_FitTheirSchemas) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"qt", "add", "--class", "camera", photo}).status);
    EXPECT_EQ("", Mismatch(Orvelle({"qt", "match", photo, "--format", "json"}).out, "qt-match.schema.json"));
    EXPECT_EQ("", Mismatch(Orvelle({"qt", "list", "--database", "user", "--format", "json"}).out, "qt.schema.json"));
    EXPECT_EQ("", Mismatch(Orvelle({"qt", "list", "--database", "user", "--format", "jsonl"}).out, "qt.schema.json"));
    EXPECT_EQ("", Mismatch(Orvelle({"options", "list", "--format", "json"}).out, "options.schema.json"));
}

TEST_F(JsonResult, Filters_FitTheirSchema) {
    EXPECT_EQ("", Mismatch(Orvelle({"filters", "--format", "json"}).out, "filters.schema.json"));
    EXPECT_EQ("", Mismatch(Orvelle({"filters", "Channels", "--format", "json"}).out, "filters.schema.json"));
    EXPECT_EQ("", Mismatch(Orvelle({"filters", "Channels", "--format", "jsonl"}).out, "filters.schema.json"));
    EXPECT_NE("", Mismatch("{}", "filters.schema.json"));
}

TEST_F(JsonResult, FilterOfEachKind_FitsItsSchema) {
    const std::string photo = Photo("a.jpg", 1001, 751);
    const std::string target = Folder() + "/saved.png";
    for (std::vector<std::string> const& call : std::vector<std::vector<std::string>>{
             {"Original"}, {"Channels", "-o", target}, {"Histogram"}, {"File Format"}, {"Hex Viewer"}}) {
        std::vector<std::string> arguments = {"filter", call[0], photo, photo, "--format", "json"};
        arguments.insert(arguments.end(), call.begin() + 1, call.end());
        EXPECT_EQ("", Mismatch(Orvelle(arguments).out, "filter.schema.json")) << call[0];
    }
    EXPECT_NE("", Mismatch("{}", "filter.schema.json"));
}

TEST_F(JsonResult, Cache_FitsItsSchema) {
    const std::string photo = Photo("a.jpg");
    EXPECT_EQ("", Mismatch(Orvelle({"cache", "show", photo, "--format", "json"}).out, "cache.schema.json"));
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo}).status);
    EXPECT_EQ("", Mismatch(Orvelle({"cache", "show", photo, "--format", "json"}).out, "cache.schema.json"));
    EXPECT_EQ("", Mismatch(Orvelle({"cache", "show", photo, "--format", "jsonl"}).out, "cache.schema.json"));
    EXPECT_NE("", Mismatch("{}", "cache.schema.json"));
}

TEST_F(JsonResult, Info_NamesTheInput) {
    const std::string photo = Photo("a.jpg");
    const std::string json = Orvelle({"info", photo, "--format", "json"}).out;
    EXPECT_EQ("1", Ask(json, "len(v)"));
    EXPECT_EQ(photo, Ask(json, "v[0]['input']['path']"));
    EXPECT_EQ(std::to_string(std::filesystem::file_size(photo)), Ask(json, "v[0]['input']['bytes']"));
    EXPECT_EQ(RunProgram("sha256sum", {photo}).out.substr(0, 64), Ask(json, "v[0]['input']['sha256']"));
    EXPECT_EQ("False", Ask(json, "'path_bytes' in v[0]['input']"));
}

TEST_F(JsonResult, Rows_StandInTheirOrderWithStableKeys) {
    const std::string json = Orvelle({"info", "-x", Photo("a.jpg"), "--format", "json"}).out;
    EXPECT_EQ("42", Ask(json, "len(v[0]['result']['rows'])"));
    EXPECT_EQ("filename Filename a.jpg", Ask(json, "*v[0]['result']['rows'][0].values()"));
    EXPECT_EQ("image_encoded_size Image Encoded Size 640x480", Ask(json, "*v[0]['result']['rows'][4].values()"));
    EXPECT_EQ("number_of_photoshop_fields Number of Photoshop fields 0",
              Ask(json, "*v[0]['result']['rows'][19].values()"));
    EXPECT_EQ("sha512 SHA512", Ask(json, "*list(v[0]['result']['rows'][41].values())[:2]"));
    // A key is the title in lower case, so no two lists can have come apart.
    EXPECT_EQ("[]",
              Ask(json, "[r for r in v[0]['result']['rows'] if r['key'] != r['title'].lower().replace(' ', '_')]"));
}

TEST_F(JsonResult, ShortTable_HasThirtyRowsAndEveryWarning) {
    const std::string json = Orvelle({"info", Photo("a.jpg"), "--format", "json"}).out;
    EXPECT_EQ("30", Ask(json, "len(v[0]['result']['rows'])"));
    EXPECT_EQ("file_size", Ask(json, "[w['row'] for w in v[0]['warnings'] if w['key'] == 'file_size_small'][0]"));
    // A row counts once, however many findings it has.
    EXPECT_EQ("True", Ask(json, "len({w['row'] for w in v[0]['warnings']}) == sum(v[0]['counts'].values())"));
}

TEST_F(JsonResult, Rules_TellFailedPassedAndNotEvaluatedApart) {
    const std::string json = Orvelle({"info", Photo("a.jpg", 1001, 752), "--format", "json"}).out;
    const std::string rules = "{r['key']: r['status'] for r in v[0]['rules']}";
    EXPECT_EQ("27", Ask(json, "len(v[0]['rules'])"));
    EXPECT_EQ("failed", Ask(json, rules + "['odd_width']"));
    EXPECT_EQ("passed", Ask(json, rules + "['odd_height']"));
    EXPECT_EQ("not evaluated", Ask(json, rules + "['exif_missing']"));
    EXPECT_EQ("hard Odd width (1001 is not multiple of 4) image_encoded_size",
              Ask(json,
                  "*[(w['severity'], w['message'], w['row']) for w in v[0]['warnings'] if w['key'] == "
                  "'odd_width'][0]"));
}

TEST_F(JsonResult, PathNotInUtf8_AlsoStandsAsItsBytes) {
    const std::string photo = Photo("caf\xe9 1.jpg");
    const std::string json = Orvelle({"info", photo, "--format", "json"}).out;
    EXPECT_EQ("", Mismatch(json, "info.schema.json"));
    EXPECT_EQ("True", Ask(json, "v[0]['input']['path_bytes'].endswith('/caf%E9%201.jpg')"));
    EXPECT_EQ("True", Ask(json, "v[0]['input']['path'].endswith('/caf\\\\xe9 1.jpg')"));
}

TEST_F(JsonResult, HostileName_SurvivesParsing) {
    const std::string name = "q\"b\\n\n\t\x1b\xf0\x9f\x98\x80.jpg";
    const std::string json = Orvelle({"info", Photo(name), "--format", "json"}).out;
    EXPECT_EQ(Path(name), Ask(json, "v[0]['input']['path']"));
}

TEST_F(JsonResult, AllButRun_IsTheSameInEachRunAndLocale) {
    const std::string photo = Photo("\xc3\xbc.jpg", 641, 480);
    std::vector<std::string> seen;
    for (char const* const locale : {"C", "C.UTF-8", "de_DE.UTF-8"}) {
        Surroundings surroundings;
        surroundings.environment = {{"LC_ALL", locale}};
        const std::string json = Orvelle({"info", photo, "--format", "json"}, surroundings).out;
        seen.push_back(Ask(json, "[{k: x[k] for k in x if k != 'run'} for x in v]"));
    }
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[0], seen[2]);
}

TEST_F(JsonResult, Tool_NamesItsComponents) {
    const std::string json = Orvelle({"info", Photo("a.jpg"), "--format", "json"}).out;
    EXPECT_EQ("orvelle " ORVELLE_VERSION, Ask(json, "v[0]['tool']['name'] + ' ' + v[0]['tool']['version']"));
    const std::string exiftool = Lines(RunProgram("exiftool", {"-ver"}).out).at(0);
    EXPECT_EQ(exiftool, Ask(json, "v[0]['tool']['components']['ExifTool']"));
}

TEST_F(JsonResult, References_AreToldBySlot) {
    const std::string json = Orvelle({"info", Photo("e.jpg"), "--reference", Photo("r.jpg"), "--format", "json"}).out;
    EXPECT_EQ("['evidence', 'reference']", Ask(json, "[x['slot'] for x in v]"));
}

}  // namespace
