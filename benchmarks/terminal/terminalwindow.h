#pragma once
// The terminal's own window, used as a user does, where a benchmark can look at its transcript.

#include "krbase/krstring.h"
#include "krserial/krdeviceserial.h"
#include "logic/serial/displayformat.h"
#include "serial/serialterminalwnd.h"

#include <QElapsedTimer>

#include <string>

class IKrDeviceAdapter;

namespace benchmarks {

/// Thread: user interface. What does not work ends the program with its reason.
class TerminalWindow {
public:
  /// Shows the window at an open port.
  TerminalWindow(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, krgui::DisplayFormat aFormat);
  ~TerminalWindow();

  void SendFile(const KrString& aPath, bool aEchoes);
  bool IsSendingFile() const;

  /// UTF-16 units that the rule of the pending text has dropped.
  std::uint64_t GetDroppedUnits() const { return mWindow.GetDroppedUnits(); }
  /// Milliseconds from a clock's start to the last change of what is seen of the transcript; negative before the first.
  double GetLastChangeMs() const { return mLastChangeMs; }
  void SetClock(const QElapsedTimer& aClock) { mClock = aClock; }
  /// Whether the transcript has not changed for longer than the receive thread ever waits.
  bool IsQuiet() const;

  /// Whether the transcript is the end of what these bytes look like, and long enough to tell; nothing else may have
  /// come.
  bool ShowsEndOf(const std::string& aBytes) const;

private:
  template <typename Control>
  Control& Get(int aControl) const;

  krgui::SerialTerminalWnd mWindow;
  const krgui::DisplayFormat mFormat;
  QElapsedTimer mClock;
  double mLastChangeMs = -1;
};

} // namespace benchmarks
