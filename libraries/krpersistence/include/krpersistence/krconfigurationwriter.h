#pragma once
// Settings on their way into a file: property lists by name. Their meaning is left to the windows, the format to the
// library; it is described in docs/configuration-file.md.

#include "krpersistence/krpropertylist.h"

#include <utility>
#include <vector>

/// Collects property lists and saves them in one file.
///
/// Thread: a value; different objects may be used from different threads, also to save one file.
/// Ownership: owns copies of the lists; no file stays open.
///
///     KrPropertyList browser;
///     KrResult result = window.Save(browser);
///     KrConfigurationWriter writer;
///     if (result.IsOK())
///       result = writer.Store("Browser", browser);
///     if (result.IsOK())
///       result = writer.Save("settings.xml");
class KR_EXPORT KrConfigurationWriter {
public:
  /// Keeps a copy of a list under a name. A name that was stored before keeps its place and gets the new list. The
  /// empty name is InvalidInput, too little memory SystemError.
  KrResult Store(const KrString& aName, const KrPropertyList& aProperties);
  /// Writes all lists in the order in which they were first stored; may be called again. The file is replaced in one
  /// step, symbolic links lead to the file that is replaced, and its access rights stay; after any error the old file
  /// is as it was, and nothing else is left. OutOfRange for more than the format's limits allow, otherwise what
  /// KrAtomicFile returns; every description names the file.
  KrResult Save(const KrString& aFileName) const;

private:
  friend class KrConfigurationReader;

  std::vector<std::pair<KrString, KrPropertyList>> mLists;
};
