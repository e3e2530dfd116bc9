// The drop-down list with tooltips, opened by its combo box and used by mouse and keys.

#include "platform/ctooltiplistctrl.h"
#include "platform/plainline.h"
#include "platform/tooltipcombobox.h"
#include "windowwait.h"

#include <QApplication>
#include <QCursor>
#include <QHelpEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QToolTip>

#include <gtest/gtest.h>

namespace krgui {

namespace {

class TooltipListTest : public testing::Test {
protected:
  TooltipListTest() {
    window.setGeometry(100, 100, 300, 200);
    combo->setGeometry(20, 20, 150, 24);
    other->setGeometry(20, 150, 100, 30);
    AddItems(4);
    combo->setCurrentIndex(1);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(krtest::AwaitActive(&window));
    // Away from everything, so that only a test that wants it has the pointer over the combo box.
    QCursor::setPos(window.mapToGlobal(QPoint(290, 190)));
    combo->setFocus();
  }

  void AddItems(int aCount) {
    combo->clear();
    for (int item = 0; item < aCount; ++item) {
      combo->addItem(QStringLiteral("Item %1").arg(item));
    }
  }
  CTooltipListCtrl& Open() {
    combo->showPopup();
    EXPECT_TRUE(combo->GetList().isVisible());
    return combo->GetList();
  }
  QPoint GetCenter(int aItem) {
    CTooltipListCtrl& list = combo->GetList();
    return list.visualRect(list.model()->index(aItem, 0)).center();
  }
  void Press(Qt::Key aKey) { QTest::keyClick(&combo->GetList(), aKey); }
  void PressOnItem(int aItem) { QTest::mousePress(combo->GetList().viewport(), Qt::LeftButton, {}, GetCenter(aItem)); }
  int CountNotifications() {
    QCoreApplication::processEvents();
    return static_cast<int>(notified.count());
  }

  QWidget window;
  TooltipComboBox* combo = new TooltipComboBox(&window);
  QPushButton* other = new QPushButton(&window);
  QSignalSpy notified{&combo->GetList(), &CTooltipListCtrl::SelectionChanged};
};

// Opening.

TEST_F(TooltipListTest, ClickF4AndAltDown_OpenTheList) {
  QTest::mouseClick(combo, Qt::LeftButton);
  EXPECT_TRUE(combo->GetList().isVisible());
  Press(Qt::Key_Escape);
  QTest::keyClick(combo, Qt::Key_F4);
  EXPECT_TRUE(combo->GetList().isVisible());
  Press(Qt::Key_Escape);
  QTest::keyClick(combo, Qt::Key_Down, Qt::AltModifier);
  EXPECT_TRUE(combo->GetList().isVisible());
}

TEST_F(TooltipListTest, Opened_ShowsTheComboBoxsTextsAndItsChoice) {
  CTooltipListCtrl& list = Open();

  ASSERT_EQ(list.model()->rowCount(), 4);
  EXPECT_EQ(list.model()->index(2, 0).data().toString(), QStringLiteral("Item 2"));
  EXPECT_EQ(list.currentIndex().row(), 1);
  combo->setItemText(2, QStringLiteral("Another"));
  EXPECT_EQ(list.model()->index(2, 0).data().toString(), QStringLiteral("Another")) << "it keeps no texts";
}

TEST_F(TooltipListTest, WithoutItems_DoesNotOpen) {
  combo->clear();

  combo->showPopup();

  EXPECT_FALSE(combo->GetList().isVisible());
}

TEST_F(TooltipListTest, Opened_IsBelowTheComboBoxAndHoldsAllItems) {
  CTooltipListCtrl& list = Open();

  EXPECT_EQ(list.pos(), combo->mapToGlobal(QPoint(0, combo->height())));
  EXPECT_EQ(list.width(), combo->width());
  EXPECT_EQ(list.viewport()->height(), 4 * list.sizeHintForRow(0));
  EXPECT_FALSE(list.verticalScrollBar()->isVisible());
}

TEST_F(TooltipListTest, MoreItemsThanFit_ShowsWholeItemsAndTheChosenOne) {
  AddItems(100);
  combo->setCurrentIndex(73);
  CTooltipListCtrl& list = Open();
  const int itemHeight = list.sizeHintForRow(0);

  EXPECT_EQ(list.viewport()->height() % itemHeight, 0);
  EXPECT_EQ(list.viewport()->height() / itemHeight, combo->maxVisibleItems());
  EXPECT_TRUE(list.verticalScrollBar()->isVisible());
  EXPECT_TRUE(list.viewport()->rect().contains(list.visualRect(list.model()->index(73, 0))));
}

TEST_F(TooltipListTest, ChoiceThatIsInViewAnyway_DoesNotScroll) {
  AddItems(100);
  combo->setCurrentIndex(combo->maxVisibleItems() - 1);

  CTooltipListCtrl& list = Open();

  EXPECT_EQ(list.verticalScrollBar()->value(), 0);
}

TEST_F(TooltipListTest, NearTheScreensBottom_OpensAboveTheComboBox) {
  const QRect screen = window.screen()->availableGeometry();
  window.move(100, screen.bottom() - 60);

  CTooltipListCtrl& list = Open();

  EXPECT_EQ(list.geometry().bottom() + 1, combo->mapToGlobal(QPoint()).y());
}

// Mouse and keys.

TEST_F(TooltipListTest, PointerOverAnItem_SelectsIt) {
  CTooltipListCtrl& list = Open();

  QTest::mouseMove(list.viewport(), GetCenter(3));
  QCoreApplication::processEvents();

  EXPECT_EQ(list.currentIndex().row(), 3);
  EXPECT_EQ(combo->currentIndex(), 1) << "not chosen yet";
}

TEST_F(TooltipListTest, LeftButtonOnAnItem_ChoosesItAndTellsAfterwards) {
  CTooltipListCtrl& list = Open();

  PressOnItem(2);

  EXPECT_FALSE(list.isVisible());
  EXPECT_EQ(combo->currentIndex(), 2);
  EXPECT_EQ(notified.count(), 0) << "posted";
  EXPECT_EQ(CountNotifications(), 1);
  EXPECT_EQ(window.focusWidget(), combo);
}

TEST_F(TooltipListTest, RightButtonOnAnItem_ChoosesNothing) {
  CTooltipListCtrl& list = Open();

  QTest::mousePress(list.viewport(), Qt::RightButton, {}, GetCenter(2));

  EXPECT_TRUE(list.isVisible());
  EXPECT_EQ(combo->currentIndex(), 1);
}

TEST_F(TooltipListTest, Enter_ChoosesTheSelectedItem) {
  Open();
  Press(Qt::Key_Down);

  Press(Qt::Key_Return);

  EXPECT_FALSE(combo->GetList().isVisible());
  EXPECT_EQ(combo->currentIndex(), 2);
  EXPECT_EQ(CountNotifications(), 1);
}

TEST_F(TooltipListTest, EnterWithThePointerOverTheComboBox_TellsAllTheSame) {
  QCursor::setPos(combo->mapToGlobal(combo->rect().center()));
  Open();
  Press(Qt::Key_Down);

  Press(Qt::Key_Return);

  EXPECT_EQ(combo->currentIndex(), 2);
  EXPECT_EQ(CountNotifications(), 1);
}

TEST_F(TooltipListTest, Escape_DropsTheChoice) {
  Open();
  Press(Qt::Key_Down);

  Press(Qt::Key_Escape);

  EXPECT_FALSE(combo->GetList().isVisible());
  EXPECT_EQ(combo->currentIndex(), 1);
  EXPECT_EQ(window.focusWidget(), combo);
  EXPECT_EQ(CountNotifications(), 1);
}

TEST_F(TooltipListTest, EscapeWithThePointerOverTheComboBox_TellsNothing) {
  QCursor::setPos(combo->mapToGlobal(combo->rect().center()));
  Open();

  Press(Qt::Key_Escape);

  EXPECT_EQ(CountNotifications(), 0);
}

TEST_F(TooltipListTest, KeysThatOpenedIt_CloseItAndDropTheChoice) {
  const struct {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
  } rows[] = {{Qt::Key_F4, {}}, {Qt::Key_Up, Qt::AltModifier}, {Qt::Key_Down, Qt::AltModifier}};
  for (const auto& row : rows) {
    CTooltipListCtrl& list = Open();
    Press(Qt::Key_Down);

    QTest::keyClick(&list, row.key, row.modifiers);

    EXPECT_FALSE(list.isVisible()) << row.key;
    EXPECT_EQ(combo->currentIndex(), 1) << row.key;
  }
}

void Disable(QComboBox& aComboBox, int aItem) {
  qobject_cast<QStandardItemModel*>(aComboBox.model())->item(aItem)->setEnabled(false);
}

TEST_F(TooltipListTest, DisabledItem_IsShownDisabledAndCannotBeChosen) {
  Disable(*combo, 2);
  CTooltipListCtrl& list = Open();

  EXPECT_FALSE(list.model()->flags(list.model()->index(2, 0)) & Qt::ItemIsEnabled);
  EXPECT_TRUE(list.model()->flags(list.model()->index(3, 0)) & Qt::ItemIsEnabled);
  QTest::mouseMove(list.viewport(), GetCenter(2));
  QCoreApplication::processEvents();
  EXPECT_EQ(list.currentIndex().row(), 1) << "the pointer does not select it";
  PressOnItem(2);
  EXPECT_TRUE(list.isVisible());
  Press(Qt::Key_Down);
  EXPECT_EQ(list.currentIndex().row(), 3) << "the keys pass it by";
  Press(Qt::Key_Return);

  EXPECT_EQ(combo->currentIndex(), 3);
}

TEST_F(TooltipListTest, LeftAndRight_ActAsUpAndDown) {
  CTooltipListCtrl& list = Open();

  Press(Qt::Key_Right);
  EXPECT_EQ(list.currentIndex().row(), 2);
  Press(Qt::Key_Left);
  Press(Qt::Key_Left);
  EXPECT_EQ(list.currentIndex().row(), 0);
}

TEST_F(TooltipListTest, ClickElsewhere_ClosesDropsAndTells) {
  CTooltipListCtrl& list = Open();
  Press(Qt::Key_Down);

  QTest::mousePress(&list, Qt::LeftButton, {}, list.mapFromGlobal(other->mapToGlobal(QPoint(5, 5))));

  EXPECT_FALSE(list.isVisible());
  EXPECT_EQ(combo->currentIndex(), 1);
  EXPECT_EQ(CountNotifications(), 1);
}

TEST_F(TooltipListTest, ClickOnTheComboBox_ClosesWithoutTelling) {
  CTooltipListCtrl& list = Open();
  QCursor::setPos(combo->mapToGlobal(combo->rect().center()));

  QTest::mousePress(&list, Qt::LeftButton, {}, list.mapFromGlobal(combo->mapToGlobal(combo->rect().center())));

  EXPECT_FALSE(list.isVisible());
  EXPECT_EQ(CountNotifications(), 0);
}

TEST_F(TooltipListTest, HiddenBySomebodyElse_ClosesOnceAndTells) {
  Open();

  combo->hidePopup();
  combo->hidePopup();

  EXPECT_EQ(CountNotifications(), 1);
}

TEST_F(TooltipListTest, ComboBoxDeletedWhileOpen_TakesTheListAlong) {
  Open();

  delete combo;
  QCoreApplication::processEvents();

  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

// Tooltips.

TEST_F(TooltipListTest, SetItemTooltip_GivesTheIndexOrMinusOne) {
  CTooltipListCtrl& list = combo->GetList();

  EXPECT_EQ(list.SetItemTooltip(3, QStringLiteral("last")), 3);
  EXPECT_EQ(list.SetItemTooltip(4, QStringLiteral("beyond")), -1);
  EXPECT_EQ(list.SetItemTooltip(-1, QStringLiteral("before")), -1);

  AddItems(5);
  EXPECT_EQ(list.GetToolText(5), QString()) << "nothing was stored";
  EXPECT_EQ(list.GetToolText(4), QStringLiteral("last"));
}

TEST_F(TooltipListTest, SetItemTooltipAgain_Replaces) {
  CTooltipListCtrl& list = combo->GetList();
  list.SetItemTooltip(0, QStringLiteral("first"));

  list.SetItemTooltip(0, QStringLiteral("second"));

  EXPECT_EQ(list.GetToolText(1), QStringLiteral("second"));
  EXPECT_EQ(list.GetToolText(0), QString());
  EXPECT_EQ(list.GetToolText(2), QString());
}

TEST_F(TooltipListTest, HitTest_IsTheSelectedItemPlusOne) {
  EXPECT_EQ(combo->GetList().HitTest(), std::nullopt);
  CTooltipListCtrl& list = Open();

  Press(Qt::Key_Down);

  EXPECT_EQ(list.HitTest(), (CTooltipListCtrl::ToolHit{3, list.visualRect(list.model()->index(2, 0))}));
}

struct LengthCase {
  const char* name;
  QString text;
  qsizetype length;
};

TEST_F(TooltipListTest, LongTooltip_IsCutTo1023CharactersAndToWholeOnes) {
  const QString emoji = QString::fromUtf8("\xF0\x9F\x98\x80");
  const LengthCase rows[] = {{"fits", QString(1023, QLatin1Char('a')), 1023},
                             {"one more", QString(1024, QLatin1Char('a')), 1023},
                             {"a pair at the cut", QString(1022, QLatin1Char('a')) + emoji, 1022},
                             {"a pair before it", QString(1021, QLatin1Char('a')) + emoji, 1023}};
  for (const LengthCase& row : rows) {
    combo->GetList().SetItemTooltip(0, row.text);

    EXPECT_EQ(combo->GetList().GetToolText(1), row.text.left(row.length)) << row.name;
  }
}

TEST_F(TooltipListTest, ScreenReader_FindsTheTooltipsOfTheItems) {
  CTooltipListCtrl& list = Open();
  list.SetItemTooltip(3, QStringLiteral("fast"));

  const auto getText = [&list](int aRow, int aRole) { return list.model()->index(aRow, 0).data(aRole).toString(); };
  EXPECT_EQ(getText(3, Qt::AccessibleDescriptionRole), QStringLiteral("fast"));
  EXPECT_EQ(getText(2, Qt::AccessibleDescriptionRole), QString());
  EXPECT_EQ(getText(3, Qt::ToolTipRole), krgui::ToPlainToolTip(QStringLiteral("fast"))) << "its reader guesses";
  EXPECT_EQ(getText(2, Qt::ToolTipRole), QString());
}

TEST_F(TooltipListTest, PointerRestsOnAnItem_ShowsItsTooltipAsPlainText) {
  CTooltipListCtrl& list = Open();
  list.SetItemTooltip(3, QStringLiteral("<i>fast</i>"));
  QTest::mouseMove(list.viewport(), GetCenter(3));
  QCoreApplication::processEvents();

  QHelpEvent help(QEvent::ToolTip, GetCenter(3), list.viewport()->mapToGlobal(GetCenter(3)));
  QApplication::sendEvent(list.viewport(), &help);

  EXPECT_EQ(QToolTip::text(),
            QStringLiteral("<qt><div style=\"white-space:pre-wrap\">&lt;i&gt;fast&lt;/i&gt;</div></qt>"));
  QToolTip::hideText();
}

} // namespace

} // namespace krgui
