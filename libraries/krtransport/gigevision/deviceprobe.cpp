#include "gigevision/deviceprobe.h"

namespace krtransport {
namespace {

using std::chrono::milliseconds;

constexpr GvcpPatience kRegisterPatience{milliseconds(300), 1};
constexpr GvcpPatience kDiscoveryPatience{milliseconds(200), 1};

} // namespace

ProbeFinding ProbeDevice(GvcpClient& aClient, const std::stop_token& aStop) {
  std::uint32_t privilege = 0;
  const KrResult read = aClient.ReadRegister(kControlPrivilegeRegister, privilege, kRegisterPatience, aStop);
  if (read == KrResult::Code::Aborted)
    return ProbeFinding::Cancelled;
  if (read.IsOK())
    return (privilege & (kControlBit | kExclusiveBit)) != 0 ? ProbeFinding::Controlled : ProbeFinding::Uncontrolled;
  if (read == KrResult::Code::ProtocolError)
    return ProbeFinding::Reserved;
  // A device that is held exclusively may pass over what others read; discovery it has to answer.
  DiscoveryPayload payload;
  const KrResult discovered = aClient.Discover(payload, kDiscoveryPatience, aStop);
  if (discovered == KrResult::Code::Aborted)
    return ProbeFinding::Cancelled;
  const bool answers = discovered.IsOK() || discovered == KrResult::Code::ProtocolError;
  return answers ? ProbeFinding::Reserved : ProbeFinding::Silent;
}

} // namespace krtransport
