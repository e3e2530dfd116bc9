#pragma once
// What a KrSystem keeps: its settings, its sinks, and every object that it ever handed out.
// Objects never change; what answers differently gets another object, and an object whose fields come back is used
// again.

#include "discoveryround.h"
#include "foundlists.h"
#include "krsystem/krsystem.h"

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <stop_token>
#include <utility>
#include <vector>

struct KrSystem::Body {
  std::atomic<std::uint32_t> detectionTimeoutMs = 1000;
  std::atomic<bool> subnetBroadcast = true;
  std::vector<KrSystemEventSink*> sinks;

  /// What is listed. Changed by Find and FindDevice alone.
  krsystem::FoundLists lists;

  /// Begins an operation that Cancel can end.
  std::stop_token BeginRound();
  /// Ends the operation that runs, if any.
  void Cancel();

  /// Lists the interfaces of every transport anew, those of one that fails as before; devices behind those that did not
  /// change stay listed. Gives the shares of a round.
  std::vector<krsystem::DiscoveryPart> ListInterfaces();
  /// Takes the answers of a round in until it is over. Devices that did not answer leave the lists then, unless the
  /// round was cancelled.
  void TakeAnswers(krsystem::DiscoveryRound& aRound, const std::vector<krsystem::DiscoveryPart>& aParts,
                   const std::stop_token& aCancel);

  /// What answered in the last round, whether or not it was listed; never null. Any thread.
  std::shared_ptr<const std::vector<krsystem::AnsweredDevice>> GetAnswered() const;

  /// The object for an interface of a transport; a new one where none has these fields. Null for an interface without a
  /// unique ID, which stands for none, and for a new one when there are kMostInterfaces already.
  KrInterface* FindOrMake(const std::shared_ptr<krsystem::ITransport>& aTransport,
                          const krsystem::InterfaceFields& aFields);
  /// The object for a device behind an interface; a new one where none has these fields. Null for a new one when there
  /// are kMostDevices already.
  const KrDeviceInfo* FindOrMake(const std::shared_ptr<krsystem::ITransport>& aTransport, KrInterface* aInterface,
                                 const krsystem::AnyDeviceFields& aFields);
  /// Lists an interface behind which a device answered, unless it is null: in the place of the one with the same unique
  /// ID, whose devices leave the lists then, else at the end.
  void EnterInterface(KrInterface* aInterface);

private:
  struct InterfaceRecord {
    std::shared_ptr<krsystem::ITransport> transport;
    krsystem::InterfaceFields fields;
    std::unique_ptr<KrInterface> object;
  };
  struct DeviceRecord {
    krsystem::AnyDeviceFields fields;
    std::unique_ptr<KrDeviceInfo> object;
  };

  /// Says something once: aIsLogged is whether it was said already.
  static void LogOnce(bool& aIsLogged, const KrString& aText);
  /// Says once that there is no room for further devices.
  void LogFull();
  /// The object for a device behind an interface; null where none has these fields.
  const KrDeviceInfo* FindKnown(const krsystem::ITransport& aTransport, const KrInterface* aInterface,
                                const krsystem::AnyDeviceFields& aFields) const;
  /// Whether an answer of a round may become a device, so that a flood leaves room for others (kFreelyTakenDevices).
  bool IsWelcome(const krsystem::ITransport& aTransport, const KrInterface* aInterface,
                 const krsystem::AnsweredDevice& aAnswer);
  /// Whether an interface is listed without a device having answered on it.
  static bool IsAlwaysShown(const KrInterface& aInterface);
  bool IsShown(const KrInterface& aInterface) const;
  void ShowInterfaces();
  bool AskSinks(const KrInterface* aInterface, const KrDeviceInfo* aDevice) const;

  /// Keeps what a round was answered for the diagnosis. What had answered before stays only beside a cancelled round.
  void NoteAnswered(std::vector<krsystem::AnsweredDevice> aAnswered, bool aWasCancelled);

  std::mutex mStopMutex; // Guards mStop.
  std::stop_source mStop;
  mutable std::mutex mAnsweredMutex; // Guards mAnswered.
  std::shared_ptr<const std::vector<krsystem::AnsweredDevice>> mAnswered =
      std::make_shared<std::vector<krsystem::AnsweredDevice>>();
  std::multimap<KrString, const krsystem::AnsweredDevice*> mAnsweredByID; // Of mAnswered; filled once it is needed.
  std::multimap<KrString, InterfaceRecord> mInterfaceRecords;             // By unique ID.
  /// What each transport listed when it last could.
  std::map<std::shared_ptr<krsystem::ITransport>, std::vector<krsystem::InterfaceFields>> mListed;
  std::vector<KrInterface*> mInterfaces; // Of the last listing, with those that are not shown.
  std::set<std::pair<std::shared_ptr<krsystem::ITransport>, KrString>> mAnsweredLoopbacks; // By unique ID.
  std::multimap<KrString, DeviceRecord> mDeviceRecords;                                    // By unique ID.
  bool mIsFullLogged = false;
  bool mIsFloodLogged = false;
  bool mAreInterfacesFullLogged = false;
};
