#pragma once
// The command line as tables: which commands there are, which options each takes, and what they say of themselves.
// Carrying a command out is left to the commands.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace krtool {

enum class Verb { Help, Version, List, Stream };

/// What was asked for.
struct CommandLine {
  Verb verb = Verb::Help;
  std::string device = {};                     ///< For Stream: an ID, a MAC or IP address or a user-defined name.
  std::optional<std::uint32_t> timeoutMs = {}; ///< Nothing where the command's own limit holds.
  std::uint64_t frames = 0;                    ///< For Stream: how many; at least 1.
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
