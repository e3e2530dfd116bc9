#include "map/nodemap.h"
#include "map/parameterwatch.h"
#include "nodes/commandnode.h"
#include "nodes/enumerationnode.h"
#include "nodes/portnode.h"
#include "nodes/registernode.h"

#include <memory>
#include <mutex>
#include <stop_token>
#include <utility>
#include <vector>

// What makes nodes be read anew beside writing, and how sinks hear of changes.

namespace krgenicam {

KrResult NodeMap::Poll(const std::stop_token& aStop) {
  const std::uint64_t now = GetTimeMs();
  const krbase::EitherStop stop(GetCancelToken(), aStop);
  const std::stop_token cancel = stop.GetToken();
  // Who stops tells one after the other who has asked to be told: an access that was may have ended before this was.
  const auto isStopped = [&] { return aStop.stop_requested() || cancel.stop_requested(); };
  KrResult first;
  // Others get their turn between two nodes.
  for (PolledNode& polled : mPolledNodes) {
    const KrResult result = Run(cancel, [&](Evaluation& aEvaluation) {
      return isStopped() ? KrResult() : PollNode(aEvaluation, polled, now);
    });
    if (first.IsOK() && !result.IsOK())
      first = result;
    if (mIsClosed || isStopped())
      return first.IsOK() ? KrResult(KrResult::Code::Aborted, "Polling was cancelled.") : first;
  }
  const KrResult queued = Run([this](Evaluation&) {
    for (ParameterWatch* watch : mWatchesOfNextPoll)
      mNotifications.Queue(*watch);
    mWatchesOfNextPoll.clear();
    return KrResult();
  });
  return first.IsOK() ? queued : first;
}

KrResult NodeMap::PollNode(Evaluation& aEvaluation, PolledNode& aPolled, std::uint64_t aNowMs) {
  Node& node = aPolled.node;
  Node* const seed = &node;
  const bool isCommand = node.GetKind() == NodeKind::Command;
  if (!aPolled.IsDue(aNowMs) || (isCommand && !static_cast<CommandNode&>(node).IsPending()))
    return {};
  Number block;
  if (node.GetPollingBlock().node && node.GetPollingBlock().node->GetValue(aEvaluation, block).IsOK() &&
      block.ToFloat() != 0.0)
    return {};
  if (node.GetKind() == NodeKind::Enumeration && !static_cast<EnumerationNode&>(node).IsSelfClearingNow(aEvaluation))
    return {};
  aPolled.lastMs = aNowMs;
  if (isCommand) {
    bool isDone = false;
    return static_cast<CommandNode&>(node).IsDone(aEvaluation, isDone);
  }
  Invalidate(std::span(&seed, 1), Invalidation::Poll);
  aEvaluation.epoch = TakeEpoch();
  return ReadPolled(aEvaluation, node);
}

KrResult NodeMap::ReadPolled(Evaluation& aEvaluation, Node& aNode) {
  // What cannot be read is no failure.
  const KrGenType type = aNode.GetType();
  if (type == KrGenType::Register && IsWorthReading(aNode, aEvaluation)) {
    std::vector<std::uint8_t> bytes;
    return static_cast<RegisterNode&>(aNode).GetBytes(aEvaluation, bytes);
  }
  if (type == KrGenType::Register || type == KrGenType::Other || !IsReadable(aNode.GetAccess(aEvaluation)))
    return {};
  if (type == KrGenType::String) {
    std::string text;
    return aNode.ReadText(aEvaluation, text);
  }
  Number value;
  return aNode.GetValue(aEvaluation, value);
}

void NodeMap::DeliverEvent(std::uint64_t aEventID, std::span<const std::uint8_t> aData) {
  const auto found = mNodesOfEvents.find(aEventID);
  if (found == mNodesOfEvents.end())
    return;
  (void)Run([&](Evaluation&) { // Events of a map that is closed are of no interest.
    for (Node* node : found->second) {
      if (node->GetKind() == NodeKind::Port)
        static_cast<PortNode&>(*node).SetEventData(aData);
    }
    Invalidate(found->second, Invalidation::Write);
    return KrResult();
  });
}

void NodeMap::SetChunkData(std::uint64_t aChunkID, std::optional<std::span<const std::uint8_t>> aData) {
  (void)Run([&](Evaluation& aEvaluation) { // As for events.
    for (PortNode* port : mChunkPorts) {
      if (port->GetChunkID(aEvaluation) != aChunkID)
        continue;
      port->SetChunkData(aData);
      aEvaluation.OnWritten(*port);
    }
    return KrResult();
  });
}

ParameterWatch& NodeMap::FindWatch(Node& aNode) {
  const std::lock_guard lock(mWatchesMutex);
  std::unique_ptr<ParameterWatch>& watch = mWatches[&aNode];
  if (!watch)
    watch = std::make_unique<ParameterWatch>(*GetParameter(aNode), aNode);
  return *watch;
}

KrResult NodeMap::RegisterEventSink(Node& aNode, KrGenEventSink* aSink) {
  ParameterWatch& watch = FindWatch(aNode);
  // Before the sink is in: a caller who was refused may take it away.
  if (KrResult started = mNotifications.Start(); !started.IsOK())
    return started;
  KrResult result = watch.Register(aSink, mEpoch);
  if (!result.IsOK())
    return result;
  {
    const std::lock_guard lock(mWatchesMutex);
    mNewWatches.push_back(&watch);
    mHasNewWatches = true;
  }
  // An access to the device may hold the lock for long. What the parameter is known to be is found before anybody can
  // change it all the same: by whoever has the lock next.
  if (const std::unique_lock lock(mLock, std::try_to_lock); lock.owns_lock())
    WelcomeSinks();
  return result;
}

// Comes before every operation: to the sinks it is as if they had waited for their turn with the map.
void NodeMap::WelcomeSinks() {
  if (!mHasNewWatches)
    return;
  std::vector<ParameterWatch*> watches;
  {
    const std::lock_guard lock(mWatchesMutex);
    watches.swap(mNewWatches);
    mHasNewWatches = false;
  }
  for (ParameterWatch* watch : watches)
    Welcome(*watch);
}

// The device is not asked: a window registers with thousands of parameters, of which it wants those first that it
// shows.
void NodeMap::Welcome(ParameterWatch& aWatch) {
  aWatch.GetNode().watch = &aWatch;
  Evaluation evaluation(*this);
  evaluation.mayAskDevice = false;
  aWatch.OnWelcome(evaluation.epoch);
  ParameterSnapshot snapshot = TakeSnapshot(aWatch.GetNode(), evaluation, aWatch.GetWritesCount());
  if (!evaluation.hasMissed)
    aWatch.TellNewSinks({std::make_shared<const ParameterSnapshot>(std::move(snapshot)), evaluation.epoch});
}

KrResult NodeMap::UnregisterEventSink(Node& aNode, KrGenEventSink* aSink) {
  // Without the map's lock, which an access to the device may hold for long.
  return FindWatch(aNode).Unregister(aSink);
}

void NodeMap::Look(ParameterWatch& aWatch) {
  if (!aWatch.HasSinks())
    return;
  ParameterWatch::Known known;
  const KrResult result = Run([&](Evaluation& aEvaluation) {
    const std::uint64_t failuresCount = mPort.GetFailuresCount();
    known.epoch = aEvaluation.epoch;
    mIsLooking = true;
    ParameterSnapshot snapshot = TakeSnapshot(aWatch.GetNode(), aEvaluation, aWatch.GetWritesCount());
    mIsLooking = false;
    // What a cancelled access left unknown is no change.
    if (mRunningCancel.stop_requested())
      mNotifications.Queue(aWatch);
    else
      known.snapshot = std::make_shared<const ParameterSnapshot>(std::move(snapshot));
    if (mPort.GetFailuresCount() != failuresCount)
      mWatchesOfNextPoll.insert(&aWatch);
    return KrResult();
  });
  if (result.IsOK() && known.snapshot)
    aWatch.Notify(known);
}

} // namespace krgenicam
