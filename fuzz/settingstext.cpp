// Whatever may stand in a settings file: it is read as a whole or refused, and what was read is the same again after it
// was written and read once more.

#include "krgenicam/krgensettings.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  KrGenSettings read;
  if (!read.FromText({reinterpret_cast<const char*>(aData), aSize}).IsOK())
    return 0;

  KrGenSettings again;
  if (!again.FromText(read.ToText()).IsOK() || again.GetSettings() != read.GetSettings())
    std::abort();
  return 0;
}
