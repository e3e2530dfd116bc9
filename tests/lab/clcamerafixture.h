#pragma once
// A Camera Link camera behind a port of a simulated frame grabber, for tests that talk to it as an application does:
// over KrDeviceSerialPort, byte by byte.

#include "seriallinefixture.h"
#include "testclocks.h"

#include "krdevice/krdeviceadapter.h"
#include "krserial/krdeviceserialport.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The texts of the camera, whose further keys are a flow map's.
inline std::string MakeCameraKeys(const std::string& aFurther) {
  return "{vendor: Maker, model: Model, family: Fam, version: \"1.0\", serial: SN7, " + aFurther + "}";
}

/// The lab of a frame grabber with one camera behind Serial0.
inline krtransport::Lab MakeGrabberLab(const std::string& aCameraKeys, const std::string& aPortKeys = {},
                                       const std::string& aGrabber = "{sources: 2}") {
  return MakeSerialLab("{port: Serial0, behind: camera, camera: " + MakeCameraKeys(aCameraKeys) + aPortKeys + "}",
                       ", frameGrabber: " + aGrabber);
}

/// The bytes of a text "01 0a" as hexadecimal, and back.
inline std::string FromHex(std::string_view aHex) {
  std::string bytes;
  std::string digits;
  for (const char digit : aHex) {
    if (digit == ' ')
      continue;
    digits += digit;
    if (digits.size() < 2)
      continue;
    bytes += static_cast<char>(std::stoi(digits, nullptr, 16));
    digits.clear();
  }
  return bytes;
}

inline std::string ToHex(std::string_view aBytes) {
  std::string hex;
  for (const char byte : aBytes) {
    char digits[4];
    std::snprintf(digits, sizeof(digits), "%s%02x", hex.empty() ? "" : " ", static_cast<unsigned char>(byte));
    hex += digits;
  }
  return hex;
}

/// A text in the form of ToHex.
inline std::string Hex(std::string_view aHex) {
  return ToHex(FromHex(aHex));
}

/// The clock moves on by itself to whatever a line or a camera waits for.
class CLCameraTest : public LabTest {
protected:
  explicit CLCameraTest(const krtransport::Lab& aLab,
                        std::shared_ptr<JumpingClock> aClock = std::make_shared<JumpingClock>())
      : LabTest(aClock, aLab), mClock(std::move(aClock)) {}
  void SetUp() override { OpenGrabber(kMonoMAC); }

  void OpenGrabber(const char* aID, KrDeviceSerial aPort = KrDeviceSerial::Serial0) {
    ASSERT_TRUE(Open(aID, mDevice).IsOK());
    mAdapter.emplace(*mDevice);
    OpenPort(aPort);
  }
  void OpenPort(KrDeviceSerial aPort) {
    (void)mPort.Close(); // Also where none is open.
    ASSERT_TRUE(mPort.Open(&*mAdapter, aPort).IsOK());
  }
  void Send(std::string_view aBytes) {
    std::uint32_t written = 0;
    ASSERT_TRUE(mPort
                    .Write(reinterpret_cast<const std::uint8_t*>(aBytes.data()),
                           static_cast<std::uint32_t>(aBytes.size()), written)
                    .IsOK());
    ASSERT_EQ(written, aBytes.size());
  }
  void SendHex(std::string_view aHex) { Send(FromHex(aHex)); }
  /// So many bytes; less when they do not come within a generous time.
  std::string Receive(std::size_t aSize) {
    std::string bytes;
    while (bytes.size() < aSize) {
      std::uint8_t buffer[1024];
      std::uint32_t read = 0;
      const auto size = static_cast<std::uint32_t>(std::min(aSize - bytes.size(), sizeof(buffer)));
      const KrResult result = mPort.Read(buffer, size, read, kGenerousLimitMs);
      EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr() << " after " << ToHex(bytes);
      if (!result.IsOK())
        break;
      bytes.append(buffer, buffer + read);
    }
    return bytes;
  }
  std::string ReceiveHex(std::size_t aSize) { return ToHex(Receive(aSize)); }
  void SetRate(const char* aEntry) {
    ASSERT_TRUE(mDevice->GetParameters()->GetEnum("Uart0BaudRate")->SetEntry(aEntry).IsOK());
  }
  void SetPower(bool aIsOn) { ASSERT_TRUE(mDevice->GetParameters()->GetBoolean("PoclEnable")->SetValue(aIsOn).IsOK()); }
  void AdvanceMs(std::uint64_t aMs) { mClock->Advance(aMs * 1000000); }
  /// Waits until so many bytes have gone to the camera in all.
  void AwaitSent(std::size_t aBytes) {
    ASSERT_TRUE(WaitUntil([&] {
      KrSimulatedSerialCounts counts;
      return GetFaults()->GetSerialCounts(0, counts).IsOK() && counts.sent == aBytes;
    }));
  }
  std::shared_ptr<KrSimulatedFaults> GetFaults() { return mLab->GetFaults(kMonoMAC); }

  const std::shared_ptr<JumpingClock> mClock;
  std::unique_ptr<KrDevice> mDevice;
  std::optional<KrDeviceAdapter> mAdapter;
  KrDeviceSerialPort mPort;
};
