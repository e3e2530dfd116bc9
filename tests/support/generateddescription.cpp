#include "generateddescription.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace {

constexpr std::uint64_t kFirstAddress = 0x10000;
constexpr std::size_t kFeaturesOfACategory = 50;
constexpr std::size_t kSelected = 4;

std::string Element(std::string_view aName, std::string_view aText) {
  return "<" + std::string(aName) + ">" + std::string(aText) + "</" + std::string(aName) + ">";
}

std::string Element(std::string_view aName, std::uint64_t aNumber) {
  return Element(aName, std::to_string(aNumber));
}

class DescriptionWriter {
public:
  explicit DescriptionWriter(std::uint64_t aSeed) : mRandom(aSeed) {}

  GeneratedDescription Write(std::size_t aFeatures) {
    mOut.address = kFirstAddress;
    AddCommon();
    for (std::size_t i = mOut.features.size(); i < aFeatures; ++i)
      (this->*kKinds[i % kKinds.size()])("Feature" + std::to_string(i));
    AddCategories();
    mOut.xml = kHead + mNodes + "</RegisterDescription>\n";
    return std::move(mOut);
  }

private:
  using Kind = void (DescriptionWriter::*)(const std::string&);

  static const std::string kHead;
  static const std::array<Kind, 14> kKinds;

  // One node; its texts as cameras have them.
  void Add(std::string_view aElement, const std::string& aName, const std::string& aContent) {
    mNodes += "<" + std::string(aElement) + " Name=\"" + aName + "\" NameSpace=\"Standard\">" + aContent + "</" +
              std::string(aElement) + ">\n";
  }
  void AddFeature(std::string_view aElement, const std::string& aName, const std::string& aContent) {
    constexpr std::string_view kLevels[] = {"Beginner", "Expert", "Guru", "Invisible"};
    Add(aElement, aName,
        Element("ToolTip", "Sets " + aName + " of the camera.") +
            Element("Description", "What " + aName + " does is told here at some length, as cameras do.") +
            Element("DisplayName", "The " + aName) + Element("Visibility", kLevels[Pick(4)]) + TakePredicate(aName) +
            aContent);
    mOut.features.push_back(aName);
  }
  void AddInner(std::string_view aElement, const std::string& aName, const std::string& aContent) {
    Add(aElement, aName, aContent);
    mOut.inner.push_back(aName);
  }
  // Every fifth feature can be locked, every seventh hangs on a formula.
  std::string TakePredicate(const std::string& aName) {
    const std::size_t index = mOut.features.size();
    if (index % 5 == 3)
      return Element("pIsLocked", "TLParamsLocked");
    if (index % 7 != 5 || index < kSelected)
      return "";
    Add("IntSwissKnife", aName + "Available",
        "<pVariable Name=\"MODE\">ModeReg</pVariable>" +
            Element("Formula", "(MODE &amp; " + std::to_string(1u << Pick(8)) + ") &lt;&gt; 0"));
    return Element("pIsAvailable", aName + "Available");
  }

  std::size_t Pick(std::size_t aCount) { return mRandom() % aCount; }
  std::string PickEndianness() { return Element("Endianess", Pick(2) == 0 ? "LittleEndian" : "BigEndian"); }

  // Room for a register, filled with anything.
  std::uint64_t TakeAddress(std::size_t aLength) {
    const std::uint64_t address = kFirstAddress + mOut.memory.size();
    for (std::size_t i = 0; i < (aLength + 7) / 8 * 8; ++i)
      mOut.memory.push_back(static_cast<std::uint8_t>(mRandom()));
    return address;
  }
  void Fill(std::uint64_t aAddress, const std::vector<std::uint8_t>& aBytes) {
    std::copy(aBytes.begin(), aBytes.end(),
              mOut.memory.begin() + static_cast<std::ptrdiff_t>(aAddress - kFirstAddress));
  }
  static std::string DescribeRegister(std::uint64_t aAddress, std::size_t aLength, std::string_view aAccess = "RW") {
    return Element("Address", aAddress) + Element("Length", aLength) + Element("AccessMode", aAccess) +
           Element("pPort", "Device") + Element("Cachable", "WriteThrough");
  }
  void AddIntReg(const std::string& aName, std::size_t aLength, bool aIsSigned, std::string_view aAccess = "RW") {
    AddInner("IntReg", aName,
             DescribeRegister(TakeAddress(aLength), aLength, aAccess) +
                 Element("Sign", aIsSigned ? "Signed" : "Unsigned") + PickEndianness());
  }

  void AddCommon();
  void AddCategories();
  void AddInteger(const std::string& aName);
  void AddIntegerWithFixedLimits(const std::string& aName);
  void AddIntegerRegister(const std::string& aName);
  void AddFloat(const std::string& aName);
  void AddFloatRegister(const std::string& aName);
  void AddEnumeration(const std::string& aName);
  void AddBoolean(const std::string& aName);
  void AddText(const std::string& aName);
  void AddCommand(const std::string& aName);
  void AddConvertedInteger(const std::string& aName);
  void AddFormula(const std::string& aName);
  void AddFloatFormula(const std::string& aName);
  void AddSelected(const std::string& aName);
  void AddStructEntry(const std::string& aName);

  std::mt19937_64 mRandom;
  GeneratedDescription mOut;
  std::string mNodes;
  std::string mSelected;
};

const std::string DescriptionWriter::kHead = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Generated" VendorName="Tests" ToolTip="" StandardNameSpace="None" SchemaMajorVersion="1"
  SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
  ProductGuid="11111111-2222-3333-4444-555555555555" VersionGuid="11111111-2222-3333-4444-666666666666"
  xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Port Name="Device" NameSpace="Standard"/>
)";

const std::array<DescriptionWriter::Kind, 14> DescriptionWriter::kKinds = {
    &DescriptionWriter::AddInteger,
    &DescriptionWriter::AddFloat,
    &DescriptionWriter::AddEnumeration,
    &DescriptionWriter::AddBoolean,
    &DescriptionWriter::AddIntegerRegister,
    &DescriptionWriter::AddFloatRegister,
    &DescriptionWriter::AddText,
    &DescriptionWriter::AddCommand,
    &DescriptionWriter::AddConvertedInteger,
    &DescriptionWriter::AddFormula,
    &DescriptionWriter::AddSelected,
    &DescriptionWriter::AddStructEntry,
    &DescriptionWriter::AddIntegerWithFixedLimits,
    &DescriptionWriter::AddFloatFormula};

// What the others hang on.
void DescriptionWriter::AddCommon() {
  Add("Integer", "TLParamsLocked", Element("Visibility", "Invisible") + Element("Value", "0"));
  const std::uint64_t mode = TakeAddress(4);
  Fill(mode, {0x5A, 0, 0, 0});
  Add("IntReg", "ModeReg",
      DescribeRegister(mode, 4) + Element("Sign", "Unsigned") + Element("Endianess", "LittleEndian"));
  AddIntReg("DriverReg", 2, false);
  AddFeature("Integer", "Driver", Element("pValue", "DriverReg"));
  for (int i = 0; i < 10; ++i) {
    const std::string name = "Driven" + std::to_string(i);
    AddInner("IntSwissKnife", name + "Formula",
             "<pVariable Name=\"D\">DriverReg</pVariable>" + Element("Formula", "D * 2 + " + std::to_string(i)));
    AddFeature("Integer", name, Element("pValue", name + "Formula"));
  }
}

void DescriptionWriter::AddCategories() {
  std::string root;
  for (std::size_t first = 0; first < mOut.features.size(); first += kFeaturesOfACategory) {
    const std::string name = "Category" + std::to_string(first / kFeaturesOfACategory);
    std::string content;
    for (std::size_t i = first; i < std::min(first + kFeaturesOfACategory, mOut.features.size()); ++i)
      content += Element("pFeature", mOut.features[i]);
    Add("Category", name, content);
    root += Element("pFeature", name);
  }
  Add("Category", "Root", root);
  const std::uint64_t address = TakeAddress(4);
  Fill(address, {0, 0, 0, 2});
  Add("IntReg", "SelectorReg",
      DescribeRegister(address, 4) + Element("Sign", "Unsigned") + Element("Endianess", "BigEndian"));
  std::string entries;
  for (std::size_t i = 0; i < kSelected; ++i)
    entries += "<EnumEntry Name=\"Channel" + std::to_string(i) + "\">" + Element("Value", i) + "</EnumEntry>";
  Add("Enumeration", "Selector", entries + Element("pValue", "SelectorReg") + mSelected);
}

void DescriptionWriter::AddInteger(const std::string& aName) {
  constexpr std::size_t kLengths[] = {1, 2, 4, 8};
  AddIntReg(aName + "Reg", kLengths[Pick(4)], Pick(2) == 0);
  AddIntReg(aName + "MaxReg", 2, false, "RO");
  AddFeature("Integer", aName,
             Element("pValue", aName + "Reg") + Element("Min", "-5") + Element("pMax", aName + "MaxReg") +
                 Element("Inc", 1 + Pick(4)));
}

void DescriptionWriter::AddIntegerWithFixedLimits(const std::string& aName) {
  AddIntReg(aName + "Reg", 4, true);
  AddFeature("Integer", aName,
             Element("pValue", aName + "Reg") + Element("Min", "0x10") + Element("Max", "100000") +
                 Element("Inc", "16") + Element("Unit", "px") + Element("Representation", "Linear"));
}

void DescriptionWriter::AddIntegerRegister(const std::string& aName) {
  constexpr std::size_t kLengths[] = {1, 2, 4, 8};
  const std::size_t length = kLengths[Pick(4)];
  AddFeature("IntReg", aName,
             DescribeRegister(TakeAddress(length), length) + Element("Sign", Pick(2) == 0 ? "Signed" : "Unsigned") +
                 PickEndianness() + Element("Representation", "HexNumber"));
}

void DescriptionWriter::AddFloat(const std::string& aName) {
  AddIntReg(aName + "Reg", 2, false);
  AddInner("Converter", aName + "Converter",
           Element("FormulaTo", "FROM * 4") + Element("FormulaFrom", "TO / 4") + Element("pValue", aName + "Reg") +
               Element("Slope", "Increasing"));
  AddFeature("Float", aName,
             Element("pValue", aName + "Converter") + Element("Min", "1.5") + Element("Max", "16000") +
                 Element("Unit", "us") + Element("DisplayNotation", "Fixed") + Element("DisplayPrecision", "2"));
}

void DescriptionWriter::AddFloatRegister(const std::string& aName) {
  const bool isDouble = Pick(2) == 0;
  const bool isBig = Pick(2) == 0;
  const double value = static_cast<double>(Pick(100000)) / 16;
  std::vector<std::uint8_t> bytes;
  const std::uint64_t bits =
      isDouble ? std::bit_cast<std::uint64_t>(value) : std::bit_cast<std::uint32_t>(static_cast<float>(value));
  const std::size_t length = isDouble ? 8 : 4;
  for (std::size_t i = 0; i < length; ++i)
    bytes.push_back(static_cast<std::uint8_t>(bits >> (8 * (isBig ? length - 1 - i : i))));
  const std::uint64_t address = TakeAddress(length);
  Fill(address, bytes);
  AddInner("FloatReg", aName + "Reg",
           DescribeRegister(address, length) + Element("Endianess", isBig ? "BigEndian" : "LittleEndian"));
  AddFeature("Float", aName,
             Element("pValue", aName + "Reg") + Element("Min", "-1e6") + Element("Max", "1e6") + Element("Unit", "dB"));
}

void DescriptionWriter::AddEnumeration(const std::string& aName) {
  const std::size_t count = 4 + Pick(5);
  const bool isBig = Pick(2) == 0;
  const std::uint64_t address = TakeAddress(4);
  const auto value = static_cast<std::uint8_t>(Pick(count));
  // Four bits above four others, in the last byte of one order or the first of the other.
  std::vector<std::uint8_t> bytes(4, 0xA7);
  bytes[isBig ? 3 : 0] = static_cast<std::uint8_t>((value << 4) | 0x9);
  Fill(address, bytes);
  AddInner("MaskedIntReg", aName + "Reg",
           DescribeRegister(address, 4) + Element("LSB", isBig ? "27" : "4") + Element("MSB", isBig ? "24" : "7") +
               Element("Sign", "Unsigned") + Element("Endianess", isBig ? "BigEndian" : "LittleEndian"));
  std::string entries;
  for (std::size_t i = 0; i < count; ++i)
    entries += "<EnumEntry Name=\"Mode" + std::to_string(i) + "\" NameSpace=\"Standard\">" +
               Element("DisplayName", "Mode " + std::to_string(i)) + Element("Value", i) + "</EnumEntry>";
  AddFeature("Enumeration", aName, entries + Element("pValue", aName + "Reg"));
}

void DescriptionWriter::AddBoolean(const std::string& aName) {
  const std::size_t length = Pick(2) == 0 ? 4 : 2;
  AddInner("MaskedIntReg", aName + "Reg",
           DescribeRegister(TakeAddress(length), length) + Element("Bit", Pick(8 * length)) + PickEndianness());
  AddFeature("Boolean", aName, Element("pValue", aName + "Reg"));
}

void DescriptionWriter::AddText(const std::string& aName) {
  const std::size_t length = 16 * (1 + Pick(3));
  const std::uint64_t address = TakeAddress(length);
  std::vector<std::uint8_t> bytes(length, 0);
  for (std::size_t i = 0; i < 4 + Pick(length - 4); ++i)
    bytes[i] = static_cast<std::uint8_t>('a' + Pick(26));
  Fill(address, bytes);
  AddFeature("StringReg", aName, DescribeRegister(address, length));
}

void DescriptionWriter::AddCommand(const std::string& aName) {
  AddIntReg(aName + "Reg", 4, false);
  AddFeature("Command", aName, Element("pValue", aName + "Reg") + Element("CommandValue", 1 + Pick(9)));
}

void DescriptionWriter::AddConvertedInteger(const std::string& aName) {
  AddIntReg(aName + "Reg", 2, false);
  AddInner("IntConverter", aName + "Converter",
           "<pVariable Name=\"OFFSET\">ModeReg</pVariable>" + Element("FormulaTo", "(FROM - OFFSET) / 8") +
               Element("FormulaFrom", "TO * 8 + OFFSET") + Element("pValue", aName + "Reg") +
               Element("Slope", "Increasing"));
  AddFeature("Integer", aName,
             Element("pValue", aName + "Converter") + Element("Min", "1000") + Element("Max", "100000") +
                 Element("Inc", "8"));
}

void DescriptionWriter::AddFormula(const std::string& aName) {
  AddIntReg(aName + "WidthReg", 2, false);
  AddIntReg(aName + "HeightReg", 2, true);
  AddInner("IntSwissKnife", aName + "Formula",
           "<pVariable Name=\"WIDTH\">" + aName + "WidthReg</pVariable><pVariable Name=\"HEIGHT\">" + aName +
               "HeightReg</pVariable><pVariable Name=\"MODE\">ModeReg</pVariable>" +
               Element("Formula", "(MODE &amp; 0x10) ? (WIDTH * HEIGHT * 3 / 2 + 7) &gt;&gt; 3 : WIDTH - HEIGHT"));
  AddFeature("Integer", aName, Element("pValue", aName + "Formula") + Element("Unit", "B"));
}

void DescriptionWriter::AddFloatFormula(const std::string& aName) {
  AddIntReg(aName + "PeriodReg", 4, false);
  AddInner("SwissKnife", aName + "Formula",
           "<pVariable Name=\"PERIOD\">" + aName +
               "PeriodReg</pVariable><Constant Name=\"TICKS\">125000000</Constant>" +
               "<Expression Name=\"SAFE\">(PERIOD = 0) ? 1 : PERIOD</Expression>" +
               Element("Formula", "TICKS / SAFE + SQRT(PERIOD)"));
  AddFeature("Float", aName, Element("pValue", aName + "Formula") + Element("Unit", "Hz"));
}

void DescriptionWriter::AddSelected(const std::string& aName) {
  const std::uint64_t address = TakeAddress(4 * kSelected);
  AddInner("IntReg", aName + "Reg",
           Element("Address", address) + "<pIndex Offset=\"4\">SelectorReg</pIndex>" + Element("Length", "4") +
               Element("AccessMode", "RW") + Element("pPort", "Device") + Element("pInvalidator", "SelectorReg") +
               Element("Sign", "Signed") + PickEndianness());
  AddFeature("Integer", aName, Element("pValue", aName + "Reg"));
  mSelected += Element("pSelected", aName);
}

void DescriptionWriter::AddStructEntry(const std::string& aName) {
  const std::size_t low = Pick(20);
  const std::size_t high = low + 1 + Pick(11);
  mNodes += "<StructReg Comment=\"" + aName + "\">" + DescribeRegister(TakeAddress(4), 4) +
            Element("Endianess", "LittleEndian") + "<StructEntry Name=\"" + aName + "Field\" NameSpace=\"Standard\">" +
            Element("LSB", low) + Element("MSB", high) + Element("Sign", Pick(2) == 0 ? "Signed" : "Unsigned") +
            "</StructEntry></StructReg>\n";
  mOut.inner.push_back(aName + "Field");
  AddFeature("Integer", aName, Element("pValue", aName + "Field"));
}

} // namespace

GeneratedDescription GenerateDescription(std::size_t aFeatures, std::uint64_t aSeed) {
  return DescriptionWriter(aSeed).Write(aFeatures);
}
