// SPDX-License-Identifier: Apache-2.0
// Real and hostile files through the command, against what independent programs say of them. The files stand outside
// the repository, in the folder that ORV_SAMPLES names.
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Samples : public CliTest {
protected:
    void SetUp() override {
        char const* const folder = std::getenv("ORV_SAMPLES");
        if (folder == nullptr) GTEST_SKIP() << "ORV_SAMPLES is not set: no real photographs to examine";
        m_samples = folder;
    }

    // Every file's result of the extended table, by its path.
    std::map<std::string, json> ExamineAll() const {
        const Ended ended = Orvelle({"--quiet", "info", "-r", "-x", "--format", "json", m_samples});
        // Some of the hostile files are refused, which is an input error and nothing worse.
        EXPECT_TRUE(ended.status == 0 || ended.status == 3) << ended.status << ended.err;
        std::map<std::string, json> results;
        for (json const& result : json::parse(ended.out)) results[result["input"]["path"]] = result;
        EXPECT_GT(results.size(), 50u);
        return results;
    }

    static std::string Value(json const& result, std::string const& title) {
        for (json const& row : result["result"]["rows"]) {
            if (row["title"] == title) return row["value"];
        }
        return "no row " + title;
    }

    static std::string FirstWord(std::string const& program, std::string const& path) {
        const std::string out = RunProgram(program, {"--", path}).out;
        const size_t from = out.rfind('\\', 0) == 0 ? 1 : 0;  // the sum programs mark an escaped name so
        return out.substr(from, out.find(' ') - from);
    }

    // ExifTool's values of the tags for every file, by its path; empty for a tag that a file lacks.
    std::map<std::string, std::vector<std::string>> Tags(std::vector<std::string> const& tags) const {
        std::vector<std::string> arguments = {"-T", "-f", "-m", "-q", "-r", "-Directory", "-FileName"};
        for (std::string const& tag : tags) arguments.push_back("-" + tag);
        arguments.push_back(m_samples);
        std::map<std::string, std::vector<std::string>> values;
        for (std::string const& line : Lines(RunProgram("exiftool", arguments).out)) {
            std::vector<std::string> cells(1);
            for (char c : line) {
                if (c == '\t') {
                    cells.emplace_back();
                } else {
                    cells.back() += c;
                }
            }
            if (cells.size() != tags.size() + 2) continue;
            std::vector<std::string>& row = values[cells[0] + "/" + cells[1]];
            for (size_t i = 2; i < cells.size(); ++i) row.push_back(cells[i] == "-" ? "" : cells[i]);
        }
        return values;
    }

    std::string m_samples;
};

TEST_F(Samples, Digests_AreThoseOfTheSystem) {
    const std::map<std::string, std::string> programs = {{"MD5", "md5sum"},
                                                         {"SHA1", "sha1sum"},
                                                         {"SHA256", "sha256sum"},
                                                         {"SHA384", "sha384sum"},
                                                         {"SHA512", "sha512sum"}};
    for (auto const& [path, result] : ExamineAll()) {
        for (auto const& [title, program] : programs) {
            EXPECT_EQ(FirstWord(program, path), Value(result, title)) << path;
        }
    }
}

// The EXIF tag where there is one, else what ExifTool gives for the name alone.
TEST_F(Samples, CameraAndDates_AreThoseOfExifTool) {
    const std::vector<std::string> titles = {"Make",       "Model",     "Software", "DateTimeOriginal",
                                             "CreateDate", "ModifyDate"};
    const auto tags =
        Tags({"IFD0:Make", "IFD0:Model", "IFD0:Software", "ExifIFD:DateTimeOriginal", "ExifIFD:CreateDate",
              "IFD0:ModifyDate", "Make", "Model", "Software", "DateTimeOriginal", "CreateDate", "ModifyDate"});
    int compared = 0;
    for (auto const& [path, result] : ExamineAll()) {
        const auto found = tags.find(path);
        if (Value(result, "Format") != "JPEG" || found == tags.end()) continue;
        ++compared;
        for (size_t i = 0; i < titles.size(); ++i) {
            std::string const& exif = found->second[i];
            EXPECT_EQ(exif.empty() ? found->second[i + titles.size()] : exif, Value(result, "Exif " + titles[i]))
                << path;
        }
    }
    EXPECT_GT(compared, 40);
}

// Of a file without a readable frame ExifTool gives no size; ours is then not compared.
TEST_F(Samples, SizeAndSubsampling_AreThoseOfExifTool) {
    const auto tags = Tags({"File:ImageWidth", "File:ImageHeight", "File:YCbCrSubSampling"});
    int compared = 0;
    for (auto const& [path, result] : ExamineAll()) {
        const auto found = tags.find(path);
        if (Value(result, "Format") != "JPEG" || found == tags.end() || found->second[0].empty()) continue;
        ++compared;
        EXPECT_EQ(found->second[0] + "x" + found->second[1], Value(result, "Image Encoded Size")) << path;
        // "YCbCr4:2:0 (2 2)" in ExifTool's words.
        std::string const& sampling = found->second[2];
        if (sampling.rfind("YCbCr", 0) == 0) {
            EXPECT_EQ(sampling.substr(5, sampling.find(' ') - 5), Value(result, "Jpeg Chroma Subsampling")) << path;
        }
    }
    EXPECT_GT(compared, 40);
}

}  // namespace
