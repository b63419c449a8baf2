// SPDX-License-Identifier: Apache-2.0
// The one way in which this program looks into bytes that it does not trust: a bounds-checked view and a reader on it.
//
// Threads: both are plain values; the bytes behind them are only ever read. One reader belongs to one thread.
// Ownership: neither owns the bytes. Whoever made the view keeps them alive and unchanged for as long as it is used.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "tolbase/export.h"

// What is wrong with a file: it ends too early, it contradicts its own format, or it is of a kind that isn't read here.
enum class ByteErrorKind : int { Truncated, Corrupt, Unsupported };

// A read that the bytes don't allow. `what()` tells the offset from the file's start and what was expected there.
class ORV_API ByteError : public std::runtime_error {
public:
    ByteError(ByteErrorKind kind, uint64_t offset, std::string const& expected)
        : std::runtime_error(Sentence(kind, offset, expected)), m_kind(kind), m_offset(offset) {}

    ByteErrorKind GetKind() const { return m_kind; }
    // In bytes, counted from the start of the outermost view.
    uint64_t GetOffset() const { return m_offset; }

private:
    static std::string Sentence(ByteErrorKind kind, uint64_t offset, std::string const& expected) {
        char const* const words[] = {"truncated", "corrupt", "unsupported"};
        return std::string(words[static_cast<int>(kind)]) + " at offset " + std::to_string(offset) + ": expected " +
               expected;
    }

    ByteErrorKind m_kind;
    uint64_t m_offset;
};

// Some bytes of a file, with the place where they stand in it. No check can wrap, whatever offset or length a file
// claims: lengths are compared with what is left, never added up first.
class ByteView {
public:
    ByteView() = default;
    // `base` is the offset that the view's first byte has in the file; errors count from there.
    ByteView(void const* data, size_t size, uint64_t base = 0)
        : m_data(static_cast<unsigned char const*>(data)), m_size(size), m_base(base) {}

    size_t Size() const { return m_size; }
    bool IsEmpty() const { return m_size == 0; }
    unsigned char const* Data() const { return m_data; }
    uint64_t Base() const { return m_base; }

    // True if `length` bytes from `offset` on lie within the view.
    bool Has(uint64_t offset, uint64_t length) const { return offset <= m_size && length <= m_size - offset; }

    // The byte at `offset`; throws ByteError (Truncated) outside.
    unsigned char At(uint64_t offset) const {
        Require(offset, 1, "one byte");
        return m_data[offset];
    }

    // The part of `length` bytes from `offset` on; throws ByteError (Truncated) if it does not fit.
    ByteView Sub(uint64_t offset, uint64_t length, char const* expected = "a part of the data") const {
        Require(offset, length, expected);
        return Cut(offset, length);
    }
    // As much of that part as there is, down to nothing; throws never.
    ByteView Clamp(uint64_t offset, uint64_t length) const {
        const uint64_t from = offset < m_size ? offset : m_size;
        return Cut(from, length < m_size - from ? length : m_size - from);
    }
    // All from `offset` on, nothing if that lies behind the end.
    ByteView From(uint64_t offset) const { return Clamp(offset, m_size); }

    // True if the bytes of `text` stand at `offset`.
    bool Matches(uint64_t offset, char const* text, size_t length) const {
        return Has(offset, length) && (length == 0 || std::memcmp(m_data + offset, text, length) == 0);
    }

    // Unsigned numbers of two, four and eight bytes in the file's byte order; throw ByteError (Truncated) outside.
    uint16_t U16(uint64_t offset, bool bigEndian) const {
        return static_cast<uint16_t>(Number(offset, 2, bigEndian, "a 16-bit number"));
    }
    uint32_t U32(uint64_t offset, bool bigEndian) const {
        return static_cast<uint32_t>(Number(offset, 4, bigEndian, "a 32-bit number"));
    }
    uint64_t U64(uint64_t offset, bool bigEndian) const { return Number(offset, 8, bigEndian, "a 64-bit number"); }

    // The bytes as they are, up to the view's end.
    std::string ToString() const {
        return m_size == 0 ? std::string() : std::string(reinterpret_cast<char const*>(m_data), m_size);
    }

    void Require(uint64_t offset, uint64_t length, char const* expected) const {
        if (!Has(offset, length)) {
            const uint64_t place = offset < m_size ? offset : m_size;
            throw ByteError(ByteErrorKind::Truncated, m_base + place, expected);
        }
    }

private:
    ByteView Cut(uint64_t offset, uint64_t length) const {
        if (m_data == nullptr) return {};
        return {m_data + offset, static_cast<size_t>(length), m_base + offset};
    }
    uint64_t Number(uint64_t offset, unsigned bytes, bool bigEndian, char const* expected) const {
        Require(offset, bytes, expected);
        uint64_t value = 0;
        for (unsigned i = 0; i < bytes; ++i) {
            value = value << 8U | m_data[offset + (bigEndian ? i : bytes - 1 - i)];
        }
        return value;
    }

    unsigned char const* m_data = nullptr;
    size_t m_size = 0;
    uint64_t m_base = 0;
};

// A place within a view that moves on with each read. A read that does not fit throws ByteError and moves nothing.
class ByteReader {
public:
    explicit ByteReader(ByteView view, bool bigEndian = true) : m_view(view), m_bigEndian(bigEndian) {}

    ByteView const& View() const { return m_view; }
    bool IsBigEndian() const { return m_bigEndian; }
    void SetBigEndian(bool bigEndian) { m_bigEndian = bigEndian; }

    // From the view's first byte.
    size_t Position() const { return m_position; }
    // From the file's first byte.
    uint64_t FileOffset() const { return m_view.Base() + m_position; }
    size_t Remaining() const { return m_view.Size() - m_position; }
    bool AtEnd() const { return m_position == m_view.Size(); }

    void Seek(uint64_t position) {
        m_view.Require(position, 0, "a place within the data");
        m_position = static_cast<size_t>(position);
    }
    void Skip(uint64_t length, char const* expected = "bytes to skip") { Take(length, expected); }

    uint8_t U8(char const* expected = "one byte") { return Take(1, expected).At(0); }
    uint16_t U16(char const* expected = "a 16-bit number") { return Take(2, expected).U16(0, m_bigEndian); }
    uint32_t U32(char const* expected = "a 32-bit number") { return Take(4, expected).U32(0, m_bigEndian); }
    uint64_t U64(char const* expected = "a 64-bit number") { return Take(8, expected).U64(0, m_bigEndian); }

    // The next `length` bytes as a view of their own.
    ByteView Take(uint64_t length, char const* expected = "bytes") {
        ByteView part = m_view.Sub(m_position, length, expected);
        m_position += static_cast<size_t>(length);
        return part;
    }

    // Ends the reading with an error of another kind than the end of the data.
    [[noreturn]] void Fail(ByteErrorKind kind, std::string const& expected) const {
        throw ByteError(kind, FileOffset(), expected);
    }

private:
    ByteView m_view;
    size_t m_position = 0;
    bool m_bigEndian;
};
