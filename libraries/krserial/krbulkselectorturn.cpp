#include "krserial/krbulkselectorturn.h"

#include "guarded.h"
#include "krbase/krnamedmutexes.h"
#include "krdevice/ikrdeviceadapter.h"

#include <string>

namespace {

std::shared_ptr<std::mutex> FindMutex(const IKrDeviceAdapter& aAdapter) {
  static KrNamedMutexes mutexes; // Of the devices at whose selectors somebody has a turn, or waits for one.
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
