// SPDX-License-Identifier: Apache-2.0
// Flickr's REST methods. Private to this library; any thread, each with its own connection.
#pragma once
#include <wx/jsonval.h>

#include <map>
#include <string>
#include <vector>

#include "tolimage/crawler_candidate.h"
#include "tolimage/crawler_request.h"

namespace tolimage {

struct FlickrAnswer {
    bool good = false;
    bool refused = false;  // the service answered, and said no for this item: hidden, or gone
    wxJSONValue root;
    std::string error;  // a sentence unless good
    std::string key;    // what no text of the answer may show
};

FlickrAnswer AskFlickr(CurlClass& connection, char const* method, WebFields const& fields);

// Ids and names of the makes, lower case.
struct FlickrBrand {
    wxString id;
    wxString name;
};
std::vector<FlickrBrand> AskFlickrBrands(CurlClass& connection, std::string& error);

// A page of photographs; false, and a sentence in `error`, for an answer that has none.
bool ReadFlickrPage(FlickrAnswer const& answer, std::vector<GetPhotoListManager::Candidate>& candidates, int& pageCount,
                    std::string& error);

}  // namespace tolimage
