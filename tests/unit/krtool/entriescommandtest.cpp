#include "entriescommand.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

#include <sstream>

namespace krtool {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class EntriesListed : public testing::Test {
protected:
  int List(const char* aName, const KrResult& aLoss = {}) {
    return ListEntries(
        *mCamera.array, "cam", [aLoss] { return aLoss; }, aName, mOut, mErrors);
  }

  DescribedCamera mCamera{R"(
    <Category Name="Root"><pFeature>Mode</pFeature><pFeature>Width</pFeature></Category>
    <Enumeration Name="Mode">
      <EnumEntry Name="Single"><ToolTip>One&#9;frame</ToolTip><DisplayName>Single Shot</DisplayName><Value>7</Value>
        </EnumEntry>
      <EnumEntry Name="Away"><pIsAvailable>Zero</pIsAvailable><Value>-2</Value></EnumEntry>
      <EnumEntry Name="Never"><pIsImplemented>Zero</pIsImplemented><Value>1</Value></EnumEntry>
      <Value>7</Value></Enumeration>
    <Integer Name="Zero"><Value>0</Value></Integer>
    <Integer Name="Width"><Value>64</Value></Integer>)"};
  std::ostringstream mOut;
  std::ostringstream mErrors;
};

TEST_F(EntriesListed, AllEntries_StandInTheOrderOfTheDescription) {
  EXPECT_EQ(List("Mode"), 0);

  EXPECT_EQ(mOut.str(), "entry\tvalue\taccess\tdisplay name\ttooltip\n"
                        "Single\t7\tRO\tSingle Shot\tOne?frame\n"
                        "Away\t-2\tNA\tAway\t\n"
                        "Never\t1\tNI\tNever\t\n");
  EXPECT_EQ(mErrors.str(), "");
}

TEST_F(EntriesListed, WhatIsNoEnumeration_IsRefused) {
  EXPECT_EQ(List("Width"), 1);

  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr("listing the entries of Width of cam"), HasSubstr("Integer")));
}

TEST_F(EntriesListed, UnknownName_FailsWithThoseThatComeNear) {
  EXPECT_EQ(List("Mod"), 1);

  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), HasSubstr("Mode?"));
}

TEST_F(EntriesListed, DeviceThatFallsSilent_FailsBehindTheLines) {
  EXPECT_EQ(List("Mode", {KrResult::Code::ConnectionLost, "It is gone."}), 1);

  EXPECT_THAT(mOut.str(), HasSubstr("\nSingle\t"));
  EXPECT_EQ(mErrors.str(), "krtool: cam did not answer all along: It is gone.\n");
}

} // namespace
} // namespace krtool
