// The parameters of a stream and of a connection that Aravis carries, with a camera that is not ours.

#include "await.h"
#include "gigevisiondevicefixture.h"
#include "parametertext.h"

#include "krdevice/krstream.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/socket.h>

namespace {

constexpr std::uint64_t kHeartbeatRegister = 0x0938;
constexpr std::uint32_t kPacketSizeBits = 0xFFFF;

/// A number that the kernel has of a descriptor; nothing where that is no socket.
std::optional<int> AskSocket(int aDescriptor, int aWhat) {
  int value = 0;
  socklen_t length = sizeof(value);
  if (::getsockopt(aDescriptor, SOL_SOCKET, aWhat, &value, &length) != 0)
    return std::nullopt;
  return value;
}

/// The sockets of this process that may receive a camera's packets.
struct ReceivingSockets {
  int packet = 0;                     ///< Those that take them off the adapter.
  std::vector<int> receiveBytes = {}; ///< Of those for datagrams: what they may hold, as the kernel counts it.
};

ReceivingSockets FindReceivingSockets() {
  ReceivingSockets found;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int descriptor = std::stoi(entry.path().filename());
    const std::optional<int> domain = AskSocket(descriptor, SO_DOMAIN);
    found.packet += domain == AF_PACKET ? 1 : 0;
    if (domain == AF_INET && AskSocket(descriptor, SO_TYPE) == SOCK_DGRAM)
      found.receiveBytes.push_back(AskSocket(descriptor, SO_RCVBUF).value_or(0));
  }
  return found;
}

class GigEVisionHostParameters : public GigEVisionDeviceTest {
protected:
  explicit GigEVisionHostParameters(FakeCameraOptions aOptions = {}) : GigEVisionDeviceTest(std::move(aOptions)) {}

  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(GigEVisionDeviceTest::SetUp());
    mStream = std::make_unique<KrStream>(*mOpened);
    ASSERT_TRUE(mStream->GetParameters(mStreamArray).IsOK());
    ASSERT_TRUE(mOpened->GetTransportParameters(mConnection).IsOK());
  }
  void TearDown() override {
    mStream.reset();
    mOpened.reset();
  }
  /// Takes frames until a condition holds; false where it does not within a generous limit.
  bool TakeUntil(const std::function<bool()>& aCondition) {
    const auto limit = std::chrono::steady_clock::now() + krtest::GetGenerousLimit();
    while (!aCondition()) {
      KrBuffer* buffer = nullptr;
      if (std::chrono::steady_clock::now() > limit || !mStream->Retrieve(buffer, kGenerousTimeoutMs).IsOK())
        return false;
      EXPECT_TRUE(mStream->Release(buffer).IsOK());
    }
    return true;
  }
  bool TakeFrames(int aFrames) {
    return TakeUntil([&aFrames] { return aFrames-- == 0; });
  }

  std::unique_ptr<KrStream> mStream;
  KrGenParameterArray* mStreamArray = nullptr;
  KrGenParameterArray* mConnection = nullptr;
};

// One packet in fifty never comes.
class GigEVisionLossyHostParameters : public GigEVisionHostParameters {
protected:
  GigEVisionLossyHostParameters() : GigEVisionHostParameters({.lostPacketsPerMille = 20}) {}
};

} // namespace

TEST_F(GigEVisionHostParameters, Arrays_StoppedAndRunningAndStoppedAgain_CanBeReadAsAWhole) {
  ExpectAllReadable(*mStreamArray);
  ExpectAllReadable(*mConnection);
  ASSERT_TRUE(mStream->Start().IsOK());
  ASSERT_TRUE(TakeFrames(2));
  ExpectAllReadable(*mStreamArray);
  ExpectAllReadable(*mConnection);

  mStream->Stop();

  ExpectAllReadable(*mStreamArray);
  ExpectAllReadable(*mConnection);
}

TEST_F(GigEVisionHostParameters, Connection_OfACameraOnLoopback_TellsOfTheWayThere) {
  EXPECT_EQ(ReadText(*mConnection, "LinkAdapterName"), KrString("lo"));
  EXPECT_EQ(ReadNumber(*mConnection, "LocalIPAddress"), kLoopback);
  EXPECT_EQ(ReadNumber(*mConnection, "GevCurrentIPAddress"), kLoopback);
  EXPECT_GE(ReadNumber(*mConnection, "LinkAdapterMTU"), 1500);
}

TEST_F(GigEVisionHostParameters, LiveSettings_SetBeforeAndWhileAStreamRuns_AreTheStreams) {
  ASSERT_TRUE(SetText(*mStreamArray, "StreamPacketTimeout", "33000").IsOK());
  ASSERT_TRUE(mStream->Start().IsOK());

  // While it runs, what is read is what Aravis' stream says.
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamPacketTimeout"), 33000);
  for (const auto& [name, value] : {std::pair{"StreamPacketTimeout", 44000},
                                    {"StreamInitialPacketTimeout", 2500},
                                    {"StreamFrameRetention", 250000},
                                    {"StreamPacketResendRatio", 60}}) {
    EXPECT_TRUE(SetText(*mStreamArray, name, std::to_string(value)).IsOK()) << name;
    mStreamArray->InvalidateCache();
    EXPECT_EQ(ReadNumber(*mStreamArray, name), value);
  }
  mStream->Stop();

  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamFrameRetention"), 250000);
  ASSERT_TRUE(mStream->Start().IsOK());
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamFrameRetention"), 250000);
}

TEST_F(GigEVisionHostParameters, SocketSettings_WhileAStreamRuns_AreLocked) {
  constexpr const char* kLocked[] = {"StreamSocketBufferMode", "StreamSocketBufferSize", "StreamPacketSocketEnable",
                                     "StreamBufferCountManual"};
  constexpr const char* kLinkLocked[] = {"LinkPacketSizeMode", "LinkPacketSizeFixed"};
  ASSERT_TRUE(mStream->Start().IsOK());
  for (const char* const name : kLocked)
    EXPECT_FALSE(IsWritable(*mStreamArray, name)) << name;
  for (const char* const name : kLinkLocked)
    EXPECT_FALSE(IsWritable(*mConnection, name)) << name;

  mStream->Stop();

  for (const char* const name : kLocked)
    EXPECT_TRUE(IsWritable(*mStreamArray, name)) << name;
  for (const char* const name : kLinkLocked)
    EXPECT_TRUE(IsWritable(*mConnection, name)) << name;
}

TEST_F(GigEVisionHostParameters, SocketSettings_PlainSocketOfAFixedSize_AreThoseOfTheSocketAndStream) {
  // Less than any kernel allows.
  ASSERT_TRUE(SetText(*mStreamArray, "StreamSocketBufferMode", "Fixed").IsOK());
  ASSERT_TRUE(SetText(*mStreamArray, "StreamSocketBufferSize", "131072").IsOK());
  ASSERT_TRUE(SetText(*mStreamArray, "StreamPacketSocketEnable", "0").IsOK());

  ASSERT_TRUE(mStream->Start().IsOK());

  EXPECT_TRUE(TakeUntil([this] { return mStream->GetStatistics().received >= 3; }));
  const ReceivingSockets sockets = FindReceivingSockets();
  EXPECT_EQ(sockets.packet, 0);
  EXPECT_THAT(sockets.receiveBytes, testing::Contains(2 * 131072)) << "of which the kernel takes half for itself";
}

TEST_F(GigEVisionHostParameters, SocketSettings_PacketSocket_IsTheStreams) {
  ASSERT_TRUE(SetText(*mStreamArray, "StreamPacketSocketEnable", "1").IsOK());

  ASSERT_TRUE(mStream->Start().IsOK());

  EXPECT_EQ(FindReceivingSockets().packet, 1);
  EXPECT_TRUE(TakeUntil([this] { return mStream->GetStatistics().received >= 3; }));
}

TEST_F(GigEVisionHostParameters, Counters_OfAStreamThatEnded_AgreeWithTheStatistics) {
  ASSERT_TRUE(mStream->Start().IsOK());
  ASSERT_TRUE(TakeFrames(5));
  mStream->Stop();
  const KrStreamStatistics counted = mStream->GetStatistics();

  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamDeliveredFrameCount"),
            static_cast<std::int64_t>(counted.received + counted.incomplete));
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamDeliveredByteCount"), static_cast<std::int64_t>(counted.bytes));
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamResentPacketCount"), static_cast<std::int64_t>(counted.resentPackets));
  EXPECT_GE(ReadNumber(*mStreamArray, "StreamReceivedPacketCount"),
            ReadNumber(*mStreamArray, "StreamDeliveredFrameCount"));
  EXPECT_GE(ReadNumber(*mStreamArray, "StreamTransferredByteCount"), static_cast<std::int64_t>(counted.bytes));
}

TEST_F(GigEVisionHostParameters, PacketSize_Fixed_IsTheCamerasAndThatOfItsPackets) {
  ASSERT_TRUE(SetText(*mConnection, "LinkPacketSizeMode", "Fixed").IsOK());
  ASSERT_TRUE(SetText(*mConnection, "LinkPacketSizeFixed", "1200").IsOK());

  ASSERT_TRUE(mStream->Start().IsOK());

  EXPECT_EQ(ReadRegister(*mLink, kPacketSizeRegister) & kPacketSizeBits, 1200u);
  EXPECT_EQ(ReadNumber(*mConnection, "LinkPacketSize"), 1200);
  EXPECT_EQ(ReadNumber(*mConnection, "GevSCPSPacketSize"), 1200);
  EXPECT_TRUE(TakeUntil([this] { return mStream->GetStatistics().received >= 1; }));
}

TEST_F(GigEVisionHostParameters, PacketSize_LeftToTheDevice_IsWhatItHas) {
  ASSERT_TRUE(WriteRegister(*mLink, kPacketSizeRegister, 800).IsOK());
  ASSERT_TRUE(SetText(*mConnection, "LinkPacketSizeMode", "Device").IsOK());

  ASSERT_TRUE(mStream->Start().IsOK());

  EXPECT_EQ(ReadRegister(*mLink, kPacketSizeRegister) & kPacketSizeBits, 800u);
  EXPECT_EQ(ReadNumber(*mConnection, "LinkPacketSize"), 800);
}

TEST_F(GigEVisionHostParameters, Heartbeat_Set_IsTheCameras) {
  ASSERT_TRUE(SetText(*mConnection, "GevHeartbeatTimeout", "7000").IsOK());

  EXPECT_EQ(ReadRegister(*mLink, kHeartbeatRegister), 7000u);
}

TEST_F(GigEVisionHostParameters, CameraKilled_WhileItStreams_LeavesArraysThatTellOfIt) {
  ASSERT_TRUE(mStream->Start().IsOK());
  ASSERT_TRUE(TakeFrames(2));
  mCamera->Kill();
  EXPECT_TRUE(krtest::Await([this] {
    KrBuffer* buffer = nullptr;
    if (mStream->Retrieve(buffer, 1000).IsOK()) {
      EXPECT_TRUE(mStream->Release(buffer).IsOK());
    }
    return !mOpened->IsConnected();
  }));

  EXPECT_EQ(ReadText(*mConnection, "DeviceAccessStatus"), KrString("NoAccess"));
  EXPECT_GE(ReadNumber(*mStreamArray, "StreamDeliveredFrameCount"), 2);
  ExpectAllReadable(*mStreamArray);
}

TEST_F(GigEVisionLossyHostParameters, Resend_SwitchedOffAndOnWhileItStreams_AsksForNothingAndThenForPackets) {
  ASSERT_TRUE(SetText(*mStreamArray, "StreamPacketResendEnable", "0").IsOK());
  ASSERT_TRUE(mStream->Start().IsOK());
  ASSERT_TRUE(TakeUntil([this] { return mStream->GetStatistics().incomplete >= 3; }));
  EXPECT_EQ(ReadNumber(*mStreamArray, "StreamResendRequestCount"), 0);

  ASSERT_TRUE(SetText(*mStreamArray, "StreamPacketResendEnable", "1").IsOK());

  EXPECT_TRUE(TakeUntil([this] { return ReadNumber(*mStreamArray, "StreamResendRequestCount") > 0; }));
  EXPECT_GT(ReadNumber(*mStreamArray, "StreamMissingPacketCount"), 0);
}
