#pragma once
// One round of discovery: every transport asked at once, each in a thread of its own, the answers brought to one
// thread. Which objects stand for the answers, and who hears of them, is left to KrSystem.

#include "krsystem/itransport.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace krsystem {

/// One transport's share of a round.
struct DiscoveryPart {
  std::shared_ptr<ITransport> transport;
  std::vector<InterfaceFields> interfaces;
  std::vector<KrInterface*> objects; ///< What stands for each; null for one that nothing stands for.
};

/// One answer.
struct DiscoveryAnswer {
  std::size_t partIndex;
  std::size_t interfaceIndex;
  AnyDeviceFields device;
};

/// Runs from its construction to its destruction, which waits for the transports.
///
/// Thread: one, the round's owner.
class DiscoveryRound {
public:
  DiscoveryRound(std::vector<DiscoveryPart> aParts, DiscoveryRequest aRequest);

  /// The next answer; nothing when all transports are done and every answer was taken, or the round was cancelled.
  std::optional<DiscoveryAnswer> WaitForAnswer();
  /// How the transport of a part ended; only when WaitForAnswer gave nothing and the round was not cancelled.
  const KrResult& GetResult(std::size_t aPartIndex) const { return mResults[aPartIndex]; }

private:
  void Start(std::size_t aPartIndex);
  void Ask(std::size_t aPartIndex);
  void Finish(std::size_t aPartIndex, const KrResult& aResult);

  const std::vector<DiscoveryPart> mParts;
  const DiscoveryRequest mRequest;
  std::mutex mMutex; // Guards the members from here to mResults.
  std::condition_variable_any mChanged;
  std::deque<DiscoveryAnswer> mAnswers;
  std::size_t mRunning;
  std::vector<KrResult> mResults;
  std::vector<std::jthread> mThreads; // The last member: its end joins before anything that the threads use goes.
};

} // namespace krsystem
