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
  KrString uniqueID;  ///< Names the device among all; the same from one Find to the next.
  KrString displayID; ///< For a list, for example "Model X (192.168.1.20)".
  KrString vendorName;
  KrString modelName;
  KrString version;
  KrString manufacturerInfo;
  KrString serialNumber;
  KrString userDefinedName;
  bool configurationValid = true; ///< Whether this host can reach the device as it is configured.
  friend bool operator==(const DeviceFields&, const DeviceFields&) = default;
};

/// What a device on the network has; addresses as texts "a.b.c.d".
struct NetworkFields {
  KrString macAddress; ///< "aa:bb:cc:dd:ee:ff".
  KrString ipAddress = "0.0.0.0";
  KrString subnetMask = "0.0.0.0";
  KrString defaultGateway = "0.0.0.0";
  friend bool operator==(const NetworkFields&, const NetworkFields&) = default;
};

/// A GigE Vision device, as its discovery answer describes it (GigE Vision 2.x, discovery acknowledge).
struct GEVFields : DeviceFields, NetworkFields {
  std::uint32_t gevVersion = 0; ///< Major in the upper, minor in the lower 16 bits.
  std::uint32_t deviceClass =
      0; ///< 0 transmitter, 1 receiver, 2 transceiver, 3 peripheral, as bits 28 to 30 of the device mode say.
  std::uint32_t ipConfigOptions = 0; ///< Bit 0 persistent, bit 1 DHCP, bit 2 link-local.
  std::uint32_t ipConfigCurrent = 0; ///< The same bits.
  friend bool operator==(const GEVFields&, const GEVFields&) = default;
};

/// A device of the older Tolvan protocol.
struct TolvanProtocolFields : DeviceFields, NetworkFields {
  std::uint8_t deviceID = 0;
  std::uint8_t moduleID = 0;
  std::uint8_t subID = 0;
  std::uint8_t vendorID = 0;
  std::uint8_t softwareMajor = 0;
  std::uint8_t softwareMinor = 0;
  friend bool operator==(const TolvanProtocolFields&, const TolvanProtocolFields&) = default;
};

/// A device on a USB bus that is no usable camera.
struct USBFields : DeviceFields {
  std::int32_t status =
      0; ///< 0 connected, 1 failed enumeration, 2 general failure, 3 caused overcurrent, 4 not enough power,
         ///< 5 not enough bandwidth, 6 hub nested too deeply, 7 legacy hub, 8 enumerating, 9 reset.
  friend bool operator==(const USBFields&, const USBFields&) = default;
};

/// A USB3 Vision device.
struct U3VFields : DeviceFields {
  KrString deviceGUID;
  KrString familyName;
  KrString u3vSerialNumber;
  KrString powerMessage;
  KrString speedMessage;
  std::uint32_t genCPVersion = 0; ///< Major in the upper, minor in the lower 16 bits.
  std::uint32_t u3vVersion = 0;   ///< The same.
  std::int32_t speed = 0;         ///< 1 low, 2 full, 3 high, 4 super, others unknown.
  std::uint32_t maxPowerMilliampere = 0;
  bool initializedCapabilities = true;
  bool lowSpeedSupported = false;
  bool fullSpeedSupported = false;
  bool highSpeedSupported = false;
  bool superSpeedSupported = false;
  bool currentSpeedSupported = true;
  bool driverInstalled = true;
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

  virtual KrDeviceInfoType GetType() const = 0;
  const KrString& GetUniqueID() const { return GetCommon().uniqueID; }
  const KrString& GetDisplayID() const { return GetCommon().displayID; }
  const KrString& GetVendorName() const { return GetCommon().vendorName; }
  const KrString& GetModelName() const { return GetCommon().modelName; }
  const KrString& GetVersion() const { return GetCommon().version; }
  const KrString& GetManufacturerInfo() const { return GetCommon().manufacturerInfo; }
  const KrString& GetSerialNumber() const { return GetCommon().serialNumber; }
  const KrString& GetUserDefinedName() const { return GetCommon().userDefinedName; }
  /// Whether this host can reach the device as it is configured.
  bool IsConfigurationValid() const { return GetCommon().configurationValid; }
  /// The interface on which the device answered; null for one found by its address where no adapter could be told.
  const KrInterface* GetInterface() const { return mInterface; }
  /// The transport that found the device and can open it. Used by KrDevice; it stays while anybody holds it.
  std::shared_ptr<krsystem::ITransport> GetTransport() const { return mTransport; }

protected:
  KrDeviceInfo() = default;
  virtual const krsystem::DeviceFields& GetCommon() const = 0;

private:
  friend class KrSystem;
  const KrInterface* mInterface = nullptr;
  std::shared_ptr<krsystem::ITransport> mTransport;
};

/// A GigE Vision device. Threads and ownership as KrDeviceInfo.
class KR_EXPORT KrDeviceInfoGEV : public KrDeviceInfo {
public:
  explicit KrDeviceInfoGEV(krsystem::GEVFields aFields);
  ~KrDeviceInfoGEV() override;

  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::GEV; }
  const KrString& GetMACAddress() const { return mFields.macAddress; }
  const KrString& GetIPAddress() const { return mFields.ipAddress; }
  const KrString& GetSubnetMask() const { return mFields.subnetMask; }
  const KrString& GetDefaultGateway() const { return mFields.defaultGateway; }
  /// 1 transmitter, 2 receiver, 3 transceiver, 4 peripheral, others unknown: the device mode's class plus one.
  std::uint32_t GetClass() const { return mFields.deviceClass + 1; }
  /// Major in the upper, minor in the lower 16 bits.
  std::uint32_t GetGEVVersion() const { return mFields.gevVersion; }
  /// The ways of addressing that the device offers, for example "Persistent, DHCP, LLA"; "None" when it names none.
  KrString GetIPConfigOptionsString() const;
  /// The ways that are switched on, in the same words.
  KrString GetIPConfigCurrentString() const;
  const krsystem::GEVFields& GetFields() const { return mFields; }

protected:
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::GEVFields mFields;
};

/// A device of the older Tolvan protocol. Threads and ownership as KrDeviceInfo.
class KR_EXPORT KrDeviceInfoTolvanProtocol : public KrDeviceInfo {
public:
  explicit KrDeviceInfoTolvanProtocol(krsystem::TolvanProtocolFields aFields);
  ~KrDeviceInfoTolvanProtocol() override;

  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::TolvanProtocol; }
  const KrString& GetMACAddress() const { return mFields.macAddress; }
  const KrString& GetIPAddress() const { return mFields.ipAddress; }
  const KrString& GetSubnetMask() const { return mFields.subnetMask; }
  const KrString& GetDefaultGateway() const { return mFields.defaultGateway; }
  std::uint8_t GetDeviceID() const { return mFields.deviceID; }
  std::uint8_t GetModuleID() const { return mFields.moduleID; }
  std::uint8_t GetSubID() const { return mFields.subID; }
  std::uint8_t GetVendorID() const { return mFields.vendorID; }
  std::uint8_t GetSoftwareMajor() const { return mFields.softwareMajor; }
  std::uint8_t GetSoftwareMinor() const { return mFields.softwareMinor; }
  const krsystem::TolvanProtocolFields& GetFields() const { return mFields; }

protected:
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::TolvanProtocolFields mFields;
};

/// A USB device that is no usable camera. Threads and ownership as KrDeviceInfo.
class KR_EXPORT KrDeviceInfoUSB : public KrDeviceInfo {
public:
  explicit KrDeviceInfoUSB(krsystem::USBFields aFields);
  ~KrDeviceInfoUSB() override;

  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::USB; }
  /// 0 connected to 9 reset, as USBFields lists them.
  std::int32_t GetStatus() const { return mFields.status; }
  const krsystem::USBFields& GetFields() const { return mFields; }

protected:
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::USBFields mFields;
};

/// A USB3 Vision device. Threads and ownership as KrDeviceInfo.
class KR_EXPORT KrDeviceInfoU3V : public KrDeviceInfo {
public:
  explicit KrDeviceInfoU3V(krsystem::U3VFields aFields);
  ~KrDeviceInfoU3V() override;

  KrDeviceInfoType GetType() const override { return KrDeviceInfoType::U3V; }
  const KrString& GetDeviceGUID() const { return mFields.deviceGUID; }
  const KrString& GetFamilyName() const { return mFields.familyName; }
  const KrString& GetU3VSerialNumber() const { return mFields.u3vSerialNumber; }
  const KrString& GetPowerMessage() const { return mFields.powerMessage; }
  const KrString& GetSpeedMessage() const { return mFields.speedMessage; }
  /// Major in the upper, minor in the lower 16 bits.
  std::uint32_t GetGenCPVersion() const { return mFields.genCPVersion; }
  /// Major in the upper, minor in the lower 16 bits.
  std::uint32_t GetU3VVersion() const { return mFields.u3vVersion; }
  /// 1 low, 2 full, 3 high, 4 super, others unknown.
  std::int32_t GetSpeed() const { return mFields.speed; }
  /// Milliamperes.
  std::uint32_t GetMaxPower() const { return mFields.maxPowerMilliampere; }
  bool IsInitializedCapabilities() const { return mFields.initializedCapabilities; }
  bool IsLowSpeedSupported() const { return mFields.lowSpeedSupported; }
  bool IsFullSpeedSupported() const { return mFields.fullSpeedSupported; }
  bool IsHighSpeedSupported() const { return mFields.highSpeedSupported; }
  bool IsSuperSpeedSupported() const { return mFields.superSpeedSupported; }
  bool IsCurrentSpeedSupported() const { return mFields.currentSpeedSupported; }
  bool IsTolvanDriverInstalled() const { return mFields.driverInstalled; }
  const krsystem::U3VFields& GetFields() const { return mFields; }

protected:
  const krsystem::DeviceFields& GetCommon() const override { return mFields; }

private:
  krsystem::U3VFields mFields;
};
