#pragma once
// Tells a device that settings are about to be written, and that all of them have been (SFNC:
// DeviceFeaturePersistenceStart and End, formerly DeviceRegistersStreamingStart and End). Devices check their settings
// as a whole then.

#include "krbase/krresult.h"
#include "krgenicam/krgencommand.h"

#include <functional>
#include <stop_token>
#include <utility>

namespace krgenicam {

/// Thread: one at a time. Ownership: borrows the commands.
class PersistenceFrame {
public:
  using Finder = std::function<KrGenParameter*(const KrString&)>;
  /// How long the device may take for each of the two.
  static constexpr int kLimitMs = 2000;

  /// aCancel, and aGoesOn by giving false, end the waiting for the device, which is Aborted then; that the settings end
  /// it is told in any case. aGoesOn is asked now and then.
  PersistenceFrame(std::stop_token aCancel, std::function<bool()> aGoesOn)
      : mCancel(std::move(aCancel)), mGoesOn(std::move(aGoesOn)) {}

  /// Begins where the device has the commands; OK where it has none.
  KrResult Begin(const Finder& aFind);
  /// Ends what Begin has begun, even if that gave a failure; OK, and nothing is done, where it is not begun.
  KrResult End();

private:
  KrResult Execute(KrGenCommand& aCommand);
  KrResult AwaitDone(KrGenCommand& aCommand);

  const std::stop_token mCancel;
  const std::function<bool()> mGoesOn;
  KrGenCommand* mEnd = nullptr;
};

} // namespace krgenicam
