// The serial ports of cameras in lab files.

#include "badlabfiles.h"

#include <gmock/gmock.h>

#include <string>

using krtransport::Lab;
using krtransport::LabGEVCamera;
using testing::ElementsAre;

namespace {

// What a camera's serial ports are written behind, their lines 6 and following.
#define KR_CAMERA "adapters:\n- name: a\n  devices:\n  - kind: gigeVision\n    mac: 02:00:00:00:00:01\n"

// Each value other than the default.
constexpr const char* kEveryKey = KR_CAMERA R"(
    bulkClock: 72000000
    serialPorts:
      - {port: Bulk7, rates: [3000000, 9600], rate: 9600, behind: echo, paced: false, flowControl: false}
      - {port: Serial1, behind: tty, path: /dev/ttyUSB7, lostReceived: {every: 2}, lostSent: {next: 3}}
)";

const BadLabFile kBadRows[] = {
    {"serial port without a name", KR_CAMERA "    serialPorts: [{behind: echo}]\n", "6:19", "needs the key \"port\""},
    {"unknown serial port", KR_CAMERA "    serialPorts: [{port: COM1}]\n", "6:26",
     "one of Serial0, Serial1, Bulk0, Bulk1"},
    {"serial port twice", KR_CAMERA "    serialPorts: [{port: Bulk0}, {port: Bulk0}]\n", "6:34",
     "the port Bulk0 is there twice"},
    {"unknown key of a serial port", KR_CAMERA "    serialPorts: [{port: Bulk0, pased: true}]\n", "6:33",
     "is \"paced\" meant?"},
    {"serial ports that are no list", KR_CAMERA "    serialPorts: Bulk0\n", "6:18", "has to be a list"},
    {"unknown end of a line", KR_CAMERA "    serialPorts: [{port: Bulk0, behind: wall}]\n", "6:41",
     "one of nothing, echo, instrument, tty, camera"},
    {"tty without a path", KR_CAMERA "    serialPorts: [{port: Bulk0, behind: tty}]\n", "6:19",
     "needs the key \"path\""},
    {"path from nowhere", KR_CAMERA "    serialPorts: [{port: Bulk0, behind: tty, path: ttyUSB0}]\n", "6:52",
     "whole path as in /dev/ttyUSB0"},
    {"path without a tty", KR_CAMERA "    serialPorts: [{port: Bulk0, path: /dev/ttyUSB0}]\n", "6:39",
     "goes with \"behind: tty\""},
    {"rate that is none", KR_CAMERA "    serialPorts: [{port: Bulk0, rates: [fast]}]\n", "6:41",
     "whole number from 50 to 12000000, not \"fast\""},
    {"no rate", KR_CAMERA "    serialPorts: [{port: Bulk0, rates: []}]\n", "6:40", "\"rates\" has to have a rate"},
    {"rate that is a list", KR_CAMERA "    serialPorts: [{port: Bulk0, rates: [[9600]]}]\n", "6:41",
     "has to be one value"},
    {"rate out of range", KR_CAMERA "    serialPorts: [{port: Bulk0, rates: [9600, 49]}]\n", "6:47", "not \"49\""},
    {"rate twice", KR_CAMERA "    serialPorts: [{port: Bulk0, rates: [9600, 9600]}]\n", "6:47",
     "the rate 9600 is there twice"},
    {"rate that is not offered", KR_CAMERA "    serialPorts: [{port: Bulk0, rates: [9600], rate: 19200}]\n", "6:54",
     "one of \"rates\""},
    {"lost bytes of no number", KR_CAMERA "    serialPorts: [{port: Bulk0, lostSent: {every: 0}}]\n", "6:51",
     "whole number from 1"},
    {"clock that gives no rate",
     KR_CAMERA "    bulkClock: 48000000\n    serialPorts: [{port: Bulk0, rates: [115200]}]\n", "6:16",
     "multiple of every rate of the bulk ports, and is not of 115200"},
    {"clock of no port", KR_CAMERA "    bulkClock: 48000000\n    serialPorts: [{port: Serial0}]\n", "6:16",
     "without bulk ports"},
};

class LabSerialReaderRefusals : public BadLabFiles {};

} // namespace

TEST_P(LabSerialReaderRefusals, Parse_BadPort_SaysWhereAndWhy) {
  ExpectPlaceAndReason();
}

INSTANTIATE_TEST_SUITE_P(Ports, LabSerialReaderRefusals, testing::ValuesIn(kBadRows));

TEST(LabSerialReader, Parse_EveryKey_TakesPortsByTheirNumbers) {
  Lab lab;
  ASSERT_TRUE(Parse(kEveryKey, lab).IsOK());

  const auto camera = std::get<LabGEVCamera>(lab.adapters[0].devices[0]);

  EXPECT_EQ(camera.bulkClock, 72000000u);
  ASSERT_EQ(camera.serialPorts.size(), 2u);
  const krtransport::LabSerialPort& tty = camera.serialPorts[0];
  EXPECT_EQ(tty.number, 1u);
  EXPECT_THAT(tty.rates, ElementsAre(9600, 19200, 38400, 57600, 115200));
  EXPECT_EQ(tty.rate, 9600u);
  EXPECT_EQ(tty.behind, krtransport::LabLineEnd::Tty);
  EXPECT_EQ(tty.path, "/dev/ttyUSB7");
  EXPECT_TRUE(tty.isPaced);
  EXPECT_TRUE(tty.hasFlowControl);
  EXPECT_EQ(tty.received.lost.every, 2u);
  EXPECT_EQ(tty.sent.lost.next, 3u);
  const krtransport::LabSerialPort& echo = camera.serialPorts[1];
  EXPECT_EQ(echo.number, 9u);
  EXPECT_THAT(echo.rates, ElementsAre(3000000, 9600));
  EXPECT_EQ(echo.rate, 9600u);
  EXPECT_EQ(echo.behind, krtransport::LabLineEnd::Echo);
  EXPECT_FALSE(echo.isPaced);
  EXPECT_FALSE(echo.hasFlowControl);
  EXPECT_EQ(echo.received.lost.every, 0u);
}

TEST(LabSerialReader, Parse_RatesWithoutARate_BeginAtTheFirst) {
  Lab lab;

  ASSERT_TRUE(Parse(KR_CAMERA "    serialPorts: [{port: Serial0, rates: [115200, 9600]}]\n", lab).IsOK());

  EXPECT_EQ(std::get<LabGEVCamera>(lab.adapters[0].devices[0]).serialPorts[0].rate, 115200u);
}

TEST(LabSerialReader, Parse_CountedCameras_HaveATtyEach) {
  Lab lab;

  ASSERT_TRUE(
      Parse(KR_CAMERA "    count: 3\n    serialPorts: [{port: Serial0, behind: tty, path: /dev/ttyS8}]\n", lab).IsOK());

  EXPECT_EQ(std::get<LabGEVCamera>(lab.adapters[0].devices[0]).serialPorts[0].path, "/dev/ttyS8");
  EXPECT_EQ(std::get<LabGEVCamera>(lab.adapters[0].devices[2]).serialPorts[0].path, "/dev/ttyS10");
}
