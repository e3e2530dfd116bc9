#pragma once
// A device on the control channel that answers as a test tells it, for what no honest camera sends. It listens on UDP
// port 3956 of a namespace of its own (scripts/with-network.sh).

#include <array>
#include <cstdint>
#include <functional>
#include <netinet/in.h>
#include <span>
#include <string>
#include <thread>
#include <vector>

using Datagrams = std::vector<std::vector<std::uint8_t>>;

/// Makes the datagrams that answer a command.
using AnswerCommand = std::function<Datagrams(std::span<const std::uint8_t> aCommand)>;

/// How often a command is answered.
enum class GvcpAnswers {
  Once,
  WithoutEnd, ///< The last command is answered again and again, as fast as the answers can be sent.
};

/// Answers from construction to destruction.
///
/// Thread: the answers are made on a thread of its own.
class GvcpResponder {
public:
  /// Hears and answers at aAddress alone where it is not 0.
  explicit GvcpResponder(AnswerCommand aAnswer, GvcpAnswers aAnswers = GvcpAnswers::Once, std::uint32_t aAddress = 0);
  ~GvcpResponder();
  GvcpResponder(const GvcpResponder&) = delete;
  GvcpResponder& operator=(const GvcpResponder&) = delete;

private:
  void Serve();
  void TakeCommand();
  void Answer();

  const AnswerCommand mAnswer;
  const GvcpAnswers mAnswers;
  int mSocket = -1;
  std::array<int, 2> mStopPipe{-1, -1};
  // Used by the thread alone: the last command, and who sent it.
  std::vector<std::uint8_t> mCommand;
  sockaddr_in mSender{};
  std::thread mThread;
};

/// A correct discovery acknowledge to a command, of a device with an address and a serial number.
std::vector<std::uint8_t> MakeDiscoveryAcknowledge(std::span<const std::uint8_t> aCommand, std::uint32_t aAddress,
                                                   const std::string& aSerialNumber);
/// The acknowledge of a READREG command.
std::vector<std::uint8_t> MakeReadAcknowledge(std::span<const std::uint8_t> aCommand, std::uint32_t aValue);
/// The answer "not yet" to any command.
std::vector<std::uint8_t> MakePendingAcknowledge(std::span<const std::uint8_t> aCommand, std::uint16_t aMilliseconds);
/// The refusal of a READREG command with a status.
std::vector<std::uint8_t> MakeReadRefusal(std::span<const std::uint8_t> aCommand, std::uint16_t aStatus);
/// Whether a command is a READREG.
bool IsReadRegister(std::span<const std::uint8_t> aCommand);
/// Writes a 32-bit number, most significant byte first.
void PutBigEndian32(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, std::uint32_t aValue);
/// Writes a text without a terminator.
void PutText(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, const std::string& aText);
