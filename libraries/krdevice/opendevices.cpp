#include "opendevices.h"

#include "krbase/krlogger.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <pthread.h>
#include <unistd.h>

namespace krdevice {

namespace {

enum class Stage { Opening, Open, GivingBack, GivenBack, Closing };

struct Device {
  krsystem::IDeviceLink* link; // Null while it is being opened.
  pid_t process;               // A forked child finds the devices of its parent in the list.
  Stage stage;
  std::function<void()> prepare; // Before control is given back; may be empty.
};

void Warn(const std::string& aText) {
  KrLogger("KrDevice").Log(KrLogLevel::Warning, {"OpenDevices", "opendevices"}, aText);
}

void GiveBack(krsystem::IDeviceLink& aLink, const std::function<void()>& aPrepare) {
  try {
    if (aPrepare)
      aPrepare();
    aLink.GiveBackControl();
  } catch (const std::exception& error) {
    Warn(std::string("Giving back control of a device was ended by an exception: ") + error.what());
  } catch (...) {
    Warn("Giving back control of a device was ended by an exception of unknown type.");
  }
}

} // namespace

struct OpenDevices::Table : std::enable_shared_from_this<Table> {
  Place Insert(krsystem::IDeviceLink* aLink, Stage aStage, std::function<void()> aPrepare = {}) {
    devices[++lastPlace] = {aLink, getpid(), aStage, std::move(aPrepare)};
    return lastPlace;
  }
  bool IsAnyPending() const {
    return std::ranges::any_of(devices, [](const auto& aEntry) {
      return aEntry.second.process == getpid() && aEntry.second.stage != Stage::GivenBack;
    });
  }
  void SetGivenBack(Place aPlace) {
    const std::lock_guard lock(mutex);
    devices.at(aPlace).stage = Stage::GivenBack;
    changed.notify_all();
  }
  void StartGivingBack();
  static void WatchForks();

  std::mutex mutex; // Guards the members.
  std::condition_variable changed;
  std::map<Place, Device> devices;
  Place lastPlace = 0;
  bool isEnding = false;
  bool isLimitOver = false;
};

void OpenDevices::Table::StartGivingBack() {
  for (auto& [place, device] : devices) {
    if (device.process != getpid() || device.stage != Stage::Open)
      continue;
    device.stage = Stage::GivingBack;
    try {
      // Detached: a device that does not answer must not keep the process from its end.
      std::thread([table = shared_from_this(), place = place, link = device.link, prepare = device.prepare] {
        GiveBack(*link, prepare);
        table->SetGivenBack(place);
      }).detach();
    } catch (const std::system_error& error) {
      device.stage = Stage::GivenBack;
      Warn(std::string("Giving back control of a device: no thread could be started: ") + error.what());
    }
  }
}

// Whoever forks holds the lock meanwhile, so that the child does not find it taken by a thread that it does not have.
void OpenDevices::Table::WatchForks() {
  const int error = pthread_atfork([] { Get().mTable->mutex.lock(); }, [] { Get().mTable->mutex.unlock(); },
                                   [] {
                                     Table& table = *Get().mTable;
                                     // The threads that waited are the parent's.
                                     std::construct_at(&table.changed);
                                     table.mutex.unlock();
                                   });
  if (error != 0)
    Warn("A child of this process that opens devices itself may hang: " + std::generic_category().message(error));
}

OpenDevices::OpenDevices() : mTable(std::make_shared<Table>()) {}

OpenDevices::~OpenDevices() = default;

OpenDevices& OpenDevices::Get() {
  // Never destroyed: devices may be closed by destructors of static objects, and threads may still give back.
  static OpenDevices& devices = *new OpenDevices;
  static const bool isWatched = (Table::WatchForks(), true);
  static_cast<void>(isWatched);
  return devices;
}

bool OpenDevices::BeginOpening(Place& aPlace) {
  const std::lock_guard lock(mTable->mutex);
  if (mTable->isEnding)
    return false;
  aPlace = mTable->Insert(nullptr, Stage::Opening);
  return true;
}

OpenDevices::Place OpenDevices::Add(krsystem::IDeviceLink& aLink, std::function<void()> aPrepare) {
  const std::lock_guard lock(mTable->mutex);
  mTable->changed.notify_all();
  return mTable->Insert(&aLink, Stage::Open, std::move(aPrepare));
}

bool OpenDevices::BeginClosing(Place aPlace) {
  std::unique_lock lock(mTable->mutex);
  Device& device = mTable->devices.at(aPlace);
  mTable->changed.wait(lock, [&] { return device.stage != Stage::GivingBack || mTable->isLimitOver; });
  if (device.stage == Stage::GivingBack)
    return false;
  device.stage = Stage::Closing;
  return true;
}

void OpenDevices::Remove(Place aPlace) {
  const std::lock_guard lock(mTable->mutex);
  // The thread that gives a device back looks for its place afterwards.
  if (const auto device = mTable->devices.find(aPlace); device->second.stage != Stage::GivingBack)
    mTable->devices.erase(device);
  mTable->changed.notify_all();
}

bool OpenDevices::GiveBackAll(std::chrono::milliseconds aLimit) {
  const auto end = std::chrono::steady_clock::now() + aLimit;
  std::unique_lock lock(mTable->mutex);
  mTable->isEnding = true;
  // A device that was being opened may have come in meanwhile.
  mTable->StartGivingBack();
  while (mTable->IsAnyPending() && mTable->changed.wait_until(lock, end) == std::cv_status::no_timeout)
    mTable->StartGivingBack();
  if (!mTable->IsAnyPending())
    return true;
  mTable->isLimitOver = true;
  mTable->changed.notify_all();
  return false;
}

} // namespace krdevice
