#pragma once
// The few accesses to a device's features by name that everything above needs while there is no parameter array:
// whether there is one, enumerations and booleans. All else about features is left to the parameter array.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"

namespace krsystem {

/// Features of an open device by their names (GenICam SFNC or the maker's own).
///
/// Results: NotFound for a name that the device has not, InvalidInput for a feature of another type or a value that it
/// does not accept, AccessDenied for one that cannot be read or written now, and what a register port gives.
///
/// Thread: any; a call may wait as long as a few register accesses take.
/// Ownership: belongs to its link and ends with it.
class KR_EXPORT IFeatureAccess {
public:
  virtual ~IFeatureAccess() = default;

  /// Whether the device's description names the feature. False too when the description cannot be had.
  virtual bool HasFeature(const KrString& aName) = 0;
  /// Whether the feature is there and can be used at the moment: implemented and available.
  virtual bool IsFeatureAvailable(const KrString& aName) = 0;
  /// The names of the entries of an enumeration that can be chosen at the moment, in the description's order.
  virtual KrResult GetEnumerationEntries(const KrString& aName, KrStringList& aEntries) = 0;
  /// The name of the entry that is set.
  virtual KrResult GetEnumeration(const KrString& aName, KrString& aEntry) = 0;
  virtual KrResult SetEnumeration(const KrString& aName, const KrString& aEntry) = 0;
  virtual KrResult GetBoolean(const KrString& aName, bool& aValue) = 0;
  virtual KrResult SetBoolean(const KrString& aName, bool aValue) = 0;
};

} // namespace krsystem
