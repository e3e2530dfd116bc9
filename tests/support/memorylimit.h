#pragma once
// Leaves the process a given number of bytes of address space while it lives, so that larger allocations fail.

#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <fstream>

class MemoryLimit {
public:
  explicit MemoryLimit(std::size_t aBytesLeft) {
    std::size_t pagesInUse = 0;
    std::ifstream("/proc/self/statm") >> pagesInUse;
    getrlimit(RLIMIT_AS, &mBefore);
    const rlimit limited{pagesInUse * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + aBytesLeft, mBefore.rlim_max};
    setrlimit(RLIMIT_AS, &limited);
  }
  ~MemoryLimit() { setrlimit(RLIMIT_AS, &mBefore); }
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;

private:
  rlimit mBefore{};
};

// A sanitizer's allocator ends the process where there is no memory, unless it is told to answer as malloc does.
extern "C" inline __attribute__((used)) const char* __asan_default_options() {
  return "allocator_may_return_null=1";
}
extern "C" inline __attribute__((used)) const char* __tsan_default_options() {
  return "allocator_may_return_null=1";
}
