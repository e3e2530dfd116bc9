#pragma once
// Controls in rows: as many beside each other as there is room for, the others below. Used where a panel may be narrow.

#include <QLayout>
#include <QList>

namespace krviewer {

/// Thread: user interface. Ownership: owns its items; a widget belongs to the layout's parent.
class WrapLayout : public QLayout {
  Q_OBJECT

public:
  explicit WrapLayout(QWidget* aParent);
  ~WrapLayout() override;

  void addItem(QLayoutItem* aItem) override { mItems.append(aItem); }
  int count() const override { return static_cast<int>(mItems.size()); }
  QLayoutItem* itemAt(int aIndex) const override { return mItems.value(aIndex); }
  QLayoutItem* takeAt(int aIndex) override;
  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int aWidth) const override { return Arrange(QRect(0, 0, aWidth, 0), Doing::Measure); }
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& aRect) override;

private:
  enum class Doing { Measure, Place };
  int Arrange(const QRect& aRect, Doing aDoing) const;

  QList<QLayoutItem*> mItems;
};

} // namespace krviewer
