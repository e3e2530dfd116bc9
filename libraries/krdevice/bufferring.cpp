#include "bufferring.h"

#include <algorithm>
#include <new>
#include <string>

#include <unistd.h>

namespace krdevice {

namespace {

constexpr std::uint64_t kLargestPayload = std::uint64_t{4} << 30;
constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;

std::uint64_t GetPhysicalMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  return pages > 0 && pageSize > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize) : 0;
}

KrResult RefuseMemory(std::size_t aCount, std::uint64_t aPayloadBytes) {
  return {KrResult::Code::SystemError, "Starting a stream: " + std::to_string(aCount) + " buffers of " +
                                           std::to_string((aPayloadBytes + kMiB - 1) / kMiB) +
                                           " MiB each do not fit into memory; use fewer buffers or a smaller image."};
}

} // namespace

KrResult BufferRing::Allocate(std::size_t aCount, std::uint64_t aPayloadBytes) {
  mSlots.clear();
  if (aPayloadBytes == 0)
    return {KrResult::Code::ProtocolError,
            "Starting a stream: the device says that a frame takes 0 bytes; check its image size and pixel format."};
  if (aPayloadBytes > kLargestPayload)
    return {KrResult::Code::NotSupported, "Starting a stream: the device says that a frame takes " +
                                              std::to_string(aPayloadBytes) +
                                              " bytes; more than 4 GiB cannot be received."};
  // The system promises more memory than there is, and ends the process when it is used.
  if (const std::uint64_t memory = GetPhysicalMemory(); memory > 0 && aPayloadBytes > memory / aCount)
    return RefuseMemory(aCount, aPayloadBytes);
  try {
    mSlots.resize(aCount);
  } catch (const std::bad_alloc&) {
    return RefuseMemory(aCount, aPayloadBytes);
  }
  for (Slot& slot : mSlots) {
    if (slot.buffer.Alloc(static_cast<std::size_t>(aPayloadBytes)).IsOK())
      continue;
    mSlots.clear();
    return RefuseMemory(aCount, aPayloadBytes);
  }
  return {};
}

std::size_t BufferRing::CountLent() const {
  return static_cast<std::size_t>(std::ranges::count(mSlots, true, &Slot::lent));
}

bool BufferRing::Lend(const KrBuffer* aBuffer) {
  Slot* const slot = Find(aBuffer);
  if (!slot || slot->lent)
    return false;
  slot->lent = true;
  return true;
}

bool BufferRing::TakeBack(const KrBuffer* aBuffer) {
  Slot* const slot = Find(aBuffer);
  if (!slot || !slot->lent)
    return false;
  slot->lent = false;
  return true;
}

BufferRing::Slot* BufferRing::Find(const KrBuffer* aBuffer) {
  const auto slot = std::ranges::find_if(mSlots, [aBuffer](const Slot& aSlot) { return &aSlot.buffer == aBuffer; });
  return slot == mSlots.end() ? nullptr : &*slot;
}

} // namespace krdevice
