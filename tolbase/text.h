// SPDX-License-Identifier: Apache-2.0
// Texts and lists of texts, and where messages to the user go. All pure but the last group, which has a lock of its
// own: any thread.
#pragma once
#include <wx/string.h>
#include <wx/tokenzr.h>

#include <functional>
#include <string>

#include "tolbase/export.h"
#include "tolbase/types.h"

// Without white space at both ends.
ORV_API wxString Trim(const wxString& text);
// Joined, with the separator between the elements and none at the end.
ORV_API wxString CatVecString(const VecString& list, const wxString& separator);
// Rows joined with the row separator, the cells of each with the cell separator; none at the end.
ORV_API wxString CatVecVecString(const VecVecString& table, const wxString& cellSeparator,
                                 const wxString& rowSeparator);
// The tokens of a wxStringTokenizer in order; `asTheyAre` false trims each.
ORV_API VecString StringToVecString(const wxString& text, const wxString& delimiters, const wxStringTokenizerMode& mode,
                                    bool asTheyAre);
// The arguments up to the first empty one.
ORV_API VecString Strings(const wxString& s1, const wxString& s2, const wxString& s3, const wxString& s4,
                          const wxString& s5, const wxString& s6, const wxString& s7, const wxString& s8,
                          const wxString& s9, const wxString& s10);
// UTF-8; what is no character becomes U+FFFD. Unlike wxString's own conversions it never fails, and it leaves the
// string alone: two threads may read the same one.
ORV_API std::string TolToUtf8(const wxString& text);
// The inverse; bytes that are no UTF-8 are taken as ISO 8859-1.
ORV_API wxString TolFromUtf8(const std::string& bytes);
// & < > " ' as entities; control characters, which no page may hold, as U+FFFD (tab and line ends stay).
ORV_API wxString EscapeHtmlString(const wxString& text);
// Percent-encoded UTF-8; only letters, digits and - _ . ~ stay.
ORV_API wxString TolEscapeUrlString(const wxString& text);

using TolMessageHandler = std::function<void(const wxString& message, const wxString& title)>;
// Where TolMessageBox goes; an empty function restores the default, which writes "title: message" to the error output.
// The handler may be called from any thread, one call at a time in each thread.
ORV_API void TolSetMessageHandler(TolMessageHandler handler);
// Tells the user something that needs no answer. Never throws for a handler that does.
ORV_API void TolMessageBox(const wxString& message, const wxString& title);
