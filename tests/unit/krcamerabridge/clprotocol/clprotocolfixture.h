#pragma once
// A test's camera and the driver for it, connected through CLProtocolPort.

#include "await.h"
#include "clprotocol/clprotocolport.h"
#include "describedcamera.h"
#include "driverfolder.h"
#include "testcamera.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

namespace krcamerabridge {

inline const std::uint32_t kGenerousMs = krtest::GetGenerousMs();
/// A driver that hangs is found out soon, and all else has the time that it needs, also where many drivers are started
/// at once on a slow machine.
constexpr CLDriverTimes kHangTimes{1000, 10000, 10000, 10000, 10000, 10000, 10000, 10000, 1000, 10000};
inline const CLDriverTimes kGenerousTimes{2000,        kGenerousMs, kGenerousMs, kGenerousMs, kGenerousMs,
                                          kGenerousMs, kGenerousMs, kGenerousMs, kGenerousMs, kGenerousMs};

constexpr std::uint64_t kProcessID = 0xFFFF0000; // Registers of the test's driver.
constexpr std::uint64_t kRefused = 0xFFFF0010;
constexpr std::uint64_t kForgetful = 0xFFFF0020;
constexpr std::uint64_t kSlow = 0xFFFF0030;
constexpr std::uint64_t kCancelled = 0xFFFF0040;
constexpr std::uint64_t kContinued = 0xFFFF0060;
constexpr std::uint64_t kChildID = 0xFFFF0050;

class CLProtocolTest : public testing::Test {
protected:
  static constexpr const char* kNodes = R"(
<Category Name="Root" NameSpace="Standard"><pFeature>Gain</pFeature></Category>
<IntReg Name="Gain"><Address>0x100</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Endianess>BigEndian</Endianess></IntReg>)";
  static constexpr const char* kBestXMLID = "SchemaVersion.1.1@Maker#Family@XMLVersion.1.2.0";

  KrResult Connect(CLProtocolPort& aPort, const std::string& aDriver, const std::stop_token& aStop = {}) {
    return aPort.Connect(folder.GetTemplate(aDriver), kBestXMLID, description, aStop);
  }
  void ConnectGood() {
    folder.Install("libgood.so");
    const KrResult result = Connect(port, "libgood.so");
    ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  }
  KrResult Read(std::uint64_t aAddress, std::uint32_t& aValue) {
    return port.Read(aAddress, &aValue, sizeof aValue, kGenerousMs);
  }
  KrResult WriteByte(std::uint64_t aAddress, std::uint8_t aValue, const std::stop_token& aCancel = {}) {
    return port.Write(aAddress, &aValue, 1, kGenerousMs, aCancel);
  }
  // Waits for a driver whose camera is not done to ask it again and again.
  void AwaitPending() {
    constexpr int kSome = 3;
    const int reads = line.CountReads();
    EXPECT_TRUE(krtest::Await([&] { return line.CountReads() >= reads + kSome; }));
  }
  // Reads until the camera answers again.
  KrResult ReadUntilAnswered() {
    std::uint32_t value = 0;
    KrResult result;
    EXPECT_TRUE(krtest::Await([&] {
      result = Read(0x100, value);
      return result != KrResult::Code::TimeLimitExceeded;
    }));
    return result;
  }

  krtest::DriverFolder folder;
  krtest::CameraEnd camera{krtest::TestCamera(MakeDescription(kNodes))};
  krtest::RatedLine line{camera.GetLine()};
  CLProtocolPort port{line, kGenerousTimes};
  KrGenDescription description;
};

} // namespace krcamerabridge
