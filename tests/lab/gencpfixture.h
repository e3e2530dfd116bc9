#pragma once
// Packets of GenCP 1.3.1 that were worked out by hand from the standard, and a camera behind a port to send them to.

#include "clcamerafixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Reading 4 bytes from 0, the version, as request 0; and GenCP 1.3 as the answer.
inline constexpr const char* kReadVersion = "0100 b7f3 b7ef 0000 4000 0800 000c 0000 0000 0000 0000 0000 0000 0004";
inline constexpr const char* kVersion = "0100 f7fa f7f6 0000 0000 0801 0004 0000 0001 0003";
// Reading 5 bytes of the model's name, as request 1: an odd number of bytes.
inline constexpr const char* kReadModel = "0100 b7f2 b7a9 0000 4000 0800 000c 0001 0000 0000 0000 0044 0000 0005";
inline constexpr const char* kModel = "0100 f7f8 da23 0000 0000 0801 0005 0001 4d6f 6465 6c";
// Writing 512 to Width, as request 2; 4 bytes were written.
inline constexpr const char* kWriteWidth = "0100 b7ef b5e6 0000 4000 0802 000c 0002 0000 0000 0001 0008 0000 0200";
inline constexpr const char* kWidthWritten = "0100 f7f6 f7f2 0000 0000 0803 0004 0002 0000 0004";
// Writing the bit of 115200 baud to the current speed, as request 3.
inline constexpr const char* kWriteRate = "0100 b7ee b7d8 0000 4000 0802 000c 0003 0000 0000 0002 0004 0000 0010";
inline constexpr const char* kRateWritten = "0100 f7f5 f7f1 0000 0000 0803 0004 0003 0000 0004";
// The answer takes half a second, as the pending acknowledge says, with a second to spare.
inline constexpr const char* kPending = "0100 f7f4 f218 0000 0000 0805 0004 0002 0000 05dc";

inline constexpr std::size_t kAnswerBytes = 20;

inline constexpr std::uint16_t kReadMemory = 0x0800;
inline constexpr std::uint16_t kWriteMemory = 0x0802;

inline std::string MakeWord(std::uint64_t aWord) {
  return {static_cast<char>(aWord >> 8), static_cast<char>(aWord)};
}

inline std::string MakeNumber(std::uint64_t aNumber, int aBytes) {
  std::string bytes;
  for (int shift = 8 * aBytes - 8; shift >= 0; shift -= 8)
    bytes += shift < 64 ? static_cast<char>(aNumber >> shift) : '\0';
  return bytes;
}

inline std::uint64_t GetNumber(std::string_view aBytes) {
  std::uint64_t number = 0;
  for (const char byte : aBytes)
    number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

// RFC 768's sum, as GenCP takes it.
inline std::string MakeSum(std::string aBytes) {
  aBytes += std::string(aBytes.size() % 2, '\0');
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < aBytes.size(); i += 2)
    sum += GetNumber(std::string_view(aBytes).substr(i, 2));
  return MakeWord(0xFFFF - (sum == 0 ? 0 : (sum - 1) % 0xFFFF + 1));
}

inline std::string MakeCommand(std::uint16_t aFlags, std::uint16_t aID, std::uint16_t aRequest,
                               const std::string& aData) {
  const std::string header = MakeWord(aFlags) + MakeWord(aID) + MakeWord(aData.size()) + MakeWord(aRequest);
  const std::string channel(2, '\0');
  return "\x01" + std::string(1, '\0') + MakeSum(channel + header) + MakeSum(channel + header + aData) + channel +
         header + aData;
}

class GenCPTest : public CLCameraTest {
protected:
  explicit GenCPTest(const std::string& aCameraKeys = "protocol: GenCP", const std::string& aPortKeys = {},
                     const std::string& aGrabber = "{sources: 2}")
      : CLCameraTest(MakeGrabberLab(aCameraKeys, aPortKeys, aGrabber)) {}

  /// Sends a command and gives the answer's status; its data go to mData.
  std::uint16_t Ask(std::uint16_t aID, const std::string& aData, std::uint16_t aFlags = 0x4000) {
    mRequest = static_cast<std::uint16_t>(mRequest % 0xFFFF + 1);
    Send(MakeCommand(aFlags, aID, mRequest, aData));
    return ReceiveAnswer(static_cast<std::uint16_t>(aID | 1));
  }
  std::uint16_t ReceiveAnswer(std::uint16_t aID) {
    const std::string header = Receive(16);
    if (header.size() < 16)
      return 0xFFFF;
    mData = Receive(GetNumber(header.substr(12, 2)));
    EXPECT_EQ(ToHex(header.substr(0, 2)), "01 00");
    EXPECT_EQ(ToHex(header.substr(2, 2)), ToHex(MakeSum(header.substr(6))));
    EXPECT_EQ(ToHex(header.substr(4, 2)), ToHex(MakeSum(header.substr(6) + mData)));
    EXPECT_EQ(GetNumber(header.substr(10, 2)), aID);
    EXPECT_EQ(GetNumber(header.substr(14, 2)), mRequest);
    return static_cast<std::uint16_t>(GetNumber(header.substr(8, 2)));
  }
  std::uint16_t AskRead(std::uint64_t aAddress, std::uint32_t aLength) {
    return Ask(kReadMemory, MakeNumber(aAddress, 8) + MakeNumber(aLength, 4));
  }
  std::uint16_t AskWrite(std::uint64_t aAddress, const std::string& aBytes) {
    return Ask(kWriteMemory, MakeNumber(aAddress, 8) + aBytes);
  }
  std::string ReadAll(std::uint64_t aAddress, std::uint64_t aSize) {
    constexpr std::uint64_t kMostBytes = 1008;
    std::string bytes;
    while (bytes.size() < aSize) {
      const auto piece = static_cast<std::uint32_t>(std::min(kMostBytes, aSize - bytes.size()));
      if (AskRead(aAddress + bytes.size(), piece) != 0 || mData.size() != piece)
        break;
      bytes += mData;
    }
    return bytes;
  }

  std::uint16_t mRequest = 0x1000;
  std::string mData;
};
