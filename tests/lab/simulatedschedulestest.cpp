#include "labfixture.h"
#include "temporaryfolder.h"
#include "testclocks.h"

#include <filesystem>
#include <fstream>

namespace {

constexpr std::uint64_t kSecondNs = 1000000000;

// One camera that comes at 2 s and goes at 10 s of every 20 s, on an adapter that is down from 23 s to 25 s, and a
// USB device on a controller that goes at 50 s.
krtransport::Lab MakeLab() {
  krtransport::LabGEVCamera camera;
  camera.macAddress = kMonoMAC;
  camera.ipAddress = kMonoAddress;
  camera.faults.losesPower = true;
  camera.schedule = {.beginNs = 2 * kSecondNs, .endNs = 10 * kSecondNs, .periodNs = 20 * kSecondNs};
  krtransport::LabAdapter adapter;
  adapter.name = "lab0";
  adapter.addresses = {{"192.168.77.1", "255.255.255.0"}};
  adapter.downSchedule = {.beginNs = 23 * kSecondNs, .endNs = 25 * kSecondNs};
  adapter.devices = {camera};
  krtransport::LabPlainUSBDevice plain;
  plain.id = "plain";
  krtransport::LabController controller;
  controller.name = "usb0";
  controller.schedule = {.endNs = 50 * kSecondNs};
  controller.devices = {plain};
  return {.adapters = {adapter}, .controllers = {controller}};
}

class SimulatedSchedulesTest : public LabTest {
protected:
  SimulatedSchedulesTest() : SimulatedSchedulesTest(std::make_shared<ManualClock>()) {}

  // Moves the lab's clock to a time since the lab was made.
  void MoveTo(std::uint64_t aSeconds) {
    mClock->Advance(aSeconds * kSecondNs - mMovedNs);
    mMovedNs = aSeconds * kSecondNs;
  }
  KrString GetAdapterAddress() {
    FindAll();
    return dynamic_cast<const KrNetworkAdapter&>(*mSystem.GetInterface(0)).GetIPAddress(0);
  }
  bool IsFound(const KrString& aUniqueID) {
    FindAll();
    return FindInfo<KrDeviceInfo>(aUniqueID) != nullptr;
  }

private:
  explicit SimulatedSchedulesTest(std::shared_ptr<ManualClock> aClock) : LabTest(aClock, MakeLab()), mClock(aClock) {}

  const std::shared_ptr<ManualClock> mClock;
  std::uint64_t mMovedNs = 0;
};

// A camera that a file keeps away.
class AwayFileTest : public LabTest {
protected:
  AwayFileTest() : AwayFileTest(std::make_unique<TemporaryFolder>()) {}

  void KeepAway() { std::ofstream{mFile}; }
  void LetBack() { EXPECT_TRUE(std::filesystem::remove(mFile)); }

private:
  explicit AwayFileTest(std::unique_ptr<TemporaryFolder> aFolder)
      : LabTest(nullptr, MakeLab(aFolder->GetFile("away"))), mFolder(std::move(aFolder)),
        mFile(mFolder->GetFile("away")) {}
  static krtransport::Lab MakeLab(const std::string& aFile) {
    krtransport::LabGEVCamera camera;
    camera.macAddress = kMonoMAC;
    camera.ipAddress = kMonoAddress;
    camera.awayFile = aFile;
    krtransport::LabAdapter adapter;
    adapter.name = "lab0";
    adapter.addresses = {{"192.168.77.1", "255.255.255.0"}};
    adapter.devices = {camera};
    return {.adapters = {adapter}};
  }

  const std::unique_ptr<TemporaryFolder> mFolder;
  const std::string mFile;
};

} // namespace

TEST_F(AwayFileTest, FileThatComesAndGoes_TakesTheCameraAwayAndBringsItBack) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  CountingSink sink;
  ASSERT_TRUE(device->RegisterEventSink(&sink).IsOK());

  KeepAway();
  EXPECT_TRUE(sink.WaitFor(1, 0));
  FindAll();
  EXPECT_EQ(FindInfo(kMonoMAC), nullptr);

  LetBack();
  EXPECT_TRUE(sink.WaitFor(1, 1));
  FindAll();
  EXPECT_NE(FindInfo(kMonoMAC), nullptr);
  EXPECT_TRUE(device->UnregisterEventSink(&sink).IsOK());
}

TEST_F(SimulatedSchedulesTest, Camera_OnItsSchedule_AppearsVanishesAndAppearsAgain) {
  EXPECT_FALSE(IsFound(kMonoMAC));

  MoveTo(2);
  EXPECT_TRUE(IsFound(kMonoMAC));

  MoveTo(10);
  EXPECT_FALSE(IsFound(kMonoMAC));

  MoveTo(22);
  EXPECT_TRUE(IsFound(kMonoMAC));
}

TEST_F(SimulatedSchedulesTest, CameraThatLosesItsPower_ComesBackAsAtItsStart) {
  MoveTo(2);
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  std::uint32_t width = 0;
  ASSERT_TRUE(ReadInteger(*device, krtransport::cameraregister::kWidth, width).IsOK());
  ASSERT_TRUE(WriteInteger(*device, krtransport::cameraregister::kWidth, width / 2).IsOK());

  MoveTo(10);
  EXPECT_FALSE(IsFound(kMonoMAC));
  MoveTo(22);

  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  std::uint32_t again = 0;
  EXPECT_TRUE(ReadInteger(*device, krtransport::cameraregister::kWidth, again).IsOK());
  EXPECT_EQ(again, width);
}

TEST_F(SimulatedSchedulesTest, Camera_GoesWhileOpen_TellsOfItsLossAndReturn) {
  MoveTo(2);
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());
  CountingSink sink;
  ASSERT_TRUE(device->RegisterEventSink(&sink).IsOK());

  MoveTo(10);

  EXPECT_TRUE(sink.WaitFor(1, 0));
  EXPECT_FALSE(device->IsConnected());

  MoveTo(22);

  EXPECT_TRUE(sink.WaitFor(1, 1));
  EXPECT_TRUE(device->UnregisterEventSink(&sink).IsOK());
}

TEST(SimulatedScheduleThread, ScheduleOfNanoseconds_IsLookedAfterEveryHundredthOfASecond) {
  krtransport::LabController controller;
  controller.name = "usb0";
  controller.schedule = {.beginNs = 0, .endNs = 1, .periodNs = 2};
  const auto clock = std::make_shared<ManualClock>();
  const krtransport::SimulationTransport lab({.controllers = {controller}}, clock);

  ASSERT_TRUE(WaitUntil([&] { return clock->GetAwaitedNs() != 0; }));

  EXPECT_EQ(clock->GetAwaitedNs(), clock->GetNowNs() + kSecondNs / 100);
}

TEST_F(SimulatedSchedulesTest, Camera_OrderedAway_StaysAwayWhenItsTimeComes) {
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  MoveTo(2);

  EXPECT_FALSE(IsFound(kMonoMAC));
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  EXPECT_TRUE(IsFound(kMonoMAC));
}

TEST_F(SimulatedSchedulesTest, Adapter_GoesDown_StaysWithoutAddressAndWithoutDevices) {
  MoveTo(22);
  EXPECT_EQ(GetAdapterAddress(), "192.168.77.1");

  MoveTo(23);
  EXPECT_EQ(GetAdapterAddress(), "0.0.0.0");
  EXPECT_FALSE(IsFound(kMonoMAC));

  MoveTo(25);
  EXPECT_EQ(GetAdapterAddress(), "192.168.77.1");
  EXPECT_TRUE(IsFound(kMonoMAC));
}

TEST_F(SimulatedSchedulesTest, Controller_Disappears_TakesItsDevicesAlong) {
  EXPECT_TRUE(IsFound("plain"));
  EXPECT_EQ(mSystem.GetInterfaceCount(), 2u);

  MoveTo(50);

  EXPECT_FALSE(IsFound("plain"));
  EXPECT_EQ(mSystem.GetInterfaceCount(), 1u);
}

TEST_F(SimulatedSchedulesTest, Discover_AdapterThatWentDownSinceItWasListed_HasNoDevices) {
  MoveTo(22);
  std::vector<krsystem::InterfaceFields> interfaces;
  ASSERT_TRUE(mLab->ListInterfaces(interfaces).IsOK());
  int reports = 0;

  MoveTo(23);

  EXPECT_TRUE(
      mLab->Discover({interfaces[0]}, {}, [&](std::size_t, const krsystem::AnyDeviceFields&) { ++reports; }).IsOK());
  EXPECT_EQ(reports, 0);
}
