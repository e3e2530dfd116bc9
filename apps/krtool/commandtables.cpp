#include "commandtables.h"

#include "featurewords.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>
#include <utility>

namespace krtool {

namespace {

std::string CheckList(const CommandLine& aCommandLine) {
  return aCommandLine.watch && aCommandLine.diagnose ? "--watch and --diagnose do not go together." : "";
}

std::string CheckIP(const CommandLine& aCommandLine) {
  const IPWish& ip = aCommandLine.ip;
  const bool givesAddress = ip.sets || ip.persistentAddress;
  if (!givesAddress && (ip.mask || ip.gateway))
    return "--mask and --gateway belong to an address: give --set or --persistent.";
  return {};
}

constexpr CommandRow kCommands[] = {
    {.verb = Verb::List,
     .name = "list",
     .synopsis = "list [--watch | --diagnose] [--json] [--simulate | --lab FILE] [--timeout MS]",
     .description = "Lists every interface and the devices behind it, one line each below a line of headings.\n"
                    "      Columns are parted by two or more blanks; an empty cell is \"-\".",
     .check = CheckList},
    {.verb = Verb::IP,
     .name = "ip",
     .synopsis = "ip DEVICE [--set ADDRESS|auto] [--persistent ADDRESS|off] [--mask M] [--gateway G] [--dhcp on|off]\n"
                 "            [--link-local on|off] [--adapter NAME] [--force] [--json] [--timeout MS]\n"
                 "            [--simulate | --lab FILE]",
     .description =
         "Shows how a device on the network got its address and how it will get it at its next start. --set repairs a\n"
         "      device that cannot be reached, until its next start; the others change what lasts, and want a device\n"
         "      that can be reached.",
     .takesDevice = true,
     .check = CheckIP},
    {.verb = Verb::Stream,
     .name = "stream",
     .synopsis = "stream DEVICE --frames N [--timeout MS] [--simulate | --lab FILE]",
     .description = "Takes N frames and closes with one line of figures. Ctrl-C ends it earlier.",
     .takesDevice = true,
     .needsFrames = true},
    {.verb = Verb::SaveFrame,
     .name = "save-frame",
     .synopsis = "save-frame DEVICE FILE [--format FORMAT] [--pixel-format NAME] [--force] [--timeout MS]\n"
                 "            [--simulate | --lab FILE]",
     .description =
         "Saves the first frame that comes whole: .png as it is shown, .tif or .tiff with all of the camera's bits,\n"
         "      .raw with the bytes as they came and a text FILE.txt that says what they are.",
     .takesDevice = true,
     .file = FileUse::Frame},
    {.verb = Verb::Features,
     .name = "features",
     .synopsis = "features DEVICE|FILE.xml [--module MODULE] [--category C] [--visibility V] [--faults]\n"
                 "            [--timeout MS] [--simulate | --lab FILE]",
     .description =
         "Lists the features with their values and ranges, one line for each place in the tree of categories below\n"
         "      a line of headings. Columns are parted by single tabs; a cell may be empty.",
     .takesDevice = true},
    {.verb = Verb::Entries,
     .name = "entries",
     .synopsis = "entries DEVICE|FILE.xml NAME [--module MODULE] [--timeout MS] [--simulate | --lab FILE]",
     .description =
         "Lists all entries of an enumeration below a line of headings, parted by single tabs. Those with RO\n"
         "      can be chosen at the moment.",
     .takesDevice = true,
     .names = NameUse::One},
    {.verb = Verb::Ports,
     .name = "ports",
     .synopsis = "ports DEVICE [--timeout MS] [--simulate | --lab FILE]",
     .description =
         "Lists the device's serial ports below a line of headings, parted by single tabs: what stands behind each,\n"
         "      its transport or the map of a name; besides, the maps that do not fit, and what the device lacks of "
         "them.",
     .takesDevice = true},
    {.verb = Verb::Get,
     .name = "get",
     .synopsis = "get DEVICE|FILE.xml NAME... [--module MODULE] [--timeout MS] [--simulate | --lab FILE]",
     .description = "Reads features: one value a line, behind its name and a tab where there are several.",
     .takesDevice = true,
     .names = NameUse::Several},
    {.verb = Verb::Set,
     .name = "set",
     .synopsis = "set DEVICE NAME VALUE [NAME VALUE]... [--timeout MS] [--simulate | --lab FILE]",
     .description = "Sets features one after the other and writes what they are then, as get does. Stops at the first\n"
                    "      that cannot be set.",
     .takesDevice = true,
     .names = NameUse::NamesAndValues},
    {.verb = Verb::Execute,
     .name = "execute",
     .synopsis = "execute DEVICE NAME [--timeout MS] [--simulate | --lab FILE]",
     .description = "Executes a command of the device and waits for its end; Ctrl-C ends the waiting.",
     .takesDevice = true,
     .names = NameUse::One},
    {.verb = Verb::Xml,
     .name = "xml",
     .synopsis = "xml DEVICE|FILE.zip [FILE] [--force] [--timeout MS] [--simulate | --lab FILE]",
     .description = "Writes the device's description of its features, unpacked, to standard output or into FILE; then\n"
                    "      how many bytes it has.",
     .takesDevice = true,
     .file = FileUse::Optional},
    {.verb = Verb::Save,
     .name = "save",
     .synopsis = "save DEVICE FILE [--force] [--timeout MS] [--simulate | --lab FILE]",
     .description =
         "Saves the device's settings. What it refuses to give is named, a line each, and left out. Nothing is\n"
         "      saved when it stops answering, or has no settings.",
     .takesDevice = true,
     .file = FileUse::Other},
    {.verb = Verb::Load,
     .name = "load",
     .synopsis = "load DEVICE FILE [--timeout MS] [--simulate | --lab FILE]",
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

bool TakeModule(CommandLine& aCommandLine, std::string_view aValue) {
  static constexpr std::pair<std::string_view, FeatureModule> kModules[] = {
      {"device", FeatureModule::Device}, {"stream", FeatureModule::Stream}, {"transport", FeatureModule::Transport}};
  const auto found = std::ranges::find(kModules, aValue, &std::pair<std::string_view, FeatureModule>::first);
  if (found == std::end(kModules))
    return false;
  aCommandLine.module = found->second;
  return true;
}

// For options whose value may be any text but none.
template <std::string CommandLine::*kMember>
bool TakeText(CommandLine& aCommandLine, std::string_view aValue) {
  aCommandLine.*kMember = aValue;
  return !aValue.empty();
}

// A lab of one's own is offered as the built-in one is.
bool TakeLab(CommandLine& aCommandLine, std::string_view aValue) {
  aCommandLine.simulate = true;
  return TakeText<&CommandLine::labFile>(aCommandLine, aValue);
}

template <bool CommandLine::*kMember>
bool TakeFlag(CommandLine& aCommandLine, std::string_view) {
  return aCommandLine.*kMember = true;
}

// Some programs read a number that begins by 0 as octal, so what the user means by one is not known.
bool HasLeadingZero(std::string_view aAddress) {
  for (std::size_t at = 0; at + 1 < aAddress.size(); ++at) {
    const bool isFirstDigit = at == 0 || aAddress[at - 1] == '.';
    if (isFirstDigit && aAddress[at] == '0' && aAddress[at + 1] != '.')
      return true;
  }
  return false;
}

// For options whose value is an address.
template <std::optional<std::uint32_t> IPWish::*kMember>
bool TakeAddress(CommandLine& aCommandLine, std::string_view aValue) {
  aCommandLine.ip.*kMember = krsystem::ParseIPv4(KrString(std::string(aValue)));
  return (aCommandLine.ip.*kMember).has_value() && !HasLeadingZero(aValue);
}

bool TakeNewAddress(CommandLine& aCommandLine, std::string_view aValue) {
  aCommandLine.ip.sets = true;
  aCommandLine.ip.address.reset();
  return aValue == "auto" || TakeAddress<&IPWish::address>(aCommandLine, aValue);
}

bool TakePersistent(CommandLine& aCommandLine, std::string_view aValue) {
  const bool isOff = aValue == "off";
  aCommandLine.ip.persistent = !isOff;
  aCommandLine.ip.persistentAddress.reset();
  return isOff || TakeAddress<&IPWish::persistentAddress>(aCommandLine, aValue);
}

// For options whose value is on or off.
template <std::optional<bool> IPWish::*kMember>
bool TakeSwitch(CommandLine& aCommandLine, std::string_view aValue) {
  aCommandLine.ip.*kMember = aValue == "on";
  return aValue == "on" || aValue == "off";
}

constexpr std::string_view kWantsAddress = "an address as in 192.168.1.20, without leading zeros";

constexpr OptionRow kOptions[] = {
    {"--adapter", "NAME", "ip", "The adapter on which the device is meant, where several hear it; for example eth0.",
     [](CommandLine& aCommandLine, std::string_view aValue) {
       aCommandLine.ip.adapter = aValue;
       return !aValue.empty();
     },
     "the name of an adapter"},
    {"--category", "C", "features",
     "Lists the features of one category and of all below it: its name, or a path as features shows it.",
     TakeText<&CommandLine::category>, "the name of a category"},
    {"--dhcp", "on|off", "ip", "Whether the device asks a DHCP server at its start.", TakeSwitch<&IPWish::dhcp>,
     "on or off"},
    {"--diagnose", "", "list",
     "Says instead why devices may be missing or of no use, and what to do. The exit code is 3 where there is "
     "anything\n"
     "      to say, and 0 where there is nothing.",
     TakeFlag<&CommandLine::diagnose>, ""},
    {"--faults", "", "features", "Lists what is wrong with the description, on standard error, not only how much is.",
     TakeFlag<&CommandLine::faults>, ""},
    {"--force", "", "save-frame xml save ip", "Replaces a file that is there already. ip: takes doubtful values.",
     TakeFlag<&CommandLine::force>, ""},
    {"--format", "FORMAT", "save-frame", "png, tiff or raw, where the name of FILE does not say so.", TakeFormat,
     "png, tiff or raw"},
    {"--frames", "N", "stream", "How many frames to take.",
     [](CommandLine& aCommandLine, std::string_view aValue) { return TakeNumber(aValue, aCommandLine.frames); },
     "a whole number of 1 or more"},
    {"--gateway", "G", "ip", "The gateway that goes with the address; none where it is not given.",
     TakeAddress<&IPWish::gateway>, kWantsAddress},
    {"--json", "", "list ip", "Writes one JSON object instead of lines; with --watch one in each line.",
     TakeFlag<&CommandLine::json>, ""},
    {"--lab", "FILE", "",
     "Offers the simulated lab that a file describes beside the real devices, in place of the built-in one.", TakeLab,
     "the name of a lab file", true},
    {"--link-local", "on|off", "ip",
     "Whether the device takes an address of 169.254.*.* where it has no other. Most devices always do.",
     TakeSwitch<&IPWish::linkLocal>, "on or off"},
    {"--mask", "M", "ip", "The subnet mask that goes with the address; the adapter's where it is not given.",
     TakeAddress<&IPWish::mask>, "a mask as in 255.255.255.0, without leading zeros"},
    {"--module", "MODULE", "features entries get",
     "Whose features: device for its own (where it is not given), transport for the connection to it, stream for what\n"
     "      receives its frames, for which the device is taken under control.",
     TakeModule, "device, stream or transport"},
    {"--persistent", "ADDRESS", "ip", "The address that the device keeps and takes first at its start; off for none.",
     TakePersistent, "an address as in 192.168.1.20, without leading zeros, or off"},
    {"--pixel-format", "NAME", "save-frame", "Sets the camera's pixel format first, for example Mono12p; it stays set.",
     TakeText<&CommandLine::pixelFormat>, "the name of a pixel format"},
    {"--set", "ADDRESS", "ip",
     "The address that the device takes at once and has until its next start; auto for a free one of the adapter's\n"
     "      subnet.",
     TakeNewAddress, "an address as in 192.168.1.20, without leading zeros, or auto"},
    {"--simulate", "", "", "Offers the built-in simulated lab beside the real devices.",
     TakeFlag<&CommandLine::simulate>, ""},
    {"--timeout", "MS", "",
     "stream: how long one frame is awaited (10000). save-frame: how long a whole frame is awaited (10000).\n"
     "      execute: how long the end of the command is awaited (10000). list --watch: how long it goes on (until "
     "Ctrl-C).\n"
     "      ip --set: how long the device is awaited at its new address (10000). Otherwise: how long answers are "
     "awaited\n"
     "      when devices are looked for (1000).",
     TakeTimeout, "milliseconds from 1 to 3600000"},
    {"--visibility", "V", "features",
     "For whom: Beginner, Expert, Guru or Invisible, each with those before it (Guru: all that is not for programs\n"
     "      alone). Counts for categories, too. All of them where it is not given.",
     TakeVisibility, "Beginner, Expert, Guru or Invisible"},
    {"--watch", "", "list",
     "Goes on looking, until Ctrl-C, and writes a line with the time for each interface and device that appears,\n"
     "      changes or vanishes. A device that did not answer for two seconds has vanished.",
     TakeFlag<&CommandLine::watch>, ""},
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
