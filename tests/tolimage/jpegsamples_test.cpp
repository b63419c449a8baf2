// SPDX-License-Identifier: Apache-2.0
// Real photographs, read here and by ExifTool. They stand outside the repository, in the folder that ORV_SAMPLES names.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "tolbase/file.h"
#include "tolimage/jpeginfo.h"

namespace {

// The standard output of ExifTool, started without a shell.
std::string RunExifTool(std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    int ends[2];
    if (pipe(ends) != 0) return "";
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], 1);
        close(ends[0]);
        execvp("exiftool", pointers.data());
        _exit(127);
    }
    close(ends[1]);
    std::string output;
    char block[4096];
    ssize_t got = 0;
    while ((got = read(ends[0], block, sizeof block)) > 0) output.append(block, static_cast<size_t>(got));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return output;
}

struct Facts {
    std::string path, type, digest, width, height, sampling;
};

// What ExifTool says of every JPEG among the samples.
std::vector<Facts> AskExifTool(std::string const& folder) {
    const std::string output =
        RunExifTool({"exiftool", "-q", "-q", "-r", "-T", "-FilePath", "-FileType", "-JPEGDigest#", "-File:ImageWidth#",
                     "-File:ImageHeight#", "-File:YCbCrSubSampling", folder});
    std::vector<Facts> all;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream cells(line);
        Facts facts;
        for (std::string* cell :
             {&facts.path, &facts.type, &facts.digest, &facts.width, &facts.height, &facts.sampling}) {
            std::getline(cells, *cell, '\t');
        }
        if (facts.type == "JPEG") all.push_back(facts);
    }
    return all;
}

class JpegSamples : public ::testing::Test {
protected:
    void SetUp() override {
        char const* folder = std::getenv("ORV_SAMPLES");
        if (folder == nullptr) GTEST_SKIP() << "ORV_SAMPLES is not set: no photographs to compare with ExifTool";
        m_facts = AskExifTool(folder);
        ASSERT_GT(m_facts.size(), 20U) << "too few JPEG files in " << folder;
    }
    static JpegInfo Read(Facts const& facts) {
        JpegInfo info;
        tcvJpegReadQuantizationAndHuffmanTables(PathFromBytes(facts.path), info, 2, true, true);
        return info;
    }
    std::vector<Facts> m_facts;
};

}  // namespace

TEST_F(JpegSamples, QtHash_IsExifToolsJpegDigest) {
    for (Facts const& facts : m_facts) {
        std::string digest = facts.digest.substr(0, facts.digest.find(':'));
        std::transform(digest.begin(), digest.end(), digest.begin(), [](unsigned char c) { return std::toupper(c); });
        if (digest == "-") continue;
        EXPECT_EQ(wxString(digest), Read(facts).QtHash) << facts.path;
    }
}

TEST_F(JpegSamples, SizeAndSampling_AreExifTools) {
    for (Facts const& facts : m_facts) {
        const JpegInfo info = Read(facts);
        if (facts.width != "-") {
            EXPECT_EQ(facts.width + "x" + facts.height, std::to_string(info.Width) + "x" + std::to_string(info.Height))
                << facts.path;
        }
        // "YCbCr4:2:0 (2 2)"
        if (facts.sampling.compare(0, 5, "YCbCr") != 0) continue;
        EXPECT_EQ(wxString(facts.sampling.substr(5, 5)), info.ChromaSubsampling) << facts.path;
    }
}
