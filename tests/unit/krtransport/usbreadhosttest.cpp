// What the USB3 Vision transport reads of the host for whoever asks why a device is missing.

#include "usb3vision/usb3visiontransport.h"

#include "usbfakeaccess.h"
#include "usbtesttree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace krtransport;
using krsystem::HostReadings;

HostReadings Read(const UsbTestTree& aTree, const std::shared_ptr<UsbFakeAccess>& aAccess) {
  Usb3VisionTransport transport(aTree.GetRoots(), aAccess);
  HostReadings readings;
  const KrResult result = transport.ReadHost(readings);
  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  return readings;
}

HostReadings Read(const UsbTestTree& aTree, const KrResult& aPermission = {}) {
  return Read(aTree, std::make_shared<UsbFakeAccess>(aPermission));
}

TEST(UsbReadHost, Camera_IsNamedByWhatTheKernelHasReadWithoutAskingIt) {
  const UsbTestTree tree("superspeed");
  const auto access = std::make_shared<UsbFakeAccess>();

  const HostReadings readings = Read(tree, access);

  ASSERT_EQ(readings.usbDevices.size(), 1u);
  EXPECT_EQ(readings.usbDevices[0].uniqueID, "f055:0301:A0001234");
  EXPECT_EQ(readings.usbDevices[0].displayID, "EO-2048 (A0001234)");
  EXPECT_TRUE(readings.usbDevices[0].mayOpen);
  EXPECT_EQ(readings.usbDevices[0].speed, 4);
  EXPECT_EQ(access->GetReadCount(), 0);
  EXPECT_TRUE(readings.hasUSBTransport);
  EXPECT_FALSE(readings.hasNetworkTransport);
}

TEST(UsbReadHost, CameraOnASlowPort_SaysItsSpeed) {
  const UsbTestTree tree("highspeed");

  const HostReadings readings = Read(tree);

  ASSERT_FALSE(readings.usbDevices.empty());
  EXPECT_EQ(readings.usbDevices[0].speed, 3);
}

struct PermissionRow {
  const char* what;
  KrResult::Code permission;
  bool mayOpen;
};

class UsbReadHostPermission : public testing::TestWithParam<PermissionRow> {};

TEST_P(UsbReadHostPermission, DeviceFile_OnlyAMissingPermissionCountsAsOne) {
  const UsbTestTree tree("superspeed");

  const HostReadings readings = Read(tree, GetParam().permission);

  ASSERT_EQ(readings.usbDevices.size(), 1u);
  EXPECT_EQ(readings.usbDevices[0].mayOpen, GetParam().mayOpen);
}

constexpr PermissionRow kPermissions[] = {
    {"Given", KrResult::Code::OK, true},
    {"Missing", KrResult::Code::AccessDenied, false},
    {"DeviceGone", KrResult::Code::NotFound, true},
};

INSTANTIATE_TEST_SUITE_P(Permissions, UsbReadHostPermission, testing::ValuesIn(kPermissions),
                         [](const auto& aInfo) { return aInfo.param.what; });

TEST(UsbReadHost, DevicesThatAreNoCameras_AreNotRead) {
  const UsbTestTree tree("hubs");

  EXPECT_EQ(Read(tree).usbDevices.size(), 3u);
}

struct MemoryRow {
  const char* what;
  const char* text; ///< Null where the parameter is not there.
  std::optional<std::uint64_t> megabytes;
};

const MemoryRow kMemories[] = {
    {"Default", "16\n", 16},           {"NoLimit", "0\n", 0},
    {"Large", "2000\n", 2000},         {"Nonsense", "plenty\n", std::nullopt},
    {"Absent", nullptr, std::nullopt},
};

class UsbReadHostMemory : public testing::TestWithParam<MemoryRow> {};

TEST_P(UsbReadHostMemory, MemoryOfAllTransfers_IsTheKernelsNumberOrNothing) {
  UsbTestTree tree("");
  if (GetParam().text != nullptr)
    tree.SetCoreParameter("usbfs_memory_mb", GetParam().text);

  const HostReadings readings = Read(tree);

  EXPECT_EQ(readings.usbMemoryMegabytes, GetParam().megabytes);
  EXPECT_TRUE(readings.usbDevices.empty());
}

INSTANTIATE_TEST_SUITE_P(Memories, UsbReadHostMemory, testing::ValuesIn(kMemories),
                         [](const auto& aInfo) { return aInfo.param.what; });

} // namespace
