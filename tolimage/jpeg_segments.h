// SPDX-License-Identifier: Apache-2.0
// Walking the markers of a JPEG, whatever state it is in.
#pragma once
#include <cstdint>
#include <string>

#include "tolbase/bytereader.h"

// Marker codes of ITU-T T.81, table B.1.
enum JpegCode : int {
    JpegTem = 0x01,
    JpegSof0 = 0xC0,
    JpegDht = 0xC4,
    JpegJpg = 0xC8,
    JpegDac = 0xCC,
    JpegRst0 = 0xD0,
    JpegRst7 = 0xD7,
    JpegSoi = 0xD8,
    JpegEoi = 0xD9,
    JpegSos = 0xDA,
    JpegDqt = 0xDB,
    JpegDnl = 0xDC,
    JpegDri = 0xDD,
    JpegDhp = 0xDE,
    JpegExp = 0xDF,
    JpegApp0 = 0xE0,
    JpegApp14 = 0xEE,
    JpegApp15 = 0xEF,
    JpegCom = 0xFE
};

// True for SOF0 to SOF15, the gaps (DHT, JPG, DAC) left out.
bool IsJpegFrame(int code);
// True for SOI, EOI, RST and TEM, which have no segment.
bool IsJpegStandalone(int code);

// A marker and what hangs on it.
struct JpegSegment {
    int code = 0;
    uint64_t offset = 0;     // of its 0xFF byte in the file
    uint64_t length = 0;     // marker bytes, length bytes and payload; 0 for a marker without a segment
    ByteView payload;        // behind the length bytes
    uint64_t skipped = 0;    // bytes in front of it that belong to nothing (fill bytes don't count)
    bool isComplete = true;  // false if its length is no length or reaches past the end
};

// Gives the markers of one picture from its SOI to its EOI, restart markers included. Bytes between segments that
// belong to nothing are passed over; so is, within a scan, what can't be a marker there. Never throws on what a file
// holds.
class JpegWalker {
public:
    // The bytes of the file from the SOI on.
    explicit JpegWalker(ByteView view) : m_view(view) {}

    // The next marker; false at the end, which is the EOI, another picture's SOI within a scan, a segment that isn't
    // whole, or the end of the bytes.
    bool Next(JpegSegment& segment);

    bool HasSeenEoi() const { return m_hasSeenEoi; }
    // From the view's start: where the walk stands.
    uint64_t Position() const { return m_position; }
    // How many bytes had to be searched for markers; segments that are stepped over count as one.
    uint64_t SearchedBytes() const { return m_searched; }
    // Why the walk ended, in English; empty after an EOI or while it goes on.
    std::string const& GetProblem() const { return m_problem; }

private:
    bool NextInScan(JpegSegment& segment);
    bool NextInHeader(JpegSegment& segment);
    bool Emit(JpegSegment& segment, int code, uint64_t at, uint64_t skipped);
    bool End(char const* problem);
    bool FitsInScan(int code, uint64_t at) const;

    ByteView m_view;
    uint64_t m_position = 0;
    uint64_t m_searched = 0;
    bool m_hasStarted = false;
    bool m_isInScan = false;
    bool m_isDone = false;
    bool m_hasSeenEoi = false;
    std::string m_problem;
};
