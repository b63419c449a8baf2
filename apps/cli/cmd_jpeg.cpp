// SPDX-License-Identifier: Apache-2.0
// orvelle jpeg: the compression of a JPEG, of its thumbnail and of its preview.
#include "apps/cli/arguments.h"
#include "apps/cli/tablecommand.h"
#include "apps/cli/text.h"
#include "orvcore/jpeginfotable.h"

namespace cli {

namespace {

constexpr size_t SearchRows = 4;

std::string YesNo(bool value) {
    return value ? "true" : "false";
}

void AddList(Record& record, std::string const& title, std::vector<std::string> items) {
    RecordRow& row = AddRow(record, title, "");
    for (std::string const& item : items) row.value += (&item == &items.front() ? "" : "\n") + item;
    row.items = std::move(items);
    row.isList = true;
}

std::vector<std::string> Texts(VecString const& list) {
    std::vector<std::string> texts;
    for (wxString const& text : list) texts.push_back(ToUtf8(text));
    return texts;
}

// Who writes such tables; as a list, since there can be many.
void FillCompatible(JpegInfo info, Record& record) {
    bool software = false;
    bool camera = false;
    VecString cameras[2];
    VecString programs[2];
    VecString standard;
    if (info.IsValid) {
        info.FindSimilarSignaturesInUserDatabase(GetContext()->GetListOfSignaturesInUserQtDatabase(), software, camera,
                                                 cameras[1], programs[1], standard);
        info.FindSimilarSignaturesInInternalDatabase(software, camera, cameras[0], programs[0], standard);
    }
    AddList(record, "Compatible Cameras (Internal)", Texts(cameras[0]));
    AddList(record, "Compatible Software (Internal)", Texts(programs[0]));
    AddList(record, "Compatible Cameras (User)", Texts(cameras[1]));
    AddList(record, "Compatible Software (User)", Texts(programs[1]));
}

void FillEstimates(JpegInfo const& info, Record& record) {
    static char const* const titles[] = {"Quality Estimate (all tables)", "Quality Estimate (QT 1)",
                                         "Quality Estimate (QT 2)"};
    for (size_t i = 0; i < 3; ++i) {
        AddRow(record, titles[i], i < info.QualityEstimates.size() ? std::to_string(info.QualityEstimates[i]) : "");
    }
    AddRow(record, "Quality Is Exact (IJG)", info.IsValid ? YesNo(info.IsStandardQuality) : "");
}

void FillStructure(JpegInfo const& info, Record& record) {
    const auto add = [&](char const* title, std::string const& value) {
        AddRow(record, title, info.IsValid ? value : "");
    };
    add("Encoded Size", std::to_string(info.Width) + "x" + std::to_string(info.Height));
    add("Coding Process", ToUtf8(info.Process));
    add("Bits per Sample", std::to_string(info.Precision));
    add("Components", std::to_string(info.ComponentCount));
    add("Signature Subsampling", ToUtf8(info.SignatureSubsampling));
    add("Rotated QT Hash", ToUtf8(info.QtHashRot));
    add("Restart Interval", std::to_string(info.RestartInterval));
    add("Scans", std::to_string(info.ScanCount));
    add("End of Image", YesNo(info.HasEndOfImage));
    add("Bytes behind the Image", std::to_string(info.TrailerBytes));
    add("Embedded Images", std::to_string(info.EmbeddedImageCount));
    AddList(record, "Structure Problems", Texts(info.Problems));
}

class JpegCommand : public TableCommand {
protected:
    void DefineMore(CLI::App& app) override {
        AddChoice(app, "--table", m_table, {"jpeg", "huffman"}, "Only the quantisation side, or only the Huffman side");
        app.add_flag("-x,--extended", m_extended, "Add coding process, structure and what is wrong with it");
    }
    std::string Schema() const override { return "orvelle/jpeg/1"; }
    std::string Title() const override { return "JPEG Tables"; }
    std::string About() const override {
        return "Quantisation tables are printed in the picture's own order, Huffman tables as the counts of their "
               "codes\n"
               "of 1 to 16 bits. Qualities are those of the IJG library whose tables come nearest. A camera or "
               "program\n"
               "that is compatible is one of all that are known to write these tables. What the file does not have is\n"
               "empty, and so is every row of a file that is no JPEG.";
    }
    bool IsExtended() const override { return m_extended; }

    void Fill(OrvFileId slot, Record& record, Terminal& terminal) override {
        const JpegInfo info = GetContext()->GetImageJpegInfo(slot);
        if (!info.IsValid) terminal.Warning(record.path, "no JPEG with quantisation tables: nothing to tell");
        if (m_table != "huffman") {
            VecVecString rows = JpegInfoTable(slot).Evaluate();
            rows.erase(rows.begin(), rows.begin() + SearchRows);
            FillCompatible(info, record);
            AddTableRows(rows, record);
            FillEstimates(info, record);
        }
        if (m_table != "jpeg") AddTableRows(JpegInfoTable2(slot).Evaluate(), record);
        if (m_extended) FillStructure(info, record);
    }

private:
    std::string m_table;
    bool m_extended = false;
};

}  // namespace

std::unique_ptr<Command> MakeJpegCommand() {
    return std::make_unique<JpegCommand>();
}

}  // namespace cli
