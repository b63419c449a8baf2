// SPDX-License-Identifier: Apache-2.0
#include <wx/filefn.h>

#include <filesystem>
#include <sstream>

#include "orvcore/webmediasearch.h"
#include "tests/support/engine.h"
#include "tests/support/fakeflickr.h"

using support::FakeFlickr;
using support::FakePhoto;
using support::QueryField;

namespace {

FakePhoto Named(std::string const& id) {
    FakePhoto photo;
    photo.id = id;
    return photo;
}

// The parameters of a search for a Canon EOS 5D at Flickr, in their order.
VecParameter CameraParameters(wxString const& size = "0x0", int sizeChoice = 1) {
    Parameter sizes = CreateParameterOption("Size", "", {size, "Any"}, sizeChoice);
    return VecParameter{CreateParameterString("Make", "", "Canon"), CreateParameterString("Model", "", "EOS 5D"),
                        CreateParameterInt("Days", "", 30),         CreateParameterInt("Count", "", 100),
                        CreateParameterInt("Service", "", 0),       sizes,
                        CreateParameterInt("Keywords", "", 0),      CreateParameterInt("Camera", "", 0)};
}

// Runs in a folder of its own, where the trace goes.
class CameraSearch : public support::Engine {
protected:
    CameraSearch() { std::filesystem::current_path(dir.Path().ToStdString()); }
    ~CameraSearch() override { std::filesystem::current_path("/"); }

    VecVecString Search(VecParameter params = CameraParameters()) {
        StartOptions();
        UseFlickr();
        return SearchImageFromWeb(params, 0, error);
    }
    // The options have set the addresses; the test's server takes their place.
    void UseFlickr() {
        TolWebServices services = GetTolWebServices();
        services.flickrEndpoint = wxString::FromUTF8(flickr.server.Url("/"));
        services.flickrKey = "key-of-flickr";
        SetTolWebServices(services);
    }
    std::vector<std::string> Trace() const {
        std::istringstream text(support::ReadBytes(dir / "flickr_log.txt"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) lines.push_back(line);
        return lines;
    }

    FakeFlickr flickr;
    wxString error = "left over";
};

}  // namespace

TEST_F(CameraSearch, Photographs_MakeATable) {
    flickr.photos = {Named("11"), Named("12")};
    flickr.photos[1].uploaded = "soon";
    VecVecString const table = Search();
    ASSERT_EQ(3U, table.size()) << error;
    EXPECT_EQ(
        (VecString{"#Id", "Web Photo Id", "Owner Id", "Size", "Make", "Model", "Software", "Date Uploaded", "Link"}),
        table[0]);
    EXPECT_EQ((VecString{"1", "11", "owner@N01", "4000x3000", "Canon", "Canon EOS 5D", "", "2017-07-14 02:40:00 UTC",
                         "https://photos.example.org/11_o.jpg"}),
              table[1]);
    EXPECT_EQ("2", table[2][0]);
    EXPECT_EQ("", table[2][7]) << "a date that can't be read";
    EXPECT_EQ("", error);
}

TEST_F(CameraSearch, HugeDate_IsAnEmptyCell) {
    flickr.photos = {Named("1"), Named("2"), Named("3")};
    flickr.photos[0].uploaded = "9223372036854775807";
    flickr.photos[1].uploaded = "-5";
    flickr.photos[2].uploaded = "0";
    VecVecString const table = Search();
    ASSERT_EQ(4U, table.size());
    for (std::size_t row = 1; row < 4; ++row) EXPECT_EQ("", table[row][7]);
}

TEST_F(CameraSearch, NoPhotos_GiveNoHeader) {
    EXPECT_TRUE(Search().empty());
    EXPECT_EQ("", error);
}

TEST_F(CameraSearch, Failure_IsToldAndGivesNoHeader) {
    flickr.answers["flickr.photos.search"] = FakeFlickr::Fail(105, "Service currently unavailable");
    EXPECT_TRUE(Search().empty());
    EXPECT_EQ("Flickr: Service currently unavailable (105)", error);
}

TEST_F(CameraSearch, MakeAndModel_AreLowered) {
    Search();
    EXPECT_EQ("canon eos 5d", QueryField(flickr.server.Request(), "text"));
}

TEST_F(CameraSearch, Size_FiltersOnlyWithValueZero) {
    flickr.photos = {Named("1"), Named("2")};
    flickr.photos[1].width = 800;
    EXPECT_EQ(2U, Search(CameraParameters("4000x3000", 0)).size());
    EXPECT_EQ(3U, Search(CameraParameters("4000x3000", 1)).size());
    EXPECT_EQ(3U, Search(CameraParameters("large", 0)).size()) << "no size is no filter";
}

TEST_F(CameraSearch, Keywords_AreLeftOutUnlessToldElse) {
    flickr.photos = {Named("1"), Named("2")};
    flickr.photos[1].software = "Adobe Photoshop CS6 (Windows)";
    EXPECT_EQ(2U, Search().size()) << "the keywords are those of the program options";
    VecParameter params = CameraParameters();
    params[6].Set(boost::any(1));
    EXPECT_EQ(3U, Search(params).size());
}

TEST_F(CameraSearch, OtherCameras_AreLeftOutUnlessToldElse) {
    flickr.photos = {Named("1"), Named("2")};
    flickr.photos[1].model = "Canon EOS 5D Mark II";
    EXPECT_EQ(2U, Search().size());
    VecParameter params = CameraParameters();
    params[7].Set(boost::any(1));
    EXPECT_EQ(3U, Search(params).size());
}

TEST_F(CameraSearch, Trace_TellsWhatWasReceived) {
    flickr.photos = {Named("11"), Named("12")};
    flickr.photos[1].model = "Other";
    support::WriteBytes(dir / "flickr_log.txt", "an older and much longer trace\nof another search\n");
    Search();
    std::vector<std::string> const lines = Trace();
    ASSERT_EQ(9U, lines.size());
    EXPECT_EQ(0U, lines[0].find("Start Time 1"));
    EXPECT_EQ("Camera Model eos 5d", lines[1]);
    EXPECT_EQ((std::vector<std::string>{"Recvd Photo List ", "11", "12", "Recvd Filtered List ", "11"}),
              std::vector<std::string>(lines.begin() + 2, lines.begin() + 7));
    EXPECT_EQ(0U, lines[7].find("End Time 1"));
    EXPECT_EQ(0U, lines[8].find("Second Passed "));
}

TEST_F(CameraSearch, Trace_HoldsNoKey) {
    flickr.photos = {Named("11")};
    flickr.photos[0].link = "https://photos.example.org/a.jpg?api_key=key-of-flickr";
    VecVecString const table = Search();
    ASSERT_EQ(2U, table.size());
    EXPECT_EQ("https://photos.example.org/a.jpg?api_key=***", table[1][8]);
    EXPECT_EQ(std::string::npos, support::ReadBytes(dir / "flickr_log.txt").find("key-of-flickr"));
}

TEST_F(CameraSearch, TraceThatCannotBeOpened_ChangesNothing) {
    support::WriteBytes(dir / "precious", "keep");
    std::filesystem::create_symlink("precious", (dir / "flickr_log.txt").ToStdString());
    flickr.photos = {Named("11")};
    EXPECT_EQ(2U, Search().size());
    EXPECT_EQ("keep", support::ReadBytes(dir / "precious")) << "a link is not written through";
    std::filesystem::remove((dir / "flickr_log.txt").ToStdString());
    std::filesystem::create_directory((dir / "flickr_log.txt").ToStdString());
    EXPECT_EQ(2U, Search().size());
}

TEST_F(CameraSearch, ShortParameters_AreNoneAndZero) {
    StartOptions();
    UseFlickr();
    VecParameter params;
    EXPECT_TRUE(SearchImageFromWeb(params, 0, error).empty());
}

TEST_F(CameraSearch, Options_SetTheAddressesAndKeys) {
    StartOptions();
    VecVecParameter options = context->GetProgramOptions();
    options.Group("Web Services").Find("Flickr Endpoint")->Set(wxString::FromUTF8(flickr.server.Url("/from-options")));
    options.Group("Web Services").Find("Flickr API Key")->Set(" key-of-flickr\n");
    context->SetProgramOptions(options);
    VecParameter params = CameraParameters();
    SearchImageFromWeb(params, 0, error);
    EXPECT_EQ("", error);
    EXPECT_EQ(0U, flickr.server.Request().find("GET /from-options?method="));
    options.Group("Web Services").Find("Flickr Endpoint")->Set("");
    context->SetProgramOptions(options);
    EXPECT_EQ("https://api.flickr.com/services/rest/", GetTolWebServices().flickrEndpoint);
}

TEST_F(CameraSearch, Google_IsAskedForAnyOtherService) {
    StartOptions();
    TolWebServices services;
    services.googleEndpoint = wxString::FromUTF8(flickr.server.Url("/google?cx=1"));
    services.googleKey = "key-of-google";
    SetTolWebServices(services);
    VecParameter params = CameraParameters();
    params[4].Set(boost::any(1));
    EXPECT_TRUE(SearchImageFromWeb(params, 0, error).empty());
    EXPECT_EQ(0U, flickr.server.Request().find("GET /google?cx=1&key=key-of-google&q=canon"));
    EXPECT_EQ("Photo List ", Trace().at(2));
}

// Queries, all in lower case.

class CameraQuery : public ::testing::Test {
protected:
    void Brands(std::string const& names) {
        flickr.answers["flickr.cameras.getBrands"] = FakeFlickr::Ok("\"brands\":{\"brand\":[" + names + "]}");
    }
    void Models(std::string const& names) {
        flickr.answers["flickr.cameras.getBrandModels"] = FakeFlickr::Ok("\"cameras\":{\"camera\":[" + names + "]}");
    }
    FakeFlickr flickr;
};

TEST_F(CameraQuery, LgNexus4_IsKnownWithoutAsking) {
    EXPECT_EQ((VecString{"lge", "lge nexus 4"}), GetValidCameraMakeModel("lg nexus 4"));
    EXPECT_EQ(0, flickr.server.Connections());
}

TEST_F(CameraQuery, KnownModel_IsTheWholeEntry) {
    Brands("{\"id\":\"nikon\",\"name\":\"Nikon\"},{\"id\":\"canon\",\"name\":\"Canon\"}");
    Models("{\"name\":\"Canon EOS 300D\"},{\"name\":\"Canon EOS 5D\"}");
    EXPECT_EQ((VecString{"canon", "canon eos 5d"}), GetValidCameraMakeModel("canon eos 5d"));
}

TEST_F(CameraQuery, PartOfAModel_FindsTheFirstThatHoldsIt) {
    Brands("{\"id\":\"canon\",\"name\":\"Canon\"}");
    Models("{\"name\":\"Canon EOS 300D\"},{\"name\":\"Canon EOS 5D\"}");
    EXPECT_EQ((VecString{"canon", "canon eos 300d"}), GetValidCameraMakeModel("canon eos"));
}

TEST_F(CameraQuery, UnknownModel_IsWhatStandsBehindTheFirstBlank) {
    Brands("{\"id\":\"canon\",\"name\":\"Canon\"}");
    Models("{\"name\":\"Canon EOS 5D\"}");
    EXPECT_EQ((VecString{"canon", "powershot x"}), GetValidCameraMakeModel("canon powershot x"));
    EXPECT_EQ((VecString{"canon", ""}), GetValidCameraMakeModel("canon"));
}

TEST_F(CameraQuery, UnknownMake_IsTheLastEntryTried) {
    Brands("{\"id\":\"nikon\",\"name\":\"Nikon\"},{\"id\":\"canon\",\"name\":\"Canon\"}");
    EXPECT_EQ((VecString{"canon", "lens two"}), GetValidCameraMakeModel("unknown lens two"));
}

TEST_F(CameraQuery, NoService_TakesTheListOfItsOwn) {
    EXPECT_EQ((VecString{"sharp", "lens two"}), GetValidCameraMakeModel("unknown lens two"));
    EXPECT_EQ((VecString{"phase one", "one xf"}), GetValidCameraMakeModel("phase one xf"));
    EXPECT_EQ((VecString{"lg", "g4"}), GetValidCameraMakeModel("lg g4"));
    EXPECT_EQ((VecString{"sharp", "optio"}), GetValidCameraMakeModel("pentax optio"))
        << "its entry is joined to another";
}
