// Rows, grids and windows that go while an edit is open, is to be written, or its message box is on the screen.

#include "editorsfixture.h"

namespace krgui {

namespace {

TEST_F(EditorsTest, RebuildWhileEditing_DropsTheEdit) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "5");

  Fill();

  EXPECT_EQ(NumberBox(), nullptr);
  EXPECT_EQ(camera.port.CountWrites(), 0U);
  EXPECT_TRUE(grid->hasFocus());
}

TEST_F(EditorsTest, RebuildBeforeTheWriteWasHandled_DropsIt) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "5");
  elsewhere->setFocus();

  Fill();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, EditAfterRebuild_Works) {
  Enter("OffsetX");
  Fill();
  Enter("OffsetX");
  Type(NumberBox(), "5", Qt::Key_Return);
  Pump();

  EXPECT_EQ(Integer("OffsetX"), 5);
}

TEST_F(EditorsTest, RebuildDuringTheMessageBox_LeavesTheNewRowsAlone) {
  Enter("OffsetX");
  bool wasShown = false;
  DuringNextModalLoop([&](QWidget& aBox) {
    wasShown = true;
    Fill();
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });
  Type(NumberBox(), "5000", Qt::Key_Return);
  Pump();

  EXPECT_TRUE(wasShown);
  EXPECT_EQ(NumberBox(), nullptr);
}

TEST_F(EditorsTest, SelectionDuringTheMessageBox_KeepsItsEditor) {
  Enter("OffsetX");
  DuringNextModalLoop([&](QWidget& aBox) {
    grid->Select(Item("PixelFormat"));
    Pump();
    QTest::keyClick(&aBox, Qt::Key_Escape);
  });
  Type(NumberBox(), "5000", Qt::Key_Return);
  Pump();

  EXPECT_NE(Combo(), nullptr);
  EXPECT_EQ(NumberBox(), nullptr);
}

TEST_F(EditorsTest, GridDeletedInAWindowThatStays_EndsTheMessageBoxOfAWrite) {
  Enter("OffsetX");
  bool wasShown = false;
  bool hasEnded = false;
  DuringNextModalLoop([&](QWidget& aBox) {
    wasShown = true;
    const QPointer<QWidget> box(&aBox);
    delete grid;
    hasEnded = box.isNull() || !box->isVisible();
    if (!hasEnded) {
      QTest::keyClick(box, Qt::Key_Escape);
    }
  });
  Type(NumberBox(), "5000", Qt::Key_Return);
  Pump();

  EXPECT_TRUE(wasShown);
  EXPECT_TRUE(hasEnded);
  EXPECT_FALSE(grid);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(EditorsTest, GridDeletedInAWindowThatStays_EndsTheMessageBoxOfACommand) {
  Select("DeviceReset");
  FailWrites();
  bool hasEnded = false;
  DuringNextModalLoop([&](QWidget& aBox) {
    const QPointer<QWidget> box(&aBox);
    delete grid;
    hasEnded = box.isNull() || !box->isVisible();
    if (!hasEnded) {
      QTest::keyClick(box, Qt::Key_Escape);
    }
  });
  QTest::mouseClick(Button(), Qt::LeftButton);
  Pump();

  EXPECT_TRUE(hasEnded);
  EXPECT_FALSE(grid);
}

TEST_F(EditorsTest, WindowDeletedDuringTheMessageBoxOfACommand_IsNotTouched) {
  Select("DeviceReset");
  FailWrites();
  DuringNextModalLoop([&](QWidget&) { window.reset(); });
  QTest::mouseClick(Button(), Qt::LeftButton);
  Pump();

  EXPECT_FALSE(grid);
}

TEST_F(EditorsTest, TwoMessageBoxesOnTopOfEachOther_EndInAnyOrder) {
  Enter("OffsetX");
  int boxes = 0;
  DuringNextModalLoop([&](QWidget& aFirst) {
    ++boxes;
    grid->Select(Item("GevCurrentIPAddress"));
    Pump();
    DuringNextModalLoop([&](QWidget& aSecond) {
      ++boxes;
      QTest::keyClick(&aSecond, Qt::Key_Escape);
    });
    Type(TextBox(), "no address", Qt::Key_Return);
    Pump();
    QTest::keyClick(&aFirst, Qt::Key_Escape);
  });
  Type(NumberBox(), "5000", Qt::Key_Return);
  Pump();

  EXPECT_EQ(boxes, 2);
  EXPECT_NE(TextBox(), nullptr);
}

TEST_F(EditorsTest, GridDeletedWhileEditing_WritesNothing) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "5");

  delete grid;

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, WindowClosedWhileEditing_WritesNothingAfterItsQueueClosed) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "5");
  queue->Close();

  window->close();
  Pump();

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, WindowDeletedWhileTheListIsOpen_IsFine) {
  Enter("PixelFormat");
  QTest::keyClick(Combo(), Qt::Key_F4);

  window.reset();
  Pump();

  EXPECT_FALSE(grid);
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST_F(EditorsTest, ArrayClosedWhileEditing_FailsTheWriteAloud) {
  Enter("OffsetX");
  QTest::keyClicks(NumberBox(), "5");
  camera.array->Close();
  ExpectMessage();
  elsewhere->setFocus();
  Pump();

  EXPECT_TRUE(message.startsWith("Error writing value:\n")) << message.toStdString();
}

} // namespace

} // namespace krgui
