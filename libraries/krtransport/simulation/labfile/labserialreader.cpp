#include "simulation/labfile/labserialreader.h"

#include "simulation/labfile/labclcamerareader.h"
#include "simulation/labfile/labwords.h"

#include <algorithm>
#include <string>

namespace krtransport {

namespace {

constexpr std::uint64_t kLeastRate = 50;
constexpr std::uint64_t kMostRate = 12000000;
constexpr std::size_t kMostRates = 32;
constexpr std::size_t kMostPathBytes = 255;
constexpr std::uint64_t kLeastClock = 1000;
constexpr std::uint64_t kMostClock = 1000000000;

void ReadOrder(LabMap& aMap, std::string_view aKey, LabByteOrder& aOrder) {
  const YamlNode* const node = aMap.Find(aKey);
  if (!node)
    return;
  LabMap map(*node, aKey.starts_with("lost") ? "lost bytes" : "disturbed bytes", aMap.GetProblem());
  map.TakeNumber("every", aOrder.every, 1);
  map.TakeNumber("next", aOrder.next, 1);
  map.Finish();
}

void ReadRates(LabMap& aMap, LabSerialPort& aPort) {
  if (!ReadRateList(aMap, aPort.rates))
    return; // Which of the others is chosen does not count then.
  aPort.rate = aPort.rates.front();
  aMap.TakeNumber("rate", aPort.rate);
  if (std::ranges::find(aPort.rates, aPort.rate) == aPort.rates.end())
    aMap.Report(aMap.Find("rate")->place, "\"rate\" has to be one of \"rates\"");
}

void ReadPath(LabMap& aMap, LabSerialPort& aPort) {
  const YamlNode* const path = aMap.Find("path");
  aMap.TakeText("path", kMostPathBytes, aPort.path);
  if (aPort.behind != LabLineEnd::Tty) {
    if (path)
      aMap.Report(path->place, "\"path\" goes with \"behind: tty\"");
    return;
  }
  if (!path)
    aMap.Report(aMap.GetPlace(), "a serial port with a tty behind it needs the key \"path\"");
  else if (!aPort.path.ToUtf8().starts_with('/'))
    aMap.Report(path->place, "\"path\" has to be a whole path as in /dev/ttyUSB0");
}

void ReadFaults(LabMap& aMap, LabSerialPort& aPort) {
  ReadOrder(aMap, "lostReceived", aPort.received.lost);
  ReadOrder(aMap, "lostSent", aPort.sent.lost);
  ReadOrder(aMap, "repeatedReceived", aPort.received.repeated);
  ReadOrder(aMap, "repeatedSent", aPort.sent.repeated);
  ReadOrder(aMap, "corruptedReceived", aPort.received.corrupted);
  ReadOrder(aMap, "corruptedSent", aPort.sent.corrupted);
}

LabSerialPort ReadPort(const YamlNode& aNode, const LabFrameGrabber& aGrabber, LabProblem& aProblem) {
  LabMap map(aNode, "a serial port", aProblem);
  LabSerialPort port;
  map.FindNeeded("port");
  map.TakeWord("port", kSerialPortWords, port.number);
  ReadRates(map, port);
  auto behind = static_cast<std::int32_t>(port.behind);
  map.TakeWord("behind", kLineEndWords, behind);
  port.behind = static_cast<LabLineEnd>(behind);
  ReadPath(map, port);
  ReadCLCamera(map, aGrabber, port);
  map.TakeFlag("paced", port.isPaced);
  map.TakeFlag("flowControl", port.hasFlowControl);
  map.TakeFlag("silent", port.isSilent);
  ReadFaults(map, port);
  map.Finish();
  return port;
}

// A clock that bulk ports divide has to give each of their rates.
void CheckClock(LabMap& aMap, const TextPlace& aPlace, const LabCamera& aCamera) {
  bool hasBulkPort = false;
  for (const LabSerialPort& port : aCamera.serialPorts) {
    if (port.number < kFirstBulkPort)
      continue;
    hasBulkPort = true;
    for (const std::uint32_t rate : port.rates) {
      if (aCamera.bulkClock % rate != 0)
        aMap.Report(aPlace, "\"bulkClock\" has to be a multiple of every rate of the bulk ports, and is not of " +
                                std::to_string(rate));
    }
  }
  if (!hasBulkPort)
    aMap.Report(aPlace, "\"bulkClock\" says nothing of a camera without bulk ports");
}

} // namespace

bool ReadRateList(LabMap& aMap, std::vector<std::uint32_t>& aRates) {
  const YamlNode* const list = aMap.Find("rates");
  if (list && list->kind == YamlKind::Sequence && list->items.empty())
    aMap.Report(list->place, "\"rates\" has to have a rate");
  std::vector<std::uint32_t> rates;
  for (const YamlNode& item : aMap.TakeItems("rates", kMostRates)) {
    std::uint64_t rate = 0;
    if (!aMap.ReadNumber(item, "rates", kLeastRate, kMostRate, rate))
      return false;
    if (std::ranges::find(rates, rate) != rates.end())
      aMap.Report(item.place, "the rate " + std::to_string(rate) + " is there twice");
    rates.push_back(static_cast<std::uint32_t>(rate));
  }
  if (!rates.empty())
    aRates = rates;
  return true;
}

void ReadSerialPorts(LabMap& aMap, LabCamera& aCamera) {
  for (const YamlNode& item : aMap.TakeItems("serialPorts", kSerialPortNames.size())) {
    const LabSerialPort port = ReadPort(item, aCamera.frameGrabber, aMap.GetProblem());
    if (std::ranges::find(aCamera.serialPorts, port.number, &LabSerialPort::number) != aCamera.serialPorts.end())
      aMap.Report(item.place, std::string("the port ") + kSerialPortNames[port.number] + " is there twice");
    aCamera.serialPorts.push_back(port);
  }
  std::ranges::sort(aCamera.serialPorts, {}, &LabSerialPort::number);
  aMap.TakeNumber("bulkClock", aCamera.bulkClock, kLeastClock, kMostClock);
  if (const YamlNode* const clock = aMap.Find("bulkClock"))
    CheckClock(aMap, clock->place, aCamera);
}

} // namespace krtransport
