#include "krsystembody.h"

#include "krsystem/transportcall.h"
#include "krsystem/transportregistry.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <utility>

namespace {

std::unique_ptr<KrInterface> MakeInterface(const krsystem::NetworkAdapterFields& aFields) {
  return std::make_unique<KrNetworkAdapter>(aFields);
}
std::unique_ptr<KrInterface> MakeInterface(const krsystem::USBHostControllerFields& aFields) {
  return std::make_unique<KrUSBHostController>(aFields);
}
std::unique_ptr<KrDeviceInfo> MakeDevice(const krsystem::GEVFields& aFields) {
  return std::make_unique<KrDeviceInfoGEV>(aFields);
}
std::unique_ptr<KrDeviceInfo> MakeDevice(const krsystem::TolvanProtocolFields& aFields) {
  return std::make_unique<KrDeviceInfoTolvanProtocol>(aFields);
}
std::unique_ptr<KrDeviceInfo> MakeDevice(const krsystem::USBFields& aFields) {
  return std::make_unique<KrDeviceInfoUSB>(aFields);
}
std::unique_ptr<KrDeviceInfo> MakeDevice(const krsystem::U3VFields& aFields) {
  return std::make_unique<KrDeviceInfoU3V>(aFields);
}

template <typename Fields>
const KrString& GetUniqueID(const Fields& aFields) {
  return std::visit([](const auto& aKind) -> const KrString& { return aKind.uniqueID; }, aFields);
}

} // namespace

std::stop_token KrSystem::Body::BeginRound() {
  const std::lock_guard lock(mStopMutex);
  mStop = std::stop_source();
  return mStop.get_token();
}

void KrSystem::Body::Cancel() {
  std::stop_source stop(std::nostopstate);
  {
    const std::lock_guard lock(mStopMutex);
    stop = mStop;
  }
  // The stop callbacks are the transports', so the lock is given back first.
  stop.request_stop();
}

std::vector<krsystem::DiscoveryPart> KrSystem::Body::ListInterfaces() {
  mInterfaces.clear();
  std::vector<krsystem::DiscoveryPart> parts;
  std::map<std::shared_ptr<krsystem::ITransport>, std::vector<krsystem::InterfaceFields>> listed;
  for (const std::shared_ptr<krsystem::ITransport>& transport : krsystem::GetTransports()) {
    krsystem::DiscoveryPart part{transport, {}, {}};
    const KrResult result =
        krsystem::CallTransport("Listing the interfaces", [&] { return transport->ListInterfaces(part.interfaces); });
    if (!result.IsOK()) {
      krsystem::LogTransportFailure({"KrSystem::Find", "krsystem"}, "Looking for devices", *transport, result);
      // Reading the system's tables may fail for a moment, in which no adapter has gone.
      part.interfaces = mListed[transport];
    }
    listed.emplace(transport, part.interfaces);
    for (const krsystem::InterfaceFields& fields : part.interfaces) {
      KrInterface* const interface = FindOrMake(transport, fields);
      part.objects.push_back(interface);
      if (interface && std::ranges::find(mInterfaces, interface) == mInterfaces.end())
        mInterfaces.push_back(interface);
    }
    parts.push_back(std::move(part));
  }
  mListed = std::move(listed);
  std::erase_if(mAnsweredLoopbacks, [this](const auto& aAnswered) {
    return std::ranges::none_of(mInterfaces, [&aAnswered](const KrInterface* aInterface) {
      return aInterface->mTransport == aAnswered.first && aInterface->GetUniqueID() == aAnswered.second;
    });
  });
  ShowInterfaces();
  return parts;
}

void KrSystem::Body::TakeAnswers(krsystem::DiscoveryRound& aRound, const std::vector<krsystem::DiscoveryPart>& aParts,
                                 const std::stop_token& aCancel) {
  // A transport may list one interface twice.
  std::set<std::pair<const KrInterface*, KrString>> answered;
  std::vector<krsystem::FoundLists::Entry> entered;
  while (const krsystem::DiscoveryAnswer* answer = aRound.WaitForAnswer()) {
    const krsystem::DiscoveryPart& part = aParts[answer->partIndex];
    KrInterface* const interface = part.objects[answer->interfaceIndex];
    if (!IsWelcome(*part.transport, interface, {GetUniqueID(part.interfaces[answer->interfaceIndex]), answer->device}))
      continue;
    const KrDeviceInfo* const device = FindOrMake(part.transport, interface, answer->device);
    if (!device || !answered.emplace(interface, device->GetUniqueID()).second)
      continue;
    EnterInterface(interface);
    if (AskSinks(interface, device)) {
      lists.Remove(interface, device->GetUniqueID());
      continue;
    }
    lists.Enter(interface, device);
    entered.emplace_back(interface, device);
  }
  const bool wasCancelled = aCancel.stop_requested();
  if (wasCancelled)
    lists.Order();
  else
    lists.SetDevices(entered);
  if (aRound.HasLeftOut())
    LogFull();
  NoteAnswered(aRound.GetAnswered(), wasCancelled);
}

void KrSystem::Body::NoteAnswered(std::vector<krsystem::AnsweredDevice> aAnswered, bool aWasCancelled) {
  const auto getID = [](const krsystem::AnsweredDevice& aDevice) {
    return std::pair(aDevice.interfaceID, GetUniqueID(aDevice.fields));
  };
  if (aWasCancelled) {
    std::set<std::pair<KrString, KrString>> isNew;
    std::ranges::transform(aAnswered, std::inserter(isNew, isNew.end()), getID);
    for (const krsystem::AnsweredDevice& former : *GetAnswered()) {
      if (aAnswered.size() < krsystem::kMostDevices && !isNew.contains(getID(former)))
        aAnswered.push_back(former);
    }
  }
  mAnsweredByID.clear();
  auto answered = std::make_shared<const std::vector<krsystem::AnsweredDevice>>(std::move(aAnswered));
  const std::lock_guard lock(mAnsweredMutex);
  mAnswered.swap(answered);
}

std::shared_ptr<const std::vector<krsystem::AnsweredDevice>> KrSystem::Body::GetAnswered() const {
  const std::lock_guard lock(mAnsweredMutex);
  return mAnswered;
}

bool KrSystem::Body::AskSinks(const KrInterface* aInterface, const KrDeviceInfo* aDevice) const {
  bool ignore = false;
  for (KrSystemEventSink* sink : sinks) {
    bool ignoredBySink = false;
    const KrResult called = krsystem::CallTransport("An event sink", [&] {
      sink->OnDeviceFound(aInterface, aDevice, ignoredBySink);
      return KrResult();
    });
    if (!called.IsOK())
      KrLogger("KrSystem").Log(KrLogLevel::Error, {"KrSystem::Find", "krsystem"}, called.GetDescription());
    ignore = ignore || ignoredBySink;
  }
  return ignore;
}

KrInterface* KrSystem::Body::FindOrMake(const std::shared_ptr<krsystem::ITransport>& aTransport,
                                        const krsystem::InterfaceFields& aFields) {
  if (GetUniqueID(aFields).IsEmpty())
    return nullptr;
  const auto [first, end] = mInterfaceRecords.equal_range(GetUniqueID(aFields));
  const auto known = std::find_if(first, end, [&](const auto& aEntry) {
    return aEntry.second.transport == aTransport && aEntry.second.fields == aFields;
  });
  if (known != end)
    return known->second.object.get();
  if (mInterfaceRecords.size() == krsystem::kMostInterfaces) {
    LogOnce(mAreInterfacesFullLogged, std::to_string(krsystem::kMostInterfaces) +
                                          " different interfaces were listed, counting what changed as another one, "
                                          "and new ones are left out from now on. Make a new KrSystem.");
    return nullptr;
  }
  auto object = std::visit([](const auto& aKind) { return MakeInterface(aKind); }, aFields);
  object->mTransport = aTransport;
  lists.Adopt(*object);
  InterfaceRecord record{aTransport, aFields, std::move(object)};
  return mInterfaceRecords.emplace(GetUniqueID(aFields), std::move(record))->second.object.get();
}

const KrDeviceInfo* KrSystem::Body::FindKnown(const krsystem::ITransport& aTransport, const KrInterface* aInterface,
                                              const krsystem::AnyDeviceFields& aFields) const {
  const auto [first, end] = mDeviceRecords.equal_range(GetUniqueID(aFields));
  const auto known = std::find_if(first, end, [&](const auto& aEntry) {
    const DeviceRecord& record = aEntry.second;
    return record.object->mTransport.get() == &aTransport && record.object->mInterface == aInterface &&
           record.fields == aFields;
  });
  return known != end ? known->second.object.get() : nullptr;
}

bool KrSystem::Body::IsWelcome(const krsystem::ITransport& aTransport, const KrInterface* aInterface,
                               const krsystem::AnsweredDevice& aAnswer) {
  if (mDeviceRecords.size() < krsystem::kFreelyTakenDevices || FindKnown(aTransport, aInterface, aAnswer.fields))
    return true;
  LogOnce(mIsFloodLogged, std::to_string(krsystem::kFreelyTakenDevices) +
                              " different devices have answered; new ones are listed only when they answer in two "
                              "rounds. Look who answers in this network.");
  if (mAnsweredByID.empty()) {
    for (const krsystem::AnsweredDevice& former : *GetAnswered())
      mAnsweredByID.emplace(GetUniqueID(former.fields), &former);
  }
  const auto [first, end] = mAnsweredByID.equal_range(GetUniqueID(aAnswer.fields));
  return std::any_of(first, end, [&aAnswer](const auto& aEntry) {
    return aEntry.second->interfaceID == aAnswer.interfaceID && aEntry.second->fields == aAnswer.fields;
  });
}

const KrDeviceInfo* KrSystem::Body::FindOrMake(const std::shared_ptr<krsystem::ITransport>& aTransport,
                                               KrInterface* aInterface, const krsystem::AnyDeviceFields& aFields) {
  if (const KrDeviceInfo* const known = FindKnown(*aTransport, aInterface, aFields))
    return known;
  if (mDeviceRecords.size() == krsystem::kMostDevices) {
    LogFull();
    return nullptr;
  }
  auto object = std::visit([](const auto& aKind) { return MakeDevice(aKind); }, aFields);
  object->mTransport = aTransport;
  object->mInterface = aInterface;
  return mDeviceRecords.emplace(GetUniqueID(aFields), DeviceRecord{aFields, std::move(object)})->second.object.get();
}

void KrSystem::Body::LogOnce(bool& aIsLogged, const KrString& aText) {
  if (!std::exchange(aIsLogged, true))
    KrLogger("KrSystem").Log(KrLogLevel::Warning, {"KrSystem::Find", "krsystem"}, aText);
}

void KrSystem::Body::LogFull() {
  LogOnce(mIsFullLogged, std::to_string(krsystem::kMostDevices) +
                             " different devices have answered, and new ones are left out from now on. Look who "
                             "answers in this network, and make a new KrSystem.");
}

bool KrSystem::Body::IsAlwaysShown(const KrInterface& aInterface) {
  const auto* const adapter = dynamic_cast<const KrNetworkAdapter*>(&aInterface);
  return !adapter || !adapter->GetFields().isLoopback;
}

bool KrSystem::Body::IsShown(const KrInterface& aInterface) const {
  return IsAlwaysShown(aInterface) || mAnsweredLoopbacks.contains({aInterface.mTransport, aInterface.GetUniqueID()});
}

void KrSystem::Body::ShowInterfaces() {
  std::vector<KrInterface*> shown;
  std::ranges::copy_if(mInterfaces, std::back_inserter(shown),
                       [this](const KrInterface* aInterface) { return IsShown(*aInterface); });
  lists.SetInterfaces(std::move(shown));
}

void KrSystem::Body::EnterInterface(KrInterface* aInterface) {
  if (!aInterface)
    return;
  const bool isNew = std::ranges::find(mInterfaces, aInterface) == mInterfaces.end();
  const bool wasShown = !isNew && IsShown(*aInterface);
  if (isNew) {
    const auto former = std::ranges::find_if(mInterfaces, [aInterface](const KrInterface* aListed) {
      return aListed->mTransport == aInterface->mTransport && aListed->GetUniqueID() == aInterface->GetUniqueID();
    });
    if (former != mInterfaces.end())
      *former = aInterface;
    else
      mInterfaces.push_back(aInterface);
  }
  if (!IsAlwaysShown(*aInterface))
    mAnsweredLoopbacks.emplace(aInterface->mTransport, aInterface->GetUniqueID());
  if (!wasShown)
    ShowInterfaces();
}
