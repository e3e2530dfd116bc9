#pragma once
// The Camera Link side of a lab file: frame grabbers, and the cameras behind their serial ports.

#include "simulation/lab.h"
#include "simulation/labfile/labmap.h"

namespace krtransport {

/// Takes the key "frameGrabber" of a device. Any thread.
void ReadFrameGrabber(LabMap& aMap, LabFrameGrabber& aGrabber);
/// Takes the key "camera" of a serial port, and reports one that is there or missing against what is behind the port.
/// aGrabber is the port's device. Any thread.
void ReadCLCamera(LabMap& aMap, const LabFrameGrabber& aGrabber, LabSerialPort& aPort);

} // namespace krtransport
