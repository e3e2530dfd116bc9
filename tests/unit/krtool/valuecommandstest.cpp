#include "valuecommands.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

#include <sstream>

namespace krtool {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class ValueCommands : public testing::Test {
protected:
  int Get(const std::vector<std::string>& aNames) { return GetValues(*mCamera.array, "cam", aNames, mOut, mErrors); }
  int Set(const std::vector<std::string>& aPairs) { return SetValues(*mCamera.array, "cam", aPairs, mOut, mErrors); }
  std::size_t CountErrorLines() const {
    const std::string text = mErrors.str();
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }

  DescribedCamera mCamera{R"(
    <Category Name="Root"><pFeature>Width</pFeature><pFeature>Height</pFeature></Category>
    <Integer Name="Width"><Value>64</Value><Min>16</Min><Max>640</Max><Inc>8</Inc></Integer>
    <Integer Name="Height"><Value>32</Value></Integer>
    <Integer Name="Locked"><pIsLocked>One</pIsLocked><Value>1</Value></Integer>
    <Integer Name="One"><Value>1</Value></Integer>
    <Enumeration Name="Mode"><EnumEntry Name="Off"><Value>0</Value></EnumEntry><EnumEntry Name="On"><Value>1</Value>
      </EnumEntry><Value>0</Value></Enumeration>
    <Command Name="Reset"><Value>0</Value><CommandValue>1</CommandValue></Command>
    <IntReg Name="Secret"><Address>0</Address><Length>1</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
      <Endianess>LittleEndian</Endianess></IntReg>)"};
  std::ostringstream mOut;
  std::ostringstream mErrors;
};

TEST_F(ValueCommands, GetOne_WritesTheValueAlone) {
  EXPECT_EQ(Get({"Width"}), 0);
  EXPECT_EQ(mOut.str(), "64\n");
}

TEST_F(ValueCommands, GetSeveral_WritesNamesToo) {
  EXPECT_EQ(Get({"Width", "Mode"}), 0);
  EXPECT_EQ(mOut.str(), "Width\t64\nMode\tOff\n");
}

TEST_F(ValueCommands, GetUnknown_FailsAndTheOthersAreRead) {
  EXPECT_EQ(Get({"Width", "Heigth", "Height"}), 1);

  EXPECT_EQ(mOut.str(), "Width\t64\nHeight\t32\n");
  EXPECT_THAT(mErrors.str(), AllOf(StartsWith("krtool: reading Heigth of cam failed"), HasSubstr("Height?")));
  EXPECT_EQ(CountErrorLines(), 1U);
}

TEST_F(ValueCommands, Set_WritesWhatIsReadBack) {
  EXPECT_EQ(Set({"Width", "0x20", "Mode", "1"}), 0);

  EXPECT_EQ(mOut.str(), "Width\t32\nMode\tOn\n");
  EXPECT_EQ(mErrors.str(), "");
}

TEST_F(ValueCommands, SetWriteOnly_WritesNothing) {
  EXPECT_EQ(Set({"Secret", "7"}), 0);

  EXPECT_EQ(mOut.str(), "");
  EXPECT_EQ(mCamera.Peek(0, 1), std::vector<std::uint8_t>{7});
}

TEST_F(ValueCommands, SetWithAnUnknownName_SetsNothing) {
  EXPECT_EQ(Set({"Width", "32", "Nobody", "1"}), 1);

  EXPECT_EQ(Get({"Width"}), 0);
  EXPECT_EQ(mOut.str(), "64\n");
  EXPECT_THAT(mErrors.str(), HasSubstr("\"Nobody\""));
}

TEST_F(ValueCommands, SetOfACommand_PointsAtExecuteAndSetsNothing) {
  EXPECT_EQ(Set({"Width", "32", "Reset", "1"}), 1);

  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), AllOf(StartsWith("krtool: setting Reset of cam failed"), HasSubstr("krtool execute")));
  EXPECT_EQ(Get({"Width"}), 0);
  EXPECT_EQ(mOut.str(), "64\n");
}

TEST_F(ValueCommands, SetThatFails_EndsItWithTheEarlierOnesSet) {
  EXPECT_EQ(Set({"Height", "8", "Width", "7", "Mode", "On"}), 1);

  EXPECT_EQ(mOut.str(), "Height\t8\n");
  EXPECT_EQ(Get({"Mode"}), 0);
  EXPECT_THAT(mOut.str(), HasSubstr("Off"));
}

struct RefusedRow {
  const char* name;
  const char* feature;
  const char* value;
  const char* complaint;
};

class RefusedValue : public ValueCommands, public testing::WithParamInterface<RefusedRow> {};

TEST_P(RefusedValue, IsToldInOneLineWithWhatIsAllowed) {
  EXPECT_EQ(Set({GetParam().feature, GetParam().value}), 1);

  EXPECT_THAT(mErrors.str(), AllOf(StartsWith("krtool: setting " + std::string(GetParam().feature) + " of cam failed"),
                                   HasSubstr(GetParam().complaint)));
  EXPECT_EQ(CountErrorLines(), 1U);
  EXPECT_EQ(mOut.str(), "");
}

INSTANTIATE_TEST_SUITE_P(Values, RefusedValue,
                         testing::Values(RefusedRow{"OutOfRange", "Width", "641", "640"},
                                         RefusedRow{"OffTheIncrement", "Width", "17", "8"},
                                         RefusedRow{"NoNumber", "Width", "wide", "wide"},
                                         RefusedRow{"NothingForANumber", "Width", "", "Width"},
                                         RefusedRow{"UnknownEntry", "Mode", "Maybe", "Off, On"},
                                         RefusedRow{"Locked", "Locked", "2", "One"},
                                         RefusedRow{"LineEndsInTheValue", "Width", "1\n2", "Width"}),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

} // namespace
} // namespace krtool
