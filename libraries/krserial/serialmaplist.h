#pragma once
// All maps that count at the moment, in the order in which they are tried: those that the application added, the
// user's, the library's own.

#include "krbase/krresult.h"
#include "serialmap.h"

#include <mutex>

namespace krserial {

/// Thread: any.
class SerialMapList {
public:
  /// The one of the process.
  static SerialMapList& Get();

  /// Adds the maps of a file, before all that are there. Results as ReadSerialMaps.
  KrResult AddFile(const KrString& aFile);
  void RemoveAdded();
  /// Reads the user's files anew; one that is no good is logged and does not count.
  SerialMaps GetAll() const;

  /// Empty where there is no home directory.
  static KrString GetUserDirectory();

private:
  mutable std::mutex mMutex; // Guards the member from here on.
  SerialMaps mAdded;         // The file that was added last first.
};

} // namespace krserial
