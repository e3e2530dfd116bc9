#include "simulation/labfile/labdevicereader.h"

#include "simulation/cameraregisters.h"
#include "simulation/labfile/labclcamerareader.h"
#include "simulation/labfile/labnumbering.h"
#include "simulation/labfile/labsensorreader.h"
#include "simulation/labfile/labserialreader.h"
#include "simulation/labfile/labwords.h"

#include <algorithm>

namespace krtransport {

namespace {

constexpr std::size_t kMostSilentRegisters = 256;
constexpr std::size_t kMostTextBytes = 64;
constexpr std::size_t kMostPathBytes = 1024;
constexpr std::uint64_t kMostDelayMs = 60000;
constexpr std::uint32_t kMostVersion = 65535;
constexpr std::uint32_t kMostSoftwareVersion = 255;
constexpr const char* kLeastStepText = "0.01 s"; // LabSchedule::kLeastStepNs.

// How long texts may be in bytes: as the registers that hold them.
struct TextLimits {
  std::size_t name;
  std::size_t info;
  std::size_t serial;
  std::size_t userDefinedName;
};
constexpr TextLimits kGigELimits = {32, 48, 16, 16};
constexpr TextLimits kOtherLimits = {kMostTextBytes, kMostTextBytes, kMostTextBytes, kMostTextBytes};

void ReadIdentity(LabMap& aMap, const TextLimits& aLimits, LabIdentity& aIdentity) {
  aMap.TakeText("vendor", aLimits.name, aIdentity.vendorName);
  aMap.TakeText("model", aLimits.name, aIdentity.modelName);
  aMap.TakeText("version", aLimits.name, aIdentity.version);
  aMap.TakeText("info", aLimits.info, aIdentity.manufacturerInfo);
  aMap.TakeText("serial", aLimits.serial, aIdentity.serialNumber);
  aMap.TakeText("name", aLimits.userDefinedName, aIdentity.userDefinedName);
  ReadSchedule(aMap, aIdentity.schedule);
  aMap.TakeText("awayWhile", kMostPathBytes, aIdentity.awayFile);
}

void ReadNetwork(LabMap& aMap, LabNetworkSettings& aSettings) {
  if (aMap.FindNeeded("mac"))
    aMap.TakeMAC("mac", aSettings.macAddress);
  aMap.TakeAddress("address", aSettings.ipAddress);
  aMap.TakeMask("mask", aSettings.subnetMask);
  aMap.TakeAddress("gateway", aSettings.defaultGateway);
}

void ReadSilentRegisters(LabMap& aMap, std::vector<LabSilentRegister>& aRegisters) {
  for (const YamlNode& item : aMap.TakeItems("silentRegisters", kMostSilentRegisters)) {
    LabMap map(item, "a silent register", aMap.GetProblem());
    LabSilentRegister silent;
    map.FindNeeded("address");
    map.TakeNumber("address", silent.address);
    map.TakeNumber("times", silent.times);
    map.Finish();
    aRegisters.push_back(silent);
  }
}

void ReadFaults(LabMap& aMap, LabFaults& aFaults) {
  const YamlNode* const node = aMap.Find("faults");
  if (!node)
    return;
  LabMap map(*node, "a camera's faults", aMap.GetProblem());
  map.TakeFlag("refusesOpening", aFaults.refusesOpening);
  map.TakeFlag("losesPower", aFaults.losesPower);
  map.TakeFlag("silent", aFaults.isSilent);
  ReadSilentRegisters(map, aFaults.silentRegisters);
  map.TakeNumber("registerDelay", aFaults.registerDelayMs, 0, kMostDelayMs);
  map.TakeNumber("droppedFrames", aFaults.droppedFrames);
  if (const YamlNode* const lostNode = map.Find("lostPackets")) {
    LabMap lostMap(*lostNode, "lost packets", aMap.GetProblem());
    LabLostPackets lost;
    lostMap.TakeNumber("frames", lost.frames, 1);
    lostMap.TakeNumber("packets", lost.packets, 1);
    lostMap.TakeNumber("first", lost.firstPacket);
    lostMap.Finish();
    aFaults.lostPackets = lost;
  }
  map.Finish();
}

void ReadAddressing(LabMap& aMap, std::string_view aKey, std::uint32_t& aBits) {
  if (!aMap.Find(aKey))
    return;
  std::uint32_t bits = 0;
  for (const YamlNode& item : aMap.TakeItems(aKey, kAddressingWords.size())) {
    if (const LabWord* const word = aMap.ReadWord(item, aKey, kAddressingWords))
      bits |= static_cast<std::uint32_t>(word->value);
  }
  aBits = bits;
}

void ReadPersistent(LabMap& aMap, LabGEVCamera& aCamera) {
  const YamlNode* const node = aMap.Find("persistent");
  if (!node)
    return;
  LabMap map(*node, "a persistent configuration", aMap.GetProblem());
  map.TakeAddress("address", aCamera.persistentAddress);
  map.TakeMask("mask", aCamera.persistentMask);
  map.TakeAddress("gateway", aCamera.persistentGateway);
  map.Finish();
}

LabGEVCamera ReadGEVCamera(LabMap& aMap) {
  LabGEVCamera camera;
  ReadIdentity(aMap, kGigELimits, camera);
  ReadNetwork(aMap, camera);
  ReadSensor(aMap, camera);
  ReadFaults(aMap, camera.faults);
  ReadFrameGrabber(aMap, camera.frameGrabber);
  ReadSerialPorts(aMap, camera);
  ReadAddressing(aMap, "addressing", camera.ipConfigOptions);
  ReadAddressing(aMap, "addressingNow", camera.ipConfigCurrent);
  ReadPersistent(aMap, camera);
  aMap.TakeAddress("returnsAt", camera.returnAddress);
  aMap.TakeWord("class", kClassWords, camera.deviceClass);
  aMap.TakeVersion("protocolVersion", kMostVersion, camera.gevVersion);
  auto control = static_cast<std::int32_t>(krsystem::AccessType::Open);
  aMap.TakeWord("control", kControlWords, control);
  if (control == kSilentControl)
    camera.faults.silentRegisters.push_back({cameraregister::kControlPrivilege, 0});
  else
    camera.foreignControl = static_cast<krsystem::AccessType>(control);
  return camera;
}

LabTolvanDevice ReadTolvanDevice(LabMap& aMap) {
  LabTolvanDevice device;
  ReadIdentity(aMap, kOtherLimits, device);
  ReadNetwork(aMap, device);
  aMap.TakeNumber("deviceID", device.deviceID);
  aMap.TakeNumber("moduleID", device.moduleID);
  aMap.TakeNumber("subID", device.subID);
  aMap.TakeNumber("vendorID", device.vendorID);
  std::uint32_t version = std::uint32_t{device.softwareMajor} << 16 | device.softwareMinor;
  aMap.TakeVersion("softwareVersion", kMostSoftwareVersion, version);
  device.softwareMajor = static_cast<std::uint8_t>(version >> 16);
  device.softwareMinor = static_cast<std::uint8_t>(version);
  return device;
}

LabU3VCamera ReadU3VCamera(LabMap& aMap) {
  LabU3VCamera camera;
  ReadIdentity(aMap, kOtherLimits, camera);
  ReadSensor(aMap, camera);
  ReadFaults(aMap, camera.faults);
  ReadFrameGrabber(aMap, camera.frameGrabber);
  ReadSerialPorts(aMap, camera);
  aMap.FindNeeded("guid");
  aMap.TakeText("guid", kMostTextBytes, camera.deviceGUID);
  aMap.TakeText("family", kMostTextBytes, camera.familyName);
  aMap.TakeVersion("genCPVersion", kMostVersion, camera.genCPVersion);
  aMap.TakeVersion("u3vVersion", kMostVersion, camera.u3vVersion);
  aMap.TakeWord("speed", kSpeedWords, camera.speed);
  if (aMap.Find("supportedSpeeds"))
    camera.supportedSpeeds.clear();
  for (const YamlNode& item : aMap.TakeItems("supportedSpeeds", kSpeedWords.size())) {
    if (const LabWord* const word = aMap.ReadWord(item, "supportedSpeeds", kSpeedWords))
      camera.supportedSpeeds.push_back(word->value);
  }
  aMap.TakeNumber("maxPower", camera.maxPowerMilliampere, 0, 100000);
  aMap.TakeText("power", 2 * kMostTextBytes, camera.powerMessage);
  aMap.TakeFlag("capabilities", camera.hasInitializedCapabilities);
  aMap.TakeFlag("configured", camera.isConfigurationValid);
  aMap.TakeFlag("driver", camera.isDriverInstalled);
  return camera;
}

LabPlainUSBDevice ReadUSBDevice(LabMap& aMap) {
  LabPlainUSBDevice device;
  ReadIdentity(aMap, kOtherLimits, device);
  aMap.FindNeeded("id");
  aMap.TakeText("id", kMostTextBytes, device.id);
  aMap.TakeWord("status", kStatusWords, device.status);
  return device;
}

AnyLabDevice ReadDevice(LabMap& aMap, LabDeviceKind aKind) {
  switch (aKind) {
  case LabDeviceKind::GigEVision:
    return ReadGEVCamera(aMap);
  case LabDeviceKind::Tolvan:
    return ReadTolvanDevice(aMap);
  case LabDeviceKind::Usb3Vision:
    return ReadU3VCamera(aMap);
  default:
    return ReadUSBDevice(aMap);
  }
}

// The moments of a schedule have to keep so far from each other.
void CheckTimes(LabMap& aMap, const TextPlace& aPlace, const std::string& aKeys, const LabSchedule& aSchedule) {
  const std::uint64_t first = std::min(aSchedule.beginNs, aSchedule.endNs);
  const std::uint64_t last = std::max(aSchedule.beginNs, aSchedule.endNs);
  if (last - first < LabSchedule::kLeastStepNs)
    aMap.Report(aPlace, aKeys + " have to differ, by " + kLeastStepText + " at least");
  const std::uint64_t latest = last == LabSchedule::kNever ? first : last;
  if (aSchedule.periodNs > 0 && latest > aSchedule.periodNs)
    aMap.Report(aPlace, aKeys + " have to be within the period that \"every\" says");
}

// Two times and the period in which they come again; false where neither time is there.
bool ReadTimes(LabMap& aMap, std::string_view aBeginKey, std::string_view aEndKey, LabSchedule& aSchedule) {
  const YamlNode* const begin = aMap.Find(aBeginKey);
  const YamlNode* const end = aMap.Find(aEndKey);
  if (!begin && !end)
    return false;
  aMap.TakeSeconds("every", aSchedule.periodNs);
  aSchedule.beginNs = 0;
  aMap.TakeSeconds(aBeginKey, aSchedule.beginNs);
  aMap.TakeSeconds(aEndKey, aSchedule.endNs);
  CheckTimes(aMap, (begin ? begin : end)->place,
             "\"" + std::string(aBeginKey) + "\" and \"" + std::string(aEndKey) + "\"", aSchedule);
  return true;
}

// A period needs something that comes again, and time for it.
void CheckPeriod(LabMap& aMap, bool aHasTimes, const std::string& aNeededKeys) {
  const YamlNode* const every = aMap.Find("every");
  if (!every)
    return;
  std::uint64_t periodNs = 0;
  aMap.TakeSeconds("every", periodNs);
  if (periodNs < LabSchedule::kLeastStepNs)
    aMap.Report(every->place, "\"every\" has to be " + std::string(kLeastStepText) + " at least");
  if (!aHasTimes)
    aMap.Report(every->place, "\"every\" alone says nothing; it goes with " + aNeededKeys);
}

} // namespace

void ReadSchedule(LabMap& aMap, LabSchedule& aSchedule) {
  const bool isThere = ReadTimes(aMap, "appears", "vanishes", aSchedule);
  CheckPeriod(aMap, isThere, "\"appears\" or \"vanishes\"");
}

void ReadSchedules(LabMap& aMap, LabSchedule& aSchedule, LabSchedule& aDownSchedule) {
  const bool isThere = ReadTimes(aMap, "appears", "vanishes", aSchedule);
  const bool isDownThere = ReadTimes(aMap, "goesDown", "comesUp", aDownSchedule);
  CheckPeriod(aMap, isThere || isDownThere, "\"appears\", \"vanishes\", \"goesDown\" or \"comesUp\"");
}

void ReadLabDevices(const YamlNode& aNode, LabDeviceList aList, LabProblem& aProblem,
                    std::vector<ReadLabDevice>& aDevices) {
  LabMap map(aNode, "a device", aProblem);
  const std::span<const LabWord> kinds =
      aList == LabDeviceList::OfAdapter ? std::span<const LabWord>(kNetworkKinds) : std::span<const LabWord>(kUsbKinds);
  const YamlNode* const kindNode = map.FindNeeded("kind");
  const LabWord* const kind = kindNode ? map.ReadWord(*kindNode, "kind", kinds) : nullptr;
  if (!kind)
    return;
  ReadLabDevice read{.device = ReadDevice(map, static_cast<LabDeviceKind>(kind->value)), .place = aNode.place};
  map.TakeFlag("duplicate", read.mayRepeat);
  std::uint32_t count = 1;
  map.TakeNumber("count", count, 1, kMostLabDevices);
  map.Finish();
  if (!aProblem.IsThere())
    AddCounted(read, count, aProblem, aDevices);
}

} // namespace krtransport
