// The dialog that sets a device's IP address, on an adapter with two addresses: the one that is chosen counts.

#include "controlhands.h"
#include "forceipdlgfixture.h"

namespace krgui {

namespace {

class ForceIPDlgChoice : public ForceIPDlgTest {
protected:
  /// Makes an adapter with two addresses, chooses the second, types the device's, and presses Enter.
  ModalResult RunWithSecondOf(const char* aDeviceAddress, Qt::Key aAnswer) {
    MakeSystem({{"192.168.1.10", "255.255.255.0"}, {"172.16.5.10", "255.255.0.0"}});
    return Run([&](QWidget& aDialog) {
      auto* addresses = Get<QComboBox>(aDialog, 1123);
      addresses->setFocus();
      QTest::keyClick(addresses, Qt::Key_Down);
      Enter(aDialog, 1038, aDeviceAddress);
      mError = GetError(aDialog, 1003);
      AnswerBox(mBox, aAnswer);
      Press(aDialog, Qt::Key_Return);
      // Where it is still open.
      if (aAnswer == Qt::Key_Return) {
        Press(aDialog, Qt::Key_Escape);
      }
    });
  }

  std::string mError;
  std::string mBox;
};

TEST_F(ForceIPDlgChoice, AddressOfTheChosenEntry_IsRefusedAsTheInterfacesOwn) {
  const ModalResult result = RunWithSecondOf("172.16.5.10", Qt::Key_Return);

  EXPECT_EQ(mError, "The IP Address cannot be the same as the Interface!");
  EXPECT_EQ(mBox, "[Error] Error: Cannot assign the same IP Address as the Interface!");
  EXPECT_EQ(result, ModalResult::Cancel);
  EXPECT_EQ(transport->asked, 0);
}

TEST_F(ForceIPDlgChoice, AddressOfTheOtherEntry_IsOnlyAskedFor) {
  const ModalResult result = RunWithSecondOf("192.168.1.10", Qt::Key_Y);

  EXPECT_EQ(mError, "Device IP Address does not match Interface Subnet.");
  EXPECT_TRUE(mBox.starts_with("[Warning] Warning: This IP Configuration may be incompatible")) << mBox;
  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_THAT(transport->configured, testing::ElementsAre(kMAC, "192.168.1.10", "255.255.0.0", "192.168.1.1"));
}

TEST_F(ForceIPDlgChoice, Wheel_ChoosesNoOtherEntry) {
  MakeSystem({{"192.168.1.10", "255.255.255.0"}, {"172.16.5.10", "255.255.0.0"}});

  const ModalResult result = Run([&](QWidget& aDialog) {
    auto* addresses = Get<QComboBox>(aDialog, 1123);
    EXPECT_FALSE(krtest::TurnWheel(*addresses, false));
    EXPECT_EQ(addresses->currentIndex(), 0);
    Press(aDialog, Qt::Key_Escape);
  });

  EXPECT_EQ(result, ModalResult::Cancel);
}

} // namespace

} // namespace krgui
