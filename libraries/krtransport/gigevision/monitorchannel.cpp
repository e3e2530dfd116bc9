#include "gigevision/monitorchannel.h"

namespace krtransport {

KrResult MonitorChannel::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) {
  return mClient.ReadMemory(static_cast<std::uint32_t>(aAddress), aData, GvcpPatience{});
}

KrResult MonitorChannel::Write(std::uint64_t, std::span<const std::uint8_t>) {
  return {KrResult::Code::AccessDenied,
          "The device was opened for reading only. Open it with control to write its registers."};
}

} // namespace krtransport
