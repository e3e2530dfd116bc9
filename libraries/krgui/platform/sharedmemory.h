#pragma once
// Memory that another process can be given: by a descriptor, or as a System V segment. None of it outlives the
// processes that have it, however they end. Who is given it is left to the owner.

#include <cstddef>
#include <cstdint>

namespace krgui {

/// Thread: one at a time.
class SharedMemory {
public:
  /// None.
  SharedMemory() = default;
  /// Memory that its descriptor stands for, all of it reserved: touching it never fails later. None where none is to be
  /// had.
  static SharedMemory MakeByDescriptor(std::size_t aSize);
  /// A System V segment. It has no name any more: who has its number can still attach to it as long as we live.
  static SharedMemory MakeSystemV(std::size_t aSize);

  ~SharedMemory();
  SharedMemory(SharedMemory&& aOther) noexcept;
  SharedMemory& operator=(SharedMemory&& aOther) noexcept;

  std::uint32_t* GetPixels() const { return mPixels; } ///< Null for none.
  std::size_t GetSize() const { return mSize; }        ///< In bytes; 0 for none.

  /// The descriptor, which the caller closes; -1 when it was taken already and for memory of another kind.
  int TakeDescriptor();
  /// The segment's number; -1 for memory of another kind.
  int GetSegmentNumber() const { return mSegmentNumber; }

private:
  std::uint32_t* mPixels = nullptr;
  std::size_t mSize = 0;
  int mDescriptor = -1;
  int mSegmentNumber = -1;
};

} // namespace krgui
