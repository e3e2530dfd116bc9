// The letters by which Alt reaches what a window shows: two that are there together never share one.

#include "viewerfixture.h"
#include "window/mnemonics.h"

#include <QGroupBox>
#include <QMenu>
#include <QMenuBar>

#include <map>

using krviewer::GetMnemonic;
using krviewer::Panel;

namespace {

/// Which texts have a letter.
using Letters = std::map<QChar, QStringList>;

class ViewerMnemonicsTest : public ViewerTest {
protected:
  static void Note(const QString& aText, Letters& aLetters) {
    if (const QChar letter = GetMnemonic(aText); !letter.isNull())
      aLetters[letter] += aText;
  }
  static Letters GetMenuLetters(const QWidget& aMenu) {
    Letters letters;
    for (const QAction* const action : aMenu.actions())
      Note(action->text(), letters);
    return letters;
  }
  /// Of all controls that can be reached now, beside the menus'.
  static Letters GetWindowLetters(const QMainWindow& aWindow) {
    Letters letters = GetMenuLetters(*aWindow.menuBar());
    for (const auto* const button : aWindow.findChildren<QAbstractButton*>())
      if (button->isVisible())
        Note(button->text(), letters);
    for (const auto* const label : aWindow.findChildren<QLabel*>())
      if (label->isVisible() && label->buddy())
        Note(label->text(), letters);
    for (const auto* const group : aWindow.findChildren<QGroupBox*>())
      if (group->isVisible())
        Note(group->title(), letters);
    return letters;
  }
  static void ExpectEachOnce(const Letters& aLetters, const std::string& aWhere) {
    EXPECT_FALSE(aLetters.empty()) << aWhere;
    for (const auto& [letter, texts] : aLetters)
      EXPECT_EQ(texts.size(), 1) << aWhere << ": " << texts.join(" and ").toStdString();
  }
};

} // namespace

TEST_F(ViewerMnemonicsTest, FirstPage_SharesNoLetterWithTheMenus) {
  Begin();

  const Letters letters = GetWindowLetters(GetWindow());

  ExpectEachOnce(letters, "first page");
  EXPECT_GT(letters.size(), GetMenuLetters(*GetWindow().menuBar()).size());
}

TEST_F(ViewerMnemonicsTest, Menus_HaveEachLetterOnce) {
  Begin();
  OpenStreaming();

  int menus = 0;
  for (const auto* const menu : GetWindow().menuBar()->findChildren<QMenu*>()) {
    ExpectEachOnce(GetMenuLetters(*menu), menu->title().toStdString());
    ++menus;
  }
  EXPECT_GE(menus, 5);
}

TEST_F(ViewerMnemonicsTest, RecentCameras_AreReachedByTheirNumbers) {
  Begin();
  Open(kColourMAC);
  Open(kMonoMAC);

  const auto menus = GetWindow().menuBar()->findChildren<QMenu*>();
  const auto recent =
      std::ranges::find_if(menus, [](const QMenu* aMenu) { return aMenu->title() == "&Recent Cameras"; });

  ASSERT_NE(recent, menus.end());
  EXPECT_TRUE((*recent)->actions().at(0)->text().startsWith("&1  Simulated Mono Camera"));
  EXPECT_TRUE((*recent)->actions().at(1)->text().startsWith("&2  Simulated Colour Camera"));
}

TEST_F(ViewerMnemonicsTest, AllPanelsAndTheRegionsBar_ShareNoLetter) {
  Begin();
  OpenStreaming();
  for (const Panel panel : {Panel::Features, Panel::StreamFeatures, Panel::TransportFeatures, Panel::Histogram,
                            Panel::LineProfile, Panel::Intervals, Panel::Recording})
    GetPage()->GetPanels().Show(panel, true);
  ASSERT_TRUE(Await([this] { return GetPage()->GetDisplay().GetMapping().has_value(); }));
  GetPage()->GetRegion().Begin();
  ASSERT_TRUE(Await([this] { return GetPage()->GetRegion().IsEditing(); }));

  const Letters letters = GetWindowLetters(GetWindow());

  ExpectEachOnce(letters, "page");
  EXPECT_GT(letters.size(), 15U);
}

TEST_F(ViewerMnemonicsTest, MessageWithButtons_SharesNoLetterWithWhatIsAroundIt) {
  Begin();
  Open(kForeignMAC);
  ASSERT_TRUE(Await([this] { return FindButton(*GetPage(), "Try Again") != nullptr; }));

  const Letters letters = GetWindowLetters(GetWindow());

  ExpectEachOnce(letters, "message");
  EXPECT_FALSE(GetMnemonic(FindButton(*GetPage(), "Try Again")->text()).isNull());
}
