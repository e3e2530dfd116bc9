#pragma once
// The simulated lab of a soak, and its cameras: opened, lost, opened again. Who shows them is left to the station.

#include "krdevice/krdevice.h"
#include "krdevice/krdeviceadapter.h"
#include "krtransport/krsimulatedfaults.h"

#include <memory>
#include <string>
#include <vector>

/// Installs the lab (soaklab.yaml) for the process.
void InstallSoakLab();

/// A camera of the lab. What fails throws std::runtime_error.
///
/// Thread: one. Ownership: the device and its adapter are lent until Close.
class LabCamera {
public:
  LabCamera(const char* aUniqueID, const char* aAddress);

  /// Looks for it, for a minute at most, and opens it with control.
  void Open();
  void Close();
  bool IsOpen() const { return mDevice != nullptr; }
  /// By one of which texts of failures name it, or the camera behind it; none until it was opened once.
  const std::vector<std::string>& GetNames() const { return mNames; }

  KrDevice& GetDevice() { return *mDevice; }
  KrDeviceAdapter& GetAdapter() { return *mAdapter; }
  KrGenParameterArray& GetParameters();
  KrSimulatedFaults& GetFaults() { return *mFaults; }
  /// No register answers any more; all do again, and the camera has said so, by the value that it had before.
  void FallSilent();
  void Answer();
  /// Whether it was silent since it was opened: its link then has a thread more, which asks whether it answers again.
  bool WasSilent() const { return mWasSilent; }

private:
  const char* const mAddress;
  std::shared_ptr<KrSimulatedFaults> mFaults;
  std::unique_ptr<KrDevice> mDevice;
  std::unique_ptr<KrDeviceAdapter> mAdapter;
  KrString AskWidth();

  std::vector<std::string> mNames;
  bool mWasSilent = false;
  KrString mWidthBefore;
};

namespace soaklab {

inline constexpr const char* kMonoID = "02:4b:52:00:79:10";
inline constexpr const char* kMonoAddress = "192.168.79.10";
inline constexpr const char* kColourID = "02:4b:52:00:79:11";
inline constexpr const char* kColourAddress = "192.168.79.11";
inline constexpr const char* kGrabberID = "02:4b:52:00:79:12";
inline constexpr const char* kGrabberAddress = "192.168.79.12";

} // namespace soaklab
