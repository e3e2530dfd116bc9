#pragma once
// Nodes of the feature browser on a described camera, with the queue that they tell of changes.

#include "changingcamera.h"
#include "logic/browser/treeitemdata.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class NodeBench : public ChangingCamera {
public:
  static constexpr krgui::GridItem kItem = 7;

  explicit NodeBench(std::string_view aNodes) : ChangingCamera(aNodes) { queue->Open(); }

  std::unique_ptr<krgui::TreeItemData> MakeNode(const char* aName, bool aShowsDisplayNames = false) {
    return std::make_unique<krgui::TreeItemData>(aName, krgui::RowNotifier(queue), kItem, *array->Get(aName),
                                                 aShowsDisplayNames);
  }
  /// A node that was read once.
  std::unique_ptr<krgui::TreeItemData> MakeReadNode(const char* aName, bool aShowsDisplayNames = false) {
    auto node = MakeNode(aName, aShowsDisplayNames);
    node->Refresh();
    return node;
  }
  std::unique_ptr<krgui::TreeItemData> MakeCategoryNode(const char* aName, bool aShowsDisplayNames = false) {
    return std::make_unique<krgui::TreeItemData>(aName, krgui::RowNotifier(queue), kItem, *array->GetCategory(aName),
                                                 aShowsDisplayNames);
  }
  std::vector<krgui::Message> TakeMessages() {
    std::vector<krgui::Message> messages;
    while (const auto taken = queue->Take())
      messages.push_back(taken->Get());
    return messages;
  }
  /// From now on reads of one address give this failure.
  void FailReads(std::uint64_t aAddress, const KrResult& aFailure) {
    port.SetFault([=](const RegisterAccessRecord& aRecord) {
      return !aRecord.isWrite && aRecord.address == aAddress ? aFailure : KrResult();
    });
  }

  std::shared_ptr<krgui::MessageQueue> queue = std::make_shared<krgui::MessageQueue>();
};

/// A register of four bytes that is asked each time.
inline std::string MakeUncachedRegister(const std::string& aName, int aAddress) {
  return MakeRegister(aName, aAddress, "<Cachable>NoCache</Cachable>");
}

/// The value's text of a node as UTF-8, for comparisons that print what they have.
inline std::string GetText(const krgui::TreeItemData& aNode) {
  return aNode.GetSnapshot().value.ToUtf8();
}
