// SPDX-License-Identifier: Apache-2.0
// A photograph that a search has found and not yet judged. Private to this library; a plain value.
#pragma once
#include <map>

#include "tolimage/crawler.h"

struct GetPhotoListManager::Candidate {
    Photo photo;
    std::map<wxString, wxString> tags;  // "IFD0:Software"
    wxString error;                     // why its metadata couldn't be asked for
    bool unusable = false;              // something that every row needs is missing

    // Fills the photograph's camera from the tags.
    void TakeCamera() {
        auto const text = [this](char const* tag) {
            auto const found = tags.find(tag);
            return found == tags.end() ? wxString() : found->second;
        };
        photo.SetMake(text("IFD0:Make"));
        photo.SetModel(text("IFD0:Model"));
        photo.SetSoftware(text("IFD0:Software"));
    }
};
