#pragma once
// Finds the reasons why devices are missing, from readings alone: nothing is asked of the host here. Reading is left
// to the transports, showing to the programs.

#include "krsystem/hostreadings.h"
#include "krsystem/itransport.h"
#include "krsystem/krfinding.h"

#include <vector>

namespace krsystem {

/// A device that answered, with the unique ID of the interface on which it did.
struct AnsweredDevice {
  KrString interfaceID;   ///< The unique ID of the interface it answered on.
  AnyDeviceFields fields; ///< What it answered.
  /// The system's name of a network adapter, by which it is known where its unique ID is another by now.
  KrString interfaceName = {};
};

/// The findings, the gravest first, each said once. Any thread.
KR_EXPORT std::vector<KrFinding> FindCauses(const HostReadings& aReadings,
                                            const std::vector<AnsweredDevice>& aAnswered);

} // namespace krsystem
