// The manager of serial bridges as a user meets it: ports, kinds, dialogs and counters, with programs of others at the
// ports that he links.

#include "bridgeuser.h"
#include "krserial/krdeviceserialport.h"
#include "krserial/krgenparameterarraycl.h"

#include <gmock/gmock.h>

#include <QApplication>

namespace {

using krtest::SocatLine;
using krtest::SocatProcess;
using testing::AllOf;
using testing::HasSubstr;

class BridgeUser : public TerminalUser {
protected:
  void SetUp() override {
    UseHostPortsOfTheTest();
    TerminalUser::SetUp();
  }
  /// Shows the manager, lets the user do this, and then whatever is to be done while the bridges still run.
  void RunManager(
      const std::function<void(UserHands&, const BridgeHands&)>& aScript,
      const std::function<void()>& aAfterwards = [] {}) {
    std::unique_ptr<KrDevice> device;
    ASSERT_TRUE(KrDevice::Open(*mSystem.GetDeviceInfo(0), KrDeviceAccess::Control, device).IsOK());
    mAdapter.emplace(*device);
    {
      KrSerialBridgeManagerWnd manager;
      manager.SetCreatingPorts(true);
      ASSERT_TRUE(manager.SetDevice(&*mAdapter).IsOK());
      RunWithUser([&] { static_cast<void>(manager.ShowModal(0)); }, // However the user ends it.
                  [&](UserHands& aUser) {
                    BridgeHands hands(aUser);
                    if (hands.AwaitOpen())
                      aScript(aUser, hands);
                  });
      aAfterwards();
      EXPECT_TRUE(manager.SetDevice(nullptr).IsOK());
    }
    mAdapter.reset();
  }

  std::optional<KrDeviceAdapter> mAdapter;
};

void ExpectAnswer(SocatProcess& aClient) {
  aClient.Send(kQuestion);
  EXPECT_EQ(aClient.Await(kAnswer.size()), kAnswer);
}

} // namespace

TEST_F(BridgeUser, PortLinkedToAPortThatIsMade_IsOpenedByAProgramAndCounted) {
  RunManager([](UserHands& aUser, const BridgeHands& aHands) {
    aHands.Link("Bulk0", "COM1");
    SocatProcess client(GetHostPortPath("com1") + ",rawer");
    ExpectAnswer(client);
    aHands.AwaitText(bridge::kBytesSent, "Bytes sent: 6");
    aHands.AwaitText(bridge::kBytesReceived, "Bytes received: 31");

    aUser.Click(kManager, bridge::kReset);

    aHands.AwaitText(bridge::kBytesSent, "Bytes sent: 0");
    aHands.AwaitText(bridge::kBytesReceived, "Bytes received: 0");
  });
}

TEST_F(BridgeUser, PortLinkedToAPseudoTerminal_IsConfiguredInItsDialog) {
  SocatLine client(GetHostPortPath("com3"));
  RunManager([&](UserHands& aUser, const BridgeHands& aHands) {
    aHands.Link("Bulk0", "COM3");
    aHands.AwaitText(bridge::kDescription, "9600 baud, no parity, 8 bits, 1 stop bit");

    const QString dialog = "Serial COM Port Configuration";
    aUser.Click(kManager, bridge::kConfigure);
    ASSERT_TRUE(aUser.AwaitWindow(dialog));
    Pick(aUser, dialog, bridge::kBaudRate, "115200 baud");
    aUser.Click(dialog, 1);
    aUser.AwaitNoWindow(dialog);

    aHands.AwaitText(bridge::kDescription, "115200 baud, no parity, 8 bits, 1 stop bit");
    client.Send(kQuestion);
    EXPECT_EQ(client.Await(kAnswer.size()), kAnswer);
  });
}

TEST_F(BridgeUser, PortPublishedForCameraLink_IsFoundByItsNameUntilItIsClickedAgain) {
  RunManager([](UserHands& aUser, const BridgeHands& aHands) {
    aHands.PickPort("Bulk0");
    aHands.AwaitText(bridge::kCameraLinkName, "Inactive");
    aHands.ChooseKind(bridge::kCameraLink);

    KrStringList names;
    ASSERT_TRUE(KrGenParameterArrayCL::GetPortIDs(names).IsOK());
    ASSERT_EQ(names.GetCount(), 1u);
    EXPECT_THAT(names[0].ToUtf8(), HasSubstr("Bulk0"));
    aHands.AwaitText(bridge::kCameraLinkName, QString::fromUtf8(names[0].CStr()));

    aUser.Click(kManager, bridge::kCameraLink);
    aHands.AwaitKind(bridge::kNone);
    ASSERT_TRUE(KrGenParameterArrayCL::GetPortIDs(names).IsOK());
    EXPECT_TRUE(names.IsEmpty());
  });
}

TEST_F(BridgeUser, PortThatIsInUse_IsToldAndNotLinked) {
  KrDeviceSerialPort terminal;
  RunManager([&](UserHands& aUser, const BridgeHands& aHands) {
    ASSERT_TRUE(terminal.Open(&*mAdapter, KrDeviceSerial::Bulk0).IsOK());
    aHands.PickPort("Bulk0");
    aHands.ChooseKind(bridge::kCOMPortLink);
    aUser.Click(kManager, bridge::kCOMPort);
    ASSERT_TRUE(aUser.AwaitMenu());
    aUser.Press("Return");

    EXPECT_THAT(ReadBox(aUser), AllOf(HasSubstr("Error opening serial COM port."), HasSubstr("Busy")));
    aUser.AwaitWindow(kManager);
    EXPECT_FALSE(aUser.IsEnabled(kManager, bridge::kConfigure));
    ASSERT_TRUE(terminal.Close().IsOK());
  });
}

TEST_F(BridgeUser, KeyboardAlone_LinksAPort) {
  RunManager([](UserHands& aUser, const BridgeHands& aHands) {
    const auto isFocused = [](int aControl) {
      const auto* const control = FindControlOf<QWidget>(kManager, aControl);
      return control && control->hasFocus();
    };
    aUser.Await("the port list focused", [&] { return isFocused(bridge::kDevicePort); });
    aUser.Press("End"); // Bulk0
    aUser.Press("alt+s");
    aHands.AwaitKind(bridge::kCOMPortLink);
    for (int tabs = 0; tabs < 3; ++tabs) {
      const QWidget* focused = nullptr;
      bool isThere = false;
      aUser.Await("the keyboard", [&] {
        focused = QApplication::focusWidget();
        isThere = isFocused(bridge::kCOMPort);
        return true;
      });
      if (isThere)
        break;
      aUser.Press("Tab");
      ASSERT_TRUE(aUser.Await("the next control focused", [&] { return QApplication::focusWidget() != focused; }));
    }
    aUser.Press("space");
    ASSERT_TRUE(aUser.AwaitMenu());
    aUser.Press("Return");
    ASSERT_TRUE(aUser.AwaitEnabled(kManager, bridge::kConfigure));

    SocatProcess client(GetHostPortPath("com1") + ",rawer");
    ExpectAnswer(client);
    aUser.Press("Escape");
    aUser.AwaitNoWindow(kManager);
  });
}

TEST_F(BridgeUser, WindowClosed_LeavesItsBridgesRunning) {
  RunManager(
      [](UserHands& aUser, const BridgeHands& aHands) {
        aHands.Link("Bulk0", "COM1");
        ASSERT_TRUE(aUser.AwaitWindow(kManager));
        aUser.Press("alt+F4");
        aUser.AwaitNoWindow(kManager);
      },
      [] {
        SocatProcess client(GetHostPortPath("com1") + ",rawer");
        ExpectAnswer(client);
      });
}
