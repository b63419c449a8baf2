// SPDX-License-Identifier: Apache-2.0
// Google's Custom Search JSON API, for pictures. Private to this library; any thread, each with its own connection.
#pragma once
#include <string>
#include <vector>

#include "tolimage/crawler_candidate.h"
#include "tolimage/crawler_request.h"

namespace tolimage {

constexpr int GooglePagePictures = 10;
constexpr int GoogleMostPages = 10;

struct GooglePicture {
    wxString link;  // of the picture
    wxString page;  // that shows it; may be empty
    wxString site;  // "example.org"
    wxString title;
    wxSize size;
};

// A page of ten pictures, counted from 1. `days` 0 or less: of any age. False, and a sentence in `error`, if there was
// no answer.
bool AskGooglePictures(CurlClass& connection, wxString const& words, int days, int page,
                       std::vector<GooglePicture>& pictures, int& pageCount, std::string& error);

// The sentence of an answer of Google's that is none: its own message where it has one.
std::string GoogleError(WebAnswer const& answer, std::string const& key);

// The service's key; empty, and a sentence in `error`, if none is set.
std::string GoogleKey(std::string& error);

}  // namespace tolimage
