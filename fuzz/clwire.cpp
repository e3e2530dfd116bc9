// Any packet may come from either end of a Camera Link socket: it is taken for what its side may say, and made again
// the same, or refused.

#include "krbase/krclwire.h"
#include "require.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  for (const KrCLSide side : {KrCLSide::Program, KrCLSide::Bridge}) {
    const std::optional<KrCLMessage> message = KrParseCLMessage({aData, aSize}, side);
    if (!message)
      continue;
    const std::vector<std::uint8_t> again = KrMakeCLMessage(*message);
    Require(aSize <= kKrCLMostMessage && std::equal(again.begin(), again.end(), aData, aData + aSize));
    const bool isPrograms = message->kind == KrCLMessageKind::SetSpeed || message->kind == KrCLMessageKind::Flush;
    // What only the other side may say is refused.
    Require(message->kind == KrCLMessageKind::Data || isPrograms == (side == KrCLSide::Program));
  }
  return 0;
}
