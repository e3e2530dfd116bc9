// The ways a window ends that nobody asked it for: parents that die, widgets that are deleted, window objects deleted
// from their own handlers, workers that still send.

#include "testwnd.h"

#include "await.h"

#include <QTimer>

#include <gtest/gtest.h>

#include <thread>

namespace krgui {

namespace {

using Code = KrResult::Code;

constexpr Message kMessage = {0x0401, 1, 2};

TEST(WndEnding, ParentOfAChildDies_WindowHearsOfItOnceAndRemembersItsPosition) {
  auto parent = std::make_unique<QWidget>();
  TestWnd window;
  window.SetPosition(30, 40, 200, 150);
  ASSERT_TRUE(window.CreateIn(parent.get()).IsOK());
  bool hadControls = false;
  window.onDestroy = [&] { hadControls = window.GetControl(1044) != nullptr; };

  parent.reset();

  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.GetHandle(), 0U);
  EXPECT_EQ(window.record->destroys, 1);
  EXPECT_TRUE(hadControls);
  EXPECT_EQ(GetPosition(window), (Position{30, 40, 200, 150}));
}

TEST(WndEnding, ParentDied_WindowCanBeShownAgain) {
  TestWnd window;
  {
    QWidget parent;
    parent.show();
    ASSERT_TRUE(window.Create(parent.winId(), 0).IsOK());
  }

  EXPECT_TRUE(window.ShowModeless(0).IsOK());

  EXPECT_TRUE(window.GetWidget()->isVisible());
}

TEST(WndEnding, OwnerOfAModelessWindowDies_WindowEnds) {
  auto owner = std::make_unique<QWidget>();
  owner->show();
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(owner->winId()).IsOK());

  owner.reset();

  EXPECT_EQ(window.GetHandle(), 0U);
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(WndEnding, WidgetDeletedByTheApplication_WindowHearsOfIt) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());

  delete window.GetWidget();

  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(WndEnding, EveryOpening_IsDestroyedExactlyOnce) {
  TestWnd window;
  for (int opening = 1; opening <= 3; ++opening) {
    ASSERT_TRUE(window.ShowModeless(0).IsOK());
    ASSERT_TRUE(window.Close().IsOK());
    DeleteWhatIsLeft();
    EXPECT_EQ(window.record->destroys, opening);
  }
}

TEST(WndEnding, CloseWhileItIsDestroyed_ChangesNothing) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  window.onDestroy = [&] {
    EXPECT_TRUE(window.IsOpen());
    EXPECT_TRUE(window.Close().IsOK());
    EXPECT_EQ(window.ShowModeless(0), Code::WrongState);
  };

  EXPECT_TRUE(window.Close().IsOK());

  EXPECT_EQ(window.record->destroys, 1);
  EXPECT_FALSE(window.IsOpen());
}

TEST(WndEnding, DeletedWhileOpen_ClosesItsWindow) {
  auto window = std::make_unique<TestWnd>();
  const auto record = window->record;
  ASSERT_TRUE(window->ShowModeless(0).IsOK());
  const QPointer<QWidget> widget(window->GetWidget());

  window.reset();

  EXPECT_EQ(record->destroys, 1);
  EXPECT_TRUE(widget.isNull() || !widget->isVisible());
  DeleteWhatIsLeft();
  EXPECT_TRUE(widget.isNull());
}

struct HandlerCase {
  const char* name;
  Qt::Key key;
};

class DeletedFromAHandler : public testing::TestWithParam<HandlerCase> {};

TEST_P(DeletedFromAHandler, WindowObject_IsNotTouchedAgain) {
  auto window = std::make_unique<TestWnd>();
  const auto record = window->record;
  window->onOK = window->onCancel = [&] { window.reset(); };
  ASSERT_TRUE(window->ShowModeless(0).IsOK());

  QTest::keyClick(window->GetWidget(), GetParam().key);

  EXPECT_EQ(window, nullptr);
  EXPECT_EQ(record->destroys, 1);
  DeleteWhatIsLeft();
}

INSTANTIATE_TEST_SUITE_P(Keys, DeletedFromAHandler,
                         testing::Values(HandlerCase{"Enter", Qt::Key_Return}, HandlerCase{"Escape", Qt::Key_Escape}),
                         [](const auto& aInfo) { return aInfo.param.name; });

TEST(WndEnding, DeletedFromItsCloseBox_IsNotTouchedAgain) {
  auto window = std::make_unique<TestWnd>();
  window->onCancel = [&] { window.reset(); };
  ASSERT_TRUE(window->ShowModeless(0).IsOK());

  window->GetWidget()->close();

  EXPECT_EQ(window, nullptr);
  DeleteWhatIsLeft();
}

TEST(WndEnding, DeletedFromAMessage_IsNotTouchedAgain) {
  auto window = std::make_unique<TestWnd>();
  window->onMessage = [&](const Message&) {
    window.reset();
    return true;
  };
  ASSERT_TRUE(window->ShowModeless(0).IsOK());
  ASSERT_TRUE(window->GetQueue()->Post(kMessage));

  EXPECT_TRUE(WaitFor([&] { return window == nullptr; }));

  DeleteWhatIsLeft();
}

TEST(WndEnding, DeletedFromItsOwnDestruction_IsNotTouchedAgain) {
  auto window = std::make_unique<TestWnd>();
  window->onDestroy = [&] { window.reset(); };
  ASSERT_TRUE(window->ShowModeless(0).IsOK());
  const QPointer<QWidget> widget(window->GetWidget());

  delete widget.data();

  EXPECT_EQ(window, nullptr);
}

TEST(WndEnding, DeletedFromItsInitialisation_FailsToOpen) {
  auto window = std::make_unique<TestWnd>();
  window->onInitDialog = [&] { window.reset(); };
  TestWnd& reference = *window;

  EXPECT_EQ(reference.ShowModeless(0), Code::Failed);

  EXPECT_EQ(window, nullptr);
  DeleteWhatIsLeft();
}

TEST(WndEnding, DeletedWhileModal_LoopEnds) {
  auto window = std::make_unique<TestWnd>();
  TestWnd& reference = *window;
  const auto record = window->record;
  QTimer::singleShot(0, qApp, [&] { window.reset(); });

  const KrResult result = reference.ShowModal(0);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(record->destroys, 1);
  DeleteWhatIsLeft();
}

TEST(WndEnding, DeletedFromItsHandlerWhileModal_LoopEnds) {
  auto window = std::make_unique<TestWnd>();
  TestWnd& reference = *window;
  window->onCancel = [&] { window.reset(); };
  QTimer::singleShot(0, qApp, [&] { QTest::keyClick(window->GetWidget(), Qt::Key_Escape); });

  EXPECT_TRUE(reference.ShowModal(0).IsOK());

  EXPECT_EQ(window, nullptr);
  DeleteWhatIsLeft();
}

TEST(WndEnding, WidgetDeletedWhileModal_LoopEndsUncancelled) {
  TestWnd window;
  QTimer::singleShot(0, qApp, [&] { delete window.GetWidget(); });

  EXPECT_EQ(window.ShowModal(0), Code::OK);

  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(WndEnding, ApplicationQuitsWhileModal_WindowIsClosed) {
  TestWnd window;
  Code code = Code::Failed;
  QTimer::singleShot(0, qApp, [&] {
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
    code = window.ShowModal(0).GetCode();
  });

  QCoreApplication::exec();

  EXPECT_EQ(code, Code::OK);
  EXPECT_FALSE(window.IsOpen());
  EXPECT_EQ(window.record->destroys, 1);
}

TEST(WndEnding, TwoModalWindowsOneInTheOther_EndOneByOne) {
  TestWnd outer;
  TestWnd inner;
  std::vector<Code> codes;
  QTimer::singleShot(0, qApp, [&] {
    QTimer::singleShot(0, qApp, [&] { EXPECT_TRUE(inner.Close().IsOK()); });
    codes.push_back(inner.ShowModal(0).GetCode());
    outer.EndDialog(2);
  });

  codes.push_back(outer.ShowModal(0).GetCode());

  EXPECT_EQ(codes, (std::vector<Code>{Code::OK, Code::Cancelled}));
}

TEST(WndEnding, QueueAfterClosing_AcceptsNothingAndDropsWhatWaited) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  ASSERT_TRUE(window.GetQueue()->Post(kMessage));

  ASSERT_TRUE(window.Close().IsOK());

  EXPECT_FALSE(window.GetQueue()->Post(kMessage));
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  EXPECT_TRUE(window.DoEvents().IsOK());
  EXPECT_TRUE(window.record->messages.empty());
}

TEST(WndEnding, WorkerThatSends_IsJoinedAtOnceOnClosing) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  const auto ticket = std::make_shared<WorkerTicket>();
  std::optional<std::int64_t> answer = 1;
  // Nobody takes the message: without an end to its send the worker could never be joined.
  std::thread worker([&, queue = window.GetQueue()] { answer = queue->Send(ticket, kMessage); });
  EXPECT_TRUE(krtest::Await([&] { return !window.GetQueue()->IsEmpty(); }));
  window.onDestroy = [&] {
    window.GetQueue()->CancelSends(ticket);
    worker.join();
  };

  ASSERT_TRUE(window.Close().IsOK());

  EXPECT_FALSE(answer.has_value());
  EXPECT_TRUE(window.record->messages.empty());
}

TEST(WndEnding, WorkerJoinedFromTheHandlerOfItsOwnSend_EndsAtOnce) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  const auto ticket = std::make_shared<WorkerTicket>();
  std::optional<std::int64_t> answer = 1;
  std::thread worker([&, queue = window.GetQueue()] { answer = queue->Send(ticket, kMessage); });
  window.onMessage = [&](const Message&) {
    window.GetQueue()->CancelSends(ticket);
    worker.join();
    return true;
  };

  ASSERT_TRUE(WaitFor([&] { return !window.record->messages.empty(); }));

  EXPECT_FALSE(worker.joinable());
  EXPECT_FALSE(answer.has_value());
}

TEST(WndEnding, WorkersSend_IsAnsweredByTheHandler) {
  TestWnd window;
  ASSERT_TRUE(window.ShowModeless(0).IsOK());
  window.onMessage = [](const Message& aMessage) { return aMessage.number == kMessage.number; };
  std::optional<std::int64_t> answers[2];
  std::atomic<bool> isDone = false;
  std::thread worker([&, queue = window.GetQueue()] {
    answers[0] = queue->Send(nullptr, kMessage);
    answers[1] = queue->Send(nullptr, {0x0402, 0, 0});
    isDone = true;
  });

  const bool wasDone = WaitFor([&] { return isDone.load(); });

  EXPECT_TRUE(wasDone);
  window.GetQueue()->Close();
  worker.join();
  EXPECT_EQ(answers[0], 1);
  EXPECT_EQ(answers[1], 0);
}

/// What an ended opening leaves to the toolkit, where the host runs no loop.
class WndLeftovers : public testing::Test {
protected:
  void OpenAndClose() {
    ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
    mWidget = mWindow->GetWidget();
    ASSERT_TRUE(mWindow->Close().IsOK());
    ASSERT_FALSE(mWidget.isNull());
  }

  std::unique_ptr<TestWnd> mWindow = std::make_unique<TestWnd>();
  QPointer<QWidget> mWidget;
};

TEST_F(WndLeftovers, ClosedDirectly_AreDeletedByTheNextDoEvents) {
  OpenAndClose();

  EXPECT_EQ(mWindow->DoEvents(), Code::WrongState);

  EXPECT_TRUE(mWidget.isNull());
}

TEST_F(WndLeftovers, ClosedDirectly_AreDeletedByTheNextOpening) {
  OpenAndClose();

  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());

  EXPECT_TRUE(mWidget.isNull());
  EXPECT_TRUE(mWindow->IsOpen());
}

TEST_F(WndLeftovers, ClosedDirectly_AreDeletedWithTheWindowObject) {
  OpenAndClose();

  mWindow.reset();

  EXPECT_TRUE(mWidget.isNull());
}

TEST_F(WndLeftovers, OpenWindowObjectDeletedDirectly_AreDeletedWithIt) {
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  mWidget = mWindow->GetWidget();

  mWindow.reset();

  EXPECT_TRUE(mWidget.isNull());
}

TEST_F(WndLeftovers, ReopenedFromAMessage_StayUntilItsHandlerHasReturned) {
  bool wasThere = false;
  mWindow->onMessage = [&](const Message&) {
    EXPECT_TRUE(mWindow->Close().IsOK());
    EXPECT_TRUE(mWindow->ShowModeless(0).IsOK());
    wasThere = !mWidget.isNull();
    return true;
  };
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  mWidget = mWindow->GetWidget();
  ASSERT_TRUE(mWindow->GetQueue()->Post(kMessage));

  EXPECT_TRUE(mWindow->DoEvents().IsOK());

  EXPECT_TRUE(wasThere);
  EXPECT_TRUE(mWindow->DoEvents().IsOK());
  EXPECT_TRUE(mWidget.isNull());
}

TEST_F(WndLeftovers, ReopenedFromAKey_StayUntilItsHandlerHasReturned) {
  bool wasThere = false;
  mWindow->onCancel = [&] {
    EXPECT_TRUE(mWindow->Close().IsOK());
    EXPECT_TRUE(mWindow->ShowModeless(0).IsOK());
    EXPECT_TRUE(mWindow->DoEvents().IsOK());
    wasThere = !mWidget.isNull();
  };
  ASSERT_TRUE(mWindow->ShowModeless(0).IsOK());
  mWidget = mWindow->GetWidget();

  QTest::keyClick(mWidget.data(), Qt::Key_Escape);

  EXPECT_TRUE(wasThere);
  EXPECT_TRUE(mWindow->DoEvents().IsOK());
  EXPECT_TRUE(mWidget.isNull());
}

} // namespace

} // namespace krgui
