// SPDX-License-Identifier: Apache-2.0
#include "tolbase/htmlwriter.h"

#include <algorithm>

#include "tolbase/file.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"

namespace {

// The few rules that a page needs without its style sheet: a hard finding is red also where the sheet is missing, and a
// hash, which has no place to break at, pushes nothing off the page.
constexpr const char* OwnRules =
    "table { border-collapse: collapse; }\n"
    "td { border: 1px solid #d0d0d0; padding: 0.15em 0.5em; vertical-align: top; overflow-wrap: anywhere; }\n"
    "td:first-child, td.hard, td.soft, tr.head td, tr.head ~ tr td:nth-child(2) { overflow-wrap: normal; }\n"
    "tr.head td { font-weight: bold; background: #f0f0f0; }\n"
    "td pre { margin: 0; white-space: pre-wrap; }\n"
    "td.hard pre, td.soft pre { font: inherit; }\n"
    "td.hard, span.warning { color: #c00000; font-weight: bold; }\n"
    "td.soft { color: #9a6700; }\n";

wxString Start(const wxString& title, const wxString& style) {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + EscapeHtmlString(title) +
           "</title>\n<style>\n" + OwnRules + "</style>\n" + style + "</head>\n<body>\n";
}

wxString Element(const char* name, const wxString& content, const char* end = "") {
    return wxString("<") + name + ">" + content + "</" + name + ">" + end;
}

// A path as a page may refer to it: the characters that an address gives another meaning are encoded.
wxString PathAsAddress(const wxString& path) {
    if (path.Contains("://") || path.StartsWith("data:")) return path;
    wxString address;
    for (const wxUniChar c : path) {
        if (c == '%')
            address += "%25";
        else if (c == '#')
            address += "%23";
        else if (c == '?')
            address += "%3F";
        else
            address += c;
    }
    // "a:b.png" would be read as the scheme "a".
    const bool colon = address.BeforeFirst('/').Contains(":");
    return colon ? "./" + address : address;
}

}  // namespace

wxString HtmlWriter::DoHeader(const wxString& styleSheet, const wxString& title) {
    wxString link;
    if (!styleSheet.empty())
        link = "<link rel=\"stylesheet\" href=\"" + EscapeHtmlString(PathAsAddress(styleSheet)) + "\">\n";
    return Start(title, link);
}

wxString HtmlWriter::DoHeaderInternalStyle(const wxString& styleSheetPath) {
    wxString style = ReadFile(styleSheetPath);
    // Nothing in a style sheet may end its element.
    style.Replace("</", "<\\/");
    if (!style.empty()) style = "<style>\n" + style + "\n</style>\n";
    return Start(wxString(), style);
}

wxString HtmlWriter::DoFooter() {
    return "</body>\n</html>\n";
}

wxString HtmlWriter::DoH(int level, const wxString& text, const wxString& anchor) {
    const wxString name = "h" + ToString<int>(std::clamp(level, 1, 6));
    const wxString id = anchor.empty() ? wxString() : " id=\"" + EscapeHtmlString(anchor) + "\"";
    return "<" + name + id + ">" + text + "</" + name + ">\n";
}

wxString HtmlWriter::DoP(const wxString& text) {
    return Element("p", text, "\n");
}

wxString HtmlWriter::DoSpan(const wxString& text) {
    return text.empty() ? wxString() : "<span class=\"warning\">" + text + "</span>";
}

wxString HtmlWriter::DoPre(const wxString& text) {
    return Element("pre", text, "\n");
}
wxString HtmlWriter::DoBr() {
    return "<br>\n";
}
wxString HtmlWriter::DoHr() {
    return "<hr>\n";
}

wxString HtmlWriter::DoImg(const wxString& source, int width) {
    const wxString size = width > 0 ? " width=\"" + ToString<int>(width) + "\"" : wxString();
    return "<img src=\"" + EscapeHtmlString(PathAsAddress(source)) + "\"" + size + " alt=\"\">\n";
}

wxString HtmlWriter::DoStrong(const wxString& text) {
    return Element("strong", text);
}
wxString HtmlWriter::DoEm(const wxString& text) {
    return Element("em", text);
}

wxString HtmlWriter::EmFromBrackets(const wxString& text) {
    wxString result;
    std::size_t from = 0;
    while (true) {
        const std::size_t open = text.find('[', from);
        const std::size_t close = open == wxString::npos ? open : text.find(']', open);
        if (close == wxString::npos) return result + text.substr(from);
        result += text.substr(from, open - from) + DoEm(text.substr(open, close - open + 1));
        from = close + 1;
    }
}

wxString HtmlWriter::DoLi(const VecString& items) {
    wxString list = "<ul>\n";
    for (const wxString& item : items) list += Element("li", item, "\n");
    return list + "</ul>\n";
}

wxString HtmlWriter::DoTable(const wxString& rows) {
    return "<table>\n" + rows + "</table>\n";
}

wxString HtmlWriter::DoTrRedExcl(const VecString& cells) {
    // The one title that every table with a header begins with.
    const bool isHeader = !cells.empty() && cells[0] == "#Id";
    wxString row = isHeader ? "<tr class=\"head\">" : "<tr>";
    for (const wxString& cell : cells) {
        const char* attribute = cell.StartsWith("!")   ? " class=\"hard\""
                                : cell.StartsWith("?") ? " class=\"soft\""
                                                       : "";
        const wxString text = EscapeHtmlString(cell);
        row += wxString("<td") + attribute + ">" + (cell.Contains("\n") ? Element("pre", text) : text) + "</td>";
    }
    return row + "</tr>\n";
}
