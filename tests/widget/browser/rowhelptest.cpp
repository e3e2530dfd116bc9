// What the tooltips of rows say, asked for by keyboard.

#include "gridfixture.h"
#include "windowwait.h"

#include <QLineEdit>
#include <QScrollBar>
#include <QShortcut>
#include <QTextDocument>
#include <QToolTip>

namespace krgui {

namespace {

class RowHelpTest : public GridTest {
protected:
  void SetUp() override {
    Fill();
    Show();
    ReadAll();
  }
  void TearDown() override {
    QToolTip::hideText();
    EXPECT_TRUE(AwaitHidden());
  }

  static std::string GetHelp() {
    QTextDocument document;
    document.setHtml(QToolTip::text());
    return QToolTip::isVisible() ? document.toPlainText().toStdString() : std::string();
  }
  static bool AwaitHidden() {
    return krtest::AwaitCondition([] { return !QToolTip::isVisible(); });
  }
  void SelectAndAsk(const std::string& aName) {
    mGrid->Select(Item(aName));
    Settle();
    Press(Qt::Key_F1, Qt::ControlModifier);
  }
  QLineEdit* EnterEditor(const std::string& aName) {
    mGrid->Select(Item(aName));
    Settle();
    Press(Qt::Key_Return);
    Settle();
    auto* editBox = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    EXPECT_NE(editBox, nullptr);
    return editBox;
  }
};

} // namespace

TEST_F(RowHelpTest, BothKeys_ShowWhatTheTooltipsOfTheSelectedRowSay) {
  const std::string reason = Node("Missing").GetAccessReason().ToUtf8();
  ASSERT_FALSE(reason.empty());
  (void)CountReads(mCamera.port);

  SelectAndAsk("Missing");
  // Paragraphs are further apart than lines.
  EXPECT_EQ(QString::fromStdString(GetHelp()).split('\n', Qt::SkipEmptyParts),
            (QStringList{"Not here", QString::fromStdString(reason)}));
  Press(Qt::Key_F1, Qt::ControlModifier);
  EXPECT_TRUE(AwaitHidden());
  EXPECT_EQ(CountReads(mCamera.port), 0U);

  mGrid->Select(Item("Broken"));
  Press(Qt::Key_F1, Qt::ShiftModifier);
  EXPECT_EQ(GetHelp(), Node("Broken").GetError().ToUtf8());
}

TEST_F(RowHelpTest, Texts_AreShownAsTheyAre) {
  SelectAndAsk("Gain");

  EXPECT_EQ(GetHelp(), "How much <b>light</b>");
}

TEST_F(RowHelpTest, Categories_AreExplainedToo) {
  SelectAndAsk("Analog");

  EXPECT_EQ(GetHelp(), "All that is analog");
}

TEST_F(RowHelpTest, NothingSelectedOrNothingToSay_ShowsNothing) {
  Press(Qt::Key_F1, Qt::ControlModifier);
  EXPECT_EQ(GetHelp(), "");

  SelectAndAsk("Empty");
  EXPECT_EQ(GetHelp(), "");
}

TEST_F(RowHelpTest, OtherKeys_HideItAndDoWhatTheyDo) {
  SelectAndAsk("Gain");
  ASSERT_NE(GetHelp(), "");

  Press(Qt::Key_Down);

  EXPECT_TRUE(AwaitHidden());
  EXPECT_EQ(GetSelectedName(), "GainSelector");
}

TEST_F(RowHelpTest, Escape_HidesItAndDoesNothingElse) {
  int escapes = 0;
  const QShortcut shortcut(QKeySequence(Qt::Key_Escape), mGrid.get());
  QObject::connect(&shortcut, &QShortcut::activated, mGrid.get(), [&escapes] { ++escapes; });
  SelectAndAsk("Gain");
  ASSERT_NE(GetHelp(), "");

  Press(Qt::Key_Escape);
  EXPECT_TRUE(AwaitHidden());
  EXPECT_EQ(escapes, 0);

  Press(Qt::Key_Escape);
  EXPECT_EQ(escapes, 1);
}

TEST_F(RowHelpTest, KeyThatTheProgramAroundHasToo_IsTheGridsInTheGrid) {
  int calls = 0;
  const QShortcut shortcut(QKeySequence(Qt::SHIFT | Qt::Key_F1), mGrid.get());
  QObject::connect(&shortcut, &QShortcut::activated, mGrid.get(), [&calls] { ++calls; });
  mGrid->Select(Item("Gain"));
  Settle();

  for (int press = 0; press < 2; ++press) {
    Press(Qt::Key_F1, Qt::ShiftModifier);
    EXPECT_NE(GetHelp(), "");
    Press(Qt::Key_F1, Qt::ShiftModifier);
    EXPECT_TRUE(AwaitHidden());
  }
  EXPECT_EQ(calls, 0);
}

TEST_F(RowHelpTest, InAnEditor_ItIsShownAndEscapeLeavesTheEditOpen) {
  QLineEdit* editBox = EnterEditor("Gain");
  ASSERT_NE(editBox, nullptr);
  QTest::keyClicks(editBox, "7");

  QTest::keyClick(editBox, Qt::Key_F1, Qt::ControlModifier);
  EXPECT_EQ(GetHelp(), "How much <b>light</b>");
  EXPECT_TRUE(editBox->hasFocus());
  QTest::keyClick(editBox, Qt::Key_Escape);

  EXPECT_TRUE(AwaitHidden());
  EXPECT_EQ(mGrid->GetEdited(), Item("Gain"));
  EXPECT_EQ(editBox->text(), "7");
  QTest::keyClick(editBox, Qt::Key_Escape);
  EXPECT_EQ(mGrid->GetEdited(), kNoItem);
}

TEST_F(RowHelpTest, RowOffTheScreen_IsBroughtIntoView) {
  mGrid->resize(500, 100);
  mGrid->Select(Item("Analog"));
  Settle();
  mGrid->verticalScrollBar()->setValue(mGrid->verticalScrollBar()->maximum());
  ASSERT_FALSE(Row("Analog").intersects(mGrid->viewport()->rect()));

  Press(Qt::Key_F1, Qt::ControlModifier);

  EXPECT_EQ(GetHelp(), "All that is analog");
  EXPECT_TRUE(mGrid->viewport()->rect().contains(Row("Analog").center()));
}

} // namespace krgui
