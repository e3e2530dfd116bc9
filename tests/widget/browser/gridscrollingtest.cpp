// Ten thousand rows: only those on the screen are painted and marked, and no device is asked because of it.

#include "gridfixture.h"
#include "windowwait.h"

#include <QScrollBar>

#include <thread>

namespace krgui {

namespace {

constexpr int kFeatures = 10000;
constexpr int kCategories = 100;

std::string MakeManyFeatures() {
  std::string nodes = MakeInteger("Raw", 0x00);
  std::vector<std::string> categories;
  for (int category = 0; category < kCategories; ++category) {
    std::vector<std::string> features;
    for (int feature = category; feature < kFeatures; feature += kCategories) {
      const std::string name = "Feature" + std::to_string(feature);
      nodes += "<Integer Name=\"" + name + "\"><pValue>Raw</pValue></Integer>\n";
      features.push_back(name);
    }
    categories.push_back("Category" + std::to_string(category));
    nodes += MakeCategory(categories.back(), features);
  }
  return nodes + MakeCategory("Root", categories);
}

class GridScrollingTest : public testing::Test {
protected:
  void SetUp() override {
    mCamera.port.SetFault([this, here = std::this_thread::get_id()](const RegisterAccessRecord&) {
      // What the array looks at by itself, on a thread of its own, holds nobody up.
      if (std::this_thread::get_id() == here)
        ++mAccesses;
      return KrResult();
    });
    mGrid.Fill([this](BrowserTree& aTree) {
      for (int category = 0; category < kCategories; ++category) {
        const std::string name = "Category" + std::to_string(category);
        const GridItem parent = aTree.AppendCategory(kNoItem, name, *mCamera.array->GetCategory(name));
        for (int feature = category; feature < kFeatures; feature += kCategories)
          Append(aTree, parent, "Feature" + std::to_string(feature));
      }
    });
    mGrid.resize(500, 400);
    mGrid.show();
    Settle();
  }
  void Append(BrowserTree& aTree, GridItem aParent, const std::string& aName) {
    aTree.AppendFeature(aParent, aName, *mCamera.array->Get(aName));
  }
  void ReadAll() {
    for (const auto& node : mGrid.GetTree().GetFeatures())
      node->Refresh();
  }
  void Settle() {
    EXPECT_TRUE(krtest::AwaitCondition([this] {
      QApplication::processEvents();
      return mGrid.GetQueue()->IsEmpty();
    }));
  }
  int CountMarked() const {
    int marked = 0;
    for (const auto& node : mGrid.GetTree().GetFeatures())
      marked += node->IsOnScreen() ? 1 : 0;
    return marked;
  }
  /// How many rows a page has, the cut ones included.
  int CountPage() const {
    const int height = mGrid.FindRow(mGrid.GetTree().GetTopLevel().front()).height();
    return mGrid.viewport()->height() / height + 2;
  }

  int mAccesses = 0; ///< Of the device, on the user-interface thread.
  DescribedCamera mCamera{MakeManyFeatures()};
  PropertiesGrid mGrid{nullptr, nullptr};
};

} // namespace

TEST_F(GridScrollingTest, Marks_AreOnThePageAlone) {
  QScrollBar& bar = *mGrid.verticalScrollBar();
  for (const int position : {0, bar.maximum() / 3, bar.maximum() / 2 + 7, bar.maximum()}) {
    SCOPED_TRACE(position);

    bar.setValue(position);

    EXPECT_GT(CountMarked(), 0);
    EXPECT_LE(CountMarked(), CountPage());
  }
}

TEST_F(GridScrollingTest, EveryRow_IsReachedByScrolling) {
  QScrollBar& bar = *mGrid.verticalScrollBar();
  const int height = mGrid.FindRow(mGrid.GetTree().GetTopLevel().front()).height();

  EXPECT_EQ(bar.maximum() + mGrid.viewport()->height(), (kFeatures + kCategories) * height);
}

TEST_F(GridScrollingTest, PaintingAndScrolling_AskNoDevice) {
  ReadAll();
  Settle();
  mAccesses = 0;

  QScrollBar& bar = *mGrid.verticalScrollBar();
  for (int step = 0; step <= 50; ++step) {
    bar.setValue(bar.maximum() * step / 50);
    (void)mGrid.grab();
    Settle();
  }

  EXPECT_EQ(mAccesses, 0);
}

TEST_F(GridScrollingTest, PaintingWhatWasNeverRead_AsksNoDevice) {
  mAccesses = 0;

  (void)mGrid.grab();
  mGrid.verticalScrollBar()->setValue(5000);
  (void)mGrid.grab();

  EXPECT_EQ(mAccesses, 0);
}

TEST_F(GridScrollingTest, ScrollingWithASelectedRowThatCannotBeWritten_AsksNoDevice) {
  ReadAll();
  mGrid.Select(mGrid.GetTree().GetTopLevel().front());
  Settle();
  mAccesses = 0;

  for (int position = 0; position < 2000; position += 100) {
    mGrid.verticalScrollBar()->setValue(position);
    Settle();
  }

  EXPECT_EQ(mAccesses, 0);
}

TEST_F(GridScrollingTest, ScrolledEditor_StaysWithItsRowAndAsksNoDevice) {
  ReadAll();
  const GridItem item = mGrid.GetTree().GetFeatures()[5]->GetItem();
  mGrid.Select(item);
  Settle();
  ASSERT_EQ(mGrid.GetEdited(), item);
  mAccesses = 0;

  mGrid.verticalScrollBar()->setValue(40);
  Settle();

  bool isInPlace = false;
  for (const QWidget* editor : mGrid.viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
    isInPlace = isInPlace || (editor->isVisible() && editor->y() == mGrid.FindRow(item).top() - 1);
  EXPECT_TRUE(isInPlace);
  EXPECT_EQ(mGrid.GetEdited(), item);
  EXPECT_EQ(mAccesses, 0);
}

TEST_F(GridScrollingTest, MessagesOfAllRows_AreHandled) {
  ReadAll();
  ASSERT_FALSE(mGrid.GetTree().GetFeatures().empty());
  for (const auto& node : mGrid.GetTree().GetFeatures())
    mGrid.GetQueue()->PostOnce({kRowChangedMessage, node->GetItem(), 0});

  Settle();

  for (const auto& node : mGrid.GetTree().GetFeatures())
    ASSERT_FALSE(node->HasChanged());
}

TEST_F(GridScrollingTest, CollapsedAndExpanded_HasAllRowsAgain) {
  const int maximum = mGrid.verticalScrollBar()->maximum();

  mGrid.CollapseAll();
  EXPECT_LT(mGrid.verticalScrollBar()->maximum(), maximum / 50);
  EXPECT_EQ(CountMarked(), 0);
  mGrid.ExpandAll();

  EXPECT_EQ(mGrid.verticalScrollBar()->maximum(), maximum);
  EXPECT_GT(CountMarked(), 0);
}

} // namespace krgui
