#include "nodes/node.h"

#include "description/lexical.h"

#include <algorithm>
#include <string>

// Why a node cannot be read or written, and what a device says of a value that it was given.

namespace krgenicam {

namespace {

// Keeps the nodes that are giving reasons on behalf of one another.
class ReasonStep {
public:
  ReasonStep(Evaluation& aEvaluation, Node& aNode) : mEvaluation(aEvaluation) { mEvaluation.reasons.push_back(&aNode); }
  ~ReasonStep() { mEvaluation.reasons.pop_back(); }
  ReasonStep(const ReasonStep&) = delete;
  ReasonStep& operator=(const ReasonStep&) = delete;

private:
  Evaluation& mEvaluation;
};

std::string DescribeVerdict(AccessCause::Verdict aVerdict) {
  if (aVerdict == AccessCause::Verdict::Locked)
    return "it is locked";
  return aVerdict == AccessCause::Verdict::NotImplemented ? "it is not implemented" : "it is not available";
}

} // namespace

KrResult Node::ExplainAccess(Evaluation& aEvaluation, bool aForWriting) {
  return Explain(aEvaluation, aForWriting,
                 QuoteName(GetName()) + " cannot be " + (aForWriting ? "set" : "read") + ": ");
}

KrResult Node::Explain(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  const auto deny = [&aAttempt](const char* aReason) {
    return KrResult(KrResult::Code::AccessDenied, aAttempt + aReason);
  };
  if (std::ranges::find(aEvaluation.reasons, this) != aEvaluation.reasons.end())
    return MakeCycleFault(aEvaluation.reasons);
  const ReasonStep step(aEvaluation, *this);
  if (aEvaluation.reasons.size() > Evaluation::kMaxReasons)
    return deny("something it stands on is not available at the moment.");
  // What stands on itself has no access at all.
  Number mode;
  if (KrResult result = Get(aEvaluation, Facet::Access, mode); !result.IsOK())
    return result;
  if (static_cast<KrGenAccessMode>(mode.ToInteger()) == KrGenAccessMode::NotImplemented) {
    NoteWhyNotImplemented(aEvaluation, aForWriting, aAttempt);
    return deny("this camera does not have it.");
  }
  Number value;
  const auto allows = [&](const NodeLink& aLink) {
    return !aLink.IsSet() || (aLink.node && aLink.node->TryGetValue(aEvaluation, value) && value.ToFloat() != 0.0);
  };
  if (!allows(mIsImplemented))
    return ExplainPredicate(aEvaluation, mIsImplemented, aAttempt, AccessCause::Verdict::NotImplemented);
  if (!allows(mIsAvailable))
    return ExplainPredicate(aEvaluation, mIsAvailable, aAttempt, AccessCause::Verdict::NotAvailable);
  const bool isUnlockedWritable = IsWritable(GetAccess(aEvaluation, Facet::AccessUnlocked));
  if (aForWriting && mIsLocked.IsSet() && isUnlockedWritable && allows(mIsLocked))
    return ExplainPredicate(aEvaluation, mIsLocked, aAttempt, AccessCause::Verdict::Locked);
  const bool isAllowed = aForWriting ? IsWritable(mImposedAccess) : IsReadable(mImposedAccess);
  if (!isAllowed)
    return DenyForGood(aEvaluation, aAttempt + (aForWriting ? "it can only be read." : "it can only be written."));
  return ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
}

KrResult Node::ExplainPredicate(Evaluation& aEvaluation, const NodeLink& aPredicate, const std::string& aAttempt,
                                AccessCause::Verdict aVerdict) {
  Node* node = nullptr;
  if (KrResult result = Follow(aPredicate, node); !result.IsOK())
    return result;
  Number value;
  if (KrResult asked = node->GetValue(aEvaluation, value); !asked.IsOK())
    return {asked.GetCode(), aAttempt + QuoteName(aPredicate.name) + ", which says whether it can be, has no value. " +
                                 asked.GetDescription()};
  if (aEvaluation.cause)
    *aEvaluation.cause = {.verdict = aVerdict, .node = this, .predicate = node, .value = value};
  return {KrResult::Code::AccessDenied, aAttempt + DescribeVerdict(aVerdict) + " as long as " +
                                            QuoteName(aPredicate.name) + " is " +
                                            (value.ToFloat() == 0.0 ? "0" : "not 0") + "."};
}

// The node, or one that it stands on, has a predicate that says so.
void Node::NoteWhyNotImplemented(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  if (!aEvaluation.cause)
    return;
  Number value;
  const bool isOwn =
      mIsImplemented.node && mIsImplemented.node->TryGetValue(aEvaluation, value) && value.ToFloat() == 0.0;
  // What they say is told by the cause alone.
  if (isOwn)
    (void)ExplainPredicate(aEvaluation, mIsImplemented, aAttempt, AccessCause::Verdict::NotImplemented);
  else
    (void)ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
}

KrResult Node::DenyForGood(Evaluation& aEvaluation, const std::string& aSentence) {
  if (aEvaluation.cause)
    *aEvaluation.cause = {.verdict = AccessCause::Verdict::ByDescription};
  return {KrResult::Code::AccessDenied, aSentence};
}

KrResult Node::ExplainBy(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt, Node& aObstacle) {
  constexpr std::string_view kColon = ": ";
  const auto blame = [](const Node& aNode) { return " because of " + QuoteName(aNode.GetName()); };
  // In a chain of nodes the last one alone is named: whoever stands between does not help.
  std::string attempt = aAttempt.substr(0, aAttempt.size() - kColon.size());
  if (attempt.ends_with(blame(*this)))
    attempt.resize(attempt.size() - blame(*this).size());
  return aObstacle.Explain(aEvaluation, aForWriting, attempt + blame(aObstacle) + std::string(kColon));
}

KrResult Node::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  const KrGenAccessMode access = GetAccess(aEvaluation);
  if (aForWriting && access == KrGenAccessMode::ReadOnly)
    return {KrResult::Code::AccessDenied,
            aAttempt + (aEvaluation.host.IsReadOnly() ? "the device is open for reading only."
                                                      : "it can only be read at the moment.")};
  if (!aForWriting && access == KrGenAccessMode::WriteOnly)
    return {KrResult::Code::AccessDenied, aAttempt + "it can only be written."};
  return {KrResult::Code::AccessDenied, aAttempt + "something it stands on is not available at the moment."};
}

KrResult Node::CheckErrors(Evaluation& aEvaluation) {
  for (const NodeLink& link : mErrors) {
    if (!link.node || !IsReadable(link.node->GetAccess(aEvaluation, Facet::AccessUnlocked)))
      continue;
    Number value;
    // The device's word on what was just written is in no cache.
    const AroundCaches aroundCaches(aEvaluation);
    // An error that cannot be read is no word of one.
    if (!link.node->Get(aEvaluation, Facet::Value, value).IsOK() || value.ToInteger() == 0)
      continue;
    return {KrResult::Code::ProtocolError,
            "The device took the value of " + QuoteName(GetName()) + " but says: " + link.node->DescribeValue(value)};
  }
  return {};
}

std::string Node::DescribeValue(const Number& aValue) const {
  return std::string(GetName()) + " = " + std::to_string(aValue.ToInteger());
}

KrResult Node::SetText(Evaluation& aEvaluation, std::string_view aText) {
  KrResult result = CheckWriteText(aEvaluation, aText);
  return result.IsOK() ? WriteTextAndAsk(aEvaluation, aText) : result;
}

KrResult Node::WriteTextAndAsk(Evaluation& aEvaluation, std::string_view aText) {
  KrResult result = WriteText(aEvaluation, aText);
  return result.IsOK() ? CheckErrors(aEvaluation) : result;
}

} // namespace krgenicam
