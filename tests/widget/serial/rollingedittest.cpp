// The transcript's control: what it shows of its text, what it keeps of the user's view, copying and pausing.

#include "serial/rollingedit.h"
#include "testwnd.h"
#include "windowwait.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QScrollBar>
#include <QWindow>

#include <gmock/gmock.h>

#include <random>
#include <string>

namespace krgui {

namespace {

using namespace std::string_literals;

constexpr int kLongPeriodMs = 3'600'000; // Not over within a test.

std::u16string MakeLines(int aFirst, int aCount) {
  std::u16string lines;
  for (int line = aFirst; line < aFirst + aCount; ++line)
    lines += QStringLiteral("line %1\r\n").arg(line).toStdU16String();
  return lines;
}

class RollingEdits : public testing::Test {
protected:
  RollingEdits() {
    mEdit.resize(300, 120);
    mEdit.show();
  }
  int GetScroll() const { return mEdit.verticalScrollBar()->value(); }
  bool IsAtEnd() const { return GetScroll() == mEdit.verticalScrollBar()->maximum(); }
  void Select(int aAnchor, int aPosition) {
    QTextCursor cursor = mEdit.textCursor();
    cursor.setPosition(aAnchor);
    cursor.setPosition(aPosition, QTextCursor::KeepAnchor);
    mEdit.setTextCursor(cursor);
  }
  std::string GetSelected() const { return mEdit.textCursor().selectedText().toStdString(); }

  RollingEdit mEdit{nullptr};
};

} // namespace

TEST_F(RollingEdits, FocusByKeyboard_IsShownAroundTheText) {
  mEdit.activateWindow();
  ASSERT_TRUE(krtest::AwaitActive(&mEdit));
  const auto getBorder = [this] { return mEdit.grab().toImage().pixelColor(0, mEdit.height() / 2); };
  const QColor highlight = mEdit.palette().color(QPalette::Highlight);
  mEdit.clearFocus();
  EXPECT_NE(getBorder(), highlight);

  mEdit.setFocus(Qt::TabFocusReason);
  EXPECT_EQ(getBorder(), highlight);

  mEdit.clearFocus();
  mEdit.setFocus(Qt::MouseFocusReason);
  EXPECT_NE(getBorder(), highlight);
}

TEST_F(RollingEdits, TextWithLineEnds_IsShownInLines) {
  mEdit.Append(u"A\r\nB\nC");

  EXPECT_EQ(mEdit.toPlainText(), "A\nB\nC");
  EXPECT_EQ(mEdit.GetText(), u"A\r\nB\nC");
}

TEST_F(RollingEdits, LineEndCutIntoTwoAppends_IsOneLineEnd) {
  mEdit.Append(u"A\r");
  mEdit.Append(u"\nB");

  EXPECT_EQ(mEdit.toPlainText(), "A\nB");
}

TEST_F(RollingEdits, ControlCharactersAndMarkup_AreShownAsPlainText) {
  mEdit.Append(u"<b>x</b>\x1B\x07\x7F\x9B&amp;"
               u"\0y"s);

  EXPECT_EQ(mEdit.toPlainText(), QString::fromUtf16(u"<b>x</b>\u00B7\u00B7\u00B7\u00B7&amp;\u00B7y"));
}

TEST_F(RollingEdits, NoCaretNoUndoNoWrap_AndNothingCanBeTyped) {
  EXPECT_TRUE(mEdit.isReadOnly());
  EXPECT_EQ(mEdit.cursorWidth(), 0);
  EXPECT_FALSE(mEdit.isUndoRedoEnabled());
  EXPECT_EQ(mEdit.lineWrapMode(), QPlainTextEdit::NoWrap);

  mEdit.Append(u"A");
  QTest::keyClicks(&mEdit, "typed");

  EXPECT_EQ(mEdit.toPlainText(), "A");
}

TEST_F(RollingEdits, NewestLine_IsFollowed) {
  mEdit.Append(MakeLines(0, 100));
  EXPECT_TRUE(IsAtEnd());

  mEdit.verticalScrollBar()->setValue(0);
  mEdit.Append(u"more\r\n");

  EXPECT_TRUE(IsAtEnd());
  EXPECT_GT(GetScroll(), 0);
}

TEST_F(RollingEdits, LeftButtonHeld_ScrollPositionStays) {
  mEdit.Append(MakeLines(0, 100));
  ASSERT_TRUE(krtest::AwaitExposed(&mEdit));
  QWindow* window = mEdit.windowHandle();
  QTest::mousePress(window, Qt::LeftButton, {}, QPoint(20, 20));
  mEdit.verticalScrollBar()->setValue(10);

  mEdit.Append(MakeLines(100, 5));
  EXPECT_EQ(GetScroll(), 10);

  QTest::mouseRelease(window, Qt::LeftButton, {}, QPoint(20, 20));
  mEdit.Append(u"more");
  EXPECT_TRUE(IsAtEnd());
}

TEST_F(RollingEdits, TextNearItsLimit_LosesAsManyUnitsAsCome) {
  mEdit.SetLimit(32'768);
  mEdit.Append(std::u16string(100, u'a'));
  mEdit.Append(std::u16string(32'600, u'b'));

  mEdit.Append(std::u16string(100, u'c'));

  EXPECT_EQ(mEdit.GetText(), std::u16string(32'600, u'b') + std::u16string(100, u'c'));
  EXPECT_EQ(mEdit.toPlainText().toStdU16String(), mEdit.GetText());
}

TEST_F(RollingEdits, RandomTexts_AreShownAsIfSetAsAWhole) {
  std::mt19937 random(7);
  mEdit.SetLimit(300);
  const std::u16string units = u"ab\r\n\t\x1B\u00AD\u2028";
  for (int step = 0; step < 1000; ++step) {
    const int kind = static_cast<int>(random() % 20);
    if (kind == 0)
      mEdit.RemoveLastLine();
    else if (kind == 1 && random() % 10 == 0)
      mEdit.SetEmpty();
    std::u16string text;
    for (std::size_t count = random() % 40; count > 0; --count)
      text += random() % 4 == 0 ? u"\r\n"s : std::u16string(1, units[random() % units.size()]);
    mEdit.Append(text);

    RollingEdit fresh(nullptr);
    fresh.Append(mEdit.GetText());
    ASSERT_EQ(mEdit.toPlainText(), fresh.toPlainText()) << step;
    ASSERT_EQ(mEdit.GetShownText(), mEdit.GetText()) << step;
  }
}

TEST_F(RollingEdits, PeriodSet_ShowsTheFirstAppendAtOnceAndTheNextOnesTogether) {
  mEdit.SetShowPeriod(kLongPeriodMs);

  mEdit.Append(u"A");
  EXPECT_EQ(mEdit.toPlainText(), "A");
  mEdit.Append(u"B");
  mEdit.Append(u"C");
  EXPECT_EQ(mEdit.toPlainText(), "A");
  EXPECT_EQ(mEdit.GetText(), u"ABC");

  mEdit.Flush();
  EXPECT_EQ(mEdit.toPlainText(), "ABC");
}

TEST_F(RollingEdits, PeriodOver_ShowsWhatHasCome) {
  mEdit.SetShowPeriod(1);
  mEdit.Append(u"A");

  mEdit.Append(u"B");

  EXPECT_TRUE(krtest::AwaitCondition([this] { return mEdit.toPlainText() == "AB"; }));
}

TEST_F(RollingEdits, PausedOrEmptiedWithinThePeriod_ShowsWhatThereIs) {
  mEdit.SetShowPeriod(kLongPeriodMs);
  mEdit.Append(u"A");
  mEdit.Append(u"B");

  mEdit.SetPaused(true);
  EXPECT_EQ(mEdit.toPlainText(), "AB");
  mEdit.Append(u"C");
  mEdit.SetPaused(false);
  EXPECT_EQ(mEdit.toPlainText(), "ABC");

  mEdit.Append(u"D");
  mEdit.SetEmpty();
  EXPECT_EQ(mEdit.toPlainText(), "");
  EXPECT_EQ(mEdit.GetText(), u"");
}

TEST_F(RollingEdits, RandomTextsWithinPeriods_AreShownAsIfSetAsAWhole) {
  std::mt19937 random(11);
  mEdit.SetLimit(300);
  mEdit.SetShowPeriod(kLongPeriodMs);
  for (int step = 0; step < 1000; ++step) {
    if (random() % 4 == 0)
      mEdit.RemoveLastLine();
    std::u16string text = random() % 3 == 0 ? u"\r\n"s : u""s;
    text.append(random() % 60, static_cast<char16_t>(u'a' + step % 26));
    mEdit.Append(text);
    if (random() % 8 != 0)
      continue;

    mEdit.Flush();

    RollingEdit fresh(nullptr);
    fresh.Append(mEdit.GetText());
    ASSERT_EQ(mEdit.toPlainText(), fresh.toPlainText()) << step;
    ASSERT_EQ(mEdit.GetShownText(), mEdit.GetText()) << step;
  }
}

TEST_F(RollingEdits, SelectionWithinAPeriod_StaysOnItsText) {
  mEdit.SetLimit(20);
  mEdit.SetShowPeriod(kLongPeriodMs);
  mEdit.Append(u"0123456789");
  Select(6, 9);

  mEdit.Append(u"abcdefghij");
  mEdit.Append(u"kl");
  mEdit.Append(u"m");
  mEdit.Flush();

  EXPECT_EQ(mEdit.toPlainText(), "3456789abcdefghijklm");
  EXPECT_EQ(GetSelected(), "678");
}

TEST_F(RollingEdits, LastLineRemoved_LeavesTheOthers) {
  mEdit.Append(u"A\r\nB");

  mEdit.RemoveLastLine();
  EXPECT_EQ(mEdit.toPlainText(), "A\n");
  mEdit.Append(u"C");

  EXPECT_EQ(mEdit.toPlainText(), "A\nC");
}

TEST_F(RollingEdits, Selection_StaysOnItsText) {
  mEdit.SetLimit(30);
  mEdit.Append(u"0123456789abcdefghij");
  Select(12, 16);
  ASSERT_EQ(GetSelected(), "cdef");

  mEdit.Append(u"ABCDEFGHIJKL");

  EXPECT_EQ(GetSelected(), "cdef");
}

TEST_F(RollingEdits, SelectionUpToTheEnd_DoesNotTakeInWhatIsAppended) {
  mEdit.Append(u"abc");
  Select(3, 0);

  mEdit.Append(u"def");

  EXPECT_EQ(GetSelected(), "abc");
  EXPECT_EQ(mEdit.textCursor().anchor(), 3);
}

TEST_F(RollingEdits, SelectionThatIsErased_IsGone) {
  mEdit.SetLimit(10);
  mEdit.Append(u"0123456789");
  Select(0, 3);

  mEdit.Append(u"abcde");

  EXPECT_EQ(GetSelected(), "");
}

TEST_F(RollingEdits, CopyKey_CopiesTheCharactersThemselves) {
  mEdit.Append(u"A\r\nB\x1B\u00E9");
  mEdit.selectAll();

  QTest::keyClick(&mEdit, Qt::Key_C, Qt::ControlModifier);

  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdU16String(), u"A\nB\x1B\u00E9");
}

TEST_F(RollingEdits, ContextMenu_OffersCopyingAndSelectingAlone) {
  mEdit.Append(u"A");
  QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5), mEdit.mapToGlobal(QPoint(5, 5)));
  QCoreApplication::sendEvent(mEdit.viewport(), &event);
  auto* menu = mEdit.findChild<QMenu*>();
  ASSERT_NE(menu, nullptr);
  ASSERT_EQ(menu->actions().size(), 2);
  EXPECT_EQ(menu->actions()[0]->text(), "Copy");
  EXPECT_FALSE(menu->actions()[0]->isEnabled());
  EXPECT_EQ(menu->actions()[1]->text(), "Select All");

  menu->actions()[1]->trigger();
  menu->close();

  EXPECT_EQ(GetSelected(), "A");
}

TEST_F(RollingEdits, Paused_ShowsWhatWasThereAndTheRestAfterwards) {
  mEdit.SetLimit(1000);
  mEdit.Append(MakeLines(0, 60));
  mEdit.verticalScrollBar()->setValue(5);
  mEdit.SetPaused(true);
  const QString shown = mEdit.toPlainText();

  mEdit.Append(MakeLines(60, 60));
  mEdit.RemoveLastLine();
  EXPECT_EQ(mEdit.toPlainText(), shown);
  EXPECT_EQ(GetScroll(), 5);
  mEdit.SetPaused(false);

  EXPECT_TRUE(mEdit.toPlainText().endsWith("line 119\n"));
  EXPECT_TRUE(IsAtEnd());
}

TEST_F(RollingEdits, SelectionOfAPause_OutlivesIt) {
  mEdit.SetLimit(20);
  mEdit.Append(u"0123456789\r\n");
  mEdit.SetPaused(true);
  Select(6, 9);
  ASSERT_EQ(GetSelected(), "678");

  mEdit.Append(u"abcdefgh");
  mEdit.Append(u"ij");
  mEdit.SetPaused(false);

  EXPECT_EQ(GetSelected(), "678");
  EXPECT_EQ(mEdit.toPlainText(), "23456789\nabcdefghij");
}

TEST_F(RollingEdits, RandomTextsInAPause_AreShownAfterItAsIfSetAsAWhole) {
  std::mt19937 random(13);
  mEdit.SetLimit(300);
  for (int step = 0; step < 200; ++step) {
    mEdit.SetPaused(true);
    for (std::size_t count = random() % 30; count > 0; --count) {
      if (random() % 6 == 0)
        mEdit.RemoveLastLine();
      if (random() % 40 == 0)
        mEdit.SetEmpty();
      std::u16string text = random() % 3 == 0 ? u"\r\n"s : u""s;
      text.append(random() % 60, static_cast<char16_t>(u'a' + step % 26));
      mEdit.Append(text);
    }

    mEdit.SetPaused(false);

    RollingEdit fresh(nullptr);
    fresh.Append(mEdit.GetText());
    ASSERT_EQ(mEdit.toPlainText(), fresh.toPlainText()) << step;
    ASSERT_EQ(mEdit.GetShownText(), mEdit.GetText()) << step;
  }
}

TEST_F(RollingEdits, ViewScrolledToTheRight_StaysThereWhereverTheCursorIs) {
  mEdit.Append(std::u16string(500, u'W') + u"\r\n");
  QScrollBar* bar = mEdit.horizontalScrollBar();
  for (const QTextCursor::MoveOperation place : {QTextCursor::End, QTextCursor::Start}) {
    QTextCursor cursor = mEdit.textCursor();
    cursor.movePosition(place);
    mEdit.setTextCursor(cursor);
    bar->setValue(bar->maximum());
    const int before = bar->value();
    ASSERT_GT(before, 0);

    mEdit.Append(u"next\r\n");

    EXPECT_EQ(bar->value(), before) << place;
  }
}

TEST_F(RollingEdits, EmptiedWhilePaused_IsEmptyAtOnce) {
  mEdit.Append(u"A");
  mEdit.SetPaused(true);

  mEdit.SetEmpty();

  EXPECT_EQ(mEdit.toPlainText(), "");
  mEdit.Append(u"B");
  EXPECT_EQ(mEdit.toPlainText(), "");
}

TEST_F(RollingEdits, Emptied_ForgetsWhatWasNotShownYet) {
  mEdit.SetUpdateInterval(10);
  mEdit.Append(u"old");

  mEdit.SetEmpty();
  mEdit.Append(u"new");
  mEdit.Flush();

  EXPECT_EQ(mEdit.toPlainText(), "new");
  EXPECT_EQ(mEdit.GetText(), u"new");
}

TEST_F(RollingEdits, FormatChangedWhileABatchWaits_ShowsNothingOfTheOldFormat) {
  TranscriptEncoder encoder;
  const std::uint8_t bytes[] = {'A', 'B'};
  mEdit.SetUpdateInterval(10);
  encoder.RenderBytes(bytes, 2);
  encoder.FlushPending(mEdit);

  encoder.SetDisplayFormat(mEdit, DisplayFormat::Hexadecimal);
  encoder.RenderBytes(bytes, 2);
  encoder.FlushPending(mEdit);
  mEdit.Flush();

  EXPECT_EQ(mEdit.GetText(), u"41 42 ");
}

TEST_F(RollingEdits, Hint_StandsInTheEmptyPlaceAndNotInTheText) {
  const QImage without = mEdit.grab().toImage();

  mEdit.SetHint("Nothing here.");
  const QImage with = mEdit.grab().toImage();
  EXPECT_NE(with, without);
  EXPECT_EQ(mEdit.toPlainText(), "");

  mEdit.Append(u" ");
  EXPECT_EQ(mEdit.grab().toImage(), without);
}

TEST_F(RollingEdits, LowerWindow_StillShowsTheNewestLine) {
  mEdit.Append(MakeLines(0, 100));

  mEdit.resize(300, 60);

  EXPECT_TRUE(IsAtEnd());
}

} // namespace krgui
