#pragma once
// A combo box whose drop-down list explains its items. Opening it is the toolkit's combo box's: by a click, F4 and
// Alt+Down.

#include <QComboBox>

namespace krgui {

class CTooltipListCtrl;

/// Thread: user interface. Ownership: belongs to its parent widget.
class TooltipComboBox : public QComboBox {
  Q_OBJECT

public:
  explicit TooltipComboBox(QWidget* aParent);

  /// The drop-down list, which takes the tooltips and tells of the choice.
  CTooltipListCtrl& GetList() const { return *mList; }

  void showPopup() override;
  void hidePopup() override;

private:
  CTooltipListCtrl* mList;
};

} // namespace krgui
