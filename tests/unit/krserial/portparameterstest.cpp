#include "krserial/krdeviceserialspeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using Names = std::vector<KrString>;

const Names kAllBulk = {"BulkLoopback", "BulkBaudRate", "BulkSystemClockDivider", "BulkSelector"};

struct ParameterRow {
  const char* name;
  KrDeviceSerial port;
  Names ofDevice;
  const char* loopback;
  const char* baudRate;
};

const ParameterRow kParameterRows[] = {
    {"the first serial port", KrDeviceSerial::Serial0, {}, "Uart0Loopback", "Uart0BaudRate"},
    {"the second serial port", KrDeviceSerial::Serial1, {}, "Uart1Loopback", "Uart1BaudRate"},
    {"a serial port of a device with bulk parameters", KrDeviceSerial::Serial0, kAllBulk, "Uart0Loopback",
     "Uart0BaudRate"},
    {"a bulk port without any", KrDeviceSerial::Bulk0, {}, "", ""},
    {"a bulk port with all", KrDeviceSerial::Bulk0, kAllBulk, "BulkLoopback", "BulkBaudRate"},
    {"a bulk port with a clock divider alone",
     KrDeviceSerial::Bulk0,
     {"BulkSystemClockDivider"},
     "",
     "BulkSystemClockDivider"},
    {"a bulk port with a baud rate alone", KrDeviceSerial::Bulk0, {"BulkBaudRate"}, "", "BulkBaudRate"},
    {"a bulk port with a loopback alone", KrDeviceSerial::Bulk0, {"BulkLoopback"}, "BulkLoopback", ""},
    {"a bulk port of a device with serial parameters",
     KrDeviceSerial::Bulk0,
     {"Uart0Loopback", "Uart0BaudRate"},
     "",
     ""},
    {"no port", KrDeviceSerial::Invalid, kAllBulk, "", ""},
};

KrHasParameter Has(const Names& aNames) {
  return [&aNames](const KrString& aName) { return std::find(aNames.begin(), aNames.end(), aName) != aNames.end(); };
}

} // namespace

TEST(PortParameters, EveryPort_HasThoseOfTheTable) {
  for (const ParameterRow& row : kParameterRows) {
    SCOPED_TRACE(row.name);

    EXPECT_EQ(FindLoopbackParameter(row.port, Has(row.ofDevice)), row.loopback);
    EXPECT_EQ(FindBaudRateParameter(row.port, Has(row.ofDevice)), row.baudRate);
  }
}

TEST(PortParameters, EveryBulkPort_SharesThem) {
  for (const KrDeviceSerial port : kDeviceSerialPorts) {
    if (!IsBulkPort(port))
      continue;
    SCOPED_TRACE(GetPortName(port).ToUtf8());

    EXPECT_EQ(FindLoopbackParameter(port, Has(kAllBulk)), "BulkLoopback");
    EXPECT_EQ(FindBaudRateParameter(port, Has(kAllBulk)), "BulkBaudRate");
  }
}

TEST(PortParameters, TheSelectorOfBulkPorts_HasItsName) {
  EXPECT_STREQ(kBulkSelector, "BulkSelector");
}
