#include "clprotocol/clserial.h"

#include "clprotocol/clprotocolapi.h"
#include "krbase/krclwire.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace krcamerabridge {

namespace {

using Clock = std::chrono::steady_clock;

std::uint32_t GetRest(Clock::time_point aUntil) {
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(aUntil - Clock::now()).count();
  return static_cast<std::uint32_t>(std::max<std::int64_t>(rest, 0));
}

} // namespace

std::int32_t CLSerial::Read(std::size_t aSize, std::uint32_t aTimeoutMs, const std::stop_token& aStop,
                            std::vector<std::uint8_t>& aBytes) {
  const auto until = Clock::now() + std::chrono::milliseconds(aTimeoutMs);
  while (mReceived.size() < aSize) {
    std::array<std::uint8_t, 4096> bytes;
    std::size_t read = 0;
    if (const KrResult result = mLine.Read(bytes.data(), bytes.size(), read, GetRest(until), aStop); !result.IsOK())
      return Note(result);
    mReceived.insert(mReceived.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(read));
  }
  const auto end = mReceived.begin() + static_cast<std::ptrdiff_t>(aSize);
  aBytes.assign(mReceived.begin(), end);
  mReceived.erase(mReceived.begin(), end);
  return CL_ERR_NO_ERR;
}

std::int32_t CLSerial::Write(const std::vector<std::uint8_t>& aBytes, std::uint32_t aTimeoutMs,
                             const std::stop_token& aStop) {
  return aBytes.empty() ? CL_ERR_NO_ERR : Note(mLine.Write(aBytes.data(), aBytes.size(), aTimeoutMs, aStop));
}

std::uint32_t CLSerial::GetSupportedRates() {
  std::uint32_t bits = 0;
  for (const std::uint32_t rate : mLine.GetSupportedBaudRates())
    bits |= KrGetCLSpeedBit(rate);
  if (bits == 0)
    bits = KrGetCLSpeedBit(mLine.GetBaudRate());
  return bits != 0 ? bits : KrGetCLSpeedBit(kCLFirstRate);
}

std::int32_t CLSerial::SetRate(std::uint32_t aBit) {
  const std::uint32_t rate = KrGetCLSpeed(aBit);
  if (rate == 0)
    return CL_ERR_BAUD_RATE_NOT_SUPPORTED;
  const std::uint32_t current = mLine.GetBaudRate();
  mRate = current != 0 ? current : kCLFirstRate;
  if (rate == current || (current == 0 && aBit == GetSupportedRates())) {
    mRate = rate;
    return CL_ERR_NO_ERR;
  }
  const KrResult result = mLine.SetBaudRate(rate);
  if (result.IsOK())
    mRate = rate;
  return result == KrResult::Code::NotSupported ? CL_ERR_BAUD_RATE_NOT_SUPPORTED : Note(result);
}

void CLSerial::Drop() {
  mReceived.clear();
  mLine.DropReceived();
}

std::int32_t CLSerial::Note(const KrResult& aResult) {
  if (aResult.IsOK())
    return CL_ERR_NO_ERR;
  if (aResult == KrResult::Code::TimeLimitExceeded || aResult == KrResult::Code::Aborted)
    return CL_ERR_TIMEOUT;
  mFailure = aResult;
  return aResult == KrResult::Code::ConnectionLost ? CL_ERR_INVALID_REFERENCE : CL_ERR_TIMEOUT;
}

} // namespace krcamerabridge
