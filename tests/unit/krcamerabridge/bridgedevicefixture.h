#pragma once
// An open frame grabber of the tests' own: two sources with sizes, and a serial port with a GenCP camera behind it.

#include "describedlink.h"
#include "gencpcamera.h"
#include "krdevice/krdevice.h"
#include "krdevice/krdevicegev.h"

#include <array>
#include <memory>
#include <string>
#include <utility>

namespace krcamerabridge {

/// The features whose registers lie one behind the other, of both source and camera.
inline constexpr std::array kSizeFeatures = {"PixelFormat", "Width", "Height", "OffsetX", "OffsetY"};
inline constexpr std::uint64_t kSelectorRegister = 0x1000;
inline constexpr std::uint64_t kSourceRegisters = 0x2000;
inline constexpr std::uint64_t kSourceBytes = 0x100;
inline constexpr std::uint64_t kPoCLRegister = 0x1010;

/// The register of a feature behind a begin.
inline std::uint64_t FindRegister(std::uint64_t aBegin, std::string_view aName) {
  for (std::size_t i = 0; i < kSizeFeatures.size(); ++i)
    if (aName == kSizeFeatures[i])
      return aBegin + 4 * i;
  ADD_FAILURE() << aName << " has no register.";
  return 0;
}

/// The nodes of the features, whose registers lie from aBegin on; further elements of each register are the caller's.
/// Width and offset together are at most aWidthMax.
inline std::string MakeSizeNodes(std::uint64_t aBegin, const std::string& aWidthMax,
                                 const std::string& aElements = {}) {
  std::string nodes;
  for (const char* const name : kSizeFeatures) {
    const std::string word = name;
    const std::string address = std::to_string(FindRegister(aBegin, name));
    nodes += "<IntReg Name=\"" + word + "Reg\"><Address>" + address + "</Address>" + aElements +
             "<Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
             "<Endianess>BigEndian</Endianess></IntReg>\n";
    if (word == "PixelFormat")
      nodes += "<Enumeration Name=\"PixelFormat\"><EnumEntry Name=\"Mono8\"><Value>0</Value></EnumEntry>"
               "<EnumEntry Name=\"Mono16\"><Value>1</Value></EnumEntry><pValue>PixelFormatReg</pValue></Enumeration>\n";
    else if (word == "Width")
      nodes += "<IntSwissKnife Name=\"WidthMax\"><pVariable Name=\"O\">OffsetXReg</pVariable><Formula>" + aWidthMax +
               " - O</Formula></IntSwissKnife>\n"
               "<Integer Name=\"Width\"><pValue>WidthReg</pValue><Min>0</Min><pMax>WidthMax</pMax></Integer>\n";
    else
      nodes += "<Integer Name=\"" + word + "\"><pValue>" + word + "Reg</pValue><Min>0</Min></Integer>\n";
  }
  return nodes;
}

inline std::string MakeGrabberNodes() {
  return "<Enumeration Name=\"SourceSelector\"><EnumEntry Name=\"Source0\"><Value>0</Value></EnumEntry>"
         "<EnumEntry Name=\"Source1\"><Value>1</Value></EnumEntry><pValue>SourceSelectorReg</pValue>"
         "<pSelected>Width</pSelected></Enumeration>\n" +
         MakeIntReg("SourceSelectorReg", "0x1000") +
         "<Boolean Name=\"PoCLEnable\"><pValue>PoCLReg</pValue></Boolean>\n" + MakeIntReg("PoCLReg", "0x1010") +
         MakeSizeNodes(kSourceRegisters, "1000", "<pIndex Offset=\"256\">SourceSelectorReg</pIndex>");
}

class GrabberDevice {
public:
  explicit GrabberDevice(const std::string& aNodes = MakeGrabberNodes()) {
    auto made = std::make_unique<DescribedLink>(aNodes);
    link = made.get();
    for (std::uint32_t source = 0; source < 2; ++source)
      for (const char* const name : kSizeFeatures)
        link->Poke(GetRegister(source, name), 0);
    link->Poke(kSelectorRegister, 0);
    link->Poke(kPoCLRegister, 0);
    link->byteChannels[0] = camera.GetChannel();
    device = std::make_unique<KrDeviceGEV>(std::move(made), MakeDeviceFields(), KrDeviceAccess::Control);
  }

  KrGenParameterArray& GetParameters() {
    KrGenParameterArray* parameters = nullptr;
    EXPECT_TRUE(device->GetParameters(parameters).IsOK());
    return *parameters;
  }
  static std::uint64_t GetRegister(std::uint32_t aSource, const char* aName) {
    return FindRegister(kSourceRegisters + aSource * kSourceBytes, aName);
  }
  /// What a source has, whichever is selected.
  std::uint32_t Peek(std::uint32_t aSource, const char* aName) { return link->Peek(GetRegister(aSource, aName)); }

  krtest::GenCPCamera camera;
  DescribedLink* link = nullptr; // Until the device ends.
  std::unique_ptr<KrDevice> device;
};

} // namespace krcamerabridge
