#pragma once
// The speed of a device's serial port, as the line to a camera sets it.

#include "krdevice/krdeviceadapter.h"
#include "krserial/krdeviceserialspeed.h"
#include "line/borroweddevice.h"
#include "line/ilinespeed.h"

#include <utility>

namespace krcamerabridge {

/// ConnectionLost once the device has been closed.
class DeviceLineSpeed final : public ILineSpeed {
public:
  DeviceLineSpeed(BorrowedDevice aDevice, KrDeviceSerial aPort) : mDevice(std::move(aDevice)), mPort(aPort) {}

  KrResult GetSupported(std::vector<std::uint32_t>& aBaudRates) override {
    return Ask([&](const KrDeviceSerialSpeed& aSpeed) { return aSpeed.GetSupported(aBaudRates); });
  }
  KrResult Get(std::uint32_t& aBaudRate) override {
    return Ask([&](const KrDeviceSerialSpeed& aSpeed) { return aSpeed.Get(aBaudRate); });
  }
  KrResult Set(std::uint32_t aBaudRate) override {
    return Ask([&](const KrDeviceSerialSpeed& aSpeed) { return aSpeed.Set(aBaudRate); });
  }

private:
  template <typename Question>
  KrResult Ask(Question&& aQuestion) const {
    return mDevice.Use([&](KrDevice& aDevice) {
      KrDeviceAdapter adapter(aDevice);
      return aQuestion(KrDeviceSerialSpeed(adapter, mPort));
    });
  }

  const BorrowedDevice mDevice;
  const KrDeviceSerial mPort;
};

} // namespace krcamerabridge
