#include "simulation/serial/serialports.h"

#include "simulation/clcamera/clcameraend.h"
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
  case LabLineEnd::Camera:
    return std::make_unique<CLCameraEnd>(aPort.camera, aPort.isPaced);
  case LabLineEnd::Tty:
    return std::make_unique<TtyLineEnd>(aLineName.ToUtf8(), aPort.path.ToUtf8());
  default:
    return std::make_unique<OpenLineEnd>();
  }
}

void OrderFaults(const LabLineFaults& aFaults, KrSerialDirection aDirection, SerialLine& aLine) {
  const auto order = [&](const LabByteOrder& aOrder, ByteOrder LineFaults::*aFault) {
    aLine.OrderEvery(aDirection, aFault, aOrder.every);
    aLine.OrderNext(aDirection, aFault, aOrder.next);
  };
  order(aFaults.lost, &LineFaults::lost);
  order(aFaults.repeated, &LineFaults::repeated);
  order(aFaults.corrupted, &LineFaults::corrupted);
}

} // namespace

SerialPorts::SerialPorts(const LabCamera& aCamera, const KrString& aCameraName,
                         const std::shared_ptr<ICameraClock>& aClock) {
  for (const LabSerialPort& port : aCamera.serialPorts) {
    const KrString name = aCameraName + ": " + kSerialPortNames[port.number];
    const auto line = std::make_shared<SerialLine>(
        SerialLineTraits{.name = name, .isPaced = port.isPaced, .hasFlowControl = port.hasFlowControl},
        SerialSettings{.rate = port.rate, .isPowered = aCamera.frameGrabber.pocl != LabPocl::Off},
        MakeFarEnd(port, name, aCamera.serialNumber), aClock);
    OrderFaults(port.received, KrSerialDirection::Received, *line);
    OrderFaults(port.sent, KrSerialDirection::Sent, *line);
    line->Silence(port.isSilent);
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

void SerialPorts::EndFaults() {
  for (const auto& [number, line] : mLines)
    line->EndFaults();
}

} // namespace krtransport
