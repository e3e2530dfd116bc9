#include "bridges/serialterminal.h"

#include "duringmodalloop.h"
#include "krserial/krdeviceserialport.h"
#include "serialadapter.h"
#include "viewerlab.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

using krviewer::AcquisitionState;
using krviewer::DeviceBorrower;
using krviewer::SerialTerminal;

namespace {

constexpr int kSend = 1004;
constexpr int kPort = 1048;
constexpr int kData = 1057;

/// The terminal of the viewer on a camera of the lab.
class SerialTerminalTest : public ViewerLabTest {
protected:
  void LookAgain() override { mTerminal.Follow(mAcquisition->GetDevice(DeviceBorrower::Terminal)); }
  void Close() {
    mTerminal.GiveBack(mAcquisition->GetDevice(DeviceBorrower::Terminal));
    mAcquisition->Stop();
  }
  template <typename Control>
  Control& Get(int aControl) {
    return *mTerminal.GetWindow().GetWidget()->findChild<Control*>("control" + QString::number(aControl));
  }
  QStringList ListPorts() {
    QStringList ports;
    const auto& list = Get<QComboBox>(kPort);
    for (int i = 0; i < list.count(); ++i)
      ports += list.itemText(i);
    return ports;
  }
  bool CanSend() { return Get<QPushButton>(kSend).isEnabled(); }
  QPlainTextEdit& GetTranscriptEdit() {
    return *mTerminal.GetWindow().GetWidget()->findChild<QPlainTextEdit*>("transcript");
  }
  QString GetTranscript() { return GetTranscriptEdit().toPlainText(); }
  QString GetHint() { return GetTranscriptEdit().accessibleDescription(); }
  bool Shows(const QString& aText) { return GetTranscript().contains(aText); }
  void Send(const QString& aText) {
    Get<QLineEdit>(kData).setText(aText);
    Get<QPushButton>(kSend).click();
  }

  SerialTerminal mTerminal;
};

} // namespace

TEST_F(SerialTerminalTest, OpenedBeforeTheCameraIsThere_ListsItsPortsWhenItIs) {
  ASSERT_TRUE(mTerminal.Show(0).IsOK());
  EXPECT_FALSE(mTerminal.HasDevice());

  Open();

  EXPECT_TRUE(Await([this] { return CanSend(); }));
  EXPECT_EQ(ListPorts(), (QStringList{"Serial0", "Serial1", "Bulk0"}));
  EXPECT_TRUE(mTerminal.HasDevice());
  Close();
  EXPECT_FALSE(mTerminal.HasDevice());
}

TEST_F(SerialTerminalTest, OpenedOnACamera_TalksToTheInstrumentBehindItsPort) {
  Open();
  ASSERT_TRUE(Await([this] { return mTerminal.HasDevice(); }));
  ASSERT_TRUE(mTerminal.Show(0).IsOK());
  ASSERT_TRUE(CanSend());

  Send("*IDN?");

  EXPECT_TRUE(Await([this] { return Shows("Simulated Instrument,SIM-0001"); })) << GetTranscript().toStdString();
  Close();
}

TEST_F(SerialTerminalTest, ShownAgain_StaysTheSameWindow) {
  ASSERT_TRUE(mTerminal.Show(0).IsOK());
  const QWidget* const first = mTerminal.GetWindow().GetWidget();

  EXPECT_TRUE(mTerminal.Show(0).IsOK());

  EXPECT_EQ(mTerminal.GetWindow().GetWidget(), first);
}

TEST_F(SerialTerminalTest, ClosedAndShownAgain_HasTheCameraStill) {
  Open();
  ASSERT_TRUE(Await([this] { return mTerminal.HasDevice(); }));
  ASSERT_TRUE(mTerminal.Show(0).IsOK());
  mTerminal.Close();
  EXPECT_EQ(mTerminal.GetWindow().GetWidget(), nullptr);

  ASSERT_TRUE(mTerminal.Show(0).IsOK());

  EXPECT_TRUE(CanSend());
  Close();
}

TEST_F(SerialTerminalTest, CameraLostAndBack_IsLetGoAndTakenUpAgain) {
  ASSERT_TRUE(mTerminal.Show(0).IsOK());
  Open();
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(Await([this] { return CanSend() && IsIn(AcquisitionState::Streaming); })) << round;

    ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
    ASSERT_TRUE(Await([this] { return !mTerminal.HasDevice(); })) << round;
    EXPECT_TRUE(ListPorts().isEmpty());
    EXPECT_FALSE(CanSend());
    ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());
  }

  ASSERT_TRUE(Await([this] { return CanSend(); }));
  Send("*IDN?");
  EXPECT_TRUE(Await([this] { return Shows("Simulated Instrument,SIM-0001"); }));
  Close();
}

TEST_F(SerialTerminalTest, GivenBack_HasThePortFreeForOthers) {
  ASSERT_TRUE(mTerminal.Show(0).IsOK());
  Open();
  ASSERT_TRUE(Await([this] { return CanSend(); }));
  mTerminal.GiveBack(mAcquisition->GetDevice(DeviceBorrower::Terminal));

  krviewer::LentDevice* const device = mAcquisition->GetDevice(DeviceBorrower::Terminal).Borrow();
  ASSERT_NE(device, nullptr);
  {
    KrDeviceSerialPort port;
    EXPECT_TRUE(port.Open(&device->adapter, KrDeviceSerial::Serial0).IsOK());
  }

  mAcquisition->GetDevice(DeviceBorrower::Terminal).GiveBack();
  mAcquisition->Stop();
}

TEST_F(SerialTerminalTest, CameraWithoutPorts_LeavesTheWindowEmpty) {
  ASSERT_TRUE(mTerminal.Show(0).IsOK());

  Open(kColourMAC);

  ASSERT_TRUE(Await([this] { return mTerminal.HasDevice(); }));
  EXPECT_TRUE(ListPorts().isEmpty());
  EXPECT_FALSE(CanSend());
  Close();
}

TEST_F(SerialTerminalTest, CameraWithoutPorts_IsToldSoEachTimeTheWindowIsShown) {
  Open(kColourMAC);
  ASSERT_TRUE(Await([this] { return mTerminal.HasDevice(); }));
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(mTerminal.Show(0).IsOK());
    EXPECT_EQ(GetHint(), "The device has no serial port.") << round;
    mTerminal.Close();
  }

  Close();
  ASSERT_TRUE(mTerminal.Show(0).IsOK());
  EXPECT_EQ(GetHint(), "There is no device to talk to.");
}

TEST_F(SerialTerminalTest, DeviceWantedBackWhileAMessageBoxIsOpen_IsGivenBackAtOnce) {
  krtest::SerialAdapter adapter;
  adapter.AddLine(0)->FailOpening(KrResult::Code::Busy);
  krviewer::Loan<krviewer::LentDevice> loan;
  krviewer::LentDevice lent{adapter};
  loan.Lend(lent);
  ASSERT_TRUE(mTerminal.Show(0).IsOK());
  bool wasGivenBack = false;
  krgui::DuringNextModalLoop([&](QWidget& aBox) {
    std::jthread lender([&] { loan.TakeBack(); });
    while (!loan.IsWantedBack())
      std::this_thread::yield();
    mTerminal.Follow(loan);
    lender.join();
    wasGivenBack = true;
    aBox.close();
  });

  mTerminal.Follow(loan);

  EXPECT_TRUE(wasGivenBack);
  EXPECT_FALSE(mTerminal.HasDevice());
  EXPECT_TRUE(ListPorts().isEmpty());
  EXPECT_FALSE(CanSend());
}
