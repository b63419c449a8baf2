// SPDX-License-Identifier: Apache-2.0
// JSON text and files as values. Pure functions: any thread.
#pragma once
#include <wx/jsonreader.h>
#include <wx/jsonval.h>
#include <wx/jsonwriter.h>
#include <wx/string.h>

#include "tolbase/export.h"

// Parses with the tolerant flags. Throws TolException (82) with the place for a text that can't be parsed, an empty one
// too.
ORV_API wxJSONValue JsonFromText(const wxString& text);
// The same for a file in UTF-8; throws as well if it can't be read or is too large.
ORV_API wxJSONValue JsonFromFile(const wxString& path);
// The text form: `step` 0 gives the compact one on one line, above 0 the styled one with that many blanks a level.
ORV_API wxString JsonToText(const wxJSONValue& value, int step);
