// SPDX-License-Identifier: Apache-2.0
// A file's size and SHA-256 as they stand in manifests.
#pragma once

#include <cstdint>
#include <string>

namespace cli {

struct FileHash {
    bool found = false;
    uint64_t bytes = 0;
    std::string sha256;  // lower-case hexadecimal

    bool operator==(FileHash const& other) const {
        return found == other.found && bytes == other.bytes && sha256 == other.sha256;
    }
    bool operator!=(FileHash const& other) const { return !(*this == other); }
};

// Of a regular file; `found` is false for what is none, is missing or can't be read to its end. Any thread.
FileHash HashFile(std::string const& path);

}  // namespace cli
