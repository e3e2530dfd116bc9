// The bridges of a device: which there are, how they are saved and loaded together, and how they are told apart.

#include "logic/serial/serialbridgelist.h"
#include "serialbridgefixture.h"

namespace krgui {

namespace {

using krtest::BridgeHost;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

class BridgeList : public SerialBridgeTest {
protected:
  BridgeList() : mBulk(mDevice.AddLine(2)) { mBridges.SetDevice(&mDevice, "Model X"); }

  std::vector<std::string> GetPorts() const {
    std::vector<std::string> ports;
    for (const auto& bridge : mBridges.GetBridges())
      ports.push_back(bridge->GetPortName().ToUtf8());
    return ports;
  }
  std::vector<std::string> Load(const Settings& aSettings) {
    KrStringList errors;
    mBridges.Load(MakeProperties(aSettings), errors);
    return GetTexts(errors);
  }
  Settings Save() const {
    KrPropertyList list;
    list.Add({"left", "over"});
    mBridges.Save(list);
    return GetSettings(list);
  }
  BridgeKind GetKind(KrDeviceSerial aPort) const { return mBridges.Find(aPort)->GetKind(); }

  std::shared_ptr<krtest::SerialLine> mBulk;
  SerialBridgeList mBridges;
};

constexpr auto kSerial0 = KrDeviceSerial::Serial0;
constexpr auto kBulk0 = KrDeviceSerial::Bulk0;

} // namespace

TEST_F(BridgeList, Device_HasABridgeForEachOfItsPorts) {
  EXPECT_THAT(GetPorts(), ElementsAre("Serial0", "Bulk0"));
  EXPECT_TRUE(mBridges.HasDevice());
  EXPECT_EQ(mBridges.Find(KrDeviceSerial::Bulk3), nullptr);
  EXPECT_EQ(mBridges.Find(KrDeviceSerial::Invalid), nullptr);
}

TEST_F(BridgeList, DeviceWithAllPorts_HasTenBridgesInTheirOrder) {
  for (std::uint32_t number = 0; number < 10; ++number)
    mDevice.AddLine(number);

  mBridges.SetDevice(&mDevice, "Model X");

  EXPECT_THAT(GetPorts(), ElementsAre("Serial0", "Serial1", "Bulk0", "Bulk1", "Bulk2", "Bulk3", "Bulk4", "Bulk5",
                                      "Bulk6", "Bulk7"));
}

TEST_F(BridgeList, NewDevice_LeavesAllWithoutAKindAndNothingPublished) {
  for (const auto& bridge : mBridges.GetBridges())
    EXPECT_EQ(bridge->GetKind(), BridgeKind::None);
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
  EXPECT_EQ(mLine->CountOpenings(), 0) << "names are published without a port";
}

TEST_F(BridgeList, NewDeviceThatCannotBePublished_IsTakenAllTheSame) {
  mHost.OpenSocketFolder();

  mBridges.SetDevice(&mDevice, "Model X");

  EXPECT_THAT(GetPorts(), ElementsAre("Serial0", "Bulk0"));
  EXPECT_EQ(GetKind(kSerial0), BridgeKind::None);
}

TEST_F(BridgeList, NewDeviceWithoutPorts_RemovesWhatADeadProcessLeftPublished) {
  mDevice.lines.clear();
  mHost.LeaveDeadPublication();
  ASSERT_TRUE(mHost.HasDeadPublication());

  mBridges.SetDevice(&mDevice, "Model X");

  EXPECT_FALSE(mHost.HasDeadPublication());
}

TEST_F(BridgeList, NoDevice_EndsTheBridges) {
  ASSERT_THAT(Load({{"Serial0", "COMPort"}, {"Serial0Port", "COM3"}, {"Bulk0", "CLDLL"}}), IsEmpty());
  ASSERT_TRUE(mLine->IsOpen());
  ASSERT_TRUE(mBulk->IsOpen());

  mBridges.SetDevice(nullptr, {});

  EXPECT_THAT(GetPorts(), IsEmpty());
  EXPECT_FALSE(mBridges.HasDevice());
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_FALSE(mBulk->IsOpen());
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
}

TEST_F(BridgeList, Generation_ChangesWithTheBridges) {
  const std::uint64_t first = mBridges.GetGeneration();
  Load({});
  const std::uint64_t second = mBridges.GetGeneration();
  mBridges.SetDevice(&mDevice, "Model X");

  EXPECT_NE(first, second);
  EXPECT_NE(second, mBridges.GetGeneration());
}

TEST_F(BridgeList, PublishedName_IsTheDevicesTextAndThePort) {
  EXPECT_STREQ(mBridges.MakeCLDLLName(*mBridges.Find(kBulk0)).CStr(), "Model X-Bulk0");
}

TEST_F(BridgeList, Setup_IsLoaded) {
  EXPECT_THAT(Load({{"Serial0", "COMPort"},
                    {"Serial0Port", "COM3"},
                    {"Serial0COMPortBaudRate", "19200"},
                    {"Bulk0", "CLDLL"},
                    {"Bulk0CLDLLBaudRate", "57600"}}),
              IsEmpty());

  EXPECT_STREQ(mBridges.Find(kSerial0)->GetDescription().CStr(), "19200 baud, no parity, 8 bits, 1 stop bit");
  EXPECT_THAT(BridgeHost::GetPublished(), ElementsAre("Model X-Bulk0"));
  EXPECT_EQ(mBridges.Find(kBulk0)->GetBaudRate(), 57600U);
}

TEST_F(BridgeList, Loading_EndsWhatRan) {
  ASSERT_THAT(Load({{"Serial0", "COMPort"}, {"Serial0Port", "COM3"}}), IsEmpty());

  EXPECT_THAT(Load({}), IsEmpty());

  EXPECT_EQ(GetKind(kSerial0), BridgeKind::None);
  EXPECT_FALSE(mLine->IsOpen());
}

TEST_F(BridgeList, TwoPortsOnOneThatIsMade_AreTheFirstOnesAndBusy) {
  mBridges.SetCreatingPorts(true);

  const std::vector<std::string> errors =
      Load({{"Serial0", "COMPort"}, {"Serial0Port", "COM42"}, {"Bulk0", "COMPort"}, {"Bulk0Port", "COM42"}});

  EXPECT_THAT(errors, ElementsAre(HasSubstr("Busy")));
  EXPECT_TRUE(mLine->IsOpen());
  EXPECT_FALSE(mBulk->IsOpen());
  EXPECT_EQ(GetKind(kBulk0), BridgeKind::None);
}

TEST_F(BridgeList, PortThatTheDeviceLacks_IsToldAndTheOthersAreLoaded) {
  EXPECT_THAT(Load({{"Bulk3", "COMPort"}, {"Bulk0", "CLDLL"}}),
              ElementsAre("Serial bridge manager: Port Bulk3 found in persistence file, not supported by device."));

  EXPECT_EQ(GetKind(kBulk0), BridgeKind::CameraLinkDLL);
}

TEST_F(BridgeList, Lines_ComeInTheOrderOfThePorts) {
  mBridges.SetDevice(nullptr, {});

  EXPECT_THAT(Load({{"Bulk7", "?"}, {"Serial1", "?"}}),
              ElementsAre("Serial bridge manager: Port Serial1 found in persistence file, not supported by device.",
                          "Serial bridge manager: Port Bulk7 found in persistence file, not supported by device."));
}

TEST_F(BridgeList, UnknownTypes_AreTold) {
  for (const char* type : {"Serial", "", "comport", "CLDLL ", "0"}) {
    EXPECT_THAT(Load({{"Serial0", type}}),
                ElementsAre("Serial bridge manager: Unexpected bridge type, " + std::string(type) + " on Serial0."));
    EXPECT_EQ(GetKind(kSerial0), BridgeKind::None);
  }
}

TEST_F(BridgeList, PortTwice_FirstOneCounts) {
  EXPECT_THAT(Load({{"Serial0", "CLDLL"}, {"Serial0", "Serial"}}), IsEmpty());

  EXPECT_EQ(GetKind(kSerial0), BridgeKind::CameraLinkDLL);
}

TEST_F(BridgeList, NamesOfOtherCase_AreNoPorts) {
  EXPECT_THAT(Load({{"serial0", "Serial"}, {"SERIAL0", "Serial"}, {"Serial00", "Serial"}}), IsEmpty());
}

TEST_F(BridgeList, LinkThatCannotBeLoaded_IsNoneAndTheNextGoesOn) {
  EXPECT_THAT(Load({{"Serial0", "COMPort"},
                    {"Serial0Port", "COM3"},
                    {"Serial0COMPortParity", "even"},
                    {"Bulk0", "COMPort"},
                    {"Bulk0Port", "COM3"}}),
              ElementsAre("Serial bridge on Serial0: Unable to parse COM port parity."));

  EXPECT_EQ(GetKind(kSerial0), BridgeKind::None);
  EXPECT_FALSE(mLine->IsOpen());
  EXPECT_STREQ(mBridges.Find(kBulk0)->GetCOMPort().CStr(), "COM3");
}

TEST_F(BridgeList, BridgeThatCannotBePublished_IsToldAndNone) {
  mBulk->FailOpening({KrResult::Code::Busy, "The line is taken"});

  const std::vector<std::string> errors = Load({{"Bulk0", "CLDLL"}, {"Bulk0CLDLLBaudRate", "?"}});

  ASSERT_EQ(errors.size(), 1U);
  EXPECT_THAT(errors[0], StartsWith("Serial bridge manager: Unable to start Camera Link DLL bridge for Bulk0: Busy, "));
  EXPECT_EQ(errors[0].back(), '.');
  EXPECT_EQ(GetKind(kBulk0), BridgeKind::None);
}

TEST_F(BridgeList, PublishedBridgeWithABadRate_IsNone) {
  EXPECT_THAT(Load({{"Bulk0", "CLDLL"}, {"Bulk0CLDLLBaudRate", "?"}}),
              ElementsAre("Serial bridge on Bulk0: Unable to parse Camera Link DLL hard-coded baud rate."));

  EXPECT_EQ(GetKind(kBulk0), BridgeKind::None);
  EXPECT_THAT(BridgeHost::GetPublished(), IsEmpty());
}

TEST_F(BridgeList, SetupOfNone_SavesAnEmptyList) {
  EXPECT_THAT(Save(), IsEmpty());
}

TEST_F(BridgeList, Setup_IsSavedPortByPort) {
  ASSERT_THAT(Load({{"Serial0", "COMPort"},
                    {"Serial0Port", "COM3"},
                    {"Serial0COMPortParity", "Odd"},
                    {"Bulk0", "CLDLL"},
                    {"Bulk0CLDLLBaudRate", "57600"}}),
              IsEmpty());

  EXPECT_THAT(Save(), ElementsAre(Pair("Serial0", "COMPort"), Pair("Serial0Port", "COM3"),
                                  Pair("Serial0COMPortBaudRate", "9600"), Pair("Serial0COMPortParity", "Odd"),
                                  Pair("Serial0COMPortBitCount", "8"), Pair("Serial0COMPortStopBits", "1"),
                                  Pair("Bulk0", "CLDLL"), Pair("Bulk0CLDLLBaudRate", "57600")));
}

TEST_F(BridgeList, LinkWithoutACOMPort_SavesItsTypeAlone) {
  mBridges.Find(kSerial0)->SetKind(BridgeKind::COMPort);

  EXPECT_THAT(Save(), ElementsAre(Pair("Serial0", "COMPort")));
}

TEST_F(BridgeList, PortThatTheHostLacks_IsMadeWhereThatIsAllowed) {
  mBridges.SetCreatingPorts(true);

  EXPECT_THAT(Load({{"Serial0", "COMPort"}, {"Serial0Port", "COM5"}}), IsEmpty());

  EXPECT_STREQ(mBridges.Find(kSerial0)->GetCOMPort().CStr(), "COM5");
}

TEST_F(BridgeList, CreatingAllowedLater_CountsForTheNextStart) {
  SerialBridge& bridge = *mBridges.Find(kSerial0);
  bridge.SetKind(BridgeKind::COMPort);
  ASSERT_FALSE(bridge.StartCOMPort("COM5").IsOK());

  mBridges.SetCreatingPorts(true);

  EXPECT_TRUE(bridge.StartCOMPort("COM5").IsOK());
}

} // namespace krgui
