#pragma once
// A device on the control channel that answers as a test tells it, for what no honest camera sends. It listens on UDP
// port 3956 of a namespace of its own (scripts/with-network.sh).

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <thread>
#include <vector>

using Datagrams = std::vector<std::vector<std::uint8_t>>;

/// Makes the datagrams that answer a command.
using AnswerCommand = std::function<Datagrams(std::span<const std::uint8_t> aCommand)>;

/// Answers from construction to destruction.
///
/// Thread: the answers are made on a thread of its own.
class GvcpResponder {
public:
  explicit GvcpResponder(AnswerCommand aAnswer);
  ~GvcpResponder();
  GvcpResponder(const GvcpResponder&) = delete;
  GvcpResponder& operator=(const GvcpResponder&) = delete;

private:
  void Serve();

  const AnswerCommand mAnswer;
  int mSocket = -1;
  std::array<int, 2> mStopPipe{-1, -1};
  std::thread mThread;
};

/// A correct discovery acknowledge to a command, of a device with an address and a serial number.
std::vector<std::uint8_t> MakeDiscoveryAcknowledge(std::span<const std::uint8_t> aCommand, std::uint32_t aAddress,
                                                   const std::string& aSerialNumber);
/// Writes a 32-bit number, most significant byte first.
void PutBigEndian32(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, std::uint32_t aValue);
/// Writes a text without a terminator.
void PutText(std::vector<std::uint8_t>& aBytes, std::size_t aOffset, const std::string& aText);
