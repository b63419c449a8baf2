// SPDX-License-Identifier: Apache-2.0
// Flickr's lists: cameras, photographs of a camera, photographs of a place.
#include "tolimage/crawler.h"

#include <gtest/gtest.h>

#include <ctime>

#include "tests/support/fakeflickr.h"
#include "tests/support/tempdir.h"
#include "tolbase/progress.h"

using support::FakeFlickr;
using support::FakePhoto;
using support::QueryField;

namespace {

VecString IdsOf(std::vector<Photo> const& photos) {
    VecString ids;
    for (Photo const& photo : photos) ids.push_back(photo.GetPhotoId());
    return ids;
}

FakePhoto Named(std::string const& id) {
    FakePhoto photo;
    photo.id = id;
    return photo;
}

GetPhotoListManagerFlickr CameraSearch(int count = 0, TagFilter const& filter = TagFilter()) {
    return {VecString{"canon", "eos 5d"}, "2017-7-14", filter, count};
}

char const* const Brands =
    "\"brands\":{\"brand\":[{\"id\":\"canon\",\"name\":\"Canon\"},{\"id\":\"sony_x\",\"name\":\"Sony Ericsson\"},"
    "{\"id\":\"\",\"name\":\"Nameless\"}]}";

}  // namespace

TEST(CameraList, Brands_AreOneRowInLowerCase) {
    FakeFlickr flickr;
    flickr.answers["flickr.cameras.getBrands"] = FakeFlickr::Ok(Brands);
    GetCameraListManager manager;
    manager.RunThreadMngr();
    EXPECT_EQ((VecVecString{{"canon", "sony ericsson"}}), manager.GetResults());
    EXPECT_EQ("", manager.GetErrorMsg());
}

TEST(CameraList, Failure_IsAnEmptyRowAndAnError) {
    FakeFlickr flickr;
    flickr.answers["flickr.cameras.getBrands"] = FakeFlickr::Fail(105, "Service currently unavailable");
    GetCameraListManager manager;
    manager.RunThreadMngr();
    EXPECT_EQ((VecVecString{{}}), manager.GetResults());
    EXPECT_EQ("Flickr: Service currently unavailable (105)", manager.GetErrorMsg());
}

TEST(CameraModels, Make_IsAskedByItsId) {
    FakeFlickr flickr;
    flickr.answers["flickr.cameras.getBrands"] = FakeFlickr::Ok(Brands);
    flickr.answers["flickr.cameras.getBrandModels"] = FakeFlickr::Ok(
        "\"cameras\":{\"brand\":\"x\",\"camera\":[{\"id\":\"a\",\"name\":{\"_content\":\"K750i\"}},"
        "{\"id\":\"b\",\"name\":\"Sony Ericsson W800\"}]}");
    GetCameraModelListManager manager({"sony ericsson"});
    manager.RunThreadMngr();
    EXPECT_EQ((VecVecString{{"sony ericsson k750i", "sony ericsson w800"}}), manager.GetResults());
    ASSERT_EQ(1U, flickr.Requests("flickr.cameras.getBrandModels").size());
    EXPECT_EQ("sony_x", QueryField(flickr.Requests("flickr.cameras.getBrandModels")[0], "brand"));
}

TEST(CameraModels, ManyMakes_AreARowEach) {
    FakeFlickr flickr;
    flickr.answers["flickr.cameras.getBrands"] = FakeFlickr::Ok(Brands);
    flickr.answers["flickr.cameras.getBrandModels"] = FakeFlickr::Ok("\"cameras\":{\"camera\":[{\"name\":\"m\"}]}");
    VecString makes;
    for (int i = 0; i < 9; ++i) makes.push_back("make" + wxString::FromUTF8(std::to_string(i)));
    GetCameraModelListManager manager(makes);
    manager.RunThreadMngr();
    VecVecString const results = manager.GetResults();
    ASSERT_EQ(9U, results.size());
    EXPECT_EQ((VecString{"make8 m"}), results[8]);
}

TEST(PhotoList, Photograph_IsGivenWithItsMetadata) {
    FakeFlickr flickr;
    flickr.photos = {Named("11")};
    flickr.photos[0].software = "Firmware 1.1";
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    ASSERT_EQ(1U, manager.GetRcvdPhotoList().size()) << manager.GetErrorMsg();
    Photo const photo = manager.GetRcvdPhotoList()[0];
    EXPECT_EQ("11", photo.GetPhotoId());
    EXPECT_EQ("owner@N01", photo.GetOwnerId());
    EXPECT_EQ("Canon", photo.GetMake());
    EXPECT_EQ("Canon EOS 5D", photo.GetModel());
    EXPECT_EQ("Firmware 1.1", photo.GetSoftware());
    EXPECT_EQ("1500000000", photo.GetUploadDate());
    EXPECT_EQ(wxSize(4000, 3000), photo.GetPhotoSize(PhotoSizeOriginal));
    EXPECT_EQ("https://photos.example.org/11_o.jpg", photo.GetPhotoLink(PhotoSizeOriginal));
    EXPECT_EQ((VecVecString{{"11"}}), manager.GetResults());
    EXPECT_EQ(1, manager.GetTotalNumPages());
}

TEST(PhotoList, Request_IsAsTheServiceDocumentsIt) {
    FakeFlickr flickr;
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    std::string const request = flickr.server.Request();
    EXPECT_EQ(0U, request.find("GET /services/rest/?method=flickr.photos.search&"));
    EXPECT_EQ("canon eos 5d", QueryField(request, "text"));
    EXPECT_EQ("json", QueryField(request, "format"));
    EXPECT_EQ("1", QueryField(request, "nojsoncallback"));
    std::tm day{};
    day.tm_year = 117;
    day.tm_mon = 6;
    day.tm_mday = 14;
    day.tm_isdst = -1;
    EXPECT_EQ(std::to_string(std::mktime(&day)), QueryField(request, "min_upload_date"));
    EXPECT_TRUE(manager.GetRcvdPhotoList().empty());
    EXPECT_EQ("", manager.GetErrorMsg()) << "nothing found is no error";
}

TEST(PhotoList, DayOutsideTheCalendar_IsNotSent) {
    for (char const* const day : {"1899-12-31", "10000-1-1", "2017-7", "2017-7-x", "day"}) {
        FakeFlickr flickr;
        GetPhotoListManagerFlickr manager({"canon", "canon eos 5d"}, day, TagFilter(), 0);
        manager.RunThreadMngrAlt();
        std::string const request = flickr.server.Request();
        EXPECT_NE(std::string::npos, request.find("flickr.photos.search")) << day;
        EXPECT_EQ(std::string::npos, request.find("min_upload_date=1")) << day;
        EXPECT_EQ("", QueryField(request, "min_upload_date")) << day;
    }
}

TEST(PhotoList, LastYearOfTheCalendar_IsSent) {
    ASSERT_EQ(0, setenv("TZ", "UTC", 1));
    FakeFlickr flickr;
    GetPhotoListManagerFlickr manager({"canon", "canon eos 5d"}, "9999-12-31", TagFilter(), 0);
    manager.RunThreadMngrAlt();
    EXPECT_EQ("253402214400", QueryField(flickr.server.Request(), "min_upload_date"));
}

TEST(PhotoList, ModelWithItsMake_IsSearchedOnce) {
    FakeFlickr flickr;
    GetPhotoListManagerFlickr manager({"lge", "lge nexus 4"}, "2017-7-14", TagFilter(), 0);
    manager.RunThreadMngrAlt();
    EXPECT_EQ("lge nexus 4", QueryField(flickr.server.Request(), "text"));
}

TEST(PhotoList, Pages_AreAllAsked) {
    FakeFlickr flickr;
    flickr.pageSize = 2;
    flickr.photos = {Named("1"), Named("2"), Named("3"), Named("4"), Named("5")};
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    EXPECT_EQ((VecString{"1", "2", "3", "4", "5"}), IdsOf(manager.GetRcvdPhotoList()));
    EXPECT_EQ(3, manager.GetTotalNumPages());
    EXPECT_EQ(3U, flickr.Requests("flickr.photos.search").size());
}

TEST(PhotoList, Count_EndsTheSearch) {
    FakeFlickr flickr;
    flickr.pageSize = 2;
    flickr.photos = {Named("1"), Named("2"), Named("3"), Named("4"), Named("5")};
    auto manager = CameraSearch(3);
    manager.RunThreadMngrAlt();
    EXPECT_EQ((VecString{"1", "2", "3"}), IdsOf(manager.GetRcvdPhotoList()));
    EXPECT_EQ(2U, flickr.Requests("flickr.photos.search").size());
}

TEST(PhotoList, LimitOfPhotographs_EndsTheSearch) {
    FakeFlickr flickr;
    flickr.pageSize = 2;
    SetTolLimit(TolLimit::WebPhotos, 3);
    flickr.photos = {Named("1"), Named("2"), Named("3"), Named("4"), Named("5")};
    auto manager = CameraSearch(1000);
    manager.RunThreadMngrAlt();
    EXPECT_EQ((VecString{"1", "2", "3"}), IdsOf(manager.GetRcvdPhotoList()));
}

TEST(PhotoList, PagesWithoutEnd_Stop) {
    FakeFlickr flickr;
    flickr.answers["flickr.photos.search"] = FakeFlickr::Ok(
        "\"photos\":{\"pages\":2000000000,\"photo\":[{\"id\":\"1\",\"url_o\":\"https://example.org/1.jpg\"}]}");
    SetTolLimit(TolLimit::WebPhotos, 5);
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    EXPECT_EQ((VecString{"1"}), IdsOf(manager.GetRcvdPhotoList())) << "one photograph told of on every page";
    EXPECT_GE(6U, flickr.Requests("flickr.photos.search").size());
}

TEST(PhotoList, Filter_LeavesOutWhatIsNotWanted) {
    FakeFlickr flickr;
    for (char const* id : {"good", "model", "size", "edited", "hidden", "small"}) flickr.photos.push_back(Named(id));
    flickr.photos[1].model = "Canon EOS 5D Mark II";
    flickr.photos[2].width = 3999;
    flickr.photos[3].software = "Adobe Photoshop";
    flickr.photos[4].hidesExif = true;
    flickr.photos[5].hasOriginal = false;
    TagFilter filter(TagFilterExclude, "IFD0", "Software", {"photoshop"});
    filter.SetFilterCamMakeCamModel("canon", "eos 5d");
    filter.SetFilterPhotoSize(4000, 3000);
    auto manager = CameraSearch(0, filter);
    manager.RunThreadMngrAlt();
    EXPECT_EQ((VecString{"good"}), IdsOf(manager.GetRcvdPhotoList()));
    EXPECT_EQ((VecVecString{{"good", "model", "size", "edited", "hidden", "small"}}), manager.GetResults());
    EXPECT_EQ("", manager.GetErrorMsg());
}

TEST(PhotoList, NoFilter_KeepsPhotographsWithHiddenMetadata) {
    FakeFlickr flickr;
    flickr.photos = {Named("1")};
    flickr.photos[0].hidesExif = true;
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    ASSERT_EQ(1U, manager.GetRcvdPhotoList().size());
    EXPECT_EQ("", manager.GetRcvdPhotoList()[0].GetModel());
}

TEST(PhotoList, PartsOfTheOriginal_MakeItsLink) {
    FakeFlickr flickr;
    flickr.photos = {Named("7")};
    flickr.photos[0].hasOriginal = false;
    flickr.photos[0].place =
        "\"server\":\"65535\",\"originalsecret\":\"abc\",\"originalformat\":\"jpg\",\"o_width\":\"800\","
        "\"o_height\":\"600\",";
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    ASSERT_EQ(1U, manager.GetRcvdPhotoList().size());
    EXPECT_EQ("https://live.staticflickr.com/65535/7_abc_o.jpg",
              manager.GetRcvdPhotoList()[0].GetPhotoLink(PhotoSizeOriginal));
    EXPECT_EQ(wxSize(800, 600), manager.GetRcvdPhotoList()[0].GetPhotoSize(PhotoSizeOriginal));
}

TEST(PhotoList, DateThatThePageLacks_IsAskedFor) {
    FakeFlickr flickr;
    flickr.photos = {Named("7")};
    flickr.photos[0].uploaded.clear();
    flickr.answers["flickr.photos.getInfo"] =
        FakeFlickr::Ok("\"photo\":{\"id\":\"7\",\"dateuploaded\":\"1400000000\"}");
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    ASSERT_EQ(1U, manager.GetRcvdPhotoList().size());
    EXPECT_EQ("1400000000", manager.GetRcvdPhotoList()[0].GetUploadDate());
}

TEST(PhotoList, SchemesOtherThanHttp_AreNoLinks) {
    FakeFlickr flickr;
    for (char const* link : {"file:///etc/passwd", "javascript:alert(1)", "gopher://localhost/"}) {
        flickr.photos.push_back(Named(std::to_string(flickr.photos.size())));
        flickr.photos.back().link = link;
    }
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    EXPECT_TRUE(manager.GetRcvdPhotoList().empty());
}

TEST(PhotoList, RunTwice_ForgetsTheFirst) {
    FakeFlickr flickr;
    flickr.photos = {Named("1")};
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    manager.RunThreadMngrAlt();
    EXPECT_EQ((VecString{"1"}), IdsOf(manager.GetRcvdPhotoList()));
    EXPECT_EQ((VecVecString{{"1"}}), manager.GetResults());
}

TEST(PhotoList, Abort_EndsTheSearch) {
    FakeFlickr flickr;
    flickr.photos = {Named("1")};
    tcvAbortProgress();
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    EXPECT_TRUE(manager.GetRcvdPhotoList().empty());
    EXPECT_EQ("The search was stopped.", manager.GetErrorMsg());
    EXPECT_EQ(0, flickr.server.Requests());
}

TEST(PhotoList, NoKey_SendsNothing) {
    FakeFlickr flickr;
    TolWebServices services = GetTolWebServices();
    services.flickrKey = "  ";
    SetTolWebServices(services);
    auto manager = CameraSearch();
    manager.RunThreadMngrAlt();
    EXPECT_EQ("Flickr: no key is set (program option \"Flickr API Key\" of the group \"Web Services\").",
              manager.GetErrorMsg());
    EXPECT_EQ(0, flickr.server.Connections());
}

TEST(GeoList, Place_IsAskedForAndRead) {
    FakeFlickr flickr;
    flickr.photos = {Named("1")};
    flickr.photos[0].place = "\"latitude\":\"45.5\",\"longitude\":-9.25,\"accuracy\":\"16\",";
    GetGeoTagPhotoListManagerFlickr manager("45.5", "-9.25", "2024-05-01", "2024-05-31", "5", "km");
    manager.RunThreadMngr();
    ASSERT_EQ(1U, manager.GetRcvdPhotoList().size()) << manager.GetErrorMsg();
    EXPECT_EQ(std::make_pair(45.5, -9.25), manager.GetRcvdPhotoList()[0].GetPhotoLoc());
    EXPECT_NEAR(0.611496, manager.GetRcvdPhotoList()[0].GetAccuracy(), 1e-6);
    std::string const request = flickr.server.Request();
    EXPECT_EQ("45.5", QueryField(request, "lat"));
    EXPECT_EQ("-9.25", QueryField(request, "lon"));
    EXPECT_EQ("2024-05-01", QueryField(request, "min_taken_date"));
    EXPECT_EQ("2024-05-31 23:59:59", QueryField(request, "max_taken_date"));
    EXPECT_EQ("5", QueryField(request, "radius"));
    EXPECT_EQ("km", QueryField(request, "radius_units"));
}

TEST(GeoList, PlaceThatThePageLacks_IsAskedFor) {
    FakeFlickr flickr;
    flickr.photos = {Named("1")};
    flickr.answers["flickr.photos.geo.getLocation"] = FakeFlickr::Ok(
        "\"photo\":{\"id\":\"1\",\"location\":{\"latitude\":1.5,\"longitude\":2.5,\"accuracy\":\"11\"}}");
    GetGeoTagPhotoListManagerFlickr manager("1", "2", "", "", "5", "mi");
    manager.RunThreadMngr();
    ASSERT_EQ(1U, manager.GetRcvdPhotoList().size());
    EXPECT_EQ(std::make_pair(1.5, 2.5), manager.GetRcvdPhotoList()[0].GetPhotoLoc());
}

TEST(GeoList, PhotographWithoutAPlace_IsLeftOut) {
    FakeFlickr flickr;
    flickr.photos = {Named("1")};
    flickr.answers["flickr.photos.geo.getLocation"] = FakeFlickr::Fail(2, "Photo has no location information");
    GetGeoTagPhotoListManagerFlickr manager("1", "2", "", "", "5", "km");
    manager.RunThreadMngr();
    EXPECT_TRUE(manager.GetRcvdPhotoList().empty());
    EXPECT_EQ("", manager.GetErrorMsg());
}

TEST(GeoList, WhatIsOutOfRange_SendsNothing) {
    FakeFlickr flickr;
    std::vector<VecString> const questions = {{"95", "0", "", "", "5", "km"},  {"0", "181", "", "", "5", "km"},
                                              {"x", "0", "", "", "5", "km"},   {"0", "0", "", "", "5", "yd"},
                                              {"0", "0", "", "", "33", "km"},  {"0", "0", "", "", "21", "mi"},
                                              {"0", "0", "", "", "0", "km"},   {"0", "0", "", "", "-1", "km"},
                                              {"nan", "0", "", "", "5", "km"}, {"0", "0", "yesterday", "", "5", "km"}};
    for (VecString const& q : questions) {
        GetGeoTagPhotoListManagerFlickr manager(q[0], q[1], q[2], q[3], q[4], q[5]);
        manager.RunThreadMngr();
        EXPECT_NE("", manager.GetErrorMsg()) << q[0] << q[1] << q[4];
    }
    EXPECT_EQ(0, flickr.server.Connections());
}
