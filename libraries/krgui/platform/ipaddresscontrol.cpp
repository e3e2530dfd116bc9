#include "platform/ipaddresscontrol.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <string_view>

namespace krgui {

namespace {

constexpr int kFieldCount = static_cast<int>(IPFields::kCount);
/// Room for the caret beside three digits.
constexpr int kCaretRoom = 4;

constexpr struct {
  Qt::Key key;
  IPKey meaning;
} kKeys[] = {
    {Qt::Key_Backspace, IPKey::Backspace}, {Qt::Key_Delete, IPKey::Delete}, {Qt::Key_Left, IPKey::Left},
    {Qt::Key_Right, IPKey::Right},         {Qt::Key_Home, IPKey::Home},     {Qt::Key_End, IPKey::End},
};

constexpr struct {
  Qt::Key key;
  IPKey meaning;
} kControlKeys[] = {
    {Qt::Key_Left, IPKey::PreviousField},  {Qt::Key_Right, IPKey::NextField},
    {Qt::Key_Home, IPKey::Home},           {Qt::Key_End, IPKey::End},
    {Qt::Key_Backspace, IPKey::Backspace}, {Qt::Key_Delete, IPKey::Delete},
};

template <typename Table>
std::optional<IPKey> Find(const Table& aTable, int aKey) {
  const auto* found =
      std::find_if(std::begin(aTable), std::end(aTable), [aKey](const auto& aRow) { return aRow.key == aKey; });
  return found == std::end(aTable) ? std::nullopt : std::optional(found->meaning);
}

/// Keys that the dialog around understands, with or without a modifier.
bool IsDialogKey(int aKey) {
  constexpr Qt::Key kDialogKeys[] = {Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape};
  return std::find(std::begin(kDialogKeys), std::end(kDialogKeys), aKey) != std::end(kDialogKeys);
}

bool IsTypedText(const QKeyEvent& aEvent) {
  constexpr Qt::KeyboardModifiers kCommands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  return !aEvent.text().isEmpty() && (aEvent.modifiers() & kCommands) == Qt::NoModifier &&
         aEvent.text().front().isPrint();
}

std::u16string_view ToView(const QString& aText) {
  return {reinterpret_cast<const char16_t*>(aText.utf16()), static_cast<std::size_t>(aText.size())};
}

QLineEdit* MakeField(IPAddressControl& aControl) {
  auto* field = new QLineEdit(&aControl);
  field->setFrame(false);
  field->setAlignment(Qt::AlignCenter);
  field->setTextMargins(0, 0, 0, 0);
  field->setFocusPolicy(Qt::ClickFocus);
  field->setContextMenuPolicy(Qt::NoContextMenu);
  field->setDragEnabled(false);
  field->setAcceptDrops(false);
  // Else an input method composes digits past the rules.
  field->setAttribute(Qt::WA_InputMethodEnabled, false);
  field->setInputMethodHints(Qt::ImhDigitsOnly);
  // The control draws what is behind all fields.
  QPalette palette;
  palette.setColor(QPalette::Base, Qt::transparent);
  field->setPalette(palette);
  field->installEventFilter(&aControl);
  return field;
}

} // namespace

IPAddressControl::IPAddressControl(QWidget* aParent) : QWidget(aParent) {
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  for (QLineEdit*& field : mFields) {
    field = MakeField(*this);
    connect(field, &QLineEdit::textChanged, this, [this, field] { NormalizeField(*field); });
  }
}

std::uint32_t IPAddressControl::GetAddress() const {
  return krgui::GetAddress(Read());
}

void IPAddressControl::SetAddress(std::uint32_t aAddress) {
  IPFields fields = Read();
  krgui::SetAddress(fields, aAddress);
  Apply(fields);
}

QString IPAddressControl::GetText() const {
  return QString::fromStdString(GetDottedText(Read()));
}

void IPAddressControl::ClearField(int aField) {
  if (aField >= 0 && aField < kFieldCount) {
    mFields[static_cast<std::size_t>(aField)]->clear();
  }
}

void IPAddressControl::FocusField(int aField) {
  if (aField >= 0 && aField < kFieldCount) {
    QLineEdit* field = mFields[static_cast<std::size_t>(aField)];
    field->setFocus(Qt::OtherFocusReason);
    field->selectAll();
  }
}

void IPAddressControl::SetError(const QString& aError) {
  if (mError == aError) {
    return;
  }
  mError = aError;
  setAccessibleDescription(aError);
  for (QLineEdit* field : mFields) {
    field->setAccessibleDescription(aError);
  }
}

// Keys.

bool IPAddressControl::eventFilter(QObject* aField, QEvent* aEvent) {
  if (!isEnabled()) {
    // A filter sees what a disabled field does not.
    return false;
  }
  switch (aEvent->type()) {
  case QEvent::KeyPress:
    return HandleKey(static_cast<const QKeyEvent&>(*aEvent));
  case QEvent::ContextMenu:
    ShowMenu(static_cast<const QContextMenuEvent*>(aEvent)->globalPos());
    return true;
  case QEvent::MouseButtonRelease:
    if (static_cast<const QMouseEvent*>(aEvent)->button() == Qt::MiddleButton) {
      // A field alone would take the first three characters of what is selected elsewhere.
      PasteText(QGuiApplication::clipboard()->text(QClipboard::Selection));
      return true;
    }
    return false;
  case QEvent::FocusIn:
  case QEvent::FocusOut:
    update();
    return false;
  default:
    return QWidget::eventFilter(aField, aEvent);
  }
}

/// True when the field is not to see the key.
bool IPAddressControl::HandleKey(const QKeyEvent& aEvent) {
  if (IsDialogKey(aEvent.key())) {
    return false;
  }
  if (HandleEditKey(aEvent)) {
    return true;
  }
  const Qt::KeyboardModifiers modifiers = aEvent.modifiers() & ~Qt::KeypadModifier;
  std::optional<IPKey> key;
  if (modifiers == Qt::NoModifier) {
    key = Find(kKeys, aEvent.key());
  } else if (modifiers == Qt::ControlModifier) {
    key = Find(kControlKeys, aEvent.key());
  }
  if (key) {
    Apply(PressKey(Read(), *key));
    return true;
  }
  if (IsTypedText(aEvent)) {
    Apply(TypeCharacter(Read(), aEvent.text().front().unicode()));
    return true;
  }
  return false;
}

/// Of the keys that mean the clipboard, which is the whole address's.
bool IPAddressControl::HandleEditKey(const QKeyEvent& aEvent) {
  if (aEvent.matches(QKeySequence::Paste)) {
    PasteText(QGuiApplication::clipboard()->text());
  } else if (aEvent.matches(QKeySequence::Copy)) {
    Copy();
  } else if (aEvent.matches(QKeySequence::Cut)) {
    Copy();
    Clear();
  } else {
    return aEvent.matches(QKeySequence::Undo) || aEvent.matches(QKeySequence::Redo);
  }
  return true;
}

void IPAddressControl::ShowMenu(const QPoint& aGlobal) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction(QStringLiteral("&Copy"), this, &IPAddressControl::Copy);
  menu->addAction(QStringLiteral("&Paste"), this, [this] { PasteText(QGuiApplication::clipboard()->text()); })
      ->setEnabled(!QGuiApplication::clipboard()->text().isEmpty());
  menu->addAction(QStringLiteral("C&lear"), this, &IPAddressControl::Clear);
  menu->popup(aGlobal);
}

void IPAddressControl::Copy() const {
  QGuiApplication::clipboard()->setText(GetText());
}

void IPAddressControl::PasteText(const QString& aText) {
  Apply(Paste(Read(), ToView(aText)));
}

void IPAddressControl::Clear() {
  Apply(IPFields{});
}

IPFields IPAddressControl::Read() const {
  IPFields fields;
  for (std::size_t index = 0; index < IPFields::kCount; ++index) {
    const QLineEdit& field = *mFields[index];
    fields.texts[index] = field.text().toStdString();
    if (window()->focusWidget() == &field) {
      fields.field = index;
    }
  }
  const QLineEdit& field = *mFields[fields.field];
  fields.caret = fields.anchor = static_cast<std::size_t>(field.cursorPosition());
  if (field.hasSelectedText()) {
    const int other = field.selectionStart() == field.cursorPosition() ? field.selectionEnd() : field.selectionStart();
    fields.anchor = static_cast<std::size_t>(other);
  }
  return fields;
}

void IPAddressControl::Apply(const IPFields& aFields) {
  const QString before = GetText();
  const bool hasFocus = isAncestorOf(window()->focusWidget());
  mIsApplying = true;
  for (std::size_t index = 0; index < IPFields::kCount; ++index) {
    mFields[index]->setText(QString::fromStdString(aFields.texts[index]));
  }
  mIsApplying = false;
  QLineEdit& field = *mFields[aFields.field];
  if (hasFocus && window()->focusWidget() != &field) {
    field.setFocus(Qt::OtherFocusReason);
  }
  // From the anchor to the caret, whichever is first.
  const int anchor = static_cast<int>(aFields.anchor);
  field.setCursorPosition(anchor);
  field.setSelection(anchor, static_cast<int>(aFields.caret) - anchor);
  if (GetText() != before) {
    Q_EMIT Changed();
  }
}

/// Texts also come past the keys, from assistive technology.
void IPAddressControl::NormalizeField(QLineEdit& aField) {
  const QString text = aField.text();
  const QString clean = QString::fromStdString(CleanField(ToView(text)));
  if (clean != text) {
    // Comes here again with a text that stays.
    aField.setText(clean);
  } else if (!mIsApplying) {
    Q_EMIT Changed();
  }
}

// The focus.

/// The fields are one stop: on to what comes behind, or before, the control itself.
bool IPAddressControl::focusNextPrevChild(bool aNext) {
  const auto step = [aNext](QWidget* aWidget) {
    return aNext ? aWidget->nextInFocusChain() : aWidget->previousInFocusChain();
  };
  for (QWidget* widget = step(this); widget != this; widget = step(widget)) {
    const bool takesTab = (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isEnabled() && !widget->isWindow();
    if (takesTab && !isAncestorOf(widget) && widget->isVisibleTo(window())) {
      widget->setFocus(aNext ? Qt::TabFocusReason : Qt::BacktabFocusReason);
      return true;
    }
  }
  return false;
}

void IPAddressControl::focusInEvent(QFocusEvent*) {
  FocusField(0);
}

/// Between the fields: the nearest one is meant.
void IPAddressControl::mousePressEvent(QMouseEvent* aEvent) {
  const auto distance = [x = aEvent->position().x()](const QLineEdit* aField) {
    return std::abs(aField->geometry().center().x() - x);
  };
  const auto nearest =
      std::min_element(mFields.begin(), mFields.end(), [&](const QLineEdit* aOne, const QLineEdit* aOther) {
        return distance(aOne) < distance(aOther);
      });
  FocusField(static_cast<int>(nearest - mFields.begin()));
}

// How it looks.

bool IPAddressControl::event(QEvent* aEvent) {
  if (aEvent->type() == QEvent::Polish) {
    NameFields();
  }
  return QWidget::event(aEvent);
}

void IPAddressControl::NameFields() {
  const QString name = accessibleName().isEmpty() ? QStringLiteral("IP Address") : accessibleName();
  for (int index = 0; index < kFieldCount; ++index) {
    mFields[static_cast<std::size_t>(index)]->setAccessibleName(
        QStringLiteral("%1, field %2 of %3").arg(name).arg(index + 1).arg(kFieldCount));
  }
}

int IPAddressControl::GetFieldWidth() const {
  const QFontMetrics metrics = fontMetrics();
  int digit = 0;
  for (char16_t character = u'0'; character <= u'9'; ++character) {
    digit = std::max(digit, metrics.horizontalAdvance(QChar(character)));
  }
  return static_cast<int>(IPFields::kDigits) * digit + kCaretRoom;
}

int IPAddressControl::GetDotWidth() const {
  return fontMetrics().horizontalAdvance(QLatin1Char('.')) + 2;
}

QSize IPAddressControl::minimumSizeHint() const {
  QStyleOptionFrame option;
  option.initFrom(this);
  option.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, this);
  const QSize contents(kFieldCount * GetFieldWidth() + (kFieldCount - 1) * GetDotWidth(), fontMetrics().height() + 2);
  return style()->sizeFromContents(QStyle::CT_LineEdit, &option, contents, this);
}

QSize IPAddressControl::sizeHint() const {
  return minimumSizeHint();
}

QRect IPAddressControl::GetFrameContents() const {
  const int frame = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
  return rect().adjusted(frame, frame, -frame, -frame);
}

/// Equal fields with the dots between them.
void IPAddressControl::PlaceFields() {
  const QRect contents = GetFrameContents();
  const int dots = (kFieldCount - 1) * GetDotWidth();
  const int fields = std::max(contents.width() - dots, 0);
  for (int index = 0; index < kFieldCount; ++index) {
    const int left = contents.left() + fields * index / kFieldCount + index * GetDotWidth();
    const int right = contents.left() + fields * (index + 1) / kFieldCount + index * GetDotWidth();
    mFields[static_cast<std::size_t>(index)]->setGeometry(left, contents.top(), right - left, contents.height());
  }
}

void IPAddressControl::resizeEvent(QResizeEvent*) {
  PlaceFields();
}

void IPAddressControl::changeEvent(QEvent* aEvent) {
  if (aEvent->type() == QEvent::FontChange || aEvent->type() == QEvent::StyleChange) {
    updateGeometry();
    PlaceFields();
  }
  QWidget::changeEvent(aEvent);
}

void IPAddressControl::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QStyleOptionFrame option;
  option.initFrom(this);
  option.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, this);
  option.state |= QStyle::State_Sunken;
  option.state.setFlag(QStyle::State_HasFocus, isAncestorOf(window()->focusWidget()) && isActiveWindow());
  style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);

  painter.setPen(palette().color(QPalette::Text));
  for (std::size_t index = 0; index + 1 < IPFields::kCount; ++index) {
    const QRect before = mFields[index]->geometry();
    const QRect dot(before.right() + 1, before.top(), GetDotWidth(), before.height());
    painter.drawText(dot, Qt::AlignCenter, QStringLiteral("."));
  }
}

} // namespace krgui
