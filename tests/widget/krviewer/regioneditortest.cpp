// A region of interest drawn on a simulated camera's picture, by mouse and keys.

#include "region/regioneditor.h"

#include "viewerlab.h"
#include "windowwait.h"

#include <QDoubleSpinBox>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

using krviewer::AcquisitionState;
using krviewer::DeviceWork;
using krviewer::Region;
using krviewer::RegionEditor;

namespace {

constexpr Region kFull = {{0, 1280}, {0, 960}};

class RegionEditorTest : public ViewerLabTest {
protected:
  RegionEditorTest() {
    QObject::connect(&mEditor, &RegionEditor::Applied, &mEditor, [this](const QString& aText) { mApplied = aText; });
  }
  ~RegionEditorTest() override { mAcquisition.reset(); }

  void LookAgain() override { mAcquisition->LookAgain(); }

  // Two pixels of the camera for one of the widget, from its corner on.
  void Open() {
    mWindow.SetPosition(0, 0, 640, 480);
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
    ViewerLabTest::Open();
    ASSERT_TRUE(AwaitPicture(1280, 960));
  }
  bool AwaitPicture(std::uint32_t aWidth, std::uint32_t aHeight) {
    return Await([&] {
      const auto mapping = mWindow.GetMapping();
      return mapping && mapping->imageWidth == aWidth && mapping->imageHeight == aHeight;
    });
  }
  void Begin() {
    mEditor.Begin();
    ASSERT_TRUE(Await([this] { return mEditor.IsEditing(); }));
  }
  QWidget* GetPicture() const { return mWindow.GetWidget()->findChild<QWidget*>("display"); }
  QWidget* FindOutline() const { return GetPicture()->findChild<QWidget*>("regionOutline"); }
  void Drag(const QPoint& aFrom, const QPoint& aTo) {
    QTest::mousePress(GetPicture(), Qt::LeftButton, {}, aFrom);
    QTest::mouseMove(GetPicture(), aTo);
    QTest::mouseRelease(GetPicture(), Qt::LeftButton, {}, aTo);
  }
  void Press(Qt::Key aKey, Qt::KeyboardModifiers aModifiers = {}) { QTest::keyClick(GetPicture(), aKey, aModifiers); }
  // A region of 320 by 240 in the middle of the upper left.
  void OpenWithASmallRegion() {
    Open();
    Begin();
    Drag({80, 60}, {240, 180});
    Press(Qt::Key_Return);
    ASSERT_TRUE(AwaitPicture(320, 240));
    ASSERT_TRUE(Await([this] { return !mEditor.IsEditing(); }));
  }
  static QMessageBox* FindMessage() {
    for (QWidget* const window : QApplication::topLevelWidgets())
      if (auto* const box = qobject_cast<QMessageBox*>(window); box && box->isVisible())
        return box;
    return nullptr;
  }
  static void AwaitAndCloseMessage(const QString& aText) {
    ASSERT_TRUE(krtest::AwaitCondition([] { return FindMessage() != nullptr; }));
    EXPECT_TRUE(FindMessage()->text().contains(aText)) << FindMessage()->text().toStdString();
    delete FindMessage();
  }

  QString mApplied;
  RegionEditor mEditor{mWindow, [this](DeviceWork aWork) { mAcquisition->Do(std::move(aWork)); }};
};

} // namespace

TEST_F(RegionEditorTest, RegionDrawnWithTheMouse_IsWhatFramesHave) {
  Open();
  Begin();

  Drag({80, 60}, {240, 180});
  EXPECT_EQ(mEditor.GetRegion(), (Region{{160, 320}, {120, 240}}));
  Press(Qt::Key_Return);

  EXPECT_TRUE(AwaitPicture(320, 240));
  EXPECT_TRUE(Await([this] { return !mEditor.IsEditing(); }));
  EXPECT_EQ(mApplied, "Region of interest: 320 x 240 at 160, 120");
  EXPECT_EQ(FindOutline(), nullptr);
  EXPECT_TRUE(Await([this] { return IsIn(AcquisitionState::Streaming); }));
}

TEST_F(RegionEditorTest, RegionWithinARegion_AddsThePresentOffset) {
  ASSERT_NO_FATAL_FAILURE(OpenWithASmallRegion());

  Begin(); // Two pixels of the widget for one of the camera now.
  Drag({64, 48}, {320, 240});

  EXPECT_EQ(mEditor.GetRegion(), (Region{{160 + 32, 128}, {120 + 24, 96}}));
}

TEST_F(RegionEditorTest, Keys_StretchMoveAndApply) {
  Open();
  Begin();

  Press(Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
  Press(Qt::Key_Up, Qt::ShiftModifier);
  Press(Qt::Key_Right, Qt::ControlModifier);
  Press(Qt::Key_Left);
  Press(Qt::Key_Down);
  const Region drawn = mEditor.GetRegion();
  Press(Qt::Key_Enter);

  EXPECT_LT(drawn.x.length, kFull.x.length);
  EXPECT_LT(drawn.y.length, kFull.y.length);
  EXPECT_GT(drawn.x.offset, 0);
  EXPECT_TRUE(AwaitPicture(static_cast<std::uint32_t>(drawn.x.length), static_cast<std::uint32_t>(drawn.y.length)));
}

TEST_F(RegionEditorTest, Escape_GivesUpTheDragThenTheDrawingAndNeverTheWindow) {
  Open();
  Begin();
  QTest::mousePress(GetPicture(), Qt::LeftButton, {}, {80, 60});
  QTest::mouseMove(GetPicture(), {240, 180});
  ASSERT_NE(mEditor.GetRegion(), kFull);

  Press(Qt::Key_Escape);
  EXPECT_EQ(mEditor.GetRegion(), kFull);
  EXPECT_TRUE(mEditor.IsEditing());
  Press(Qt::Key_Escape);

  EXPECT_FALSE(mEditor.IsEditing());
  EXPECT_EQ(FindOutline(), nullptr);
  EXPECT_NE(mWindow.GetWidget(), nullptr);
  EXPECT_EQ(mWindow.GetMapping()->imageWidth, 1280U);
}

TEST_F(RegionEditorTest, FullFrame_IsSetWithoutDrawing) {
  ASSERT_NO_FATAL_FAILURE(OpenWithASmallRegion());

  mEditor.SetFullFrame();

  EXPECT_TRUE(AwaitPicture(1280, 960));
  EXPECT_TRUE(Await([this] { return mApplied == "Region of interest: full frame"; }));
}

TEST_F(RegionEditorTest, EnterOnAButton_DoesWhatTheButtonSays) {
  Open();
  Begin();
  Drag({80, 60}, {240, 180});
  int applied = 0;
  const auto* const bar = qobject_cast<krviewer::RegionBar*>(&mEditor.GetBar());
  QObject::connect(bar, &krviewer::RegionBar::ApplyWanted, bar, [&applied] { ++applied; });
  auto buttons = bar->findChildren<QPushButton*>();
  const auto cancel = std::ranges::find(buttons, QString("Cancel"), &QPushButton::text);
  ASSERT_NE(cancel, buttons.end());

  QTest::keyClick(*cancel, Qt::Key_Return);

  EXPECT_FALSE(mEditor.IsEditing());
  EXPECT_EQ(applied, 0);
}

TEST_F(RegionEditorTest, NumbersOfMoreThan32Bits_AreShownAndToldAsTheyAre) {
  constexpr std::int64_t kLarge = std::int64_t{1} << 40;
  krviewer::RegionBar bar;
  krviewer::RegionAxis axis;
  axis.present = {kLarge, 3 * kLarge};
  axis.extent = 8 * kLarge;
  Region typed;
  QObject::connect(&bar, &krviewer::RegionBar::RegionTyped, &bar, [&typed](const Region& aTyped) { typed = aTyped; });

  bar.Show({axis.present, axis.present}, {axis, axis});
  bar.findChild<QDoubleSpinBox*>("regionX")->setValue(static_cast<double>(kLarge + 1));

  EXPECT_EQ(typed, (Region{{kLarge + 1, 3 * kLarge}, axis.present}));
}

TEST_F(RegionEditorTest, TypedNumbers_AreDrawnAsTheNearestRegion) {
  Open();
  Begin();
  auto* const width = mEditor.GetBar().findChild<QDoubleSpinBox*>("regionWidth");
  auto* const x = mEditor.GetBar().findChild<QDoubleSpinBox*>("regionX");

  width->setValue(641);
  x->setValue(100);

  EXPECT_EQ(mEditor.GetRegion().x, (krviewer::RegionSpan{100, 640}));
  EXPECT_EQ(width->value(), 640);
  EXPECT_TRUE(mEditor.GetBar().isVisibleTo(mEditor.GetBar().parentWidget()));
}

TEST_F(RegionEditorTest, ZoomedPicture_HasTheOutlineWhereTheRegionIs) {
  Open();
  Begin();
  Drag({80, 60}, {240, 180});
  ASSERT_NE(FindOutline(), nullptr);

  mWindow.Zoom1_1();

  ASSERT_TRUE(Await([this] { return mWindow.GetMapping()->scaleX > 0.9 / GetPicture()->devicePixelRatioF(); }));
  EXPECT_TRUE(Await([this] {
    const KrDisplayMapping mapping = *mWindow.GetMapping();
    const QPoint corner(static_cast<int>(std::lround(mapping.ToWidgetX(160))) + 1,
                        static_cast<int>(std::lround(mapping.ToWidgetY(120))) + 1);
    return FindOutline()->width() == static_cast<int>(mapping.viewWidth) &&
           (!FindOutline()->rect().contains(corner) || FindOutline()->mask().contains(corner));
  }));
}

TEST_F(RegionEditorTest, Outline_IsHollow) {
  Open();
  Begin();

  Drag({80, 60}, {240, 180});

  const QRegion shape = FindOutline()->mask();
  EXPECT_TRUE(shape.contains(QPoint(81, 100)));
  EXPECT_TRUE(shape.contains(QPoint(238, 100)));
  EXPECT_FALSE(shape.contains(QPoint(160, 110)));
  EXPECT_FALSE(shape.contains(QPoint(40, 30)));
}

TEST_F(RegionEditorTest, WindowWithoutAPicture_IsToldThatThereIsNone) {
  mWindow.SetPosition(0, 0, 640, 480);
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());

  mEditor.Begin();

  AwaitAndCloseMessage("There is no picture");
  EXPECT_FALSE(mEditor.IsEditing());
}

TEST_F(RegionEditorTest, CameraThatIsLost_IsToldInAMessage) {
  Open();
  Begin();
  Drag({80, 60}, {240, 180});
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(Await([this] { return IsIn(AcquisitionState::Lost); }));

  mEditor.Apply();

  ASSERT_TRUE(Await([] { return FindMessage() != nullptr; }));
  delete FindMessage();
  EXPECT_TRUE(mApplied.isEmpty());
}

TEST_F(RegionEditorTest, RequestThatNobodyAnswers_IsGivenUpWithTheDrawing) {
  Open();
  std::vector<DeviceWork> unanswered;
  RegionEditor editor(mWindow, [&unanswered](DeviceWork aWork) { unanswered.push_back(std::move(aWork)); });
  editor.Begin();
  editor.Begin();
  ASSERT_EQ(unanswered.size(), 1U); // One at a time.

  editor.Cancel();
  editor.Begin();

  EXPECT_EQ(unanswered.size(), 2U);
  unanswered.front().then({});
  // The answer to what was given up begins nothing, and is not complained of.
  EXPECT_FALSE(editor.IsEditing());
  EXPECT_EQ(FindMessage(), nullptr);
}

TEST_F(RegionEditorTest, WindowClosedWhileDrawing_EndsTheDrawing) {
  Open();
  Begin();

  ASSERT_TRUE(mWindow.Close().IsOK());

  EXPECT_TRUE(Await([this] { return !mEditor.IsEditing(); }));
}
