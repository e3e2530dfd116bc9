// Cameras that come back at another address, or at none that can be reached, while others take the former one.

#include "acquisitionfixture.h"
#include "krtransport/krsimulatedfaults.h"
#include "parametertext.h"

#include <map>
#include <variant>

using krviewer::Acquisition;
using krviewer::AcquisitionProgress;
using krviewer::AcquisitionState;
using krviewer::CameraInfo;

namespace {

constexpr const char* kNewAddress = "192.168.77.99";
constexpr const char* kMask = "255.255.255.0";
constexpr const char* kNoGateway = "0.0.0.0";

// The built-in lab, in which a camera has another address once it was away.
krtransport::Lab MakeLab(const std::map<KrString, KrString>& aReturnAddresses) {
  krtransport::Lab lab = krtransport::GetBuiltInLab();
  for (krtransport::LabAdapter& adapter : lab.adapters)
    for (krtransport::LabNetworkDevice& device : adapter.devices)
      if (auto* const camera = std::get_if<krtransport::LabGEVCamera>(&device))
        if (const auto found = aReturnAddresses.find(camera->macAddress); found != aReturnAddresses.end())
          camera->returnAddress = found->second;
  return lab;
}

KrString GetAddress(const AcquisitionProgress& aProgress) {
  return aProgress.camera ? dynamic_cast<const KrDeviceInfoGEV&>(*aProgress.camera).GetIPAddress() : KrString();
}

class ReturnElsewhere : public AcquisitionTest {
protected:
  ReturnElsewhere() : AcquisitionTest(MakeLab({{kMonoMAC, kNewAddress}, {kColourMAC, kMonoAddress}})) {}
};

class ReturnOutOfReach : public AcquisitionTest {
protected:
  ReturnOutOfReach() : AcquisitionTest(MakeLab({{kMonoMAC, "169.254.3.4"}})) {}
};

// So many pixels that no computer has the memory for all the buffers that a stream may have.
krtransport::Lab MakeLabOfLargeCamera() {
  krtransport::Lab lab = krtransport::GetBuiltInLab();
  for (krtransport::LabAdapter& adapter : lab.adapters)
    for (krtransport::LabNetworkDevice& device : adapter.devices)
      if (auto* const camera = std::get_if<krtransport::LabGEVCamera>(&device);
          camera && camera->macAddress == kMonoMAC)
        camera->sensorWidth = camera->sensorHeight = 32768;
  return lab;
}

class ReturnOfALargeCamera : public AcquisitionTest {
protected:
  ReturnOfALargeCamera() : AcquisitionTest(MakeLabOfLargeCamera()) {}
};

using ReturnToTheSame = AcquisitionTest;

} // namespace

TEST_F(ReturnElsewhere, CameraThatLostItsPower_IsTakenUpAtItsNewAddressWithItsSettings) {
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  Acquisition acquisition(mWindow, GetCamera());
  ASSERT_EQ(Await(acquisition, AcquisitionState::Streaming).state, AcquisitionState::Streaming);
  ASSERT_TRUE(AwaitWork(acquisition, [](KrGenParameterArray& aParameters) {
                return aParameters.GetFloat("ExposureTime")->SetValue(5000);
              }).IsOK());
  ASSERT_TRUE(WaitUntil([&] {
    for (const krviewer::KeptSetting& setting : acquisition.GetSettings())
      if (setting.name == KrString("ExposureTime"))
        return setting.value.ToUtf8().starts_with("5000");
    return false;
  }));

  faults->LosePower();
  ASSERT_EQ(Await(acquisition, AcquisitionState::Lost).state, AcquisitionState::Lost);
  faults->Return();

  const AcquisitionProgress back = Await(acquisition, AcquisitionState::Streaming);
  EXPECT_EQ(back.state, AcquisitionState::Streaming);
  EXPECT_EQ(GetAddress(back), KrString(kNewAddress));
  EXPECT_EQ(back.returns, 1u);
  double exposure = 0;
  EXPECT_TRUE(AwaitWork(acquisition, [&](KrGenParameterArray& aParameters) {
                return aParameters.GetFloat("ExposureTime")->GetValue(exposure);
              }).IsOK());
  EXPECT_EQ(exposure, 5000);
}

TEST_F(ReturnElsewhere, CameraThatTookTheAddress_IsLeftAloneUntilTheOneThatIsAwaitedIsBack) {
  Acquisition acquisition(mWindow, GetCamera());
  ASSERT_EQ(Await(acquisition, AcquisitionState::Streaming).state, AcquisitionState::Streaming);
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_TRUE(mLab->Lose(kColourMAC).IsOK());
  ASSERT_EQ(Await(acquisition, AcquisitionState::Lost).state, AcquisitionState::Lost);

  ASSERT_TRUE(mLab->Restore(kColourMAC).IsOK());
  std::unique_ptr<KrDevice> other;
  ASSERT_TRUE(Open(kColourMAC, other).IsOK()) << "It stands at the lost camera's address.";
  other.reset();
  EXPECT_EQ(acquisition.GetProgress().state, AcquisitionState::Lost);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  const AcquisitionProgress back = Await(acquisition, AcquisitionState::Streaming);
  EXPECT_EQ(GetAddress(back), KrString(kNewAddress));
  EXPECT_EQ(back.camera->GetUniqueID(), KrString(kMonoMAC));
}

TEST_F(ReturnOutOfReach, CameraIsSaidToBeThere_AndTakenUpWhenItIsGivenAnAddress) {
  Acquisition acquisition(mWindow, GetCamera());
  ASSERT_EQ(Await(acquisition, AcquisitionState::Streaming).state, AcquisitionState::Streaming);

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  ASSERT_EQ(Await(acquisition, AcquisitionState::Lost).state, AcquisitionState::Lost);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  const AcquisitionProgress stray =
      Await(acquisition, [](const AcquisitionProgress& aProgress) { return !aProgress.strayAddress.IsEmpty(); });
  EXPECT_EQ(stray.strayAddress, KrString("169.254.3.4"));
  EXPECT_EQ(stray.state, AcquisitionState::Lost);
  ASSERT_TRUE(mLab->ConfigureIP(kMonoMAC, kNewAddress, kMask, kNoGateway).IsOK());

  const AcquisitionProgress back = Await(acquisition, AcquisitionState::Streaming);
  EXPECT_EQ(back.state, AcquisitionState::Streaming);
  EXPECT_EQ(GetAddress(back), KrString(kNewAddress));
  EXPECT_TRUE(back.strayAddress.IsEmpty());
}

TEST_F(ReturnOfALargeCamera, CameraThatIsBackAndCannotBeStarted_IsSaidToBeUntilItIsHadWithoutFrames) {
  Acquisition acquisition(mWindow, GetCamera(), kStopped);
  krviewer::Loan<KrGenParameterArray>& loan = acquisition.GetParameters(krviewer::HostSide::Stream);
  KrGenParameterArray* stream = nullptr;
  ASSERT_TRUE(WaitUntil([&] { return (stream = loan.Borrow()) != nullptr; }));
  EXPECT_TRUE(SetText(*stream, "StreamBufferCountManual", "1024").IsOK());
  loan.GiveBack();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  EXPECT_FALSE(Await(acquisition, AcquisitionState::Lost).isRefused);
  EXPECT_TRUE(AwaitStart(acquisition).IsOK()) << "It is started when it is back.";

  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  const AcquisitionProgress refused =
      Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.isRefused; });
  EXPECT_TRUE(refused.isRefused);
  EXPECT_EQ(refused.state, AcquisitionState::Lost);
  EXPECT_TRUE(AwaitStop(acquisition).IsOK());
  const AcquisitionProgress had = Await(acquisition, AcquisitionState::Connected);
  EXPECT_EQ(had.state, AcquisitionState::Connected);
  EXPECT_FALSE(had.isRefused);
}

TEST_F(ReturnToTheSame, CameraThatWasGivenAnotherAddressSinceItWasFound_IsOpenedThere) {
  const CameraInfo camera = GetCamera();
  ASSERT_TRUE(mLab->ConfigureIP(kMonoMAC, kNewAddress, kMask, kNoGateway).IsOK());

  Acquisition acquisition(mWindow, camera);

  const AcquisitionProgress progress = Await(acquisition, AcquisitionState::Streaming);
  EXPECT_EQ(progress.state, AcquisitionState::Streaming);
  EXPECT_EQ(GetAddress(progress), KrString(kNewAddress));
}

TEST_F(ReturnToTheSame, CameraThatBecomesSlowAfterItWasOpened_IsSaidToBeUntilItIsPrompt) {
  const std::shared_ptr<KrSimulatedFaults> faults = mLab->GetFaults(kMonoMAC);
  Acquisition acquisition(mWindow, GetCamera());
  EXPECT_FALSE(Await(acquisition, AcquisitionState::Streaming).isSlow);

  faults->SlowRegisters(300);
  EXPECT_TRUE(Await(acquisition, [](const AcquisitionProgress& aProgress) { return aProgress.isSlow; }).isSlow);
  faults->EndRegisterFaults();

  EXPECT_FALSE(Await(acquisition, [](const AcquisitionProgress& aProgress) { return !aProgress.isSlow; }).isSlow);
}
