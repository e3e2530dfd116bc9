#pragma once
// The window in which a user finds a camera, beside the viewer's own, which goes on meanwhile. What becomes of the
// camera is left to the owner.

#include "acquisition/camerainfo.h"
#include "krgui/krdevicefinderwnd.h"

#include <functional>
#include <memory>

namespace krviewer {

/// What the user wants of the list of cameras.
enum class FinderPurpose {
  Pick,     ///< A camera to look at.
  Addresses ///< To give cameras addresses; those that cannot be reached are what is looked for.
};

/// One opening after the other. Thread: user interface.
class CameraFinder {
public:
  using Picked = std::function<void(const CameraInfo& aCamera)>;

  /// aPicked hears, from Follow, which camera was picked.
  explicit CameraFinder(Picked aPicked) : mPicked(std::move(aPicked)) {}
  ~CameraFinder();

  /// Opens the window over another one, or brings it to the front where it is open for the same purpose.
  KrResult Show(HWND aOwner, FinderPurpose aPurpose);
  /// Says what was picked, which is nothing where addresses were set; to be called often.
  void Follow();
  void Close();

private:
  class Window;

  const Picked mPicked;
  FinderPurpose mPurpose = FinderPurpose::Pick;
  /// With the cameras that it has found: those that were picked keep it.
  std::shared_ptr<Window> mWindow;
};

} // namespace krviewer
