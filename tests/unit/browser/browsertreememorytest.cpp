// The tree when memory runs out in the middle of a filling.

#include "logic/browser/browsertree.h"

#include "nodebench.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr int kNoLimit = std::numeric_limits<int>::max();
/// How many allocations of this thread succeed from now on.
thread_local int allocationsLeft = kNoLimit;

void* Allocate(std::size_t aSize) {
  if (allocationsLeft != kNoLimit && allocationsLeft-- <= 0)
    throw std::bad_alloc();
  if (void* const memory = std::malloc(aSize > 0 ? aSize : 1))
    return memory;
  throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t aSize) {
  return Allocate(aSize);
}
void* operator new[](std::size_t aSize) {
  return Allocate(aSize);
}
// Sorting asks in this way.
void* operator new(std::size_t aSize, const std::nothrow_t& /*aTag*/) noexcept {
  return std::malloc(aSize);
}
void operator delete(void* aMemory) noexcept {
  std::free(aMemory);
}
void operator delete[](void* aMemory) noexcept {
  std::free(aMemory);
}
void operator delete(void* aMemory, std::size_t /*aSize*/) noexcept {
  std::free(aMemory);
}
void operator delete[](void* aMemory, std::size_t /*aSize*/) noexcept {
  std::free(aMemory);
}

using namespace krgui;

namespace {

class TreeWithoutMemory : public testing::Test {
protected:
  /// Appends a category, a feature at the top level and one below the category.
  void Append(BrowserTree& aTree) {
    const GridItem category = aTree.AppendCategory(kNoItem, mCategoryName, *mCamera.array->GetCategory("Root"));
    aTree.AppendFeature(kNoItem, mFeatureName, *mCamera.array->Get("X"));
    aTree.AppendFeature(category, mFeatureName, *mCamera.array->Get("Y"));
  }
  /// False when memory ran out.
  bool AppendWithin(BrowserTree& aTree, int aAllocations) {
    allocationsLeft = aAllocations;
    bool succeeds = true;
    try {
      Append(aTree);
    } catch (const std::bad_alloc&) {
      succeeds = false;
    }
    allocationsLeft = kNoLimit;
    return succeeds;
  }
  /// How many rows there are, each with its node in its list.
  static std::size_t CountWholeRows(const BrowserTree& aTree, const std::vector<GridItem>& aRows) {
    std::size_t count = 0;
    for (const GridItem id : aRows) {
      const BrowserTree::Item* const item = aTree.Find(id);
      const auto& nodes = item->node->GetCategory() ? aTree.GetCategories() : aTree.GetFeatures();
      count += nodes.at(item->index).get() == item->node ? 1 : 0;
      count += CountWholeRows(aTree, item->children);
    }
    return count;
  }

  const KrString mCategoryName = std::string(100, 'c');
  const KrString mFeatureName = std::string(100, 'f');
  NodeBench mCamera{"<Category Name=\"Root\"><pFeature>X</pFeature></Category>"
                    "<Integer Name=\"X\"><Value>1</Value></Integer><Integer Name=\"Y\"><Value>2</Value></Integer>"};
};

} // namespace

TEST_F(TreeWithoutMemory, Appending_ThatFailsAnywhere_LeavesNoRowWithoutItsNode) {
  int allocations = 0;
  for (bool isDone = false; !isDone; ++allocations) {
    SCOPED_TRACE(allocations);
    BrowserTree tree{RowNotifier(mCamera.queue)};

    isDone = AppendWithin(tree, allocations);

    const std::size_t nodes = tree.GetFeatures().size() + tree.GetCategories().size();
    ASSERT_EQ(CountWholeRows(tree, tree.GetTopLevel()), nodes);
    Append(tree);
    tree.SortByName();
    ASSERT_EQ(CountWholeRows(tree, tree.GetTopLevel()), nodes + 3);
  }

  EXPECT_GT(allocations, 10) << "as often the memory ran out";
}
