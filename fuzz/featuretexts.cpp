// Whatever a camera's description may say of its features, and whatever may be sought among them: the text beside the
// list is well-formed and has an end, and a search finds what has the letters, where they are.

#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"
#include "logic/browser/browsertree.h"
#include "logic/browser/descriptiontext.h"
#include "logic/browser/featuresearch.h"
#include "logic/browser/markup.h"
#include "logic/frame/messagequeue.h"
#include "require.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace krgui;

constexpr std::size_t kMostBytes = std::size_t{64} << 10;
constexpr std::size_t kMostFeatures = 40;
constexpr std::size_t kMostTextBytes = std::size_t{256} << 10;
constexpr std::size_t kMostTitleBytes = 1024;
constexpr std::size_t kMostSignBytes = 16; // Of the sign of a cut, and the end of a bold run.

bool IsWellFormed(const KrString& aText) {
  return KrString(aText.ToWide()) == aText;
}

void CheckDescription(const TreeItemData& aNode) {
  const KrString title = FormatDescriptionTitle(aNode);
  Require(title.GetLength() <= kMostTitleBytes + kMostSignBytes);
  Require(IsWellFormed(title) || !IsWellFormed(aNode.GetDisplayName()));
  const KrString text = FormatDescription(aNode);
  Require(!text.IsEmpty() && text.GetLength() <= kMostTextBytes + kMostSignBytes);
  Require(!LeavesBold(text.ToUtf8()));
  // The part that is the program's own is there, whatever stands before it.
  if (text.GetLength() < kMostTextBytes)
    Require(text.ToUtf8().find(" Name: <b>" + aNode.GetName().ToUtf8()) != std::string::npos);
  std::size_t shown = 0;
  for (const MarkupRun& run : SplitMarkup(text.ToUtf8())) {
    Require(!run.text.empty() && run.text.find(run.isBold ? "</b>" : "<b>") == run.text.npos);
    shown += run.text.size();
  }
  Require(shown <= text.GetLength());
}

// The place that is found has the letters, and no earlier one of as many units has.
void CheckMatch(const KrString& aName, const KrString& aSought) {
  const KrString lower = ToLowerCase(aSought);
  Require(ToLowerCase(lower) == lower);
  const std::u16string name = aName.ToWide();
  const auto match = FindMatch(aName, lower);
  if (!match)
    return;
  Require(match->length > 0 && match->position + match->length <= name.size());
  const auto part = [&](std::size_t aAt) {
    return ToLowerCase(KrString(std::u16string_view(name).substr(aAt, match->length)));
  };
  Require(part(match->position) == KrString(lower.ToWide()));
  const auto isWhole = [&](std::size_t aAt) {
    return (name[aAt] & 0xFC00) != 0xDC00 && (name[aAt + match->length - 1] & 0xFC00) != 0xD800;
  };
  for (std::size_t at = 0; at < match->position; ++at)
    Require(!isWhole(at) || part(at) != KrString(lower.ToWide()));
}

void CheckSearch(const BrowserTree& aTree, const KrString& aSought, bool aByDisplayName) {
  const KrString lower = ToLowerCase(aSought);
  FeatureSearch search;
  search.Find(aTree.GetFeatures(), lower, aByDisplayName);
  std::vector<GridItem> expected;
  for (const auto& feature : aTree.GetFeatures())
    if (FindMatch(aByDisplayName ? feature->GetDisplayName() : feature->GetName(), lower))
      expected.push_back(feature->GetItem());
  Require(search.GetCount() == expected.size() && search.GetPosition() == (expected.empty() ? 0 : 1));
  for (const GridItem item : expected) {
    Require(search.GetCurrent() == item);
    search.MoveToNext();
  }
  Require(search.GetCurrent() == (expected.empty() ? kNoItem : expected.front()));
  Require(search.MoveToPrevious() == (expected.empty() ? kNoItem : expected.back()));
  Require(FormatResult(search.GetPosition(), search.GetCount()).GetLength() <= 31);
}

void CheckFeatures(KrGenParameterArray& aArray, const KrString& aSought) {
  const auto queue = std::make_shared<MessageQueue>();
  BrowserTree tree{RowNotifier(queue)};
  for (std::size_t index = 0; index < std::min(aArray.GetCount(), kMostFeatures); ++index) {
    KrGenParameter& feature = *aArray[index];
    tree.AppendFeature(kNoItem, feature.GetName(), feature);
    if (KrGenCategory* const category = aArray.GetCategory(feature.GetName()))
      tree.AppendCategory(kNoItem, feature.GetName(), *category);
  }
  if (KrGenCategory* const root = aArray.GetCategory("Root"))
    tree.AppendCategory(kNoItem, "Root", *root);
  for (const auto& nodes : {&tree.GetFeatures(), &tree.GetCategories()})
    for (const auto& node : *nodes) {
      CheckDescription(*node);
      CheckMatch(node->GetName(), aSought);
      CheckMatch(node->GetDisplayName(), aSought);
    }
  CheckSearch(tree, aSought, false);
  CheckSearch(tree, aSought, true);
}

} // namespace

// The description, a zero byte, and what is sought.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize > kMostBytes)
    return 0;
  const std::string_view input(reinterpret_cast<const char*>(aData), aSize);
  const std::string_view text = input.substr(0, input.find('\0'));
  const KrString sought(input.substr(std::min(text.size() + 1, input.size())));
  CheckMatch(KrString(text.substr(0, 200)), sought);
  KrGenDescription description;
  if (!RequireReason(KrGenDescription::ReadFromMemory(text, "input", description)))
    return 0;
  KrGenMemoryPort memory;
  std::unique_ptr<KrGenParameterArray> array;
  if (!RequireReason(KrGenParameterArray::Open(description, memory, {}, array)))
    return 0;
  CheckFeatures(*array, sought);
  array->Close();
  return 0;
}
