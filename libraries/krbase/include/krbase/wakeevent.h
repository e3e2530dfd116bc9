#pragma once
// What wakes a thread that waits for descriptors.

#include "krbase/filedescriptor.h"

namespace krbase {

/// An event that poll() can wait for: its descriptor is readable from Signal to Clear.
/// Thread: any. Ownership: owns its descriptor.
class KR_EXPORT WakeEvent {
public:
  /// Not signalled.
  WakeEvent();

  /// False where the system had no descriptor left; errno says why behind the constructor. Such a one does nothing.
  bool IsOpen() const { return mDescriptor.IsOpen(); }
  /// Negative where there is none.
  int GetDescriptor() const { return mDescriptor.Get(); }
  /// Makes the descriptor readable.
  void Signal() const;
  /// Makes it wait for the next signal.
  void Clear() const;

private:
  FileDescriptor mDescriptor;
};

} // namespace krbase
