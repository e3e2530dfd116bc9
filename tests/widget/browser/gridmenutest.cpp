// The property grid's context menu, and its tooltips.

#include "gridfixture.h"
#include "res/menus.h"
#include "windowwait.h"

#include <QClipboard>
#include <QHelpEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTextDocument>
#include <QToolTip>

#include <set>
#include <string>

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
    for (const int command :
         {kCopyRowCommandID, kCopyNameCommandID, kCopyValueCommandID, kCopyNameAndValueCommandID, kCopyErrorCommandID})
      enabled += FindAction(command)->isEnabled() ? '1' : '0';
    return enabled;
  }

  /// What a tooltip shows of a text that may be markup.
  static QString ToShownText(const QString& aToolTip) {
    QTextDocument document;
    document.setHtml(aToolTip);
    return document.toPlainText();
  }
  QString AskToolTip(QPoint aPoint) {
    QToolTip::hideText();
    EXPECT_TRUE(krtest::AwaitCondition([] { return !QToolTip::isVisible(); }));
    QHelpEvent event(QEvent::ToolTip, aPoint, mGrid->viewport()->mapToGlobal(aPoint));
    QCoreApplication::sendEvent(mGrid->viewport(), &event);
    return QToolTip::text();
  }
};

} // namespace

TEST_F(GridMenuTest, Menu_AtARow_SelectsItAndOffersWhatMakesSense) {
  const struct {
    const char* name;
    const char* enabled; // The row, name, value, both, error.
  } rows[] = {{"Gain", "11110"},   {"Analog", "11000"}, {"Missing", "11000"},
              {"Absent", "11000"}, {"Broken", "11001"}, {"Fixed", "11110"}};
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
  } rows[] = {{"Gain", kCopyRowCommandID, "Gain = 0 dB"},
              {"Broken", kCopyRowCommandID, "Broken\n" + Node("Broken").GetError().ToUtf8()},
              {"Gain", kCopyNameCommandID, "Gain"},
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

TEST_F(GridMenuTest, EachEntry_HasAMnemonicOfItsOwn) {
  for (const int number : {kPropertiesGridMenuID, kGenBrowserMenuID}) {
    std::set<QString> keys;
    for (const MenuItemTemplate& item : FindMenu(number)->submenus.front().items) {
      const QKeySequence key = QKeySequence::mnemonic(ToQString(KrString(std::string(item.text))));
      EXPECT_FALSE(key.isEmpty()) << item.text;
      EXPECT_TRUE(keys.insert(key.toString()).second) << item.text;
    }
  }
}

TEST_F(GridMenuTest, Mnemonic_ChoosesItsEntry) {
  OpenMenuAt("Fixed");

  QTest::keyClick(FindOpenMenu(), Qt::Key_V);

  EXPECT_EQ(QApplication::clipboard()->text(), "0");
  CloseMenu();
}

TEST_F(GridMenuTest, CopyEntry_ShowsTheKeyThatDoesTheSame) {
  OpenMenuAt("Gain");

  EXPECT_EQ(FindAction(kCopyRowCommandID)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_C));
  EXPECT_TRUE(FindAction(kCopyRowCommandID)->isShortcutVisibleInContextMenu());
  EXPECT_TRUE(FindAction(kCopyNameAndValueCommandID)->shortcut().isEmpty());
  CloseMenu();
  Press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "Gain = 0 dB");
}

TEST_F(GridMenuTest, MenuKeyOnARowOffTheScreen_BringsItIntoView) {
  mGrid->resize(500, 60);
  mGrid->Select(Item("Empty"));
  mGrid->verticalScrollBar()->setValue(0);
  ASSERT_FALSE(Row("Empty").intersects(mGrid->viewport()->rect()));

  Press(Qt::Key_F10, Qt::ShiftModifier);

  ASSERT_NE(FindOpenMenu(), nullptr);
  EXPECT_TRUE(mGrid->viewport()->rect().contains(Row("Empty")));
  EXPECT_EQ(FindOpenMenu()->pos(), mGrid->viewport()->mapToGlobal(Row("Empty").center()));
  CloseMenu();
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

TEST_F(GridMenuTest, ToolTip_OfWhateverADeviceSends_IsPlainText) {
  const struct {
    const char* name;
    std::u16string text;
    std::u16string expected;
  } rows[] = {
      {"a picture", u"<img src=\"file:///x.png\">", u"<img src=\"file:///x.png\">"},
      {"an entity", u"1 &lt; 2 & 3", u"1 &lt; 2 & 3"},
      {"a tag that closes the text's", u"a</qt></p><b>b", u"a</qt></p><b>b"},
      {"an override", u"a\u202Etxt.exe\u202Cb", u"a txt.exe b"},
      {"isolates and embeddings", u"a\u2066b\u2069c\u202Ad", u"a b c d"},
      {"control characters", u"a\u0001b\u0007c\u009Bd", u"a b c d"},
      {"lines of either kind", u"one\r\ntwo\nthree", u"one\ntwo\nthree"},
      {"an empty line", u"one\n\ntwo", u"one\n\ntwo"},
      {"a separator of lines", u"one\u2028two", u"one two"},
      {"right to left", u"\u05E9\u05DC\u05D5\u05DD", u"\u05E9\u05DC\u05D5\u05DD"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    Node("Broken").SetError(KrString(row.text));

    const QString shown = AskToolTip(PointIn("Broken", 210));

    EXPECT_TRUE(Qt::mightBeRichText(shown)) << "else it would be taken letter by letter only where it looks so";
    EXPECT_EQ(ToShownText(shown).toStdU16String(), row.expected);
    for (const char16_t unwanted : {u'\u202E', u'\u202C', u'\u2066', u'\u2069', u'\u202A', u'\u0007'})
      EXPECT_FALSE(shown.contains(QChar(unwanted))) << static_cast<int>(unwanted);
  }
}

TEST_F(GridMenuTest, ToolTip_OverTheErrorIconIsTheError) {
  const QString overIcon = AskToolTip(PointIn("Broken", 210));
  const QString beside = AskToolTip(PointIn("Broken", 100));

  EXPECT_TRUE(overIcon.contains("The register is gone")) << overIcon.toStdString();
  EXPECT_EQ(ToShownText(overIcon), ToQString(Node("Broken").GetError()));
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
