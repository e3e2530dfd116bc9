#include "simulation/serial/serialports.h"

#include "simulation/serial/echolineend.h"
#include "simulation/serial/openlineend.h"
#include "simulation/serial/talkinginstrument.h"
#include "simulation/serial/ttylineend.h"

namespace krtransport {

namespace {

std::unique_ptr<ILineEnd> MakeFarEnd(const LabSerialPort& aPort, const KrString& aLineName,
                                     const KrString& aSerialNumber) {
  switch (aPort.behind) {
  case LabLineEnd::Echo:
    return std::make_unique<EchoLineEnd>();
  case LabLineEnd::Instrument:
    return std::make_unique<TalkingInstrument>(aSerialNumber.ToUtf8() + "-" + kSerialPortNames[aPort.number]);
  case LabLineEnd::Tty:
    return std::make_unique<TtyLineEnd>(aLineName.ToUtf8(), aPort.path.ToUtf8());
  default:
    return std::make_unique<OpenLineEnd>();
  }
}

void OrderLoss(const LabLineLoss& aLoss, KrSerialDirection aDirection, SerialLine& aLine) {
  aLine.LoseEvery(aDirection, aLoss.every);
  aLine.LoseNext(aDirection, aLoss.next);
}

} // namespace

SerialPorts::SerialPorts(const LabCamera& aCamera, const KrString& aCameraName,
                         const std::shared_ptr<ICameraClock>& aClock) {
  for (const LabSerialPort& port : aCamera.serialPorts) {
    const KrString name = aCameraName + ": " + kSerialPortNames[port.number];
    const auto line = std::make_shared<SerialLine>(
        SerialLineTraits{.name = name, .isPaced = port.isPaced, .hasFlowControl = port.hasFlowControl},
        SerialSettings{.rate = port.rate}, MakeFarEnd(port, name, aCamera.serialNumber), aClock);
    OrderLoss(port.lostReceived, KrSerialDirection::Received, *line);
    OrderLoss(port.lostSent, KrSerialDirection::Sent, *line);
    mLines[port.number] = line;
  }
}

std::shared_ptr<SerialLine> SerialPorts::Find(std::uint32_t aNumber) const {
  const auto found = mLines.find(aNumber);
  return found == mLines.end() ? nullptr : found->second;
}

void SerialPorts::Update(const std::function<SerialSettings(std::uint32_t)>& aGetSettings) {
  for (const auto& [number, line] : mLines)
    line->SetSettings(aGetSettings(number));
}

void SerialPorts::End(const KrResult& aReason) {
  for (const auto& [number, line] : mLines)
    line->End(aReason);
}

void SerialPorts::EndLoss() {
  for (const auto& [number, line] : mLines)
    line->EndLoss();
}

} // namespace krtransport
