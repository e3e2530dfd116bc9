#include "clprotocol/cldriverlist.h"

#include "clprotocol/clidentifiers.h"
#include "clprotocol/installedfiles.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>

namespace krcamerabridge {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostDirectories = 64;
constexpr std::size_t kMostDrivers = 256;
constexpr std::size_t kMostXMLFiles = 1000;
constexpr std::string_view kLibraryEnd = ".so";
constexpr std::string_view kDebugEnd = ".debug.so";
constexpr std::string_view kXMLEnd = ".xml";

struct Setting {
  std::mutex mutex; // Guards what follows.
  std::vector<std::string> directories; // None for the one of the installation.
};

Setting& GetSetting() {
  // Never destroyed: threads may still ask while the process ends.
  static Setting& setting = *new Setting;
  return setting;
}

std::vector<std::string> GetSetDirectories() {
  Setting& setting = GetSetting();
  const std::lock_guard lock(setting.mutex);
  return setting.directories.empty() ? std::vector<std::string>{FindInstalledCLDrivers()} : setting.directories;
}

void AddDirectory(std::string_view aDirectory, std::vector<std::string>& aDirectories) {
  std::string directory(aDirectory);
  while (directory.size() > 1 && directory.ends_with('/'))
    directory.pop_back();
  if (!directory.empty() && aDirectories.size() < kMostDirectories &&
      std::ranges::find(aDirectories, directory) == aDirectories.end())
    aDirectories.push_back(directory);
}

std::vector<std::string> GetDirectories() {
  std::vector<std::string> directories;
  const char* const variable = ::secure_getenv("GENICAM_CLPROTOCOL");
  std::string_view rest = variable != nullptr ? variable : "";
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of(":;"), rest.size());
    AddDirectory(rest.substr(0, end), directories);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  for (const std::string& directory : GetSetDirectories())
    AddDirectory(directory, directories);
  return directories;
}

// The names of the files with a beginning and an end, in their order.
std::vector<std::string> ListFiles(const std::string& aDirectory, std::string_view aBegin, std::string_view aEnd,
                                   std::size_t aMost) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator i(aDirectory, error), end; !error && i != end && names.size() < aMost;
       i.increment(error)) {
    const std::string name = i->path().filename().string();
    std::error_code ignored; // A file that cannot be asked what it is counts as none.
    if (name.size() > aBegin.size() + aEnd.size() && name.starts_with(aBegin) && name.ends_with(aEnd) &&
        i->is_regular_file(ignored))
      names.push_back(name);
  }
  std::ranges::sort(names);
  return names;
}

bool IsDebugTwin(const std::string& aName, const std::vector<std::string>& aNames) {
  if (!aName.ends_with(kDebugEnd))
    return false;
  const std::string plain = aName.substr(0, aName.size() - kDebugEnd.size()) + std::string(kLibraryEnd);
  return std::ranges::binary_search(aNames, plain);
}

} // namespace

void SetCLDriverDirectories(const std::vector<std::string>& aDirectories) {
  Setting& setting = GetSetting();
  const std::lock_guard lock(setting.mutex);
  setting.directories = aDirectories;
}

std::vector<CLDriverFile> ListCLDrivers() {
  std::vector<CLDriverFile> drivers;
  for (const std::string& root : GetDirectories()) {
    const std::string directory = root + "/" KR_CLPROTOCOL_SYSTEM;
    const std::vector<std::string> names = ListFiles(directory, "lib", kLibraryEnd, kMostDrivers);
    for (const std::string& name : names) {
      if (!IsDebugTwin(name, names))
        drivers.push_back({root, directory, name});
    }
  }
  return drivers;
}

std::vector<CLXMLFile> ListCLXMLFiles(const CLDriverFile& aDriver) {
  std::vector<CLXMLFile> files;
  for (const std::string& directory : {aDriver.directory, aDriver.root}) {
    for (const std::string& name : ListFiles(directory, "", kXMLEnd, kMostXMLFiles)) {
      const std::string id = name.substr(0, name.size() - kXMLEnd.size());
      if (ParseCLXMLID(id))
        files.push_back({id, directory + '/' + name});
    }
  }
  return files;
}

} // namespace krcamerabridge
