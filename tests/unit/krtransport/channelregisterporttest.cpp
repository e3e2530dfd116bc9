#include "aravis/channelregisterport.h"

#include "await.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <numeric>
#include <vector>

namespace {

using krtransport::ChannelRegisterPort;
using krtransport::IoThread;
using krtransport::RegisterLimits;

const std::uint32_t kGenerousTimeoutMs = krtest::GetGenerousMs();
constexpr const char* kDeviceName = "The device at 192.0.2.1";

/// A memory in which every byte is the low byte of its address.
class FakeChannel : public krtransport::IRegisterChannel {
public:
  explicit FakeChannel(const RegisterLimits& aLimits) : mLimits(aLimits) {}

  RegisterLimits GetLimits() const override { return mLimits; }
  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) override {
    if (mBlocked.valid())
      mBlocked.wait();
    mAccesses.push_back({aAddress, aData.size()});
    std::iota(aData.begin(), aData.end(), static_cast<std::uint8_t>(aAddress));
    return mResult;
  }
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData) override {
    mAccesses.push_back({aAddress, aData.size()});
    mWritten.insert(mWritten.end(), aData.begin(), aData.end());
    return mResult;
  }

  using Access = std::pair<std::uint64_t, std::size_t>;
  std::vector<Access> mAccesses;
  std::vector<std::uint8_t> mWritten;
  std::shared_future<void> mBlocked;
  KrResult mResult;

private:
  const RegisterLimits mLimits;
};

class FakeSilence : public krtransport::ISilence {
public:
  bool IsSilent() const override { return mIsSilent; }
  void ReportSilence() override { mIsSilent = true; }
  std::atomic<bool> mIsSilent{false};
};

class ChannelRegisterPortTest : public testing::Test {
protected:
  explicit ChannelRegisterPortTest(const RegisterLimits& aLimits = {0xFFFFFFFF, 4, 512})
      : mChannel(std::make_shared<FakeChannel>(aLimits)), mPort(mThread, mSilence, mChannel) {}

  KrResult Read(std::uint64_t aAddress, std::size_t aLength) {
    mData.assign(aLength, 0);
    return mPort.Read(aAddress, mData.data(), aLength, kGenerousTimeoutMs, {});
  }

  FakeSilence mSilence;
  std::shared_ptr<FakeChannel> mChannel;
  IoThread mThread{kDeviceName};
  ChannelRegisterPort mPort;
  std::vector<std::uint8_t> mData;
};

using Accesses = std::vector<FakeChannel::Access>;

TEST_F(ChannelRegisterPortTest, Read_OddAddressAndLength_ReadsWholeWordsAround) {
  const KrResult result = Read(0x13, 6);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(mChannel->mAccesses, (Accesses{{0x10, 12}}));
  EXPECT_EQ(mData, (std::vector<std::uint8_t>{0x13, 0x14, 0x15, 0x16, 0x17, 0x18}));
}

TEST_F(ChannelRegisterPortTest, Read_LongerThanOneAccess_IsCutIntoPieces) {
  const KrResult result = Read(0x100, 1030);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(mChannel->mAccesses, (Accesses{{0x100, 512}, {0x300, 512}, {0x500, 8}}));
  EXPECT_EQ(mData[1029], 0x05);
}

TEST_F(ChannelRegisterPortTest, Read_LastBytesThatThereAre_AreRead) {
  EXPECT_TRUE(Read(0xFFFFFFFD, 3).IsOK());
  EXPECT_EQ(mChannel->mAccesses, (Accesses{{0xFFFFFFFC, 4}}));
  EXPECT_EQ(Read(0xFFFFFFFD, 4), KrResult::Code::InvalidInput);
}

TEST_F(ChannelRegisterPortTest, Read_DeviceRefuses_EndsWithItsWords) {
  mChannel->mResult = {KrResult::Code::ProtocolError, "refused"};

  const KrResult result = Read(0, 1024);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_EQ(result.GetDescription(), KrString("refused"));
  EXPECT_EQ(mChannel->mAccesses.size(), 1u);
}

TEST_F(ChannelRegisterPortTest, Write_NotInWholeWords_IsRefused) {
  const std::uint8_t bytes[8] = {};

  EXPECT_EQ(mPort.Write(2, bytes, 4, kGenerousTimeoutMs, {}), KrResult::Code::InvalidInput);
  EXPECT_EQ(mPort.Write(4, bytes, 6, kGenerousTimeoutMs, {}), KrResult::Code::InvalidInput);
  EXPECT_TRUE(mPort.Write(4, bytes, 8, kGenerousTimeoutMs, {}).IsOK());
}

TEST_F(ChannelRegisterPortTest, Access_TimeLimitOfZero_IsRefused) {
  std::uint8_t bytes[4] = {};

  EXPECT_EQ(mPort.Read(0, bytes, 4, 0, {}), KrResult::Code::InvalidInput);
  EXPECT_EQ(mPort.Write(0, bytes, 4, 0, {}), KrResult::Code::InvalidInput);
}

TEST_F(ChannelRegisterPortTest, Read_DeviceSilent_FailsAtOnceUntilItAnswersAgain) {
  std::promise<void> answer;
  mChannel->mBlocked = answer.get_future().share();
  std::uint8_t bytes[4] = {};

  // A read whose turn does not come within so short a limit asks nothing.
  KrResult first;
  do {
    first = mPort.Read(0, bytes, 4, 1, {});
  } while (first == KrResult::Code::TimeLimitExceeded && !mSilence.mIsSilent);
  const KrResult second = Read(0, 4);
  answer.set_value();
  mSilence.mIsSilent = false;
  const KrResult third = Read(0, 4);

  EXPECT_EQ(first, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(second, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(second.GetDescription().ToUtf8(), testing::HasSubstr("a moment ago")) << "it did not wait itself";
  for (const KrResult& silent : {first, second}) {
    EXPECT_THAT(silent.GetDescription().ToUtf8(), testing::StartsWith(std::string(kDeviceName) + " did not answer"));
    EXPECT_THAT(silent.GetDescription().ToUtf8(), testing::HasSubstr("heck its cable and its power"));
  }
  EXPECT_TRUE(third.IsOK());
}

TEST_F(ChannelRegisterPortTest, Read_ChannelGivesUpByItself_NamesTheDeviceBeforeItsWords) {
  mChannel->mResult = {KrResult::Code::TimeLimitExceeded, "Three tries were in vain."};

  const KrResult result = Read(0, 4);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(result.GetDescription().ToUtf8(), std::string(kDeviceName) + " did not answer. Three tries were in vain.");
}

TEST_F(ChannelRegisterPortTest, Read_WhoseTurnDoesNotCome_LeavesTheDeviceUnsuspected) {
  std::promise<void> end;
  std::future<void> ended = end.get_future();
  std::promise<void> begin;
  mThread.Post([&](const auto&) {
    begin.set_value();
    ended.wait();
    return KrResult();
  });
  begin.get_future().wait();
  std::uint8_t bytes[4] = {};

  const KrResult behindAnother = mPort.Read(0, bytes, 4, 1, {});
  const bool isSilent = mSilence.mIsSilent;
  end.set_value();

  EXPECT_EQ(behindAnother, KrResult::Code::TimeLimitExceeded);
  EXPECT_FALSE(isSilent);
  EXPECT_TRUE(Read(0, 4).IsOK());
}

TEST_F(ChannelRegisterPortTest, Read_CancelledWhileTheDeviceIsSilent_ReturnsWithAborted) {
  std::promise<void> answer;
  mChannel->mBlocked = answer.get_future().share();
  std::stop_source cancel;
  auto read = std::async(std::launch::async, [&] {
    std::uint8_t bytes[4] = {};
    return mPort.Read(0, bytes, 4, 3600000, cancel.get_token());
  });

  cancel.request_stop();
  const KrResult result = read.get();
  answer.set_value();

  EXPECT_EQ(result, KrResult::Code::Aborted);
  EXPECT_FALSE(mSilence.mIsSilent);
}

class WideChannelPortTest : public ChannelRegisterPortTest {
protected:
  WideChannelPortTest() : ChannelRegisterPortTest({~std::uint64_t{0}, 1, 100}) {}
};

TEST_F(WideChannelPortTest, Accesses_ChannelOfBytes_AreNotRounded) {
  const std::uint8_t bytes[3] = {1, 2, 3};

  EXPECT_TRUE(Read(0x100000001, 150).IsOK());
  EXPECT_TRUE(mPort.Write(7, bytes, 3, kGenerousTimeoutMs, {}).IsOK());

  EXPECT_EQ(mChannel->mAccesses, (Accesses{{0x100000001, 100}, {0x100000065, 50}, {7, 3}}));
  EXPECT_EQ(mChannel->mWritten, (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(WideChannelPortTest, Read_UpToTheLastAddressOfAll_IsRead) {
  EXPECT_TRUE(Read(~std::uint64_t{0} - 1, 2).IsOK());
  EXPECT_EQ(Read(~std::uint64_t{0} - 1, 3), KrResult::Code::InvalidInput);
}

} // namespace
