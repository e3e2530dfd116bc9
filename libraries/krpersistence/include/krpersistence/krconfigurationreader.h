#pragma once
// Settings that come back from a file: property lists by name. Their meaning is left to the windows, the format to the
// library; it is described in docs/configuration-file.md.

#include "krbase/krstringlist.h"
#include "krpersistence/krpropertylist.h"

#include <utility>
#include <vector>

class KrConfigurationWriter;

/// Reads what a KrConfigurationWriter saved.
///
/// Thread: a value; different objects may be used from different threads. A file may be saved while it is loaded: what
/// is read is one of the files as a whole.
/// Ownership: owns its lists; the file is closed again when Load returns.
///
///     KrConfigurationReader reader;
///     KrPropertyList browser;
///     if (reader.Load("settings.xml").IsOK() && reader.Restore("Browser", browser).IsOK())
///       result = window.Load(browser);
class KR_EXPORT KrConfigurationReader {
public:
  KrConfigurationReader() = default;
  /// What a writer has collected, as if it had been saved and loaded.
  explicit KrConfigurationReader(const KrConfigurationWriter& aWriter);

  /// Reads a file, all or nothing: on any error what was loaded before stays. BadData for a damaged file, with line,
  /// column and reason; NotSupported for a file of another major format version, with the version that it needs;
  /// OutOfRange for one beyond the limits; NotFound, InvalidInput, AccessDenied and SystemError where it cannot be
  /// read. Every description names the file.
  KrResult Load(const KrString& aFileName);
  /// Copies the list of a name. NotFound, with that name, where there is none; aProperties is then unchanged.
  KrResult Restore(const KrString& aName, KrPropertyList& aProperties) const;
  /// True when there is a list of that name; compared exactly, case included.
  bool Contains(const KrString& aName) const;
  /// The names of all lists, in the file's order.
  KrStringList GetNames() const;

private:
  std::vector<std::pair<KrString, KrPropertyList>> mLists;
};
