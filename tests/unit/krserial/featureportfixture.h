#pragma once
// A serial port behind the features of a camera, with maps of the test's own.

#include "await.h"
#include "featuredevice.h"
#include "krserial/krdeviceserialport.h"
#include "krserial/krserialfeatures.h"
#include "scopedvariable.h"
#include "temporaryfolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace krtest {

inline const std::uint32_t kGenerousMs = GetGenerousMs();

inline constexpr const char* kUartMap = R"(serialFeatures:
  - name: UART
    way: registers
    selector: UartSelector
    ports: {Serial0: Uart0, Bulk3: Uart1}
    receiveCommand: UartReceive
    receivedCount: UartReceived
    receiveData: UartReceiveData
    transmitRoom: UartRoom
    transmitData: UartTransmitData
    transmitLength: UartLength
    transmitCommand: UartTransmit
)";

// Tests that read no files of the user who runs them.
class FeaturePortTest : public testing::Test {
protected:
  ~FeaturePortTest() override { KrSerialFeatures::RemoveAdded(); }

  void AddMap(const std::string& aText) {
    const std::string file = folder.GetFile("map.yaml");
    TemporaryFolder::WriteFile(file, aText);
    const KrResult added = KrSerialFeatures::AddFile(file);
    ASSERT_TRUE(added.IsOK()) << added.GetDescription().CStr();
  }
  static std::vector<std::string> ListPorts(IKrDeviceAdapter* aAdapter) {
    std::vector<std::string> names;
    for (const KrDeviceSerial port : kDeviceSerialPorts)
      if (KrDeviceSerialPort::IsSupported(aAdapter, port))
        names.push_back(GetPortName(port).ToUtf8());
    return names;
  }
  KrResult Write(const std::string& aText) {
    return port.Write(reinterpret_cast<const std::uint8_t*>(aText.data()), static_cast<std::uint32_t>(aText.size()),
                      written);
  }
  KrResult Read(std::uint32_t aTimeoutMs = kGenerousMs) {
    text.assign(64, '\0');
    std::uint32_t read = 0;
    KrResult result = port.Read(reinterpret_cast<std::uint8_t*>(text.data()), 64, read, aTimeoutMs);
    text.resize(read);
    return result;
  }
  std::string ReadAll(std::size_t aSize) {
    std::string all;
    while (all.size() < aSize && Read().IsOK())
      all += text;
    return all;
  }

  TemporaryFolder folder;
  const ScopedVariable settings{"XDG_CONFIG_HOME", folder.GetPath()};
  KrDeviceSerialPort port;
  std::uint32_t written = 0;
  std::string text;
};

inline void Receive(FeatureDevice& aDevice, std::size_t aUart, const std::string& aText) {
  aDevice.Port().With([&](FeaturePort& aPort) { aPort.uarts[aUart].received += aText; });
}

} // namespace krtest
