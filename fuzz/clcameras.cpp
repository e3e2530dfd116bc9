// Any bytes may come over the line to the Camera Link cameras of the lab: nothing breaks, what a camera says is whole,
// and it answers no more than was asked.

#include "require.h"
#include "simulation/clcamera/clcameraend.h"
#include "simulation/clcamera/clprotocolcamera.h"
#include "simulation/clcamera/gencpframes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace {

constexpr std::size_t kProtocols = 3;
constexpr std::uint64_t kByteNs = 1000000;
constexpr std::size_t kMostAnswers = 2; // To one command: that it takes longer, and what came of it.

std::size_t GetWord(std::span<const std::uint8_t> aBytes, std::size_t aAt) {
  return static_cast<std::size_t>(aBytes[aAt]) << 8 | aBytes[aAt + 1];
}

bool IsGenCPPacket(std::span<const std::uint8_t> aBytes) {
  return aBytes.size() >= krtransport::kGenCPHeaderBytes && aBytes.size() <= krtransport::kGenCPPacketBytes &&
         aBytes.size() == krtransport::kGenCPHeaderBytes + GetWord(aBytes, 12) &&
         krtransport::MakeGenCPChecksum(aBytes.subspan(6)) == GetWord(aBytes, 4);
}

bool IsCLProtocolPacket(std::span<const std::uint8_t> aBytes) {
  return aBytes.size() >= 9 && aBytes.size() <= 273 && aBytes.size() == 9 + GetWord(aBytes, 4) &&
         krtransport::MakeCLProtocolCRC(aBytes.first(aBytes.size() - 2)) == GetWord(aBytes, aBytes.size() - 2);
}

// The bytes of the shortest command.
std::size_t GetLeastCommand(krtransport::CLCameraProtocol aProtocol) {
  switch (aProtocol) {
  case krtransport::CLCameraProtocol::GenCP:
    return krtransport::kGenCPHeaderBytes;
  case krtransport::CLCameraProtocol::CLProtocol:
    return 9;
  default:
    return 1;
  }
}

bool IsWhole(krtransport::CLCameraProtocol aProtocol, std::span<const std::uint8_t> aBytes) {
  switch (aProtocol) {
  case krtransport::CLCameraProtocol::GenCP:
    return IsGenCPPacket(aBytes);
  case krtransport::CLCameraProtocol::CLProtocol:
    return IsCLProtocolPacket(aBytes);
  default:
    return !aBytes.empty() && aBytes.back() == '\r';
  }
}

} // namespace

// The first byte says what the camera speaks, and whether it is slow.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  if (aSize == 0)
    return 0;
  krtransport::LabCLCamera camera;
  camera.protocol = static_cast<krtransport::CLCameraProtocol>(aData[0] % kProtocols);
  camera.pendingMs = aData[0] >= 128 ? 100 : 0;
  camera.descriptions = {krtransport::DescriptionFormat::Plain}; // Zipping one would take most of the time.
  const std::unique_ptr<krtransport::ICameraTalk> talk = krtransport::MakeCameraTalk(camera);
  std::uint64_t nowNs = 0;
  std::size_t heard = 0;
  std::size_t answers = 0;
  for (const std::uint8_t byte : std::span(aData, aSize).subspan(1)) {
    nowNs += kByteNs;
    ++heard;
    Require(talk->GetRate(nowNs) != 0); // A camera always has a speed.
    talk->Hear(byte, nowNs, [&](const krtransport::CameraAnswer& aAnswer) {
      Require(IsWhole(camera.protocol, aAnswer.bytes) && aAnswer.dueNs >= nowNs);
      ++answers;
    });
    Require(answers <= heard / GetLeastCommand(camera.protocol) * kMostAnswers);
  }
  return 0;
}
