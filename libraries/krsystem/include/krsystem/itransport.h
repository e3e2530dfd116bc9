#pragma once
// What a backend implements: finding devices and opening them. KrSystem asks all backends that are registered;
// which answers count as one device, and how long objects live, is decided there.

#include "krbase/krresult.h"
#include "krsystem/hostreadings.h"
#include "krsystem/idevicelink.h"
#include "krsystem/krdeviceinfo.h"
#include "krsystem/krinterface.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <variant>
#include <vector>

namespace krsystem {

using InterfaceFields = std::variant<NetworkAdapterFields, USBHostControllerFields>;
using AnyDeviceFields = std::variant<GEVFields, TolvanProtocolFields, USBFields, U3VFields>;

/// How a device is to be opened.
enum class DeviceAccess {
  Monitor,   ///< Registers may be read.
  Control,   ///< Full control; others may read.
  Exclusive, ///< Full control; others may do nothing.
};

/// Who controls a device, as it says itself; the numbers are part of the interface.
enum class AccessType : std::int32_t { Unknown = 0, Open = 1, Control = 2, Exclusive = 3, ReadOnly = 4 };

/// How one round of discovery is done.
struct DiscoveryRequest {
  std::uint32_t timeoutMs = 1000; ///< How long answers are awaited.
  bool subnetBroadcast = true;    ///< To the subnet's broadcast address; otherwise to 255.255.255.255.
  std::stop_token cancel;         ///< Ends the round early, with Aborted.
};

/// Receives the answers of a round, in any order, on any thread, never two at a time: the index of the interface in the
/// list given, and the device.
using DeviceReport = std::function<void(std::size_t aInterfaceIndex, const AnyDeviceFields& aDevice)>;

/// A backend.
///
/// Thread: any; several operations may run at once.
/// Ownership: shared by the registry and by everything that it opened or found.
class KR_EXPORT ITransport {
public:
  virtual ~ITransport() = default;

  /// A short name for messages, for example "GigE Vision".
  virtual KrString GetName() const = 0;
  /// Lists the interfaces that exist at this moment. Fast; asks no device.
  virtual KrResult ListInterfaces(std::vector<InterfaceFields>& aInterfaces) = 0;
  /// Does one round of discovery on all these interfaces (of this transport) at once and returns when it is over, at
  /// the latest shortly after the time limit. One interface that fails does not keep the others from being asked; its
  /// failure is logged.
  virtual KrResult Discover(const std::vector<InterfaceFields>& aInterfaces, const DiscoveryRequest& aRequest,
                            const DeviceReport& aReport) = 0;
  /// Asks one network address. Gives the device and the interface on which it answered. NotFound when nothing answers
  /// within the limit, NotSupported for a transport without network addresses.
  virtual KrResult FindAddress(std::uint32_t aAddress, std::uint32_t aTimeoutMs, InterfaceFields& aInterface,
                               AnyDeviceFields& aDevice) = 0;
  /// Gives the device of a MAC address another IP configuration (texts "a.b.c.d"), on the interface where it answers.
  virtual KrResult ConfigureIP(const KrString& aMAC, const KrString& aAddress, const KrString& aMask,
                               const KrString& aGateway) = 0;
  /// Who controls the device, asked without opening it: once, within 200 ms.
  virtual KrResult GetAccessType(const AnyDeviceFields& aDevice, AccessType& aType) = 0;
  /// Opens a device that this transport found on an interface.
  virtual KrResult Open(const InterfaceFields& aInterface, const AnyDeviceFields& aDevice, DeviceAccess aAccess,
                        std::unique_ptr<IDeviceLink>& aLink) = 0;

  /// Adds what this transport can tell of the host to the readings; a transport without adapters of its own adds
  /// nothing. Fast; asks no device.
  virtual KrResult ReadHost(HostReadings& aReadings);
  /// Which of these addresses somebody on an interface's network uses, whoever it is. Ends within the limit; an address
  /// that keeps silent counts as free. NotSupported for an interface without addresses, Aborted when aCancel asks.
  virtual KrResult FindUsedAddresses(const InterfaceFields& aInterface, const std::vector<std::uint32_t>& aAddresses,
                                     std::uint32_t aTimeoutMs, const std::stop_token& aCancel,
                                     std::vector<std::uint32_t>& aUsed);
};

} // namespace krsystem
