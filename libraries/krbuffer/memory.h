#pragma once
// The bytes of one buffer: its own or borrowed ones, and how many of them were filled.
// What the bytes mean is left to the buffer and its image.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace krbuffer {

/// Thread: one at a time.
/// Ownership: frees what Alloc made, never what was attached.
class Memory {
public:
  /// Takes zeroed bytes of its own in place of what was there; SystemError, and nothing changed, where there are none.
  KrResult Alloc(std::size_t aBytes);
  /// Takes the caller's bytes in place of what was there.
  void Attach(std::uint8_t* aMemory, std::size_t aBytes);
  void Free();

  std::uint8_t* GetDataPointer() const { return mData; }
  std::size_t GetSize() const { return mBytes; }

  /// Bytes filled from the start, at most GetSize(); 0 for new memory.
  std::size_t GetFilledBytes() const { return mFilledBytes; }
  void SetFilledBytes(std::size_t aBytes);

  /// Changes whenever other bytes, or none, take the place of what was there.
  std::uint64_t GetGeneration() const { return mGeneration; }

private:
  struct FreeDeleter {
    void operator()(std::uint8_t* aMemory) const { std::free(aMemory); }
  };

  std::unique_ptr<std::uint8_t, FreeDeleter> mOwned;
  std::uint8_t* mData = nullptr;
  std::size_t mBytes = 0;
  std::size_t mFilledBytes = 0;
  std::uint64_t mGeneration = 0;
};

} // namespace krbuffer
