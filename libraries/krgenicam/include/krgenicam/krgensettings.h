#pragma once
// The settings of a device as text: which parameter had which value, in the order in which they are to be set. Reading
// and writing the device is left to the parameter array.

#include "krbase/krresult.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Hears how far the storing or restoring of settings has come, in units of its own: aDone never falls, aTotal stays.
/// False ends the work. Called on the thread that stores or restores, with no lock held; it may use the array. What it
/// throws is logged and counts as false.
using KrGenProgress = std::function<bool(std::size_t aDone, std::size_t aTotal)>;

/// One step: a parameter and its value as text (KrGenParameter::ToString). Selectors are steps too, and come before
/// what they select.
struct KrGenSetting {
  KrString name;  ///< The feature, as the array knows it.
  KrString value; ///< As KrGenParameter::ToString gives it.

  /// Whether all members are equal.
  friend bool operator==(const KrGenSetting&, const KrGenSetting&) = default;
};

/// Settings in order. Names may occur several times.
///
///     KrGenSettings settings;
///     KrStringList problems;
///     KrResult result = array->StoreSettings(settings, problems);
///     if (result.IsOK())
///       result = settings.Save("settings.txt");
///
/// Thread: a value; different objects may be used from different threads.
/// Ownership: owns its texts.
class KR_EXPORT KrGenSettings {
public:
  /// Appends a setting.
  void Add(const KrString& aName, const KrString& aValue);
  /// Leaves no settings.
  void Clear() { mSettings.clear(); }
  /// The number of settings.
  std::size_t GetCount() const { return mSettings.size(); }
  /// The settings in their order; valid until they are changed.
  const std::vector<KrGenSetting>& GetSettings() const { return mSettings; }
  /// The device that the settings were taken from, for people; written into the text.
  const KrString& GetDevice() const { return mDevice; }
  /// Says whose settings they are.
  void SetDevice(const KrString& aDevice) { mDevice = aDevice; }

  /// The text as GenApi persistence files have it: comments that begin with "#", of which the first says what the file
  /// is, then one line for each step: name, tab, value.
  std::string ToText() const;
  /// Reads such a text, of at most 16 MiB, with any kind of line ends; comments are optional but for the first. BadData
  /// with the line for what is no settings file.
  KrResult FromText(std::string_view aText);
  /// Writes the text to a file, which is there as a whole or not at all and replaces one of that name (KrAtomicFile).
  /// Results as KrAtomicFile::Open and Commit; OutOfRange, with nothing written, for a text of more than 16 MiB.
  KrResult Save(const KrString& aFileName) const;
  /// Reads the text of a file; results as KrReadWholeFile and FromText, with the file's name.
  KrResult Load(const KrString& aFileName);

private:
  std::vector<KrGenSetting> mSettings;
  KrString mDevice;
};
