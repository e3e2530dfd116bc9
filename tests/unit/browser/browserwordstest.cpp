#include "logic/browser/browserwords.h"

#include <gtest/gtest.h>

#include <string>

using namespace krgui;

TEST(BrowserWords, Types_HaveTheirWordsAndAnyOtherIsUnexpected) {
  struct {
    int type;
    const char* word;
  } constexpr kRows[] = {{0, "Integer"}, {1, "Enumeration"}, {2, "Boolean"},    {3, "String"},      {4, "Command"},
                         {5, "Float"},   {6, "Register"},    {7, "Unexpected"}, {-1, "Unexpected"}, {99, "Unexpected"}};

  for (const auto& row : kRows)
    EXPECT_STREQ(TypeToText(static_cast<KrGenType>(row.type)), row.word) << row.type;
}

TEST(BrowserWords, Visibilities_HaveTheirWordsAndAnyOtherIsUnexpected) {
  struct {
    int visibility;
    const char* word;
  } constexpr kRows[] = {{0, "Beginner"},  {1, "Expert"},     {2, "Guru"},
                         {3, "Invisible"}, {4, "Unexpected"}, {-1, "Unexpected"}};

  for (const auto& row : kRows)
    EXPECT_STREQ(VisibilityToText(static_cast<KrGenVisibility>(row.visibility)), row.word) << row.visibility;
}

TEST(BrowserWords, NameSpaces_HaveTheirWordsAndAnyOtherIsUnexpected) {
  struct {
    int nameSpace;
    const char* word;
  } constexpr kRows[] = {{0, "Standard"}, {1, "Custom"}, {2, "Unexpected"}, {-1, "Unexpected"}};

  for (const auto& row : kRows)
    EXPECT_STREQ(NameSpaceToText(static_cast<KrGenNameSpace>(row.nameSpace)), row.word) << row.nameSpace;
}

TEST(BrowserWords, NamesOfIPAddresses_AreFifteen) {
  constexpr const char* kNames[] = {
      "IPAddress",
      "LocalIPAddress",
      "DeviceIPAddress",
      "GevCurrentIPAddress",
      "GevCurrentSubnetMask",
      "GevCurrentDefaultGateway",
      "GevPersistentIPAddress",
      "GevPersistentSubnetMask",
      "GevPersistentDefaultGateway",
      "GevMCDA",
      "GevSCDA",
      "MulticastIPAddress",
      "SourceIPAddress",
      "SourceSCDA",
      "GevPrimaryApplicationIPAddress",
  };
  static_assert(std::size(kNames) == 15);

  for (const char* name : kNames) {
    EXPECT_TRUE(IsIPAddressName(name)) << name;
    EXPECT_FALSE(IsMACAddressName(name)) << name;
  }
}

TEST(BrowserWords, NamesThatDiffer_AreNoAddresses) {
  struct {
    const char* description;
    std::string name;
  } const kRows[] = {
      {"empty", ""},
      {"lower case", "ipaddress"},
      {"another case within", "GevCurrentIpAddress"},
      {"a blank behind", "IPAddress "},
      {"a part", "Address"},
      {"a longer one", "GevCurrentIPAddress2"},
      {"MAC in lower case", "gevmacaddress"},
      {"MAC of another kind", "MACAddress"},
      {"ten thousand characters", std::string(10000, 'I')},
  };

  for (const auto& row : kRows) {
    EXPECT_FALSE(IsIPAddressName(row.name)) << row.description;
    EXPECT_FALSE(IsMACAddressName(row.name)) << row.description;
  }
}

TEST(BrowserWords, NameOfTheMACAddress_IsNoIPAddress) {
  EXPECT_TRUE(IsMACAddressName("GevMACAddress"));
  EXPECT_FALSE(IsIPAddressName("GevMACAddress"));
}
