#include "krserial/krbulkselectorturn.h"

#include "guarded.h"
#include "krbase/krnamedmutexes.h"
#include "krdevice/ikrdeviceadapter.h"

#include <condition_variable>
#include <mutex>
#include <string>

// What is had by one at a time.
struct KrBulkSelectorTurn::Selector {
  std::mutex mutex; // Guards isHad.
  std::condition_variable_any given;
  bool isHad = false;
};

std::shared_ptr<KrBulkSelectorTurn::Selector> KrBulkSelectorTurn::FindSelector(const IKrDeviceAdapter& aAdapter) {
  // Those at which somebody has a turn, or waits for one. Never destroyed: threads may ask while the process ends.
  static KrNamed<Selector>& selectors = *new KrNamed<Selector>;
  std::string device;
  // Devices that cannot say what they are share one.
  (void)krserial::Guard("Asking for a device's text", [&]() -> KrResult {
    device = aAdapter.GetDeviceText().ToUtf8();
    return {};
  });
  return selectors.Of(device);
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
