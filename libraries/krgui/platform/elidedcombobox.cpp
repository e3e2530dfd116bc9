#include "platform/elidedcombobox.h"

#include <QStyle>
#include <QStyleOptionComboBox>

namespace krgui {

namespace {

/// That styles leave beside the text.
constexpr int kTextMargins = 2;

} // namespace

void ElidedComboBox::initStyleOption(QStyleOptionComboBox* aOption) const {
  QComboBox::initStyleOption(aOption);
  const int room =
      style()->subControlRect(QStyle::CC_ComboBox, aOption, QStyle::SC_ComboBoxEditField, this).width() - kTextMargins;
  aOption->currentText = fontMetrics().elidedText(aOption->currentText, Qt::ElideRight, room);
}

} // namespace krgui
