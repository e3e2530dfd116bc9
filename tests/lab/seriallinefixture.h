#pragma once
// Serial ports of simulated cameras behind the public classes, for tests of what travels on them.

#include "labfixture.h"

#include "krsystem/ibytechannel.h"
#include "krtransport/krsimulatedfaults.h"
#include "simulation/labfile/labreader.h"

#include <stdexcept>
#include <string>
#include <string_view>

/// A lab of one camera with the serial ports that a text in a lab file's form says.
inline krtransport::Lab MakeSerialLab(const std::string& aPorts, const std::string& aFurther = {}) {
  krtransport::Lab lab;
  const KrResult read = krtransport::ParseLab("adapters:\n"
                                              "- name: a\n"
                                              "  addresses: [{address: 192.168.77.1, mask: 255.255.255.0}]\n"
                                              "  devices:\n"
                                              "  - {kind: gigeVision, model: M, serial: S1, address: 192.168.77.10,\n"
                                              "     mask: 255.255.255.0, mac: \"02:4b:52:00:77:10\",\n"
                                              "     serialPorts: [" +
                                                  aPorts + "]" + aFurther + "}\n",
                                              "lab.yaml", lab);
  EXPECT_TRUE(read.IsOK()) << read.GetDescription().CStr();
  return lab;
}

class SerialLineTest : public LabTest {
protected:
  using Channel = std::shared_ptr<krsystem::IByteChannel>;

  explicit SerialLineTest(const krtransport::Lab& aLab = krtransport::GetBuiltInLab(),
                          std::shared_ptr<krtransport::ICameraClock> aClock = nullptr)
      : LabTest(std::move(aClock), aLab) {}

  /// Opens the camera, and a port of it.
  Channel OpenPort(std::uint32_t aNumber) {
    if (!mDevice) {
      EXPECT_TRUE(Open(kMonoMAC, mDevice).IsOK());
    }
    Channel channel = mDevice ? mDevice->GetByteChannel(aNumber) : nullptr;
    const KrResult opened = channel ? channel->Open() : KrResult(KrResult::Code::NotFound);
    EXPECT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    return channel;
  }
  static KrResult Write(krsystem::IByteChannel& aChannel, std::string_view aBytes) {
    std::size_t written = 0;
    return aChannel.Write(reinterpret_cast<const std::uint8_t*>(aBytes.data()), aBytes.size(), written,
                          kGenerousLimitMs);
  }
  /// What has come by now, without waiting.
  static std::string ReadWaiting(krsystem::IByteChannel& aChannel) {
    std::string text(65536, '\0');
    std::size_t read = 0;
    (void)aChannel.Read(reinterpret_cast<std::uint8_t*>(text.data()), text.size(), read, 0); // None is no failure here.
    text.resize(read);
    return text;
  }
  /// Exactly so many bytes; less when they do not come.
  static std::string ReadBytes(krsystem::IByteChannel& aChannel, std::size_t aSize) {
    std::string text(aSize, '\0');
    std::size_t sum = 0;
    while (sum < aSize) {
      std::size_t read = 0;
      const KrResult result =
          aChannel.Read(reinterpret_cast<std::uint8_t*>(text.data()) + sum, aSize - sum, read, kGenerousLimitMs);
      EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
      if (!result.IsOK())
        break;
      sum += read;
    }
    text.resize(sum);
    return text;
  }
  KrGenParameterArray& GetArray() {
    KrGenParameterArray* const array = mDevice->GetParameters();
    if (!array)
      throw std::runtime_error("the camera has no parameters");
    return *array;
  }
  KrSimulatedSerialCounts GetCounts(std::uint32_t aNumber) {
    KrSimulatedSerialCounts counts;
    EXPECT_TRUE(mLab->GetFaults(kMonoMAC)->GetSerialCounts(aNumber, counts).IsOK());
    return counts;
  }

  std::unique_ptr<KrDevice> mDevice;
};
