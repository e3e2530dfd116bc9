#pragma once
// What of the interfaces and devices that discovery reports is news: who came, who changed, who went. When rounds are
// done and how news is written is left to the command.

#include "krsystem/krsystem.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace krtool {

enum class NewsKind { Appeared, Changed, Vanished };

/// What changed of an interface or device; texts as lists have them.
struct Change {
  std::string_view what; ///< As the member of its JSON object is called.
  KrString before;
  KrString now;
};

/// One piece of news, of a device or of an interface alone.
struct News {
  NewsKind kind = NewsKind::Appeared;
  const KrInterface* interface = nullptr; ///< Null for news of a device.
  const KrDeviceInfo* device = nullptr;
  std::vector<Change> changes = {}; ///< For Changed: at least one.
};

/// The interfaces and devices that are there.
///
/// Thread: one at a time. Ownership: borrows what it is told of, which must outlive it.
class WatchBook {
public:
  /// How old a device may grow without being reported.
  static constexpr std::uint64_t kMaxAgeMs = 2000;

  /// A device answered. The same device on another interface is another one.
  void TakeDevice(const KrDeviceInfo& aDevice, std::uint64_t aNowMs);
  /// The interfaces that there are; those that are not among them any more have gone.
  void TakeInterfaces(const std::vector<const KrInterface*>& aInterfaces);
  /// Devices that have not been reported for too long have gone.
  void Age(std::uint64_t aNowMs);

  /// The news since the last call, in the order in which they came.
  std::vector<News> TakeNews() { return std::exchange(mNews, {}); }

private:
  struct Sighting {
    const KrDeviceInfo* device = nullptr;
    std::uint64_t lastMs = 0;
  };
  using DeviceKey = std::pair<KrString, KrString>; // Unique IDs of interface and device.

  std::map<KrString, const KrInterface*> mInterfaces;
  std::map<DeviceKey, Sighting> mDevices;
  std::vector<News> mNews;
};

} // namespace krtool
