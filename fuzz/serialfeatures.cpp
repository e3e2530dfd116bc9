// Any text may be given to the reader of serial features: it is taken as a whole, or refused with a place for each
// mistake.

#include "serialmapreader.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krserial::SerialMaps maps;
  const KrResult result =
      krserial::ParseSerialMaps(std::string_view(reinterpret_cast<const char*>(aData), aSize), "map.yaml", maps);
  if (!result.IsOK()) {
    const bool isTold =
        result == KrResult::Code::InvalidInput && result.GetDescription().ToUtf8().starts_with("map.yaml:");
    if (!isTold || !maps.empty())
      std::abort();
    return 0;
  }
  for (const krserial::SerialMap& map : maps) {
    bool hasPort = false;
    for (const auto& entry : map.entries)
      hasPort = hasPort || entry;
    if (!hasPort)
      std::abort(); // A map without ports would be of no use to anybody.
  }
  return 0;
}
