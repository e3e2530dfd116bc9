#include "krsystem/ipv4address.h"

#include <gmock/gmock.h>

using krsystem::FormatIPv4;
using krsystem::ParseIPv4;

namespace {

struct ValidText {
  const char* name;
  const char* text;
  std::uint32_t address;
};

constexpr ValidText kValid[] = {
    {"ordinary", "192.168.1.20", 0xC0A80114},
    {"smallest", "0.0.0.0", 0},
    {"largest", "255.255.255.255", 0xFFFFFFFF},
    {"first field in the most significant byte", "1.2.3.4", 0x01020304},
};

struct InvalidText {
  const char* name;
  const char* text;
};

constexpr InvalidText kInvalid[] = {
    {"empty", ""},
    {"three fields", "1.2.3"},
    {"five fields", "1.2.3.4.5"},
    {"field beyond 255", "1.2.3.256"},
    {"field beyond 32 bits", "1.2.3.4294967297"},
    {"four digits", "1.2.3.0004"},
    {"empty field", "1..3.4"},
    {"point at the end", "1.2.3.4."},
    {"point at the start", ".1.2.3"},
    {"blank before", " 1.2.3.4"},
    {"blank behind", "1.2.3.4 "},
    {"sign", "1.2.3.+4"},
    {"negative", "1.2.3.-4"},
    {"letters", "a.b.c.d"},
    {"hexadecimal", "0x1.2.3.4"},
    {"comma", "1,2,3,4"},
};

} // namespace

TEST(IPv4Address, ParseIPv4_ValidText_GivesAddress) {
  for (const ValidText& row : kValid) {
    SCOPED_TRACE(row.name);

    const std::optional<std::uint32_t> address = ParseIPv4(row.text);

    ASSERT_TRUE(address.has_value());
    EXPECT_EQ(*address, row.address);
  }
}

TEST(IPv4Address, ParseIPv4_InvalidText_GivesNothing) {
  for (const InvalidText& row : kInvalid) {
    SCOPED_TRACE(row.name);

    EXPECT_FALSE(ParseIPv4(row.text).has_value());
  }
}

TEST(IPv4Address, FormatIPv4_Address_IsWhatParsesToIt) {
  for (const ValidText& row : kValid) {
    SCOPED_TRACE(row.name);

    EXPECT_EQ(FormatIPv4(row.address), row.text);
  }
}
