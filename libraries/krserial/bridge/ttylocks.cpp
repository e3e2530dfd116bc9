#include "bridge/ttylocks.h"

#include "krbase/krwholefile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <set>
#include <system_error>

namespace krserial {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostLockBytes = 4096; // Some programs write their name and user, too.
constexpr int kMostLinks = 40;               // As many as the system follows.

bool IsRunning(pid_t aProcess) {
  return ::kill(aProcess, 0) == 0 || errno == EPERM;
}

// A lock is named after the device file, of which some programs take the last name, others the whole path below /dev.
void AddNames(const fs::path& aPath, const std::string& aDevices, std::set<std::string>& aNames) {
  for (const std::string& devices : {aDevices + "/", std::string("/dev/")})
    if (aPath.native().starts_with(devices)) {
      std::string below = aPath.native().substr(devices.size());
      std::ranges::replace(below, '/', '_');
      aNames.insert(below);
      aNames.insert(aPath.filename().string());
    }
}

// Each link to a device file has a name of its own, by which a program may have opened it.
std::set<std::string> FindNames(fs::path aPath, const std::string& aDevices) {
  std::set<std::string> names;
  std::error_code error;
  for (int count = 0; count < kMostLinks && !error; ++count) {
    AddNames(aPath, aDevices, names);
    aPath = (aPath.parent_path() / fs::read_symlink(aPath, error)).lexically_normal();
  }
  return names;
}

} // namespace

std::optional<pid_t> ParseTtyLock(std::string_view aText) {
  pid_t process = 0;
  const std::size_t start = std::min(aText.find_first_not_of(' '), aText.size());
  const char* const end = aText.data() + aText.size();
  const auto [rest, error] = std::from_chars(aText.data() + start, end, process);
  const bool isText = error == std::errc() && (rest == end || *rest == ' ' || *rest == '\n');
  if (!isText && aText.size() == sizeof(process))
    std::memcpy(&process, aText.data(), sizeof(process));
  else if (!isText)
    return std::nullopt;
  return process > 0 ? std::optional(process) : std::nullopt;
}

std::optional<TtyLock> FindTtyLock(const std::string& aPath, const KrHostSerialFolders& aFolders) {
  for (const std::string& name : FindNames(aPath, aFolders.devices.ToUtf8())) {
    const std::string path = (fs::path(aFolders.locks.ToUtf8()) / ("LCK.." + name)).string();
    std::string text;
    if (!KrReadWholeFile(path, kMostLockBytes, text).IsOK())
      continue;
    if (const std::optional<pid_t> process = ParseTtyLock(text); process && IsRunning(*process))
      return TtyLock{.path = path, .process = *process};
  }
  return std::nullopt;
}

} // namespace krserial
