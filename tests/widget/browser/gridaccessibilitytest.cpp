// The property grid as assistive technology reads it, in process.

#include "gridfixture.h"

#include <QAccessible>

namespace krgui {

namespace {

class GridAccessibilityTest : public GridTest {
protected:
  static constexpr int kNameColumn = 0;
  static constexpr int kValueColumn = 1;

  void SetUp() override {
    Fill();
    Show();
    ReadAll();
    mAccessible = QAccessible::queryAccessibleInterface(mGrid.get());
    ASSERT_NE(mAccessible, nullptr);
    mTable = mAccessible->tableInterface();
    ASSERT_NE(mTable, nullptr);
  }
  int FindRow(const std::string& aName) const {
    for (int row = 0; row < mTable->rowCount(); ++row) {
      if (mTable->cellAt(row, kNameColumn)->text(QAccessible::Name).toStdString() == aName)
        return row;
    }
    return -1;
  }
  QAccessibleInterface& Cell(const std::string& aName, int aColumn) const {
    return *mTable->cellAt(FindRow(aName), aColumn);
  }
  std::string Text(const std::string& aName, int aColumn, QAccessible::Text aText = QAccessible::Name) const {
    return Cell(aName, aColumn).text(aText).toStdString();
  }

  QAccessibleInterface* mAccessible = nullptr;
  QAccessibleTableInterface* mTable = nullptr;
};

} // namespace

TEST_F(GridAccessibilityTest, Grid_IsATreeOfItsOpenRowsWithTwoColumns) {
  EXPECT_EQ(mAccessible->role(), QAccessible::Tree);
  EXPECT_EQ(mAccessible->text(QAccessible::Name), "Features");
  EXPECT_EQ(mTable->rowCount(), 13);
  EXPECT_EQ(mTable->columnCount(), 2);
  EXPECT_EQ(mTable->columnDescription(0), "Name");
  EXPECT_EQ(mTable->columnDescription(1), "Value");

  mGrid->SetOpen(Item("DeviceControl"), false);

  EXPECT_EQ(mTable->rowCount(), 6);
}

TEST_F(GridAccessibilityTest, Cells_SayNameAndValue) {
  EXPECT_EQ(Text("Gain", kNameColumn), "Gain");
  EXPECT_EQ(Text("Gain", kValueColumn), "0 dB");
  EXPECT_EQ(Text("Gain", kValueColumn, QAccessible::Value), "0 dB");
  EXPECT_EQ(Text("Missing", kValueColumn), "{Not available}");
  EXPECT_EQ(Text("Analog", kValueColumn), "");
  EXPECT_EQ(Cell("Gain", kNameColumn).role(), QAccessible::TreeItem);
  EXPECT_EQ(Cell("Gain", kValueColumn).role(), QAccessible::Cell);
}

TEST_F(GridAccessibilityTest, States_SayWhatCanBeDone) {
  const QAccessible::State writable = Cell("Plain", kValueColumn).state();
  EXPECT_TRUE(writable.editable);
  EXPECT_FALSE(writable.readOnly);
  EXPECT_FALSE(writable.disabled);

  const QAccessible::State fixed = Cell("Fixed", kValueColumn).state();
  EXPECT_FALSE(fixed.editable);
  EXPECT_TRUE(fixed.readOnly);
  EXPECT_FALSE(fixed.disabled);

  for (const char* name : {"Missing", "Absent"}) {
    const QAccessible::State away = Cell(name, kValueColumn).state();
    EXPECT_TRUE(away.readOnly) << name;
    EXPECT_TRUE(away.disabled) << name;
  }
}

TEST_F(GridAccessibilityTest, Categories_SayWhetherTheyAreOpen) {
  EXPECT_TRUE(Cell("Analog", kNameColumn).state().expanded);
  EXPECT_TRUE(Cell("Analog", kNameColumn).state().expandable);
  EXPECT_FALSE(Cell("Gain", kNameColumn).state().expandable);
  EXPECT_FALSE(Cell("Empty", kNameColumn).state().expandable);

  QAccessibleActionInterface* actions = Cell("Analog", kNameColumn).actionInterface();
  ASSERT_NE(actions, nullptr);
  ASSERT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::toggleAction()));
  actions->doAction(QAccessibleActionInterface::toggleAction());

  EXPECT_FALSE(IsOpen("Analog"));
  EXPECT_TRUE(Cell("Analog", kNameColumn).state().collapsed);
  EXPECT_FALSE(Cell("Analog", kNameColumn).state().expanded);
}

TEST_F(GridAccessibilityTest, Errors_AreInTheDescription) {
  EXPECT_EQ(Text("Broken", kValueColumn, QAccessible::Description), Node("Broken").GetError().ToUtf8());
  EXPECT_EQ(Text("Plain", kValueColumn, QAccessible::Description), "");
}

TEST_F(GridAccessibilityTest, WhyAFeatureIsLimited_IsInDescriptionAndHelpOfBothCells) {
  const std::string reason = Node("Missing").GetAccessReason().ToUtf8();
  ASSERT_FALSE(reason.empty());
  (void)CountReads(mCamera.port);

  for (const int column : {kNameColumn, kValueColumn}) {
    EXPECT_EQ(Text("Missing", column, QAccessible::Description), reason);
    EXPECT_EQ(Text("Missing", column, QAccessible::Help), "Not here\n\n" + reason);
    EXPECT_EQ(Text("Gain", column, QAccessible::Help), "How much <b>light</b>");
    EXPECT_EQ(Text("Analog", column, QAccessible::Help), "All that is analog");
  }
  EXPECT_EQ(CountReads(mCamera.port), 0U);
}

TEST_F(GridAccessibilityTest, Selection_IsSaidByCellAndTable) {
  EXPECT_EQ(mTable->selectedRowCount(), 0);

  mGrid->Select(Item("Fixed"));

  EXPECT_TRUE(Cell("Fixed", kNameColumn).state().selected);
  EXPECT_TRUE(Cell("Fixed", kNameColumn).state().focused);
  EXPECT_EQ(mTable->selectedRows(), QList<int>{FindRow("Fixed")});
  ASSERT_NE(mAccessible->focusChild(), nullptr);
  EXPECT_EQ(mAccessible->focusChild()->text(QAccessible::Name), "Fixed");

  EXPECT_TRUE(mTable->selectRow(FindRow("Gain")));
  EXPECT_EQ(GetSelectedName(), "Gain");
}

TEST_F(GridAccessibilityTest, Children_AreNumberedAsTheViewsOwnNotificationsCount) {
  EXPECT_EQ(mAccessible->childCount(), 2 + 13 * 2);
  EXPECT_EQ(mAccessible->child(0)->text(QAccessible::Name), "Name");
  EXPECT_EQ(mAccessible->child(0)->role(), QAccessible::ColumnHeader);
  for (int index = 0; index < mAccessible->childCount(); ++index)
    EXPECT_EQ(mAccessible->indexOfChild(mAccessible->child(index)), index);
  QAccessibleTableCellInterface* cell = Cell("Fixed", kValueColumn).tableCellInterface();
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->rowIndex(), 3);
  EXPECT_EQ(cell->columnIndex(), 1);
  ASSERT_EQ(cell->rowHeaderCells().size(), 1);
  EXPECT_EQ(cell->rowHeaderCells().front()->text(QAccessible::Name), "Fixed");
  EXPECT_EQ(mAccessible->child(-1), nullptr);
  EXPECT_EQ(mAccessible->child(28), nullptr);
}

TEST_F(GridAccessibilityTest, Places_AreThoseOfTheRowsOnTheScreen) {
  const QRect place = Cell("Plain", kValueColumn).rect();

  EXPECT_EQ(place.top(), mGrid->viewport()->mapToGlobal(Row("Plain").topLeft()).y());
  EXPECT_EQ(place.left(), mGrid->viewport()->mapToGlobal(QPoint(220, 0)).x());
  EXPECT_EQ(mAccessible->childAt(place.center().x(), place.center().y()), &Cell("Plain", kValueColumn));
}

TEST_F(GridAccessibilityTest, OpenEditor_IsNamedAfterItsFeatureAndIsInTheValueCell) {
  mGrid->Select(Item("Plain"));
  Settle();
  ASSERT_EQ(mGrid->GetEdited(), Item("Plain"));

  QAccessibleInterface& cell = Cell("Plain", kValueColumn);

  ASSERT_GT(cell.childCount(), 0);
  EXPECT_EQ(cell.child(0)->text(QAccessible::Name), "Plain");
  EXPECT_EQ(Cell("Gain", kValueColumn).childCount(), 0);
}

TEST_F(GridAccessibilityTest, CellsOfAnEarlierFilling_AreNotValid) {
  const QAccessible::Id id = QAccessible::uniqueId(&Cell("Plain", kValueColumn));

  Fill();

  QAccessibleInterface* old = QAccessible::accessibleInterface(id);
  EXPECT_TRUE(old == nullptr || !old->isValid());
  EXPECT_EQ(mTable->rowCount(), 13);
  EXPECT_EQ(Text("Plain", kNameColumn), "Plain");
}

} // namespace krgui
