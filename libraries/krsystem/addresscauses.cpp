#include "addresscauses.h"

#include "anydevicefields.h"
#include "findingtext.h"

#include <map>
#include <set>
#include <utility>

namespace krsystem {

namespace {

constexpr const char* kNoAddress = "0.0.0.0";
constexpr const char* kNoMAC = "00:00:00:00:00:00";

// A device on the network, with what is known of its adapter.
struct NetworkAnswer {
  const AnsweredDevice* device;
  const NetworkFields* fields;
  const AdapterReading* adapter; // Null where nothing was read of it.

  const KrString& GetDeviceName() const { return GetName(device->fields); }
  const KrString& GetAdapterName() const {
    if (adapter)
      return GetName(*adapter);
    return device->interfaceName.IsEmpty() ? device->interfaceID : device->interfaceName;
  }
  bool HasMAC() const { return !fields->macAddress.IsEmpty() && fields->macAddress != kNoMAC; }
};

using NetworkAnswers = std::vector<NetworkAnswer>;

NetworkAnswers SelectNetwork(const HostReadings& aReadings, const std::vector<AnsweredDevice>& aAnswered) {
  NetworkAnswers answers;
  for (const AnsweredDevice& device : aAnswered) {
    if (const NetworkFields* const fields = GetNetworkFields(device.fields))
      answers.push_back({&device, fields, FindAdapter(aReadings, device)});
  }
  return answers;
}

// How the device is given another address: a free one of the adapter's subnet where that has one.
std::string DescribeRepair(const NetworkAnswer& aAnswer, const AdapterAddress* aAddress) {
  const KrString& mac = aAnswer.fields->macAddress;
  const std::string device = aAnswer.HasMAC() && IsPlainWord(mac) ? mac.ToUtf8() : "DEVICE";
  return "by \"Set IP Address...\" in the device finder or by a command.\nkrtool ip " + device +
         (aAddress ? " --set auto" : " --set ADDRESS --mask MASK");
}

// Where the adapter is the one without an address, that is what has to be mended.
KrFinding MakeAdapterWithoutAddress(const NetworkAnswer& aAnswer) {
  const KrString& adapter = aAnswer.GetAdapterName();
  const KrString has = aAnswer.fields->ipAddress + " (mask " + aAnswer.fields->subnetMask + ")";
  return {KrFindingKind::ForeignSubnet, aAnswer.GetDeviceName(),
          aAnswer.GetDeviceName() + " answered on " + adapter + " with the address " + has +
              ", but the adapter has none, so it cannot be opened.",
          "Give the network adapter " + adapter + " an address of that subnet, in the system's network settings."};
}

KrFinding MakeForeignSubnet(const NetworkAnswer& aAnswer) {
  const AdapterAddress* const address = aAnswer.adapter ? FindAddress(*aAnswer.adapter) : nullptr;
  const KrString& adapter = aAnswer.GetAdapterName();
  const KrString& device = aAnswer.GetDeviceName();
  const bool hasAddress = aAnswer.fields->ipAddress != kNoAddress;
  if (hasAddress && aAnswer.adapter && !address)
    return MakeAdapterWithoutAddress(aAnswer);
  const KrString state = hasAddress
                             ? " with the address " + aAnswer.fields->ipAddress + " (mask " +
                                   aAnswer.fields->subnetMask + "), which is of another subnet than the adapter's"
                             : KrString(", but has no IP address");
  const KrString where = address ? " (" + address->address + ", mask " + address->mask + ")" : KrString();
  return {KrFindingKind::ForeignSubnet, device,
          device + " answered on " + adapter + state + ", so it cannot be opened.",
          "Give it a free address in the subnet of " + adapter + where + ", " + DescribeRepair(aAnswer, address)};
}

KrFinding MakeConflict(const NetworkAnswer& aAnswer, const KrString& aText) {
  const AdapterAddress* const address = aAnswer.adapter ? FindAddress(*aAnswer.adapter) : nullptr;
  return {KrFindingKind::AddressConflict, aAnswer.GetDeviceName(), aText,
          "Give it another address, " + DescribeRepair(aAnswer, address)};
}

// A device that several adapters hear is well when one of them reaches it.
void FindForeignSubnets(const NetworkAnswers& aAnswers, std::vector<KrFinding>& aFindings) {
  const auto isValid = [](const NetworkAnswer& aAnswer) {
    return GetDeviceFields(aAnswer.device->fields).configurationValid;
  };
  std::map<KrString, const NetworkAnswer*> reached; // By MAC address.
  for (const NetworkAnswer& answer : aAnswers) {
    if (answer.HasMAC() && isValid(answer))
      reached.emplace(answer.fields->macAddress, &answer);
  }
  for (const NetworkAnswer& answer : aAnswers) {
    if (isValid(answer))
      continue;
    const auto same = reached.find(answer.fields->macAddress);
    if (same == reached.end() || AreTwoDevices(same->second->device->fields, answer.device->fields))
      aFindings.push_back(MakeForeignSubnet(answer));
  }
}

// A program of the host answers with an address of the host, as it must: on the loopback adapter, or without a MAC
// address of its own. What comes by the kernel's sockets is never such a conflict: it drops that.
void FindConflictsWithHost(const HostReadings& aReadings, const NetworkAnswers& aAnswers,
                           std::vector<KrFinding>& aFindings) {
  std::map<KrString, const AdapterReading*> own;
  for (const AdapterReading& adapter : aReadings.adapters) {
    for (const AdapterAddress& address : adapter.addresses) {
      if (adapter.isUp && address.address != kNoAddress)
        own.emplace(address.address, &adapter);
    }
  }
  for (const NetworkAnswer& answer : aAnswers) {
    const auto adapter = own.find(answer.fields->ipAddress);
    if (adapter != own.end() && answer.adapter && !answer.adapter->isLoopback && answer.HasMAC())
      aFindings.push_back(MakeConflict(answer, answer.GetDeviceName() + " on " + answer.GetAdapterName() +
                                                   " has the address " + answer.fields->ipAddress +
                                                   ", which is this host's own on " + GetName(*adapter->second) + "."));
  }
}

// Each device beyond the first one with an address is told of, not each pair.
void FindConflictsOfDevices(const NetworkAnswers& aAnswers, std::vector<KrFinding>& aFindings) {
  std::map<std::pair<KrString, KrString>, const NetworkAnswer*> first; // By interface and address.
  for (const NetworkAnswer& answer : aAnswers) {
    if (answer.fields->ipAddress == kNoAddress || !answer.HasMAC())
      continue;
    const auto [entry, isFirst] = first.try_emplace({answer.device->interfaceID, answer.fields->ipAddress}, &answer);
    const NetworkAnswer& other = *entry->second;
    if (!isFirst && other.fields->macAddress != answer.fields->macAddress)
      aFindings.push_back(MakeConflict(answer, answer.GetDeviceName() + " (" + answer.fields->macAddress + ") and " +
                                                   other.GetDeviceName() + " (" + other.fields->macAddress + ") on " +
                                                   answer.GetAdapterName() + " have one address, " +
                                                   answer.fields->ipAddress + "."));
  }
}

void FindSharedMACs(const NetworkAnswers& aAnswers, std::vector<KrFinding>& aFindings) {
  std::map<KrString, const NetworkAnswer*> first;
  std::set<KrString> told;
  for (const NetworkAnswer& answer : aAnswers) {
    const KrString& mac = answer.fields->macAddress;
    if (!answer.HasMAC())
      continue;
    const NetworkAnswer& other = *first.try_emplace(mac, &answer).first->second;
    if (!AreTwoDevices(other.device->fields, answer.device->fields) || !told.insert(mac).second)
      continue;
    const KrString& where = other.GetAdapterName();
    aFindings.push_back(
        {KrFindingKind::SharedMAC, answer.GetDeviceName(),
         other.GetDeviceName() + " on " + where + " and " + answer.GetDeviceName() + " on " + answer.GetAdapterName() +
             " state one MAC address, " + mac + ", so they cannot be told apart.",
         "Connect only one of them to this host, and ask its maker: no two devices may have one MAC address."});
  }
}

} // namespace

void FindAddressCauses(const HostReadings& aReadings, const std::vector<AnsweredDevice>& aAnswered,
                       std::vector<KrFinding>& aFindings) {
  const NetworkAnswers answers = SelectNetwork(aReadings, aAnswered);
  FindForeignSubnets(answers, aFindings);
  FindConflictsWithHost(aReadings, answers, aFindings);
  FindConflictsOfDevices(answers, aFindings);
  FindSharedMACs(answers, aFindings);
}

} // namespace krsystem
