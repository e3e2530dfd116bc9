#pragma once
// What cameras are connected to: network adapters and USB host controllers, as they were when they were listed.
// Discovery itself is KrSystem's business, talking to adapters the transports'.

#include "krbase/krstring.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

class KrDeviceInfo;
class KrSystem;
namespace krsystem {
class FoundLists;
class ITransport;
} // namespace krsystem

/// The kinds of interface; the numbers are part of the interface.
enum class KrInterfaceType : std::int32_t { USBHostController = 0, NetworkAdapter = 1 };

/// One interface of the host and the devices last found behind it.
///
/// Thread: any; an object never changes, but for its list of devices, which KrSystem::Find and FindDevice change. While
/// one of them runs a count may be out of date by the next call; an index beyond the list gives null.
/// Ownership: belongs to its KrSystem and lives as long as that.
class KR_EXPORT KrInterface {
public:
  virtual ~KrInterface();
  KrInterface(const KrInterface&) = delete;
  KrInterface& operator=(const KrInterface&) = delete;

  /// The kind of interface.
  virtual KrInterfaceType GetType() const = 0;
  /// A text that names the interface among all of the host and stays the same from one Find to the next.
  const KrString& GetUniqueID() const { return mUniqueID; }
  /// The text for a list, for example "eth0 192.168.1.10".
  const KrString& GetDisplayID() const { return mDisplayID; }
  /// The number of devices listed behind this interface.
  std::size_t GetDeviceCount() const;
  /// The device at an index; null at or beyond the count.
  const KrDeviceInfo* GetDeviceInfo(std::size_t aIndex) const;

protected:
  /// An interface by its unique ID and its text for a list.
  KrInterface(const KrString& aUniqueID, const KrString& aDisplayID);

private:
  friend class KrSystem;
  friend class krsystem::FoundLists;
  KrString mUniqueID;
  KrString mDisplayID;
  std::shared_ptr<krsystem::ITransport> mTransport; // The one that listed it; null for one made elsewhere.
  std::shared_ptr<std::mutex> mListMutex;           // Guards mDevices; that of the system's lists once it is listed.
  std::vector<const KrDeviceInfo*> mDevices;
};

namespace krsystem {

/// One IPv4 address of an adapter, as texts "a.b.c.d".
struct AdapterAddress {
  KrString address = "0.0.0.0"; ///< 0.0.0.0 for none.
  KrString mask = "0.0.0.0";    ///< 0.0.0.0 for none.
  /// Whether all members are equal.
  friend bool operator==(const AdapterAddress&, const AdapterAddress&) = default;
};

/// What a transport says of a network adapter.
struct NetworkAdapterFields {
  KrString uniqueID;    ///< Names it among all of the host; the same from one Find to the next.
  KrString displayID;   ///< For a list.
  KrString name;        ///< The system's name of it, for example "eth0".
  KrString description; ///< For people, for example the driver's name.
  KrString macAddress;  ///< "aa:bb:cc:dd:ee:ff"; empty where the adapter has none.
  std::vector<AdapterAddress> addresses = {AdapterAddress{}}; ///< At least one; 0.0.0.0 where there is none.
  KrString defaultGateway = "0.0.0.0";                        ///< "a.b.c.d"; 0.0.0.0 for none.
  bool tolvanDriverInstalled = false;                         ///< Packets can be taken past the kernel's stack.
  /// A program of this host answers there, if anybody: KrSystem lists it once a device has answered on it.
  bool isLoopback = false;
  /// Whether all members are equal.
  friend bool operator==(const NetworkAdapterFields&, const NetworkAdapterFields&) = default;
};

/// What a transport says of a USB host controller.
struct USBHostControllerFields {
  KrString uniqueID;             ///< Names it among all of the host; the same from one Find to the next.
  KrString displayID;            ///< For a list.
  std::uint16_t vendorID = 0;    ///< As PCI has it; 0 where there is none.
  std::uint16_t deviceID = 0;    ///< As PCI has it; 0 where there is none.
  std::uint32_t subsystemID = 0; ///< As PCI has it, the device in the upper 16 bits; 0 where there is none.
  std::int32_t revision = 0;     ///< As PCI has it; 0 where there is none.
  std::int32_t speed = 0;        ///< 1 low, 2 full, 3 high, 4 super, others unknown.
  /// Whether all members are equal.
  friend bool operator==(const USBHostControllerFields&, const USBHostControllerFields&) = default;
};

} // namespace krsystem

/// A network adapter with all its IPv4 addresses. Threads and ownership as KrInterface.
class KR_EXPORT KrNetworkAdapter : public KrInterface {
public:
  /// An interface as a transport describes it.
  explicit KrNetworkAdapter(krsystem::NetworkAdapterFields aFields);
  ~KrNetworkAdapter() override;

  /// The kind of interface.
  KrInterfaceType GetType() const override { return KrInterfaceType::NetworkAdapter; }
  /// The system's name, for example "eth0".
  const KrString& GetName() const { return mFields.name; }
  /// For people, for example the driver's name.
  const KrString& GetDescription() const { return mFields.description; }
  /// "aa:bb:cc:dd:ee:ff"; empty where the adapter has none.
  const KrString& GetMACAddress() const { return mFields.macAddress; }
  /// At least 1: an adapter without IPv4 reports one address 0.0.0.0.
  std::size_t GetIPAddressCount() const { return mFields.addresses.size(); }
  /// "a.b.c.d"; "0.0.0.0" at or beyond the count.
  KrString GetIPAddress(std::size_t aIndex) const;
  /// "a.b.c.d"; "0.0.0.0" at or beyond the count.
  KrString GetSubnetMask(std::size_t aIndex) const;
  /// "a.b.c.d"; 0.0.0.0 for none.
  const KrString& GetDefaultGateway() const { return mFields.defaultGateway; }
  /// Whether packets can be taken past the kernel's stack.
  bool IsTolvanDriverInstalled() const { return mFields.tolvanDriverInstalled; }
  /// All that the transport said.
  const krsystem::NetworkAdapterFields& GetFields() const { return mFields; }

private:
  krsystem::NetworkAdapterFields mFields;
};

/// A USB host controller. Threads and ownership as KrInterface.
class KR_EXPORT KrUSBHostController : public KrInterface {
public:
  /// An interface as a transport describes it.
  explicit KrUSBHostController(krsystem::USBHostControllerFields aFields);
  ~KrUSBHostController() override;

  /// The kind of interface.
  KrInterfaceType GetType() const override { return KrInterfaceType::USBHostController; }
  /// As PCI has it; 0 where there is none.
  std::uint16_t GetVendorID() const { return mFields.vendorID; }
  /// As PCI has it; 0 where there is none.
  std::uint16_t GetDeviceID() const { return mFields.deviceID; }
  /// As PCI has it, the device in the upper 16 bits; 0 where there is none.
  std::uint32_t GetSubsystemID() const { return mFields.subsystemID; }
  /// As PCI has it; 0 where there is none.
  std::int32_t GetRevision() const { return mFields.revision; }
  /// 1 low, 2 full, 3 high, 4 super, others unknown.
  std::int32_t GetSpeed() const { return mFields.speed; }
  /// All that the transport said.
  const krsystem::USBHostControllerFields& GetFields() const { return mFields; }

private:
  krsystem::USBHostControllerFields mFields;
};
