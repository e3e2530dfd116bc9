// Lets the user pick a camera and opens it. With --simulate the devices of the built-in simulated lab are offered as
// well; what else follows is a vendor's name, whose cameras alone are offered.

#include "krdevice/krdevice.h"
#include "krgui/krdevicefinderwnd.h"
#include "krtransport/krtransport.h"

#include <QApplication>

#include <iostream>
#include <set>
#include <string_view>

namespace {

// A finder that offers the cameras of one vendor, or of all where none is named.
class VendorFinder : public KrDeviceFinderWnd {
public:
  explicit VendorFinder(const KrString& aVendor) : mVendor(aVendor) {
    SetTitle("Pick a camera");
    // Devices of the older protocol cannot be opened by this program: they need not be listed.
    SetTolvanProtocolEnabled(false, false);
  }
  // What the finder still does on its way out must find this object whole.
  ~VendorFinder() override { DeleteWnd(); }

  // Comes on the discovery thread: it looks at what does not change, waits for nobody and touches no window.
  bool OnFound(const KrDeviceInfo* aDevice) override {
    return mVendor.IsEmpty() || aDevice->GetVendorName() == mVendor;
  }

private:
  const KrString mVendor;
};

} // namespace

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: pick_camera [--simulate] [VENDOR]\n";
    return 0;
  }
  QApplication application(argc, argv);
  KrString vendor;
  for (int i = 1; i < argc; ++i)
    if (std::string_view(argv[i]) != "--simulate")
      vendor = argv[i];
  KrResult result = KrInstallTransports({.simulation = options.contains("--simulate")});
  if (!result.IsOK()) {
    std::cerr << result.GetDescription().CStr() << '\n';
    return 1;
  }

  VendorFinder finder(vendor);
  result = finder.ShowModal(0);
  const KrDeviceInfo* info = finder.GetSelected();
  if (!result.IsOK() || !info) {
    std::cerr << "No camera was picked. " << result.GetDescription().CStr() << '\n';
    return 1;
  }

  // The finder owns what it found: it lives as long as the device's information is used.
  std::unique_ptr<KrDevice> device;
  result = KrDevice::Open(*info, KrDeviceAccess::Control, device);
  if (!result.IsOK()) {
    std::cerr << info->GetDisplayID().CStr() << ": " << result.GetDescription().CStr() << '\n';
    return 1;
  }
  std::cout << "Opened " << device->GetDisplayID().CStr() << '\n';
  return 0;
}
