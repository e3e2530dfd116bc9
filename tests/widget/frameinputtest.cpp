// Input for other windows while one window pumps its messages: it waits, loses nothing and keeps its order.

#include "testwnd.h"
#include "windowwait.h"

#include <QAction>
#include <QDialog>
#include <QLineEdit>
#include <QPointingDevice>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <gmock/gmock.h>

#include <utility>
#include <vector>

namespace krgui {

namespace {

/// Two windows: one pumps, the user works in the other.
class WndHeldInput : public testing::Test {
protected:
  void SetUp() override {
    auto* layout = new QVBoxLayout(&mOther);
    layout->addWidget(&mButton);
    layout->addWidget(&mLine);
    mOther.show();
    QObject::connect(&mButton, &QPushButton::clicked, [this] { ++mClicks; });
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
    ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
    mOther.activateWindow();
    ASSERT_TRUE(krtest::AwaitActive(&mOther));
    mLine.setFocus();
  }

  /// What the user does, as the window system would report it, while the pump is at work.
  void DuringDoEvents(std::function<void()> aAction) {
    QMetaObject::invokeMethod(&mOther, std::move(aAction), Qt::QueuedConnection);
    ASSERT_TRUE(mWindow.DoEvents().IsOK());
  }

  void ClickOther() {
    QTest::mouseClick(mOther.windowHandle(), Qt::LeftButton, Qt::NoModifier, mButton.geometry().center());
  }

  bool Post() { return mWindow.GetQueue()->Post({0x1401, 0, 0}); }

  TestWnd mWindow;
  QWidget mOther;
  QPushButton mButton;
  QLineEdit mLine;
  int mClicks = 0;
};

TEST_F(WndHeldInput, ClickInAnotherWindow_WaitsForTheLoop) {
  DuringDoEvents([this] { ClickOther(); });

  EXPECT_EQ(mClicks, 0);
  EXPECT_TRUE(WaitFor([this] { return mClicks == 1; }));
}

TEST_F(WndHeldInput, ClickInAnotherWindow_IsGivenOnce) {
  DuringDoEvents([this] { ClickOther(); });
  ASSERT_TRUE(WaitFor([this] { return mClicks > 0; }));

  ClickOther();

  EXPECT_TRUE(WaitFor([this] { return mClicks == 2; }));
}

TEST_F(WndHeldInput, KeysInAnotherWindow_WaitInOrder) {
  DuringDoEvents([this] {
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_B, Qt::Key_C}) {
      QTest::keyClick(mOther.windowHandle(), key);
    }
  });

  EXPECT_TRUE(mLine.text().isEmpty());
  EXPECT_TRUE(WaitFor([this] { return mLine.text() == QStringLiteral("abc"); }));
}

TEST_F(WndHeldInput, WheelInAnotherWindow_Waits) {
  class Wheel : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* aEvent) override {
      turns += aEvent->type() == QEvent::Wheel ? 1 : 0;
      return false;
    }
    int turns = 0;
  } wheel;
  mButton.installEventFilter(&wheel);
  DuringDoEvents([this] {
    const QPointF local = mButton.geometry().center();
    QWheelEvent event(local, mOther.mapToGlobal(local), {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(mOther.windowHandle(), &event);
  });

  EXPECT_EQ(wheel.turns, 0);
  EXPECT_TRUE(WaitFor([&] { return wheel.turns == 1; }));
}

TEST_F(WndHeldInput, WheelAndMouseThatWaited_ComeWithTheirTimeAndDevice) {
  class Pointers : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* aEvent) override {
      if (aEvent->isPointerEvent()) {
        const auto& event = static_cast<const QPointerEvent&>(*aEvent);
        seen.push_back({event.timestamp(), event.pointingDevice()});
      }
      return false;
    }
    std::vector<std::pair<quint64, const QPointingDevice*>> seen;
  } pointers;
  mOther.windowHandle()->installEventFilter(&pointers);
  const QPointingDevice touchpad(QStringLiteral("touchpad"), 7, QInputDevice::DeviceType::TouchPad,
                                 QPointingDevice::PointerType::Finger, QInputDevice::Capability::Scroll, 1, 1);
  DuringDoEvents([&] {
    const QPointF local = mButton.geometry().center();
    const QPointF global = mOther.mapToGlobal(local);
    QWheelEvent wheel(local, global, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false,
                      Qt::MouseEventNotSynthesized, &touchpad);
    wheel.setTimestamp(1000);
    QCoreApplication::sendEvent(mOther.windowHandle(), &wheel);
    QMouseEvent move(QEvent::MouseMove, local, local, global, Qt::NoButton, Qt::NoButton, Qt::NoModifier, &touchpad);
    move.setTimestamp(2000);
    QCoreApplication::sendEvent(mOther.windowHandle(), &move);
  });

  EXPECT_TRUE(WaitFor([&] { return pointers.seen.size() >= 2; }));
  EXPECT_THAT(pointers.seen,
              testing::ElementsAre(std::pair(quint64{1000}, &touchpad), std::pair(quint64{2000}, &touchpad)));
}

TEST_F(WndHeldInput, ShortcutInAnotherWindow_WaitsAndWorks) {
  int triggered = 0;
  auto* action = new QAction(&mOther);
  action->setShortcut(Qt::CTRL | Qt::Key_R);
  mOther.addAction(action);
  QObject::connect(action, &QAction::triggered, [&] { ++triggered; });
  DuringDoEvents([this] { QTest::keyClick(mOther.windowHandle(), Qt::Key_R, Qt::ControlModifier); });

  EXPECT_EQ(triggered, 0);
  EXPECT_TRUE(WaitFor([&] { return triggered == 1; }));
}

TEST_F(WndHeldInput, NewInputAfterwards_ComesAfterWhatWaited) {
  DuringDoEvents([this] { QTest::keyClick(mOther.windowHandle(), Qt::Key_A); });

  QTest::keyClick(mOther.windowHandle(), Qt::Key_B);

  EXPECT_EQ(mLine.text(), QStringLiteral("ab"));
}

TEST_F(WndHeldInput, RepeatedDoEvents_KeepInputWaiting) {
  DuringDoEvents([this] { ClickOther(); });
  for (int pass = 0; pass < 5; ++pass) {
    ASSERT_TRUE(mWindow.DoEvents().IsOK());
  }

  EXPECT_EQ(mClicks, 0);
  EXPECT_TRUE(WaitFor([this] { return mClicks == 1; }));
}

TEST_F(WndHeldInput, WindowItIsForPumpsItself_GetsIt) {
  TestWnd second;
  QPushButton* button = nullptr;
  int clicks = 0;
  second.onInitDialog = [&] {
    button = new QPushButton(second.GetWidget());
    button->setGeometry(10, 10, 80, 30);
    QObject::connect(button, &QPushButton::clicked, [&] { ++clicks; });
  };
  ASSERT_TRUE(second.ShowModeless(0).IsOK());
  ASSERT_TRUE(krtest::AwaitExposed(second.GetWidget()));
  DuringDoEvents(
      [&] { QTest::mouseClick(second.GetWidget()->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 25)); });
  EXPECT_EQ(clicks, 0);

  EXPECT_TRUE(second.DoEvents().IsOK());

  EXPECT_EQ(clicks, 1);
}

TEST_F(WndHeldInput, OwnInput_IsHandledAtOnce) {
  auto* button = new QPushButton(mWindow.GetWidget());
  button->setGeometry(10, 10, 80, 30);
  button->show();
  int clicks = 0;
  QObject::connect(button, &QPushButton::clicked, [&] { ++clicks; });

  DuringDoEvents(
      [&] { QTest::mouseClick(mWindow.GetWidget()->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 25)); });

  EXPECT_EQ(clicks, 1);
}

TEST_F(WndHeldInput, WindowAroundAChild_CountsAsItsOwn) {
  TestWnd child;
  child.SetPosition(0, 400, 100, 100);
  ASSERT_TRUE(child.CreateIn(&mOther).IsOK());
  QMetaObject::invokeMethod(
      &mOther, [this] { ClickOther(); }, Qt::QueuedConnection);

  ASSERT_TRUE(child.DoEvents().IsOK());

  EXPECT_EQ(mClicks, 1);
}

TEST_F(WndHeldInput, ClosingAnotherWindow_DoesNotWait) {
  DuringDoEvents([this] { mOther.windowHandle()->close(); });

  EXPECT_FALSE(mOther.isVisible());
}

TEST_F(WndHeldInput, WindowThatEndsMeanwhile_LosesItsInput) {
  auto* third = new QWidget;
  third->show();
  ASSERT_TRUE(krtest::AwaitExposed(third));
  DuringDoEvents([third] {
    QTest::mouseClick(third->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    delete third;
  });

  ClickOther();

  EXPECT_TRUE(WaitFor([this] { return mClicks == 1; }));
}

TEST_F(WndHeldInput, ModalDialogOpenedByAHandler_GetsItsInputAtOnce) {
  QDialog question;
  QPushButton yes(&question);
  QObject::connect(&yes, &QPushButton::clicked, &question, &QDialog::accept);
  mWindow.onMessage = [&](const Message&) {
    QTimer::singleShot(0, &question, [&] {
      QTest::mouseClick(question.windowHandle(), Qt::LeftButton, Qt::NoModifier, yes.geometry().center());
    });
    return question.exec() == QDialog::Accepted;
  };
  ASSERT_TRUE(Post());

  EXPECT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_EQ(question.result(), static_cast<int>(QDialog::Accepted));
}

TEST_F(WndHeldInput, NestedDoEvents_KeepsWaitingUntilTheOuterOneEnds) {
  int clicksInside = -1;
  mWindow.onMessage = [&](const Message&) {
    QMetaObject::invokeMethod(
        &mOther, [this] { ClickOther(); }, Qt::QueuedConnection);
    EXPECT_TRUE(mWindow.DoEvents().IsOK());
    clicksInside = mClicks;
    return true;
  };
  ASSERT_TRUE(Post());

  EXPECT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_EQ(clicksInside, 0);
  EXPECT_EQ(mClicks, 0);
  EXPECT_TRUE(WaitFor([this] { return mClicks == 1; }));
}

} // namespace

} // namespace krgui
