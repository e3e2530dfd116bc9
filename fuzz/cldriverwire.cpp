// Any bytes may come from either end of a CL Protocol driver's socket, in pieces of any size: frames are taken from
// them that their side may send, and made again the same, or nothing more is taken.

#include "clprotocol/driverwire.h"
#include "require.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace {

using namespace krcamerabridge;

constexpr std::uint8_t kFirstOfDriver = 0x81;

std::vector<std::uint8_t> TakeAll(WireReader& aReader, std::span<const std::uint8_t> aBytes, std::size_t aPiece,
                                  WireSide aFrom) {
  std::vector<std::uint8_t> again;
  for (std::size_t at = 0; at < aBytes.size(); at += aPiece) {
    aReader.Add(aBytes.subspan(at, std::min(aPiece, aBytes.size() - at)));
    while (const std::optional<WireFrame> frame = aReader.Take()) {
      // What only the other side may say is refused.
      Require((static_cast<std::uint8_t>(frame->kind) >= kFirstOfDriver) == (aFrom == WireSide::Driver));
      const std::vector<std::uint8_t> bytes = MakeWireBytes(*frame);
      again.insert(again.end(), bytes.begin(), bytes.end());
    }
  }
  return again;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::span bytes(aData, aSize);
  for (const WireSide side : {WireSide::Application, WireSide::Driver}) {
    WireReader whole(side);
    WireReader pieces(side);
    const std::vector<std::uint8_t> taken = TakeAll(whole, bytes, aSize + 1, side);
    Require(taken == TakeAll(pieces, bytes, 7, side) && whole.IsBroken() == pieces.IsBroken());
    Require(taken.size() <= aSize && std::equal(taken.begin(), taken.end(), aData));
  }
  return 0;
}
