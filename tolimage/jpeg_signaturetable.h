// SPDX-License-Identifier: Apache-2.0
// The compiled signatures as the build makes them out of data/: numbers and one pool of texts, so that nothing has to
// be relocated or parsed when the program starts.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

// Texts are offsets into the pool.
struct PackedJpegSignature {
    int32_t editorClass;
    uint32_t make, model, quality, signature, signatureRot, subsampling, softwareVendor, softwareName;
    uint32_t tables[3];
};

// Sorted by key, so that a look-up is a binary search.
struct JpegSignatureKey {
    uint64_t key;
    uint32_t record;
};

extern const char kJpegSignaturePool[];
extern const PackedJpegSignature kJpegSignatures[];  // the terminating record is the last
extern const size_t kJpegSignatureCount;             // without the terminating one
// Records with tables, by the tables' texts joined by "|".
extern const JpegSignatureKey kJpegSignaturesByTables[];
extern const size_t kJpegSignaturesByTablesCount;
// Records that have nothing but a digest, by its first 16 digits.
extern const JpegSignatureKey kJpegSignaturesByDigest[];
extern const size_t kJpegSignaturesByDigestCount;

// FNV-1a, 64 bits. Equal keys are looked at whole, so this needs to be no more than even.
constexpr uint64_t JpegTextKey(std::string_view text) {
    uint64_t key = 14695981039346656037U;
    for (const char c : text) key = (key ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return key;
}

// The first 16 of the digits; whatever is no digit counts as 0.
constexpr uint64_t JpegDigestKey(std::string_view digest) {
    uint64_t key = 0;
    for (const char c : digest.substr(0, 16)) {
        const bool isLetter = c >= 'A' && c <= 'F';
        const int digit = c >= '0' && c <= '9' ? c - '0' : (isLetter ? c - 'A' + 10 : 0);
        key = key << 4U | static_cast<uint64_t>(digit);
    }
    return key;
}
