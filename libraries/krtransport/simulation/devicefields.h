#pragma once
// What discovery tells of the devices of a lab, from what the lab says of them.

#include "krsystem/krdeviceinfo.h"
#include "simulation/cameramemory.h"
#include "simulation/hostsubnets.h"
#include "simulation/lab.h"

namespace krtransport {

/// What of a GigE Vision camera may change while the lab is there.
struct GEVState {
  IPConfiguration ip;
  std::uint32_t ipConfigCurrent = 0;
  KrString userDefinedName;
};

/// Addresses in numbers; 0 for a text that is no address. Any thread.
IPConfiguration ParseConfiguration(const LabNetworkSettings& aSettings);

/// The fields of each kind. Any thread.
krsystem::GEVFields MakeFields(const LabGEVCamera& aCamera, const GEVState& aState, const HostSubnets& aSubnets);
krsystem::TolvanProtocolFields MakeFields(const LabTolvanDevice& aDevice, const IPConfiguration& aIP,
                                          const HostSubnets& aSubnets);
krsystem::U3VFields MakeFields(const LabU3VCamera& aCamera, const KrString& aUserDefinedName);
krsystem::USBFields MakeFields(const LabPlainUSBDevice& aDevice);

} // namespace krtransport
