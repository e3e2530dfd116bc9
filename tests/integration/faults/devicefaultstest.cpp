// A camera that fails while it is looked for, opened, read, set or streams: at each step of it, in each way.
//
// Beside the cases here, what a transport makes of a real camera's loss is in gigevisionlosstest, gigevisionaccesstest
// and network/networkaccesstest, of a simulated one's in lab/simulatedfaultstest and lab/registerfaultstest.

#include "await.h"
#include "faultlab.h"

#include "krdevice/krstream.h"
#include "krgenicam/krgenfloat.h"
#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgensettings.h"

namespace krtest {

namespace {

const std::uint32_t kFrameLimitMs = krtest::GetGenerousMs();

class FaultyDevice : public FaultLab, public testing::WithParamInterface<DeviceFaultRow> {
protected:
  using FaultLab::Open;
  // Opens the camera and makes its parameters.
  KrResult Open(std::unique_ptr<KrDevice>& aDevice, KrGenParameterArray*& aParameters) {
    KrResult opened = Open(aDevice);
    return opened.IsOK() ? aDevice->GetParameters(aParameters) : opened;
  }
  // What the camera is set to, as its own parameters tell it.
  KrResult Store(KrGenParameterArray& aParameters, KrGenSettings& aSettings) {
    KrStringList problems;
    KrResult stored = aParameters.StoreSettings(aSettings, problems);
    EXPECT_EQ(stored.IsOK(), problems.GetCount() == 0);
    return stored;
  }
  KrResult Discover();
  KrResult OpenAndDescribe();
  KrResult ReadEverything();
  KrResult SetEverything(const KrGenSettings& aSettings);
  KrResult Stream();
};

KrResult FaultyDevice::Discover() {
  KrResult result = mSystem.Find();
  const KrDeviceInfo* info = nullptr;
  const KrResult asked = mSystem.FindDevice(kFaultAddress, &info);
  mSteps.NoteUsed(); // What is diagnosed is the host.
  std::vector<KrFinding> findings;
  const KrResult diagnosed = mSystem.Diagnose(findings);
  for (const KrResult& each : {asked, diagnosed})
    result = result.IsOK() ? each : result;
  return result;
}

KrResult FaultyDevice::OpenAndDescribe() {
  std::unique_ptr<KrDevice> device;
  KrGenParameterArray* parameters = nullptr;
  KrResult result = Open(device, parameters);
  mSteps.NoteUsed(); // What follows is the host's, and closing.
  if (result.IsOK())
    result = device->GetTransportParameters(parameters);
  return result;
}

KrResult FaultyDevice::ReadEverything() {
  std::unique_ptr<KrDevice> device;
  KrGenParameterArray* parameters = nullptr;
  KrResult result = Open(device, parameters);
  KrGenSettings settings;
  if (result.IsOK())
    result = Store(*parameters, settings);
  mSteps.NoteUsed();
  return result;
}

// Restores settings and compares what the camera says then.
KrResult FaultyDevice::SetEverything(const KrGenSettings& aSettings) {
  std::unique_ptr<KrDevice> device;
  KrGenParameterArray* parameters = nullptr;
  KrResult result = Open(device, parameters);
  KrStringList problems;
  if (result.IsOK())
    result = parameters->RestoreSettings(aSettings, problems);
  if (!result.IsOK())
    return result;
  KrGenSettings present;
  result = Store(*parameters, present);
  mSteps.NoteUsed();
  if (result.IsOK()) {
    EXPECT_EQ(present.ToText(), aSettings.ToText()) << "a setting was lost";
  }
  return result;
}

KrResult FaultyDevice::Stream() {
  std::unique_ptr<KrDevice> device;
  KrResult result = Open(device);
  if (!result.IsOK())
    return result;
  KrStream stream(*device, 4);
  result = stream.Start();
  for (int frame = 0; result.IsOK() && frame < 3; ++frame) {
    KrBuffer* buffer = nullptr;
    result = stream.Retrieve(buffer, kFrameLimitMs);
    if (result.IsOK()) {
      EXPECT_EQ(buffer->GetStatus(), KrBufferStatus::Complete);
      result = stream.Release(buffer);
    }
  }
  mSteps.NoteUsed();
  stream.Stop();
  return result;
}

} // namespace

TEST_P(FaultyDevice, WhileItIsLookedFor_IsSaidAndItIsFoundAfterwards) {
  TryAtEachStep(GetParam().fault, [this] { return Discover(); });

  std::size_t cameras = 0;
  for (std::size_t i = 0; i < mSystem.GetDeviceCount(); ++i)
    cameras += mSystem.GetDeviceInfo(i) == mInfo ? 1 : 0;
  EXPECT_EQ(cameras, 1U) << "the camera is another object than before";
}

TEST_P(FaultyDevice, WhileItIsOpened_IsSaidAndItOpensAfterwards) {
  TryAtEachStep(GetParam().fault, [this] { return OpenAndDescribe(); });
}

TEST_P(FaultyDevice, WhileItsFeaturesAreRead_IsSaidAndTheyAreReadAfterwards) {
  TryAtEachStep(GetParam().fault, [this] { return ReadEverything(); });
}

TEST_P(FaultyDevice, WhileItIsSet_IsSaidAndNoSettingIsLostAfterwards) {
  KrGenSettings settings;
  {
    std::unique_ptr<KrDevice> device;
    ASSERT_TRUE(Open(device).IsOK());
    KrGenParameterArray& parameters = *device->GetParameters();
    ASSERT_TRUE(parameters.GetInteger("Width")->SetValue(640).IsOK());
    ASSERT_TRUE(parameters.GetInteger("OffsetX")->SetValue(64).IsOK());
    ASSERT_TRUE(parameters.GetFloat("ExposureTime")->SetValue(1234).IsOK());
    ASSERT_TRUE(Store(parameters, settings).IsOK());
  }

  TryAtEachStep(GetParam().fault, [&] { return SetEverything(settings); });
}

TEST_P(FaultyDevice, WhileItStreams_IsSaidAndItStreamsAfterwards) {
  TryAtEachStep(GetParam().fault, [this] { return Stream(); });
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultyDevice, testing::ValuesIn(kDeviceFaults), NameRow<DeviceFaultRow>);

} // namespace krtest
