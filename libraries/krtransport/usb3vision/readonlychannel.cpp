#include "usb3vision/readonlychannel.h"

namespace krtransport {

KrResult ReadOnlyChannel::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) {
  return mChannel->Read(aAddress, aData);
}

KrResult ReadOnlyChannel::Write(std::uint64_t, std::span<const std::uint8_t>) {
  return {KrResult::Code::AccessDenied,
          "The device was opened for reading only. Open it with control to write its registers."};
}

} // namespace krtransport
