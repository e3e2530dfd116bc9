#pragma once
// krviewer in the hands of its user, with a home of its own: settings and files of a test touch nobody's.

#include "programuser.h"
#include "temporaryfolder.h"

#include <QPoint>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>

class ViewerSession : public testing::Test {
protected:
  /// The viewer ends before the cameras that a test has.
  void TearDown() override { End(); }

  /// Starts the viewer, where something is to be done in its process before, with that; one that still runs is ended
  /// first.
  void Start(const QStringList& aArguments, const std::function<void()>& aInChild = {});
  /// Interrupts the viewer where it still runs; one that does not end well fails the test.
  void End();
  ProgramUser& User() { return *mUser; }
  /// The user's home, and a name in it.
  QString GetPath(const QString& aName) const { return QString::fromStdString(mHome.GetFile(aName.toStdString())); }

  /// Writes a file into the user's home; gives its path.
  QString WriteFile(const QString& aName, const QByteArray& aText) const;

  /// Waits for the window of a camera, which streams as long as its title says no more than its name.
  bool AwaitStreaming(const QString& aCamera);
  /// How many frames a second the status bar says; -1 where it says none.
  double GetFrameRate();
  /// How many frames the status bar counts; -1 where it counts none.
  long long GetFrames();
  /// Waits for more frames than there are.
  bool AwaitMoreFrames();
  /// The column and the line of the pixel under the mouse, as the status bar has them.
  std::optional<QPoint> GetPixel();
  /// The picture's place on the screen.
  QRect GetPicturePlace();
  /// Sets a feature of a camera in its browser, by mouse and keyboard.
  bool SetFeature(const QString& aName, const QString& aValue);
  /// What stands beside a feature in the browser.
  QString GetFeature(const QString& aName);
  /// Writes into a field that it clicks.
  bool Fill(const QString& aField, const QString& aText);
  /// A feature as another program reads it from the camera; empty where it does not answer.
  static QString ReadFeature(const QString& aCamera, const QString& aName);

private:
  const TemporaryFolder mHome;
  std::unique_ptr<ProgramUser> mUser;
};
