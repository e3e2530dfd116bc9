#pragma once
// What a simulated lab consists of, as plain values: network adapters, USB host controllers, and the devices behind
// them. How a camera behaves is left to SimulatedCamera, what discovery sees to the simulated devices.

#include "krbase/krstring.h"
#include "krsystem/itransport.h"
#include "simulation/labframegrabber.h"
#include "simulation/labschedule.h"
#include "simulation/labsensor.h"
#include "simulation/labserialport.h"

#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace krtransport {

/// What every device says of itself.
struct LabIdentity {
  KrString vendorName;
  KrString modelName;
  KrString version;
  KrString manufacturerInfo;
  KrString serialNumber;
  KrString userDefinedName;
  LabSchedule schedule; ///< When the device is there.
  KrString awayFile;    ///< As long as a file of this name exists, it is not there whatever the schedule; may be empty.
};

/// What a device on the network has; addresses as texts "a.b.c.d".
struct LabNetworkSettings {
  KrString macAddress; ///< "aa:bb:cc:dd:ee:ff"; also the device's unique ID.
  KrString ipAddress = "0.0.0.0";
  KrString subnetMask = "0.0.0.0";
  KrString defaultGateway = "0.0.0.0";
};

/// Packets that the first frames of a camera lose.
struct LabLostPackets {
  std::uint32_t frames = 1;
  std::uint32_t packets = 1;
  std::uint32_t firstPacket = 0;
};

/// A register that does not answer.
struct LabSilentRegister {
  std::uint64_t address = 0;
  std::uint32_t times = 0; ///< 0 for ever.
};

/// The faults that a camera has from the start, as KrSimulatedFaults orders them.
struct LabFaults {
  bool refusesOpening = false;
  bool losesPower = false; ///< Whenever its schedule has it vanish.
  bool isSilent = false;   ///< No register answers.
  std::vector<LabSilentRegister> silentRegisters;
  std::uint32_t registerDelayMs = 0;
  std::uint32_t droppedFrames = 0;
  std::optional<LabLostPackets> lostPackets;
};

/// A camera as it is when the lab starts.
struct LabCamera : LabIdentity, LabSensor {
  /// Whether the registers of its texts have 64 bytes each, as those of USB3 Vision, or fewer, as those of GigE Vision.
  bool hasWideTexts = false;
  std::vector<LabSerialPort> serialPorts; ///< By rising number.
  std::uint32_t bulkClock =
      0; ///< Hz, which the bulk ports divide for their rates; 0 where rates are set by themselves.
  LabFrameGrabber frameGrabber;
  LabFaults faults;
};

/// A GigE Vision camera.
struct LabGEVCamera : LabCamera, LabNetworkSettings {
  std::uint32_t ipConfigOptions = 0x7; ///< Bit 0 persistent, bit 1 DHCP, bit 2 link-local.
  std::uint32_t ipConfigCurrent = 0x5; ///< The same bits.
  /// The configuration that it keeps for its next start; empty for the one that it has.
  KrString persistentAddress;
  KrString persistentMask;
  KrString persistentGateway;
  KrString returnAddress;        ///< The address that it has from its first return on; empty for the one that it has.
  std::uint32_t deviceClass = 0; ///< 0 transmitter, 1 receiver, 2 transceiver, 3 peripheral.
  std::uint32_t gevVersion = 0x00020000; ///< Major in the upper, minor in the lower 16 bits.
  /// What somebody else has of it for as long as the lab is there: Open, Control or Exclusive.
  krsystem::AccessType foreignControl = krsystem::AccessType::Open;
};

/// A device of the older Tolvan protocol.
struct LabTolvanDevice : LabIdentity, LabNetworkSettings {
  std::uint8_t deviceID = 0;
  std::uint8_t moduleID = 0;
  std::uint8_t subID = 0;
  std::uint8_t vendorID = 0;
  std::uint8_t softwareMajor = 1;
  std::uint8_t softwareMinor = 0;
};

/// A USB3 Vision camera. Speeds: 1 low, 2 full, 3 high, 4 super, others unknown.
struct LabU3VCamera : LabCamera {
  KrString deviceGUID; ///< Also the device's unique ID.
  KrString familyName;
  std::uint32_t genCPVersion = 0x00010001; ///< Major in the upper, minor in the lower 16 bits.
  std::uint32_t u3vVersion = 0x00010000;   ///< The same.
  std::int32_t speed = 4;
  std::vector<std::int32_t> supportedSpeeds = {3, 4};
  std::uint32_t maxPowerMilliampere = 896;
  KrString powerMessage;         ///< Empty for one made of the others.
  bool isDriverInstalled = true; ///< Whether this host may open it.
  bool hasInitializedCapabilities = true;
  bool isConfigurationValid = true;
};

/// A device on a USB bus that is no usable camera.
struct LabPlainUSBDevice : LabIdentity {
  KrString id;             ///< The device's unique ID.
  std::int32_t status = 0; ///< 0 connected to 9 reset, as USBFields lists them.
};

using LabNetworkDevice = std::variant<LabGEVCamera, LabTolvanDevice>;
using LabUSBDevice = std::variant<LabU3VCamera, LabPlainUSBDevice>;

/// A network adapter of the simulated host.
struct LabAdapter {
  KrString name;
  KrString description;
  KrString macAddress; ///< Its unique ID, with "/name" where it is empty or another adapter's too.
  std::vector<krsystem::AdapterAddress> addresses; ///< None for an adapter without one.
  KrString defaultGateway = "0.0.0.0";             ///< Of its default route; 0.0.0.0 for none.
  bool isDriverInstalled = false;
  bool isUp = true;
  bool hasCarrier = true;
  std::int32_t reversePathFilter = 0;  ///< 0 not at all, 1 strictly, 2 loosely.
  std::vector<KrString> usedAddresses; ///< Addresses on its network that somebody has who is no device of the lab.
  LabSchedule schedule;                ///< When it is there.
  LabSchedule downSchedule = kNever;   ///< When it is down.
  std::vector<LabNetworkDevice> devices;
};

/// A USB host controller of the simulated host.
struct LabController {
  KrString name; ///< Also its unique ID.
  KrString description;
  std::uint16_t vendorID = 0;
  std::uint16_t deviceID = 0;
  std::uint32_t subsystemID = 0;
  std::int32_t revision = 0;
  std::int32_t speed = 4; ///< As LabU3VCamera's.
  LabSchedule schedule;
  std::vector<LabUSBDevice> devices;
};

/// A lab.
struct Lab {
  std::vector<LabAdapter> adapters = {};
  std::vector<LabController> controllers = {};
  std::optional<std::uint64_t> receiveBufferLimitBytes = {}; ///< As HostReadings'; nothing where the host's own counts.
  std::optional<std::uint64_t> usbMemoryMegabytes = {};
};

/// The lab that comes with the library (docs/simulation.md). Any thread.
Lab GetBuiltInLab();

} // namespace krtransport
