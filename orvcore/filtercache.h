// SPDX-License-Identifier: Apache-2.0
// The files of one cache folder: how they are written, read, stamped and deleted so that neither a kill, a full disk,
// another program nor a planted file can make a result out of what is none. Private to the engine's sources.
//
// A file is written under a temporary name beside its place and renamed; a link that stands at its place is replaced,
// never followed. A folder that is itself a link is not used. Whoever stores or deletes results holds the folder's lock
// for itself, whoever reloads one shares it; the lock ends with its process, and on a file system that has none the
// renaming alone keeps every file whole.
//
// Threads: any, but for SetStepHook, which belongs to tests. Nothing here throws but for want of memory.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "orvcore/context.h"

class OrvFilter;

namespace filtercache {

// ---- files ----

// What a write is made of. A test's hook sees each before it is done and lets it fail by false.
enum class Step { Create, Write, Sync, Rename, Remove };
void SetStepHook(std::function<bool(Step)> hook);

// Whether the bytes are brought to the disk before they get their name. Needed where the content can't tell that it was
// cut off by a power failure.
enum class Sync { No, Yes };

// Replaces the file in one step. False, with the old file whole, where that can't be done.
bool WriteWholeFile(wxString const& path, std::string const& bytes, Sync sync);
// True if nothing stands there afterwards; removes a link itself.
bool RemoveFile(wxString const& path);
// True for a regular file, and not for a link to one.
bool IsPlainFile(wxString const& path);
bool IsLink(wxString const& path);
// True if a regular file has the content that its ending (".png", ".jpg") promises: for a PNG all chunks up to the last
// one, the picture data's last checksum among them; for a JPEG its first bytes.
bool IsWholePicture(wxString const& path);
// A new file for the copy of the examined file; -1 where that can't be made. `path` gets its name.
int CreateCopyFile(std::string const& folder, std::string& path);

// ---- folders ----

// Holds the lock of a folder. Waits for another holder, but neither for ever nor past an abort.
class FolderLock {
public:
    enum Kind { Shared, Exclusive };
    FolderLock(wxString const& folder, Kind kind);
    ~FolderLock();
    FolderLock(FolderLock const&) = delete;
    FolderLock& operator=(FolderLock const&) = delete;
    // False too for a folder that does not exist or is a link.
    bool IsHeld() const { return m_folder >= 0; }

private:
    bool TryLock(std::string const& path, int operation);

    int m_folder = -1;
};

// Removes the folder with all it holds, the status files first, so that what is left of a killed removal promises
// nothing. Follows no link.
void DeleteFolder(wxString const& folder);

// ---- stamp ----

// What made the results of a folder. Read once, compared by filter.
class Stamp {
public:
    // The stamp of this program and no filter.
    Stamp() = default;
    // That of a folder; not valid where it is missing, broken or of other versions of the engine and its decoders.
    explicit Stamp(wxString const& folder);

    bool IsValid() const { return m_valid; }
    // True if results of the filter were made by its present version.
    bool Covers(OrvFilter const& filter) const;
    void Enter(OrvFilter const& filter);
    bool Write(wxString const& folder) const;

private:
    bool m_valid = true;
    // Versions by name; those that are 1 stand nowhere.
    std::map<std::string, int> m_filters;
};

wxString StampPath(wxString const& folder);

// Makes the folder one whose results of this filter may be trusted: status files that others vouch for are removed, and
// the stamp is written anew, where it doesn't cover the filter. `prefix` begins the names of the filter's status files;
// empty for all. The caller holds the lock. False where the folder stays as it was.
bool Prepare(wxString const& folder, OrvFilter const& filter, wxString const& prefix);
// The same for all filters when a file has been loaded, together with the removal of what a killed program left. With
// the cache off a folder that holds results is left alone.
void Refresh(OrvFileId id, std::vector<OrvFilter*> const& filters, bool cacheEnabled);

}  // namespace filtercache
