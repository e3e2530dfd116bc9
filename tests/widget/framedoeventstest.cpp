// DoEvents: what it handles, when it returns, its time limit and log records, and the input of other windows that
// waits.

#include "krbase/krlogger.h"
#include "platform/tickcount.h"
#include "testwnd.h"
#include "windowwait.h"

#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace krgui {

namespace {

using Code = KrResult::Code;

constexpr std::uint32_t kNumber = 0x1401;
constexpr Message kMessage = {kNumber, 1, 2};
constexpr KrLogLevel kDebug = KrLogLevel::Debug;
constexpr KrLogLevel kError = KrLogLevel::Error;

std::vector<KrLogRecord> Select(const KrLogCapture& aLog, KrLogLevel aLevel) {
  std::vector<KrLogRecord> records = aLog.GetRecords();
  std::erase_if(records, [aLevel](const KrLogRecord& aRecord) { return aRecord.level != aLevel; });
  return records;
}

void ExpectSite(const KrLogRecord& aRecord, int aLine) {
  EXPECT_EQ(aRecord.channel, "KrGUILib");
  EXPECT_EQ(aRecord.function, "Wnd::DoEvents");
  EXPECT_EQ(aRecord.file, "wnd");
  EXPECT_EQ(aRecord.line, aLine);
}

class WndDoEvents : public testing::Test {
protected:
  /// Opens the window and handles everything that this brings about.
  void Open() {
    ASSERT_TRUE(mWindow.ShowModeless(0).IsOK());
    Settle();
  }

  void Settle() {
    ASSERT_TRUE(krtest::AwaitExposed(mWindow.GetWidget()));
    ASSERT_TRUE(mWindow.DoEvents().IsOK());
  }

  bool Post(const Message& aMessage = kMessage) { return mWindow.GetQueue()->Post(aMessage); }

  TestWnd mWindow;
};

TEST_F(WndDoEvents, EmptyQueue_ReturnsSuccessWithoutWaiting) {
  Open();
  std::uint32_t reads = 0;
  const TickCountOverride clock([&reads] { return reads++; });

  const KrResult result = mWindow.DoEvents();

  EXPECT_EQ(result.GetCodeNumber(), 0U);
  EXPECT_TRUE(result.GetDescription().IsEmpty());
  EXPECT_EQ(reads, 1U);
}

TEST_F(WndDoEvents, NotOpen_IsWrongStateWithTextAndRecord) {
  const KrLogCapture log;

  const KrResult result = mWindow.DoEvents();

  EXPECT_EQ(result.GetCodeNumber(), 28U);
  EXPECT_EQ(result.GetDescription(), "The window is not currently open.");
  ASSERT_EQ(log.GetRecords().size(), 1U);
  EXPECT_TRUE(log.Contains(kError, "The window is not currently open."));
  ExpectSite(log.GetRecords().front(), 223);
}

TEST_F(WndDoEvents, FacadeWithoutImplementation_IsWrongStateWithTextAndRecord) {
  class Facade : public KrWnd {
  } facade;
  const KrLogCapture log;

  const KrResult result = facade.DoEvents();

  EXPECT_EQ(result.GetCodeNumber(), 28U);
  EXPECT_EQ(result.GetDescription(), "The window is not currently open.");
  EXPECT_TRUE(log.Contains(kError, "The window is not currently open."));
}

TEST_F(WndDoEvents, ClosedAgain_IsWrongState) {
  Open();
  ASSERT_TRUE(mWindow.Close().IsOK());
  const KrLogCapture log;

  EXPECT_EQ(mWindow.DoEvents(), Code::WrongState);
}

TEST_F(WndDoEvents, PostedMessages_AreHandledInOrderAndEachIsRecorded) {
  Open();
  const KrLogCapture log;
  ASSERT_TRUE(Post({5121, 1, 0}) && Post({5122, 2, 0}) && Post({5121, 3, 0}));

  const KrResult result = mWindow.DoEvents();

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(mWindow.record->messages, (std::vector<Message>{{5121, 1, 0}, {5122, 2, 0}, {5121, 3, 0}}));
  const std::vector<KrLogRecord> records = Select(log, kDebug);
  ASSERT_GE(records.size(), 3U);
  EXPECT_EQ(records[0].text, "Pumped message 5121");
  EXPECT_EQ(records[1].text, "Pumped message 5122");
  ExpectSite(records[0], 227);
}

TEST_F(WndDoEvents, Record_IsWrittenBeforeTheMessageIsHandled) {
  Open();
  const KrLogCapture log;
  std::size_t recordsAtHandling = 0;
  mWindow.onMessage = [&](const Message&) {
    recordsAtHandling = Select(log, kDebug).size();
    return true;
  };
  ASSERT_TRUE(Post());

  ASSERT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_EQ(recordsAtHandling, 1U);
}

TEST_F(WndDoEvents, MessagePostedByAHandler_IsStillHandled) {
  Open();
  mWindow.onMessage = [this](const Message& aMessage) {
    return aMessage.first < 5 && Post({kNumber, aMessage.first + 1, 0});
  };
  ASSERT_TRUE(Post());

  EXPECT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_EQ(mWindow.record->messages.size(), 5U);
}

/// A clock that goes on by a millisecond for each message handled.
class WndDoEventsLimit : public WndDoEvents {
protected:
  void PostForEver() {
    mWindow.onMessage = [this](const Message& aMessage) {
      ++mNow;
      return mIsEndless && Post(aMessage);
    };
    ASSERT_TRUE(Post());
  }

  std::uint32_t mNow = 0;
  bool mIsEndless = true;
};

TEST_F(WndDoEventsLimit, EndlessMessages_EndWithTheTimeLimit) {
  Open();
  PostForEver();
  const TickCountOverride clock([this] { return mNow; });
  const KrLogCapture log;

  const KrResult result = mWindow.DoEvents();

  EXPECT_EQ(result.GetCodeNumber(), 30U);
  EXPECT_EQ(result.GetDescription(), "Time limit exceeded while pumping UI messages");
  // At exactly 1000 ms it still goes on.
  EXPECT_EQ(mWindow.record->messages.size(), 1001U);
  const std::vector<KrLogRecord> errors = Select(log, kError);
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_EQ(errors[0].text, "Time limit exceeded while pumping UI messages");
  ExpectSite(errors[0], 233);
}

TEST_F(WndDoEventsLimit, WhatWaitsAfterTheLimit_StaysAndWorksLater) {
  Open();
  PostForEver();
  const TickCountOverride clock([this] { return mNow; });
  const KrLogCapture log;
  ASSERT_EQ(mWindow.DoEvents(), Code::TimeLimitExceeded);
  EXPECT_FALSE(mWindow.GetQueue()->IsEmpty());
  mIsEndless = false;

  const KrResult result = mWindow.DoEvents();

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(mWindow.record->messages.size(), 1002U);
  EXPECT_TRUE(mWindow.GetQueue()->IsEmpty());
}

TEST_F(WndDoEventsLimit, ClockThatWrapsMeanwhile_CountsOn) {
  Open();
  mNow = 0xFFFFFFFF - 499;
  PostForEver();
  const TickCountOverride clock([this] { return mNow; });
  const KrLogCapture log;

  EXPECT_EQ(mWindow.DoEvents(), Code::TimeLimitExceeded);

  EXPECT_EQ(mWindow.record->messages.size(), 1001U);
}

TEST_F(WndDoEventsLimit, OneLongHandler_IsFinishedBeforeTheLimitCounts) {
  Open();
  mWindow.onMessage = [this](const Message&) {
    mNow += 5000;
    return true;
  };
  ASSERT_TRUE(Post() && Post());
  const TickCountOverride clock([this] { return mNow; });
  const KrLogCapture log;

  EXPECT_EQ(mWindow.DoEvents(), Code::TimeLimitExceeded);

  EXPECT_EQ(mWindow.record->messages.size(), 1U);
}

TEST_F(WndDoEvents, WindowsOwnEvents_AreHandled) {
  Open();
  auto* button = new QPushButton(mWindow.GetWidget());
  bool isHandled = false;
  QMetaObject::invokeMethod(
      button, [&isHandled] { isHandled = true; }, Qt::QueuedConnection);

  EXPECT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_TRUE(isHandled);
}

TEST_F(WndDoEvents, ClosedByAHandler_IsSuccess) {
  Open();
  mWindow.onMessage = [this](const Message&) { return mWindow.Close().IsOK(); };
  ASSERT_TRUE(Post() && Post());

  EXPECT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_EQ(mWindow.record->messages.size(), 1U);
  EXPECT_FALSE(mWindow.IsOpen());
}

TEST_F(WndDoEvents, ReopenedByAHandler_IsSuccessAndLeavesTheNewOpeningAlone) {
  Open();
  mWindow.onMessage = [this](const Message& aMessage) {
    EXPECT_TRUE(mWindow.Close().IsOK());
    EXPECT_TRUE(mWindow.ShowModeless(0).IsOK());
    return Post(aMessage);
  };
  ASSERT_TRUE(Post());

  EXPECT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_EQ(mWindow.record->messages.size(), 1U);
  EXPECT_TRUE(mWindow.IsOpen());
  EXPECT_FALSE(mWindow.GetQueue()->IsEmpty());
}

TEST(WndDoEventsEnding, DeletedByAHandler_IsSuccess) {
  auto window = std::make_unique<TestWnd>();
  TestWnd& reference = *window;
  window->onMessage = [&](const Message&) {
    window.reset();
    return true;
  };
  ASSERT_TRUE(window->ShowModeless(0).IsOK());
  ASSERT_TRUE(window->GetQueue()->Post(kMessage));

  EXPECT_TRUE(reference.DoEvents().IsOK());

  EXPECT_EQ(window, nullptr);
  DeleteWhatIsLeft();
}

TEST(WndDoEventsEnding, DeletedByAnotherObjectsEvent_IsSuccess) {
  auto window = std::make_unique<TestWnd>();
  TestWnd& reference = *window;
  ASSERT_TRUE(window->ShowModeless(0).IsOK());
  QObject other;
  QMetaObject::invokeMethod(
      &other, [&] { window.reset(); }, Qt::QueuedConnection);

  EXPECT_TRUE(reference.DoEvents().IsOK());

  EXPECT_EQ(window, nullptr);
  DeleteWhatIsLeft();
}

TEST_F(WndDoEvents, FromItsOwnHandler_HandlesTheRestInside) {
  Open();
  std::vector<std::uint64_t> order;
  mWindow.onMessage = [&](const Message& aMessage) {
    if (aMessage.first == 1) {
      EXPECT_TRUE(mWindow.DoEvents().IsOK());
    }
    order.push_back(aMessage.first);
    return true;
  };
  ASSERT_TRUE(Post({kNumber, 1, 0}) && Post({kNumber, 2, 0}) && Post({kNumber, 3, 0}));

  EXPECT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_EQ(order, (std::vector<std::uint64_t>{2, 3, 1}));
}

TEST_F(WndDoEvents, WorkersSend_IsAnsweredWithoutALoop) {
  Open();
  mWindow.onMessage = [](const Message&) { return true; };
  std::atomic<bool> isDone = false;
  std::optional<std::int64_t> answer;
  std::thread worker([&, queue = mWindow.GetQueue()] {
    answer = queue->Send(nullptr, kMessage);
    isDone = true;
  });

  while (!isDone) {
    ASSERT_TRUE(mWindow.DoEvents().IsOK());
  }

  worker.join();
  EXPECT_EQ(answer, 1);
}

TEST_F(WndDoEvents, FloodInTheNormalLoop_StarvesNeitherTimersNorPainting) {
  Open();
  class Canvas : public QWidget {
  public:
    using QWidget::QWidget;
    int paints = 0;

  protected:
    void paintEvent(QPaintEvent*) override { ++paints; }
  };
  auto* canvas = new Canvas(mWindow.GetWidget());
  canvas->resize(20, 20);
  canvas->show();
  int ticks = 0;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    ++ticks;
    canvas->update();
  });
  timer.start(1);
  mWindow.onMessage = [this](const Message& aMessage) { return Post(aMessage); };
  ASSERT_TRUE(Post());

  EXPECT_TRUE(WaitFor([&] { return ticks >= 5 && canvas->paints >= 5; }));

  EXPECT_GT(mWindow.record->messages.size(), 0U);
}

TEST_F(WndDoEvents, ToolkitsEventsForTheWindow_AreRecordedBeforeTheyAreDelivered) {
  Open();
  auto* button = new QPushButton(mWindow.GetWidget());
  auto* label = new QWidget(mWindow.GetWidget());
  ASSERT_TRUE(mWindow.DoEvents().IsOK());
  const KrLogCapture log;
  const KrString record("Pumped message " + std::to_string(int(QEvent::MetaCall)));
  std::vector<std::size_t> recordsAtHandling;
  const auto handle = [&] { recordsAtHandling.push_back(Select(log, kDebug).size()); };
  QMetaObject::invokeMethod(button, handle, Qt::QueuedConnection);
  QMetaObject::invokeMethod(label, handle, Qt::QueuedConnection);

  EXPECT_TRUE(mWindow.DoEvents().IsOK());

  EXPECT_EQ(recordsAtHandling, (std::vector<std::size_t>{1, 2}));
  for (const KrLogRecord& each : Select(log, kDebug)) {
    EXPECT_EQ(each.text, record);
    ExpectSite(each, 227);
  }
}

TEST_F(WndDoEvents, MessageThatComesWhileOthersEventsAreHandled_IsHandledBeforeTheLimitCounts) {
  Open();
  std::uint32_t now = 0;
  const TickCountOverride clock([&now] { return now; });
  QObject other;
  QMetaObject::invokeMethod(
      &other,
      [&] {
        now = 5000;
        EXPECT_TRUE(Post());
      },
      Qt::QueuedConnection);
  const KrLogCapture log;

  EXPECT_EQ(mWindow.DoEvents(), Code::TimeLimitExceeded);

  EXPECT_EQ(mWindow.record->messages.size(), 1U);
}

} // namespace

} // namespace krgui
