#pragma once
// Locks what a frame's size depends on while streams of a device run, as a transport layer has to (GenApi, the node
// TLParamsLocked). Streaming itself is left to KrStream.

#include "deviceparameters.h"

#include <atomic>
#include <cstddef>
#include <mutex>

namespace krdevice {

/// What fails here is logged, and ends no stream: a device without a description, or without such a parameter, streams
/// all the same.
///
/// Thread: any. Ownership: borrows the parameters.
class ParameterLock {
public:
  explicit ParameterLock(DeviceParameters& aParameters) : mParameters(aParameters) {}

  /// Before a stream is set up: locks for the first one.
  void Acquire();
  /// After a stream has started: has the array forget its values, as the device and its transport layer have changed
  /// some by then.
  void ForgetValues();
  /// After a stream has stopped, or did not start: unlocks for the last one, and has values forgotten, too.
  void Release();
  /// Whether streams run, or are being started.
  bool HasStreams() const { return mStreams > 0; }
  /// Unlocks at the end of the process, while streams may still run. Ends the accesses that are under way; waits for
  /// no lock of this class.
  void ReleaseAtEnd();

private:
  DeviceParameters& mParameters;
  std::atomic<KrGenParameterArray*> mLocked = nullptr; // The array, while streams run.

  std::mutex mMutex;                     // Keeps locking and unlocking in the order in which the number changes.
  std::atomic<std::size_t> mStreams = 0; // Changes with the mutex held.
};

} // namespace krdevice
