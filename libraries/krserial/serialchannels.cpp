#include "serialchannels.h"

#include "devicefeatures.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <string>

namespace krserial {

KrResult FindSerialChannel(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort,
                           std::shared_ptr<krsystem::IByteChannel>& aChannel) {
  const KrString attempt = "Looking for the serial port " + GetPortName(aPort);
  const bool isPort = std::ranges::find(kDeviceSerialPorts, aPort) != kDeviceSerialPorts.end();
  try {
    std::shared_ptr<krsystem::IByteChannel> channel;
    if (aAdapter && isPort)
      channel = aAdapter->GetByteChannel(static_cast<std::uint32_t>(aPort));
    KrDevice* const device = aAdapter && isPort && !channel ? aAdapter->GetDevice() : nullptr;
    if (device) {
      if (KrResult asked = DeviceFeatures::Of(*device)->Get(*device, aPort, channel); !asked.IsOK())
        return {asked.GetCode(), attempt + ": " + asked.GetDescription()};
    }
    if (!channel)
      return {KrResult::Code::NotSupported, attempt + ": the device has no such port."};
    aChannel = channel;
    return {};
  } catch (const std::exception& error) {
    return {KrResult::Code::SystemError, attempt + " was ended by an exception: " + error.what()};
  } catch (...) {
    return {KrResult::Code::SystemError, attempt + " was ended by an exception of unknown type."};
  }
}

} // namespace krserial
