#pragma once
// A mutex for each name that somebody needs one for: of what many objects share that know each other by a name alone, a
// device's selectors for example.

#include <map>
#include <memory>
#include <mutex>
#include <string>

/// Thread: any. Ownership: a mutex is shared by those that have it, and ends with the last of them.
class KrNamedMutexes {
public:
  /// The mutex of a name, the same for all that have it at the same time.
  std::shared_ptr<std::mutex> Of(const std::string& aName) {
    const std::lock_guard lock(mMutex);
    std::erase_if(mEntries, [](const auto& aEntry) { return aEntry.second.expired(); });
    std::weak_ptr<std::mutex>& entry = mEntries[aName];
    std::shared_ptr<std::mutex> mutex = entry.lock();
    if (!mutex)
      entry = mutex = std::make_shared<std::mutex>();
    return mutex;
  }

private:
  std::mutex mMutex; // Guards the entries.
  std::map<std::string, std::weak_ptr<std::mutex>> mEntries;
};
