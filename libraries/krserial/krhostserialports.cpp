#include "krserial/krhostserialports.h"

#include "bridge/portlink.h"
#include "comname.h"
#include "configurationdirectory.h"
#include "portnumbers.h"
#include "systemttys.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <utility>

namespace krserial {

namespace {

namespace fs = std::filesystem;

struct Folders {
  std::mutex mutex; // Guards what is set.
  KrHostSerialFolders set;
};

Folders& GetSetFolders() {
  // Never destroyed: threads may still ask while the process ends.
  static Folders& folders = *new Folders;
  return folders;
}

std::string GetOwnPlace(const char* aName) {
  const fs::path directory = GetConfigurationDirectory();
  // A service without a home keeps its state where the system's services do.
  return ((directory.empty() ? fs::path("/var/lib") : directory) / "krgui" / aName).string();
}

KrHostSerialPort MakePort(std::uint32_t aNumber, const std::string& aPath, const std::string& aText) {
  return {.number = aNumber, .name = MakeComName(aNumber), .path = aPath, .text = aText};
}

// The first name of a number, where letters of either case make several.
using Links = std::map<std::uint32_t, fs::path>;

KrResult FindLinks(const fs::path& aFolder, Links& aLinks) {
  std::error_code error;
  for (fs::directory_iterator entry(aFolder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code gone; // One that goes meanwhile is no link.
    const std::optional<std::uint32_t> number = ParseComName(entry->path().filename().native());
    if (!number || !entry->is_symlink(gone))
      continue;
    const auto [place, isNew] = aLinks.try_emplace(*number, entry->path());
    if (!isNew && entry->path() < place->second)
      place->second = entry->path();
  }
  if (error && error != std::errc::no_such_file_or_directory)
    return {KrResult::Code::SystemError, "Reading the folder " + aFolder.string() + ": " + error.message() + "."};
  return {};
}

std::string GetTarget(const fs::path& aLink) {
  std::error_code error;
  return fs::read_symlink(aLink, error).string();
}

// Links that lead nowhere, or that a killed bridge left behind, keep their numbers all the same. The latter may lead to
// anything by now, as the system gives the number of a pseudo-terminal that has gone to the next.
void AddLinked(const Links& aLinks, std::map<std::uint32_t, KrHostSerialPort>& aPorts) {
  for (const auto& [number, link] : aLinks) {
    std::error_code error;
    if (fs::exists(link, error) && PortLink::FindMaker(link) != PortLink::Maker::Killed)
      aPorts.emplace(number, MakePort(number, link.string(), "Link to " + GetTarget(link)));
  }
}

void AddSystem(const std::vector<SystemTty>& aTtys, const Links& aLinks, const std::string& aNumbersFile,
               std::map<std::uint32_t, KrHostSerialPort>& aPorts) {
  std::set<std::uint32_t> taken;
  for (const auto& [number, link] : aLinks)
    taken.insert(number);
  std::vector<TtyIdentity> identities;
  for (const SystemTty& tty : aTtys)
    identities.push_back(tty.identity);
  const std::vector<std::uint32_t> numbers = AssignPortNumbers(aNumbersFile, identities, taken);
  for (std::size_t index = 0; index < aTtys.size(); ++index)
    if (const std::uint32_t number = numbers[index]; number != 0 && !taken.contains(number))
      aPorts.emplace(number, MakePort(number, aTtys[index].path, aTtys[index].text));
}

KrResult MakeNotFound(std::uint32_t aNumber, const Links& aLinks, const KrHostSerialFolders& aFolders) {
  const std::string name = MakeComName(aNumber).ToUtf8();
  if (const auto link = aLinks.find(aNumber); link != aLinks.end()) {
    const bool isStale = PortLink::FindMaker(link->second) == PortLink::Maker::Killed;
    return {KrResult::Code::NotFound,
            name + " is the link " + link->second.string() + " to " + GetTarget(link->second) +
                (isStale ? ", which a bridge left behind when it was killed." : ", where nothing is now.")};
  }
  return {KrResult::Code::NotFound, "The host has no " + name + " now: neither a link com" + std::to_string(aNumber) +
                                        " in " + aFolders.links.ToUtf8() + ", nor a serial port in " +
                                        aFolders.sysfs.ToUtf8() + " with that number in " + aFolders.numbers.ToUtf8() +
                                        "."};
}

KrResult FindAll(const KrHostSerialFolders& aFolders, Links& aLinks,
                 std::map<std::uint32_t, KrHostSerialPort>& aPorts) {
  if (KrResult links = FindLinks(aFolders.links.ToUtf8(), aLinks); !links.IsOK())
    return links;
  std::vector<SystemTty> ttys;
  if (KrResult found = FindSystemTtys(aFolders.sysfs.ToUtf8(), aFolders.devices.ToUtf8(), ttys); !found.IsOK())
    return found;
  AddLinked(aLinks, aPorts);
  AddSystem(ttys, aLinks, aFolders.numbers.ToUtf8(), aPorts);
  return {};
}

} // namespace

} // namespace krserial

KrResult KrHostSerialPorts::List(std::vector<KrHostSerialPort>& aPorts) {
  krserial::Links links;
  std::map<std::uint32_t, KrHostSerialPort> found;
  if (KrResult result = krserial::FindAll(GetFolders(), links, found); !result.IsOK())
    return result;
  aPorts.clear();
  for (auto& [number, port] : found)
    aPorts.push_back(std::move(port));
  return {};
}

KrResult KrHostSerialPorts::GetNames(KrStringList& aNames) {
  std::vector<KrHostSerialPort> ports;
  if (KrResult result = List(ports); !result.IsOK())
    return result;
  aNames.Clear();
  for (const KrHostSerialPort& port : ports)
    aNames.Add(port.name);
  return {};
}

KrResult KrHostSerialPorts::Find(const KrString& aName, KrHostSerialPort& aPort) {
  const std::optional<std::uint32_t> number = krserial::ParseComName(aName.ToUtf8());
  if (!number)
    return krserial::MakeNoComName(aName);
  const KrHostSerialFolders folders = GetFolders();
  krserial::Links links;
  std::map<std::uint32_t, KrHostSerialPort> found;
  if (KrResult result = krserial::FindAll(folders, links, found); !result.IsOK())
    return result;
  const auto port = found.find(*number);
  if (port == found.end())
    return krserial::MakeNotFound(*number, links, folders);
  aPort = port->second;
  return {};
}

void KrHostSerialPorts::SetFolders(const KrHostSerialFolders& aFolders) {
  krserial::Folders& folders = krserial::GetSetFolders();
  const std::lock_guard lock(folders.mutex);
  folders.set = aFolders;
}

KrHostSerialFolders KrHostSerialPorts::GetFolders() {
  krserial::Folders& set = krserial::GetSetFolders();
  KrHostSerialFolders folders;
  {
    const std::lock_guard lock(set.mutex);
    folders = set.set;
  }
  if (folders.links.IsEmpty())
    folders.links = krserial::GetOwnPlace("com-ports");
  if (folders.sysfs.IsEmpty())
    folders.sysfs = "/sys/class/tty";
  if (folders.devices.IsEmpty())
    folders.devices = "/dev";
  if (folders.numbers.IsEmpty())
    folders.numbers = krserial::GetOwnPlace("com-port-numbers");
  if (folders.locks.IsEmpty())
    folders.locks = "/var/lock";
  return folders;
}
