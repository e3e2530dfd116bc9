#pragma once
// Discovery of devices on every interface of the host. How an interface is asked is left to the transports that the
// program registered; without any, nothing is found.

#include "krbase/krresult.h"
#include "krsystem/krdeviceinfo.h"
#include "krsystem/krfinding.h"
#include "krsystem/krinterface.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stop_token>
#include <vector>

/// Hears of devices while KrSystem::Find runs.
class KR_EXPORT KrSystemEventSink {
public:
  virtual ~KrSystemEventSink() = default;
  /// A device answered. Called during Find, one call at a time, on the thread that called it; the interface is listed
  /// by then. Setting aIgnore drops the device: it enters no list, and leaves those in which a former round entered it.
  virtual void OnDeviceFound(const KrInterface* aInterface, const KrDeviceInfo* aDevice, bool& aIgnore) = 0;
};

/// Finds devices and keeps what was found.
///
/// Thread: Find and FindDevice one at a time; everything else from any thread, also while one of them runs. A count may
/// be out of date by the next call; an index beyond the list gives null. The interfaces change all at once, the devices
/// one by one as they answer. No lock is held while a sink or a transport runs.
/// Ownership: owns every KrInterface and KrDeviceInfo that it ever handed out, until it is destroyed. There are 16,384
/// different devices at most, counting what changed as another one; further ones are left out, and the log says so
/// once. From 8,192 on, Find takes a new one only when it has answered in two rounds, the one after the other, so that
/// a flood under ever new names cannot fill the rest. Interfaces are limited to 16,384 likewise.
///
///     KrSystem system;
///     KrResult found = system.Find();
///     for (std::size_t i = 0; i < system.GetDeviceCount(); ++i)
///       std::cout << system.GetDeviceInfo(i)->GetDisplayID().CStr() << '\n';
class KR_EXPORT KrSystem {
public:
  /// Lists the interfaces; devices come with Find.
  KrSystem();
  ~KrSystem();
  KrSystem(const KrSystem&) = delete;
  KrSystem& operator=(const KrSystem&) = delete;

  /// Registers a sink; one that is registered already, or null, is InvalidInput. Not while Find runs.
  KrResult RegisterEventSink(KrSystemEventSink* aSink);
  /// Takes a sink out; one that is not registered is InvalidInput. Not while Find runs.
  KrResult UnregisterEventSink(KrSystemEventSink* aSink);

  /// How long answers are awaited, in milliseconds; 1000 until it is set, values below 1 count as 1.
  void SetDetectionTimeout(std::uint32_t aTimeoutMs);
  /// The time in use, in milliseconds.
  std::uint32_t GetDetectionTimeout() const;
  /// Whether discovery is broadcast within each subnet (true, the default) or to 255.255.255.255, which devices with an
  /// address of a foreign subnet hear too.
  void SetSubnetBroadcastEnabled(bool aEnabled);
  /// Whether it is switched on.
  bool IsSubnetBroadcastEnabled() const;

  /// Does one round of discovery on all interfaces at once; the lists afterwards hold what answered in this round. An
  /// interface or device that did not change keeps its object. A loopback adapter is asked, too, but listed only once a
  /// device has answered on it, and from then on as long as the host has it. Aborted after Cancel: then what was listed
  /// before stays beside what has answered.
  KrResult Find();
  /// Asks one IPv4 address ("a.b.c.d"), whether or not broadcasts reach it. InvalidInput for a text that is no address
  /// and for one that no single device has (0.0.0.0/8, 224.0.0.0 and beyond), NotFound when nothing answers, or what
  /// answers says that it has another address, SystemError for one too many.
  KrResult FindDevice(const KrString& aAddress, const KrDeviceInfo** aDevice);
  /// Makes a Find that runs return soon: sinks that are being called are waited for, and nothing else. A Find that
  /// begins later is not touched, even by a moment: who has to be sure that none runs repeats it until Find has
  /// returned. FindDevice is not cancelled.
  void Cancel();

  /// Says why devices may be missing or unusable: what the transports read of the host now, and what answered in the
  /// last round, also where a sink ignored it; beside a cancelled round what had answered before counts, too. The
  /// gravest reason comes first; none when all is well. A few milliseconds; asks no device. A transport that fails is
  /// logged and adds nothing; when all fail, the first failure is returned, without findings.
  KrResult Diagnose(std::vector<KrFinding>& aFindings);
  /// Proposes an address for a device on an adapter, in the subnet of the adapter's address of an index, that neither
  /// an adapter, its gateway, a device found, nor anybody who answers there uses; the nearest one above the adapter's.
  /// Takes a second as a rule, and four where many are used. NotFound when none is free, or too many one after the
  /// other are not; InvalidInput for an index without an address, NotSupported where nobody can be asked, Aborted when
  /// aCancel asks.
  KrResult FindFreeAddress(const KrNetworkAdapter& aAdapter, std::size_t aIndex, const std::stop_token& aCancel,
                           KrString& aAddress);

  /// The number of interfaces listed.
  std::size_t GetInterfaceCount() const;
  /// Null at or beyond the count.
  const KrInterface* GetInterface(std::size_t aIndex) const;
  /// The number of devices on all interfaces. They stand in the order of their interfaces, those in the order in which
  /// their transports were registered.
  std::size_t GetDeviceCount() const;
  /// Null at or beyond the count.
  const KrDeviceInfo* GetDeviceInfo(std::size_t aIndex) const;

private:
  struct Body;
  std::unique_ptr<Body> mBody;
};
