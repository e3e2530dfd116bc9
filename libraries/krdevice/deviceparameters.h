#pragma once
// The parameter array of one open device, made when it is asked for first. Where the description is, and what it says,
// are left to KrGenDescription and to the array.

#include "krgenicam/krgenparameterarray.h"
#include "krsystem/idevicelink.h"
#include "timedport.h"

#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>

namespace krdevice {

/// Thread: any, but for construction and destruction.
/// Ownership: borrows the link, and the port on which the array stands; owns the array.
class DeviceParameters {
public:
  /// The name is the device's, for texts.
  DeviceParameters(krsystem::IDeviceLink& aLink, IKrRegisterPort& aPort, bool aIsReadOnly, KrString aDeviceName);

  /// Gives the array; reads the description where that has not succeeded yet. A description that is no good is
  /// remembered as BadData; after another failure the next call tries again. ConnectionLost after Close.
  KrResult Get(KrGenParameterArray*& aArray);
  /// The array, or null where it was not made yet; reads nothing.
  KrGenParameterArray* Find();
  /// Takes a description instead of the device's own. InvalidInput for an empty one, WrongState once there is an array.
  KrResult SetDescription(const KrGenDescription& aDescription);
  /// Reads the device's own description, whether there is an array of it, or of another one, or not. ConnectionLost
  /// after Close.
  KrResult ReadDescription(KrGenDescription& aDescription);
  /// How long one access of the array, or of reading the description, may take; at least 1 ms.
  std::uint32_t GetTimeoutMs() const { return mPort.GetTimeoutMs(); }
  void SetTimeoutMs(std::uint32_t aTimeoutMs) { mPort.SetTimeoutMs(aTimeoutMs); }
  /// Ends the reading of the description and the array's accesses at once, now and from now on. The array itself
  /// stays, for whoever uses it still.
  void Close();

private:
  KrResult CheckOpen() const;
  KrResult ReadOwn(KrGenDescription& aDescription);
  KrResult Make();

  krsystem::IDeviceLink& mLink;
  TimedPort mPort;
  const bool mIsReadOnly;
  const KrString mDeviceName;
  std::stop_source mClosing;

  std::mutex mMutex; // Guards the members from here on; held while the description is read, so that it is read once.
  std::optional<KrGenDescription> mDescription; // Of the application.
  std::unique_ptr<KrGenParameterArray> mArray;
  KrResult mFault; // What is wrong with the description.
};

} // namespace krdevice
