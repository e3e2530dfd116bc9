#include "valuetext.h"

#include "describedcamera.h"

#include <gmock/gmock.h>

#include <limits>

namespace krtool {
namespace {

using testing::HasSubstr;

struct IntegerRow {
  const char* name;
  std::int64_t value;
  KrGenRepresentation representation;
  const char* text;
};

class IntegerText : public testing::TestWithParam<IntegerRow> {};

TEST_P(IntegerText, IsAsTheRepresentationWants) {
  EXPECT_EQ(FormatInteger(GetParam().value, GetParam().representation), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Integers, IntegerText,
    testing::Values(IntegerRow{"Linear", -5, KrGenRepresentation::Linear, "-5"},
                    IntegerRow{"PureNumber", std::numeric_limits<std::int64_t>::min(), KrGenRepresentation::PureNumber,
                               "-9223372036854775808"},
                    IntegerRow{"Boolean", 1, KrGenRepresentation::Boolean, "1"},
                    IntegerRow{"Hex", 0xAB12, KrGenRepresentation::HexNumber, "0xAB12"},
                    IntegerRow{"HexZero", 0, KrGenRepresentation::HexNumber, "0x0"},
                    IntegerRow{"NegativeHex", -1, KrGenRepresentation::HexNumber, "0xFFFFFFFFFFFFFFFF"},
                    IntegerRow{"Address", 0xC0A80102, KrGenRepresentation::IPV4Address, "192.168.1.2"},
                    IntegerRow{"NoAddress", -1, KrGenRepresentation::IPV4Address, "-1"},
                    IntegerRow{"HardwareAddress", 0x024B52007710, KrGenRepresentation::MACAddress, "02:4b:52:00:77:10"},
                    IntegerRow{"NoHardwareAddress", std::int64_t{1} << 48, KrGenRepresentation::MACAddress,
                               "281474976710656"}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

class ValueText : public testing::Test {
protected:
  FeatureState State(const char* aName) {
    KrGenParameter* const parameter = mCamera.array->Get(aName);
    return ReadState(*parameter, parameter->GetAccessMode());
  }
  std::string Text(const char* aName) {
    std::string text;
    const KrResult read = ReadValueText(*mCamera.array->Get(aName), text);
    return read.IsOK() ? text : "failed: " + read.GetDescription().ToUtf8();
  }

  DescribedCamera mCamera{R"(
    <Integer Name="Width"><Value>64</Value><Min>16</Min><Max>640</Max><Inc>8</Inc><Unit>px</Unit></Integer>
    <Integer Name="Key"><Value>255</Value><Min>0</Min><Max>4096</Max><Representation>HexNumber</Representation></Integer>
    <Integer Name="Address"><Value>1</Value><Representation>IPV4Address</Representation></Integer>
    <Integer Name="MAC"><Value>1</Value><Representation>MACAddress</Representation></Integer>
    <Integer Name="Bounded"><Value>1</Value><pMax>Broken</pMax></Integer>
    <IntSwissKnife Name="Broken"><Formula>1/0</Formula></IntSwissKnife>
    <Float Name="Gain"><Value>0.1</Value><Min>-1.5</Min><Max>24</Max><Inc>0.5</Inc><Unit>dB</Unit></Float>
    <Float Name="Free"><Value>2.5</Value><Min>0</Min><Max>10</Max></Float>
    <Boolean Name="Flip"><Value>true</Value></Boolean>
    <Enumeration Name="Mode"><EnumEntry Name="Off"><Value>0</Value></EnumEntry><EnumEntry Name="On"><Value>1</Value>
      </EnumEntry><Value>1</Value></Enumeration>
    <Integer Name="Absent"><pIsImplemented>Zero</pIsImplemented><Value>1</Value></Integer>
    <Integer Name="Away"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Integer>
    <Integer Name="Zero"><Value>0</Value></Integer>
    <Command Name="Go"><pValue>Zero</pValue><CommandValue>1</CommandValue></Command>
    <IntReg Name="Secret"><Address>0</Address><Length>1</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
      <Endianess>LittleEndian</Endianess></IntReg>
    <Register Name="Bytes"><Address>8</Address><Length>3</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
    <StringReg Name="Name"><Address>16</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    </StringReg>)"};
};

TEST_F(ValueText, Integer_HasRangeIncrementAndUnit) {
  const FeatureState state = State("Width");

  EXPECT_EQ(state.value, "64");
  EXPECT_EQ(state.unit, "px");
  EXPECT_EQ(state.minimum, "16");
  EXPECT_EQ(state.maximum, "640");
  EXPECT_EQ(state.increment, "8");
  EXPECT_EQ(state.error, "");
}

TEST_F(ValueText, HexNumber_HasItsRangeInHexToo) {
  const FeatureState state = State("Key");

  EXPECT_EQ(state.value, "0xFF");
  EXPECT_EQ(state.maximum, "0x1000");
  EXPECT_EQ(state.increment, "1");
}

TEST_F(ValueText, Float_HasAsManyDigitsAsItNeedsAndItsIncrement) {
  const FeatureState state = State("Gain");

  EXPECT_EQ(state.value, "0.1");
  EXPECT_EQ(state.minimum, "-1.5");
  EXPECT_EQ(state.maximum, "24");
  EXPECT_EQ(state.increment, "0.5");
  EXPECT_EQ(state.unit, "dB");
}

TEST_F(ValueText, FloatWithoutIncrement_HasNone) {
  EXPECT_EQ(State("Free").increment, "");
  EXPECT_EQ(State("Free").error, "");
}

TEST_F(ValueText, EnumerationAndBoolean_HaveTheirValuesAlone) {
  EXPECT_EQ(State("Mode").value, "On");
  EXPECT_EQ(State("Mode").minimum, "");
  EXPECT_EQ(State("Flip").value, "1");
  EXPECT_EQ(State("Flip").error, "");
}

TEST_F(ValueText, RangeThatCannotBeRead_IsExplainedBesideTheValue) {
  const FeatureState state = State("Bounded");

  EXPECT_EQ(state.value, "1");
  EXPECT_EQ(state.maximum, "");
  EXPECT_THAT(state.error, HasSubstr("division by zero"));
}

TEST_F(ValueText, FeatureThatIsNotAvailable_SaysWhy) {
  const FeatureState state = State("Away");

  EXPECT_EQ(state.value, "");
  EXPECT_EQ(state.maximum, "");
  EXPECT_THAT(state.error, HasSubstr("Zero"));
}

TEST_F(ValueText, FeatureThatIsNotImplemented_HasNothing) {
  const FeatureState state = State("Absent");

  EXPECT_EQ(state.value + state.minimum + state.maximum + state.error, "");
}

TEST_F(ValueText, FeatureThatCanOnlyBeWritten_HasItsRangeAlone) {
  const FeatureState state = State("Secret");

  EXPECT_EQ(state.value, "");
  EXPECT_EQ(state.maximum, "255");
  EXPECT_EQ(state.error, "");
}

TEST_F(ValueText, CommandsAndRegisters_AreNotRead) {
  static_cast<void>(mCamera.port.TakeRecords());

  const std::string text = State("Bytes").value + State("Bytes").error + State("Go").value + State("Go").error;

  EXPECT_EQ(text, "");
  EXPECT_EQ(mCamera.port.CountReads(), 0U);
}

TEST_F(ValueText, Register_CanBeReadAsHexadecimalDigits) {
  mCamera.Poke(8, {0x01, 0xAB, 0xFF});

  EXPECT_EQ(Text("Bytes"), "01ABFF");
}

TEST_F(ValueText, TextOfTheDevice_StaysInItsField) {
  mCamera.Poke(16, {'a', '\t', '\n', 0x1B, ' ', ' ', 'b', 0});

  EXPECT_EQ(Text("Name"), "a???  b");
}

struct WriteRow {
  const char* name;
  const char* feature;
  const char* written;
  const char* read;
};

class WrittenText : public ValueText, public testing::WithParamInterface<WriteRow> {};

TEST_P(WrittenText, IsTheValueAfterwards) {
  const KrResult result = WriteValueText(*mCamera.array->Get(GetParam().feature), GetParam().written);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(Text(GetParam().feature), GetParam().read);
}

INSTANTIATE_TEST_SUITE_P(
    Values, WrittenText,
    testing::Values(WriteRow{"Integer", "Width", "24", "24"}, WriteRow{"HexForDecimal", "Width", "0x20", "32"},
                    WriteRow{"DecimalForHex", "Key", "16", "0x10"},
                    WriteRow{"Address", "Address", "10.0.0.1", "10.0.0.1"},
                    WriteRow{"NumberForAddress", "Address", "257", "0.0.1.1"},
                    WriteRow{"HardwareAddress", "MAC", "02:4B:52:00:77:10", "02:4b:52:00:77:10"},
                    WriteRow{"HardwareAddressWithDashes", "MAC", "02-4b-52-00-77-11", "02:4b:52:00:77:11"},
                    WriteRow{"Float", "Gain", "1e1", "10"}, WriteRow{"Entry", "Mode", "Off", "Off"},
                    WriteRow{"EntryByNumber", "Mode", "0", "Off"}, WriteRow{"Boolean", "Flip", "false", "0"},
                    WriteRow{"Bytes", "Bytes", "0A0b0c", "0A0B0C"}, WriteRow{"Text", "Name", "two words", "two words"},
                    WriteRow{"EmptyText", "Name", "", ""}),
    [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST_F(ValueText, AddressForANumber_IsRefused) {
  EXPECT_EQ(WriteValueText(*mCamera.array->Get("Width"), "10.0.0.1"), KrResult::Code::InvalidInput);
}

TEST_F(ValueText, BrokenHardwareAddresses_AreRefused) {
  for (const char* text : {"02:4B:52:00:77", "02:4B:52:00:77:1", "02:4B:52:00:77:xx", "02.4B.52.00.77.10", ""})
    EXPECT_EQ(WriteValueText(*mCamera.array->Get("MAC"), text), KrResult::Code::InvalidInput) << text;
}

TEST(RegisterState, RegisterThatCannotBeRead_SaysWhy) {
  DescribedCamera camera(R"(
    <Integer Name="Zero"><Value>0</Value></Integer>
    <Register Name="Away"><pIsAvailable>Zero</pIsAvailable><Address>0</Address><Length>4</Length>
      <AccessMode>RO</AccessMode><pPort>Device</pPort></Register>
    <IntReg Name="Where"><Address>64</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
      <Endianess>LittleEndian</Endianess></IntReg>
    <Register Name="Lost"><pAddress>Where</pAddress><Length>4</Length><AccessMode>RO</AccessMode>
      <pPort>Device</pPort></Register>
    <Register Name="Secret"><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
      </Register>)");
  camera.port.SetFault([](const RegisterAccessRecord& aRecord) {
    return aRecord.address == 64 ? KrResult(KrResult::Code::ProtocolError, "Refused.") : KrResult();
  });
  const auto getError = [&](const char* aName) {
    KrGenParameter* const parameter = camera.array->Get(aName);
    return ReadState(*parameter, parameter->GetAccessMode()).error;
  };

  EXPECT_THAT(getError("Away"), HasSubstr("Zero"));
  EXPECT_THAT(getError("Lost"), HasSubstr("Refused."));
  EXPECT_EQ(getError("Secret"), "");
}

TEST(RegisterState, RegisterThatCanBeRead_IsNotRead) {
  DescribedCamera camera(R"(<Register Name="Bytes"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>Device</pPort></Register>)");
  KrGenParameter* const parameter = camera.array->Get("Bytes");

  const FeatureState state = ReadState(*parameter, parameter->GetAccessMode());

  EXPECT_EQ(state.error, "");
  EXPECT_EQ(camera.port.CountReads(), 0U);
}

} // namespace
} // namespace krtool
