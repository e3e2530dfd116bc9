// Windows among the host's own: in its dialogs and layouts, above its windows, at its end.

#include "await.h"
#include "krgui/krdisplaywnd.h"
#include "windowwait.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

// A dialog of an application with an edit, a display and the usual buttons.
class HostDialog : public QDialog {
public:
  HostDialog() {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(&edit);
    EXPECT_TRUE(display.CreateIn(this).IsOK());
    layout->addWidget(display.GetWidget());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    show();
    EXPECT_TRUE(krtest::AwaitExposed(this));
  }
  QWidget* GetView() { return display.GetWidget()->findChild<QWidget*>("display"); }

  QLineEdit edit;
  KrDisplayWnd display;
};

// Runs the application's loop until it quits by itself; 7 when it did not.
int RunLoop() {
  QTimer::singleShot(krtest::GetGenerousMs(), qApp, [] { QCoreApplication::exit(7); });
  QApplication::setQuitOnLastWindowClosed(true);
  const int exitCode = QApplication::exec();
  QApplication::setQuitOnLastWindowClosed(false);
  return exitCode;
}

} // namespace

TEST(DisplayInAHostsDialog, WhenItOpens_LeavesTheFocusWhereItIs) {
  HostDialog host;

  EXPECT_FALSE(host.GetView()->hasFocus());
}

TEST(DisplayInAHostsDialog, EscapeInTheDisplay_IsTheDialogs) {
  HostDialog host;
  QSignalSpy rejected(&host, &QDialog::rejected);
  host.GetView()->setFocus();

  QTest::keyClick(host.GetView(), Qt::Key_Escape);

  EXPECT_EQ(rejected.count(), 1);
  EXPECT_NE(host.display.GetWidget(), nullptr);
}

TEST(DisplayInAHostsDialog, EnterInTheDisplay_PressesTheDialogsDefaultButton) {
  HostDialog host;
  QSignalSpy accepted(&host, &QDialog::accepted);
  host.GetView()->setFocus();

  QTest::keyClick(host.GetView(), Qt::Key_Return);

  EXPECT_EQ(accepted.count(), 1);
}

TEST(DisplayInAHostsDialog, FreeLayout_GivesItItsTemplatesSize) {
  HostDialog host;

  EXPECT_GT(host.display.GetWidget()->sizeHint().width(), 100);
  EXPECT_GE(host.display.GetWidget()->height(), host.display.GetWidget()->sizeHint().height());
}

TEST(WindowOfAnApplication, ClosedAsTheLast_EndsTheApplication) {
  KrDisplayWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  QTimer::singleShot(0, qApp, [&] { EXPECT_TRUE(window.Close().IsOK()); });

  EXPECT_EQ(RunLoop(), 0);
}

TEST(WindowOfAnApplication, EscapedAsTheLast_EndsTheApplication) {
  KrDisplayWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  QTimer::singleShot(0, qApp, [&] { QTest::keyClick(window.GetWidget(), Qt::Key_Escape); });

  EXPECT_EQ(RunLoop(), 0);
}

TEST(WindowOfAnApplication, ClosedWhileAnotherIsOpen_DoesNotEndTheApplication) {
  KrDisplayWnd window;
  QWidget other;
  other.show();
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  bool wasStillRunning = false;
  QTimer::singleShot(0, qApp, [&] {
    EXPECT_TRUE(window.Close().IsOK());
    // Behind whatever the closing left in the application's queue.
    const auto goOn = [&] {
      wasStillRunning = true;
      other.close();
    };
    QMetaObject::invokeMethod(qApp, goOn, Qt::QueuedConnection);
  });

  EXPECT_EQ(RunLoop(), 0);

  EXPECT_TRUE(wasStillRunning);
}

TEST(PopupOfAnotherWindow, OwnerCloses_ClosesWithItWithoutALoop) {
  KrDisplayWnd owner;
  KrDisplayWnd popup;
  ASSERT_TRUE(owner.ShowModeless(0).IsOK());
  ASSERT_TRUE(popup.ShowModeless(owner.GetHandle()).IsOK());

  ASSERT_TRUE(owner.Close().IsOK());

  EXPECT_EQ(popup.GetWidget(), nullptr);
  EXPECT_EQ(popup.Close().GetCodeNumber(), 28u);
}
