#include "clprotocol/clserial.h"

#include "await.h"
#include "clprotocol/clprotocolapi.h"
#include "testcamera.h"

#include <gtest/gtest.h>

namespace krcamerabridge {
namespace {

const std::uint32_t kGenerousMs = krtest::GetGenerousMs();
constexpr std::uint32_t k57600 = 0x08;
constexpr std::uint32_t k115200 = 0x10;

class SerialTest : public testing::Test {
protected:
  krtest::CameraEnd camera{[](std::string_view aBytes) { return std::string(aBytes); }};
  krtest::RatedLine line{camera.GetLine()};
  CLSerial serial{line};
  std::vector<std::uint8_t> bytes;
};

TEST_F(SerialTest, Reading_TakesAllBytesOrNone) {
  camera.Say("abc");
  ASSERT_EQ(serial.Read(1, kGenerousMs, {}, bytes), CL_ERR_NO_ERR);
  EXPECT_EQ(bytes, (std::vector<std::uint8_t>{'a'}));

  EXPECT_EQ(serial.Read(3, 0, {}, bytes), CL_ERR_TIMEOUT);
  camera.Say("d");

  ASSERT_EQ(serial.Read(3, kGenerousMs, {}, bytes), CL_ERR_NO_ERR);
  EXPECT_EQ(bytes, (std::vector<std::uint8_t>{'b', 'c', 'd'}));
}

TEST_F(SerialTest, Writing_ReachesTheCamera) {
  ASSERT_EQ(serial.Write({'x', 'y'}, kGenerousMs, {}), CL_ERR_NO_ERR);

  ASSERT_EQ(serial.Read(2, kGenerousMs, {}, bytes), CL_ERR_NO_ERR);
  EXPECT_EQ(bytes, (std::vector<std::uint8_t>{'x', 'y'}));
}

TEST_F(SerialTest, Rates_AreBits) {
  EXPECT_EQ(serial.GetSupportedRates(), 1u | k57600 | k115200);

  EXPECT_EQ(serial.SetRate(k115200), CL_ERR_NO_ERR);
  EXPECT_EQ(line.GetBaudRate(), 115200u);

  EXPECT_EQ(serial.SetRate(0), CL_ERR_BAUD_RATE_NOT_SUPPORTED);
  EXPECT_EQ(serial.SetRate(3), CL_ERR_BAUD_RATE_NOT_SUPPORTED);
  EXPECT_EQ(serial.SetRate(0x40000000), CL_ERR_BAUD_RATE_NOT_SUPPORTED);
}

TEST_F(SerialTest, ALineWithoutRates_CountsAs9600) {
  CLSerial plain(camera.GetLine());

  EXPECT_EQ(plain.GetSupportedRates(), 1u);
  EXPECT_EQ(plain.SetRate(1), CL_ERR_NO_ERR);
  EXPECT_EQ(plain.SetRate(k115200), CL_ERR_BAUD_RATE_NOT_SUPPORTED);
}

TEST_F(SerialTest, ALostLine_IsToldAndRemembered) {
  camera.HangUp();

  EXPECT_EQ(serial.Read(1, kGenerousMs, {}, bytes), CL_ERR_INVALID_REFERENCE);

  EXPECT_EQ(serial.GetFailure(), KrResult::Code::ConnectionLost);
  serial.ForgetFailure();
  EXPECT_TRUE(serial.GetFailure().IsOK());
}

TEST_F(SerialTest, Reading_Stopped_EndsAtOnce) {
  std::stop_source stop;
  stop.request_stop();

  EXPECT_EQ(serial.Read(1, kGenerousMs, stop.get_token(), bytes), CL_ERR_TIMEOUT);
  EXPECT_TRUE(serial.GetFailure().IsOK());
}

} // namespace
} // namespace krcamerabridge
