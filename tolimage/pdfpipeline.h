// SPDX-License-Identifier: Apache-2.0
// Collects what qpdf decodes, and stops a stream that unpacks past a limit. Private to this library.
#pragma once
#include <cstdint>
#include <qpdf/Pipeline.hh>
#include <stdexcept>
#include <string>
#include <utility>

#include "tolbase/limits.h"

class PdfBytes : public Pipeline {
public:
    explicit PdfBytes(uint64_t limit) : Pipeline("bytes", nullptr), m_limit(limit) {}

    // Throws past the limit; qpdf's own memory stays small, since it decodes piece by piece.
    void write(unsigned char const* data, size_t length) override {
        if (m_asked == 0 && length > m_limit - m_bytes.size()) m_asked = m_bytes.size() + length;
        if (m_asked > 0) throw std::runtime_error("past the limit");
        m_bytes.append(reinterpret_cast<char const*>(data), length);
    }
    void finish() override {}

    // qpdf keeps the exception to itself, so it is told here again. Throws TolLimitError past the limit.
    std::string Take() {
        if (m_asked > 0) throw TolLimitError(TolLimit::EmbeddedImageBytes, m_asked);
        return std::move(m_bytes);
    }

private:
    uint64_t m_limit;
    uint64_t m_asked = 0;  // what the stream wanted; 0 within the limit
    std::string m_bytes;
};
