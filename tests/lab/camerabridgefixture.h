#pragma once
// A camera bridge on the ports of a simulated frame grabber, as applications use it.

#include "clcamerafixture.h"

#include "krbase/krlogger.h"
#include "krcamerabridge/krcamerabridge.h"

#include <optional>
#include <string>

/// The frame grabber of the built-in lab.
inline constexpr const char* kGrabberMAC = "02:4b:52:00:78:12";
/// What describes its text camera.
inline constexpr const char* kTextCameraFile = KR_CAMERA_FILES "/simulated-camera.yml";

/// As long as it lives: a lab of its own, as a program has it that has just been started, and a device of it.
class BridgeLab {
public:
  explicit BridgeLab(const krtransport::Lab& aLab = krtransport::GetBuiltInLab(), const char* aMAC = kGrabberMAC)
      : mLab(std::make_shared<krtransport::SimulationTransport>(aLab, std::make_shared<JumpingClock>())), mMAC(aMAC) {
    krsystem::RegisterTransport(mLab);
    KrSystem system;
    system.SetSubnetBroadcastEnabled(false);
    EXPECT_TRUE(system.Find().IsOK());
    for (std::size_t i = 0; i < system.GetDeviceCount(); ++i)
      if (system.GetDeviceInfo(i)->GetUniqueID() == aMAC) {
        EXPECT_TRUE(KrDevice::Open(*system.GetDeviceInfo(i), KrDeviceAccess::Control, mDevice).IsOK());
      }
  }
  ~BridgeLab() {
    mDevice.reset();
    krsystem::UnregisterTransport(mLab);
  }
  BridgeLab(const BridgeLab&) = delete;
  BridgeLab& operator=(const BridgeLab&) = delete;

  KrDevice* GetDevice() { return mDevice.get(); }
  void CloseDevice() { mDevice.reset(); }
  KrGenParameterArray& GetArray() { return *mDevice->GetParameters(); }
  std::shared_ptr<KrSimulatedFaults> GetFaults() { return mLab->GetFaults(mMAC); }
  KrResult Lose() { return mLab->Lose(mMAC); }
  std::uint64_t CountSent(std::uint32_t aPort) {
    KrSimulatedSerialCounts counts;
    EXPECT_TRUE(GetFaults()->GetSerialCounts(aPort, counts).IsOK());
    return counts.sent;
  }

private:
  const std::shared_ptr<krtransport::SimulationTransport> mLab;
  const char* const mMAC;
  std::unique_ptr<KrDevice> mDevice;
};

/// Succeeds for a result that is OK; else says which it is.
inline testing::AssertionResult IsFine(const KrResult& aResult) {
  if (aResult.IsOK())
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << aResult.GetCodeString().CStr() << ": " << aResult.GetDescription().CStr();
}

/// Connects by GenCP with the best of the camera's descriptions.
inline KrResult ConnectGenCP(KrCameraBridge& aBridge) {
  KrStringList ids;
  KrResult result = aBridge.GetGenCPXMLIDs(ids);
  return result.IsOK() ? aBridge.ConnectGenCP(ids[0]) : result;
}

/// The value of a parameter as text, as the camera or device has it now.
inline std::string GetText(KrGenParameterArray& aArray, const char* aName) {
  aArray.InvalidateCache();
  KrString text;
  KrGenParameter* const parameter = aArray.Get(aName);
  const KrResult result = parameter ? parameter->ToString(text) : KrResult(KrResult::Code::NotFound);
  return result.IsOK() ? text.ToUtf8() : result.GetCodeString().ToUtf8();
}

inline KrResult SetText(KrGenParameterArray& aArray, const char* aName, const char* aValue) {
  KrGenParameter* const parameter = aArray.Get(aName);
  return parameter ? parameter->FromString(aValue) : KrResult(KrResult::Code::NotFound);
}
