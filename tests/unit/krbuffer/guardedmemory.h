#pragma once
// Memory that ends where a page ends, which is followed by one that nobody may touch: a byte read or written beyond
// ends the test, with or without a sanitizer.

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

class GuardedMemory {
public:
  static constexpr std::uint8_t kGuard = 0xA5;

  /// So many guard bytes come before and after the content; without any it is the memory's end.
  GuardedMemory(std::size_t aGuardBytes, std::size_t aBytes)
      : bytes(aBytes), mGuardBytes(aGuardBytes),
        mMappedBytes((2 * aGuardBytes + aBytes) / kPageBytes * kPageBytes + 2 * kPageBytes) {
    void* const mapped = mmap(nullptr, mMappedBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
      throw std::bad_alloc();
    mMapped = static_cast<std::uint8_t*>(mapped);
    std::uint8_t* const end = mMapped + mMappedBytes - kPageBytes;
    if (mprotect(end, kPageBytes, PROT_NONE) != 0)
      throw std::bad_alloc();
    mContent = end - aGuardBytes - aBytes;
    std::fill(mContent - mGuardBytes, end, kGuard);
  }
  ~GuardedMemory() { munmap(mMapped, mMappedBytes); }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;

  std::uint8_t* GetContent() const { return mContent; }
  /// The guard bytes before the content and those after it.
  std::vector<std::uint8_t> GetGuard() const {
    std::vector<std::uint8_t> guard(mContent - mGuardBytes, mContent);
    guard.insert(guard.end(), mContent + bytes, mContent + bytes + mGuardBytes);
    return guard;
  }

  const std::size_t bytes;

private:
  static constexpr std::size_t kPageBytes = 64 * 1024; // A multiple of every page's size.

  std::size_t mGuardBytes;
  std::size_t mMappedBytes;
  std::uint8_t* mMapped = nullptr;
  std::uint8_t* mContent = nullptr;
};
