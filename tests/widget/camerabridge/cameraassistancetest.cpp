// What assistive technology does with the camera bridge manager's controls: no click, and at any time.

#include "camerawaitingfixture.h"

#include <QAccessible>

namespace krgui {

namespace {

class Assistance : public WaitingTest {
protected:
  static void Do(QWidget& aControl, const QString& aAction) {
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&aControl);
    ASSERT_NE(interface, nullptr);
    ASSERT_NE(interface->actionInterface(), nullptr);
    ASSERT_TRUE(interface->actionInterface()->actionNames().contains(aAction)) << aAction.toStdString();
    interface->actionInterface()->doAction(aAction);
  }
  void Toggle(int aID) const { Do(Get(aID), QAccessibleActionInterface::toggleAction()); }
  void Press(int aID) const { Do(Get(aID), QAccessibleActionInterface::pressAction()); }
};

} // namespace

TEST_F(Assistance, KindThatIsToggled_IsChosen) {
  Open();

  Toggle(id::kGenCP);

  EXPECT_TRUE(IsChecked(id::kGenCP));
  EXPECT_FALSE(GetEntries(id::kGenCPXML).empty());

  Press(id::kGenCPConnect);
  EXPECT_TRUE(WaitFor([this] { return HasParameters(); }));

  Toggle(id::kNone);
  EXPECT_FALSE(GetBridge(0).IsConnected());
  EXPECT_TRUE(IsChecked(id::kNone));
}

TEST_F(Assistance, BoxesThatAreToggled_Switch) {
  Open();
  bool isPoCLOn = true;

  Toggle(id::kSynchronization);
  Toggle(id::kPoCL);

  EXPECT_TRUE(GetBridge(0).GetParametersSyncEnabled());
  ASSERT_TRUE(mDevice->GetParameters()->GetBoolean("PoclEnable")->GetValue(isPoCLOn).IsOK());
  EXPECT_FALSE(isPoCLOn);
  EXPECT_FALSE(IsChecked(id::kPoCL));
}

TEST_F(Assistance, WhatIsDoneWhileACameraIsAsked_IsTakenBack) {
  Open();
  Click(id::kGenCP);

  WhileItWaits([this](QWidget&) {
    Toggle(id::kNone);
    Toggle(id::kSynchronization);
    Pick(id::kDevicePort, "Serial1");
    Pick(id::kSource, "Source1");
    Press(id::kGenCPConnect);
    EXPECT_TRUE(IsChecked(id::kGenCP));
    EXPECT_FALSE(IsChecked(id::kSynchronization));
    EXPECT_EQ(GetText(id::kDevicePort), "Serial0");
    EXPECT_EQ(Get<QComboBox>(id::kSource).currentIndex(), -1);
    mClock->SetStopped(false);
  });
  Click(id::kGenCPConnect);

  EXPECT_EQ(mWaits, 1);
  EXPECT_TRUE(GetBridge(0).IsConnected());
  EXPECT_TRUE(HasParameters());
  EXPECT_EQ(GetText(id::kGenCPStatus), MakeStatus(0));
  EXPECT_FALSE(GetBridge(0).GetParametersSyncEnabled());
  EXPECT_STREQ(GetBridge(0).GetSource().CStr(), "");
}

} // namespace krgui
