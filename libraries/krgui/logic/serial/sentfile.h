#pragma once
// A file that is read to be sent: a regular one, opened so that nothing it may be makes the thread wait.

#include "krbase/krstring.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace krgui {

/// An open file.
///
/// Thread: one at a time. Ownership: owns its descriptor; a file that is taken away meanwhile is read to its end.
class SentFile {
public:
  /// Nothing for a path that cannot be opened for reading or whose first byte cannot be read, and for anything but a
  /// regular file: directories, pipes, devices, sockets. The path's bytes are taken as they are.
  static std::optional<SentFile> Open(const KrString& aPath);

  SentFile(SentFile&& aOther) noexcept;
  SentFile& operator=(SentFile&&) = delete;
  ~SentFile();

  /// In bytes, when it was opened. What it grows by afterwards is not read, or a file that is being written to faster
  /// than the line takes it would never end.
  std::uint64_t GetSize() const { return mSize; }
  /// Reads on, as much as there is room for; less at the end alone. 0 from the end on, which an error is taken for too.
  std::size_t Read(std::span<std::uint8_t> aBytes);

private:
  SentFile(int aDescriptor, std::uint64_t aSize) : mDescriptor(aDescriptor), mSize(aSize), mLeft(aSize) {}

  int mDescriptor;
  std::uint64_t mSize;
  std::uint64_t mLeft;
};

} // namespace krgui
