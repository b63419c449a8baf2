// SPDX-License-Identifier: Apache-2.0
#include "filters/hexviewer.h"

#include <algorithm>
#include <fstream>

#include "filters/panelfactory.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"

namespace {

constexpr size_t BytesPerLine = 16;
constexpr int DefaultLength = 4096;

[[noreturn]] void Fail(int line, wxString const& message) {
    throw TolException(__FILE__, line, ExceptionGeneral, TolErrorMessage, message);
}

std::string Hexadecimal(uint64_t number, size_t digits) {
    std::string text;
    for (; number != 0 || text.size() < digits; number >>= 4U) text += "0123456789abcdef"[number & 15U];
    std::reverse(text.begin(), text.end());
    return text;
}

bool IsPrintable(char c) {
    return c >= 0x20 && c < 0x7F;
}

void AppendLine(std::string& text, std::string const& bytes, size_t start, uint64_t offset) {
    size_t const count = std::min(BytesPerLine, bytes.size() - start);
    text += Hexadecimal(offset + start, 8) + " ";
    for (size_t i = 0; i < BytesPerLine; ++i) {
        if (i % 8 == 0) text += ' ';
        text += i < count ? Hexadecimal(static_cast<unsigned char>(bytes[start + i]), 2) + " " : "   ";
    }
    text += " |";
    for (size_t i = 0; i < count; ++i) text += IsPrintable(bytes[start + i]) ? bytes[start + i] : '.';
    text += "|\n";
}

std::string Both(int64_t number) {
    return std::to_string(number) + " (0x" + Hexadecimal(static_cast<uint64_t>(number), 1) + ")";
}

// What is shown of how much.
std::string Heading(int64_t offset, int64_t shown, int64_t fileSize) {
    std::string const size = std::to_string(fileSize) + " bytes";
    if (fileSize == 0) return "the file is empty";
    if (shown == 0) return size + ", none at offset " + Both(offset);
    return size + ", shown from offset " + Both(offset) + " to " + Both(offset + shown - 1);
}

}  // namespace

wxString OrvFormatHexDump(std::string const& bytes, uint64_t offset) {
    constexpr size_t LineLength = 80;
    std::string text;
    text.reserve((bytes.size() / BytesPerLine + 1) * LineLength);
    for (size_t start = 0; start < bytes.size(); start += BytesPerLine) AppendLine(text, bytes, start, offset);
    return wxString::FromAscii(text.data(), text.size());
}

std::string OrvReadFileWindow(wxString const& path, int64_t offset, int64_t length, int64_t& fileSize) {
    if (offset < 0 || length < 0) Fail(__LINE__, "The offset and the length must not be negative.");
    std::ifstream file(PathToBytes(path), std::ios::binary | std::ios::ate);
    fileSize = file ? static_cast<int64_t>(file.tellg()) : -1;
    if (fileSize < 0) Fail(__LINE__, "The file can't be read: " + path);
    if (offset >= fileSize) return {};
    std::string bytes(static_cast<size_t>(std::min(length, fileSize - offset)), '\0');
    file.seekg(offset);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (file.bad()) Fail(__LINE__, "The file can't be read: " + path);
    // The file may have become shorter meanwhile.
    bytes.resize(static_cast<size_t>(file.gcount()));
    return bytes;
}

OrvFilterHexViewer::OrvFilterHexViewer() : OrvFilterTextCustom("Hex Viewer") {
    m_filterType = FilterTypeFileAnalysis;
    m_description = "Shows a part of the file byte by byte, in hexadecimal and as characters.";
    // The one that has no bounds stands first, so that the bytes of the other do not span configurations.
    m_parametersInput.push_back(CreateParameterInt64("Offset", "The first byte that is shown", 0));
    m_parametersInput.push_back(
        CreateParameterIntMinMax("Length", "How many bytes are shown", DefaultLength, 1, OrvHexMaximumLength));
}

void OrvFilterHexViewer::Apply(OrvFileId id) {
    auto const offset = m_parametersInput[0].GetValue<int64_t>();
    auto const length = m_parametersInput[1].GetValue<int>();
    wxString const path = GetContext()->GetFilename(id);
    int64_t fileSize = 0;
    std::string const bytes = OrvReadFileWindow(path, offset, length, fileSize);
    std::string const heading = Heading(offset, static_cast<int64_t>(bytes.size()), fileSize);
    m_dumps[id] = GetContext()->GetFileLabel(id) + ": " + GetFilenameNoPath(path) + ", " + wxString(heading) + "\n\n" +
                  OrvFormatHexDump(bytes, static_cast<uint64_t>(offset));
}

void OrvFilterHexViewer::UpdateOutputData() {
    m_text = m_dumps[Evidence];
    if (!m_text.empty() && !m_dumps[Reference].empty()) m_text += "\n";
    m_text += m_dumps[Reference];
}

void OrvFilterHexViewer::Reset(OrvFileId id) {
    m_dumps[id].clear();
    m_text.clear();
}

OrvFilterGuiBase* OrvFilterHexViewer::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}
