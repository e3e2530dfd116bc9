// Which serial ports a host has, and under which numbers.

#include "krserial/krhostserialports.h"
#include "hostfolders.h"
#include "krbase/krlogger.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <future>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Names = std::vector<std::string>;

class KrHostSerialPortsTest : public testing::Test {
protected:
  // The test says which warnings there may be.
  ~KrHostSerialPortsTest() override { EXPECT_EQ(mLog.GetRecords().size(), mWarnings); }

  static Names List() {
    KrStringList names;
    const KrResult listed = KrHostSerialPorts::GetNames(names);
    EXPECT_TRUE(listed.IsOK()) << listed.GetDescription().CStr();
    Names list;
    for (const KrString& name : names)
      list.push_back(name.ToUtf8());
    return list;
  }
  static KrHostSerialPort Find(const std::string& aName) {
    KrHostSerialPort port;
    const KrResult found = KrHostSerialPorts::Find(aName, port);
    EXPECT_TRUE(found.IsOK()) << aName << ": " << found.GetDescription().CStr();
    return port;
  }

  HostFolders mHost;
  KrLogCapture mLog;
  std::size_t mWarnings = 0;
};

} // namespace

TEST_F(KrHostSerialPortsTest, List_OfLinks_IsInTheOrderOfTheirNumbers) {
  mHost.Link("com12", "/dev/null");
  mHost.Link("COM3", "/dev/null");
  mHost.Link("Com1", "/dev/null");

  EXPECT_THAT(List(), ElementsAre("COM1", "COM3", "COM12"));
}

TEST_F(KrHostSerialPortsTest, List_WithNamesThatAreNoPorts_LeavesThemOut) {
  for (const char* name :
       {"com01", "com", "com0", "com4097", "com1x", "xcom1", "com-1", "com 1", "com+1", "lpt1", "c0m1"})
    mHost.Link(name, "/dev/null");
  TemporaryFolder::WriteFile(mHost.GetLink("com7"), "no link");
  mHost.Link("com4096", "/dev/null");

  EXPECT_THAT(List(), ElementsAre("COM4096"));
}

TEST_F(KrHostSerialPortsTest, List_WithoutAnyFolder_IsEmpty) {
  KrHostSerialPorts::SetFolders({.links = mHost.GetFile("no/links"),
                                 .sysfs = mHost.GetFile("no/class"),
                                 .devices = mHost.GetFile("no/dev"),
                                 .numbers = mHost.GetFile("no/numbers")});

  EXPECT_THAT(List(), IsEmpty());
}

TEST_F(KrHostSerialPortsTest, List_OfAFolderThatIsNone_IsSystemErrorAndKeepsTheList) {
  KrHostSerialFolders folders = KrHostSerialPorts::GetFolders();
  TemporaryFolder::WriteFile(mHost.GetFile("file"), "");
  folders.sysfs = mHost.GetFile("file");
  KrHostSerialPorts::SetFolders(folders);
  std::vector<KrHostSerialPort> ports(1);

  const KrResult listed = KrHostSerialPorts::List(ports);

  EXPECT_EQ(listed, KrResult::Code::SystemError);
  EXPECT_THAT(listed.GetDescription().ToUtf8(), HasSubstr(mHost.GetFile("file")));
  EXPECT_EQ(ports.size(), 1U);
}

TEST_F(KrHostSerialPortsTest, List_OfTheSystemsTtys_NumbersThemByKindAndLeavesOthersOut) {
  mHost.AddUsb("ttyACM0", {.serial = "C", .place = "1-3"});
  mHost.AddUsb("ttyUSB10", {.serial = "B", .place = "1-2"});
  mHost.AddUsb("ttyUSB2", {.serial = "A", .place = "1-1"});
  mHost.AddTty("ttyS0", "4", "pnp0/00:01");
  for (const char* other : {"tty1", "ttyprintk", "console", "ttyUSB", "ttySx", "ptmx"})
    mHost.AddTty(other, "4", std::string("other/") + other);

  EXPECT_THAT(List(), ElementsAre("COM1", "COM2", "COM3", "COM4"));

  EXPECT_EQ(Find("COM1").path.ToUtf8(), mHost.GetFile("dev/ttyS0"));
  EXPECT_EQ(Find("COM2").path.ToUtf8(), mHost.GetFile("dev/ttyUSB2"));
  EXPECT_EQ(Find("COM2").text.ToUtf8(), "USB serial adapter ttyUSB2");
  EXPECT_EQ(Find("COM3").path.ToUtf8(), mHost.GetFile("dev/ttyUSB10"));
  EXPECT_EQ(Find("com4").path.ToUtf8(), mHost.GetFile("dev/ttyACM0"));
}

TEST_F(KrHostSerialPortsTest, List_OfSerialPorts_HasThoseWithHardwareAlone) {
  mHost.AddTty("ttyS0", "4", "platform/serial8250"); // Found by the driver itself.
  mHost.AddTty("ttyS1", "0", "platform/serial8250");
  mHost.AddTty("ttyS2", "0", "pnp0/00:02");
  mHost.AddTty("ttyS3", "", "platform/serial8250");
  mHost.AddTty("ttyS4", "", "platform/uart4");
  mHost.AddTty("ttyS5", "", "");

  List();

  EXPECT_THAT(List(), ElementsAre("COM1", "COM2"));
  EXPECT_EQ(Find("COM1").path.ToUtf8(), mHost.GetFile("dev/ttyS0"));
  EXPECT_EQ(Find("COM2").path.ToUtf8(), mHost.GetFile("dev/ttyS4"));
}

TEST_F(KrHostSerialPortsTest, SerialPort_BelowFoldersOfANewerSystem_KeepsItsNumber) {
  mHost.AddTty("ttyS0", "4", "pnp0/00:01");
  mHost.AddTty("ttyS1", "4", "pnp0/00:02");
  ASSERT_THAT(List(), ElementsAre("COM1", "COM2"));

  mHost.Remove("ttyS0");
  mHost.Remove("ttyS1");
  mHost.AddTty("ttyS1", "4", "pnp0/00:02/00:02:0/00:02:0.0");
  for (const char* added : {"pnp0/00:02/00:02:0", "pnp0/00:02/00:02:0/00:02:0.0"})
    std::filesystem::create_symlink("../../bus/serial-base",
                                    mHost.GetFile(std::string("devices/") + added + "/subsystem"));

  EXPECT_THAT(List(), ElementsAre("COM2"));
}

TEST_F(KrHostSerialPortsTest, List_WithALinkOfATtysNumber_HidesTheTty) {
  mHost.AddTty("ttyS0", "4", "pnp0/00:01");
  ASSERT_THAT(List(), ElementsAre("COM1"));

  mHost.Link("com1", mHost.GetFile("dev/ttyS0"));

  EXPECT_THAT(List(), ElementsAre("COM1"));
  EXPECT_EQ(Find("COM1").path.ToUtf8(), mHost.GetLink("com1"));
}

TEST_F(KrHostSerialPortsTest, NewTty_WithALinkOfTheLowestNumber_GetsTheNext) {
  mHost.Link("com1", "/dev/null");
  mHost.AddTty("ttyS0", "4", "pnp0/00:01");

  EXPECT_THAT(List(), ElementsAre("COM1", "COM2"));
}

TEST_F(KrHostSerialPortsTest, LinkThatLeadsNowhere_IsNoPortNowAndKeepsItsNumber) {
  mHost.Link("com1", mHost.GetFile("dev/ttyUSB0"));
  mHost.AddTty("ttyS0", "4", "pnp0/00:01");

  EXPECT_THAT(List(), ElementsAre("COM2"));

  KrHostSerialPort port;
  const KrResult found = KrHostSerialPorts::Find("COM1", port);
  EXPECT_EQ(found, KrResult::Code::NotFound);
  EXPECT_THAT(found.GetDescription().ToUtf8(), HasSubstr(mHost.GetFile("dev/ttyUSB0")));
}

TEST_F(KrHostSerialPortsTest, Adapter_PulledAndBackAsAnotherTty_KeepsItsNumber) {
  mHost.AddUsb("ttyUSB0", {.serial = "A", .place = "1-1"});
  ASSERT_THAT(List(), ElementsAre("COM1"));
  mHost.RemoveUsb("ttyUSB0", "1-1");
  ASSERT_THAT(List(), IsEmpty());

  mHost.AddUsb("ttyUSB1", {.serial = "A", .place = "2-4"});

  EXPECT_THAT(List(), ElementsAre("COM1"));
  EXPECT_EQ(Find("COM1").path.ToUtf8(), mHost.GetFile("dev/ttyUSB1"));
}

TEST_F(KrHostSerialPortsTest, AnotherAdapter_OnTheSameTty_GetsAnotherNumber) {
  const HostFolders::Usb first = {.serial = "A"};
  const HostFolders::Usb others[] = {{.serial = "B"},
                                     {.serial = "A", .interface = "01"},
                                     {.serial = "A", .vendor = "1a86"},
                                     {.serial = "A", .product = "7523"},
                                     {.serial = ""}};
  mHost.AddUsb("ttyUSB0", first);
  ASSERT_THAT(List(), ElementsAre("COM1"));

  std::uint32_t next = 2;
  for (const HostFolders::Usb& other : others) {
    mHost.RemoveUsb("ttyUSB0", "1-1");
    mHost.AddUsb("ttyUSB0", other);
    EXPECT_THAT(List(), ElementsAre("COM" + std::to_string(next++)));
  }
}

TEST_F(KrHostSerialPortsTest, AdapterWithoutASerialNumber_IsKnownByItsPlace) {
  mHost.AddUsb("ttyUSB0", {.serial = "", .place = "1-1"});
  mHost.AddUsb("ttyUSB1", {.serial = "", .place = "1-2"});
  ASSERT_THAT(List(), ElementsAre("COM1", "COM2"));
  mHost.RemoveUsb("ttyUSB0", "1-1");
  mHost.RemoveUsb("ttyUSB1", "1-2");

  mHost.AddUsb("ttyUSB0", {.serial = "", .place = "1-2"});

  EXPECT_THAT(List(), ElementsAre("COM2"));
}

TEST_F(KrHostSerialPortsTest, AdaptersWithOneSerialNumber_HaveNumbersOfTheirOwn) {
  mHost.AddUsb("ttyUSB0", {.serial = "0001", .place = "1-1"});
  mHost.AddUsb("ttyUSB1", {.serial = "0001", .place = "1-2"});
  ASSERT_THAT(List(), ElementsAre("COM1", "COM2"));
  const std::string second = mHost.GetFile("dev/ttyUSB1");
  ASSERT_EQ(Find("COM2").path.ToUtf8(), second);

  mHost.RemoveUsb("ttyUSB0", "1-1");
  mHost.RemoveUsb("ttyUSB1", "1-2");
  mHost.AddUsb("ttyUSB0", {.serial = "0001", .place = "1-2"});
  mHost.AddUsb("ttyUSB1", {.serial = "0001", .place = "1-1"});

  EXPECT_EQ(Find("COM2").path.ToUtf8(), mHost.GetFile("dev/ttyUSB0"));
}

TEST_F(KrHostSerialPortsTest, AdapterWithTheSerialNumberOfOneThatRuns_TakesNoNumberOfIt) {
  mHost.AddUsb("ttyUSB0", {.serial = "0001", .place = "1-1"});
  ASSERT_THAT(List(), ElementsAre("COM1"));

  mHost.AddUsb("ttyUSB1", {.serial = "0001", .place = "1-2"});
  EXPECT_THAT(List(), ElementsAre("COM1", "COM2"));
  EXPECT_EQ(Find("COM1").path.ToUtf8(), mHost.GetFile("dev/ttyUSB0"));
  mHost.RemoveUsb("ttyUSB0", "1-1");

  EXPECT_THAT(List(), ElementsAre("COM2"));
}

TEST_F(KrHostSerialPortsTest, TextOfAnAdapterThatIsNoWord_DoesNotDamageTheNumbers) {
  mHost.AddUsb("ttyUSB0", {.serial = "a b\t\x01\xff%"});
  mHost.AddUsb("ttyUSB1", {.serial = std::string(100000, 'x'), .place = "1-2"});
  ASSERT_THAT(List(), ElementsAre("COM1", "COM2"));

  mHost.AddUsb("ttyUSB2", {.serial = "c", .place = "1-3"});

  EXPECT_THAT(List(), ElementsAre("COM1", "COM2", "COM3"));
}

TEST_F(KrHostSerialPortsTest, List_OnManyThreadsAtOnce_GivesAllTheSameNumbers) {
  for (int tty = 0; tty < 20; ++tty)
    mHost.AddUsb("ttyUSB" + std::to_string(tty),
                 {.serial = "S" + std::to_string(tty), .place = "1-" + std::to_string(tty)});

  std::vector<std::future<std::vector<KrHostSerialPort>>> lists;
  for (int thread = 0; thread < 4; ++thread)
    lists.push_back(std::async(std::launch::async, [] {
      std::vector<KrHostSerialPort> ports;
      EXPECT_TRUE(KrHostSerialPorts::List(ports).IsOK());
      return ports;
    }));

  for (auto& list : lists) {
    const std::vector<KrHostSerialPort> ports = list.get();
    ASSERT_EQ(ports.size(), 20U);
    for (std::uint32_t index = 0; index < ports.size(); ++index) {
      EXPECT_EQ(ports[index].number, index + 1);
      EXPECT_EQ(ports[index].path.ToUtf8(), mHost.GetFile("dev/ttyUSB" + std::to_string(index)));
    }
  }
}

TEST_F(KrHostSerialPortsTest, DamagedNumbers_AreKeptAsideAndSaidInTheLog) {
  std::filesystem::create_directory(mHost.GetFile("own"));
  TemporaryFolder::WriteFile(mHost.GetFile("own/numbers"), "nonsense");
  mHost.AddTty("ttyS0", "4", "pnp0/00:01");
  mWarnings = 1;

  EXPECT_THAT(List(), ElementsAre("COM1"));

  EXPECT_EQ(TemporaryFolder::ReadFile(mHost.GetFile("own/numbers.damaged")), "nonsense");
}

TEST_F(KrHostSerialPortsTest, Find_OfATextThatIsNoName_IsInvalidInput) {
  KrHostSerialPort port;

  for (const char* name : {"", "COM", "COM0", "COM01", "COM4097", "COM99999999999", "/dev/null", "COM1 "})
    EXPECT_EQ(KrHostSerialPorts::Find(name, port), KrResult::Code::InvalidInput) << name;
}

TEST_F(KrHostSerialPortsTest, Find_OfAPortThatIsNotThere_SaysWhereItWasLookedFor) {
  KrHostSerialPort port;

  const KrResult found = KrHostSerialPorts::Find("COM9", port);

  EXPECT_EQ(found, KrResult::Code::NotFound);
  EXPECT_THAT(found.GetDescription().ToUtf8(), HasSubstr(mHost.GetFile("links")));
  EXPECT_THAT(found.GetDescription().ToUtf8(), HasSubstr(mHost.GetFile("class")));
}

TEST_F(KrHostSerialPortsTest, GetFolders_WhenNoneIsSet_NamesTheSystemsAndTheUsers) {
  KrHostSerialPorts::SetFolders({});

  const KrHostSerialFolders folders = KrHostSerialPorts::GetFolders();

  EXPECT_EQ(folders.sysfs.ToUtf8(), "/sys/class/tty");
  EXPECT_EQ(folders.devices.ToUtf8(), "/dev");
  EXPECT_EQ(folders.locks.ToUtf8(), "/var/lock");
  EXPECT_THAT(folders.links.ToUtf8(), testing::EndsWith("/krgui/com-ports"));
  EXPECT_THAT(folders.numbers.ToUtf8(), testing::EndsWith("/krgui/com-port-numbers"));
}
