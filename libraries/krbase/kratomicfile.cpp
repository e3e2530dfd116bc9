#include "krbase/kratomicfile.h"

#include "krbase/filedescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using krbase::FileDescriptor;

constexpr int kMostLinks = 40; // As many as the system itself follows.
constexpr int kNameTries = 16;
constexpr mode_t kNewFileRights = 0666; // Less what the process' mask takes.
constexpr mode_t kPrivateRights = 0600;
constexpr std::size_t kStepBytes = std::size_t{4} << 20U; // Between two words of progress.

struct ErrorRow {
  int error;
  KrResult::Code code;
};

constexpr std::array kErrorRows = {
    ErrorRow{ENOENT, KrResult::Code::NotFound},     ErrorRow{ENOTDIR, KrResult::Code::NotFound},
    ErrorRow{EACCES, KrResult::Code::AccessDenied}, ErrorRow{EPERM, KrResult::Code::AccessDenied},
    ErrorRow{EROFS, KrResult::Code::AccessDenied},
};

KrResult MakeError(const KrString& aFileName, int aError) {
  const auto* row = std::find_if(kErrorRows.begin(), kErrorRows.end(),
                                 [aError](const ErrorRow& aRow) { return aRow.error == aError; });
  return {row != kErrorRows.end() ? row->code : KrResult::Code::SystemError,
          "The file \"" + aFileName + "\" cannot be written: " + std::generic_category().message(aError) + "."};
}

KrResult MakeTakenError(const KrString& aFileName) {
  return {KrResult::Code::WrongState, "The file \"" + aFileName + "\" exists already and is left as it is."};
}

KrResult MakeNoFileError(const KrString& aFileName) {
  return {KrResult::Code::InvalidInput, "\"" + aFileName + "\" cannot be written: it is no file."};
}

// The path behind symbolic links, whether or not there is a file yet; the error of the system where there is no end.
std::error_code FollowLinks(fs::path& aPath) {
  for (int links = 0; links < kMostLinks; ++links) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(aPath, error)))
      return {}; // What stands against it will be found when the folder is opened.
    const fs::path target = fs::read_symlink(aPath, error);
    if (error)
      return error;
    aPath = aPath.parent_path() / target; // An absolute target replaces the folder.
  }
  return std::make_error_code(std::errc::too_many_symbolic_link_levels);
}

// Whether the system cannot flush a part of such a file, or is not let: all of it may be flushed nevertheless.
bool CanNotFlushParts(int aError) {
  return aError == ENOSYS || aError == EINVAL || aError == ESPIPE || aError == EPERM;
}

std::string MakeTemporaryName() {
  std::uint64_t number = 0;
  // A number that could not be drawn is as good as any: the file is created only where its name is free.
  if (::getrandom(&number, sizeof number, 0) < 0)
    number = static_cast<std::uint64_t>(::getpid());
  std::array<char, 32> name = {};
  std::snprintf(name.data(), name.size(), ".kr-%016llx.tmp", static_cast<unsigned long long>(number));
  return name.data();
}

// Makes the new file look like the one that it replaces. An owner that this process may not give stays its own. The
// rights come last: until then nobody else reads what may be private.
bool TakeOverRights(int aDescriptor, const struct stat& aExisting) {
  [[maybe_unused]] const int ownerGiven = ::fchown(aDescriptor, aExisting.st_uid, static_cast<gid_t>(-1));
  [[maybe_unused]] const int groupGiven = ::fchown(aDescriptor, static_cast<uid_t>(-1), aExisting.st_gid);
  return ::fchmod(aDescriptor, aExisting.st_mode & 07777) == 0;
}

} // namespace

struct KrAtomicFile::Body {
  ~Body() {
    if (!temporaryName.empty())
      ::unlinkat(folder.Get(), temporaryName.c_str(), 0);
  }

  KrResult OpenFolder();
  KrResult CheckExisting();
  KrResult Create();
  KrResult FlushInSteps(const Progress& aProgress) const;
  KrResult Rename(Flushing aFlushing);
  KrResult Fail(int aError) {
    failure = MakeError(fileName, aError);
    return failure;
  }

  KrString fileName; // As the caller gave it.
  Existing existing = Existing::Replaced;
  std::string targetName;    // Within the folder.
  std::string temporaryName; // Within the folder; empty once there is none.
  FileDescriptor folder;     // Where both names are looked up, even when the folder is moved meanwhile.
  FileDescriptor file;
  std::optional<struct stat> replaced; // The file that had the name when this one was opened.
  KrResult failure;                    // Of the first write that failed: such a file is never committed.
};

KrResult KrAtomicFile::Body::OpenFolder() {
  fs::path path = fileName.ToUtf8();
  if (const std::error_code error = FollowLinks(path))
    return MakeError(fileName, error.value());
  targetName = path.filename().string();
  if (targetName.empty())
    return MakeNoFileError(fileName);
  const std::string folderName = path.has_parent_path() ? path.parent_path().string() : ".";
  folder = FileDescriptor(::open(folderName.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  return folder.IsOpen() ? KrResult() : MakeError(fileName, errno);
}

KrResult KrAtomicFile::Body::CheckExisting() {
  struct stat status = {};
  if (::fstatat(folder.Get(), targetName.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
    return errno == ENOENT ? KrResult() : MakeError(fileName, errno);
  replaced = status;
  if (!S_ISREG(status.st_mode))
    return MakeNoFileError(fileName);
  if (existing == Existing::Kept)
    return MakeTakenError(fileName);
  // The folder's rights alone decide on a renaming; a file that is protected itself stays as well.
  return ::faccessat(folder.Get(), targetName.c_str(), W_OK, AT_EACCESS) == 0 ? KrResult() : MakeError(fileName, errno);
}

KrResult KrAtomicFile::Body::Create() {
  if (KrResult checked = CheckExisting(); !checked.IsOK())
    return checked;
  const mode_t rights = replaced ? kPrivateRights : kNewFileRights;
  for (int tries = 0; tries < kNameTries && !file.IsOpen(); ++tries) {
    std::string name = MakeTemporaryName();
    file = FileDescriptor(::openat(folder.Get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, rights));
    if (file.IsOpen())
      temporaryName = std::move(name);
    else if (errno != EEXIST)
      break;
  }
  return file.IsOpen() ? KrResult() : MakeError(fileName, errno);
}

KrResult KrAtomicFile::Body::Rename(Flushing aFlushing) {
  const auto rename = [this](unsigned aFlags) {
    return ::renameat2(folder.Get(), temporaryName.c_str(), folder.Get(), targetName.c_str(), aFlags) == 0;
  };
  bool isRenamed = rename(existing == Existing::Kept ? RENAME_NOREPLACE : 0);
  if (!isRenamed && errno == EINVAL && existing == Existing::Kept) {
    // A file system that cannot look and rename in one step.
    const bool isTaken = ::faccessat(folder.Get(), targetName.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
    errno = EEXIST;
    isRenamed = !isTaken && rename(0);
  }
  if (!isRenamed)
    return errno == EEXIST ? MakeTakenError(fileName) : MakeError(fileName, errno);
  temporaryName.clear();
  if (aFlushing == Flushing::LeftToSystem)
    return {};
  // Under its name the file is whole already. Whether a power cut right now brings the old one back is what a flush of
  // the folder decides, which not every file system offers; its failure therefore fails nothing.
  const FileDescriptor readable(::openat(folder.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  [[maybe_unused]] const int isFlushed = readable.IsOpen() ? ::fsync(readable.Get()) : -1;
  return {};
}

// An error is told once: the flush of the whole file would not see it any more.
KrResult KrAtomicFile::Body::FlushInSteps(const Progress& aProgress) const {
  constexpr unsigned kWhole = SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
  struct stat status = {};
  if (::fstat(file.Get(), &status) != 0)
    return MakeError(fileName, errno);
  for (off_t begin = 0; begin < status.st_size; begin += kStepBytes) {
    if (::sync_file_range(file.Get(), begin, kStepBytes, kWhole) != 0)
      return CanNotFlushParts(errno) ? KrResult() : MakeError(fileName, errno);
    aProgress(std::min<std::uint64_t>(kStepBytes, static_cast<std::uint64_t>(status.st_size - begin)));
  }
  return {};
}

KrAtomicFile::KrAtomicFile() = default;
KrAtomicFile::~KrAtomicFile() = default;

KrResult KrAtomicFile::Open(const KrString& aFileName, Existing aExisting) {
  try {
    Discard();
    if (aFileName.IsEmpty() || aFileName.ToUtf8().find('\0') != std::string::npos)
      return {KrResult::Code::InvalidInput, "A file cannot be written without a name, or with a zero byte in it."};
    auto body = std::make_unique<Body>();
    body->fileName = aFileName;
    body->existing = aExisting;
    if (KrResult opened = body->OpenFolder(); !opened.IsOK())
      return opened;
    if (KrResult created = body->Create(); !created.IsOK())
      return created;
    mBody = std::move(body);
    return {};
  } catch (const std::exception& exception) {
    return {KrResult::Code::SystemError, "The file \"" + aFileName + "\" cannot be written: " + exception.what() + "."};
  }
}

KrResult KrAtomicFile::Write(const void* aBytes, std::size_t aCount) {
  if (!mBody)
    return {KrResult::Code::WrongState, "No file is open for writing."};
  if (!mBody->failure.IsOK())
    return mBody->failure;
  const char* next = static_cast<const char*>(aBytes);
  while (aCount > 0) {
    const ssize_t written = ::write(mBody->file.Get(), next, std::min(aCount, kStepBytes));
    if (written < 0 && errno != EINTR)
      return mBody->Fail(errno);
    if (written > 0) {
      next += written;
      aCount -= static_cast<std::size_t>(written);
      if (mProgress)
        mProgress(static_cast<std::uint64_t>(written));
    }
  }
  return {};
}

KrResult KrAtomicFile::Seek(std::uint64_t aPosition) {
  if (!mBody)
    return {KrResult::Code::WrongState, "No file is open for writing."};
  if (!mBody->failure.IsOK())
    return mBody->failure;
  if (aPosition > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()))
    return mBody->Fail(EFBIG);
  return ::lseek(mBody->file.Get(), static_cast<off_t>(aPosition), SEEK_SET) >= 0 ? KrResult() : mBody->Fail(errno);
}

KrResult KrAtomicFile::Commit(Flushing aFlushing) {
  if (!mBody)
    return {KrResult::Code::WrongState, "No file is open for writing."};
  const std::unique_ptr<Body> body = std::move(mBody);
  if (!body->failure.IsOK())
    return body->failure;
  if (body->replaced && !TakeOverRights(body->file.Get(), *body->replaced))
    return MakeError(body->fileName, errno);
  if (aFlushing == Flushing::ToDisk && mProgress) {
    if (KrResult flushed = body->FlushInSteps(mProgress); !flushed.IsOK())
      return flushed;
  }
  if (aFlushing == Flushing::ToDisk && ::fsync(body->file.Get()) != 0)
    return MakeError(body->fileName, errno);
  if (!body->file.Close())
    return MakeError(body->fileName, errno);
  return body->Rename(aFlushing);
}

void KrAtomicFile::Discard() {
  mBody.reset();
}
