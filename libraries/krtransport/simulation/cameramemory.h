#pragma once
// The registers of one simulated camera, what values they accept, and what follows from a value.
// Who may access them at the moment is left to SimulatedCamera, waiting and making frames to the buffer source.

#include "simulation/acquisitiontimer.h"
#include "simulation/camerafeatures.h"
#include "simulation/framelayout.h"
#include "simulation/lab.h"
#include "simulation/registermemory.h"
#include "simulation/serial/serialsettings.h"

#include <array>
#include <map>
#include <optional>
#include <vector>

namespace krtransport {

/// An IP configuration in numbers.
struct IPConfiguration {
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
};

/// Thread: one at a time. Times are the camera's clock's.
class CameraMemory {
public:
  explicit CameraMemory(const LabGEVCamera& aCamera);

  /// An application's access; a value that the camera does not accept is refused and changes nothing.
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint64_t aNowNs);
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint64_t aNowNs);

  std::uint64_t GetPayloadSize() const;
  KrString GetUserDefinedName() const;
  IPConfiguration GetIPConfiguration() const;
  /// The ways of addressing that are switched on: bit 0 persistent, bit 1 DHCP, bit 2 link-local.
  std::uint32_t GetIPConfigCurrent() const;

  /// What the serial port of a number, which the camera has, is set to.
  SerialSettings GetSerialSettings(std::uint32_t aNumber) const;

  /// A stream runs: frames are taken, and what their size depends on is locked.
  void BeginStream(std::uint64_t aNowNs);
  /// Ends what BeginStream began; without it nothing.
  void EndStream();
  /// The camera starts anew: every feature is as at first but for the user-defined name. No stream runs.
  void Restart();
  /// The exposure that is due next, if there is one as things stand.
  std::optional<Exposure> GetNextExposure(std::uint64_t aNowNs) const;
  /// Takes the frame of an exposure; nothing when acquisition was stopped meanwhile.
  std::optional<FrameSettings> EndExposure(const Exposure& aExposure);
  void SetIPConfiguration(const IPConfiguration& aConfiguration);
  /// The control privilege as GigE Vision numbers it: 0 nobody, 1 exclusive, 2 control.
  void SetControlPrivilege(std::uint32_t aPrivilege);

private:
  /// The feature behind a register, and the position of its selector that the register belongs to.
  struct FeatureRegister {
    const Feature* feature;
    std::uint32_t position;
  };

  static constexpr std::size_t kSourceValues = 5;
  using SourceValues = std::array<std::uint32_t, kSourceValues>;

  void DefineFeature(const Feature& aFeature);
  void SetStart(const LabCamera& aCamera);
  std::uint64_t GetBulkRateAddress(std::uint32_t aNumber) const;

  KrResult CheckValue(std::uint64_t aAddress, const std::uint8_t* aData, std::size_t aLength) const;
  KrResult CheckLasting(std::uint64_t aAddress, const std::uint8_t* aData, std::size_t aLength) const;
  KrResult CheckFault(std::uint64_t aAddress, std::size_t aLength, std::uint32_t aFault) const;
  KrResult CheckAccess(const Feature& aFeature, std::uint64_t aAddress) const;
  KrResult CheckInteger(const FeatureRegister& aRegister, std::uint64_t aAddress, std::uint32_t aValue) const;
  KrResult CheckFloat(const Feature& aFeature, std::uint64_t aAddress, const std::uint8_t* aData,
                      std::size_t aLength) const;
  std::uint32_t GetMaximum(const Feature& aFeature) const;
  void Apply(const FeatureRegister& aWritten, std::uint64_t aNowNs);
  SourceValues ReadSource() const;
  void SelectSource(std::uint32_t aSource);
  void UpdateDependents();
  void UpdateTimed(std::uint64_t aNowNs);

  FrameSettings GetFrameSettings() const;
  TimingSettings GetTimingSettings() const;

  RegisterMemory mMemory;
  RegisterMemory mStart; // As it was at first.
  const CameraFeatures mCameraFeatures;
  const std::uint32_t mBulkClock;                     // 0 where bulk ports are set to rates.
  std::map<std::uint64_t, FeatureRegister> mFeatures; // By address.
  AcquisitionTimer mTimer;
  std::uint64_t mCalibrationEndNs = 0; // Of the calibration that was executed last.
  bool mStreaming = false;
  const bool mHasPocl;
  std::vector<SourceValues> mSources; // What was set for each source of a frame grabber; …
  std::uint32_t mSource = 0;          // … that of the selected one is in the registers.
};

} // namespace krtransport
