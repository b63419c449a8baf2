// SPDX-License-Identifier: Apache-2.0
#include "filters/registry.h"

#include <map>
#include <set>

#include "filters/panelfactory.h"
#include "orvcore/filterplot.h"
#include "tests/filters/filterengine.h"

namespace {

using support::EncodeJpeg;
using support::Ramp;

class AllFilters : public support::FilterEngine {
protected:
    AllFilters() : filters(AddAll()) {}

    // Runs every filter on the file; one that fails, where any may, has to say why.
    void RunAll(wxString const& path, OrvFileId id = Evidence, bool mayFail = false) {
        Load(path, id);
        for (OrvFilter* filter : filters) {
            SCOPED_TRACE(filter->GetName() + " " + path);
            Go(filter);
            if (!IsDone()) {
                EXPECT_TRUE(mayFail) << filter->GetErrorMessage();
                EXPECT_FALSE(filter->GetErrorMessage().empty());
                continue;
            }
            bool const isJpeg = context->IsJpeg(id);
            EXPECT_EQ(filter->IsOnlyForJpeg() && !isJpeg, filter->GetStatus(id) == OrvFilterConfiguration::Unsupported);
            Saved(filter);
        }
    }
    // The saved result of each enabled configuration of each filter, each under a name.
    std::map<wxString, std::string> Results() {
        std::map<wxString, std::string> results;
        for (OrvFilter* filter : filters) {
            for (OrvFilterConfiguration const& configuration : filter->GetEnabledConfigurations()) {
                Go(filter, configuration);
                EXPECT_TRUE(IsDone()) << filter->GetName() << filter->GetErrorMessage();
                results[filter->GetName() + "-" + GetParametersString(configuration, true)] = Saved(filter);
            }
        }
        return results;
    }

    std::vector<OrvFilter*> filters;
};

}  // namespace

TEST_F(AllFilters, Names_AreUniqueAndFitForFileNames) {
    std::set<wxString> names;
    for (OrvFilter const* filter : filters) {
        EXPECT_FALSE(filter->GetName().empty());
        EXPECT_EQ(CleanFileName(filter->GetName()), filter->GetName());
        // The list of configurations ends a name at a dash and takes "!" in front of it for its own.
        EXPECT_FALSE(filter->GetName().Contains("-") || filter->GetName().StartsWith("!"));
        EXPECT_TRUE(names.insert(filter->GetName().Lower()).second) << filter->GetName();
        EXPECT_EQ(filter, context->GetFilterFromName(filter->GetName()));
    }
}

TEST(FilterNumbers, Numbers_AreFixedAndUnique) {
    std::map<int, wxString> names;
    for (OrvNumberedFilter const& entry : MakeFilters()) {
        EXPECT_TRUE(names.emplace(entry.number, entry.filter->GetName()).second) << entry.number;
        delete entry.filter;
    }
    EXPECT_EQ("Original", names[0]);
    EXPECT_EQ("File Format", names[1]);
    EXPECT_EQ("EXIF", names[2]);
    EXPECT_EQ("JPEG Structure", names[3]);
    EXPECT_EQ("Hex Viewer", names[4]);
    EXPECT_EQ("Channels", names[7]);
    EXPECT_EQ("Histogram Equalisation", names[8]);
    EXPECT_EQ("JPEG Tables", names[12]);
    EXPECT_EQ("JPEG Huffman Tables", names[13]);
    EXPECT_EQ("JPEG Dimples", names[14]);
    EXPECT_EQ("Social Media Identification", names[15]);
}

TEST_F(AllFilters, Each_HasAPanelAGroupAndADescription) {
    for (OrvFilter const* filter : filters) {
        EXPECT_NE(nullptr, filter->GetAnalsyisFilterGui()) << filter->GetName();
        EXPECT_NE("Experimental", filter->GetAnalysisTypeString()) << filter->GetName();
        EXPECT_GT(filter->GetDescription().length(), 20U) << filter->GetName();
        EXPECT_TRUE(filter->GetDescription().EndsWith(".")) << filter->GetName();
    }
}

TEST_F(AllFilters, Parameters_AreDescribedAndWithinTheirRange) {
    for (OrvFilter const* filter : filters) {
        EXPECT_LE(filter->GetParametersInput().size(), 4U) << filter->GetName();
        for (Parameter parameter : filter->GetParametersInput()) {
            SCOPED_TRACE(filter->GetName() + " " + parameter.Name());
            EXPECT_FALSE(parameter.Name().empty());
            EXPECT_FALSE(parameter.GetDescription().empty());
            boost::any const value = parameter.GetAny();
            parameter.SetUnchecked(boost::any());
            EXPECT_TRUE(parameter.Set(value)) << "the default is refused";
        }
    }
}

TEST_F(AllFilters, Configurations_AreFewAndHoldAcceptedValues) {
    for (OrvFilter const* filter : filters) {
        EXPECT_GE(filter->GetConfigurationsSize(), 1U) << filter->GetName();
        EXPECT_LE(filter->GetConfigurationsSize(), 100U) << filter->GetName();
        EXPECT_GE(filter->GetEnabledConfigurations().size(), 1U) << filter->GetName();
        for (OrvFilterConfiguration const& configuration : filter->GetConfigurations()) {
            VecParameter accepted = filter->GetParametersInput();
            for (size_t i = 0; i < accepted.size(); ++i) accepted[i].Set(configuration[i]);
            EXPECT_TRUE(configuration.IsSameAs(accepted)) << filter->GetName();
        }
    }
}

TEST_F(AllFilters, EmptySlots_AreNoFailure) {
    for (OrvFilter* filter : filters) {
        Go(filter);
        EXPECT_TRUE(IsDone()) << filter->GetName();
        EXPECT_EQ(OrvFilterConfiguration::NotCalculated, filter->GetStatus(Evidence)) << filter->GetName();
    }
}

TEST_F(AllFilters, OrdinaryPictures_Pass) {
    RunAll(Jpeg("a.jpg"));
    RunAll(Save("a.png", Ramp(70, 50, IPL_DEPTH_8U, 3)));
}

TEST_F(AllFilters, OnePixel_Passes) {
    RunAll(Bytes("a.jpg", EncodeJpeg(1, 1)));
    RunAll(Save("a.png", Ramp(1, 1, IPL_DEPTH_8U, 3)));
}

TEST_F(AllFilters, ThinPictures_Pass) {
    RunAll(Bytes("a.jpg", EncodeJpeg(1, 20000)));
    RunAll(Save("a.png", Ramp(20000, 1, IPL_DEPTH_8U, 3)));
}

TEST_F(AllFilters, GreyPictures_Pass) {
    RunAll(Save("a.jpg", Ramp(70, 50, IPL_DEPTH_8U, 1)));
    RunAll(Save("a.png", Ramp(70, 50, IPL_DEPTH_8U, 1)));
}

TEST_F(AllFilters, DeepPicturesAndAlpha_Pass) {
    RunAll(Save("a.png", Ramp(70, 50, IPL_DEPTH_16U, 3)));
    RunAll(Save("b.png", Ramp(70, 50, IPL_DEPTH_8U, 4)));
    RunAll(Save("c.png", Ramp(70, 50, IPL_DEPTH_16U, 1)));
}

TEST_F(AllFilters, FourComponents_Pass) {
    RunAll(Bytes("a.jpg", support::EncodeCmykJpeg(70, 50)));
}

TEST_F(AllFilters, TruncatedJpeg_PassesOrIsRefusedWithAReason) {
    std::string const bytes = EncodeJpeg(200, 150);
    RunAll(Bytes("a.jpg", bytes.substr(0, bytes.size() / 2)), Evidence, true);
}

TEST_F(AllFilters, ReferenceAlone_Passes) {
    RunAll(Jpeg("a.jpg"), Reference);
}

TEST_F(AllFilters, TwoFilesOfDifferentSize_Pass) {
    Load(Jpeg("a.jpg", 40, 90), Reference);
    RunAll(Jpeg("b.jpg", 120, 30));
}

// With the results of one run in the cache and without any, each saved result has the same bytes.
TEST_F(AllFilters, CacheAndCalculation_GiveTheSameBytes) {
    ASSERT_EQ("png", context->GetCacheFormat());
    wxString const path = Jpeg("a.jpg", 120, 90);
    wxString const other = Jpeg("b.jpg", 40, 30, 5);
    Load(path);
    context->EnableCache(false);
    std::map<wxString, std::string> const fresh = Results();
    context->EnableCache(true);
    std::map<wxString, std::string> const stored = Results();
    Load(other);
    Results();
    Load(path);
    std::map<wxString, std::string> const reloaded = Results();
    EXPECT_GE(fresh.size(), filters.size());
    for (auto const& [name, bytes] : fresh) {
        EXPECT_TRUE(stored.at(name) == bytes) << name;
        EXPECT_TRUE(reloaded.at(name) == bytes) << name;
    }
}

TEST_F(AllFilters, PictureOfAnotherRun_ComesFromTheCache) {
    wxString const path = Jpeg("a.jpg", 120, 90);
    Load(path);
    for (OrvFilter* filter : filters) Go(filter);
    Load(Jpeg("b.jpg", 40, 30, 5));
    for (OrvFilter* filter : filters) Go(filter);
    Load(path);
    for (OrvFilter* filter : filters) {
        Go(filter);
        EXPECT_EQ(dynamic_cast<OrvFilterImage*>(filter) != nullptr || dynamic_cast<OrvFilterPlot*>(filter) != nullptr,
                  filter->ConfiguredFromCache(Evidence))
            << filter->GetName();
    }
}
