// SPDX-License-Identifier: Apache-2.0
// Dependencies run one way: a library includes only what stands to its left in the list below.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kOrder = {"wxjson", "tolbase", "tolimage", "tolcore", "orvcore", "filters", "apps"};

// Place of a library in the order; -1 for what is none of the house's.
int Place(const std::string& name) {
    const auto found = std::find(kOrder.begin(), kOrder.end(), name);
    return found == kOrder.end() ? -1 : static_cast<int>(found - kOrder.begin());
}

// The lines of a text by `library` that include something to its right, or a file without its folder.
std::vector<std::string> WrongIncludes(const std::string& library, const std::string& text) {
    static const std::regex include(R"re(^\s*#\s*include\s*"([^"]+)")re");
    std::vector<std::string> wrong;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (!std::regex_search(line, match, include)) continue;
        const std::string path = match[1];
        const int place = Place(path.substr(0, path.find('/')));
        const bool bare = path.find('/') == std::string::npos;
        if (bare || place > Place(library)) wrong.push_back(line);
    }
    return wrong;
}

std::string Text(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool IsSource(const fs::path& path) {
    const std::string extension = path.extension().string();
    return extension == ".h" || extension == ".cpp" || extension == ".hpp";
}

}  // namespace

TEST(Dependencies, IncludeToTheRight_IsFound) {
    EXPECT_EQ(1u, WrongIncludes("tolbase", "#include \"orvcore/context.h\"\n").size());
    EXPECT_EQ(1u, WrongIncludes("orvcore", "  # include \"filters/filters.h\"\n").size());
    EXPECT_EQ(1u, WrongIncludes("tolimage", "#include \"jpeginfo.h\"\n").size());
}

TEST(Dependencies, IncludeToTheLeft_IsAllowed) {
    EXPECT_TRUE(WrongIncludes("orvcore", "#include \"tolbase/types.h\"\n#include <vector>\n").empty());
    EXPECT_TRUE(WrongIncludes("tolimage", "#include \"tolimage/jpeginfo.h\"\n").empty());
}

TEST(Dependencies, EveryLibrary_IncludesOnlyWhatIsToItsLeft) {
    int files = 0;
    for (const std::string& library : kOrder) {
        for (const fs::directory_entry& entry :
             fs::recursive_directory_iterator(fs::path(ORVELLE_SOURCE_DIR) / library)) {
            if (!entry.is_regular_file() || !IsSource(entry.path())) continue;
            ++files;
            for (const std::string& line : WrongIncludes(library, Text(entry.path())))
                ADD_FAILURE() << entry.path() << ": " << line;
        }
    }
    EXPECT_GT(files, 50) << "the source tree was not found";
}

// The names of the machine and of the way the work is done have no place in a source.
TEST(Dependencies, NoSource_NamesAMachinePath) {
    const std::regex machine(R"(/(home|root|work|Users)/[a-z])");
    for (const std::string& library : kOrder) {
        for (const fs::directory_entry& entry :
             fs::recursive_directory_iterator(fs::path(ORVELLE_SOURCE_DIR) / library)) {
            if (!entry.is_regular_file() || !IsSource(entry.path())) continue;
            EXPECT_FALSE(std::regex_search(Text(entry.path()), machine)) << entry.path();
        }
    }
}
