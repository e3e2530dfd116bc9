#include "serial/rollingedit.h"

#include "frame/contextmenu.h"
#include "logic/serial/showntext.h"
#include "res/menus.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QTextCursor>

#include <algorithm>
#include <utility>

namespace krgui {

namespace {

constexpr int kLettersPerTab = 8;
constexpr int kMargin = 1;
constexpr int kHintMargin = 8;

bool IsByKeys(Qt::FocusReason aReason) {
  return aReason == Qt::TabFocusReason || aReason == Qt::BacktabFocusReason || aReason == Qt::ShortcutFocusReason;
}

int CountShown(std::u16string_view aText) {
  return static_cast<int>(CountShownUnits(aText));
}

} // namespace

RollingEdit::RollingEdit(QWidget* aParent) : QPlainTextEdit(aParent), mText(*this) {
  setReadOnly(true);
  setUndoRedoEnabled(false);
  setLineWrapMode(NoWrap);
  mShowTimer.setSingleShot(true);
  mShowTimer.setInterval(0);
  connect(&mShowTimer, &QTimer::timeout, this, &RollingEdit::OnShowTime);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  // In the lowest window two lines have room: the newest one, and the empty one that its end begins.
  document()->setDocumentMargin(kMargin);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // No caret.
  setCursorWidth(0);
  setTabChangesFocus(true);
  setTabStopDistance(kLettersPerTab * fontMetrics().averageCharWidth());
}

void RollingEdit::SetShowPeriod(int aPeriodMs) {
  mShowTimer.setInterval(aPeriodMs);
}

void RollingEdit::Flush() {
  mText.Flush();
  ShowBehind();
}

void RollingEdit::SetEmpty() {
  // What waits to be shown belongs to what is emptied: it may even be of another format than what follows.
  mText.ClearPending();
  mText.SetEmpty();
  // Also in a pause: nobody empties what he looks at by accident.
  ShowDifference();
}

void RollingEdit::SetPaused(bool aPaused) {
  if (mIsPaused == aPaused)
    return;
  ShowBehind();
  mIsPaused = aPaused;
  ShowBehind();
}

void RollingEdit::SetHint(const QString& aHint) {
  mHint = aHint;
  setAccessibleDescription(aHint);
  viewport()->update();
}

void RollingEdit::OnTextChanged(std::u16string_view, std::size_t aErased, std::u16string_view) {
  const std::size_t erased = std::min(aErased, mKept);
  mErasedBehind += erased;
  mKept -= erased;
  ShowInTime();
}

void RollingEdit::OnTextCut(std::u16string_view aText) {
  mKept = std::min(mKept, aText.size());
  ShowInTime();
}

/// The first change is shown at once, those that follow too soon together.
void RollingEdit::ShowInTime() {
  mIsBehind = mErasedBehind > 0 || mKept < mShown.size() || mKept < mText.GetText().size();
  if (!mIsBehind || mIsPaused || mShowTimer.isActive())
    return;
  ShowBehind();
  if (mShowTimer.interval() > 0)
    mShowTimer.start();
}

void RollingEdit::OnShowTime() {
  if (mIsPaused || !mIsBehind)
    return;
  ShowBehind();
  mShowTimer.start();
}

void RollingEdit::ShowBehind() {
  if (!mIsPaused)
    ShowDifference();
}

/// Not the whole document anew, which would take long with each few bytes, and the selection with it.
void RollingEdit::ShowDifference() {
  if (!std::exchange(mIsBehind, false))
    return;
  const Hold hold = GetHold();
  const std::u16string_view shown = mShown;
  const int erased = CountShown(shown.substr(0, mErasedBehind));
  const int kept = erased + CountShown(shown.substr(mErasedBehind, mKept));
  const std::u16string_view appended = mText.GetText().substr(mKept);
  QTextCursor edit(document());
  edit.beginEditBlock();
  EraseShown(kept, CountShown(shown));
  EraseShown(0, erased);
  edit.movePosition(QTextCursor::End);
  edit.insertText(QString::fromStdU16String(MakeShownText(appended)));
  edit.endEditBlock();
  mShown = mText.GetText();
  mErasedBehind = 0;
  mKept = mShown.size();
  KeepHold(hold, erased);
}

void RollingEdit::EraseShown(int aBegin, int aEnd) {
  if (aBegin == aEnd)
    return;
  QTextCursor edit(document());
  edit.setPosition(aBegin);
  edit.setPosition(aEnd, QTextCursor::KeepAnchor);
  edit.removeSelectedText();
}

RollingEdit::Hold RollingEdit::GetHold() const {
  const QTextCursor cursor = textCursor();
  return {cursor.anchor(), cursor.position(), verticalScrollBar()->value(), horizontalScrollBar()->value()};
}

/// The selection stays on its text; what is appended right behind it does not join it.
void RollingEdit::KeepHold(const Hold& aHold, int aErased) {
  const int length = CountShown(mShown);
  const int anchor = std::clamp(aHold.anchor - aErased, 0, length);
  const int position = std::clamp(aHold.position - aErased, 0, length);
  QTextCursor cursor = textCursor();
  if (cursor.anchor() != anchor || cursor.position() != position) {
    cursor.setPosition(anchor);
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    // That has made the cursor visible.
    horizontalScrollBar()->setValue(aHold.column);
  }
  // The user drags a scroll bar or selects.
  if (QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
    verticalScrollBar()->setValue(aHold.line);
  else
    ShowNewestLine();
}

void RollingEdit::ShowNewestLine() {
  verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

/// There is no caret that would show the focus. It is shown around the text, which scrolls.
bool RollingEdit::event(QEvent* aEvent) {
  const bool isTaken = QPlainTextEdit::event(aEvent);
  if (aEvent->type() == QEvent::Paint && mIsReachedByKeys && hasFocus()) {
    QPainter painter(this);
    painter.setPen(
        QPen(palette().color(QPalette::Highlight), frameWidth(), Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    const double half = frameWidth() / 2.0;
    painter.drawRect(QRectF(rect()).adjusted(half, half, -half, -half));
  }
  return isTaken;
}

void RollingEdit::focusInEvent(QFocusEvent* aEvent) {
  // A window that becomes active again leaves the focus as it was.
  if (aEvent->reason() != Qt::ActiveWindowFocusReason && aEvent->reason() != Qt::PopupFocusReason)
    mIsReachedByKeys = IsByKeys(aEvent->reason());
  QPlainTextEdit::focusInEvent(aEvent);
  update();
}

void RollingEdit::focusOutEvent(QFocusEvent* aEvent) {
  QPlainTextEdit::focusOutEvent(aEvent);
  update();
}

/// The characters themselves, not what stands for some of them.
QMimeData* RollingEdit::createMimeDataFromSelection() const {
  const QTextCursor cursor = textCursor();
  const std::size_t begin = FindUnit(mShown, static_cast<std::size_t>(cursor.selectionStart()));
  const std::size_t end = FindUnit(mShown, static_cast<std::size_t>(cursor.selectionEnd()));
  auto* copied = new QMimeData;
  copied->setText(QString::fromStdU16String(MakeForeignText(std::u16string_view(mShown).substr(begin, end - begin))));
  return copied;
}

void RollingEdit::contextMenuEvent(QContextMenuEvent* aEvent) {
  QMenu* menu = MakeContextMenu(*FindMenu(kTranscriptMenuID), this, *this, [this](int aID) { Perform(aID); });
  for (QAction* action : menu->actions()) {
    const bool isCopy = action->data().toInt() == kCopyTextCommandID;
    action->setEnabled(isCopy ? textCursor().hasSelection() : !mShown.empty());
  }
  menu->popup(aEvent->globalPos());
  aEvent->accept();
}

void RollingEdit::Perform(int aCommandID) {
  if (aCommandID == kCopyTextCommandID)
    copy();
  else if (aCommandID == kSelectAllCommandID)
    selectAll();
}

void RollingEdit::paintEvent(QPaintEvent* aEvent) {
  QPlainTextEdit::paintEvent(aEvent);
  if (mHint.isEmpty() || !mShown.empty())
    return;
  QPainter painter(viewport());
  // Words of the window, not of the line.
  QFont hintFont = window()->font();
  hintFont.setResolveMask(QFont::AllPropertiesResolved);
  painter.setFont(hintFont);
  // Without a port this is disabled; what it says then is to be read.
  painter.setPen(palette().color(QPalette::Active, QPalette::WindowText));
  const QRect place = viewport()->rect().adjusted(kHintMargin, kHintMargin, -kHintMargin, -kHintMargin);
  painter.drawText(place, Qt::AlignCenter | Qt::TextWordWrap, mHint);
}

/// A view of the newest line stays one.
void RollingEdit::resizeEvent(QResizeEvent* aEvent) {
  const bool isAtEnd = verticalScrollBar()->value() == verticalScrollBar()->maximum();
  QPlainTextEdit::resizeEvent(aEvent);
  if (isAtEnd)
    ShowNewestLine();
}

} // namespace krgui
