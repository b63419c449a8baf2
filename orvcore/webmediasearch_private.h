// SPDX-License-Identifier: Apache-2.0
// What the searches share: reading parameters, text forms of numbers, the trace of a camera search. Private to the
// engine; one search at a time.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tolbase/parameter.h"
#include "tolbase/types.h"
#include "tolimage/photo.h"

namespace orvsearch {

// The text of a parameter; empty where there is none. Texts as they are, all else as a reader sees it.
inline wxString TextOf(VecParameter const& params, std::size_t index) {
    if (index >= params.size()) return {};
    Parameter const& parameter = params[index];
    return parameter.Holds<wxString>() ? parameter.GetValue<wxString>() : parameter.ToReport();
}

// The number of a parameter; 0 where there is none.
inline int NumberOf(VecParameter const& params, std::size_t index) {
    return index < params.size() ? params[index].GetValue<int>() : 0;
}

// Six places behind the point, in every locale.
wxString FixedText(double number);
wxString SizeText(wxSize const& size);

// The trace file "flickr_log.txt" of the current folder. It is open only between Begin and End; writing goes nowhere at
// other times, and where it can't be opened.
class Trace {
public:
    // False if a search is running already.
    static bool Begin(wxString const& model);
    static void End();
    static void Write(char const* label, wxString const& text);
    static void WritePhoto(Photo const& photo);
};

// The table of a search by place; empty without photographs. Accuracies are given in miles if `miles` is set.
VecVecString GeoTable(std::vector<Photo> const& photos, bool miles);

}  // namespace orvsearch
