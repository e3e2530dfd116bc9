#pragma once
// A disk that is soon full: a file system in memory, mounted at a folder of the test's own, which nobody but this
// process sees.

#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include <sched.h>
#include <sys/mount.h>

namespace krtest {

/// Makes what this thread, and those that it makes from now on, mount the process's own; the first call does it.
inline bool KeepMountsApart() {
  static const bool isApart =
      ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
  return isApart;
}

/// The disk, from construction to destruction. One that cannot be mounted fails the test.
class SmallDisk {
public:
  explicit SmallDisk(std::uint64_t aBytes) {
    EXPECT_TRUE(KeepMountsApart()) << std::generic_category().message(errno);
    const std::string size = "size=" + std::to_string(aBytes);
    EXPECT_EQ(::mount("tmpfs", mFolder.GetPath().c_str(), "tmpfs", 0, size.c_str()), 0)
        << std::generic_category().message(errno);
  }
  ~SmallDisk() { ::umount2(mFolder.GetPath().c_str(), MNT_DETACH); }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  const std::filesystem::path& GetPath() const { return mFolder.GetPath(); }
  std::string GetFile(const std::string& aName) const { return mFolder.GetFile(aName); }
  std::vector<std::string> GetNames() const { return mFolder.GetNames(); }
  /// Others take all the room that is left, and give it back.
  void Fill() const {
    std::ofstream file(GetFile(kFiller), std::ios::binary);
    const std::string block(4096, 'x');
    while (file.write(block.data(), static_cast<std::streamsize>(block.size())).flush())
      ;
  }
  void Free() const { std::filesystem::remove(GetFile(kFiller)); }

private:
  static constexpr const char* kFiller = "others";

  const TemporaryFolder mFolder;
};

} // namespace krtest
