#pragma once
// The serial ports that a device may offer, and their names.

#include "krbase/krstring.h"

#include <array>
#include <cstdint>

/// A serial port of a device: its UARTs and its bulk interfaces.
enum class KrDeviceSerial : std::int32_t {
  Invalid = -1,
  Serial0 = 0,
  Serial1 = 1,
  Bulk0 = 2,
  Bulk1 = 3,
  Bulk2 = 4,
  Bulk3 = 5,
  Bulk4 = 6,
  Bulk5 = 7,
  Bulk6 = 8,
  Bulk7 = 9,
};

/// All ports, in the order in which windows list them.
inline constexpr std::array kDeviceSerialPorts = {
    KrDeviceSerial::Serial0, KrDeviceSerial::Serial1, KrDeviceSerial::Bulk0, KrDeviceSerial::Bulk1,
    KrDeviceSerial::Bulk2,   KrDeviceSerial::Bulk3,   KrDeviceSerial::Bulk4, KrDeviceSerial::Bulk5,
    KrDeviceSerial::Bulk6,   KrDeviceSerial::Bulk7};

/// "Serial0" to "Bulk7"; "Invalid" for any other value. Thread: any.
KR_EXPORT KrString GetPortName(KrDeviceSerial aPort);
/// The port of a name, compared exactly; Invalid for any other text. Thread: any.
KR_EXPORT KrDeviceSerial FindPort(const KrString& aName);
/// Whether it is one of the bulk interfaces, "Bulk0" to "Bulk7". Thread: any.
KR_EXPORT bool IsBulkPort(KrDeviceSerial aPort);
