#include "krtransport/krtransport.h"

#include "aravis/aravisversion.h"
#include "gigevision/gigevisiontransport.h"
#include "krsystem/transportregistry.h"
#include "simulation/labfile/labreader.h"
#include "simulation/simulationtransport.h"
#include "usb3vision/usb3visiontransport.h"
#include "usb3vision/usbversion.h"

#include <memory>
#include <mutex>

namespace {

// A backend lives from its first use on, and is never destroyed: threads may still use it while the process ends.
std::shared_ptr<krsystem::ITransport> GetGigEVision() {
  static const auto& transport =
      *new std::shared_ptr<krsystem::ITransport>(std::make_shared<krtransport::GigEVisionTransport>());
  return transport;
}

std::shared_ptr<krsystem::ITransport> GetUsb3Vision() {
  static const auto& transport =
      *new std::shared_ptr<krsystem::ITransport>(std::make_shared<krtransport::Usb3VisionTransport>());
  return transport;
}

// The one simulated lab of the process, never destroyed, as the backends.
class Simulation {
public:
  /// Makes the lab of a file, or the built-in one, unless there is one already; a file then has to be the same.
  KrResult Make(const KrString& aLabFile) {
    const std::lock_guard lock(mMutex);
    if (mTransport && (aLabFile.IsEmpty() || aLabFile == mLabFile))
      return {};
    if (mTransport)
      return {KrResult::Code::WrongState,
              "Installing the lab " + aLabFile + ": a simulated lab is installed already, " +
                  (mLabFile.IsEmpty() ? KrString("the built-in one") : mLabFile) + "; name the lab in the first call."};
    krtransport::Lab lab;
    if (aLabFile.IsEmpty())
      lab = krtransport::GetBuiltInLab();
    else if (KrResult read = krtransport::ReadLab(aLabFile, lab); !read.IsOK())
      return read;
    mTransport = std::make_shared<krtransport::SimulationTransport>(lab);
    mLabFile = aLabFile;
    return {};
  }
  std::shared_ptr<krsystem::ITransport> Get() {
    const std::lock_guard lock(mMutex);
    return mTransport;
  }

private:
  std::mutex mMutex; // Guards the members from here on.
  std::shared_ptr<krsystem::ITransport> mTransport;
  KrString mLabFile;
};

Simulation& GetSimulation() {
  static Simulation& simulation = *new Simulation;
  return simulation;
}

} // namespace

KrResult KrInstallTransports(const KrTransportSelection& aSelection) {
  if (aSelection.simulation) {
    KrResult made = GetSimulation().Make(aSelection.labFile);
    if (!made.IsOK())
      return made;
  }
  if (aSelection.gigEVision)
    krsystem::RegisterTransport(GetGigEVision());
  if (aSelection.usb3Vision)
    krsystem::RegisterTransport(GetUsb3Vision());
  if (aSelection.simulation)
    krsystem::RegisterTransport(GetSimulation().Get());
  return {};
}

KrStringList KrGetTransportLibraries() {
  KrStringList libraries;
  libraries.Add(krtransport::GetAravisVersion());
  libraries.Add(krtransport::GetUsbVersion());
  return libraries;
}
