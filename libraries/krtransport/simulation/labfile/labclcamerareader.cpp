#include "simulation/labfile/labclcamerareader.h"

#include "simulation/cameraregisters.h"
#include "simulation/clcamera/clcameradescription.h"
#include "simulation/clcamera/gencpbootstrap.h"
#include "simulation/clcamera/gencpframes.h"
#include "simulation/labfile/labsensorreader.h"
#include "simulation/labfile/labserialreader.h"
#include "simulation/labfile/labwords.h"

#include <algorithm>
#include <string>

namespace krtransport {

namespace {

constexpr std::size_t kMostTextBytes = 64;
constexpr std::uint32_t kNeededRate = 9600;
constexpr std::uint64_t kMostPendingMs = 60000;
constexpr std::uint64_t kLeastPacketBytes = 64;
constexpr std::uint64_t kMostConfirmationMs = 60000;

template <typename Choice>
void TakeChoice(LabMap& aMap, std::string_view aKey, std::span<const LabWord> aWords, Choice& aChoice) {
  auto value = static_cast<std::int32_t>(aChoice);
  aMap.TakeWord(aKey, aWords, value);
  aChoice = static_cast<Choice>(value);
}

void ReadTexts(LabMap& aMap, LabCLCamera& aCamera) {
  aMap.TakeText("vendor", kMostTextBytes, aCamera.vendorName);
  aMap.TakeText("model", kMostTextBytes, aCamera.modelName);
  aMap.TakeText("family", kMostTextBytes, aCamera.familyName);
  aMap.TakeText("version", kMostTextBytes, aCamera.version);
  aMap.TakeText("info", kMostTextBytes, aCamera.manufacturerInfo);
  aMap.TakeText("serial", kMostTextBytes, aCamera.serialNumber);
  aMap.TakeText("name", kMostTextBytes, aCamera.userDefinedName);
}

void ReadDescriptions(LabMap& aMap, LabCLCamera& aCamera) {
  if (const YamlNode* const node = aMap.Find("descriptions")) {
    aCamera.descriptions.clear();
    if (node->kind == YamlKind::Sequence && node->items.empty())
      aMap.Report(node->place, "\"descriptions\" has to have one");
  }
  for (const YamlNode& item : aMap.TakeItems("descriptions", kMostDescriptions)) {
    if (const LabWord* const word = aMap.ReadWord(item, "descriptions", kDescriptionWords))
      aCamera.descriptions.push_back(static_cast<DescriptionFormat>(word->value));
  }
}

void ReadCameraRates(LabMap& aMap, LabCLCamera& aCamera) {
  const YamlNode* const node = aMap.Find("rates");
  ReadRateList(aMap, aCamera.rates);
  if (!node)
    return;
  if (std::ranges::find(aCamera.rates, kNeededRate) == aCamera.rates.end())
    aMap.Report(node->place, "a camera's \"rates\" have to have 9600, at which it begins");
  const auto isKnown = [](std::uint32_t aRate) {
    return std::ranges::find(ListGenCPRates(), aRate, &GenCPRate::rate) != ListGenCPRates().end();
  };
  if (aCamera.protocol == CLCameraProtocol::GenCP && !std::ranges::all_of(aCamera.rates, isKnown))
    aMap.Report(node->place, "a GenCP camera's \"rates\" have to be of 9600, 19200, 38400, 57600, 115200, 230400, "
                             "460800, 921600");
}

// Keys that say nothing of what the camera speaks.
void CheckProtocolKeys(LabMap& aMap, const LabCLCamera& aCamera) {
  for (const std::string_view key : {"packetBytes", "confirmation"}) {
    const YamlNode* const node = aMap.Find(key);
    if (node && aCamera.protocol != CLCameraProtocol::GenCP)
      aMap.Report(node->place, "\"" + std::string(key) + "\" goes with \"protocol: GenCP\"");
  }
  if (const YamlNode* const node = aMap.Find("checkedAnswers"); node && aCamera.protocol != CLCameraProtocol::Text)
    aMap.Report(node->place, "\"checkedAnswers\" goes with \"protocol: text\"");
  const YamlNode* const descriptions = aMap.Find("descriptions");
  if (descriptions && aCamera.protocol == CLCameraProtocol::Text)
    aMap.Report(descriptions->place, "\"descriptions\" says nothing of a camera that speaks text");
}

void CheckPower(LabMap& aMap, const LabFrameGrabber& aGrabber, const LabCLCamera& aCamera) {
  const YamlNode* const pocl = aMap.Find("pocl");
  if (pocl && aCamera.isPoweredByCable && aGrabber.pocl == LabPocl::None)
    aMap.Report(pocl->place, "a camera with \"pocl\" needs a \"frameGrabber\" whose \"pocl\" is on or off");
}

} // namespace

void ReadFrameGrabber(LabMap& aMap, LabFrameGrabber& aGrabber) {
  const YamlNode* const node = aMap.Find("frameGrabber");
  if (!node)
    return;
  LabMap map(*node, "a frame grabber", aMap.GetProblem());
  aGrabber.sources = 1;
  map.TakeNumber("sources", aGrabber.sources, 1, cameraregister::kMostSources);
  TakeChoice(map, "pocl", kPoclWords, aGrabber.pocl);
  map.Finish();
}

void ReadCLCamera(LabMap& aMap, const LabFrameGrabber& aGrabber, LabSerialPort& aPort) {
  const YamlNode* const node = aMap.Find("camera");
  if (aPort.behind != LabLineEnd::Camera) {
    if (node)
      aMap.Report(node->place, "\"camera\" goes with \"behind: camera\"");
    return;
  }
  if (!node) {
    aMap.Report(aMap.GetPlace(), "a serial port with a camera behind it needs the key \"camera\"");
    return;
  }
  LabMap map(*node, "a Camera Link camera", aMap.GetProblem());
  LabCLCamera& camera = aPort.camera;
  map.FindNeeded("protocol");
  TakeChoice(map, "protocol", kProtocolWords, camera.protocol);
  ReadTexts(map, camera);
  ReadSensor(map, camera);
  ReadDescriptions(map, camera);
  ReadCameraRates(map, camera);
  map.TakeNumber("pending", camera.pendingMs, 0, kMostPendingMs);
  map.TakeNumber("packetBytes", camera.packetBytes, kLeastPacketBytes, kGenCPPacketBytes);
  map.TakeNumber("confirmation", camera.confirmationMs, 1, kMostConfirmationMs);
  map.TakeFlag("checkedAnswers", camera.hasCheckedAnswers);
  map.TakeFlag("pocl", camera.isPoweredByCable);
  CheckProtocolKeys(map, camera);
  CheckPower(map, aGrabber, camera);
  map.Finish();
}

} // namespace krtransport
