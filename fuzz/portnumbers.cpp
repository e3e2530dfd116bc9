// Any text may stand in the file of the serial ports' numbers: it is read as numbers that are written alike, or refused
// with a line.

#include "portnumbers.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krserial::PortNumbers numbers;
  const KrResult parsed =
      krserial::ParsePortNumbers(std::string_view(reinterpret_cast<const char*>(aData), aSize), numbers);
  if (!parsed.IsOK()) {
    if (parsed != KrResult::Code::BadData || !parsed.GetDescription().ToUtf8().starts_with("line ") || !numbers.empty())
      std::abort();
    return 0;
  }
  krserial::PortNumbers again;
  if (!krserial::ParsePortNumbers(krserial::FormatPortNumbers(numbers), again).IsOK() || again != numbers)
    std::abort();
  return 0;
}
