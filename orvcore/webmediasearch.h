// SPDX-License-Identifier: Apache-2.0
// Searches of public services for photographs, and their download. Requests go out only from here, and only when one of
// these functions is called. Addresses and keys are the program options of the group "Web Services".
//
// Threads: one search at a time, on the worker thread; each blocks until it is done. Tables are plain values: the first
// row is the header, and a search that found nothing gives no row at all.
#pragma once
#include <wx/string.h>

#include <vector>

#include "tolbase/export.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"

// Photographs of a camera. Parameters: 0 make, 1 model, 2 days back from now, 3 how many photographs (0 or less: up to
// the limit "web-photos"), 4 service (0 Flickr, else Google), 5 size ("4000x3000"; counts if its number is 0), 6
// whether software keywords are excluded (0: they are), 7 whether make and model have to match the metadata (0: they
// have). `action` isn't looked at; `error` tells what went wrong. Columns: #Id, Web Photo Id, Owner Id, Size, Make,
// Model, Software, Date Uploaded, Link. Writes the trace file "flickr_log.txt" into the current folder; no key goes in.
ORV_API VecVecString SearchImageFromWeb(VecParameter& params, int action, wxString& error);

// Make and model that the photo service knows for a query in lower case, such as "canon eos 5d".
ORV_API VecString GetValidCameraMakeModel(wxString const& query);

// Photographs taken near a place. Parameters: 0 latitude, 1 longitude, 2 first and 3 last day ("2024-05-31" or empty),
// all texts; 4 radius, 5 unit (0 kilometres, else miles). Columns: #Id, Web Photo Id, Size, Coordinate (Lat, Lon),
// Accuracy in km (or mi), Link.
ORV_API VecVecString SearchGeoTagImage(VecParameter& params, int action, wxString& error);

// Sightings of pictures with given camera data. Parameters: 0 the user's key, 1 make, 2 model, 3 software ("Any
// Software" or empty: any), 4 hash of the quantisation tables ("Any QT" or empty: any), 5 how many results, 6
// resolution
// ("4000x3000" or empty). Throws TolException (82) when the service couldn't be asked or refuses the key; `error` is
// not touched. An answer that can't be read gives no row and no exception: GetSightingsProblem tells. Columns: Id,
// Filename, Make, Model, Software, Width, Height, url. No cell holds the key.
ORV_API VecVecString SearchImageOnCameraForensics(VecParameter& params, int action, wxString& error);
// Why the last sightings search that threw nothing has no rows; empty if the service found none. Any thread.
ORV_API wxString GetSightingsProblem();

// What became of one download.
struct OrvDownloadResult {
    wxString id;
    wxString link;
    wxString file;        // the path of the file; empty if it failed
    wxString error;       // why it failed; empty if it did not
    bool exists = false;  // it failed because a file of that name is there
};

// Downloads photographs: `list` holds pairs of id and link, each saved as the id and the link's extension in `folder`,
// which is made if need be. Nothing is replaced, a failed one is not tried again, and after more than three failures in
// a row the rest is left out. `error` is the last one's. Leaves the abort state raised.
ORV_API void DownloadImageFromWeb(VecString& list, wxString& folder, wxString& error);
// The same; files of that name are replaced if `overwrite` is set.
ORV_API void DownloadImageFromWeb(VecString& list, wxString& folder, wxString& error, bool overwrite);
// What became of each item of the last call, in order; those that were left out are missing. Any thread.
ORV_API std::vector<OrvDownloadResult> GetDownloadResults();
