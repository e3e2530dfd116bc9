// Whatever comes over the line to a camera, in pieces of any size. What is taken as a packet is one: built again it has
// the same content. What is kept for later is never more than a packet.

#include "gencp/packet.h"
#include "gencp/packetreceiver.h"
#include "require.h"

#include <algorithm>
#include <span>

namespace {

using namespace krcamerabridge;

void CheckPacket(const Packet& aPacket) {
  Require(aPacket.specific.size() <= kMaxSpecificBytes);
  const std::vector<std::uint8_t> built = BuildPacket(aPacket);
  Packet again;
  std::size_t size = 0;
  Require(ParsePacket(built, again, size) == PacketState::Complete);
  Require(size == built.size() && again == aPacket);
}

std::size_t Receive(PacketReceiver& aReceiver, std::span<const std::uint8_t> aBytes, std::size_t aPiece) {
  std::size_t taken = 0;
  while (!aBytes.empty()) {
    const std::size_t size = std::min(aPiece, aBytes.size());
    aReceiver.Add(aBytes.first(size));
    aBytes = aBytes.subspan(size);
    Packet packet;
    while (aReceiver.Take(packet)) {
      CheckPacket(packet);
      ++taken;
    }
    Require(!aReceiver.HasPart() || aReceiver.CountWaiting() < kMaxPacketBytes);
  }
  return taken;
}

} // namespace

// The first byte says in pieces of which size the others come.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0)
    return 0;
  const std::span bytes(aData + 1, aSize - 1);
  PacketReceiver inPieces;
  PacketReceiver atOnce;
  // In what pieces they come makes no difference.
  Require(Receive(inPieces, bytes, std::size_t{aData[0]} + 1) == Receive(atOnce, bytes, aSize));
  // Behind rubbish of any kind a packet is found as soon as nothing is expected before it.
  inPieces.Clear();
  const std::vector<std::uint8_t> packet = BuildPacket({0, 0, 0x0801, 1, {1, 2, 3, 4}});
  Require(Receive(inPieces, packet, packet.size()) == 1);
  return 0;
}
