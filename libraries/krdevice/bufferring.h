#pragma once
// The buffers of one stream and which of them the application holds. How they are filled is left to the source.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krdevice {

/// Thread: one at a time, as its stream arranges it. Ownership: owns the buffers.
class BufferRing {
public:
  /// Replaces the buffers by aCount of a payload's size. ProtocolError for a size of 0, NotSupported beyond 4 GiB,
  /// SystemError when the memory does not suffice; there are no buffers then.
  KrResult Allocate(std::size_t aCount, std::uint64_t aPayloadBytes);

  std::size_t GetCount() const { return mSlots.size(); }
  /// How many the application holds.
  std::size_t CountLent() const;
  /// The bytes of each; 0 where there are none.
  std::size_t GetBufferBytes() const { return mSlots.empty() ? 0 : mSlots.front().buffer.GetSize(); }
  KrBuffer* GetBuffer(std::size_t aIndex) { return &mSlots[aIndex].buffer; }
  /// Notes that the application holds a buffer; false for one that is none of these, or that it holds already.
  bool Lend(const KrBuffer* aBuffer);
  /// Notes that the application gave a buffer back; false for one that it did not hold.
  bool TakeBack(const KrBuffer* aBuffer);

private:
  struct Slot {
    KrBuffer buffer;
    bool lent = false;
  };
  Slot* Find(const KrBuffer* aBuffer);

  std::vector<Slot> mSlots;
};

} // namespace krdevice
