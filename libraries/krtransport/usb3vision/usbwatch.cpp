#include "usb3vision/usbwatch.h"

#include "usb3vision/usbfields.h"
#include "usb3vision/usbidentity.h"

#include <algorithm>
#include <utility>

namespace krtransport {

UsbWatch::UsbWatch(Subject aSubject, std::function<KrResult()> aProbe, OnLost aOnLost)
    : DeviceWatch(std::move(aOnLost)), mSubject(std::move(aSubject)), mProbe(std::move(aProbe)) {
  Begin([this](const std::stop_token& aStop) { Watch(aStop); });
}

void UsbWatch::Watch(const std::stop_token& aStop) {
  while (!aStop.stop_requested() && IsConnected()) {
    if (!IsPluggedIn())
      LoseUnplugged();
    else if (IsSilent())
      AskAgain();
    Pause(aStop);
  }
  if (!aStop.stop_requested())
    LookForReturn(aStop);
}

void UsbWatch::LookForReturn(const std::stop_token& aStop) {
  while (!aStop.stop_requested()) {
    const std::vector<UsbDevice> devices = ReadUsbDevices(mSubject.roots, aStop);
    const bool isBack = std::ranges::any_of(devices, [this](const UsbDevice& aDevice) {
      return IsSameDevice(mSubject.device, aDevice) && GetUsbKind(aDevice) == UsbKind::Camera;
    });
    if (isBack) {
      ReportBack();
      return;
    }
    Pause(aStop);
  }
}

void UsbWatch::AskAgain() {
  const std::uint64_t asked = CountSilences();
  const KrResult answer = mProbe();
  // A refusal is an answer too.
  if (!answer.IsOK() && answer != KrResult::Code::ProtocolError)
    return;
  ForgetSilence(asked);
}

bool UsbWatch::IsPluggedIn() const {
  return ReadUsbAddress(mSubject.roots, mSubject.device.port) == mSubject.device.address;
}

void UsbWatch::LoseUnplugged() {
  Lose({KrResult::Code::ConnectionLost, "The connection to the device at USB port " + mSubject.device.port +
                                            " was lost: it was unplugged, switched off or restarted."});
}

void UsbWatch::Pause(const std::stop_token& aStop) {
  PauseUntil(std::chrono::steady_clock::now() + mSubject.period, aStop);
}

} // namespace krtransport
