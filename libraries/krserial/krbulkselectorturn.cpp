#include "krserial/krbulkselectorturn.h"

#include "guarded.h"
#include "krdevice/ikrdeviceadapter.h"

#include <iterator>
#include <map>
#include <string>

namespace {

// The mutexes of the devices at whose selectors somebody has a turn, or waits for one.
class Mutexes {
public:
  std::shared_ptr<std::mutex> Of(const std::string& aDevice) {
    const std::lock_guard lock(mMutex);
    for (auto entry = mEntries.begin(); entry != mEntries.end();)
      entry = entry->second.expired() ? mEntries.erase(entry) : std::next(entry);
    std::weak_ptr<std::mutex>& entry = mEntries[aDevice];
    std::shared_ptr<std::mutex> mutex = entry.lock();
    if (!mutex)
      entry = mutex = std::make_shared<std::mutex>();
    return mutex;
  }

private:
  std::mutex mMutex; // Guards the entries.
  std::map<std::string, std::weak_ptr<std::mutex>> mEntries;
};

std::shared_ptr<std::mutex> FindMutex(const IKrDeviceAdapter& aAdapter) {
  static Mutexes mutexes;
  std::string text;
  // Devices that cannot say what they are share one.
  (void)krserial::Guard("Asking for a device's text", [&]() -> KrResult {
    text = aAdapter.GetDeviceText().ToUtf8();
    return {};
  });
  return mutexes.Of(text);
}

} // namespace

KrBulkSelectorTurn::KrBulkSelectorTurn(const IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort)
    : mMutex(IsBulkPort(aPort) ? FindMutex(aAdapter) : nullptr) {
  if (mMutex)
    mMutex->lock();
}

KrBulkSelectorTurn::~KrBulkSelectorTurn() {
  if (mMutex)
    mMutex->unlock();
}
