#pragma once
// Where the line of a serial port comes from: the device's transport, and for what that does not have the
// features of the device.

#include "krbase/krresult.h"
#include "krdevice/ikrdeviceadapter.h"
#include "krserial/krdeviceserial.h"

#include <memory>

namespace krserial {

/// The line of a device's port, to be opened. NotSupported for one that the device lacks, and without an adapter; what
/// an adapter of the application's throws is SystemError; what a device says that does not answer comes as it is.
/// aChannel is set on success only. Any thread.
KrResult FindSerialChannel(IKrDeviceAdapter* aAdapter, KrDeviceSerial aPort,
                           std::shared_ptr<krsystem::IByteChannel>& aChannel);

} // namespace krserial
