#include "krsystem/krsystem.h"

#include "freeaddress.h"
#include "krsystem/discoverydiagnosis.h"
#include "krsystem/ipv4address.h"
#include "krsystem/transportcall.h"
#include "krsystem/transportregistry.h"
#include "krsystembody.h"

#include <algorithm>
#include <future>
#include <set>
#include <system_error>
#include <utility>

namespace {

using krsystem::CallTransport;

// Neither "this network" nor a group, nor one of those that are reserved, as the broadcast address is (RFC 1122, 5735).
bool IsOfOneDevice(std::uint32_t aAddress) {
  const std::uint32_t firstField = aAddress >> 24;
  return firstField != 0 && firstField < 224;
}

// What one transport says of one address.
struct AddressAnswer {
  KrResult result = KrResult(KrResult::Code::NotFound);
  krsystem::InterfaceFields interface;
  krsystem::AnyDeviceFields device;
};

using TransportList = std::vector<std::shared_ptr<krsystem::ITransport>>;

AddressAnswer AskAddress(krsystem::ITransport& aTransport, std::uint32_t aAddress, std::uint32_t aTimeoutMs) {
  AddressAnswer answer;
  answer.result = CallTransport("Asking an address", [&] {
    return aTransport.FindAddress(aAddress, aTimeoutMs, answer.interface, answer.device);
  });
  return answer;
}

// Asks all transports at once and waits for all of them, so that none is left running.
std::vector<AddressAnswer> AskAddress(const TransportList& aTransports, std::uint32_t aAddress,
                                      std::uint32_t aTimeoutMs) {
  std::vector<std::future<AddressAnswer>> pending;
  for (const std::shared_ptr<krsystem::ITransport>& transport : aTransports) {
    const auto ask = [transport, aAddress, aTimeoutMs] { return AskAddress(*transport, aAddress, aTimeoutMs); };
    try {
      pending.push_back(std::async(std::launch::async, ask));
    } catch (const std::system_error&) {
      // Without a further thread the transport is asked in turn, when its answer is waited for.
      pending.push_back(std::async(std::launch::deferred, ask));
    }
  }
  std::vector<AddressAnswer> answers;
  for (std::future<AddressAnswer>& answer : pending)
    answers.push_back(answer.get());
  return answers;
}

// Joins what the transports read. One that fails adds nothing; when all do, the first failure is the result.
KrResult ReadHost(const TransportList& aTransports, krsystem::HostReadings& aReadings) {
  KrResult firstFailure;
  std::size_t failures = 0;
  for (const std::shared_ptr<krsystem::ITransport>& transport : aTransports) {
    krsystem::HostReadings readings = aReadings;
    const KrResult result = CallTransport("Reading the host", [&] { return transport->ReadHost(readings); });
    if (result.IsOK()) {
      aReadings = std::move(readings);
      continue;
    }
    krsystem::LogTransportFailure({"KrSystem::Diagnose", "krsystem"}, "Reading the host", *transport, result);
    if (failures++ == 0)
      firstFailure = result;
  }
  // A transport may look for devices and have nothing to say of the host.
  aReadings.hasOtherTransport = !aTransports.empty() && !aReadings.hasNetworkTransport && !aReadings.hasUSBTransport;
  return failures > 0 && failures == aTransports.size() ? firstFailure : KrResult();
}

void TakeAddress(const KrString& aText, std::set<std::uint32_t>& aTaken) {
  if (const std::optional<std::uint32_t> address = krsystem::ParseIPv4(aText))
    aTaken.insert(*address);
}

// The addresses that nobody need be asked about.
std::set<std::uint32_t> ListTaken(const KrNetworkAdapter& aAdapter, const krsystem::FoundLists& aLists) {
  std::set<std::uint32_t> taken;
  const auto takeAdapter = [&taken](const KrNetworkAdapter& aOne) {
    for (std::size_t i = 0; i < aOne.GetIPAddressCount(); ++i)
      TakeAddress(aOne.GetIPAddress(i), taken);
    TakeAddress(aOne.GetDefaultGateway(), taken);
  };
  takeAdapter(aAdapter);
  for (const KrInterface* interface : aLists.GetInterfaces()) {
    if (const auto* const adapter = dynamic_cast<const KrNetworkAdapter*>(interface))
      takeAdapter(*adapter);
  }
  for (const KrDeviceInfo* device : aLists.GetDevices()) {
    if (const auto* const gev = dynamic_cast<const KrDeviceInfoGEV*>(device))
      TakeAddress(gev->GetIPAddress(), taken);
    else if (const auto* const tolvan = dynamic_cast<const KrDeviceInfoTolvanProtocol*>(device))
      TakeAddress(tolvan->GetIPAddress(), taken);
  }
  return taken;
}

bool IsWorthARecord(const KrResult& aResult) {
  return !aResult.IsOK() && aResult != KrResult::Code::NotFound && aResult != KrResult::Code::NotSupported;
}

// Failures are logged one by one; when nothing else worked either, the first is the round's result.
KrResult SummariseRound(const krsystem::DiscoveryRound& aRound, const std::vector<krsystem::DiscoveryPart>& aParts) {
  KrResult firstFailure;
  std::size_t failures = 0;
  for (std::size_t i = 0; i < aParts.size(); ++i) {
    const KrResult& result = aRound.GetResult(i);
    if (result.IsOK())
      continue;
    krsystem::LogTransportFailure({"KrSystem::Find", "krsystem"}, "Looking for devices", *aParts[i].transport, result);
    if (failures++ == 0)
      firstFailure = result;
  }
  return failures == aParts.size() ? firstFailure : KrResult();
}

} // namespace

KrSystem::KrSystem() : mBody(std::make_unique<Body>()) {
  mBody->ListInterfaces();
}

KrSystem::~KrSystem() = default;

KrResult KrSystem::RegisterEventSink(KrSystemEventSink* aSink) {
  if (!aSink)
    return {KrResult::Code::InvalidInput, "Registering an event sink: there is none (null)."};
  if (std::ranges::find(mBody->sinks, aSink) != mBody->sinks.end())
    return {KrResult::Code::InvalidInput, "Registering an event sink: it is registered already."};
  mBody->sinks.push_back(aSink);
  return {};
}

KrResult KrSystem::UnregisterEventSink(KrSystemEventSink* aSink) {
  if (std::erase(mBody->sinks, aSink) == 0)
    return {KrResult::Code::InvalidInput, "Unregistering an event sink: it is not registered."};
  return {};
}

void KrSystem::SetDetectionTimeout(std::uint32_t aTimeoutMs) {
  mBody->detectionTimeoutMs = std::max<std::uint32_t>(aTimeoutMs, 1);
}

std::uint32_t KrSystem::GetDetectionTimeout() const {
  return mBody->detectionTimeoutMs;
}

void KrSystem::SetSubnetBroadcastEnabled(bool aEnabled) {
  mBody->subnetBroadcast = aEnabled;
}

bool KrSystem::IsSubnetBroadcastEnabled() const {
  return mBody->subnetBroadcast;
}

KrResult KrSystem::Find() {
  const std::stop_token cancel = mBody->BeginRound();
  const std::vector<krsystem::DiscoveryPart> parts = mBody->ListInterfaces();
  krsystem::DiscoveryRound round(parts, {mBody->detectionTimeoutMs, mBody->subnetBroadcast, cancel});
  mBody->TakeAnswers(round, parts, cancel);
  if (cancel.stop_requested())
    return {KrResult::Code::Aborted, "Looking for devices was cancelled; what had answered until then is listed."};
  return SummariseRound(round, parts);
}

KrResult KrSystem::FindDevice(const KrString& aAddress, const KrDeviceInfo** aDevice) {
  if (!aDevice)
    return {KrResult::Code::InvalidInput,
            "Looking for a device by its address: no place for the device is given (null)."};
  const std::optional<std::uint32_t> address = krsystem::ParseIPv4(aAddress);
  if (!address)
    return {KrResult::Code::InvalidInput,
            "Looking for a device: \"" + aAddress + "\" is no IPv4 address; write four numbers, as in 192.168.1.20."};
  if (!IsOfOneDevice(*address))
    return {KrResult::Code::InvalidInput,
            "Looking for a device: " + aAddress + " is the address of no single device; write the device's own one."};
  const TransportList transports = krsystem::GetTransports();
  const std::vector<AddressAnswer> answers = AskAddress(transports, *address, mBody->detectionTimeoutMs);
  const KrDeviceInfo* found = nullptr;
  for (std::size_t i = 0; i < answers.size(); ++i) {
    if (IsWorthARecord(answers[i].result))
      krsystem::LogTransportFailure({"KrSystem::FindDevice", "krsystem"}, "Looking for devices", *transports[i],
                                    answers[i].result);
    if (!answers[i].result.IsOK() || found)
      continue;
    KrInterface* const interface = mBody->FindOrMake(transports[i], answers[i].interface);
    found = mBody->FindOrMake(transports[i], interface, answers[i].device);
    if (!found)
      return {KrResult::Code::SystemError,
              "The device at " + aAddress +
                  " is left out: too many different ones have answered before. Make a new KrSystem."};
    mBody->EnterInterface(interface);
    mBody->lists.Enter(interface, found);
  }
  if (!found)
    return {KrResult::Code::NotFound,
            "No device answers at " + aAddress +
                "; check the address, the cable, and that the device's subnet is this host's."};
  *aDevice = found;
  return {};
}

void KrSystem::Cancel() {
  mBody->Cancel();
}

KrResult KrSystem::Diagnose(std::vector<KrFinding>& aFindings) {
  aFindings.clear();
  krsystem::HostReadings readings;
  KrResult result = ReadHost(krsystem::GetTransports(), readings);
  if (result.IsOK())
    aFindings = krsystem::FindCauses(readings, *mBody->GetAnswered());
  return result;
}

KrResult KrSystem::FindFreeAddress(const KrNetworkAdapter& aAdapter, std::size_t aIndex, const std::stop_token& aCancel,
                                   KrString& aAddress) {
  const std::optional<std::uint32_t> address = krsystem::ParseIPv4(aAdapter.GetIPAddress(aIndex));
  const std::optional<std::uint32_t> mask = krsystem::ParseIPv4(aAdapter.GetSubnetMask(aIndex));
  if (!address || !mask || *address == 0 || *mask == 0)
    return {KrResult::Code::InvalidInput,
            "Looking for a free address: " + aAdapter.GetName() + " has no address there; give it one first."};
  if (!aAdapter.mTransport)
    return {KrResult::Code::NotSupported,
            "Looking for a free address: " + aAdapter.GetName() + " is no adapter that this system lists."};
  std::uint32_t found = 0;
  KrResult result = krsystem::FindFreeAddress(*aAdapter.mTransport, aAdapter.GetFields(), {*address, *mask},
                                              ListTaken(aAdapter, mBody->lists), aCancel, found);
  if (result.IsOK())
    aAddress = krsystem::FormatIPv4(found);
  return result;
}

std::size_t KrSystem::GetInterfaceCount() const {
  return mBody->lists.GetInterfaceCount();
}

const KrInterface* KrSystem::GetInterface(std::size_t aIndex) const {
  return mBody->lists.GetInterface(aIndex);
}

std::size_t KrSystem::GetDeviceCount() const {
  return mBody->lists.GetDeviceCount();
}

const KrDeviceInfo* KrSystem::GetDeviceInfo(std::size_t aIndex) const {
  return mBody->lists.GetDevice(aIndex);
}
