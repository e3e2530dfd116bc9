#pragma once
// Owns a file descriptor of the system. What it refers to is the user's business.

#include "krbase/krexport.h"

#include <utility>

namespace krbase {

class KR_EXPORT FileDescriptor {
public:
  FileDescriptor() = default;
  explicit FileDescriptor(int aDescriptor) : mDescriptor(aDescriptor) {}
  ~FileDescriptor() { Close(); }
  FileDescriptor(FileDescriptor&& aOther) noexcept : mDescriptor(std::exchange(aOther.mDescriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& aOther) noexcept {
    std::swap(mDescriptor, aOther.mDescriptor);
    return *this;
  }

  bool IsOpen() const { return mDescriptor >= 0; }
  int Get() const { return mDescriptor; }
  /// Closes; false, with errno set, where the system has an error left to report.
  bool Close();

private:
  int mDescriptor = -1;
};

} // namespace krbase
