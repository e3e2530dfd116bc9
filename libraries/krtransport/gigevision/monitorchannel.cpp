#include "gigevision/monitorchannel.h"

namespace krtransport {
namespace {

using std::chrono::milliseconds;

// As long as a call of a device under control takes at most.
constexpr GvcpPatience kPatience{milliseconds(300), 3, milliseconds(2500)};

} // namespace

KrResult MonitorChannel::Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) {
  KrResult result = mClient.ReadMemory(static_cast<std::uint32_t>(aAddress), aData, kPatience);
  // Whose silence it is, the thread says that this runs on.
  if (result == KrResult::Code::TimeLimitExceeded)
    return {result.GetCode(), "Reading its memory was tried in vain; check its cable and its power."};
  return result;
}

KrResult MonitorChannel::Write(std::uint64_t, std::span<const std::uint8_t>) {
  return {KrResult::Code::AccessDenied,
          "The device was opened for reading only. Open it with control to write its registers."};
}

} // namespace krtransport
