#include "usb3vision/usbwatch.h"

#include "usb3vision/usbfields.h"
#include "usb3vision/usbidentity.h"

#include <algorithm>
#include <utility>

namespace krtransport {

UsbWatch::UsbWatch(Subject aSubject, std::function<KrResult()> aProbe, std::function<void(const KrResult&)> aOnLost)
    : mSubject(std::move(aSubject)), mProbe(std::move(aProbe)), mOnLost(std::move(aOnLost)),
      mThread([this](const std::stop_token& aStop) { Watch(aStop); }) {}

void UsbWatch::Stop() {
  mThread.request_stop();
  const std::lock_guard lock(mStopMutex);
  if (mThread.joinable())
    mThread.join();
}

void UsbWatch::Disconnect() {
  // In this order: a watch that finds itself disconnected knows that it is being ended, and tells nothing.
  mThread.request_stop();
  mIsConnected = false;
  Stop();
  mEvents.Forget();
}

void UsbWatch::ReportSilence() {
  const std::lock_guard lock(mRequestMutex);
  mIsSilent = true;
  ++mSilenceCount;
  mIsLookWanted = true;
  mRequest.notify_all();
}

void UsbWatch::Watch(const std::stop_token& aStop) {
  while (!aStop.stop_requested() && mIsConnected) {
    if (!IsPluggedIn())
      Lose();
    else if (mIsSilent)
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
      mEvents.ReportBack();
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
  const std::lock_guard lock(mRequestMutex);
  // Silence that was reported meanwhile may be later than the answer: it takes another one.
  if (mSilenceCount == asked)
    mIsSilent = false;
}

std::uint64_t UsbWatch::CountSilences() {
  const std::lock_guard lock(mRequestMutex);
  return mSilenceCount;
}

bool UsbWatch::IsPluggedIn() const {
  return ReadUsbAddress(mSubject.roots, mSubject.device.port) == mSubject.device.address;
}

void UsbWatch::Lose() {
  if (!mIsConnected.exchange(false))
    return;
  const KrResult reason(KrResult::Code::ConnectionLost, "The connection to the device at USB port " +
                                                            mSubject.device.port +
                                                            " was lost: it was unplugged, switched off or restarted.");
  mOnLost(reason);
  mEvents.ReportLost(reason);
}

void UsbWatch::Pause(const std::stop_token& aStop) {
  std::unique_lock lock(mRequestMutex);
  mRequest.wait_for(lock, aStop, mSubject.period, [this] { return mIsLookWanted; });
  mIsLookWanted = false;
}

} // namespace krtransport
