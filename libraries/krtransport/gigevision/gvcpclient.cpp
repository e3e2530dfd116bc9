#include "gigevision/gvcpclient.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <poll.h>
#include <random>

namespace krtransport {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// As many datagrams are read at once; a device that sends faster than they are read does not keep the reader from
// looking at the time.
constexpr int kDatagramsPerLook = 64;

} // namespace

std::uint16_t TakeRequestID() {
  // Processes that look for devices at the same time should not count in step.
  static std::atomic<std::uint16_t> lastID{static_cast<std::uint16_t>(std::random_device{}())};
  std::uint16_t id = 0;
  while (id == 0)
    id = ++lastID;
  return id;
}

bool WaitReadable(std::span<const int> aDescriptors, steady_clock::time_point aUntil) {
  std::vector<pollfd> polls;
  for (const int descriptor : aDescriptors)
    polls.push_back({descriptor, POLLIN, 0});
  const auto left = std::chrono::ceil<milliseconds>(aUntil - steady_clock::now());
  if (left <= milliseconds::zero())
    return false;
  // An interrupted wait counts as readable: the caller looks, finds nothing and waits again.
  return ::poll(polls.data(), polls.size(), static_cast<int>(std::min(left, milliseconds(60000)).count())) != 0;
}

KrResult GvcpClient::Connect(std::uint32_t aAddress, std::optional<std::uint32_t> aLocalAddress, GvcpClient& aClient) {
  return GvcpSocket::OpenToDevice(aAddress, aLocalAddress, {}, aClient.mSocket);
}

KrResult GvcpClient::ConnectOnAdapter(std::uint32_t aAddress, std::uint32_t aLocalAddress,
                                      const std::string& aAdapterName, GvcpClient& aClient) {
  return GvcpSocket::OpenToDevice(aAddress, aLocalAddress, aAdapterName, aClient.mSocket);
}

KrResult GvcpClient::Discover(DiscoveryPayload& aPayload, const GvcpPatience& aPatience, std::stop_token aStop) {
  return Transact(
      MakeDiscoveryCommand,
      [&aPayload](auto aDatagram, auto aRequestID) {
        return ParseDiscoveryAcknowledge(aDatagram, aRequestID, aPayload);
      },
      aPatience, std::move(aStop));
}

KrResult GvcpClient::ReadRegister(std::uint32_t aRegister, std::uint32_t& aValue, const GvcpPatience& aPatience,
                                  std::stop_token aStop) {
  return Transact([aRegister](auto aRequestID) { return MakeReadRegisterCommand(aRequestID, aRegister); },
                  [&aValue](auto aDatagram, auto aRequestID) {
                    return ParseReadRegisterAcknowledge(aDatagram, aRequestID, aValue);
                  },
                  aPatience, std::move(aStop));
}

KrResult GvcpClient::ReadMemory(std::uint32_t aAddress, std::span<std::uint8_t> aData, const GvcpPatience& aPatience) {
  return Transact(
      [aAddress, aData](auto aRequestID) {
        return MakeReadMemoryCommand(aRequestID, aAddress, static_cast<std::uint16_t>(aData.size()));
      },
      [aAddress, aData](auto aDatagram, auto aRequestID) {
        return ParseReadMemoryAcknowledge(aDatagram, aRequestID, aAddress, aData);
      },
      aPatience, {});
}

KrResult GvcpClient::Transact(const MakeCommand& aMake, const ParseAnswer& aParse, const GvcpPatience& aPatience,
                              std::stop_token aStop) {
  WakeEvent wake;
  const std::stop_callback wakeOnStop(aStop, [&wake] { wake.Signal(); });
  KrResult result{KrResult::Code::TimeLimitExceeded, "The device did not answer."};
  const auto end = steady_clock::now() + aPatience.total;
  for (int attempt = 0; attempt < aPatience.tries && steady_clock::now() < end; ++attempt) {
    const std::uint16_t requestID = TakeRequestID();
    if (KrResult sent = mSocket.Send(aMake(requestID)); !sent.IsOK())
      return sent;
    const Limits limits = {std::min(steady_clock::now() + aPatience.perTry, end), end};
    result = AwaitAnswer(requestID, aParse, limits, aStop, wake.GetDescriptor());
    if (result != KrResult::Code::TimeLimitExceeded)
      return result;
  }
  return result;
}

KrResult GvcpClient::AwaitAnswer(std::uint16_t aRequestID, const ParseAnswer& aParse, Limits aLimits,
                                 const std::stop_token& aStop, int aWakeDescriptor) {
  const std::array<int, 2> descriptors = {mSocket.GetDescriptor(), aWakeDescriptor};
  do {
    if (aStop.stop_requested())
      return {KrResult::Code::Aborted, "Asking the device was cancelled."};
    if (KrResult result = TakeAnswer(aRequestID, aParse, aLimits); result != KrResult::Code::BadData)
      return result;
  } while (WaitReadable(descriptors, aLimits.tryEnd));
  return {KrResult::Code::TimeLimitExceeded, "The device did not answer."};
}

// Looks through what came; BadData where the answer is not among it.
KrResult GvcpClient::TakeAnswer(std::uint16_t aRequestID, const ParseAnswer& aParse, Limits& aLimits) {
  std::array<std::uint8_t, kMaxGvcpDatagram> buffer;
  for (int i = 0; i < kDatagramsPerLook; ++i) {
    const auto received = mSocket.Receive(buffer);
    if (!received)
      break;
    ++mHeard;
    if (received->size > buffer.size())
      continue;
    const auto datagram = std::span<const std::uint8_t>(buffer).first(received->size);
    std::uint16_t pendingMs = 0;
    if (ParsePendingAcknowledge(datagram, aRequestID, pendingMs).IsOK())
      aLimits.tryEnd = std::min(steady_clock::now() + milliseconds(pendingMs), aLimits.end);
    else if (KrResult result = aParse(datagram, aRequestID); result != KrResult::Code::BadData)
      return result;
  }
  return KrResult::Code::BadData;
}

} // namespace krtransport
