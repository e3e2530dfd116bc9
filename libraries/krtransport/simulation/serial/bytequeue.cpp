#include "simulation/serial/bytequeue.h"

#include <algorithm>
#include <cstring>

namespace krtransport {

namespace {

// memcpy takes no null pointers, not even for no bytes.
void Copy(std::uint8_t* aTo, const std::uint8_t* aFrom, std::size_t aSize) {
  if (aSize > 0)
    std::memcpy(aTo, aFrom, aSize);
}

} // namespace

ByteQueue::ByteQueue(std::size_t aCapacity) : mBytes(aCapacity) {}

std::size_t ByteQueue::Push(const std::uint8_t* aBytes, std::size_t aSize) {
  const std::size_t size = std::min(aSize, GetRoom());
  const std::size_t end = (mFirst + mSize) % mBytes.size();
  const std::size_t untilWrap = std::min(size, mBytes.size() - end);
  Copy(mBytes.data() + end, aBytes, untilWrap);
  Copy(mBytes.data(), aBytes + untilWrap, size - untilWrap);
  mSize += size;
  return size;
}

std::size_t ByteQueue::Peek(std::uint8_t* aBytes, std::size_t aSize) const {
  const std::size_t size = std::min(aSize, mSize);
  const std::size_t untilWrap = std::min(size, mBytes.size() - mFirst);
  Copy(aBytes, mBytes.data() + mFirst, untilWrap);
  Copy(aBytes + untilWrap, mBytes.data(), size - untilWrap);
  return size;
}

std::size_t ByteQueue::Pop(std::uint8_t* aBytes, std::size_t aSize) {
  return Drop(Peek(aBytes, aSize));
}

std::size_t ByteQueue::Drop(std::size_t aSize) {
  const std::size_t size = std::min(aSize, mSize);
  mFirst = (mFirst + size) % mBytes.size();
  mSize -= size;
  return size;
}

void ByteQueue::Clear() {
  mFirst = 0;
  mSize = 0;
}

} // namespace krtransport
