#pragma once
// A question about a table of settings: text above it, the table, and buttons to go on or not. What is in the table and
// what follows from the answer is left to who asks.

#include "browser/settingstable.h"
#include "platform/modalloop.h"

#include <QString>

class QHBoxLayout;
class QPushButton;

namespace krgui {

/// What a dialog of settings says around its table.
struct SettingsDialogTexts {
  QString objectName;
  QString caption;
  QString heading; ///< Plain text.
  QString accept;  ///< The button that goes on; empty where there is nothing to choose.
  QString cancel;
};

/// Thread: user interface. Ownership: a local object of who asks.
class SettingsDialog : public ModalLoop {
public:
  SettingsDialog(QWidget* aOwner, const SettingsDialogTexts& aTexts, const QString& aTableName,
                 const std::vector<int>& aShares);
  virtual ~SettingsDialog();

  /// OK, Cancel, or Gone when the owner went.
  ModalResult Run() { return RunLoop(); }
  void SetRows(SettingsRows aRows) { mTable->SetRows(std::move(aRows)); }

protected:
  /// Where controls of the dialog's own go, before the buttons.
  QHBoxLayout& GetButtonRow() const { return *mButtonRow; }

private:
  QPushButton* AddButton(const QString& aText);
  QWidget* MakeDetails();
  void OnAccept() override;
  void OnCancel() override;

  // The dialog's controls, which exist for as long as it runs.
  SettingsTable* mTable = nullptr;
  QHBoxLayout* mButtonRow = nullptr;
  const bool mHasChoice;
};

} // namespace krgui
