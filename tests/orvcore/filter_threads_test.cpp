// SPDX-License-Identifier: Apache-2.0
// An application that looks at results while the worker makes the next ones; to be run under the thread sanitizer.
#include <atomic>
#include <chrono>
#include <memory>
#include <set>
#include <thread>

#include "orvcore/commands.h"
#include "tests/orvcore/cachefilters.h"
#include "tests/orvcore/recordingfilter.h"
#include "tolbase/validator.h"

using support::CachedImageFilter;
using support::CachedPlotFilter;
using support::Number;
using support::RecordingFilter;

namespace {

// Enough pixels for a torn picture to be seen.
constexpr int Side = 160;

bool IsOneColour(Image picture) {
    if (!picture.IsOk()) return true;
    for (int y = 0; y < picture.Height(); ++y) {
        unsigned char const* row = picture.Data() + y * picture.Step();
        for (int x = 0; x < picture.Width() * 3; ++x)
            if (row[x] != picture.Data()[x % 3]) return false;
    }
    return true;
}

bool IsWholeCurve(OrvPlotData const& data) {
    if (data.x.empty()) return true;
    for (auto const& series : data.y) {
        if (series.size() != data.x.size()) return false;
        for (size_t i = 0; i < series.size(); ++i)
            if (series[i] - series[0] != (data.x[i] - data.x[0]) / 4) return false;
    }
    return true;
}

// Takes its time to take a value, so that others may see what stands before and behind it.
class SlowValidator : public ValidatorTyped<int> {
public:
    boost::any CheckedCopy(boost::any const& value) const override {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return ValidatorTyped<int>::CheckedCopy(value);
    }
    std::unique_ptr<Validator> Clone() const override { return std::make_unique<SlowValidator>(*this); }
};

Parameter SlowNumber(wxString const& name, int value) {
    return Parameter(name, "", ParameterTypeNumber, boost::any(value), std::make_shared<SlowValidator>());
}

class FilterThreads : public support::CacheEngine {
protected:
    // Runs the filter many times while another thread looks at it.
    void WhileLooking(OrvFilter* filter, std::function<bool()> const& look) {
        std::atomic<bool> done{false};
        std::atomic<int> looks{0};
        std::atomic<bool> whole{true};
        std::thread application([&] {
            while (!done) {
                if (!look()) whole = false;
                ++looks;
            }
        });
        for (int round = 0; round < 60; ++round) RunWith(filter, 1 + round % 5);
        done = true;
        application.join();
        EXPECT_TRUE(whole);
        EXPECT_GT(looks, 0);
    }
};

}  // namespace

TEST_F(FilterThreads, CopiesOfDisplayedPictures_AreWhole) {
    auto* filter = Add(new CachedImageFilter);
    Load(Png("a.png", support::Solid(Side, Side, {5, 6, 7})));
    Load(Png("b.png", support::Solid(Side, Side, {7, 6, 5})), Reference);
    WhileLooking(filter, [&] {
        bool whole = true;
        for (OrvFileId const id : {Evidence, Reference}) {
            whole = IsOneColour(filter->GetOutputImageDisplayedCopy(id)) && whole;
            whole = IsOneColour(filter->GetInputImageDisplayedCopy(id)) && whole;
        }
        return whole;
    });
}

TEST_F(FilterThreads, LockedDisplayedPictures_AreWhole) {
    auto* filter = Add(new CachedImageFilter("Picture", CachedImageFilter::Scale));
    Load(Png("a.png", support::Solid(Side, Side, {5, 6, 7})));
    WhileLooking(filter, [&] {
        {
            auto const output = filter->GetOutputImageDisplayed(Evidence);
            if (!IsOneColour(*output)) return false;
        }
        auto const input = filter->GetInputImageDisplayed(Evidence);
        return IsOneColour(*input);
    });
}

TEST_F(FilterThreads, CopiesOfPlots_AreWhole) {
    auto* filter = Add(new CachedPlotFilter);
    Load(Png("a.png", support::Solid(Side, Side, {5, 6, 7})));
    WhileLooking(filter, [&] { return IsWholeCurve(filter->GetPlotDataCopy(Evidence)); });
}

TEST_F(FilterThreads, LockedPlots_AreWhole) {
    auto* filter = Add(new CachedPlotFilter);
    Load(Png("a.png", support::Solid(Side, Side, {5, 6, 7})));
    WhileLooking(filter, [&] {
        auto const data = filter->GetPlotData(Evidence);
        return IsWholeCurve(*data);
    });
}

TEST_F(FilterThreads, CommandsMadeDuringARun_TakeTheParametersOfOneMoment) {
    auto* filter = Add(new RecordingFilter("Pair", {Number("a", 1), SlowNumber("b", 1)}));
    Load(Png("a.png", support::Solid(16, 8, {5, 6, 7})));
    context->SetActiveFilter(filter);
    std::atomic<bool> done{false};
    std::set<wxString> texts;
    std::thread application([&] {
        while (!done) {
            OrvCommandSetFileConfigure const command("", false, "", false, nullptr, {}, {}, -1);
            texts.insert(command.GetCommandLog().AfterLast(':'));
        }
    });
    for (int round = 0; round < 40; ++round) {
        VecParameter const input = {Number("a", round % 2 + 1), Number("b", round % 2 + 1)};
        Run([&] { iface->Configure(filter, -1, input, {}, false); });
    }
    done = true;
    application.join();
    EXPECT_EQ((std::set<wxString>{" 1-1", " 2-2"}), texts);
}

TEST_F(FilterThreads, CacheThatIsDeletedMeanwhile_ChangesNoResult) {
    auto* filter = Add(new CachedImageFilter);
    Load(Png("a.png", support::Solid(Side, Side, {5, 6, 7})));
    wxString const folder = Folder();
    std::atomic<bool> done{false};
    std::thread other([&] {
        while (!done) {
            filtercache::DeleteFolder(folder);
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
    });
    for (int round = 0; round < 100; ++round) {
        int const n = 1 + round % 5;
        RunWith(filter, n);
        EXPECT_EQ(support::ColourFor(n), support::PixelAt(filter->GetOutputImageDisplayedCopy(Evidence), 80, 80));
    }
    done = true;
    other.join();
}
