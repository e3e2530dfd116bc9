#pragma once
// The viewer's command line: what was asked for, or why it cannot be understood.

#include <QString>
#include <QStringList>

#include <cstdint>

namespace krviewer {

struct CommandLine {
  QString device;           ///< ID, MAC, IP address, serial number or user-defined name; empty to pick one.
  QString descriptionFile;  ///< A description to be shown without a camera; empty for a camera.
  bool simulate = false;    ///< The built-in simulated lab beside the real devices.
  QString labFile;          ///< The simulated lab's description; empty for the built-in one.
  bool headless = false;    ///< Without a display.
  std::uint64_t frames = 0; ///< Ends after so many frames; 0 never.
  QString screenshotFolder; ///< Where pictures go at the end; empty for none.
};

enum class CommandLineStatus { Run, Help, Version, Error };

/// Parses the arguments behind the program's name. For Help and Error aText is what to print.
CommandLineStatus ParseCommandLine(const QStringList& aArguments, CommandLine& aCommandLine, QString& aText);

} // namespace krviewer
