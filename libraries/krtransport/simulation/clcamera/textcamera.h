#pragma once
// A Camera Link camera that speaks text commands (docs/simulation.md lists them), each ended by a checksum: what a
// camera file can describe.

#include "simulation/clcamera/clcameramemory.h"
#include "simulation/clcamera/icameratalk.h"
#include "simulation/labclcamera.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace krtransport {

/// Thread as ICameraTalk.
class TextCamera final : public ICameraTalk {
public:
  explicit TextCamera(const LabCLCamera& aCamera);

  void Restart() override;
  void ForgetPart() override { mLine.clear(); }
  void Hear(std::uint8_t aByte, std::uint64_t aNowNs, const Speaker& aSpeak) override;
  std::uint32_t GetRate(std::uint64_t) override { return mRate; }

private:
  std::string Answer(std::string_view aLine, std::uint64_t aNowNs);
  std::string Ask(std::string_view aName, std::uint64_t aNowNs);
  std::string Set(std::string_view aName, std::string_view aValue);
  std::string SetRate(std::string_view aValue);
  const Feature* Find(std::string_view aName) const;
  std::string Format(const Feature& aFeature) const;
  std::optional<CLCameraMemory::Bytes> Parse(const Feature& aFeature, std::string_view aValue) const;

  const LabCLCamera mCamera;
  CLCameraMemory mMemory;
  std::uint32_t mRate = kFirstRate;
  std::uint64_t mReadyNs = 0; // Until then it is busy with what it was told last, and answers come later.
  std::string mLine;          // Of the command that is coming in.
};

} // namespace krtransport
