// The window that is shown while the viewer's end takes a while.

#include "window/endingwindow.h"

#include "windowwait.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

using namespace krviewer;

namespace {

struct FakeWork {
  bool isOver = false;
  bool isRecording = true;
  std::optional<std::uint64_t> written = {};
  int abandoned = 0;
  int left = 0;
  bool awaitsCamera = false;
  std::chrono::milliseconds cameraLimit = kNoLimit;
  int camerasLeft = 0;

  EndingWork Make(const QString& aText) {
    return {.isOver = [this] { return isOver; },
            .describe = [aText] { return aText; },
            .isRecording = [this] { return isRecording; },
            .abandon = [this] { ++abandoned; },
            .getWritten = [this] { return written; },
            .leave = [this] { isOver = ++left > 0; },
            .awaitsCamera = [this] { return awaitsCamera; },
            .leaveCamera = [this] { isOver = ++camerasLeft > 0; },
            .cameraLimit = cameraLimit};
  }
};

/// Does something once the window is on the screen, from within its loop.
void WhenShown(EndingWindow& aWindow, const std::function<void()>& aStep) {
  auto* const look = new QTimer(&aWindow);
  QObject::connect(look, &QTimer::timeout, &aWindow, [look, &aWindow, aStep] {
    if (!aWindow.isVisible())
      return;
    look->stop();
    aStep();
  });
  look->start(1);
}

QString GetText(const EndingWindow& aWindow) {
  return aWindow.findChild<QLabel*>(QStringLiteral("text"))->text();
}

QPushButton& GetButton(EndingWindow& aWindow, const char* aName) {
  return *aWindow.findChild<QPushButton*>(aName);
}

/// Whether the text has the room that it needs, which it has a moment after it was set.
bool IsTextWhole(EndingWindow& aWindow) {
  return krtest::AwaitCondition([&aWindow] {
    const auto& text = *aWindow.findChild<QLabel*>("text");
    return text.height() >= text.heightForWidth(text.width());
  });
}

bool IsShown(EndingWindow& aWindow, const char* aName) {
  return GetButton(aWindow, aName).isVisible();
}

} // namespace

TEST(EndingWindow, WhatIsOverAlready_NeedsNoWindow) {
  FakeWork work{.isOver = true};
  EndingWindow window({work.Make("It is written.")});

  window.Await();

  EXPECT_FALSE(window.isVisible());
}

TEST(EndingWindow, WorkThatTakesLong_IsToldUntilItIsOver) {
  FakeWork recording;
  FakeWork other{.isRecording = false};
  EndingWindow window({recording.Make("It is written."), other.Make("It is given back.")});
  QString text;
  WhenShown(window, [&] {
    text = GetText(window);
    recording.isOver = true;
    other.isOver = true;
  });

  window.Await();

  EXPECT_EQ(text, "It is written.\n\nIt is given back.");
  EXPECT_EQ(recording.abandoned, 0);
}

TEST(EndingWindow, WorkThatGoesOnBeyondTheLimit_IsAwaitedNoLonger) {
  FakeWork work;
  EndingWindow window({work.Make("It is written.")});

  EXPECT_EQ(window.Await(std::chrono::milliseconds(1)), EndingResult::TooLate);

  EXPECT_EQ(window.GetText(), "It is written.");
  EXPECT_EQ(work.abandoned, 0);
}

TEST(EndingWindow, WorkThatEndsBeforeTheLimit_IsOver) {
  FakeWork work;
  EndingWindow window({work.Make("It is written.")});
  WhenShown(window, [&] { work.isOver = true; });

  EXPECT_EQ(window.Await(std::chrono::hours(1)), EndingResult::Over);
}

TEST(EndingWindow, Button_AbandonsRecordingsAlone) {
  FakeWork recording;
  FakeWork other{.isRecording = false};
  EndingWindow window({recording.Make("It is written."), other.Make("It is given back.")});
  bool wasOffered = false;
  bool isStillOffered = true;
  QString text;
  WhenShown(window, [&] {
    wasOffered = IsShown(window, "abandon");
    GetButton(window, "abandon").click();
    isStillOffered = IsShown(window, "abandon");
    text = GetText(window);
    recording.isRecording = false;
    window.close(); // Gives up nothing.
    recording.isOver = true;
    other.isOver = true;
  });

  window.Await();

  EXPECT_TRUE(wasOffered);
  EXPECT_FALSE(isStillOffered);
  EXPECT_EQ(text, "It is written.\nIt is being given up; only the frame that is being written is still awaited.\n\nIt "
                  "is given back.");
  EXPECT_EQ(recording.abandoned, 1);
  EXPECT_EQ(other.abandoned, 0);
}

TEST(EndingWindow, FilesThatDoNotGetOn_NeedNotBeWaitedFor) {
  FakeWork hanging{.written = 7};
  FakeWork busy{.written = 0};
  std::uint64_t nowMs = 1000;
  EndingWindow window({hanging.Make("It is written."), busy.Make("So is that.")}, [&] { return nowMs; });
  bool wasOfferedAtOnce = true;
  QString text;
  WhenShown(window, [&] {
    wasOfferedAtOnce = IsShown(window, "leave");
    nowMs += StallWatch::kPatienceMs;
    ++*busy.written;
    ASSERT_TRUE(krtest::AwaitCondition([&] { return IsShown(window, "leave"); }));
    text = window.findChild<QLabel*>("text")->text();
    EXPECT_TRUE(IsTextWhole(window));
    GetButton(window, "leave").click();
    EXPECT_FALSE(IsShown(window, "leave"));
    busy.isOver = true;
  });

  window.Await();

  EXPECT_FALSE(wasOfferedAtOnce);
  EXPECT_EQ(text, "It is written.\nIts disk has taken nothing for 10 s and may not answer any more. You need not wait "
                  "for it: what is not written yet is lost then.\n\nSo is that.");
  EXPECT_EQ(hanging.left, 1);
  EXPECT_EQ(busy.left, 0);
}

TEST(EndingWindow, CameraThatDoesNotAnswer_IsCountedDownAndLeftByItself) {
  FakeWork camera{.isRecording = false, .awaitsCamera = true, .cameraLimit = std::chrono::seconds(30)};
  std::uint64_t nowMs = 1000;
  EndingWindow window({camera.Make("It is given back.")}, [&] { return nowMs; });
  QString text;
  WhenShown(window, [&] {
    text = GetText(window);
    EXPECT_TRUE(IsTextWhole(window));
    nowMs += 20'500;
    EXPECT_TRUE(krtest::AwaitCondition([&] { return GetText(window).contains("for 10 s more at most"); }));
    EXPECT_EQ(camera.camerasLeft, 0);
    nowMs += 9500;
  });

  EXPECT_EQ(window.Await(), EndingResult::Over);

  EXPECT_EQ(text, "It is given back.\nIt is waited for 30 s more at most. You need not wait for it: others may find it "
                  "taken for some seconds then, and what was changed of its stream and connection parameters may not "
                  "be kept.");
  EXPECT_EQ(camera.camerasLeft, 1);
}

TEST(EndingWindow, CameraThatDoesNotAnswer_IsLeftByItsButtonAlone) {
  FakeWork camera{.isRecording = false, .awaitsCamera = true, .cameraLimit = std::chrono::hours(1)};
  FakeWork recording{.written = 7, .cameraLimit = std::chrono::hours(1)};
  EndingWindow window({camera.Make("It is given back."), recording.Make("It is written.")});
  WhenShown(window, [&] {
    EXPECT_TRUE(IsShown(window, "leaveCamera"));
    GetButton(window, "leaveCamera").click();
    EXPECT_FALSE(IsShown(window, "leaveCamera"));
    EXPECT_EQ(GetText(window), "It is written.");
    recording.isOver = true;
  });

  window.Await();

  EXPECT_EQ(camera.camerasLeft, 1);
  EXPECT_EQ(recording.camerasLeft, 0);
  EXPECT_EQ(recording.left, 0);
}

TEST(EndingWindow, CameraThatIsAwaitedWithoutALimit_IsNobodysToLeave) {
  FakeWork camera{.isRecording = false, .awaitsCamera = true};
  EndingWindow window({camera.Make("It is given back.")});
  bool isOffered = true;
  QString text;
  WhenShown(window, [&] {
    isOffered = IsShown(window, "leaveCamera");
    text = GetText(window);
    camera.isOver = true;
  });

  window.Await();

  EXPECT_FALSE(isOffered);
  EXPECT_EQ(text, "It is given back.");
}

TEST(EndingWindow, Trouble_IsShownUntilItIsRead) {
  EndingWindow window({});
  QString text;
  bool isWaiting = true;
  WhenShown(window, [&] {
    text = GetText(window);
    isWaiting = window.findChild<QProgressBar*>()->isVisible();
    GetButton(window, "close").click();
  });

  window.Tell("The disk was full.");

  EXPECT_EQ(text, "The disk was full.");
  EXPECT_FALSE(isWaiting);
  EXPECT_FALSE(window.isVisible());
}

TEST(EndingWindow, TroubleOfAnEndThatTookNoWindow_StaysUntilItIsRead) {
  FakeWork work;
  EndingWindow window({work.Make("It is written.")});
  QTimer::singleShot(0, &window, [&work] { work.isOver = true; });
  window.Await();
  bool wasVisible = false;
  WhenShown(window, [&] {
    // Begun later than the window's own patience, so that it is over later.
    QTimer::singleShot(EndingWindow::kPatience, &window, [&] {
      wasVisible = window.isVisible();
      GetButton(window, "close").click();
      emit window.Over(); // Also for a window that is gone.
    });
  });

  window.Tell("The disk was full.");

  EXPECT_TRUE(wasVisible);
}
