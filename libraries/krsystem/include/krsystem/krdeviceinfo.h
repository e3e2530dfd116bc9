#pragma once
// What discovery learned of a device, one class for each kind. Opening a device is KrDevice's business.

#include "krbase/krstring.h"

#include <cstdint>
#include <memory>
#include <vector>

class KrInterface;
class KrSystem;
namespace krsystem {
class ITransport;
}

/// The kinds of device; the numbers are part of the interface.
enum class KrDeviceInfoType : std::int32_t { GEV = 0, TolvanProtocol = 1, USB = 2, U3V = 3 };

namespace krsystem {

/// What every kind of device has.
struct DeviceFields {
  KrString uniqueID;              ///< Names the device among all; the same from one Find to the next.
  KrString displayID;             ///< For a list, for example "Model X (192.168.1.20)".
  KrString vendorName;            ///< Who made it.
  KrString modelName;             ///< What it is called by its maker.
  KrString version;               ///< Of the device, in its maker's own words.
  KrString manufacturerInfo;      ///< What else the maker says.
  KrString serialNumber;          ///< As the device says it; letters, too.
  KrString userDefinedName;       ///< The name that a user gave it.
  bool configurationValid = true; ///< Whether this host can reach the device as it is configured.
  /// Whether all members are equal.
  friend bool operator==(const DeviceFields&, const DeviceFields&) = default;
};

/// What a device on the network has; addresses as texts "a.b.c.d".
struct NetworkFields {
  KrString macAddress;                 ///< "aa:bb:cc:dd:ee:ff".
  KrString ipAddress = "0.0.0.0";      ///< 0.0.0.0 for none.
  KrString subnetMask = "0.0.0.0";     ///< 0.0.0.0 for none.
  KrString defaultGateway = "0.0.0.0"; ///< 0.0.0.0 for none.
  /// Whether all members are equal.
  friend bool operator==(const NetworkFields&, const NetworkFields&) = default;
};

/// A GigE Vision device, as its discovery answer describes it (GigE Vision 2.x, discovery acknowledge).
struct GEVFields : DeviceFields, NetworkFields {
  std::uint32_t gevVersion = 0; ///< Major in the upper, minor in the lower 16 bits.
  std::uint32_t deviceClass =
      0; ///< 0 transmitter, 1 receiver, 2 transceiver, 3 peripheral, as bits 28 to 30 of the device mode say.
  std::uint32_t ipConfigOptions = 0; ///< Bit 0 persistent, bit 1 DHCP, bit 2 link-local.
  std::uint32_t ipConfigCurrent = 0; ///< The same bits.
  /// Whether all members are equal.
  friend bool operator==(const GEVFields&, const GEVFields&) = default;
};

/// A device of the older Tolvan protocol.
struct TolvanProtocolFields : DeviceFields, NetworkFields {
  std::uint8_t deviceID = 0;      ///< As the protocol has it.
  std::uint8_t moduleID = 0;      ///< As the protocol has it.
  std::uint8_t subID = 0;         ///< As the protocol has it.
  std::uint8_t vendorID = 0;      ///< As the protocol has it.
  std::uint8_t softwareMajor = 0; ///< The software's version, before the point.
  std::uint8_t softwareMinor = 0; ///< The software's version, behind the point.
  /// Whether all members are equal.
  friend bool operator==(const TolvanProtocolFields&, const TolvanProtocolFields&) = default;
};

/// A device on a USB bus that is no usable camera.
struct USBFields : DeviceFields {
  std::int32_t status =
      0; ///< 0 connected, 1 failed enumeration, 2 general failure, 3 caused overcurrent, 4 not enough power,
         ///< 5 not enough bandwidth, 6 hub nested too deeply, 7 legacy hub, 8 enumerating, 9 reset.
  /// Whether all members are equal.
  friend bool operator==(const USBFields&, const USBFields&) = default;
};

/// A USB3 Vision device.
struct U3VFields : DeviceFields {
  KrString deviceGUID;                   ///< Names the device among all of the world.
  KrString familyName;                   ///< The family of models it is of.
  KrString u3vSerialNumber;              ///< That of USB3 Vision, which may differ from the bus's.
  KrString powerMessage;                 ///< What power it takes, for people.
  KrString speedMessage;                 ///< At which speed it is connected, for people.
  std::uint32_t genCPVersion = 0;        ///< Major in the upper, minor in the lower 16 bits.
  std::uint32_t u3vVersion = 0;          ///< The same.
  std::int32_t speed = 0;                ///< 1 low, 2 full, 3 high, 4 super, others unknown.
  std::uint32_t maxPowerMilliampere = 0; ///< What it takes from the bus at most.
  bool initializedCapabilities = true;   ///< Its device info could be read.
  bool lowSpeedSupported = false;        ///< Whether it works at 1.5 Mbit/s.
  bool fullSpeedSupported = false;       ///< Whether it works at 12 Mbit/s.
  bool highSpeedSupported = false;       ///< Whether it works at 480 Mbit/s.
  bool superSpeedSupported = false;      ///< Whether it works at 5 Gbit/s and more.
  bool currentSpeedSupported = true;     ///< Whether it works at the speed it is connected with.
  bool driverInstalled = true;           ///< Whether this host can open it.
  /// Whether all members are equal.
  friend bool operator==(const U3VFields&, const U3VFields&) = default;
};

} // namespace krsystem

/// A device as discovery saw it.
///
/// Thread: any; an object never changes.
/// Ownership: belongs to its KrSystem and lives as long as that.
class KR_EXPORT KrDeviceInfo {
public:
  virtual ~KrDeviceInfo();
  KrDeviceInfo(const KrDeviceInfo&) = delete;
  KrDeviceInfo& operator=(const KrDeviceInfo&) = delete;

  /// The kind of device.
  virtual KrDeviceInfoType GetType() const = 0;
  /// Names the device among all; the same from one Find to the next.
  const KrString& GetUniqueID() const { return GetCommon().uniqueID; }
  /// For a list, for example "Model X (192.168.1.20)".
  const KrString& GetDisplayID() const { return GetCommon().displayID; }
  /// Who made it; this and the following texts are empty where the device does not say.
  const KrString& GetVendorName() const { return GetCommon().vendorName; }
  /// What it is called by its maker.
  const KrString& GetModelName() const { return GetCommon().modelName; }
  /// The device's version, in its maker's own words.
  const KrString& GetVersion() const { return GetCommon().version; }
  /// What else the maker says.
  const KrString& GetManufacturerInfo() const { return GetCommon().manufacturerInfo; }
  /// As the device says it; letters, too.
  const KrString& GetSerialNumber() const { return GetCommon().serialNumber; }
  /// The name that a user gave it.
  const KrString& GetUserDefinedName() const { return GetCommon().userDefinedName; }
  /// Whether this host can reach the device as it is configured.
  bool IsConfigurationValid() const { return GetCommon().configurationValid; }
  /// The interface on which the device answered; null for one found by its address where no adapter could be told.
  const KrInterface* GetInterface() const { return mInterface; }
  /// The transport that found the device and can open it. Used by KrDevice; it stays while anybody holds it.
  std::shared_ptr<krsystem::ITransport> GetTransport() const { return mTransport; }

protected:
  KrDeviceInfo() = default;
  /// What every kind of device has.
  virtual const krsystem::DeviceFields& GetCommon() const = 0;

private:
  friend class KrSystem;
  const KrInterface* mInterface = nullptr;
  std::shared_ptr<krsystem::ITransport> mTransport;
};

/// A GigE Vision device. Threads and ownership as KrDeviceInfo.
class KR_EXPORT KrDeviceInfoGEV : public KrDeviceInfo {
public:
  /// A device as a transport describes it.
  explicit KrDeviceInfoGEV(krsystem::GEVFields aFields);
  ~KrDeviceInfoGEV() override;

  /// The kind of device.
  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::GEV; }
  /// "aa:bb:cc:dd:ee:ff".
  const KrString& GetMACAddress() const { return mFields.macAddress; }
  /// "a.b.c.d"; 0.0.0.0 for none.
  const KrString& GetIPAddress() const { return mFields.ipAddress; }
  /// "a.b.c.d"; 0.0.0.0 for none.
  const KrString& GetSubnetMask() const { return mFields.subnetMask; }
  /// "a.b.c.d"; 0.0.0.0 for none.
  const KrString& GetDefaultGateway() const { return mFields.defaultGateway; }
  /// 1 transmitter, 2 receiver, 3 transceiver, 4 peripheral, others unknown: the device mode's class plus one.
  std::uint32_t GetClass() const { return mFields.deviceClass + 1; }
  /// Major in the upper, minor in the lower 16 bits.
  std::uint32_t GetGEVVersion() const { return mFields.gevVersion; }
  /// The ways of addressing that the device offers, for example "Persistent, DHCP, LLA"; "None" when it names none.
  KrString GetIPConfigOptionsString() const;
  /// The ways that are switched on, in the same words.
  KrString GetIPConfigCurrentString() const;
  /// All that the transport said.
  const krsystem::GEVFields& GetFields() const { return mFields; }

protected:
  /// What every kind of device has.
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::GEVFields mFields;
};

/// A device of the older Tolvan protocol. Threads and ownership as KrDeviceInfo.
class KR_EXPORT KrDeviceInfoTolvanProtocol : public KrDeviceInfo {
public:
  /// A device as a transport describes it.
  explicit KrDeviceInfoTolvanProtocol(krsystem::TolvanProtocolFields aFields);
  ~KrDeviceInfoTolvanProtocol() override;

  /// The kind of device.
  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::TolvanProtocol; }
  /// "aa:bb:cc:dd:ee:ff".
  const KrString& GetMACAddress() const { return mFields.macAddress; }
  /// "a.b.c.d"; 0.0.0.0 for none.
  const KrString& GetIPAddress() const { return mFields.ipAddress; }
  /// "a.b.c.d"; 0.0.0.0 for none.
  const KrString& GetSubnetMask() const { return mFields.subnetMask; }
  /// "a.b.c.d"; 0.0.0.0 for none.
  const KrString& GetDefaultGateway() const { return mFields.defaultGateway; }
  /// As the protocol has it.
  std::uint8_t GetDeviceID() const { return mFields.deviceID; }
  /// As the protocol has it.
  std::uint8_t GetModuleID() const { return mFields.moduleID; }
  /// As the protocol has it.
  std::uint8_t GetSubID() const { return mFields.subID; }
  /// As the protocol has it.
  std::uint8_t GetVendorID() const { return mFields.vendorID; }
  /// The software's version, before the point.
  std::uint8_t GetSoftwareMajor() const { return mFields.softwareMajor; }
  /// The software's version, behind the point.
  std::uint8_t GetSoftwareMinor() const { return mFields.softwareMinor; }
  /// All that the transport said.
  const krsystem::TolvanProtocolFields& GetFields() const { return mFields; }

protected:
  /// What every kind of device has.
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::TolvanProtocolFields mFields;
};

/// A USB device that is no usable camera. Threads and ownership as KrDeviceInfo.
class KR_EXPORT KrDeviceInfoUSB : public KrDeviceInfo {
public:
  /// A device as a transport describes it.
  explicit KrDeviceInfoUSB(krsystem::USBFields aFields);
  ~KrDeviceInfoUSB() override;

  /// The kind of device.
  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::USB; }
  /// 0 connected to 9 reset, as USBFields lists them.
  std::int32_t GetStatus() const { return mFields.status; }
  /// All that the transport said.
  const krsystem::USBFields& GetFields() const { return mFields; }

protected:
  /// What every kind of device has.
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::USBFields mFields;
};

/// A USB3 Vision device. Threads and ownership as KrDeviceInfo.
class KR_EXPORT KrDeviceInfoU3V : public KrDeviceInfo {
public:
  /// A device as a transport describes it.
  explicit KrDeviceInfoU3V(krsystem::U3VFields aFields);
  ~KrDeviceInfoU3V() override;

  /// The kind of device.
  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::U3V; }
  /// Names the device among all of the world.
  const KrString& GetDeviceGUID() const { return mFields.deviceGUID; }
  /// The family of models it is of.
  const KrString& GetFamilyName() const { return mFields.familyName; }
  /// That of USB3 Vision, which may differ from the bus's.
  const KrString& GetU3VSerialNumber() const { return mFields.u3vSerialNumber; }
  /// What power it takes, for people.
  const KrString& GetPowerMessage() const { return mFields.powerMessage; }
  /// At which speed it is connected, for people.
  const KrString& GetSpeedMessage() const { return mFields.speedMessage; }
  /// Major in the upper, minor in the lower 16 bits.
  std::uint32_t GetGenCPVersion() const { return mFields.genCPVersion; }
  /// Major in the upper, minor in the lower 16 bits.
  std::uint32_t GetU3VVersion() const { return mFields.u3vVersion; }
  /// 1 low, 2 full, 3 high, 4 super, others unknown.
  std::int32_t GetSpeed() const { return mFields.speed; }
  /// Milliamperes.
  std::uint32_t GetMaxPower() const { return mFields.maxPowerMilliampere; }
  /// Whether its device info could be read.
  bool IsInitializedCapabilities() const { return mFields.initializedCapabilities; }
  /// Whether it works at 1.5 Mbit/s.
  bool IsLowSpeedSupported() const { return mFields.lowSpeedSupported; }
  /// Whether it works at 12 Mbit/s.
  bool IsFullSpeedSupported() const { return mFields.fullSpeedSupported; }
  /// Whether it works at 480 Mbit/s.
  bool IsHighSpeedSupported() const { return mFields.highSpeedSupported; }
  /// Whether it works at 5 Gbit/s and more.
  bool IsSuperSpeedSupported() const { return mFields.superSpeedSupported; }
  /// Whether it works at the speed it is connected with.
  bool IsCurrentSpeedSupported() const { return mFields.currentSpeedSupported; }
  /// Whether this host can open it.
  bool IsTolvanDriverInstalled() const { return mFields.driverInstalled; }
  /// All that the transport said.
  const krsystem::U3VFields& GetFields() const { return mFields; }

protected:
  /// What every kind of device has.
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::U3VFields mFields;
};
