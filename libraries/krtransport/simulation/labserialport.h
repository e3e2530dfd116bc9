#pragma once
// A serial port of a camera as a lab describes it. How bytes travel is left to SerialLine.

#include "krbase/krstring.h"
#include "simulation/labclcamera.h"

#include <array>
#include <cstdint>
#include <vector>

namespace krtransport {

/// The names of the serial ports by their numbers, as IDeviceLink counts them.
inline constexpr std::array kSerialPortNames = {"Serial0", "Serial1", "Bulk0", "Bulk1", "Bulk2",
                                                "Bulk3",   "Bulk4",   "Bulk5", "Bulk6", "Bulk7"};
/// The number of Serial0, of which there are two, and of Bulk0, of which there are eight.
inline constexpr std::uint32_t kFirstUart = 0;
inline constexpr std::uint32_t kFirstBulkPort = 2;

/// What is attached behind a port.
enum class LabLineEnd { Nothing, Echo, Instrument, Tty, Camera };

/// Bytes of one direction that something happens to, as KrSimulatedFaults orders it.
struct LabByteOrder {
  std::uint32_t every = 0; ///< Each byte of this many; 0 for none.
  std::uint32_t next = 0;  ///< The first so many.
};

/// What happens to the bytes of one direction.
struct LabLineFaults {
  LabByteOrder lost = {};
  LabByteOrder repeated = {};
  LabByteOrder corrupted = {};
};

/// A port as it is when the lab starts.
struct LabSerialPort {
  std::uint32_t number = 0;                                               ///< Of kSerialPortNames.
  std::vector<std::uint32_t> rates = {9600, 19200, 38400, 57600, 115200}; ///< That can be set, in bits a second.
  std::uint32_t rate = 9600;                                              ///< That is set, one of them.
  LabLineEnd behind = LabLineEnd::Nothing;
  KrString path = {};         ///< Of a tty.
  LabCLCamera camera = {};    ///< Behind a frame grabber's port.
  bool isPaced = true;        ///< A byte takes the time of its ten bits.
  bool hasFlowControl = true; ///< Bytes wait while the receive queue is full; else they are lost.
  bool isSilent = false;      ///< What is behind is not heard.
  LabLineFaults received = {};
  LabLineFaults sent = {};
};

} // namespace krtransport
