// The speed of simulated serial lines, on a clock that the test moves.

#include "seriallinefixture.h"

#include "simulation/cameramemory.h"
#include "testclocks.h"

#include <gmock/gmock.h>

namespace {

constexpr std::uint64_t kSecondNs = 1000000000;
constexpr std::uint64_t kByteNs = 1041667; // Of ten bits at 9600 baud.

class PacedLineTest : public SerialLineTest {
protected:
  explicit PacedLineTest(std::shared_ptr<ManualClock> aClock = std::make_shared<ManualClock>())
      : SerialLineTest(MakeSerialLab("{port: Serial0, rates: [9600, 19200]}, {port: Serial1, behind: echo},"
                                     " {port: Bulk0, behind: instrument}"),
                       aClock),
        mClock(std::move(aClock)) {}

  // The line has seen what was written, and waits for the first byte's arrival.
  void AwaitBegin() {
    ASSERT_TRUE(WaitUntil([this] { return mClock->GetAwaitedNs() == mClock->GetNowNs() + kByteNs - 1; }));
  }

  const std::shared_ptr<ManualClock> mClock;
};

} // namespace

TEST_F(PacedLineTest, Bytes_At9600Baud_TakeTheirTime) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(Write(*channel, std::string(2000, 'a')).IsOK());
  AwaitBegin();
  EXPECT_EQ(GetCounts(0).sent, 0u);

  mClock->Advance(5 * kByteNs);
  EXPECT_TRUE(WaitUntil([&] { return GetCounts(0).sent == 5; }));
  mClock->Advance(kSecondNs - 5 * kByteNs);

  EXPECT_TRUE(WaitUntil([&] { return GetCounts(0).sent >= 960; }));
  EXPECT_EQ(GetCounts(0).sent, 960u) << "a second of 9600 bits";
}

TEST_F(PacedLineTest, Rate_Written_ChangesTheLinesSpeed) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(GetArray().GetEnum("Uart0BaudRate")->SetEntry("Baud19200").IsOK());
  ASSERT_TRUE(Write(*channel, std::string(3000, 'a')).IsOK());
  ASSERT_TRUE(WaitUntil([&] { return mClock->GetAwaitedNs() > mClock->GetNowNs(); }));

  mClock->Advance(kSecondNs);

  EXPECT_TRUE(WaitUntil([&] { return GetCounts(0).sent >= 1920; }));
  EXPECT_EQ(GetCounts(0).sent, 1920u);
}

TEST_F(PacedLineTest, Echo_TakesTheTimeOfBothDirections) {
  const Channel channel = OpenPort(1);
  ASSERT_TRUE(Write(*channel, "abc").IsOK());
  AwaitBegin();

  mClock->Advance(kByteNs);
  EXPECT_TRUE(WaitUntil([&] { return GetCounts(1).sent == 1; }));
  EXPECT_EQ(ReadWaiting(*channel), "");
  mClock->Advance(kByteNs);
  EXPECT_TRUE(WaitUntil([&] { return GetCounts(1).received == 1; }));
  EXPECT_EQ(ReadWaiting(*channel), "a");
  mClock->Advance(kSecondNs);

  EXPECT_TRUE(WaitUntil([&] { return GetCounts(1).sent == 3; }));
}

TEST_F(PacedLineTest, Instrument_WithItsReportOn_SpeaksByTheCamerasClock) {
  const Channel channel = OpenPort(2);
  ASSERT_TRUE(Write(*channel, "REPORT ON\r").IsOK());
  std::string text;
  ASSERT_TRUE(WaitUntil([&] {
    mClock->Advance(kByteNs);
    text += ReadWaiting(*channel);
    return text == "OK\r\n";
  }));

  ASSERT_TRUE(WaitUntil([&] {
    mClock->Advance(kSecondNs / 10);
    text += ReadWaiting(*channel);
    return text.find("VALUE 20\r\n") != std::string::npos;
  }));

  EXPECT_THAT(text, testing::StartsWith("OK\r\nREPORT "));
}

TEST(SerialSettings, OfPortsWithAClock_AreWhatTheDividersMake) {
  krtransport::LabGEVCamera camera;
  camera.bulkClock = 72000000;
  krtransport::LabSerialPort port;
  port.number = 4;
  port.rates = {9600, 3000000};
  port.rate = 9600;
  camera.serialPorts = {port};
  krtransport::CameraMemory memory(camera);
  EXPECT_EQ(memory.GetSerialSettings(4).rate, 9600u);
  std::array<std::uint8_t, 4> divider = {0, 0, 0, 24};

  EXPECT_TRUE(
      memory.Write(krtransport::cameraregister::kBulkSystemClockDivider + 8, divider.data(), divider.size(), 0).IsOK());

  EXPECT_EQ(memory.GetSerialSettings(4).rate, 3000000u);
  divider[3] = 25;
  EXPECT_FALSE(
      memory.Write(krtransport::cameraregister::kBulkSystemClockDivider + 8, divider.data(), divider.size(), 0).IsOK());
}
