// Any bytes may stand in the lock file of a serial port: they name a process, or none.

#include "bridge/ttylocks.h"
#include "require.h"

#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const auto process = krserial::ParseTtyLock(std::string_view(reinterpret_cast<const char*>(aData), aSize));
  Require(!process || *process > 0);
  Require(!process || krserial::ParseTtyLock("  " + std::to_string(*process) + "\n") == process);
  return 0;
}
