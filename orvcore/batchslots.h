// SPDX-License-Identifier: Apache-2.0
// What all runs over many files do with the slots: load without ever crediting one file's facts to another, and put
// back what stood there. Worker thread only. Private to this library.
#pragma once
#include <wx/string.h>

#include "orvcore/context.h"
#include "tolbase/types.h"

// Notes what stands in both slots; Restore brings it back. The destructor does so too if an exception leaves the run.
class OrvSlotKeeper {
public:
    OrvSlotKeeper();
    ~OrvSlotKeeper();
    OrvSlotKeeper(OrvSlotKeeper const&) = delete;
    OrvSlotKeeper& operator=(OrvSlotKeeper const&) = delete;

    // Lowers the abort state, so that it doesn't stop the loading, and loads both files. One that has gone leaves its
    // slot empty.
    void Restore();

private:
    wxString m_names[2];
    bool m_restored = false;
};

// Empties the slot. Never throws.
void OrvEmptySlot(OrvFileId id);

// Empties the slot and loads the file into it. Empty on success, else why the slot is empty now. Never throws.
wxString OrvLoadAlone(wxString const& path, OrvFileId id);

// Asks for the metadata of the file behind the one at `index`, so that they are there when their turn comes.
void OrvPrefetchNext(VecString const& files, size_t index);

// The text in the user's language with the number in the place of its "%d".
wxString OrvProcessingFilesText(size_t count);
wxString OrvProcessingFileText(wxString const& path);

// A count as a total of the progress functions.
int OrvProgressTotal(size_t count);
