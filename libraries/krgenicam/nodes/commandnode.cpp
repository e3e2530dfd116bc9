#include "nodes/commandnode.h"

#include <utility>

namespace krgenicam {

void CommandNode::Link(INodeIndex& aIndex) {
  ValueNode::Link(aIndex);
  mCommandLink = LinkTo(aIndex, PropertyKind::pCommandValue);
  mCommandValue = TakeInteger(aIndex, PropertyKind::CommandValue, mCommandValue);
  if (!mCommandLink.IsSet() && !FindProperty(PropertyKind::CommandValue))
    aIndex.AddFault(*this, GetLine(), "there is no CommandValue; 0 is taken.");
}

KrResult CommandNode::GetCommandValue(Evaluation& aEvaluation, Number& aValue) {
  if (!mCommandLink.IsSet()) {
    aValue = Number(mCommandValue);
    return {};
  }
  Node* node = nullptr;
  KrResult result = Follow(mCommandLink, node);
  return result.IsOK() ? node->GetValue(aEvaluation, aValue) : result;
}

KrResult CommandNode::Execute(Evaluation& aEvaluation) {
  Number value;
  if (KrResult result = CheckWrite(aEvaluation, value); !result.IsOK())
    return result;
  if (KrResult result = GetCommandValue(aEvaluation, value); !result.IsOK())
    return result;
  if (KrResult result = WriteOrigin(aEvaluation, value); !result.IsOK())
    return result;
  mExecuted = value;
  mIsPending = CanBeAsked(aEvaluation);
  // What the command changes is forgotten now and, as it may have been read in between, when it is over.
  aEvaluation.OnWritten(*this);
  return CheckErrors(aEvaluation);
}

bool CommandNode::CanBeAsked(Evaluation& aEvaluation) {
  Origin origin;
  if (!PickOrigin(aEvaluation, origin).IsOK() || !origin.node)
    return false;
  return origin.node->GetAccess(aEvaluation, Facet::AccessUnlocked) != KrGenAccessMode::WriteOnly;
}

KrResult CommandNode::IsDone(Evaluation& aEvaluation, bool& aIsDone) {
  bool isDone = true;
  if (CanBeAsked(aEvaluation)) {
    Number commandValue = mExecuted;
    if (KrResult result = mIsPending ? KrResult() : GetCommandValue(aEvaluation, commandValue); !result.IsOK())
      return result;
    Number value;
    if (KrResult result = ReadOriginAnew(aEvaluation, value); !result.IsOK())
      return result;
    isDone = value.ToInteger() != commandValue.ToInteger();
  }
  aIsDone = isDone;
  if (isDone && std::exchange(mIsPending, false))
    aEvaluation.OnWritten(*this);
  return {};
}

KrResult CommandNode::Compute(Evaluation&, Facet aFacet, Number& aValue) {
  if (aFacet == Facet::Value)
    aValue = Number(mIsPending ? 1 : 0);
  else
    aValue = Number(aFacet == Facet::Minimum ? 0 : 1);
  return {};
}

KrResult CommandNode::CheckWrite(Evaluation& aEvaluation, const Number&) {
  if (KrResult result = CheckWritable(aEvaluation); !result.IsOK())
    return result;
  Number value;
  KrResult result = GetCommandValue(aEvaluation, value);
  return result.IsOK() ? CheckWriteOrigin(aEvaluation, value) : result;
}

KrResult CommandNode::Write(Evaluation& aEvaluation, const Number&) {
  return Execute(aEvaluation);
}

} // namespace krgenicam
