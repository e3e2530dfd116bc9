#pragma once
// How a serial line of the host is set: speed, parity, bits and stop bits. Applying it is left to the serial bridge.

#include "krbase/krexport.h"

#include <cstdint>

/// The settings of a host's serial port.
///
/// Thread: a value; different objects may be used from different threads.
struct KR_EXPORT KrSerialPortConfiguration {
  std::uint32_t baudRate = 9600; ///< Bits a second.
  std::uint32_t parity = 0;      ///< 0 none, 1 even, 2 odd.
  std::uint32_t byteSize = 8;    ///< Data bits of a byte.
  std::uint32_t stopBits = 1;    ///< 1 or 2.

  /// Whether a serial port could be set so: 50 to 4,000,000 baud, a parity of 0 to 2, 5 to 8 bits, 1 or 2 stop bits.
  /// What a port's hardware can is not asked. Thread: any.
  bool IsValid() const;

  /// Whether all members are equal.
  friend bool operator==(const KrSerialPortConfiguration&, const KrSerialPortConfiguration&) = default;
};
