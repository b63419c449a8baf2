// SPDX-License-Identifier: Apache-2.0
// The naming schemes of the platforms.
#include <wx/filename.h>
#include <wx/regex.h>

#include <utility>

#include "orvcore/smscollection.h"

namespace {

// Platform and POSIX extended expression. What looks odd is meant so: bars within brackets are members of them, and the
// second bracket of the sixth row ends at its first closing one.
std::vector<std::pair<wxString, wxString>> const socialFilenameRules = {
    {"Facebook", "^[0-9]+_[0-9]+_[0-9]+_[o|n]$"},
    {"Flickr", "^[0-9]+_[a-z0-9]+_[b|k|h|m|o|q|z]$"},
    {"Tumblr", "^tumblr_[a-zA-Z0-9]+_[0-9]{3,5}$"},
    {"Imgur", "^[0-9]* - [a-zA-Z0-9]{7,8}$"},
    {"Whatsapp", "^IMG-[0-9]{8}-WA[0-9]{4,}$"},
    {"Whatsapp", "^WhatsApp-Image-[0-9]{8}[ \\([0-9]*\\)*$"},
    {"Whatsapp", "^WhatsApp Image [0-9]{4}-[0-9]{2}-[0-9]{2} at [0-9]{2}.[0-9]{2}.[0-9]{2}$"},
    {"Instagram", "^[0-9]+_[0-9]+_[0-9]+_[o|n]$"},
    {"Tinypic", "^[a-z0-9]{7,8}$"},
    {"Telegram", "^[0-9]+_[0-9]{16,}$"},
    {"Telegram", "^photo[0-9]+$"},
};

// wxRegEx compiles with PCRE, to which a backslash in a bracket escapes and a final "$" also stands in front of a line
// end. POSIX has neither.
wxString PosixToPcre(wxString const& expression) {
    wxString result;
    bool inBracket = false;
    for (size_t i = 0; i < expression.length(); ++i) {
        wxUniChar const c = expression[i];
        if (inBracket && c == '\\') result += '\\';
        if (!inBracket && c == '$' && i + 1 == expression.length()) {
            result += "\\z";
            break;
        }
        inBracket = inBracket ? c != ']' : c == '[' && (i == 0 || expression[i - 1] != '\\');
        result += c;
    }
    return result;
}

bool MatchesRule(wxString const& name, wxString const& expression) {
    wxRegEx const compiled(PosixToPcre(expression), wxRE_EXTENDED);
    return compiled.IsValid() && compiled.Matches(name);
}

wxString NameAlone(wxString const& file) {
    wxString path, name, extension;
    wxFileName::SplitPath(file, &path, &name, &extension);
    return name;
}

}  // namespace

bool SMSCollection::CheckFilenameCompatibility(wxString const& file, wxString const& socialName) {
    wxString const name = NameAlone(file);
    bool hasRule = false;
    bool hasMatch = false;
    for (auto const& [platform, expression] : socialFilenameRules) {
        if (platform != socialName) continue;
        hasRule = true;
        hasMatch = MatchesRule(name, expression) || hasMatch;
    }
    return !hasRule || hasMatch;
}

VecString SMSCollection::GetFilenameCompatibilityList(wxString const& file) {
    wxString const name = NameAlone(file);
    VecString platforms;
    for (auto const& [platform, expression] : socialFilenameRules) {
        if (MatchesRule(name, expression)) platforms.push_back(platform);
    }
    return platforms;
}
