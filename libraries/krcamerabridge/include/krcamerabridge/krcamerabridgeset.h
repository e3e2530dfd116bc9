#pragma once
// All camera bridges of a device in one configuration: each under its port's name, and an index that names them. What
// a bridge stores is left to the bridge.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgensettings.h"
#include "krserial/krdeviceserial.h"

#include <vector>

class KrCameraBridge;
class KrConfigurationReader;
class KrConfigurationWriter;

/// A bridge, borrowed, and the port that it is for.
struct KrCameraBridgeAtPort {
  KrDeviceSerial port = KrDeviceSerial::Invalid; ///< The port of the device.
  KrCameraBridge* bridge = nullptr;              ///< The bridge, which belongs to somebody else.
};

/// What is stored of each bridge.
enum class KrCameraBridgeContent {
  Everything,      ///< As KrCameraBridge::Save, which asks the camera.
  ConnectionAlone, ///< As KrCameraBridge::SaveConnection, at once.
};

// Thread: any, as the bridges' own calls.

/// Stores all bridges that are connected under their ports' names, and the list "CameraBridgeIndex", whose values are
/// these names. The first failure of one of them, after all others were tried. aProgress is asked before each bridge;
/// Aborted, without an index, where it ends it. KrCameraBridge::Cancel ends the one that runs.
KR_EXPORT KrResult KrSaveCameraBridges(const std::vector<KrCameraBridgeAtPort>& aBridges,
                                       KrCameraBridgeContent aContent, KrConfigurationWriter& aWriter,
                                       const KrGenProgress& aProgress = {});
/// Connects the bridges that the index names as they were saved. A line is added to aErrors for everything that could
/// not be done. NotFound without an index, and for a name to which there is no port; else the first failure, after all
/// others were tried. aProgress as above.
KR_EXPORT KrResult KrLoadCameraBridges(const std::vector<KrCameraBridgeAtPort>& aBridges,
                                       const KrConfigurationReader& aReader, KrStringList& aErrors,
                                       const KrGenProgress& aProgress = {});
