#pragma once
// Bytes in the order in which they came, up to a number of them. Waiting for bytes or room is left to the owner.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krtransport {

/// Thread: one at a time.
class ByteQueue {
public:
  explicit ByteQueue(std::size_t aCapacity);

  std::size_t GetSize() const { return mSize; }
  std::size_t GetRoom() const { return mBytes.size() - mSize; }
  bool IsEmpty() const { return mSize == 0; }

  /// Adds as many of the bytes as there is room for; gives how many.
  std::size_t Push(const std::uint8_t* aBytes, std::size_t aSize);
  /// Copies up to aSize of the oldest bytes, which stay; gives how many.
  std::size_t Peek(std::uint8_t* aBytes, std::size_t aSize) const;
  /// Takes up to aSize of the oldest bytes out; gives how many.
  std::size_t Pop(std::uint8_t* aBytes, std::size_t aSize);
  /// Drops up to aSize of the oldest bytes; gives how many.
  std::size_t Drop(std::size_t aSize);
  void Clear();

private:
  std::vector<std::uint8_t> mBytes;
  std::size_t mFirst = 0;
  std::size_t mSize = 0;
};

} // namespace krtransport
