#pragma once
// The files of published Camera Link ports within their directory. A port lives as long as its lock file is locked, and
// the system unlocks it when its process ends, however it ends.

#include "krbase/filedescriptor.h"
#include "krbase/krclsockets.h"
#include "krbase/krresult.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include <sys/un.h>

namespace krbase {

/// The files of one port.
std::string MakeCLLockName(std::uint32_t aNumber);
std::string MakeCLNewName(std::uint32_t aNumber); ///< The lock file's, before its port is complete.
std::string MakeCLSocketName(std::uint32_t aNumber);
/// The address of a port's socket, which is short however long the directory's path is.
sockaddr_un MakeCLAddress(int aDirectory, std::uint32_t aNumber);

/// What is found in the directory.
struct CLPortFiles {
  std::vector<KrCLPort> living;
  std::vector<std::uint32_t> dead; ///< Their processes have ended.
};
KrResult FindCLPorts(int aDirectory, CLPortFiles& aFound);

/// Locks the directory against others that add or remove ports. Busy when another has it locked for longer than the
/// limit, else as the system says, at once; aLock is set on success only.
KrResult LockCLDirectory(int aDirectory, std::chrono::milliseconds aLimit, FileDescriptor& aLock);
/// Removes the files of ports whose processes have ended. The directory is locked by the caller.
void RemoveDeadCLPorts(int aDirectory, const std::vector<std::uint32_t>& aNumbers);

KrResult MakeCLSystemError(const char* aAttempt, int aError);

} // namespace krbase
