// Any text may stand in the file of the serial ports' numbers: it is read as numbers that are written alike, or refused
// with a line.

#include "portnumbers.h"
#include "require.h"

#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krserial::PortNumbers numbers;
  const KrResult parsed =
      krserial::ParsePortNumbers(std::string_view(reinterpret_cast<const char*>(aData), aSize), numbers);
  if (!parsed.IsOK()) {
    Require(parsed == KrResult::Code::BadData && parsed.GetDescription().ToUtf8().starts_with("line "));
    Require(numbers.empty());
    return 0;
  }
  krserial::PortNumbers again;
  Require(krserial::ParsePortNumbers(krserial::FormatPortNumbers(numbers), again).IsOK());
  Require(again == numbers);
  return 0;
}
