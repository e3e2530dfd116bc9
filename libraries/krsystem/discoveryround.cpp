#include "discoveryround.h"

#include "transportcall.h"

#include <system_error>

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
    const std::lock_guard lock(mMutex);
    mAnswers.push_back({aPartIndex, aInterfaceIndex, aDevice});
    mChanged.notify_all();
  };
  const DiscoveryPart& part = mParts[aPartIndex];
  Finish(aPartIndex,
         CallTransport("Discovery", [&] { return part.transport->Discover(part.interfaces, mRequest, report); }));
}

void DiscoveryRound::Finish(std::size_t aPartIndex, const KrResult& aResult) {
  const std::lock_guard lock(mMutex);
  mResults[aPartIndex] = aResult;
  --mRunning;
  mChanged.notify_all();
}

std::optional<DiscoveryAnswer> DiscoveryRound::WaitForAnswer() {
  std::unique_lock lock(mMutex);
  mChanged.wait(lock, mRequest.cancel, [this] { return !mAnswers.empty() || mRunning == 0; });
  if (mRequest.cancel.stop_requested() || mAnswers.empty())
    return std::nullopt;
  DiscoveryAnswer answer = std::move(mAnswers.front());
  mAnswers.pop_front();
  return answer;
}

} // namespace krsystem
