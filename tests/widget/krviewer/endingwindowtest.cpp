// The window that is shown while the viewer's end takes a while.

#include "window/endingwindow.h"

#include "windowwait.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

#include <functional>

using namespace krviewer;

namespace {

struct FakeWork {
  bool isOver = false;
  bool isRecording = true;
  int abandoned = 0;

  EndingWork Make(const QString& aText) {
    return {.isOver = [this] { return isOver; },
            .describe = [aText] { return aText; },
            .isRecording = [this] { return isRecording; },
            .abandon = [this] { ++abandoned; }};
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

QPushButton& GetButton(EndingWindow& aWindow) {
  return *aWindow.findChild<QPushButton*>();
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
    text = window.findChild<QLabel*>()->text();
    recording.isOver = true;
    other.isOver = true;
  });

  window.Await();

  EXPECT_EQ(text, "It is written.\nIt is given back.");
  EXPECT_EQ(recording.abandoned, 0);
}

TEST(EndingWindow, Button_AbandonsRecordingsAlone) {
  FakeWork recording;
  FakeWork other{.isRecording = false};
  EndingWindow window({recording.Make("It is written."), other.Make("It is given back.")});
  bool wasOffered = true;
  WhenShown(window, [&] {
    GetButton(window).click();
    recording.isRecording = false;
    window.close(); // Gives up nothing.
    recording.isOver = true;
    other.isOver = true;
    wasOffered = GetButton(window).isVisible();
  });

  window.Await();

  EXPECT_TRUE(wasOffered);
  EXPECT_EQ(recording.abandoned, 1);
  EXPECT_EQ(other.abandoned, 0);
}

TEST(EndingWindow, Trouble_IsShownUntilItIsRead) {
  EndingWindow window({});
  QString text;
  WhenShown(window, [&] {
    text = window.findChild<QLabel*>()->text();
    GetButton(window).click();
  });

  window.Tell("The disk was full.");

  EXPECT_EQ(text, "The disk was full.");
  EXPECT_FALSE(window.isVisible());
}
