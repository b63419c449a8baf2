// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/filterresult.h"

#include <memory>

#include "apps/cli/failure.h"
#include "apps/cli/text.h"
#include "orvcore/command.h"
#include "orvcore/filterimage.h"
#include "orvcore/filterplot.h"
#include "orvcore/infotable.h"
#include "tolbase/exception.h"

namespace cli {

namespace {

using Status = OrvFilterConfiguration::FilterStatus;

// Columns of warnings: the third of a file's own table, and those of both sides of a comparison, whose header begins
// with a number's mark. Other cells hold texts of the file, which may begin with any character.
std::vector<size_t> WarningColumns(VecVecString const& table) {
    if (table.empty() || table[0].empty()) return {};
    if (!table[0][0].StartsWith(OrvMarkerNumeric)) return {2};
    return table[0].size() == 7 ? std::vector<size_t>{3, 5} : std::vector<size_t>();
}

bool HasSoftWarning(VecVecString const& table) {
    for (const size_t column : WarningColumns(table)) {
        for (VecString const& row : table) {
            if (row.size() > column && row[column].StartsWith(OrvMarkerSoft)) return true;
        }
    }
    return false;
}

std::string Reason(OrvFilter const& filter, std::string const& message) {
    const std::string name = ToUtf8(filter.GetName());
    if (message.empty()) return name + " failed";
    return name + ": " + (message == "std::bad_alloc" ? "not enough memory" : message);
}

void Configure(OrvFilter& filter, VecParameter const& parameters, VecParameter const& postParameters) {
    const auto fail = [&](std::string const& message) { throw Failure(ExitFilter, "", Reason(filter, message)); };
    try {
        filter.Configure(parameters, postParameters);
    } catch (TolException const& error) {
        fail(error.GetMessage().empty() ? error.what() : ToUtf8(error.GetMessage()));
    } catch (std::exception const& error) {
        fail(error.what());
    }
    // The run's event is for an application that waits for it; here the examination has one of its own.
    const std::unique_ptr<OrvCommandEvent> event(GetContext()->PopEvent());
    if (!event || event->GetId() != OrvCommandIdFilterDone) fail(ToUtf8(filter.GetErrorMessage()));
}

void TakeSlot(OrvFilter& filter, OrvFileId id, ResultKind kind, FilterSlot& slot) {
    slot.status = filter.GetStatus(id);
    if (slot.status == Status::Unsupported) return;
    if (auto const* const plots = dynamic_cast<OrvFilterPlot const*>(&filter)) {
        slot.plot = plots->GetPlotDataCopy(id);
    } else if (kind == ResultKind::Picture && id == Evidence) {
        auto* const pictures = dynamic_cast<OrvFilterImage*>(&filter);
        const Image picture =
            pictures != nullptr ? pictures->GetOutputImageDisplayedCopy(id) : filter.GetInputImage(id);
        if (!picture.IsOk()) return;
        slot.picture = picture.Size();
        slot.channels = picture.Channels();
    }
}

}  // namespace

bool IsTable(Parameter const& parameter) {
    return parameter.Holds<VecVecString>();
}

char FilterResult::Finding() const {
    for (FilterSlot const& slot : slots) {
        if (slot.loaded && slot.status == Status::Warning) return '!';
    }
    for (Parameter const& parameter : outputs) {
        if (IsTable(parameter) && HasSoftWarning(parameter.GetValue<VecVecString>())) return '?';
    }
    return 0;
}

void RunFilter(OrvFilter& filter, VecParameter const& parameters, VecParameter const& postParameters,
               FilterResult& result) {
    filter.SetConfiguration(-1);
    GetContext()->SetActiveFilter(&filter);
    Configure(filter, parameters, postParameters);
    result.filter = ToUtf8(filter.GetName());
    result.kind = ResultKindOf(filter);
    result.cacheMessage = ToUtf8(filter.GetCacheMessage());
    if (filter.GetStatus(Evidence) == Status::Unsupported) {
        throw Failure(ExitInput, "", result.filter + " works on JPEG files only");
    }
    for (const OrvFileId id : {Evidence, Reference}) result.slots[id].fromCache = filter.ConfiguredFromCache(id);
    // A step of the post-processing may take the first values that it sees for moves of a slider, and let others
    // follow. The second time all of them stand where they were put.
    if (filter.GetParametersPostProcessing() != postParameters) Configure(filter, parameters, postParameters);
    result.parameters = filter.GetParametersInput();
    result.postParameters = filter.GetParametersPostProcessing();
    result.outputs = filter.GetParametersOutput();
    for (const OrvFileId id : {Evidence, Reference}) {
        FilterSlot& slot = result.slots[id];
        if (slot.loaded) TakeSlot(filter, id, result.kind, slot);
    }
}

}  // namespace cli
