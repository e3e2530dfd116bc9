#pragma once
// What a command line asks for. The commands and options themselves stand in tables; carrying a command out is left to
// the commands.

#include "framefile.h"
#include "krgenicam/krgentypes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace krtool {

enum class Verb {
  Help,
  Version,
  List,
  IP,
  Stream,
  SaveFrame,
  Features,
  Entries,
  Get,
  Set,
  Execute,
  Xml,
  Save,
  Load,
  Ports
};

/// Whose features are read: the device's own, or those of this host's side of it.
enum class FeatureModule { Device, Stream, Transport };

/// What the command ip is to change; nothing of it where it only shows. Addresses have their first dotted field in the
/// most significant byte.
struct IPWish {
  bool sets = false;                                   ///< The address until the next start.
  std::optional<std::uint32_t> address = {};           ///< With sets; nothing where a free one is to be looked for.
  std::optional<std::uint32_t> mask = {};              ///< Nothing for the adapter's.
  std::optional<std::uint32_t> gateway = {};           ///< Nothing for none.
  std::optional<bool> persistent = {};                 ///< Whether the device's own address comes first.
  std::optional<std::uint32_t> persistentAddress = {}; ///< There when persistent is true.
  std::optional<bool> dhcp = {};
  std::optional<bool> linkLocal = {};
  std::string adapter = {}; ///< Where the device is meant; empty for wherever it is.

  bool ChangesLasting() const { return persistent || dhcp || linkLocal; }
};

/// What was asked for.
struct CommandLine {
  Verb verb = Verb::Help;
  std::string device = {};             ///< An ID, MAC or IP address, serial number or name; where a command only
                                       ///< reads features, a description's file, too.
  std::string file = {};               ///< For SaveFrame, Save and Load; for Xml, where it is not empty.
  std::vector<std::string> names = {}; ///< Features, for Get, Entries and Execute (one) and Set (each before
                                       ///< its value).
  std::optional<krapps::FrameFileFormat> format = {};      ///< For SaveFrame: always there.
  std::string pixelFormat = {};                            ///< For SaveFrame: empty where the camera's own stays.
  std::optional<std::uint32_t> timeoutMs = {};             ///< Nothing where the command's own limit holds.
  std::uint64_t frames = 0;                                ///< For Stream: how many; at least 1.
  std::string category = {};                               ///< For Features: empty for all.
  KrGenVisibility visibility = KrGenVisibility::Invisible; ///< For Features.
  FeatureModule module = FeatureModule::Device;            ///< For Features, Entries and Get.
  bool faults = false;                                     ///< For Features: lists the description's faults.
  IPWish ip = {};                                          ///< For IP.
  bool watch = false;                                      ///< For List: goes on looking.
  bool diagnose = false;                                   ///< For List: says why devices may be missing.
  bool force = false; ///< Replaces a file that is there; for IP: takes doubtful values.
  bool json = false;
  bool simulate = false;
  std::string labFile = {}; ///< The simulated lab's description; empty for the built-in one.
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
