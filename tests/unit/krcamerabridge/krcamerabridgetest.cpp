#include "krcamerabridge/krcamerabridge.h"

#include "await.h"
#include "bridgedevicefixture.h"
#include "krgenicam/krgenparameterarray.h"
#include "krpersistence/krconfigurationwriter.h"
#include "threadrefusal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

namespace krcamerabridge {
namespace {

constexpr const char* kXMLID = "SchemaVersion.1.1@XMLVersion.1.2.3";
constexpr std::uint64_t kPrivilege = 0x204;
constexpr std::uint64_t kHeartbeatMs = 0x1E8;
constexpr std::uint64_t kGain = krtest::GenCPCamera::kFeatures;

class Bridge : public testing::Test {
protected:
  Bridge() {
    grabber.camera.Poke(kGain, std::vector<std::uint8_t>(64));
    grabber.camera.AddFile(0x01020003, 0x01010000,
                           MakeDescription("<Category Name=\"Root\"><pFeature>Gain</pFeature></Category>\n" +
                                           MakeIntReg("Gain", "0x80000000")));
  }
  void Connect() {
    const KrResult result = bridge.ConnectGenCP(kXMLID);
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }
  KrGenInteger& GetGain() { return *bridge.GetParameters()->GetInteger("Gain"); }

  GrabberDevice grabber;
  KrCameraBridge bridge{grabber.device.get(), KrDeviceSerial::Serial0, nullptr};
};

TEST_F(Bridge, Connected_SetsTheCameraAndGivesItFreeAgain) {
  Connect();

  ASSERT_TRUE(GetGain().SetValue(77).IsOK());

  EXPECT_EQ(grabber.camera.PeekNumber(kGain, 4), 77u);
  EXPECT_EQ(grabber.camera.PeekNumber(kPrivilege, 4), 1u);
  bridge.Disconnect();
  EXPECT_EQ(grabber.camera.PeekNumber(kPrivilege, 4), 0u);
}

TEST_F(Bridge, Destroyed_GivesTheCameraFree) {
  {
    KrCameraBridge other(grabber.device.get(), KrDeviceSerial::Serial0, nullptr);
    ASSERT_TRUE(other.ConnectGenCP(kXMLID).IsOK());
  }

  EXPECT_EQ(grabber.camera.PeekNumber(kPrivilege, 4), 0u);
}

TEST_F(Bridge, HostWithoutAThread_IsSystemErrorAndLeavesItDisconnected) {
  KrResult refused;
  {
    const ThreadRefusal noThreads;
    refused = bridge.ConnectGenCP(kXMLID);
  }

  EXPECT_EQ(refused, KrResult::Code::SystemError);
  EXPECT_FALSE(bridge.IsConnected());
  const KrResult connected = bridge.ConnectGenCP(kXMLID);
  EXPECT_TRUE(connected.IsOK()) << connected.GetDescription().CStr();
}

TEST_F(Bridge, CameraThatGivesNobodyControl_IsAccessDenied) {
  grabber.camera.RefuseControl(true);
  grabber.camera.PokeNumber(kHeartbeatMs, 4, 500); // After which a user who has gone would have lost it.

  EXPECT_EQ(bridge.ConnectGenCP(kXMLID), KrResult::Code::AccessDenied);

  EXPECT_FALSE(bridge.IsConnected());
}

TEST_F(Bridge, DescriptionThatIsNone_IsBadData) {
  grabber.camera.AddFile(0x01030000, 0x01010000, "no description");

  EXPECT_EQ(bridge.ConnectGenCP("SchemaVersion.1.1@XMLVersion.1.3.0"), KrResult::Code::BadData);

  EXPECT_FALSE(bridge.IsConnected());
  Connect();
}

TEST_F(Bridge, LineThatLosesDoublesAndChangesBytes_CarriesRightValues) {
  Connect();
  grabber.camera.SetFaults({.lost = 0.001, .doubled = 0.001, .changed = 0.001});

  for (std::int64_t i = 0; i < 60; ++i) {
    const KrResult result = GetGain().SetValue(i);
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    ASSERT_EQ(grabber.camera.PeekNumber(kGain, 4), static_cast<std::uint64_t>(i));
  }
}

TEST_F(Bridge, CameraThatAsksForSeconds_IsGivenThem) {
  Connect();
  grabber.camera.SetFaults({.pendingAnswers = 2, .pendingMs = 1000});

  EXPECT_TRUE(GetGain().SetValue(5).IsOK());

  EXPECT_EQ(grabber.camera.PeekNumber(kGain, 4), 5u);
}

TEST_F(Bridge, Cancel_EndsACallThatWaitsForTheCamera) {
  grabber.camera.SetFaults({.isSilent = true});
  KrStringList ids;
  std::future<KrResult> asking = std::async(std::launch::async, [&] { return bridge.GetGenCPXMLIDs(ids); });
  ASSERT_TRUE(grabber.camera.AwaitHeard(1));

  bridge.Cancel();

  EXPECT_EQ(asking.get(), KrResult::Code::Aborted);
}

TEST_F(Bridge, Disconnect_WithAnAccessThatWaits_EndsIt) {
  Connect();
  grabber.camera.TakeHeard();
  grabber.camera.SetFaults({.isSilent = true});
  std::future<KrResult> setting = std::async(std::launch::async, [&] { return GetGain().SetValue(5); });
  ASSERT_TRUE(grabber.camera.AwaitHeard(1));

  bridge.Disconnect();

  EXPECT_FALSE(setting.get().IsOK());
  EXPECT_FALSE(bridge.IsConnected());
}

TEST_F(Bridge, CameraThatAsksForTimeAndFallsSilent_DoesTheWriteOnceAndFailsIt) {
  Connect();
  grabber.camera.TakeWrites();
  grabber.camera.SetFaults({.lostAnswers = 1000, .pendingAnswers = 1, .pendingMs = 50});

  EXPECT_EQ(GetGain().SetValue(5), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(grabber.camera.TakeWrites().size(), 1u);
  EXPECT_TRUE(bridge.IsConnected());
  grabber.camera.SetFaults({});
}

TEST_F(Bridge, CameraState_IsThatOfASilentCameraByNameUntilItAnswers) {
  Connect();
  EXPECT_TRUE(bridge.GetCameraState().IsOK());
  grabber.camera.SetFaults({.isSilent = true});

  const KrResult silence = GetGain().SetValue(5);

  EXPECT_EQ(silence, KrResult::Code::TimeLimitExceeded);
  const std::string name = "Serial0 of " + grabber.device->GetDisplayID().ToUtf8() + ": ";
  const auto saysSo = testing::HasSubstr("The camera did not answer");
  EXPECT_THAT(silence.GetDescription().ToUtf8(), testing::AllOf(testing::HasSubstr(name), saysSo));
  const KrResult state = bridge.GetCameraState();
  EXPECT_EQ(state, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(state.GetDescription().ToUtf8(), testing::AllOf(testing::StartsWith(name), saysSo));
  grabber.camera.SetFaults({});
  EXPECT_TRUE(krtest::Await([this] { return GetGain().SetValue(6).IsOK(); }));
  EXPECT_TRUE(bridge.GetCameraState().IsOK());
}

TEST_F(Bridge, CameraState_OfADeviceThatIsLost_IsKnownWithoutAnAccessUntilTheBridgeIsDisconnected) {
  Connect();
  grabber.link->connected = false;

  const KrResult state = bridge.GetCameraState();
  EXPECT_EQ(state, KrResult::Code::ConnectionLost);
  EXPECT_THAT(state.GetDescription().ToUtf8(), testing::StartsWith(grabber.device->GetDisplayID().ToUtf8()));

  bridge.Disconnect();
  EXPECT_TRUE(bridge.GetCameraState().IsOK());
}

TEST_F(Bridge, CameraState_OfADeviceThatIsClosed_IsALostConnection) {
  Connect();

  grabber.device.reset();

  EXPECT_EQ(bridge.GetCameraState(), KrResult::Code::ConnectionLost);
}

TEST_F(Bridge, Disconnect_OfACameraThatAsksForTimeAgainAndAgain_Ends) {
  Connect();
  grabber.camera.SetFaults({.pendingAnswers = 400, .pendingMs = 50}); // Longer than anybody should wait.

  bridge.Disconnect();

  EXPECT_GT(grabber.camera.GetFaults().pendingAnswers, 0);
  EXPECT_FALSE(bridge.IsConnected());
  grabber.camera.SetFaults({});
  Connect();
}

TEST_F(Bridge, DescriptionThatIsNotTheOneOfItsHash_IsBadData) {
  grabber.camera.AddFile(0x01030000, 0x01010000, MakeDescription("<Category Name=\"Root\"/>"),
                         std::vector<std::uint8_t>(20, 0x11));

  EXPECT_EQ(bridge.ConnectGenCP("SchemaVersion.1.1@XMLVersion.1.3.0"), KrResult::Code::BadData);

  Connect();
}

TEST_F(Bridge, Save_WithoutAName_IsInvalidInput) {
  Connect();
  KrConfigurationWriter writer;

  EXPECT_EQ(bridge.Save("", writer), KrResult::Code::InvalidInput);
}

// The first feature fails without the camera, the second as the camera does not answer.
TEST_F(Bridge, Save_OfASilentCameraWithAFeatureThatFailsBefore_StoresNothing) {
  const auto makeFeature = [](const std::string& aName) {
    return "<Integer Name=\"" + aName + "\"><Streamable>Yes</Streamable><pValue>" + aName + "Reg</pValue></Integer>\n";
  };
  grabber.camera.AddFile(
      0x01040000, 0x01010000,
      MakeDescription("<Category Name=\"Root\"><pFeature>Lost</pFeature><pFeature>Gain</pFeature></Category>\n" +
                      makeFeature("Lost") +
                      "<IntSwissKnife Name=\"Nowhere\"><Formula>1 / 0</Formula></IntSwissKnife>\n"
                      "<IntReg Name=\"LostReg\"><pAddress>Nowhere</pAddress><Length>4</Length>"
                      "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>\n" +
                      makeFeature("Gain") + MakeIntReg("GainReg", "0x80000000")));
  const KrResult connected = bridge.ConnectGenCP("SchemaVersion.1.1@XMLVersion.1.4.0");
  ASSERT_TRUE(connected.IsOK()) << connected.GetDescription().CStr();
  std::int64_t value = 0;
  const KrResult lost = bridge.GetParameters()->GetInteger("Lost")->GetValue(value);
  ASSERT_FALSE(lost.IsOK());
  ASSERT_NE(lost, KrResult::Code::TimeLimitExceeded);
  grabber.camera.SetFaults({.isSilent = true});
  KrConfigurationWriter writer;

  EXPECT_EQ(bridge.Save("Serial0", writer), KrResult::Code::TimeLimitExceeded);
}

TEST_F(Bridge, PoCL_IsSwitchedByTheFeatureThatTheDeviceHas) {
  ASSERT_TRUE(KrCameraBridge::IsPoCLSupported(grabber.device.get()));
  EXPECT_FALSE(KrCameraBridge::IsPoCLEnabled(grabber.device.get()));

  EXPECT_TRUE(KrCameraBridge::SetPoCLEnabled(grabber.device.get(), true).IsOK());

  EXPECT_TRUE(KrCameraBridge::IsPoCLEnabled(grabber.device.get()));
  EXPECT_EQ(grabber.link->Peek(kPoCLRegister), 1u);
}

} // namespace
} // namespace krcamerabridge
