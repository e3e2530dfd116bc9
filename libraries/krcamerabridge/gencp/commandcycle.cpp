#include "gencp/commandcycle.h"

#include "gencp/status.h"
#include "krbase/rest.h"

#include <algorithm>
#include <array>

namespace krcamerabridge {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t kVersionBytes = 4;
constexpr std::size_t kPendingBytes = 4; // Reserved, then the milliseconds.

// The camera says that the command did not come to it as it was sent.
bool IsTransferFault(std::uint16_t aStatus) {
  return aStatus == kStatusInvalidHeader || aStatus == kStatusMessageTimeout;
}

KrResult TellSilence() {
  return {KrResult::Code::TimeLimitExceeded,
          "The camera did not answer, though it was asked again; check its cable and its power."};
}

KrResult TellDamage() {
  return {KrResult::Code::ProtocolError,
          "The camera's answers arrive damaged, though it was asked again; check the cable and the baud rate."};
}

} // namespace

CommandCycle::CommandCycle(ICameraLine& aLine, const CycleTimes& aTimes) : mLine(aLine), mTimes(aTimes) {}

// 0 is for what may be answered anew each time, and never comes back.
std::uint16_t CommandCycle::TakeRequestID() {
  mLastRequestID = mLastRequestID == 0xFFFF ? 1 : static_cast<std::uint16_t>(mLastRequestID + 1);
  return mLastRequestID;
}

void CommandCycle::SetEnd(std::uint32_t aMilliseconds) {
  mEnd = Clock::now() + milliseconds(aMilliseconds);
}

CommandCycle::Clock::time_point CommandCycle::GetLimit(std::uint32_t aMilliseconds) const {
  return std::min(Clock::now() + milliseconds(aMilliseconds), mEnd);
}

milliseconds CommandCycle::GetTransferTime(std::size_t aBytes) const {
  return milliseconds(aBytes * kBitsPerByte * 1000 / std::max<std::uint32_t>(mBaudRate, 1) + 1);
}

KrResult CommandCycle::Run(const Command& aCommand, Answer& aAnswer, const std::stop_token& aStop) {
  const auto busyLimit = GetLimit(mTimes.busyLimitMs);
  Packet packet{kControlChannel, kRequestAcknowledge, aCommand.commandID, TakeRequestID(), aCommand.specific};
  int faults = 0;
  while (true) {
    KrResult result = SendUntilAnswered(packet, aCommand.answerBytes, aCommand.tries, aAnswer, aStop);
    if (!result.IsOK())
      return result;
    const bool isBusy = aAnswer.status == kStatusBusy && Clock::now() < busyLimit;
    const bool isFault = IsTransferFault(aAnswer.status) && ++faults < aCommand.tries;
    if (!isBusy && !isFault)
      return {};
    if (!krbase::Rest(milliseconds(mTimes.busyPauseMs), aStop))
      return {KrResult::Code::Aborted, "The access to the camera was cancelled."};
    // What was refused is asked with a number of its own: the same would only be refused again. But a write of which an
    // answer was lost may have been done, and would be done twice.
    const bool mayBeDone = (packet.code & kCommandResend) != 0 && aCommand.commandID != kReadMemoryCommand;
    if (!mayBeDone) {
      packet.code = kRequestAcknowledge;
      packet.requestID = TakeRequestID();
    }
  }
}

KrResult CommandCycle::Probe(int aTries, Answer& aAnswer, const std::stop_token& aStop) {
  Packet packet{kControlChannel, kRequestAcknowledge, kReadMemoryCommand, 0, BuildReadMemory(0, kVersionBytes)};
  return SendUntilAnswered(packet, kVersionBytes, aTries, aAnswer, aStop);
}

// A packet that was sent again says so from then on.
KrResult CommandCycle::SendUntilAnswered(Packet& aPacket, std::size_t aAnswerBytes, int aTries, Answer& aAnswer,
                                         const std::stop_token& aStop) {
  if (KrResult result = AwaitAbandoned(aStop); !result.IsOK())
    return result;
  const auto limit = GetLimit(mTimes.pendingLimitMs);
  const auto transfer = GetTransferTime(2 * kPacketHeaderBytes + aPacket.specific.size() + aAnswerBytes);
  bool isDamaged = false;
  mReceiver.Clear();
  for (int tries = 0; tries < aTries && !aStop.stop_requested() && !IsOver(); ++tries) {
    if (KrResult result = Send(aPacket); !result.IsOK())
      return result;
    const auto sent = Clock::now();
    Pending pending{aPacket.requestID, GetAcknowledge(aPacket.commandID),
                    std::min(sent + transfer + milliseconds(mResponseMs + mTimes.marginMs), mEnd), sent, transfer};
    KrResult failure;
    const Ending ending = Await(pending, limit, aAnswer, failure, aStop);
    if (ending == Ending::Answered)
      return {};
    if (ending == Ending::Failed) {
      if (failure == KrResult::Code::Aborted)
        mAbandoned = pending;
      return failure;
    }
    isDamaged |= ending == Ending::Damaged;
    // One that asked for time and gave no answer then is asked as often again, but not for ever.
    if (pending.hasAsked && Clock::now() < limit)
      tries = 0;
    aPacket.code |= kCommandResend;
    mReceiver.Clear();
    mLine.DropReceived();
  }
  if (aStop.stop_requested())
    return {KrResult::Code::Aborted, "The access to the camera was cancelled."};
  return isDamaged ? TellDamage() : TellSilence();
}

// A packet is sent whole or not at all, so that the camera need not find out that the rest will never come: who asked
// may leave, but the line is held until then.
KrResult CommandCycle::Send(const Packet& aPacket) {
  const std::vector<std::uint8_t> bytes = BuildPacket(aPacket);
  const auto limit = 2 * GetTransferTime(bytes.size()) + milliseconds(mTimes.marginMs);
  return mLine.Write(bytes.data(), bytes.size(), static_cast<std::uint32_t>(limit.count()), {});
}

CommandCycle::Ending CommandCycle::Await(Pending& aPending, Clock::time_point aLimit, Answer& aAnswer,
                                         KrResult& aFailure, const std::stop_token& aStop) {
  while (true) {
    if (TakeAnswer(aPending, aLimit, aAnswer))
      return Ending::Answered;
    const bool isDamaged = mReceiver.HasPart() || mReceiver.IsDamaged();
    const auto gapEnd = aPending.lastByte + milliseconds(mTimes.gapMs);
    const auto until = isDamaged ? std::min(aPending.until, gapEnd) : aPending.until;
    if (Clock::now() >= until)
      return isDamaged ? Ending::Damaged : Ending::Silent;
    const Ending ending = ReadMore(aPending, until, aFailure, aStop);
    if (ending != Ending::Answered)
      return ending;
  }
}

// Looks through the packets that came. Those of other commands, and of other channels, are for nobody.
bool CommandCycle::TakeAnswer(Pending& aPending, Clock::time_point aLimit, Answer& aAnswer) {
  Packet packet;
  while (mReceiver.Take(packet)) {
    if (packet.channel != kControlChannel || packet.requestID != aPending.requestID)
      continue;
    if (packet.commandID == aPending.acknowledgeID) {
      aAnswer = {packet.code, std::move(packet.specific)};
      return true;
    }
    if (packet.commandID != kPendingAcknowledge || packet.specific.size() < kPendingBytes)
      continue;
    const auto asked = milliseconds(ReadNumber(std::span(packet.specific).subspan(2, 2)));
    // By then it begins to answer.
    aPending.until = std::min(Clock::now() + asked + aPending.transfer + milliseconds(mTimes.marginMs), aLimit);
    aPending.hasAsked = true;
  }
  return false;
}

// Answered where there is more to look at, or nothing came.
CommandCycle::Ending CommandCycle::ReadMore(Pending& aPending, Clock::time_point aUntil, KrResult& aFailure,
                                            const std::stop_token& aStop) {
  std::array<std::uint8_t, kMaxPacketBytes> bytes;
  std::size_t read = 0;
  const auto left = std::chrono::ceil<milliseconds>(aUntil - Clock::now()).count();
  const auto timeoutMs = static_cast<std::uint32_t>(std::max<std::int64_t>(left, 1));
  aFailure = mLine.Read(bytes.data(), bytes.size(), read, timeoutMs, aStop);
  if (aFailure.IsOK()) {
    aPending.lastByte = Clock::now();
    mReceiver.Add(std::span(bytes).first(read));
    return Ending::Answered;
  }
  if (aFailure == KrResult::Code::TimeLimitExceeded)
    return Ending::Answered;
  // Bytes were lost before they came to us.
  return aFailure == KrResult::Code::ProtocolError ? Ending::Damaged : Ending::Failed;
}

KrResult CommandCycle::AwaitAbandoned(const std::stop_token& aStop) {
  if (!mAbandoned)
    return {};
  Answer unwanted;
  KrResult failure;
  const auto limit = GetLimit(mTimes.pendingLimitMs);
  if (Await(*mAbandoned, limit, unwanted, failure, aStop) == Ending::Failed)
    return failure;
  mAbandoned.reset();
  return {};
}

} // namespace krcamerabridge
