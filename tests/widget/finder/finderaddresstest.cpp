// The finder's ways to a device's address: the button and the menu that set it, the button that takes it instead of a
// selection, and the diagnosis.

#include "finderfixture.h"

#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace krgui {

class DeviceAddressTest : public DeviceFinderTest {
protected:
  void SetUp() override {
    mTransport->AddInterface(MakeFinderAdapter());
    mTransport->AddDevice("eth0", MakeFinderCamera());
    mTransport->AddDevice("eth0", MakeOldDevice());
  }
  /// What was told of an address that the finder did not take.
  struct Refusal {
    ShownMessage message;
    QString detail;
  };
  /// Asks for such an address, and closes what tells of it; the finder stays open.
  Refusal AskInVain(const char* aAddress) {
    Refusal refusal;
    OnNextDialog([&](QWidget& aDialog) {
      QTest::keyClicks(aDialog.focusWidget(), aAddress);
      OnNextDialog([&](QWidget& aBox) {
        refusal = {ReadMessage(aBox), ReadDetail(aBox)};
        aBox.close();
      });
      QTest::keyClick(&aDialog, Qt::Key_Return);
    });
    Click(kFinderSelectFromIPID);
    EXPECT_TRUE(mFinder.IsOpen());
    return refusal;
  }
  /// Asks for an address, or for none, and gives what was offered first.
  QStringList AskForAddress(TestFinderWnd& aFinder, const char* aAddress) {
    QStringList offered;
    OnNextDialog([&](QWidget& aDialog) {
      for (const auto* const field : aDialog.findChildren<QLineEdit*>())
        offered += field->text();
      QTest::keyClicks(aDialog.focusWidget(), aAddress);
      QTest::keyClick(&aDialog, *aAddress ? Qt::Key_Return : Qt::Key_Escape);
    });
    QTest::mouseClick(aFinder.GetControl(kFinderSelectFromIPID), Qt::LeftButton);
    return offered;
  }

  /// Handles what the thread posted at its round's end, and lets it run on; it tries for the next round at once.
  void LetTheThreadTry() {
    constexpr int kTurns = 1000;
    for (int i = 0; i < kTurns; ++i) {
      QCoreApplication::processEvents();
      std::this_thread::yield();
    }
  }

  QAction* FindMenuAction() const {
    const QMenu* menu = FindMenu();
    return menu && menu->actions().size() == 1 ? menu->actions().front() : nullptr;
  }
};

TEST_F(DeviceAddressTest, RightButton_OnACameraSelectsItAndOffersToSetItsAddress) {
  Open({"Camera A"});

  AskForMenu("Camera A");

  EXPECT_TRUE(mFinder.FindItem("Camera A")->isSelected());
  ASSERT_NE(FindMenu(), nullptr);
  EXPECT_EQ(FindMenu()->title(), "Device Finder");
  ASSERT_NE(FindMenuAction(), nullptr);
  EXPECT_EQ(FindMenuAction()->text(), "Set IP Address...");
  EXPECT_EQ(FindMenuAction()->data().toInt(), 32771);
}

TEST_F(DeviceAddressTest, RightButton_OnOtherItemsSelectsThemAndOffersNothing) {
  Open({"Camera A", "Old device"});
  for (const char* item : {"Old device", "eth0 192.168.1.10"}) {
    AskForMenu(item);

    EXPECT_TRUE(mFinder.FindItem(item)->isSelected()) << item;
    EXPECT_EQ(FindMenu(), nullptr) << item;
  }
}

TEST_F(DeviceAddressTest, MenuKey_OpensTheMenuOfTheSelectedItem) {
  Open({"Camera A"});
  Select("Camera A");
  QTreeWidget& tree = mFinder.GetTree();

  QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, tree.mapToGlobal(QPoint()));
  QCoreApplication::sendEvent(&tree, &event);

  ASSERT_NE(FindMenu(), nullptr);
  EXPECT_TRUE(QRect(tree.mapToGlobal(QPoint()), tree.size()).contains(FindMenu()->pos()));
}

TEST_F(DeviceAddressTest, MenuWhoseDeviceVanishes_SaysThatItIsNoLongerAvailable) {
  Open({"Camera A"});
  AskForMenu("Camera A");
  QAction* action = FindMenuAction();
  ASSERT_NE(action, nullptr);
  mTransport->SetDevices({});
  ASSERT_TRUE(AwaitRounds(1));
  mNowMs += 2001;
  ASSERT_TRUE(AwaitNoItem("Camera A"));
  ShownMessage message;
  OnNextDialog([&](QWidget& aDialog) {
    message = ReadMessage(aDialog);
    aDialog.close();
  });

  action->trigger();

  EXPECT_EQ(message, MakeErrorMessage("The selected device is no longer available"));
}

class DiscoveryBesideTest : public DeviceAddressTest {
protected:
  /// Presses a button in the midst of a round: its dialog opens when that is cancelled, and no other begins beside it.
  void ExpectDiscoveryAtRest(int aButton, const char* aTitle);
};

void DiscoveryBesideTest::ExpectDiscoveryAtRest(int aButton, const char* aTitle) {
  Gate gate;
  std::atomic<bool> wasCancelled = false;
  std::atomic<bool> isDialogOpen = false;
  std::atomic<int> begunBesideDialog = 0;
  Open({"Camera A"});
  Select("Camera A");
  mTransport->SetScript([&](ScriptedTransport::Point aPoint, const std::stop_token& aStop) {
    if (aPoint != ScriptedTransport::Point::Begin)
      return;
    begunBesideDialog += isDialogOpen;
    gate.Wait(aStop);
    wasCancelled = wasCancelled || aStop.stop_requested();
  });
  ASSERT_TRUE(gate.AwaitReached());
  OnNextDialog([&](QWidget& aDialog) {
    isDialogOpen = true;
    EXPECT_EQ(aDialog.windowTitle(), aTitle);
    EXPECT_TRUE(wasCancelled);
    // A round that came next would come without a rest, and not be held any more.
    gate.Open();
    LetTheThreadTry();
    aDialog.close();
    isDialogOpen = false;
  });

  Click(aButton);

  EXPECT_EQ(mDialogCount, 1);
  EXPECT_EQ(begunBesideDialog, 0);
  EXPECT_TRUE(AwaitRounds(0));
  EXPECT_TRUE(mFinder.IsOpen());
  EXPECT_TRUE(mFinder.Close().IsOK()) << "nobody may come to the gate any more when it ends";
}

TEST_F(DiscoveryBesideTest, SetIPAddress_CancelsTheRoundAndOpensTheDialogWithDiscoveryAtRest) {
  ExpectDiscoveryAtRest(kFinderSetIPID, "Set IP Address");
}

TEST_F(DiscoveryBesideTest, SelectFromIP_CancelsTheRoundAndOpensTheDialogWithDiscoveryAtRest) {
  ExpectDiscoveryAtRest(kFinderSelectFromIPID, "Select From IP Address");
}

TEST_F(DeviceAddressTest, SetIPAddress_OnASelectableOlderDevice_IsForThatOne) {
  mFinder.GetKinds().tolvanProtocol.selectable = true;
  Open({"Camera A", "Old device"});
  Select("Old device");
  QString mac;
  OnNextDialog([&](QWidget& aDialog) {
    EXPECT_EQ(aDialog.windowTitle(), "Set IP Address");
    if (const auto* edit = aDialog.findChild<QLineEdit*>("control1045"))
      mac = edit->text();
    aDialog.close();
  });

  Click(kFinderSetIPID);

  EXPECT_EQ(mDialogCount, 1);
  EXPECT_EQ(mac, "00:11:22:33:44:0d");
}

TEST_F(DeviceAddressTest, UnreachableCamera_CanBeGivenAnAddressByButtonAndMenu) {
  mTransport->AddDevice("eth0", MakeForeignCamera());
  Open({"Camera A"});
  Click(kFinderUnreachableID);
  ASSERT_TRUE(AwaitItem("Foreign"));
  AskForMenu("Foreign");
  QAction* action = FindMenuAction();
  ASSERT_NE(action, nullptr);
  QString mac;
  OnNextDialog([&](QWidget& aDialog) {
    if (const auto* edit = aDialog.findChild<QLineEdit*>("control1045"))
      mac = edit->text();
    aDialog.close();
  });

  action->trigger();

  EXPECT_EQ(mac, "00:11:22:33:44:f1");
  EXPECT_TRUE(mFinder.IsEnabled(kFinderSetIPID));
}

TEST_F(DeviceAddressTest, LongDialog_DoesNotMakeDevicesVanishThatCouldNotBeHeardMeanwhile) {
  Open({"Camera A", "Old device"});
  Select("Camera A");
  OnNextDialog([&](QWidget& aDialog) {
    mNowMs += 60000;
    mFinder.PostRefresh();
    EXPECT_TRUE(WaitFor([&] { return mFinder.GetQueue()->IsEmpty(); }));
    aDialog.close();
  });

  Click(kFinderSetIPID);
  mFinder.PostRefresh();
  ASSERT_TRUE(mFinder.DoEvents().IsOK());

  ASSERT_NE(mFinder.FindItem("Old device"), nullptr);
  EXPECT_TRUE(mFinder.FindItem("Camera A")->isSelected());
}

TEST_F(DeviceAddressTest, SelectFromIP_GivesTheDeviceThatAnswersThere) {
  mTransport->SetAtAddress(0x0A010203, 0, MakeFinderCamera("00:11:22:33:44:b1", "Far camera"));
  Open({"Camera A"});
  OnNextDialog([&](QWidget& aDialog) {
    EXPECT_EQ(aDialog.windowTitle(), "Select From IP Address");
    QTest::keyClicks(aDialog.focusWidget(), "10.1.2.3");
    QTest::keyClick(&aDialog, Qt::Key_Return);
  });

  Click(kFinderSelectFromIPID);

  ASSERT_NE(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(mFinder.GetSelected()->GetDisplayID(), KrString("Far camera"));
  EXPECT_FALSE(mFinder.IsOpen());
}

TEST_F(DeviceAddressTest, SelectFromIP_TakesADeviceThatTheTreeWouldRefuse) {
  krsystem::TolvanProtocolFields device = MakeOldDevice();
  device.uniqueID = device.macAddress = "00:11:22:33:44:b2";
  device.displayID = "Far device";
  device.configurationValid = false;
  mTransport->SetAtAddress(0x0A010203, 0, device);
  Open({"Camera A"});
  OnNextDialog([&](QWidget& aDialog) {
    QTest::keyClicks(aDialog.focusWidget(), "10.1.2.3");
    QTest::keyClick(&aDialog, Qt::Key_Return);
  });

  Click(kFinderSelectFromIPID);

  ASSERT_NE(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(mFinder.GetSelected()->GetDisplayID(), KrString("Far device"));
  EXPECT_FALSE(mFinder.GetSelected()->IsConfigurationValid());
  EXPECT_FALSE(mFinder.IsOpen());
}

TEST_F(DeviceAddressTest, SelectFromIP_WhereNobodyAnswersSaysSo) {
  Open({"Camera A"});

  const Refusal refusal = AskInVain("10.1.2.4");

  EXPECT_EQ(refusal.message, MakeErrorMessage("Could not contact device. "));
  EXPECT_EQ(refusal.detail, "Nothing answers at 10.1.2.4.");
  EXPECT_EQ(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(DeviceAddressTest, SelectFromIP_AddressOfNoSingleDeviceIsToldAsSuch) {
  Open({"Camera A"});

  const Refusal refusal = AskInVain("224.0.0.1");

  EXPECT_EQ(refusal.message, MakeErrorMessage("Could not contact device. "));
  EXPECT_TRUE(refusal.detail.contains("224.0.0.1 is the address of no single device")) << refusal.detail.toStdString();
}

TEST_F(DeviceAddressTest, SelectFromIP_OffersTheAddressAgainWhereNobodyAnswered) {
  mTransport->SetAtAddress(0x0A010203, 0, MakeFinderCamera("00:11:22:33:44:b1", "Far camera"));
  Open({"Camera A"});
  AskInVain("10.1.2.4");

  const QStringList offered = AskForAddress(mFinder, "10.1.2.3");

  EXPECT_EQ(offered, (QStringList{"10", "1", "2", "4"}));
  ASSERT_NE(mFinder.GetSelected(), nullptr);
  EXPECT_EQ(mFinder.GetSelected()->GetDisplayID(), KrString("Far camera"));
}

TEST_F(DeviceAddressTest, SelectFromIP_OffersTheSilentAddressInTheNextFinderUntilAnotherOneAnswers) {
  mTransport->SetAtAddress(0x0A010203, 0, MakeFinderCamera("00:11:22:33:44:b1", "Far camera"));
  Open({"Camera A"});
  AskInVain("10.1.2.4");
  ASSERT_TRUE(mFinder.Close().IsOK());
  TestFinderWnd next;
  ASSERT_TRUE(next.ShowModeless(0).IsOK());

  const QStringList offered = AskForAddress(next, "10.1.2.3");
  Open({"Camera A"});
  const QStringList offeredLater = AskForAddress(mFinder, "");

  EXPECT_EQ(offered, (QStringList{"10", "1", "2", "4"}));
  EXPECT_EQ(offeredLater, (QStringList{"", "", "", ""}));
}

TEST_F(DeviceAddressTest, SelectFromIPCancelled_AsksNobody) {
  Open({"Camera A"});
  OnNextDialog([&](QWidget& aDialog) { QTest::keyClick(&aDialog, Qt::Key_Escape); });

  Click(kFinderSelectFromIPID);

  EXPECT_EQ(mDialogCount, 1);
  EXPECT_TRUE(mFinder.IsOpen());
  EXPECT_TRUE(AwaitRounds(0));
}

TEST_F(DeviceAddressTest, Diagnosis_IsTextToReadAndCopyAndClosesWithEscape) {
  Open({"Camera A"});
  OnNextDialog([&](QWidget& aDialog) {
    EXPECT_EQ(aDialog.objectName(), "diagnosis");
    auto* text = aDialog.findChild<QPlainTextEdit*>();
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(WaitFor([&] { return text->toPlainText() != "Looking..."; }));
    EXPECT_FALSE(text->toPlainText().isEmpty());
    EXPECT_TRUE(text->isReadOnly());
    EXPECT_FALSE(text->accessibleName().isEmpty());
    EXPECT_GT(aDialog.maximumWidth(), aDialog.width());
    for (QAbstractButton* button : aDialog.findChildren<QAbstractButton*>())
      if (button->text() == "Copy")
        button->click();
    EXPECT_EQ(QApplication::clipboard()->text(), text->toPlainText());
    QTest::keyClick(text, Qt::Key_Escape);
  });

  Click(kFinderDiagnoseID);

  EXPECT_EQ(mDialogCount, 1);
  EXPECT_TRUE(mFinder.IsOpen());
}

TEST_F(DeviceAddressTest, Diagnosis_KnowsOfForeignSubnetsThoughTheFinderShowsNone) {
  mTransport->AddDevice("eth0", MakeForeignCamera());
  Open({"Camera A"});
  QString found;
  OnNextDialog([&](QWidget& aDialog) {
    auto* text = aDialog.findChild<QPlainTextEdit*>();
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(WaitFor([&] { return text->toPlainText() != "Looking..."; }));
    found = text->toPlainText();
    QTest::keyClick(text, Qt::Key_Escape);
  });

  Click(kFinderDiagnoseID);

  EXPECT_TRUE(found.startsWith("Foreign answered on eth0 with the address 10.9.8.7")) << found.toStdString();
}

TEST_F(DeviceAddressTest, DiagnosisClosedWhileItLooks_CancelsTheRound) {
  Open({"Camera A"});
  std::atomic<int> held = 0;
  std::atomic<int> cancelled = 0;
  mTransport->SetScript([&](ScriptedTransport::Point aPoint, const std::stop_token& aStop) {
    if (aPoint != ScriptedTransport::Point::End)
      return;
    ++held;
    Gate().Wait(aStop);
    ++cancelled;
  });
  OnNextDialog([&](QWidget& aDialog) {
    auto* text = aDialog.findChild<QPlainTextEdit*>();
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->toPlainText(), "Looking...");
    EXPECT_TRUE(WaitFor([&] { return held == 2; })) << "the finder's round and the diagnosis'";
    QTest::keyClick(text, Qt::Key_Escape);
  });

  Click(kFinderDiagnoseID);

  EXPECT_EQ(cancelled, 1) << "the finder's own round goes on";
  EXPECT_TRUE(mFinder.IsOpen());
  EXPECT_TRUE(mFinder.Close().IsOK()) << "nobody may count any more when this test ends";
}

TEST_F(DeviceAddressTest, DialogOnTopOfAFinderThatCloses_GoesWithIt) {
  for (const int button : {kFinderSetIPID, kFinderSelectFromIPID, kFinderDiagnoseID}) {
    Open({"Camera A"});
    Select("Camera A");
    OnNextDialog([&](QWidget&) { EXPECT_TRUE(mFinder.Close().IsOK()); });

    Click(button);

    EXPECT_FALSE(mFinder.IsOpen()) << button;
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << button;
  }
}

} // namespace krgui
