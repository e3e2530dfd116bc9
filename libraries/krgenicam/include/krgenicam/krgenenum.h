#pragma once
// A parameter that has one of several named values.

#include "krgenicam/krgenenumentry.h"

#include <cstddef>
#include <cstdint>

/// Thread, ownership, results: as KrGenParameter.
class KR_EXPORT KrGenEnum final : public KrGenParameter {
public:
  /// Reads the value, which may be that of no entry.
  KrResult GetValue(std::int64_t& aValue);
  /// Sets the value of an entry; InvalidInput for the value of none, AccessDenied for an entry that is not available.
  KrResult SetValue(std::int64_t aValue);
  /// The name of the entry that is set; BadData when the device's value is that of no entry.
  KrResult GetEntry(KrString& aName);
  /// Sets the entry of a name; results as for SetValue.
  KrResult SetEntry(const KrString& aName);
  /// How many entries the description has, whether or not they can be chosen.
  KrResult GetEntriesCount(std::size_t& aCount) const;
  /// The same.
  std::size_t GetEntriesCount() const;
  /// The entry at an index, in the order of the description; NotFound beyond the last.
  KrResult GetEntryByIndex(std::size_t aIndex, KrGenEnumEntry*& aEntry) const;
  /// The entry of a value, NotFound where there is none.
  KrResult GetEntryByValue(std::int64_t aValue, KrGenEnumEntry*& aEntry) const;
  /// The entry of a name, NotFound where there is none.
  KrResult GetEntryByName(const KrString& aName, KrGenEnumEntry*& aEntry) const;
  /// The names of the entries that can be chosen at the moment.
  KrResult GetAvailableEntries(KrStringList& aNames);

private:
  friend class krgenicam::NodeMap;
  using KrGenParameter::KrGenParameter;
};
