#pragma once
// Memory that holds up whoever reads it until a test lets it go on: so a conversion is surely under way while something
// else is tried. One at a time.

#include "await.h"

#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <new>
#include <thread>

class GatedMemory {
public:
  /// The bytes are 0.
  explicit GatedMemory(std::size_t aBytes) : mBytes(aBytes) {
    void* const mapped = mmap(nullptr, aBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
      throw std::bad_alloc();
    mMapped = static_cast<std::uint8_t*>(mapped);
    isOpen = true;
    hasReader = false;
    struct sigaction action = {};
    action.sa_handler = &HoldUp;
    sigaction(SIGSEGV, &action, &mFormerAction);
  }
  ~GatedMemory() {
    Open();
    sigaction(SIGSEGV, &mFormerAction, nullptr);
    munmap(mMapped, mBytes);
  }
  GatedMemory(const GatedMemory&) = delete;
  GatedMemory& operator=(const GatedMemory&) = delete;

  std::uint8_t* Get() const { return mMapped; }
  std::size_t GetSize() const { return mBytes; }

  /// From now on readers are held up.
  void Close() {
    isOpen = false;
    mprotect(mMapped, mBytes, PROT_NONE);
  }
  void AwaitReader() const {
    EXPECT_TRUE(krtest::Await([&] { return hasReader.load(); }));
  }
  void Open() {
    mprotect(mMapped, mBytes, PROT_READ | PROT_WRITE);
    isOpen = true;
  }

private:
  /// The instruction that reads is done again when it returns.
  static void HoldUp(int) {
    if (isOpen)
      _exit(3); // It was other memory that nobody may touch.
    hasReader = true;
    while (!isOpen)
      usleep(100);
  }

  static inline std::atomic<bool> isOpen = true;
  static inline std::atomic<bool> hasReader = false;

  const std::size_t mBytes;
  std::uint8_t* mMapped = nullptr;
  struct sigaction mFormerAction = {};
};
