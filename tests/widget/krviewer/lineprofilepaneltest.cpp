#include "panels/lineprofilepanel.h"

#include "panelfixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QEnterEvent>
#include <QLabel>
#include <QPushButton>
#include <QTest>

using krviewer::LineProfilePanel;
using krviewer::ProfilePlot;

namespace {

class LineProfilePanelTest : public PanelTest {
protected:
  void ShowPanel() {
    mPanel.resize(500, 400);
    mPanel.show();
    ASSERT_TRUE(krtest::AwaitExposed(&mPanel));
  }
  QString GetFrameText() { return Find<QLabel>(mPanel, "profileFrame")->text(); }
  QString GetSharpness() { return Find<QLabel>(mPanel, "profileSharpness")->text(); }
  QComboBox& GetChoice() { return *mPanel.findChild<QComboBox*>(); }
  QDoubleSpinBox& GetIndex() { return *mPanel.findChild<QDoubleSpinBox*>(); }
  /// Lines that are all alike, of stripes of two values.
  void GiveStripes(std::uint8_t aDifference) {
    KrBuffer frame;
    ASSERT_TRUE(frame.GetImage()->Alloc(64, 48, KrPixel::Mono8).IsOK());
    for (std::size_t i = 0; i < frame.GetSize(); ++i)
      frame.GetDataPointer()[i] = i % 2 == 0 ? aDifference : 0;
    GiveFrame(frame);
  }

  KrDisplayWnd mWindow;
  LineProfilePanel mPanel{mFrames, mWindow};
};

} // namespace

TEST_F(LineProfilePanelTest, hiddenPanel_hearsOfNoFrame) {
  GiveFrame(5);
  EXPECT_EQ(mPanel.GetCopied(), 0u);
  ShowPanel();
  mPanel.hide();

  EXPECT_TRUE(mFrames.IsEmpty());
  GiveFrame(5);

  EXPECT_EQ(mPanel.GetCopied(), 0u);
}

TEST_F(LineProfilePanelTest, rowThatIsTyped_isShownOfTheNextFrame) {
  ShowPanel();

  QTest::keyClick(&GetIndex(), Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(&GetIndex(), "17");
  QTest::keyClick(&GetIndex(), Qt::Key_Return);
  GiveFrame(5);

  EXPECT_TRUE(Await([this] { return GetFrameText() == "Row 17 of frame 1"; }));
}

TEST_F(LineProfilePanelTest, column_isChosenByKeyboard) {
  ShowPanel();

  QTest::keyClick(&GetChoice(), Qt::Key_Down);
  QTest::keyClick(&GetIndex(), Qt::Key_Up);
  GiveFrame(5);

  EXPECT_TRUE(Await([this] { return GetFrameText() == "Column 1 of frame 1"; }));
}

TEST_F(LineProfilePanelTest, numberBeyondTheFrame_showsTheLastRow) {
  ShowPanel();

  GetIndex().setValue(4294967295.0);
  GiveFrame(5);

  EXPECT_TRUE(Await([this] { return GetFrameText() == "Row 47 of frame 1"; }));
}

TEST_F(LineProfilePanelTest, bestSharpness_isKeptUntilItIsForgotten) {
  ShowPanel();
  GiveStripes(100);
  ASSERT_TRUE(Await([this] { return GetSharpness() == "Sharpness 100.00, best 100.00"; }));
  GiveStripes(40);
  ASSERT_TRUE(Await([this] { return GetSharpness() == "Sharpness 40.00, best 100.00"; }));

  QTest::keyClick(FindButton<QPushButton>(mPanel, "Forget &Best"), Qt::Key_Space);
  GiveStripes(30);

  EXPECT_TRUE(Await([this] { return GetSharpness() == "Sharpness 30.00, best 30.00"; }));
}

TEST_F(LineProfilePanelTest, fullRange_isTakenFromTheFormat) {
  ShowPanel();
  GiveStripes(40);
  ASSERT_TRUE(Await([this] { return !GetFrameText().isEmpty(); }));
  const QImage occurring = Find<ProfilePlot>(mPanel, "profilePlot")->grab().toImage();

  FindButton<QCheckBox>(mPanel, "Full r&ange")->click();

  EXPECT_NE(Find<ProfilePlot>(mPanel, "profilePlot")->grab().toImage(), occurring);
}

TEST_F(LineProfilePanelTest, mouseThatIsFollowed_leadsToItsRow) {
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(64, 48, KrPixel::Mono8).IsOK());
  ASSERT_TRUE(mWindow.Display(frame, false).IsOK());
  ShowPanel();
  GetChoice().setCurrentIndex(2);
  EXPECT_FALSE(GetIndex().isEnabled());
  auto* const view = mWindow.GetWidget()->findChild<QWidget*>("display");
  ASSERT_TRUE(view);
  view->grab(); // The image is there when it was painted.
  const QPointF centre(view->rect().center());
  QEnterEvent enter(centre, centre, view->mapToGlobal(centre));
  QCoreApplication::sendEvent(view, &enter);

  ASSERT_TRUE(Await([&] { return mWindow.GetCursorPixel().has_value(); }));
  const std::uint32_t row = mWindow.GetCursorPixel()->y;
  ASSERT_TRUE(Await([&] { return GetIndex().value() == row; }));
  GiveFrame(5);

  EXPECT_TRUE(Await([&] { return GetFrameText().startsWith(QStringLiteral("Row %1 of frame").arg(row)); }));
}

TEST_F(LineProfilePanelTest, singleFrame_isLookedAtAlongAnyLine) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(64, 48, KrPixel::Mono8).IsOK());
  ShowPanel();
  GiveFrame(frame);
  ASSERT_TRUE(Await([this] { return GetFrameText() == "Row 0 of frame 1"; }));

  GetIndex().setValue(40);
  EXPECT_EQ(GetFrameText(), "Row 40 of frame 1");
  GetChoice().setCurrentIndex(1);

  EXPECT_EQ(GetFrameText(), "Column 40 of frame 1");
}

TEST_F(LineProfilePanelTest, formatThatCannotBeRead_isExplained) {
  ShowPanel();
  GiveStripes(40);
  ASSERT_TRUE(Await([this] { return !GetFrameText().isEmpty(); }));

  GiveFrame(0, KrPixel::BiColorRGBG8);

  EXPECT_TRUE(Await([this] { return GetFrameText().isEmpty(); }));
}
