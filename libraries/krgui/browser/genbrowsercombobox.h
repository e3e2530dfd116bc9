#pragma once
// The combo box that edits booleans and enumerations in the property grid. How large its list may become is left to
// logic/browser/choiceplacement.h, what its items are to featureediting.h.

#include "logic/browser/featureediting.h"
#include "platform/tooltipcombobox.h"

namespace krgui {

/// Thread: user interface. Ownership: belongs to its parent widget.
class GenBrowserComboBox : public TooltipComboBox {
  Q_OBJECT

public:
  explicit GenBrowserComboBox(QWidget* aParent);

  /// Replaces the items, with their tooltips, and selects the current one, if there is any.
  void SetChoices(const Choices& aChoices);
  /// The list is open.
  bool IsListOpen() const;

  /// Opens the list, or hides it where it is open.
  void showPopup() override;

protected:
  void keyPressEvent(QKeyEvent* aEvent) override;

private:
  int FindWidestItem() const;
};

} // namespace krgui
