#pragma once
// An instrument behind a serial port that answers text commands (docs/simulation.md lists them): something to try a
// terminal with. It never echoes.

#include "simulation/serial/bytequeue.h"
#include "simulation/serial/ilineend.h"

#include <string>
#include <string_view>

namespace krtransport {

/// Thread and ownership as ILineEnd. What was set stays from one opening of the port to the next.
class TalkingInstrument final : public ILineEnd {
public:
  /// What it calls itself, behind the model's name.
  explicit TalkingInstrument(std::string aSerialNumber);

  void Open(std::uint32_t aRate, Waker aWaker) override;
  void Close() override {}
  void SetRate(std::uint32_t) override {}
  /// Takes commands while there is room for an answer.
  std::size_t Take(const std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) override;
  std::size_t Give(std::uint8_t* aBytes, std::size_t aSize, std::uint64_t aNowNs) override;
  std::uint64_t GetNextNs() const override { return mNextReportNs; }

private:
  struct Command {
    std::string_view name;
    void (TalkingInstrument::*answer)(std::string_view aArgument, std::uint64_t aNowNs);
  };
  static const Command kCommands[];

  void AnswerLine(std::uint64_t aNowNs);
  void Answer(std::string_view aText);
  void AnswerIdentity(std::string_view aArgument, std::uint64_t aNowNs);
  void AnswerHelp(std::string_view aArgument, std::uint64_t aNowNs);
  void AnswerValue(std::string_view aArgument, std::uint64_t aNowNs);
  void SetValue(std::string_view aArgument, std::uint64_t aNowNs);
  void AnswerReport(std::string_view aArgument, std::uint64_t aNowNs);
  void SetReport(std::string_view aArgument, std::uint64_t aNowNs);
  void MakeReports(std::uint64_t aNowNs);

  const std::string mSerialNumber;
  ByteQueue mAnswers;
  std::string mLine;       // Of the command that is coming in.
  bool mIsTooLong = false; // The command is.
  std::int32_t mValue = 20;
  std::uint32_t mReports = 0; // Since reporting was switched on.
  std::uint64_t mNextReportNs = kNever;
};

} // namespace krtransport
