#include "discoveryround.h"

#include "anydevicefields.h"
#include "krsystem/transportcall.h"

#include <system_error>
#include <utility>

namespace krsystem {

DiscoveryRound::DiscoveryRound(std::vector<DiscoveryPart> aParts, DiscoveryRequest aRequest)
    : mParts(std::move(aParts)), mRequest(std::move(aRequest)), mRunning(mParts.size()), mResults(mParts.size()) {
  mThreads.reserve(mParts.size());
  for (std::size_t i = 0; i < mParts.size(); ++i)
    Start(i);
}

void DiscoveryRound::Start(std::size_t aPartIndex) {
  try {
    mThreads.emplace_back([this, aPartIndex] { Ask(aPartIndex); });
  } catch (const std::system_error& error) {
    Finish(aPartIndex, {KrResult::Code::SystemError,
                        std::string("No thread could be started to look for devices: ") + error.what()});
  }
}

void DiscoveryRound::Ask(std::size_t aPartIndex) {
  const auto report = [this, aPartIndex](std::size_t aInterfaceIndex, const AnyDeviceFields& aDevice) {
    Take(aPartIndex, aInterfaceIndex, aDevice);
  };
  const DiscoveryPart& part = mParts[aPartIndex];
  Finish(aPartIndex,
         CallTransport("Discovery", [&] { return part.transport->Discover(part.interfaces, mRequest, report); }));
}

void DiscoveryRound::Take(std::size_t aPartIndex, std::size_t aInterfaceIndex, const AnyDeviceFields& aDevice) {
  if (aInterfaceIndex >= mParts[aPartIndex].interfaces.size() || mRequest.cancel.stop_requested())
    return;
  const std::lock_guard lock(mMutex);
  Key key(aPartIndex, aInterfaceIndex, GetDeviceFields(aDevice).uniqueID);
  const auto known = mAnswered.find(key);
  if (known != mAnswered.end()) {
    Answered& answered = known->second;
    if (!answered.other && AreTwoDevices(answered.first.device, aDevice))
      answered.other = aDevice;
    return;
  }
  if (mAnswered.size() == kMostDevices) {
    mHasLeftOut = true;
    return;
  }
  const auto entry = mAnswered.emplace(std::move(key), Answered{{aPartIndex, aInterfaceIndex, aDevice}, {}}).first;
  mQueue.push_back(&entry->second.first);
  mChanged.notify_all();
}

void DiscoveryRound::Finish(std::size_t aPartIndex, const KrResult& aResult) {
  const std::lock_guard lock(mMutex);
  mResults[aPartIndex] = aResult;
  --mRunning;
  mChanged.notify_all();
}

const DiscoveryAnswer* DiscoveryRound::WaitForAnswer() {
  std::unique_lock lock(mMutex);
  mChanged.wait(lock, mRequest.cancel, [this] { return !mQueue.empty() || mRunning == 0; });
  if (mRequest.cancel.stop_requested() || mQueue.empty())
    return nullptr;
  const DiscoveryAnswer* const answer = mQueue.front();
  mQueue.pop_front();
  return answer;
}

std::vector<AnsweredDevice> DiscoveryRound::GetAnswered() {
  const std::lock_guard lock(mMutex);
  std::vector<AnsweredDevice> devices;
  for (const auto& [key, answered] : mAnswered) {
    const InterfaceFields& interface = mParts[answered.first.partIndex].interfaces[answered.first.interfaceIndex];
    const KrString& interfaceID =
        std::visit([](const auto& aKind) -> const KrString& { return aKind.uniqueID; }, interface);
    const auto* const adapter = std::get_if<NetworkAdapterFields>(&interface);
    const KrString name = adapter ? adapter->name : KrString();
    devices.push_back({interfaceID, answered.first.device, name});
    if (answered.other)
      devices.push_back({interfaceID, *answered.other, name});
  }
  return devices;
}

bool DiscoveryRound::HasLeftOut() {
  const std::lock_guard lock(mMutex);
  return mHasLeftOut;
}

} // namespace krsystem
