#include "commandtables.h"

#include "featurewords.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>

namespace krtool {

namespace {

constexpr CommandRow kCommands[] = {
    {.verb = Verb::List,
     .name = "list",
     .synopsis = "list [--json] [--simulate] [--timeout MS]",
     .description = "Lists every interface and the devices behind it, one line each below a line of headings.\n"
                    "      Columns are parted by two or more blanks; an empty cell is \"-\"."},
    {.verb = Verb::Stream,
     .name = "stream",
     .synopsis = "stream DEVICE --frames N [--timeout MS] [--simulate]",
     .description = "Takes N frames and closes with one line of figures. Ctrl-C ends it earlier.",
     .takesDevice = true,
     .needsFrames = true},
    {.verb = Verb::SaveFrame,
     .name = "save-frame",
     .synopsis = "save-frame DEVICE FILE [--format FORMAT] [--pixel-format NAME] [--force] [--timeout MS] [--simulate]",
     .description =
         "Saves the first frame that comes whole: .png as it is shown, .tif or .tiff with all of the camera's bits,\n"
         "      .raw with the bytes as they came and a text FILE.txt that says what they are.",
     .takesDevice = true,
     .file = FileUse::Frame},
    {.verb = Verb::Features,
     .name = "features",
     .synopsis = "features DEVICE|FILE.xml [--category C] [--visibility V] [--faults] [--timeout MS] [--simulate]",
     .description =
         "Lists the features with their values and ranges, one line for each place in the tree of categories below\n"
         "      a line of headings. Columns are parted by single tabs; a cell may be empty.",
     .takesDevice = true},
    {.verb = Verb::Entries,
     .name = "entries",
     .synopsis = "entries DEVICE|FILE.xml NAME [--timeout MS] [--simulate]",
     .description =
         "Lists all entries of an enumeration below a line of headings, parted by single tabs. Those with RO\n"
         "      can be chosen at the moment.",
     .takesDevice = true,
     .names = NameUse::One},
    {.verb = Verb::Get,
     .name = "get",
     .synopsis = "get DEVICE|FILE.xml NAME... [--timeout MS] [--simulate]",
     .description = "Reads features: one value a line, behind its name and a tab where there are several.",
     .takesDevice = true,
     .names = NameUse::Several},
    {.verb = Verb::Set,
     .name = "set",
     .synopsis = "set DEVICE NAME VALUE [NAME VALUE]... [--timeout MS] [--simulate]",
     .description = "Sets features one after the other and writes what they are then, as get does. Stops at the first\n"
                    "      that cannot be set.",
     .takesDevice = true,
     .names = NameUse::NamesAndValues},
    {.verb = Verb::Execute,
     .name = "execute",
     .synopsis = "execute DEVICE NAME [--timeout MS] [--simulate]",
     .description = "Executes a command of the device and waits for its end; Ctrl-C ends the waiting.",
     .takesDevice = true,
     .names = NameUse::One},
    {.verb = Verb::Xml,
     .name = "xml",
     .synopsis = "xml DEVICE|FILE.zip [FILE] [--force] [--timeout MS] [--simulate]",
     .description = "Writes the device's description of its features, unpacked, to standard output or into FILE.",
     .takesDevice = true,
     .file = FileUse::Optional},
    {.verb = Verb::Save,
     .name = "save",
     .synopsis = "save DEVICE FILE [--force] [--timeout MS] [--simulate]",
     .description =
         "Saves the device's settings. What it refuses to give is named, a line each, and left out. Nothing is\n"
         "      saved when it stops answering, or has no settings.",
     .takesDevice = true,
     .file = FileUse::Other},
    {.verb = Verb::Load,
     .name = "load",
     .synopsis = "load DEVICE FILE [--timeout MS] [--simulate]",
     .description =
         "Gives the device the settings of a file and reads them back. What is not as in the file\n"
         "      afterwards is named, a line each, twenty at most. Closes with how many settings the file has.",
     .takesDevice = true,
     .file = FileUse::Other},
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

bool TakeVisibility(CommandLine& aCommandLine, std::string_view aValue) {
  const std::optional<KrGenVisibility> visibility = FindVisibility(aValue);
  aCommandLine.visibility = visibility.value_or(aCommandLine.visibility);
  return visibility.has_value();
}

// For options whose value may be any text but none.
template <std::string CommandLine::*kMember>
bool TakeText(CommandLine& aCommandLine, std::string_view aValue) {
  aCommandLine.*kMember = aValue;
  return !aValue.empty();
}

template <bool CommandLine::*kMember>
bool TakeFlag(CommandLine& aCommandLine, std::string_view) {
  return aCommandLine.*kMember = true;
}

constexpr OptionRow kOptions[] = {
    {"--category", "C", "features",
     "Lists the features of one category and of all below it: its name, or a path as features shows it.",
     TakeText<&CommandLine::category>, "the name of a category"},
    {"--faults", "", "features", "Lists what is wrong with the description, on standard error, not only how much is.",
     TakeFlag<&CommandLine::faults>, ""},
    {"--force", "", "save-frame xml save", "Replaces a file that is there already.", TakeFlag<&CommandLine::force>, ""},
    {"--format", "FORMAT", "save-frame", "png, tiff or raw, where the name of FILE does not say so.", TakeFormat,
     "png, tiff or raw"},
    {"--frames", "N", "stream", "How many frames to take.",
     [](CommandLine& aCommandLine, std::string_view aValue) { return TakeNumber(aValue, aCommandLine.frames); },
     "a whole number of 1 or more"},
    {"--json", "", "list", "Writes one JSON object instead of lines.", TakeFlag<&CommandLine::json>, ""},
    {"--pixel-format", "NAME", "save-frame", "Sets the camera's pixel format first, for example Mono12p; it stays set.",
     TakeText<&CommandLine::pixelFormat>, "the name of a pixel format"},
    {"--simulate", "", "", "Offers the built-in simulated lab beside the real devices.",
     TakeFlag<&CommandLine::simulate>, ""},
    {"--timeout", "MS", "",
     "stream: how long one frame is awaited (10000). save-frame: how long a whole frame is awaited (10000).\n"
     "      execute: how long the end of the command is awaited (10000). Otherwise: how long answers are awaited when\n"
     "      devices are looked for (1000).",
     TakeTimeout, "milliseconds from 1 to 3600000"},
    {"--visibility", "V", "features",
     "For whom: Beginner, Expert, Guru or Invisible, each with those before it (Guru: all that is not for programs\n"
     "      alone). Counts for categories, too. All of them where it is not given.",
     TakeVisibility, "Beginner, Expert, Guru or Invisible"},
};

} // namespace

std::span<const CommandRow> GetCommands() {
  return kCommands;
}

std::span<const OptionRow> GetOptions() {
  return kOptions;
}

bool TakesOption(const CommandRow& aCommand, const OptionRow& aOption) {
  std::string_view rest = aOption.verbs;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    if (rest.substr(0, end) == aCommand.name)
      return true;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return aOption.verbs.empty();
}

} // namespace krtool
