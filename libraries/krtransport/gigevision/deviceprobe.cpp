#include "gigevision/deviceprobe.h"

namespace krtransport {
namespace {

using std::chrono::milliseconds;

constexpr GvcpPatience kRegisterPatience{milliseconds(300), 1, milliseconds(300)};
constexpr GvcpPatience kDiscoveryPatience{milliseconds(200), 1, milliseconds(200)};

bool IsRefusal(const KrResult& aResult) {
  return aResult == KrResult::Code::AccessDenied || aResult == KrResult::Code::ProtocolError;
}

} // namespace

ProbeFinding ProbeDevice(GvcpClient& aClient, const std::stop_token& aStop) {
  const std::uint64_t heardBefore = aClient.CountHeard();
  std::uint32_t privilege = 0;
  const KrResult read = aClient.ReadRegister(kControlPrivilegeRegister, privilege, kRegisterPatience, aStop);
  if (read == KrResult::Code::Aborted)
    return ProbeFinding::Cancelled;
  if (read.IsOK())
    return (privilege & kInUseBits) != 0 ? ProbeFinding::Controlled : ProbeFinding::Uncontrolled;
  if (IsRefusal(read))
    return ProbeFinding::Withheld;
  // A device that is held exclusively may pass over what others read; discovery it has to answer.
  DiscoveryPayload payload;
  const KrResult discovered = aClient.Discover(payload, kDiscoveryPatience, aStop);
  if (discovered == KrResult::Code::Aborted)
    return ProbeFinding::Cancelled;
  // What comes too late for its question comes from a device that lives.
  const bool isHeard = discovered.IsOK() || IsRefusal(discovered) || aClient.CountHeard() != heardBefore;
  return isHeard ? ProbeFinding::Withheld : ProbeFinding::Silent;
}

} // namespace krtransport
