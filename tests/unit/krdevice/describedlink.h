#pragma once
// An open device that is a description and memory, with every register access written down.

#include "describedcamera.h"
#include "fakelink.h"

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

/// The description's nodes are those given; it is where GigE Vision devices have theirs.
class DescribedLink : public FakeLink {
public:
  explicit DescribedLink(std::string_view aNodes, FakeBufferSource* aSource = nullptr) : FakeLink(aSource) {
    SetDescription(MakeDescription(aNodes));
  }

  IKrRegisterPort& GetRegisterPort() override { return port; }

  /// Any text in place of the description that was there.
  void SetDescription(const std::string& aText) {
    std::array<char, 512> url = {};
    std::snprintf(url.data(), url.size(), "Local:camera.xml;%llx;%zx",
                  static_cast<unsigned long long>(kDescriptionAddress), aText.size());
    Write(kFirstURL, url.data(), url.size());
    Write(kDescriptionAddress, aText.data(), aText.size());
  }
  /// Registers, unseen by whoever watches the port.
  void Poke(std::uint64_t aAddress, std::uint32_t aValue) {
    const std::array<std::uint8_t, 4> bytes = {
        static_cast<std::uint8_t>(aValue >> 24), static_cast<std::uint8_t>(aValue >> 16),
        static_cast<std::uint8_t>(aValue >> 8), static_cast<std::uint8_t>(aValue)};
    Write(aAddress, bytes.data(), bytes.size());
  }
  std::uint32_t Peek(std::uint64_t aAddress) {
    std::array<std::uint8_t, 4> bytes = {};
    EXPECT_TRUE(memory.Read(aAddress, bytes.data(), bytes.size(), 1000).IsOK());
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes)
      value = value << 8 | byte;
    return value;
  }

  KrGenMemoryPort memory;
  RecordingPort port{memory};

private:
  static constexpr std::uint64_t kFirstURL = 0x0200;
  static constexpr std::uint64_t kDescriptionAddress = 0x100000;

  using FakeLink::Write;
  void Write(std::uint64_t aAddress, const void* aData, std::size_t aLength) {
    EXPECT_TRUE(memory.Write(aAddress, aData, aLength, 1000).IsOK());
  }
};

/// A number in a register of four bytes, most significant first.
inline std::string MakeIntReg(const std::string& aName, const std::string& aAddress,
                              const std::string& aCaching = "WriteThrough") {
  return "<IntReg Name=\"" + aName + "\"><Address>" + aAddress +
         "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>" + aCaching +
         "</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>\n";
}
