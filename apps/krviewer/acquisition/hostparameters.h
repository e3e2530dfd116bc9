#pragma once
// The parameters of this host's side of a camera, its stream's and the connection's: lent beside the camera's own, set
// as they were kept, and again when a camera that was lost has come back. The camera's own are left to the acquisition.

#include "acquisition/hostsettings.h"
#include "acquisition/loan.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krgenicam/krgenparameterarray.h"

#include <array>
#include <cstddef>
#include <mutex>
#include <utility>

namespace krviewer {

/// Thread: Get and GetChanged any, the rest on the one that opens and closes the device.
/// Ownership: borrows device and stream from Lend to TakeBack.
class HostParameters {
public:
  /// aKept is what the first device is set to.
  explicit HostParameters(HostSettings aKept) : mChanged(std::move(aKept)) {}

  /// Lent to one borrower.
  Loan<KrGenParameterArray>& Get(HostSide aSide) { return mSides[static_cast<std::size_t>(aSide)].loan; }

  /// Sets those of a device that was opened, whose stream has not begun, as the former ones were, or as they were kept.
  /// A value that does not fit any more is passed over.
  void Return(KrDevice& aDevice, KrStream& aStream);
  void Lend(KrDevice& aDevice, KrStream& aStream);
  /// Waits until both are given back, and keeps what they are set to.
  void TakeBack();
  /// What was not as the host begins with when it was taken back the last time; what was kept before the first.
  HostSettings GetChanged() const;

private:
  struct Side {
    Loan<KrGenParameterArray> loan;
    KrGenParameterArray* lent = nullptr;
    KrGenSettings initial; ///< Of the last device, before anything was set.
  };
  using Arrays = std::array<KrGenParameterArray*, kHostSides>;

  static Arrays Find(KrDevice& aDevice, KrStream& aStream);

  std::array<Side, kHostSides> mSides;

  mutable std::mutex mMutex; ///< Guards the settings.
  HostSettings mChanged;
};

} // namespace krviewer
