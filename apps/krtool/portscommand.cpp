#include "portscommand.h"

#include "camerasession.h"
#include "krserial/krserialfeatures.h"
#include "plaintext.h"

#include <cstddef>
#include <string>
#include <vector>

namespace krtool {

namespace {

constexpr const char* kHeadings = "port\toffered\tbehind it\tmissing\n";

std::string Join(const KrStringList& aTexts) {
  std::string joined;
  for (std::size_t i = 0; i < aTexts.GetCount(); ++i)
    joined += (i == 0 ? "" : ", ") + aTexts[i].ToUtf8();
  return joined;
}

void WriteOrigin(const KrSerialPortOrigin& aOrigin, std::ostream& aOut) {
  aOut << GetPortName(aOrigin.port).CStr() << '\t' << (aOrigin.missing.GetCount() == 0 ? "yes" : "no") << '\t'
       << (aOrigin.map.IsEmpty() ? "transport" : "map " + krapps::MakeField(aOrigin.map)) << '\t'
       << krapps::MakeField(Join(aOrigin.missing)) << '\n';
}

} // namespace

int RunPorts(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  if (aCommandLine.timeoutMs)
    aSystem.SetDetectionTimeout(*aCommandLine.timeoutMs);
  std::unique_ptr<KrDevice> device;
  if (KrResult opened = OpenNamedDevice(aSystem, aCommandLine.device, KrDeviceAccess::Monitor, device); !opened.IsOK())
    return Fail(aErrors, opened);
  std::vector<KrSerialPortOrigin> origins;
  if (KrResult explained = KrSerialFeatures::Explain(*device, origins); !explained.IsOK())
    return Fail(
        aErrors,
        Explain("looking for the serial ports of " + krapps::MakeCell(device->GetDisplayID()) + " failed", explained));
  aOut << kHeadings;
  for (const KrSerialPortOrigin& origin : origins)
    WriteOrigin(origin, aOut);
  return 0;
}

} // namespace krtool
