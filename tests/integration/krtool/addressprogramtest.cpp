// krtool on a network made for the test: it repairs the address of a device of our own, sets what lasts, watches the
// device go and come, and says why others are missing.

#include "networklab.h"
#include "programrun.h"
#include "testdevice.h"

#include <gmock/gmock.h>

#include <csignal>

namespace {

using testing::HasSubstr;

constexpr const char* kMac = "02:00:00:00:00:42";
constexpr std::uint32_t kNewAddress = 0xC0A80132; // 192.168.1.50
constexpr std::uint32_t kMask = 0xFFFFFF00;

/// An adapter "eth0" with 192.168.1.10/24, cabled to "port0" of a host.
class KrToolOnANetwork : public testing::Test {
protected:
  KrToolOnANetwork() : mHost(mLab.AddHost("cameras")) {
    mLab.Connect("eth0", mHost, "port0");
    mLab.SetAddress("eth0", "192.168.1.10/24");
    mLab.SetReversePathFilter("eth0", 0);
  }

  NetworkLab mLab;
  NetworkHost& mHost;
};

TEST_F(KrToolOnANetwork, LostDevice_IsRepairedAndReached) {
  const TestDevice device(mHost, "port0", {.mac = kMac, .address = "10.1.2.3"});

  ProgramRun run(KRTOOL_PATH, {"ip", "10.1.2.3", "--set", "192.168.1.50", "--gateway", "192.168.1.1"});

  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
  EXPECT_EQ(device.GetAddresses(), (DeviceAddresses{kNewAddress, kMask, 0xC0A80101}));
  EXPECT_THAT(run.GetOutput(), HasSubstr("192.168.1.50\n"));
  EXPECT_THAT(run.GetOutput(), HasSubstr("  reachable\n"));
  EXPECT_THAT(run.GetOutput(), HasSubstr("answered after"));
}

TEST_F(KrToolOnANetwork, LostDeviceWhoseAnswersTheKernelDrops_IsRepairedByItsMACAddress) {
  mLab.SetReversePathFilter("eth0", 1);
  const TestDevice device(mHost, "port0", {.mac = kMac, .address = "10.1.2.3"});

  ProgramRun run(KRTOOL_PATH, {"ip", kMac, "--set", "192.168.1.50"});

  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
  EXPECT_EQ(device.GetAddresses().address, kNewAddress);
  EXPECT_THAT(run.GetErrors(), HasSubstr("is not heard"));
  EXPECT_THAT(run.GetOutput(), HasSubstr("  reachable\n"));
}

TEST_F(KrToolOnANetwork, DeviceWithoutAddress_IsGivenAFreeOne) {
  const TestDevice device(mHost, "port0", {.mac = kMac, .address = "0.0.0.0", .mask = "0.0.0.0"});

  ProgramRun run(KRTOOL_PATH, {"ip", kMac, "--set", "auto"});

  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
  EXPECT_EQ(device.GetAddresses().address & kMask, 0xC0A80100U);
  EXPECT_NE(device.GetAddresses().address, 0xC0A8010AU);
  EXPECT_EQ(device.GetAddresses().mask, kMask);
  EXPECT_THAT(run.GetOutput(), HasSubstr("  reachable\n"));
}

TEST_F(KrToolOnANetwork, DeviceThatRefuses_FailsAndKeepsItsAddress) {
  TestDevice device(mHost, "port0", {.mac = kMac, .address = "192.168.1.99"});
  device.SetForceIPManner(ForceIPManner::Refuse);

  ProgramRun run(KRTOOL_PATH, {"ip", "192.168.1.99", "--set", "192.168.1.50"});

  EXPECT_EQ(run.Finish(), 1);
  EXPECT_EQ(run.GetOutput(), "");
  EXPECT_THAT(run.GetErrors(), HasSubstr("giving"));
  EXPECT_EQ(device.GetAddresses().address, 0xC0A80163U);
}

TEST_F(KrToolOnANetwork, DeviceThatIsReached_KeepsWhatLasts) {
  const TestDevice device(mHost, "port0", {.mac = kMac, .address = "192.168.1.20"});

  ProgramRun run(KRTOOL_PATH, {"ip", kMac, "--persistent", "192.168.1.50", "--dhcp", "off"});

  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
  EXPECT_EQ(device.Read(0x064C), kNewAddress);
  EXPECT_EQ(device.Read(0x065C), kMask);
  EXPECT_EQ(device.Read(0x0014) & 0x3U, 0x1U);
  EXPECT_EQ(device.GetAddresses().address, 0xC0A80114U);
  ProgramRun shown(KRTOOL_PATH, {"ip", kMac});
  EXPECT_EQ(shown.Finish(), 0) << shown.GetErrors();
  EXPECT_THAT(shown.GetOutput(), HasSubstr("on  192.168.1.50, mask 255.255.255.0, gateway 0.0.0.0\n"));
}

TEST_F(KrToolOnANetwork, WatchedDevice_VanishesAndReturnsAndCtrlCEndsWith0) {
  TestDevice device(mHost, "port0", {.mac = kMac, .address = "192.168.1.20"});
  ProgramRun run(KRTOOL_PATH, {"list", "--watch"});
  ASSERT_TRUE(run.AwaitOutput("appeared  device  GEV  02:00:00:00:00:42")) << run.GetOutput();

  device.SetSilent(true);
  const bool hasVanished = run.AwaitOutput("vanished  device  GEV  02:00:00:00:00:42");
  mLab.SetDown("eth0");
  const bool hasLostAddress = run.AwaitOutput("ipAddress 192.168.1.10 -> 0.0.0.0");
  run.Signal(SIGINT);

  EXPECT_TRUE(hasVanished && hasLostAddress) << run.GetOutput();
  EXPECT_EQ(run.Finish(), 0) << run.GetErrors();
}

TEST_F(KrToolOnANetwork, WatchThatNobodyReads_Ends) {
  ProgramRun run(KRTOOL_PATH, {"list", "--watch"});
  ASSERT_TRUE(run.AwaitOutput("eth0"));

  run.CloseOutput();

  EXPECT_GE(run.Finish(), 0) << run.GetErrors();
}

TEST_F(KrToolOnANetwork, NoDevice_IsDiagnosed) {
  ProgramRun run(KRTOOL_PATH, {"list", "--diagnose", "--timeout", "200"});

  EXPECT_EQ(run.Finish(), 3) << run.GetErrors();
  EXPECT_THAT(run.GetOutput(), HasSubstr("No device answered.\n    "));
}

TEST_F(KrToolOnANetwork, AdapterWithoutAddress_IsDiagnosed) {
  mLab.Connect("eth1", mHost, "port1");

  ProgramRun run(KRTOOL_PATH, {"list", "--diagnose", "--timeout", "200"});

  EXPECT_EQ(run.Finish(), 3) << run.GetErrors();
  EXPECT_THAT(run.GetOutput(), HasSubstr("eth1"));
  EXPECT_THAT(run.GetOutput(), HasSubstr("\n    "));
}

} // namespace
