// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpeg_segments.h"

#include <cstring>

namespace {

constexpr unsigned char kFill = 0xFF;

// Where the next 0xFF byte is, or the end.
uint64_t FindFill(ByteView const& view, uint64_t from) {
    if (from >= view.Size()) return view.Size();
    void const* found = std::memchr(view.Data() + from, kFill, view.Size() - from);
    return found == nullptr ? view.Size()
                            : static_cast<uint64_t>(static_cast<unsigned char const*>(found) - view.Data());
}

bool IsRestart(int code) {
    return code >= JpegRst0 && code <= JpegRst7;
}

// A code that T.81 gives a meaning, so that it may be taken for a marker even behind bytes that belong to nothing.
bool IsNamed(int code) {
    return code >= JpegSof0 && (code <= JpegApp15 || code == JpegCom);
}

}  // namespace

bool IsJpegFrame(int code) {
    return code >= JpegSof0 && code <= 0xCF && code != JpegDht && code != JpegJpg && code != JpegDac;
}

bool IsJpegStandalone(int code) {
    return code == JpegTem || (code >= JpegRst0 && code <= JpegEoi);
}

bool JpegWalker::Next(JpegSegment& segment) {
    if (m_isDone) return false;
    if (!m_hasStarted) {
        m_hasStarted = true;
        if (!m_view.Matches(0, "\xFF\xD8", 2)) return End("no SOI at the start");
        return Emit(segment, JpegSoi, 0, 0);
    }
    return m_isInScan ? NextInScan(segment) : NextInHeader(segment);
}

bool JpegWalker::NextInHeader(JpegSegment& segment) {
    const uint64_t start = m_position;
    uint64_t at = start;
    while (true) {
        at = FindFill(m_view, at);
        if (!m_view.Has(at, 2)) {
            m_searched += m_view.Size() - start;
            return End("ends before a scan");
        }
        const int code = m_view.At(at + 1);
        if (code == kFill) {
            ++at;
            continue;
        }
        // Fill bytes stand before a marker by right: only what is no 0xFF counts as passed over.
        uint64_t first = at;
        while (first > start && m_view.At(first - 1) == kFill) --first;
        if (code != 0 && (first == start || IsNamed(code))) return Emit(segment, code, at, first - start);
        at += 2;
    }
}

bool JpegWalker::NextInScan(JpegSegment& segment) {
    uint64_t at = m_position;
    while (true) {
        at = FindFill(m_view, at);
        if (!m_view.Has(at, 2)) {
            m_searched += m_view.Size() - m_position;
            m_position = m_view.Size();
            return End("ends within a scan");
        }
        const int code = m_view.At(at + 1);
        if (code == 0) {  // NOLINT(bugprone-branch-clone): a stuffed byte is another thing than damage
            at += 2;
        } else if (code == kFill) {
            ++at;
        } else if (code == JpegSoi) {
            m_position = at;
            return End("another picture begins within a scan");
        } else if (IsRestart(code) || code == JpegEoi || FitsInScan(code, at)) {
            return Emit(segment, code, at, 0);
        } else {
            at += 2;
        }
    }
}

// Damaged entropy-coded data may hold anything. Only a segment that may stand behind a scan, and is whole, ends it.
bool JpegWalker::FitsInScan(int code, uint64_t at) const {
    if (!IsNamed(code) || code == JpegJpg || code == JpegDhp || !m_view.Has(at, 4)) return false;
    const uint16_t length = m_view.U16(at + 2, true);
    return length >= 2 && m_view.Has(at + 2, length);
}

bool JpegWalker::Emit(JpegSegment& segment, int code, uint64_t at, uint64_t skipped) {
    m_searched += at - m_position + 1;
    segment = JpegSegment();
    segment.code = code;
    segment.offset = m_view.Base() + at;
    segment.skipped = skipped;
    m_position = at + 2;
    if (IsJpegStandalone(code)) {
        m_hasSeenEoi = code == JpegEoi;
        m_isDone = m_hasSeenEoi;
        return true;
    }
    const uint64_t length = m_view.Has(at + 2, 2) ? m_view.U16(at + 2, true) : 0;
    segment.isComplete = length >= 2 && m_view.Has(at + 2, length);
    if (!segment.isComplete) {
        segment.length = m_view.Size() - at;
        segment.payload = m_view.From(at + 4);
        const bool isShort = m_view.Has(at + 2, 2) && length < 2;
        if (isShort) segment.length = 4;
        m_position = m_view.Size();
        End(isShort ? "a segment of an impossible length" : "ends within a segment");
        return true;
    }
    segment.length = length + 2;
    segment.payload = m_view.Sub(at + 4, length - 2);
    m_position = at + 2 + length;
    m_isInScan = code == JpegSos;
    return true;
}

bool JpegWalker::End(char const* problem) {
    m_isDone = true;
    m_problem = problem;
    return false;
}
