// SPDX-License-Identifier: Apache-2.0
// Reading samples of known origin.
#include <wx/filename.h>
#include <wx/tokenzr.h>

#include <algorithm>
#include <charconv>

#include "orvcore/socialevaluation.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolbase/parser.h"

namespace {

using Cells = std::vector<std::string>;

Cells Split(std::string const& line) {
    Cells cells;
    for (size_t from = 0;;) {
        size_t const to = line.find('\t', from);
        cells.push_back(line.substr(from, to - from));
        if (to == std::string::npos) return cells;
        from = to + 1;
    }
}

wxString Text(std::string const& utf8) {
    wxString const text = wxString::FromUTF8(utf8.data(), utf8.size());
    return text.empty() && !utf8.empty() ? wxString(utf8.data(), wxConvISO8859_1, utf8.size()) : text;
}

// The lines of one table, read one after the other.
class Labels {
public:
    Labels(wxString const& path, VecString* failures) : m_path(path), m_failures(failures) {}

    void Read(std::string const& bytes) {
        for (size_t from = 0; from < bytes.size();) {
            size_t const to = std::min(bytes.find('\n', from), bytes.size());
            std::string line = bytes.substr(from, to - from);
            from = to + 1;
            ++m_line;
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (line.empty() || line.front() == '#') continue;
            if (m_columns.empty()) {
                ReadHeader(Split(line));
            } else {
                ReadRow(Split(line));
            }
        }
        if (m_columns.empty()) Fail("no line names the columns");
    }

    std::vector<OrvSocialSample> Take() { return std::move(m_samples); }

private:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    [[noreturn]] void Fail(wxString const& message) const {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           m_path + ", line " + ToString<int>(m_line) + ": " + message);
    }

    size_t Column(char const* name) const {
        auto const found = std::find(m_columns.begin(), m_columns.end(), name);
        return found == m_columns.end() ? kNone : static_cast<size_t>(found - m_columns.begin());
    }

    void ReadHeader(Cells columns) {
        m_columns = std::move(columns);
        m_group = Column("group");
        m_source = Column("source");
        m_fileId = Column("file_id");
        m_feature = Column("width");
        m_file = Column("file");
        if (m_group == kNone) Fail("no column \"group\"");
        if (m_feature == kNone && m_file == kNone) Fail("neither a column \"width\" nor a column \"file\"");
        if (m_feature != kNone && m_columns.size() - m_feature < SMS_FeatureCount) {
            Fail("fewer than 48 columns from \"width\" on");
        }
    }

    int Number(std::string const& cell) const {
        int number = 0;
        auto const result = std::from_chars(cell.data(), cell.data() + cell.size(), number);
        if (result.ec != std::errc() || result.ptr != cell.data() + cell.size()) Fail("no number: " + Text(cell));
        return number;
    }

    void ReadRow(Cells const& cells) {
        if (cells.size() != m_columns.size()) Fail("another number of cells than of columns");
        OrvSocialSample sample;
        sample.group = Text(cells[m_group]);
        if (sample.group.empty()) Fail("no group");
        if (m_source != kNone) sample.source = Text(cells[m_source]);
        if (m_fileId != kNone) sample.fileId = Text(cells[m_fileId]);
        if (m_feature != kNone) {
            for (size_t i = 0; i < SMS_FeatureCount; ++i) sample.feature.push_back(Number(cells[m_feature + i]));
        } else {
            try {
                ReadFile(Text(cells[m_file]), sample);
            } catch (TolException const& error) {
                if (m_failures == nullptr) throw;
                m_failures->push_back(error.GetMessage());
                return;
            }
        }
        m_samples.push_back(std::move(sample));
    }

    void ReadFile(wxString const& name, OrvSocialSample& sample) const {
        wxFileName file(name);
        if (file.IsRelative()) file.MakeAbsolute(wxPathOnly(wxFileName(m_path).GetAbsolutePath()));
        wxString const path = file.GetFullPath();
        if (!wxFileExists(path)) Fail("no such file: " + path);
        sample.feature = SocialMediaSignature(path, sample.group, SMS_Internal, wxString()).GetFeature();
        if (sample.feature.size() != SMS_FeatureCount) Fail("no JPEG with quantisation tables: " + path);
        if (sample.fileId.empty()) sample.fileId = path;
    }

    wxString m_path;
    VecString* m_failures;
    int m_line = 0;
    Cells m_columns;
    size_t m_group = kNone, m_source = kNone, m_fileId = kNone, m_feature = kNone, m_file = kNone;
    std::vector<OrvSocialSample> m_samples;
};

}  // namespace

std::vector<OrvSocialSample> OrvLoadSocialSamples(wxString const& path, VecString* failures) {
    std::string bytes;
    if (!ReadFileBytes(path, bytes, static_cast<size_t>(GetTolLimit(TolLimit::UserDatabaseBytes)))) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           path + ": can't be read, or is larger than the limit \"user-database-bytes\"");
    }
    Labels labels(path, failures);
    labels.Read(bytes);
    return labels.Take();
}
