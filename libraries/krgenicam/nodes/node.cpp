#include "nodes/node.h"

#include "description/lexical.h"
#include "krbase/krlogger.h"
#include "nodes/numbertext.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace krgenicam {

namespace {

constexpr std::string_view kVisibilityWords[] = {"Beginner", "Expert", "Guru", "Invisible"};
constexpr std::string_view kImposedWords[] = {"WO", "RO", "RW"};
constexpr KrGenAccessMode kImposedModes[] = {KrGenAccessMode::WriteOnly, KrGenAccessMode::ReadOnly,
                                             KrGenAccessMode::ReadWrite};

// Keeps the path of an evaluation in step with the nodes that are under computation.
class Step {
public:
  Step(Evaluation& aEvaluation, Node& aNode, Memo& aMemo) : mEvaluation(aEvaluation), mMemo(aMemo) {
    mEvaluation.path.push_back(&aNode);
    mOuterIsStable = std::exchange(mEvaluation.isStable, true);
    mMemo.isBusy = true;
  }
  ~Step() {
    mMemo.isBusy = false;
    mEvaluation.isStable = mEvaluation.isStable && mOuterIsStable;
    mEvaluation.path.pop_back();
  }
  Step(const Step&) = delete;
  Step& operator=(const Step&) = delete;

private:
  Evaluation& mEvaluation;
  Memo& mMemo;
  bool mOuterIsStable;
};

bool IsAccessFacet(Facet aFacet) {
  return aFacet == Facet::Access || aFacet == Facet::AccessUnlocked;
}

Number FromAccess(KrGenAccessMode aMode) {
  return Number(static_cast<std::int64_t>(aMode));
}

KrGenAccessMode StripWriting(KrGenAccessMode aMode) {
  if (aMode == KrGenAccessMode::ReadWrite)
    return KrGenAccessMode::ReadOnly;
  return aMode == KrGenAccessMode::WriteOnly ? KrGenAccessMode::NotAvailable : aMode;
}

} // namespace

KrGenAccessMode CombineAccessModes(KrGenAccessMode aLeft, KrGenAccessMode aRight) {
  const auto [lower, higher] = std::minmax(aLeft, aRight);
  if (lower == KrGenAccessMode::WriteOnly && higher == KrGenAccessMode::ReadOnly)
    return KrGenAccessMode::NotAvailable;
  return lower;
}

Node::Node(const Description& aDescription, const NodeDescription& aNode) : mDescription(aDescription), mData(aNode) {}

Node::~Node() = default;

void Node::Link(INodeIndex& aIndex) {
  mIsImplemented = LinkTo(aIndex, PropertyKind::pIsImplemented);
  mIsAvailable = LinkTo(aIndex, PropertyKind::pIsAvailable);
  mIsLocked = LinkTo(aIndex, PropertyKind::pIsLocked);
  mBlockPolling = LinkTo(aIndex, PropertyKind::pBlockPolling);
  mAlias = LinkTo(aIndex, PropertyKind::pAlias);
  mCastAlias = LinkTo(aIndex, PropertyKind::pCastAlias);
  for (const Property& property : GetProperties()) {
    if (property.kind == PropertyKind::pError)
      mErrors.push_back(LinkTo(aIndex, property));
    else if (property.kind == PropertyKind::pInvalidator)
      LinkTo(aIndex, property);
    else if (property.kind == PropertyKind::pSelected) {
      Node* const selected = aIndex.GetNode(property.target);
      // Nobody else adds to who selects that one while this node is linked: no more has to be searched than the last.
      if (!selected || (!selected->mSelecting.empty() && selected->mSelecting.back() == this))
        continue;
      mSelected.push_back(selected);
      selected->mSelecting.push_back(this);
      // Many descriptions leave out that a selected feature's register is another one from now on.
      AddDependent(*selected);
    } else if (property.kind == PropertyKind::EventID) {
      mEventID = ParseHex(property.text);
      if (!mEventID)
        AddWordFault(aIndex, property, "a hexadecimal number");
    }
  }
  const auto visibility = TakeWord(aIndex, PropertyKind::Visibility, kVisibilityWords, 0);
  mVisibility = static_cast<KrGenVisibility>(
      std::max(visibility, TakeWord(aIndex, PropertyKind::ImposedVisibility, kVisibilityWords, visibility)));
  mImposedAccess = kImposedModes[TakeWord(aIndex, PropertyKind::ImposedAccessMode, kImposedWords, 2)];
  mIsStreamable = TakeYesNo(aIndex, PropertyKind::Streamable, false);
  mPollingTimeMs = static_cast<std::uint32_t>(std::clamp<std::int64_t>(
      TakeInteger(aIndex, PropertyKind::PollingTime, 0), 0, std::numeric_limits<std::int32_t>::max()));
}

const Property* Node::FindProperty(PropertyKind aKind) const {
  const auto properties = GetProperties();
  const auto found = std::ranges::find(properties, aKind, &Property::kind);
  return found == properties.end() ? nullptr : &*found;
}

std::string_view Node::GetText(PropertyKind aKind) const {
  const Property* const property = FindProperty(aKind);
  return property ? property->text : std::string_view();
}

void Node::AddDependent(Node& aDependent) {
  if (mDependents.empty() || mDependents.back() != &aDependent)
    mDependents.push_back(&aDependent);
}

NodeLink Node::LinkTo(INodeIndex& aIndex, PropertyKind aKind) {
  const Property* const property = FindProperty(aKind);
  return property ? LinkTo(aIndex, *property) : NodeLink();
}

NodeLink Node::LinkTo(INodeIndex& aIndex, const Property& aProperty) {
  Node* const target = aIndex.GetNode(aProperty.target);
  if (target)
    target->AddDependent(*this);
  // A property that names nothing still says that something was meant.
  const std::string_view name = aProperty.text.empty() ? std::string_view("?") : aProperty.text;
  return {.node = target, .name = name, .line = aProperty.line};
}

KrResult Node::MakeFault(std::uint32_t aLine, const std::string& aReason, KrResult::Code aCode) const {
  return {aCode, "The camera's description, node " + QuoteName(GetName()) + ", line " + std::to_string(aLine) + ": " +
                     aReason};
}

KrResult Node::Follow(const NodeLink& aLink, Node*& aNode) const {
  if (!aLink.node)
    return MakeFault(aLink.line, "there is no usable node " + QuoteName(aLink.name) + ".");
  aNode = aLink.node;
  return {};
}

void Node::AddWordFault(INodeIndex& aIndex, const Property& aProperty, std::string_view aWanted) {
  aIndex.AddFault(*this, aProperty.line, Quote(aProperty.text) + " is not " + std::string(aWanted) + ".");
}

std::int64_t Node::TakeInteger(INodeIndex& aIndex, PropertyKind aKind, std::int64_t aDefault) {
  const Property* const property = FindProperty(aKind);
  if (!property)
    return aDefault;
  const std::optional<std::int64_t> value = ParseInteger(property->text);
  if (!value)
    AddWordFault(aIndex, *property, "a whole number of 64 bits");
  return value.value_or(aDefault);
}

double Node::TakeFloat(INodeIndex& aIndex, PropertyKind aKind, double aDefault) {
  const Property* const property = FindProperty(aKind);
  if (!property)
    return aDefault;
  const std::optional<double> value = ParseFloat(property->text);
  if (!value)
    AddWordFault(aIndex, *property, "a number");
  return value.value_or(aDefault);
}

bool Node::TakeYesNo(INodeIndex& aIndex, PropertyKind aKind, bool aDefault) {
  const Property* const property = FindProperty(aKind);
  if (!property)
    return aDefault;
  const std::optional<bool> value = ParseYesNo(property->text);
  if (!value)
    AddWordFault(aIndex, *property, "Yes or No");
  return value.value_or(aDefault);
}

std::size_t Node::TakeWord(INodeIndex& aIndex, PropertyKind aKind, std::span<const std::string_view> aWords,
                           std::size_t aDefault) {
  const Property* const property = FindProperty(aKind);
  // An element without content says nothing.
  if (!property || property->text.empty())
    return aDefault;
  const std::optional<std::size_t> word = FindWord(aWords, property->text);
  if (word)
    return *word;
  std::string wanted = "one of";
  for (const std::string_view known : aWords)
    wanted += " " + std::string(known);
  AddWordFault(aIndex, *property, wanted);
  return aDefault;
}

KrResult Node::Get(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  Memo& memo = mMemos[static_cast<std::size_t>(aFacet)];
  if (memo.isBusy) {
    aEvaluation.isStable = false;
    return MakeCycleFault(aEvaluation.path);
  }
  if (!memo.Holds(aEvaluation)) {
    if (aEvaluation.path.size() >= Evaluation::kMaxDepth) {
      // Asked from elsewhere, the same nodes may be within the limit.
      aEvaluation.isStable = false;
      return MakeFault(GetLine(),
                       "more than " + std::to_string(Evaluation::kMaxDepth) + " nodes stand on one another here.");
    }
    return Find(aEvaluation, aFacet, aValue, memo);
  }
  aEvaluation.isStable = aEvaluation.isStable && memo.IsStable();
  if (const KrResult* const error = memo.GetError())
    return *error;
  aValue = memo.GetValue();
  return {};
}

KrResult Node::Find(Evaluation& aEvaluation, Facet aFacet, Number& aValue, Memo& aMemo) {
  Number value;
  KrResult result;
  bool isStable = true;
  {
    const Step step(aEvaluation, *this, aMemo);
    if (IsAccessFacet(aFacet))
      value = FromAccess(CombineAccess(aEvaluation, aFacet));
    else if (aFacet == Facet::Implementation)
      result = CombineImplementation(aEvaluation, value);
    else
      result = Compute(aEvaluation, aFacet, value);
    // A failure may pass: what others made of it is not to be remembered either.
    aEvaluation.isStable = aEvaluation.isStable && result.IsOK();
    isStable = aEvaluation.isStable;
  }
  aMemo.Set(aEvaluation, result, value, isStable);
  if (result.IsOK())
    aValue = value;
  return result;
}

KrResult Node::MakeCycleFault(std::span<Node* const> aPath) const {
  constexpr std::size_t kMostNames = 12;
  auto from = std::ranges::find(aPath, this);
  std::string names;
  for (std::size_t count = 0; from != aPath.end(); ++from, ++count) {
    if (count == kMostNames) {
      names += "… → ";
      break;
    }
    names += std::string((*from)->GetName()) + " → ";
  }
  return MakeFault(GetLine(), "the node stands on itself: " + names + std::string(GetName()) + ".");
}

KrGenAccessMode Node::GetAccess(Evaluation& aEvaluation, Facet aFacet) {
  Number mode;
  // What stands on itself, or on too much, cannot be used.
  if (!Get(aEvaluation, aFacet, mode).IsOK())
    return KrGenAccessMode::NotAvailable;
  return static_cast<KrGenAccessMode>(mode.ToInteger());
}

KrGenAccessMode Node::CombineAccess(Evaluation& aEvaluation, Facet aFacet) {
  if (mIsImplemented.IsSet()) {
    Number implemented;
    if (!mIsImplemented.node || !mIsImplemented.node->TryGetValue(aEvaluation, implemented))
      return KrGenAccessMode::NotAvailable;
    if (implemented.ToFloat() == 0.0)
      return KrGenAccessMode::NotImplemented;
  }
  const KrGenAccessMode own = ComputeAccess(aEvaluation, aFacet);
  if (own == KrGenAccessMode::NotImplemented)
    return own;
  Number available;
  const auto isAvailable = [&] {
    return mIsAvailable.node && mIsAvailable.node->TryGetValue(aEvaluation, available) && available.ToFloat() != 0.0;
  };
  if (mIsAvailable.IsSet() && !isAvailable())
    return KrGenAccessMode::NotAvailable;
  const KrGenAccessMode mode = CombineAccessModes(own, mImposedAccess);
  const bool asksLock = aFacet == Facet::Access && IsWritable(mode) && mIsLocked.IsSet();
  return asksLock && IsLocked(aEvaluation) ? StripWriting(mode) : mode;
}

KrResult Node::CombineImplementation(Evaluation& aEvaluation, Number& aImplemented) {
  if (mIsImplemented.IsSet()) {
    Node* predicate = nullptr;
    Number implemented;
    if (KrResult result = Follow(mIsImplemented, predicate); !result.IsOK())
      return result;
    if (KrResult result = predicate->GetValue(aEvaluation, implemented); !result.IsOK())
      return result;
    aImplemented = Number(implemented.ToFloat() == 0.0 ? 0 : 1);
    if (aImplemented.ToInteger() == 0)
      return {};
  }
  return ComputeImplementation(aEvaluation, aImplemented);
}

bool Node::IsLocked(Evaluation& aEvaluation) {
  Number locked;
  if (mIsLocked.node && mIsLocked.node->TryGetValue(aEvaluation, locked))
    return locked.ToFloat() != 0.0;
  aEvaluation.hasUnknownLock = true;
  // What was not asked for the device's sake is not unknown for long.
  if (!aEvaluation.hasMissed && !std::exchange(mHasToldOfLock, true))
    KrLogger("KrGenICam")
        .Log(KrLogLevel::Info, {"Node::IsLocked", "node"},
             "\"" + std::string(GetName()) + "\" counts as not locked: \"" + std::string(mIsLocked.name) +
                 "\", which says whether it is, cannot be read.");
  return false;
}

KrResult Node::GetValue(Evaluation& aEvaluation, Number& aValue) {
  if (!IsReadable(GetAccess(aEvaluation, Facet::AccessUnlocked)))
    return ExplainAccess(aEvaluation, false);
  return Get(aEvaluation, Facet::Value, aValue);
}

bool Node::TryGetValue(Evaluation& aEvaluation, Number& aValue) {
  return IsReadable(GetAccess(aEvaluation, Facet::AccessUnlocked)) && Get(aEvaluation, Facet::Value, aValue).IsOK();
}

KrResult Node::CheckWritable(Evaluation& aEvaluation) {
  return IsWritable(GetAccess(aEvaluation)) ? KrResult() : ExplainAccess(aEvaluation, true);
}

KrResult Node::CheckNumber(Evaluation& aEvaluation, const Number& aValue) {
  if (KrResult result = CheckWritable(aEvaluation); !result.IsOK())
    return result;
  if (std::isnan(aValue.ToFloat()))
    return {KrResult::Code::InvalidInput, QuoteName(GetName()) + " cannot be set to what is no number."};
  return CheckRange(aEvaluation, aValue, false);
}

KrResult Node::SetValue(Evaluation& aEvaluation, const Number& aValue) {
  KrResult result = CheckWrite(aEvaluation, aValue);
  return result.IsOK() ? WriteAndAsk(aEvaluation, aValue) : result;
}

KrResult Node::WriteAndAsk(Evaluation& aEvaluation, const Number& aValue) {
  KrResult result = Write(aEvaluation, aValue);
  return result.IsOK() ? CheckErrors(aEvaluation) : result;
}

KrResult Node::CheckRange(Evaluation& aEvaluation, const Number& aValue, bool aChecksIncrement) {
  Number minimum;
  Number maximum;
  if (KrResult result = Get(aEvaluation, Facet::Minimum, minimum); !result.IsOK())
    return result;
  if (KrResult result = Get(aEvaluation, Facet::Maximum, maximum); !result.IsOK())
    return result;
  const auto refuse = [this, &aValue](const std::string& aReason) {
    return KrResult(KrResult::Code::OutOfRange,
                    QuoteName(GetName()) + " cannot be set to " + FormatNumber(aValue) + ": " + aReason);
  };
  const bool isWhole = !aValue.IsFloat() && !minimum.IsFloat() && !maximum.IsFloat();
  const bool isInside = isWhole ? aValue.ToInteger() >= minimum.ToInteger() && aValue.ToInteger() <= maximum.ToInteger()
                                : aValue.ToFloat() >= minimum.ToFloat() && aValue.ToFloat() <= maximum.ToFloat();
  if (!isInside && minimum.ToFloat() > maximum.ToFloat())
    return refuse("there is nothing that it takes at the moment, as its minimum is " + FormatNumber(minimum) +
                  " and its maximum " + FormatNumber(maximum) + ".");
  if (!isInside)
    return refuse("it takes " + FormatNumber(minimum) + " to " + FormatNumber(maximum) + ".");
  if (!aChecksIncrement || !isWhole)
    return {};
  Number increment;
  if (KrResult result = Get(aEvaluation, Facet::Increment, increment); !result.IsOK())
    return result;
  const std::uint64_t step = static_cast<std::uint64_t>(std::max<std::int64_t>(increment.ToInteger(), 1));
  // Without a lower limit, steps are counted from 0: nobody means those from the smallest number of 64 bits on.
  const bool hasMinimum = minimum.ToInteger() != std::numeric_limits<std::int64_t>::min();
  const std::uint64_t first = hasMinimum ? static_cast<std::uint64_t>(minimum.ToInteger()) : 0;
  const std::uint64_t distance = hasMinimum || aValue.ToInteger() >= 0
                                     ? static_cast<std::uint64_t>(aValue.ToInteger()) - first
                                     : 0 - static_cast<std::uint64_t>(aValue.ToInteger());
  if (distance % step != 0)
    return refuse("it goes from " + FormatNumber(minimum) + " to " + FormatNumber(maximum) + " in steps of " +
                  std::to_string(step) + ".");
  return {};
}

KrResult Node::GetFloatView(Evaluation& aEvaluation, double& aValue) {
  Number value;
  KrResult result = GetValue(aEvaluation, value);
  if (result.IsOK())
    aValue = value.ToFloat();
  return result;
}

KrResult Node::FromFloatView(Evaluation&, double aFloat, Number& aValue) {
  // What has no 64 bits stays as it is, for the range to refuse.
  const bool isRounded = GetType() != KrGenType::Float && std::fabs(aFloat) < 0x1p63;
  aValue = isRounded ? Number(Number(aFloat).ToInteger()) : Number(aFloat);
  return {};
}

KrResult Node::Compute(Evaluation&, Facet, Number&) {
  return {KrResult::Code::InvalidInput, QuoteName(GetName()) + " has no value that is a number."};
}

KrGenAccessMode Node::ComputeAccess(Evaluation&, Facet) {
  return KrGenAccessMode::ReadOnly;
}

KrResult Node::ComputeImplementation(Evaluation&, Number& aImplemented) {
  aImplemented = Number(1);
  return {};
}

KrResult Node::GetImplementation(Evaluation& aEvaluation, const NodeLink& aLink, Number& aImplemented) {
  aImplemented = Number(1);
  return aLink.node ? aLink.node->Get(aEvaluation, Facet::Implementation, aImplemented) : KrResult();
}

KrResult Node::CheckWrite(Evaluation& aEvaluation, const Number&) {
  if (KrResult result = CheckWritable(aEvaluation); !result.IsOK())
    return result;
  return {KrResult::Code::InvalidInput, QuoteName(GetName()) + " cannot be set to a number."};
}

KrResult Node::Write(Evaluation& aEvaluation, const Number& aValue) {
  return CheckWrite(aEvaluation, aValue);
}

KrResult Node::ReadText(Evaluation&, std::string&) {
  return {KrResult::Code::InvalidInput, QuoteName(GetName()) + " has no value that is a text."};
}

KrResult Node::CheckWriteText(Evaluation&, std::string_view) {
  return {KrResult::Code::InvalidInput, QuoteName(GetName()) + " cannot be set to a text."};
}

KrResult Node::WriteText(Evaluation& aEvaluation, std::string_view aText) {
  return CheckWriteText(aEvaluation, aText);
}

KrResult Node::GetMaxTextLength(Evaluation&, std::int64_t&) {
  return {KrResult::Code::InvalidInput, QuoteName(GetName()) + " has no value that is a text."};
}

KrResult Node::GetValidValues(Evaluation&, std::vector<Number>& aValues) {
  aValues.clear();
  return {};
}

bool Node::CanHaveValidValues(std::size_t) {
  return false;
}

NodeShown Node::GetShown(Evaluation&) {
  return {};
}

bool Node::HasLimit(Evaluation& aEvaluation, Facet aFacet) {
  using Whole = std::numeric_limits<std::int64_t>;
  Number limit;
  if (!Get(aEvaluation, aFacet, limit).IsOK())
    return false;
  if (limit.IsFloat())
    return std::fabs(limit.ToFloat()) < std::numeric_limits<double>::max();
  return limit.ToInteger() != Whole::min() && limit.ToInteger() != Whole::max();
}

bool Node::HasIncrement(Evaluation&) {
  return GetType() != KrGenType::Float;
}

std::uint64_t Node::GetLastAsked() const {
  return std::ranges::max_element(mMemos, {}, &Memo::GetEpoch)->GetEpoch();
}

void Node::Forget(std::vector<Node*>&) {
  for (Memo& memo : mMemos)
    memo.Forget();
}

} // namespace krgenicam
