#include "clprotocol/installedfiles.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <system_error>

namespace krcamerabridge {

namespace {

namespace fs = std::filesystem;

constexpr const char* kHostVariable = "KRGUI_CLPROTOCOL_HOST";

// The directory of the shared library, or program, that this code is in.
fs::path GetOwnDirectory() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&FindCLHost), &info) == 0 || info.dli_fname == nullptr)
    return {};
  std::error_code error;
  const fs::path own = fs::canonical(info.dli_fname, error);
  if (!error)
    return own.parent_path();
  // A program may have been started by a name that is none from here.
  return fs::read_symlink("/proc/self/exe", error).parent_path();
}

bool IsProgram(const fs::path& aPath) {
  std::error_code error;
  return fs::is_regular_file(aPath, error) && access(aPath.c_str(), X_OK) == 0;
}

bool IsDirectory(const fs::path& aPath) {
  std::error_code error;
  return fs::is_directory(aPath, error);
}

// Libraries may be one directory deeper than programs.
template <typename IsFound>
std::string FindBeside(const char* aFromPrefix, const char* aInstalled, IsFound aIsFound) {
  const fs::path own = GetOwnDirectory();
  if (!own.empty()) {
    for (const char* prefix : {"..", "../.."}) {
      const fs::path found = (own / prefix / aFromPrefix).lexically_normal();
      if (aIsFound(found))
        return found.string();
    }
  }
  return aIsFound(fs::path(aInstalled)) ? aInstalled : "";
}

} // namespace

std::string FindCLHost() {
  if (const char* const named = secure_getenv(kHostVariable); named != nullptr && *named != '\0')
    return named;
  return FindBeside(KR_CLPROTOCOL_HOST_FROM_PREFIX, KR_CLPROTOCOL_HOST_INSTALLED, IsProgram);
}

std::string FindInstalledCLDrivers() {
  return FindBeside(KR_CLPROTOCOL_DRIVERS_FROM_PREFIX, KR_CLPROTOCOL_DRIVERS_INSTALLED, IsDirectory);
}

} // namespace krcamerabridge
