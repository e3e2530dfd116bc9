#pragma once
// The viewer run as a user runs it, with what it printed and the pictures that it left.

#include "await.h"

#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

class ViewerProcess {
public:
  /// Runs the viewer with these arguments and --screenshot, and waits for its end.
  explicit ViewerProcess(const QStringList& aArguments,
                         const QProcessEnvironment& aEnvironment = QProcessEnvironment::systemEnvironment()) {
    EXPECT_TRUE(mFolder.isValid());
    QProcess process;
    process.setProcessEnvironment(aEnvironment);
    process.start(KRVIEWER_PATH, aArguments + QStringList{"--screenshot", mFolder.filePath("new/folder")});
    EXPECT_TRUE(process.waitForFinished(2 * krtest::GetGenerousMs())) << process.errorString().toStdString();
    mExitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    mOutput = QString::fromUtf8(process.readAllStandardOutput());
    mErrors = QString::fromUtf8(process.readAllStandardError());
  }

  int GetExitCode() const { return mExitCode; }
  QString GetOutput() const { return mOutput; }
  QString GetErrors() const { return mErrors; }
  /// The number behind "name=" in what it printed; -1 when it printed none.
  double GetFigure(const QString& aName) const {
    const QRegularExpressionMatch match = QRegularExpression("\\b" + aName + "=([0-9.]+)").match(mOutput);
    return match.hasMatch() ? match.captured(1).toDouble() : -1.0;
  }
  /// The whole window.
  QImage GetWindowPicture() const { return Load("window.png"); }
  /// The display's area as it was on the screen.
  QImage GetDisplayPicture() const { return Load("display.png"); }
  /// The feature browser.
  QImage GetBrowserPicture() const { return Load("browser.png"); }
  /// The image shown, at the camera's resolution.
  QImage GetFramePicture() const { return Load("frame.png"); }

  /// That of the camera that was opened second.
  QImage GetSecondFramePicture() const { return Load("camera-2/frame.png"); }

private:
  QImage Load(const QString& aName) const {
    return QImage(mFolder.filePath("new/folder/" + aName)).convertToFormat(QImage::Format_RGB32);
  }

  QTemporaryDir mFolder;
  int mExitCode = -1;
  QString mOutput;
  QString mErrors;
};
