// SPDX-License-Identifier: Apache-2.0
// All metadata of a file as free rows, and the names that give an editing program away.
//
// Threads: any. Ownership: plain values.
#pragma once
#include <wx/string.h>

#include <vector>

#include "tolbase/export.h"
#include "tolbase/namevaluedesc.h"
#include "tolbase/types.h"

// Appends the file's metadata: the same rows in the same order as ImageDetailsExifTool::Metadata, with ExifTool's
// family-0 group as the description. Throws as tcvLoadImageDetailsExifTool does; a missing file has none.
ORV_API void tcvLoadImageMetadata(wxString const& path, std::vector<NameValueDesc>& list);

// Keywords, in lower case, that stand in the Software field of files that an editing or a publishing program wrote.
// None of them is part of a firmware's name as cameras and phones write it.
ORV_API VecString GetKnownsSoftwareStrings();
