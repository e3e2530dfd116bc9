#include "nodes/stringnode.h"

#include "nodes/descent.h"

#include <algorithm>

namespace krgenicam {

void StringNode::Link(INodeIndex& aIndex) {
  Node::Link(aIndex);
  mTarget = LinkTo(aIndex, PropertyKind::pValue);
  if (mTarget.IsSet())
    return;
  mText = GetText(PropertyKind::Value);
  mMaxLength = std::max(kMaxLength, mText.size());
}

template <typename Step>
KrResult StringNode::WithTarget(Evaluation& aEvaluation, Step aStep) {
  const Descent descent(aEvaluation, *this);
  Node* target = nullptr;
  KrResult result = descent.Check();
  if (result.IsOK())
    result = Follow(mTarget, target);
  return result.IsOK() ? aStep(*target) : result;
}

KrResult StringNode::ReadText(Evaluation& aEvaluation, std::string& aText) {
  if (!mTarget.IsSet()) {
    aText = mText;
    return {};
  }
  return WithTarget(aEvaluation, [&](Node& aTarget) { return aTarget.ReadText(aEvaluation, aText); });
}

KrResult StringNode::CheckWriteText(Evaluation& aEvaluation, std::string_view aText) {
  if (KrResult result = CheckWritable(aEvaluation); !result.IsOK())
    return result;
  if (mTarget.IsSet())
    return WithTarget(aEvaluation, [&](Node& aTarget) { return aTarget.CheckWriteText(aEvaluation, aText); });
  const std::string attempt = "\"" + std::string(GetName()) + "\" cannot be set: the text ";
  if (aText.size() > mMaxLength)
    return {KrResult::Code::InvalidInput, attempt + "has " + std::to_string(aText.size()) + " bytes, and at most " +
                                              std::to_string(mMaxLength) + " can be stored."};
  if (aText.find('\0') != std::string_view::npos)
    return {KrResult::Code::InvalidInput, attempt + "has a zero byte in it, which would end it."};
  return {};
}

KrResult StringNode::WriteText(Evaluation& aEvaluation, std::string_view aText) {
  if (mTarget.IsSet())
    return WithTarget(aEvaluation, [&](Node& aTarget) { return aTarget.WriteTextAndAsk(aEvaluation, aText); });
  mText = aText;
  aEvaluation.OnWritten(*this);
  return {};
}

KrResult StringNode::GetMaxTextLength(Evaluation& aEvaluation, std::int64_t& aLength) {
  if (mTarget.IsSet())
    return WithTarget(aEvaluation, [&](Node& aTarget) { return aTarget.GetMaxTextLength(aEvaluation, aLength); });
  aLength = static_cast<std::int64_t>(mMaxLength);
  return {};
}

KrGenAccessMode StringNode::ComputeAccess(Evaluation& aEvaluation, Facet aFacet) {
  if (!mTarget.IsSet())
    return aEvaluation.host.IsReadOnly() ? KrGenAccessMode::ReadOnly : KrGenAccessMode::ReadWrite;
  return mTarget.node ? mTarget.node->GetAccess(aEvaluation, aFacet) : KrGenAccessMode::NotAvailable;
}

KrResult StringNode::ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) {
  return GetImplementation(aEvaluation, mTarget, aImplemented);
}

KrResult StringNode::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  if (!mTarget.IsSet())
    return Node::ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
  Node* target = nullptr;
  KrResult result = Follow(mTarget, target);
  return result.IsOK() ? ExplainBy(aEvaluation, aForWriting, aAttempt, *target) : result;
}

} // namespace krgenicam
