#pragma once
// A description brought to life: owns its nodes and does one operation on them after the other. What nodes compute is
// left to them, what users see of them to the public classes.

#include "description/description.h"
#include "krbase/eitherstop.h"
#include "krgenicam/krgenparameterarray.h"
#include "map/accessquestion.h"
#include "map/accessstop.h"
#include "map/failurecountingport.h"
#include "map/featuretree.h"
#include "map/invalidation.h"
#include "map/maplock.h"
#include "map/notificationthread.h"
#include "map/pollingschedule.h"
#include "nodes/evaluation.h"
#include "nodes/node.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace krgenicam {

class ParameterWatch;
class PortNode;

/// Thread: any; Run does one operation after the other.
/// Ownership: the array's. Owns description, nodes and the objects that stand for them; borrows the port.
class NodeMap final : public INodeHost, public INodeIndex {
public:
  /// Faults beyond these are only counted.
  static constexpr std::size_t kMostFaults = 1000;
  static constexpr std::size_t kMostFormulaOperations = 4'000'000;

  /// As KrGenParameterArray::Open.
  static KrResult Open(const KrGenDescription& aDescription, IKrRegisterPort& aPort, const KrGenArrayOptions& aOptions,
                       std::unique_ptr<NodeMap>& aMap);
  ~NodeMap();
  NodeMap(const NodeMap&) = delete;
  NodeMap& operator=(const NodeMap&) = delete;

  // What never changes.
  const Description& GetDescription() const { return mDescription; }
  const FeatureTree& GetTree() const { return mTree; }
  const std::vector<KrGenParameter*>& GetFeatures() const { return mFeatures; }
  const std::vector<DescriptionFault>& GetFaults() const { return mFaults; }
  /// The parameter of a name, with or without name space, or of a node; null where there is none.
  KrGenParameter* FindParameter(std::string_view aName) const;
  KrGenParameter* GetParameter(const Node& aNode) const { return mParameters[aNode.index].get(); }
  KrGenCategory* FindCategory(std::string_view aName) const;
  KrGenCategory* GetCategory(const Node& aNode) const;

  /// One operation: waits for its turn and calls aCall with an evaluation, with the map's lock held. ConnectionLost
  /// once the map is closed.
  template <typename Call>
  KrResult Run(Call&& aCall) {
    return Run(GetCancelToken(), std::forward<Call>(aCall));
  }
  /// The same with what cancels its accesses, besides the thread's own stop.
  template <typename Call>
  KrResult Run(const std::stop_token& aCancel, Call&& aCall) {
    const std::lock_guard lock(mLock);
    if (mIsClosed)
      return GetClosing();
    const krbase::EitherStop stop(aCancel, GetThreadsStop());
    mRunningCancel = stop.GetToken();
    WelcomeSinks();
    Evaluation evaluation(*this);
    return aCall(evaluation);
  }

  // As KrGenParameterArray::Turn.
  void KeepTurn() { mLock.Keep(); }
  void ReleaseTurn() { mLock.Release(); }

  /// What can be done with a parameter. A failure of the port that may be why it is not more is one here: the mode is
  /// what it counts as then.
  KrResult FindAccess(const KrGenParameter& aParameter, KrGenAccessMode& aMode);
  /// As AnswerAccessQuestion.
  KrResult AskAccess(const KrGenParameter& aParameter, AccessQuestion aQuestion, bool& aAnswer);

  // As the operations of KrGenParameterArray.
  void InvalidateCache();
  KrResult InvalidateByName(std::string_view aName);
  KrResult Poll(const std::stop_token& aStop);
  void DeliverEvent(std::uint64_t aEventID, std::span<const std::uint8_t> aData);
  void SetChunkData(std::uint64_t aChunkID, std::optional<std::span<const std::uint8_t>> aData);
  void Cancel();
  /// Of the next Cancel: for what is made of several operations.
  std::stop_token GetCancelToken() const;
  void Close();
  bool IsClosed() const { return mIsClosed; }

  KrResult RegisterEventSink(Node& aNode, KrGenEventSink* aSink);
  KrResult UnregisterEventSink(Node& aNode, KrGenEventSink* aSink);

  // INodeHost
  IKrRegisterPort& GetPort() override { return mPort; }
  bool IsReadOnly() const override { return mOptions.isReadOnly; }
  std::uint32_t GetTimeoutMs() const override { return mOptions.timeoutMs; }
  std::stop_token GetStopToken() const override { return mRunningCancel; }
  KrResult GetClosing() const override;
  std::uint64_t GetTimeMs() const override;
  std::uint64_t TakeEpoch() override { return mEpoch.fetch_add(1) + 1; }
  void Invalidate(std::span<Node* const> aNodes) override { Invalidate(aNodes, Invalidation::Write); }

  // INodeIndex
  Node* GetNode(NodeIndex aIndex) const override;
  Node* FindNode(std::string_view aName) const override { return GetNode(mDescription.Find(aName)); }
  void AddFault(const Node& aNode, std::uint32_t aLine, const std::string& aText) override;
  bool ReserveFormulaOperations(std::size_t aCount) override;

private:
  NodeMap(IKrRegisterPort& aPort, const KrGenArrayOptions& aOptions);

  // Opening
  KrResult Read(const KrGenDescription& aDescription);
  void NoteFault(DescriptionFault aFault);
  void MakeNodes();
  void LinkNodes();
  void MakeParameters();
  void ListFeatures();
  void ListPortsAndEvents();
  void SortFaults();
  std::unique_ptr<KrGenParameter> MakeParameter(Node& aNode);
  template <typename Kind>
  static std::unique_ptr<KrGenParameter> Make(NodeMap& aMap, Node& aNode);

  // A node that an invalidation comes to.
  struct WalkStep {
    Node* node;
    bool isNew;  // It was not visited before.
    bool goesOn; // The nodes that its value is in are to be visited, too.
  };

  void Invalidate(std::span<Node* const> aNodes, Invalidation aCause, bool aWithOrigins = false);
  void Visit(Node& aNode, bool aWithOrigins);
  void VisitOrigins(const Node& aNode);
  void OnInvalidated(Node& aNode, Invalidation aCause);
  KrResult PollNode(Evaluation& aEvaluation, PolledNode& aPolled, std::uint64_t aNowMs);
  KrResult ReadPolled(Evaluation& aEvaluation, Node& aNode);
  std::stop_source ExchangeCancel();

  ParameterWatch& FindWatch(Node& aNode);
  void WelcomeSinks();
  void Welcome(ParameterWatch& aWatch);
  void Look(ParameterWatch& aWatch);

  Description mDescription;
  const KrGenArrayOptions mOptions;
  std::vector<std::unique_ptr<Node>> mNodes;                // By NodeIndex.
  std::vector<std::unique_ptr<KrGenParameter>> mParameters; // By NodeIndex; null for what is no parameter.
  std::unordered_map<const Node*, std::unique_ptr<KrGenCategory>> mCategories;
  std::vector<KrGenParameter*> mFeatures;
  FeatureTree mTree;
  std::vector<PortNode*> mChunkPorts;
  std::unordered_map<std::uint64_t, std::vector<Node*>> mNodesOfEvents; // By EventID.
  std::vector<DescriptionFault> mFaults;
  std::size_t mUnlistedFaults = 0;
  std::size_t mFormulaOperations = 0; // Of all formulas that were compiled.

  mutable MapLock mLock; // Guards the nodes and the members from here on.
  FailureCountingPort mPort;
  std::atomic<std::uint64_t> mEpoch = 0; // Also read without the lock, by who registers a sink.
  std::uint64_t mMark = 0;
  std::vector<WalkStep> mWalk; // What an invalidation has still to visit.
  std::vector<PolledNode> mPolledNodes;
  // Worth another look at the next Poll: looked at while the port failed, or found mistaken by look after look.
  std::unordered_set<ParameterWatch*> mWatchesOfNextPoll;
  bool mIsLooking = false;        // It is looked at what changed.
  std::uint64_t mWalkOutside = 0; // Counts the invalidations that come of anything else than such looks.
  std::stop_token mRunningCancel; // Of the operation that runs.

  mutable std::mutex mStateMutex; // Guards the members from here on; never held while the map's lock is waited for.
  std::stop_source mCancel;
  KrResult mClosing;
  std::atomic<bool> mIsClosed = false; // Set last: where it is seen, mClosing is there.

  std::mutex
      mWatchesMutex; // Guards mWatches and mNewWatches. A node's own pointer to its watch is the map's lock's business.
  std::unordered_map<const Node*, std::unique_ptr<ParameterWatch>> mWatches;
  // Have sinks that are yet to be told what their parameter is: before the next operation, which may change it.
  std::vector<ParameterWatch*> mNewWatches;
  std::atomic<bool> mHasNewWatches = false;
  NotificationThread mNotifications;
};

} // namespace krgenicam
