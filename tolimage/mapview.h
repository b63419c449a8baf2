// SPDX-License-Identifier: Apache-2.0
// Where on the web a file's picture, or one like it, is shown: the file itself is sent to the service.
//
// Threads: any; each call blocks until it is done. Ownership: plain values. Nothing throws. Requests and keys: as
// tolimage/crawler.h says.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"
#include "tolbase/types.h"

class ORV_API MapView {
public:
    // TinEye's commercial API: the file is posted to "search/". The table has a header, "#Id", "Domain", "Score",
    // "Width", "Height", "Format", "Image", "Page", "Crawl Date", and a row for each page that shows a match; it is the
    // header alone where nothing matches, and empty when the service couldn't be asked. Also writes `stem` +
    // "tineye.html".
    static VecVecString ShowTinEyeFileSearch(wxString const& evidence, wxString const& stem);
    // Google's picture search by file, the web detection of Cloud Vision: at its documented address where the Google
    // endpoint is the documented one, else posted to the endpoint itself. A non-empty text is also searched for among
    // pictures by Custom Search. Writes `stem` + "google.html" and gives 0; -1 when a service couldn't be asked or the
    // page couldn't be written.
    static int ShowGoogleFileSearch(wxString const& evidence, wxString const& stem, wxString const& text);
    // Why the last call failed; empty if it did not. Any thread.
    static wxString GetLastProblem();
};
