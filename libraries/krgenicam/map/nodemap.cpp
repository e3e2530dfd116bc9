#include "map/nodemap.h"

#include "krbase/krsteadytime.h"
#include "map/parameterwatch.h"

#include <algorithm>
#include <utility>

namespace krgenicam {

namespace {

KrGenArrayOptions CompleteOptions(KrGenArrayOptions aOptions) {
  aOptions.timeoutMs = std::max<std::uint32_t>(aOptions.timeoutMs, 1);
  if (!aOptions.getTimeMs)
    aOptions.getTimeMs = KrGetSteadyMs;
  return aOptions;
}

} // namespace

NodeMap::NodeMap(IKrRegisterPort& aPort, const KrGenArrayOptions& aOptions)
    : mOptions(CompleteOptions(aOptions)), mPort(aPort),
      mNotifications([this](ParameterWatch& aWatch) { Look(aWatch); }) {}

NodeMap::~NodeMap() {
  Close();
  {
    // Those that wait leave in the order in which they came.
    const std::lock_guard last(mLock);
  }
  mNotifications.Stop();
}

KrGenParameter* NodeMap::FindParameter(std::string_view aName) const {
  constexpr std::string_view kStandard = "Std::";
  constexpr std::string_view kCustom = "Cust::";
  const bool asksStandard = aName.starts_with(kStandard);
  const bool asksCustom = aName.starts_with(kCustom);
  if (asksStandard || asksCustom)
    aName.remove_prefix(asksStandard ? kStandard.size() : kCustom.size());
  const Node* const node = FindNode(aName);
  if (!node || ((asksStandard || asksCustom) && node->IsStandard() != asksStandard))
    return nullptr;
  return GetParameter(*node);
}

KrGenCategory* NodeMap::FindCategory(std::string_view aName) const {
  const Node* const node = FindNode(aName);
  return node ? GetCategory(*node) : nullptr;
}

KrGenCategory* NodeMap::GetCategory(const Node& aNode) const {
  const auto found = mCategories.find(&aNode);
  return found == mCategories.end() ? nullptr : found->second.get();
}

Node* NodeMap::GetNode(NodeIndex aIndex) const {
  return aIndex < mNodes.size() ? mNodes[aIndex].get() : nullptr;
}

std::uint64_t NodeMap::GetTimeMs() const {
  return mOptions.getTimeMs();
}

void NodeMap::Visit(Node& aNode, bool aWithOrigins) {
  const bool isNew = std::exchange(aNode.mark, mMark) != mMark;
  const bool goesOn = (aWithOrigins || aNode.forgetsOrigins) && std::exchange(aNode.originMark, mMark) != mMark;
  if (isNew || goesOn)
    mWalk.push_back({.node = &aNode, .isNew = isNew, .goesOn = goesOn});
}

void NodeMap::VisitOrigins(const Node& aNode) {
  for (const Property& property : aNode.GetProperties()) {
    const bool isOrigin = property.kind == PropertyKind::pValue || property.kind == PropertyKind::pValueIndexed ||
                          property.kind == PropertyKind::pValueDefault;
    if (Node* const origin = isOrigin ? GetNode(property.target) : nullptr)
      Visit(*origin, true);
  }
}

void NodeMap::Invalidate(std::span<Node* const> aNodes, Invalidation aCause, bool aWithOrigins) {
  ++mMark;
  mWalkOutside += mIsLooking ? 0 : 1;
  std::vector<Node*> affected;
  for (Node* node : aNodes)
    Visit(*node, aWithOrigins);
  while (!mWalk.empty()) {
    const WalkStep step = mWalk.back();
    mWalk.pop_back();
    if (step.goesOn)
      VisitOrigins(*step.node);
    if (!step.isNew)
      continue;
    OnInvalidated(*step.node, aCause);
    step.node->Forget(affected);
    for (Node* dependent : step.node->GetDependents())
      Visit(*dependent, false);
    for (Node* other : affected)
      Visit(*other, false);
    affected.clear();
  }
}

// Comes before the node forgets: whether anybody has asked for it is part of what it remembers.
void NodeMap::OnInvalidated(Node& aNode, Invalidation aCause) {
  if (!aNode.watch || !aNode.watch->HasSinks() || !aNode.watch->OnInvalidated(mEpoch, aCause))
    return;
  // Registers whose bytes change all the time may find one another mistaken, look after look: once is enough.
  if (mIsLooking && std::exchange(aNode.watch->lastLook, mWalkOutside) == mWalkOutside) {
    mWatchesOfNextPoll.insert(aNode.watch);
    return;
  }
  mNotifications.Queue(*aNode.watch);
}

void NodeMap::InvalidateCache() {
  (void)Run([this](Evaluation&) { // Nothing is remembered of a map that is closed.
    ++mWalkOutside;
    std::vector<Node*> affected;
    for (const std::unique_ptr<Node>& node : mNodes) {
      OnInvalidated(*node, Invalidation::Forgetting);
      node->Forget(affected);
      affected.clear();
    }
    return KrResult();
  });
}

KrResult NodeMap::InvalidateByName(std::string_view aName) {
  Node* const node = FindNode(aName);
  if (!node)
    return {KrResult::Code::NotFound, "The camera's description has no node \"" + std::string(aName) + "\"."};
  return Run([this, node](Evaluation&) {
    Invalidate(std::span(&node, 1), Invalidation::Write, true);
    return KrResult();
  });
}

KrResult NodeMap::FindAccess(const KrGenParameter& aParameter, KrGenAccessMode& aMode) {
  return Run([&](Evaluation& aEvaluation) {
    Node& node = aParameter.mNode;
    (void)mPort.TakeLastFailure(); // What failed before is of no interest.
    aMode = node.GetAccess(aEvaluation);
    const KrResult failure = mPort.TakeLastFailure();
    if (failure.IsOK() || aMode == KrGenAccessMode::ReadWrite)
      return KrResult();
    return DescribeOpenAccess(aEvaluation, node, IsReadable(aMode), failure);
  });
}

KrResult NodeMap::AskAccess(const KrGenParameter& aParameter, AccessQuestion aQuestion, bool& aAnswer) {
  return Run([&](Evaluation& aEvaluation) {
    return AnswerAccessQuestion(aEvaluation, aParameter.mNode, aQuestion, mPort, aAnswer);
  });
}

std::stop_token NodeMap::GetCancelToken() const {
  const std::lock_guard lock(mStateMutex);
  return mCancel.get_token();
}

std::stop_source NodeMap::ExchangeCancel() {
  const std::lock_guard lock(mStateMutex);
  return std::exchange(mCancel, std::stop_source());
}

KrResult NodeMap::GetClosing() const {
  if (!mIsClosed)
    return {};
  const std::lock_guard lock(mStateMutex);
  return mClosing;
}

void NodeMap::Cancel() {
  // What waits for the end of an access may run code of the port: with no lock held.
  ExchangeCancel().request_stop();
}

void NodeMap::Close() {
  {
    const std::lock_guard lock(mStateMutex);
    mClosing = {KrResult::Code::ConnectionLost, "The device's parameters were closed."};
    mIsClosed = true;
  }
  Cancel();
}

} // namespace krgenicam
