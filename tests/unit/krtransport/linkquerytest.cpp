#include "gigevision/linkquery.h"

#include <gtest/gtest.h>

namespace {

using namespace krtransport;

TEST(LinkQuery, LinkSpeed_AdapterWithoutOneOrNone_IsUnknown) {
  EXPECT_EQ(GetLinkSpeed("lo"), 0u);
  EXPECT_EQ(GetLinkSpeed("absent0"), 0u);
}

TEST(LinkQuery, Mtu_NoSuchAdapter_IsEthernets) {
  EXPECT_EQ(GetMtu("absent0"), 1500u);
  EXPECT_GE(GetMtu("lo"), 1500u);
}

TEST(LinkQuery, DriverName_NoSuchAdapter_IsEmpty) {
  EXPECT_EQ(GetDriverName("absent0"), "");
}

TEST(LinkQuery, NameLongerThanAnyAdapters_IsNotCutToAnother) {
  const std::string name = "lo" + std::string(30, '\0');

  EXPECT_EQ(GetMtu(name), 1500u);
  EXPECT_EQ(GetMtu("an adapter with a name of many words"), 1500u);
}

} // namespace
