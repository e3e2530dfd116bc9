// The combo box whose text may be longer than its room.

#include "platform/elidedcombobox.h"

#include <QStyle>
#include <QStyleOptionComboBox>

#include <gtest/gtest.h>

namespace krgui {

namespace {

const QString kLong = QStringLiteral("SchemaVersion.1.1@XMLVersion.1.0.0@Camera.xml");

/// Shows what it would paint.
class ShownComboBox : public ElidedComboBox {
public:
  explicit ShownComboBox(int aWidth) : ElidedComboBox(nullptr) {
    addItem(kLong);
    resize(aWidth, sizeHint().height());
  }
  QString GetShownText() const { return GetOption().currentText; }
  int GetRoom() const {
    const QStyleOptionComboBox option = GetOption();
    return style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this).width();
  }

private:
  QStyleOptionComboBox GetOption() const {
    QStyleOptionComboBox option;
    initStyleOption(&option);
    return option;
  }
};

} // namespace

TEST(ElidedComboBox, TextWithRoom_IsShownWhole) {
  const ShownComboBox box(600);

  EXPECT_EQ(box.GetShownText(), kLong);
}

TEST(ElidedComboBox, TextWithoutRoom_EndsInAnEllipsisThatCanBeSeen) {
  const ShownComboBox box(160);

  EXPECT_TRUE(box.GetShownText().endsWith(QChar(0x2026)));
  EXPECT_LE(box.fontMetrics().horizontalAdvance(box.GetShownText()), box.GetRoom());
  EXPECT_EQ(box.currentText(), kLong);
}

} // namespace krgui
