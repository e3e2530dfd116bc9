#include "logic/browser/browsertree.h"

#include "nodebench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace krgui;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Tree : public testing::Test {
protected:
  GridItem AddCategory(GridItem aParent, const std::string& aName) {
    return tree.AppendCategory(aParent, aName, *mCamera.array->GetCategory("Root"));
  }
  GridItem AddFeature(GridItem aParent, const std::string& aName, const char* aFeature = "X") {
    return tree.AppendFeature(aParent, aName, *mCamera.array->Get(aFeature));
  }
  std::vector<std::string> GetNames(const std::vector<GridItem>& aItems) const {
    std::vector<std::string> names;
    for (const GridItem item : aItems)
      names.push_back(tree.Find(item)->node->GetName().ToUtf8());
    return names;
  }
  static std::vector<std::string> GetNames(const std::vector<std::unique_ptr<TreeItemData>>& aNodes) {
    std::vector<std::string> names;
    for (const auto& node : aNodes)
      names.push_back(node->GetName().ToUtf8());
    return names;
  }

  NodeBench mCamera{"<Category Name=\"Root\"><pFeature>X</pFeature></Category>"
                    "<Integer Name=\"X\"><DisplayName>The X</DisplayName><Value>1</Value></Integer>"
                    "<Integer Name=\"Y\"><Value>2</Value></Integer>"};
  BrowserTree tree{RowNotifier(mCamera.queue)};
};

} // namespace

TEST_F(Tree, Rows_KnowParentPlaceLevelAndNode) {
  const GridItem image = AddCategory(kNoItem, "Image");
  const GridItem width = AddFeature(image, "Width");
  const GridItem inner = AddCategory(image, "Inner");
  const GridItem deep = AddFeature(inner, "Deep");
  const GridItem last = AddFeature(kNoItem, "Last");

  EXPECT_THAT(tree.GetTopLevel(), ElementsAre(image, last));
  EXPECT_THAT(tree.Find(image)->children, ElementsAre(width, inner));
  EXPECT_THAT(tree.Find(inner)->children, ElementsAre(deep));
  struct {
    GridItem item, parent;
    int row, level;
  } const kRows[] = {
      {image, kNoItem, 0, 0}, {width, image, 0, 1}, {inner, image, 1, 1}, {deep, inner, 0, 2}, {last, kNoItem, 1, 0}};
  for (const auto& row : kRows) {
    const BrowserTree::Item& item = *tree.Find(row.item);
    EXPECT_EQ(item.id, row.item);
    EXPECT_EQ(item.parent, row.parent) << row.item;
    EXPECT_EQ(item.row, row.row) << row.item;
    EXPECT_EQ(item.level, row.level) << row.item;
    EXPECT_EQ(item.node->GetItem(), row.item);
  }
}

TEST_F(Tree, Nodes_AreInTheListOfTheirKindInTheOrderOfAppending) {
  const GridItem image = AddCategory(kNoItem, "Image");
  AddFeature(image, "B");
  AddCategory(image, "Inner");
  AddFeature(image, "A");

  EXPECT_THAT(GetNames(tree.GetFeatures()), ElementsAre("B", "A"));
  EXPECT_THAT(GetNames(tree.GetCategories()), ElementsAre("Image", "Inner"));
}

TEST_F(Tree, FindFeatureAndFindCategory_TellTheKindsApart) {
  const GridItem category = AddCategory(kNoItem, "C");
  const GridItem feature = AddFeature(category, "F");

  EXPECT_EQ(tree.FindFeature(feature), tree.GetFeatures()[0].get());
  EXPECT_EQ(tree.FindCategory(feature), nullptr);
  EXPECT_EQ(tree.FindCategory(category), tree.GetCategories()[0].get());
  EXPECT_EQ(tree.FindFeature(category), nullptr);
}

TEST_F(Tree, HandlesThatAreNotThere_AreNotFound) {
  const GridItem feature = AddFeature(kNoItem, "F");

  for (const GridItem item : {kNoItem, feature + 1, ~GridItem{0}}) {
    EXPECT_EQ(tree.Find(item), nullptr) << item;
    EXPECT_EQ(tree.FindFeature(item), nullptr) << item;
    EXPECT_EQ(tree.FindCategory(item), nullptr) << item;
  }
}

TEST_F(Tree, ParentThatIsNoCategory_IsRefused) {
  const GridItem feature = AddFeature(kNoItem, "F");

  for (const GridItem parent : {feature, feature + 1, ~GridItem{0}}) {
    EXPECT_EQ(AddCategory(parent, "C"), kNoItem) << parent;
    EXPECT_EQ(AddFeature(parent, "G"), kNoItem) << parent;
  }
  EXPECT_EQ(tree.GetFeatures().size(), 1u);
  EXPECT_THAT(tree.GetCategories(), IsEmpty());
  EXPECT_THAT(tree.Find(feature)->children, IsEmpty());
}

TEST_F(Tree, FindChild_ComparesCategoriesUnderOneParentByTheirExactText) {
  const GridItem a = AddCategory(kNoItem, "A");
  const GridItem b = AddCategory(kNoItem, "B");
  const GridItem ab = AddCategory(a, "B");
  AddFeature(a, "Feature");
  AddCategory(a, "B");

  struct {
    const char* description;
    GridItem parent;
    const char* name;
    GridItem found;
  } const kRows[] = {
      {"top level", kNoItem, "A", a},
      {"another of the top level", kNoItem, "B", b},
      {"the same name below, the first of two", a, "B", ab},
      {"not below that parent", b, "B", kNoItem},
      {"another case", kNoItem, "a", kNoItem},
      {"a part", kNoItem, "", kNoItem},
      {"a feature", a, "Feature", kNoItem},
      {"no such parent", 999, "A", kNoItem},
  };
  for (const auto& row : kRows)
    EXPECT_EQ(tree.FindChild(row.parent, row.name), row.found) << row.description;
}

TEST_F(Tree, FeatureOfACategorysName_IsNotTakenForIt) {
  const GridItem feature = AddFeature(kNoItem, "Same");
  EXPECT_EQ(tree.FindChild(kNoItem, "Same"), kNoItem);

  const GridItem category = AddCategory(kNoItem, "Same");
  AddFeature(kNoItem, "Same");

  EXPECT_NE(category, feature);
  EXPECT_EQ(tree.FindChild(kNoItem, "Same"), category);
}

TEST_F(Tree, NamesOfAllKinds_AreKeptAndFound) {
  const std::string kNames[] = {"", std::string(10000, 'n'), "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D", "<b>bold</b>",
                                std::string("a\0b", 3)};

  for (const std::string& name : kNames) {
    const GridItem item = AddCategory(kNoItem, name);
    EXPECT_EQ(tree.FindChild(kNoItem, name), item);
    EXPECT_EQ(tree.Find(item)->node->GetName().ToUtf8(), name);
  }
}

TEST_F(Tree, SortByName_OrdersRowsAndFeaturesByBytesAndKeepsEqualOnes) {
  AddFeature(kNoItem, "b");
  const GridItem first = AddFeature(kNoItem, "Same", "X");
  AddFeature(kNoItem, "Z");
  const GridItem second = AddFeature(kNoItem, "Same", "Y");
  AddFeature(kNoItem, "A");

  tree.SortByName();

  EXPECT_THAT(GetNames(tree.GetTopLevel()), ElementsAre("A", "Same", "Same", "Z", "b"));
  EXPECT_THAT(GetNames(tree.GetFeatures()), ElementsAre("A", "Same", "Same", "Z", "b"));
  EXPECT_EQ(tree.GetTopLevel()[1], first);
  EXPECT_EQ(tree.GetTopLevel()[2], second);
  EXPECT_EQ(tree.GetFeatures()[1]->GetParameter(), mCamera.array->Get("X"));
  for (std::size_t row = 0; row < tree.GetTopLevel().size(); ++row)
    EXPECT_EQ(tree.Find(tree.GetTopLevel()[row])->row, static_cast<int>(row));
}

TEST_F(Tree, Clear_LeavesNothingAndHandlesAreNeverGivenAgain) {
  const GridItem category = AddCategory(kNoItem, "C");
  const GridItem feature = AddFeature(category, "F");

  tree.Clear();
  const GridItem later = AddCategory(kNoItem, "D");

  EXPECT_GT(later, feature);
  EXPECT_EQ(tree.Find(category), nullptr);
  EXPECT_EQ(tree.FindFeature(feature), nullptr);
  EXPECT_EQ(tree.FindChild(kNoItem, "C"), kNoItem);
  EXPECT_THAT(tree.GetTopLevel(), ElementsAre(later));
  EXPECT_THAT(tree.GetFeatures(), IsEmpty());
  EXPECT_EQ(tree.GetCategories().size(), 1u);
}

TEST_F(Tree, ClearOfAnEmptyTree_ChangesNothing) {
  tree.Clear();
  tree.Clear();

  EXPECT_NE(AddFeature(kNoItem, "F"), kNoItem);
}

TEST_F(Tree, Nodes_ShowDisplayNamesWhetherMadeBeforeOrAfterTheSetting) {
  const GridItem before = AddFeature(kNoItem, "X");
  tree.SetShowsDisplayNames(true);
  const GridItem after = AddFeature(kNoItem, "X");

  EXPECT_EQ(tree.Find(before)->node->GetShownName(), KrString("The X"));
  EXPECT_EQ(tree.Find(after)->node->GetShownName(), KrString("The X"));
  EXPECT_TRUE(tree.ShowsDisplayNames());
  tree.SetShowsDisplayNames(false);
  EXPECT_EQ(tree.Find(before)->node->GetShownName(), KrString("X"));
}

TEST_F(Tree, Features_TellTheirOwnRows) {
  const GridItem item = AddFeature(kNoItem, "X");
  tree.FindFeature(item)->Refresh();
  (void)tree.FindFeature(item)->GetValue(true);
  mCamera.AwaitNotifications();
  (void)mCamera.TakeMessages();

  ASSERT_TRUE(mCamera.Integer("X").SetValue(77).IsOK());
  mCamera.AwaitNotifications();

  EXPECT_THAT(mCamera.TakeMessages(), ElementsAre(Message{kRowChangedMessage, item, 0}));
}

TEST_F(Tree, ManyCategoriesUnderOneParentAndDeepOnes_AreAllFound) {
  constexpr int kCount = 20000;
  for (int number = 0; number < kCount; ++number)
    AddCategory(kNoItem, "C" + std::to_string(number));
  GridItem deepest = kNoItem;
  for (int level = 0; level < kCount; ++level)
    deepest = AddCategory(deepest, "Level");

  EXPECT_EQ(tree.Find(deepest)->level, kCount - 1);
  for (int number = 0; number < kCount; ++number)
    ASSERT_EQ(tree.Find(tree.FindChild(kNoItem, "C" + std::to_string(number)))->row, number);
}
