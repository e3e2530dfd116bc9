#pragma once
// The devices that this process has open, so that control of all of them can be given back when it ends.
// When that is, and what ends the process, is left to the caller.

#include "krsystem/idevicelink.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace krdevice {

/// Thread: any. Ownership: borrows the links from Add to Remove.
class OpenDevices {
public:
  /// One device's place in the list.
  using Place = std::uint64_t;

  OpenDevices();
  ~OpenDevices();
  OpenDevices(const OpenDevices&) = delete;
  OpenDevices& operator=(const OpenDevices&) = delete;

  /// The list of the process; it stays until the process is gone.
  static OpenDevices& Get();

  /// Notes that a device is being opened, which is waited for when all are given back. False once that has begun: then
  /// nothing may be opened any more.
  bool BeginOpening(Place& aPlace);
  /// Adds an open device. aPrepare is called before its control is given back, on the same thread; as giving back
  /// itself it must use no static object.
  Place Add(krsystem::IDeviceLink& aLink, std::function<void()> aPrepare = {});
  /// To be called before a link is destroyed; waits for its control to be given back if that is under way. False when
  /// that took too long and the process is about to end: then the link must be left as it is.
  bool BeginClosing(Place aPlace);
  /// Takes out what was added, or an opening that is over.
  void Remove(Place aPlace);

  /// Gives back control of all devices, each on a thread of its own, and waits for that and for devices that are being
  /// opened or closed. False when aLimit passed first.
  bool GiveBackAll(std::chrono::milliseconds aLimit);

private:
  struct Table;
  const std::shared_ptr<Table> mTable; // Shared with the threads, which may outlive the wait for them.
};

} // namespace krdevice
