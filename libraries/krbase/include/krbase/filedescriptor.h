#pragma once
// Owns a file descriptor of the system. What it refers to is the user's business.

#include "krbase/krexport.h"

#include <utility>

namespace krbase {

/// One descriptor, closed at the end. Thread: one at a time. Ownership: owns the descriptor.
class KR_EXPORT FileDescriptor {
public:
  FileDescriptor() = default;
  /// Takes a descriptor over; a negative number is none.
  explicit FileDescriptor(int aDescriptor) : mDescriptor(aDescriptor) {}
  ~FileDescriptor() { Close(); }
  /// Takes the descriptor of another, which then has none.
  FileDescriptor(FileDescriptor&& aOther) noexcept : mDescriptor(std::exchange(aOther.mDescriptor, -1)) {}
  /// The same; what this one had before is closed.
  FileDescriptor& operator=(FileDescriptor&& aOther) noexcept {
    const int taken = std::exchange(aOther.mDescriptor, -1);
    Close();
    mDescriptor = taken;
    return *this;
  }

  /// Whether there is a descriptor.
  bool IsOpen() const { return mDescriptor >= 0; }
  /// The descriptor, which stays this object's; negative where there is none.
  int Get() const { return mDescriptor; }
  /// Closes; false, with errno set, where the system has an error left to report.
  bool Close();

private:
  int mDescriptor = -1;
};

} // namespace krbase
