// SPDX-License-Identifier: Apache-2.0
#include "tolimage/exiftool_answer.h"

#include <wx/base64.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "tolbase/exception.h"
#include "tolbase/limits.h"

// Groups of family 0 and 1, and family 4 to tell a repeated tag from the first.
// With groups asked for ExifTool orders the values by them, and works out each value's groups once more for that.
// --sort keeps the file's order, and we do the ordering.
char const* const ExifToolValuesArguments = "-php\n-a\n-G0:1:4\n--sort\n";
char const* const ExifToolNumbersArguments = "-php\n-n\n-G0:1:4\n-Composite:GPSLatitude\n-Composite:GPSLongitude\n";

namespace {

constexpr char const* kCut = " [truncated]";

[[noreturn]] void Fail() {
    throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "ExifTool's answer can't be understood.");
}

// Cuts a value that is too long, at the start of a UTF-8 character.
void Cut(std::string& value) {
    const uint64_t limit = GetTolLimit(TolLimit::MetadataValueBytes);
    if (value.size() <= limit) return;
    size_t end = static_cast<size_t>(limit);
    while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0U) == 0x80U) --end;
    value.resize(end);
    value += kCut;
}

class Parser {
public:
    explicit Parser(std::string const& text) : m_text(text) {}

    // Gives each key of the first file's array to `take`, and where its pair begins.
    template <class Take>
    void Read(Take take) {
        Blank();
        Word("Array(");
        Blank();
        Word("Array(");
        for (Blank(); Peek() != ')'; Blank()) {
            const size_t at = m_at;
            take(PairAt(at).first, at);
            Blank();
            if (Peek() == ',') ++m_at;
        }
    }
    // The key and the value that begin there.
    std::pair<std::string, std::string> PairAt(size_t at) {
        m_at = at;
        std::string key = Quoted();
        Blank();
        Word("=>");
        return {std::move(key), Value(0)};
    }

private:
    char Peek() const {
        if (m_at >= m_text.size()) Fail();
        return m_text[m_at];
    }
    void Blank() {
        while (m_at < m_text.size() && (m_text[m_at] == ' ' || m_text[m_at] == '\n')) ++m_at;
    }
    void Word(std::string const& word) {
        if (m_text.compare(m_at, word.size(), word) != 0) Fail();
        m_at += word.size();
    }

    std::string Value(uint64_t depth) {
        Blank();
        if (Peek() == '"') return Quoted();
        if (m_text.compare(m_at, 6, "Array(") == 0) return List(depth);
        // A number stands as it is, digit for digit.
        const size_t end = m_text.find_first_of(",)\n", m_at);
        if (end == std::string::npos) Fail();
        std::string number = m_text.substr(m_at, end - m_at);
        m_at = end;
        return number;
    }

    std::string List(uint64_t depth) {
        CheckTolLimit(TolLimit::NestingDepth, depth);
        Word("Array(");
        std::string joined;
        for (Blank(); Peek() != ')'; Blank()) {
            std::string item = Value(depth + 1);
            Blank();
            if (m_text.compare(m_at, 2, "=>") == 0) {
                m_at += 2;
                item += "=" + Value(depth + 1);
                Blank();
            }
            joined += (joined.empty() ? "" : ", ") + item;
            if (Peek() == ',') ++m_at;
        }
        ++m_at;
        return joined;
    }

    std::string Quoted() {
        if (Peek() != '"') Fail();
        ++m_at;
        std::string result;
        for (char c = Peek(); c != '"'; c = Peek()) {
            ++m_at;
            result.push_back(c == '\\' ? Escaped() : c);
        }
        ++m_at;
        return result;
    }

    char Escaped() {
        const char c = Peek();
        ++m_at;
        switch (c) {
            case 'n':
                return '\n';
            case 'r':
                return '\r';
            case 't':
                return '\t';
            case 'x': {
                const int high = Digit();
                return static_cast<char>(high * 16 + Digit());
            }
            default:
                return c;
        }
    }

    int Digit() {
        const char c = Peek();
        ++m_at;
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        Fail();
    }

    std::string const& m_text;
    size_t m_at = 0;
};

// The places of an answer's pairs, ordered as ExifTool orders values by their groups: the groups as they first occur,
// and within a group as in the file. Holds no more than twice the pairs that are wanted, whatever the answer's length.
class GroupedPlaces {
public:
    explicit GroupedPlaces(uint64_t wanted) : m_wanted(static_cast<size_t>(wanted)) {}

    void Add(std::string const& key, size_t at) {
        ++m_count;
        const size_t colon = key.rfind(':');
        const std::string group = colon == std::string::npos ? std::string() : key.substr(0, colon);
        auto known = m_groups.find(group);
        if (known == m_groups.end()) {
            // All that came so far stands before a group that only begins here.
            if (m_count > m_wanted) return;
            known = m_groups.emplace(group, m_groups.size()).first;
        }
        m_places.push_back({known->second, at});
        if (m_places.size() / 2 > m_wanted) Order();
    }
    std::vector<size_t> Take() {
        Order();
        std::vector<size_t> places;
        for (Place const& place : m_places) places.push_back(place.at);
        return places;
    }
    uint64_t Count() const { return m_count; }

private:
    struct Place {
        size_t group;
        size_t at;
    };
    void Order() {
        std::stable_sort(m_places.begin(), m_places.end(),
                         [](Place const& a, Place const& b) { return a.group < b.group; });
        // What is pushed out can't come back.
        if (m_places.size() > m_wanted) m_places.resize(m_wanted);
    }

    size_t m_wanted;
    uint64_t m_count = 0;
    std::unordered_map<std::string, size_t> m_groups;
    std::vector<Place> m_places;
};

bool IsCopyGroup(std::string const& group) {
    return group.size() > 4 && group.compare(0, 4, "Copy") == 0 &&
           group.find_first_not_of("0123456789", 4) == std::string::npos;
}

// "EXIF:IFD0:Copy1:Make"; a family-1 group that is called like its family-0 group stands only once.
ExifToolValue Named(std::string const& key, std::string const& value) {
    std::vector<std::string> parts;
    size_t at = 0;
    for (size_t colon = key.find(':'); colon != std::string::npos; at = colon + 1, colon = key.find(':', at)) {
        parts.push_back(key.substr(at, colon - at));
    }
    ExifToolValue result;
    result.tag = ExifToolText(key.substr(at));
    if (parts.size() > 1 && IsCopyGroup(parts.back())) parts.pop_back();
    if (!parts.empty()) {
        result.group0 = ExifToolText(parts[0]);
        result.group1 = ExifToolText(parts.size() > 1 ? parts[1] : parts[0]);
    }
    result.value = ExifToolText(value);
    return result;
}

}  // namespace

wxString ExifToolText(std::string const& bytes) {
    wxString text = wxString::FromUTF8(bytes.data(), bytes.size());
    if (text.empty() && !bytes.empty()) text = wxString(bytes.data(), wxConvISO8859_1, bytes.size());
    return text;
}

ExifToolValues ParseExifToolAnswer(std::string const& answer) {
    ExifToolValues values;
    if (answer.find_first_not_of(" \n") == std::string::npos) return values;
    const uint64_t limit = GetTolLimit(TolLimit::MetadataValues);
    GroupedPlaces places(limit);
    Parser parser(answer);
    parser.Read([&](std::string const& key, size_t at) {
        if (key != "SourceFile") places.Add(key, at);
    });
    for (const size_t at : places.Take()) {
        auto [key, value] = parser.PairAt(at);
        Cut(value);
        values.push_back(Named(key, value));
    }
    const uint64_t left = places.Count() - values.size();
    if (left > 0) {
        const std::string told = std::to_string(left) + " further values left out: the limit \"metadata-values\" is " +
                                 std::to_string(limit);
        values.push_back({"Orvelle", "Orvelle", "Truncated", wxString::FromUTF8(told)});
    }
    return values;
}

std::string ParseExifToolBinary(std::string const& answer) {
    const std::string mark = "\"base64:";
    const size_t start = answer.find(mark);
    if (start == std::string::npos) return {};
    const size_t from = start + mark.size();
    const size_t end = answer.find('"', from);
    if (end == std::string::npos) return {};
    const wxMemoryBuffer bytes = wxBase64Decode(answer.data() + from, end - from, wxBase64DecodeMode_SkipWS);
    return std::string(static_cast<char const*>(bytes.GetData()), bytes.GetDataLen());
}
