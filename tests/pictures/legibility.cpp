#include "legibility.h"

#include "browser/gridcolours.h"
#include "platform/elidedcombobox.h"
#include "platform/elidedlabel.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QComboBox>
#include <QCommandLinkButton>
#include <QDockWidget>
#include <QGroupBox>
#include <QHash>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionDockWidget>
#include <QTabBar>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr double kLeastContrast = 4.5;
/// What is around a text: frames, focus and the like are no letters.
constexpr int kEdge = 3;
/// Letters have room above and below that no letter reaches.
constexpr int kRounding = 1;

/// A text and where it is shown.
struct ShownText {
  QString text;
  QRect place; ///< In the widget.
  QSize needed;
  QSize room;
};

QSize Measure(const QWidget& aWidget, const QString& aText) {
  return aWidget.fontMetrics().size(Qt::TextShowMnemonic, aText);
}

QRect FindContents(const QAbstractButton& aButton, QStyle::SubElement aElement) {
  QStyleOptionButton option;
  option.initFrom(&aButton);
  option.text = aButton.text();
  option.icon = aButton.icon();
  option.iconSize = aButton.iconSize();
  return aButton.style()->subElementRect(aElement, &option, &aButton);
}

ShownText TakeButton(const QAbstractButton& aButton) {
  QRect contents = aButton.rect();
  if (qobject_cast<const QPushButton*>(&aButton))
    contents = FindContents(aButton, QStyle::SE_PushButtonContents);
  else if (qobject_cast<const QCheckBox*>(&aButton))
    contents = FindContents(aButton, QStyle::SE_CheckBoxContents);
  else if (qobject_cast<const QRadioButton*>(&aButton))
    contents = FindContents(aButton, QStyle::SE_RadioButtonContents);
  return {aButton.text(), contents, Measure(aButton, aButton.text()), contents.size()};
}

ShownText TakeLabel(const QLabel& aLabel) {
  const QRect place = aLabel.contentsRect();
  if (dynamic_cast<const krgui::ElidedLabel*>(&aLabel))
    return {aLabel.text(), place, {}, place.size()};
  if (aLabel.wordWrap())
    return {aLabel.text(), place, {0, aLabel.heightForWidth(aLabel.width())}, aLabel.size()};
  return {aLabel.text(), place, Measure(aLabel, aLabel.text()), place.size()};
}

ShownText TakeComboBox(const QComboBox& aBox) {
  QStyleOptionComboBox option;
  option.initFrom(&aBox);
  const QRect place = aBox.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &aBox);
  const bool mayBeCut = aBox.isEditable() || qobject_cast<const krgui::ElidedComboBox*>(&aBox);
  const QSize needed = mayBeCut ? QSize() : Measure(aBox, aBox.currentText());
  return {aBox.currentText(), place, needed, place.size()};
}

ShownText TakeDock(const QDockWidget& aDock) {
  QStyleOptionDockWidget option;
  option.initFrom(&aDock);
  option.rect.setHeight(aDock.widget()->y());
  option.title = aDock.windowTitle();
  option.closable = option.movable = option.floatable = true;
  const QRect place = aDock.style()->subElementRect(QStyle::SE_DockWidgetTitleBarText, &option, &aDock);
  return {aDock.windowTitle(), place, Measure(aDock, aDock.windowTitle()), place.size()};
}

QList<ShownText> TakeTabs(const QTabBar& aBar) {
  QList<ShownText> texts;
  for (int index = 0; index < aBar.count(); ++index) {
    QRect place = aBar.tabRect(index);
    for (const auto side : {QTabBar::LeftSide, QTabBar::RightSide})
      if (const QWidget* const button = aBar.tabButton(index, side))
        place.setWidth(place.width() - button->width());
    texts += {aBar.tabText(index), place, {}, place.size()}; // Those that shorten their texts have tooltips.
  }
  return texts;
}

QList<ShownText> TakeHeader(const QHeaderView& aHeader) {
  QList<ShownText> texts;
  if (!aHeader.model())
    return texts;
  const bool isAcross = aHeader.orientation() == Qt::Horizontal;
  for (int index = 0; index < aHeader.count(); ++index) {
    const QString text = aHeader.model()->headerData(index, aHeader.orientation(), Qt::DisplayRole).toString();
    const int begin = aHeader.sectionViewportPosition(index);
    const int size = aHeader.sectionSize(index);
    const QRect place = isAcross ? QRect(begin, 0, size, aHeader.height()) : QRect(0, begin, aHeader.width(), size);
    texts += {text, place, Measure(aHeader, text), place.size()};
  }
  return texts;
}

QList<ShownText> TakeTexts(const QWidget& aWidget) {
  if (qobject_cast<const QCommandLinkButton*>(&aWidget))
    return {}; // It wraps what it says, and grows with it.
  if (const auto* const button = qobject_cast<const QAbstractButton*>(&aWidget)) {
    const auto* const tool = qobject_cast<const QToolButton*>(button);
    return tool && tool->toolButtonStyle() == Qt::ToolButtonIconOnly && !tool->icon().isNull()
               ? QList<ShownText>()
               : QList{TakeButton(*button)};
  }
  if (const auto* const label = qobject_cast<const QLabel*>(&aWidget))
    return {TakeLabel(*label)};
  if (const auto* const box = qobject_cast<const QComboBox*>(&aWidget))
    return {TakeComboBox(*box)};
  if (const auto* const box = qobject_cast<const QGroupBox*>(&aWidget))
    return {{box->title(),
             {kEdge, 0, Measure(*box, box->title()).width() + 2 * kEdge, box->fontMetrics().height()},
             Measure(*box, box->title()),
             box->size()}};
  if (const auto* const bar = qobject_cast<const QTabBar*>(&aWidget))
    return TakeTabs(*bar);
  if (const auto* const header = qobject_cast<const QHeaderView*>(&aWidget))
    return TakeHeader(*header);
  if (const auto* const dock = qobject_cast<const QDockWidget*>(&aWidget))
    return {TakeDock(*dock)};
  if (const auto* const edit = qobject_cast<const QLineEdit*>(&aWidget)) {
    if (edit->hasSelectedText())
      return {}; // In the theme's own colours.
    const bool isOfSpinBox = qobject_cast<const QAbstractSpinBox*>(edit->parentWidget()) != nullptr;
    const QString text = edit->text().isEmpty() ? edit->placeholderText() : edit->text();
    return {{text, edit->rect(), isOfSpinBox || edit->text().isEmpty() ? Measure(*edit, text) : QSize(), edit->size()}};
  }
  return {};
}

// Whether anything of what a place shows is hidden by what is around it: scrolled away, or behind something else.
bool IsWhollySeen(const QWidget& aWidget, const QRect& aPlace) {
  return QRegion(aPlace).subtracted(aWidget.visibleRegion()).isEmpty();
}

// Of whatever differs most from the commonest colour, which is the ground.
double FindContrast(const QImage& aImage) {
  QHash<QRgb, int> counts;
  for (int y = 0; y < aImage.height(); ++y)
    for (int x = 0; x < aImage.width(); ++x)
      ++counts[aImage.pixel(x, y)];
  const QColor ground(std::max_element(counts.cbegin(), counts.cend()).key());
  double contrast = 1;
  for (const QRgb colour : counts.keys())
    contrast = std::max(contrast, krgui::GetContrast(ground, QColor(colour)));
  return contrast;
}

QString Name(const QWidget& aWidget, const QString& aText) {
  const QString name = aWidget.objectName().isEmpty() ? QString() : QStringLiteral(" ") + aWidget.objectName();
  return QStringLiteral("%1%2 \"%3\"").arg(QString::fromLatin1(aWidget.metaObject()->className()), name, aText);
}

} // namespace

QStringList FindIllegibleTexts(QWidget& aWindow, const QImage& aPicture) {
  QStringList faults;
  QList<QWidget*> widgets = aWindow.findChildren<QWidget*>();
  widgets += &aWindow;
  for (const QWidget* const widget : widgets) {
    if (!widget->isVisible() || widget->window() != aWindow.window())
      continue;
    for (const ShownText& shown : TakeTexts(*widget)) {
      if (shown.text.trimmed().isEmpty() || shown.place.isEmpty())
        continue;
      if (shown.needed.width() > shown.room.width() || shown.needed.height() > shown.room.height() + kRounding)
        faults += QStringLiteral("%1 needs %2 x %3 and has %4 x %5")
                      .arg(Name(*widget, shown.text))
                      .arg(shown.needed.width())
                      .arg(shown.needed.height())
                      .arg(shown.room.width())
                      .arg(shown.room.height());
      const QRect letters = shown.place.adjusted(kEdge, 0, -kEdge, 0);
      if (!widget->isEnabled() || letters.isEmpty() || !IsWhollySeen(*widget, letters))
        continue;
      const double ratio = aPicture.devicePixelRatio();
      const QRect place(widget->mapTo(&aWindow, letters.topLeft()) * ratio, letters.size() * ratio);
      const double contrast = FindContrast(aPicture.copy(place & aPicture.rect()));
      if (contrast < kLeastContrast)
        faults += QStringLiteral("%1 has a contrast of %2").arg(Name(*widget, shown.text)).arg(contrast, 0, 'f', 1);
    }
  }
  return faults;
}
