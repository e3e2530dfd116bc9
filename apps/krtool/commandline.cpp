#include "commandline.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

namespace krtool {

namespace {

struct CommandRow {
  Verb verb;
  std::string_view name;
  std::string_view synopsis;
  std::string_view description;
  bool takesDevice;
  bool takesFile;
  bool needsFrames;
};

constexpr CommandRow kCommands[] = {
    {Verb::List, "list", "list [--json] [--simulate] [--timeout MS]",
     "Lists every interface and the devices behind it, one line each below a line of headings.\n"
     "      Columns are parted by two or more blanks; an empty cell is \"-\".",
     false, false, false},
    {Verb::Stream, "stream", "stream DEVICE --frames N [--timeout MS] [--simulate]",
     "Takes N frames and closes with one line of figures. Ctrl-C ends it earlier.", true, false, true},
    {Verb::SaveFrame, "save-frame",
     "save-frame DEVICE FILE [--format FORMAT] [--pixel-format NAME] [--force] [--timeout MS] [--simulate]",
     "Saves the first frame that comes whole: .png as it is shown, .tif or .tiff with all of the camera's bits,\n"
     "      .raw with the bytes as they came and a text FILE.txt that says what they are.",
     true, true, false},
};

struct OptionRow {
  std::string_view name;
  std::string_view valueName; ///< Empty for a flag.
  std::string_view verbs;     ///< The commands that take it.
  std::string_view description;
  bool (*take)(CommandLine& aCommandLine, std::string_view aValue); ///< False for a value that cannot be accepted.
  std::string_view wants;                                           ///< The values that can be accepted.
};

constexpr std::uint32_t kLongestTimeoutMs = 3'600'000;

template <typename Number>
bool TakeNumber(std::string_view aText, Number& aNumber) {
  const auto [end, error] = std::from_chars(aText.data(), aText.data() + aText.size(), aNumber);
  return error == std::errc() && end == aText.data() + aText.size() && aNumber > 0;
}

bool TakeTimeout(CommandLine& aCommandLine, std::string_view aValue) {
  std::uint32_t timeoutMs = 0;
  const bool isNumber = TakeNumber(aValue, timeoutMs) && timeoutMs <= kLongestTimeoutMs;
  if (isNumber)
    aCommandLine.timeoutMs = timeoutMs;
  return isNumber;
}

bool TakeFormat(CommandLine& aCommandLine, std::string_view aValue) {
  aCommandLine.format = krapps::FindFrameFileFormat(aValue);
  return aCommandLine.format.has_value();
}

bool TakePixelFormat(CommandLine& aCommandLine, std::string_view aValue) {
  aCommandLine.pixelFormat = aValue;
  return !aValue.empty();
}

constexpr OptionRow kOptions[] = {
    {"--force", "", "save-frame", "Replaces a file that is there already.",
     [](CommandLine& aCommandLine, std::string_view) { return aCommandLine.force = true; }, ""},
    {"--format", "FORMAT", "save-frame", "png, tiff or raw, where the name of FILE does not say so.", TakeFormat,
     "png, tiff or raw"},
    {"--frames", "N", "stream", "How many frames to take.",
     [](CommandLine& aCommandLine, std::string_view aValue) { return TakeNumber(aValue, aCommandLine.frames); },
     "a whole number of 1 or more"},
    {"--json", "", "list", "Writes one JSON object instead of lines.",
     [](CommandLine& aCommandLine, std::string_view) { return aCommandLine.json = true; }, ""},
    {"--pixel-format", "NAME", "save-frame", "Sets the camera's pixel format first, for example Mono12p; it stays set.",
     TakePixelFormat, "the name of a pixel format"},
    {"--simulate", "", "list stream save-frame", "Offers the built-in simulated lab beside the real devices.",
     [](CommandLine& aCommandLine, std::string_view) { return aCommandLine.simulate = true; }, ""},
    {"--timeout", "MS", "list stream save-frame",
     "list: how long answers are awaited (1000). stream: how long one frame is awaited (10000).\n"
     "      save-frame: how long a whole frame is awaited (10000).",
     TakeTimeout, "milliseconds from 1 to 3600000"},
};

bool HasArgument(const std::vector<std::string>& aArguments, std::string_view aLong, std::string_view aShort) {
  // Behind "--" nothing is an option any more.
  const auto end = std::find(aArguments.begin(), aArguments.end(), "--");
  return std::any_of(aArguments.begin(), end,
                     [&](const std::string& aArgument) { return aArgument == aLong || aArgument == aShort; });
}

// Goes through the arguments of one command from left to right.
class Parser {
public:
  Parser(const CommandRow& aCommand, const std::vector<std::string>& aArguments)
      : mCommand(aCommand), mArguments(aArguments) {
    mResult.commandLine.verb = aCommand.verb;
  }

  ParsedCommandLine Run() {
    bool onlyNames = false;
    for (mAt = 1; mAt < mArguments.size() && mResult.error.empty(); ++mAt) {
      const std::string& argument = mArguments[mAt];
      if (!onlyNames && argument == "--")
        onlyNames = true;
      else if (!onlyNames && argument.starts_with('-'))
        TakeOption(argument);
      else
        TakeName(argument);
    }
    if (mResult.error.empty())
      CheckComplete();
    return std::move(mResult);
  }

private:
  void Fail(const std::string& aText) { mResult.error = aText; }

  void TakeOption(const std::string& aArgument) {
    const std::size_t equals = aArgument.find('=');
    const std::string name = aArgument.substr(0, equals);
    const auto* row = std::find_if(std::begin(kOptions), std::end(kOptions),
                                   [&](const OptionRow& aRow) { return aRow.name == name; });
    if (row == std::end(kOptions))
      return Fail("There is no option " + name + ".");
    if (row->verbs.find(mCommand.name) == std::string_view::npos)
      return Fail("The command " + std::string(mCommand.name) + " takes no " + name + ".");
    if (row->valueName.empty())
      return TakeFlag(*row, equals != std::string::npos);
    if (equals == std::string::npos && mAt + 1 >= mArguments.size())
      return Fail(name + " wants " + std::string(row->wants) + ".");
    const std::string value = equals == std::string::npos ? mArguments[++mAt] : aArgument.substr(equals + 1);
    if (!row->take(mResult.commandLine, value))
      Fail(name + " wants " + std::string(row->wants) + ", not \"" + value + "\".");
  }

  void TakeFlag(const OptionRow& aRow, bool aHasValue) {
    if (aHasValue)
      return Fail(std::string(aRow.name) + " takes no value.");
    aRow.take(mResult.commandLine, {});
  }

  void TakeName(const std::string& aArgument) {
    CommandLine& line = mResult.commandLine;
    const bool isDevice = mCommand.takesDevice && line.device.empty();
    const bool isFile = mCommand.takesFile && !isDevice && line.file.empty();
    if (!isDevice && !isFile)
      return Fail("Unexpected argument \"" + aArgument + "\".");
    if (aArgument.empty())
      return Fail(isDevice ? "DEVICE is empty." : "FILE is empty.");
    (isDevice ? line.device : line.file) = aArgument;
  }

  void CheckComplete() {
    const std::string command = "The command " + std::string(mCommand.name);
    if (mCommand.takesDevice && mResult.commandLine.device.empty())
      Fail(command + " wants a DEVICE: an ID, a MAC or IP address, a serial number or a user-defined name.");
    else if (mCommand.needsFrames && mResult.commandLine.frames == 0)
      Fail(command + " wants --frames N.");
    else if (mCommand.takesFile)
      CheckFile(command);
  }

  void CheckFile(const std::string& aCommand) {
    CommandLine& line = mResult.commandLine;
    if (line.file.empty())
      return Fail(aCommand + " wants a FILE to save the frame in.");
    if (!line.format)
      line.format = krapps::FindFrameFileFormatOf(line.file);
    if (!line.format)
      Fail("The name of \"" + line.file +
           "\" does not say its format. Give it an extension, or --format: " + krapps::ListFrameFileFormats() + ".");
  }

  const CommandRow& mCommand;
  const std::vector<std::string>& mArguments;
  std::size_t mAt = 0;
  ParsedCommandLine mResult;
};

} // namespace

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& aArguments) {
  if (HasArgument(aArguments, "--help", "-h"))
    return {{.verb = Verb::Help}, {}};
  if (HasArgument(aArguments, "--version", "-V"))
    return {{.verb = Verb::Version}, {}};
  if (aArguments.empty())
    return {{}, "A command is missing."};
  const auto* command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                     [&](const CommandRow& aRow) { return aRow.name == aArguments.front(); });
  if (command == std::end(kCommands))
    return {{}, "There is no command \"" + aArguments.front() + "\"."};
  return Parser(*command, aArguments).Run();
}

std::string GetHelpText() {
  std::string text = "krtool lists machine-vision cameras and takes frames from them.\n\nCommands:\n";
  for (const CommandRow& row : kCommands)
    text += "  krtool " + std::string(row.synopsis) + "\n      " + std::string(row.description) + "\n";
  text += "  krtool --help\n  krtool --version\n\nOptions:\n";
  for (const OptionRow& row : kOptions) {
    const std::string name = std::string(row.name) + (row.valueName.empty() ? "" : " ") + std::string(row.valueName);
    text += "  " + name + "\n      " + std::string(row.description) + "\n";
  }
  text += "\nDEVICE is a unique ID, a MAC address, an IP address, a serial number or a user-defined name.\n"
          "The exit code is 0, 1 when the command failed, 2 when it was not understood, or 128 and the number of the\n"
          "signal that ended it early. Finding no device is no failure of list.\n";
  return text;
}

} // namespace krtool
