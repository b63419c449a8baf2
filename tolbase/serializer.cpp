// SPDX-License-Identifier: Apache-2.0
#include "tolbase/serializer.h"

namespace {

wxString Reduced(const wxString& name) {
    const wxString passedOver(" _-");
    wxString reduced;
    for (const wxUniChar c : name)
        if (passedOver.find(c) == wxString::npos) reduced += c;
    return reduced.Lower();
}

}  // namespace

bool Serializer::AreNamesEquivalent(const wxString& left, const wxString& right) {
    return left == right || Reduced(left) == Reduced(right);
}
