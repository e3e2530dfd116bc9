#pragma once
// A mutex, or something else to wait for, for each name that somebody needs one for: of what many objects share that
// know each other by a name alone, a device's selectors for example.

#include <map>
#include <memory>
#include <mutex>
#include <string>

/// Thread: any. Ownership: a thing is shared by those that have it, and ends with the last of them.
template <typename Thing>
class KrNamed {
public:
  /// The thing of a name, the same for all that have it at the same time.
  std::shared_ptr<Thing> Of(const std::string& aName) {
    const std::lock_guard lock(mMutex);
    std::erase_if(mEntries, [](const auto& aEntry) { return aEntry.second.expired(); });
    std::weak_ptr<Thing>& entry = mEntries[aName];
    std::shared_ptr<Thing> thing = entry.lock();
    if (!thing)
      entry = thing = std::make_shared<Thing>();
    return thing;
  }

private:
  std::mutex mMutex; // Guards the entries.
  std::map<std::string, std::weak_ptr<Thing>> mEntries;
};

using KrNamedMutexes = KrNamed<std::mutex>;
