// The end of the dialog that sets a device's IP address while it sends or asks: by its own keys, with its owner window
// and with the application.

#include "forceipdlgfixture.h"

namespace krgui {

namespace {

/// Does something inside of the application's own loop, which ends then at the latest.
void InApplication(const std::function<void()>& aAct) {
  QTimer::singleShot(0, qApp, [&] {
    aAct();
    QCoreApplication::exit();
  });
  QCoreApplication::exec();
}

TEST_F(ForceIPDlgTest, KeysAndCloseBoxWhileItSends_ChangeNothing) {
  MakeSystem();
  transport->isSlow = true;

  const ModalResult result = Run([&](QWidget& aDialog) {
    Type("20");
    Press(aDialog, Qt::Key_Return);
    EXPECT_FALSE(aDialog.isEnabled());
    EXPECT_EQ(aDialog.cursor().shape(), Qt::WaitCursor);
    aDialog.close();
    Press(aDialog, Qt::Key_Escape);
    Press(aDialog, Qt::Key_Return);
    EXPECT_TRUE(aDialog.isVisible());
    transport->mayEnd.count_down();
  });

  EXPECT_EQ(result, ModalResult::OK);
  EXPECT_EQ(transport->asked, 1);
}

TEST_F(ForceIPDlgTest, OwnerClosesWhileItSends_SaysGoneWithoutWaiting) {
  MakeSystem();
  transport->isSlow = true;
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ForceIPDlg dialog(*system, static_cast<const KrNetworkAdapter&>(*system->GetInterface(0)), *system->GetDeviceInfo(0),
                    window.GetWidget());
  DuringNextModalLoop([&](QWidget& aDialog) {
    Type("20");
    Press(aDialog, Qt::Key_Return);
    EXPECT_TRUE(window.Close().IsOK());
  });

  const ModalResult result = dialog.Run();
  system.reset();

  EXPECT_EQ(result, ModalResult::Gone);
  transport->mayEnd.count_down();
  BackgroundTask::AwaitAbandoned();
  EXPECT_EQ(transport->configured.size(), 4U) << "what was begun is sent, with nothing that was lent to the dialog";
  DeleteWhatIsLeft();
}

TEST_F(ForceIPDlgTest, ApplicationQuitsWhileItSends_SaysGoneWithoutWaiting) {
  MakeSystem();
  transport->isSlow = true;
  ModalResult result = ModalResult::OK;

  InApplication([&] {
    result = Run([](QWidget& aDialog) {
      Type("20");
      Press(aDialog, Qt::Key_Return);
      QCoreApplication::exit();
    });
  });

  EXPECT_EQ(result, ModalResult::Gone);
  transport->mayEnd.count_down();
  BackgroundTask::AwaitAbandoned();
  EXPECT_EQ(transport->asked, 1);
}

TEST_F(ForceIPDlgTest, ApplicationQuitsUnderTheQuestion_SendsNothing) {
  MakeSystem();
  ModalResult result = ModalResult::OK;

  InApplication([&] {
    result = Run([](QWidget& aDialog) {
      Enter(aDialog, 1038, "10.0.0.5");
      DuringNextModalLoop([](QWidget&) { QCoreApplication::exit(); });
      Press(aDialog, Qt::Key_Return);
    });
  });

  EXPECT_EQ(result, ModalResult::Gone);
  EXPECT_EQ(transport->asked, 0);
}

TEST_F(ForceIPDlgTest, OwnerClosesUnderTheQuestion_SendsNothing) {
  MakeSystem();
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ForceIPDlg dialog(*system, static_cast<const KrNetworkAdapter&>(*system->GetInterface(0)), *system->GetDeviceInfo(0),
                    window.GetWidget());
  DuringNextModalLoop([&](QWidget& aDialog) {
    Enter(aDialog, 1038, "10.0.0.5");
    DuringNextModalLoop([&](QWidget&) { EXPECT_TRUE(window.Close().IsOK()); });
    Press(aDialog, Qt::Key_Return);
  });

  EXPECT_EQ(dialog.Run(), ModalResult::Gone);

  EXPECT_EQ(transport->asked, 0);
  DeleteWhatIsLeft();
}

} // namespace

} // namespace krgui
