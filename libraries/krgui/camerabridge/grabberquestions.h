#pragma once
// What the camera bridge manager asks of the frame grabber itself: ports, sources, and Power over Camera Link. Each
// question takes as long as the device takes to answer; on which thread that is waited for is left to the window.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgensettings.h"
#include "krserial/krdeviceserial.h"

#include <memory>
#include <optional>
#include <vector>

class KrDevice;
class KrDeviceLifetime;

namespace krgui {

/// Power over Camera Link of a device; neither of one that does not answer.
struct PoCLState {
  bool isSupported = false;
  bool isOn = false;
};

/// Thread: any. Ownership: a value, which borrows the device for as long as a question runs: one that has ended is not
/// touched and answers as one without anything, one that ends meanwhile waits for the access of the moment.
class GrabberQuestions {
public:
  explicit GrabberQuestions(KrDevice& aDevice);

  /// The serial ports, in their order; nothing where aProgress ended the search.
  std::optional<std::vector<KrDeviceSerial>> FindPorts(const KrGenProgress& aProgress) const;
  /// The sources that are available, in their order; nothing where aProgress ended the listing, or nobody answered.
  std::optional<KrStringList> ListSources(const KrGenProgress& aProgress) const;
  PoCLState GetPoCL() const;
  /// Results as of KrCameraBridge::SetPoCLEnabled; ConnectionLost for a device that has ended.
  KrResult SetPoCL(bool aIsOn) const;

private:
  KrDevice* mDevice;
  std::shared_ptr<KrDeviceLifetime> mLifetime;
};

} // namespace krgui
