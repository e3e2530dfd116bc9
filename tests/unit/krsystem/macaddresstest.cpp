#include "krsystem/macaddress.h"

#include <gtest/gtest.h>

using krsystem::FormatMAC;
using krsystem::MACAddress;
using krsystem::ParseMAC;

namespace {

constexpr MACAddress kAddress = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0xFF};

TEST(MACAddress, FormatMAC_Bytes_AreSixPairsOfSmallDigits) {
  EXPECT_EQ(FormatMAC(kAddress), "00:1a:2b:3c:4d:ff");
}

TEST(MACAddress, ParseMAC_DigitsOfAnyCase_GiveTheBytes) {
  for (const char* text : {"00:1a:2b:3c:4d:ff", "00:1A:2B:3C:4D:FF", "00:1a:2B:3c:4D:fF"})
    EXPECT_EQ(ParseMAC(text), kAddress) << text;
}

TEST(MACAddress, ParseMAC_AnythingElse_GivesNothing) {
  for (const char* text :
       {"", "00:1a:2b:3c:4d", "00:1a:2b:3c:4d:5e:6f", "00-1a-2b-3c-4d-5e", "0g:1a:2b:3c:4d:5e", "-1:1a:2b:3c:4d:5e",
        "001:a:2b:3c:4d:5e", "00:1a:2b:3c:4d:5 ", "00:1a:2b:3c:4d:5e ", "001a2b3c4d5e", "0x:1a:2b:3c:4d:5e"})
    EXPECT_FALSE(ParseMAC(text)) << text;
}

} // namespace
