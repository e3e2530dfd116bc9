#include "soakstation.h"

#include "scene.h"
#include "watchedfigures.h"

#include <QApplication>
#include <QIcon>
#include <QRect>
#include <QTest>

#include <cstdio>
#include <cstring>

namespace {

// As the windows are in SoakStation; the screen is larger.
constexpr std::array<QRect, SoakStation::kWindows> kPlaces = {
    QRect(10, 10, 800, 480),   QRect(30, 40, 640, 480),   QRect(400, 60, 640, 480),  QRect(60, 200, 420, 500),
    QRect(500, 200, 420, 500), QRect(100, 100, 600, 500), QRect(300, 150, 560, 440), QRect(200, 120, 760, 570)};
constexpr int kRestMs = 2'000;

} // namespace

SoakStation::SoakStation(std::uint32_t aSeed)
    : mBridges(mSerialBridges, mFolder.GetFile("bridges.xml"), aSeed),
      mGrabberBridge(mCameraBridges, mGrabber, mFolder.GetFile("cameras.xml")) {
  QIcon::fromTheme("soak"); // The toolkit keeps the pictures' index open from its first use on, whenever that is.
  for (const Camera camera : kCameras)
    GetCamera(camera).Open();
  for (std::size_t index = 0; index < kWindows; ++index)
    Show(index);
  mMonoBrowser.SetGenParameterArray(&mMono.GetParameters());
  mColourBrowser.SetGenParameterArray(&mColour.GetParameters());
  scene::Require(mTerminal.SetDevice(&mMono.GetAdapter()));
  scene::Require(mSerialBridges.SetDevice(&mMono.GetAdapter()));
  mBridges.LinkByHand();
  mGrabberBridge.ConnectByHand();
  mMonoLive.Start();
  mColourLive.Start();
}

SoakStation::~SoakStation() {
  mBridges.Abandon();
  for (const Camera camera : kCameras)
    TakeOut(camera);
}

void SoakStation::Show(std::size_t aIndex) {
  KrWnd& window = GetWindow(aIndex);
  const QRect& place = kPlaces.at(aIndex);
  window.SetPosition(place.x(), place.y(), place.width(), place.height());
  if (!window.GetWidget())
    scene::Require(window.ShowModeless(0));
  if (!krtest::AwaitExposed(window.GetWidget()))
    throw std::runtime_error("A window did not come to the screen.");
}

LabCamera& SoakStation::GetCamera(Camera aCamera) {
  switch (aCamera) {
  case kMono:
    return mMono;
  case kColour:
    return mColour;
  default:
    return mGrabber;
  }
}

void SoakStation::TakeOut(Camera aCamera) {
  switch (aCamera) {
  case kMono:
    mBridges.Abandon();
    mMonoLive.Stop();
    mMonoBrowser.SetGenParameterArray(nullptr);
    scene::Require(mTerminal.SetDevice(nullptr));
    scene::Require(mSerialBridges.SetDevice(nullptr));
    break;
  case kColour:
    mColourLive.Stop();
    mColourBrowser.SetGenParameterArray(nullptr);
    break;
  case kGrabber:
    mGrabberBridge.Abandon();
    break;
  }
  GetCamera(aCamera).Close();
}

void SoakStation::TakeIn(Camera aCamera) {
  GetCamera(aCamera).Open();
  switch (aCamera) {
  case kMono:
    mMonoBrowser.SetGenParameterArray(&mMono.GetParameters());
    scene::Require(mTerminal.SetDevice(&mMono.GetAdapter()));
    scene::Require(mSerialBridges.SetDevice(&mMono.GetAdapter()));
    mBridges.Restore();
    mMonoLive.Start();
    break;
  case kColour:
    mColourBrowser.SetGenParameterArray(&mColour.GetParameters());
    mColourLive.Start();
    break;
  case kGrabber:
    mGrabberBridge.Restore();
    break;
  }
}

void SoakStation::RestDisplay(KrDisplayWnd& aWindow, LiveDisplay& aLive) {
  aLive.Stop();
  aLive.ResetFormat();
  aWindow.ZoomFit();
  aWindow.SetTextOverlay("");
  KrBuffer frame;
  scene::Require(frame.GetImage()->Alloc(640, 480, KrPixel::Mono8));
  std::memset(frame.GetDataPointer(), 0x40, frame.GetSize());
  const std::uint64_t shown = aWindow.GetStatistics().shown;
  scene::Require(aWindow.Display(frame, false));
  scene::Await("picture", [&] { return aWindow.GetStatistics().shown > shown; });
  aWindow.Clear();
}

void SoakStation::Rest() {
  for (const Camera camera : kCameras)
    if (GetCamera(camera).WasSilent()) {
      TakeOut(camera);
      TakeIn(camera);
    }
  mBridges.Finish();
  // Their editors and search rows last as long as the opening.
  for (KrGenBrowserWnd* const browser : GetBrowsers())
    scene::Require(browser->Close());
  for (std::size_t index = 0; index < kWindows; ++index)
    Show(index);
  RestDisplay(mMonoDisplay, mMonoLive);
  RestDisplay(mColourDisplay, mColourLive);
  for (KrGenBrowserWnd* const browser : GetBrowsers()) {
    scene::Require(browser->SetVisibility(KrGenVisibility::Expert));
    scene::Require(browser->SetRefreshMode(KrGenRefresh::Polling));
    browser->Refresh();
    scene::AwaitFeatures(*browser->GetWidget());
  }
  scene::Require(mFinder.DoEvents());
  // A thread that was joined is among the kernel's a little longer. Whether it stays shows in the figures.
  static_cast<void>(QTest::qWaitFor(
      [this] { return mRestingThreads != 0 && WatchedFigures::CountThreads() <= mRestingThreads; }, kRestMs));
  const std::ptrdiff_t threads = WatchedFigures::CountThreads();
  mRestingThreads = mRestingThreads == 0 ? threads : std::min(threads, mRestingThreads);
}

void SoakStation::GoOn() {
  mBridges.Resume();
  mMonoLive.Start();
  mColourLive.Start();
}

bool SoakStation::ReportTraffic() const {
  const std::uint64_t frames = mMonoLive.GetFrames() + mColourLive.GetFrames();
  const int failures = mMonoLive.GetFailures() + mColourLive.GetFailures() + mBridges.GetFailures();
  std::printf("frames=%llu serial_bytes=%llu camera_exchanges=%llu lost=%d\n", static_cast<unsigned long long>(frames),
              static_cast<unsigned long long>(mBridges.GetBytes()),
              static_cast<unsigned long long>(mGrabberBridge.GetExchanges()), failures);
  return failures == 0 && frames > 0 && mBridges.GetBytes() > 0;
}
