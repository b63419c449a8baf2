// SPDX-License-Identifier: Apache-2.0
// Photographs taken near a place.
#include "orvcore/translate.h"
#include "orvcore/webmediasearch.h"
#include "orvcore/webmediasearch_private.h"
#include "tolbase/parser.h"
#include "tolimage/crawler.h"

using orvsearch::NumberOf;
using orvsearch::TextOf;

namespace orvsearch {

VecVecString GeoTable(std::vector<Photo> const& photos, bool miles) {
    constexpr double MilesPerKilometre = 0.621371;
    VecVecString table;
    if (photos.empty()) return table;
    table.push_back({"#Id", "Web Photo Id", "Size", "Coordinate (Lat, Lon)",
                     wxString("Accuracy in ") + (miles ? "mi" : "km"), "Link"});
    for (Photo const& photo : photos) {
        auto const [latitude, longitude] = photo.GetPhotoLoc();
        double const accuracy = miles ? photo.GetAccuracy() * MilesPerKilometre : photo.GetAccuracy();
        table.push_back({ToString<std::uint64_t>(table.size()), photo.GetPhotoId(),
                         SizeText(photo.GetPhotoSize(PhotoSizeOriginal)),
                         OrvTranslate(FixedText(latitude) + ", " + FixedText(longitude)),
                         OrvTranslate(FixedText(accuracy)), photo.GetPhotoLink(PhotoSizeOriginal)});
        Trace::WritePhoto(photo);
    }
    return table;
}

}  // namespace orvsearch

VecVecString SearchGeoTagImage(VecParameter& params, int, wxString& error) {
    bool const miles = NumberOf(params, 5) != 0;
    GetGeoTagPhotoListManagerFlickr manager(TextOf(params, 0), TextOf(params, 1), TextOf(params, 2), TextOf(params, 3),
                                            ToString<int>(NumberOf(params, 4)), miles ? "mi" : "km");
    manager.RunThreadMngr();
    error = manager.GetErrorMsg();
    return orvsearch::GeoTable(manager.GetRcvdPhotoList(), miles);
}
