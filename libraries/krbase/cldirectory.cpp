#include "cldirectory.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace krbase {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kOwnerOnly = 0700;
constexpr mode_t kOthers = 0077;

// Where the directory is, and the folders above it that may have to be made: the outermost first, the directory last.
std::vector<fs::path> FindPath() {
  // A program with the rights of another user must not be led somewhere.
  if (const char* given = ::secure_getenv("KRGUI_CAMERA_LINK_DIR"); given != nullptr && *given != '\0')
    return {given};
  const char* runtime = ::secure_getenv("XDG_RUNTIME_DIR");
  struct stat status = {};
  // It is that of another user after a change of users, who would be shut out by what we make in it.
  if (runtime != nullptr && *runtime == '/' && ::stat(runtime, &status) == 0 && status.st_uid == ::geteuid())
    return {fs::path(runtime) / "krgui", fs::path(runtime) / "krgui" / "camera-link"};
  return {"/tmp/krgui-camera-link-" + std::to_string(::geteuid())};
}

KrResult MakeError(KrResult::Code aCode, const fs::path& aPath, const std::string& aReason) {
  return {aCode, "The directory of Camera Link ports, \"" + aPath.string() + "\", cannot be used: " + aReason};
}

KrResult MakeSystemError(const fs::path& aPath, int aError) {
  const bool isDenied = aError == EACCES || aError == EPERM || aError == ELOOP;
  return MakeError(isDenied ? KrResult::Code::AccessDenied : KrResult::Code::SystemError, aPath,
                   std::generic_category().message(aError) + ".");
}

KrResult CheckRights(const fs::path& aPath, int aDirectory) {
  struct stat status = {};
  if (::fstat(aDirectory, &status) != 0)
    return MakeSystemError(aPath, errno);
  if (status.st_uid != ::geteuid())
    return MakeError(KrResult::Code::AccessDenied, aPath, "it belongs to another user.");
  if ((status.st_mode & kOthers) != 0)
    return MakeError(KrResult::Code::AccessDenied, aPath,
                     "others than its owner may enter it; take their rights from it (chmod 700).");
  return {};
}

} // namespace

KrResult OpenCLDirectory(bool aMakes, FileDescriptor& aDirectory) {
  const std::vector<fs::path> folders = FindPath();
  if (aMakes)
    for (const fs::path& folder : folders)
      if (::mkdir(folder.c_str(), kOwnerOnly) != 0 && errno != EEXIST)
        return MakeSystemError(folder, errno);
  const fs::path& path = folders.back();
  FileDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!directory.IsOpen())
    return !aMakes && errno == ENOENT ? KrResult(KrResult::Code::NotFound) : MakeSystemError(path, errno);
  if (KrResult checked = CheckRights(path, directory.Get()); !checked.IsOK())
    return checked;
  aDirectory = std::move(directory);
  return {};
}

} // namespace krbase
