#pragma once
// The viewer without a camera: the features of a description in a file, over registers that are all zero.

#include "commandline.h"
#include "krgenicam/krgenmemoryport.h"
#include "krgui/krgenbrowserwnd.h"
#include "stopsignal.h"
#include "window/endkeys.h"

#include <QObject>
#include <QTimer>
#include <QWidget>

#include <memory>

namespace krviewer {

/// Shows one description until the window is closed or the program is interrupted; headless only as long as reading all
/// features and taking pictures needs.
///
/// Thread: user interface.
class DescriptionViewer : public QObject {
  Q_OBJECT

public:
  explicit DescriptionViewer(const CommandLine& aCommandLine);

  /// Reads the file, opens the window and runs the application's loop; gives the program's exit code. What is wrong
  /// with the file is told on the error stream.
  int Run();

protected:
  bool eventFilter(QObject* aObject, QEvent* aEvent) override;

private:
  KrResult OpenArray();
  KrResult OpenWindow();
  void LookAgain();
  void Finish();
  bool SavePicture();

  const CommandLine mCommandLine;
  const krapps::StopSignal mStopSignal;
  const EndKeys mEndKeys;
  // In the order in which one stands on the other.
  KrGenMemoryPort mMemory;
  std::unique_ptr<KrGenParameterArray> mArray;
  QWidget mWindow;
  KrGenBrowserWnd mBrowser;
  QTimer mTimer;
  int mExitCode = 0;
  bool mIsOver = false;
};

} // namespace krviewer
