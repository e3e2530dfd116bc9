#include "map/selectorpath.h"

#include "krgenicam/krgenboolean.h"
#include "krgenicam/krgenenum.h"
#include "krgenicam/krgenenumentry.h"
#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgenparameterlist.h"
#include "map/nodemap.h"

#include <algorithm>
#include <cstdint>

namespace krgenicam {

namespace {

// Goes depth first from a parameter to its selectors, each of which is then behind those that select it.
class SelectorWalk {
public:
  void Visit(KrGenParameter& aParameter) {
    KrGenParameterList selecting;
    if (!aParameter.GetSelectingParameters(selecting).IsOK())
      return;
    for (KrGenParameter* const selector : selecting) {
      if (mSeen.size() >= kMaxSelectors || std::find(mSeen.begin(), mSeen.end(), selector) != mSeen.end())
        continue;
      mSeen.push_back(selector);
      Visit(*selector);
      mSelectors.push_back(selector);
    }
  }

  std::vector<KrGenParameter*> TakeSelectorsOf(KrGenParameter& aParameter) {
    mSeen.push_back(&aParameter);
    Visit(aParameter);
    return std::move(mSelectors);
  }

private:
  std::vector<KrGenParameter*> mSeen; // Also what bounds the depth of the walk.
  std::vector<KrGenParameter*> mSelectors;
};

KrResult ListRange(KrGenInteger& aSelector, KrStringList& aPositions, bool& aIsCut) {
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
  std::int64_t increment = 1;
  if (KrResult result = aSelector.GetMin(minimum); !result.IsOK())
    return result;
  if (KrResult result = aSelector.GetMax(maximum); !result.IsOK())
    return result;
  if (KrResult result = aSelector.GetIncrement(increment); !result.IsOK())
    return result;
  if (minimum > maximum)
    return {};
  // Without sign, as the distance may need all 64 bits.
  const std::uint64_t step = static_cast<std::uint64_t>(std::max<std::int64_t>(increment, 1));
  const std::uint64_t steps = (static_cast<std::uint64_t>(maximum) - static_cast<std::uint64_t>(minimum)) / step;
  aIsCut = steps >= kMaxIntegerPositions;
  const std::uint64_t count = aIsCut ? kMaxIntegerPositions : steps + 1;
  for (std::uint64_t i = 0; i < count; ++i)
    aPositions.Add(std::to_string(static_cast<std::int64_t>(static_cast<std::uint64_t>(minimum) + i * step)));
  return {};
}

KrResult ListIntegers(KrGenInteger& aSelector, KrStringList& aPositions, bool& aIsCut) {
  std::vector<std::int64_t> values;
  if (KrResult result = aSelector.GetValidValues(values); !result.IsOK())
    return result;
  if (values.empty())
    return ListRange(aSelector, aPositions, aIsCut);
  aIsCut = values.size() > kMaxIntegerPositions;
  values.resize(std::min(values.size(), kMaxIntegerPositions));
  for (const std::int64_t value : values)
    aPositions.Add(std::to_string(value));
  return {};
}

KrResult ListEntries(NodeMap& aMap, KrGenEnum& aSelector, KrStringList& aPositions) {
  KrResult firstFailure;
  for (std::size_t i = 0; i < aSelector.GetEntriesCount(); ++i) {
    KrGenEnumEntry* entry = nullptr;
    KrGenAccessMode mode = KrGenAccessMode::NotAvailable;
    KrResult asked = aSelector.GetEntryByIndex(i, entry);
    if (asked.IsOK())
      asked = aMap.FindAccess(*entry, mode);
    if (firstFailure.IsOK())
      firstFailure = asked;
    if (asked.IsOK() && IsReadable(mode))
      aPositions.Add(entry->GetName());
  }
  return firstFailure;
}

} // namespace

std::vector<KrGenParameter*> ListSelectors(KrGenParameter& aParameter) {
  return SelectorWalk().TakeSelectorsOf(aParameter);
}

bool IsSelector(KrGenParameter& aParameter) {
  KrGenParameterList selected;
  return aParameter.GetSelectedParameters(selected).IsOK() && !selected.IsEmpty();
}

KrResult ListPositions(NodeMap& aMap, KrGenParameter& aSelector, KrStringList& aPositions, bool& aIsCut) {
  aPositions.Clear();
  aIsCut = false;
  if (auto* const enumeration = dynamic_cast<KrGenEnum*>(&aSelector))
    return ListEntries(aMap, *enumeration, aPositions);
  if (auto* const integer = dynamic_cast<KrGenInteger*>(&aSelector))
    return ListIntegers(*integer, aPositions, aIsCut);
  if (dynamic_cast<KrGenBoolean*>(&aSelector) != nullptr) {
    aPositions.Add("0");
    aPositions.Add("1");
  }
  return {};
}

std::string DescribePlace(const KrString& aName, const std::vector<SelectorPosition>& aPositions) {
  std::string text = aName.ToUtf8();
  for (std::size_t i = 0; i < aPositions.size(); ++i)
    text += (i == 0 ? " [" : ", ") + aPositions[i].selector->GetName().ToUtf8() + "=" + aPositions[i].position.ToUtf8();
  return text + (aPositions.empty() ? "" : "]");
}

std::string GetReason(const KrResult& aResult) {
  return (aResult.GetDescription().IsEmpty() ? aResult.GetCodeString() : aResult.GetDescription()).ToUtf8();
}

} // namespace krgenicam
