// The search row of the feature browser's window and the description of the selected row.

#include "browser/gridcolours.h"
#include "browserfixture.h"

#include <QLineEdit>
#include <QShortcut>

namespace krgui {

namespace {

class SearchRow : public GenBrowserTest {
protected:
  void OpenWithRow() {
    Open();
    Press(Qt::Key_F, Qt::ControlModifier);
  }
  bool IsShown() const { return mWindow.GetSearchBar().isVisible() && mWindow.GetButton("Close search").isVisible(); }
  void Type(const char* aText) { QTest::keyClicks(mWindow.GetWidget()->window()->focusWidget(), aText); }
  /// In the row of Gain, which is one.
  bool IsAMatchMarked() const {
    const PropertiesGrid& grid = mWindow.GetGrid();
    const QRgb mark = MakeGridColours(grid.palette()).match.rgb();
    const QImage picture = mWindow.GetGrid().viewport()->grab(grid.FindRow(mWindow.FindRow("Gain"))).toImage();
    for (int x = 0; x < picture.width(); ++x) {
      if (picture.pixel(x, picture.height() / 2) == mark)
        return true;
    }
    return false;
  }
};

class Description : public GenBrowserTest {
protected:
  /// It follows when the input that has come is done.
  [[nodiscard]] bool AwaitDescription(const QString& aBegin) {
    return WaitFor([&] { return mWindow.GetDescription().toPlainText().startsWith(aBegin); });
  }
};

} // namespace

TEST_F(SearchRow, AtFirst_IsHidden) {
  Open();

  EXPECT_FALSE(IsShown());
  EXPECT_FALSE(mWindow.GetControl(1089)->isVisible());
  EXPECT_FALSE(mWindow.GetControl(1094)->isVisible());
}

TEST_F(SearchRow, CtrlF_ShowsItAboveTheGridWithTheFocusInTheFieldAndAgainHidesIt) {
  Open();
  const int gridTop = mWindow.GetControl(1095)->y();

  Press(Qt::Key_F, Qt::ControlModifier);
  EXPECT_TRUE(IsShown());
  EXPECT_TRUE(mWindow.GetSearchBar().isAncestorOf(mWindow.GetWidget()->window()->focusWidget()) ||
              mWindow.GetSearchBar().hasFocus());
  EXPECT_GT(mWindow.GetControl(1095)->y(), gridTop);

  Press(Qt::Key_F, Qt::ControlModifier);
  EXPECT_FALSE(IsShown());
  EXPECT_EQ(mWindow.GetControl(1095)->y(), gridTop);
  EXPECT_TRUE(mWindow.GetGrid().hasFocus());
}

TEST_F(SearchRow, CtrlFInEveryControlThatTakesTheFocus_ShowsIt) {
  Open();
  for (QWidget* control :
       {static_cast<QWidget*>(&mWindow.GetGrid()), static_cast<QWidget*>(&mWindow.GetDescription()),
        static_cast<QWidget*>(&mWindow.GetVisibilityList()), static_cast<QWidget*>(&mWindow.GetButton("Properties"))}) {
    control->setFocus();

    Press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(IsShown()) << control->metaObject()->className();
    Press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_FALSE(IsShown());
  }
}

TEST_F(SearchRow, CtrlFInAnOpenEditor_ShowsItAndWritesWhatWasTyped) {
  Open();
  ASSERT_TRUE(AwaitValue("Width", "0"));
  mWindow.GetGrid().Select(mWindow.FindRow("Width"));
  QLineEdit* editor = nullptr;
  ASSERT_TRUE(WaitFor([&] {
    editor = mWindow.GetGrid().viewport()->findChild<QLineEdit*>(QStringLiteral("numberEditor"));
    return editor != nullptr && editor->isVisible();
  }));
  editor->setFocus();
  editor->selectAll();
  QTest::keyClicks(editor, "3");

  QTest::keyClick(editor, Qt::Key_F, Qt::ControlModifier);

  EXPECT_TRUE(IsShown());
  EXPECT_TRUE(AwaitValue("Width", "3"));
  EXPECT_TRUE(mWindow.HasChanged());
}

TEST_F(SearchRow, CtrlFAgain_ForgetsTextResultAndMark) {
  OpenWithRow();
  Type("gain");
  ASSERT_EQ(mWindow.GetResult(), "Result 1 of 2");

  Press(Qt::Key_F, Qt::ControlModifier);

  EXPECT_FALSE(IsShown());
  EXPECT_EQ(mWindow.GetSearchBar().GetText(), "");
  EXPECT_EQ(mWindow.GetResult(), "");
  EXPECT_FALSE(IsAMatchMarked());
}

TEST_F(SearchRow, TypedText_SelectsTheFirstMatchAndSaysHowManyThereAre) {
  OpenWithRow();

  Type("gain");

  EXPECT_EQ(mWindow.GetSelectedName(), "Gain");
  EXPECT_EQ(mWindow.GetResult(), "Result 1 of 2");
}

TEST_F(SearchRow, ArrowButtons_MoveForwardAndBackward) {
  OpenWithRow();
  Type("gain");

  mWindow.Click("Move to next occurence");
  EXPECT_EQ(mWindow.GetSelectedName(), "DigitalGainSelector");
  EXPECT_EQ(mWindow.GetResult(), "Result 2 of 2");

  mWindow.Click("Move to next occurence");
  EXPECT_EQ(mWindow.GetSelectedName(), "Gain");

  mWindow.Click("Move to previous occurence");
  EXPECT_EQ(mWindow.GetSelectedName(), "DigitalGainSelector");
}

TEST_F(SearchRow, TextThatOccursNowhere_SaysSo) {
  OpenWithRow();

  Type("nothing like that");

  EXPECT_EQ(mWindow.GetResult(), "No result found");
}

TEST_F(SearchRow, Hidden_LeavesNoMatchMarked) {
  OpenWithRow();
  Type("gain");
  ASSERT_TRUE(IsAMatchMarked());

  mWindow.Click("Close search");

  EXPECT_FALSE(IsAMatchMarked());
}

TEST_F(SearchRow, CloseButton_HidesItAndForgetsTextAndResult) {
  OpenWithRow();
  Type("gain");

  mWindow.Click("Close search");

  EXPECT_FALSE(IsShown());
  EXPECT_EQ(mWindow.GetSearchBar().GetText(), "");
  EXPECT_EQ(mWindow.GetResult(), "");
}

TEST_F(SearchRow, Escape_HidesTheRowAndNotTheWindow) {
  OpenWithRow();
  Type("gain");

  Press(Qt::Key_Escape);

  EXPECT_FALSE(IsShown());
  EXPECT_TRUE(mWindow.IsOpen());
  EXPECT_TRUE(mWindow.GetGrid().hasFocus());
}

TEST_F(SearchRow, RebuildWithAText_SearchesAnew) {
  OpenWithRow();
  Type("gain");

  mWindow.GetVisibilityList().setCurrentIndex(1);

  EXPECT_EQ(mWindow.GetResult(), "Result 1 of 3");
  EXPECT_EQ(mWindow.GetSelectedName(), "Gain");
}

TEST_F(SearchRow, DisplayNames_AreSearchedWhereTheyAreShown) {
  KrPropertyList list;
  list.Add({"Names", "DisplayNames"});
  mWindow.LoadOptions(list);
  OpenWithRow();

  Type("columns");

  EXPECT_EQ(mWindow.GetSelectedName(), "Width");
}

TEST_F(SearchRow, NextOpening_BeginsWithoutIt) {
  OpenWithRow();
  ASSERT_TRUE(mWindow.Close().IsOK());

  Open();

  EXPECT_FALSE(IsShown());
}

// The description of the selected row.

TEST_F(Description, SelectedFeature_ShowsItsDisplayNameAsTitleAndItsText) {
  Open();

  mWindow.GetGrid().Select(mWindow.FindRow("Width"));

  EXPECT_TRUE(AwaitDescription("Columns\n")) << mWindow.GetDescription().toPlainText().toStdString();
  EXPECT_TRUE(mWindow.GetDescription().toPlainText().contains("How wide pictures are."));
}

TEST_F(Description, SelectedCategory_ShowsItsText) {
  Open();

  mWindow.GetGrid().Select(mWindow.FindRow("ImageFormatControl"));

  EXPECT_TRUE(AwaitDescription("Image Format Control\n"));
  EXPECT_TRUE(mWindow.GetDescription().toPlainText().contains("How pictures are made."));
}

TEST_F(Description, NoSelection_ShowsNothing) {
  Open();
  mWindow.GetGrid().Select(mWindow.FindRow("Width"));
  ASSERT_TRUE(AwaitDescription("Columns\n"));

  mWindow.GetGrid().Select(kNoItem);

  EXPECT_TRUE(WaitFor([this] { return mWindow.GetDescription().toPlainText().isEmpty(); }));
}

TEST_F(Description, Rebuild_EmptiesIt) {
  Open();
  mWindow.GetGrid().Select(mWindow.FindRow("Width"));
  ASSERT_TRUE(AwaitDescription("Columns\n"));

  mWindow.GetVisibilityList().setCurrentIndex(1);

  EXPECT_EQ(mWindow.GetDescription().toPlainText(), "");
}

TEST_F(Description, SelectionByTheArrowKeys_IsFollowed) {
  Open();
  mWindow.GetGrid().Select(mWindow.FindRow("Width"));

  Press(Qt::Key_Down);

  EXPECT_EQ(mWindow.GetSelectedName(), "Height");
  EXPECT_TRUE(AwaitDescription("Rows\n"));
}

} // namespace krgui
