// SPDX-License-Identifier: Apache-2.0
// A file descriptor that closes itself, and whole reads and writes on it. Private to the engine's libraries.
#pragma once
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>
#include <utility>

namespace tolbase {

// Owns its descriptor; -1 for none.
class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { Close(); }

    bool IsOk() const { return m_descriptor >= 0; }
    int Get() const { return m_descriptor; }
    // False if something that was written did not get through.
    bool Close() { return m_descriptor < 0 || close(std::exchange(m_descriptor, -1)) == 0; }
    // The caller closes it.
    int Release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor;
};

// Opens a regular file for reading; nothing else: a pipe would block, a device has no end.
FileDescriptor OpenRegularFile(const std::string& path);
// Up to `size` bytes, fewer only at the end of the file; -1 on failure.
ssize_t ReadBlock(int descriptor, void* buffer, std::size_t size);
bool WriteWhole(int descriptor, const void* data, std::size_t size);

}  // namespace tolbase
