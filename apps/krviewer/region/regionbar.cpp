#include "region/regionbar.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace krviewer {

namespace {

// Doubles hold each number that a region may have; see RegionAccess.
void SetNumber(QDoubleSpinBox& aBox, std::int64_t aValue, std::int64_t aMin, std::int64_t aMax, std::int64_t aStep,
               bool aIsFixed) {
  const QSignalBlocker blocker(aBox);
  aBox.setRange(static_cast<double>(aMin), static_cast<double>(aMax));
  aBox.setSingleStep(static_cast<double>(aStep));
  // Not while the user types: a number that has become another one would be typed into.
  const auto value = static_cast<double>(aValue);
  if (aBox.value() != value)
    aBox.setValue(value);
  aBox.setEnabled(!aIsFixed);
}

} // namespace

RegionBar::RegionBar(QWidget* aParent) : QWidget(aParent) {
  setObjectName(QStringLiteral("regionBar"));
  auto* const rows = new QVBoxLayout(this);
  auto* const numbers = new QHBoxLayout;
  rows->addLayout(numbers);
  mNumbers = {AddNumber(tr("&X"), QStringLiteral("regionX")), AddNumber(tr("&Y"), QStringLiteral("regionY")),
              AddNumber(tr("&Width"), QStringLiteral("regionWidth")),
              AddNumber(tr("Hei&ght"), QStringLiteral("regionHeight"))};
  numbers->addStretch();
  auto* const hint =
      new QLabel(tr("Draw on the picture. Arrow keys move the region, with Shift they resize it, with Ctrl in "
                    "larger steps; Enter applies it, Escape cancels."));
  hint->setTextFormat(Qt::PlainText);
  hint->setWordWrap(true);
  // Beside the hint, which may become higher where there is little room.
  auto* const buttons = new QHBoxLayout;
  rows->addLayout(buttons);
  buttons->addWidget(hint, 1);
  AddButton(*buttons, tr("A&pply"), &RegionBar::ApplyWanted)->setDefault(true);
  AddButton(*buttons, tr("F&ull Frame"), &RegionBar::FullFrameWanted);
  AddButton(*buttons, tr("Cancel"), &RegionBar::CancelWanted);
}

QDoubleSpinBox* RegionBar::AddNumber(const QString& aLabel, const QString& aName) {
  auto* const row = qobject_cast<QHBoxLayout*>(layout()->itemAt(0)->layout());
  auto* const label = new QLabel(aLabel);
  label->setTextFormat(Qt::PlainText);
  auto* const box = new QDoubleSpinBox;
  box->setObjectName(aName);
  box->setDecimals(0);
  box->setLocale(QLocale::c());
  box->setKeyboardTracking(false); // Half of a number is none.
  label->setBuddy(box);
  row->addWidget(label);
  row->addWidget(box);
  connect(box, &QDoubleSpinBox::valueChanged, this, &RegionBar::Tell);
  return box;
}

QPushButton* RegionBar::AddButton(QHBoxLayout& aRow, const QString& aText, void (RegionBar::*aWanted)()) {
  auto* const button = new QPushButton(aText);
  button->setAutoDefault(true); // Enter is the focused button's, not the bar's.
  aRow.addWidget(button);
  connect(button, &QPushButton::clicked, this, aWanted);
  return button;
}

void RegionBar::Show(const Region& aRegion, const RegionLimits& aLimits) {
  const auto set = [](QDoubleSpinBox& aOffset, QDoubleSpinBox& aLength, const RegionSpan& aSpan,
                      const RegionAxis& aAxis) {
    SetNumber(aOffset, aSpan.offset, aAxis.offsetMin, aAxis.extent, aAxis.offsetIncrement, aAxis.isOffsetFixed);
    SetNumber(aLength, aSpan.length, aAxis.lengthMin, aAxis.extent, aAxis.lengthIncrement, aAxis.isLengthFixed);
  };
  set(*mNumbers[0], *mNumbers[2], aRegion.x, aLimits.x);
  set(*mNumbers[1], *mNumbers[3], aRegion.y, aLimits.y);
}

void RegionBar::SetBusy(bool aIsBusy) {
  setEnabled(!aIsBusy);
}

void RegionBar::Tell() {
  const auto get = [this](std::size_t aIndex) { return static_cast<std::int64_t>(mNumbers[aIndex]->value()); };
  Q_EMIT RegionTyped({{get(0), get(2)}, {get(1), get(3)}});
}

void RegionBar::keyPressEvent(QKeyEvent* aEvent) {
  if (aEvent->key() == Qt::Key_Escape)
    Q_EMIT CancelWanted();
  else if (aEvent->key() == Qt::Key_Return || aEvent->key() == Qt::Key_Enter)
    Q_EMIT ApplyWanted();
  else
    QWidget::keyPressEvent(aEvent);
}

} // namespace krviewer
