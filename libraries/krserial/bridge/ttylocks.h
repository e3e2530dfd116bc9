#pragma once
// The lock files by which programs of the system keep each other from a serial port (Filesystem Hierarchy Standard 3.0,
// 5.9 "/var/lock"). They are looked at alone: a bridge holds its port in other ways.

#include "krserial/krhostserialports.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>

namespace krserial {

struct TtyLock {
  std::string path;
  pid_t process = 0;
};

/// The process that a lock file names: a decimal number behind spaces, or the bytes of one, as older programs write it.
/// Nothing for any other text.
std::optional<pid_t> ParseTtyLock(std::string_view aText);

/// The lock of a process that runs on a device file, or on what a link to one leads to. One that a process left behind
/// is none, nor is one that cannot be read. Thread: any.
std::optional<TtyLock> FindTtyLock(const std::string& aPath, const KrHostSerialFolders& aFolders);

} // namespace krserial
