// SPDX-License-Identifier: Apache-2.0
// Files, folders and paths. Any thread; SetAppDocumentsPath has a lock.
//
// File names are bytes. They become wxString as UTF-8, and a byte that is no UTF-8 becomes a private character that
// goes back to the same byte (PathFromBytes, PathToBytes). wxWidgets' own file functions do the same once this library
// is loaded, in every locale: any name that a listing gives can be opened.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <string>

#include "tolbase/export.h"
#include "tolbase/types.h"

// Sets wxWidgets' file-name conversion as told above. Runs by itself when the library is loaded; call it again after
// something else has changed the conversion.
ORV_API void TolInitFileNames();
ORV_API std::string PathToBytes(const wxString& path);
ORV_API wxString PathFromBytes(const std::string& bytes);

// The whole file as text: UTF-8, with or without its mark, else UTF-16 by its mark, else ISO 8859-1. Empty if it can't
// be read, is no regular file, or is larger than `TolMaxTextFileBytes`.
ORV_API wxString ReadFile(const wxString& path);
constexpr std::size_t TolMaxTextFileBytes = std::size_t{1} << 30;
// The whole file's bytes; false if it can't be read or has more than `maxBytes`.
ORV_API bool ReadFileBytes(const wxString& path, std::string& bytes, std::size_t maxBytes = TolMaxTextFileBytes);
// Replaces the file with the text in UTF-8, adding nothing. False if that can't be done; makes no folders.
ORV_API bool WriteFile(const wxString& path, const wxString& text);
// Replaces the file in one step: a temporary file beside it is written, brought to the disk and renamed. On failure
// (false) the old file is whole. A link is followed, the mode of an old file is kept.
ORV_API bool WriteFileAtomically(const wxString& path, const std::string& bytes);

// The paths of the regular files (links to them too) with one of the extensions ("jpg" or ".jpg", any case), sorted by
// path; the folder's name stands in front of each. Links to folders are not followed when recursing; folders that can't
// be read are passed over. Empty for an empty folder name.
ORV_API VecString GetAllFiles(const wxString& folder, const VecString& extensions, bool recursive);
// Makes the folder with its parents; true if it stands afterwards.
ORV_API bool CreateDirIfNotExists(const wxString& path);
// Moves a file into a folder, made if need be. A file that is there already is never replaced: the moved one then gets
// a number ("a (2).jpg"). Across file systems it is copied, compared and only then removed. On failure (false) the file
// stays where it was. `movedTo` gets the new path.
ORV_API bool MoveFileToFolder(const wxString& file, const wxString& folder, wxString* movedTo = nullptr);
// The name that MoveFileToFolder tries as its `number`-th: "a.jpg" for 1, "a (2).jpg" for 2.
ORV_API wxString NumberedFilename(const wxString& name, int number);
// Renames a file within its file system unless something stands at the new path, as one step; false, nothing changed,
// if it can't be done. `exists` tells whether that was because of what stands there.
ORV_API bool RenameFileToNew(const wxString& from, const wxString& to, bool& exists);

// What stands behind the last separator.
ORV_API wxString GetFilenameNoPath(const wxString& path);
// The path as seen from the folder `base`, climbing with ".." where it must. An empty path stays empty, a relative one
// is left as it is.
ORV_API wxString FilenameAbsoluteToRelative(const wxString& path, const wxString& base);
// The inverse. An absolute path and an empty one are left as they are.
ORV_API wxString FilenameRelativeToAbsolute(const wxString& path, const wxString& base);

// The folder of the application in the user's documents; no separator at its end. It may not exist yet.
ORV_API wxString GetAppDocumentsPath();
// Overrides it; an empty path restores the default ("Orvelle" in the documents folder).
ORV_API void SetAppDocumentsPath(const wxString& path);
ORV_API wxString GetUserDesktopPath();
// Opens an existing local file in the default browser, as a process of its own and without a shell. False if that could
// not be started.
ORV_API bool LaunchDefaultBrowserLocalFile(const wxString& path);
