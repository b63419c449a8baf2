// SPDX-License-Identifier: Apache-2.0
#include "tolimage/webservices.h"

#include <array>
#include <mutex>

#include "tolbase/text.h"

namespace {

std::mutex& Mutex() {
    static std::mutex mutex;
    return mutex;
}

TolWebServices& Held() {
    static TolWebServices services;
    return services;
}

// Texts of its own: a wxString is shared by no two threads.
TolWebServices CopyOf(TolWebServices const& from) {
    TolWebServices copy;
    copy.flickrEndpoint = from.flickrEndpoint.Clone();
    copy.flickrKey = from.flickrKey.Clone();
    copy.googleEndpoint = from.googleEndpoint.Clone();
    copy.googleKey = from.googleKey.Clone();
    copy.tinEyeEndpoint = from.tinEyeEndpoint.Clone();
    copy.tinEyeKey = from.tinEyeKey.Clone();
    copy.sightingsEndpoint = from.sightingsEndpoint.Clone();
    return copy;
}

}  // namespace

void SetTolWebServices(TolWebServices const& services) {
    const std::lock_guard<std::mutex> lock(Mutex());
    Held() = CopyOf(services);
}

TolWebServices GetTolWebServices() {
    const std::lock_guard<std::mutex> lock(Mutex());
    return CopyOf(Held());
}

wxString TolHideSecret(wxString const& text, wxString const& secret) {
    constexpr std::size_t ShortestKey = 4;
    wxString shown = text;
    for (wxString const& form : {secret, TolEscapeUrlString(secret)}) {
        if (form.length() >= ShortestKey) shown.Replace(form, "***");
    }
    return shown;
}

wxString TolAddressForShow(wxString const& address) {
    wxString shown = address.BeforeFirst('?').BeforeFirst('#');
    std::size_t const host = shown.find("://");
    if (host == wxString::npos) return shown;
    std::size_t const start = host + 3;
    std::size_t const slash = shown.find('/', start);
    std::size_t const at = shown.rfind('@', slash);
    if (at != wxString::npos && at >= start) shown.erase(start, at + 1 - start);
    return shown;
}
