#pragma once
// The parameters of this host's side of a camera, its stream's and the connection's: lent beside the camera's own, and
// set as they were when a camera that was lost has come back. The camera's own are left to the acquisition.

#include "acquisition/loan.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krgenicam/krgenparameterarray.h"

#include <array>
#include <cstddef>

namespace krviewer {

/// Which of them.
enum class HostSide { Stream, Connection };
inline constexpr std::size_t kHostSides = 2;

/// Thread: Get any, the rest on the one that opens and closes the device.
/// Ownership: borrows device and stream from Lend to TakeBack.
class HostParameters {
public:
  /// Lent to one borrower.
  Loan<KrGenParameterArray>& Get(HostSide aSide) { return mSides[static_cast<std::size_t>(aSide)].loan; }

  /// Sets those of a device that was opened again, whose stream has not begun, as the former ones were.
  void Return(KrDevice& aDevice, KrStream& aStream);
  void Lend(KrDevice& aDevice, KrStream& aStream);
  /// Waits until both are given back, and keeps what they are set to.
  void TakeBack();

private:
  struct Side {
    Loan<KrGenParameterArray> loan;
    KrGenParameterArray* lent = nullptr;
    KrGenSettings settings;
  };
  using Arrays = std::array<KrGenParameterArray*, kHostSides>;

  static Arrays Find(KrDevice& aDevice, KrStream& aStream);

  std::array<Side, kHostSides> mSides;
};

} // namespace krviewer
