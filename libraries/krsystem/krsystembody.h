#pragma once
// What a KrSystem keeps: its settings, its sinks, and every object that it ever handed out.
// Objects never change; what answers differently gets another object, and an object whose fields come back is used
// again.

#include "discoveryround.h"
#include "krsystem/krsystem.h"

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <stop_token>
#include <vector>

struct KrSystem::Body {
  std::atomic<std::uint32_t> detectionTimeoutMs = 1000;
  std::atomic<bool> subnetBroadcast = true;
  std::vector<KrSystemEventSink*> sinks;

  /// The interfaces and devices of the last round, the devices in the order of their interfaces.
  std::vector<const KrInterface*> interfaces;
  std::vector<const KrDeviceInfo*> devices;

  /// Begins an operation that Cancel can end.
  std::stop_token BeginRound();
  /// Ends the operation that runs, if any.
  void Cancel();

  /// Lists the interfaces of every transport anew and forgets the devices. Gives the shares of a round.
  std::vector<krsystem::DiscoveryPart> ListInterfaces();
  /// Takes the answers of a round in until it is over.
  void TakeAnswers(krsystem::DiscoveryRound& aRound, const std::vector<krsystem::DiscoveryPart>& aParts);

  /// Puts the devices in the order of their interfaces; behind one they stay in the order in which they answered.
  void OrderDevices();

  /// The object for an interface of a transport; a new one where none has these fields. Null for an interface without a
  /// unique ID, which stands for none.
  KrInterface* FindOrMake(const std::shared_ptr<krsystem::ITransport>& aTransport,
                          const krsystem::InterfaceFields& aFields);
  /// The object for a device behind an interface; a new one where none has these fields. Null for a new one when there
  /// are kMostDeviceRecords already.
  const KrDeviceInfo* FindOrMake(const std::shared_ptr<krsystem::ITransport>& aTransport, KrInterface* aInterface,
                                 const krsystem::AnyDeviceFields& aFields);
  /// Enters an interface at the end of the list, unless it is null or there.
  void EnterInterface(KrInterface* aInterface);
  /// Enters a device at the end of the lists, in the place of one with the same ID on the same interface if there is
  /// one.
  void EnterDevice(KrInterface* aInterface, const KrDeviceInfo* aDevice);

private:
  /// As objects live as long as the system, answers under ever new names must not fill the memory.
  static constexpr std::size_t kMostDeviceRecords = 16'384;

  struct InterfaceRecord {
    std::shared_ptr<krsystem::ITransport> transport;
    krsystem::InterfaceFields fields;
    std::unique_ptr<KrInterface> object;
  };
  struct DeviceRecord {
    krsystem::AnyDeviceFields fields;
    std::unique_ptr<KrDeviceInfo> object;
  };

  /// Says once that there is no room for further devices.
  void LogFull();
  bool AskSinks(const KrInterface* aInterface, const KrDeviceInfo* aDevice) const;

  std::mutex mStopMutex; // Guards mStop.
  std::stop_source mStop;
  std::vector<InterfaceRecord> mInterfaceRecords;
  std::multimap<KrString, DeviceRecord> mDeviceRecords; // By unique ID.
  bool mIsFullLogged = false;
};
