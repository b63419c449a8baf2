// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/filehash.h"

#include <sys/stat.h>

#include "apps/cli/text.h"
#include "tolbase/file.h"
#include "tolbase/hash.h"

namespace cli {

FileHash HashFile(std::string const& path) {
    FileHash hash;
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return hash;
    hash.bytes = static_cast<uint64_t>(status.st_size);
    hash.sha256 = ToUtf8(TcvCalcHashFromFile(PathFromBytes(path), SHA256, true));
    hash.found = !hash.sha256.empty();
    return hash;
}

}  // namespace cli
