#include "ipcommand.h"

#include "labfixture.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <initializer_list>
#include <sstream>

namespace krtool {
namespace {

using testing::HasSubstr;

constexpr const char* kForeign = "02:4b:52:00:77:12";
constexpr std::uint32_t kFree = 0xC0A84D32;      // 192.168.77.50
constexpr std::uint32_t kMonosOwn = 0xC0A84D0A;  // 192.168.77.10
constexpr std::uint32_t kAdapters = 0xC0A84D01;  // 192.168.77.1
constexpr std::uint32_t kElsewhere = 0x0A000005; // 10.0.0.5

class IPCommand : public LabTest {
protected:
  using LabTest::LabTest;

  int Run(const std::string& aDevice, const IPWish& aWish, bool aForce = false, bool aJson = false) {
    const CommandLine line = {.verb = Verb::IP, .device = aDevice, .ip = aWish, .force = aForce, .json = aJson};
    return RunIP(mSystem, line, mOut, mErrors);
  }

  KrString FindAddress(const KrString& aID) {
    EXPECT_TRUE(mSystem.Find().IsOK());
    for (std::size_t i = 0; i < mSystem.GetDeviceCount(); ++i)
      if (mSystem.GetDeviceInfo(i)->GetUniqueID() == aID)
        return dynamic_cast<const KrDeviceInfoGEV&>(*mSystem.GetDeviceInfo(i)).GetIPAddress();
    return {};
  }

  std::ostringstream mOut;
  std::ostringstream mErrors;
};

TEST_F(IPCommand, UnreachableCamera_IsShownWithWhatItOffers) {
  const int exitCode = Run("sim-foreign", {});

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  EXPECT_THAT(mOut.str(), HasSubstr("IP address        10.20.30.40\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("state             unreachable\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("ways offered      Persistent, DHCP, LLA\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("own address       cannot be read: "));
}

TEST_F(IPCommand, LostCamera_IsGivenAnAddressByWhichItIsReached) {
  const int exitCode = Run("10.20.30.40", {.sets = true, .address = kFree});

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  EXPECT_THAT(mOut.str(), HasSubstr("IP address        192.168.77.50\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("subnet mask       255.255.255.0\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("gateway           0.0.0.0\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("state             reachable\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("answered after"));
  EXPECT_EQ(FindAddress(kForeign), "192.168.77.50");
}

TEST_F(IPCommand, LostCameraAsJson_HasTheNewAddress) {
  const int exitCode = Run(kForeign, {.sets = true, .address = kFree}, false, true);

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(mOut.str())).object();
  EXPECT_EQ(object["ipAddress"].toString(), "192.168.77.50");
  EXPECT_EQ(object["adapter"].toString(), "sim0");
  EXPECT_TRUE(object["reachable"].toBool());
  EXPECT_TRUE(object.contains("answeredAfterMs"));
}

TEST_F(IPCommand, AdaptersOwnAddress_IsRefusedEvenByForce) {
  const int exitCode = Run(kForeign, {.sets = true, .address = kAdapters}, true);

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("the adapter's own address"));
  EXPECT_EQ(mOut.str(), "");
  EXPECT_EQ(FindAddress(kForeign), "10.20.30.40");
}

TEST_F(IPCommand, AddressOfAnotherCamera_WantsForce) {
  const int exitCode = Run(kForeign, {.sets = true, .address = kMonosOwn});

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("Another device has the address 192.168.77.10"));
  EXPECT_THAT(mErrors.str(), HasSubstr("--force"));
  EXPECT_EQ(FindAddress(kForeign), "10.20.30.40");
}

TEST_F(IPCommand, AddressOfAForeignSubnet_IsTakenByForceAndFoundThere) {
  const int exitCode = Run("sim-mono", {.sets = true, .address = kElsewhere}, true);

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  EXPECT_THAT(mErrors.str(), HasSubstr("10.0.0.5 is in no subnet of the adapter"));
  EXPECT_THAT(mOut.str(), HasSubstr("state             unreachable\n"));
  EXPECT_EQ(FindAddress("02:4b:52:00:77:10"), "10.0.0.5");
}

TEST_F(IPCommand, WhatLasts_IsNotSetOnACameraThatCannotBeReached) {
  const int exitCode = Run(kForeign, {.dhcp = false});

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("--set auto"));
}

TEST_F(IPCommand, LostCamera_IsGivenAFreeAddressOfItsAdaptersSubnet) {
  const int exitCode = Run(kForeign, {.sets = true});

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  EXPECT_THAT(FindAddress(kForeign).ToUtf8(), testing::StartsWith("192.168.77."));
  EXPECT_THAT(mOut.str(), HasSubstr("state             reachable\n"));
}

TEST_F(IPCommand, CameraThatIsReached_KeepsWhatLasts) {
  const int exitCode = Run("sim-mono", {.persistent = true, .persistentAddress = kFree, .dhcp = true});

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  EXPECT_THAT(mOut.str(), HasSubstr("IP address        192.168.77.10\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("own address       on  192.168.77.50, mask 255.255.255.0, gateway 0.0.0.0\n"));
  EXPECT_THAT(mOut.str(), HasSubstr("DHCP              on\n"));
  mOut.str("");
  EXPECT_EQ(Run("sim-mono", {}), 0);
  EXPECT_THAT(mOut.str(), HasSubstr("own address       on  192.168.77.50, mask 255.255.255.0, gateway 0.0.0.0\n"));
}

TEST_F(IPCommand, LostCamera_IsRepairedNowAndForGoodAtOnce) {
  const int exitCode =
      Run(kForeign, {.sets = true, .address = kFree, .persistent = true, .persistentAddress = kFree}, false, true);

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(mOut.str())).object();
  EXPECT_EQ(object["ipAddress"].toString(), "192.168.77.50");
  EXPECT_EQ(object["lasting"].toObject()["ipAddress"].toString(), "192.168.77.50");
  EXPECT_TRUE(object["lasting"].toObject()["persistent"].toBool());
}

TEST_F(IPCommand, CameraThatAnApplicationControls_DoesNotTakeWhatLasts) {
  const int exitCode = Run("sim-busy", {.dhcp = true});

  EXPECT_EQ(exitCode, 1);
  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), HasSubstr("setting how"));
}

TEST_F(IPCommand, DeviceOfTheOlderProtocol_IsGivenAnAddressAndKeepsNone) {
  constexpr const char* kTolvan = "02:4b:52:00:78:20";

  const int set = Run(kTolvan, {.sets = true, .address = 0xC0A84E32}); // 192.168.78.50
  const int lasting = Run(kTolvan, {.dhcp = true});

  EXPECT_EQ(set, 0) << mErrors.str();
  EXPECT_THAT(mOut.str(), HasSubstr("IP address      192.168.78.50\n"));
  EXPECT_EQ(lasting, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("no GigE Vision device"));
}

TEST_F(IPCommand, UnknownDevice_IsToldWithThoseFound) {
  const int exitCode = Run("nobody", {});

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("Found were:\n  "));
  EXPECT_THAT(mErrors.str(), HasSubstr("\"sim-mono\"\n  "));
}

TEST_F(IPCommand, DetectionTimeout_IsAsBeforeAfterTheWait) {
  mSystem.SetDetectionTimeout(123);

  Run(kForeign, {.sets = true, .address = kFree});

  EXPECT_EQ(mSystem.GetDetectionTimeout(), 123U);
}

TEST_F(IPCommand, MACAddressThatNobodyIsHeardBy_WantsAnAddressOfTheUsers) {
  const int exitCode = Run("02:00:00:00:00:77", {.sets = true});

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("give the address yourself: --set ADDRESS"));
}

TEST_F(IPCommand, HostsOwnLoopbackAddress_IsRefusedEvenByForce) {
  const int exitCode = Run(kForeign, {.sets = true, .address = 0x7F000001}, true); // 127.0.0.1

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("127.0.0.1 cannot be a device's"));
  EXPECT_EQ(FindAddress(kForeign), "10.20.30.40");
}

constexpr const char* kShared = "02:00:00:00:00:01";

krtransport::LabGEVCamera MakeUnnamedCamera(const char* aMAC, const char* aAddress) {
  krtransport::LabGEVCamera camera;
  camera.macAddress = aMAC;
  camera.ipAddress = aAddress;
  camera.subnetMask = "255.255.255.0";
  return camera;
}

krtransport::Lab MakeLabOf(std::initializer_list<krtransport::LabGEVCamera> aCameras) {
  krtransport::LabAdapter adapter;
  adapter.name = "lab0";
  adapter.macAddress = "02:00:00:00:01:00";
  adapter.addresses = {{"10.0.0.1", "255.255.255.0"}};
  adapter.devices.assign(aCameras.begin(), aCameras.end());
  krtransport::Lab lab;
  lab.adapters = {adapter};
  return lab;
}

class IPCommandWithOneMACAddressOfTwo : public IPCommand {
protected:
  IPCommandWithOneMACAddressOfTwo()
      : IPCommand(MakeLabOf({MakeUnnamedCamera(kShared, "10.0.0.7"), MakeUnnamedCamera(kShared, "10.0.0.8"),
                             MakeUnnamedCamera("02:00:00:00:00:02", "10.0.0.9")})) {}
};

TEST_F(IPCommandWithOneMACAddressOfTwo, DeviceThatHasIt_IsRefusedWithBothAddressesKept) {
  const int exitCode = Run(kShared, {.sets = true, .address = 0x0A000032}, true); // 10.0.0.50

  EXPECT_EQ(exitCode, 1);
  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), HasSubstr("state one MAC address, 02:00:00:00:00:01"));
  EXPECT_THAT(mErrors.str(), HasSubstr("Connect only one of them"));
  EXPECT_THAT(FindAddress(kShared).ToUtf8(), testing::AnyOf("10.0.0.7", "10.0.0.8"));
}

TEST_F(IPCommandWithOneMACAddressOfTwo, AnotherDevice_IsGivenItsAddress) {
  const int exitCode = Run("02:00:00:00:00:02", {.sets = true, .address = 0x0A000032});

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  EXPECT_EQ(FindAddress("02:00:00:00:00:02"), "10.0.0.50");
}

krtransport::LabGEVCamera MakeCameraThatRefuses() {
  krtransport::LabGEVCamera camera = MakeUnnamedCamera(kShared, "10.0.0.7");
  camera.faults.refusesOpening = true;
  return camera;
}

class IPCommandOfACameraThatRefuses : public IPCommand {
protected:
  IPCommandOfACameraThatRefuses() : IPCommand(MakeLabOf({MakeCameraThatRefuses()})) {}
};

TEST_F(IPCommandOfACameraThatRefuses, CameraWithoutTexts_IsNamedByItsMACAddress) {
  const int exitCode = Run(kShared, {});

  EXPECT_EQ(exitCode, 0) << mErrors.str();
  EXPECT_THAT(mOut.str(), HasSubstr("own address       cannot be read: 02:00:00:00:00:01: it refuses to be opened"));
}

} // namespace
} // namespace krtool
