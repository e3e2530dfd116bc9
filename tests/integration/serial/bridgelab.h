#pragma once
// A simulated camera whose serial ports are bridged to ports of a host that has none but those of the test.

#include "await.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krserial/krhostserialports.h"
#include "krserial/krserialbridge.h"
#include "krsystem/krsystem.h"
#include "krtransport/krsimulatedfaults.h"
#include "krtransport/krtransport.h"
#include "seriallabfile.h"
#include "socatline.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

inline constexpr const char* kBridgedMAC = "02:4b:52:00:77:10";

/// The lab of this process. Its camera's Serial0 has an instrument behind it, Serial1 a pseudo-terminal that the test
/// makes, and goes as fast as it can; Bulk0 sends back what comes.
class BridgeLab {
public:
  static BridgeLab& Get() {
    static BridgeLab lab;
    return lab;
  }
  std::string GetFile(const std::string& aName) const { return mFolder.GetFile(aName); }
  /// Where the pseudo-terminal behind Serial1 is to be, and the link that makes one a port of the host.
  std::string GetLine() const { return GetFile("line"); }
  std::string GetLink(const std::string& aName) const { return GetFile("links/" + aName); }

private:
  BridgeLab() {
    for (const char* const folder : {"links", "sysfs", "devices"})
      std::filesystem::create_directory(GetFile(folder));
    KrHostSerialPorts::SetFolders({.links = GetFile("links"),
                                   .sysfs = GetFile("sysfs"),
                                   .devices = GetFile("devices"),
                                   .numbers = GetFile("numbers"),
                                   .locks = GetFile("locks")});
    TemporaryFolder::WriteFile(
        GetFile("lab.yaml"),
        krtest::MakeSerialLabFile(
            kBridgedMAC, {"port: Serial0, rates: [9600, 115200], rate: 115200, paced: false, behind: instrument",
                          "port: Serial1, rates: [3000000], paced: false, behind: tty, path: " + GetLine(),
                          "port: Bulk0, rates: [3000000], paced: false, behind: echo"}));
    const KrResult installed =
        KrInstallTransports({.gigEVision = false, .simulation = true, .labFile = GetFile("lab.yaml")});
    EXPECT_TRUE(installed.IsOK()) << installed.GetDescription().CStr();
  }

  const TemporaryFolder mFolder;
};

class BridgedCamera : public testing::Test {
protected:
  void SetUp() override {
    BridgeLab::Get();
    ASSERT_TRUE(mSystem.Find().IsOK());
    ASSERT_EQ(mSystem.GetDeviceCount(), 1u);
    ASSERT_TRUE(KrFindSimulatedFaults(kBridgedMAC, mFaults).IsOK());
    ASSERT_TRUE(KrDevice::Open(*mSystem.GetDeviceInfo(0), KrDeviceAccess::Control, mDevice).IsOK());
    mAdapter.emplace(*mDevice);
  }
  void TearDown() override {
    mBridge.Stop();
    mAdapter.reset();
    mDevice.reset();
    mFaults->Return();
  }

  static std::string GetLine() { return BridgeLab::Get().GetLine(); }
  static std::string GetLink(const std::string& aName) { return BridgeLab::Get().GetLink(aName); }
  /// Links a port of the camera to one of the host; where the host lacks it, it is made.
  void Start(const char* aHostPort, KrDeviceSerial aPort, std::uint32_t aBaudRate = 115200) {
    mBridge.SetCreatingPort(true);
    KrSerialPortConfiguration configuration;
    configuration.baudRate = aBaudRate;
    const KrResult started = mBridge.Start(aHostPort, configuration, &*mAdapter, aPort);
    ASSERT_TRUE(started.IsOK()) << started.GetCodeString().CStr() << ": " << started.GetDescription().CStr();
  }
  /// What a program of the host opens.
  static std::string GetPath(const char* aHostPort) {
    KrHostSerialPort port;
    const KrResult found = KrHostSerialPorts::Find(aHostPort, port);
    EXPECT_TRUE(found.IsOK()) << found.GetDescription().CStr();
    return port.path.ToUtf8();
  }
  static krtest::SocatProcess MakeClient(const char* aHostPort) {
    return krtest::SocatProcess(GetPath(aHostPort) + ",rawer");
  }
  bool AwaitState(KrSerialBridgeState aState) const {
    return krtest::Await([&] { return mBridge.GetState() == aState; });
  }
  bool AwaitCounters(std::uint64_t aSent, std::uint64_t aReceived) const {
    const bool isReached = krtest::Await(
        [&] { return mBridge.GetBytesSentToDevice() == aSent && mBridge.GetBytesReceivedFromDevice() == aReceived; });
    EXPECT_EQ(mBridge.GetBytesSentToDevice(), aSent);
    EXPECT_EQ(mBridge.GetBytesReceivedFromDevice(), aReceived);
    return isReached;
  }

  KrSystem mSystem;
  std::shared_ptr<KrSimulatedFaults> mFaults;
  std::unique_ptr<KrDevice> mDevice;
  std::optional<KrDeviceAdapter> mAdapter;
  KrSerialBridge mBridge;
};
