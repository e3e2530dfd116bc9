// The command line companion: lists cameras, takes frames from them and sets their features, without a display.

#include "commandline.h"
#include "entriescommand.h"
#include "executecommand.h"
#include "featurescommand.h"
#include "ipcommand.h"
#include "krdevice/krdeviceend.h"
#include "krtransport/krtransport.h"
#include "listcommand.h"
#include "outputreader.h"
#include "portscommand.h"
#include "saveframecommand.h"
#include "settingscommands.h"
#include "streamcommand.h"
#include "valuecommands.h"
#include "xmlcommand.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <iterator>

namespace {

struct CommandRow {
  krtool::Verb verb;
  int (*run)(KrSystem& aSystem, const krtool::CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors);
};

// The commands that need devices.
constexpr CommandRow kCommands[] = {
    {krtool::Verb::List, krtool::RunList},         {krtool::Verb::IP, krtool::RunIP},
    {krtool::Verb::Stream, krtool::RunStream},     {krtool::Verb::SaveFrame, krtool::RunSaveFrame},
    {krtool::Verb::Features, krtool::RunFeatures}, {krtool::Verb::Entries, krtool::RunEntries},
    {krtool::Verb::Get, krtool::RunGet},           {krtool::Verb::Set, krtool::RunSet},
    {krtool::Verb::Execute, krtool::RunExecute},   {krtool::Verb::Xml, krtool::RunXml},
    {krtool::Verb::Save, krtool::RunSave},         {krtool::Verb::Load, krtool::RunLoad},
    {krtool::Verb::Ports, krtool::RunPorts},
};

int RunWithDevices(const krtool::CommandLine& aCommandLine) {
  if (KrResult prepared = KrGiveBackDevicesAtEnd(); !prepared.IsOK())
    std::cerr << "krtool: " << prepared.GetDescription().CStr() << '\n';
  const KrTransportSelection selection = {
      .gigEVision = true, .simulation = aCommandLine.simulate, .labFile = aCommandLine.labFile};
  if (KrResult installed = KrInstallTransports(selection); !installed.IsOK()) {
    std::cerr << "krtool: " << installed.GetDescription().CStr() << '\n';
    return 1;
  }
  KrSystem system;
  // Devices with an address of a foreign subnet are to be seen, too, even if only to be called unreachable.
  system.SetSubnetBroadcastEnabled(false);
  const auto* const row = std::find_if(std::begin(kCommands), std::end(kCommands),
                                       [&](const CommandRow& aRow) { return aRow.verb == aCommandLine.verb; });
  return row->run(system, aCommandLine, std::cout, std::cerr);
}

int Run(const krtool::CommandLine& aCommandLine) {
  if (aCommandLine.verb == krtool::Verb::Help)
    std::cout << krtool::GetHelpText();
  else if (aCommandLine.verb == krtool::Verb::Version)
    std::cout << "krtool " << KRGUI_VERSION << '\n';
  else
    return RunWithDevices(aCommandLine);
  return 0;
}

// As shells have it for what SIGPIPE ended; whoever talks to cameras has the process ignore that signal.
constexpr int kEndedByPipe = 128 + SIGPIPE;

} // namespace

int main(int aCount, char** aArguments) {
  const krtool::ParsedCommandLine parsed = krtool::ParseCommandLine({aArguments + 1, aArguments + aCount});
  if (!parsed.error.empty()) {
    std::cerr << "krtool: " << parsed.error << "\nTry: krtool --help\n";
    return 2;
  }
  const int exitCode = Run(parsed.commandLine);
  if (!std::cout.flush()) {
    // Whoever reads a listing may have seen enough: nothing to tell of. A stream's figures are its result.
    if (parsed.commandLine.verb != krtool::Verb::Stream && krtool::IsReaderGone())
      return kEndedByPipe;
    std::cerr << "krtool: the output could not be written.\n";
    return 1;
  }
  return exitCode;
}
