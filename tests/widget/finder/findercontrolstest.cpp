// The device finder's controls: which there are, where, what they say, and what the keyboard does with them.

#include "finderfixture.h"

#include "logic/frame/dialoglayout.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>

#include <algorithm>
#include <cmath>

namespace krgui {

namespace {

struct ControlRow {
  int id;
  const char* text;
  UnitRect rect;
};

constexpr ControlRow kControls[] = {
    {1, "OK", {425, 342, 50, 16}},
    {2, "Cancel", {478, 342, 50, 16}},
    {1034, "Available Devices", {7, 7, 205, 8}},
    {1035, "Interface Information", {307, 7, 221, 8}},
    {1036, "Device Information", {307, 100, 221, 8}},
    {1049, "", {7, 19, 296, 302}},
    {1002, "Set IP Address...", {7, 342, 104, 16}},
    {1030, "", {307, 19, 221, 80}},
    {1033, "", {307, 111, 221, 210}},
    {1040, "Show unreachable Network Devices", {7, 324, 130, 10}},
    {1011, "Select from IP Address...", {115, 342, 104, 16}},
    {1139, "Why is my camera not here?", {380, 322, 148, 16}},
};

QString GetText(const QWidget& aControl) {
  if (const auto* label = qobject_cast<const QLabel*>(&aControl))
    return label->text();
  const auto* button = qobject_cast<const QAbstractButton*>(&aControl);
  return button ? button->text() : QString();
}

/// Where a style draws a button's text.
QRect GetTextRect(const QAbstractButton& aButton) {
  QStyleOptionButton option;
  option.initFrom(&aButton);
  const bool isBox = qobject_cast<const QCheckBox*>(&aButton) != nullptr;
  return aButton.style()->subElementRect(isBox ? QStyle::SE_CheckBoxContents : QStyle::SE_PushButtonContents, &option,
                                         &aButton);
}

/// The texts of the buttons that lack room for them, or share it with another.
QStringList FindCutButtons(const QWidget& aFinder) {
  QStringList cut;
  const auto buttons = aFinder.findChildren<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
  for (const QAbstractButton* const button : buttons) {
    const bool isCovered = std::ranges::any_of(buttons, [button](const QAbstractButton* aOther) {
      return aOther != button && aOther->geometry().intersects(button->geometry());
    });
    const int width = button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width();
    if (isCovered || GetTextRect(*button).width() < width || !aFinder.rect().contains(button->geometry()))
      cut += button->text();
  }
  return cut;
}

} // namespace

TEST_F(DeviceFinderTest, Controls_StandInTheTemplateWithTheirTexts) {
  const DialogTemplate& finder = *FindTemplate(1504);

  EXPECT_EQ(finder.controls.size(), std::size(kControls));
  Open({});
  for (const ControlRow& row : kControls) {
    const auto found = std::find_if(finder.controls.begin(), finder.controls.end(),
                                    [&row](const ControlTemplate& aControl) { return aControl.id == row.id; });
    ASSERT_NE(found, finder.controls.end()) << row.id;
    EXPECT_EQ(std::tie(found->rect.x, found->rect.y, found->rect.width, found->rect.height),
              std::tie(row.rect.x, row.rect.y, row.rect.width, row.rect.height))
        << row.id;
    EXPECT_EQ(GetText(*mFinder.GetControl(row.id)), row.text) << row.id;
    EXPECT_TRUE(mFinder.GetControl(row.id)->isVisible()) << row.id;
  }
}

TEST_F(DeviceFinderTest, Captions_AreBold) {
  Open({});

  for (const int id : {1034, 1035, 1036})
    EXPECT_EQ(mFinder.GetControl(id)->font().weight(), QFont::Bold) << id;
  EXPECT_EQ(mFinder.GetControl(kFinderOKID)->font().weight(), QFont::Normal);
}

TEST_F(DeviceFinderTest, NothingSelected_LeavesOnlyWhatNeedsNoDevice) {
  Open({});

  EXPECT_FALSE(mFinder.IsEnabled(kFinderOKID));
  EXPECT_FALSE(mFinder.IsEnabled(kFinderSetIPID));
  EXPECT_TRUE(mFinder.IsEnabled(kFinderCancelID));
  EXPECT_TRUE(mFinder.IsEnabled(kFinderSelectFromIPID));
  EXPECT_TRUE(mFinder.IsEnabled(kFinderUnreachableID));
  EXPECT_TRUE(mFinder.IsEnabled(kFinderDiagnoseID));
  EXPECT_FALSE(mFinder.Get<QCheckBox>(kFinderUnreachableID).isChecked());
  EXPECT_TRUE(mFinder.Get<QPushButton>(kFinderOKID).isDefault());
}

TEST_F(DeviceFinderTest, Lists_HaveNamesAndValuesThatShareTheirWidth) {
  Open({});

  const int width = mFinder.GetInterfaceList().contentsRect().width();
  for (const QTreeWidget* list : {&mFinder.GetInterfaceList(), &mFinder.GetDeviceList()}) {
    EXPECT_EQ(list->columnCount(), 2);
    EXPECT_EQ(list->headerItem()->text(0), "Name");
    EXPECT_EQ(list->headerItem()->text(1), "Value");
    EXPECT_EQ(list->header()->sectionSize(0), std::lround(0.4 * width));
    EXPECT_EQ(list->header()->sectionSize(1), std::lround(0.6 * width));
    EXPECT_EQ(list->selectionBehavior(), QAbstractItemView::SelectRows);
    EXPECT_EQ(list->topLevelItemCount(), 0);
  }
}

TEST_F(DeviceFinderTest, TreeAndLists_AreCalledByTheirCaptionsForThoseWhoDoNotSee) {
  Open({});

  EXPECT_EQ(mFinder.GetTree().accessibleName(), "Available Devices");
  EXPECT_EQ(mFinder.GetInterfaceList().accessibleName(), "Interface Information");
  EXPECT_EQ(mFinder.GetDeviceList().accessibleName(), "Device Information");
}

TEST_F(DeviceFinderTest, Focus_StartsAtTheTreeAndGoesOnInReadingOrder) {
  Open({});
  QWidget& window = *mFinder.GetWidget();
  EXPECT_EQ(window.focusWidget(), &mFinder.GetTree());

  std::vector<int> order;
  for (QWidget* next = &mFinder.GetTree(); order.empty() || next != &mFinder.GetTree();) {
    if (const QVariant id = next->property("controlID"); id.isValid() && next->focusPolicy() != Qt::NoFocus)
      order.push_back(id.toInt());
    next = next->nextInFocusChain();
  }

  EXPECT_EQ(order, (std::vector<int>{1049, 1030, 1033, 1040, 1139, 1002, 1011, 1, 2}));
}

TEST_F(DeviceFinderTest, EmbeddedFinder_DoesNotTakeTheFocusFromWhatSurroundsIt) {
  QWidget host;
  host.resize(820, 640);
  QPushButton other("Other", &host);
  host.show();
  other.setFocus();

  ASSERT_TRUE(mFinder.CreateIn(&host).IsOK());

  EXPECT_EQ(host.focusWidget(), &other);
}

TEST_F(DeviceFinderTest, NetworkNotListed_HidesWhatIsForTheNetworkAlone) {
  mFinder.GetKinds().gev.listed = false;
  mFinder.GetKinds().tolvanProtocol.listed = false;
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddInterface(MakeFinderController());
  Open({"xHCI host controller"});

  EXPECT_FALSE(mFinder.GetControl(kFinderSetIPID)->isVisible());
  EXPECT_FALSE(mFinder.GetControl(kFinderUnreachableID)->isVisible());
  EXPECT_TRUE(mFinder.GetControl(kFinderSelectFromIPID)->isVisible());
  EXPECT_EQ(mFinder.GetTree().topLevelItemCount(), 1);
}

TEST_F(DeviceFinderTest, OneNetworkKindListed_KeepsWhatIsForTheNetwork) {
  mFinder.GetKinds().gev.listed = false;
  mTransport->AddInterface(MakeFinderAdapter());
  Open({"eth0 192.168.1.10"});

  EXPECT_TRUE(mFinder.GetControl(kFinderSetIPID)->isVisible());
  EXPECT_TRUE(mFinder.GetControl(kFinderUnreachableID)->isVisible());
}

TEST_F(DeviceFinderTest, USB3VisionNotListed_LeavesOutHostControllersAndTheirDevices) {
  mFinder.GetKinds().u3v.listed = false;
  mTransport->AddInterface(MakeFinderController());
  mTransport->AddInterface(MakeFinderAdapter());
  mTransport->AddDevice("usb1", MakeUSBCamera());
  mTransport->AddDevice("eth0", MakeFinderCamera());
  Open({"Camera A"});

  EXPECT_EQ(mFinder.GetTree().topLevelItemCount(), 1);
  EXPECT_EQ(mFinder.FindItem("USB camera"), nullptr);
}

TEST_F(DeviceFinderTest, SmallerWindow_TakesFromTheTreeAndKeepsListsAndButtonsWhole) {
  Open({});
  const QSize lists = mFinder.GetInterfaceList().size();

  mFinder.SetPosition(0, 0, 620, 400);

  const QRect client = mFinder.GetWidget()->rect();
  EXPECT_EQ(mFinder.GetInterfaceList().size(), lists);
  for (const ControlRow& row : kControls)
    EXPECT_TRUE(client.contains(mFinder.GetControl(row.id)->geometry())) << row.id;
  EXPECT_LT(mFinder.GetTree().geometry().right(), mFinder.GetInterfaceList().geometry().left());
  const QRect diagnose = mFinder.GetControl(kFinderDiagnoseID)->geometry();
  EXPECT_LT(mFinder.GetControl(kFinderUnreachableID)->geometry().right(), diagnose.left());
  EXPECT_LT(mFinder.GetInterfaceList().geometry().bottom(), diagnose.top());
  EXPECT_LT(diagnose.bottom(), mFinder.GetControl(kFinderOKID)->geometry().top());
}

TEST_F(DeviceFinderTest, SmallestWindow_CutsNoButtonWhateverItsLetters) {
  const QFont former = QApplication::font();
  int least = 0;
  for (const int points : {9, 12}) {
    QApplication::setFont({"DejaVu Sans", points});
    Open({});

    mFinder.SetPosition(0, 0, 1, 1);

    EXPECT_EQ(FindCutButtons(*mFinder.GetWidget()).join(", "), "") << points;
    EXPECT_GT(mFinder.GetWidget()->width(), least) << points;
    least = mFinder.GetWidget()->width();
    ASSERT_TRUE(mFinder.Close().IsOK());
  }
  QApplication::setFont(former);
}

TEST_F(DeviceFinderTest, Discovery_IsGivenASecondAndStaysWithinTheSubnet) {
  Open({});

  ASSERT_TRUE(AwaitRounds(0));

  EXPECT_EQ(mTransport->GetTimeoutMs(), 1000u);
  EXPECT_TRUE(mTransport->WasSubnetBroadcast());
}

TEST_F(DeviceFinderTest, UnreachableDevicesWanted_MakeDiscoveryAskEverybodyForAsLong) {
  Open({});

  Click(kFinderUnreachableID);
  EXPECT_TRUE(WaitFor([&] { return !mTransport->WasSubnetBroadcast(); }));

  Click(kFinderUnreachableID);
  EXPECT_TRUE(WaitFor([&] { return mTransport->WasSubnetBroadcast(); }));
}

} // namespace krgui
