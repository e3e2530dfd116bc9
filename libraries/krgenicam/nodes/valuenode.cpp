#include "nodes/valuenode.h"

#include "description/lexical.h"
#include "nodes/descent.h"

#include <algorithm>
#include <string>

namespace krgenicam {

namespace {

KrGenAccessMode WithoutWriting(KrGenAccessMode aMode) {
  return CombineAccessModes(aMode, KrGenAccessMode::ReadOnly);
}

} // namespace

void ValueNode::Link(INodeIndex& aIndex) {
  Node::Link(aIndex);
  for (const Property& property : GetProperties()) {
    if (property.kind == PropertyKind::Value)
      TakeStored(aIndex, property, mStored);
    else if (property.kind == PropertyKind::pValue || property.kind == PropertyKind::pValueCopy)
      mTargets.push_back(LinkTo(aIndex, property));
    else
      TakeChoice(aIndex, property);
    if (property.kind == PropertyKind::pValue && !mTarget.IsSet())
      mTarget = mTargets.back();
  }
  // Copies of what is nowhere else are none.
  if (!mTarget.IsSet())
    mTargets.clear();
  mIndex = LinkTo(aIndex, PropertyKind::pIndex);
  mIsEmpty = !mTarget.IsSet() && !mIndex.IsSet() && !FindProperty(PropertyKind::Value);
  // Of two entries with one index the first counts.
  std::ranges::stable_sort(mChoices, {}, &Choice::index);
}

void ValueNode::TakeStored(INodeIndex& aIndex, const Property& aProperty, Number& aStored) {
  const std::optional<Number> value = ParseValue(aProperty.text);
  if (value)
    aStored = *value;
  else
    AddWordFault(aIndex, aProperty, GetWantedText());
}

void ValueNode::TakeChoice(INodeIndex& aIndex, const Property& aProperty) {
  const PropertyKind kind = aProperty.kind;
  const bool isDefault = kind == PropertyKind::ValueDefault || kind == PropertyKind::pValueDefault;
  const bool isLink = kind == PropertyKind::pValueIndexed || kind == PropertyKind::pValueDefault;
  if (!isDefault && !isLink && kind != PropertyKind::ValueIndexed)
    return;
  Choice choice;
  if (isLink)
    choice.link = LinkTo(aIndex, aProperty);
  else
    TakeStored(aIndex, aProperty, choice.stored);
  if (isDefault) {
    mHasDefault = true;
    mDefault = choice;
    return;
  }
  const std::optional<std::int64_t> value = ParseInteger(aProperty.attribute);
  if (!value) {
    aIndex.AddFault(*this, aProperty.line, "the value has no Index that is a whole number, so it is left out.");
    return;
  }
  choice.index = *value;
  mChoices.push_back(choice);
}

KrResult ValueNode::PickChoice(Evaluation& aEvaluation, Choice*& aChoice) {
  Node* picker = nullptr;
  Number number;
  if (KrResult result = Follow(mIndex, picker); !result.IsOK())
    return result;
  if (KrResult result = picker->GetValue(aEvaluation, number); !result.IsOK())
    return result;
  const auto found = std::ranges::lower_bound(mChoices, number.ToInteger(), {}, &Choice::index);
  if (found != mChoices.end() && found->index == number.ToInteger())
    aChoice = &*found;
  else if (mHasDefault)
    aChoice = &mDefault;
  else
    return MakeFault(mIndex.line, "there is no value for the index " + std::to_string(number.ToInteger()) +
                                      ", and none for all other ones.");
  return {};
}

KrResult ValueNode::PickOrigin(Evaluation& aEvaluation, Origin& aOrigin) {
  if (mTarget.IsSet())
    return Follow(mTarget, aOrigin.node);
  if (mIsEmpty)
    return MakeFault(GetLine(), "there is no Value, and nothing that says where it is.");
  if (!mIndex.IsSet()) {
    aOrigin.stored = &mStored;
    return {};
  }
  Choice* choice = nullptr;
  if (KrResult result = PickChoice(aEvaluation, choice); !result.IsOK())
    return result;
  if (choice->link.IsSet())
    return Follow(choice->link, aOrigin.node);
  aOrigin.stored = &choice->stored;
  return {};
}

bool ValueNode::CanHaveValidValues(std::size_t aDepth) {
  const auto isSource = [aDepth](const NodeLink& aLink) {
    return aLink.node && aLink.node->CanHaveValidValues(aDepth + 1);
  };
  if (!mCanHaveValidValues) {
    // Stays so for who asks from within a circle, or from too deep: the values themselves are asked for then.
    mCanHaveValidValues = true;
    mCanHaveValidValues = aDepth >= Evaluation::kMaxDepth || isSource(mTarget) || isSource(mDefault.link) ||
                          std::ranges::any_of(mChoices, [&](const Choice& aChoice) { return isSource(aChoice.link); });
  }
  return *mCanHaveValidValues;
}

KrResult ValueNode::ReadOrigin(Evaluation& aEvaluation, Number& aValue) {
  Origin origin;
  if (KrResult result = PickOrigin(aEvaluation, origin); !result.IsOK())
    return result;
  if (origin.node)
    return ReadTarget(aEvaluation, *origin.node, aValue);
  aValue = *origin.stored;
  return {};
}

KrResult ValueNode::ReadOriginAnew(Evaluation& aEvaluation, Number& aValue) {
  const AroundCaches aroundCaches(aEvaluation);
  return ReadOrigin(aEvaluation, aValue);
}

KrResult ValueNode::VisitTargets(Evaluation& aEvaluation, const Number& aValue, WriteStep aStep) {
  const auto visit = [&](Node& aTarget) {
    const Descent descent(aEvaluation, *this);
    Number value;
    KrResult result = descent.Check();
    if (result.IsOK())
      result = ToTarget(aEvaluation, aTarget, aValue, value);
    return result.IsOK() ? (aTarget.*aStep)(aEvaluation, value) : result;
  };
  Origin origin;
  KrResult result = PickOrigin(aEvaluation, origin);
  if (!result.IsOK() || origin.stored)
    return result;
  if (!HasCopies())
    return visit(*origin.node);
  for (const NodeLink& link : mTargets) {
    Node* target = nullptr;
    result = Follow(link, target);
    if (result.IsOK())
      result = visit(*target);
    if (!result.IsOK())
      return result;
  }
  return {};
}

KrResult ValueNode::CheckWriteOrigin(Evaluation& aEvaluation, const Number& aValue) {
  return VisitTargets(aEvaluation, aValue, &Node::CheckWrite);
}

KrResult ValueNode::WriteOrigin(Evaluation& aEvaluation, const Number& aValue) {
  Origin origin;
  if (KrResult result = PickOrigin(aEvaluation, origin); !result.IsOK())
    return result;
  if (origin.node)
    return VisitTargets(aEvaluation, aValue, &Node::WriteAndAsk);
  *origin.stored = aValue;
  aEvaluation.OnWritten(*this);
  return {};
}

KrGenAccessMode ValueNode::ComputeAccess(Evaluation& aEvaluation, Facet aFacet) {
  Number picked;
  // Asked first, as reasons are not wanted here.
  if (!mTarget.IsSet() && mIndex.IsSet() && !(mIndex.node && mIndex.node->TryGetValue(aEvaluation, picked)))
    return KrGenAccessMode::NotAvailable;
  Origin origin;
  if (!PickOrigin(aEvaluation, origin).IsOK())
    return KrGenAccessMode::NotAvailable;
  if (origin.stored)
    return aEvaluation.host.IsReadOnly() ? KrGenAccessMode::ReadOnly : KrGenAccessMode::ReadWrite;
  const KrGenAccessMode mode = origin.node->GetAccess(aEvaluation, aFacet);
  if (!HasCopies() || !IsWritable(mode))
    return mode;
  return AreCopiesWritable(aEvaluation, aFacet) && AreTargetsAlike(aEvaluation) ? mode : WithoutWriting(mode);
}

KrResult ValueNode::ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) {
  if (mTarget.IsSet())
    return GetImplementation(aEvaluation, mTarget, aImplemented);
  // Without links there is nothing that could lack, whatever the index picks.
  const bool hasLinks = mDefault.link.IsSet() || std::ranges::any_of(mChoices, &NodeLink::IsSet, &Choice::link);
  Choice* choice = nullptr;
  if (!mIndex.IsSet() || !hasLinks)
    return Node::ComputeImplementation(aEvaluation, aImplemented);
  KrResult result = PickChoice(aEvaluation, choice);
  return result.IsOK() ? GetImplementation(aEvaluation, choice->link, aImplemented) : result;
}

bool ValueNode::AreCopiesWritable(Evaluation& aEvaluation, Facet aFacet) {
  return std::ranges::all_of(mTargets, [&](const NodeLink& aLink) {
    return aLink.node && IsWritable(aLink.node->GetAccess(aEvaluation, aFacet));
  });
}

KrResult ValueNode::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  Number picked;
  if (!mTarget.IsSet() && mIndex.node && !mIndex.node->TryGetValue(aEvaluation, picked))
    return ExplainBy(aEvaluation, false, aAttempt, *mIndex.node);
  Origin origin;
  if (KrResult result = PickOrigin(aEvaluation, origin); !result.IsOK())
    return result;
  const auto isObstacle = [&](Node& aNode) {
    const KrGenAccessMode mode = aNode.GetAccess(aEvaluation, aForWriting ? Facet::Access : Facet::AccessUnlocked);
    return !(aForWriting ? IsWritable(mode) : IsReadable(mode));
  };
  if (origin.node && isObstacle(*origin.node))
    return ExplainBy(aEvaluation, aForWriting, aAttempt, *origin.node);
  for (const NodeLink& link : mTargets) {
    Node* copy = nullptr;
    if (KrResult result = Follow(link, copy); !result.IsOK())
      return result;
    if (aForWriting && isObstacle(*copy))
      return ExplainBy(aEvaluation, aForWriting, aAttempt, *copy);
  }
  if (aForWriting && HasCopies() && !AreTargetsAlike(aEvaluation))
    return {KrResult::Code::AccessDenied, aAttempt + "what it writes to goes in different steps."};
  return Node::ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
}

std::optional<Number> ValueNode::ParseValue(std::string_view aText) const {
  const std::optional<std::int64_t> value = ParseInteger(aText);
  return value ? std::optional<Number>(*value) : std::nullopt;
}

KrResult ValueNode::ReadTarget(Evaluation& aEvaluation, Node& aTarget, Number& aValue) {
  return aTarget.GetValue(aEvaluation, aValue);
}

KrResult ValueNode::ToTarget(Evaluation&, Node&, const Number& aValue, Number& aTargetValue) {
  aTargetValue = aValue;
  return {};
}

} // namespace krgenicam
