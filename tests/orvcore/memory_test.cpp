// SPDX-License-Identifier: Apache-2.0
// What has to work without memory, and what has to fail in an orderly way. No sanitizer bears either.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <cstdlib>
#include <new>
#include <string>

#include "orvcore/context.h"
#include "orvcore/messagequeue.h"
#include "tests/support/tempdir.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

thread_local bool refuses = false;

// While one lives, this thread gets no memory.
class NoMemory {
public:
    NoMemory() { refuses = true; }
    ~NoMemory() { refuses = false; }
    NoMemory(NoMemory const&) = delete;
    NoMemory& operator=(NoMemory const&) = delete;
};

rlim_t AddressSpace() {
    std::string const statm = support::ReadBytes("/proc/self/statm");
    return std::strtoul(statm.c_str(), nullptr, 10) * 4096;
}

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = refuses ? nullptr : std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

TEST(WithoutMemory, QueueOfPointers_IsCleared) {
    OrvMessageQueue<int*> queue;
    for (int i = 0; i < 3; ++i) queue.Post(new int(i));
    {
        NoMemory const none;
        EXPECT_THROW(static_cast<void>(std::string(100, 'x')), std::bad_alloc);
        EXPECT_EQ(OrvMsgQueueNoError, queue.ClearP());
        EXPECT_EQ(OrvMsgQueueNoError, queue.Clear());
    }
    queue.Post(nullptr);
    int* value = new int(9);
    int* const made = value;
    EXPECT_EQ(OrvMsgQueueNoError, queue.Receive(value));
    EXPECT_EQ(nullptr, value);
    delete made;
}

// A thread's stack is larger than what is left.
TEST(WithoutMemory, ContextWhoseThreadCantStart_IsRefused) {
    support::TempDir const dir;
    SetAppDocumentsPath(dir / "documents");
    pthread_attr_t attributes;
    ASSERT_EQ(0, pthread_attr_init(&attributes));
    ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, size_t{64} << 20));
    ASSERT_EQ(0, pthread_setattr_default_np(&attributes));
    rlimit const memory{AddressSpace() + (rlim_t{32} << 20), RLIM_INFINITY};
    ASSERT_EQ(0, setrlimit(RLIMIT_AS, &memory));
    EXPECT_THROW(OrvContext(), TolException);
    EXPECT_EQ(nullptr, GetContext());
    rlimit const enough{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(0, setrlimit(RLIMIT_AS, &enough));
    OrvContext const context;
    EXPECT_EQ(&context, GetContext());
}

#endif
