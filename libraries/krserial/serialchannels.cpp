#include "serialchannels.h"

#include "devicefeatures.h"
#include "guarded.h"

#include <algorithm>
#include <cstdint>

namespace krserial {

KrResult FindSerialChannel(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort,
                           std::shared_ptr<krsystem::IByteChannel>& aChannel) {
  const KrString attempt = "Looking for the serial port " + GetPortName(aPort);
  const bool isPort = std::ranges::find(kDeviceSerialPorts, aPort) != kDeviceSerialPorts.end();
  return Guard(attempt.ToUtf8(), [&]() -> KrResult {
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
  });
}

} // namespace krserial
