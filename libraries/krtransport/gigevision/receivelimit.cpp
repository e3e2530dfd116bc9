#include "gigevision/receivelimit.h"

#include "krbase/krlogger.h"

#include <algorithm>
#include <fstream>
#include <mutex>
#include <string>

namespace krtransport {
namespace {

constexpr std::uint64_t kLeastBytes = 4u << 20;
constexpr std::uint64_t kMostBytes = 1u << 30;

} // namespace

std::uint32_t GetSocketBufferSize(std::uint64_t aPayloadBytes) {
  const std::uint64_t twoFrames = std::min(aPayloadBytes, kMostBytes) * 2;
  return static_cast<std::uint32_t>(std::clamp(twoFrames, kLeastBytes, kMostBytes));
}

std::optional<std::uint64_t> ReadReceiveLimit() {
  std::uint64_t bytes = 0;
  if (!(std::ifstream("/proc/sys/net/core/rmem_max") >> bytes))
    return std::nullopt;
  return bytes;
}

void WarnOfReceiveLimit(std::uint32_t aWantedBytes) {
  const auto granted = ReadReceiveLimit();
  if (!granted || *granted >= aWantedBytes)
    return;
  static std::once_flag once;
  std::call_once(once, [&] {
    const std::string wanted = std::to_string(aWantedBytes);
    KrLogger("GigEVision")
        .Log(KrLogLevel::Warning, {"WarnOfReceiveLimit", "receivelimit"},
             "The system limits receive buffers to " + std::to_string(*granted) +
                 " bytes; two frames of this camera need " + wanted +
                 ". Frames may be lost. Raise the limit as root: sysctl -w net.core.rmem_max=" + wanted);
  });
}

} // namespace krtransport
