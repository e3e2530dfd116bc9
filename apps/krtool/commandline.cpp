#include "commandline.h"

#include "commandtables.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

namespace krtool {

namespace {

bool HasArgument(const std::vector<std::string>& aArguments, std::string_view aLong, std::string_view aShort) {
  // Behind "--" nothing is an option any more.
  const auto end = std::find(aArguments.begin(), aArguments.end(), "--");
  return std::any_of(aArguments.begin(), end,
                     [&](const std::string& aArgument) { return aArgument == aLong || aArgument == aShort; });
}

// A value to set, rather than an option: "-5", "-.5", "-1e3", "-inf".
bool IsNegativeNumber(std::string_view aArgument) {
  constexpr std::string_view kStarts = "0123456789.iI";
  return aArgument.size() > 1 && aArgument[0] == '-' && kStarts.find(aArgument[1]) != std::string_view::npos;
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
      else if (!onlyNames && argument.starts_with('-') && !(IsValueNext() && IsNegativeNumber(argument)))
        TakeOption(argument);
      else
        TakeArgument(argument);
    }
    if (mResult.error.empty())
      CheckComplete();
    return std::move(mResult);
  }

private:
  void Fail(const std::string& aText) { mResult.error = aText; }

  bool IsValueNext() const {
    return mCommand.names == NameUse::NamesAndValues && mResult.commandLine.names.size() % 2 == 1;
  }

  void TakeOption(const std::string& aArgument) {
    const std::size_t equals = aArgument.find('=');
    const std::string name = aArgument.substr(0, equals);
    const auto options = GetOptions();
    const auto row =
        std::find_if(options.begin(), options.end(), [&](const OptionRow& aRow) { return aRow.name == name; });
    if (row == options.end())
      return Fail("There is no option " + name + ".");
    if (!TakesOption(mCommand, *row))
      return Fail("The command " + std::string(mCommand.name) + " takes no " + name + ".");
    if (row->valueName.empty())
      return TakeFlag(*row, equals != std::string::npos);
    if (equals == std::string::npos && mAt + 1 >= mArguments.size())
      return Fail(name + " wants " + std::string(row->wants) + ".");
    const std::string value = equals == std::string::npos ? mArguments[++mAt] : aArgument.substr(equals + 1);
    if (row->isOnce && !mTakenOnce.insert(name).second)
      return Fail(name + " is given twice.");
    if (!row->take(mResult.commandLine, value))
      Fail(name + " wants " + std::string(row->wants) + ", not \"" + value + "\".");
  }

  void TakeFlag(const OptionRow& aRow, bool aHasValue) {
    if (aHasValue)
      return Fail(std::string(aRow.name) + " takes no value.");
    aRow.take(mResult.commandLine, {});
  }

  void TakeArgument(const std::string& aArgument) {
    CommandLine& line = mResult.commandLine;
    if (mCommand.takesDevice && line.device.empty())
      return TakeText("DEVICE", aArgument, line.device);
    if (mCommand.file != FileUse::None && line.file.empty())
      return TakeText("FILE", aArgument, line.file);
    const bool takesName = mCommand.names != NameUse::None && (mCommand.names != NameUse::One || line.names.empty());
    if (!takesName)
      return Fail("Unexpected argument \"" + aArgument + "\".");
    // A value, unlike a name, may be empty.
    if (aArgument.empty() && !IsValueNext())
      return Fail("NAME is empty.");
    line.names.push_back(aArgument);
  }

  void TakeText(const std::string& aWhat, const std::string& aArgument, std::string& aText) {
    if (aArgument.empty())
      return Fail(aWhat + " is empty.");
    aText = aArgument;
  }

  void CheckComplete() {
    const CommandLine& line = mResult.commandLine;
    const std::string command = "The command " + std::string(mCommand.name);
    if (mCommand.takesDevice && line.device.empty())
      Fail(command + " wants a DEVICE: an ID, a MAC or IP address, a serial number or a user-defined name.");
    else if (mCommand.needsFrames && line.frames == 0)
      Fail(command + " wants --frames N.");
    else if (mCommand.file == FileUse::Frame)
      CheckFrameFile(command);
    else if (mCommand.file == FileUse::Other && line.file.empty())
      Fail(command + " wants a FILE.");
    else if (mCommand.names != NameUse::None && line.names.empty())
      Fail(command + " wants the NAME of a feature.");
    else if (IsValueNext())
      Fail(command + " wants a VALUE for \"" + line.names.back() + "\".");
    else if (mCommand.check)
      Fail(mCommand.check(line));
  }

  void CheckFrameFile(const std::string& aCommand) {
    CommandLine& line = mResult.commandLine;
    if (line.file.empty())
      return Fail(aCommand + " wants a FILE to save the frame in.");
    if (!line.format)
      line.format = krapps::FindFrameFileFormatOf(line.file);
    if (!line.format)
      Fail("The name of \"" + line.file +
           "\" has no ending of a format that can be written. Give it one, or --format: " +
           krapps::ListFrameFileFormats() + ".");
  }

  const CommandRow& mCommand;
  const std::vector<std::string>& mArguments;
  std::size_t mAt = 0;
  std::set<std::string> mTakenOnce; // The options that may not come again.
  ParsedCommandLine mResult;
};

} // namespace

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& aArguments) {
  const bool isHelpCommand = !aArguments.empty() && aArguments.front() == "help";
  if (isHelpCommand || HasArgument(aArguments, "--help", "-h"))
    return {{.verb = Verb::Help}, {}};
  if (HasArgument(aArguments, "--version", "-V"))
    return {{.verb = Verb::Version}, {}};
  if (aArguments.empty())
    return {{}, "A command is missing."};
  const auto commands = GetCommands();
  const auto command = std::find_if(commands.begin(), commands.end(),
                                    [&](const CommandRow& aRow) { return aRow.name == aArguments.front(); });
  if (command == commands.end())
    return {{}, "There is no command \"" + aArguments.front() + "\"."};
  return Parser(*command, aArguments).Run();
}

std::string GetHelpText() {
  std::string text =
      "krtool lists machine-vision cameras, repairs their addresses, takes frames from them and reads and sets their\n"
      "features.\n"
      "\nCommands:\n";
  for (const CommandRow& row : GetCommands())
    text += "  krtool " + std::string(row.synopsis) + "\n      " + std::string(row.description) + "\n";
  text += "  krtool --help\n  krtool --version\n\nOptions:\n";
  for (const OptionRow& row : GetOptions()) {
    const std::string name = std::string(row.name) + (row.valueName.empty() ? "" : " ") + std::string(row.valueName);
    text += "  " + name + "\n      " + std::string(row.description) + "\n";
  }
  text +=
      "\nDEVICE is a unique ID, a MAC address, an IP address, a serial number or a user-defined name.\n"
      "FILE.xml in its place is a description of features, zipped or not, over registers that are all zero: a name\n"
      "that ends in .xml or .zip, or that of a file that is there.\n"
      "VALUE is a number, also as 0x..., an address, the name of an entry, true or false (or 1 or 0), a text, or the\n"
      "hexadecimal digits of a register; behind -- it may begin with any character.\n"
      "Tabs, line ends and other control characters in values and texts are shown as \"?\".\n"
      "The simulated cameras live as long as the one process that asked for them: what is set does not outlast it.\n"
      "features, entries, get, xml and ports leave control of the device to whoever has it; set, execute, save and\n"
      "load take it, and so does ip where it changes what lasts.\n"
      "The exit code is 0, 1 when the command failed, 2 when it was not understood, 3 when list --diagnose has "
      "something\n"
      "to say, or 128 and the number of the signal that ended it early. Finding no device is no failure of list, and\n"
      "Ctrl-C is the ordinary end of list --watch.\n";
  return text;
}

} // namespace krtool
