// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "orvcore/webmediasearch.h"
#include "orvcore/webmediasearch_private.h"
#include "tests/orvcore/catalogue.h"
#include "tests/support/fakeflickr.h"
#include "tests/support/tempdir.h"

using support::FakeFlickr;
using support::QueryField;

namespace {

VecParameter GeoParameters(int radius, int unit) {
    return VecParameter{
        CreateParameterString("Latitude", "", "45.5"),   CreateParameterString("Longitude", "", "9.25"),
        CreateParameterString("From", "", "2024-05-01"), CreateParameterString("To", "", ""),
        CreateParameterInt("Radius", "", radius),        CreateParameterOption("Unit", "", {"km", "mi"}, unit)};
}

Photo Placed(double accuracy) {
    Photo photo;
    photo.SetPhotoId("7");
    photo.SetPhotoLoc(45.5, -9.25);
    photo.SetAccuracy(accuracy);
    photo.SetPhotoFile(PhotoSizeOriginal, "https://example.org/7.jpg", wxSize(40, 30));
    return photo;
}

// The table of a search that finds one photograph, with the radius in a unit.
VecVecString SearchForOne(FakeFlickr& flickr, int unit) {
    flickr.photos.emplace_back();
    flickr.photos[0].id = "11";
    flickr.photos[0].place = "\"latitude\":45.51,\"longitude\":9.26,\"accuracy\":16,";
    VecParameter params = GeoParameters(5, unit);
    wxString error;
    VecVecString table = SearchGeoTagImage(params, 2, error);
    EXPECT_EQ("", error);
    return table;
}

}  // namespace

TEST(GeoTable, Kilometres_AreGivenAsTheyAre) {
    EXPECT_EQ((VecVecString{{"#Id", "Web Photo Id", "Size", "Coordinate (Lat, Lon)", "Accuracy in km", "Link"},
                            {"1", "7", "40x30", "45.500000, -9.250000", "10.000000", "https://example.org/7.jpg"}}),
              orvsearch::GeoTable({Placed(10.0)}, false));
}

TEST(GeoTable, Miles_AreConverted) {
    VecVecString const table = orvsearch::GeoTable({Placed(10.0)}, true);
    EXPECT_EQ("Accuracy in mi", table[0][4]);
    EXPECT_EQ("6.213710", table[1][4]);
}

TEST(GeoTable, Numbers_AreTheSameInEveryLocale) {
    char const* const locale = setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_EQ("45.500000, -9.250000", orvsearch::GeoTable({Placed(1e300)}, false)[1][3]);
    if (locale == nullptr) GTEST_SKIP() << "the locale de_DE.UTF-8 is not installed";
}

TEST(GeoTable, NoPhotograph_GivesNoHeader) {
    EXPECT_TRUE(orvsearch::GeoTable({}, true).empty());
}

TEST(GeoSearch, Parameters_GoToTheService) {
    FakeFlickr flickr;
    VecVecString const table = SearchForOne(flickr, 0);
    ASSERT_EQ(2U, table.size());
    EXPECT_EQ(
        (VecString{"1", "11", "4000x3000", "45.510000, 9.260000", "0.611496", "https://photos.example.org/11_o.jpg"}),
        table[1]);
    std::string const request = flickr.server.Request();
    EXPECT_EQ("45.5", QueryField(request, "lat"));
    EXPECT_EQ("5", QueryField(request, "radius"));
    EXPECT_EQ("km", QueryField(request, "radius_units"));
    EXPECT_EQ("", QueryField(request, "max_taken_date"));
}

TEST(GeoSearch, UnitOtherThanZero_IsMiles) {
    FakeFlickr flickr;
    VecParameter params = GeoParameters(5, 1);
    wxString error = "left over";
    EXPECT_TRUE(SearchGeoTagImage(params, 2, error).empty());
    EXPECT_EQ("", error) << "nothing found is no error";
    EXPECT_EQ("mi", QueryField(flickr.server.Request(), "radius_units"));
}

TEST(GeoSearch, AccuracyInMiles_IsConvertedOnce) {
    FakeFlickr flickr;
    VecVecString const table = SearchForOne(flickr, 1);
    ASSERT_EQ(2U, table.size());
    EXPECT_EQ("Accuracy in mi", table[0][4]);
    EXPECT_EQ("0.379966", table[1][4]);
}

TEST(GeoSearch, Failure_IsAsTheManagerTellsIt) {
    FakeFlickr flickr;
    VecParameter params = GeoParameters(50, 0);
    wxString error;
    EXPECT_TRUE(SearchGeoTagImage(params, 2, error).empty());
    EXPECT_EQ("Flickr: the radius must lie between 0 and 32 km.", error);
    EXPECT_EQ(0, flickr.server.Connections());
}

TEST(GeoSearch, Trace_IsNotWritten) {
    support::TempDir const dir;
    std::filesystem::current_path(dir.Path().ToStdString());
    FakeFlickr flickr;
    VecParameter params = GeoParameters(5, 0);
    wxString error;
    SearchGeoTagImage(params, 2, error);
    EXPECT_TRUE(std::filesystem::is_empty(dir.Path().ToStdString()));
    std::filesystem::current_path("/");
}
