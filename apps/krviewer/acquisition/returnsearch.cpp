#include "acquisition/returnsearch.h"

#include "acquisition/cameraidentity.h"
#include "krsystem/krsystem.h"

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace krviewer {

namespace {

// A camera that starts takes some seconds anyway, and others are to be left in peace.
constexpr std::chrono::milliseconds kPause{1000};
/// A cancel that comes just before the round begins ends nothing.
constexpr std::chrono::milliseconds kCancelPeriod{10};

void Find(KrSystem& aSystem, const std::stop_token& aStop) {
  std::jthread canceller;
  const std::stop_callback cancel(aStop, [&] {
    canceller = std::jthread([&aSystem](const std::stop_token& aIsOver) {
      while (!aIsOver.stop_requested()) {
        aSystem.Cancel();
        std::this_thread::sleep_for(kCancelPeriod);
      }
    });
  });
  // Of several adapters one may fail.
  [[maybe_unused]] const KrResult looked = aSystem.Find();
}

const KrDeviceInfo* ChooseAnswer(const KrSystem& aSystem, const KrDeviceInfo& aCamera) {
  const KrDeviceInfo* chosen = nullptr;
  for (std::size_t i = 0; i < aSystem.GetDeviceCount(); ++i) {
    const KrDeviceInfo* const found = aSystem.GetDeviceInfo(i);
    if (!found || !IsSameCamera(*found, aCamera))
      continue;
    if (CanBeReached(*found, aCamera))
      return found;
    chosen = found;
  }
  return chosen;
}

// Broadcasts do not pass routers.
const KrDeviceInfo* AskFormerAddress(KrSystem& aSystem, const KrDeviceInfo& aCamera) {
  const KrDeviceInfo* found = nullptr;
  const KrString address = GetAddress(aCamera);
  if (address.IsEmpty() || !aSystem.FindDevice(address, &found).IsOK())
    return nullptr;
  return IsSameCamera(*found, aCamera) ? found : nullptr;
}

} // namespace

bool CanBeReached(const KrDeviceInfo& aFound, const KrDeviceInfo& aBefore) {
  return aFound.IsConfigurationValid() || IsSameAddress(aFound, aBefore);
}

CameraInfo LookForCamera(const KrDeviceInfo& aCamera, const std::stop_token& aStop) {
  const auto system = std::make_shared<KrSystem>();
  // So that a camera that came back with an address of a foreign subnet is heard, too.
  system->SetSubnetBroadcastEnabled(false);
  Find(*system, aStop);
  const KrDeviceInfo* found = ChooseAnswer(*system, aCamera);
  if (!found && !aStop.stop_requested())
    found = AskFormerAddress(*system, aCamera);
  return found ? CameraInfo(system, found) : nullptr;
}

void ReturnSearch::Begin(const CameraInfo& aCamera) {
  if (mThread.joinable() && !mThread.get_stop_token().stop_requested())
    return;
  // Waits for the end of the former one.
  mThread = std::jthread([this, camera = aCamera](const std::stop_token& aStop) { Run(aStop, *camera); });
}

void ReturnSearch::End() {
  mThread.request_stop();
}

void ReturnSearch::AwaitEnd() {
  mThread = {};
}

void ReturnSearch::Run(const std::stop_token& aStop, const KrDeviceInfo& aCamera) {
  while (!aStop.stop_requested()) {
    if (const CameraInfo seen = LookForCamera(aCamera, aStop); seen && !aStop.stop_requested())
      mSeen(seen);
    std::unique_lock lock(mMutex);
    (void)mNever.wait_for(lock, aStop, kPause, [] { return false; });
  }
}

} // namespace krviewer
