// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/userqt.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <wx/convauto.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "apps/cli/failure.h"
#include "apps/cli/text.h"
#include "tolbase/file.h"
#include "tolbase/parser.h"

namespace cli {

namespace {

std::vector<std::pair<char const*, wxString const*>> Fields(JpegSignature const& record) {
    return {{"make", &record.make},
            {"model", &record.model},
            {"quality", &record.quality},
            {"signature", &record.signature},
            {"rotated signature", &record.signatureRot},
            {"subsampling", &record.subsampling},
            {"software vendor", &record.softwareVendor},
            {"software name", &record.softwareName}};
}

// The class that the engine gives a line: what stands between the first and the last blank before the first comma of
// what is not a comment.
int ClassOf(wxString const& line) {
    const wxString head = line.BeforeFirst('/').BeforeFirst(',');
    const wxString number = head.AfterFirst(' ').BeforeLast(' ');
    return number.empty() ? 0 : FromString<int>(number);
}

}  // namespace

std::string ReasonAgainst(JpegSignature const& record) {
    if (record.editorClass != "1" && record.editorClass != "2") return "the class is neither camera nor software";
    for (auto const& [name, value] : Fields(record)) {
        const std::string field = std::string("the ") + name;
        if (value->Contains("/")) return field + " has a slash, which would begin a comment";
        if (value->Contains("\"")) return field + " has a double quote, which the file can't hold";
        for (const wxUniChar c : *value) {
            if (c.GetValue() < 0x20 || c.GetValue() == 0x7F) return field + " has a line break or control character";
        }
    }
    return "";
}

wxString SignatureLine(JpegSignature const& record) {
    wxString line = "SIG " + record.editorClass + " ";
    for (auto const& [name, value] : Fields(record)) line += ",\"" + *value + "\"";
    return line;
}

UserQtFile::UserQtFile(std::string path) : m_path(std::move(path)) {
    const std::string folder = std::filesystem::path(m_path).parent_path().string();
    const bool made = CreateDirIfNotExists(PathFromBytes(folder));
    m_lock = made ? open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    if (m_lock < 0 || flock(m_lock, LOCK_EX) != 0) throw Failure(ExitOutput, m_path, "can't be written");
    std::error_code failed;
    if (!std::filesystem::exists(m_path, failed)) return;
    std::string bytes;
    if (!ReadFileBytes(PathFromBytes(m_path), bytes)) throw Failure(ExitInput, m_path, "can't be read");
    // The same conversion as the engine's, so that both see the same lines.
    wxConvAuto conversion;
    wxString text(bytes.data(), conversion, bytes.size());
    if (text.empty() && !bytes.empty()) throw Failure(ExitInput, m_path, "is in no known encoding");
    while (!text.empty()) {
        m_lines.push_back(text.BeforeFirst('\n'));
        text = text.AfterFirst('\n');
    }
    Scan();
}

UserQtFile::~UserQtFile() {
    if (m_lock >= 0) close(m_lock);
}

void UserQtFile::Scan() {
    m_signatureLines.clear();
    size_t left = 0;
    for (wxString const& line : m_lines) left += line.length() + 1;
    for (size_t i = 0; i < m_lines.size(); ++i) {
        const int kind = ClassOf(m_lines[i]);
        // The engine leaves the last two characters unread.
        if (left > 2 && (kind == 1 || kind == 2)) m_signatureLines.push_back(i);
        left -= m_lines[i].length() + 1;
    }
}

void UserQtFile::Append(JpegSignature const& record) {
    m_lines.push_back(SignatureLine(record));
    Scan();
}

void UserQtFile::Remove(size_t index) {
    m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(m_signatureLines.at(index)));
    Scan();
}

void UserQtFile::Save() const {
    std::string bytes;
    for (wxString const& line : m_lines) bytes += ToUtf8(line) + "\n";
    if (!WriteFileAtomically(PathFromBytes(m_path), bytes)) throw Failure(ExitOutput, m_path, "can't be written");
}

}  // namespace cli
