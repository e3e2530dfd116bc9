#include "logic/browser/gridtools.h"

#include "logic/browser/rowgeometry.h"

#include <string>

namespace krgui {

namespace {

using Nodes = std::vector<std::unique_ptr<TreeItemData>>;

constexpr int kIndexBits = 14;
constexpr int kFlagBits = 2;
static_assert(kCategoryToolBase == 1 << kIndexBits && kErrorToolFlag == 1 << (kIndexBits + 1));

constexpr std::int32_t PackIndex(std::size_t aIndex) {
  const auto index = static_cast<std::int32_t>(aIndex);
  return (index & (kCategoryToolBase - 1)) | (index >> kIndexBits << (kIndexBits + kFlagBits));
}

constexpr std::size_t UnpackIndex(std::int32_t aTool) {
  return static_cast<std::size_t>((aTool & (kCategoryToolBase - 1)) |
                                  (aTool >> (kIndexBits + kFlagBits) << kIndexBits));
}
static_assert(UnpackIndex(PackIndex(123456) | kErrorToolFlag) == 123456);

/// Not within a pair of surrogates.
KrString Cut(const KrString& aText) {
  std::u16string text = aText.ToWide();
  if (text.size() <= kMostToolTipCharacters)
    return aText;
  const bool splitsPair = (text[kMostToolTipCharacters - 1] & 0xFC00) == 0xD800;
  text.resize(splitsPair ? kMostToolTipCharacters - 1 : kMostToolTipCharacters);
  return KrString(text);
}

/// Parts that say nothing leave nothing behind.
KrString Join(const KrString& aFirst, const KrString& aSecond, const char* aBetween) {
  return aFirst.IsEmpty() || aSecond.IsEmpty() ? aFirst + aSecond : aFirst + aBetween + aSecond;
}

KrString FindError(const TreeItemData& aNode) {
  return aNode.HasError() ? aNode.GetError() : KrString();
}

constexpr const char* kEmptyLine = "\n\n";

} // namespace

std::int32_t FindTool(const BrowserTree& aTree, GridItem aItem, bool aIsOnErrorIcon) {
  const BrowserTree::Item* const item = aTree.Find(aItem);
  if (!item)
    return kNoTool;
  const std::int32_t index = PackIndex(item->index);
  if (item->node->GetCategory())
    return index | kCategoryToolBase;
  return aIsOnErrorIcon && item->node->HasError() ? index | kErrorToolFlag : index;
}

KrString GetToolText(const BrowserTree& aTree, std::int32_t aTool) {
  if (aTool < 0)
    return {};
  const Nodes& nodes = (aTool & kCategoryToolBase) != 0 ? aTree.GetCategories() : aTree.GetFeatures();
  const std::size_t index = UnpackIndex(aTool);
  if (index >= nodes.size())
    return {};
  const TreeItemData& node = *nodes[index];
  if ((aTool & kErrorToolFlag) != 0)
    return Cut(node.GetError());
  return Cut(Join(node.GetToolTip(), node.GetAccessReason(), kEmptyLine));
}

KrString GetTroubleText(const TreeItemData& aNode) {
  return Join(FindError(aNode), aNode.GetAccessReason(), "\n");
}

KrString GetHelpText(const BrowserTree& aTree, GridItem aItem) {
  const BrowserTree::Item* const item = aTree.Find(aItem);
  if (!item)
    return {};
  const KrString rest = Join(item->node->GetToolTip(), item->node->GetAccessReason(), kEmptyLine);
  return Cut(Join(FindError(*item->node), rest, kEmptyLine));
}

} // namespace krgui
