#include "platform/dialogbuilder.h"

#include "platform/buttonids.h"
#include "platform/elidedcombobox.h"
#include "platform/elidedlabel.h"
#include "platform/ipaddresscontrol.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFontMetricsF>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QTreeWidget>

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace krgui {

namespace {

constexpr int kNobodysID = -1;

QString ToText(const ControlTemplate& aControl) {
  return QString::fromUtf8(aControl.text.data(), static_cast<qsizetype>(aControl.text.size()));
}

// One function per control class makes its widget.

QWidget* MakeLabel(const ControlTemplate& aControl, QWidget& aDialog) {
  auto* label = new QLabel(&aDialog);
  label->setTextFormat(Qt::PlainText);
  label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  label->setText(ToText(aControl));
  return label;
}

QWidget* MakeWrappedLabel(const ControlTemplate& aControl, QWidget& aDialog) {
  auto* label = static_cast<QLabel*>(MakeLabel(aControl, aDialog));
  label->setWordWrap(true);
  return label;
}

/// Below everything in z-order, as it would take the mouse from what it is drawn around.
QWidget* MakeGroupBox(const ControlTemplate& aControl, QWidget& aDialog) {
  auto* box = new QGroupBox(ToText(aControl), &aDialog);
  box->lower();
  return box;
}

QWidget* MakeFrame(const ControlTemplate&, QWidget& aDialog) {
  auto* frame = new QFrame(&aDialog);
  frame->setFrameStyle(QFrame::Box | QFrame::Sunken);
  frame->lower();
  return frame;
}

QWidget* MakeButton(const ControlTemplate& aControl, QWidget& aDialog) {
  auto* button = new QPushButton(ToText(aControl), &aDialog);
  // Else every button that gets the focus becomes the one that Enter presses.
  button->setAutoDefault(false);
  button->setDefault(aControl.controlClass == ControlClass::DefaultButton && aControl.id == kOKID);
  return button;
}

QWidget* MakeCheckBox(const ControlTemplate& aControl, QWidget& aDialog) {
  return new QCheckBox(ToText(aControl), &aDialog);
}

QWidget* MakeRadioButton(const ControlTemplate& aControl, QWidget& aDialog) {
  return new QRadioButton(ToText(aControl), &aDialog);
}

QWidget* MakeEdit(const ControlTemplate& aControl, QWidget& aDialog) {
  auto* edit = new QLineEdit(ToText(aControl), &aDialog);
  edit->setReadOnly(aControl.controlClass == ControlClass::ReadOnlyEdit);
  return edit;
}

QWidget* MakeTree(const ControlTemplate& aControl, QWidget& aDialog) {
  auto* tree = new QTreeWidget(&aDialog);
  tree->setUniformRowHeights(true);
  tree->setRootIsDecorated(aControl.controlClass == ControlClass::Tree);
  return tree;
}

QWidget* MakeComboBox(const ControlTemplate&, QWidget& aDialog) {
  return new ElidedComboBox(&aDialog);
}

QWidget* MakeScrollBar(const ControlTemplate& aControl, QWidget& aDialog) {
  const bool isHorizontal = aControl.controlClass == ControlClass::HorizontalScrollBar;
  auto* bar = new QScrollBar(isHorizontal ? Qt::Horizontal : Qt::Vertical, &aDialog);
  bar->setAccessibleName(isHorizontal ? QStringLiteral("Horizontal scroll bar")
                                      : QStringLiteral("Vertical scroll bar"));
  return bar;
}

QWidget* MakeIPAddress(const ControlTemplate&, QWidget& aDialog) {
  return new IPAddressControl(&aDialog);
}

QWidget* MakeElidedLabel(const ControlTemplate& aControl, QWidget& aDialog) {
  auto* label = new ElidedLabel(&aDialog);
  label->setText(ToText(aControl));
  return label;
}

QWidget* MakePlace(const ControlTemplate&, QWidget& aDialog) {
  return new QWidget(&aDialog);
}

// What a widget's text needs so that nothing of it is clipped; it depends on the style.

PixelSize ToPixelSize(const QSize& aSize) {
  return {aSize.width(), aSize.height()};
}

PixelSize MeasureNothing(const QWidget&) {
  return {};
}

PixelSize MeasureWhole(const QWidget& aWidget) {
  return ToPixelSize(aWidget.sizeHint());
}

/// A label that breaks its lines fits itself into its width.
PixelSize MeasureLabel(const QWidget& aWidget) {
  const auto* label = qobject_cast<const QLabel*>(&aWidget);
  return label == nullptr || label->wordWrap() ? PixelSize{} : MeasureWhole(aWidget);
}

/// Not the size hint: styles make that as wide as a button looks good, not as its text needs.
PixelSize MeasureButton(const QWidget& aWidget) {
  const auto* button = qobject_cast<const QPushButton*>(&aWidget);
  if (button == nullptr) {
    return {};
  }
  button->ensurePolished();
  const QStyle& style = *button->style();
  const int margin = style.pixelMetric(QStyle::PM_ButtonMargin, nullptr, button) +
                     2 * style.pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, button);
  const QSize text = button->fontMetrics().size(Qt::TextShowMnemonic, button->text());
  return ToPixelSize(text + QSize(margin, margin));
}

/// The text of an edit scrolls, or an ellipsis stands for its end; only its line must fit.
PixelSize MeasureLine(const QWidget& aWidget) {
  return {0, aWidget.minimumSizeHint().height()};
}

PixelSize MeasureTitle(const QWidget& aWidget) {
  return {aWidget.minimumSizeHint().width(), 0};
}

struct ClassEntry {
  ControlClass controlClass;
  QWidget* (*make)(const ControlTemplate& aControl, QWidget& aDialog);
  PixelSize (*measure)(const QWidget& aWidget);
  bool isNamedByLabel; ///< Has no text that names it: the label before it does.
  bool isKeptWhole = false;
};

constexpr ClassEntry kClasses[] = {
    {ControlClass::Label, MakeLabel, MeasureLabel, false},
    {ControlClass::GroupBox, MakeGroupBox, MeasureTitle, false},
    {ControlClass::Button, MakeButton, MeasureButton, false, true},
    {ControlClass::DefaultButton, MakeButton, MeasureButton, false, true},
    {ControlClass::CheckBox, MakeCheckBox, MeasureWhole, false, true},
    {ControlClass::RadioButton, MakeRadioButton, MeasureWhole, false, true},
    {ControlClass::Edit, MakeEdit, MeasureLine, true},
    {ControlClass::ReadOnlyEdit, MakeEdit, MeasureLine, true},
    {ControlClass::List, MakeTree, MeasureNothing, true},
    {ControlClass::Tree, MakeTree, MeasureNothing, true},
    {ControlClass::ComboBox, MakeComboBox, MeasureLine, true},
    {ControlClass::HorizontalScrollBar, MakeScrollBar, MeasureNothing, false},
    {ControlClass::VerticalScrollBar, MakeScrollBar, MeasureNothing, false},
    {ControlClass::Frame, MakeFrame, MeasureNothing, false},
    {ControlClass::WrappedLabel, MakeWrappedLabel, MeasureNothing, false},
    {ControlClass::IPAddress, MakeIPAddress, MeasureLine, true},
    {ControlClass::ErrorIndicator, MakePlace, MeasureNothing, false},
    {ControlClass::Place, MakePlace, MeasureNothing, false},
    {ControlClass::ElidedLabel, MakeElidedLabel, MeasureLine, false},
};

constexpr bool IsClassTableInOrder() {
  int index = 0;
  for (const ClassEntry& entry : kClasses) {
    if (static_cast<int>(entry.controlClass) != index++) {
      return false;
    }
  }
  return index == static_cast<int>(ControlClass::ElidedLabel) + 1;
}
static_assert(IsClassTableInOrder());

const ClassEntry& GetEntry(ControlClass aClass) {
  return kClasses[static_cast<int>(aClass)];
}

QWidget* MakeControl(const ControlTemplate& aControl, QWidget& aDialog) {
  QWidget* widget = GetEntry(aControl.controlClass).make(aControl, aDialog);
  if (aControl.id != kNobodysID) {
    widget->setObjectName(QStringLiteral("control%1").arg(aControl.id));
  }
  widget->setProperty("controlID", aControl.id);
  widget->setEnabled(!aControl.startsDisabled);
  if (aControl.startsHidden) {
    // Said expressly, else showing the dialog shows it.
    widget->hide();
  }
  return widget;
}

/// The average advance over the 52 letters, which is what a dialog unit is made of; QFontMetrics' average is another
/// one.
DialogFont MeasureFont(const QWidget& aDialog) {
  const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
  const QFontMetricsF metrics(aDialog.font(), &aDialog);
  return {metrics.horizontalAdvance(letters) / static_cast<double>(letters.size()), metrics.height()};
}

} // namespace

struct DialogControls::Body {
  const DialogTemplate& dialogTemplate;
  QWidget& dialog;
  const PixelSize maximum;
  /// In template order; null where a window deleted one.
  std::vector<QPointer<QWidget>> widgets;

  void MakeWidgets();
  void OrderTabs();
  void NameByLabels();
  void GroupRadioButtons();
  const ControlTemplate* FindGroupBoxOf(const ControlTemplate& aControl) const;
  DialogLayout MakeLayout() const;
};

void DialogControls::Body::MakeWidgets() {
  for (const ControlTemplate& control : dialogTemplate.controls) {
    widgets.emplace_back(MakeControl(control, dialog));
  }
}

/// The order of the template, from one control to the next that takes the focus.
void DialogControls::Body::OrderTabs() {
  QWidget* previous = nullptr;
  for (const QPointer<QWidget>& widget : widgets) {
    if (widget->focusPolicy() == Qt::NoFocus) {
      continue;
    }
    if (previous != nullptr) {
      QWidget::setTabOrder(previous, widget);
    }
    previous = widget;
  }
}

/// A control without a text of its own is called by the label that comes just before it.
void DialogControls::Body::NameByLabels() {
  for (std::size_t index = 1; index < widgets.size(); ++index) {
    auto* label = qobject_cast<QLabel*>(widgets[index - 1].data());
    if (label == nullptr || !GetEntry(dialogTemplate.controls[index].controlClass).isNamedByLabel) {
      continue;
    }
    QString name = label->text();
    name.remove(QLatin1Char('&'));
    if (name.endsWith(QLatin1Char(':'))) {
      name.chop(1);
    }
    widgets[index]->setAccessibleName(name);
    label->setBuddy(widgets[index]);
  }
}

void DialogControls::Body::GroupRadioButtons() {
  std::map<const ControlTemplate*, QButtonGroup*> groups;
  for (std::size_t index = 0; index < widgets.size(); ++index) {
    auto* radio = qobject_cast<QRadioButton*>(widgets[index].data());
    if (radio == nullptr) {
      continue;
    }
    QButtonGroup*& group = groups[FindGroupBoxOf(dialogTemplate.controls[index])];
    if (group == nullptr) {
      group = new QButtonGroup(&dialog);
    }
    group->addButton(radio, dialogTemplate.controls[index].id);
  }
}

/// The innermost, as group boxes nest.
const ControlTemplate* DialogControls::Body::FindGroupBoxOf(const ControlTemplate& aControl) const {
  const ControlTemplate* innermost = nullptr;
  for (const ControlTemplate& box : dialogTemplate.controls) {
    if (box.controlClass == ControlClass::GroupBox && Encloses(box.rect, aControl.rect) &&
        (innermost == nullptr || Encloses(innermost->rect, box.rect))) {
      innermost = &box;
    }
  }
  return innermost;
}

/// Made anew each time: fonts, styles and texts change while a dialog is open.
DialogLayout DialogControls::Body::MakeLayout() const {
  std::vector<LayoutControl> controls;
  controls.reserve(widgets.size());
  for (std::size_t index = 0; index < widgets.size(); ++index) {
    const ControlTemplate& control = dialogTemplate.controls[index];
    const QWidget* widget = widgets[index];
    const ClassEntry& entry = GetEntry(control.controlClass);
    controls.push_back({.rect = control.rect,
                        .follow = control.follow,
                        .textSize = widget == nullptr ? PixelSize{} : entry.measure(*widget),
                        .isKeptWhole = widget != nullptr && entry.isKeptWhole});
  }
  const UnitSize units = {dialogTemplate.width, dialogTemplate.height};
  return {units, ComputeDialogUnit(MeasureFont(dialog), units, maximum), std::move(controls)};
}

DialogControls::DialogControls(const DialogTemplate& aTemplate, QWidget& aDialog, const QSize& aMaximum)
    : mBody(new Body{aTemplate, aDialog, ToPixelSize(aMaximum), {}}) {
  mBody->MakeWidgets();
  mBody->OrderTabs();
  mBody->NameByLabels();
  mBody->GroupRadioButtons();
  Layout(GetTemplateSize());
}

DialogControls::~DialogControls() = default;

QWidget* DialogControls::Get(int aID) const {
  if (aID == kNobodysID) {
    return nullptr;
  }
  const auto controls = mBody->dialogTemplate.controls;
  const auto found = std::find_if(controls.begin(), controls.end(),
                                  [aID](const ControlTemplate& aControl) { return aControl.id == aID; });
  return found == controls.end() ? nullptr : mBody->widgets[static_cast<std::size_t>(found - controls.begin())].data();
}

QSize DialogControls::GetTemplateSize() const {
  const PixelSize size = mBody->MakeLayout().GetTemplateSize();
  return {size.width, size.height};
}

int DialogControls::FindLeastWidth(int aLeast, int aMost) const {
  return mBody->dialogTemplate.isLaidOutByWindow ? aLeast : mBody->MakeLayout().FindLeastWidth(aLeast, aMost);
}

void DialogControls::Layout(const QSize& aClientSize) {
  const std::vector<PixelRect> rects = mBody->MakeLayout().Arrange(ToPixelSize(aClientSize));
  for (std::size_t index = 0; index < rects.size(); ++index) {
    const PixelRect& rect = rects[index];
    if (QWidget* widget = mBody->widgets[index]; widget != nullptr) {
      widget->setGeometry(rect.left, rect.top, rect.GetWidth(), rect.GetHeight());
    }
  }
}

} // namespace krgui
