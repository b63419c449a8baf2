// SPDX-License-Identifier: Apache-2.0
// orvelle dimples: whether a picture shows JPEG dimples.
#include "apps/cli/tablecommand.h"
#include "orvcore/jpegdimplestable.h"

namespace cli {

namespace {

class DimplesCommand : public TableCommand {
protected:
    std::string Schema() const override { return "orvelle/dimples/1"; }
    std::string Title() const override { return "JPEG Dimples"; }
    std::string About() const override {
        return "A dimple is one pixel of each 8x8 block that is darker or brighter than its neighbours, left by "
               "encoders\n"
               "that round down or up. From a strength of 13.00 on they count as present; the offset is the place of "
               "the\n"
               "dimple in the block, and \"-\" where there are none. Any format is looked at as it was decoded.\n"
               "docs/dimples.md tells how far the verdict can be trusted.";
    }

    void Fill(OrvFileId slot, Record& record, Terminal&) override {
        AddTableRows(JpegDimplesGlobalTable(slot).Evaluate(), record);
    }
};

}  // namespace

std::unique_ptr<Command> MakeDimplesCommand() {
    return std::make_unique<DimplesCommand>();
}

}  // namespace cli
