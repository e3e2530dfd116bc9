#include "nodes/enumerationnode.h"

#include "description/lexical.h"
#include "nodes/numbertext.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace krgenicam {

namespace {

// Leaves one entry of each key, the first of the description, and has the others noted.
template <typename Projection, typename Note>
void SortByKey(std::vector<EnumEntryNode*>& aEntries, Projection aKey, Note aNote) {
  std::ranges::stable_sort(aEntries, {}, aKey);
  std::vector<EnumEntryNode*> first;
  for (EnumEntryNode* const entry : aEntries) {
    if (first.empty() || aKey(first.back()) != aKey(entry))
      first.push_back(entry);
    else
      aNote(*entry, *first.back());
  }
  aEntries = std::move(first);
}

std::int64_t GetKeyValue(const EnumEntryNode* aEntry) {
  return aEntry->GetEntryValue();
}

std::string_view GetKeyName(const EnumEntryNode* aEntry) {
  return aEntry->GetSymbolic();
}

} // namespace

void EnumerationNode::Link(INodeIndex& aIndex) {
  ValueNode::Link(aIndex);
  TakeEntries(aIndex);
  SortEntries(aIndex);
  if (mEntries.empty())
    return;
  const auto [lowest, highest] = std::ranges::minmax(mEntries, {}, &EnumEntryNode::GetNumericValue);
  mNumericMinimum = lowest->GetNumericValue();
  mNumericMaximum = highest->GetNumericValue();
}

void EnumerationNode::TakeEntries(INodeIndex& aIndex) {
  for (const Property& property : GetProperties()) {
    if (property.kind != PropertyKind::EnumEntry)
      continue;
    const NodeLink link = LinkTo(aIndex, property);
    auto* const entry = dynamic_cast<EnumEntryNode*>(link.node);
    if (entry && entry->HasEntryValue())
      mEntries.push_back(entry);
    else
      aIndex.AddFault(*this, property.line, "the entry is left out, as it is not there or has no value.");
  }
}

void EnumerationNode::SortEntries(INodeIndex& aIndex) {
  mByValue = mEntries;
  mByName = mEntries;
  SortByKey(mByValue, GetKeyValue, [&](const EnumEntryNode& aEntry, const EnumEntryNode& aFirst) {
    aIndex.AddFault(*this, aEntry.GetLine(),
                    "the entry " + Quote(aEntry.GetSymbolic()) + " has the value of " + Quote(aFirst.GetSymbolic()) +
                        ", which is the one that is found.");
  });
  SortByKey(mByName, GetKeyName, [&](const EnumEntryNode& aEntry, const EnumEntryNode&) {
    aIndex.AddFault(*this, aEntry.GetLine(),
                    "there are two entries " + Quote(aEntry.GetSymbolic()) + ", of which the first is found.");
  });
}

EnumEntryNode* EnumerationNode::FindEntry(std::int64_t aValue) const {
  const auto found = std::ranges::lower_bound(mByValue, aValue, {}, GetKeyValue);
  return found != mByValue.end() && (*found)->GetEntryValue() == aValue ? *found : nullptr;
}

EnumEntryNode* EnumerationNode::FindEntry(std::string_view aName) const {
  const auto found = std::ranges::lower_bound(mByName, aName, {}, GetKeyName);
  return found != mByName.end() && (*found)->GetSymbolic() == aName ? *found : nullptr;
}

bool EnumerationNode::IsSelfClearing(const Number& aValue) const {
  const EnumEntryNode* const entry = FindEntry(aValue.ToInteger());
  return entry && entry->IsSelfClearing();
}

bool EnumerationNode::IsSelfClearingNow(Evaluation& aEvaluation) {
  Number value;
  return TryGetValue(aEvaluation, value) && IsSelfClearing(value);
}

KrResult EnumerationNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  if (aFacet == Facet::Value)
    return ReadValue(aEvaluation, aValue);
  if (aFacet == Facet::Increment)
    aValue = Number(1);
  else if (!mByValue.empty())
    aValue = Number((aFacet == Facet::Minimum ? mByValue.front() : mByValue.back())->GetEntryValue());
  return {};
}

KrResult EnumerationNode::ReadValue(Evaluation& aEvaluation, Number& aValue) {
  Number value;
  const bool wasSelfClearing = mWasSelfClearing;
  const bool mayReadAnew = aEvaluation.mayAskDevice && !aEvaluation.isFresh;
  KrResult result =
      mWasSelfClearing && mayReadAnew ? ReadOriginAnew(aEvaluation, value) : ReadOrigin(aEvaluation, value);
  if (result.IsOK() && !wasSelfClearing && mayReadAnew && IsSelfClearing(value))
    result = ReadOriginAnew(aEvaluation, value);
  if (!result.IsOK())
    return result;
  aValue = Number(value.ToInteger());
  mWasSelfClearing = IsSelfClearing(aValue);
  // The device changes it by itself, so nothing that is made of it holds for long.
  if (mWasSelfClearing || wasSelfClearing)
    aEvaluation.isStable = false;
  if (wasSelfClearing && !mWasSelfClearing)
    aEvaluation.OnWritten(*this);
  return {};
}

void EnumerationNode::LookForEntries(Evaluation& aEvaluation, bool& aIsImplemented, bool& aIsAvailable) {
  for (EnumEntryNode* const entry : mEntries) {
    const KrGenAccessMode mode = entry->GetAccess(aEvaluation, Facet::AccessUnlocked);
    aIsImplemented = aIsImplemented || mode != KrGenAccessMode::NotImplemented;
    aIsAvailable = aIsAvailable || IsReadable(mode);
    if (aIsAvailable)
      return;
  }
}

KrGenAccessMode EnumerationNode::ComputeAccess(Evaluation& aEvaluation, Facet aFacet) {
  bool isImplemented = false;
  bool isAvailable = false;
  LookForEntries(aEvaluation, isImplemented, isAvailable);
  if (!isImplemented)
    return KrGenAccessMode::NotImplemented;
  const KrGenAccessMode mode = ValueNode::ComputeAccess(aEvaluation, aFacet);
  return isAvailable ? mode : CombineAccessModes(mode, KrGenAccessMode::ReadOnly);
}

// One entry is enough; where none is known to be implemented, one that is not known leaves it open.
KrResult EnumerationNode::ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) {
  KrResult open;
  for (EnumEntryNode* const entry : mEntries) {
    Number implemented;
    KrResult result = entry->Get(aEvaluation, Facet::Implementation, implemented);
    if (result.IsOK() && implemented.ToInteger() != 0)
      return ValueNode::ComputeImplementation(aEvaluation, aImplemented);
    if (open.IsOK())
      open = std::move(result);
  }
  aImplemented = Number(0);
  return open;
}

KrResult EnumerationNode::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  bool isImplemented = false;
  bool isAvailable = false;
  LookForEntries(aEvaluation, isImplemented, isAvailable);
  if (aForWriting && !isAvailable)
    return {KrResult::Code::AccessDenied, aAttempt + "none of its entries can be chosen at the moment."};
  return ValueNode::ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
}

KrResult EnumerationNode::GetFloatView(Evaluation& aEvaluation, double& aValue) {
  Number value;
  if (KrResult result = GetValue(aEvaluation, value); !result.IsOK())
    return result;
  const EnumEntryNode* const entry = FindEntry(value.ToInteger());
  aValue = entry ? entry->GetNumericValue() : value.ToFloat();
  return {};
}

KrResult EnumerationNode::FromFloatView(Evaluation& aEvaluation, double aFloat, Number& aValue) {
  const EnumEntryNode* nearest = nullptr;
  double smallest = std::numeric_limits<double>::infinity();
  for (EnumEntryNode* const entry : mEntries) {
    const double difference = std::fabs(entry->GetNumericValue() - aFloat);
    if (difference < smallest && entry->IsAvailable(aEvaluation)) {
      nearest = entry;
      smallest = difference;
    }
  }
  if (!nearest)
    return RefuseValue(aEvaluation, FormatNumber(Number(aFloat)));
  aValue = Number(nearest->GetEntryValue());
  return {};
}

KrResult EnumerationNode::CheckWrite(Evaluation& aEvaluation, const Number& aValue) {
  if (KrResult result = CheckWritable(aEvaluation); !result.IsOK())
    return result;
  EnumEntryNode* const entry = std::isnan(aValue.ToFloat()) ? nullptr : FindEntry(aValue.ToInteger());
  if (!entry)
    return RefuseValue(aEvaluation, FormatNumber(aValue));
  if (!entry->IsAvailable(aEvaluation))
    return {KrResult::Code::AccessDenied, Quote(GetName()) + " cannot be set to " + Quote(entry->GetSymbolic()) +
                                              ", which cannot be chosen at the moment. " + ListAvailable(aEvaluation)};
  return CheckWriteOrigin(aEvaluation, Number(entry->GetEntryValue()));
}

KrResult EnumerationNode::Write(Evaluation& aEvaluation, const Number& aValue) {
  return WriteOrigin(aEvaluation, Number(aValue.ToInteger()));
}

KrResult EnumerationNode::RefuseValue(Evaluation& aEvaluation, const std::string& aValue) {
  return {KrResult::Code::InvalidInput, Quote(GetName()) + " cannot be set to " + aValue +
                                            ", which is none of its entries. " + ListAvailable(aEvaluation)};
}

std::string EnumerationNode::ListAvailable(Evaluation& aEvaluation) {
  constexpr std::size_t kMostNamed = 20;
  std::string names;
  std::size_t count = 0;
  for (EnumEntryNode* const entry : mEntries) {
    if (!entry->IsAvailable(aEvaluation))
      continue;
    if (++count > kMostNamed)
      return "It can be set to " + names + ", ….";
    names += (names.empty() ? "" : ", ") + std::string(entry->GetSymbolic());
  }
  return names.empty() ? "None of its entries can be chosen." : "It can be set to " + names + ".";
}

KrResult EnumerationNode::ReadText(Evaluation& aEvaluation, std::string& aText) {
  Number value;
  if (KrResult result = Get(aEvaluation, Facet::Value, value); !result.IsOK())
    return result;
  const EnumEntryNode* const entry = FindEntry(value.ToInteger());
  if (!entry)
    return {KrResult::Code::BadData, "The device's value of " + Quote(GetName()) + ", " + FormatNumber(value) +
                                         ", is that of none of its entries."};
  aText = entry->GetSymbolic();
  return {};
}

KrResult EnumerationNode::CheckWriteText(Evaluation& aEvaluation, std::string_view aText) {
  if (KrResult result = CheckWritable(aEvaluation); !result.IsOK())
    return result;
  const EnumEntryNode* const entry = FindEntry(aText);
  return entry ? CheckWrite(aEvaluation, Number(entry->GetEntryValue())) : RefuseValue(aEvaluation, Quote(aText));
}

KrResult EnumerationNode::WriteText(Evaluation& aEvaluation, std::string_view aText) {
  const EnumEntryNode* const entry = FindEntry(aText);
  return entry ? Write(aEvaluation, Number(entry->GetEntryValue())) : RefuseValue(aEvaluation, Quote(aText));
}

KrResult EnumerationNode::GetMaxTextLength(Evaluation&, std::int64_t& aLength) {
  aLength = 0;
  for (const EnumEntryNode* const entry : mEntries)
    aLength = std::max(aLength, static_cast<std::int64_t>(entry->GetSymbolic().size()));
  return {};
}

std::string EnumerationNode::DescribeValue(const Number& aValue) const {
  const EnumEntryNode* const entry = FindEntry(aValue.ToInteger());
  if (!entry)
    return Node::DescribeValue(aValue);
  const std::string_view displayName = entry->GetText(PropertyKind::DisplayName);
  const std::string_view toolTip = entry->GetText(PropertyKind::ToolTip);
  std::string text(displayName == entry->GetSymbolic() ? std::string_view() : displayName);
  if (!toolTip.empty())
    text += (text.empty() ? "" : ": ") + std::string(toolTip);
  return std::string(entry->GetSymbolic()) + (text.empty() ? "" : " (" + text + ")");
}

} // namespace krgenicam
