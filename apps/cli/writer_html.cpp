// SPDX-License-Identifier: Apache-2.0
// One page with a table for each file.
#include "apps/cli/recordlines.h"
#include "apps/cli/recordwriter.h"
#include "apps/cli/text.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace cli {

namespace {

class PageWriter : public RecordWriter {
public:
    PageWriter(Output& output, RecordStyle const& style) : m_output(output), m_style(style) {
        Put(HtmlWriter::DoHeader(wxString(), FromUtf8(Translated(m_style.title))));
    }

    void Add(Record const& record) override {
        const std::string heading =
            (record.slot == "reference" ? Translated("Reference: ") : "") + Printable(record.path);
        Put(HtmlWriter::DoH(1, EscapeHtmlString(FromUtf8(heading)), wxString()));
        Put(HtmlWriter::DoP(EscapeHtmlString(FromUtf8("SHA256 " + record.sha256))));
        wxString rows;
        for (RecordLine const& line : LinesOf(record)) {
            rows += HtmlWriter::DoTrRedExcl(
                {FromUtf8(Translated(line.title)), FromUtf8(line.value), FromUtf8(line.warning)});
        }
        Put(HtmlWriter::DoTable(rows));
        m_output.Flush();
    }

    void End() override { Put(HtmlWriter::DoFooter()); }

private:
    void Put(wxString const& fragment) { m_output.Write(ToUtf8(fragment)); }

    Output& m_output;
    RecordStyle m_style;
};

}  // namespace

std::unique_ptr<RecordWriter> MakeHtmlWriter(Output& output, RecordStyle const& style) {
    return std::make_unique<PageWriter>(output, style);
}

}  // namespace cli
