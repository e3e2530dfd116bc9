// The program of docs/guide.md: the user picks a camera, sees it live with its features beside the picture, and finds
// his settings again at the next start. With --simulate the cameras of the built-in simulated lab are offered, too.

#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "krgui/krdevicefinderwnd.h"
#include "krgui/krdisplaywnd.h"
#include "krgui/krgenbrowserwnd.h"
#include "krtransport/krtransport.h"

#include <QApplication>
#include <QFile>
#include <QSplitter>
#include <QUrl>

#include <iostream>
#include <set>
#include <string>
#include <string_view>
#include <thread>

namespace {
bool Check(const KrResult& aResult) {
  if (!aResult.IsOK())
    std::cerr << aResult.GetDescription().CStr() << '\n';
  return aResult.IsOK();
}

// One for each camera; its ID may have characters that the name of a file cannot have.
std::string GetSettingsFile(const KrDevice& aDevice) {
  return "camera-" + QUrl::toPercentEncoding(aDevice.GetUniqueID().CStr()).toStdString() + ".txt";
}

// Gives the camera the settings of the last time, if there was one; what it refuses is told, and the rest is set.
bool LoadSettings(KrGenParameterArray& aArray, const std::string& aFile) {
  KrGenSettings settings;
  KrStringList problems;
  return !QFile::exists(aFile.c_str()) ||
         (Check(settings.Load(aFile)) && Check(aArray.RestoreSettings(settings, problems)));
}

bool SaveSettings(KrGenParameterArray& aArray, const std::string& aFile) {
  KrGenSettings settings;
  KrStringList problems;
  return Check(aArray.StoreSettings(settings, problems)) && Check(settings.Save(aFile));
}

// Shows frames until the stream is stopped or the camera is lost; runs on a thread of its own.
void ShowFrames(KrStream& aStream, KrDisplayWnd& aDisplay) {
  KrResult result;
  while (result.IsOK() || result == KrResult::Code::TimeLimitExceeded) { // A camera may wait for its trigger.
    KrBuffer* buffer = nullptr;
    result = aStream.Retrieve(buffer, 1000);
    if (!buffer)
      continue;
    if (Check(aDisplay.Display(*buffer, false)))
      aStream.CountShown();
    result = aStream.Release(buffer);
  }
  if (result != KrResult::Code::Aborted) // The stream was not stopped by us.
    Check(result);
}

} // namespace
int main(int argc, char** argv) {
  const std::set<std::string_view> options(argv + 1, argv + argc);
  if (options.contains("--help") || options.contains("-h")) {
    std::cout << "usage: first_application [--simulate]\n";
    return 0;
  }
  QApplication application(argc, argv);
  if (!Check(KrInstallTransports({.simulation = options.contains("--simulate")})))
    return 1;

  KrDeviceFinderWnd finder; // Owns what it finds.
  finder.SetTitle("Pick a camera");
  if (!finder.ShowModal(0).IsOK() || !finder.GetSelected())
    return 0;
  std::unique_ptr<KrDevice> device;
  KrGenParameterArray* array = nullptr;
  if (!Check(KrDevice::Open(*finder.GetSelected(), KrDeviceAccess::Control, device)) ||
      !Check(device->GetParameters(array)))
    return 1;
  LoadSettings(*array, GetSettingsFile(*device)); // A camera that does not take all of them can be used all the same.

  QSplitter window;
  KrDisplayWnd display;
  KrGenBrowserWnd browser;
  browser.SetGenParameterArray(array);
  if (!Check(display.CreateIn(&window)) || !Check(browser.CreateIn(&window)))
    return 1;
  window.setWindowTitle(QString::fromUtf8(device->GetDisplayID().CStr()));
  window.setStretchFactor(0, 1); // The picture takes what room there is.
  window.resize(1200, 600);
  window.show();

  KrStream stream(*device);
  if (!Check(stream.Start()))
    return 1;
  std::jthread acquisition([&] { ShowFrames(stream, display); });
  const int exitCode = QApplication::exec();
  stream.Stop(); // Ends the thread.
  return SaveSettings(*array, GetSettingsFile(*device)) ? exitCode : 1;
}
