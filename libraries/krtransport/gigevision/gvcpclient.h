#pragma once
// Asks one device by itself, without opening it: what it is, who controls it, what its memory holds. Taking control and
// streaming are left to the link.

#include "gigevision/gvcppacket.h"
#include "gigevision/gvcpsocket.h"
#include "krbase/krresult.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace krtransport {

/// Gives a request id that is not 0 and differs from the last 65534. Any thread.
std::uint16_t TakeRequestID();

/// How long a device is given. One that asks for patience gets it, within the total.
struct GvcpPatience {
  std::chrono::milliseconds perTry{300};
  int tries = 3;
  std::chrono::milliseconds total{1000};
};

/// Sends commands to one device and takes their acknowledges, a fresh command for every try.
///
/// Thread: one at a time. Ownership: holds a socket.
class GvcpClient {
public:
  /// Prepares for a device; nothing is sent. The routing table chooses the way, from aLocalAddress where there is one.
  static KrResult Connect(std::uint32_t aAddress, std::optional<std::uint32_t> aLocalAddress, GvcpClient& aClient);
  /// The same on one adapter, whatever the routing table says.
  static KrResult ConnectOnAdapter(std::uint32_t aAddress, std::uint32_t aLocalAddress, const std::string& aAdapterName,
                                   GvcpClient& aClient);

  /// The address from which this host reaches the device.
  std::uint32_t GetLocalAddress() const { return mSocket.GetLocalAddress(); }
  /// How many datagrams came from the device so far: also those that came too late to be an answer.
  std::uint64_t CountHeard() const { return mHeard; }

  /// Each operation ends with the first right answer, and within the total whatever the device sends.
  /// TimeLimitExceeded when none came, AccessDenied or ProtocolError when the device refused, as the parsers say,
  /// Aborted when aStop asked for it.
  KrResult Discover(DiscoveryPayload& aPayload, const GvcpPatience& aPatience, std::stop_token aStop = {});
  KrResult ReadRegister(std::uint32_t aRegister, std::uint32_t& aValue, const GvcpPatience& aPatience,
                        std::stop_token aStop = {});
  /// Address and length are multiples of 4, at most kMaxReadMemory bytes.
  KrResult ReadMemory(std::uint32_t aAddress, std::span<std::uint8_t> aData, const GvcpPatience& aPatience);

private:
  /// The moments at which a try ends, and the latest to which the device may put that off.
  struct Limits {
    std::chrono::steady_clock::time_point tryEnd;
    std::chrono::steady_clock::time_point end;
  };
  using MakeCommand = std::function<std::vector<std::uint8_t>(std::uint16_t aRequestID)>;
  using ParseAnswer = std::function<KrResult(std::span<const std::uint8_t>, std::uint16_t aRequestID)>;

  KrResult Transact(const MakeCommand& aMake, const ParseAnswer& aParse, const GvcpPatience& aPatience,
                    std::stop_token aStop);
  KrResult AwaitAnswer(std::uint16_t aRequestID, const ParseAnswer& aParse, Limits aLimits,
                       const std::stop_token& aStop, int aWakeDescriptor);
  KrResult TakeAnswer(std::uint16_t aRequestID, const ParseAnswer& aParse, Limits& aLimits);

  GvcpSocket mSocket;
  std::uint64_t mHeard = 0;
};

/// Waits until one of the descriptors can be read or the moment has come; a negative descriptor is passed over. False
/// once the moment has passed.
bool WaitReadable(std::span<const int> aDescriptors, std::chrono::steady_clock::time_point aUntil);

} // namespace krtransport
