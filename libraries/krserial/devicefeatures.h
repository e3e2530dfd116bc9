#pragma once
// The serial ports that a device has behind its features, found once for each open device. Which features make a port
// is left to the maps.

#include "featurechannel.h"
#include "krdevice/krdevice.h"
#include "krserial/krdeviceserial.h"
#include "serialmap.h"

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

namespace krserial {

/// Thread: any. Ownership: shared by whoever asks; borrows the device within its calls.
class DeviceFeatures {
public:
  using ChannelPointer = std::shared_ptr<krsystem::IByteChannel>;

  /// The ports of an open device; the same object until its end.
  static std::shared_ptr<DeviceFeatures> Of(const KrDevice& aDevice);

  using Clock = std::chrono::steady_clock;
  using Now = std::function<Clock::time_point()>;

  /// For so long a device that did not answer is not asked again: windows look for all ports one after the other.
  static constexpr std::chrono::seconds kSilence{1};

  explicit DeviceFeatures(std::shared_ptr<KrDeviceLifetime> aLifetime, Now aNow = &Clock::now)
      : mLifetime(std::move(aLifetime)), mNow(std::move(aNow)) {}

  /// The line of a port, null where there is none. The first call asks the device; the answer is remembered. That of a
  /// device that did not answer is the result, and remembered for kSilence.
  KrResult Get(KrDevice& aDevice, KrDeviceSerial aPort, ChannelPointer& aChannel);

private:
  using Channels = std::array<ChannelPointer, kDeviceSerialPorts.size()>;
  bool IsAnswered() const;
  KrResult FindAll(KrDevice& aDevice, const SerialMaps& aMaps);
  KrResult FindPorts(KrGenParameterArray& aArray, const SerialMap& aMap, Channels& aChannels);

  const std::shared_ptr<KrDeviceLifetime> mLifetime;
  const Now mNow;
  const std::shared_ptr<FeatureTurn> mTurn = std::make_shared<FeatureTurn>();

  std::mutex mMutex; // Guards the members from here on; held while the device is asked, so that it is asked once.
  bool mIsFound = false;
  KrResult mFailure; // Of the device, asked last at mFailedAt.
  Clock::time_point mFailedAt;
  Channels mChannels;
};

} // namespace krserial
