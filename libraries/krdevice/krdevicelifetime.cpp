#include "krdevice/krdevicelifetime.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>

struct KrDeviceLifetime::Body {
  std::stop_source end;

  mutable std::mutex mutex; // Guards the members from here on.
  std::condition_variable useEnded;
  std::size_t uses = 0;
  bool isOver = false;

  bool Begin() {
    const std::lock_guard lock(mutex);
    if (!isOver)
      ++uses;
    return !isOver;
  }
};

KrDeviceLifetime::Use::Use(KrDeviceLifetime& aLifetime)
    : mLifetime(aLifetime), mIsGranted(aLifetime.mBody->Begin()) {}

KrDeviceLifetime::Use::~Use() {
  if (!mIsGranted)
    return;
  Body& body = *mLifetime.mBody;
  const std::lock_guard lock(body.mutex);
  --body.uses;
  body.useEnded.notify_all();
}

KrDeviceLifetime::KrDeviceLifetime() : mBody(std::make_unique<Body>()) {}

KrDeviceLifetime::~KrDeviceLifetime() = default;

std::stop_token KrDeviceLifetime::GetEnd() const {
  return mBody->end.get_token();
}

bool KrDeviceLifetime::IsOver() const {
  const std::lock_guard lock(mBody->mutex);
  return mBody->isOver;
}

void KrDeviceLifetime::OnLost() {
  mBody->end.request_stop();
}

void KrDeviceLifetime::Refuse() {
  {
    const std::lock_guard lock(mBody->mutex);
    mBody->isOver = true;
  }
  mBody->end.request_stop();
}

void KrDeviceLifetime::WaitForUses() {
  std::unique_lock lock(mBody->mutex);
  mBody->useEnded.wait(lock, [this] { return mBody->uses == 0; });
}
