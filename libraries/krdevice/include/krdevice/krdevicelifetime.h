#pragma once
// How long an open device can be used, for what may outlive it: a serial line behind a device's features, for example.
// What it is used for is left to the user.

#include "krbase/krexport.h"

#include <memory>
#include <stop_token>

class KrDevice;

/// The time from a device's opening to its destruction.
///
/// Thread: any.
/// Ownership: shared; it may outlive the device, which is over for it then.
///
///     const KrDeviceLifetime::Use use(*lifetime); // shared, from KrDevice::GetLifetime
///     if (use.IsGranted())
///       result = device->GetParameters(parameters); // and their accesses; the device stays until use ends
class KR_EXPORT KrDeviceLifetime {
public:
  KrDeviceLifetime();
  ~KrDeviceLifetime();
  KrDeviceLifetime(const KrDeviceLifetime&) = delete;
  KrDeviceLifetime& operator=(const KrDeviceLifetime&) = delete;

  /// A use of the device, which stays as long as this lives: the device's destruction ends the accesses that run, so
  /// that they fail at once, and waits for the uses. It must not happen inside a use of the same thread.
  class KR_EXPORT Use {
  public:
    /// Begins a use, if the device is still there.
    explicit Use(KrDeviceLifetime& aLifetime);
    ~Use();
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    /// False when the device is being destroyed, or is no more: then it must not be touched.
    bool IsGranted() const { return mIsGranted; }

  private:
    KrDeviceLifetime& mLifetime;
    const bool mIsGranted;
  };

  /// Is stopped when the device is lost or its destruction begins, on the thread where that shows: callbacks may wake
  /// who waits, and nothing else.
  std::stop_token GetEnd() const;
  /// Whether the device's destruction has begun.
  bool IsOver() const;

private:
  friend class KrDevice;
  void OnLost();
  void Refuse();
  void WaitForUses();

  struct Body;
  const std::unique_ptr<Body> mBody;
};
