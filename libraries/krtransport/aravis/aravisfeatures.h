#pragma once
// A device's features by name, through Aravis' evaluator on the device's I/O thread. The evaluator knows no locks and
// no change events; all that needs those is left to the parameter array.

#include "aravis/aravisdevicebase.h"
#include "aravis/devicecalls.h"
#include "krsystem/ifeatureaccess.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace krtransport {

/// Each operation gives up after five seconds, and at once while the device is known to keep silent.
///
/// Thread, results: as IFeatureAccess. Ownership: borrows the I/O thread and the word of silence, shares the device.
class AravisFeatures final : public krsystem::IFeatureAccess {
public:
  AravisFeatures(IoThread& aIoThread, ISilence& aSilence, std::shared_ptr<AravisDeviceBase> aDevice);

  /// What was learnt once is remembered, as a device's names never change: it is known of a silent device, too.
  bool HasFeature(const KrString& aName) override;
  bool IsFeatureAvailable(const KrString& aName) override;
  KrResult GetEnumerationEntries(const KrString& aName, KrStringList& aEntries) override;
  KrResult GetEnumeration(const KrString& aName, KrString& aEntry) override;
  KrResult SetEnumeration(const KrString& aName, const KrString& aEntry) override;
  KrResult GetBoolean(const KrString& aName, bool& aValue) override;
  KrResult SetBoolean(const KrString& aName, bool aValue) override;

private:
  /// Runs a job on the device with the limit of all operations.
  KrResult Run(std::function<KrResult(ArvDevice&)> aJob);

  DeviceCalls mCalls;
  const std::shared_ptr<AravisDeviceBase> mDevice;

  // Guards what was learnt.
  std::mutex mMutex;
  std::map<KrString, bool> mKnownNames;
};

} // namespace krtransport
