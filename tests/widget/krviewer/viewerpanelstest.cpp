// The panels of the viewer's pages: how they are shown, moved and kept, and what the keyboard reaches.

#include "viewerfixture.h"
#include "windowwait.h"

#include <QComboBox>
#include <QDockWidget>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <utility>

using krviewer::Panel;

namespace {

class ViewerPanelsTest : public ViewerTest {
protected:
  /// The features' browser is there; by its key the recording comes in front of it.
  void CoverFeatures() {
    Press(Qt::Key_7, Qt::AltModifier);
    const krviewer::PagePanels& panels = GetPage()->GetPanels();
    ASSERT_TRUE(Await([&] { return panels.IsInFront(Panel::Recording) && !panels.IsInFront(Panel::Features); }));
    ASSERT_TRUE(panels.IsShown(Panel::Features));
  }
  bool HasKeyboard(const char* aPanel) {
    const QWidget* const focused = QApplication::focusWidget();
    return focused && FindDock(aPanel).isAncestorOf(focused);
  }
  QDockWidget& FindDock(const char* aName) { return *GetPage()->findChild<QDockWidget*>(aName); }
  Qt::DockWidgetArea GetArea(const char* aName) {
    QDockWidget& dock = FindDock(aName);
    return qobject_cast<QMainWindow*>(dock.parentWidget())->dockWidgetArea(&dock);
  }
  void Float(const char* aName, const QRect& aPlace) {
    FindDock(aName).setFloating(true);
    FindDock(aName).setGeometry(aPlace);
  }
};

} // namespace

TEST_F(ViewerPanelsTest, PanelsAndWindow_AreAsTheyWereInTheNextRun) {
  Begin();
  OpenStreaming();
  ASSERT_TRUE(GetPage()->GetPanels().IsShown(Panel::Features));
  Press(Qt::Key_1, Qt::AltModifier);
  ASSERT_FALSE(GetPage()->GetPanels().IsShown(Panel::Features));
  GetWindow().resize(700, 500);
  End();

  Begin();
  OpenStreaming();

  EXPECT_FALSE(GetPage()->GetPanels().IsShown(Panel::Features));
  EXPECT_EQ(GetWindow().size(), QSize(700, 500));
}

TEST_F(ViewerPanelsTest, PanelInANarrowerWindow_LeavesThePictureItsHalfAndComesBack) {
  Begin();
  OpenStreaming();
  auto& dock = *GetPage()->findChild<QDockWidget*>("features");
  GetWindow().resize(1200, 800);
  ASSERT_TRUE(krtest::AwaitCondition([&] { return dock.width() > 400; }));
  const int before = dock.width();

  GetWindow().resize(640, 480);
  EXPECT_TRUE(krtest::AwaitCondition([&] { return GetPage()->width() == 640 && dock.width() <= 320; }));
  GetWindow().resize(1200, 800);
  EXPECT_TRUE(krtest::AwaitCondition([&] { return dock.width() == before; }));
}

TEST_F(ViewerPanelsTest, PanelInAVerySmallWindow_ComesBackAsItWas) {
  Begin();
  OpenStreaming();
  GetWindow().resize(1200, 800);
  QDockWidget& dock = FindDock("features");
  ASSERT_TRUE(krtest::AwaitCondition([&] { return dock.width() > 400; }));
  const int before = dock.width();

  GetWindow().resize(1, 1);
  ASSERT_TRUE(krtest::AwaitCondition([&] { return dock.width() < 250; }));
  GetWindow().resize(1200, 800);

  EXPECT_TRUE(krtest::AwaitCondition([&] { return dock.width() == before; })) << dock.width();
}

TEST_F(ViewerPanelsTest, PanelOfARunThatEndedInAVerySmallWindow_IsOfUseInALargeOne) {
  Begin();
  OpenStreaming();
  GetWindow().resize(1, 1);
  ASSERT_TRUE(krtest::AwaitCondition([&] { return FindDock("features").width() < 250; }));
  End();

  Begin();
  OpenStreaming();
  GetWindow().resize(1200, 800);

  const int useful = 60 * GetPage()->fontMetrics().averageCharWidth();
  EXPECT_TRUE(krtest::AwaitCondition([&] { return FindDock("features").width() >= useful; }))
      << FindDock("features").width();
}

TEST_F(ViewerPanelsTest, PanelBelowInALowerWindow_LeavesThePictureItsHalfAndComesBack) {
  Begin();
  OpenStreaming();
  GetWindow().resize(1200, 900);
  Press(Qt::Key_4, Qt::AltModifier);
  QDockWidget& dock = FindDock("histogram");
  ASSERT_TRUE(krtest::AwaitCondition([&] { return dock.isVisible() && dock.height() > 280; }));
  const int before = dock.height();
  const QWidget& picture = *GetPage()->GetDisplay().GetWidget();

  GetWindow().resize(1200, 500);
  EXPECT_TRUE(krtest::AwaitCondition([&] {
    return GetWindow().height() == 500 && picture.height() > dock.height() * 0.9;
  })) << picture.height()
      << " above " << dock.height();

  GetWindow().resize(1200, 900);
  EXPECT_TRUE(krtest::AwaitCondition([&] { return dock.height() == before; })) << dock.height();
}

TEST_F(ViewerPanelsTest, Panels_AreShownAndHiddenByTheirKeys) {
  struct Row {
    Qt::Key key;
    Panel panel;
    const char* title;
  };
  Begin();
  OpenStreaming();
  for (const Row& row :
       {Row{Qt::Key_4, Panel::Histogram, "Histogram"}, Row{Qt::Key_5, Panel::LineProfile, "Line Profile"},
        Row{Qt::Key_6, Panel::Intervals, "Frame Intervals"}}) {
    SCOPED_TRACE(row.title);
    EXPECT_FALSE(GetPage()->GetPanels().IsShown(row.panel));

    Press(row.key, Qt::AltModifier);
    EXPECT_TRUE(GetPage()->GetPanels().IsShown(row.panel));
    const QList<QDockWidget*> docks = GetPage()->findChildren<QDockWidget*>();
    EXPECT_TRUE(std::ranges::any_of(
        docks, [&](const QDockWidget* aDock) { return aDock->windowTitle() == row.title && aDock->isVisible(); }));

    Press(row.key, Qt::AltModifier);
    EXPECT_FALSE(GetPage()->GetPanels().IsShown(row.panel));
  }
}

TEST_F(ViewerPanelsTest, PanelBehindAnother_ComesToTheFrontByItsKey) {
  Begin();
  OpenStreaming();
  krviewer::PagePanels& panels = GetPage()->GetPanels();
  Press(Qt::Key_4, Qt::AltModifier);
  Press(Qt::Key_5, Qt::AltModifier);
  ASSERT_TRUE(Await([&] { return panels.IsInFront(Panel::LineProfile) && !panels.IsInFront(Panel::Histogram); }));

  Press(Qt::Key_4, Qt::AltModifier);
  EXPECT_TRUE(Await([&] { return panels.IsInFront(Panel::Histogram) && !panels.IsInFront(Panel::LineProfile); }));
  EXPECT_TRUE(panels.IsShown(Panel::LineProfile));

  Press(Qt::Key_4, Qt::AltModifier);
  EXPECT_TRUE(Await([&] { return !panels.IsShown(Panel::Histogram) && panels.IsInFront(Panel::LineProfile); }));
}

TEST_F(ViewerPanelsTest, Tabulator_PassesByAPanelThatIsBehindAnother) {
  Begin();
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return GetPage()->GetFeatures().GetWindow().GetWidget() != nullptr; }));
  GetPage()->setFocus();
  ASSERT_NO_FATAL_FAILURE(CoverFeatures());

  for (const auto& [key, modifiers] : {std::pair(Qt::Key_Tab, Qt::KeyboardModifiers()),
                                       std::pair(Qt::Key_Backtab, Qt::KeyboardModifiers(Qt::ShiftModifier))}) {
    int inRecording = 0;
    for (int step = 0; step < 60; ++step) {
      Press(key, modifiers);
      ASSERT_FALSE(HasKeyboard("features")) << QApplication::focusWidget()->metaObject()->className();
      inRecording += HasKeyboard("recording") ? 1 : 0;
    }
    EXPECT_GT(inRecording, 0);
  }
}

TEST_F(ViewerPanelsTest, PanelWithTheKeyboardThatAnotherCovers_GivesItToThatOne) {
  Begin();
  OpenStreaming();
  ASSERT_TRUE(Await([this] { return FindDock("features").findChild<QComboBox*>() != nullptr; }));
  FindDock("features").findChild<QComboBox*>()->setFocus();
  ASSERT_TRUE(HasKeyboard("features"));

  ASSERT_NO_FATAL_FAILURE(CoverFeatures());

  EXPECT_TRUE(Await([this] { return HasKeyboard("recording"); }));
}

TEST_F(ViewerPanelsTest, PanelWithTheKeyboard_IsMovedByTheMenu) {
  Begin();
  OpenStreaming();
  auto* const dock = GetPage()->findChild<QDockWidget*>("histogram");
  auto* const area = qobject_cast<QMainWindow*>(dock->parentWidget());
  ASSERT_NE(area, nullptr);
  GetPage()->setFocus();
  EXPECT_TRUE(Await([this] { return !IsOffered("panelLeft"); }));
  Press(Qt::Key_4, Qt::AltModifier);
  dock->findChild<QAbstractButton*>()->setFocus();

  ASSERT_TRUE(Choose("panelLeft"));
  EXPECT_EQ(area->dockWidgetArea(dock), Qt::LeftDockWidgetArea);

  ASSERT_TRUE(Choose("panelFloat"));
  EXPECT_TRUE(dock->isFloating());

  ASSERT_TRUE(Choose("panelRight"));
  EXPECT_FALSE(dock->isFloating());
  EXPECT_EQ(area->dockWidgetArea(dock), Qt::RightDockWidgetArea);
  EXPECT_TRUE(GetPage()->GetPanels().IsShown(Panel::Histogram));

  ASSERT_TRUE(Choose("panelBottom"));
  EXPECT_EQ(area->dockWidgetArea(dock), Qt::BottomDockWidgetArea);
}

TEST_F(ViewerPanelsTest, PanelThatFloats_GoesAndComesWithItsTab) {
  Begin();
  Open(kColourMAC);
  Open(kMonoMAC);
  auto* const dock = GetPage()->findChild<QDockWidget*>("features");
  ASSERT_NE(dock, nullptr);
  dock->setFloating(true);
  ASSERT_TRUE(dock->isVisible());
  ASSERT_TRUE(Await([this] { return IsOffered("nextCamera"); }));

  ASSERT_TRUE(Choose("nextCamera"));
  EXPECT_FALSE(dock->isVisible());

  ASSERT_TRUE(Choose("nextCamera"));
  EXPECT_TRUE(dock->isVisible());
  EXPECT_TRUE(dock->isFloating());
}

TEST_F(ViewerPanelsTest, PanelsMovedAndFloating_AreWhereTheyWereInTheNextRun) {
  const QRect place(60, 80, 420, 340);
  Begin();
  OpenStreaming();
  Press(Qt::Key_4, Qt::AltModifier);
  FindDock("histogram").findChild<QAbstractButton*>()->setFocus();
  ASSERT_TRUE(Choose("panelLeft"));
  Float("features", place);
  End();

  Begin();
  OpenStreaming();

  EXPECT_TRUE(Await([this] { return FindDock("features").isVisible() && FindDock("histogram").isVisible(); }));
  EXPECT_EQ(GetArea("histogram"), Qt::LeftDockWidgetArea);
  EXPECT_FALSE(FindDock("histogram").isFloating());
  EXPECT_TRUE(FindDock("features").isFloating());
  EXPECT_EQ(FindDock("features").geometry(), place);
}

TEST_F(ViewerPanelsTest, PanelThatFloatedWhereNoScreenIsAnyMore_IsOnOneThatIs) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  Begin();
  OpenStreaming();
  Float("features", QRect(screen.bottomRight() + QPoint(500, 400), QSize(420, 340)));
  End();

  Begin();
  OpenStreaming();

  EXPECT_TRUE(Await([this] { return FindDock("features").isVisible(); }));
  EXPECT_TRUE(FindDock("features").isFloating());
  EXPECT_TRUE(screen.contains(FindDock("features").geometry()))
      << FindDock("features").x() << "," << FindDock("features").y();
}

TEST_F(ViewerPanelsTest, WindowThatWasWhereNoScreenIsAnyMore_IsOnOneThatIs) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  Begin();
  GetWindow().setGeometry(QRect(screen.bottomRight() + QPoint(500, 400), QSize(500, 400)));
  End();

  Begin();

  EXPECT_TRUE(screen.contains(GetWindow().geometry())) << GetWindow().x() << "," << GetWindow().y();
}

TEST_F(ViewerPanelsTest, BrowserOptions_AreAsTheyWereInTheNextRun) {
  Begin();
  OpenStreaming();
  ASSERT_EQ(GetPage()->GetFeatures().GetWindow().GetVisibility(), KrGenVisibility::Beginner);
  ASSERT_TRUE(GetPage()->GetFeatures().GetWindow().SetVisibility(KrGenVisibility::Guru).IsOK());
  End();

  Begin();
  OpenStreaming();

  EXPECT_EQ(GetPage()->GetFeatures().GetWindow().GetVisibility(), KrGenVisibility::Guru);
}

TEST_F(ViewerPanelsTest, PagesOfTwoCameras_AreEachAsTheyWereInTheNextRun) {
  Begin();
  Open(kColourMAC);
  ASSERT_TRUE(Choose("createPorts"));
  Open(kMonoMAC);
  GetPage()->GetTools().SetCreatingPorts(false);
  GetPage()->GetPanels().Show(Panel::Histogram, true);
  End();

  Begin();
  Open(kColourMAC);
  EXPECT_TRUE(GetPage()->GetTools().IsCreatingPorts());
  EXPECT_FALSE(GetPage()->GetPanels().IsShown(Panel::Histogram));
  Open(kMonoMAC);
  EXPECT_FALSE(GetPage()->GetTools().IsCreatingPorts());
  EXPECT_TRUE(GetPage()->GetPanels().IsShown(Panel::Histogram));
}

TEST_F(ViewerPanelsTest, LinkOfTheFirstPageWithTheKeyboard_LooksOtherwise) {
  Begin();
  auto* const link = GetWindow().GetFirstPage().findChild<QAbstractButton*>("trySimulation");
  ASSERT_NE(link, nullptr);
  GetWindow().GetFirstPage().setFocus();
  ASSERT_FALSE(link->hasFocus());
  const QColor before = link->grab().toImage().pixelColor(link->width() / 2, 0);

  link->setFocus();

  EXPECT_NE(link->grab().toImage().pixelColor(link->width() / 2, 0), before);
}
