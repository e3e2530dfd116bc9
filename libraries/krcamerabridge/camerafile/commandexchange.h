#pragma once
// Sends commands to a camera and waits for their answers, over a line that may lose bytes, change them, or bring an
// answer late. What commands mean is left to CameraFilePort.

#include "camerafile/answermatching.h"
#include "camerafile/filemodel.h"
#include "line/icameraline.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace krcamerabridge {

/// A command that is to be sent.
struct CommandOrder {
  std::string command;                        ///< All its bytes.
  std::optional<CommandTemplate> answer = {}; ///< None where the camera says nothing.
  std::uint32_t answerMs = 500;
  std::uint32_t pauseMs = 0;
  bool mayRepeat = true; ///< Doing it twice is the same as once.
};

/// Thread: one. Ownership: borrows the line and the protocol.
class CommandExchange {
public:
  CommandExchange(ICameraLine& aLine, const FileProtocol& aProtocol) : mLine(aLine), mProtocol(aProtocol) {}

  /// Sends a command, as often as the protocol says while no good answer comes. TimeLimitExceeded where nothing came at
  /// all, ProtocolError where something else came, with it, or with the camera's words where it refuses.
  KrResult Run(const CommandOrder& aOrder, const std::stop_token& aStop, AnswerContent& aContent);

private:
  using Time = std::chrono::steady_clock::time_point;

  KrResult TryOnce(const CommandOrder& aOrder, const std::stop_token& aStop, AnswerContent& aContent,
                   bool& aMayTryAgain);
  KrResult Prepare(const std::stop_token& aStop);
  KrResult DropUntilQuiet(std::uint32_t aQuietMs, const std::stop_token& aStop);
  KrResult DropUntil(Time aUntil, const std::stop_token& aStop);
  KrResult ReadMore(Time aUntil, const std::stop_token& aStop);
  KrResult AwaitEcho(const CommandOrder& aOrder, Time aUntil, const std::stop_token& aStop);
  KrResult AwaitAnswer(const CommandOrder& aOrder, Time aUntil, const std::stop_token& aStop, AnswerContent& aContent);
  KrResult AwaitPrompt(Time aUntil, const std::stop_token& aStop);

  /// What the bytes at hand say.
  enum class Finding { Nothing, Answer, Error, Damage };
  Finding Search(const CommandTemplate* aAnswer, AnswerContent& aContent);
  Finding SearchMessages(const CommandTemplate* aAnswer, AnswerContent& aContent);
  Finding SearchBytes(const CommandTemplate* aAnswer, AnswerContent& aContent);
  Finding FindMessage(const CommandTemplate* aAnswer, std::string_view aReceived, bool aNeedsCheck, std::size_t& aSize,
                      bool& aMayBecomeOne, AnswerContent& aContent);
  Finding Judge(const CommandTemplate* aAnswer, std::string_view aMessage, AnswerContent& aContent);

  std::string Show(std::string_view aBytes) const;
  KrResult ExplainFailure(const CommandOrder& aOrder, const KrResult& aResult) const;
  std::string DescribeError(const FileError& aError, const AnswerContent& aContent) const;

  ICameraLine& mLine;
  const FileProtocol& mProtocol;
  std::string mReceived;
  std::string mUnexpected; ///< What came instead of an answer.
  std::string mRefusal;    ///< What the camera means by its error.
  bool mIsSettled = false; ///< All that was sent has had its answer.
  std::uint32_t mLastAnswerMs = 0;
  Time mFree = {}; ///< No command before that.
};

} // namespace krcamerabridge
