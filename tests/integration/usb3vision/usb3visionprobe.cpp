// Lists what the USB3 Vision backend finds on this host, one field on a line, for a test that runs it on a host that is
// played to it.

#include "usb3vision/usb3visiontransport.h"

#include <iostream>

namespace {

void Print(const krsystem::U3VFields& aFields) {
  std::cout << "id=" << aFields.uniqueID.CStr() << "\nguid=" << aFields.deviceGUID.CStr()
            << "\nvendor=" << aFields.vendorName.CStr() << "\nmodel=" << aFields.modelName.CStr()
            << "\nfamily=" << aFields.familyName.CStr() << "\nversion=" << aFields.version.CStr()
            << "\ninfo=" << aFields.manufacturerInfo.CStr() << "\nserial=" << aFields.u3vSerialNumber.CStr()
            << "\nname=" << aFields.userDefinedName.CStr() << "\ndriver=" << aFields.driverInstalled << '\n';
}

} // namespace

int main() {
  krtransport::Usb3VisionTransport transport;
  std::vector<krsystem::InterfaceFields> interfaces;
  if (!transport.ListInterfaces(interfaces).IsOK())
    return 1;
  std::cout << "interfaces=" << interfaces.size() << '\n';
  krsystem::DiscoveryRequest request;
  request.timeoutMs = 10000;
  const KrResult result =
      transport.Discover(interfaces, request, [](std::size_t, const krsystem::AnyDeviceFields& aDevice) {
        if (const auto* fields = std::get_if<krsystem::U3VFields>(&aDevice))
          Print(*fields);
      });
  std::cerr << result.GetDescription().CStr();
  return result.IsOK() ? 0 : 1;
}
