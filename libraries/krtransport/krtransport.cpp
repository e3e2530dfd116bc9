#include "krtransport/krtransport.h"

#include "gigevision/gigevisiontransport.h"
#include "krsystem/transportregistry.h"
#include "simulation/simulationtransport.h"
#include "usb3vision/usb3visiontransport.h"

namespace {

// A backend lives from its first use to the end of the process.
std::shared_ptr<krsystem::ITransport> GetGigEVision() {
  static const auto transport = std::make_shared<krtransport::GigEVisionTransport>();
  return transport;
}

std::shared_ptr<krsystem::ITransport> GetUsb3Vision() {
  static const auto transport = std::make_shared<krtransport::Usb3VisionTransport>();
  return transport;
}

std::shared_ptr<krsystem::ITransport> GetSimulation() {
  static const auto transport = std::make_shared<krtransport::SimulationTransport>(krtransport::GetBuiltInLab());
  return transport;
}

} // namespace

KrResult KrInstallTransports(const KrTransportSelection& aSelection) {
  if (aSelection.gigEVision)
    krsystem::RegisterTransport(GetGigEVision());
  if (aSelection.usb3Vision)
    krsystem::RegisterTransport(GetUsb3Vision());
  if (aSelection.simulation)
    krsystem::RegisterTransport(GetSimulation());
  return {};
}
