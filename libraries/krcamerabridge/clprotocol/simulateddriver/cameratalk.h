#pragma once
// Commands to a simulated camera, and its answers (clprotocolcamera.h of the simulation has the packets). What they are
// used for is left to the driver.

#include "clprotocol/clprotocolapi.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace krsimulatedcl {

/// The driver's own errors: less the status of the camera's packet.
constexpr CLINT32 kFirstError = -30000;

/// Numbers of packets: the most significant byte first.
std::string MakeNumber(std::uint32_t aNumber, int aBytes);
std::uint32_t GetNumber(const std::string& aBytes, std::size_t aAt, std::size_t aCount);

/// Thread: one at a time. Ownership: borrows the line.
class CameraTalk {
public:
  /// The line for the calls that follow, and how long the camera may take for an answer. A driver is given the line
  /// anew in each call.
  void Use(ISerial& aSerial, CLUINT32 aTimeoutMs) {
    mSerial = &aSerial;
    mTimeoutMs = aTimeoutMs;
  }
  ISerial& GetSerial() { return *mSerial; }

  /// Sends a command and waits for its answer, again where a packet was lost or the camera is busy: 0, PENDING_WRITE,
  /// TIMEOUT, or the camera's refusal. The answer's data go to GetData.
  CLINT32 Ask(char aCommand, const std::string& aData, int aTries = 3);
  /// Waits for the last answer to a command that is pending.
  CLINT32 AwaitEnd(char aCommand);
  const std::string& GetData() const { return mData; }

private:
  struct Packet {
    char command;
    std::uint8_t number;
    CLINT32 status;
    std::string data;
  };

  CLINT32 AskOnce(char aCommand, const std::string& aData);
  std::optional<Packet> Receive();
  bool Take(std::size_t aSize, std::string& aBytes);
  void DropReceived();
  void Pause();

  ISerial* mSerial = nullptr;
  CLUINT32 mTimeoutMs = 0;
  std::uint8_t mNumber = 0;
  std::string mData;
};

} // namespace krsimulatedcl
