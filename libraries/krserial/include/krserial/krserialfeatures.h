#pragma once
// Serial lines behind features: which features of a camera carry a serial port, as a list that applications can add to.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"
#include "krserial/krdeviceserial.h"

#include <vector>

class KrDevice;

/// What stands behind a serial port of a device, or would.
struct KrSerialPortOrigin {
  KrDeviceSerial port = KrDeviceSerial::Serial0; ///< The port that is spoken of.
  KrString map = {};                             ///< The map's name; empty for the device's transport.
  KrStringList missing = {}; ///< What the device lacks of the map, for people; nothing where the port is offered.
};

/// The maps of features that carry a serial line. One ships with the library, the standard's file access on its
/// serial ports; the files of the user's directory come before it, and before those the files that were added, the
/// last one first. Of the maps whose features a camera has, the first one counts for each port. What can be written in
/// a map is said in docs/serial-ports.md.
///
/// Thread: any. Counts for devices whose ports are asked for afterwards.
class KR_EXPORT KrSerialFeatures {
public:
  /// Adds the maps of a YAML file. NotFound when it cannot be opened, InvalidInput with a line for every mistake
  /// ("file:line:column: what was expected"); then nothing of it counts. What is no YAML, or has a key twice, is told
  /// alone; of a map whose way is unknown, what its way would need is not.
  static KrResult AddFile(const KrString& aPath);
  /// Forgets what AddFile has added.
  static void RemoveAdded();
  /// The ports of an open device in their order, each with what stands behind it, and the maps of which the device has
  /// some features and lacks others, with these. Asks the device anew. Results as of a parameter's; aOrigins is set on
  /// success only.
  static KrResult Explain(KrDevice& aDevice, std::vector<KrSerialPortOrigin>& aOrigins);
  /// The directory whose *.yaml files count for this user, in the order of their names: "serial-features.d" in the
  /// user's configuration directory of the library.
  static KrString GetUserDirectory();
};
