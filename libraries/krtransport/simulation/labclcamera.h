#pragma once
// A Camera Link camera behind a serial port of a simulated frame grabber, as a lab describes it.

#include "krbase/krstring.h"
#include "simulation/labsensor.h"

#include <cstdint>
#include <vector>

namespace krtransport {

/// What a Camera Link camera speaks.
enum class CLCameraProtocol { GenCP, CLProtocol, Text };

/// How a description is stored in a camera.
enum class DescriptionFormat { Plain, Zipped };

/// A Camera Link camera as it is when it gets power.
struct LabCLCamera : LabSensor {
  CLCameraProtocol protocol = CLCameraProtocol::GenCP;
  KrString vendorName;
  KrString modelName;
  KrString familyName;
  KrString version;
  KrString manufacturerInfo;
  KrString serialNumber;
  KrString userDefinedName;
  /// The descriptions that it offers, by rising version: 1.0.0, 1.1.0 …
  std::vector<DescriptionFormat> descriptions = {DescriptionFormat::Plain, DescriptionFormat::Zipped};
  std::vector<std::uint32_t> rates = {9600,   19200,  38400,  57600,
                                      115200, 230400, 460800, 921600}; ///< Bits a second; 9600 is one of them.
  std::uint32_t pendingMs = 0;                                         ///< How long writing a feature takes.
  std::uint32_t packetBytes = 1024;                                    ///< The largest GenCP packet, 64 to 1024.
  std::uint32_t confirmationMs = 250; ///< How long a GenCP camera waits for a new speed to be confirmed.
  bool hasCheckedAnswers = false;     ///< The answers to text commands end with checksums, too.
  bool isPoweredByCable = false;      ///< Power over Camera Link; without it the camera is silent.
};

} // namespace krtransport
