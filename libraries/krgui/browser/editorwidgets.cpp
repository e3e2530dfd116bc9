#include "browser/editorwidgets.h"

#include "browser/bytelimit.h"
#include "browser/genbrowsercombobox.h"
#include "browser/updowncontrol.h"
#include "platform/ctooltiplistctrl.h"
#include "platform/plainline.h"
#include "platform/toqstring.h"

#include <QApplication>
#include <QFocusEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace krgui {

namespace {

/// So that the text stands where the value stood: the edit box itself leaves two pixels.
constexpr int kTextMargin = 1;

/// Of a name more is neither laid out on a button nor read aloud.
constexpr int kMostNameUnits = 255;

QString ToName(const KrString& aText) {
  return ToPlainLine(aText, kMostNameUnits);
}

/// A name on a button: nothing in it underlines a letter.
QString ToCaption(const KrString& aText) {
  return ToName(aText).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

void EditorWidgets::Open(QWidget& aParent, EditorContent aContent) {
  Hide();
  mContent = std::move(aContent);
  mOpen = MakeEditor(aParent, mContent.kind);
  mIsUsed = false;
  if (HasUpDown()) {
    MakeUpDown(aParent);
    mUpDown->SetEditBox(*mOpen);
  }
  Fill();
}

void EditorWidgets::Refill(const KrString& aText, int aSelected) {
  if (aText == mContent.text && aSelected == mContent.choices.selected) {
    return;
  }
  mContent.text = aText;
  mContent.choices.selected = aSelected;
  Fill();
}

void EditorWidgets::Place(const QRect& aCell) {
  if (!mOpen) {
    return;
  }
  QRect cell = aCell;
  if (cell.isEmpty()) {
    if (!HoldsFocus()) {
      mOpen->hide();
      if (mUpDown) {
        mUpDown->hide();
      }
      return;
    }
    // Hidden, it would lose the focus, and the edit would end because its row was scrolled away.
    cell = QRect(QPoint(-2 * mOpen->width(), -2 * mOpen->height()), mOpen->size());
  }
  QRect editor = cell;
  if (HasUpDown()) {
    const int upDownWidth = std::min(UpDownControl::GetPreferredWidth(*mOpen), cell.width() / 2);
    const QRect upDown(cell.right() + 1 - upDownWidth, cell.top(), upDownWidth, cell.height());
    editor.setRight(upDown.left() - 1);
    editor = QStyle::visualRect(mOpen->layoutDirection(), cell, editor);
    mUpDown->setGeometry(QStyle::visualRect(mOpen->layoutDirection(), cell, upDown));
    mUpDown->show();
    mUpDown->raise();
  }
  mOpen->setGeometry(editor);
  mOpen->show();
  mOpen->raise();
}

void EditorWidgets::Hide() {
  const QPointer<QWidget> open = std::exchange(mOpen, nullptr);
  mContent = {};
  mIsTouched = false;
  if (open) {
    open->hide();
  }
  if (mUpDown) {
    mUpDown->hide();
  }
}

void EditorWidgets::TakeFocus() {
  if (!mOpen || HoldsFocus()) {
    return;
  }
  mOpen->setFocus(Qt::OtherFocusReason);
  if (QLineEdit* editBox = GetOpenEditBox(); editBox != nullptr && !mIsTouched) {
    editBox->selectAll();
  }
}

bool EditorWidgets::HoldsFocus() const {
  return mOpen && mOpen->window()->focusWidget() == mOpen;
}

bool EditorWidgets::HasFocus() const {
  return mOpen && (mOpen->hasFocus() || (mOpen == mComboBox && mComboBox->IsListOpen()));
}

bool EditorWidgets::IsInUse() const {
  return mIsTouched || (mOpen == mComboBox ? mComboBox && mComboBox->IsListOpen() : HoldsFocus());
}

EditInput EditorWidgets::TakeInput() const {
  EditInput input;
  input.kind = mContent.kind;
  input.text = GetText();
  input.isDirty = mIsTouched;
  if (mOpen && mOpen == mComboBox) {
    const int index = mComboBox->currentIndex();
    if (index >= 0 && static_cast<std::size_t>(index) < mContent.choices.items.size()) {
      const Choice& choice = mContent.choices.items[static_cast<std::size_t>(index)];
      input.text = choice.text;
      input.choice = choice.value;
      input.hasChoice = true;
    }
  }
  return input;
}

KrString EditorWidgets::GetText() const {
  const QLineEdit* editBox = GetOpenEditBox();
  return editBox ? ToKrString(editBox->text()) : KrString();
}

void EditorWidgets::SetSteppedText(const KrString& aText) {
  if (QLineEdit* editBox = GetOpenEditBox()) {
    editBox->setText(ToQString(aText));
  }
}

// Making them.

QWidget* EditorWidgets::MakeEditor(QWidget& aParent, EditorKind aKind) {
  switch (aKind) {
  case EditorKind::Choice:
    return mComboBox ? mComboBox : MakeComboBox(aParent);
  case EditorKind::Text:
    mTextBox = mTextBox ? mTextBox.data() : MakeEditBox(aParent, "textEditor");
    return mTextBox;
  case EditorKind::Number:
    mNumberBox = mNumberBox ? mNumberBox.data() : MakeEditBox(aParent, "numberEditor");
    return mNumberBox;
  case EditorKind::Command:
    return mButton ? mButton : MakeButton(aParent);
  case EditorKind::None:
    break;
  }
  return nullptr;
}

QLineEdit* EditorWidgets::MakeEditBox(QWidget& aParent, const char* aName) {
  auto* editBox = new DynControl<QLineEdit>(&aParent, *this);
  editBox->setObjectName(QLatin1String(aName));
  editBox->setFrame(false);
  editBox->setTextMargins(kTextMargin, 0, kTextMargin, 0);
  editBox->setMaxLength(std::numeric_limits<int>::max());
  editBox->setFocusPolicy(Qt::ClickFocus);
  editBox->installEventFilter(this);
  connect(editBox, &QLineEdit::textChanged, this, &EditorWidgets::Touch);
  return editBox;
}

QWidget* EditorWidgets::MakeComboBox(QWidget& aParent) {
  mComboBox = new DynControl<GenBrowserComboBox>(&aParent, *this);
  mComboBox->setObjectName(QStringLiteral("choiceEditor"));
  mComboBox->setFrame(false);
  mComboBox->setFocusPolicy(Qt::ClickFocus);
  mComboBox->installEventFilter(this);
  connect(mComboBox, &QComboBox::currentIndexChanged, this, &EditorWidgets::Touch);
  CTooltipListCtrl& list = mComboBox->GetList();
  list.installEventFilter(this);
  connect(&list, &CTooltipListCtrl::SelectionChanged, this, [this] {
    if (mOpen && mOpen == mComboBox && mComboBox->GetList().WasChosen()) {
      mWatcher.OnChoiceMade();
    }
  });
  return mComboBox;
}

QWidget* EditorWidgets::MakeButton(QWidget& aParent) {
  mButton = new DynControl<QPushButton>(&aParent, *this);
  mButton->setObjectName(QStringLiteral("commandEditor"));
  mButton->setAutoDefault(false);
  mButton->setFocusPolicy(Qt::ClickFocus);
  mButton->installEventFilter(this);
  connect(mButton, &QPushButton::clicked, this, [this] { mWatcher.OnCommandClicked(); });
  return mButton;
}

void EditorWidgets::MakeUpDown(QWidget& aParent) {
  if (mUpDown) {
    return;
  }
  mUpDown = new UpDownControl(&aParent);
  mUpDown->setObjectName(QStringLiteral("upDown"));
  mUpDown->hide();
  connect(mUpDown, &UpDownControl::Stepped, this, [this](bool aIsUp) { mWatcher.OnStep(aIsUp); });
  connect(mUpDown, &UpDownControl::Released, this, [this] { mWatcher.OnStepsEnd(); });
}

void EditorWidgets::Fill() {
  mIsFilling = true;
  mOpen->setAccessibleName(ToName(mContent.name));
  if (QLineEdit* editBox = GetOpenEditBox()) {
    // Where the row's value stands, whichever way the text itself is written.
    editBox->setAlignment((editBox->isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute |
                          Qt::AlignVCenter);
    SetByteLimit(*editBox, 0);
    editBox->setText(ToQString(mContent.text));
    SetByteLimit(*editBox, mContent.mostBytes);
    editBox->setCursorPosition(0);
    if (mContent.kind == EditorKind::Text) {
      editBox->selectAll();
    }
  } else if (mOpen == mComboBox) {
    mComboBox->SetChoices(mContent.choices);
  } else if (mOpen == mButton) {
    mButton->setText(ToCaption(mContent.text));
  }
  if (HasUpDown()) {
    mUpDown->SetFeatureName(ToName(mContent.name));
  }
  mIsFilling = false;
  mIsTouched = false;
}

// What the user does.

QLineEdit* EditorWidgets::GetOpenEditBox() const {
  return mOpen && (mOpen == mTextBox || mOpen == mNumberBox) ? static_cast<QLineEdit*>(mOpen.data()) : nullptr;
}

void EditorWidgets::Touch() {
  mIsTouched = mIsTouched || (mOpen && !mIsFilling);
}

void EditorWidgets::OnEditorKey(const EditorKey& aKey) {
  // Once until the key goes up: what comes of a key that is held down says nothing.
  if (mOpen && aKey.isDown && !aKey.isRepeat) {
    mWatcher.OnKeyDown(aKey.key);
  }
}

bool EditorWidgets::eventFilter(QObject* aWatched, QEvent* aEvent) {
  if (mOpen && mOpen == mComboBox && aWatched == &mComboBox->GetList() && aEvent->type() == QEvent::Hide) {
    HandleListEnd();
  }
  if (!mOpen || aWatched != mOpen) {
    return false;
  }
  switch (aEvent->type()) {
  case QEvent::FocusOut:
    // The keys and buttons that step may be let go elsewhere.
    mWatcher.OnStepsEnd();
    if (EndsEdit(static_cast<const QFocusEvent&>(*aEvent))) {
      mWatcher.OnFocusLost(static_cast<const QFocusEvent&>(*aEvent).reason());
    }
    return false;
  case QEvent::Wheel:
    return HandleWheel(*aEvent);
  case QEvent::MouseButtonPress:
    mIsUsed = true;
    return false;
  case QEvent::KeyPress:
    // What only goes on in it was pressed elsewhere.
    mIsUsed = mIsUsed || !static_cast<const QKeyEvent&>(*aEvent).isAutoRepeat();
    return HandleStepKey(*aEvent);
  case QEvent::KeyRelease:
    return HandleStepKey(*aEvent);
  default:
    return false;
  }
}

/// An item that was chosen counts as changed, be it the one that was shown: the device may have another meanwhile.
void EditorWidgets::HandleListEnd() {
  if (mComboBox->GetList().WasChosen()) {
    Touch();
  } else {
    mWatcher.OnListLeft();
  }
}

bool EditorWidgets::EndsEdit(const QFocusEvent& aEvent) const {
  if (mOpen == mComboBox && mComboBox->IsListOpen()) {
    return false;
  }
  switch (aEvent.reason()) {
  case Qt::PopupFocusReason:
  case Qt::MenuBarFocusReason:
    return false;
  case Qt::ActiveWindowFocusReason: {
    // Behind a menu or dialog of this application the edit goes on when that is over; another window ends it.
    const QWidget* modal = QApplication::activeModalWidget();
    const QWindow* active = QGuiApplication::focusWindow();
    const bool isMenu = active != nullptr && active->type() == Qt::Popup;
    return !isMenu && (modal == nullptr || modal == mOpen->window());
  }
  default:
    return true;
  }
}

/// Over an editor that is not in use the wheel scrolls the grid, as everywhere else: nobody shall change a value by
/// scrolling past it.
bool EditorWidgets::HandleWheel(QEvent& aEvent) {
  if (!HasUpDown() || !mOpen->hasFocus() || !mIsUsed) {
    aEvent.ignore();
    return true;
  }
  aEvent.accept();
  const int steps = mWheel.Add(static_cast<const QWheelEvent&>(aEvent).angleDelta().y());
  for (int step = 0; step < std::abs(steps); ++step) {
    mWatcher.OnStep(steps > 0);
    mWatcher.OnStepsEnd();
  }
  return true;
}

bool EditorWidgets::HandleStepKey(QEvent& aEvent) {
  const auto& key = static_cast<const QKeyEvent&>(aEvent);
  const bool isUp = key.key() == Qt::Key_Up;
  if (!HasUpDown() || (!isUp && key.key() != Qt::Key_Down) ||
      (key.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
    return false;
  }
  if (aEvent.type() == QEvent::KeyPress) {
    mWatcher.OnStep(isUp);
  } else if (!key.isAutoRepeat()) {
    mWatcher.OnStepsEnd();
  }
  aEvent.accept();
  return true;
}

} // namespace krgui
