// SPDX-License-Identifier: Apache-2.0
// Where the web services are, and the user's keys for them.
//
// Threads: the settings are the process's own, with a lock: any thread. Ownership: plain values. The engine sets them
// from the program options; nothing here makes a request, and no key is ever written anywhere.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"

struct TolWebServices {
    wxString flickrEndpoint = "https://api.flickr.com/services/rest/";
    wxString flickrKey;
    // Custom Search JSON API. The search engine that it is to ask stands in the address' query:
    // ".../customsearch/v1?cx=ENGINE".
    wxString googleEndpoint = "https://www.googleapis.com/customsearch/v1";
    wxString googleKey;
    wxString tinEyeEndpoint = "https://api.tineye.com/rest/";
    wxString tinEyeKey;
    // The sightings service gives its address together with a key: there is none to begin with.
    wxString sightingsEndpoint;
};

ORV_API void SetTolWebServices(TolWebServices const& services);
ORV_API TolWebServices GetTolWebServices();

// The text with every occurrence of the secret, plain or percent-encoded, replaced by "***". Secrets of fewer than four
// characters are left: they are no keys, and would tear up every text.
ORV_API wxString TolHideSecret(wxString const& text, wxString const& secret);
// What may be shown of an address: scheme, host and path. Its query, its user and its password may be secret.
ORV_API wxString TolAddressForShow(wxString const& address);
