#pragma once
// The registers of one simulated camera, what values they accept, and what follows from a value.
// Who may access them at the moment, and when frames are made, is left to SimulatedCamera and the buffer source.

#include "simulation/lab.h"
#include "simulation/registermemory.h"
#include "simulation/testpattern.h"

#include <vector>

namespace krtransport {

/// What a frame depends on, as the registers say at one moment.
struct FrameSettings {
  Picture picture;
  double framesPerSecond = 1.0;
  double exposureTimeUs = 0.0;
  bool acquiring = false;
  bool singleFrame = false;
};

/// An IP configuration in numbers.
struct IPConfiguration {
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
};

/// Thread: one at a time.
class CameraMemory {
public:
  explicit CameraMemory(const LabCamera& aCamera);

  /// An application's access; a value that the camera does not accept is refused and changes nothing.
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength) const;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength);

  FrameSettings GetFrameSettings() const;
  std::uint64_t GetPayloadSize() const;
  KrString GetUserDefinedName() const;
  IPConfiguration GetIPConfiguration() const;

  /// A stream runs: frames are taken, and what their size depends on is locked.
  void BeginStream();
  /// Ends what BeginStream began; without it nothing.
  void EndStream();
  /// Frames are taken no more; the stream stays.
  void EndAcquisition();
  void SetIPConfiguration(const IPConfiguration& aConfiguration);
  /// The control privilege as GigE Vision numbers it: 0 nobody, 1 exclusive, 2 control.
  void SetControlPrivilege(std::uint32_t aPrivilege);

private:
  /// The values that an integer register accepts.
  struct IntegerRule {
    std::uint64_t address;
    const char* name;
    std::uint32_t minimum;
    std::uint32_t maximum;
    std::uint32_t increment;
    bool locked; ///< Not while a stream runs.
  };
  /// The values that a float register accepts.
  struct FloatRule {
    std::uint64_t address;
    const char* name;
    double minimum;
    double maximum;
  };

  void DefineBootstrap(const LabCamera& aCamera);
  void DefineTexts(const LabCamera& aCamera);
  void DefineFeatures(const LabCamera& aCamera);
  void DefineDescription(const LabCamera& aCamera);
  void DefineInteger(std::uint64_t aAddress, RegisterAccess aAccess, const char* aName, std::uint32_t aValue);
  void DefineFloat(const FloatRule& aRule, double aValue);

  KrResult CheckValue(std::uint64_t aAddress, const std::uint8_t* aData, std::size_t aLength) const;
  KrResult CheckInteger(const IntegerRule& aRule, std::uint32_t aValue) const;
  void Apply(std::uint64_t aAddress);
  void UpdatePayloadSize();

  RegisterMemory mMemory;
  std::vector<KrPixelType> mPixelFormats;
  std::vector<IntegerRule> mIntegerRules;
  std::vector<FloatRule> mFloatRules;
  bool mStreaming = false;
  bool mAcquiring = false;
};

} // namespace krtransport
