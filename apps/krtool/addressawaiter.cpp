#include "addressawaiter.h"

#include "devicewords.h"
#include "krbase/krsteadytime.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>

namespace krtool {

namespace {

// A device that was deaf for a moment, while its address changed, hears the next round.
constexpr std::uint32_t kRoundMs = 500;
// Where everybody answers at once, rounds keep this distance.
constexpr std::chrono::milliseconds kPause{20};

/// Ends the round as soon as the device answers as it is to.
class Listener final : public KrSystemEventSink {
public:
  Listener(KrSystem& aSystem, const krsystem::NetworkFields& aWanted, const KrInterface* aInterface)
      : mSystem(aSystem), mWanted(aWanted), mInterface(aInterface) {
    // It was made for this one system and stays alone there, so it cannot be refused.
    static_cast<void>(mSystem.RegisterEventSink(this));
  }
  ~Listener() override { static_cast<void>(mSystem.UnregisterEventSink(this)); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  void OnDeviceFound(const KrInterface* aInterface, const KrDeviceInfo* aDevice, bool&) override {
    const auto network = GetNetworkFields(*aDevice);
    const bool isThere = !mInterface || (aInterface && aInterface->GetUniqueID() == mInterface->GetUniqueID());
    if (!network || network->macAddress != mWanted.macAddress || !isThere)
      return;
    mLast = *network;
    if (*network != mWanted)
      return;
    mFound = aDevice;
    mSystem.Cancel();
  }

  // The round is over when they are asked.
  const KrDeviceInfo* GetFound() const { return mFound; }
  const std::optional<krsystem::NetworkFields>& GetLast() const { return mLast; }

private:
  KrSystem& mSystem;
  const krsystem::NetworkFields mWanted;
  const KrInterface* const mInterface;
  const KrDeviceInfo* mFound = nullptr;
  std::optional<krsystem::NetworkFields> mLast;
};

KrResult DescribeSilence(const krsystem::NetworkFields& aWanted, const std::optional<krsystem::NetworkFields>& aLast,
                         std::uint32_t aTimeoutMs) {
  const KrString limit = std::to_string(aTimeoutMs) + " ms";
  if (!aLast)
    return {KrResult::Code::TimeLimitExceeded,
            "it has not answered at " + aWanted.ipAddress + " within " + limit + ", nor anywhere else."};
  return {KrResult::Code::TimeLimitExceeded,
          "after " + limit + " it still has the address " + aLast->ipAddress + ", mask " + aLast->subnetMask +
              " and gateway " + aLast->defaultGateway + ". A device that an application controls keeps its address."};
}

} // namespace

KrResult AwaitAddress(KrSystem& aSystem, const krsystem::NetworkFields& aWanted, std::uint32_t aTimeoutMs,
                      NetworkDevice& aDevice, std::uint64_t& aTookMs) {
  const std::uint32_t formerTimeoutMs = aSystem.GetDetectionTimeout();
  const std::uint64_t start = KrGetSteadyNs();
  const auto getTookMs = [start] { return (KrGetSteadyNs() - start) / 1'000'000; };
  Listener listener(aSystem, aWanted, aDevice.adapter);
  KrResult found;
  for (std::uint64_t tookMs = 0; !listener.GetFound() && tookMs < aTimeoutMs; tookMs = getTookMs()) {
    aSystem.SetDetectionTimeout(static_cast<std::uint32_t>(std::min<std::uint64_t>(kRoundMs, aTimeoutMs - tookMs)));
    found = aSystem.Find();
    if (!listener.GetFound())
      std::this_thread::sleep_for(kPause);
  }
  aSystem.SetDetectionTimeout(formerTimeoutMs);
  aTookMs = getTookMs();
  if (!listener.GetFound())
    return found.IsOK() ? DescribeSilence(aWanted, listener.GetLast(), aTimeoutMs) : found;
  aDevice = {listener.GetFound(), dynamic_cast<const KrNetworkAdapter*>(listener.GetFound()->GetInterface()), aWanted};
  return {};
}

} // namespace krtool
