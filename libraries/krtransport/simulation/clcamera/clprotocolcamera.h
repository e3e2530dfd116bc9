#pragma once
// A Camera Link camera with a protocol of its own, for which a CL Protocol driver exists (docs/simulation.md has all of
// it). A packet, in both directions, numbers with the most significant byte first:
//   0    0xA5 from the host, 0x5A from the camera     1  command, a letter     2  number, which the answer repeats
//   3    status, 0 in commands                        4  length n of the data, two bytes, 264 at most
//   6    0xFF less the sum of the bytes 0 to 5        7  data                  7 + n  CRC-16 of all before, two bytes
// The CRC has the polynomial 0x1021, begins with 0xFFFF, and is neither reflected nor changed at the end.

#include "simulation/clcamera/clcameramemory.h"
#include "simulation/clcamera/icameratalk.h"
#include "simulation/labclcamera.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace krtransport {

/// The CRC of the protocol. Any thread.
std::uint16_t MakeCLProtocolCRC(std::span<const std::uint8_t> aBytes);

/// Thread as ICameraTalk.
class CLProtocolCamera final : public ICameraTalk {
public:
  explicit CLProtocolCamera(const LabCLCamera& aCamera);

  void Restart() override;
  void ForgetPart() override { mBytes.clear(); }
  void Hear(std::uint8_t aByte, std::uint64_t aNowNs, const Speaker& aSpeak) override;
  std::uint32_t GetRate(std::uint64_t) override { return mRate; }

private:
  using Bytes = std::vector<std::uint8_t>;

  struct Packet {
    std::uint8_t command = 0;
    std::uint8_t number = 0;
    Bytes data = {};
  };
  struct Command {
    char letter;
    std::uint8_t (CLProtocolCamera::*execute)(const Bytes& aData, std::uint64_t aNowNs, Bytes& aAnswer);
  };
  static const Command kCommands[];

  std::optional<Packet> TakePacket();
  void Obey(const Packet& aPacket, std::uint64_t aNowNs, const Speaker& aSpeak);
  std::uint8_t Execute(const Packet& aPacket, std::uint64_t aNowNs, Bytes& aAnswer);
  std::uint8_t Identify(const Bytes& aData, std::uint64_t aNowNs, Bytes& aAnswer);
  std::uint8_t Read(const Bytes& aData, std::uint64_t aNowNs, Bytes& aAnswer);
  std::uint8_t Write(const Bytes& aData, std::uint64_t aNowNs, Bytes& aAnswer);
  std::uint8_t List(const Bytes& aData, std::uint64_t aNowNs, Bytes& aAnswer);
  std::uint8_t Describe(const Bytes& aData, std::uint64_t aNowNs, Bytes& aAnswer);
  std::uint8_t ChangeRate(const Bytes& aData, std::uint64_t aNowNs, Bytes& aAnswer);

  const LabCLCamera mCamera;
  CLCameraMemory mMemory;
  std::vector<std::string> mDescriptions; // As they are stored.
  std::uint32_t mRate = kFirstRate;
  std::uint64_t mReadyNs = 0; // Until then it is busy with what it was told last.
  Bytes mBytes;               // What came, and is no whole packet yet.
};

} // namespace krtransport
