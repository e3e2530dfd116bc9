#include "krserial/krbulkselectorturn.h"

#include "guarded.h"
#include "krdevice/ikrdeviceadapter.h"

#include <condition_variable>
#include <iterator>
#include <map>
#include <mutex>
#include <string>

// What is had by one at a time.
struct KrBulkSelectorTurn::Selector {
  std::mutex mutex; // Guards isHad.
  std::condition_variable_any given;
  bool isHad = false;
};

std::shared_ptr<KrBulkSelectorTurn::Selector> KrBulkSelectorTurn::FindSelector(const IKrDeviceAdapter& aAdapter) {
  // Those at which somebody has a turn, or waits for one.
  static std::mutex mutex;
  static std::map<std::string, std::weak_ptr<Selector>> selectors;
  std::string device;
  // Devices that cannot say what they are share one.
  (void)krserial::Guard("Asking for a device's text", [&]() -> KrResult {
    device = aAdapter.GetDeviceText().ToUtf8();
    return {};
  });
  const std::lock_guard lock(mutex);
  for (auto entry = selectors.begin(); entry != selectors.end();)
    entry = entry->second.expired() ? selectors.erase(entry) : std::next(entry);
  std::weak_ptr<Selector>& entry = selectors[device];
  std::shared_ptr<Selector> selector = entry.lock();
  if (!selector)
    entry = selector = std::make_shared<Selector>();
  return selector;
}

KrBulkSelectorTurn::KrBulkSelectorTurn(const IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort,
                                       const std::stop_token& aStop)
    : mSelector(IsBulkPort(aPort) ? FindSelector(aAdapter) : nullptr) {
  if (!mSelector)
    return;
  std::unique_lock lock(mSelector->mutex);
  mIsMine = mSelector->given.wait(lock, aStop, [this] { return !mSelector->isHad; });
  if (mIsMine)
    mSelector->isHad = true;
}

KrBulkSelectorTurn::~KrBulkSelectorTurn() {
  if (!mSelector || !mIsMine)
    return;
  const std::lock_guard lock(mSelector->mutex);
  mSelector->isHad = false;
  mSelector->given.notify_one();
}
