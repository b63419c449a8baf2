// SPDX-License-Identifier: Apache-2.0
#include "tolcore/filelist.h"

#include <wx/filefn.h>

bool IsAConcatenationOfAllExistingFiles(wxString const& text, wxString const& separator, int leastCount) {
    int count = 0;
    wxString rest = text;
    for (bool more = true; more;) {
        size_t const end = separator.empty() ? wxString::npos : rest.find(separator);
        wxString const file = rest.substr(0, end);
        if (file.empty() || !wxFileExists(file)) return false;
        ++count;
        more = end != wxString::npos;
        if (more) rest = rest.substr(end + separator.length());
    }
    return count >= leastCount;
}
