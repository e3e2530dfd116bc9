#pragma once
// What a simulated lab consists of, as a plain value: adapters and the cameras behind them.
// How a camera behaves is left to SimulatedCamera.

#include "krbase/krstring.h"
#include "krbuffer/krpixeltype.h"

#include <cstdint>
#include <vector>

namespace krtransport {

/// A camera as it is when the lab starts; addresses as texts "a.b.c.d".
struct LabCamera {
  KrString vendorName;
  KrString modelName;
  KrString version;
  KrString manufacturerInfo;
  KrString serialNumber;
  KrString userDefinedName;
  KrString macAddress; ///< "aa:bb:cc:dd:ee:ff"; also the camera's unique ID.
  KrString ipAddress;
  KrString subnetMask;
  KrString defaultGateway = "0.0.0.0";
  std::uint32_t ipConfigOptions = 0x7;                      ///< Bit 0 persistent, bit 1 DHCP, bit 2 link-local.
  std::uint32_t ipConfigCurrent = 0x5;                      ///< The same bits.
  std::uint32_t sensorWidth = 640;                          ///< Pixels, a multiple of 4 and at least 64.
  std::uint32_t sensorHeight = 480;                         ///< Lines, a multiple of 2 and at least 16.
  double framesPerSecond = 30.0;                            ///< Between 1 and 1000.
  std::vector<KrPixelType> pixelFormats = {KrPixel::Mono8}; ///< At least one; the first is set at the start.
};

/// A network adapter of the simulated host.
struct LabAdapter {
  KrString name;
  KrString description;
  KrString macAddress;
  KrString ipAddress;
  KrString subnetMask;
  std::vector<LabCamera> cameras;
};

/// A lab.
struct Lab {
  std::vector<LabAdapter> adapters;
};

/// The lab that comes with the library: one adapter with a mono, a colour, a misconfigured and a 3D camera.
/// Any thread.
Lab GetBuiltInLab();

} // namespace krtransport
