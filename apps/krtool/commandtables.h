#pragma once
// Which commands and options there are, what each takes, and what they say of themselves. Going through a command line
// is left to the parser.

#include "commandline.h"

#include <span>
#include <string_view>

namespace krtool {

/// What a command does with the argument FILE.
enum class FileUse { None, Frame, Other, Optional };
/// What the arguments behind DEVICE and FILE are.
enum class NameUse { None, One, Several, NamesAndValues };

struct CommandRow {
  Verb verb;
  std::string_view name;
  std::string_view synopsis;
  std::string_view description;
  bool takesDevice = false;
  FileUse file = FileUse::None;
  NameUse names = NameUse::None;
  bool needsFrames = false;
  /// Says what does not go together; empty where all is well. Null where nothing has to be checked.
  std::string (*check)(const CommandLine& aCommandLine) = nullptr;
};

struct OptionRow {
  std::string_view name;
  std::string_view valueName; ///< Empty for a flag.
  std::string_view verbs;     ///< The commands that take it, parted by blanks; empty for all.
  std::string_view description;
  bool (*take)(CommandLine& aCommandLine, std::string_view aValue); ///< False for a value that cannot be accepted.
  std::string_view wants;                                           ///< The values that can be accepted.
  bool isOnce = false; ///< A second one is a mistake; of others the last one counts.
};

std::span<const CommandRow> GetCommands();
std::span<const OptionRow> GetOptions();

/// Whether a command takes an option.
bool TakesOption(const CommandRow& aCommand, const OptionRow& aOption);

} // namespace krtool
