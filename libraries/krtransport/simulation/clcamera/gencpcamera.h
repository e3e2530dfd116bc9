#pragma once
// A Camera Link camera that speaks GenCP 1.3.1 over its serial line, written from the standard alone.

#include "simulation/clcamera/clcameramemory.h"
#include "simulation/clcamera/gencpframes.h"
#include "simulation/clcamera/icameratalk.h"
#include "simulation/labclcamera.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace krtransport {

/// Thread as ICameraTalk.
class GenCPCamera final : public ICameraTalk {
public:
  explicit GenCPCamera(const LabCLCamera& aCamera);

  void Restart() override;
  void ForgetPart() override { mListener.Clear(); }
  void Hear(std::uint8_t aByte, std::uint64_t aNowNs, const Speaker& aSpeak) override;
  std::uint32_t GetRate(std::uint64_t aNowNs) override;

private:
  using Bytes = std::vector<std::uint8_t>;

  // The command that was done last, for a host that did not hear the answer.
  struct Done {
    std::uint16_t id;
    std::uint16_t request;
    std::uint64_t readyNs; // When it is done: until then the camera is busy.
    Bytes answer;
  };
  // A speed that the host has to confirm.
  struct NewRate {
    std::uint32_t formerBit;
    std::uint64_t endNs;
  };

  void Obey(const GenCPCommand& aCommand, std::uint64_t aNowNs, const Speaker& aSpeak);
  std::uint16_t Execute(const GenCPCommand& aCommand, std::uint64_t aNowNs, Bytes& aData);
  std::uint16_t Read(const GenCPCommand& aCommand, std::uint64_t aNowNs, Bytes& aData);
  std::uint16_t Write(const GenCPCommand& aCommand, std::uint64_t aNowNs, Bytes& aData);
  bool IsAccepted(std::uint64_t aAddress, std::span<const std::uint8_t> aBytes) const;
  void Apply(std::uint64_t aAddress, std::uint32_t aFormerBit, std::uint64_t aNowNs);
  void ResetLink();
  void LookAtTime(std::uint64_t aNowNs);
  bool IsSlow(const GenCPCommand& aCommand, std::uint16_t aStatus) const;
  CameraAnswer MakePending(const GenCPCommand& aCommand, std::uint64_t aReadyNs, std::uint64_t aNowNs) const;

  const LabCLCamera mCamera;
  CLCameraMemory mMemory;
  GenCPListener mListener;
  std::optional<Done> mDone;
  std::optional<NewRate> mNewRate;
  std::uint64_t mHeardNs = 0; // The host's last access.
};

} // namespace krtransport
