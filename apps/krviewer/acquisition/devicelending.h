#pragma once
// What is lent and watched of an open camera: the device and its parameters for the windows, what it is set to, its
// temperature, how fast it answers. When it is open is left to the acquisition.

#include "acquisition/devicethermometer.h"
#include "acquisition/hostparameters.h"
#include "acquisition/keptsettings.h"
#include "acquisition/lentdevice.h"
#include "acquisition/loan.h"
#include "acquisition/responsetimer.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krdevice/krstream.h"

#include <array>
#include <cstddef>
#include <optional>
#include <utility>

namespace krviewer {

/// Who borrows the device.
enum class DeviceBorrower { Terminal, Bridges, CameraBridges };
inline constexpr std::size_t kDeviceBorrowers = 3;

/// Who borrows the camera's parameters.
enum class ParameterBorrower { Browser, Region, Control };
inline constexpr std::size_t kParameterBorrowers = 3;

/// Thread: the one that opens and closes the device; the getters any.
/// Ownership: borrows device and stream from Lend to TakeBack.
class DeviceLending {
public:
  /// aKept is what the host's side of the first device is set to.
  explicit DeviceLending(HostSettings aKept) : mHostParameters(std::move(aKept)) {}

  Loan<KrGenParameterArray>& Get(ParameterBorrower aBorrower) {
    return mParameters[static_cast<std::size_t>(aBorrower)];
  }
  Loan<KrGenParameterArray>& Get(HostSide aSide) { return mHostParameters.Get(aSide); }
  Loan<LentDevice>& Get(DeviceBorrower aBorrower) { return mDevices[static_cast<std::size_t>(aBorrower)]; }
  const KeptSettings& GetSettings() const { return mKept; }
  const DeviceThermometer& GetThermometer() const { return mThermometer; }
  const ResponseTimer& GetResponses() const { return mResponses; }
  /// What was set of the host's side when it was taken back the last time.
  HostSettings GetHostSettings() const { return mHostParameters.GetChanged(); }

  /// Sets the host's side of a device that was opened as it was before, or as it was kept.
  void ReturnHostParameters(KrDevice& aDevice, KrStream& aStream) { mHostParameters.Return(aDevice, aStream); }
  /// aParameters is null for a camera without a description that is any good, which may have ports all the same.
  /// aIsKept says whether what it is set to is noted.
  void Lend(KrDevice& aDevice, KrStream& aStream, KrGenParameterArray* aParameters, bool aIsKept);
  /// Notes what the camera was just set to, as far as its parameters remember that.
  void NoteSettings() { mKept.NoteRemembered(); }
  /// Asks the camera for nothing more by itself.
  void LeaveCamera();
  /// Waits until the device is given back; its parameters stay lent.
  void TakeBackDevice();
  /// Waits until all is given back.
  void TakeBack();

private:
  std::array<Loan<KrGenParameterArray>, kParameterBorrowers> mParameters;
  std::array<Loan<LentDevice>, kDeviceBorrowers> mDevices;
  HostParameters mHostParameters;
  std::optional<KrDeviceAdapter> mAdapter;
  std::optional<LentDevice> mLent;
  KeptSettings mKept;
  DeviceThermometer mThermometer;
  ResponseTimer mResponses;
};

} // namespace krviewer
