#pragma once
// A lab, the built-in one where nothing else is said, behind the public classes, as an application meets it.

#include "await.h"
#include "krdevice/krdevice.h"
#include "krsystem/krsystem.h"
#include "krsystem/transportregistry.h"
#include "simulation/cameraclock.h"
#include "simulation/cameraregisters.h"
#include "simulation/registermemory.h"
#include "simulation/simulationtransport.h"

#include <gtest/gtest.h>

#include <array>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

inline const std::uint32_t kGenerousLimitMs = krtest::GetGenerousMs();
constexpr const char* kMonoMAC = "02:4b:52:00:77:10";
constexpr const char* kMonoAddress = "192.168.77.10";
constexpr const char* kColourMAC = "02:4b:52:00:77:11";
constexpr const char* kForeignMAC = "02:4b:52:00:77:12";
constexpr const char* kRangeMAC = "02:4b:52:00:77:13";

/// Asks again and again until a condition holds; false when it does not within a generous limit.
inline bool WaitUntil(const std::function<bool()>& aCondition) {
  return krtest::Await(aCondition);
}

/// Counts a device's events and lets a test wait for them.
class CountingSink : public KrDeviceEventSink {
public:
  void OnDeviceLost(KrDevice*, const KrResult& aReason) override {
    const std::lock_guard lock(mMutex);
    mReason = aReason;
    ++mLost;
    mChanged.notify_all();
  }
  void OnDeviceBack(KrDevice*) override {
    const std::lock_guard lock(mMutex);
    ++mBack;
    mChanged.notify_all();
  }
  bool WaitFor(int aLost, int aBack) {
    std::unique_lock lock(mMutex);
    return mChanged.wait_for(lock, krtest::GetGenerousLimit(), [&] { return mLost == aLost && mBack == aBack; });
  }
  KrResult GetReason() {
    const std::lock_guard lock(mMutex);
    return mReason;
  }

private:
  std::mutex mMutex; // Guards the members from here on.
  std::condition_variable mChanged;
  int mLost = 0;
  int mBack = 0;
  KrResult mReason;
};

class LabTest : public testing::Test {
protected:
  /// The cameras go by the clock given, or by the host's.
  explicit LabTest(std::shared_ptr<krtransport::ICameraClock> aClock = nullptr,
                   const krtransport::Lab& aLab = krtransport::GetBuiltInLab())
      : mLab(std::make_shared<krtransport::SimulationTransport>(aLab, std::move(aClock))) {
    krsystem::RegisterTransport(mLab);
  }
  ~LabTest() override { krsystem::UnregisterTransport(mLab); }

  /// Looks for devices in such a way that misconfigured ones answer too.
  void FindAll() {
    mSystem.SetSubnetBroadcastEnabled(false);
    ASSERT_TRUE(mSystem.Find().IsOK());
  }
  template <typename Info = KrDeviceInfoGEV>
  const Info* FindInfo(const KrString& aUniqueID) {
    for (std::size_t i = 0; i < mSystem.GetDeviceCount(); ++i) {
      if (mSystem.GetDeviceInfo(i)->GetUniqueID() == aUniqueID)
        return dynamic_cast<const Info*>(mSystem.GetDeviceInfo(i));
    }
    return nullptr;
  }
  KrResult Open(const KrString& aUniqueID, std::unique_ptr<KrDevice>& aDevice,
                KrDeviceAccess aAccess = KrDeviceAccess::Control) {
    FindAll();
    const KrDeviceInfo* const info = FindInfo<KrDeviceInfo>(aUniqueID);
    return info ? KrDevice::Open(*info, aAccess, aDevice) : KrResult(KrResult::Code::NotFound);
  }
  static KrResult ReadInteger(KrDevice& aDevice, std::uint64_t aAddress, std::uint32_t& aValue) {
    std::array<std::uint8_t, 4> bytes = {};
    const KrResult result = aDevice.GetRegisterPort().Read(aAddress, bytes.data(), bytes.size(), kGenerousLimitMs);
    aValue = krtransport::DecodeInteger(bytes.data());
    return result;
  }
  static KrResult WriteInteger(KrDevice& aDevice, std::uint64_t aAddress, std::uint32_t aValue) {
    std::array<std::uint8_t, 4> bytes = {};
    krtransport::EncodeInteger(aValue, bytes.data());
    return aDevice.GetRegisterPort().Write(aAddress, bytes.data(), bytes.size(), kGenerousLimitMs);
  }
  static KrResult WriteFloat(KrDevice& aDevice, std::uint64_t aAddress, double aValue) {
    std::array<std::uint8_t, 8> bytes = {};
    krtransport::EncodeFloat(aValue, bytes.data());
    return aDevice.GetRegisterPort().Write(aAddress, bytes.data(), bytes.size(), kGenerousLimitMs);
  }

  const std::shared_ptr<krtransport::SimulationTransport> mLab;
  KrSystem mSystem;
};
