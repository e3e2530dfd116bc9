// What the property grid tells assistive technology of, while some listens.

#include "gridfixture.h"
#include "windowwait.h"

#include <QAccessible>
#include <QScrollBar>

#include <gmock/gmock.h>

#include <algorithm>
#include <vector>

namespace krgui {

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

struct Told {
  QAccessible::Event event;
  std::string name; ///< Of the cell; empty for the grid.
  int column = -1;  ///< Of the cell.
  std::string what; ///< The states, the kind of a change of rows.
  friend bool operator==(const Told&, const Told&) = default;
  friend void PrintTo(const Told& aTold, std::ostream* aStream) {
    *aStream << std::hex << aTold.event << " " << aTold.name << " " << aTold.column << " " << aTold.what;
  }
};

std::vector<Told> told;
const QObject* listenedTo = nullptr;

std::string NameStates(const QAccessible::State& aState) {
  std::string names;
  const auto add = [&names](bool aIsSet, const char* aName) { names += aIsSet ? std::string(" ") + aName : ""; };
  add(aState.disabled, "disabled");
  add(aState.readOnly, "readOnly");
  add(aState.editable, "editable");
  add(aState.expanded, "expanded");
  return names.empty() ? names : names.substr(1);
}

std::string NameChange(const QAccessibleTableModelChangeEvent& aEvent) {
  const std::string rows = " " + std::to_string(aEvent.firstRow()) + " to " + std::to_string(aEvent.lastRow());
  switch (aEvent.modelChangeType()) {
  case QAccessibleTableModelChangeEvent::ModelReset:
    return "reset";
  case QAccessibleTableModelChangeEvent::RowsInserted:
    return "inserted" + rows;
  case QAccessibleTableModelChangeEvent::RowsRemoved:
    return "removed" + rows;
  default:
    return "other";
  }
}

/// Looks at the object at once, as a bridge to assistive technology does.
void Listen(QAccessibleEvent* aEvent) {
  if (aEvent->object() != listenedTo)
    return;
  Told each{.event = aEvent->type(), .name = {}, .column = -1, .what = {}};
  QAccessibleInterface* accessible = aEvent->accessibleInterface();
  if (accessible != nullptr && accessible->tableCellInterface() != nullptr) {
    each.column = accessible->tableCellInterface()->columnIndex();
    const QList<QAccessibleInterface*> row = accessible->tableCellInterface()->rowHeaderCells();
    each.name = (row.isEmpty() ? accessible : row.front())->text(QAccessible::Name).toStdString();
  }
  if (each.event == QAccessible::StateChanged)
    each.what = NameStates(static_cast<QAccessibleStateChangeEvent*>(aEvent)->changedStates());
  if (each.event == QAccessible::TableModelChanged)
    each.what = NameChange(*static_cast<QAccessibleTableModelChangeEvent*>(aEvent));
  told.push_back(each);
}

class GridAccessibleEvents : public GridTest {
protected:
  void SetUp() override {
    ASSERT_TRUE(krtest::AwaitCondition([] { return QAccessible::isActive(); })) << "Nobody listens.";
    Fill();
    Show();
    ReadAll();
    mBefore = QAccessible::installUpdateHandler(Listen);
    listenedTo = mGrid.get();
    told.clear();
  }
  void TearDown() override {
    QAccessible::installUpdateHandler(mBefore);
    listenedTo = nullptr;
  }
  /// As what reads the window aloud does once.
  void LookAtAll() {
    QAccessibleInterface* grid = QAccessible::queryAccessibleInterface(mGrid.get());
    for (int index = 0; index < grid->childCount(); ++index)
      ASSERT_NE(grid->child(index), nullptr);
  }
  /// The device has another value, and the feature's node has read it: here or on the thread that hears of it.
  /// A blank stands before the unit that it has not.
  void ChangeByDevice(std::uint64_t aAddress, std::int64_t aValue, const char* aName, const std::string& aShown) {
    ASSERT_TRUE(mCamera.memory.Write(aAddress, &aValue, sizeof(aValue), 1000).IsOK());
    mCamera.array->InvalidateCache();
    Node(aName).Refresh();
    ASSERT_TRUE(krtest::AwaitCondition([&] { return Node(aName).GetSnapshot().value.ToUtf8() == aShown + " "; }));
    Settle();
  }
  void ExpectTold(const Told& aTold) {
    EXPECT_TRUE(krtest::AwaitCondition([&] { return std::find(told.begin(), told.end(), aTold) != told.end(); }))
        << testing::PrintToString(aTold) << " is not among " << testing::PrintToString(told);
  }

  QAccessible::UpdateHandler mBefore = nullptr;
};

} // namespace

TEST_F(GridAccessibleEvents, SelectedRow_IsToldWithTheFocus) {
  mGrid->Select(Item("Fixed"));

  EXPECT_THAT(told, Contains(Told{QAccessible::SelectionAdd, "Fixed", 0, {}}));
  EXPECT_THAT(told, Contains(Told{QAccessible::Focus, "Fixed", 0, {}}));
  told.clear();

  mGrid->clearFocus();
  mGrid->setFocus();
  EXPECT_THAT(told, Contains(Told{QAccessible::Focus, "Fixed", 0, {}}));
}

TEST_F(GridAccessibleEvents, ValueThatTheDeviceChanges_IsToldOfItsCell) {
  ChangeByDevice(0x20, 42, "Plain", "42");
  ExpectTold(Told{QAccessible::NameChanged, "Plain", 1, {}});

  LookAtAll();
  told.clear();
  ChangeByDevice(0x20, 43, "Plain", "43");
  ExpectTold(Told{QAccessible::NameChanged, "Plain", 1, {}});
  EXPECT_EQ(told.size(), 1U);

  told.clear();
  ChangeByDevice(0x20, 43, "Plain", "43");
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(GridAccessibleEvents, RowOffTheScreen_IsToldOfToWhoHasLookedAtIt) {
  mGrid->resize(500, 100);
  Fill();
  ReadAll();
  ASSERT_FALSE(Row("Plain").intersects(mGrid->viewport()->rect()));
  told.clear();
  ChangeByDevice(0x20, 42, "Plain", "42");
  EXPECT_THAT(told, IsEmpty());

  LookAtAll();
  ChangeByDevice(0x20, 43, "Plain", "43");
  ExpectTold(Told{QAccessible::NameChanged, "Plain", 1, {}});
}

TEST_F(GridAccessibleEvents, FeatureThatBecomesAvailable_IsToldAsStatesAndDescription) {
  LookAtAll();
  const std::int64_t has = 1;
  ASSERT_TRUE(mCamera.memory.Write(0x18, &has, sizeof(has), 1000).IsOK());
  mCamera.array->InvalidateCache();

  Node("Missing").Refresh();
  Settle();

  ExpectTold(Told{QAccessible::StateChanged, "Missing", 0, "disabled readOnly"});
  ExpectTold(Told{QAccessible::StateChanged, "Missing", 1, "disabled readOnly editable"});
  ExpectTold(Told{QAccessible::DescriptionChanged, "Missing", 1, {}});
  ExpectTold(Told{QAccessible::NameChanged, "Missing", 1, {}});
}

TEST_F(GridAccessibleEvents, Error_IsToldAsDescription) {
  LookAtAll();
  Node("Plain").SetError("Wrong");
  mGrid->GetQueue()->PostOnce({kRowChangedMessage, Item("Plain"), 0});

  Settle();

  ExpectTold(Told{QAccessible::DescriptionChanged, "Plain", 1, {}});
}

TEST_F(GridAccessibleEvents, CategoryThatIsClosedAndOpened_IsToldWithItsRows) {
  mGrid->SetOpen(Item("DeviceControl"), false);

  EXPECT_THAT(told, Contains(Told{QAccessible::StateChanged, "DeviceControl", 0, "expanded"}));
  EXPECT_THAT(told, Contains(Told{QAccessible::TableModelChanged, "", -1, "removed 5 to 11"}));
  told.clear();

  mGrid->SetOpen(Item("DeviceControl"), true);
  EXPECT_THAT(told, Contains(Told{QAccessible::StateChanged, "DeviceControl", 0, "expanded"}));
  EXPECT_THAT(told, Contains(Told{QAccessible::TableModelChanged, "", -1, "inserted 5 to 11"}));
}

TEST_F(GridAccessibleEvents, SelectedRowInAClosedCategory_TellsThatThatOpens) {
  mGrid->SetOpen(Item("Analog"), false);
  told.clear();

  mGrid->Select(Item("Gain"));

  EXPECT_THAT(told, Contains(Told{QAccessible::StateChanged, "Analog", 0, "expanded"}));
  EXPECT_THAT(told, Contains(Told{QAccessible::Focus, "Gain", 0, {}}));
}

TEST_F(GridAccessibleEvents, AllCategoriesAtOnce_AreToldOnce) {
  for (const bool isOpen : {false, true}) {
    told.clear();
    if (isOpen)
      mGrid->ExpandAll();
    else
      mGrid->CollapseAll();

    EXPECT_EQ(std::count(told.begin(), told.end(), Told{QAccessible::TableModelChanged, "", -1, "reset"}), 1) << isOpen;
    EXPECT_LE(told.size(), 4U) << isOpen;
  }
}

TEST_F(GridAccessibleEvents, AnotherFilling_IsTold) {
  Fill();

  EXPECT_THAT(told, Contains(Told{QAccessible::TableModelChanged, "", -1, "reset"}));
}

TEST_F(GridAccessibleEvents, EndOfTheGrid_IsOutlivedByWhoeverLooksAtIt) {
  LookAtAll();
  mGrid->Select(Item("Plain"));
  Settle();
  told.clear();

  mGrid.reset();

  EXPECT_THAT(told, Not(IsEmpty()));
}

} // namespace krgui
