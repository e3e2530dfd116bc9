// The parameters that a frame's size depends on, locked while streams run.

#include "describedlink.h"
#include "krdevice/krdevicegev.h"
#include "krdevice/krstream.h"

#include <gmock/gmock.h>

#include <array>

namespace {

constexpr std::uint64_t kLock = 0x20;
constexpr std::uint64_t kPacketSize = 0x28;

std::string MakeNodes() {
  return R"(<Integer Name="TLParamsLocked"><pValue>LockReg</pValue></Integer>
            <Integer Name="Width"><pIsLocked>TLParamsLocked</pIsLocked><pValue>WidthReg</pValue></Integer>)" +
         MakeIntReg("LockReg", "0x20") + MakeIntReg("WidthReg", "0x24") + MakeIntReg("PacketSize", "0x28");
}

/// Notes the lock whenever the stream asks for something.
class LockWatchingSource : public FakeBufferSource {
public:
  KrResult GetPayloadSize(std::uint64_t& aBytes) override {
    Note();
    return FakeBufferSource::GetPayloadSize(aBytes);
  }
  KrResult Start() override {
    Note();
    link->Poke(kPacketSize, 8192); // As a transport layer and its device do.
    return FakeBufferSource::Start();
  }
  void Stop() override {
    Note();
    link->Poke(kPacketSize, 1500);
    FakeBufferSource::Stop();
  }
  std::vector<std::uint32_t> TakeLocks() { return std::exchange(mLocks, {}); }

  DescribedLink* link = nullptr;

private:
  void Note() { mLocks.push_back(link->Peek(kLock)); }

  std::vector<std::uint32_t> mLocks;
};

/// With two stream channels.
class TwoChannelLink : public DescribedLink {
public:
  TwoChannelLink(const std::string& aNodes, std::array<LockWatchingSource, 2>& aSources)
      : DescribedLink(aNodes), mSources(aSources) {
    for (LockWatchingSource& source : mSources)
      source.link = this;
  }
  krsystem::IBufferSource* GetBufferSource(std::uint32_t aChannel) override { return &mSources.at(aChannel); }

private:
  std::array<LockWatchingSource, 2>& mSources;
};

class ParameterLockTest : public testing::Test {
protected:
  void SetUp() override { Open(MakeNodes()); }
  void Open(const std::string& aNodes, KrDeviceAccess aAccess = KrDeviceAccess::Control) {
    auto link = std::make_unique<TwoChannelLink>(aNodes, mSources);
    mLink = link.get();
    mDevice = std::make_unique<KrDeviceGEV>(std::move(link), MakeDeviceFields(), aAccess);
  }
  std::uint32_t ReadLock() { return mLink->Peek(kLock); }
  std::int64_t Read(const char* aName) {
    std::int64_t value = -1;
    KrGenInteger* const parameter = mDevice->GetParameters()->GetInteger(aName);
    EXPECT_TRUE(parameter && parameter->GetValue(value).IsOK()) << aName;
    return value;
  }

  std::array<LockWatchingSource, 2> mSources;
  DescribedLink* mLink = nullptr; // The device's.
  std::unique_ptr<KrDevice> mDevice;
};

} // namespace

TEST_F(ParameterLockTest, Stream_FromItsFirstQuestionToItsStop_IsLocked) {
  KrStream stream(*mDevice);
  EXPECT_EQ(ReadLock(), 0u);

  ASSERT_TRUE(stream.Start().IsOK());
  EXPECT_EQ(ReadLock(), 1u);
  stream.Stop();

  EXPECT_THAT(mSources[0].TakeLocks(), testing::AllOf(testing::SizeIs(3), testing::Each(1u)));
  EXPECT_EQ(ReadLock(), 0u);
}

TEST_F(ParameterLockTest, LockedParameter_WhileAStreamRuns_CannotBeSet) {
  KrStream stream(*mDevice);
  KrGenInteger& width = *mDevice->GetParameters()->GetInteger("Width");
  ASSERT_TRUE(width.IsWritable());

  ASSERT_TRUE(stream.Start().IsOK());
  EXPECT_FALSE(width.IsWritable());
  EXPECT_EQ(width.SetValue(64), KrResult::Code::AccessDenied);
  stream.Stop();

  EXPECT_TRUE(width.SetValue(64).IsOK());
}

TEST_F(ParameterLockTest, StreamThatDoesNotStart_LeavesNothingLocked) {
  mSources[0].startResult = KrResult::Code::ProtocolError;
  KrStream stream(*mDevice);

  EXPECT_EQ(stream.Start(), KrResult::Code::ProtocolError);

  EXPECT_EQ(ReadLock(), 0u);
}

TEST_F(ParameterLockTest, TwoStreams_OfOneDevice_AreLockedUntilTheLastStops) {
  KrStream first(*mDevice, 4, 0);
  KrStream second(*mDevice, 4, 1);
  ASSERT_TRUE(first.Start().IsOK());
  ASSERT_TRUE(second.Start().IsOK());

  first.Stop();
  EXPECT_EQ(ReadLock(), 1u);
  second.Stop();

  EXPECT_EQ(ReadLock(), 0u);
}

TEST_F(ParameterLockTest, StartAndStop_ValuesThatTheTransportChanged_AreReadAnew) {
  KrStream stream(*mDevice);
  mLink->Poke(kPacketSize, 1500);
  ASSERT_EQ(Read("PacketSize"), 1500);

  ASSERT_TRUE(stream.Start().IsOK());
  EXPECT_EQ(Read("PacketSize"), 8192);
  stream.Stop();

  EXPECT_EQ(Read("PacketSize"), 1500);
}

TEST_F(ParameterLockTest, DescriptionThatCannotBeRead_StreamsAllTheSame) {
  mLink->SetDescription("<NoDescription></NoDescription>");
  KrStream stream(*mDevice);

  EXPECT_TRUE(stream.Start().IsOK());
  stream.Stop();

  EXPECT_EQ(ReadLock(), 0u);
}

TEST_F(ParameterLockTest, DescriptionWithoutALock_StreamsAllTheSame) {
  Open(MakeIntReg("Width", "0x24"));
  KrStream stream(*mDevice);

  EXPECT_TRUE(stream.Start().IsOK());

  EXPECT_EQ(mLink->port.CountWrites(), 0u);
}

TEST_F(ParameterLockTest, LockThatIsRefused_StreamsAllTheSameAndIsTakenBackInTheEnd) {
  ASSERT_NE(mDevice->GetParameters(), nullptr);
  mLink->port.SetFault([](const RegisterAccessRecord& aAccess) {
    return aAccess.isWrite ? KrResult(KrResult::Code::TimeLimitExceeded) : KrResult();
  });
  KrStream stream(*mDevice);
  EXPECT_TRUE(stream.Start().IsOK());
  // What timed out may have happened.
  mLink->Poke(kLock, 1);
  mLink->port.SetFault(nullptr);

  stream.Stop();

  EXPECT_EQ(ReadLock(), 0u);
}

TEST_F(ParameterLockTest, StreamOfAMonitor_LocksNothing) {
  Open(MakeNodes(), KrDeviceAccess::Monitor);
  KrStream stream(*mDevice);

  EXPECT_TRUE(stream.Start().IsOK());

  EXPECT_EQ(ReadLock(), 0u);
  EXPECT_EQ(mLink->port.CountWrites(), 0u);
}
