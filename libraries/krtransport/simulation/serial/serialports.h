#pragma once
// All serial ports of a simulated camera, with what the lab has attached behind them.

#include "simulation/cameraclock.h"
#include "simulation/lab.h"
#include "simulation/serial/serialline.h"

#include <functional>
#include <map>
#include <memory>

namespace krtransport {

/// Thread: any. Ownership: shares the lines with the channels that were handed out.
class SerialPorts {
public:
  /// aCameraName names the camera in messages.
  SerialPorts(const LabCamera& aCamera, const KrString& aCameraName, const std::shared_ptr<ICameraClock>& aClock);

  /// The line of a port's number, or null.
  std::shared_ptr<SerialLine> Find(std::uint32_t aNumber) const;
  /// Tells each line what its port is set to now.
  void Update(const std::function<SerialSettings(std::uint32_t aNumber)>& aGetSettings);
  /// Ends what whoever controls the camera has open.
  void End(const KrResult& aReason);
  void EndFaults();

private:
  std::map<std::uint32_t, std::shared_ptr<SerialLine>> mLines; // By number; never changes, so that no lock is needed.
};

} // namespace krtransport
