// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/gridwriter.h"

#include "apps/cli/separated.h"
#include "apps/cli/text.h"
#include "tolbase/htmlwriter.h"

namespace cli {

GridWriter::GridWriter(std::string format, std::string schema, std::string title, Output& output)
    : m_format(std::move(format)), m_schema(std::move(schema)), m_title(std::move(title)), m_output(output) {}

void GridWriter::SetTitles(std::vector<std::string> const& titles, bool shown) {
    m_titles = titles;
    m_titlesShown = shown;
}

void GridWriter::WriteRow(std::vector<std::string> const& cells) {
    if (m_format == "text") {
        m_text.push_back(cells);
    } else if (m_format == "html") {
        VecString texts;
        for (std::string const& cell : cells) texts.push_back(FromUtf8(Printable(cell)));
        m_output.Write(ToUtf8(HtmlWriter::DoTrRedExcl(texts)));
    } else {
        m_output.Write(SeparatedLine(m_format, cells));
    }
}

void GridWriter::Start() {
    if (m_started) return;
    m_started = true;
    if (m_format == "json") m_output.Write("[");
    if (m_format == "html") {
        m_output.Write(ToUtf8(HtmlWriter::DoHeader(wxString(), FromUtf8(Translated(m_title)))) + "<table>\n");
    }
    if (!m_titlesShown || m_format == "json" || m_format == "jsonl") return;
    std::vector<std::string> titles = m_titles;
    for (std::string& title : titles) title = Translated(title);
    WriteRow(titles);
}

void GridWriter::AddRow(std::vector<std::string> const& cells, Json const& facts) {
    Start();
    if (m_format != "json" && m_format != "jsonl") {
        WriteRow(cells);
    } else {
        Json object = {{"schema", m_schema}};
        object.update(facts);
        object["cells"] = Json::object();
        for (size_t i = 0; i < cells.size() && i < m_titles.size(); ++i) {
            object["cells"][Valid(m_titles[i])] = Valid(cells[i]);
        }
        const std::string text = JsonText(object, true);
        m_output.Write(m_format == "jsonl" ? text + "\n" : (m_hasRows ? ",\n" : "\n") + text);
    }
    m_hasRows = true;
    if (m_format != "text") m_output.Flush();
}

void GridWriter::End() {
    Start();
    if (m_format == "text") m_output.Write(GridText(m_text));
    if (m_format == "json") m_output.Write(m_hasRows ? "\n]\n" : "]\n");
    if (m_format == "html") m_output.Write("</table>\n" + ToUtf8(HtmlWriter::DoFooter()));
}

}  // namespace cli
