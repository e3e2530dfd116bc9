// The property grid's rows: filling, selecting, opening and closing, what is on the screen, and messages.

#include "gridfixture.h"
#include "windowwait.h"

#include <QScrollBar>

#include <thread>

namespace krgui {

TEST_F(GridTest, Filled_HasAllCategoriesOpenAndNothingSelected) {
  Fill();
  Show();

  for (const char* category : {"Analog", "DeviceControl", "Inner"})
    EXPECT_TRUE(IsOpen(category)) << category;
  EXPECT_EQ(mGrid->GetSelected(), kNoItem);
  EXPECT_EQ(Node("Long").GetLevel(), 2);
  EXPECT_EQ(Node("Gain").GetLevel(), 1);
}

TEST_F(GridTest, Rows_AreAsHighAsThePlatformsAndFourPixelsMore) {
  Fill();
  Show();
  QStyleOptionViewItem option;
  option.initFrom(mGrid.get());
  option.features = QStyleOptionViewItem::HasDisplay;
  option.text = QStringLiteral("Xg");
  option.font = mGrid->font();
  option.font.setBold(true);
  option.fontMetrics = QFontMetrics(option.font);

  const QSize platform = mGrid->style()->sizeFromContents(QStyle::CT_ItemViewItem, &option, {}, mGrid.get());

  EXPECT_EQ(Row("Analog").height(), platform.height() + 4);
  EXPECT_EQ(Row("Gain").height(), platform.height() + 4);
  EXPECT_EQ(Row("Gain").top(), Row("Analog").height());
  EXPECT_EQ(Row("Gain").width(), mGrid->viewport()->width());
}

TEST_F(GridTest, RowsWithALargerFont_AreHigher) {
  Fill();
  Show();
  const int height = Row("Gain").height();

  QFont font = mGrid->font();
  font.setPointSizeF(font.pointSizeF() * 2);
  mGrid->setFont(font);
  Settle();

  EXPECT_GT(Row("Gain").height(), height);
}

TEST_F(GridTest, PaletteThatChanges_ChangesTheColours) {
  Fill();
  Show();
  EXPECT_EQ(PixelOf(Grab(), "GainSelector", 2), QColor(0x99, 0xB4, 0xD1));
  EXPECT_EQ(PixelOf(Grab(), "Gain", 2), QColor(0xCE, 0xDB, 0xEA));

  QApplication::setPalette(MakeDarkPalette());
  QApplication::processEvents();

  const GridColours dark = MakeGridColours(MakeDarkPalette());
  EXPECT_EQ(PixelOf(Grab(), "GainSelector", 2), dark.isSelector);
  EXPECT_EQ(PixelOf(Grab(), "Gain", 2), dark.hasSelectors);
  EXPECT_EQ(PixelOf(Grab(), "Plain", 2), dark.window);
  EXPECT_EQ(PixelOf(Grab(), "Empty", 200), dark.face);
}

TEST_F(GridTest, SelectedRow_IsOnTheHighlightWhileTheGridHasTheFocus) {
  Fill();
  Show();
  mGrid->Select(Item("Fixed"));
  Settle();
  const GridColours colours = MakeGridColours(mGrid->palette());
  EXPECT_EQ(PixelOf(Grab(), "Fixed", 2), colours.highlight);

  mGrid->clearFocus();
  Settle();

  EXPECT_EQ(PixelOf(Grab(), "Fixed", 2), colours.face);
}

TEST_F(GridTest, SearchText_IsOnYellowOnceItIsRepainted) {
  Fill();
  Show();
  const auto countYellow = [this] {
    const QImage picture = Grab();
    int count = 0;
    for (int x = 0; x < 220; ++x)
      count += PixelOf(picture, "Plain", x, Row("Plain").height() / 2) == QColor(Qt::yellow) ? 1 : 0;
    return count;
  };
  EXPECT_EQ(countYellow(), 0);

  mGrid->SetSearchText("lai");
  mGrid->Repaint();

  EXPECT_GT(countYellow(), 0);
}

TEST_F(GridTest, Selecting_TellsOnceAfterwards) {
  Fill();
  Show();
  std::vector<std::string> told;
  mGrid->SetSelectionHandler([&] { told.push_back(GetSelectedName()); });

  mGrid->Select(Item("Gain"));
  mGrid->Select(Item("Gain"));
  mGrid->Select(kNoItem);

  EXPECT_EQ(told, (std::vector<std::string>{"Gain", ""}));
}

TEST_F(GridTest, SelectionHandler_MayEndTheGrid) {
  Fill();
  Show();
  mGrid->SetSelectionHandler([this] { mGrid.reset(); });

  mGrid->Select(Item("Gain"));

  EXPECT_EQ(mGrid, nullptr);
}

TEST_F(GridTest, SelectionByMouse_MayEndTheGrid) {
  Fill();
  Show();
  mGrid->SetSelectionHandler([this] { mGrid.reset(); });

  QTest::mousePress(mGrid->viewport(), Qt::LeftButton, {}, PointIn("Gain", 60));

  EXPECT_EQ(mGrid, nullptr);
}

TEST_F(GridTest, SelectingInAClosedCategory_OpensItAndScrolls) {
  Fill();
  mGrid->resize(500, 60);
  Show();
  mGrid->CollapseAll();

  mGrid->Select(Item("Hebrew"));
  Settle();

  EXPECT_TRUE(IsOpen("DeviceControl"));
  EXPECT_TRUE(IsOpen("Inner"));
  EXPECT_TRUE(mGrid->viewport()->rect().contains(Row("Hebrew")));
  EXPECT_TRUE(Node("Hebrew").IsOnScreen());
}

TEST_F(GridTest, Refilled_HasNothingSelectedAndTellsSo) {
  Fill();
  Show();
  mGrid->Select(Item("Gain"));
  int told = 0;
  mGrid->SetSelectionHandler([&] { ++told; });

  Fill();

  EXPECT_EQ(mGrid->GetSelected(), kNoItem);
  EXPECT_EQ(told, 1);
}

TEST_F(GridTest, RefilledUnderAnOpenEditor_DropsIt) {
  Fill();
  Show();
  ReadAll();
  mGrid->Select(Item("Plain"));
  Settle();
  ASSERT_EQ(mGrid->GetEdited(), Item("Plain"));

  Fill();
  Settle();

  EXPECT_EQ(mGrid->GetEdited(), kNoItem);
}

TEST_F(GridTest, CollapsingOverTheSelectedRow_SelectsItsCategory) {
  Fill();
  Show();
  mGrid->Select(Item("Hebrew"));

  mGrid->SetOpen(Item("Inner"), false);
  EXPECT_EQ(GetSelectedName(), "Inner");
  mGrid->CollapseAll();

  EXPECT_EQ(GetSelectedName(), "DeviceControl");
  EXPECT_FALSE(IsOpen("Analog"));
  EXPECT_FALSE(Node("Gain").IsOnScreen());
}

TEST_F(GridTest, ShowFirst_SelectsNoneAndPutsTheFirstCategoryOnTop) {
  Fill();
  mGrid->resize(500, 60);
  Show();
  mGrid->Select(Item("Broken"));
  ASSERT_NE(Row("Analog").top(), 0);

  mGrid->ShowFirst();

  EXPECT_EQ(mGrid->GetSelected(), kNoItem);
  EXPECT_EQ(Row("Analog").top(), 0);
}

TEST_F(GridTest, OnScreenMarks_FollowSizeScrollingTogglingAndHiding) {
  Fill();
  int changes = 0;
  mGrid->SetScreenHandler([&] { ++changes; });
  EXPECT_FALSE(Node("Gain").IsOnScreen());
  mGrid->resize(500, 400);
  Show();
  EXPECT_TRUE(Node("Gain").IsOnScreen());
  EXPECT_TRUE(Node("Broken").IsOnScreen());
  EXPECT_GT(changes, 0);

  mGrid->resize(500, 60);
  EXPECT_TRUE(Node("Gain").IsOnScreen());
  EXPECT_FALSE(Node("Broken").IsOnScreen());

  mGrid->verticalScrollBar()->setValue(mGrid->verticalScrollBar()->maximum());
  EXPECT_FALSE(Node("Gain").IsOnScreen());
  EXPECT_TRUE(Node("Broken").IsOnScreen());

  mGrid->ShowFirst();
  mGrid->SetOpen(Item("Analog"), false);
  EXPECT_FALSE(Node("Gain").IsOnScreen());

  mGrid->SetOpen(Item("Analog"), true);
  EXPECT_TRUE(Node("Gain").IsOnScreen());
  mGrid->hide();
  EXPECT_FALSE(Node("Gain").IsOnScreen());
}

TEST_F(GridTest, RowMessage_AcknowledgesAndRepaintsThatRow) {
  Fill();
  Show();
  ReadAll();
  EXPECT_FALSE(Node("Plain").HasChanged());
  ASSERT_TRUE(mCamera.memory.Write(0x20, "\x07", 1, 1000).IsOK());
  const auto grabRow = [this] { return mGrid->viewport()->grab(Row("Plain")).toImage(); };
  const QImage before = grabRow();

  Node("Plain").Refresh();
  ASSERT_TRUE(Node("Plain").HasChanged());
  EXPECT_TRUE(mGrid->HandleMessage({kRowChangedMessage, Item("Plain"), 0}));

  EXPECT_FALSE(Node("Plain").HasChanged());
  EXPECT_NE(grabRow(), before);
}

TEST_F(GridTest, GridWithoutRows_SaysSoUntilThereAreSome) {
  Fill();
  Show();
  const auto isPlain = [this] {
    const QImage picture = Grab();
    // The last row ends above the middle of a grid that is as high.
    const QRect middle(picture.width() / 4, picture.height() / 2 - 30, picture.width() / 2, 60);
    const QColor ground = picture.pixelColor(middle.topLeft());
    for (int y = middle.top(); y <= middle.bottom(); ++y)
      for (int x = middle.left(); x <= middle.right(); ++x)
        if (picture.pixelColor(x, y) != ground)
          return false;
    return true;
  };
  mGrid->resize(400, 1600);
  Settle();
  ASSERT_TRUE(isPlain());

  mGrid->Clear();
  Settle();
  EXPECT_FALSE(isPlain());

  Fill();
  Settle();
  EXPECT_TRUE(isPlain());
}

TEST_F(GridTest, RowMessages_OfRowsThatAreNotThere_DoNothing) {
  Fill();
  Show();
  const GridItem old = Item("Plain");
  Fill();

  EXPECT_TRUE(mGrid->HandleMessage({kRowChangedMessage, old, 0}));
  EXPECT_TRUE(mGrid->HandleMessage({kRowChangedMessage, kNoItem, 0}));
  EXPECT_TRUE(mGrid->HandleMessage({kRowChangedMessage, 123456789, 0}));
  EXPECT_TRUE(mGrid->HandleMessage({kRowChangedMessage, Item("Analog"), 0}));
}

TEST_F(GridTest, OtherMessages_AreNotTheGrids) {
  EXPECT_FALSE(mGrid->HandleMessage({0x1404, 0, 0}));
  EXPECT_FALSE(mGrid->HandleMessage({0x13FF, 0, 0}));
}

TEST_F(GridTest, MessagesFromAnotherThread_ReachAGridWithAQueueOfItsOwn) {
  Fill();
  Show();
  std::thread worker([this] {
    Node("Plain").Refresh();
    mGrid->GetQueue()->PostOnce({kRowChangedMessage, Item("Plain"), 0});
  });
  worker.join();

  EXPECT_TRUE(krtest::AwaitCondition([this] { return !Node("Plain").HasChanged(); }));
}

TEST_F(GridTest, GridWithAWindowsQueue_TakesNothingItself) {
  const auto queue = std::make_shared<MessageQueue>();
  queue->Open();
  mGrid = std::make_unique<PropertiesGrid>(nullptr, queue);
  Fill();
  mGrid->show();
  QApplication::processEvents();

  EXPECT_FALSE(queue->IsEmpty());
  mGrid.reset();

  EXPECT_TRUE(queue->IsOpen());
}

TEST_F(GridTest, SelectedRowThatCanBeWritten_GetsItsEditor) {
  Fill();
  Show();
  ReadAll();

  mGrid->Select(Item("Plain"));
  Settle();
  EXPECT_EQ(mGrid->GetEdited(), Item("Plain"));
  mGrid->Select(Item("Fixed"));
  Settle();

  EXPECT_EQ(mGrid->GetEdited(), kNoItem);
}

} // namespace krgui
