// SPDX-License-Identifier: Apache-2.0
// Escaping for HTML pages and addresses.
#include <algorithm>

#include "tests/fuzz/target.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace fuzz {

namespace {

bool HoldsAny(wxString const& text, char const* characters) {
    return std::any_of(text.begin(), text.end(), [&](wxUniChar c) {
        return c.GetValue() < 0x80 &&
               std::string(characters).find(static_cast<char>(c.GetValue())) != std::string::npos;
    });
}

// Undoes the five entities.
wxString Plain(wxString text) {
    for (auto const& [entity, character] : {std::pair<char const*, char const*>{"&lt;", "<"},
                                            {"&gt;", ">"},
                                            {"&quot;", "\""},
                                            {"&#39;", "'"},
                                            {"&amp;", "&"}}) {
        text.Replace(entity, character);
    }
    return text;
}

wxString WithoutControls(wxString const& text) {
    wxString clean;
    for (const wxUniChar c : text) {
        const wxUint32 code = c.GetValue();
        bool const control = (code < 0x20 && code != '\t' && code != '\n' && code != '\r') ||
                             (code >= 0x7F && code < 0xA0) || (code >= 0xD800 && code < 0xE000);
        clean += control ? wxUniChar(0xFFFD) : c;
    }
    return clean;
}

size_t CountOf(wxString const& text, char c) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), c));
}

// How many tags a page has must not depend on what stands in its texts.
void CheckTags(wxString const& page, wxString const& harmless) {
    Require(CountOf(page, '<') == CountOf(harmless, '<') && CountOf(page, '>') == CountOf(harmless, '>'),
            "a text makes no tag");
    Require(CountOf(page, '"') == CountOf(harmless, '"'), "a text ends no attribute");
}

void Run(std::string const& bytes) {
    wxString const text = Text(bytes);
    wxString const escaped = EscapeHtmlString(text);
    Require(!HoldsAny(escaped, "<>\"'"), "an escaped text has no mark of HTML");
    Require(Plain(escaped) == WithoutControls(text), "an escaped text can be read back");
    wxString const address = TolEscapeUrlString(text);
    Require(!HoldsAny(address, " <>\"'&?=#/\\\n\r"), "an escaped address has no mark of its own");
    CheckTags(HtmlWriter::DoImg(text.empty() ? wxString("x") : text, 5), HtmlWriter::DoImg("x", 5));
    CheckTags(HtmlWriter::DoHeader(text.empty() ? wxString("x") : text, text), HtmlWriter::DoHeader("x", "x"));
    CheckTags(HtmlWriter::DoH(3, "x", text.empty() ? wxString("x") : text), HtmlWriter::DoH(3, "x", "x"));
    // The mark decides on the row's class, a line break on its form.
    wxString cell = text;
    for (char const* mark : {"!", "?", "\n", "\r", "#"}) cell.Replace(mark, "_");
    CheckTags(HtmlWriter::DoTrRedExcl({"a", "!" + cell, "?" + cell, cell}),
              HtmlWriter::DoTrRedExcl({"a", "!", "?", "x"}));
    HtmlWriter::DoTrRedExcl({text, text});
    wxString const brackets = HtmlWriter::EmFromBrackets(escaped);
    Require(CountOf(brackets, '<') == 2 * CountOf(brackets, '/') || HoldsAny(escaped, "/"), "emphasis is closed");
}

std::vector<std::string> Seeds() {
    return {"plain text",
            "<script>alert('x' + \"y\")</script> & more",
            "[a] [b [c] d] [open",
            "&lt;&amp;#39;",
            "!hard\n?soft\r\n#Id\x01\x7F\xC2\x85",
            "\xED\xA0\x80 half, \xF0\x9F\x98\x80 whole, \xFF none",
            "../folder/a \"b\".png?x=1#y"};
}

}  // namespace

Target HtmlTarget() {
    return {"html", Run, Seeds};
}

}  // namespace fuzz
