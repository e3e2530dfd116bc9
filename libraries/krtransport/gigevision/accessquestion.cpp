#include "gigevision/accessquestion.h"

#include "gigevision/broadcastround.h"
#include "gigevision/gvcpclient.h"
#include "gigevision/gvcppacket.h"
#include "gigevision/networkadapters.h"
#include "krsystem/ipv4address.h"

#include <chrono>
#include <optional>

namespace krtransport {
namespace {

using krsystem::AccessType;
using krsystem::NetworkAdapterFields;

// Who asks waits for it in a window: a device that keeps silent is not asked twice.
constexpr std::chrono::milliseconds kLimit{200};

AccessType ToAccessType(std::uint32_t aPrivilege) {
  if ((aPrivilege & kExclusiveBit) != 0)
    return AccessType::Exclusive;
  return (aPrivilege & kInUseBits) != 0 ? AccessType::Control : AccessType::Open;
}

KrResult ReadOnAdapters(const std::vector<NetworkAdapterFields>& aAdapters, std::uint32_t aAddress,
                        std::uint32_t& aPrivilege) {
  const std::uint16_t requestID = TakeRequestID();
  KrResult answer(KrResult::Code::TimeLimitExceeded,
                  "The device at " + krsystem::FormatIPv4(aAddress) + " did not answer.");
  const auto take = [&](std::size_t, std::span<const std::uint8_t> aDatagram) {
    KrResult parsed = ParseReadRegisterAcknowledge(aDatagram, requestID, aPrivilege);
    if (parsed == KrResult::Code::BadData)
      return true;
    answer = std::move(parsed);
    return !answer.IsOK();
  };
  const BroadcastRound round = {.command = MakeReadRegisterCommand(requestID, kControlPrivilegeRegister),
                                .target = aAddress,
                                .isSentTwice = false,
                                .timeout = kLimit,
                                .cancel = {}};
  const KrResult asked = RunBroadcastRound(aAdapters, round, take);
  return asked.IsOK() ? answer : asked;
}

KrResult ReadByRoute(std::uint32_t aAddress, std::uint32_t& aPrivilege) {
  GvcpClient client;
  if (KrResult result = GvcpClient::Connect(aAddress, std::nullopt, client); !result.IsOK())
    return result;
  return client.ReadRegister(kControlPrivilegeRegister, aPrivilege, {.perTry = kLimit, .tries = 1, .total = kLimit});
}

} // namespace

KrResult AskAccessType(const std::vector<NetworkAdapterFields>& aAdapters, std::uint32_t aAddress, AccessType& aType) {
  const std::vector<NetworkAdapterFields> candidates = FindAdaptersOfSubnet(aAdapters, aAddress);
  std::uint32_t privilege = 0;
  const KrResult result =
      candidates.size() > 1 ? ReadOnAdapters(candidates, aAddress, privilege) : ReadByRoute(aAddress, privilege);
  // Only a device that is held exclusively keeps others from reading this.
  if (result == KrResult::Code::AccessDenied)
    privilege = kExclusiveBit;
  else if (!result.IsOK())
    return result;
  aType = ToAccessType(privilege);
  return {};
}

} // namespace krtransport
