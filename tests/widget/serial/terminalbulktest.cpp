// The bulk ports of a simulated camera in the terminal: whose speed and loopback are shown and changed.

#include "krdevice/krdeviceadapter.h"
#include "seriallinefixture.h"
#include "terminalfixture.h"

namespace krgui {

namespace {

constexpr const char* kPorts = "{port: Serial0}, {port: Bulk0, rates: [300, 600, 9600], rate: 9600},"
                               "{port: Bulk2, rates: [300, 600], rate: 300, behind: echo}";

class BulkPorts : public LabTest {
protected:
  BulkPorts() : LabTest(nullptr, MakeSerialLab(kPorts)) {
    EXPECT_TRUE(LabTest::Open("02:4b:52:00:77:10", mDevice).IsOK());
    mAdapter = std::make_unique<KrDeviceAdapter>(*mDevice);
  }
  ~BulkPorts() override { DeleteWhatIsLeft(); }

  template <typename Control>
  Control& Get(int aID) const {
    return *mWindow.GetWidget()->findChild<Control*>(QStringLiteral("control%1").arg(aID));
  }
  std::string GetSpeed() const { return Get<QComboBox>(id::kSpeed).currentText().toStdString(); }
  bool IsLoopbackOn() const { return Get<QCheckBox>(id::kLoopback).isChecked(); }
  void Pick(int aListID, const char* aEntry) const {
    auto& list = Get<QComboBox>(aListID);
    const int index = list.findText(QString::fromLatin1(aEntry));
    ASSERT_GE(index, 0) << aEntry;
    list.setCurrentIndex(index);
    Q_EMIT list.activated(index);
  }
  // Bulk2 has another speed and loopback, the other port has what it had.
  void ExpectThatOnlyBulk2IsChanged() const {
    Pick(id::kPort, "Bulk0");
    EXPECT_EQ(GetSpeed(), "Baud9600");
    EXPECT_FALSE(IsLoopbackOn());
    Pick(id::kPort, "Bulk2");
    EXPECT_EQ(GetSpeed(), "Baud600");
    EXPECT_TRUE(IsLoopbackOn());
  }

  std::unique_ptr<KrDevice> mDevice;
  std::unique_ptr<KrDeviceAdapter> mAdapter;
  KrSerialTerminalWnd mWindow;
};

} // namespace

TEST_F(BulkPorts, PortSetBeforeTheWindowOpens_HasItsOwnSpeedAndLoopback) {
  ASSERT_TRUE(mWindow.SetDevice(mAdapter.get()).IsOK());
  ASSERT_TRUE(mWindow.SetSerialPort(KrDeviceSerial::Bulk2).IsOK());
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  EXPECT_EQ(GetSpeed(), "Baud300");

  Pick(id::kSpeed, "Baud600");
  Get<QCheckBox>(id::kLoopback).click();

  ExpectThatOnlyBulk2IsChanged();
}

TEST_F(BulkPorts, SelectorMovedBySomebodyElse_IsNotThePortThatIsChanged) {
  ASSERT_TRUE(mWindow.SetDevice(mAdapter.get()).IsOK());
  ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
  Pick(id::kPort, "Bulk2");

  ASSERT_TRUE(mAdapter->SetEnumValue("BulkSelector", "Bulk0").IsOK());
  Pick(id::kSpeed, "Baud600");
  ASSERT_TRUE(mAdapter->SetEnumValue("BulkSelector", "Bulk0").IsOK());
  Get<QCheckBox>(id::kLoopback).click();

  ExpectThatOnlyBulk2IsChanged();
}

} // namespace krgui
