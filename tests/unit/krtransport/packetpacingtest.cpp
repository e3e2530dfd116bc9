#include "gigevision/packetpacing.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using krtransport::PacketPacing;

constexpr std::uint64_t kGigabit = 1000000000;
constexpr std::uint32_t kPacketBytes = 8962; // 72 microseconds of a gigabit.

class FakeRegisters : public krtransport::IBootstrapRegisters {
public:
  KrResult ReadRegister(std::uint32_t aAddress, std::uint32_t& aValue) override {
    ++mReads;
    if (mUnreadable.contains(aAddress))
      return {KrResult::Code::ProtocolError, "unreadable"};
    aValue = mValues[aAddress];
    return {};
  }
  KrResult WriteRegister(std::uint32_t aAddress, std::uint32_t aValue) override {
    ++mWrites;
    if (mProtected.contains(aAddress))
      return {KrResult::Code::ProtocolError, "protected"};
    mValues[aAddress] = aValue;
    return {};
  }

  std::map<std::uint32_t, std::uint32_t> mValues{{krtransport::kTickFrequencyLowRegister, kGigabit}};
  std::set<std::uint32_t> mUnreadable;
  std::set<std::uint32_t> mProtected;
  int mReads = 0;
  int mWrites = 0;
};

class PacketPacingTest : public testing::Test {
protected:
  std::uint32_t GetDelay() { return mRegisters.mValues[krtransport::kStreamPacketDelayRegister]; }

  std::uint64_t mSpeed = kGigabit;
  FakeRegisters mRegisters;
  PacketPacing mPacing{mRegisters, "eth0", [this](const std::string&) { return mSpeed; }};
};

TEST_F(PacketPacingTest, Apply_CameraAlone_DoesNotTouchTheDevice) {
  mPacing.Apply(1, kPacketBytes);
  mPacing.Restore();

  EXPECT_EQ(mRegisters.mReads, 0);
  EXPECT_EQ(mRegisters.mWrites, 0);
}

TEST_F(PacketPacingTest, Apply_SpeedUnknown_DoesNotTouchTheDevice) {
  mSpeed = 0;

  mPacing.Apply(2, kPacketBytes);

  EXPECT_EQ(mRegisters.mReads, 0);
}

TEST_F(PacketPacingTest, Apply_CamerasComeAndGo_FollowsAndComesBackToItsOwn) {
  mRegisters.mValues[krtransport::kStreamPacketDelayRegister] = 100;

  mPacing.Apply(2, kPacketBytes);
  EXPECT_EQ(GetDelay(), 88000u);
  mPacing.Apply(3, kPacketBytes);
  EXPECT_EQ(GetDelay(), 168000u);
  mPacing.Apply(1, kPacketBytes);
  EXPECT_EQ(GetDelay(), 100u);
  mPacing.Apply(2, kPacketBytes);
  mPacing.Restore();
  EXPECT_EQ(GetDelay(), 100u);
}

TEST_F(PacketPacingTest, Apply_DeviceWithALongerPause_KeepsIt) {
  mRegisters.mValues[krtransport::kStreamPacketDelayRegister] = 500000;

  mPacing.Apply(2, kPacketBytes);

  EXPECT_EQ(GetDelay(), 500000u);
  EXPECT_EQ(mRegisters.mWrites, 0);
}

TEST_F(PacketPacingTest, Apply_StreamedAgainAfterTheDeviceWasSetUp_KeepsTheNewPause) {
  mPacing.Apply(2, kPacketBytes);
  mPacing.Restore();
  mRegisters.mValues[krtransport::kStreamPacketDelayRegister] = 200;

  mPacing.Apply(2, kPacketBytes);
  mPacing.Restore();

  EXPECT_EQ(GetDelay(), 200u);
}

TEST_F(PacketPacingTest, Apply_DeviceRefuses_IsLeftAlone) {
  mRegisters.mProtected = {krtransport::kStreamPacketDelayRegister};

  mPacing.Apply(2, kPacketBytes);
  mPacing.Apply(3, kPacketBytes);
  mPacing.Restore();

  EXPECT_EQ(mRegisters.mWrites, 1);
}

TEST_F(PacketPacingTest, Apply_NoClockOrNoRegister_IsLeftAlone) {
  const std::uint32_t missing[] = {krtransport::kTickFrequencyHighRegister, krtransport::kStreamPacketDelayRegister};
  for (const std::uint32_t address : missing) {
    mRegisters.mUnreadable = {address};
    PacketPacing pacing(mRegisters, "eth0", [](const std::string&) { return kGigabit; });

    pacing.Apply(2, kPacketBytes);

    EXPECT_EQ(mRegisters.mWrites, 0) << address;
  }
}

TEST_F(PacketPacingTest, Apply_FrequencyOfZero_IsLeftAlone) {
  mRegisters.mValues[krtransport::kTickFrequencyLowRegister] = 0;

  mPacing.Apply(2, kPacketBytes);

  EXPECT_EQ(mRegisters.mWrites, 0);
}

} // namespace
