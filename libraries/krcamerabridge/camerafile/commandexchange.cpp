#include "camerafile/commandexchange.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

namespace krcamerabridge {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::size_t kMostReceivedBytes = 4096;
constexpr std::size_t kMostShownBytes = 80;
constexpr int kMostEndings = 8; // At which a message is tried to end.

// How long bytes are on the line, with a start bit, a parity bit and a stop bit each.
milliseconds GetLineTime(std::size_t aBytes, std::uint32_t aBaudRate) {
  return milliseconds(aBytes * 11 * 1000 / std::max<std::uint32_t>(aBaudRate, 1) + 1);
}

std::uint32_t GetLeftMs(steady_clock::time_point aUntil) {
  const auto left = std::chrono::ceil<milliseconds>(aUntil - steady_clock::now()).count();
  return left <= 0 ? 0 : static_cast<std::uint32_t>(left);
}

std::string ToHex(unsigned char aByte, const char* aBefore) {
  std::array<char, 8> place{};
  std::snprintf(place.data(), place.size(), "%s%02X", aBefore, static_cast<unsigned>(aByte));
  return place.data();
}

} // namespace

KrResult CommandExchange::Run(const CommandOrder& aOrder, const std::stop_token& aStop, AnswerContent& aContent) {
  KrResult result;
  bool mayTryAgain = true;
  for (std::uint32_t i = 0; mayTryAgain && i <= mProtocol.repeats; ++i) {
    mUnexpected.clear();
    mRefusal.clear();
    result = TryOnce(aOrder, aStop, aContent, mayTryAgain);
  }
  return result.IsOK() ? result : ExplainFailure(aOrder, result);
}

KrResult CommandExchange::TryOnce(const CommandOrder& aOrder, const std::stop_token& aStop, AnswerContent& aContent,
                                  bool& aMayTryAgain) {
  aMayTryAgain = false;
  if (KrResult result = Prepare(aStop); !result.IsOK())
    return result;
  mIsSettled = false;
  mLastAnswerMs = aOrder.answerMs;
  const milliseconds lineTime = GetLineTime(aOrder.command.size(), mProtocol.baudRate);
  const auto limitMs = static_cast<std::uint32_t>(lineTime.count()) + aOrder.answerMs;
  KrResult result =
      mLine.Write(reinterpret_cast<const std::uint8_t*>(aOrder.command.data()), aOrder.command.size(), limitMs, aStop);
  const Time until = steady_clock::now() + milliseconds(limitMs);
  if (result.IsOK() && mProtocol.hasEcho)
    result = AwaitEcho(aOrder, until, aStop);
  if (result.IsOK())
    result = AwaitAnswer(aOrder, until, aStop, aContent);
  // The camera has answered, whatever it said, when its words are known.
  mIsSettled = result.IsOK() || !mRefusal.empty();
  if (mIsSettled && !mProtocol.prompt.empty()) {
    if (KrResult prompt = AwaitPrompt(until, aStop); !prompt.IsOK()) {
      mIsSettled = false;
      // An answer that was good is good without what follows it.
      if (result.IsOK() && !aOrder.answer)
        result = prompt;
    }
  }
  mFree = steady_clock::now() + milliseconds(aOrder.pauseMs);
  // What came damaged was not done, and may be sent again in any case.
  const bool wasDamaged = result == KrResult::Code::Busy;
  aMayTryAgain =
      wasDamaged || (aOrder.mayRepeat && mRefusal.empty() &&
                     (result == KrResult::Code::TimeLimitExceeded || result == KrResult::Code::ProtocolError));
  return result;
}

KrResult CommandExchange::Prepare(const std::stop_token& aStop) {
  if (!mIsSettled && mLastAnswerMs > 0)
    if (KrResult result = DropUntilQuiet(mLastAnswerMs, aStop); !result.IsOK())
      return result;
  if (KrResult result = DropUntil(mFree, aStop); !result.IsOK())
    return result;
  mReceived.clear();
  mLine.DropReceived();
  return {};
}

// Late answers to what was given up come in this time; a line that never is quiet is not waited for.
KrResult CommandExchange::DropUntilQuiet(std::uint32_t aQuietMs, const std::stop_token& aStop) {
  const Time most = steady_clock::now() + 2 * milliseconds(aQuietMs);
  while (steady_clock::now() < most) {
    mReceived.clear();
    const Time quiet = std::min(most, steady_clock::now() + milliseconds(aQuietMs));
    KrResult result = ReadMore(quiet, aStop);
    if (result == KrResult::Code::TimeLimitExceeded)
      return {};
    if (!result.IsOK())
      return result;
  }
  return {};
}

KrResult CommandExchange::DropUntil(Time aUntil, const std::stop_token& aStop) {
  while (steady_clock::now() < aUntil) {
    mReceived.clear();
    KrResult result = ReadMore(aUntil, aStop);
    if (!result.IsOK() && !(result == KrResult::Code::TimeLimitExceeded))
      return result;
  }
  return {};
}

KrResult CommandExchange::ReadMore(Time aUntil, const std::stop_token& aStop) {
  std::array<std::uint8_t, 512> bytes{};
  std::size_t read = 0;
  KrResult result = mLine.Read(bytes.data(), bytes.size(), read, GetLeftMs(aUntil), aStop);
  if (!result.IsOK())
    return result;
  mReceived.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(read));
  // Of texts the last message alone is kept of what was passed over; binary bytes that begin none have no end.
  const std::size_t passedOver = mProtocol.isBinary ? mUnexpected.size() : 0;
  if (mReceived.size() + passedOver > kMostReceivedBytes)
    return {KrResult::Code::ProtocolError, "The camera sends without an end."};
  // A line that keeps sending what is no answer cannot hold anybody beyond the limit.
  if (steady_clock::now() > aUntil)
    return {KrResult::Code::TimeLimitExceeded, "The answer did not come in time."};
  return {};
}

KrResult CommandExchange::AwaitEcho(const CommandOrder& aOrder, Time aUntil, const std::stop_token& aStop) {
  std::string echo = aOrder.command;
  echo.resize(echo.size() - GetEnding(mProtocol.commandEnd).size());
  echo += mProtocol.echoEnd;
  for (;;) {
    if (const std::size_t place = mReceived.find(echo); place != std::string::npos) {
      mReceived.erase(0, place + echo.size());
      return {};
    }
    if (KrResult result = ReadMore(aUntil, aStop); !result.IsOK()) {
      mUnexpected = mReceived;
      return result;
    }
  }
}

KrResult CommandExchange::AwaitAnswer(const CommandOrder& aOrder, Time aUntil, const std::stop_token& aStop,
                                      AnswerContent& aContent) {
  if (!aOrder.answer)
    return {};
  for (;;) {
    switch (Search(&*aOrder.answer, aContent)) {
    case Finding::Answer:
      return {};
    case Finding::Error:
      return {KrResult::Code::ProtocolError, mRefusal};
    case Finding::Damage:
      return {KrResult::Code::Busy, mRefusal};
    case Finding::Nothing:
      break;
    }
    if (KrResult result = ReadMore(aUntil, aStop); !result.IsOK()) {
      mUnexpected += mReceived;
      return result;
    }
  }
}

KrResult CommandExchange::AwaitPrompt(Time aUntil, const std::stop_token& aStop) {
  for (;;) {
    if (const std::size_t place = mReceived.find(mProtocol.prompt); place != std::string::npos) {
      AnswerContent content;
      // Commands without an answer may have one that says what is wrong.
      const Finding finding = mRefusal.empty() ? Search(nullptr, content) : Finding::Nothing;
      mReceived.clear();
      if (finding == Finding::Nothing)
        return {};
      return {finding == Finding::Damage ? KrResult::Code::Busy : KrResult::Code::ProtocolError, mRefusal};
    }
    if (KrResult result = ReadMore(aUntil, aStop); !result.IsOK()) {
      mUnexpected = mReceived;
      return result;
    }
  }
}

CommandExchange::Finding CommandExchange::Search(const CommandTemplate* aAnswer, AnswerContent& aContent) {
  return mProtocol.isBinary ? SearchBytes(aAnswer, aContent) : SearchMessages(aAnswer, aContent);
}

// Texts end where the protocol says: each is the answer, or is dropped.
CommandExchange::Finding CommandExchange::SearchMessages(const CommandTemplate* aAnswer, AnswerContent& aContent) {
  const std::string_view ending = GetEnding(mProtocol.answerEnd);
  const std::string_view start =
      mProtocol.answerStart.empty() ? std::string_view() : std::string_view(mProtocol.answerStart.front().text);
  for (std::size_t end = mReceived.find(ending); end != std::string::npos; end = mReceived.find(ending)) {
    std::string message = mReceived.substr(0, end + ending.size());
    mReceived.erase(0, message.size());
    if (!mProtocol.prompt.empty() && message.starts_with(mProtocol.prompt))
      message.erase(0, mProtocol.prompt.size());
    // What stands before the start is rubbish, which may have one, too, as may the value.
    std::size_t place = start.empty() ? std::string::npos : message.find(start);
    message.erase(0, place == std::string::npos ? 0 : place);
    mUnexpected = message;
    do {
      if (const Finding finding = Judge(aAnswer, message, aContent); finding != Finding::Nothing)
        return finding;
      place = start.empty() ? std::string::npos : message.find(start, 1);
      message.erase(0, place);
    } while (!message.empty());
  }
  return Finding::Nothing;
}

// Binary answers are as long as they say: what begins none is dropped. What may still become one may be rubbish, too,
// so that an answer whose checksum shows it to be one is taken from behind it.
CommandExchange::Finding CommandExchange::SearchBytes(const CommandTemplate* aAnswer, AnswerContent& aContent) {
  bool mayBecomeOne = false;
  std::size_t kept = mReceived.size(); // Where the first that may become one begins.
  for (std::size_t place = 0; place < mReceived.size(); ++place) {
    const std::string_view rest = std::string_view(mReceived).substr(place);
    std::size_t size = 0;
    const bool needsCheck = mayBecomeOne;
    const Finding finding = FindMessage(aAnswer, rest, needsCheck, size, mayBecomeOne, aContent);
    if (finding != Finding::Nothing) {
      mReceived.erase(0, place + size);
      return finding;
    }
    if (mayBecomeOne)
      kept = std::min(kept, place);
  }
  mUnexpected += mReceived.substr(0, kept);
  mReceived.erase(0, kept);
  return Finding::Nothing;
}

CommandExchange::Finding CommandExchange::FindMessage(const CommandTemplate* aAnswer, std::string_view aReceived,
                                                      bool aNeedsCheck, std::size_t& aSize, bool& aMayBecomeOne,
                                                      AnswerContent& aContent) {
  std::vector<const CommandTemplate*> templates;
  for (const FileError& error : mProtocol.errors)
    templates.push_back(&error.answer);
  if (aAnswer)
    templates.push_back(aAnswer);
  for (const CommandTemplate* const candidate : templates) {
    const bool hasCheck = FindPart(*candidate, TemplatePart::Kind::Check) != nullptr;
    MessageSize size = MeasureMessage(*candidate, aReceived);
    // A checksum tells that what looked like the end was part of a value.
    for (int i = 0; i < kMostEndings && size.state == MessageSize::State::Known && (hasCheck || !aNeedsCheck); ++i) {
      aSize = size.size;
      const Finding finding = Judge(aAnswer, aReceived.substr(0, size.size), aContent);
      if (finding != Finding::Nothing)
        return finding;
      size = hasCheck ? MeasureMessage(*candidate, aReceived, aSize + 1) : MessageSize{MessageSize::State::Never};
    }
    aMayBecomeOne = aMayBecomeOne || size.state == MessageSize::State::More;
  }
  return Finding::Nothing;
}

CommandExchange::Finding CommandExchange::Judge(const CommandTemplate* aAnswer, std::string_view aMessage,
                                                AnswerContent& aContent) {
  for (const FileError& error : mProtocol.errors)
    if (const auto content = MatchAnswer(error.answer, mProtocol.check, aMessage)) {
      mRefusal = DescribeError(error, *content);
      return error.isDamage ? Finding::Damage : Finding::Error;
    }
  if (!aAnswer)
    return Finding::Nothing;
  const auto content = MatchAnswer(*aAnswer, mProtocol.check, aMessage);
  if (!content)
    return Finding::Nothing;
  aContent = *content;
  return Finding::Answer;
}

std::string CommandExchange::DescribeError(const FileError& aError, const AnswerContent& aContent) const {
  std::string text = aError.text;
  const auto append = [&text](const std::string& aMore) { text += (text.empty() ? "" : ": ") + aMore; };
  if (aContent.code) {
    const auto meaning = aError.codes.find(*aContent.code);
    append(meaning == aError.codes.end() ? "error " + std::to_string(*aContent.code) : meaning->second);
  }
  if (!aContent.text.empty())
    append(mProtocol.isBinary ? Show(aContent.text) : aContent.text);
  return text.empty() ? "it says no more than that" : text;
}

std::string CommandExchange::Show(std::string_view aBytes) const {
  std::string shown;
  for (const char character : aBytes.substr(0, kMostShownBytes)) {
    const auto byte = static_cast<unsigned char>(character);
    if (mProtocol.isBinary)
      shown += ToHex(byte, shown.empty() ? "" : " ");
    else if (byte == '\r' || byte == '\n')
      shown += byte == '\r' ? "\\r" : "\\n";
    else
      shown += byte >= ' ' && byte < 0x7F ? std::string(1, character) : ToHex(byte, "\\x");
  }
  return "\"" + shown + (aBytes.size() > kMostShownBytes ? "…\"" : "\"");
}

KrResult CommandExchange::ExplainFailure(const CommandOrder& aOrder, const KrResult& aResult) const {
  const std::string command = Show(aOrder.command);
  if (!mRefusal.empty())
    return {KrResult::Code::ProtocolError, "The camera refused " + command + ": " + mRefusal + "."};
  const bool isMissing = aResult == KrResult::Code::TimeLimitExceeded || aResult == KrResult::Code::ProtocolError;
  if (isMissing && !mUnexpected.empty())
    return {KrResult::Code::ProtocolError, "The camera answered " + Show(mUnexpected) + " to " + command +
                                               ", which is not what the camera file says of its answers."};
  if (aResult == KrResult::Code::TimeLimitExceeded)
    return {aResult.GetCode(), "The camera did not answer " + command + " within " + std::to_string(aOrder.answerMs) +
                                   " milliseconds; check its cable and its power."};
  return {aResult.GetCode(), "Sending " + command + " to the camera: " + aResult.GetDescription().ToUtf8()};
}

} // namespace krcamerabridge
