// Any text may be given to the reader of lab files; what it takes for a lab can be simulated.

#include "simulation/labfile/labreader.h"
#include "simulation/simulationtransport.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

// A lab that was taken lists its interfaces, and its devices answer.
void Ask(const krtransport::Lab& aLab) {
  std::size_t devices = 0;
  for (const krtransport::LabAdapter& adapter : aLab.adapters)
    devices += adapter.devices.size();
  if (devices > 16)
    return; // More of them show nothing new.
  krtransport::SimulationTransport transport(aLab);
  std::vector<krsystem::InterfaceFields> interfaces;
  if (!transport.ListInterfaces(interfaces).IsOK() ||
      !transport.Discover(interfaces, {}, [](std::size_t, const krsystem::AnyDeviceFields&) {}).IsOK())
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krtransport::Lab lab;
  const KrResult result =
      krtransport::ParseLab(std::string_view(reinterpret_cast<const char*>(aData), aSize), "lab.yaml", lab);
  if (result.IsOK())
    Ask(lab);
  else if (result != KrResult::Code::BadData || result.GetDescription().IsEmpty())
    std::abort(); // Every refusal says why.
  return 0;
}
