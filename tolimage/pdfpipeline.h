// SPDX-License-Identifier: Apache-2.0
// Collects what qpdf decodes, and stops a stream that unpacks past a limit. Private to this library.
#pragma once
#include <cstdint>
#include <qpdf/Pipeline.hh>
#include <string>
#include <utility>

#include "tolbase/limits.h"

class PdfBytes : public Pipeline {
public:
    explicit PdfBytes(uint64_t limit) : Pipeline("bytes", nullptr), m_limit(limit) {}

    // Throws TolLimitError past the limit; qpdf's own memory stays small, since it decodes piece by piece.
    void write(unsigned char const* data, size_t length) override {
        if (length > m_limit - m_bytes.size()) {
            throw TolLimitError(TolLimit::EmbeddedImageBytes, m_bytes.size() + length);
        }
        m_bytes.append(reinterpret_cast<char const*>(data), length);
    }
    void finish() override {}

    std::string Take() { return std::move(m_bytes); }

private:
    uint64_t m_limit;
    std::string m_bytes;
};
