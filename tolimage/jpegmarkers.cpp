// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpegmarkers.h"

#include <array>

#include "tolbase/bytereader.h"
#include "tolbase/limits.h"
#include "tolimage/jpeg_file.h"
#include "tolimage/jpeg_segments.h"

namespace {

// ITU-T T.81, table B.1, and the reserved codes by their numbers.
wxString NameOf(int code) {
    const auto numbered = [code](char const* name, int first) { return wxString(name) << (code - first); };
    if (IsJpegFrame(code)) return numbered("SOF", JpegSof0);
    if (code >= JpegRst0 && code <= JpegRst7) return numbered("RST", JpegRst0);
    if (code >= JpegApp0 && code <= JpegApp15) return numbered("APP", JpegApp0);
    if (code >= 0xF0 && code <= 0xFD) return numbered("JPG", 0xF0);
    switch (code) {
        case JpegTem:
            return "TEM";
        case JpegDht:
            return "DHT";
        case JpegJpg:
            return "JPG";
        case JpegDac:
            return "DAC";
        case JpegSoi:
            return "SOI";
        case JpegEoi:
            return "EOI";
        case JpegSos:
            return "SOS";
        case JpegDqt:
            return "DQT";
        case JpegDnl:
            return "DNL";
        case JpegDri:
            return "DRI";
        case JpegDhp:
            return "DHP";
        case JpegExp:
            return "EXP";
        case JpegCom:
            return "COM";
        default:
            return numbered("RES", 0);
    }
}

}  // namespace

std::vector<JpegMarker> InitJpegMarkers() {
    std::vector<JpegMarker> markers;
    for (int code = JpegTem; code <= JpegCom; ++code) markers.push_back({code, NameOf(code)});
    return markers;
}

std::vector<JpegMarkerPos> FindJpegMarkers(wxString const& path, std::vector<JpegMarker> const& markers) {
    std::vector<JpegMarkerPos> found;
    std::string bytes;
    if (!ReadJpegFile(path, true, bytes)) return found;
    std::array<JpegMarker const*, 256> known{};
    for (JpegMarker const& marker : markers) {
        if (marker.code > 0 && marker.code < 256) known[static_cast<size_t>(marker.code)] = &marker;
    }
    JpegWalker walker(ByteView(bytes.data(), bytes.size()));
    JpegSegment segment;
    while (walker.Next(segment)) {
        JpegMarker const* marker = known[static_cast<size_t>(segment.code)];
        if (marker == nullptr) continue;
        CheckTolLimit(TolLimit::Segments, found.size() + 1);
        found.push_back(
            {marker->code, marker->name, static_cast<int64_t>(segment.offset), static_cast<int64_t>(segment.length)});
    }
    return found;
}
