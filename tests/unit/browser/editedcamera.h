#pragma once
// A camera with a feature of every type, over registers that are read anew each time: what tests of editing stand on.

#include "browsedcamera.h"

#include <cstring>

namespace krgui {

// Registers of 8 bytes, each with the feature on it.
inline constexpr int kWidth = 0x00;
inline constexpr int kMask = 0x08;
inline constexpr int kAddress = 0x10;
inline constexpr int kMAC = 0x18;
inline constexpr int kMode = 0x20;
inline constexpr int kFlip = 0x28;
inline constexpr int kStart = 0x30;
inline constexpr int kKey = 0x38;
inline constexpr int kFixed = 0x40;
inline constexpr int kGain = 0x48;
inline constexpr int kUserID = 0x50;
inline constexpr int kLock = 0x60;
inline constexpr int kHas = 0x68;

inline std::string OnRegister(const std::string& aName, const std::string& aMore = {}) {
  return "<Integer Name=\"" + aName + "\"><pValue>" + aName + "Raw</pValue>" + aMore + "</Integer>\n";
}

inline const std::string kEditedCamera =
    MakeInteger("WidthRaw", kWidth) + OnRegister("Width", "<Min>0</Min><Max>1000</Max><Unit>px</Unit>") +
    MakeInteger("MaskRaw", kMask) + OnRegister("Mask", "<Representation>HexNumber</Representation>") +
    MakeInteger("GevPersistentIPAddressRaw", kAddress) + OnRegister("GevPersistentIPAddress") +
    MakeInteger("GevMACAddressRaw", kMAC) + OnRegister("GevMACAddress") + MakeInteger("ModeRaw", kMode) + R"(
<Integer Name="No"><Value>0</Value></Integer>
<Enumeration Name="Mode">
  <EnumEntry Name="Off"><ToolTip>Does nothing</ToolTip><DisplayName>Switched off</DisplayName><Value>0</Value></EnumEntry>
  <EnumEntry Name="Old"><pIsAvailable>No</pIsAvailable><Value>1</Value></EnumEntry>
  <EnumEntry Name="Slow"><Visibility>Expert</Visibility><Value>10</Value></EnumEntry>
  <EnumEntry Name="Fast"><Value>-3</Value></EnumEntry>
  <pValue>ModeRaw</pValue>
</Enumeration>
)" + MakeInteger("FlipRaw", kFlip) +
    "<Boolean Name=\"Flip\"><pValue>FlipRaw</pValue></Boolean>\n" + MakeInteger("StartRaw", kStart) +
    "<Command Name=\"Start\"><pValue>StartRaw</pValue><CommandValue>5</CommandValue></Command>\n" +
    MakeInteger("Has", kHas) +
    "<Command Name=\"Stop\"><pIsAvailable>Has</pIsAvailable><pValue>StartRaw</pValue><CommandValue>6</CommandValue>"
    "</Command>\n" +
    MakeInteger("Key", kKey, "WO") + MakeInteger("Fixed", kFixed, "RO") + R"(
<FloatReg Name="GainRaw"><Address>0x48</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Endianess>LittleEndian</Endianess></FloatReg>
<Float Name="Gain"><pValue>GainRaw</pValue><Unit>dB</Unit></Float>
<StringReg Name="UserID"><Address>0x50</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable></StringReg>
<Register Name="Table"><Address>0x80</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
)" + MakeInteger("Lock", kLock) +
    OnRegister("Stepped", "<Min>0</Min><Max>10</Max><Inc>3</Inc>") + MakeInteger("SteppedRaw", 0x70) +
    OnRegister("Bounded", "<pMax>WidthRaw</pMax>") + MakeInteger("BoundedRaw", 0x78) +
    "<Integer Name=\"Locked\"><pIsLocked>Lock</pIsLocked><pValue>WidthRaw</pValue></Integer>\n" +
    MakeCategory("Root", {"Width", "Mask", "GevPersistentIPAddress", "GevMACAddress", "Mode", "Flip", "Start", "Stop",
                          "Key", "Fixed", "Gain", "UserID", "Table", "Stepped", "Bounded", "Locked"});

class EditedCameraTest : public testing::Test {
protected:
  void SetInteger(int aAddress, std::int64_t aValue) {
    ASSERT_TRUE(mCamera.memory.Write(static_cast<std::uint64_t>(aAddress), &aValue, sizeof aValue, 1000).IsOK());
  }
  void SetFloat(double aValue) { ASSERT_TRUE(mCamera.memory.Write(kGain, &aValue, sizeof aValue, 1000).IsOK()); }
  void SetText(const char* aText) {
    ASSERT_TRUE(mCamera.memory.Write(kUserID, aText, std::strlen(aText) + 1, 1000).IsOK());
  }
  std::int64_t GetInteger(int aAddress) {
    std::int64_t value = 0;
    EXPECT_TRUE(mCamera.memory.Read(static_cast<std::uint64_t>(aAddress), &value, sizeof value, 1000).IsOK());
    return value;
  }
  void RefuseWrites() {
    mCamera.port.SetFault([](const RegisterAccessRecord& access) {
      return access.isWrite ? KrResult(KrResult::Code::AccessDenied, "The device refuses.") : KrResult();
    });
  }

  BrowsedCamera mCamera{kEditedCamera};
};

} // namespace krgui
