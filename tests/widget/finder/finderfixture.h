#pragma once
// What tests of the device finder share: a window whose controls can be had, devices of every kind, and a hand that
// answers message boxes and dialogs.

#include "finder/devicefinderwnd.h"
#include "finder/finderdiscovery.h"
#include "krbase/krlogger.h"
#include "platform/tickcount.h"
#include "scriptedtransport.h"
#include "testwnd.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <atomic>

namespace krgui {

inline constexpr int kFinderOKID = 1;
inline constexpr int kFinderCancelID = 2;
inline constexpr int kFinderSetIPID = 1002;
inline constexpr int kFinderSelectFromIPID = 1011;
inline constexpr int kFinderInterfaceListID = 1030;
inline constexpr int kFinderDeviceListID = 1033;
inline constexpr int kFinderUnreachableID = 1040;
inline constexpr int kFinderTreeID = 1049;
inline constexpr int kFinderDiagnoseID = 1139;

inline krsystem::NetworkAdapterFields MakeFinderAdapter(const KrString& aName = "eth0",
                                                        const KrString& aAddress = "192.168.1.10",
                                                        const KrString& aMAC = "00:11:22:33:44:01") {
  krsystem::NetworkAdapterFields fields;
  fields.uniqueID = aName;
  fields.displayID = aName + " " + aAddress;
  fields.name = aName;
  fields.macAddress = aMAC;
  fields.addresses = {{aAddress, "255.255.255.0"}};
  return fields;
}

inline krsystem::USBHostControllerFields MakeFinderController() {
  krsystem::USBHostControllerFields fields;
  fields.uniqueID = "usb1";
  fields.displayID = "xHCI host controller";
  fields.speed = 4;
  return fields;
}

template <typename Fields>
Fields MakeFinderDevice(const KrString& aID, const KrString& aName) {
  Fields fields;
  fields.uniqueID = aID;
  fields.displayID = aName;
  fields.modelName = aName;
  return fields;
}

inline krsystem::GEVFields MakeFinderCamera(const KrString& aMAC = "00:11:22:33:44:a1",
                                            const KrString& aName = "Camera A") {
  auto fields = MakeFinderDevice<krsystem::GEVFields>(aMAC, aName);
  fields.macAddress = aMAC;
  fields.ipAddress = "192.168.1.20";
  fields.subnetMask = "255.255.255.0";
  return fields;
}

/// A camera that this host cannot reach as it is configured.
inline krsystem::GEVFields MakeForeignCamera() {
  krsystem::GEVFields fields = MakeFinderCamera("00:11:22:33:44:f1", "Foreign");
  fields.ipAddress = "10.9.8.7";
  fields.configurationValid = false;
  return fields;
}

inline krsystem::TolvanProtocolFields MakeOldDevice() {
  auto fields = MakeFinderDevice<krsystem::TolvanProtocolFields>("00:11:22:33:44:0d", "Old device");
  fields.macAddress = "00:11:22:33:44:0d";
  return fields;
}

inline krsystem::U3VFields MakeUSBCamera(bool aIsValid = true) {
  auto fields = MakeFinderDevice<krsystem::U3VFields>("guid-1", "USB camera");
  fields.deviceGUID = "guid-1";
  fields.speed = 4;
  fields.configurationValid = aIsValid;
  return fields;
}

class TestFinderWnd : public DeviceFinderWnd {
public:
  explicit TestFinderWnd(std::function<bool(const KrDeviceInfo*)> aFilter = [](const KrDeviceInfo*) { return true; })
      : DeviceFinderWnd(std::move(aFilter)) {}
  ~TestFinderWnd() override { Dispose(); }

  using Wnd::EndDialog;
  using Wnd::GetControl;
  template <typename Control>
  Control& Get(int aID) const {
    return *qobject_cast<Control*>(GetControl(aID));
  }
  QTreeWidget& GetTree() const { return Get<QTreeWidget>(kFinderTreeID); }
  QTreeWidget& GetInterfaceList() const { return Get<QTreeWidget>(kFinderInterfaceListID); }
  QTreeWidget& GetDeviceList() const { return Get<QTreeWidget>(kFinderDeviceListID); }
  bool IsEnabled(int aID) const { return GetControl(aID)->isEnabled(); }

  /// The item of a text; null when there is none, or two.
  QTreeWidgetItem* FindItem(const QString& aText) const {
    const QList<QTreeWidgetItem*> found = GetTree().findItems(aText, Qt::MatchExactly | Qt::MatchRecursive);
    return found.size() == 1 ? found.front() : nullptr;
  }
  QString GetHint() const {
    const auto* hint = GetTree().findChild<QLabel*>("hint");
    return hint->isVisible() ? hint->text() : QString();
  }
  /// The value beside a name in a list; "-" when there is no such row.
  static QString FindValue(const QTreeWidget& aList, const QString& aName) {
    const QList<QTreeWidgetItem*> found = aList.findItems(aName, Qt::MatchExactly, 0);
    return found.size() == 1 ? found.front()->text(1) : QStringLiteral("-");
  }
  void PostRefresh() { GetQueue()->PostOnce({FinderDiscovery::kRefreshMessage, 0, 0}); }
};

class DeviceFinderTest : public testing::Test {
protected:
  explicit DeviceFinderTest(std::shared_ptr<ScriptedTransport> aTransport = std::make_shared<ScriptedTransport>())
      : mTransport(std::move(aTransport)) {
    krsystem::RegisterTransport(mTransport);
  }
  ~DeviceFinderTest() override { krsystem::UnregisterTransport(mTransport); }

  /// Opens a modeless finder and waits until the items of these texts are there.
  void Open(std::initializer_list<const char*> aItems) {
    ASSERT_TRUE(mFinder.ShowModeless(0).IsOK());
    for (const char* text : aItems)
      ASSERT_TRUE(AwaitItem(text)) << text;
  }
  [[nodiscard]] bool AwaitItem(const char* aText) {
    return WaitFor([&] { return mFinder.FindItem(aText) != nullptr; });
  }
  [[nodiscard]] bool AwaitNoItem(const char* aText) {
    return WaitFor([&] { return mFinder.FindItem(aText) == nullptr; });
  }
  /// Waits until so many rounds that began from now on have ended.
  [[nodiscard]] bool AwaitRounds(std::size_t aCount) {
    const std::size_t until = mTransport->GetRoundCount() + aCount + 1;
    return WaitFor([&] { return mTransport->GetRoundCount() >= until; });
  }
  void Select(const char* aText) {
    QTreeWidgetItem* item = mFinder.FindItem(aText);
    ASSERT_NE(item, nullptr) << aText;
    mFinder.GetTree().setCurrentItem(item);
  }
  void Click(int aID) { QTest::mouseClick(mFinder.GetControl(aID), Qt::LeftButton); }
  void DoubleClick(const char* aText, Qt::MouseButton aButton = Qt::LeftButton) {
    QTreeWidget& tree = mFinder.GetTree();
    const QPoint point = tree.visualItemRect(mFinder.FindItem(aText)).center();
    QTest::mouseClick(tree.viewport(), aButton, {}, point);
    QTest::mouseDClick(tree.viewport(), aButton, {}, point);
  }
  /// Presses the right button on an item.
  void AskForMenu(const char* aText) {
    QTreeWidget& tree = mFinder.GetTree();
    const QPoint point = tree.visualItemRect(mFinder.FindItem(aText)).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, tree.viewport()->mapToGlobal(point));
    QCoreApplication::sendEvent(tree.viewport(), &event);
  }
  QMenu* FindMenu() const { return mFinder.GetWidget()->findChild<QMenu*>("menu1505"); }

  /// Does something with the next modal dialog but the finder itself, as soon as it is there.
  void OnNextDialog(std::function<void(QWidget&)> aAction) {
    auto* timer = new QTimer(&mHand);
    QObject::connect(timer, &QTimer::timeout, &mHand, [this, timer, action = std::move(aAction)] {
      QWidget* dialog = QApplication::activeModalWidget();
      if (!dialog || dialog == mFinder.GetWidget() || !dialog->isVisible())
        return;
      timer->stop();
      timer->deleteLater();
      ++mDialogCount;
      action(*dialog);
    });
    timer->start(1);
  }

  /// What a message box shows.
  struct ShownMessage {
    QString text;
    QString caption;
    QString picture; ///< As those hear it who do not see it.
    friend bool operator==(const ShownMessage&, const ShownMessage&) = default;
    friend std::ostream& operator<<(std::ostream& aStream, const ShownMessage& aMessage) {
      return aStream << aMessage.caption.toStdString() << " (" << aMessage.picture.toStdString()
                     << "): " << aMessage.text.toStdString();
    }
  };
  /// The message of a box; empty texts where the dialog is none.
  static ShownMessage ReadMessage(const QWidget& aBox) {
    const auto* text = aBox.findChild<QLabel*>("text");
    const auto* picture = aBox.findChild<QLabel*>("picture");
    return {text ? text->text() : QString(), aBox.windowTitle(), picture ? picture->accessibleName() : QString()};
  }
  /// What stands below a message's text.
  static QString ReadDetail(const QWidget& aBox) {
    const auto* detail = aBox.findChild<QLabel*>("detail");
    return detail ? detail->text() : QString();
  }
  static ShownMessage MakeErrorMessage(const char* aText) { return {aText, "Error", "Warning"}; }

  const std::shared_ptr<ScriptedTransport> mTransport;
  QObject mHand;
  int mDialogCount = 0;
  std::atomic<std::uint32_t> mNowMs = 5000;
  TickCountOverride mClock{[this] { return mNowMs.load(); }};
  std::mutex mFilterMutex; // Guards the filter.
  std::function<bool(const KrDeviceInfo*)> mFilter;
  TestFinderWnd mFinder{[this](const KrDeviceInfo* aDevice) {
    std::function<bool(const KrDeviceInfo*)> filter;
    {
      const std::lock_guard lock(mFilterMutex);
      filter = mFilter;
    }
    return !filter || filter(aDevice);
  }};
};

} // namespace krgui
