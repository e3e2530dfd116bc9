// The dialog that sets a device's IP address, used as a person does: what it starts with, its marks, what it refuses
// and asks, and what it sends.

#include "forceipdlgfixture.h"

#include <QAbstractItemView>

namespace krgui {

namespace {

/// Looks at a mark each time that it is painted.
class ErrorWatch : public QObject {
public:
  ErrorWatch(QWidget& aMark, std::function<void()> aLook) : mLook(std::move(aLook)) { aMark.installEventFilter(this); }

private:
  bool eventFilter(QObject*, QEvent* aEvent) override {
    if (aEvent->type() == QEvent::Paint) {
      mLook();
    }
    return false;
  }

  std::function<void()> mLook;
};

class ForceU3VIPDlgTest : public ForceIPDlgTest {
protected:
  krsystem::AnyDeviceFields MakeDevice() const override { return krsystem::U3VFields{}; }
};

// What it starts with.

TEST_F(ForceIPDlgTest, Opened_ShowsAdapterAndDeviceAndProposesTheNetwork) {
  MakeSystem();

  const ModalResult result = Run([](QWidget& aDialog) {
    EXPECT_EQ(aDialog.windowTitle(), QStringLiteral("Set IP Address"));
    EXPECT_EQ(GetEdit(aDialog, 1037), "aa:bb:cc:dd:ee:ff");
    EXPECT_EQ(Get<QComboBox>(aDialog, 1123)->currentText(), QStringLiteral("192.168.1.10"));
    EXPECT_EQ(GetEdit(aDialog, 1050), "255.255.255.0");
    EXPECT_EQ(GetEdit(aDialog, 1052), "192.168.1.1");
    EXPECT_EQ(GetEdit(aDialog, 1045), kMAC);
    EXPECT_EQ(GetAddress(aDialog, 1038), "192.168.1.");
    EXPECT_EQ(GetAddress(aDialog, 1041), "255.255.255.0");
    EXPECT_EQ(GetAddress(aDialog, 1043), "192.168.1.1");
    EXPECT_EQ(GetFocusedField(aDialog), 3);
    EXPECT_EQ(GetError(aDialog, 1003), "IP addresses ending by 0 or 255 are invalid.") << "an empty field counts as 0";
    EXPECT_EQ(GetError(aDialog, 1008), "");
    EXPECT_EQ(GetError(aDialog, 1013), "");
    Press(aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(result, ModalResult::Cancel);
  EXPECT_EQ(transport->asked, 0);
}

struct StartCase {
  const char* name;
  krsystem::AdapterAddress adapter;
  const char* address;
  int field;
};

class ForceIPDlgStart : public ForceIPDlgTest, public testing::WithParamInterface<StartCase> {};

TEST_P(ForceIPDlgStart, Adapter_LeavesItsHostFieldsEmptyAndFocusesTheFirst) {
  MakeSystem({GetParam().adapter});

  (void)Run([](QWidget& aDialog) {
    EXPECT_EQ(GetAddress(aDialog, 1038), GetParam().address);
    EXPECT_EQ(GetFocusedField(aDialog), GetParam().field);
    Press(aDialog, Qt::Key_Escape);
  });
}

INSTANTIATE_TEST_SUITE_P(Masks, ForceIPDlgStart,
                         testing::Values(StartCase{"TwoFields", {"172.16.5.10", "255.255.0.0"}, "172.16..", 2},
                                         StartCase{"ThreeFields", {"10.1.2.3", "255.0.0.0"}, "10...", 1},
                                         StartCase{"Tiny", {"192.168.1.10", "255.255.255.252"}, "192.168.1.8", 0},
                                         StartCase{"NoAddress", {"0.0.0.0", "0.0.0.0"}, "...", 0}),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST_F(ForceIPDlgTest, AnotherAdapterAddressByKeyboard_MovesTheDeviceThere) {
  MakeSystem({{"192.168.1.10", "255.255.255.0"}, {"172.16.5.10", "255.255.0.0"}});

  (void)Run([](QWidget& aDialog) {
    auto* addresses = Get<QComboBox>(aDialog, 1123);
    EXPECT_EQ(addresses->count(), 2);
    addresses->setFocus();
    QTest::keyClick(addresses, Qt::Key_Down);

    EXPECT_EQ(addresses->currentText(), QStringLiteral("172.16.5.10"));
    EXPECT_EQ(GetEdit(aDialog, 1050), "255.255.0.0");
    EXPECT_EQ(GetAddress(aDialog, 1038), "172.16..");
    EXPECT_EQ(GetAddress(aDialog, 1041), "255.255.0.0");
    EXPECT_EQ(GetFocusedField(aDialog), 2);
    EXPECT_EQ(GetError(aDialog, 1013), "Device Gateway does not match Interface Subnet.");
    Press(aDialog, Qt::Key_Escape);
  });
}

/// As a person does: the list opens, the pointer goes to the item, the button is pressed and released there.
void ChooseByMouse(QComboBox& aComboBox, int aItem) {
  int chosen = -1;
  const auto connection =
      QObject::connect(&aComboBox, &QComboBox::activated, &aComboBox, [&](int aIndex) { chosen = aIndex; });
  QTest::mouseClick(&aComboBox, Qt::LeftButton);
  QWidget* list = aComboBox.view()->viewport();
  // The toolkit ignores the mouse for as long as a double click takes.
  EXPECT_TRUE(WaitFor([&] {
    const QPoint place = aComboBox.view()->visualRect(aComboBox.model()->index(aItem, 0)).center();
    QTest::mouseMove(list, place);
    QTest::mouseClick(list, Qt::LeftButton, {}, place);
    return chosen == aItem;
  }));
  QObject::disconnect(connection);
}

TEST_F(ForceIPDlgTest, AnotherAdapterAddressByMouse_MovesTheDeviceThere) {
  MakeSystem({{"192.168.1.10", "255.255.255.0"}, {"172.16.5.10", "255.255.0.0"}});

  (void)Run([](QWidget& aDialog) {
    ChooseByMouse(*Get<QComboBox>(aDialog, 1123), 1);

    EXPECT_EQ(GetEdit(aDialog, 1050), "255.255.0.0");
    EXPECT_EQ(GetAddress(aDialog, 1038), "172.16..");
    EXPECT_EQ(GetFocusedField(aDialog), 2);
    Press(aDialog, Qt::Key_Escape);
  });
}

TEST_F(ForceIPDlgTest, SameAdapterAddressAgain_KeepsWhatWasTyped) {
  MakeSystem({{"192.168.1.10", "255.255.255.0"}, {"172.16.5.10", "255.255.0.0"}});

  (void)Run([](QWidget& aDialog) {
    Type("77");

    ChooseByMouse(*Get<QComboBox>(aDialog, 1123), 0);

    EXPECT_EQ(GetAddress(aDialog, 1038), "192.168.1.77");
    Press(aDialog, Qt::Key_Escape);
  });
}

TEST_F(ForceIPDlgTest, AnotherAdapterAddress_IsCheckedOnceWithAllItsValues) {
  MakeSystem({{"192.168.1.10", "255.255.255.0"}, {"172.16.5.10", "255.255.0.0"}});

  (void)Run([](QWidget& aDialog) {
    std::vector<std::string> errors;
    ErrorWatch watch(*Get(aDialog, 1008), [&] { errors.push_back(GetError(aDialog, 1008)); });
    auto* addresses = Get<QComboBox>(aDialog, 1123);
    addresses->setFocus();
    QTest::keyClick(addresses, Qt::Key_Down);

    EXPECT_THAT(errors, testing::Each("")) << "the masks are the same in the end";
    EXPECT_FALSE(errors.empty());
    Press(aDialog, Qt::Key_Escape);
  });
}

// The marks.

TEST_F(ForceIPDlgTest, EveryKey_ChecksAtOnce) {
  MakeSystem();

  (void)Run([](QWidget& aDialog) {
    Type("1");
    EXPECT_EQ(GetError(aDialog, 1003), "");
    Type("0");
    EXPECT_EQ(GetError(aDialog, 1003), "The IP Address cannot be the same as the Interface!");
    Type("1");
    EXPECT_EQ(GetError(aDialog, 1003), "");
    Enter(aDialog, 1041, "255.0.255.0");
    EXPECT_EQ(GetError(aDialog, 1008), "Device Subnet Mask should match Interface Subnet Mask.");
    EXPECT_EQ(Get(aDialog, 1041)->accessibleDescription().toStdString(),
              "Device Subnet Mask should match Interface Subnet Mask.");
    Enter(aDialog, 1041, "0.0.0.0");
    EXPECT_EQ(GetError(aDialog, 1008), "");
    EXPECT_EQ(Get(aDialog, 1041)->accessibleDescription(), QString());
    Enter(aDialog, 1043, "10.0.0.1");
    EXPECT_EQ(GetError(aDialog, 1013), "Device Gateway does not match Interface Subnet.");
    Enter(aDialog, 1043, "0.0.0.0");
    EXPECT_EQ(GetError(aDialog, 1013), "");
    Press(aDialog, Qt::Key_Escape);
  });
}

// OK.

TEST_F(ForceIPDlgTest, GoodAddressAndEnter_SendsItAndEndsWithOK) {
  MakeSystem();

  const ModalResult result = Run([](QWidget& aDialog) {
    Type("20");
    Press(aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_THAT(transport->configured, testing::ElementsAre(kMAC, "192.168.1.20", "255.255.255.0", "192.168.1.1"));
}

TEST_F(ForceTolvanIPDlgTest, DeviceOfTheOlderProtocol_IsSentItsConfiguration) {
  MakeSystem();

  const ModalResult result = Run([](QWidget& aDialog) {
    EXPECT_EQ(GetEdit(aDialog, 1045), "00:aa:00:aa:00:aa");
    Type("21");
    QTest::mouseClick(Get(aDialog, 1), Qt::LeftButton);
  });

  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_THAT(transport->configured,
              testing::ElementsAre("00:aa:00:aa:00:aa", "192.168.1.21", "255.255.255.0", "192.168.1.1"));
}

TEST_F(ForceU3VIPDlgTest, DeviceWithoutAddress_IsRefusedAtOnce) {
  MakeSystem();
  ForceIPDlg dialog(*system, static_cast<const KrNetworkAdapter&>(*system->GetInterface(0)), *system->GetDeviceInfo(0),
                    &owner);

  EXPECT_EQ(dialog.Run(), ModalResult::Cancel);

  EXPECT_EQ(transport->asked, 0);
}

TEST_F(ForceIPDlgTest, DeviceThatDoesNotConfirm_EndsWithOKAllTheSameAndIsLogged) {
  MakeSystem();
  transport->configureResult = {KrResult::Code::NotFound, "Nobody confirmed."};
  const KrLogCapture log;

  const ModalResult result = Run([](QWidget& aDialog) {
    Type("20");
    Press(aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(result, ModalResult::OK);
  ASSERT_FALSE(log.GetRecords().empty());
  EXPECT_EQ(log.GetRecords().back().level, KrLogLevel::Warning);
  EXPECT_THAT(log.GetRecords().back().text.ToUtf8(), testing::HasSubstr(kMAC));
}

struct HardErrorCase {
  const char* name;
  const char* address;
  const char* text;
};

class ForceIPDlgHardError : public ForceIPDlgTest, public testing::WithParamInterface<HardErrorCase> {};

TEST_P(ForceIPDlgHardError, OK_IsRefusedWithItsTextAndKeepsTheValues) {
  MakeSystem();
  std::string text;

  const ModalResult result = Run([&](QWidget& aDialog) {
    Enter(aDialog, 1038, GetParam().address);
    AnswerBox(text, Qt::Key_Return);
    Press(aDialog, Qt::Key_Return);

    EXPECT_TRUE(aDialog.isVisible());
    EXPECT_EQ(GetAddress(aDialog, 1038), GetParam().address);
    Press(aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(text, GetParam().text);
  EXPECT_EQ(result, ModalResult::Cancel);
  EXPECT_EQ(transport->asked, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ForceIPDlgHardError,
    testing::Values(
        HardErrorCase{"SameAsInterface", "192.168.1.10",
                      "[Error] Error: Cannot assign the same IP Address as the Interface!"},
        HardErrorCase{
            "Multicast", "230.1.1.1",
            "[Error] Error: IP addresses in the 224.*.*.* to 255.*.*.* range cannot be assigned to a device."},
        HardErrorCase{"Network", "192.168.1.0",
                      "[Error] Error: Cannot assign the device IP Address to be the same as its subnet!"}),
    [](const auto& aInfo) { return aInfo.param.name; });

constexpr const char* kQuestion = "[Warning] Warning: This IP Configuration may be incompatible with your Interface "
                                  "settings or simply invalid.\n\nAre you "
                                  "sure you want to continue?";

TEST_F(ForceIPDlgTest, DoubtfulAddressAndYes_IsSent) {
  MakeSystem();
  std::string text;

  const ModalResult result = Run([&](QWidget& aDialog) {
    Enter(aDialog, 1038, "10.0.0.5");
    EXPECT_EQ(GetError(aDialog, 1003), "Device IP Address does not match Interface Subnet.");
    AnswerBox(text, Qt::Key_Y);
    Press(aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(text, kQuestion);
  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_THAT(transport->configured, testing::ElementsAre(kMAC, "10.0.0.5", "255.255.255.0", "192.168.1.1"));
}

TEST_F(ForceIPDlgTest, DoubtfulAddressAndAnythingButYes_LeavesTheDialogOpen) {
  MakeSystem();

  for (const Qt::Key key : {Qt::Key_N, Qt::Key_Escape}) {
    std::string text;
    const ModalResult result = Run([&](QWidget& aDialog) {
      Enter(aDialog, 1038, "10.0.0.5");
      AnswerBox(text, key);
      Press(aDialog, Qt::Key_Return);
      EXPECT_TRUE(aDialog.isVisible());
      Press(aDialog, Qt::Key_Escape);
    });

    EXPECT_EQ(text, kQuestion);
    EXPECT_EQ(result, ModalResult::Cancel);
  }
  EXPECT_EQ(transport->asked, 0);
}

TEST_F(ForceIPDlgTest, DoubtfulAddressAndTheQuestionsCloseBox_LeavesTheDialogOpen) {
  MakeSystem();
  std::string text;

  const ModalResult result = Run([&](QWidget& aDialog) {
    Enter(aDialog, 1038, "10.0.0.5");
    DuringNextModalLoop([&](QWidget& aBox) {
      text = ReadBox(aBox);
      aBox.close();
    });
    Press(aDialog, Qt::Key_Return);
    EXPECT_TRUE(aDialog.isVisible());
    Press(aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(text, kQuestion);
  EXPECT_EQ(result, ModalResult::Cancel);
  EXPECT_EQ(transport->asked, 0);
}

TEST_F(ForceIPDlgTest, EnterThatIsHeldDown_DoesNotAnswerTheQuestion) {
  MakeSystem();

  const ModalResult result = Run([&](QWidget& aDialog) {
    Enter(aDialog, 1038, "10.0.0.5");
    DuringNextModalLoop([&](QWidget& aBox) {
      for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        Press(aBox, key, true);
      }
      EXPECT_TRUE(aBox.isVisible());
      Press(aBox, Qt::Key_Escape);
    });
    Press(aDialog, Qt::Key_Return);
    Press(aDialog, Qt::Key_Return, true);
    EXPECT_EQ(QApplication::activeModalWidget(), &aDialog) << "it asks no second time";
    Press(aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(result, ModalResult::Cancel);
  EXPECT_EQ(transport->asked, 0);
}

TEST_F(ForceIPDlgTest, NoMask_PassesTheSubnetRules) {
  MakeSystem();

  const ModalResult result = Run([](QWidget& aDialog) {
    Enter(aDialog, 1041, "0.0.0.0");
    Enter(aDialog, 1038, "192.168.1.20");
    Press(aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_THAT(transport->configured, testing::ElementsAre(kMAC, "192.168.1.20", "0.0.0.0", "192.168.1.1"));
}

struct OtherDeviceCase {
  const char* name;
  krsystem::AnyDeviceFields device;
  bool isTaken; ///< 192.168.1.20.
};

krsystem::AnyDeviceFields MakeOlderCamera(const char* aMAC, const char* aAddress) {
  krsystem::TolvanProtocolFields fields;
  fields.uniqueID = aMAC;
  fields.macAddress = aMAC;
  fields.ipAddress = aAddress;
  return fields;
}

krsystem::AnyDeviceFields MakeCameraOnAnotherAdapter(const char* aAddress) {
  krsystem::GEVFields fields = MakeCamera("another ID", aAddress);
  fields.macAddress = kMAC;
  return fields;
}

class ForceIPDlgOtherDevice : public ForceIPDlgTest, public testing::WithParamInterface<OtherDeviceCase> {};

TEST_P(ForceIPDlgOtherDevice, AddressOfAnother_IsMarkedAndAskedFor) {
  MakeSystem();
  transport->answers.emplace_back(0, GetParam().device);
  ASSERT_TRUE(system->Find().IsOK());
  ASSERT_EQ(system->GetDeviceCount(), 2U);
  std::string text;

  const ModalResult result = Run([&](QWidget& aDialog) {
    Type("20");
    EXPECT_EQ(GetError(aDialog, 1003), GetParam().isTaken ? "Another device has this IP Address." : "");
    Enter(aDialog, 1038, "192.168.1.21");
    EXPECT_EQ(GetError(aDialog, 1003), "");
    Enter(aDialog, 1038, "192.168.1.20");
    if (GetParam().isTaken) {
      AnswerBox(text, Qt::Key_Y);
    }
    Press(aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(text, GetParam().isTaken ? kQuestion : "");
  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_EQ(transport->asked, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ForceIPDlgOtherDevice,
    testing::Values(OtherDeviceCase{"Camera", MakeCamera("00:aa:00:aa:00:aa", "192.168.1.20"), true},
                    OtherDeviceCase{"OlderCamera", MakeOlderCamera("00:aa:00:aa:00:aa", "192.168.1.20"), true},
                    OtherDeviceCase{"AnotherAddress", MakeCamera("00:aa:00:aa:00:aa", "192.168.1.19"), false},
                    OtherDeviceCase{"ItselfOnAnotherAdapter", MakeCameraOnAnotherAdapter("192.168.1.20"), false},
                    OtherDeviceCase{"USBCamera", krsystem::U3VFields{}, false}),
    [](const auto& aInfo) { return aInfo.param.name; });

// Keys.

TEST_F(ForceIPDlgTest, TabKey_StopsOnceAtEachAddress) {
  MakeSystem();

  (void)Run([](QWidget& aDialog) {
    const auto find = [&] {
      QWidget* focused = QApplication::focusWidget();
      return qobject_cast<IPAddressControl*>(focused->parentWidget()) != nullptr
                 ? focused->parentWidget()->property("controlID").toInt()
                 : focused->property("controlID").toInt();
    };
    std::vector<int> forwards;
    for (int step = 0; step < 7; ++step) {
      forwards.push_back(find());
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(forwards, testing::ElementsAre(1038, 1041, 1043, 1140, 1, 2, 1037));
    EXPECT_EQ(find(), 1123);
    std::vector<int> backwards;
    for (int step = 0; step < 7; ++step) {
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
      backwards.push_back(find());
    }
    EXPECT_THAT(backwards, testing::ElementsAre(1037, 2, 1, 1140, 1043, 1041, 1038));
    Press(aDialog, Qt::Key_Escape);
  });
}

} // namespace

} // namespace krgui
