#pragma once
// Looks for a camera that is known by name, on a thread of its own, while the windows go on. What becomes of the camera
// is left to the owner.

#include "acquisition/camerainfo.h"
#include "backgroundcall.h"
#include "krbase/krresult.h"

#include <QString>

#include <functional>
#include <memory>

class KrSystem;

namespace krviewer {

/// One search at a time. Thread: user interface.
class CameraSearch {
public:
  /// aCamera is null where it was not found; the result says why then.
  using Found = std::function<void(const CameraInfo& aCamera, const KrResult& aResult)>;

  /// Looks for the camera with this ID, address, serial number or name; none may be looked for. aFound follows, from
  /// Follow.
  void Start(const QString& aName, Found aFound);
  bool IsRunning() const { return mCall.IsRunning(); }
  /// Says what was found; to be called often.
  void Follow() { mCall.Follow(); }
  /// Ends the search, and nothing follows.
  void End() { mCall.End(); }

private:
  BackgroundCall mCall;
};

} // namespace krviewer
