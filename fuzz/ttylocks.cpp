// Any bytes may stand in the lock file of a serial port: they name a process, or none.

#include "bridge/ttylocks.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const auto process = krserial::ParseTtyLock(std::string_view(reinterpret_cast<const char*>(aData), aSize));
  if (process && (*process <= 0 || krserial::ParseTtyLock("  " + std::to_string(*process) + "\n") != process))
    std::abort();
  return 0;
}
