// The combo box's drop-down list: how large it is, and that it opens and hides.

#include "browser/genbrowsercombobox.h"

#include "logic/browser/rowgeometry.h"
#include "platform/ctooltiplistctrl.h"
#include "windowwait.h"

#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>

#include <string>

namespace krgui {

namespace {

class GenBrowserComboBoxTest : public testing::Test {
protected:
  GenBrowserComboBoxTest() {
    window.setGeometry(50, 10, 300, 100);
    combo->setGeometry(10, 10, 80, 22);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(krtest::AwaitActive(&window));
  }

  void SetChoices(int aCount, const std::string& aText = "Item") {
    Choices choices;
    for (int i = 0; i < aCount; ++i) {
      choices.items.push_back({aText + std::to_string(i), i, "Tip " + std::to_string(i)});
    }
    choices.selected = aCount - 1;
    combo->SetChoices(choices);
  }
  int ItemHeight() { return combo->GetList().visualRect(combo->GetList().model()->index(0, 0)).height(); }

  QWidget window;
  GenBrowserComboBox* combo = new GenBrowserComboBox(&window);
};

TEST_F(GenBrowserComboBoxTest, Choices_AreItemsWithTooltipsAndTheCurrentOne) {
  SetChoices(3);

  EXPECT_EQ(combo->count(), 3);
  EXPECT_EQ(combo->currentText(), "Item2");
  EXPECT_EQ(combo->GetList().GetToolText(1), "Tip 0");
}

TEST_F(GenBrowserComboBoxTest, TextsOfADevice_AreOneLineOfALimitedLength) {
  Choices choices;
  choices.items = {{"a\nb\x1B\u202Ec", 1, ""}, {std::string(1'000'000, 'x'), 2, ""}};
  combo->SetChoices(choices);

  EXPECT_EQ(combo->itemText(0), "a b  c");
  EXPECT_EQ(combo->itemText(1), QString(1023, 'x'));
}

TEST_F(GenBrowserComboBoxTest, FewerChoicesAfterMore_KeepNoTooltipOfTheOthers) {
  SetChoices(3);
  Choices choices;
  choices.items = {{"A", 1, ""}};
  combo->SetChoices(choices);

  EXPECT_EQ(combo->currentIndex(), -1);
  EXPECT_EQ(combo->GetList().GetToolText(1), "");
}

TEST_F(GenBrowserComboBoxTest, SecondRequest_HidesTheList) {
  SetChoices(3);
  combo->showPopup();
  EXPECT_TRUE(combo->IsListOpen());

  combo->showPopup();

  EXPECT_FALSE(combo->IsListOpen());
}

TEST_F(GenBrowserComboBoxTest, NoChoices_OpenNoList) {
  SetChoices(0);
  combo->showPopup();

  EXPECT_FALSE(combo->IsListOpen());
}

TEST_F(GenBrowserComboBoxTest, LongestItem_IsAsWideAsTheList) {
  SetChoices(2, "A long name of an entry that needs room ");
  combo->showPopup();

  const CTooltipListCtrl& list = combo->GetList();
  EXPECT_GT(list.width(), combo->width());
  EXPECT_GE(list.viewport()->width(), list.fontMetrics().horizontalAdvance(combo->itemText(0)));
}

TEST_F(GenBrowserComboBoxTest, LongItems_AreNotCutWhateverTheFont) {
  for (const double size : {7.3, 8.7, 9.1, 10.3, 11.9, 13.7}) {
    SCOPED_TRACE(size);
    QFont font = combo->font();
    font.setPointSizeF(size);
    font.setHintingPreference(QFont::PreferNoHinting);
    combo->setFont(font);
    for (const char* text : {"A long name of an entry that needs room ", "ffififfiTaVoWAjjilli", "BayerRG12Packed"}) {
      SetChoices(11, text);
      combo->showPopup();

      const CTooltipListCtrl& list = combo->GetList();
      EXPECT_GE(list.viewport()->width(), list.sizeHintForColumn(0)) << text;
      combo->hidePopup();
    }
  }
}

TEST_F(GenBrowserComboBoxTest, ShortItems_LeaveTheListAsWideAsTheComboBox) {
  SetChoices(2, "A");
  combo->showPopup();

  EXPECT_EQ(combo->GetList().width(), combo->width());
}

TEST_F(GenBrowserComboBoxTest, FewItems_AreAllSeenWithoutScrolling) {
  SetChoices(5);
  combo->showPopup();

  EXPECT_EQ(combo->GetList().viewport()->height(), 5 * ItemHeight());
}

TEST_F(GenBrowserComboBoxTest, AThousandItems_FitTheScreenAndShowTheChosenOne) {
  SetChoices(1000);
  combo->showPopup();

  const CTooltipListCtrl& list = combo->GetList();
  EXPECT_LE(list.height(), GetChoiceListHeight(1000, ItemHeight()) + 4);
  EXPECT_TRUE(list.screen()->availableGeometry().contains(list.geometry()));
  EXPECT_TRUE(list.viewport()->rect().contains(list.visualRect(list.currentIndex())));
  EXPECT_EQ(list.currentIndex().row(), 999);
}

TEST_F(GenBrowserComboBoxTest, RightToLeft_ListEndsAtTheComboBoxsRightEdge) {
  combo->setLayoutDirection(Qt::RightToLeft);
  combo->move(210, 10);
  SetChoices(2, "A long name of an entry that needs room ");
  combo->showPopup();

  EXPECT_EQ(combo->GetList().geometry().right(), combo->mapToGlobal(combo->rect().bottomRight()).x());
}

} // namespace

} // namespace krgui
