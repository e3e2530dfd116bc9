#pragma once
// The speed of a device's serial port, as the device's own parameters give and take it. Bytes are left to
// KrDeviceSerialPort.

#include "krbase/krresult.h"
#include "krserial/krdeviceserial.h"

#include <cstdint>
#include <functional>
#include <stop_token>
#include <vector>

class IKrDeviceAdapter;

/// Whether a device has a parameter of a name.
using KrHasParameter = std::function<bool(const KrString&)>;

/// The boolean that switches the loopback of a port on; an empty name where there is none. Only for bulk ports is the
/// device asked: a serial port always has its own. Thread: any.
KR_EXPORT KrString FindLoopbackParameter(KrDeviceSerial aPort, const KrHasParameter& aHasParameter);
/// The enumeration of a port's speeds; likewise. Thread: any.
KR_EXPORT KrString FindBaudRateParameter(KrDeviceSerial aPort, const KrHasParameter& aHasParameter);
/// The enumeration that chooses which bulk port those two are of.
inline constexpr const char* kBulkSelector = "BulkSelector";

/// The speed of one serial port of a device. Of a bulk port, the device's selector is set to it before each access, and
/// put back afterwards where it stood on another, in a turn of its own (KrBulkSelectorTurn). Entries that tell no speed
/// (clock dividers) count as none.
///
/// Thread: any; a call may wait as long as a few register accesses take. One whose token is stopped waits for the
/// access that runs and for the selector to be put back, and gives Aborted. Ownership: borrows the adapter.
class KR_EXPORT KrDeviceSerialSpeed {
public:
  /// The speed of one port, by the device's parameters. Borrows the adapter.
  KrDeviceSerialSpeed(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort);

  /// The rates that the port can be set to now, in baud, in the device's order; none where the device has no such
  /// parameter. Results as of IKrDeviceAdapter; aBaudRates is set on success only, and so is what Get gives.
  KrResult GetSupported(std::vector<std::uint32_t>& aBaudRates, const std::stop_token& aStop = {}) const;
  /// The rate that is set. NotFound where the device has no such parameter, NotSupported for an entry that tells none.
  KrResult Get(std::uint32_t& aBaudRate, const std::stop_token& aStop = {}) const;
  /// Sets a rate. NotFound as of Get, NotSupported for a rate that the port does not have.
  KrResult Set(std::uint32_t aBaudRate, const std::stop_token& aStop = {}) const;

private:
  IKrDeviceAdapter& mAdapter;
  KrDeviceSerial mPort;
};
