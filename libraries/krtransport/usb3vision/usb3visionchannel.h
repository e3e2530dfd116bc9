#pragma once
// The way to an open device's registers as the access wanted allows it, which ends when control is given back. The
// device itself knows neither.

#include "aravis/registerchannel.h"
#include "krsystem/itransport.h"

#include <memory>

namespace krtransport {

/// Thread: as IRegisterChannel; Release on the same thread.
/// Ownership: shares the device until Release.
class Usb3VisionChannel final : public IRegisterChannel {
public:
  Usb3VisionChannel(std::shared_ptr<IRegisterChannel> aDevice, krsystem::DeviceAccess aAccess);

  RegisterLimits GetLimits() const override { return mLimits; }
  /// ConnectionLost after Release.
  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) override;
  /// AccessDenied for a monitor, ConnectionLost after Release.
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData) override;
  /// Lets go of the device.
  void Release() { mDevice.reset(); }

private:
  std::shared_ptr<IRegisterChannel> mDevice;
  const krsystem::DeviceAccess mAccess;
  const RegisterLimits mLimits;
};

} // namespace krtransport
