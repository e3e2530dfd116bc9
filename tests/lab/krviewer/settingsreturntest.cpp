#include "acquisition/settingsreturn.h"

#include "acquisition/keptsettings.h"
#include "acquisitionfixture.h"
#include "gate.h"
#include "krtransport/krsimulatedfaults.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <string>
#include <string_view>

using krviewer::KeptSetting;
using krviewer::KeptSettings;
using krviewer::SettingsReturn;
using krviewer::SettingsReturned;
using testing::HasSubstr;

namespace {

// The value that is noted for a place, as DescribePlace names it; empty where none is.
KrString Find(const std::vector<KeptSetting>& aSettings, const KrString& aPlace) {
  const auto found = std::ranges::find_if(
      aSettings, [&](const KeptSetting& aSetting) { return krviewer::DescribePlace(aSetting) == aPlace; });
  return found == aSettings.end() ? KrString() : found->value;
}

/// Keeps the thread on which all sinks hear of changes, once it hears of one, until the gate is opened.
struct HoldingSink : KrGenEventSink {
  void OnParameterUpdate(KrGenParameter*) override { gate.Wait({}); }
  Gate gate;
};

/// A camera that is opened, left and opened again.
class SettingsReturnTest : public LabTest {
protected:
  void SetUp() override {
    mFaults = mLab->GetFaults(kMonoMAC);
    ASSERT_TRUE(LabTest::Open(kMonoMAC, mDevice).IsOK());
    mKept.Follow(GetArray());
  }
  void TearDown() override { mKept.Leave(); }

  KrGenParameterArray& GetArray() { return *mDevice->GetParameters(); }
  KrResult Set(const KrString& aName, const KrString& aValue) { return GetArray().Get(aName)->FromString(aValue); }
  KrString Read(const KrString& aName) {
    KrString value;
    EXPECT_TRUE(GetArray().Get(aName)->ToString(value).IsOK()) << aName.CStr();
    return value;
  }
  bool AwaitNoted(const KrString& aPlace, const KrString& aValue) {
    return WaitUntil([&] { return Find(mKept.Get(), aPlace) == aValue; });
  }
  // The camera starts anew and is opened again; nothing is noted of the new connection.
  void LosePower() {
    mKept.Leave();
    mDevice.reset();
    mFaults->LosePower();
    mFaults->Return();
    ASSERT_TRUE(LabTest::Open(kMonoMAC, mDevice).IsOK());
    (void)GetArray(); // Its description is read.
  }
  KrResult Return(SettingsReturned& aReturned, const std::vector<KeptSetting>& aSettings) {
    return SettingsReturn(GetArray()).Run(aSettings, {}, aReturned);
  }

  std::shared_ptr<KrSimulatedFaults> mFaults;
  std::unique_ptr<KrDevice> mDevice;
  KeptSettings mKept;
};

} // namespace

TEST_F(SettingsReturnTest, CameraThatLostItsPower_IsSetAsItWas) {
  ASSERT_TRUE(Set("Width", "640").IsOK());
  ASSERT_TRUE(Set("OffsetX", "320").IsOK());
  ASSERT_TRUE(Set("PixelFormat", "Mono16").IsOK());
  ASSERT_TRUE(Set("ExposureTime", "2500").IsOK());
  ASSERT_TRUE(AwaitNoted("Width", "640") && AwaitNoted("OffsetX", "320") && AwaitNoted("PixelFormat", "Mono16") &&
              AwaitNoted("ExposureTime", "2500"));
  LosePower();
  ASSERT_EQ(Read("Width"), "1280");

  SettingsReturned returned;
  EXPECT_TRUE(Return(returned, mKept.Get()).IsOK());

  EXPECT_EQ(returned.set, 4u);
  EXPECT_TRUE(returned.different.IsEmpty()) << returned.different[0].CStr();
  EXPECT_EQ(Read("Width"), "640");
  EXPECT_EQ(Read("OffsetX"), "320");
  EXPECT_EQ(Read("PixelFormat"), "Mono16");
  EXPECT_EQ(Read("ExposureTime"), "2500");
}

TEST_F(SettingsReturnTest, ValuesBehindASelector_AreSetUnderTheirPositionsAndTheSelectorStandsAsItDid) {
  ASSERT_TRUE(Set("TriggerSelector", "AcquisitionStart").IsOK());
  ASSERT_TRUE(Set("TriggerSource", "Line1").IsOK());
  ASSERT_TRUE(AwaitNoted("TriggerSelector=AcquisitionStart, TriggerSource", "Line1"));
  ASSERT_TRUE(Set("TriggerSelector", "FrameStart").IsOK());
  ASSERT_TRUE(Set("TriggerMode", "On").IsOK());
  ASSERT_TRUE(AwaitNoted("TriggerSelector=FrameStart, TriggerMode", "On"));
  ASSERT_TRUE(AwaitNoted("TriggerSelector", "FrameStart"));
  LosePower();

  SettingsReturned returned;
  EXPECT_TRUE(Return(returned, mKept.Get()).IsOK());

  EXPECT_EQ(returned.set, 2u);
  EXPECT_EQ(Read("TriggerSelector"), "FrameStart");
  EXPECT_EQ(Read("TriggerMode"), "On");
  ASSERT_TRUE(Set("TriggerSelector", "AcquisitionStart").IsOK());
  EXPECT_EQ(Read("TriggerSource"), "Line1");
  EXPECT_EQ(Read("TriggerMode"), "Off");
}

TEST_F(SettingsReturnTest, CameraThatKeptItsSettings_IsNotWrittenTo) {
  ASSERT_TRUE(Set("Width", "640").IsOK());
  ASSERT_TRUE(AwaitNoted("Width", "640"));
  const std::vector<KeptSetting> kept = mKept.Get();
  mKept.Leave();

  SettingsReturned returned;
  EXPECT_TRUE(Return(returned, kept).IsOK());

  EXPECT_EQ(returned.set, 0u);
  EXPECT_TRUE(returned.different.IsEmpty());
  EXPECT_EQ(Read("Width"), "640");
}

TEST_F(SettingsReturnTest, FeatureThatTheCameraHasNoMore_IsToldAndCostsNothingElse) {
  mKept.Leave();
  const std::vector<KeptSetting> kept = {{.name = "ExposureTime", .value = "2500"},
                                         {.name = "Sharpness", .value = "3"}};

  SettingsReturned returned;
  EXPECT_TRUE(Return(returned, kept).IsOK());

  EXPECT_EQ(Read("ExposureTime"), "2500");
  ASSERT_EQ(returned.different.GetCount(), 1u);
  EXPECT_THAT(returned.different[0].ToUtf8(), HasSubstr("Sharpness was 3"));
}

TEST_F(SettingsReturnTest, ValueThatTheCameraRefuses_IsToldWithWhatItIs) {
  mKept.Leave();
  const std::vector<KeptSetting> kept = {{.name = "Width", .value = "5000"}, {.name = "Height", .value = "480"}};

  SettingsReturned returned;
  EXPECT_TRUE(Return(returned, kept).IsOK());

  EXPECT_EQ(Read("Height"), "480");
  ASSERT_EQ(returned.different.GetCount(), 1u);
  EXPECT_EQ(returned.different[0], "Width was 5000 and is 1280.");
}

TEST_F(SettingsReturnTest, CameraThatDoesNotAnswerForAWhile_IsSetAsItWasByAnotherReturn) {
  ASSERT_TRUE(Set("Height", "480").IsOK());
  ASSERT_TRUE(AwaitNoted("Height", "480"));
  LosePower();
  mFaults->SilenceRegister(krtransport::cameraregister::kHeight, 1);

  SettingsReturned returned;
  EXPECT_EQ(Return(returned, mKept.Get()).GetCode(), KrResult::Code::TimeLimitExceeded);
  // It is found out behind the scenes that it answers again.
  EXPECT_TRUE(WaitUntil([&] { return Return(returned, mKept.Get()).IsOK(); }));

  EXPECT_EQ(Read("Height"), "480");
  EXPECT_TRUE(returned.different.IsEmpty());
}

TEST_F(SettingsReturnTest, CameraLostAgain_EndsWithConnectionLostAndKeepsWhatWasNoted) {
  ASSERT_TRUE(Set("Width", "640").IsOK());
  ASSERT_TRUE(AwaitNoted("Width", "640"));
  LosePower();
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  SettingsReturned returned;
  EXPECT_EQ(Return(returned, mKept.Get()).GetCode(), KrResult::Code::ConnectionLost);

  EXPECT_EQ(Find(mKept.Get(), "Width"), "640");
}

TEST_F(SettingsReturnTest, Stopped_Ends) {
  mKept.Leave();
  std::stop_source stop;
  stop.request_stop();

  SettingsReturned returned;
  EXPECT_EQ(SettingsReturn(GetArray()).Run({{.name = "Width", .value = "640"}}, stop.get_token(), returned).GetCode(),
            KrResult::Code::Aborted);
}

TEST_F(AcquisitionTest, CameraThatLostItsPower_StreamsOnAsItWasSet) {
  krviewer::Acquisition acquisition(mWindow, GetCamera());
  Await(acquisition, krviewer::AcquisitionState::Streaming);
  ASSERT_TRUE(AwaitWork(
                  acquisition,
                  [](KrGenParameterArray& aParameters) { return aParameters.GetInteger("Width")->SetValue(640); }, true)
                  .IsOK());
  ASSERT_TRUE(WaitUntil([&] { return Find(acquisition.GetSettings(), "Width") == "640"; }));

  mLab->GetFaults(kMonoMAC)->LosePower();
  const krviewer::AcquisitionProgress lost = Await(acquisition, krviewer::AcquisitionState::Lost);
  EXPECT_EQ(lost.returns, 0u);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  const krviewer::AcquisitionProgress back = Await(acquisition, [&](const krviewer::AcquisitionProgress& aProgress) {
    return aProgress.figures.GetFrames() > lost.figures.GetFrames();
  });
  EXPECT_EQ(back.returns, 1u);
  EXPECT_EQ(back.settings.set, 1u);
  EXPECT_TRUE(back.settings.different.IsEmpty());
  acquisition.Stop();
  EXPECT_EQ(mWindow.GetInternalBuffer().GetImage()->GetWidth(), 640u);
}

TEST_F(AcquisitionTest, StoppedCameraThatLostItsPower_IsSetAsItWasAndStaysStopped) {
  krviewer::Acquisition acquisition(mWindow, GetCamera(), kStopped);
  ASSERT_TRUE(AwaitWork(acquisition, UseSoftwareTrigger).IsOK());
  ASSERT_TRUE(
      WaitUntil([&] { return Find(acquisition.GetSettings(), "TriggerSelector=FrameStart, TriggerMode") == "On"; }));

  mLab->GetFaults(kMonoMAC)->LosePower();
  Await(acquisition, krviewer::AcquisitionState::Lost);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  EXPECT_EQ(Await(acquisition, krviewer::AcquisitionState::Connected).returns, 1u);
  KrString mode;
  EXPECT_TRUE(AwaitWork(acquisition, [&mode](KrGenParameterArray& aParameters) {
                return aParameters.GetEnum("TriggerMode")->GetEntry(mode);
              }).IsOK());
  EXPECT_EQ(mode, "On");
}

// Word of changes comes on a thread that may have others to tell first.
TEST_F(AcquisitionTest, ValueThatARequestHasSet_IsNotedWhenTheRequestEnds) {
  krviewer::Acquisition acquisition(mWindow, GetCamera(), kStopped);
  KrGenParameterArray* const parameters = AwaitParameters(acquisition);
  ASSERT_NE(parameters, nullptr);
  ASSERT_TRUE(WaitUntil([&] { return Find(acquisition.GetSettings(), "ExposureTime") != ""; }));
  HoldingSink sink;
  KrGenParameter& other = *parameters->Get("Gain");
  ASSERT_TRUE(other.RegisterEventSink(&sink).IsOK());
  ASSERT_TRUE(other.FromString("1").IsOK());
  ASSERT_TRUE(sink.gate.AwaitReached());

  EXPECT_TRUE(AwaitWork(acquisition, [](KrGenParameterArray& aParameters) {
                return aParameters.Get("ExposureTime")->FromString("2500");
              }).IsOK());

  EXPECT_EQ(Find(acquisition.GetSettings(), "ExposureTime"), "2500");
  sink.gate.Open();
  ASSERT_TRUE(other.UnregisterEventSink(&sink).IsOK());
  acquisition.GetParameters(krviewer::ParameterBorrower::Browser).GiveBack();
}
