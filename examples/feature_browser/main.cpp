// Shows the feature browser on the first camera, with those features alone whose name contains a word that is given.
// With --simulate the cameras of the built-in simulated lab count as well.

#include "krdevice/krdevice.h"
#include "krgui/krgenbrowserwnd.h"
#include "krsystem/krsystem.h"
#include "krtransport/krtransport.h"

#include <QApplication>

#include <iostream>
#include <set>
#include <string>
#include <string_view>

namespace {

// A browser for some of the features; the library's own rules still hold.
class FilteredBrowser : public KrGenBrowserWnd {
public:
  explicit FilteredBrowser(std::string aWord) : mWord(std::move(aWord)) {}
  // What the window still does on its way out must find this object whole.
  ~FilteredBrowser() override { DeleteWnd(); }

  // Asked once for each feature whenever the window is filled, on the user-interface thread: it asks the camera
  // nothing.
  bool IsParameterDisplayed(KrGenParameter* aParameter) override {
    return aParameter->GetName().ToUtf8().find(mWord) != std::string::npos;
  }

private:
  const std::string mWord;
};

} // namespace

int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: feature_browser [--simulate] [WORD]\n";
    return 0;
  }
  QApplication application(argc, argv);
  std::string word;
  for (int i = 1; i < argc; ++i)
    if (std::string_view(argv[i]) != "--simulate")
      word = argv[i];
  KrSystem system;
  KrResult result = KrInstallTransports({.simulation = options.contains("--simulate")});
  if (result.IsOK())
    result = system.Find();
  const KrDeviceInfo* const info = result.IsOK() ? system.GetDeviceInfo(0) : nullptr;
  std::unique_ptr<KrDevice> device; // Ends after the window that shows its features.
  if (info)
    result = KrDevice::Open(*info, KrDeviceAccess::Control, device);
  if (!device) {
    std::cerr << "No camera can be opened. Try --simulate. " << result.GetDescription().CStr() << '\n';
    return 1;
  }

  FilteredBrowser browser(word);
  browser.SetTitle(device->GetDisplayID());
  browser.SetGenParameterArray(device->GetParameters());
  result = browser.SetVisibility(KrGenVisibility::Expert);
  if (result.IsOK())
    result = browser.ShowModal(0);
  if (!result.IsOK() && result != KrResult::Code::Cancelled)
    std::cerr << result.GetDescription().CStr() << '\n';
  std::cout << (browser.HasChanged() ? "Features were written.\n" : "Nothing was written.\n");
  return 0;
}
