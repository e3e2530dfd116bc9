#pragma once
// All windows of the library at once, on the cameras of a soak's lab. What a user does with them is left to SoakHand.

#include "krgui/krcamerabridgemanagerwnd.h"
#include "krgui/krdevicefinderwnd.h"
#include "krgui/krdisplaywnd.h"
#include "krgui/krgenbrowserwnd.h"
#include "krgui/krserialbridgemanagerwnd.h"
#include "krgui/krserialterminalwnd.h"
#include "livedisplay.h"
#include "soakbridges.h"
#include "soakgrabber.h"
#include "soaklab.h"
#include "temporaryfolder.h"

#include <array>
#include <cstddef>

/// Thread: the user interface's. What fails throws std::runtime_error.
class SoakStation {
public:
  enum Camera { kMono, kColour, kGrabber };
  static constexpr std::array kCameras = {kMono, kColour, kGrabber};
  static constexpr std::size_t kWindows = 8;

  /// Opens the cameras and all windows, and makes the bridges.
  explicit SoakStation(std::uint32_t aSeed);
  ~SoakStation();
  SoakStation(const SoakStation&) = delete;
  SoakStation& operator=(const SoakStation&) = delete;

  /// The application hears that a camera has gone: takes it out of all windows and closes it.
  void TakeOut(Camera aCamera);
  /// The camera is back: opens it and gives it to all windows.
  void TakeIn(Camera aCamera);

  KrWnd& GetWindow(std::size_t aIndex) { return *mWindows.at(aIndex); }
  void Show(std::size_t aIndex);
  LabCamera& GetCamera(Camera aCamera);
  KrDeviceFinderWnd& GetFinder() { return mFinder; }
  KrSerialTerminalWnd& GetTerminal() { return mTerminal; }
  std::array<KrGenBrowserWnd*, 2> GetBrowsers() { return {&mMonoBrowser, &mColourBrowser}; }
  std::array<KrDisplayWnd*, 2> GetDisplays() { return {&mMonoDisplay, &mColourDisplay}; }
  std::array<LiveDisplay*, 2> GetLive() { return {&mMonoLive, &mColourLive}; }
  KrSerialBridgeManagerWnd& GetSerialBridges() { return mSerialBridges; }
  KrCameraBridgeManagerWnd& GetCameraBridges() { return mCameraBridges; }
  SoakBridges& GetBridges() { return mBridges; }
  SoakGrabber& GetGrabber() { return mGrabberBridge; }

  /// Brings all to one state: every window open where it was at first, no frame, no byte and no thread under way.
  void Rest();
  /// Lets frames and bytes come again.
  void GoOn();
  /// Prints what has gone through. False where something of it was lost, or nothing came.
  bool ReportTraffic() const;

private:
  void RestDisplay(KrDisplayWnd& aWindow, LiveDisplay& aLive);

  TemporaryFolder mFolder;
  LabCamera mMono{soaklab::kMonoID, soaklab::kMonoAddress};
  LabCamera mColour{soaklab::kColourID, soaklab::kColourAddress};
  LabCamera mGrabber{soaklab::kGrabberID, soaklab::kGrabberAddress};
  KrDeviceFinderWnd mFinder;
  KrDisplayWnd mMonoDisplay;
  KrDisplayWnd mColourDisplay;
  KrGenBrowserWnd mMonoBrowser;
  KrGenBrowserWnd mColourBrowser;
  KrSerialTerminalWnd mTerminal;
  KrSerialBridgeManagerWnd mSerialBridges;
  KrCameraBridgeManagerWnd mCameraBridges;
  LiveDisplay mMonoLive{mMonoDisplay, mMono};
  LiveDisplay mColourLive{mColourDisplay, mColour};
  SoakBridges mBridges;
  SoakGrabber mGrabberBridge;
  const std::array<KrWnd*, kWindows> mWindows = {&mFinder,        &mMonoDisplay, &mColourDisplay, &mMonoBrowser,
                                                 &mColourBrowser, &mTerminal,    &mSerialBridges, &mCameraBridges};
  std::ptrdiff_t mRestingThreads = 0; ///< As few as there were at rest; 0 before the first rest.
};
