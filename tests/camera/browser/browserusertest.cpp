// The feature browser as a user meets it: a camera that streams, a window on the screen, a mouse and a keyboard.

#include "browseruser.h"
#include "camerathatstreams.h"
#include "fakecamera.h"
#include "krgui/krgenbrowserwnd.h"
#include "krtransport/krtransport.h"
#include "simulation/cameraregisters.h"
#include "simulation/registermemory.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace {

using namespace browseruser;

const QString kBrowser = "Features";

/// One camera with what is there to be set and to be found.
struct CameraCase {
  const char* name;
  bool isSimulated;
  const char* exposure;
  const char* exposureValue;
  const char* gain;
  const char* gainValue;
  const char* guruRow;        ///< The row that a Guru alone sees.
  const char* featureName;    ///< Of a feature whose display name is another one.
  const char* displayName;    ///< That one.
  const char* alphabetically; ///< The first row of the list for a Guru.
  const char* gainRow;        ///< What its row shows after TurnGain.
};

void PrintTo(const CameraCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

/// A browser, and a camera that streams.
class BrowserUser : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(KrInstallTransports({.gigEVision = true, .usb3Vision = false, .simulation = true}).IsOK());
  }

  /// Shows the browser and lets the user do this.
  void Run(const std::function<void(UserHands&)>& aScript) {
    mBrowser.SetTitle(kBrowser.toStdString());
    mBrowser.SetGenParameterArray(mCamera->GetParameters());
    RunWithUser([this] { EXPECT_TRUE(mBrowser.ShowModal(0).IsOK() || !mBrowser.GetWidget()); },
                [&](UserHands& aUser) {
                  if (aUser.AwaitWindow(kBrowser) && aUser.AwaitRow(kBrowser, kGrid, "  ExposureTime"))
                    aScript(aUser);
                });
    mBrowser.SetGenParameterArray(nullptr);
  }
  /// Opens a camera of the simulated lab whose sensor sees a scene.
  void OpenSimulated() {
    ASSERT_TRUE(mSystem.Find().IsOK());
    for (std::size_t index = 0; !mCamera && index < mSystem.GetDeviceCount(); ++index)
      if (mSystem.GetDeviceInfo(index)->GetDisplayID().ToUtf8().starts_with("Simulated Mono Camera"))
        mCamera.emplace(*mSystem.GetDeviceInfo(index));
    ASSERT_TRUE(mCamera && mCamera->GetParameters());
    // The lab lives as long as the process, and its camera keeps what a test before has set.
    KrGenParameterArray& parameters = *mCamera->GetParameters();
    ASSERT_TRUE(parameters.GetFloat("ExposureTime")->SetValue(1000).IsOK());
    ASSERT_TRUE(parameters.GetFloat("Gain")->SetValue(0).IsOK());
    ASSERT_TRUE(parameters.GetEnum("TestPattern")->SetValue(3).IsOK());
  }

  /// Opens an independent camera, over a network.
  void OpenReal() {
    mFake.emplace();
    const KrDeviceInfo* info = nullptr;
    ASSERT_TRUE(mSystem.FindDevice("127.0.0.1", &info).IsOK());
    const KrGenDescription description = ReadDescription(*info);
    mCamera.emplace(*info, &description);
  }

  std::optional<FakeCamera> mFake;
  KrSystem mSystem;
  std::optional<CameraThatStreams> mCamera;
  KrGenBrowserWnd mBrowser;

private:
  // The camera's own leaves its gain out of the categories that can be reached, and has everything for beginners.
  static KrGenDescription ReadDescription(const KrDeviceInfo& aInfo) {
    std::unique_ptr<KrDevice> device;
    KrGenDescription description;
    EXPECT_TRUE(KrDevice::Open(aInfo, KrDeviceAccess::Control, device).IsOK());
    EXPECT_TRUE(
        device &&
        KrGenDescription::ReadFromDevice(device->GetRegisterPort(), KrGenBootstrap::GigEVision, description).IsOK());
    std::string text(description.GetText());
    InsertBehind(text, "<pFeature>TransportLayerControl</pFeature>", "<pFeature>AnalogControl</pFeature>");
    InsertBehind(text, "<Category Name=\"Debug\" NameSpace=\"Standard\">", "<Visibility>Guru</Visibility>");
    EXPECT_TRUE(KrGenDescription::ReadFromMemory(text, "the camera's own with its gain", description).IsOK());
    return description;
  }
  static void InsertBehind(std::string& aText, const std::string& aPlace, const std::string& aWhat) {
    const std::size_t place = aText.find(aPlace);
    ASSERT_NE(place, std::string::npos) << aPlace;
    aText.insert(place + aPlace.size(), aWhat);
  }
};

/// On each of both cameras.
class BrowserOnA : public BrowserUser, public testing::WithParamInterface<CameraCase> {
protected:
  void SetUp() override {
    BrowserUser::SetUp();
    if (GetParam().isSimulated)
      OpenSimulated();
    else
      OpenReal();
    ASSERT_TRUE(mCamera && mCamera->GetParameters());
  }

  /// Writes 5 into the camera's gain past its parameters, which hear nothing of it.
  KrResult TurnGain() {
    std::array<std::uint8_t, 8> bytes = {};
    if (GetParam().isSimulated) {
      krtransport::EncodeFloat(5, bytes.data());
      return mCamera->GetDevice().GetRegisterPort().Write(krtransport::cameraregister::kGain, bytes.data(), 8,
                                                          UserHands::kLimitMs);
    }
    constexpr std::uint64_t kGainRaw = 0x110;
    krtransport::EncodeInteger(5, bytes.data());
    return mCamera->GetDevice().GetRegisterPort().Write(kGainRaw, bytes.data(), 4, UserHands::kLimitMs);
  }
};

/// With what the simulated camera alone has.
class BrowserOnTheSimulatedCamera : public BrowserUser {
protected:
  void SetUp() override {
    BrowserUser::SetUp();
    OpenSimulated();
  }
};

constexpr CameraCase kSimulated = {.name = "SimulatedCamera",
                                   .isSimulated = true,
                                   .exposure = "ExposureTime",
                                   .exposureValue = "3000",
                                   .gain = "Gain",
                                   .gainValue = "6",
                                   .guruRow = "  GevHeartbeatTimeout | 3000",
                                   .featureName = "  DeviceUserID | ",
                                   .displayName = "  Device User ID | ",
                                   .alphabetically = "AcquisitionFrameCount",
                                   .gainRow = "Gain | 5 dB"};
constexpr CameraCase kReal = {.name = "RealCamera",
                              .isSimulated = false,
                              .exposure = "ExposureTimeAbs",
                              .exposureValue = "1000",
                              .gain = "GainRaw",
                              .gainValue = "5",
                              .guruRow = "  TestRegister | 305419896",
                              .featureName = "  DeviceVendorName | ",
                              .displayName = "  Vendor Name | ",
                              .alphabetically = "AcquisitionMode",
                              .gainRow = "GainRaw | 5"};

INSTANTIATE_TEST_SUITE_P(Camera, BrowserOnA, testing::Values(kSimulated, kReal),
                         [](const auto& aCase) { return std::string(aCase.param.name); });

} // namespace

TEST_P(BrowserOnA, ExposureAndGainSetByKeyboard_ChangeTheBrightnessOfThePicture) {
  Run([&](UserHands& aUser) {
    ASSERT_TRUE(aUser.Await("a picture", [&] { return mCamera->GetBrightness() >= 0; }));
    const double before = mCamera->GetBrightness();

    ASSERT_TRUE(SetNumber(aUser, kBrowser, GetParam().exposure, GetParam().exposureValue));
    EXPECT_TRUE(aUser.Await("another picture", [&] { return std::abs(mCamera->GetBrightness() - before) > 1; }));
    const double exposed = mCamera->GetBrightness();
    ASSERT_TRUE(SetNumber(aUser, kBrowser, GetParam().gain, GetParam().gainValue));
    EXPECT_TRUE(aUser.Await("a third picture", [&] { return std::abs(mCamera->GetBrightness() - exposed) > 1; }));
    EXPECT_TRUE(aUser.Await("the browser knowing of it", [&] { return mBrowser.HasChanged(); }));
  });
}

TEST_P(BrowserOnA, VisibilityNamesAndView_AreSwitched) {
  Run([](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitNoRow(kBrowser, kGrid, GetParam().guruRow));

    ASSERT_TRUE(Choose(aUser, kBrowser, kVisibility, "Down", 2));
    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, GetParam().guruRow));

    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, GetParam().featureName));
    ASSERT_TRUE(OpenOptions(aUser, kBrowser) && Choose(aUser, kOptions, kNames, "Down"));
    EXPECT_FALSE(aUser.IsEnabled(kOptions, kView)) << "the list goes with feature names alone";
    ASSERT_TRUE(AcceptOptions(aUser, kBrowser));
    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, GetParam().displayName));

    ASSERT_TRUE(OpenOptions(aUser, kBrowser) && Choose(aUser, kOptions, kNames, "Up") &&
                Choose(aUser, kOptions, kView, "Down") && AcceptOptions(aUser, kBrowser));
    EXPECT_TRUE(aUser.AwaitNoRow(kBrowser, kGrid, GetParam().featureName)) << "moved in under its category";
    EXPECT_EQ(aUser.GetRows(kBrowser, kGrid).value(0).section(" | ", 0, 0), GetParam().alphabetically);
  });

  EXPECT_EQ(mBrowser.GetVisibility(), KrGenVisibility::Guru);
}

TEST_P(BrowserOnA, ManualRefresh_ReadsWhatTheCameraChangedByItselfWhenAsked) {
  Run([this](UserHands& aUser) {
    ASSERT_TRUE(OpenOptions(aUser, kBrowser) && Choose(aUser, kOptions, kRefresh, "Down") &&
                AcceptOptions(aUser, kBrowser) && aUser.Await("the button to refresh", IsRefreshOffered));
    const QString gain = QString(GetParam().gain) + " | 0";
    ASSERT_TRUE(aUser.AwaitRow(kBrowser, kGrid, gain));

    ASSERT_TRUE(TurnGain().IsOK());
    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, gain)) << "nobody has asked yet";
    aUser.Click(kBrowser, kRefreshButton);
    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, GetParam().gainRow));

    ASSERT_TRUE(OpenOptions(aUser, kBrowser) && Choose(aUser, kOptions, kRefresh, "Up", 2) &&
                AcceptOptions(aUser, kBrowser));
    EXPECT_TRUE(aUser.Await("the button that is of no use", [] { return !IsRefreshOffered(); }));
    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, GetParam().gainRow)) << "read again by the polling thread's first pass";
  });

  EXPECT_EQ(mBrowser.GetRefreshMode(), KrGenRefresh::Polling);
}

TEST_P(BrowserOnA, Search_StepsThroughTheMatchesByKeyboardAndMouse) {
  Run([](UserHands& aUser) {
    const auto isAt = [&aUser](const QString& aName, const QString& aResult) {
      return aUser.Await(aName + ", " + aResult,
                         [&] { return GetSelectedName() == aName && GetSearchResult() == aResult; });
    };
    ASSERT_TRUE(OpenSearch(aUser));

    aUser.Type("offset");
    EXPECT_TRUE(isAt("OffsetX", "Result 1 of 2"));
    aUser.Press("Return");
    EXPECT_TRUE(isAt("OffsetY", "Result 2 of 2"));
    aUser.Press("Return");
    EXPECT_TRUE(isAt("OffsetX", "Result 1 of 2"));
    aUser.Click(kBrowser, kPrevious);
    EXPECT_TRUE(isAt("OffsetY", "Result 2 of 2"));
    aUser.Click(kBrowser, kNext);
    EXPECT_TRUE(isAt("OffsetX", "Result 1 of 2"));

    aUser.Click(kBrowser, kCloseSearch);
    EXPECT_TRUE(aUser.Await("the search row gone", [] { return GetSearchResult().isEmpty(); }));
    ASSERT_TRUE(OpenSearch(aUser));
    aUser.Type("offset!");
    EXPECT_TRUE(aUser.Await("nothing found", [] { return GetSearchResult() == "No result found"; }));
  });
}

TEST_F(BrowserOnTheSimulatedCamera, ExposureSetByKeyboard_ReachesTheCameraAndWhatDependsOnIt) {
  Run([](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "ResultingFrameRate | 30 Hz"));

    ASSERT_TRUE(SetNumber(aUser, kBrowser, "ExposureTime", "100000"));

    EXPECT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "ResultingFrameRate | 10 Hz"));
  });

  double exposureTime = 0;
  EXPECT_TRUE(mCamera->GetParameters()->GetFloat("ExposureTime")->GetValue(exposureTime).IsOK());
  EXPECT_EQ(exposureTime, 100000.0);
}

TEST_F(BrowserOnTheSimulatedCamera, PictureChosenByKeyboard_IsWhatTheCameraSends) {
  Run([this](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kBrowser, kGrid, "TestPattern | Off"));
    ASSERT_TRUE(aUser.Await("a picture that stands still", [this] { return !mCamera->IsMoving(); }));
    ASSERT_TRUE(Find(aUser, "TestPattern"));

    aUser.Press("Return");
    ASSERT_TRUE(aUser.Await("the list of patterns", HasEditorFocus));
    aUser.Press("Home");
    aUser.Press("Return");

    EXPECT_TRUE(aUser.Await("a picture that moves", [this] { return mCamera->IsMoving(); }));
  });
}
