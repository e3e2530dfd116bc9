#include "devicefeatures.h"

#include "featurelines.h"
#include "serialmaplist.h"

#include <algorithm>
#include <map>
#include <utility>

namespace krserial {

std::shared_ptr<DeviceFeatures> DeviceFeatures::Of(const KrDevice& aDevice) {
  using Entries = std::map<std::shared_ptr<KrDeviceLifetime>, std::shared_ptr<DeviceFeatures>>;
  static std::mutex mutex; // Guards the list.
  // Never destroyed: threads may still ask while the process ends.
  static Entries& entries = *new Entries;

  const std::shared_ptr<KrDeviceLifetime> lifetime = aDevice.GetLifetime();
  const std::lock_guard lock(mutex);
  std::erase_if(entries, [](const Entries::value_type& aEntry) { return aEntry.first->IsOver(); });
  std::shared_ptr<DeviceFeatures>& entry = entries[lifetime];
  if (!entry)
    entry = std::make_shared<DeviceFeatures>(lifetime);
  return entry;
}

// With mMutex held: whether the device need not be asked.
bool DeviceFeatures::IsAnswered() const {
  return mIsFound || (!mFailure.IsOK() && mNow() < mFailedAt + kSilence);
}

KrResult DeviceFeatures::Get(KrDevice& aDevice, KrDeviceSerial aPort, ChannelPointer& aChannel) {
  std::unique_lock lock(mMutex);
  if (!IsAnswered()) {
    // Files of the user are read, and complained of, without the lock.
    lock.unlock();
    const SerialMaps maps = SerialMapList::Get().GetAll();
    lock.lock();
    if (!IsAnswered()) {
      mFailure = FindAll(aDevice, maps);
      mIsFound = mFailure.IsOK();
      mFailedAt = mNow();
    }
  }
  if (!mIsFound)
    return mFailure;
  aChannel = mChannels.at(static_cast<std::size_t>(aPort));
  return {};
}

KrResult DeviceFeatures::FindAll(KrDevice& aDevice, const SerialMaps& aMaps) {
  const KrDeviceLifetime::Use use(*mLifetime);
  if (!use.IsGranted())
    return {KrResult::Code::ConnectionLost, "The device is being closed."};
  KrGenParameterArray* array = nullptr;
  const KrResult asked = aDevice.GetParameters(array);
  if (IsWithoutFeatures(asked))
    return {};
  if (!asked.IsOK())
    return asked;
  Channels channels;
  for (const SerialMap& map : aMaps)
    if (KrResult found = FindPorts(*array, map, channels); !found.IsOK())
      return found;
  mChannels = std::move(channels);
  return {};
}

// Fills in the ports of a map that none before it has.
KrResult DeviceFeatures::FindPorts(KrGenParameterArray& aArray, const SerialMap& aMap, Channels& aChannels) {
  for (std::size_t i = 0; i < aChannels.size(); ++i) {
    if (aChannels[i] || !aMap.entries[i])
      continue;
    FeatureFinder finder(aArray);
    std::unique_ptr<IFeatureLine> line = FindLine(finder, aMap, kDeviceSerialPorts[i]);
    if (!finder.GetFailure().IsOK())
      return finder.GetFailure();
    if (line)
      aChannels[i] = std::make_shared<FeatureChannel>(mLifetime, mTurn, std::move(line));
  }
  return {};
}

} // namespace krserial
