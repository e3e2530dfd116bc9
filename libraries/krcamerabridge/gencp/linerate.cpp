#include "gencp/linerate.h"

#include "gencp/bootstrapmap.h"
#include "gencp/status.h"
#include "krbase/rest.h"

#include <algorithm>
#include <array>

namespace krcamerabridge {

namespace {

// The order of the register's bits.
constexpr std::array<std::uint32_t, 8> kBaudRates{9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600};

constexpr std::uint32_t kFallBackMs = 500; // A camera without a confirmation is back at its old rate by then.

// Nothing that is tried at another rate helps.
bool IsFinal(const KrResult& aResult) {
  return aResult == KrResult::Code::Aborted || aResult == KrResult::Code::ConnectionLost;
}

} // namespace

std::uint32_t GetBaudRateBit(std::uint32_t aBaudRate) {
  const auto found = std::ranges::find(kBaudRates, aBaudRate);
  return found == kBaudRates.end() ? 0 : 1u << (found - kBaudRates.begin());
}

LineRate::LineRate(ICameraLine& aLine, CommandCycle& aCycle, DeviceMemory& aMemory)
    : mLine(aLine), mCycle(aCycle), mMemory(aMemory), mSupported(aLine.GetSupportedBaudRates()),
      mBefore(aLine.GetBaudRate()) {}

bool LineRate::IsSettable(std::uint32_t aBaudRate) const {
  return std::ranges::find(mSupported, aBaudRate) != mSupported.end();
}

KrResult LineRate::SetLine(std::uint32_t aBaudRate) {
  if (mLine.GetBaudRate() != aBaudRate) {
    if (KrResult result = mLine.SetBaudRate(aBaudRate); !result.IsOK())
      return result;
  }
  mCycle.SetBaudRate(aBaudRate);
  return {};
}

KrResult LineRate::ProbeAt(std::uint32_t aBaudRate, int aTries, const std::stop_token& aStop) {
  // A line without rates is as fast as it is.
  if (mSupported.empty())
    mCycle.SetBaudRate(mBefore > 0 ? mBefore : kDefaultBaudRate);
  else if (KrResult result = SetLine(aBaudRate); !result.IsOK())
    return result;
  mLine.DropReceived();
  Answer answer;
  return mCycle.Probe(aTries, answer, aStop);
}

KrResult LineRate::FindCamera(const std::stop_token& aStop) {
  constexpr int kTriesAtDefault = 2;
  KrResult result = ProbeAt(kDefaultBaudRate, kTriesAtDefault, aStop);
  if (result.IsOK() || IsFinal(result))
    return result;
  for (const std::uint32_t rate : kBaudRates) {
    if (rate == kDefaultBaudRate || !IsSettable(rate))
      continue;
    KrResult found = ProbeAt(rate, 1, aStop);
    if (found.IsOK() || IsFinal(found))
      return found;
  }
  // It may have fallen back to its default while it was sought elsewhere.
  if (!mSupported.empty())
    result = ProbeAt(kDefaultBaudRate, kTriesAtDefault, aStop);
  if (result.IsOK() || IsFinal(result))
    return result;
  return {KrResult::Code::NotFound, "No GenCP camera answers on the line. " + result.GetDescription()};
}

KrResult LineRate::FindCameraAgain(const std::stop_token& aStop) {
  constexpr int kTries = 2;
  const std::uint32_t before = Get();
  Answer answer;
  KrResult result = mCycle.Probe(kTries, answer, aStop);
  // Where something comes the camera may be there, on a bad line.
  if (result == KrResult::Code::ProtocolError)
    result = mCycle.Probe(kTries, answer, aStop);
  if (result.IsOK() || IsFinal(result))
    return result;
  if (!mSupported.empty() && before != kDefaultBaudRate) {
    result = ProbeAt(kDefaultBaudRate, kTries, aStop);
    if (result.IsOK() || IsFinal(result))
      return result;
    // The next search begins where the camera was.
    if (KrResult back = SetLine(before); !back.IsOK())
      return back;
  }
  // What a line makes up by itself is no answer.
  return {KrResult::Code::TimeLimitExceeded, result.GetDescription()};
}

KrResult LineRate::Raise(std::uint64_t aSerialMap, const std::stop_token& aStop) {
  std::uint64_t supported = 0;
  KrResult read = mMemory.ReadValue(aSerialMap + kSupportedRatesOffset, 4, supported, aStop);
  if (!read.IsOK())
    return read == KrResult::Code::ProtocolError && mMemory.HasAnswered() ? KrResult() : read; // It keeps its rate.
  for (auto rate = kBaudRates.rbegin(); rate != kBaudRates.rend() && *rate > Get(); ++rate) {
    if ((supported & GetBaudRateBit(*rate)) == 0 || !IsSettable(*rate))
      continue;
    const std::uint32_t before = Get();
    if (KrResult result = Change(aSerialMap, *rate, aStop); !result.IsOK())
      return result;
    if (Get() != before)
      return {};
  }
  return {};
}

KrResult LineRate::Lower(std::uint64_t aSerialMap, const std::stop_token& aStop) {
  return Get() == kDefaultBaudRate || mSupported.empty() ? KrResult() : Change(aSerialMap, kDefaultBaudRate, aStop);
}

// The camera acknowledges at the old rate and wants to hear the same again at the new one soon. OK when it answers at
// either.
KrResult LineRate::Change(std::uint64_t aSerialMap, std::uint32_t aBaudRate, const std::stop_token& aStop) {
  const std::uint32_t before = Get();
  std::vector<std::uint8_t> bit;
  AppendNumber(bit, GetBaudRateBit(aBaudRate), 4);
  Command command{kWriteMemoryCommand, BuildWriteMemory(aSerialMap + kCurrentRateOffset, bit), 4};
  Answer answer;
  KrResult result = mCycle.Run(command, answer, aStop);
  if (result.IsOK() && IsFailure(answer.status))
    return {};
  if (result.IsOK() && SetLine(aBaudRate).IsOK()) {
    command.tries = 1; // It would have fallen back before the second.
    result = mCycle.Run(command, answer, aStop);
    if (result.IsOK() && !IsFailure(answer.status))
      return {};
  }
  return IsFinal(result) || mCycle.IsOver() ? result : Settle(before, aBaudRate, aStop);
}

// Camera and line parted: it has fallen back, unless it was only the answer to the confirmation that was lost.
KrResult LineRate::Settle(std::uint32_t aOld, std::uint32_t aNew, const std::stop_token& aStop) {
  constexpr int kTries = 2;
  if (KrResult result = SetLine(aOld); !result.IsOK())
    return result;
  if (!krbase::Rest(std::chrono::milliseconds(kFallBackMs), aStop))
    return {KrResult::Code::Aborted, "Changing the camera's baud rate was cancelled."};
  const KrResult result = ProbeAt(aOld, kTries, aStop);
  return result.IsOK() || IsFinal(result) ? result : ProbeAt(aNew, kTries, aStop);
}

void LineRate::FollowToDefault() {
  if (!mSupported.empty())
    static_cast<void>(SetLine(kDefaultBaudRate)); // A failure shows with the next access.
}

void LineRate::RestoreLine() {
  if (mBefore > 0 && mLine.GetBaudRate() != mBefore)
    static_cast<void>(mLine.SetBaudRate(mBefore)); // The line is given up; nobody would hear of it.
}

} // namespace krcamerabridge
