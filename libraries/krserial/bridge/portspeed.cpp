#include "bridge/portspeed.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

namespace krserial {

namespace {

constexpr std::chrono::seconds kBetweenLooks(1);

} // namespace

void PortSpeed::AskSupported() {
  // A device that does not answer is one that cannot say.
  if (!mSpeed.GetSupported(mSupported, mStop.get_token()).IsOK())
    mSupported.clear();
}

void PortSpeed::Start(std::function<void(const DevicePortSpeed&)> aTell) {
  mTell = std::move(aTell);
  Look();
  mTold = Get();
  mTell({mSupported, mTold});
  mThread = std::jthread([this] { Run(); });
}

void PortSpeed::Stop() {
  RequestStop();
  mThread = std::jthread();
}

std::uint32_t PortSpeed::Get() const {
  const std::uint32_t ofDevice = mOfDevice;
  return ofDevice > 0 ? ofDevice : mHardCoded.load();
}

void PortSpeed::SetHardCoded(std::uint32_t aBaudRate) {
  mHardCoded = aBaudRate;
  LookSoon();
}

KrResult PortSpeed::Request(std::uint32_t aBaudRate) {
  if (aBaudRate == 0) {
    mStatus.SetNote({});
    return {};
  }
  if (mSupported.empty() && aBaudRate == Get())
    return {};
  KrResult set = mSpeed.Set(aBaudRate, mStop.get_token());
  if (set == KrResult::Code::Aborted)
    return set;
  const std::string text = "Its program has asked the port " + GetPortName(mPort).ToUtf8() + " of the device for " +
                           std::to_string(aBaudRate) + " baud: " + set.GetDescription().ToUtf8();
  if (set.IsOK())
    mStatus.SetNote({});
  else if (!mSupported.empty())
    mStatus.SetNote(text);
  LookSoon();
  return set;
}

void PortSpeed::Prefer(std::uint32_t aBaudRate) {
  // The speeds of the two ports may differ; that the device's has another one shows in Get.
  if (std::ranges::find(mSupported, aBaudRate) != mSupported.end())
    (void)mSpeed.Set(aBaudRate, mStop.get_token());
  LookSoon();
}

void PortSpeed::Run() {
  const std::stop_token stop = mStop.get_token();
  while (true) {
    {
      std::unique_lock lock(mMutex);
      mChanged.wait_for(lock, stop, kBetweenLooks, [this] { return mIsWanted; });
      if (stop.stop_requested())
        return;
      mIsWanted = false;
    }
    Look();
    if (const std::uint32_t speed = Get(); std::exchange(mTold, speed) != speed)
      mTell({mSupported, speed});
  }
}

void PortSpeed::Look() {
  std::uint32_t speed = 0;
  const KrResult read = mSpeed.Get(speed, mStop.get_token());
  if (read.IsOK())
    mOfDevice = speed;
  else if (read == KrResult::Code::NotFound || read == KrResult::Code::NotSupported)
    mOfDevice = 0;
}

void PortSpeed::LookSoon() {
  const std::lock_guard lock(mMutex);
  mIsWanted = true;
  mChanged.notify_all();
}

} // namespace krserial
