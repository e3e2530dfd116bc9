#include "memory.h"

#include <algorithm>
#include <string>

namespace krbuffer {

KrResult Memory::Alloc(std::size_t aBytes) {
  // calloc gives large blocks as untouched zero pages, so that room that is never used costs nothing.
  std::unique_ptr<std::uint8_t, FreeDeleter> fresh(static_cast<std::uint8_t*>(std::calloc(aBytes, 1)));
  if (!fresh)
    return {KrResult::Code::SystemError, "A buffer of " + std::to_string(aBytes) +
                                             " bytes could not be allocated: there is too little memory. Use fewer or "
                                             "smaller buffers."};
  Attach(fresh.get(), aBytes);
  mOwned = std::move(fresh);
  return {};
}

void Memory::Attach(std::uint8_t* aMemory, std::size_t aBytes) {
  Free();
  mData = aMemory;
  mBytes = aBytes;
}

void Memory::Free() {
  mOwned.reset();
  mData = nullptr;
  mBytes = 0;
  mFilledBytes = 0;
  ++mGeneration;
}

void Memory::SetFilledBytes(std::size_t aBytes) {
  mFilledBytes = std::min(aBytes, mBytes);
}

} // namespace krbuffer
