// The finder's information lists: whose rows they show, in which colours, and what they leave alone.

#include "finderfixture.h"
#include "logic/finder/accessmemory.h"
#include "platform/contrast.h"

#include <QClipboard>
#include <QScrollBar>

#include <chrono>
#include <optional>

namespace krgui {

namespace {

QColor GetColourBehindValue(QTreeWidget& aList, const QString& aName) {
  const QTreeWidgetItem* item = aList.findItems(aName, Qt::MatchExactly, 0).value(0);
  const QRect row = aList.visualItemRect(item);
  const QImage picture = aList.viewport()->grab().toImage();
  const double scale = picture.devicePixelRatio();
  // Near the value's right end there is no text; the last line is the grid's.
  const QPoint point = QPointF((aList.viewport()->width() - 6) * scale, (row.top() + 2) * scale).toPoint();
  return picture.pixelColor(point);
}

/// The pixel of a value's text that differs most from its background.
QColor FindTextColour(QTreeWidget& aList, const QString& aName) {
  const QTreeWidgetItem* item = aList.findItems(aName, Qt::MatchExactly, 0).value(0);
  const QRect row = aList.visualItemRect(item).adjusted(aList.columnWidth(0) + 2, 1, -2, -2);
  const QImage picture = aList.viewport()->grab(row).toImage();
  const QColor background = GetColourBehindValue(aList, aName);
  QColor found = background;
  int most = 0;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x) {
      const int difference = std::abs(picture.pixelColor(x, y).lightness() - background.lightness());
      if (difference > most) {
        most = difference;
        found = picture.pixelColor(x, y);
      }
    }
  return found;
}

} // namespace

class DeviceListsTest : public DeviceFinderTest {
protected:
  void SetUp() override {
    mTransport->AddInterface(MakeFinderAdapter());
    mTransport->AddDevice("eth0", MakeFinderCamera());
  }
};

TEST_F(DeviceListsTest, SelectedInterface_ShowsItsRowsAndNoDevice) {
  Open({"Camera A"});

  Select("eth0 192.168.1.10");

  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetInterfaceList(), "IP Address"), "192.168.1.10");
  EXPECT_EQ(mFinder.GetDeviceList().topLevelItemCount(), 0);
  EXPECT_FALSE(mFinder.IsEnabled(kFinderOKID));
  EXPECT_FALSE(mFinder.IsEnabled(kFinderSetIPID));
}

TEST_F(DeviceListsTest, SelectedDevice_ShowsItsRowsAndThoseOfItsInterface) {
  Open({"Camera A"});

  Select("Camera A");

  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetInterfaceList(), "MAC"), "00:11:22:33:44:01");
  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "MAC"), "00:11:22:33:44:a1");
  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "IP"), "192.168.1.20");
}

TEST_F(DeviceListsTest, SelectedRow_CanBeReadWhereTheThemesOwnTextCannot) {
  Open({"Camera A"});
  Select("Camera A");
  QTreeWidget& list = mFinder.GetDeviceList();
  const QColor ground(0x30, 0x8C, 0xC6);
  QPalette palette = list.palette();
  palette.setColor(QPalette::Highlight, ground);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  list.setPalette(palette);
  ASSERT_LT(GetContrast(Qt::white, ground), kLeastContrast);

  list.setCurrentItem(list.findItems("Model", Qt::MatchExactly, 0).value(0));

  ASSERT_EQ(GetColourBehindValue(list, "Model"), ground);
  EXPECT_GE(GetContrast(FindTextColour(list, "Model"), ground), kLeastContrast);
}

TEST_F(DeviceListsTest, NothingSelectedAnyMore_EmptiesBothLists) {
  Open({"Camera A"});
  Select("Camera A");

  mFinder.GetTree().setCurrentItem(nullptr);

  EXPECT_EQ(mFinder.GetInterfaceList().topLevelItemCount(), 0);
  EXPECT_EQ(mFinder.GetDeviceList().topLevelItemCount(), 0);
  EXPECT_FALSE(mFinder.IsEnabled(kFinderOKID));
  EXPECT_FALSE(mFinder.IsEnabled(kFinderSetIPID));
}

TEST_F(DeviceListsTest, AccessStatus_IsAskedForTheSelectedDeviceAloneAndStaysThroughRounds) {
  mTransport->SetAccessType(krsystem::AccessType::Control);
  Open({"Camera A"});
  ASSERT_EQ(mTransport->GetAccessCount(), 0u);

  Select("Camera A");

  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Access Status"), "Control");
  EXPECT_GE(mTransport->GetAccessCount(), 1u);

  // Each round fills the rows anew; the user must not see the status fall back.
  bool hasFallenBack = false;
  QObject::connect(mFinder.GetDeviceList().model(), &QAbstractItemModel::dataChanged, &mHand, [&] {
    hasFallenBack |= TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Access Status") != "Control";
  });
  const std::size_t asked = mTransport->GetAccessCount();
  ASSERT_TRUE(WaitFor([&] { return mTransport->GetAccessCount() > asked; }));
  EXPECT_FALSE(hasFallenBack);
}

TEST_F(DeviceListsTest, AccessStatusThatChanges_IsShownAfterTheNextRound) {
  Open({"Camera A"});
  Select("Camera A");
  ASSERT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Access Status"), "Open");

  mTransport->SetAccessType(krsystem::AccessType::Exclusive);

  EXPECT_TRUE(
      WaitFor([&] { return TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Access Status") == "Exclusive"; }));
}

TEST_F(DeviceListsTest, DeviceThatDoesNotSayWhoControlsIt_IsNotAskedAgainByEachRound) {
  const auto begin = std::chrono::steady_clock::now();
  mTransport->SetAccessType(std::nullopt);
  krsystem::GEVFields camera = MakeFinderCamera();
  Open({"Camera A"});
  Select("Camera A");
  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Access Status"), "Unknown");

  for (const char* name : {"Left", "Right"}) {
    camera.userDefinedName = name;
    mTransport->SetDevices({{"eth0", camera}});
    ASSERT_TRUE(
        WaitFor([&] { return TestFinderWnd::FindValue(mFinder.GetDeviceList(), "User Defined Name") == name; }));
  }

  const std::size_t asked = mTransport->GetAccessCount();
  const auto silences = (std::chrono::steady_clock::now() - begin) / AccessMemory::kSilence;
  EXPECT_LE(asked, static_cast<std::size_t>(1 + silences));
  EXPECT_EQ(TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Access Status"), "Unknown");
}

TEST_F(DeviceListsTest, SilentDeviceSelectedAnew_IsAskedAgain) {
  mTransport->SetAccessType(std::nullopt);
  Open({"Camera A"});
  Select("Camera A");
  mTransport->SetAccessType(krsystem::AccessType::Control);

  mFinder.GetTree().setCurrentItem(nullptr);
  Select("Camera A");

  EXPECT_TRUE(WaitFor([&] { return TestFinderWnd::FindValue(mFinder.GetDeviceList(), "Access Status") == "Control"; }));
}

TEST_F(DeviceListsTest, OneChangedValue_ChangesOneCellAndKeepsWhereTheListIsScrolledTo) {
  krsystem::GEVFields camera = MakeFinderCamera();
  mTransport->SetDevices({{"eth0", camera}});
  Open({"Camera A"});
  Select("Camera A");
  QTreeWidget& list = mFinder.GetDeviceList();
  mFinder.SetPosition(0, 0, 800, 450);
  list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum());
  const int scrolledTo = list.verticalScrollBar()->value();
  ASSERT_GT(scrolledTo, 0);
  std::vector<std::pair<int, int>> changed;
  QObject::connect(
      list.model(), &QAbstractItemModel::dataChanged, &mHand,
      [&](const QModelIndex& aFirst, const QModelIndex&) { changed.emplace_back(aFirst.row(), aFirst.column()); });

  camera.userDefinedName = "Left";
  mTransport->SetDevices({{"eth0", camera}});

  ASSERT_TRUE(WaitFor([&] { return TestFinderWnd::FindValue(list, "User Defined Name") == "Left"; }));
  const int row = list.indexOfTopLevelItem(list.findItems("User Defined Name", Qt::MatchExactly, 0).value(0));
  EXPECT_EQ(changed, (std::vector<std::pair<int, int>>{{row, 1}}));
  EXPECT_EQ(list.verticalScrollBar()->value(), scrolledTo);
}

TEST_F(DeviceListsTest, ShorterRows_TakeTheSurplusItemsAway) {
  mTransport->AddDevice("eth0", MakeOldDevice());
  Open({"Camera A", "Old device"});
  Select("Camera A");
  ASSERT_EQ(mFinder.GetDeviceList().topLevelItemCount(), 16);

  Select("Old device");

  EXPECT_EQ(mFinder.GetDeviceList().topLevelItemCount(), 10);
  EXPECT_EQ(mFinder.GetDeviceList().topLevelItem(9)->text(0), "Software Minor");
}

TEST_F(DeviceListsTest, Values_StandOnTheirColours) {
  krsystem::GEVFields foreign = MakeForeignCamera();
  foreign.subnetMask = "0.0.0.0";
  mTransport->AddDevice("eth0", foreign);
  Open({"Camera A"});
  Click(kFinderUnreachableID);
  ASSERT_TRUE(AwaitItem("Foreign"));

  Select("Foreign");

  QTreeWidget& list = mFinder.GetDeviceList();
  EXPECT_EQ(GetColourBehindValue(list, "IP"), QColor(255, 255, 255));
  EXPECT_EQ(GetColourBehindValue(list, "Subnet Mask"), QColor(255, 255, 0));
  EXPECT_EQ(GetColourBehindValue(list, "IP Configuration"), QColor(208, 0, 0));
  EXPECT_EQ(FindTextColour(list, "IP Configuration"), QColor(255, 255, 255));
  EXPECT_LT(FindTextColour(list, "IP").lightness(), 100);
}

TEST_F(DeviceListsTest, Rows_StandInAGrid) {
  Open({"Camera A"});
  Select("Camera A");
  QTreeWidget& list = mFinder.GetDeviceList();
  const QRect row = list.visualItemRect(list.findItems("MAC", Qt::MatchExactly, 0).value(0));
  const QImage picture = list.viewport()->grab().toImage();
  const double scale = picture.devicePixelRatio();
  const auto scaled = [scale](int aLength) { return static_cast<int>(aLength * scale); };
  // Behind the name there is no text, and no line within the cell.
  const int x = scaled(list.columnWidth(0) - 8);
  const int y = scaled(row.top() + 3);
  const QColor ground = picture.pixelColor(x, y);
  bool isLineBelow = false;
  bool isLineBeside = false;

  for (int below = scaled(row.bottom() - 1); below < scaled(row.bottom() + 1); ++below)
    isLineBelow |= picture.pixelColor(x, below) != ground;
  for (int beside = scaled(list.columnWidth(0) - 2); beside < scaled(list.columnWidth(0)); ++beside)
    isLineBeside |= picture.pixelColor(beside, y) != ground;

  EXPECT_TRUE(isLineBelow);
  EXPECT_TRUE(isLineBeside);
}

TEST_F(DeviceListsTest, DarkTheme_KeepsTextOnLightColoursDark) {
  QPalette dark = QApplication::palette();
  dark.setColor(QPalette::Base, QColor(30, 30, 30));
  dark.setColor(QPalette::Text, QColor(240, 240, 240));
  Open({"Camera A"});
  Select("Camera A");
  QTreeWidget& list = mFinder.GetDeviceList();

  list.setPalette(dark);

  EXPECT_EQ(GetColourBehindValue(list, "IP"), QColor(255, 255, 255));
  EXPECT_LT(FindTextColour(list, "IP").lightness(), 100);
  EXPECT_EQ(GetColourBehindValue(list, "MAC"), QColor(30, 30, 30));
  EXPECT_GT(FindTextColour(list, "MAC").lightness(), 150);
}

TEST_F(DeviceListsTest, LongValue_MakesTheValueColumnAsWideAsItNeeds) {
  krsystem::GEVFields camera = MakeFinderCamera();
  camera.manufacturerInfo = "A very long text that no list of this width can show without being scrolled sideways";
  mTransport->SetDevices({{"eth0", camera}});
  Open({"Camera A"});

  Select("Camera A");

  QTreeWidget& list = mFinder.GetDeviceList();
  const int needed = list.fontMetrics().horizontalAdvance(QString::fromUtf8(camera.manufacturerInfo.CStr()));
  EXPECT_GE(list.columnWidth(1), needed);
  EXPECT_TRUE(WaitFor([&] { return list.horizontalScrollBar()->maximum() > 0; }));
}

TEST_F(DeviceListsTest, MoreRowsThanRoom_MakeRoomForTheScrollBarBesideThem) {
  mTransport->SetDevices({{"eth0", MakeFinderCamera()}});
  Open({"Camera A"});
  mFinder.SetPosition(0, 0, 800, 450);

  Select("Camera A");

  QTreeWidget& list = mFinder.GetDeviceList();
  ASSERT_TRUE(WaitFor([&] { return list.verticalScrollBar()->isVisible(); }));
  EXPECT_TRUE(WaitFor([&] { return list.horizontalScrollBar()->maximum() == 0; }));
}

TEST_F(DeviceListsTest, CopyKey_PutsNameAndValueOfTheSelectedRowOntoTheClipboard) {
  Open({"Camera A"});
  Select("Camera A");
  QTreeWidget& list = mFinder.GetDeviceList();
  QApplication::setActiveWindow(mFinder.GetWidget());
  list.setFocus();
  list.setCurrentItem(list.findItems("IP", Qt::MatchExactly, 0).value(0));

  QTest::keySequence(&list, QKeySequence::Copy);

  EXPECT_EQ(QApplication::clipboard()->text(), "IP\t192.168.1.20");
}

} // namespace krgui
