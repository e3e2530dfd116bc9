#include "logic/serial/terminalparameters.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace krgui {

namespace {

/// The parameters that every device with the port is taken to have.
struct PortParameters {
  KrDeviceSerial port;
  const char* loopback;
  const char* baudRate;
};

constexpr std::array kPortParameters = {
    PortParameters{KrDeviceSerial::Serial0, "Uart0Loopback", "Uart0BaudRate"},
    PortParameters{KrDeviceSerial::Serial1, "Uart1Loopback", "Uart1BaudRate"},
};

/// Those of the bulk ports, which not every device has; the first that it has counts.
constexpr std::initializer_list<const char*> kBulkLoopbacks = {"BulkLoopback"};
constexpr std::initializer_list<const char*> kBulkBaudRates = {"BulkBaudRate", "BulkSystemClockDivider"};

KrString FindFirst(std::initializer_list<const char*> aNames, const HasParameter& aHasParameter) {
  const auto* const found = std::find_if(aNames.begin(), aNames.end(), aHasParameter);
  return found != aNames.end() ? KrString(*found) : KrString();
}

KrString FindParameter(KrDeviceSerial aPort, const char* PortParameters::*aName,
                       std::initializer_list<const char*> aBulkNames, const HasParameter& aHasParameter) {
  if (IsBulkPort(aPort))
    return FindFirst(aBulkNames, aHasParameter);
  const auto* const row = std::find_if(kPortParameters.begin(), kPortParameters.end(),
                                       [aPort](const PortParameters& aRow) { return aRow.port == aPort; });
  return row != kPortParameters.end() ? KrString(row->*aName) : KrString();
}

} // namespace

KrString FindLoopbackParameter(KrDeviceSerial aPort, const HasParameter& aHasParameter) {
  return FindParameter(aPort, &PortParameters::loopback, kBulkLoopbacks, aHasParameter);
}

KrString FindBaudRateParameter(KrDeviceSerial aPort, const HasParameter& aHasParameter) {
  return FindParameter(aPort, &PortParameters::baudRate, kBulkBaudRates, aHasParameter);
}

} // namespace krgui
