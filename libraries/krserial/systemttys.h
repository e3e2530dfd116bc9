#pragma once
// The ttys of the system that have hardware behind them, found without opening one: opening moves modem lines. Which
// number each has is left to PortNumbers.

#include "krbase/krresult.h"
#include "portnumbers.h"

#include <string>
#include <vector>

namespace krserial {

struct SystemTty {
  std::string path;     ///< The device file.
  TtyIdentity identity; ///< The same for the same tty, whatever the system calls it now.
  std::string text;     ///< For people.
};

/// The ttys ttyS, ttyUSB and ttyACM that are in both folders, in this order and in that of their numbers. A folder that
/// is not there has none; SystemError for one that cannot be read. A tty that goes meanwhile is left out. Thread: any.
KrResult FindSystemTtys(const std::string& aSysfs, const std::string& aDevices, std::vector<SystemTty>& aTtys);

} // namespace krserial
