#include "gigevisionfixture.h"
#include "packetpatience.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using GigEVisionStream = GigEVisionStreamTest;

constexpr std::uint64_t kStreamPortRegister = 0x0D00;
constexpr std::uint64_t kStreamAddressRegister = 0x0D18;
constexpr std::uint64_t kAcquisitionRegister = 0x124;
constexpr std::uint64_t kTriggerModeRegister = 0x300;
constexpr std::uint64_t kTriggerSourceRegister = 0x304;
constexpr std::uint64_t kTriggerRegister = 0x30C;
constexpr std::uint32_t kSoftwareTrigger = 1;
constexpr std::uint32_t kSmallWidth = 480;
constexpr std::uint32_t kSmallHeight = 360;

/// Where an application that is gone wanted its packets.
class FormerReceiver {
public:
  FormerReceiver() {
    mAddress.sin_family = AF_INET;
    mAddress.sin_addr.s_addr = htonl(kLoopback);
    socklen_t length = sizeof mAddress;
    EXPECT_EQ(::bind(mSocket, reinterpret_cast<sockaddr*>(&mAddress), length), 0);
    EXPECT_EQ(::getsockname(mSocket, reinterpret_cast<sockaddr*>(&mAddress), &length), 0);
    const timeval limit{.tv_sec = kGenerousTimeoutMs / 1000, .tv_usec = 0};
    EXPECT_EQ(::setsockopt(mSocket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit), 0);
  }
  ~FormerReceiver() { ::close(mSocket); }
  FormerReceiver(const FormerReceiver&) = delete;
  FormerReceiver& operator=(const FormerReceiver&) = delete;

  std::uint32_t GetPort() const { return ntohs(mAddress.sin_port); }
  bool WaitForPacket() {
    std::array<char, 64> bytes;
    return ::recv(mSocket, bytes.data(), bytes.size(), 0) > 0;
  }

private:
  const int mSocket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in mAddress = {};
};

TEST_F(GigEVisionStream, PayloadSize_WidthAndHeightSet_IsTheirProduct) {
  std::uint64_t bytes = 0;

  const KrResult result = mSource->GetPayloadSize(bytes);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(bytes, std::uint64_t{kWidth} * kHeight);
}

TEST_F(GigEVisionStream, Retrieve_TwoHundredFrames_AreAllComplete) {
  // The camera sends a frame when the one before was taken, and each finds room in the smallest of sockets: nothing is
  // lost for want of a processor.
  ASSERT_TRUE(WriteRegister(*mLink, kWidthRegister, kSmallWidth).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kHeightRegister, kSmallHeight).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kTriggerSourceRegister, kSoftwareTrigger).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kTriggerModeRegister, 1).IsOK());
  ASSERT_NO_FATAL_FAILURE(krtest::WaitForPackets(*mSource));
  const KrResult started = Start();
  ASSERT_TRUE(started.IsOK()) << started.GetDescription().CStr();
  std::uint64_t lastFrameID = 0;

  for (int i = 0; i < 200; ++i) {
    ASSERT_TRUE(WriteRegister(*mLink, kTriggerRegister, 1).IsOK());
    KrBuffer* buffer = nullptr;
    const KrResult result = mSource->Retrieve(buffer, kGenerousTimeoutMs);
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    ASSERT_EQ(buffer->GetStatus(), KrBufferStatus::Complete) << "frame " << i;
    ASSERT_EQ(buffer->GetPayloadType(), KrPayloadType::Image);
    ASSERT_EQ(buffer->GetImage()->GetWidth(), kSmallWidth);
    ASSERT_EQ(buffer->GetImage()->GetHeight(), kSmallHeight);
    ASSERT_EQ(buffer->GetImage()->GetPixelType(), KrPixel::Mono8);
    ASSERT_EQ(buffer->GetAcquiredSize(), std::size_t{kSmallWidth} * kSmallHeight);
    ASSERT_NE(buffer->GetFrameID(), lastFrameID);
    ASSERT_GT(buffer->GetHostTimestampNs(), 0u);
    lastFrameID = buffer->GetFrameID();
    ASSERT_TRUE(mSource->Queue(buffer).IsOK());
  }
  const auto statistics = mSource->GetStatistics();
  mSource->Stop();

  EXPECT_GE(statistics.received, 200u);
  EXPECT_EQ(statistics.incomplete, 0u);
  EXPECT_GE(statistics.bytes, std::uint64_t{200} * kSmallWidth * kSmallHeight);
}

TEST_F(GigEVisionStream, Start_CameraThatWasLeftAcquiring_SendsItsFramesHere) {
  FormerReceiver former;
  ASSERT_TRUE(WriteRegister(*mLink, kStreamAddressRegister, kLoopback).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kStreamPortRegister, former.GetPort()).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kAcquisitionRegister, 1).IsOK());
  ASSERT_TRUE(former.WaitForPacket());

  ASSERT_TRUE(Start().IsOK());
  KrBuffer* const buffer = Retrieve();

  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(buffer->GetImage()->GetWidth(), kWidth);
}

TEST_F(GigEVisionStream, Retrieve_BuffersSmallerThanTheFrame_SaysTooSmall) {
  ASSERT_TRUE(Start(1000).IsOK());
  KrBuffer* buffer = nullptr;

  const KrResult result = mSource->Retrieve(buffer, kGenerousTimeoutMs);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(buffer->GetStatus(), KrBufferStatus::TooSmall);
  EXPECT_LE(buffer->GetAcquiredSize(), 1000u);
}

TEST_F(GigEVisionStream, Retrieve_NoBufferQueued_ReturnsTimeLimitExceeded) {
  ASSERT_TRUE(mSource->Start().IsOK());
  KrBuffer* buffer = nullptr;

  const KrResult result = mSource->Retrieve(buffer, 50);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(buffer, nullptr);
}

TEST_F(GigEVisionStream, Stop_WhileAnotherThreadWaits_EndsTheWaitWithAborted) {
  ASSERT_TRUE(mSource->Start().IsOK());

  const KrResult result = EndWaitBy([this] { mSource->Stop(); });

  EXPECT_EQ(result, KrResult::Code::Aborted);
}

TEST_F(GigEVisionStream, Stop_BuffersQueued_LeavesThemAloneAndStartsAgain) {
  ASSERT_TRUE(Start().IsOK());
  KrBuffer* buffer = nullptr;
  ASSERT_TRUE(mSource->Retrieve(buffer, kGenerousTimeoutMs).IsOK());

  mSource->Stop();
  for (KrBuffer& each : mBuffers)
    each.Free();
  const KrResult stopped = mSource->Retrieve(buffer, 0);
  const KrResult again = Start();
  const KrResult retrieved = mSource->Retrieve(buffer, kGenerousTimeoutMs);

  EXPECT_EQ(stopped, KrResult::Code::Aborted);
  EXPECT_TRUE(again.IsOK()) << again.GetDescription().CStr();
  EXPECT_TRUE(retrieved.IsOK()) << retrieved.GetDescription().CStr();
}

} // namespace
