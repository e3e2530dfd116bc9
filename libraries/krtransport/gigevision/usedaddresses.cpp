#include "gigevision/usedaddresses.h"

#include "gigevision/gvcpclient.h"
#include "gigevision/gvcppacket.h"
#include "gigevision/gvcpsocket.h"
#include "krsystem/ipv4address.h"

#include <algorithm>
#include <array>
#include <linux/neighbour.h>
#include <span>

namespace krtransport {
namespace {

using krsystem::NetworkAdapterFields;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The kernel sends a datagram once it has found who has the address, so that it looks for each of them now. A camera
// answers the datagram besides. An address to which nothing could be sent may be anybody's: it counts as used.
KrResult AskAll(const GvcpSocket& aSocket, std::uint16_t aRequestID, const std::vector<std::uint32_t>& aAddresses,
                std::set<std::uint32_t>& aUnknown) {
  const std::vector<std::uint8_t> command = MakeDiscoveryCommand(aRequestID);
  KrResult failure;
  bool sent = aAddresses.empty();
  for (const std::uint32_t address : aAddresses) {
    KrResult result = aSocket.Send(command, address);
    sent = sent || result.IsOK();
    if (!result.IsOK()) {
      aUnknown.insert(address);
      failure = std::move(result);
    }
  }
  return sent ? KrResult() : failure;
}

// Whether it is the acknowledge that was asked for; one that refuses is a camera's as well.
bool IsAnswer(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID) {
  DiscoveryPayload payload;
  return ParseDiscoveryAcknowledge(aDatagram, aRequestID, payload) != KrResult::Code::BadData;
}

// Which of the addresses answered until the limit.
KrResult HearSenders(const GvcpSocket& aSocket, std::uint16_t aRequestID, const std::vector<std::uint32_t>& aAddresses,
                     steady_clock::time_point aEnd, const std::stop_token& aCancel, std::set<std::uint32_t>& aSenders) {
  constexpr int kDatagramsPerLook = 64;
  WakeEvent wake;
  const std::stop_callback wakeOnCancel(aCancel, [&wake] { wake.Signal(); });
  const std::array<int, 2> descriptors = {aSocket.GetDescriptor(), wake.GetDescriptor()};
  std::array<std::uint8_t, kMaxGvcpDatagram> buffer;
  do {
    if (aCancel.stop_requested())
      return {KrResult::Code::Aborted, "Looking for used addresses was cancelled."};
    for (int i = 0; i < kDatagramsPerLook; ++i) {
      const auto received = aSocket.Receive(buffer);
      if (!received)
        break;
      // Others may send in any number of names, which would fill the memory.
      if (std::ranges::find(aAddresses, received->sender) != aAddresses.end() && received->size <= buffer.size() &&
          IsAnswer(std::span(buffer).first(received->size), aRequestID))
        aSenders.insert(received->sender);
    }
  } while (WaitReadable(descriptors, aEnd));
  return {};
}

// The addresses of this host, and those of which the kernel knows somebody on the adapter.
KrResult AddKnown(const std::string& aAdapterName, std::set<std::uint32_t>& aKnown) {
  KernelTables tables;
  std::vector<KernelNeighbour> neighbours;
  if (KrResult result = ReadKernelTables(tables); !result.IsOK())
    return result;
  if (KrResult result = ReadNeighbours(neighbours); !result.IsOK())
    return result;
  for (const KernelAddress& address : tables.addresses)
    aKnown.insert(address.address);
  const auto link = std::ranges::find(tables.links, aAdapterName, &KernelLink::name);
  for (const KernelNeighbour& neighbour : neighbours)
    if (link != tables.links.end() && neighbour.linkIndex == link->index && IsUsed(neighbour))
      aKnown.insert(neighbour.address);
  return {};
}

} // namespace

bool IsUsed(const KernelNeighbour& aNeighbour) {
  constexpr std::uint32_t kSomebody = NUD_REACHABLE | NUD_STALE | NUD_DELAY | NUD_PROBE | NUD_PERMANENT;
  return aNeighbour.hasLinkAddress && (aNeighbour.state & kSomebody) != 0;
}

KrResult FindUsedAddresses(const NetworkAdapterFields& aAdapter, const std::vector<std::uint32_t>& aAddresses,
                           milliseconds aTimeout, const std::stop_token& aCancel, std::vector<std::uint32_t>& aUsed) {
  const bool hasAddress = std::ranges::any_of(aAdapter.addresses, [](const krsystem::AdapterAddress& aRow) {
    return krsystem::ParseIPv4(aRow.address).value_or(0) != 0;
  });
  if (!hasAddress)
    return {KrResult::Code::NotSupported, "The network adapter " + aAdapter.name +
                                              " has no address from which anybody could be asked. Give it one first."};
  const auto end = steady_clock::now() + aTimeout;
  GvcpSocket socket;
  KrResult result = GvcpSocket::OpenOnAdapter(aAdapter.name.ToUtf8(), 0, socket);
  std::set<std::uint32_t> known;
  const std::uint16_t requestID = TakeRequestID();
  if (result.IsOK())
    result = AskAll(socket, requestID, aAddresses, known);
  if (result.IsOK())
    result = HearSenders(socket, requestID, aAddresses, end, aCancel, known);
  if (result.IsOK())
    result = AddKnown(aAdapter.name.ToUtf8(), known);
  if (!result.IsOK())
    return result;
  aUsed.clear();
  std::ranges::copy_if(aAddresses, std::back_inserter(aUsed),
                       [&known](std::uint32_t aAddress) { return known.contains(aAddress); });
  return {};
}

} // namespace krtransport
