// The device finder as a user meets it: real discovery on networks made for the test, real dialogs, a mouse and a
// keyboard.

#include "await.h"
#include "fakecamera.h"
#include "krgui/krdevicefinderwnd.h"
#include "networkfixture.h"
#include "userhands.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

namespace {

using testing::HasSubstr;

const QString kFinder = "Device Selection";
const QString kIPDialog = "Set IP Address";
const QString kSelectDialog = "Select From IP Address";
const QString kError = "Error";
const QString kWarning = "Warning";

// Controls of the finder and its dialogs.
constexpr int kOk = 1;
constexpr int kCancel = 2;
constexpr int kSetIP = 1002;
constexpr int kSelectFromIP = 1011;
constexpr int kInterfaceList = 1030;
constexpr int kDeviceList = 1033;
constexpr int kShowUnreachable = 1040;
constexpr int kTree = 1049;
constexpr int kAddress = 1038;
constexpr int kPropose = 1140;

constexpr std::uint16_t kForceIP = 0x0004;

constexpr const char* kReachable = "right";
constexpr const char* kForeign = "foreign";

/// A finder over one network with a device of the right subnet; tests add others.
class FinderUser : public OnANetwork {
protected:
  void Run(const std::function<void(UserHands&)>& aScript) {
    mFinder.SetTitle("Device Selection"); // A window without a title of its own has none.
    RunWithUser([this] { mResult = mFinder.ShowModal(0); },
                [&](UserHands& aUser) {
                  if (aUser.AwaitWindow(kFinder))
                    aScript(aUser);
                });
  }
  /// Answers the message box of a title, which must say this.
  static void Dismiss(UserHands& aUser, const QString& aTitle, const char* aText, const QString& aKey = "Return") {
    ASSERT_TRUE(aUser.AwaitWindow(aTitle));
    EXPECT_THAT(aUser.GetMessage(aTitle).toStdString(), HasSubstr(aText));
    aUser.Press(aKey);
    EXPECT_TRUE(aUser.AwaitNoWindow(aTitle));
  }
  /// Whether a window is on the screen; a look, on the user-interface thread.
  static bool HasWindow(const QString& aTitle) {
    return std::ranges::any_of(QApplication::topLevelWidgets(), [&](const QWidget* aWindow) {
      return aWindow->isVisible() && aWindow->windowTitle() == aTitle;
    });
  }
  /// The serial number of what was selected; empty where nothing was.
  std::string GetSelected() const {
    return mFinder.GetSelected() == nullptr ? std::string() : mFinder.GetSelected()->GetSerialNumber().ToUtf8();
  }

  const TestDevice mReachable{
      mHost,
      "port0",
      {.mac = "02:00:00:00:00:01", .address = "192.168.1.20", .model = kReachable, .serialNumber = kReachable}};
  KrDeviceFinderWnd mFinder;
  KrResult mResult;
};

/// A device of another subnet beside it.
class FinderUserRepairs : public FinderUser {
protected:
  /// Ticks the check box, selects the device and opens "Set IP Address".
  bool OpenIPDialog(UserHands& aUser) {
    aUser.Click(kFinder, kShowUnreachable);
    if (!aUser.AwaitRow(kFinder, kTree, kForeign))
      return false;
    aUser.ClickRow(kFinder, kTree, kForeign);
    if (!aUser.AwaitEnabled(kFinder, kSetIP))
      return false;
    aUser.Click(kFinder, kSetIP);
    return aUser.AwaitWindow(kIPDialog);
  }

  TestDevice mForeign{mHost,
                      "port0",
                      {.mac = "02:00:00:00:00:02",
                       .address = "10.1.2.3",
                       .mask = "255.0.0.0",
                       .model = kForeign,
                       .serialNumber = kForeign}};
};

TEST_F(FinderUser, ReachableDevice_SelectedAndOK_IsTheAnswer) {
  Run([](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    EXPECT_FALSE(aUser.IsEnabled(kFinder, kOk));
    EXPECT_FALSE(aUser.IsEnabled(kFinder, kSetIP));
    aUser.ClickRow(kFinder, kTree, kReachable);
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kDeviceList, "Serial Number | right"));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kDeviceList, "Access Status | Open"));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kInterfaceList, "192.168.1.10"));
    EXPECT_TRUE(aUser.IsEnabled(kFinder, kOk));
    aUser.Click(kFinder, kOk);
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_TRUE(mResult.IsOK()) << mResult.GetDescription().CStr();
  EXPECT_EQ(GetSelected(), kReachable);
}

TEST_F(FinderUser, ReachableDevice_DoubleClicked_IsTheAnswer) {
  Run([](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    aUser.DoubleClickRow(kFinder, kTree, kReachable);
  });

  EXPECT_TRUE(mResult.IsOK()) << mResult.GetDescription().CStr();
  EXPECT_EQ(GetSelected(), kReachable);
}

TEST_F(FinderUser, Cancelled_InTheMiddleOfDiscovery_AnswersNothing) {
  Run([](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    aUser.ClickRow(kFinder, kTree, kReachable);
    aUser.Click(kFinder, kCancel);
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(mResult, KrResult::Code::Cancelled);
  EXPECT_EQ(GetSelected(), "");
}

TEST_F(FinderUser, IndependentCamera_OnAHost_IsTheAnswer) {
  mHost.SetAddress("port0", "192.168.1.30/24");
  const FakeCamera camera(
      {.serialNumber = "GV30", .address = "192.168.1.30", .namespaceFile = mHost.GetNamespaceFile()});

  Run([](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "192.168.1.30"));
    aUser.ClickRow(kFinder, kTree, "192.168.1.30");
    aUser.Press("Return");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(GetSelected(), "GV30");
}

TEST_F(FinderUserRepairs, ForeignDevice_ByTheCheckBox_IsShownAndRefusedWithItsReason) {
  Run([](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    EXPECT_TRUE(aUser.GetRows(kFinder, kTree).filter(kForeign).isEmpty());
    aUser.Click(kFinder, kShowUnreachable);
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kForeign));
    aUser.ClickRow(kFinder, kTree, kForeign);
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kDeviceList, "Serial Number | foreign"));
    aUser.Click(kFinder, kOk);
    Dismiss(aUser, kError,
            "The device is on a subnet that is not compatible with your computer's network interface card (NIC).");
    aUser.Click(kFinder, kShowUnreachable);
    EXPECT_TRUE(aUser.AwaitNoRow(kFinder, kTree, kForeign));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(GetSelected(), "");
}

TEST_F(FinderUserRepairs, SetIPAddress_ByKeysAlone_RepairsTheDeviceAndOKTakesIt) {
  using std::chrono::steady_clock;
  std::chrono::milliseconds untilReachable{};

  Run([&](UserHands& aUser) {
    ASSERT_TRUE(OpenIPDialog(aUser));
    aUser.Type("50"); // The caret is in the first field that the subnet leaves open.
    const auto start = steady_clock::now();
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitNoWindow(kIPDialog));
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "192.168.1.50"));
    untilReachable = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
    aUser.ClickRow(kFinder, kTree, "192.168.1.50");
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kDeviceList, "Serial Number | foreign"));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kDeviceList, "IP Configuration | Valid"));
    aUser.Click(kFinder, kOk);
    aUser.AwaitNoWindow(kFinder);
  });

  std::printf("figure=finder_repair value=%lld unit=ms\n", static_cast<long long>(untilReachable.count()));
  EXPECT_EQ(mForeign.GetAddresses(), (DeviceAddresses{0xC0A80132, 0xFFFFFF00, 0}));
  EXPECT_EQ(GetSelected(), kForeign);
}

TEST_F(FinderUserRepairs, SetIPAddress_DoubtfulAddress_IsAskedAboutAndSentOnYesAlone) {
  Run([this](UserHands& aUser) {
    constexpr const char* kQuestion = "Are you sure you want to continue?";
    ASSERT_TRUE(OpenIPDialog(aUser));
    aUser.Press("BackSpace", 12); // From the last field into the first.
    aUser.Type("10.0.0.50");
    aUser.Press("Return");
    Dismiss(aUser, kWarning, kQuestion, "n");
    ASSERT_TRUE(aUser.AwaitWindow(kIPDialog));
    EXPECT_EQ(mForeign.GetHeard(kForceIP), 0u);
    aUser.Press("Return");
    Dismiss(aUser, kWarning, kQuestion, "y");
    ASSERT_TRUE(aUser.AwaitNoWindow(kIPDialog));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kTree, "10.0.0.50"));
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(mForeign.GetAddresses(), (DeviceAddresses{0x0A000032, 0xFFFFFF00, 0}));
}

TEST_F(FinderUserRepairs, SetIPAddress_ProposedAddress_IsFreeAndRepairsTheDevice) {
  Run([this](UserHands& aUser) {
    ASSERT_TRUE(OpenIPDialog(aUser));
    aUser.Click(kIPDialog, kPropose);
    ASSERT_TRUE(aUser.AwaitFields(kIPDialog, kAddress));
    aUser.Press("Return"); // Without a question: nothing is wrong with it.
    ASSERT_TRUE(aUser.AwaitNoWindow(kIPDialog));
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "foreign (192.168.1."));
    aUser.ClickRow(kFinder, kTree, "foreign (192.168.1.");
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kDeviceList, "IP Configuration | Valid"));
    aUser.Click(kFinder, kOk);
    aUser.AwaitNoWindow(kFinder);
  });

  const DeviceAddresses addresses = mForeign.GetAddresses();
  EXPECT_EQ(addresses.address & 0xFFFFFF00, 0xC0A80100u);
  EXPECT_NE(addresses.address, 0xC0A8010Au) << "this host's";
  EXPECT_NE(addresses.address, 0xC0A80114u) << "the other device's";
  EXPECT_EQ(GetSelected(), kForeign);
}

TEST_F(FinderUser, DeviceWithoutAddress_ByTheCheckBox_IsShownAndRepaired) {
  const TestDevice fresh(
      mHost, "port0",
      {.mac = "02:00:00:00:00:04", .address = "0.0.0.0", .mask = "0.0.0.0", .model = "fresh", .serialNumber = "fresh"});

  Run([](UserHands& aUser) {
    aUser.Click(kFinder, kShowUnreachable);
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "0.0.0.0"));
    aUser.ClickRow(kFinder, kTree, "fresh");
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kDeviceList, "IP Configuration | Invalid"));
    ASSERT_TRUE(aUser.AwaitEnabled(kFinder, kSetIP));
    aUser.Click(kFinder, kSetIP);
    ASSERT_TRUE(aUser.AwaitWindow(kIPDialog));
    aUser.Type("60");
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitNoWindow(kIPDialog));
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "192.168.1.60"));
    aUser.ClickRow(kFinder, kTree, "192.168.1.60");
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kDeviceList, "IP Configuration | Valid"));
    aUser.Click(kFinder, kOk);
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(fresh.GetAddresses(), (DeviceAddresses{0xC0A8013C, 0xFFFFFF00, 0}));
  EXPECT_EQ(GetSelected(), "fresh");
}

TEST_F(FinderUserRepairs, SetIPAddress_FromTheContextMenu_OpensTheDialog) {
  Run([](UserHands& aUser) {
    aUser.Click(kFinder, kShowUnreachable);
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kForeign));
    aUser.RightClickRow(kFinder, kTree, kForeign);
    ASSERT_TRUE(aUser.AwaitMenu());
    aUser.Press("Down");
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitWindow(kIPDialog));
    aUser.Press("Escape");
    EXPECT_TRUE(aUser.AwaitNoWindow(kIPDialog));
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(mForeign.GetHeard(kForceIP), 0u);
}

/// An address that is typed over the proposed one, field by field, and what is said of it.
struct RefusedAddress {
  const char* name;
  const char* keys;
  const char* message;
};

const RefusedAddress kRefusedAddresses[] = {
    {"ThisHostsOwn", "192.168.1.10", "Cannot assign the same IP Address as the Interface!"},
    {"Multicast", "230.1.1.1", "IP addresses in the 224.*.*.* to 255.*.*.* range cannot be assigned to a device."},
    {"TheSubnetItself", "192.168.1.0", "Cannot assign the device IP Address to be the same as its subnet!"},
};

class FinderUserRefusals : public FinderUserRepairs, public testing::WithParamInterface<RefusedAddress> {};

TEST_P(FinderUserRefusals, SetIPAddress_AddressThatCannotBe_IsRefusedAndTheDialogStays) {
  Run([this](UserHands& aUser) {
    ASSERT_TRUE(OpenIPDialog(aUser));
    aUser.Press("BackSpace", 12); // From the last field into the first.
    aUser.Type(GetParam().keys);
    aUser.Press("Return");
    Dismiss(aUser, kError, GetParam().message);
    EXPECT_TRUE(aUser.AwaitWindow(kIPDialog));
    aUser.Press("Escape");
    EXPECT_TRUE(aUser.AwaitNoWindow(kIPDialog));
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(mForeign.GetHeard(kForceIP), 0u);
}

INSTANTIATE_TEST_SUITE_P(Addresses, FinderUserRefusals, testing::ValuesIn(kRefusedAddresses),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(FinderUser, CablePulledAndPluggedIn_DeviceVanishesAndReturns) {
  Run([this](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    mLab.Unplug("eth0");
    ASSERT_TRUE(aUser.AwaitNoRow(kFinder, kTree, kReachable));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kTree, "eth0"));
    mLab.PlugIn("eth0");
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(mResult, KrResult::Code::Cancelled);
}

TEST_F(FinderUser, AdapterSetDownAndUp_StaysWithoutAddressAndReturnsWithIt) {
  Run([this](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    mLab.SetDown("eth0");
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "eth0 0.0.0.0"));
    EXPECT_TRUE(aUser.AwaitNoRow(kFinder, kTree, kReachable));
    mLab.SetUp("eth0");
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "eth0 192.168.1.10"));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(mResult, KrResult::Code::Cancelled);
}

TEST_F(FinderUser, AdapterAddedAndDeleted_ComesIntoTheTreeWithItsDeviceAndLeavesIt) {
  Run([this](UserHands& aUser) {
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    mLab.Connect("eth1", mHost, "port1");
    mLab.SetAddress("eth1", "172.16.0.10/16");
    const TestDevice added(mHost, "port1",
                           {.mac = "02:00:00:00:00:03",
                            .address = "172.16.0.20",
                            .mask = "255.255.0.0",
                            .model = "added",
                            .serialNumber = "added"});
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "eth1 172.16.0.10"));
    ASSERT_TRUE(aUser.AwaitRow(kFinder, kTree, "added"));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    mLab.DeleteAdapter("eth1");
    EXPECT_TRUE(aUser.AwaitNoRow(kFinder, kTree, "eth1"));
    EXPECT_TRUE(aUser.AwaitNoRow(kFinder, kTree, "added"));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(mResult, KrResult::Code::Cancelled);
}

TEST_F(FinderUser, SelectFromIPAddress_AddressOfADevice_IsTheAnswer) {
  Run([](UserHands& aUser) {
    // On a busy machine the device may take longer to answer than it is given.
    bool isFound = false;
    const auto ask = [&] {
      aUser.Click(kFinder, kSelectFromIP);
      ASSERT_TRUE(aUser.AwaitWindow(kSelectDialog));
      aUser.Type("192.168.1.20");
      aUser.Press("Return");
      ASSERT_TRUE(aUser.Await("an answer", [&] {
        isFound = !HasWindow(kFinder);
        return isFound || HasWindow(kError);
      }));
      if (!isFound)
        Dismiss(aUser, kError, "Could not contact device.");
    };
    EXPECT_TRUE(krtest::Await([&] {
      ask();
      return isFound || testing::Test::HasFailure();
    }));
    EXPECT_TRUE(isFound);
  });

  EXPECT_TRUE(mResult.IsOK()) << mResult.GetDescription().CStr();
  EXPECT_EQ(GetSelected(), kReachable);
}

TEST_F(FinderUser, SelectFromIPAddress_AddressThatNobodyHas_SaysSoAndTheFinderStays) {
  Run([](UserHands& aUser) {
    aUser.Click(kFinder, kSelectFromIP);
    ASSERT_TRUE(aUser.AwaitWindow(kSelectDialog));
    aUser.Type("192.168.1.21");
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitWindow(kError));
    EXPECT_EQ(aUser.GetMessage(kError).toStdString(), "Could not contact device. ");
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitNoWindow(kError));
    EXPECT_TRUE(aUser.AwaitRow(kFinder, kTree, kReachable));
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kFinder);
  });

  EXPECT_EQ(GetSelected(), "");
}

} // namespace
