#include "panels/figurebar.h"

#include "panels/graphcolours.h"
#include "window/showntext.h"

#include <QEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QResizeEvent>

#include <algorithm>

namespace krviewer {

namespace {

const QString kLossMark = QStringLiteral("\u26A0 ");
constexpr int kGapInCharacters = 2;

QFont MakeLossFont(const QFont& aFont) {
  QFont font = aFont;
  font.setBold(true);
  return font;
}

// More than the text's advance: glyphs reach beyond their own, and marks come from other fonts.
int MeasureText(const QLabel& aLabel) {
  return aLabel.text().isEmpty() ? 0 : aLabel.sizeHint().width();
}

} // namespace

FigureBar::FigureBar(QWidget* aParent) : QWidget(aParent) {
  setObjectName(QStringLiteral("figureBar"));
  setAccessibleName(QStringLiteral("Figures of the stream"));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  for (std::size_t i = 0; i < kFigures; ++i) {
    const auto kind = static_cast<FigureKind>(i);
    const QString meaning = QString::fromStdString(FigureTexts::GetMeaning(kind));
    mLabels[i] = new QLabel(this);
    mLabels[i]->setTextFormat(Qt::PlainText);
    mLabels[i]->setToolTip(ToToolTip(meaning));
    mLabels[i]->setAccessibleDescription(meaning);
    mLabels[i]->setVisible(false);
  }
  KeepRoom();
}

void FigureBar::KeepRoom() {
  QLabel usual;
  usual.setFont(font());
  usual.setTextFormat(Qt::PlainText);
  for (std::size_t i = 0; i < kFigures; ++i) {
    usual.setText(QString::fromStdString(FigureTexts::GetUsual(static_cast<FigureKind>(i))));
    mPlaces[i].width = MeasureText(usual);
  }
  // The device may have no temperature.
  mPlaces[static_cast<std::size_t>(FigureKind::Temperature)].width = 0;
}

void FigureBar::Show(const ShownFigures& aFigures) {
  mShown = aFigures;
  const FigureTexts texts(aFigures);
  for (std::size_t i = 0; i < kFigures; ++i)
    ShowFigure(static_cast<FigureKind>(i), texts.Get(static_cast<FigureKind>(i)));
  Place();
}

void FigureBar::ShowFigure(FigureKind aKind, const FigureText& aText) {
  QLabel& label = GetLabel(aKind);
  const QString text = (aText.isLoss ? kLossMark : QString()) + QString::fromStdString(aText.text);
  FigurePlace& place = mPlaces[static_cast<std::size_t>(aKind)];
  place.rank = aText.rank;
  if (label.text() == text)
    return;
  label.setText(text);
  label.setAccessibleName(QString::fromStdString(aText.text));
  label.setFont(aText.isLoss ? MakeLossFont(font()) : font());
  QPalette colours = palette();
  if (aText.isLoss)
    colours.setColor(QPalette::WindowText, GetWarningColour(palette()));
  label.setPalette(colours);
  place.width = std::max(place.width, MeasureText(label));
}

void FigureBar::Clear() {
  mShown.reset();
  for (QLabel* label : mLabels) {
    label->clear();
    label->setVisible(false);
  }
}

int FigureBar::GetGap() const {
  return kGapInCharacters * fontMetrics().averageCharWidth();
}

void FigureBar::Place() {
  const std::vector<bool> fits = FitFigures(mPlaces, GetGap(), width());
  // The pixel stands at the left, everything else beside the right edge.
  int right = width();
  for (std::size_t i = kFigures; i-- > 0;) {
    QLabel& label = *mLabels[i];
    const bool isPixel = static_cast<FigureKind>(i) == FigureKind::Pixel;
    if (fits[i]) {
      right -= mPlaces[i].width;
      label.setGeometry(isPixel ? 0 : right, 0, mPlaces[i].width, height());
      right -= GetGap();
    }
    label.setVisible(fits[i] && mShown);
  }
}

QSize FigureBar::sizeHint() const {
  int needed = -GetGap();
  for (const FigurePlace& place : mPlaces)
    needed += place.width > 0 ? GetGap() + place.width : 0;
  return {std::max(needed, 0), fontMetrics().height()};
}

QSize FigureBar::minimumSizeHint() const {
  return {0, fontMetrics().height()};
}

void FigureBar::resizeEvent(QResizeEvent* aEvent) {
  QWidget::resizeEvent(aEvent);
  Place();
}

void FigureBar::changeEvent(QEvent* aEvent) {
  QWidget::changeEvent(aEvent);
  if (aEvent->type() != QEvent::FontChange && aEvent->type() != QEvent::PaletteChange)
    return;
  if (aEvent->type() == QEvent::FontChange)
    KeepRoom();
  // Each text is set anew, with the new font and colours.
  for (QLabel* label : mLabels)
    label->clear();
  if (const std::optional<ShownFigures> shown = mShown)
    Show(*shown);
}

} // namespace krviewer
