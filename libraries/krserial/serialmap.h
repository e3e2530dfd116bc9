#pragma once
// Which features of a camera carry a serial line, as a map file says (docs/serial-ports.md). Whether a camera has them
// is left to whoever looks.

#include "krbase/krstring.h"
#include "krserial/krdeviceserial.h"

#include <array>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace krserial {

/// The names of the standard's file access; the line is a file.
struct FileAccessNames {
  KrString fileSelector = "FileSelector";
  KrString fileOperationSelector = "FileOperationSelector";
  KrString fileOperationExecute = "FileOperationExecute";
  KrString fileOpenMode = "FileOpenMode";
  KrString fileAccessOffset = "FileAccessOffset";
  KrString fileAccessLength = "FileAccessLength";
  KrString fileAccessBuffer = "FileAccessBuffer";
  KrString fileOperationStatus = "FileOperationStatus";
  KrString fileOperationResult = "FileOperationResult";
};

/// The names of features that a maker has for the line; one that is empty there is not.
struct RegisterNames {
  KrString selector;
  KrString receiveCommand;
  KrString receivedCount;
  KrString receiveData;
  KrString takenCommand;
  KrString transmitRoom;
  KrString transmitData;
  KrString transmitLength;
  KrString transmitCommand;
};

/// One map.
struct SerialMap {
  KrString name;
  /// By the number of the port: the entry of the selector that stands for it, empty where there is no selector; nothing
  /// for a port that the map does not have.
  std::array<std::optional<KrString>, kDeviceSerialPorts.size()> entries;
  std::variant<FileAccessNames, RegisterNames> names;
};

using SerialMaps = std::vector<SerialMap>;

} // namespace krserial
