// SPDX-License-Identifier: Apache-2.0
// Photographs of a camera.
#include <wx/utils.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <limits>
#include <memory>

#include "orvcore/context.h"
#include "orvcore/webmediasearch.h"
#include "orvcore/webmediasearch_private.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"
#include "tolbase/timetext.h"
#include "tolimage/crawler.h"

using orvsearch::NumberOf;
using orvsearch::SizeText;
using orvsearch::TextOf;
using orvsearch::Trace;

namespace {

constexpr std::int64_t DaySeconds = 86400;
constexpr std::size_t KeywordGroup = 1;
constexpr std::size_t KeywordOption = 11;
constexpr unsigned long PauseMs = 500;

// Taken when the service names none. Two entries have an odd spelling that stays.
constexpr std::array<char const*, 40> DefaultMakes = {
    "canon",          "apple",    "nikon",   "sony",    "samsung", "panasonic", "olympus",       "fujifilm",
    "htcpentax",      "nokia",    "kodak",   "leica",   "casio",   "gopro",     "sony ericsson", "blackberry",
    "konica minolta", "motorola", "ricoh",   "hp",      "sigma",   "Phase One", "sanyo",         "lg",
    "epson",          "google",   "toshiba", "vivitar", "palm",    "polaroid",  "docomo",        "kyocera",
    "nintendo",       "leaf",     "concord", "benq",    "kiddi",   "acer",      "jvc",           "sharp"};

// Local, without leading zeros.
wxString DayBefore(int days) {
    auto const then = static_cast<std::time_t>(std::time(nullptr) - std::int64_t{days} * DaySeconds);
    std::tm local{};
    localtime_r(&then, &local);
    return wxString::FromUTF8(std::to_string(local.tm_year + 1900) + "-" + std::to_string(local.tm_mon + 1) + "-" +
                              std::to_string(local.tm_mday));
}

VecString SoftwareKeywords() {
    OrvContext const* context = GetContext();
    if (context == nullptr) return {};
    VecVecParameter const options = context->GetProgramOptions();
    if (options.size() <= KeywordGroup || options[KeywordGroup].size() <= KeywordOption) return {};
    return options[KeywordGroup][KeywordOption].GetValue<VecString>();
}

long LongOf(wxString const& text) {
    long number = 0;
    return text.ToLong(&number, 10) ? number : 0;
}

int Side(wxString const& text) {
    return static_cast<int>(std::clamp<long>(LongOf(text), 0, std::numeric_limits<int>::max()));
}

TagFilter MakeFilter(VecParameter const& params, wxString const& make, wxString const& model) {
    auto const type = NumberOf(params, 6) == 0 ? TagFilterExclude : TagFilterNone;
    TagFilter filter(type, "IFD0", "Software", SoftwareKeywords());
    if (NumberOf(params, 7) == 0) {
        filter.SetFilterCameraModel(model);
        filter.SetFilterCamMakeCamModel(make, model);
    }
    wxString const size = params.size() > 5 ? params[5].ToReport() : wxString();
    bool const sized = NumberOf(params, 5) == 0;
    filter.SetFilterPhotoSize(sized ? Side(size.BeforeFirst('x')) : 0, sized ? Side(size.AfterFirst('x')) : 0);
    return filter;
}

void TraceIds(char const* label, VecString const& ids) {
    Trace::Write(label, wxString());
    for (wxString const& id : ids) Trace::Write("", id);
}

VecString IdsOf(std::vector<Photo> const& photos) {
    VecString ids;
    for (Photo const& photo : photos) ids.push_back(photo.GetPhotoId());
    return ids;
}

// Whatever happens in between, the trace is closed and the next search may begin.
class TraceOwner {
public:
    explicit TraceOwner(wxString const& model) : m_owns(Trace::Begin(model)) {}
    ~TraceOwner() {
        if (m_owns) Trace::End();
    }
    TraceOwner(TraceOwner const&) = delete;
    TraceOwner& operator=(TraceOwner const&) = delete;
    bool Owns() const { return m_owns; }

private:
    bool m_owns;
};

std::vector<Photo> FindPhotos(VecParameter const& params, wxString& error) {
    wxString const make = TextOf(params, 0).Lower();
    wxString const model = TextOf(params, 1).Lower();
    wxString const date = DayBefore(NumberOf(params, 2));
    VecString const makeModel{make, model};
    TraceOwner const trace(model);
    if (!trace.Owns()) return {};
    TagFilter const filter = MakeFilter(params, make, model);
    bool const google = NumberOf(params, 4) != 0;
    int const count = NumberOf(params, 3);
    std::unique_ptr<GetPhotoListManager> manager;
    if (google) {
        manager = std::make_unique<GetPhotoListManagerGoogle>(makeModel, date, filter, count);
    } else {
        manager = std::make_unique<GetPhotoListManagerFlickr>(makeModel, date, filter, count);
    }
    manager->RunThreadMngrAlt();
    VecVecString const results = manager->GetResults();
    error = manager->GetErrorMsg();
    TraceIds(google ? "Photo List " : "Recvd Photo List ", results.empty() ? VecString() : results.front());
    std::vector<Photo> photos = manager->GetRcvdPhotoList();
    TraceIds("Recvd Filtered List ", IdsOf(photos));
    return photos;
}

// Empty for what can't be read as a time.
wxString DateText(wxString const& uploaded) {
    std::int64_t const seconds = StringToMillisecondsFromEpoch(uploaded);
    if (seconds <= 0 || seconds > std::numeric_limits<std::int64_t>::max() / 1000) return {};
    return MillisecondsFromEpochToDateTimeString(seconds * 1000);
}

VecString FirstRow(VecVecString const& table) {
    return table.empty() ? VecString() : table.front();
}

// Of several words behind the make, or of one.
wxString FindModel(wxString const& make, wxString const& rest, wxString const& query) {
    GetCameraModelListManager manager({make});
    manager.RunThreadMngr();
    for (wxString const& entry : FirstRow(manager.GetResults())) {
        wxString const model = entry.Lower();
        wxString const shortName = model.Mid(make.length() + 1);
        // Nothing is contained in everything, and names no camera.
        if (!shortName.empty() && query.Contains(shortName)) return model;
        if (!rest.empty() && shortName.Contains(rest)) return model;
    }
    return query.AfterFirst(' ');
}

}  // namespace

VecVecString SearchImageFromWeb(VecParameter& params, int, wxString& error) {
    std::vector<Photo> const photos = FindPhotos(params, error);
    wxMilliSleep(PauseMs);
    VecVecString table;
    if (photos.empty()) return table;
    table.push_back({"#Id", "Web Photo Id", "Owner Id", "Size", "Make", "Model", "Software", "Date Uploaded", "Link"});
    Trace::Write("Total Photos ", ToString<std::uint64_t>(photos.size()));
    for (Photo const& photo : photos) {
        table.push_back({ToString<std::uint64_t>(table.size()), photo.GetPhotoId(), photo.GetOwnerId(),
                         SizeText(photo.GetPhotoSize(PhotoSizeOriginal)), photo.GetMake(), photo.GetModel(),
                         photo.GetSoftware(), DateText(photo.GetUploadDate()), photo.GetPhotoLink(PhotoSizeOriginal)});
        Trace::WritePhoto(photo);
    }
    return table;
}

VecString GetValidCameraMakeModel(wxString const& query) {
    // The services write this phone's make otherwise than people do.
    if (query.Contains("nexus 4") && query.Contains("lg")) return {"lge", "lge nexus 4"};
    GetCameraListManager manager;
    manager.RunThreadMngr();
    VecString makes = FirstRow(manager.GetResults());
    if (makes.empty()) makes.assign(DefaultMakes.begin(), DefaultMakes.end());
    wxString make;
    for (wxString const& entry : makes) {
        make = entry.Lower();
        if (query.Contains(make)) return {make, FindModel(make, query.Mid(make.length() + 1), query)};
    }
    return {make, query.AfterFirst(' ')};
}
