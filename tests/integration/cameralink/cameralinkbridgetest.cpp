// A serial bridge that Camera Link programs use: the program, its library, the bridge, the device's line.

#include "bridgeends.h"
#include "clprogram.h"
#include "krserial/krgenparameterarraycl.h"
#include "krserial/krserialbridge.h"
#include "publishedline.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using krtest::Await;

std::string MakeLineText(std::size_t aCount) {
  const std::vector<std::uint8_t> bytes = MakeLineBytes(aCount);
  return {bytes.begin(), bytes.end()};
}

KrStringList ListPorts() {
  KrStringList ids;
  EXPECT_TRUE(KrGenParameterArrayCL::GetPortIDs(ids).IsOK());
  return ids;
}

class CameraLinkBridge : public testing::Test {
protected:
  KrResult Start(KrDeviceSerial aPort = KrDeviceSerial::Serial0) {
    return bridge.Start("Camera-Serial0", &adapter, aPort);
  }

  SocketFolder folder;
  krtest::SerialAdapter adapter;
  std::shared_ptr<krtest::SerialLine> line = adapter.AddLine(0);
  KrSerialBridge bridge;
};

TEST_F(CameraLinkBridge, AProgram_TalksToTheDevice) {
  ASSERT_TRUE(Start().IsOK());
  ClProgram program;
  ASSERT_EQ(program.Ask("count"), "0 1");
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");

  EXPECT_EQ(program.Ask("write 0 1000 60000"), "0 1000");
  EXPECT_TRUE(Await([&] { return line->GetSent() == MakeLineText(1000); }));
  line->Receive(MakeLineText(2000));

  EXPECT_TRUE(Await([&] { return bridge.GetBytesReceivedFromDevice() == 2000; }));
  EXPECT_TRUE(Await([&] { return bridge.GetBytesSentToDevice() == 1000; }));
  EXPECT_EQ(program.Ask("read 0 2000 60000"), "0 2000 right");
}

TEST_F(CameraLinkBridge, NextProgram_GetsNothingThatTheOneBeforeDidNotRead) {
  ASSERT_TRUE(Start().IsOK());
  ClProgram program;

  for (int round = 0; round < 20; ++round) {
    ASSERT_EQ(program.Ask("init 0 0"), "0 0");
    line->Receive(MakeLineText(2'000'000)); // More than waits anywhere on the way.
    ASSERT_EQ(program.Ask("read 0 1000 60000"), "0 1000 right");
    ASSERT_EQ(program.Ask("close 0"), "0 0");
    ASSERT_EQ(program.Ask("init 0 0"), "0 0");

    ASSERT_EQ(line->CountWaiting(), 0U);
    line->Receive(MakeLineText(50));
    ASSERT_EQ(program.Ask("read 0 50 60000"), "0 50 right");
    ASSERT_EQ(program.Ask("close 0"), "0 0");
  }
}

TEST_F(CameraLinkBridge, Flush_TakesWhatWaitsInTheBridgeAndInTheDevice) {
  ASSERT_TRUE(Start().IsOK());
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");

  for (int round = 0; round < 20; ++round) {
    line->Receive(MakeLineText(2'000'000));
    ASSERT_TRUE(Await([&] { return bridge.GetBytesReceivedFromDevice() > 100000; }));
    ASSERT_EQ(program.Ask("flush 0"), "0 0");

    ASSERT_EQ(line->CountWaiting(), 0U);
    line->Receive(MakeLineText(50));
    ASSERT_EQ(program.Ask("read 0 50 60000"), "0 50 right");
    bridge.ResetStatistics();
  }
}

TEST_F(CameraLinkBridge, Speed_IsSetBehindTheBytesThatWereWrittenBefore) {
  krtest::LockedAdapter device;
  const std::shared_ptr<krtest::SerialLine> port = device.AddLine(0);
  ASSERT_TRUE(bridge.Start("Camera-Serial0", &device, KrDeviceSerial::Serial0).IsOK());
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  port->SetRoom(0);
  ASSERT_EQ(program.Ask("write 0 10 60000"), "0 10");

  program.Send("speed 0 16");
  ASSERT_TRUE(Await([&] { return !port->GetWrites().empty(); })) << "The device does not take them yet.";
  EXPECT_EQ(device.GetSpeed(), "Baud9600");
  port->SetRoom(10);

  EXPECT_EQ(program.Await(), "0 0");
  EXPECT_EQ(device.GetSpeed(), "Baud115200");
  port->SetRoom(0);
  ASSERT_EQ(program.Ask("write 0 10 60000"), "0 10");
  EXPECT_EQ(program.Ask("speed 0 1"), "-10004 0") << "They do not go.";
  EXPECT_EQ(device.GetSpeed(), "Baud115200");
  bridge.Stop();
}

TEST_F(CameraLinkBridge, NextProgram_IsServedWhenTheBytesOfTheOneBeforeAreSent) {
  krtest::LockedAdapter device;
  const std::shared_ptr<krtest::SerialLine> port = device.AddLine(0);
  ASSERT_TRUE(bridge.Start("Camera-Serial0", &device, KrDeviceSerial::Serial0).IsOK());
  ClProgram program;
  ASSERT_EQ(program.Ask("init 0 0"), "0 0");
  ASSERT_EQ(program.Ask("speed 0 16"), "0 0");
  port->SetRoom(0);
  ASSERT_EQ(program.Ask("write 0 10 60000"), "0 10");
  ASSERT_EQ(program.Ask("close 0"), "0 0");

  EXPECT_EQ(program.Ask("init 0 0"), "-10003 0");
  EXPECT_EQ(device.GetSpeed(), "Baud115200") << "The speed of the bytes that have not gone.";
  program.Send("init 0 0");
  port->SetRoom(10);

  EXPECT_EQ(program.Await(), "0 0");
  EXPECT_EQ(device.GetSpeed(), "Baud9600");
  bridge.Stop();
}

TEST_F(CameraLinkBridge, Name_IsTheOneOfTheListAndGoesWithTheBridge) {
  KrSerialBridge other;
  adapter.AddLine(1);
  ASSERT_TRUE(Start().IsOK());
  ASSERT_TRUE(other.Start("Camera-Serial0", &adapter, KrDeviceSerial::Serial1).IsOK());

  EXPECT_EQ(bridge.GetName(), KrString("Camera-Serial0"));
  EXPECT_EQ(other.GetName(), KrString("Camera-Serial0 (2)"));
  EXPECT_EQ(bridge.GetSerialPort(), KrString());
  EXPECT_EQ(ListPorts().GetCount(), 2U);
  EXPECT_EQ(bridge.SetSerialPortConfiguration({}), KrResult::Code::WrongState);
  bridge.Stop();
  other.Stop();

  EXPECT_EQ(bridge.GetName(), KrString());
  EXPECT_TRUE(ListPorts().IsEmpty());
}

TEST_F(CameraLinkBridge, OfNoPort_IsPublishedAndInUse) {
  ASSERT_TRUE(Start(kNoDeviceSerial).IsOK());
  ClProgram program;

  EXPECT_EQ(program.Ask("count"), "0 1");
  EXPECT_EQ(program.Ask("init 0 0"), "-10003 0");

  EXPECT_EQ(line->CountOpenings(), 0);
  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Running);
}

TEST_F(CameraLinkBridge, Start_RefusesWhatCannotBePublished) {
  EXPECT_EQ(bridge.Start("", &adapter, KrDeviceSerial::Serial0), KrResult::Code::InvalidInput);
  EXPECT_EQ(bridge.Start("  ", &adapter, KrDeviceSerial::Serial0), KrResult::Code::InvalidInput);
  EXPECT_EQ(bridge.Start("Camera", nullptr, KrDeviceSerial::Serial0), KrResult::Code::InvalidInput);
  EXPECT_EQ(bridge.Start("Camera", &adapter, KrDeviceSerial::Bulk7), KrResult::Code::NotSupported);

  EXPECT_EQ(bridge.GetState(), KrSerialBridgeState::Stopped);
  EXPECT_TRUE(ListPorts().IsEmpty());
}

TEST_F(CameraLinkBridge, AHundredStartsAndStops_LeaveNothingBehind) {
  for (int round = 0; round < 100; ++round) {
    ASSERT_TRUE(Start().IsOK());
    bridge.Stop();
  }

  EXPECT_EQ(line->CountOpenings(), 100);
  EXPECT_FALSE(line->IsOpen());
  EXPECT_TRUE(ListPorts().IsEmpty());
}

} // namespace
