#pragma once
// Shows what restoring a settings file would change, before anything is written. What differs is found by
// logic/browser/settingsdifference.h.

#include "browser/settingsdialog.h"
#include "logic/browser/settingsdifference.h"

#include <cstddef>
#include <vector>

class QCheckBox;

namespace krgui {

/// Thread: user interface. Ownership: a local object of who asks; borrows the difference.
class SettingsComparisonDialog final : public SettingsDialog {
public:
  /// aHeading stands above the counts.
  SettingsComparisonDialog(QWidget* aOwner, const QString& aHeading, const SettingsDifference& aDifference);

private:
  void ShowRows(bool aShowsAll);
  KrString GetText(std::size_t aRow, int aColumn) const;

  const SettingsDifference& mDifference;
  std::vector<std::size_t> mShown; // Numbers of settings.
};

} // namespace krgui
