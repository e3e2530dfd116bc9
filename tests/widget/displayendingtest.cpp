// How the display's window is closed, and what must not reach it any more then.

#include "display/displaywnd.h"
#include "displayfixture.h"
#include "windowwait.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

// Does in the middle of a message what a test wants.
class MessageWnd : public krgui::DisplayWnd {
public:
  ~MessageWnd() override { Dispose(); }
  std::function<void()> onMessage;

protected:
  bool OnMessage(const krgui::Message& aMessage) override {
    if (aMessage.number != kNumber)
      return DisplayWnd::OnMessage(aMessage);
    const std::function<void()> handler = onMessage;
    handler();
    return true;
  }

public:
  static constexpr std::uint32_t kNumber = 0x7001;
};

void OpenMenu(QWidget& aView) {
  const QPoint middle = aView.rect().center();
  QContextMenuEvent event(QContextMenuEvent::Mouse, middle, aView.mapToGlobal(middle));
  QCoreApplication::sendEvent(&aView, &event);
}

} // namespace

TEST_F(KrDisplayWndTest, Child_WhoseWidgetIsClosed_Closes) {
  QWidget parent;
  parent.resize(400, 300);
  ASSERT_TRUE(mWindow.CreateIn(&parent).IsOK());
  parent.show();
  ASSERT_TRUE(mWindow.Display(MakeGrey(10, 10, 1), false).IsOK());
  ASSERT_TRUE(mWindow.DoEvents().IsOK());

  const bool wasAccepted = mWindow.GetWidget()->close();

  EXPECT_TRUE(wasAccepted);
  EXPECT_EQ(mWindow.GetHandle(), 0u);
  EXPECT_TRUE(parent.isVisible());
  // It opens again as any closed one.
  EXPECT_TRUE(mWindow.CreateIn(&parent).IsOK());
}

TEST_F(KrDisplayWndTest, Child_ThatGetsEscapeOrEnter_StaysOpen) {
  QWidget parent;
  parent.resize(400, 300);
  ASSERT_TRUE(mWindow.CreateIn(&parent).IsOK());
  parent.show();
  ASSERT_TRUE(krtest::AwaitExposed(&parent));
  for (Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter}) {
    QTest::keyClick(&GetView(), key);

    EXPECT_NE(mWindow.GetHandle(), 0u) << key;
    EXPECT_TRUE(mWindow.GetWidget()->isVisible()) << key;
  }
}

TEST_F(KrDisplayWndTest, Modeless_ThatGetsEscapeOrEnter_Closes) {
  for (Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter}) {
    Open(200, 100);

    QTest::keyClick(&GetView(), key);

    EXPECT_EQ(mWindow.GetHandle(), 0u) << key;
  }
}

TEST_F(KrDisplayWndTest, Modal_ThatGetsEnter_IsNotCancelled) {
  QTimer::singleShot(0, qApp, [&] { QTest::keyClick(&GetView(), Qt::Key_Return); });

  EXPECT_TRUE(mWindow.ShowModal(0).IsOK());
  EXPECT_EQ(mWindow.GetHandle(), 0u);
}

TEST_F(KrDisplayWndTest, Modeless_WhoseWidgetIsClosed_Closes) {
  Open(200, 100);

  EXPECT_TRUE(mWindow.GetWidget()->close());

  EXPECT_EQ(mWindow.GetHandle(), 0u);
}

TEST_F(KrDisplayWndTest, Modal_WhoseWidgetIsClosed_IsCancelled) {
  QTimer::singleShot(0, qApp, [&] { mWindow.GetWidget()->close(); });

  const KrResult result = mWindow.ShowModal(0);

  EXPECT_EQ(result, KrResult::Code::Cancelled);
  EXPECT_EQ(mWindow.GetHandle(), 0u);
}

TEST_F(KrDisplayWndTest, Menu_OfAClosedWindow_IsClosedAtOnce) {
  Open(200, 100);
  OpenMenu(GetView());
  const QPointer<QMenu> menu = mWindow.GetWidget()->findChild<QMenu*>("menu1511");
  ASSERT_FALSE(menu.isNull());
  bool isSeen = true;
  // Whatever is done then: the menu is gone already.
  QObject::connect(&GetView(), &QObject::destroyed, qApp, [&] { isSeen = !menu.isNull() && menu->isVisible(); });

  ASSERT_TRUE(mWindow.Close().IsOK());

  EXPECT_TRUE(menu.isNull() || !menu->isVisible());
  EXPECT_TRUE(krtest::AwaitCondition([&] { return menu.isNull(); }));
  EXPECT_FALSE(isSeen);
}

TEST(DisplayWndEnding, WindowDeletedInAMessage_WhileItsMenuIsOpen_GetsNoCommandAnyMore) {
  auto window = std::make_unique<MessageWnd>();
  window->SetPosition(50, 50, 400, 300);
  ASSERT_TRUE(window->ShowModeless(0).IsOK());
  QPointer<QWidget> view = window->GetWidget()->findChild<QWidget*>("display");
  OpenMenu(*view);
  const QPointer<QMenu> menu = window->GetWidget()->findChild<QMenu*>("menu1511");
  ASSERT_FALSE(menu.isNull());
  const QList<QAction*> actions = menu->actions();
  int commands = 0;
  bool hadView = false;
  bool hadMenuOnScreen = true;
  window->onMessage = [&] {
    window.reset();
    // What is left of it stays until the message is done.
    hadView = !view.isNull();
    hadMenuOnScreen = menu.isNull() || menu->isVisible();
    for (QAction* action : actions) {
      action->trigger();
      ++commands;
    }
    OpenMenu(*view);
  };
  window->GetQueue()->Post({MessageWnd::kNumber, 0, 0});

  EXPECT_TRUE(krtest::AwaitCondition([&] { return window == nullptr && view.isNull(); }));

  EXPECT_TRUE(hadView);
  EXPECT_FALSE(hadMenuOnScreen);
  EXPECT_EQ(commands, 5);
}
