#include "simulation/labfile/labreader.h"

#include "krbase/krwholefile.h"
#include "simulation/labfile/labdevicereader.h"
#include "simulation/labfile/labwords.h"

#include <iterator>
#include <set>
#include <string>
#include <utility>

namespace krtransport {

namespace {

constexpr std::size_t kMostInterfaces = 256;
constexpr std::size_t kMostAddresses = 64;
constexpr std::size_t kMostUsedAddresses = 4096;
constexpr std::size_t kMostNameBytes = 64;
constexpr std::size_t kMostDescriptionBytes = 256;

// Which IDs are taken, over the whole lab.
class TakenIDs {
public:
  /// aAdvice says what else can be done about one that is taken.
  TakenIDs(LabProblem& aProblem, std::string aAdvice) : mProblem(aProblem), mAdvice(std::move(aAdvice)) {}

  void Take(const std::string& aWhat, const KrString& aID, const TextPlace& aPlace, bool aMayRepeat = false) {
    if (!mTaken.insert(aID).second && !aMayRepeat)
      mProblem.Report(aPlace, aWhat + " " + aID.ToUtf8() + " is another's too; give it one of its own" + mAdvice);
  }

private:
  std::set<KrString> mTaken;
  LabProblem& mProblem;
  const std::string mAdvice;
};

constexpr const char* kDuplicateAdvice = ", or \"duplicate: true\" where a device is meant to have it";

const KrString& GetID(const LabNetworkSettings& aDevice) {
  return aDevice.macAddress;
}
const KrString& GetID(const LabU3VCamera& aDevice) {
  return aDevice.deviceGUID;
}
const KrString& GetID(const LabPlainUSBDevice& aDevice) {
  return aDevice.id;
}

// Reads all parts of one file, which share its IDs and its number of devices.
class Reader {
public:
  explicit Reader(LabProblem& aProblem)
      : mProblem(aProblem), mNames(aProblem, ""), mMACs(aProblem, kDuplicateAdvice), mIDs(aProblem, kDuplicateAdvice) {}

  Lab Read(const YamlNode& aRoot) {
    Lab lab;
    LabMap map(aRoot, "a lab", mProblem);
    for (const YamlNode& node : map.TakeItems("adapters", kMostInterfaces))
      lab.adapters.push_back(ReadAdapter(node));
    for (const YamlNode& node : map.TakeItems("controllers", kMostInterfaces))
      lab.controllers.push_back(ReadController(node));
    if (const YamlNode* const host = map.Find("host"))
      ReadHost(*host, lab);
    map.Finish();
    return lab;
  }

private:
  void ReadHost(const YamlNode& aNode, Lab& aLab) {
    LabMap map(aNode, "the host", mProblem);
    std::uint64_t number = 0;
    if (map.Find("receiveBufferLimit")) {
      map.TakeNumber("receiveBufferLimit", number);
      aLab.receiveBufferLimitBytes = number;
    }
    if (map.Find("usbMemory")) {
      map.TakeNumber("usbMemory", number);
      aLab.usbMemoryMegabytes = number;
    }
    map.Finish();
  }

  LabAdapter ReadAdapter(const YamlNode& aNode) {
    LabAdapter adapter;
    LabMap map(aNode, "an adapter", mProblem);
    ReadName(map, adapter.name);
    adapter.description = "Simulated network adapter";
    map.TakeText("description", kMostDescriptionBytes, adapter.description);
    map.TakeMAC("mac", adapter.macAddress);
    ReadAddresses(map, adapter.addresses);
    map.TakeAddress("gateway", adapter.defaultGateway);
    map.TakeFlag("driver", adapter.isDriverInstalled);
    map.TakeFlag("up", adapter.isUp);
    map.TakeFlag("carrier", adapter.hasCarrier);
    map.TakeWord("reversePathFilter", kFilterWords, adapter.reversePathFilter);
    for (const YamlNode& item : map.TakeItems("usedAddresses", kMostUsedAddresses)) {
      if (map.IsAddress(item, "usedAddresses"))
        adapter.usedAddresses.push_back(item.text);
    }
    ReadSchedules(map, adapter.schedule, adapter.downSchedule);
    for (ReadLabDevice& device : ReadDevices(map, LabDeviceList::OfAdapter)) {
      if (auto* const camera = std::get_if<LabGEVCamera>(&device.device))
        adapter.devices.emplace_back(std::move(*camera));
      else
        adapter.devices.emplace_back(std::move(std::get<LabTolvanDevice>(device.device)));
    }
    map.Finish();
    return adapter;
  }

  LabController ReadController(const YamlNode& aNode) {
    LabController controller;
    LabMap map(aNode, "a controller", mProblem);
    ReadName(map, controller.name);
    controller.description = "Simulated USB host controller";
    map.TakeText("description", kMostDescriptionBytes, controller.description);
    map.TakeNumber("vendorID", controller.vendorID);
    map.TakeNumber("deviceID", controller.deviceID);
    map.TakeNumber("subsystemID", controller.subsystemID);
    map.TakeNumber("revision", controller.revision);
    map.TakeWord("speed", kSpeedWords, controller.speed);
    ReadSchedule(map, controller.schedule);
    for (ReadLabDevice& device : ReadDevices(map, LabDeviceList::OfController)) {
      if (auto* const camera = std::get_if<LabU3VCamera>(&device.device))
        controller.devices.emplace_back(std::move(*camera));
      else
        controller.devices.emplace_back(std::move(std::get<LabPlainUSBDevice>(device.device)));
    }
    map.Finish();
    return controller;
  }

  void ReadName(LabMap& aMap, KrString& aName) {
    const YamlNode* const node = aMap.FindNeeded("name");
    aMap.TakeText("name", kMostNameBytes, aName);
    if (node && aName.IsEmpty())
      aMap.Report(node->place, "\"name\" must not be empty");
    if (node)
      mNames.Take("the name", aName, node->place);
  }

  void ReadAddresses(LabMap& aMap, std::vector<krsystem::AdapterAddress>& aAddresses) {
    for (const YamlNode& item : aMap.TakeItems("addresses", kMostAddresses)) {
      LabMap map(item, "an adapter's address", mProblem);
      krsystem::AdapterAddress entry;
      map.FindNeeded("address");
      map.FindNeeded("mask");
      map.TakeAddress("address", entry.address);
      map.TakeMask("mask", entry.mask);
      map.Finish();
      aAddresses.push_back(entry);
    }
  }

  std::vector<ReadLabDevice> ReadDevices(LabMap& aMap, LabDeviceList aList) {
    std::vector<ReadLabDevice> devices;
    for (const YamlNode& node : aMap.TakeItems("devices", kMostLabDevices))
      ReadLabDevices(node, aList, mProblem, devices);
    mDeviceCount += devices.size();
    if (mDeviceCount > kMostLabDevices)
      aMap.Report(aMap.GetPlace(), "more than " + std::to_string(kMostLabDevices) + " devices in the lab");
    for (const ReadLabDevice& device : devices)
      TakeID(device);
    return devices;
  }

  void TakeID(const ReadLabDevice& aDevice) {
    const KrString& id = std::visit([](const auto& aKind) -> const KrString& { return GetID(aKind); }, aDevice.device);
    const bool isOnNetwork =
        std::holds_alternative<LabGEVCamera>(aDevice.device) || std::holds_alternative<LabTolvanDevice>(aDevice.device);
    if (id.IsEmpty())
      mProblem.Report(aDevice.place, "a device's GUID or ID must not be empty");
    if (isOnNetwork)
      mMACs.Take("the MAC address", id, aDevice.place, aDevice.mayRepeat);
    else
      mIDs.Take("the GUID or ID", id, aDevice.place, aDevice.mayRepeat);
  }

  LabProblem& mProblem;
  TakenIDs mNames;
  TakenIDs mMACs;
  TakenIDs mIDs;
  std::size_t mDeviceCount = 0;
};

} // namespace

KrResult ParseLab(std::string_view aText, const KrString& aName, Lab& aLab) {
  LabProblem problem;
  const YamlNode root = krpersistence::ParseYaml(aText, problem);
  Lab lab;
  if (!problem.IsThere())
    lab = Reader(problem).Read(root);
  if (problem.IsThere())
    return {KrResult::Code::BadData, aName + ":" + problem.GetText()};
  aLab = std::move(lab);
  return {};
}

KrResult ReadLab(const KrString& aFile, Lab& aLab) {
  std::string text;
  const KrResult read = KrReadWholeFile(aFile, krpersistence::kMostYamlBytes, text);
  if (read.IsOK())
    return ParseLab(text, aFile, aLab);
  return {read == KrResult::Code::OutOfRange ? KrResult::Code::BadData : read.GetCode(),
          "Reading the lab file " + aFile + ": " + read.GetDescription()};
}

} // namespace krtransport
