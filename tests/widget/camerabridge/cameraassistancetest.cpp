// What assistive technology does with the camera bridge manager's controls: no click, and at any time.

#include "camerawaitingfixture.h"
#include "controlhands.h"

namespace krgui {

namespace {

class Assistance : public WaitingTest {
protected:
  void Toggle(int aID) const { krtest::ToggleAccessibly(Get(aID)); }
  void Press(int aID) const { krtest::DoAccessibly(Get(aID), QAccessibleActionInterface::pressAction()); }
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
