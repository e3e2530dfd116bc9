#include "usb3vision/usb3visionchannel.h"

#include <utility>

namespace krtransport {
namespace {

KrResult MakeReleased() {
  return {KrResult::Code::ConnectionLost, "Control of the device was given back; open it anew."};
}

} // namespace

Usb3VisionChannel::Usb3VisionChannel(std::shared_ptr<IRegisterChannel> aDevice, krsystem::DeviceAccess aAccess)
    : mDevice(std::move(aDevice)), mAccess(aAccess), mLimits(mDevice->GetLimits()) {}

KrResult Usb3VisionChannel::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) {
  return mDevice != nullptr ? mDevice->Read(aAddress, aData) : MakeReleased();
}

KrResult Usb3VisionChannel::Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData) {
  if (mAccess == krsystem::DeviceAccess::Monitor)
    return {KrResult::Code::AccessDenied,
            "The device was opened for reading only. Open it with control to write its registers."};
  return mDevice != nullptr ? mDevice->Write(aAddress, aData) : MakeReleased();
}

} // namespace krtransport
