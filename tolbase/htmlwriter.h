// SPDX-License-Identifier: Apache-2.0
// Fragments of a self-contained HTML5 page: nothing is fetched from anywhere, no script. No state: any thread.
//
// Texts are taken as ready fragments, since callers nest them: pass what comes from a file or a user through
// EscapeHtmlString first. Two operations differ, because no caller nests anything in them: DoTrRedExcl escapes its
// cells, DoImg its source.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"
#include "tolbase/types.h"

class ORV_API HtmlWriter {
public:
    // The page's start with a link to a style sheet (none for an empty name) and a plain-text title; both are escaped.
    static wxString DoHeader(const wxString& styleSheet, const wxString& title);
    // The page's start with the content of the style sheet's file inside; one that can't be read is left out.
    static wxString DoHeaderInternalStyle(const wxString& styleSheetPath);
    static wxString DoFooter();
    // Levels 1 to 6, others are taken as the nearest. A non-empty anchor (plain text) becomes the heading's id.
    static wxString DoH(int level, const wxString& text, const wxString& anchor);
    static wxString DoP(const wxString& text);
    // Inline text that stands out, for warnings: class "warning", red and bold. An empty text gives nothing.
    static wxString DoSpan(const wxString& text);
    static wxString DoPre(const wxString& text);
    static wxString DoBr();
    static wxString DoHr();
    // `source` is a path beside or above the page, or a whole address. Width in pixels; 0 gives none.
    static wxString DoImg(const wxString& source, int width);
    static wxString DoStrong(const wxString& text);
    static wxString DoEm(const wxString& text);
    // "[...]" parts are emphasised, brackets included; an unclosed one is left as it is.
    static wxString EmFromBrackets(const wxString& text);
    // A list of the items.
    static wxString DoLi(const VecString& items);
    // A table around ready rows.
    static wxString DoTable(const wxString& rows);
    // A row of plain-text cells, escaped here. A cell that starts with "!" gets the class "hard" and stands in red, one
    // that starts with "?" the class "soft"; the mark itself stays. A cell of several lines is preformatted.
    // A row that begins with "#Id" is a header and gets the class "head".
    static wxString DoTrRedExcl(const VecString& cells);
};
