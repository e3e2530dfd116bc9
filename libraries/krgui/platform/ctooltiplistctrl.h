#pragma once
// A list that is the drop-down of a combo box and explains the item under the pointer with a tooltip. It keeps no texts
// of items: it asks the combo box. When it opens is decided by the combo box, where by logic/frame/dropdownplacement.h.

#include <QListView>
#include <QPointer>
#include <QString>

#include <cstdint>
#include <optional>
#include <unordered_map>

class QComboBox;

namespace krgui {

/// Thread: user interface. Ownership: belongs to its combo box.
class CTooltipListCtrl : public QListView {
  Q_OBJECT

public:
  /// What a hit test finds: an item's number plus one, and where it is in the list's viewport.
  struct ToolHit {
    int id = 0;
    QRect rect;
    friend bool operator==(const ToolHit&, const ToolHit&) = default;
  };

  CTooltipListCtrl();

  /// Becomes the list of a combo box, which owns it from now on.
  void Init(QComboBox& aComboBox);
  /// Sets or replaces the tooltip of an item. Returns the index, -1 where the combo box has no such item.
  int SetItemTooltip(std::int32_t aIndex, const QString& aText);
  /// Sizes, places and shows the list: aOffered is as large as it may become, aComboBox what it belongs to, both on the
  /// screen, in device-independent pixels.
  void ShowDropDown(const QRect& aOffered, const QRect& aComboBox);

  /// Takes over the font and the number of the combo box's items, before the list opens. Returns how high an item is; 0
  /// without items.
  int PrepareItems();

  /// The list was closed by choosing an item, be it the one that was chosen before.
  bool WasChosen() const { return mWasChosen; }

  /// The selected item, wherever the pointer is; nothing without one.
  std::optional<ToolHit> HitTest() const;
  /// The tooltip of a tool by the id of a hit, cut to 1023 characters; empty for id 0 and an item without one.
  QString GetToolText(int aID) const;

Q_SIGNALS:
  /// The list was closed and the combo box shows its choice; posted, so that it never comes inside of a handler of the
  /// list.
  void SelectionChanged();

protected:
  bool event(QEvent* aEvent) override;
  bool viewportEvent(QEvent* aEvent) override;
  void mousePressEvent(QMouseEvent* aEvent) override;
  void mouseReleaseEvent(QMouseEvent* aEvent) override;
  void mouseMoveEvent(QMouseEvent* aEvent) override;
  void keyPressEvent(QKeyEvent* aEvent) override;
  void hideEvent(QHideEvent* aEvent) override;

private:
  class Items;

  void TakeSelected();
  /// Closes the list, shows the choice in the combo box and gives it the focus.
  void CloseList(bool aNotifies);
  bool IsPointerOverComboBox() const;

  QPointer<QComboBox> mComboBox;
  Items* mItems; ///< Belongs to this object.
  int mChosen = -1;
  bool mIsOpen = false;
  bool mWasChosen = false;
  std::unordered_map<std::int32_t, QString> mTooltips{17};
};

} // namespace krgui
