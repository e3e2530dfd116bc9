#pragma once
// The command line as tables: which commands there are, which options each takes, and what they say of themselves.
// Carrying a command out is left to the commands.

#include "framefile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace krtool {

enum class Verb { Help, Version, List, Stream, SaveFrame };

/// What was asked for.
struct CommandLine {
  Verb verb = Verb::Help;
  std::string device = {};                            ///< An ID, MAC or IP address, serial number or name.
  std::string file = {};                              ///< For SaveFrame.
  std::optional<krapps::FrameFileFormat> format = {}; ///< For SaveFrame: always there.
  std::string pixelFormat = {};                       ///< For SaveFrame: empty where the camera's own stays.
  std::optional<std::uint32_t> timeoutMs = {};        ///< Nothing where the command's own limit holds.
  std::uint64_t frames = 0;                           ///< For Stream: how many; at least 1.
  bool force = false;                                 ///< For SaveFrame: replaces a file that is there.
  bool json = false;
  bool simulate = false;
};

/// A command line, or why it cannot be understood.
struct ParsedCommandLine {
  CommandLine commandLine;
  std::string error; ///< Empty when it was understood.
};

/// Parses the arguments behind the program's name.
ParsedCommandLine ParseCommandLine(const std::vector<std::string>& aArguments);

/// The text of --help.
std::string GetHelpText();

} // namespace krtool
