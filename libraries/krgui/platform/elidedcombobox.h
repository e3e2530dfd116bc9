#pragma once
// A combo box that shows by an ellipsis that it has no room for the whole of its text, as labels do. Its list has room.

#include <QComboBox>

namespace krgui {

/// Thread: user interface. Ownership: belongs to its parent widget.
class ElidedComboBox : public QComboBox {
  Q_OBJECT

public:
  explicit ElidedComboBox(QWidget* aParent) : QComboBox(aParent) {}

protected:
  void initStyleOption(QStyleOptionComboBox* aOption) const override;
};

} // namespace krgui
