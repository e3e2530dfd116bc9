#include "serialorigins.h"

#include "featuredevice.h"
#include "serialmapreader.h"

#include <gmock/gmock.h>

namespace krserial {

namespace {

using krtest::FeatureDevice;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFileMap = "  - {name: files, way: fileAccess, ports: {Serial0: SerialPort0, Bulk1: NoPort}}\n";
constexpr const char* kUartMap = "  - {name: uart, way: registers, selector: UartSelector, ports: {Serial0: Uart0},\n"
                                 "     receivedCount: UartReceived, receiveData: UartReceiveData,\n"
                                 "     transmitData: UartTransmitData, transmitLength: UartLength}\n";

// "port map: what is missing", a line for each origin.
std::vector<std::string> Explain(FeatureDevice& aDevice, const std::string& aMaps) {
  SerialMaps maps;
  EXPECT_TRUE(ParseSerialMaps("serialFeatures:\n" + aMaps, "map.yaml", maps).IsOK());
  std::vector<KrSerialPortOrigin> origins;
  EXPECT_TRUE(FindSerialOrigins(*aDevice.device, maps, origins).IsOK());
  std::vector<std::string> lines;
  for (const KrSerialPortOrigin& origin : origins) {
    lines.push_back((GetPortName(origin.port) + " " + origin.map + ":").ToUtf8());
    for (std::size_t i = 0; i < origin.missing.GetCount(); ++i)
      lines.back() += " " + origin.missing[i].ToUtf8();
  }
  return lines;
}

TEST(SerialOrigins, MapThatFits_IsNamedWithNothingMissing) {
  FeatureDevice device(krtest::MakeUartFeatures());

  EXPECT_THAT(Explain(device, kUartMap), ElementsAre("Serial0 uart:"));
}

TEST(SerialOrigins, OfSeveralMapsThatFit_TheFirstIsNamed) {
  FeatureDevice device(krtest::MakeUartFeatures() + krtest::MakeFileAccess());

  EXPECT_THAT(Explain(device, std::string(kUartMap) + kFileMap),
              ElementsAre("Serial0 uart:", "Bulk1 files: the entry NoPort of FileSelector"));
}

TEST(SerialOrigins, MapThatLacksSomething_SaysWhatInEachWay) {
  FeatureDevice device(krtest::MakeUartFeatures());
  const std::string map =
      "  - {name: uart, way: registers, selector: UartSelector, ports: {Serial0: Uart0, Serial1: Uart7},\n"
      "     receivedCount: UartCount, receiveData: UartReceived, transmitData: UartTransmitData}\n";
  const std::string missing = " UartCount UartReceived (of another type) the map's key transmitLength";

  EXPECT_THAT(Explain(device, map),
              ElementsAre("Serial0 uart:" + missing, "Serial1 uart:" + missing + " the entry Uart7 of UartSelector"));
}

TEST(SerialOrigins, FeatureThatIsNotImplemented_IsMissing) {
  std::string nodes = krtest::MakeUartFeatures();
  const std::string begin = "<Integer Name=\"UartLength\">";
  nodes.insert(nodes.find(begin) + begin.size(), "<pIsImplemented>HasLength</pIsImplemented>");
  FeatureDevice device(nodes + MakeIntReg("HasLength", "0x4000"));

  EXPECT_THAT(Explain(device, kUartMap), ElementsAre("Serial0 uart: UartLength (not implemented)"));
}

TEST(SerialOrigins, MapOfWhichTheDeviceHasNothing_IsNoNews) {
  FeatureDevice device(krtest::MakeFileAccess());

  EXPECT_THAT(Explain(device, kUartMap), IsEmpty());
}

TEST(SerialOrigins, DeviceThatDoesNotAnswer_IsTheResult) {
  FeatureDevice device(krtest::MakeUartFeatures());
  device.Port().failure = KrResult::Code::TimeLimitExceeded;
  std::vector<KrSerialPortOrigin> origins(1);

  EXPECT_EQ(FindSerialOrigins(*device.device, {}, origins), KrResult::Code::TimeLimitExceeded);

  EXPECT_EQ(origins.size(), 1U);
}

} // namespace

} // namespace krserial
