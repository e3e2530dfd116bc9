#pragma once
// The viewer's command line: what was asked for, or why it cannot be understood.

#include <QString>
#include <QStringList>

#include <cstdint>

namespace krviewer {

struct CommandLine {
  /// IDs, MAC or IP addresses, serial numbers or user-defined names, a tab for each; none to begin without a camera.
  QStringList devices;
  QString descriptionFile;   ///< A description to be shown without a camera; empty for a camera.
  bool simulate = false;     ///< The built-in simulated lab beside the real devices.
  QString labFile;           ///< The simulated lab's description; empty for the built-in one.
  bool headless = false;     ///< Without a display.
  std::uint64_t frames = 0;  ///< Ends after so many frames of each camera; 0 never.
  std::uint32_t seconds = 0; ///< Ends after so many seconds; 0 never.
  QString style;             ///< Of Qt, in which windows are drawn; empty for the desktop's.
  QString screenshotFolder;  ///< Where pictures go at the end; empty for none.

  /// Whether what ends it is among what was asked for, so that a signal before cuts it short.
  bool HasEnd() const { return frames != 0 || seconds != 0; }
  /// Whether it ends by itself: nobody is asked then, and nothing is kept of how the windows were.
  bool IsBatch() const { return headless || HasEnd(); }
};

enum class CommandLineStatus { Run, Help, Version, Error };

/// Parses the arguments behind the program's name. For Help and Error aText is what to print.
CommandLineStatus ParseCommandLine(const QStringList& aArguments, CommandLine& aCommandLine, QString& aText);

} // namespace krviewer
