// SPDX-License-Identifier: Apache-2.0
// The compiled table of platform samples against what its generator makes of the readable files.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "orvcore/smscollection.h"
#include "tools/makesocial/samples.h"

namespace {

std::vector<int> NumbersOf(const makesocial::Data& data, const makesocial::Sample& record) {
    std::vector<int> numbers;
    for (const int number : record.Head()) numbers.push_back(number);
    for (const int step : data.tables[static_cast<std::size_t>(record.table)]) numbers.push_back(step);
    return numbers;
}

// The longest and the shortest longer side of each platform, modelled records among them.
std::map<std::string, std::pair<int, int>> SidesOf(const std::vector<makesocial::Sample>& records) {
    std::map<std::string, std::pair<int, int>> sides;
    for (const makesocial::Sample& record : records) {
        const int side = record.LongerSide();
        auto& least = sides.insert({record.group, {side, side}}).first->second;
        least = {std::min(least.first, side), std::max(least.second, side)};
    }
    return sides;
}

void ExpectEqual(const SocialMediaSignature& compiled, const makesocial::Data& data, const makesocial::Sample& made) {
    ASSERT_EQ(compiled.GetFile().utf8_string(), made.file);
    ASSERT_EQ(compiled.GetSocialName().utf8_string(), made.group) << made.file;
    ASSERT_EQ(compiled.GetDate().utf8_string(), made.date) << made.file;
    ASSERT_EQ(compiled.GetFeature(), NumbersOf(data, made)) << made.file;
}

}  // namespace

// One test, because making the table takes many seconds.
TEST(CompiledSocialTable, MadeAgain_IsTheSameAndWithinItsRules) {
    const makesocial::Data data = makesocial::ReadData(ORVELLE_SOURCE_DIR "/data");
    const std::vector<makesocial::Sample> records = makesocial::MakeTable(data);
    SMSCollection collection;
    ASSERT_EQ(collection.LoadInternalSignatures(), 6072);
    const std::vector<SocialMediaSignature>& compiled = collection.GetSignatures();
    ASSERT_EQ(records.size(), 6072u);
    for (std::size_t n = 0; n < records.size(); ++n) ExpectEqual(compiled[n], data, records[n]);

    std::set<std::pair<std::array<int, 8>, int>> files;
    for (const makesocial::Sample& sample : data.measured) files.insert({sample.Head(), sample.table});
    for (const makesocial::Sample& sample : data.others) files.insert({sample.Head(), sample.table});
    for (const makesocial::Sample& record : records) {
        EXPECT_EQ(record.isModelled, record.file.substr(0, 12) == "000000000000") << record.file;
        EXPECT_FALSE(record.isModelled && files.count({record.Head(), record.table}) != 0) << record.file;
    }
    const std::map<std::string, std::pair<int, int>> expected = {
        {"Facebook", {225, 2048}},  {"Flickr", {320, 2048}},   {"Google+", {640, 3264}},  {"Imgur", {640, 5184}},
        {"Instagram", {480, 1350}}, {"Telegram", {640, 2560}}, {"Tinypic", {1599, 1600}}, {"Tumblr", {640, 1707}},
        {"Twitter", {320, 2048}},   {"Whatsapp", {640, 1600}}};
    EXPECT_EQ(SidesOf(records), expected);
}
