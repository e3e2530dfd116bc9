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

struct ReachRow {
  const char* name;
  const char* host;
  const char* mask;
  const char* device;
  bool isReached;
};

constexpr ReachRow kReaches[] = {
    {"device of the subnet", "192.168.1.10", "255.255.255.0", "192.168.1.20", true},
    {"the host's own address", "192.168.1.10", "255.255.255.0", "192.168.1.10", true},
    {"another subnet", "192.168.1.10", "255.255.255.0", "192.168.2.20", false},
    {"the subnet itself", "192.168.1.10", "255.255.255.0", "192.168.1.0", false},
    {"the subnet's broadcast address", "192.168.1.10", "255.255.255.192", "192.168.1.63", false},
    {"an ordinary address that ends by 255", "10.0.0.1", "255.0.0.0", "10.0.1.255", true},
    {"the other of two addresses", "10.0.0.1", "255.255.255.254", "10.0.0.0", true},
    {"a neighbour of an address that is alone", "10.0.0.1", "255.255.255.255", "10.0.0.2", false},
    {"no mask", "10.0.0.1", "0.0.0.0", "10.0.0.2", false},
    {"a host without address", "0.0.0.0", "255.0.0.0", "0.0.0.2", false},
    {"a device without address", "10.0.0.1", "255.0.0.0", "0.0.0.0", false},
};

} // namespace

TEST(IPv4Address, IsReachedFrom_EachPair_IsAsStated) {
  for (const ReachRow& row : kReaches) {
    SCOPED_TRACE(row.name);

    EXPECT_EQ(krsystem::IsReachedFrom(ParseIPv4(row.host).value(), ParseIPv4(row.mask).value(),
                                      ParseIPv4(row.device).value()),
              row.isReached);
  }
}

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

TEST(IPv4Address, IsContiguousMask_OnesAndThenZeros_IsOne) {
  for (const std::uint32_t mask : {0u, 0x80000000u, 0xFF000000u, 0xFFFFFE00u, 0xFFFFFFFEu, 0xFFFFFFFFu})
    EXPECT_TRUE(krsystem::IsContiguousMask(mask)) << mask;
  for (const std::uint32_t mask : {1u, 0x7FFFFFFFu, 0xFF00FF00u, 0xFFFFFFFDu, 0x00FFFFFFu})
    EXPECT_FALSE(krsystem::IsContiguousMask(mask)) << mask;
}
