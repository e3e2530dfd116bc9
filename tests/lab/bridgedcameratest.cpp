// Serial bridges on the ports of simulated cameras, whose lines have real speeds.

#include "hostfolders.h"
#include "krdevice/krdeviceadapter.h"
#include "krserial/krserialbridge.h"
#include "portclient.h"
#include "seriallinefixture.h"

#include <gmock/gmock.h>

#include <optional>

using testing::ElementsAre;

namespace {

class BridgedCameraTest : public SerialLineTest {
protected:
  explicit BridgedCameraTest(const std::string& aPorts = "{port: Serial0, rates: [9600, 115200], behind: echo}")
      : SerialLineTest(MakeSerialLab(aPorts)) {
    EXPECT_TRUE(Open(kMonoMAC, mDevice).IsOK());
    mAdapter.emplace(*mDevice);
    mBridge.emplace();
    mBridge->SetCreatingPort(true);
  }
  void TearDown() override { mBridge.reset(); }

  void Start(KrDeviceSerial aPort, std::uint32_t aBaudRate) {
    const KrResult started = mBridge->Start("COM5", {.baudRate = aBaudRate}, &*mAdapter, aPort);
    ASSERT_TRUE(started.IsOK()) << started.GetDescription().CStr();
  }
  PortClient OpenPort() const { return PortClient(mHost.GetLink("com5")); }
  std::string GetEntry(const char* aName) {
    KrString entry;
    EXPECT_TRUE(mAdapter->GetEnumValue(aName, entry).IsOK()) << aName;
    return entry.ToUtf8();
  }

  HostFolders mHost;
  std::optional<KrDeviceAdapter> mAdapter;
  std::optional<KrSerialBridge> mBridge;
};

class BridgedBulkTest : public BridgedCameraTest {
protected:
  BridgedBulkTest()
      : BridgedCameraTest("{port: Bulk7, rates: [9600, 115200], rate: 115200},"
                          " {port: Bulk1, rates: [9600, 3000000], rate: 9600, behind: echo}") {}
};

} // namespace

TEST_F(BridgedCameraTest, AClient_HearsTheCamerasEcho) {
  Start(KrDeviceSerial::Serial0, 115200);
  const PortClient client = OpenPort();

  client.Write("from the client");

  EXPECT_EQ(client.Read(15), "from the client");
  EXPECT_TRUE(WaitUntil([&] { return mBridge->GetBytesSentToDevice() == 15; }));
  EXPECT_EQ(mBridge->GetBytesReceivedFromDevice(), 15U);
  EXPECT_EQ(GetCounts(0).sent, 15U);
}

TEST_F(BridgedCameraTest, AClientsSpeed_IsTheCameras) {
  Start(KrDeviceSerial::Serial0, 9600);
  const PortClient client = OpenPort();
  ASSERT_EQ(GetEntry("Uart0BaudRate"), "Baud9600");

  client.SetSpeed(115200);

  EXPECT_TRUE(WaitUntil([&] { return GetEntry("Uart0BaudRate") == "Baud115200"; }));
  EXPECT_TRUE(WaitUntil([&] { return mBridge->GetBaudRate() == 115200; }));
}

TEST_F(BridgedCameraTest, ACameraThatIsLost_IsWaitedForUntilTheStop) {
  Start(KrDeviceSerial::Serial0, 9600);

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  EXPECT_TRUE(WaitUntil([&] { return mBridge->GetState() == KrSerialBridgeState::WaitingForDevice; }));
  EXPECT_FALSE(mBridge->GetStateText().IsEmpty());
  mBridge->Stop();
  EXPECT_EQ(mBridge->GetState(), KrSerialBridgeState::Stopped);
}

TEST_F(BridgedBulkTest, TheSpeedOfABulkPort_IsItsOwnAndLeavesTheSelectorAlone) {
  ASSERT_TRUE(mAdapter->SetEnumValue("BulkSelector", "Bulk7").IsOK());
  Start(KrDeviceSerial::Bulk1, 3000000);

  EXPECT_EQ(mBridge->GetBaudRate(), 3000000U);
  EXPECT_EQ(mBridge->GetSupportedBaudRateCount(), 2U);
  EXPECT_TRUE(mBridge->SetSerialPortConfiguration({.baudRate = 9600}).IsOK());
  EXPECT_TRUE(WaitUntil([&] { return mBridge->GetBaudRate() == 9600; }));
  mBridge->Stop();

  EXPECT_EQ(GetEntry("BulkSelector"), "Bulk7");
  EXPECT_EQ(GetEntry("BulkBaudRate"), "Baud115200");
}
