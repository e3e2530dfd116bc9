// What goes wrong between a camera bridge and its camera.

#include "checkedtextcamera.h"

#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"

#include <gmock/gmock.h>

#include <future>
#include <string>
#include <vector>

namespace {

class CameraBridgeFaultsTest : public testing::Test {
protected:
  BridgeLab mLab;
  KrCameraBridge mBridge{mLab.GetDevice(), KrDeviceSerial::Serial0, nullptr};
};

using Order = KrResult (KrSimulatedFaults::*)(std::uint32_t, KrSerialDirection, std::uint32_t);

struct LineFault {
  const char* name;
  Order order;
};

class DisturbedLineTest : public CameraBridgeFaultsTest, public testing::WithParamInterface<LineFault> {};

} // namespace

TEST_P(DisturbedLineTest, OneByteInAThousand_IsNoticedAndMadeUpFor) {
  for (const KrSerialDirection direction : {KrSerialDirection::Received, KrSerialDirection::Sent})
    ASSERT_TRUE(((*mLab.GetFaults()).*GetParam().order)(0, direction, 1000).IsOK());

  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  KrGenParameterArray& camera = *mBridge.GetParameters();
  for (int i = 1; i <= 40; ++i) {
    const std::string width = std::to_string(64 + 4 * i);
    ASSERT_TRUE(IsFine(SetText(camera, "Width", width.c_str())));
    ASSERT_EQ(GetText(camera, "Width"), width);
  }

  EXPECT_GT(mBridge.GetBytesReceivedFromCamera(), 2000u);
}

INSTANTIATE_TEST_SUITE_P(CameraBridge, DisturbedLineTest,
                         testing::Values(LineFault{"Lost", &KrSimulatedFaults::LoseSerialBytes},
                                         LineFault{"Repeated", &KrSimulatedFaults::RepeatSerialBytes},
                                         LineFault{"Corrupted", &KrSimulatedFaults::CorruptSerialBytes}),
                         [](const testing::TestParamInfo<LineFault>& aInfo) { return aInfo.param.name; });

namespace {

struct Setting {
  const char* name;
  std::string value;
};

// Numbers, texts and entries, as a camera has them.
std::vector<Setting> MakeSettings(int aRound) {
  return {{"Width", std::to_string(64 + 4 * aRound)},
          {"DeviceUserID", std::string(static_cast<std::size_t>(20 + aRound), static_cast<char>('a' + aRound % 26))},
          {"PixelFormat", aRound % 2 == 0 ? "Mono8" : "Mono12"},
          {"OffsetX", std::to_string(4 * aRound)}};
}

bool IsClear(const KrResult& aResult) {
  return aResult.IsOK() || aResult == KrResult::Code::TimeLimitExceeded || aResult == KrResult::Code::ProtocolError;
}

} // namespace

TEST_P(DisturbedLineTest, OneByteInAThousand_IsNoticedByTheChecksumsOfACameraFile) {
  CheckedTextLab checked;
  KrCameraBridge bridge(checked.lab.GetDevice(), KrDeviceSerial::Serial0, nullptr);
  for (const KrSerialDirection direction : {KrSerialDirection::Received, KrSerialDirection::Sent})
    ASSERT_TRUE(((*checked.lab.GetFaults()).*GetParam().order)(0, direction, 1000).IsOK());

  ASSERT_TRUE(IsFine(bridge.ConnectTolvanCameraFile(checked.path)));
  KrGenParameterArray& camera = *bridge.GetParameters();
  // A camera that refuses a damaged command has answered: that is told, not asked again.
  const auto isRightOrClear = [&camera](const char* aName, const std::string& aValue, bool& aIsRight) {
    const std::string text = GetText(camera, aName);
    aIsRight = text == aValue;
    return aIsRight || text == "ProtocolError" || text == "TimeLimitExceeded";
  };
  int right = 0;
  for (int i = 1; i <= 100; ++i) {
    const std::string width = std::to_string(64 + 4 * i);
    const KrResult set = SetText(camera, "Width", width.c_str());
    ASSERT_TRUE(IsClear(set)) << IsFine(set).message();
    bool isWidthRight = false;
    bool isIDRight = false;
    ASSERT_TRUE(!set.IsOK() || isRightOrClear("Width", width, isWidthRight)) << width;
    ASSERT_TRUE(isRightOrClear("DeviceID", "Maker,Model,SN7", isIDRight));
    right += set.IsOK() && isWidthRight && isIDRight ? 1 : 0;
  }

  EXPECT_GT(right, 80) << "of 100";
  EXPECT_GT(bridge.GetBytesReceivedFromCamera(), 4000u) << "four disturbances in each direction";
  EXPECT_GT(bridge.GetBytesSentToCamera(), 4000u);
}

// Bytes are lost, come twice and come changed, one of a thousand each, both ways.
TEST_F(CameraBridgeFaultsTest, AllDisturbancesTogether_LeaveEveryOperationRightOrClearlyFailed) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  for (const KrSerialDirection direction : {KrSerialDirection::Received, KrSerialDirection::Sent}) {
    for (const Order order : {&KrSimulatedFaults::LoseSerialBytes, &KrSimulatedFaults::RepeatSerialBytes,
                              &KrSimulatedFaults::CorruptSerialBytes})
      ASSERT_TRUE(((*mLab.GetFaults()).*order)(0, direction, 1000).IsOK());
  }
  KrGenParameterArray& camera = *mBridge.GetParameters();
  int right = 0;
  for (int round = 1; round <= 15; ++round) {
    for (const Setting& setting : MakeSettings(round)) {
      const KrResult set = SetText(camera, setting.name, setting.value.c_str());
      ASSERT_TRUE(IsClear(set)) << IsFine(set).message();
      if (!set.IsOK())
        continue;
      const std::string text = GetText(camera, setting.name);
      ASSERT_THAT(text, testing::AnyOf(setting.value, "TimeLimitExceeded", "ProtocolError")) << setting.name;
      right += text == setting.value ? 1 : 0;
    }
  }
  EXPECT_GT(right, 30) << "of 60";

  mLab.GetFaults()->EndSerialFaults();
  EXPECT_TRUE(WaitUntil([&] { return SetText(camera, "Width", "256").IsOK(); }));
  EXPECT_EQ(GetText(camera, "Width"), "256");
}

TEST(CameraBridgePendingTest, CameraThatNeedsSecondsForAWrite_IsGivenThem) {
  BridgeLab lab(MakeGrabberLab("protocol: GenCP, pending: 4000"), kMonoMAC);
  KrCameraBridge bridge(lab.GetDevice(), KrDeviceSerial::Serial0, nullptr);
  ASSERT_TRUE(IsFine(ConnectGenCP(bridge)));

  EXPECT_TRUE(IsFine(SetText(*bridge.GetParameters(), "Width", "256")));

  EXPECT_EQ(GetText(*bridge.GetParameters(), "Width"), "256");
}

TEST_F(CameraBridgeFaultsTest, CameraThatFallsSilent_FailsAccessesUntilItAnswersAgain) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, true).IsOK());

  EXPECT_EQ(GetText(*mBridge.GetParameters(), "Width"), "TimeLimitExceeded");
  EXPECT_TRUE(mBridge.IsConnected());

  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, false).IsOK());
  EXPECT_TRUE(WaitUntil([&] { return GetText(*mBridge.GetParameters(), "Width") == "1024"; }));
}

TEST_F(CameraBridgeFaultsTest, Save_OfASilentCamera_StoresNothing) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  mBridge.GetParameters()->InvalidateCache();
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, true).IsOK());
  KrConfigurationWriter writer;

  EXPECT_EQ(mBridge.Save("Serial0", writer), KrResult::Code::TimeLimitExceeded);
}

TEST_F(CameraBridgeFaultsTest, SilentCamera_IsNotFound) {
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, true).IsOK());

  EXPECT_EQ(ConnectGenCP(mBridge), KrResult::Code::NotFound);

  EXPECT_FALSE(mBridge.IsConnected());
}

TEST_F(CameraBridgeFaultsTest, LostDevice_FailsEverythingAndStaysConnectedUntilItIsDisconnected) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(mLab.Lose().IsOK());
  KrConfigurationWriter writer;
  KrStringList ids;

  EXPECT_EQ(GetText(*mBridge.GetParameters(), "Width"), "ConnectionLost");
  EXPECT_EQ(SetText(*mBridge.GetParameters(), "Width", "256"), KrResult::Code::ConnectionLost);
  EXPECT_EQ(mBridge.Save("Serial0", writer), KrResult::Code::ConnectionLost);
  EXPECT_TRUE(mBridge.IsConnected());

  mBridge.Disconnect();
  EXPECT_FALSE(mBridge.IsConnected());
  EXPECT_EQ(mBridge.GetGenCPXMLIDs(ids), KrResult::Code::ConnectionLost);
  EXPECT_EQ(mBridge.ConnectTolvanCameraFile(kTextCameraFile), KrResult::Code::ConnectionLost);
}

TEST_F(CameraBridgeFaultsTest, ClosedDevice_IsNotTouchedAnyMore) {
  ASSERT_TRUE(IsFine(mBridge.SetParametersSyncEnabled(true)));
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  const KrLogCapture log; // The synchronisation says that it cannot do its work.

  mLab.CloseDevice();

  EXPECT_EQ(GetText(*mBridge.GetParameters(), "Width"), "ConnectionLost");
  EXPECT_TRUE(mBridge.IsConnected());
  EXPECT_EQ(mBridge.SetSource("Source0"), KrResult::Code::ConnectionLost);
  mBridge.Disconnect();
  EXPECT_EQ(mBridge.ConnectGenCP("any"), KrResult::Code::ConnectionLost);
}

TEST_F(CameraBridgeFaultsTest, DeviceThatIsClosedWhileAnAccessWaits_EndsIt) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, true).IsOK());
  const std::uint64_t before = mLab.CountSent(0);
  std::future<KrResult> setting =
      std::async(std::launch::async, [&] { return SetText(*mBridge.GetParameters(), "Width", "256"); });
  ASSERT_TRUE(WaitUntil([&] { return mLab.CountSent(0) > before; }));

  mLab.CloseDevice();

  EXPECT_EQ(setting.get(), KrResult::Code::ConnectionLost);
  EXPECT_TRUE(mBridge.IsConnected());
}

TEST_F(CameraBridgeFaultsTest, Cancel_EndsAConnectionThatIsBeingMade) {
  KrStringList ids;
  ASSERT_TRUE(IsFine(mBridge.GetGenCPXMLIDs(ids)));
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, true).IsOK());
  const std::uint64_t before = mLab.CountSent(0);
  std::future<KrResult> connecting = std::async(std::launch::async, [&] { return mBridge.ConnectGenCP(ids[0]); });
  ASSERT_TRUE(WaitUntil([&] { return mLab.CountSent(0) > before; }));

  mBridge.Cancel();

  EXPECT_EQ(connecting.get(), KrResult::Code::Aborted);
  EXPECT_FALSE(mBridge.IsConnected());
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, false).IsOK());
  EXPECT_TRUE(IsFine(mBridge.ConnectGenCP(ids[0]))) << "the next call is not touched";
}

TEST_F(CameraBridgeFaultsTest, Cancel_EndsSaving) {
  ASSERT_TRUE(IsFine(ConnectGenCP(mBridge)));
  mBridge.GetParameters()->InvalidateCache();
  ASSERT_TRUE(mLab.GetFaults()->SilenceSerialPort(0, true).IsOK());
  const std::uint64_t before = mLab.CountSent(0);
  KrConfigurationWriter writer;
  std::future<KrResult> saving = std::async(std::launch::async, [&] { return mBridge.Save("Serial0", writer); });
  ASSERT_TRUE(WaitUntil([&] { return mLab.CountSent(0) > before; }));

  mBridge.Cancel();

  EXPECT_EQ(saving.get(), KrResult::Code::Aborted);
  EXPECT_TRUE(mBridge.IsConnected());
}

TEST_F(CameraBridgeFaultsTest, Counters_CanBeReadWhileItConnects) {
  std::future<KrResult> connecting = std::async(std::launch::async, [&] { return ConnectGenCP(mBridge); });

  EXPECT_TRUE(
      WaitUntil([&] { return mBridge.GetBytesReceivedFromCamera() > 0 && mBridge.GetBytesSentToCamera() > 0; }));

  EXPECT_TRUE(IsFine(connecting.get()));
}
