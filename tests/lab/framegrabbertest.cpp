// The frame grabber of the built-in lab: its sources, its power, and the three cameras behind its ports.

#include "clcamerafixture.h"

#include "krdevice/krstream.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

constexpr const char* kGrabberMAC = "02:4b:52:00:78:12";

class FrameGrabberTest : public CLCameraTest {
protected:
  FrameGrabberTest() : CLCameraTest(krtransport::GetBuiltInLab()) {}
  void SetUp() override { OpenGrabber(kGrabberMAC); }

  KrGenParameterArray& GetArray() { return *mDevice->GetParameters(); }
  std::int64_t GetInteger(const char* aName) {
    std::int64_t value = -1;
    EXPECT_TRUE(GetArray().GetInteger(aName)->GetValue(value).IsOK()) << aName;
    return value;
  }
  KrResult SelectSource(const char* aName) { return GetArray().GetEnum("SourceSelector")->SetEntry(aName); }
};

} // namespace

TEST_F(FrameGrabberTest, Ports_AreThoseOfTheThreeCameras) {
  std::vector<std::string> ports;
  for (const KrDeviceSerial port : kDeviceSerialPorts) {
    if (KrDeviceSerialPort::IsSupported(&*mAdapter, port))
      ports.push_back(GetPortName(port).ToUtf8());
  }

  EXPECT_THAT(ports, ElementsAre("Serial0", "Serial1", "Bulk0"));
}

TEST_F(FrameGrabberTest, Cameras_EachInItsOwnWay_SayWhatTheyAre) {
  // GenCP: 5 bytes of the serial number at 0x0144, as request 1.
  SendHex("0100 b7f2 b6a9 0000 4000 0800 000c 0001 0000 0000 0000 0144 0000 0005");
  EXPECT_EQ(Receive(21).substr(16), "SIM-C");

  OpenPort(KrDeviceSerial::Serial1);
  Send("id?*0C\r");
  EXPECT_EQ(Receive(38), "KrGUI,Simulated Text Camera,SIM-CL-02\r");

  OpenPort(KrDeviceSerial::Bulk0);
  SendHex("a5 49 01 00 00 00 10 d7 f4");
  EXPECT_EQ(Receive(13).substr(7), std::string("KrGUI\0", 6));
}

TEST_F(FrameGrabberTest, Sources_EachHaveTheirOwnSizeAndFormat) {
  KrStringList sources;
  ASSERT_TRUE(GetArray().GetEnum("SourceSelector")->GetAvailableEntries(sources).IsOK());
  EXPECT_EQ(sources.GetCount(), 3u);
  ASSERT_TRUE(GetArray().GetInteger("Width")->SetValue(512).IsOK());
  ASSERT_TRUE(GetArray().GetInteger("OffsetX")->SetValue(64).IsOK());
  ASSERT_TRUE(GetArray().GetEnum("PixelFormat")->SetEntry("Mono12").IsOK());
  const std::int64_t payload = GetInteger("PayloadSize");

  ASSERT_TRUE(SelectSource("Source2").IsOK());

  EXPECT_EQ(GetInteger("Width"), 2048);
  EXPECT_EQ(GetInteger("OffsetX"), 0);
  KrString format;
  EXPECT_TRUE(GetArray().GetEnum("PixelFormat")->GetEntry(format).IsOK());
  EXPECT_EQ(format, "Mono8");
  EXPECT_NE(GetInteger("PayloadSize"), payload);
  ASSERT_TRUE(GetArray().GetInteger("Height")->SetValue(100).IsOK());
  ASSERT_TRUE(SelectSource("Source0").IsOK());
  EXPECT_EQ(GetInteger("Width"), 512);
  EXPECT_EQ(GetInteger("Height"), 2048);
  EXPECT_EQ(GetInteger("OffsetX"), 64);
  EXPECT_EQ(GetInteger("PayloadSize"), payload);
}

TEST_F(FrameGrabberTest, SourceSelector_SelectsWhatBelongsToTheSource) {
  KrGenParameterList selected;
  ASSERT_TRUE(GetArray().GetEnum("SourceSelector")->GetSelectedParameters(selected).IsOK());

  std::vector<std::string> names;
  for (const KrGenParameter* const parameter : selected)
    names.push_back(parameter->GetName().ToUtf8());
  EXPECT_THAT(names, testing::UnorderedElementsAre("Width", "Height", "OffsetX", "OffsetY", "PixelFormat"));
}

TEST_F(FrameGrabberTest, Stream_GivesFramesOfTheSelectedSource) {
  ASSERT_TRUE(SelectSource("Source1").IsOK());
  ASSERT_TRUE(GetArray().GetInteger("Width")->SetValue(128).IsOK());
  KrStream stream(*mDevice);
  ASSERT_TRUE(stream.Start().IsOK());
  KrBuffer* buffer = nullptr;

  ASSERT_TRUE(stream.Retrieve(buffer, kGenerousLimitMs).IsOK());

  EXPECT_EQ(buffer->GetImage()->GetWidth(), 128u);
  EXPECT_FALSE(SelectSource("Source0").IsOK()) << "locked while a stream runs";
}

TEST_F(FrameGrabberTest, Power_SwitchedOff_SilencesTheCameraThatLivesOnIt) {
  bool isOn = false;
  ASSERT_TRUE(GetArray().GetBoolean("PoclEnable")->GetValue(isOn).IsOK());
  EXPECT_TRUE(isOn);
  OpenPort(KrDeviceSerial::Serial1);
  SetPower(false);
  Send("gain=12*3F\r");
  ASSERT_TRUE(WaitUntil([this] {
    KrSimulatedSerialCounts counts;
    return mLab->GetFaults(kGrabberMAC)->GetSerialCounts(1, counts).IsOK() && counts.sent == 11;
  }));

  SetPower(true);
  Send("gain?*DE\r");

  EXPECT_EQ(Receive(2), "0\r") << "it has heard nothing before";
}

TEST_F(FrameGrabberTest, Settings_OfEverySource_AreStoredAndRestored) {
  ASSERT_TRUE(SelectSource("Source1").IsOK());
  ASSERT_TRUE(GetArray().GetInteger("Width")->SetValue(320).IsOK());
  KrGenSettings settings;
  KrStringList problems;
  ASSERT_TRUE(GetArray().StoreSettings(settings, problems).IsOK());
  ASSERT_TRUE(GetArray().GetInteger("Width")->SetValue(640).IsOK());

  EXPECT_TRUE(GetArray().RestoreSettings(settings, problems).IsOK());

  EXPECT_TRUE(problems.IsEmpty());
  ASSERT_TRUE(SelectSource("Source1").IsOK());
  EXPECT_EQ(GetInteger("Width"), 320);
}
