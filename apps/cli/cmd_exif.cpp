// SPDX-License-Identifier: Apache-2.0
// orvelle exif: all metadata of a file.
#include "apps/cli/tablecommand.h"
#include "apps/cli/text.h"
#include "orvcore/exifinfotable.h"

namespace cli {

namespace {

class ExifCommand : public TableCommand {
protected:
    std::string Schema() const override { return "orvelle/exif/1"; }
    std::string Title() const override { return "EXIF"; }
    std::string About() const override {
        return "Every tag under ExifTool's name for it, \"Group:Tag\", in the order of the file; one that occurs "
               "twice\n"
               "is listed twice. A file without metadata gives no rows.";
    }
    // Each file has its own.
    bool HasFixedRows() const override { return false; }

    void Fill(OrvFileId slot, Record& record, Terminal&) override {
        for (VecString const& cells : ExifInfoTable(slot, true).Evaluate()) {
            RecordRow& row = AddRow(record, ToUtf8(cells.at(0)), ToUtf8(cells.at(1)));
            row.key = row.title;
        }
    }
};

}  // namespace

std::unique_ptr<Command> MakeExifCommand() {
    return std::make_unique<ExifCommand>();
}

}  // namespace cli
