#include "usb3vision/usb3visiontransport.h"

#include "await.h"
#include "usb3vision/libusbaccess.h"
#include "usbfakeaccess.h"
#include "usbtesttree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace krtransport;
using krsystem::AnyDeviceFields;
using krsystem::DeviceAccess;
using krsystem::InterfaceFields;
using krsystem::U3VFields;
using krsystem::USBFields;
using testing::ElementsAre;
using testing::HasSubstr;

const KrResult kDenied(KrResult::Code::AccessDenied, "The device file cannot be opened.");

// What one round of discovery reported.
struct Round {
  KrResult result;
  std::vector<InterfaceFields> interfaces;
  std::vector<std::pair<std::size_t, AnyDeviceFields>> reports;
};

Round Discover(Usb3VisionTransport& aTransport, std::stop_token aCancel = {},
               std::uint32_t aTimeoutMs = krtest::GetGenerousMs()) {
  Round round;
  EXPECT_TRUE(aTransport.ListInterfaces(round.interfaces).IsOK());
  round.result = aTransport.Discover(
      round.interfaces, {.timeoutMs = aTimeoutMs, .cancel = std::move(aCancel)},
      [&round](std::size_t aIndex, const AnyDeviceFields& aDevice) { round.reports.emplace_back(aIndex, aDevice); });
  return round;
}

Usb3VisionTransport MakeTransport(const UsbTestTree& aTree, const KrResult& aPermission = {}) {
  return {aTree.GetRoots(), std::make_shared<UsbFakeAccess>(aPermission)};
}

KrResult Open(Usb3VisionTransport& aTransport, const AnyDeviceFields& aDevice,
              DeviceAccess aAccess = DeviceAccess::Control) {
  std::unique_ptr<krsystem::IDeviceLink> link;
  return aTransport.Open(krsystem::USBHostControllerFields{}, aDevice, aAccess, link);
}

TEST(Usb3VisionTransport, HostWithoutUsb_HasNoInterfacesAndNoFailure) {
  const UsbTestTree tree("");
  auto transport = MakeTransport(tree);

  const Round round = Discover(transport);

  EXPECT_TRUE(round.result.IsOK());
  EXPECT_TRUE(round.interfaces.empty());
  EXPECT_TRUE(round.reports.empty());
}

TEST(Usb3VisionTransport, Discover_Camera_IsReportedOnItsController) {
  const UsbTestTree tree("superspeed");
  auto transport = MakeTransport(tree);

  const Round round = Discover(transport);

  EXPECT_TRUE(round.result.IsOK());
  ASSERT_EQ(round.reports.size(), 1u);
  EXPECT_EQ(round.reports[0].first, 0u);
  const auto& camera = std::get<U3VFields>(round.reports[0].second);
  EXPECT_EQ(camera.uniqueID, KrString("f055:0301:A0001234"));
  EXPECT_EQ(camera.deviceGUID, KrString("Text 4"));
  EXPECT_EQ(camera.userDefinedName, KrString("Text 11"));
  EXPECT_TRUE(camera.driverInstalled);
}

TEST(Usb3VisionTransport, Discover_CameraWithoutPermission_IsListedWithoutAskingIt) {
  const UsbTestTree tree("superspeed");
  const auto access = std::make_shared<UsbFakeAccess>(kDenied);
  Usb3VisionTransport transport(tree.GetRoots(), access);

  const Round round = Discover(transport);

  ASSERT_EQ(round.reports.size(), 1u);
  const auto& camera = std::get<U3VFields>(round.reports[0].second);
  EXPECT_EQ(camera.uniqueID, KrString("f055:0301:A0001234"));
  EXPECT_FALSE(camera.driverInstalled);
  EXPECT_EQ(access->GetReadCount(), 0);
}

TEST(Usb3VisionTransport, Discover_BehindHubs_CamerasAreListedAndOthersPassedOver) {
  const UsbTestTree tree("hubs");
  auto transport = MakeTransport(tree);

  const Round round = Discover(transport);

  ASSERT_EQ(round.reports.size(), 3u);
  EXPECT_EQ(std::get<USBFields>(round.reports[0].second).status, 4);
  EXPECT_EQ(std::get<USBFields>(round.reports[1].second).status, 2);
  EXPECT_EQ(std::get<U3VFields>(round.reports[2].second).serialNumber, KrString("A0001236"));
}

TEST(Usb3VisionTransport, Discover_Twins_AreTwoDevices) {
  const UsbTestTree tree("twins");
  auto transport = MakeTransport(tree);

  const Round round = Discover(transport);

  std::vector<KrString> ids;
  for (const auto& [index, device] : round.reports)
    ids.push_back(std::get<U3VFields>(device).uniqueID);
  EXPECT_THAT(ids, ElementsAre("f055:0301:A0001234@2-1", "f055:0301:A0001234@2-2"));
}

TEST(Usb3VisionTransport, Discover_DevicesThatMakeNoSense_DoNotDisturbTheRound) {
  const UsbTestTree tree("garbage");
  auto transport = MakeTransport(tree);

  const Round round = Discover(transport);

  EXPECT_TRUE(round.result.IsOK());
  EXPECT_EQ(round.reports.size(), 2u);
}

TEST(Usb3VisionTransport, Discover_Twice_GivesTheSame) {
  const UsbTestTree tree("superspeed");
  auto transport = MakeTransport(tree);

  const Round first = Discover(transport);
  const Round second = Discover(transport);

  EXPECT_EQ(first.interfaces, second.interfaces);
  EXPECT_EQ(first.reports, second.reports);
}

TEST(Usb3VisionTransport, Discover_InterfacesOfAnotherKind_ArePassedOver) {
  const UsbTestTree tree("superspeed");
  auto transport = MakeTransport(tree);
  int reportCount = 0;

  const KrResult result = transport.Discover({krsystem::NetworkAdapterFields{}}, {},
                                             [&](std::size_t, const AnyDeviceFields&) { ++reportCount; });

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(reportCount, 0);
}

TEST(Usb3VisionTransport, Discover_Cancelled_IsAborted) {
  const UsbTestTree tree("superspeed");
  auto transport = MakeTransport(tree);
  std::stop_source stop;
  stop.request_stop();

  const Round round = Discover(transport, stop.get_token());

  EXPECT_EQ(round.result, KrResult::Code::Aborted);
  EXPECT_TRUE(round.reports.empty());
}

TEST(Usb3VisionTransport, Discover_CancelledWhileTextsAreRead_AsksAndReportsNothingMore) {
  const UsbTestTree tree("twins");
  const auto access = std::make_shared<UsbFakeAccess>();
  Usb3VisionTransport transport(tree.GetRoots(), access);
  std::stop_source stop;
  bool isToldOfCancel = false;
  access->SetOnRead([&](const UsbTextRequest& aRequest) {
    stop.request_stop();
    isToldOfCancel = aRequest.cancel.stop_requested();
  });

  const Round round = Discover(transport, stop.get_token());

  EXPECT_EQ(round.result, KrResult::Code::Aborted);
  EXPECT_TRUE(isToldOfCancel);
  EXPECT_EQ(access->GetReadCount(), 1);
  EXPECT_TRUE(round.reports.empty());
}

TEST(Usb3VisionTransport, Discover_DeviceThatTakesTheWholeRound_LeavesTheOthersListedWithoutTexts) {
  const UsbTestTree tree("twins");
  const auto access = std::make_shared<UsbFakeAccess>();
  Usb3VisionTransport transport(tree.GetRoots(), access);
  access->SetOnRead([](const UsbTextRequest& aRequest) {
    while (std::chrono::steady_clock::now() < aRequest.end)
      std::this_thread::yield();
  });

  const Round round = Discover(transport, {}, 50);

  EXPECT_TRUE(round.result.IsOK());
  EXPECT_LE(access->GetReadCount(), 1);
  ASSERT_EQ(round.reports.size(), 2u);
  EXPECT_NE(std::get<U3VFields>(round.reports[1].second).userDefinedName, KrString("Text 11"));
}

TEST(Usb3VisionTransport, Addresses_AreNotSupported) {
  const UsbTestTree tree("superspeed");
  auto transport = MakeTransport(tree);
  InterfaceFields interface;
  AnyDeviceFields device;

  EXPECT_EQ(transport.FindAddress(0x7F000001, 1, interface, device), KrResult::Code::NotSupported);
  EXPECT_EQ(transport.ConfigureIP("", "", "", ""), KrResult::Code::NotSupported);
  auto type = krsystem::AccessType::Unknown;
  EXPECT_EQ(transport.GetAccessType(krsystem::GEVFields{}, type), KrResult::Code::NotSupported);
}

TEST(Usb3VisionTransport, AccessType_ClaimedDevice_IsExclusive) {
  const UsbTestTree claimed("platform");
  const UsbTestTree unclaimed("superspeed");
  auto transport = MakeTransport(claimed);
  auto otherTransport = MakeTransport(unclaimed);
  krsystem::AccessType type = krsystem::AccessType::Unknown;
  krsystem::AccessType otherType = krsystem::AccessType::Unknown;

  EXPECT_TRUE(transport.GetAccessType(Discover(transport).reports.at(0).second, type).IsOK());
  EXPECT_TRUE(otherTransport.GetAccessType(Discover(otherTransport).reports.at(0).second, otherType).IsOK());

  EXPECT_EQ(type, krsystem::AccessType::Exclusive);
  EXPECT_EQ(otherType, krsystem::AccessType::Open);
}

TEST(Usb3VisionTransport, Open_DeviceThatIsGone_IsNotFound) {
  UsbTestTree tree("superspeed");
  auto transport = MakeTransport(tree);
  const AnyDeviceFields device = Discover(transport).reports.at(0).second;
  krsystem::AccessType type = krsystem::AccessType::Unknown;
  tree.Unplug("2-1");

  const KrResult result = Open(transport, device);

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("is gone"));
  EXPECT_EQ(transport.GetAccessType(device, type), KrResult::Code::NotFound);
}

TEST(Usb3VisionTransport, Open_WithoutPermission_NamesTheRuleThatGivesIt) {
  const UsbTestTree tree("superspeed");
  auto transport = MakeTransport(tree, kDenied);

  const KrResult result = Open(transport, Discover(transport).reports.at(0).second);

  EXPECT_EQ(result, KrResult::Code::AccessDenied);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("70-krgui-usb3vision.rules"));
}

TEST(Usb3VisionTransport, Open_DeviceInUse_SaysSo) {
  const UsbTestTree tree("platform");
  auto transport = MakeTransport(tree);
  const AnyDeviceFields device = Discover(transport).reports.at(0).second;

  for (const DeviceAccess access : {DeviceAccess::Monitor, DeviceAccess::Control, DeviceAccess::Exclusive}) {
    const KrResult result = Open(transport, device, access);

    EXPECT_EQ(result, KrResult::Code::AccessDenied);
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("in use"));
  }
}

TEST(Usb3VisionTransport, Open_DeviceThatTheSystemDoesNotUse_IsRefused) {
  const UsbTestTree tree("hubs");
  auto transport = MakeTransport(tree);

  EXPECT_EQ(Open(transport, Discover(transport).reports.at(0).second), KrResult::Code::InvalidInput);
}

TEST(Usb3VisionTransport, Open_DeviceThatAravisDoesNotFind_IsNotFound) {
  const UsbTestTree tree("superspeed");
  auto transport = MakeTransport(tree);

  // The tree is only one of files: there is no such device to be opened.
  const KrResult result = Open(transport, Discover(transport).reports.at(0).second);

  EXPECT_EQ(result, KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("Opening the device EO-2048 A0001234 failed: libusb"));
}

TEST(Usb3VisionTransport, Open_OneOfTwinsThatDoesNotSayItsGUID_IsRefused) {
  UsbTestTree tree("twins");
  const auto access = std::make_shared<UsbFakeAccess>();
  Usb3VisionTransport transport(tree.GetRoots(), access);
  const AnyDeviceFields device = Discover(transport).reports.at(0).second;
  access->SetSilent();

  const KrResult besideItsTwin = Open(transport, device);
  tree.Unplug("2-2");
  const KrResult alone = Open(transport, device);

  EXPECT_EQ(besideItsTwin, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(besideItsTwin.GetDescription().ToUtf8(), HasSubstr("at USB port 2-2"));
  // The tree is only one of files: Aravis was asked, and has not found it.
  EXPECT_THAT(alone.GetDescription().ToUtf8(), HasSubstr("libusb"));
}

TEST(LibUsbAccess, Permission_DeviceFileThatIsThere_IsGiven) {
  const UsbTestTree tree("superspeed");
  LibUsbAccess access(tree.GetRoots());

  EXPECT_TRUE(access.CheckPermission(2, 5).IsOK());
}

TEST(LibUsbAccess, Permission_DeviceFileThatIsGone_IsNotFound) {
  const UsbTestTree tree("superspeed");
  LibUsbAccess access(tree.GetRoots());
  std::vector<std::string> texts;

  EXPECT_EQ(access.CheckPermission(2, 6), KrResult::Code::NotFound);
  EXPECT_EQ(access.ReadStrings(2, 6, {{}, std::chrono::steady_clock::now(), {}}, texts), KrResult::Code::NotFound);
}

TEST(LibUsbAccess, Permission_DeviceFileOfAnotherUser_IsDenied) {
  const UsbTestTree tree("superspeed");
  LibUsbAccess access(tree.GetRoots());
  ASSERT_EQ(::chmod(GetDeviceFile(tree.GetRoots(), 2, 5).c_str(), 0), 0);
  // The superuser may open anything, so that the question is asked as somebody else.
  const std::filesystem::path top = tree.GetRoots().deviceFiles.parent_path().parent_path().parent_path();
  ASSERT_EQ(::chmod(top.c_str(), 0755), 0);
  constexpr uid_t kNobody = 65534;
  const uid_t user = ::geteuid();
  if (user == 0) {
    ASSERT_EQ(::seteuid(kNobody), 0);
  }

  const KrResult result = access.CheckPermission(2, 5);

  ASSERT_EQ(::seteuid(user), 0);
  EXPECT_EQ(result, KrResult::Code::AccessDenied);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("002/005"));
}

TEST(LibUsbAccess, ReadStrings_DeviceThatLibusbDoesNotKnow_Fails) {
  const UsbTestTree tree("superspeed");
  LibUsbAccess access(tree.GetRoots());
  const std::array<std::uint8_t, 1> indexes = {4};
  std::vector<std::string> texts;

  EXPECT_FALSE(
      access.ReadStrings(2, 5, {indexes, std::chrono::steady_clock::now() + kUsbTransferLimit, {}}, texts).IsOK());
  EXPECT_TRUE(texts.empty());
}

} // namespace
