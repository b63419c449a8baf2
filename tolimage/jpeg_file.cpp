// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpeg_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

#include "tolbase/file.h"
#include "tolbase/filebytes.h"
#include "tolbase/limits.h"

bool ReadJpegFile(wxString const& path, bool onlyJpeg, std::string& bytes) {
    bytes.clear();
    if (path.empty()) return false;
    const tolbase::FileDescriptor file = tolbase::OpenRegularFile(PathToBytes(path));
    struct stat facts {};
    if (!file.IsOk() || fstat(file.Get(), &facts) != 0) return false;
    if (onlyJpeg) {
        char head[2] = {};
        if (tolbase::ReadBlock(file.Get(), head, 2) != 2 || head[0] != '\xFF' || head[1] != '\xD8') return false;
        if (lseek(file.Get(), 0, SEEK_SET) != 0) return false;
    }
    CheckTolLimit(TolLimit::FileBytes, static_cast<uint64_t>(facts.st_size));
    bytes.resize(static_cast<size_t>(facts.st_size));
    const ssize_t got = tolbase::ReadBlock(file.Get(), bytes.data(), bytes.size());
    bytes.resize(got < 0 ? 0 : static_cast<size_t>(got));
    return got >= 0;
}
