// SPDX-License-Identifier: Apache-2.0
#include "wxjson/jsonrepair.h"

#include <algorithm>
#include <cstring>

#include "wx/jsonreader.h"

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
char LowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

class Repairer {
public:
    Repairer(const std::string& text, int flags, std::vector<wxJSONRepairNote>& notes)
        : m_text(text), m_flags(flags), m_notes(notes) {
        m_out.reserve(text.size() + 16);
    }

    std::string Run() {
        if (m_text.compare(0, 3, "\xEF\xBB\xBF") == 0) m_at = 3;
        while (m_at < m_text.size()) Step();
        CloseWhatIsOpen();
        return std::move(m_out);
    }

private:
    // A hostile text may need as many repairs as it has bytes.
    static constexpr std::size_t MaxNotes = 1000;
    enum class State { Start, Key, Colon, Value, After };
    struct Frame {
        char closing;
        State state;
        bool comma;  // one was read and is held back until something follows it
    };

    bool Has(int flag) const { return (m_flags & flag) != 0; }
    void Note(const char* message) {
        if (m_notes.size() < MaxNotes) m_notes.push_back({m_line, message});
    }
    char Peek(std::size_t ahead = 0) const { return m_at + ahead < m_text.size() ? m_text[m_at + ahead] : '\0'; }
    char Take() {
        const char c = m_text[m_at++];
        if (c == '\n') ++m_line;
        return c;
    }
    bool IsComment() const {
        return Has(wxJSONREADER_ALLOW_COMMENTS) && Peek() == '/' && (Peek(1) == '/' || Peek(1) == '*');
    }
    void Step();
    void SkipComment(bool emit);
    void SkipBlanks();
    void BeforeValue(bool isText);
    void AfterValue();
    void Open(char bracket);
    void Close(char bracket);
    void Comma();
    void Colon();
    void Word();
    void Text();
    void Piece();
    bool IsNextPiece();
    void CloseWhatIsOpen();

    const std::string& m_text;
    int m_flags;
    std::vector<wxJSONRepairNote>& m_notes;
    std::size_t m_at = 0;
    std::size_t m_line = 1;
    std::string m_out;
    std::vector<Frame> m_frames;
};

void Repairer::Step() {
    const char c = Peek();
    if (IsBlank(c))
        m_out += Take();
    else if (IsComment())
        SkipComment(true);
    else if (c == '{' || c == '[')
        Open(Take());
    else if (c == '}' || c == ']')
        Close(Take());
    else if (c == ',')
        Comma();
    else if (c == ':')
        Colon();
    else if (c == '"')
        Text();
    else
        Word();
}

// Emitted as blanks; a block without an end takes the rest of the text, which the parser then misses.
void Repairer::SkipComment(bool emit) {
    Note("a comment");
    const bool line = Peek(1) == '/';
    const std::size_t end = line ? m_text.find('\n', m_at) : m_text.find("*/", m_at + 2);
    const std::size_t stop = end == std::string::npos ? m_text.size() : end + (line ? 0 : 2);
    while (m_at < stop) {
        const char c = Take();
        if (emit) m_out += c == '\n' ? '\n' : ' ';
    }
}

void Repairer::SkipBlanks() {
    while (m_at < m_text.size()) {
        if (IsBlank(Peek()))
            Take();
        else if (IsComment())
            SkipComment(false);
        else
            return;
    }
}

// Emits the separator that belongs between two items, also where the text lacks it.
void Repairer::BeforeValue(bool isText) {
    if (m_frames.empty()) return;
    Frame& frame = m_frames.back();
    if (frame.comma) {
        m_out += ',';
        frame.comma = false;
        return;
    }
    if (frame.state != State::After || !Has(wxJSONREADER_MISSING)) return;
    // In an object only a key can follow a value.
    if (frame.closing == '}' && !isText) return;
    Note("a missing comma");
    m_out += ',';
    frame.state = frame.closing == '}' ? State::Key : State::Value;
}

void Repairer::AfterValue() {
    if (m_frames.empty()) return;
    Frame& frame = m_frames.back();
    const bool wasKey = frame.closing == '}' && (frame.state == State::Start || frame.state == State::Key);
    frame.state = wasKey ? State::Colon : State::After;
}

void Repairer::Open(char bracket) {
    BeforeValue(false);
    m_out += bracket;
    m_frames.push_back({bracket == '{' ? '}' : ']', State::Start, false});
}

void Repairer::Close(char bracket) {
    if (!m_frames.empty() && m_frames.back().closing == bracket) {
        if (m_frames.back().comma) {
            if (Has(wxJSONREADER_MISSING))
                Note("a comma too many");
            else
                m_out += ',';
        }
        m_frames.pop_back();
    }
    m_out += bracket;
    AfterValue();
}

void Repairer::Comma() {
    Take();
    if (m_frames.empty() || m_frames.back().state != State::After || m_frames.back().comma) {
        m_out += ',';
        return;
    }
    m_frames.back().comma = true;
    m_frames.back().state = m_frames.back().closing == '}' ? State::Key : State::Value;
}

void Repairer::Colon() {
    m_out += Take();
    if (!m_frames.empty() && m_frames.back().state == State::Colon) m_frames.back().state = State::Value;
}

void Repairer::Word() {
    BeforeValue(false);
    std::string word;
    while (m_at < m_text.size() && !IsBlank(Peek()) && std::strchr("{}[],:\"", Peek()) == nullptr && !IsComment())
        word += Take();
    // A zero byte ends strchr's text as well: it is no part of a word, but must be passed.
    if (word.empty()) word += Take();
    std::string lower = word;
    std::transform(lower.begin(), lower.end(), lower.begin(), LowerAscii);
    const bool literal = lower == "true" || lower == "false" || lower == "null";
    if (literal && lower != word && Has(wxJSONREADER_CASE)) {
        Note("a literal in capitals");
        word = lower;
    }
    m_out += word;
    AfterValue();
}

// The next token is another piece of the same text: a string that isn't the key of the next member.
bool Repairer::IsNextPiece() {
    if (Peek() != '"') return false;
    if (m_frames.empty()) return false;
    const Frame& frame = m_frames.back();
    if (frame.closing == ']') return true;
    if (frame.state != State::Value) return false;
    std::size_t at = m_at + 1;
    while (at < m_text.size() && m_text[at] != '"') at += m_text[at] == '\\' ? 2 : 1;
    const std::size_t next = m_text.find_first_not_of(" \t\r\n", at + 1 < m_text.size() ? at + 1 : m_text.size());
    return next == std::string::npos || m_text[next] != ':';
}

void Repairer::Text() {
    BeforeValue(true);
    m_out += '"';
    Piece();
    while (Has(wxJSONREADER_MULTISTRING)) {
        const std::size_t at = m_at;
        const std::size_t line = m_line;
        const std::size_t notes = m_notes.size();
        SkipBlanks();
        if (!IsNextPiece()) {
            m_at = at;
            m_line = line;
            m_notes.resize(notes);
            break;
        }
        Note("a text in several pieces");
        Piece();
    }
    m_out += '"';
    AfterValue();
}

// The inside of one pair of quotation marks. Without a closing one the text stays open, for the parser to refuse: the
// mark that the caller adds is made part of the text.
void Repairer::Piece() {
    Take();
    while (m_at < m_text.size()) {
        const char c = Take();
        if (c == '"') return;
        if (c == '\\' && m_at < m_text.size()) {
            m_out += c;
            m_out += Take();
        } else if (static_cast<unsigned char>(c) < 0x20 && Has(wxJSONREADER_MULTISTRING)) {
            static const char hex[] = "0123456789abcdef";
            Note("a control character in a text");
            m_out += "\\u00";
            m_out += hex[(c >> 4) & 15];
            m_out += hex[c & 15];
        } else {
            m_out += c;
        }
    }
    m_out += '\\';
}

void Repairer::CloseWhatIsOpen() {
    if (!Has(wxJSONREADER_MISSING)) return;
    while (!m_frames.empty()) {
        const Frame frame = m_frames.back();
        if (frame.state != State::After && frame.state != State::Start && !frame.comma) return;
        Note("a missing closing bracket");
        m_out += frame.closing;
        m_frames.pop_back();
        AfterValue();
    }
}

}  // namespace

std::string wxJSONRepair(const std::string& text, int flags, std::vector<wxJSONRepairNote>& notes) {
    return Repairer(text, flags, notes).Run();
}
