#include "window/camerafinder.h"

#include <QWidget>

#include <utility>

namespace krviewer {

/// Remembers that a device was accepted: it cannot be left while it says so.
class CameraFinder::Window : public KrDeviceFinderWnd {
public:
  ~Window() override { DeleteWnd(); }
  void OnAccepted() override { mIsAccepted = true; }
  bool TakeAccepted() { return std::exchange(mIsAccepted, false); }

private:
  bool mIsAccepted = false;
};

CameraFinder::~CameraFinder() = default;

KrResult CameraFinder::Show(HWND aOwner, FinderPurpose aPurpose) {
  QWidget* const open = mWindow ? mWindow->GetWidget() : nullptr;
  if (open && mPurpose == aPurpose) {
    open->raise();
    open->activateWindow();
    return {};
  }
  Close();
  mPurpose = aPurpose;
  mWindow = std::make_shared<Window>();
  const bool isForAddresses = aPurpose == FinderPurpose::Addresses;
  mWindow->SetTitle(isForAddresses ? "IP Configuration" : "Device Selection");
  mWindow->SetUnreachableShown(isForAddresses);
  return mWindow->ShowModeless(aOwner);
}

void CameraFinder::Follow() {
  if (!mWindow || !mWindow->TakeAccepted())
    return;
  // What it has found lives as long as it does.
  const std::shared_ptr<Window> window = std::exchange(mWindow, nullptr);
  [[maybe_unused]] const KrResult closed = window->Close(); // Accepting has closed it, mostly.
  const KrDeviceInfo* const selected = window->GetSelected();
  if (selected && mPurpose == FinderPurpose::Pick)
    mPicked(CameraInfo(window, selected));
}

void CameraFinder::Close() {
  if (!mWindow)
    return;
  [[maybe_unused]] const KrResult closed = mWindow->Close(); // What is closed stays closed.
}

} // namespace krviewer
