// The property grid's context menu, and its tooltips.

#include "gridfixture.h"
#include "res/menus.h"

#include <QClipboard>
#include <QHelpEvent>
#include <QMenu>
#include <QToolTip>

namespace krgui {

namespace {

class GridMenuTest : public GridTest {
protected:
  void SetUp() override {
    Fill();
    Show();
    ReadAll();
  }
  void TearDown() override { QToolTip::hideText(); }

  void OpenMenuAt(const std::string& aName) {
    const QPoint point = PointIn(aName, 60);
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, mGrid->viewport()->mapToGlobal(point));
    QCoreApplication::sendEvent(mGrid->viewport(), &event);
  }
  QMenu* FindOpenMenu() const { return mGrid->findChild<QMenu*>("menu1508"); }
  QAction* FindAction(int aCommand) const {
    QMenu* menu = FindOpenMenu();
    for (QAction* action : menu != nullptr ? menu->actions() : QList<QAction*>()) {
      if (action->data().toInt() == aCommand)
        return action;
    }
    return nullptr;
  }
  void CloseMenu() {
    if (QMenu* menu = FindOpenMenu())
      menu->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(FindOpenMenu(), nullptr);
  }
  std::string EnabledCommands() const {
    std::string enabled;
    for (const int command : {kCopyNameCommandID, kCopyValueCommandID, kCopyNameAndValueCommandID, kCopyErrorCommandID})
      enabled += FindAction(command)->isEnabled() ? '1' : '0';
    return enabled;
  }

  QString AskToolTip(QPoint aPoint) {
    QToolTip::hideText();
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, kLimitMs));
    QHelpEvent event(QEvent::ToolTip, aPoint, mGrid->viewport()->mapToGlobal(aPoint));
    QCoreApplication::sendEvent(mGrid->viewport(), &event);
    return QToolTip::text();
  }
};

} // namespace

TEST_F(GridMenuTest, Menu_AtARow_SelectsItAndOffersWhatMakesSense) {
  const struct {
    const char* name;
    const char* enabled; // Name, value, both, error.
  } rows[] = {{"Gain", "1110"},   {"Analog", "1000"}, {"Missing", "1000"},
              {"Absent", "1000"}, {"Broken", "1001"}, {"Fixed", "1110"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    OpenMenuAt(row.name);

    ASSERT_NE(FindOpenMenu(), nullptr);
    EXPECT_EQ(GetSelectedName(), row.name);
    EXPECT_EQ(EnabledCommands(), row.enabled);
    CloseMenu();
  }
}

TEST_F(GridMenuTest, Menu_CopiesWhatIsChosen) {
  const struct {
    const char* name;
    int command;
    std::string expected;
  } rows[] = {{"Gain", kCopyNameCommandID, "Gain"},
              {"Gain", kCopyValueCommandID, "0 dB"},
              {"Gain", kCopyNameAndValueCommandID, "Gain = 0 dB"},
              {"Fixed", kCopyValueCommandID, "0"},
              {"Broken", kCopyErrorCommandID, Node("Broken").GetError().ToUtf8()}};
  for (const auto& row : rows) {
    OpenMenuAt(row.name);
    FindAction(row.command)->trigger();

    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), row.expected);
    CloseMenu();
  }
}

TEST_F(GridMenuTest, RowThatGoesUnderTheMenu_IsNotCopied) {
  QApplication::clipboard()->setText("before");
  OpenMenuAt("Gain");
  Fill();

  FindAction(kCopyNameCommandID)->trigger();

  EXPECT_EQ(QApplication::clipboard()->text(), "before");
  CloseMenu();
}

TEST_F(GridMenuTest, MenuKeys_OpenItAtTheSelectedRow) {
  mGrid->Select(Item("Fixed"));

  Press(Qt::Key_F10, Qt::ShiftModifier);
  ASSERT_NE(FindOpenMenu(), nullptr);
  EXPECT_EQ(FindOpenMenu()->pos(), mGrid->viewport()->mapToGlobal(Row("Fixed").center()));
  CloseMenu();
  QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
  QCoreApplication::sendEvent(mGrid->viewport(), &event);

  ASSERT_NE(FindOpenMenu(), nullptr);
  EXPECT_EQ(FindOpenMenu()->pos(), mGrid->viewport()->mapToGlobal(Row("Fixed").center()));
  CloseMenu();
}

TEST_F(GridMenuTest, MenuWithoutARow_IsNotShown) {
  Press(Qt::Key_F10, Qt::ShiftModifier);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

  EXPECT_EQ(FindOpenMenu(), nullptr);
}

TEST_F(GridMenuTest, CommandsOfAnotherTable_AreTheOwnersAndMayEndTheGrid) {
  int performed = 0;
  mGrid->SetContextMenu(kDeviceFinderMenuID, [&](int aCommand) {
    performed = aCommand;
    mGrid.reset();
  });
  OpenMenuAt("Gain");
  QMenu* menu = mGrid->findChild<QMenu*>("menu1505");
  ASSERT_NE(menu, nullptr);

  menu->actions().front()->trigger();

  EXPECT_EQ(performed, kSetIPAddressCommandID);
  EXPECT_EQ(mGrid, nullptr);
}

TEST_F(GridMenuTest, ToolTip_ShowsTheTextLetterByLetter) {
  const QString text = AskToolTip(PointIn("Gain", 60));

  EXPECT_TRUE(text.contains("How much &lt;b&gt;light&lt;/b&gt;")) << text.toStdString();
}

TEST_F(GridMenuTest, ToolTip_OverTheErrorIconIsTheError) {
  const QString overIcon = AskToolTip(PointIn("Broken", 210));
  const QString beside = AskToolTip(PointIn("Broken", 100));

  EXPECT_TRUE(overIcon.contains("The register is gone")) << overIcon.toStdString();
  EXPECT_TRUE(overIcon.contains(ToQString(Node("Broken").GetError())));
  EXPECT_FALSE(beside.contains(ToQString(Node("Broken").GetError()))) << beside.toStdString();
  EXPECT_FALSE(AskToolTip(PointIn("Gain", 210)).contains("The register is gone"));
}

TEST_F(GridMenuTest, ToolTip_OfACategoryIsItsOwn) {
  EXPECT_TRUE(AskToolTip(PointIn("Analog", 60)).contains("All that is analog"));
  // Where features have their error icon, too.
  EXPECT_TRUE(AskToolTip(PointIn("Analog", 210)).contains("All that is analog"));
}

TEST_F(GridMenuTest, ToolTip_OfWhatIsNotAvailableSaysWhy) {
  const QString reason = ToQString(Node("Missing").GetAccessReason());
  ASSERT_FALSE(reason.isEmpty());

  const QString text = AskToolTip(PointIn("Missing", 60));

  EXPECT_TRUE(text.contains("Not here"));
  EXPECT_TRUE(text.contains("Has")) << text.toStdString();
}

TEST_F(GridMenuTest, ToolTip_BesideAllRowsIsNone) {
  EXPECT_TRUE(AskToolTip(QPoint(60, mGrid->viewport()->height() - 3)).isEmpty());
}

} // namespace krgui
