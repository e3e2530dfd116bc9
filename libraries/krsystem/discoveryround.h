#pragma once
// One round of discovery: every transport asked at once, each in a thread of its own, the answers brought to one
// thread. Which objects stand for the answers, and who hears of them, is left to KrSystem.

#include "krsystem/discoverydiagnosis.h"
#include "krsystem/itransport.h"

#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <tuple>
#include <vector>

namespace krsystem {

/// As objects live as long as their system, answers under ever new names must not fill the memory: so many devices are
/// kept, and so many are taken in one round.
inline constexpr std::size_t kMostDevices = 16'384;
/// From so many kept ones on, a round's answers become devices only where the same came in the round before, too: a
/// flood under ever new names then takes no more room from those that stay.
inline constexpr std::size_t kFreelyTakenDevices = kMostDevices / 2;
/// Interfaces change with each address that they get, and those of containers come under ever new names.
inline constexpr std::size_t kMostInterfaces = 16'384;

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

/// Runs from its construction to its destruction, which waits for the transports. What it keeps of a flood of answers
/// is bounded: the first of each unique ID on an interface, and the first one that must be of another device.
///
/// Thread: one, the round's owner.
class DiscoveryRound {
public:
  DiscoveryRound(std::vector<DiscoveryPart> aParts, DiscoveryRequest aRequest);

  /// The next answer, each unique ID of an interface once; null when all transports are done and every answer was
  /// taken, or the round was cancelled. It lives as long as the round.
  const DiscoveryAnswer* WaitForAnswer();
  /// How the transport of a part ended; only when WaitForAnswer gave null and the round was not cancelled.
  const KrResult& GetResult(std::size_t aPartIndex) const { return mResults[aPartIndex]; }
  /// All that answered, and under a unique ID that two devices share, both; for the diagnosis.
  std::vector<AnsweredDevice> GetAnswered();
  /// Whether there were more than kMostDevices.
  bool HasLeftOut();

private:
  using Key = std::tuple<std::size_t, std::size_t, KrString>; // Part, interface, unique ID.
  struct Answered {
    DiscoveryAnswer first; // Never changes, so that it is read without the lock.
    std::optional<AnyDeviceFields> other;
  };

  void Start(std::size_t aPartIndex);
  void Ask(std::size_t aPartIndex);
  void Take(std::size_t aPartIndex, std::size_t aInterfaceIndex, const AnyDeviceFields& aDevice);
  void Finish(std::size_t aPartIndex, const KrResult& aResult);

  const std::vector<DiscoveryPart> mParts;
  const DiscoveryRequest mRequest;
  std::mutex mMutex; // Guards the members from here to mResults.
  std::condition_variable_any mChanged;
  std::map<Key, Answered> mAnswered;
  std::deque<const DiscoveryAnswer*> mQueue; // Of mAnswered, whose entries stay where they are.
  bool mHasLeftOut = false;
  std::size_t mRunning;
  std::vector<KrResult> mResults;
  std::vector<std::jthread> mThreads; // The last member: its end joins before anything that the threads use goes.
};

} // namespace krsystem
