// SPDX-License-Identifier: Apache-2.0
// What the pages under docs/ name has to exist: the tests that they give as a proof, and the pages that they link to.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kSource = ORVELLE_SOURCE_DIR;

std::string Text(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The first group of each match.
std::vector<std::string> Matches(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) found.push_back((*at)[1]);
    return found;
}

// "Suite.Name" of all tests, and "Suite.*" of all suites.
std::set<std::string> TestNames() {
    const std::regex test(R"re(TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\))re");
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(kSource / "tests")) {
        if (entry.path().extension() != ".cpp") continue;
        const std::string text = Text(entry.path());
        for (std::sregex_iterator at(text.begin(), text.end(), test), end; at != end; ++at) {
            names.insert((*at)[1].str() + "." + (*at)[2].str());
            names.insert((*at)[1].str() + ".*");
        }
    }
    return names;
}

}  // namespace

TEST(Documents, TestsThatSecurityNames_Exist) {
    const std::set<std::string> names = TestNames();
    const std::vector<std::string> named =
        Matches(Text(kSource / "docs/security.md"), R"re(`(\w+\.(?:\w+_\w+|\w+|\*))`)re");
    EXPECT_GT(named.size(), 40U);
    for (const std::string& name : named) EXPECT_EQ(1U, names.count(name)) << name;
}

TEST(Documents, LinksBetweenPages_LeadSomewhere) {
    std::vector<fs::path> pages = {kSource / "README.md"};
    for (const auto& entry : fs::directory_iterator(kSource / "docs")) {
        if (entry.path().extension() == ".md") pages.push_back(entry.path());
    }
    EXPECT_GT(pages.size(), 5U);
    for (const fs::path& page : pages) {
        for (const std::string& link : Matches(Text(page), R"re(\]\(([^)#\s]+)[^)]*\))re")) {
            if (link.find("://") != std::string::npos) continue;
            EXPECT_TRUE(fs::exists(page.parent_path() / link)) << page.filename() << " links to " << link;
        }
    }
}
