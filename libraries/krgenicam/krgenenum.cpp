#include "krgenicam/krgenenum.h"

#include "map/parameternumbers.h"
#include "map/parametertext.h"
#include "nodes/enumerationnode.h"

#include <string>

using krgenicam::EnumEntryNode;
using krgenicam::EnumerationNode;
using krgenicam::Evaluation;
using krgenicam::Number;

namespace {

// The object of an entry that was looked for; aWhat names it where there is none.
KrResult TakeEntry(const krgenicam::NodeMap& aMap, const krgenicam::Node& aEnumeration, const EnumEntryNode* aNode,
                   const std::string& aWhat, KrGenEnumEntry*& aEntry) {
  if (!aNode)
    return {KrResult::Code::NotFound,
            "\"" + std::string(aEnumeration.GetName()) + "\" has no entry of the " + aWhat + "."};
  aEntry = static_cast<KrGenEnumEntry*>(aMap.GetParameter(*aNode));
  return {};
}

} // namespace

KrResult KrGenEnum::GetValue(std::int64_t& aValue) {
  return krgenicam::GetNumber(mMap, mNode, aValue);
}

KrResult KrGenEnum::SetValue(std::int64_t aValue) {
  return mMap.Run([&](Evaluation& aEvaluation) { return mNode.SetValue(aEvaluation, Number(aValue)); });
}

KrResult KrGenEnum::GetEntry(KrString& aName) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    std::string name;
    KrResult result = krgenicam::GetText(aEvaluation, mNode, name);
    if (result.IsOK())
      aName = name;
    return result;
  });
}

KrResult KrGenEnum::SetEntry(const KrString& aName) {
  return mMap.Run([&](Evaluation& aEvaluation) { return mNode.SetText(aEvaluation, aName.ToUtf8()); });
}

KrResult KrGenEnum::GetEntriesCount(std::size_t& aCount) const {
  aCount = GetEntriesCount();
  return {};
}

std::size_t KrGenEnum::GetEntriesCount() const {
  return static_cast<const EnumerationNode&>(mNode).GetEntries().size();
}

KrResult KrGenEnum::GetEntryByIndex(std::size_t aIndex, KrGenEnumEntry*& aEntry) const {
  const auto& entries = static_cast<const EnumerationNode&>(mNode).GetEntries();
  return TakeEntry(mMap, mNode, aIndex < entries.size() ? entries[aIndex] : nullptr, "index " + std::to_string(aIndex),
                   aEntry);
}

KrResult KrGenEnum::GetEntryByValue(std::int64_t aValue, KrGenEnumEntry*& aEntry) const {
  return TakeEntry(mMap, mNode, static_cast<const EnumerationNode&>(mNode).FindEntry(aValue),
                   "value " + std::to_string(aValue), aEntry);
}

KrResult KrGenEnum::GetEntryByName(const KrString& aName, KrGenEnumEntry*& aEntry) const {
  return TakeEntry(mMap, mNode, static_cast<const EnumerationNode&>(mNode).FindEntry(aName.ToUtf8()),
                   "name \"" + aName.ToUtf8() + "\"", aEntry);
}

KrResult KrGenEnum::GetAvailableEntries(KrStringList& aNames) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    aNames.Clear();
    for (EnumEntryNode* entry : static_cast<EnumerationNode&>(mNode).GetEntries()) {
      if (entry->IsAvailable(aEvaluation))
        aNames.Add(entry->GetSymbolic());
    }
    return KrResult();
  });
}
