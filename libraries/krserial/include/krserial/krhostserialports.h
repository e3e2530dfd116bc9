#pragma once
// The serial ports of the host under the names COM1, COM2 and so on. Opening them is left to the serial bridge.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"

#include <cstdint>
#include <vector>

/// Where the host's ports are looked for. An empty name stands for the system's own place.
struct KrHostSerialFolders {
  KrString links = {};   ///< Symbolic links "comN" to ttys; "com-ports" in the user's configuration directory.
  KrString sysfs = {};   ///< One folder for each tty of the system; /sys/class/tty.
  KrString devices = {}; ///< The device files of those; /dev.
  KrString numbers = {}; ///< The file that remembers which tty has which number; in the user's configuration directory.
  KrString locks = {};   ///< Lock files "LCK..ttyUSB0" of programs that hold a port; /var/lock. They are read alone.
};

/// A serial port of the host.
struct KrHostSerialPort {
  std::uint32_t number = 0; ///< 1 to 4096.
  KrString name = {};       ///< "COM" and the number.
  KrString path = {};       ///< What is opened: the link, or the device file.
  KrString text = {};       ///< For people: what the port is, for example "USB serial adapter ttyUSB0".
};

/// The host's serial ports. A link "comN" (compared without regard to case) in the folder of links is port N, whatever
/// it leads to; then the ttys ttyS, ttyUSB and ttyACM of the system that have hardware behind them, found without
/// opening one. A tty gets the lowest number that was never given; it is remembered by the tty's own identity (a USB
/// adapter's vendor, product, serial number and interface, else its path), so that no other tty has it ever after.
///
/// Thread: any. Several processes of a user may list at once.
class KR_EXPORT KrHostSerialPorts {
public:
  /// The ports in the order of their numbers. SystemError when a folder that is there cannot be read; one that is not
  /// there has no ports. aPorts is set on success only.
  static KrResult List(std::vector<KrHostSerialPort>& aPorts);
  /// The names of List alone, "COM1" and so on.
  static KrResult GetNames(KrStringList& aNames);
  /// The port of a name ("COM3", case does not matter). InvalidInput for a text that is no port's name, NotFound for a
  /// port that the host does not have now; each says where it was looked for.
  static KrResult Find(const KrString& aName, KrHostSerialPort& aPort);

  /// Sets where ports are looked for, for the whole process, from the next call on.
  static void SetFolders(const KrHostSerialFolders& aFolders);
  /// The folders in force, none of them empty.
  static KrHostSerialFolders GetFolders();
};
