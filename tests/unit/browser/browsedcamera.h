#pragma once
// A camera that is its description and memory, and a feature browser's rows on it: what tests of the browser's rules
// stand on.

#include "await.h"
#include "describedcamera.h"
#include "logic/browser/browsertree.h"
#include "logic/frame/messagequeue.h"

#include <poll.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace krgui {

/// A register of 8 bytes with its sign, around the cache.
inline std::string MakeInteger(const std::string& aName, int aAddress, const std::string& aAccess = "RW") {
  return "<IntReg Name=\"" + aName + "\"><Address>" + std::to_string(aAddress) +
         "</Address><Length>8</Length><AccessMode>" + aAccess +
         "</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Signed</Sign>"
         "<Endianess>LittleEndian</Endianess></IntReg>\n";
}

inline std::string MakeCategory(const std::string& aName, const std::vector<std::string>& aFeatures,
                                const std::string& aMore = {}) {
  std::string text = "<Category Name=\"" + aName + "\">" + aMore;
  for (const std::string& feature : aFeatures) {
    text += "<pFeature>" + feature + "</pFeature>";
  }
  return text + "</Category>\n";
}

/// The rows end before the camera, as their nodes take themselves out of it.
class BrowsedCamera : public DescribedCamera {
public:
  explicit BrowsedCamera(const std::string& aNodes) : DescribedCamera(aNodes) { queue->Open(); }

  /// The node of a feature, made at the first asking.
  TreeItemData& Node(const char* aName) {
    for (const std::unique_ptr<TreeItemData>& feature : tree.GetFeatures()) {
      if (feature->GetName() == KrString(aName)) {
        return *feature;
      }
    }
    return *tree.FindFeature(tree.AppendFeature(kNoItem, aName, *Get<KrGenParameter>(aName)));
  }

  /// The item of the next row that has changed; waits for it, with a limit that only a fault can reach.
  std::optional<GridItem> TakeChangedRow() {
    pollfd waking = {.fd = queue->GetWakeDescriptor(), .events = POLLIN, .revents = 0};
    do {
      if (const std::optional<MessageQueue::Taken> message = queue->Take()) {
        return message->Get().first;
      }
    } while (poll(&waking, 1, krtest::GetGenerousMs()) > 0);
    return std::nullopt;
  }
  /// Whether a row changes, which a test does not expect.
  bool IsARowChangedWithin(std::chrono::milliseconds aTime) {
    pollfd waking = {.fd = queue->GetWakeDescriptor(), .events = POLLIN, .revents = 0};
    return queue->Take() || (poll(&waking, 1, static_cast<int>(aTime.count())) > 0 && queue->Take());
  }
  std::vector<GridItem> TakeChangedRows(std::size_t aCount) {
    std::vector<GridItem> rows;
    for (std::size_t i = 0; i < aCount; ++i) {
      rows.push_back(TakeChangedRow().value_or(kNoItem));
    }
    return rows;
  }

  std::shared_ptr<MessageQueue> queue = std::make_shared<MessageQueue>();
  RowNotifier notifier{queue};
  BrowserTree tree{notifier};
};

} // namespace krgui
