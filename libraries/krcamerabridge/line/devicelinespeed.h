#pragma once
// The speed of a device's serial port, as the line to a camera sets it.

#include "krserial/krdeviceserialspeed.h"
#include "line/ilinespeed.h"

namespace krcamerabridge {

/// Ownership: borrows the adapter.
class DeviceLineSpeed final : public ILineSpeed {
public:
  DeviceLineSpeed(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort) : mSpeed(aAdapter, aPort) {}

  KrResult GetSupported(std::vector<std::uint32_t>& aBaudRates) override { return mSpeed.GetSupported(aBaudRates); }
  KrResult Get(std::uint32_t& aBaudRate) override { return mSpeed.Get(aBaudRate); }
  KrResult Set(std::uint32_t aBaudRate) override { return mSpeed.Set(aBaudRate); }

private:
  const KrDeviceSerialSpeed mSpeed;
};

} // namespace krcamerabridge
