// SPDX-License-Identifier: Apache-2.0
#include "examples/gridfilter.h"

#include "tests/filters/filterengine.h"

namespace {

class GridExample : public support::FilterEngine {};

// A picture of one row whose pixels have these grey values.
Image Row(std::vector<int> const& values) {
    Image picture = Image::Create(static_cast<int>(values.size()), 1, IPL_DEPTH_8U, 3);
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t c = 0; c < 3; ++c) picture.Data()[3 * i + c] = static_cast<unsigned char>(values[i]);
    }
    return picture;
}

std::string SourceOf(std::string const& name) {
    return support::ReadBytes(PathFromBytes(std::string(ORVELLE_SOURCE) + "/" + name));
}

}  // namespace

TEST_F(GridExample, Distance_IsThatOfThePixelsThatAreCompared) {
    auto* filter = Add<GridFilter>();
    Load(Save("row.png", Row({10, 20, 35, 5})));
    GoWith(filter, {2});
    ASSERT_TRUE(IsDone());
    VecParameter post = filter->GetParametersPostProcessing();
    ASSERT_EQ("Scale (0 = auto)", post[0].Name());
    post[0].Set(boost::any(1));
    Run([&] { iface->Configure(filter, -1, filter->GetParametersInput(), post, false); });
    const Image shown = filter->GetOutputImageDisplayedCopy(Evidence);
    ASSERT_EQ(4, shown.Width());
    // |35 - 10| and |5 - 20|; nothing stands two places to the left of the first two.
    EXPECT_EQ((std::vector<int>{0, 0, 25, 15}),
              (std::vector<int>{shown.Data()[0], shown.Data()[3], shown.Data()[6], shown.Data()[9]}));
}

TEST_F(GridExample, PictureNarrowerThanTheDistance_GivesBlack) {
    auto* filter = Add<GridFilter>();
    Load(Save("row.png", Row({10, 20})));
    Go(filter);
    EXPECT_TRUE(IsDone());
    const Image shown = filter->GetOutputImageDisplayedCopy(Evidence);
    EXPECT_EQ(0, shown.Data()[0] + shown.Data()[3]);
}

TEST(WritingAFilter, Page_ShowsTheExampleAsItIs) {
    const std::string page = SourceOf("docs/writing-a-filter.md");
    const std::string start = "```cpp\n";
    const std::size_t begin = page.find(start) + start.size();
    EXPECT_EQ(SourceOf("examples/gridfilter.h"), page.substr(begin, page.find("```", begin) - begin));
}
