// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/support/photo.h"
#include "tests/support/tempdir.h"
#include "tests/support/webserver.h"
#include "tolbase/limits.h"
#include "tolimage/crawler.h"
#include "tolimage/webservices.h"

using support::HttpAnswer;
using support::QueryField;
using support::WebReply;
using support::WebServer;

namespace {

// Plays the search and the site that has the pictures.
class Google : public ::testing::Test {
protected:
    Google() : server([this](std::string const& request) { return Answer(request); }) {
        TolWebServices services;
        services.googleEndpoint = wxString::FromUTF8(server.Url("/customsearch/v1?cx=engine"));
        services.googleKey = "key-of-google";
        SetTolWebServices(services);
        SetTolLimit(TolLimit::WebBackoffMs, 1);
    }
    WebReply Answer(std::string const& request) {
        if (request.find("GET /pictures/") == 0) return HttpAnswer("200 OK", picture);
        return answer.empty() ? Page(request) : answer;
    }
    std::string Page(std::string const& request) const {
        int const start = std::stoi(QueryField(request, "start"));
        std::string items;
        for (int i = start; i < start + 10 && i <= total; ++i)
            items += (items.empty() ? "" : ",") +
                     ("{\"link\":\"" + server.Url("/pictures/" + std::to_string(i) + ".jpg")) +
                     "\",\"displayLink\":\"example.org\",\"image\":{\"width\":4000,\"height\":3000}}";
        return HttpAnswer("200 OK", "{\"searchInformation\":{\"totalResults\":\"" + std::to_string(total) +
                                        "\"},\"items\":[" + items + "]}");
    }
    void Search(TagFilter const& filter = TagFilter(), int count = 0) {
        GetPhotoListManagerGoogle manager({"canon", "eos 5d"}, "2017-7-14", filter, count);
        manager.RunThreadMngrAlt();
        photos = manager.GetRcvdPhotoList();
        error = manager.GetErrorMsg();
    }

    int total = 1;
    std::string picture = "no picture";
    std::string answer;
    std::vector<Photo> photos;
    wxString error;
    WebServer server;
};

}  // namespace

TEST_F(Google, Picture_IsReadForItsCamera) {
    picture = support::WithExif(support::EncodeJpeg(64, 48), "Canon", "Canon EOS 5D");
    TagFilter filter;
    filter.SetFilterCamMakeCamModel("canon", "eos 5d");
    Search(filter);
    ASSERT_EQ(1U, photos.size()) << error;
    EXPECT_EQ("Canon EOS 5D", photos[0].GetModel());
    EXPECT_EQ("example.org", photos[0].GetOwnerId());
    EXPECT_EQ(wxSize(4000, 3000), photos[0].GetPhotoSize(PhotoSizeOriginal));
    EXPECT_EQ(32U, photos[0].GetPhotoId().length());
    EXPECT_EQ("", photos[0].GetUploadDate());
}

TEST_F(Google, Question_IsAsTheServiceDocumentsIt) {
    total = 0;
    Search();
    std::string const request = server.Request();
    EXPECT_EQ(0U, request.find("GET /customsearch/v1?cx=engine&key="));
    EXPECT_EQ("key-of-google", QueryField(request, "key"));
    EXPECT_EQ("canon eos 5d", QueryField(request, "q"));
    EXPECT_EQ("image", QueryField(request, "searchType"));
    EXPECT_EQ('d', QueryField(request, "dateRestrict").at(0));
    EXPECT_TRUE(photos.empty());
    EXPECT_EQ("", error);
}

TEST_F(Google, OtherCamera_IsLeftOut) {
    picture = support::WithExif(support::EncodeJpeg(64, 48), "Nikon", "D90x");
    TagFilter filter;
    filter.SetFilterCamMakeCamModel("canon", "eos 5d");
    Search(filter);
    EXPECT_TRUE(photos.empty());
    EXPECT_EQ("", error);
}

TEST_F(Google, Pages_EndWithTheHundredthPicture) {
    total = 1000;
    Search();
    EXPECT_EQ(100U, photos.size());
    EXPECT_EQ(110, server.Requests());
}

TEST_F(Google, LargePicture_IsReadInPart) {
    std::string const small = support::WithExif(support::EncodeJpeg(64, 48), "Canon", "Canon EOS 5D");
    picture = small + std::string(5000000, '\0');
    Search();
    ASSERT_EQ(1U, photos.size()) << error;
    EXPECT_EQ("Canon", photos[0].GetMake());
    EXPECT_NE(std::string::npos, server.Request().find("Range: bytes=0-262143\r\n"));
}

TEST_F(Google, Refusal_IsToldInItsWordsWithoutTheKey) {
    answer = HttpAnswer("400 Bad", "{\"error\":{\"code\":400,\"message\":\"API key key-of-google not valid.\"}}");
    Search();
    EXPECT_EQ("Google: API key *** not valid.", error);
}

TEST_F(Google, MissingEngine_IsHintedAt) {
    answer = HttpAnswer("400 Bad", "{\"error\":{\"message\":\"Invalid argument.\"}}");
    TolWebServices services = GetTolWebServices();
    services.googleEndpoint = wxString::FromUTF8(server.Url("/customsearch/v1"));
    SetTolWebServices(services);
    Search();
    EXPECT_EQ("Google: Invalid argument. The option \"Google Endpoint\" names no search engine (\"?cx=...\").", error);
}

TEST_F(Google, NoKey_SendsNothing) {
    SetTolWebServices(TolWebServices());
    Search();
    EXPECT_TRUE(error.Contains("Google API Key"));
    EXPECT_EQ(0, server.Connections());
}
