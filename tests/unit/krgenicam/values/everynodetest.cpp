// One description that says all that GenApi 1.1 can say, and what each of its parameters is then.

#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"
#include "recordingport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>

namespace {

using Type = KrGenType;
using Access = KrGenAccessMode;

// All elements of the nodes' table, each of which the description has to use.
constexpr const char* kElements[] = {
    // Nodes
    "Node", "Category", "Integer", "IntReg", "MaskedIntReg", "StructReg", "StructEntry", "Boolean", "Command",
    "Enumeration", "EnumEntry", "Float", "FloatReg", "String", "StringReg", "Register", "Converter", "IntConverter",
    "SwissKnife", "IntSwissKnife", "Port", "ConfRom", "TextDesc", "IntKey", "AdvFeatureLock", "SmartFeature", "Group",
    // Common properties
    "Extension", "ToolTip", "Description", "DisplayName", "Visibility", "DocuURL", "IsDeprecated", "EventID",
    "pIsImplemented", "pIsAvailable", "pIsLocked", "pBlockPolling", "ImposedAccessMode", "pError", "pAlias",
    "pCastAlias", "pInvalidator", "Streamable", "PollingTime",
    // Registers
    "Address", "pAddress", "pIndex", "Length", "pLength", "AccessMode", "pPort", "Cachable", "Sign", "Endianess", "Bit",
    "LSB", "MSB",
    // Values
    "Value", "pValue", "pValueCopy", "ValueIndexed", "pValueIndexed", "ValueDefault", "pValueDefault", "Min", "pMin",
    "Max", "pMax", "Inc", "pInc", "Unit", "Representation", "ValidValueSet", "pSelected", "OnValue", "OffValue",
    "CommandValue", "pCommandValue", "NumericValue", "Symbolic", "IsSelfClearing", "DisplayNotation",
    "DisplayPrecision", "pFeature",
    // Formulas and ports
    "pVariable", "Constant", "Expression", "Formula", "FormulaTo", "FormulaFrom", "Slope", "IsLinear", "ChunkID",
    "pChunkID", "SwapEndianess", "CacheChunkData"};

struct Expected {
  const char* name;
  Type type;
  Access access;
  const char* text; ///< As ToString gives it; empty where there is none.
  const char* minimum = "";
  const char* maximum = "";
};

constexpr const char* kLowest = "-9223372036854775808";
constexpr const char* kHighest = "9223372036854775807";
constexpr const char* kLowestFloat = "-1.7976931348623157e+308";
constexpr const char* kHighestFloat = "1.7976931348623157e+308";

constexpr Expected kExpected[] = {
    {"DeviceModelName", Type::String, Access::ReadOnly, "EveryNode"},
    {"DeviceUserID", Type::String, Access::ReadWrite, "cam1"},
    {"DeviceUserIDReg", Type::String, Access::ReadWrite, "cam1"},
    {"DeviceNote", Type::String, Access::ReadWrite, "first"},
    {"DeviceReset", Type::Command, Access::WriteOnly, ""},
    {"DeviceResetReg", Type::Integer, Access::WriteOnly, "", "0", "4294967295"},
    {"DeviceAddress", Type::Integer, Access::ReadWrite, "3232235521", "0", "4294967295"},
    {"DeviceHardwareAddress", Type::Integer, Access::ReadWrite, "73588229375", "0", "281474976710655"},
    {"TLParamsLocked", Type::Integer, Access::ReadWrite, "0", "0", "1"},
    {"Width", Type::Integer, Access::ReadWrite, "640", "0", "896"},
    {"WidthReg", Type::Integer, Access::ReadWrite, "640", "0", "65535"},
    {"WidthMax", Type::Integer, Access::ReadOnly, "896", kLowest, kHighest},
    {"OffsetX", Type::Integer, Access::ReadWrite, "128", "0", "1016"},
    {"OffsetXReg", Type::Integer, Access::ReadWrite, "128", "0", "65535"},
    {"Binning", Type::Integer, Access::ReadWrite, "1", "1", "8"},
    {"ReverseX", Type::Boolean, Access::ReadWrite, "1"},
    {"ReverseXReg", Type::Integer, Access::ReadWrite, "1", "0", "1"},
    {"ReverseNote", Type::Boolean, Access::ReadWrite, "1"},
    {"PixelFormat", Type::Enumeration, Access::ReadWrite, "Mono16"},
    {"PixelFormatReg", Type::Integer, Access::ReadWrite, "17825799", "0", "4294967295"},
    {"PixelFormatError", Type::Enumeration, Access::ReadWrite, "NoError"},
    {"RegionSelector", Type::Enumeration, Access::ReadWrite, "Region0"},
    {"RegionHeight", Type::Integer, Access::ReadWrite, "-2", "-32768", "32767"},
    {"RegionOffset", Type::Integer, Access::ReadOnly, "16", kLowest, kHighest},
    {"Decimation", Type::Integer, Access::ReadWrite, "18", "9", "90"},
    {"AcquisitionStart", Type::Command, Access::ReadWrite, ""},
    {"AcquisitionStop", Type::Command, Access::ReadWrite, ""},
    {"ExposureTime", Type::Float, Access::ReadWrite, "5010", "10", "32777.5"},
    {"ExposureTimeConverter", Type::Float, Access::ReadWrite, "5010", "10", "32777.5"},
    {"ExposureTimeRaw", Type::Integer, Access::ReadWrite, "10000", "0", "65535"},
    {"ExposureAuto", Type::Enumeration, Access::ReadWrite, "Off"},
    {"FrameRate", Type::Float, Access::ReadOnly, "199.20318725099602", kLowestFloat, kHighestFloat},
    {"EventFrame", Type::Integer, Access::NotAvailable, ""},
    {"GainSelector", Type::Integer, Access::ReadWrite, "2", "0", "3"},
    {"Gain", Type::Float, Access::ReadWrite, "6.5", "0", "24"},
    {"GainTwo", Type::Float, Access::ReadWrite, "6.5", "0", "24"},
    {"BlackLevel", Type::Float, Access::ReadWrite, "1.25", "-1000", "1000"},
    {"BlackLevelMax", Type::Float, Access::ReadWrite, "1000", kLowestFloat, kHighestFloat},
    {"Gamma", Type::Float, Access::ReadWrite, "1", "-3.4028234663852886e+38", "3.4028234663852886e+38"},
    {"Offset", Type::Integer, Access::ReadWrite, "5", kLowest, kHighest},
    {"Table", Type::Register, Access::ReadWrite, "0102030405060708"},
    {"StatusReady", Type::Integer, Access::ReadOnly, "1", "0", "1"},
    {"StatusCode", Type::Integer, Access::ReadWrite, "-2", "-128", "127"},
    {"ChunkTimestamp", Type::Integer, Access::NotAvailable, ""},
    {"Plain", Type::Other, Access::ReadOnly, ""},
    {"Gone", Type::Integer, Access::NotImplemented, ""},
    {"Rom", Type::Other, Access::ReadOnly, ""},
    {"Lock", Type::Other, Access::ReadOnly, ""},
    {"Smart", Type::Other, Access::ReadOnly, ""},
};

std::string Format(double aValue) {
  std::array<char, 40> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), aValue).ptr};
}

void GetRange(KrGenParameter& aParameter, std::string& aMinimum, std::string& aMaximum) {
  if (auto* const integer = dynamic_cast<KrGenInteger*>(&aParameter)) {
    std::int64_t value = 0;
    aMinimum = integer->GetMin(value).IsOK() ? std::to_string(value) : "";
    aMaximum = integer->GetMax(value).IsOK() ? std::to_string(value) : "";
  } else if (auto* const real = dynamic_cast<KrGenFloat*>(&aParameter)) {
    double value = 0.0;
    aMinimum = real->GetMin(value).IsOK() ? Format(value) : "";
    aMaximum = real->GetMax(value).IsOK() ? Format(value) : "";
  }
}

class EveryNode : public testing::Test {
protected:
  void SetUp() override {
    const KrResult read = KrGenDescription::ReadFromFile(KRGENICAM_EVERY_NODE, mDescription);
    ASSERT_TRUE(read.IsOK()) << read.GetDescription().CStr();
    Poke(0x100, {'c', 'a', 'm', '1'});
    Poke(0x200, {0x80, 0x02});
    Poke(0x204, {0, 0, 0, 0x80});
    Poke(0x208, {8});
    Poke(0x20C, {0x01, 0x10, 0x00, 0x07});
    Poke(0x290, {0xFE, 0xFF});
    Poke(0x304, {0x10, 0x27});
    Poke(0x400, {0, 0, 0x80, 0x3F});
    Poke(0x500, {1, 2, 3, 4, 5, 6, 7, 8});
    Poke(0x600, {0xE1, 0x0F});
    const KrResult opened = KrGenParameterArray::Open(mDescription, mPort, {}, mArray);
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  }

  void Poke(std::uint64_t aAddress, std::vector<std::uint8_t> aBytes) {
    ASSERT_TRUE(mMemory.Write(aAddress, aBytes.data(), aBytes.size(), 1000).IsOK());
  }

  KrGenDescription mDescription;
  KrGenMemoryPort mMemory;
  RecordingPort mPort{mMemory};
  std::unique_ptr<KrGenParameterArray> mArray;
};

} // namespace

TEST_F(EveryNode, Description_UsesAllThatThereIs) {
  const std::string text(mDescription.GetText());

  for (const char* const element : kElements) {
    const bool isUsed = text.find("<" + std::string(element) + ">") != std::string::npos ||
                        text.find("<" + std::string(element) + " ") != std::string::npos;
    EXPECT_TRUE(isUsed) << element;
  }
}

TEST_F(EveryNode, Description_HasNoFault) {
  KrStringList faults;

  ASSERT_TRUE(mArray->GetFaults(faults).IsOK());

  for (std::size_t i = 0; i < faults.GetCount(); ++i)
    ADD_FAILURE() << faults[i].CStr();
}

TEST_F(EveryNode, Parameters_HaveTypeAccessValueAndRange) {
  for (const Expected& row : kExpected) {
    SCOPED_TRACE(row.name);
    KrGenParameter* const parameter = mArray->Get(row.name);
    ASSERT_NE(parameter, nullptr);
    KrString text;
    static_cast<void>(parameter->ToString(text));
    std::string minimum;
    std::string maximum;
    GetRange(*parameter, minimum, maximum);

    EXPECT_EQ(parameter->GetType(), row.type);
    EXPECT_EQ(parameter->GetAccessMode(), row.access);
    EXPECT_STREQ(text.CStr(), row.text);
    EXPECT_EQ(minimum, row.minimum);
    EXPECT_EQ(maximum, row.maximum);
  }
}

TEST_F(EveryNode, AllFeaturesOfTheCategories_AreInTheTable) {
  EXPECT_GT(mArray->GetCount(), 0u);
  for (std::size_t i = 0; i < mArray->GetCount(); ++i) {
    const std::string name = (*mArray)[i]->GetName().CStr();
    const auto hasName = [&](const Expected& aRow) { return name == aRow.name; };

    EXPECT_TRUE(std::any_of(std::begin(kExpected), std::end(kExpected), hasName)) << name;
  }
}

TEST_F(EveryNode, WhatIsReadWrite_TakesItsOwnValueBack) {
  for (const Expected& row : kExpected) {
    if (row.access != Access::ReadWrite || std::string_view(row.text).empty())
      continue;
    SCOPED_TRACE(row.name);
    const KrResult set = mArray->Get(row.name)->FromString(row.text);
    KrString text;
    static_cast<void>(mArray->Get(row.name)->ToString(text));

    EXPECT_TRUE(set.IsOK()) << set.GetDescription().CStr();
    EXPECT_STREQ(text.CStr(), row.text);
  }
}

TEST_F(EveryNode, WhatIsNotWritable_RefusesBeforeAnyByteLeaves) {
  for (const Expected& row : kExpected) {
    if (row.access == Access::ReadWrite || row.access == Access::WriteOnly)
      continue;
    EXPECT_FALSE(mArray->Get(row.name)->FromString("1").IsOK()) << row.name;
  }
  EXPECT_EQ(mPort.CountWrites(), 0u);
}

TEST_F(EveryNode, DataOfEventsAndChunks_AreRead) {
  const std::uint8_t frame[] = {7, 1, 0, 0};
  const std::uint8_t timestamp[] = {1, 2, 0, 0, 0, 0, 0, 0};

  mArray->DeliverEvent(0x9001, frame, sizeof(frame));
  mArray->SetChunkData(0xA5A50001, timestamp, sizeof(timestamp));

  KrString text;
  EXPECT_TRUE(mArray->Get("EventFrame")->ToString(text).IsOK());
  EXPECT_STREQ(text.CStr(), "263");
  EXPECT_TRUE(mArray->Get("ChunkTimestamp")->ToString(text).IsOK());
  EXPECT_STREQ(text.CStr(), "513");
}

TEST_F(EveryNode, Transport_LocksWhatItMust) {
  ASSERT_TRUE(mArray->GetInteger("TLParamsLocked")->SetValue(1).IsOK());

  EXPECT_EQ(mArray->Get("Width")->GetAccessMode(), Access::ReadOnly);
  EXPECT_EQ(mArray->Get("AcquisitionStart")->GetAccessMode(), Access::ReadOnly);
  EXPECT_EQ(mArray->Get("WidthReg")->GetAccessMode(), Access::ReadWrite);
}
