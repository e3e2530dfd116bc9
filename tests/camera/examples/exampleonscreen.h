#pragma once
// An example run as a user runs it, on the simulated cameras: started, seen on the screen, used by mouse and keyboard,
// and closed. What one of them shows is left to its tests.

#include "serverhands.h"
#include "windowwait.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QRect>
#include <QScreen>
#include <QSet>
#include <QTest>

#include <gtest/gtest.h>

class ExampleOnScreen : public testing::Test {
protected:
  inline static const int kLimitMs = krtest::GetGenerousMs();
  static constexpr int kTryMs = 500;

  void Start(const QString& aPath, const QStringList& aArguments = {}) {
    mProcess.start(aPath, QStringList{"--simulate"} + aArguments);
    ASSERT_TRUE(mProcess.waitForStarted(kLimitMs));
  }
  /// Starts it and waits for its window.
  void StartWindow(const QString& aPath, const QString& aTitle, const QStringList& aArguments = {}) {
    ASSERT_NO_FATAL_FAILURE(Start(aPath, aArguments));
    mWindow = krtest::ActivateWindow(aTitle);
  }
  void TearDown() override {
    if (mProcess.state() == QProcess::NotRunning)
      return;
    mProcess.kill();
    mProcess.waitForFinished(kLimitMs);
  }
  /// Closes the window as its user does.
  void ExpectEnd() {
    krtest::MoveHands({"key", "alt+F4"});
    ASSERT_TRUE(mProcess.waitForFinished(kLimitMs));
    EXPECT_EQ(mProcess.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(mProcess.exitCode(), 0) << mProcess.readAllStandardError().toStdString();
  }

  /// Where the window is on the screen.
  QRect GetWindowRect() const {
    QMap<QString, int> values;
    for (const QString& line : krtest::MoveHands({"getwindowgeometry", "--shell", mWindow}).split('\n'))
      values[line.section('=', 0, 0)] = line.section('=', 1).toInt();
    return {values["X"], values["Y"], values["WIDTH"], values["HEIGHT"]};
  }
  static QImage GrabScreen(const QRect& aRect) {
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, aRect.x(), aRect.y(), aRect.width(), aRect.height())
        .toImage();
  }
  /// A picture of the simulated camera is made of ramps: it has most of the greys, which nothing else on the screen
  /// has.
  static bool IsRamp(const QImage& aPicture) {
    QSet<int> greys;
    for (int x = 0; x < aPicture.width(); ++x) {
      const QRgb pixel = aPicture.pixel(x, aPicture.height() / 2);
      if (qRed(pixel) == qGreen(pixel) && qGreen(pixel) == qBlue(pixel))
        greys.insert(qRed(pixel));
    }
    return greys.size() > 64;
  }
  /// Waits until a part of the window shows the camera's picture, and then another one.
  void ExpectLivePicture(const QRect& aPart) const {
    QImage first;
    EXPECT_TRUE(krtest::AwaitCondition([&] {
      first = GrabScreen(aPart.translated(GetWindowRect().topLeft()));
      return IsRamp(first);
    })) << "there is no picture";
    EXPECT_TRUE(krtest::AwaitCondition([&] {
      const QImage next = GrabScreen(aPart.translated(GetWindowRect().topLeft()));
      return IsRamp(next) && next != first;
    })) << "the picture stands still";
  }

  /// Waits until a part of the window is the same in one look after the other, for longer than any picture of a live
  /// camera stays.
  void ExpectStandingPicture(const QRect& aPart) const {
    constexpr int kEqualLooks = 50;
    QImage last;
    int equalLooks = 0;
    EXPECT_TRUE(krtest::AwaitCondition([&] {
      const QImage next = GrabScreen(aPart.translated(GetWindowRect().topLeft()));
      equalLooks = next == last ? equalLooks + 1 : 0;
      last = next;
      return equalLooks >= kEqualLooks;
    })) << "the picture is still live";
  }

  QProcess mProcess;
  QString mWindow; ///< The number by which the X server knows it.
};
