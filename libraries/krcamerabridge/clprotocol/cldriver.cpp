#include "clprotocol/cldriver.h"

#include "clprotocol/clerrors.h"
#include "clprotocol/clidentifiers.h"
#include "clprotocol/clprotocolapi.h"
#include "krbase/krlogger.h"
#include "krbase/rest.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

namespace krcamerabridge {

namespace {

using std::chrono::milliseconds;

std::vector<std::uint8_t> ToBytes(std::string_view aText) {
  return {aText.begin(), aText.end()};
}

std::string ToText(const std::vector<std::uint8_t>& aBytes) {
  return {aBytes.begin(), aBytes.end()};
}

struct CallRow {
  WireKind kind;
  const char* name;
};

constexpr CallRow kCalls[] = {
    {WireKind::Load, "being loaded"},
    {WireKind::GetTemplates, "clpGetShortDeviceIDTemplates"},
    {WireKind::Probe, "clpProbeDevice"},
    {WireKind::GetXMLIDs, "clpGetXMLIDs"},
    {WireKind::GetXMLDescription, "clpGetXMLDescription"},
    {WireKind::ReadRegister, "clpReadRegister"},
    {WireKind::WriteRegister, "clpWriteRegister"},
    {WireKind::ContinueWrite, "clpContinueWriteRegister"},
    {WireKind::GetErrorText, "clpGetErrorText"},
    {WireKind::Disconnect, "clpDisconnect"},
    {WireKind::GetParam, "clpGetParam"},
    {WireKind::SetParam, "clpSetParam"},
    {WireKind::Close, "clpCloseLib"},
};

std::string GetName(const WireFrame& aCall) {
  const auto* const row = std::ranges::find(kCalls, aCall.kind, &CallRow::kind);
  return row != std::end(kCalls) ? row->name : "a call";
}

KrLogLevel GetLogLevel(std::int32_t aLevel) {
  if (aLevel <= static_cast<std::int32_t>(CLP_LOG_ERROR))
    return KrLogLevel::Error;
  if (aLevel <= static_cast<std::int32_t>(CLP_LOG_WARN))
    return KrLogLevel::Warning;
  return aLevel <= static_cast<std::int32_t>(CLP_LOG_INFO) ? KrLogLevel::Info : KrLogLevel::Debug;
}

} // namespace

/// Until when a call may last.
struct CLDriver::Limits {
  std::uint32_t limitMs;
  Clock::time_point until;
  Clock::time_point quietUntil;
  bool isCancelled = false;
  bool isClosing = false;

  Clock::time_point GetNext() const { return std::min(until, quietUntil); }
};

CLDriver::CLDriver(const CLDriverFile& aFile, const CLDriverTimes& aTimes, ICameraLine* aLine,
                   const std::stop_token& aAbandoned)
    : mFile(aFile), mTimes(aTimes), mAbandoned(aAbandoned) {
  if (aLine != nullptr)
    mSerial.emplace(*aLine);
}

KrResult CLDriver::Start(const std::stop_token& aStop) {
  if (KrResult result = HostProcess::Start(mFile.fileName, mProcess); !result.IsOK())
    return result;
  Said said;
  KrResult result = Call({.kind = WireKind::Load, .bytes = ToBytes(mFile.GetPath())}, mTimes.loadLimitMs, said, aStop);
  if (!result.IsOK()) {
    mProcess.reset();
    mEnd = result;
  }
  return result;
}

void CLDriver::Close() {
  if (!mProcess)
    return;
  if (!mClosedUntil)
    BeginClosing();
  Said said;
  const KrResult result = Call({.kind = WireKind::Close}, mTimes.closeLimitMs, said, {});
  if (!result.IsOK())
    KrLogger("KrCameraBridge").Log(KrLogLevel::Warning, {"CLDriver::Close", "cldriver"}, result.GetDescription());
  mProcess.reset();
  mEnd = {KrResult::Code::SystemError, "The CL Protocol driver " + mFile.fileName + " was closed."};
}

KrResult CLDriver::GetTemplates(std::vector<std::string>& aTemplates, const std::stop_token& aStop) {
  Said said;
  if (KrResult result = Call({.kind = WireKind::GetTemplates}, mTimes.loadLimitMs, said, aStop); !result.IsOK())
    return result;
  if (said.code < 0)
    return {KrResult::Code::SystemError, "The CL Protocol driver " + mFile.fileName + " does not say its templates: " +
                                             GetErrorWords(said.code, 0, aStop) + '.'};
  aTemplates = SplitCLList(ToText(said.bytes));
  std::erase_if(aTemplates, [](const std::string& aText) { return !IsCLShortID(aText); });
  return {};
}

KrResult CLDriver::Probe(const std::string& aTemplate, Said& aSaid, const std::stop_token& aStop) {
  return Call({.kind = WireKind::Probe, .timeoutMs = mTimes.accessMs, .bytes = ToBytes(aTemplate)}, mTimes.probeLimitMs,
              aSaid, aStop);
}

KrResult CLDriver::GetXMLIDs(std::uint32_t aCookie, Said& aSaid, const std::stop_token& aStop) {
  return Call({.kind = WireKind::GetXMLIDs, .cookie = aCookie, .timeoutMs = mTimes.accessMs}, mTimes.callLimitMs, aSaid,
              aStop);
}

KrResult CLDriver::GetXMLDescription(std::uint32_t aCookie, const std::string& aXMLID, Said& aSaid,
                                     const std::stop_token& aStop) {
  return Call(
      {.kind = WireKind::GetXMLDescription, .cookie = aCookie, .timeoutMs = mTimes.accessMs, .bytes = ToBytes(aXMLID)},
      mTimes.descriptionLimitMs, aSaid, aStop);
}

KrResult CLDriver::ReadRegister(std::uint32_t aCookie, std::uint64_t aAddress, std::size_t aSize, Said& aSaid,
                                const std::stop_token& aStop) {
  KrResult result = Call({.kind = WireKind::ReadRegister,
                          .cookie = aCookie,
                          .length = static_cast<std::uint32_t>(aSize),
                          .timeoutMs = mTimes.accessMs,
                          .address = aAddress},
                         GetRegisterLimit(aSize), aSaid, aStop);
  if (result.IsOK() && aSaid.code >= 0 && aSaid.bytes.size() != aSize)
    return Fail(KrResult::Code::SystemError, "answered a read of registers with another number of bytes");
  return result;
}

KrResult CLDriver::WriteRegister(std::uint32_t aCookie, std::uint64_t aAddress, std::span<const std::uint8_t> aBytes,
                                 Said& aSaid, const std::stop_token& aStop) {
  // A stop is waited for between the calls; a driver whose camera is not done is told at once.
  const KrResult result = Call({.kind = WireKind::WriteRegister,
                                .cookie = aCookie,
                                .timeoutMs = mTimes.accessMs,
                                .address = aAddress,
                                .bytes = {aBytes.begin(), aBytes.end()}},
                               GetRegisterLimit(aBytes.size()), aSaid, aStop);
  return mProcess && aSaid.code == CL_ERR_PENDING_WRITE ? ContinueWrite(aCookie, aSaid, aStop) : result;
}

KrResult CLDriver::ContinueWrite(std::uint32_t aCookie, Said& aSaid, const std::stop_token& aStop) {
  // A driver that does not wait for its camera itself is not asked all the time.
  constexpr milliseconds kPeriod{10};
  const auto until = Clock::now() + milliseconds(mTimes.pendingLimitMs);
  const WireFrame next{.kind = WireKind::ContinueWrite, .cookie = aCookie, .length = 1, .timeoutMs = mTimes.accessMs};
  KrResult result;
  auto asked = Clock::now();
  do {
    (void)krbase::Rest(asked + kPeriod - Clock::now(), aStop);
    asked = Clock::now();
    if (aStop.stop_requested())
      return CancelWrite(aCookie, KrResult::Code::Aborted);
    if (Clock::now() >= until)
      return CancelWrite(aCookie, KrResult::Code::TimeLimitExceeded);
    aSaid = {};
    result = Call(next, mTimes.callLimitMs, aSaid, aStop);
  } while (mProcess && aSaid.code == CL_ERR_PENDING_WRITE);
  return result;
}

KrResult CLDriver::CancelWrite(std::uint32_t aCookie, KrResult::Code aWhy) {
  Said said;
  const WireFrame call{.kind = WireKind::ContinueWrite, .cookie = aCookie, .timeoutMs = mTimes.accessMs};
  if (KrResult result = Call(call, mTimes.cancelLimitMs, said, {}); !result.IsOK())
    return result;
  if (aWhy == KrResult::Code::Aborted)
    return {aWhy, "Writing to the camera was cancelled."};
  return {aWhy, "The camera was not done with a write within " + std::to_string(mTimes.pendingLimitMs) +
                    " milliseconds; it was cancelled."};
}

std::uint32_t CLDriver::GetRegisterLimit(std::size_t aBytes) const {
  return GetRegisterLimitMs(mTimes, aBytes, mSerial ? mSerial->GetRate() : kCLFirstRate);
}

KrResult CLDriver::GetParam(std::uint32_t aCookie, std::int32_t aParam, std::uint32_t& aValue, Said& aSaid,
                            const std::stop_token& aStop) {
  KrResult result = Call({.kind = WireKind::GetParam,
                          .code = aParam,
                          .cookie = aCookie,
                          .length = sizeof aValue,
                          .timeoutMs = mTimes.accessMs},
                         mTimes.callLimitMs, aSaid, aStop);
  if (!result.IsOK() || aSaid.code < 0)
    return result;
  if (aSaid.bytes.size() != sizeof aValue)
    return Fail(KrResult::Code::SystemError, "answered a parameter with another number of bytes");
  std::copy(aSaid.bytes.begin(), aSaid.bytes.end(), reinterpret_cast<std::uint8_t*>(&aValue));
  return result;
}

KrResult CLDriver::SetParam(std::uint32_t aCookie, std::int32_t aParam, std::uint32_t aValue, Said& aSaid,
                            const std::stop_token& aStop) {
  const auto* const begin = reinterpret_cast<const std::uint8_t*>(&aValue);
  return Call({.kind = WireKind::SetParam,
               .code = aParam,
               .cookie = aCookie,
               .timeoutMs = mTimes.accessMs,
               .bytes = {begin, begin + sizeof aValue}},
              mTimes.callLimitMs, aSaid, aStop);
}

KrResult CLDriver::Disconnect(std::uint32_t aCookie, Said& aSaid, const std::stop_token& aStop) {
  return Call({.kind = WireKind::Disconnect, .cookie = aCookie}, mTimes.callLimitMs, aSaid, aStop);
}

std::string CLDriver::GetErrorWords(std::int32_t aCode, std::uint32_t aCookie, const std::stop_token& aStop) {
  Said said;
  std::string words;
  const WireFrame call{.kind = WireKind::GetErrorText, .code = aCode, .cookie = aCookie};
  if (mProcess && Call(call, mTimes.callLimitMs, said, aStop).IsOK() && said.code >= 0)
    words = MakeCLWords(ToText(said.bytes));
  if (words.empty() && mSerial)
    words = MakeCLWords(mSerial->GetFailure().GetDescription().ToUtf8());
  if (words.empty())
    words = GetCLErrorWords(aCode);
  while (words.ends_with('.'))
    words.pop_back();
  return words + (words.empty() ? "error " : " (error ") + std::to_string(aCode) + (words.empty() ? "" : ")");
}

CLDriver::Limits CLDriver::MakeLimits(std::uint32_t aLimitMs) const {
  const Clock::time_point now = Clock::now();
  Limits limits{aLimitMs, now + milliseconds(aLimitMs), now + milliseconds(mTimes.quietLimitMs)};
  limits.isClosing = mClosedUntil && *mClosedUntil < limits.until;
  if (limits.isClosing) {
    limits.limitMs = mTimes.closeLimitMs;
    limits.until = *mClosedUntil;
  }
  return limits;
}

// Code, cookie and bytes of the answer go to aSaid, also where a cancelled call came to its end.
KrResult CLDriver::Call(const WireFrame& aCall, std::uint32_t aLimitMs, Said& aSaid, const std::stop_token& aStop) {
  if (!mProcess)
    return mEnd;
  if (aStop.stop_requested())
    return {KrResult::Code::Aborted, "Asking the CL Protocol driver was cancelled."};
  std::stop_source ending;
  const auto end = [&ending] { ending.request_stop(); };
  const std::stop_callback onStop(aStop, end);
  const std::stop_callback onAbandoned(mAbandoned, end);
  Limits limits = MakeLimits(aLimitMs);
  const HostProcess::Event sent = mProcess->Send(aCall, limits.GetNext(), mAbandoned);
  if (sent != HostProcess::Event::Frame)
    return Miss(sent, aCall, limits);
  WireFrame answer{.kind = WireKind::Answer};
  if (KrResult result = Await(aCall, limits, answer, ending.get_token()); !result.IsOK())
    return result;
  if (answer.kind == WireKind::Refusal)
    return {KrResult::Code::SystemError, "The CL Protocol driver " + mFile.fileName + " cannot be used in " +
                                             GetName(aCall) + ": " + MakeCLWords(ToText(answer.bytes)) + '.'};
  aSaid = {answer.code, answer.cookie, std::move(answer.bytes)};
  if (limits.isCancelled)
    return {KrResult::Code::Aborted, "Asking the CL Protocol driver was cancelled."};
  return {};
}

// Serves the driver until it comes back from a call.
KrResult CLDriver::Await(const WireFrame& aCall, Limits& aLimits, WireFrame& aAnswer, const std::stop_token& aStop) {
  using Event = HostProcess::Event;
  for (;;) {
    const Event event = mProcess->Receive(aAnswer, aLimits.GetNext(), aLimits.isCancelled ? mAbandoned : aStop);
    if (event == Event::Stopped && !mAbandoned.stop_requested()) {
      Cancel(aCall, aLimits);
      continue;
    }
    if (event != Event::Frame)
      return Miss(event, aCall, aLimits);
    if (aAnswer.kind == WireKind::Answer || aAnswer.kind == WireKind::Refusal)
      return {};
    if (!Serve(aAnswer, aLimits, aStop))
      return Miss(Event::Ended, aCall, aLimits);
    // Who only logs, or reads a silent line for ever, meets the limit as well.
    if (Clock::now() >= aLimits.until || mAbandoned.stop_requested())
      return Miss(Event::TimeOver, aCall, aLimits);
  }
}

KrResult CLDriver::Miss(HostProcess::Event aEvent, const WireFrame& aCall, const Limits& aLimits) {
  if (mAbandoned.stop_requested())
    return Fail(KrResult::Code::Aborted, "was ended, as nobody waits for it any more");
  const bool isOver = aEvent != HostProcess::Event::Broken && aEvent != HostProcess::Event::Ended;
  std::string words = "has damaged its process: it said what is no message";
  if (aEvent == HostProcess::Event::Ended)
    words = mProcess->Bury() + " in " + GetName(aCall);
  else if (isOver)
    words = "did not come back from " + GetName(aCall) + " within " + DescribeLimit(aLimits) + ", and was ended";
  const bool isLate = isOver && !aLimits.isCancelled;
  const KrResult ended = Fail(isLate ? KrResult::Code::TimeLimitExceeded : KrResult::Code::SystemError, words);
  return aLimits.isCancelled ? KrResult(KrResult::Code::Aborted, ended.GetDescription()) : ended;
}

std::string CLDriver::DescribeLimit(const Limits& aLimits) const {
  if (aLimits.isCancelled)
    return std::to_string(mTimes.cancelLimitMs) + " milliseconds of being cancelled";
  if (aLimits.quietUntil < aLimits.until)
    return std::to_string(mTimes.quietLimitMs) + " milliseconds without a use of the line";
  return std::to_string(aLimits.limitMs) + (aLimits.isClosing ? " milliseconds of being closed" : " milliseconds");
}

// From here on the line fails at once, so a driver that is well comes back soon.
void CLDriver::Cancel(const WireFrame& aCall, Limits& aLimits) {
  aLimits.isCancelled = true;
  aLimits.until = std::min(aLimits.until, Clock::now() + milliseconds(mTimes.cancelLimitMs));
  if (aCall.kind == WireKind::Probe)
    static_cast<void>(mProcess->Send({.kind = WireKind::StopProbe}, aLimits.until, mAbandoned));
}

// Does what a driver asks of the line, or logs; false when the driver is not there to be answered.
bool CLDriver::Serve(const WireFrame& aUse, Limits& aLimits, const std::stop_token& aStop) {
  constexpr int kMostLogged = 1000;
  if (aUse.kind == WireKind::Log) {
    if (++mLogged > kMostLogged)
      return true;
    KrLogger("KrCameraBridge")
        .Log(GetLogLevel(aUse.code), {"CLDriver::Serve", "cldriver"},
             "The CL Protocol driver " + mFile.fileName + " says: " + MakeCLWords(ToText(aUse.bytes)));
    return true;
  }
  const auto rest = std::chrono::ceil<milliseconds>(aLimits.until - Clock::now()).count();
  const auto timeoutMs =
      static_cast<std::uint32_t>(std::clamp<std::int64_t>(rest, 0, static_cast<std::int64_t>(aUse.timeoutMs)));
  const WireFrame answer = UseLine(aUse, timeoutMs, aStop);
  aLimits.quietUntil = Clock::now() + milliseconds(mTimes.quietLimitMs);
  // A call that is over before its answer comes shows what became of it.
  return mProcess->Send(answer, aLimits.GetNext(), mAbandoned) != HostProcess::Event::Ended;
}

WireFrame CLDriver::UseLine(const WireFrame& aUse, std::uint32_t aTimeoutMs, const std::stop_token& aStop) {
  WireFrame answer{.kind = WireKind::LineAnswer};
  if (!mSerial)
    answer.code = CL_ERR_INVALID_REFERENCE;
  else if (aUse.kind == WireKind::LineRead)
    answer.code = mSerial->Read(aUse.length, aTimeoutMs, aStop, answer.bytes);
  else if (aUse.kind == WireKind::LineWrite)
    answer.code = mSerial->Write(aUse.bytes, aTimeoutMs, aStop);
  else if (aUse.kind == WireKind::LineSetRate)
    answer.code = mSerial->SetRate(aUse.cookie);
  else
    answer.cookie = mSerial->GetSupportedRates();
  return answer;
}

KrResult CLDriver::Fail(KrResult::Code aCode, const std::string& aWords) {
  mEnd = {aCode, "The CL Protocol driver " + mFile.fileName + ' ' + aWords + '.'};
  mProcess.reset();
  return mEnd;
}

} // namespace krcamerabridge
