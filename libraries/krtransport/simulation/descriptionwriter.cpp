#include "simulation/descriptionwriter.h"

#include "simulation/cameraregisters.h"
#include "simulation/framelayout.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace krtransport {

namespace {

constexpr std::string_view kProductGuid = "5A1E6C1B-7D0F-4B55-9C1C-3E2F6A7B8D01";
constexpr std::string_view kVersionGuid = "5A1E6C1B-7D0F-4B55-9C1C-3E2F6A7B8D1"; // And the minor version, one digit.

constexpr std::string_view kPollingTimeMs = "500";
constexpr std::string_view kCommandPollingTimeMs = "100";

struct AccessRow {
  RegisterAccess access;
  std::string_view name;
};
constexpr std::array<AccessRow, 3> kAccessNames = {
    {{RegisterAccess::ReadOnly, "RO"}, {RegisterAccess::WriteOnly, "WO"}, {RegisterAccess::ReadWrite, "RW"}}};

std::string FormatHex(std::uint64_t aValue) {
  std::array<char, 24> text;
  std::snprintf(text.data(), text.size(), "0x%08llX", static_cast<unsigned long long>(aValue));
  return text.data();
}

// Names in a description consist of letters and digits.
std::string MakeName(const std::string& aText) {
  std::string name;
  std::ranges::copy_if(aText, std::back_inserter(name), [](char aCharacter) {
    return (aCharacter >= '0' && aCharacter <= '9') || (aCharacter >= 'A' && aCharacter <= 'Z') ||
           (aCharacter >= 'a' && aCharacter <= 'z');
  });
  return name.empty() ? "Camera" : name;
}

// "AcquisitionFrameRate" becomes "Acquisition Frame Rate"; abbreviations stay whole.
std::string MakeDisplayName(std::string_view aName) {
  const auto isUpper = [](char aCharacter) { return aCharacter >= 'A' && aCharacter <= 'Z'; };
  std::string text;
  for (std::size_t i = 0; i < aName.size(); ++i) {
    const bool endsWord = i > 0 && isUpper(aName[i]) && !isUpper(aName[i - 1]);
    const bool endsAbbreviation =
        i > 0 && isUpper(aName[i]) && isUpper(aName[i - 1]) && i + 1 < aName.size() && !isUpper(aName[i + 1]);
    if (endsWord || endsAbbreviation)
      text += ' ';
    text += aName[i];
  }
  return text;
}

// Whole numbers are limits enough for all ranges of the camera.
std::string FormatLimit(FeatureKind aKind, double aLimit) {
  return std::to_string(static_cast<long long>(aLimit)) + (aKind == FeatureKind::Float ? ".0" : "");
}

constexpr std::string_view kChunkSelectorName = "ChunkSelector";

std::string GetRegisterName(std::string_view aFeature) {
  return std::string(aFeature) + "Reg";
}

// The feature that reads a chunk.
std::string GetChunkFeature(const FeatureEntry& aChunk) {
  return "Chunk" + std::string(aChunk.name);
}

std::string GetAvailability(const Feature& aFeature, const FeatureEntry& aEntry) {
  return std::string(aFeature.name) + std::string(aEntry.name) + "Available";
}

} // namespace

void DescriptionWriter::Open(std::string_view aNode, std::string_view aName, bool aIsStandard) {
  mText += "  <" + std::string(aNode) + " Name=\"" + std::string(aName) + "\"" +
           (aIsStandard ? " NameSpace=\"Standard\"" : "") + ">\n";
}

void DescriptionWriter::AddChild(std::string_view aElement, std::string_view aContent) {
  const std::string element(aElement);
  mText += "    <" + element + ">" + std::string(aContent) + "</" + element + ">\n";
}

void DescriptionWriter::AddRoot() {
  Open("Category", "Root", true);
  for (const DescriptionCategory& category : mCategories)
    AddChild("pFeature", category.name);
  Close("Category");
  mText += "  <Port Name=\"Device\" NameSpace=\"Standard\"/>\n";
}

void DescriptionWriter::AddCategory(const DescriptionCategory& aCategory) {
  Open("Category", aCategory.name, aCategory.isStandard);
  AddChild("ToolTip", aCategory.tip);
  AddChild("DisplayName", MakeDisplayName(aCategory.name));
  for (const Feature& feature : mFeatures.List()) {
    if (feature.category == aCategory.name)
      AddChild("pFeature", feature.name);
    for (const FeatureEntry& chunk : feature.entries) {
      if (feature.category == aCategory.name && feature.name == kChunkSelectorName)
        AddChild("pFeature", GetChunkFeature(chunk));
    }
  }
  Close("Category");
}

void DescriptionWriter::AddCommonChildren(const Feature& aFeature) {
  AddChild("ToolTip", aFeature.tip);
  AddChild("DisplayName", MakeDisplayName(aFeature.name));
  AddChild("Visibility", aFeature.visibility);
  if (!aFeature.inquiry.empty())
    AddChild("pIsImplemented", aFeature.inquiry);
  if (!aFeature.prerequisite.empty())
    AddChild("pIsAvailable", std::string(aFeature.name) + "Available");
  if (aFeature.isLocked)
    AddChild("pIsLocked", "TLParamsLocked");
  // A camera's own name is no setting: other cameras get settings, too.
  const bool isSetting =
      aFeature.access == RegisterAccess::ReadWrite && !aFeature.isVolatile && aFeature.name != "DeviceUserID";
  if (isSetting)
    AddChild("Streamable", "Yes");
}

void DescriptionWriter::AddRange(const Feature& aFeature) {
  if (aFeature.access != RegisterAccess::ReadOnly) {
    AddChild("Min", FormatLimit(aFeature.kind, aFeature.minimum));
    if (aFeature.limit.empty())
      AddChild("Max", FormatLimit(aFeature.kind, aFeature.maximum));
    else
      AddChild("pMax", std::string(aFeature.name) + "Limit");
    if (aFeature.kind == FeatureKind::Integer)
      AddChild("Inc", std::to_string(aFeature.increment));
  }
  if (!aFeature.unit.empty())
    AddChild("Unit", aFeature.unit);
  if (!aFeature.representation.empty())
    AddChild("Representation", aFeature.representation);
}

// A command whose register can be read is asked whether it is done.
void DescriptionWriter::AddCommandChildren(const Feature& aFeature) {
  AddChild("CommandValue", "1");
  if (aFeature.access == RegisterAccess::ReadWrite)
    AddChild("PollingTime", kCommandPollingTimeMs);
}

// Whether the entry is missing in some position of the feature's selector.
bool DescriptionWriter::IsConditional(const Feature& aFeature, const FeatureEntry& aEntry) const {
  return std::ranges::any_of(mFeatures.ListPositions(aFeature),
                             [&](std::uint32_t aPosition) { return (aEntry.positions >> aPosition & 1U) == 0; });
}

void DescriptionWriter::AddEntries(const Feature& aFeature) {
  const auto category = std::ranges::find(mCategories, aFeature.category, &DescriptionCategory::name);
  const bool isStandard = category == mCategories.end() || category->isStandard;
  for (const FeatureEntry& entry : mFeatures.ListEntries(aFeature)) {
    mText += "    <EnumEntry Name=\"" + std::string(entry.name) + "\"" + (isStandard ? " NameSpace=\"Standard\"" : "") +
             ">\n";
    if (!entry.tip.empty())
      AddChild("ToolTip", entry.tip);
    if (IsConditional(aFeature, entry))
      AddChild("pIsAvailable", GetAvailability(aFeature, entry));
    AddChild("Value", FormatHex(entry.value));
    mText += "    </EnumEntry>\n";
  }
}

void DescriptionWriter::AddEntryConditions(const Feature& aFeature) {
  for (const FeatureEntry& entry : mFeatures.ListEntries(aFeature)) {
    if (IsConditional(aFeature, entry))
      AddKnife(GetAvailability(aFeature, entry), aFeature.selector, {},
               "(" + std::to_string(entry.positions) + " >> A) % 2");
  }
}

void DescriptionWriter::AddSelected(const Feature& aFeature) {
  for (const Feature& feature : mFeatures.List()) {
    if (feature.selector == aFeature.name)
      AddChild("pSelected", feature.name);
  }
}

void DescriptionWriter::AddRegisterChildren(const Feature& aFeature) {
  AddChild("Address", FormatHex(aFeature.address));
  if (aFeature.stride > 0)
    mText += "    <pIndex Offset=\"" + FormatHex(aFeature.stride) + "\">" + GetRegisterName(aFeature.selector) +
             "</pIndex>\n";
  AddChild("Length", std::to_string(aFeature.length));
  AddChild("AccessMode", std::ranges::find(kAccessNames, aFeature.access, &AccessRow::access)->name);
  AddChild("pPort", "Device");
  if (aFeature.isVolatile) {
    AddChild("Cachable", "NoCache");
    AddChild("PollingTime", kPollingTimeMs);
  }
  for (const std::string_view feature : aFeature.dependsOn)
    AddChild("pInvalidator", GetRegisterName(feature));
}

void DescriptionWriter::AddRegister(const Feature& aFeature) {
  const std::string_view node = aFeature.kind == FeatureKind::Float ? "FloatReg" : "IntReg";
  Open(node, GetRegisterName(aFeature.name), false);
  AddRegisterChildren(aFeature);
  if (aFeature.kind != FeatureKind::Float)
    AddChild("Sign", "Unsigned");
  AddChild("Endianess", "BigEndian");
  Close(node);
}

void DescriptionWriter::AddKnife(const std::string& aName, std::string_view aFirst, std::string_view aSecond,
                                 const std::string& aFormula) {
  Open("IntSwissKnife", aName, false);
  mText += "    <pVariable Name=\"A\">" + GetRegisterName(aFirst) + "</pVariable>\n";
  if (!aSecond.empty())
    mText += "    <pVariable Name=\"B\">" + GetRegisterName(aSecond) + "</pVariable>\n";
  AddChild("Formula", aFormula);
  Close("IntSwissKnife");
}

void DescriptionWriter::AddFeature(const Feature& aFeature) {
  static constexpr std::array<std::pair<FeatureKind, std::string_view>, 6> kNodes = {{
      {FeatureKind::Text, "StringReg"},
      {FeatureKind::Integer, "Integer"},
      {FeatureKind::Float, "Float"},
      {FeatureKind::Boolean, "Boolean"},
      {FeatureKind::Enumeration, "Enumeration"},
      {FeatureKind::Command, "Command"},
  }};
  const std::string_view node =
      std::ranges::find(kNodes, aFeature.kind, &std::pair<FeatureKind, std::string_view>::first)->second;
  Open(node, aFeature.name, aFeature.isStandard);
  AddCommonChildren(aFeature);
  if (aFeature.kind == FeatureKind::Text) {
    AddRegisterChildren(aFeature);
    Close(node);
    return;
  }
  AddEntries(aFeature);
  AddChild("pValue", GetRegisterName(aFeature.name));
  if (aFeature.kind == FeatureKind::Integer || aFeature.kind == FeatureKind::Float)
    AddRange(aFeature);
  if (aFeature.kind == FeatureKind::Command)
    AddCommandChildren(aFeature);
  AddSelected(aFeature);
  Close(node);
  AddRegister(aFeature);
  AddEntryConditions(aFeature);
  if (!aFeature.prerequisite.empty())
    AddKnife(std::string(aFeature.name) + "Available", aFeature.prerequisite, {},
             "A = " + std::to_string(aFeature.requiredValue));
  if (!aFeature.limit.empty())
    AddKnife(std::string(aFeature.name) + "Limit", aFeature.limit, aFeature.limitLess, "A - B");
}

// A chunk is read through a port of its own, which a frame gives its data to.
void DescriptionWriter::AddChunk(const FeatureEntry& aChunk) {
  const std::string name = GetChunkFeature(aChunk);
  const bool isFloat = aChunk.value == cameraregister::kChunkExposureTime;
  Open(isFloat ? "Float" : "Integer", name, true);
  AddChild("ToolTip", aChunk.tip);
  AddChild("DisplayName", MakeDisplayName(name));
  AddChild("Visibility", "Expert");
  AddChild("pValue", GetRegisterName(name));
  if (aChunk.value != cameraregister::kChunkFrameID)
    AddChild("Unit", isFloat ? "us" : "ns");
  Close(isFloat ? "Float" : "Integer");
  Open(isFloat ? "FloatReg" : "IntReg", GetRegisterName(name), false);
  AddChild("Address", FormatHex(0));
  AddChild("Length", std::to_string(kChunkValueBytes));
  AddChild("AccessMode", "RO");
  AddChild("pPort", name + "Port");
  if (!isFloat)
    AddChild("Sign", "Unsigned");
  AddChild("Endianess", "BigEndian");
  Close(isFloat ? "FloatReg" : "IntReg");
  Open("Port", name + "Port", false);
  AddChild("ChunkID", FormatHex(kFirstChunkID + aChunk.value).substr(2));
  Close("Port");
}

void DescriptionWriter::AddHead(const DescriptionHead& aHead) {
  const std::string minor = std::to_string(aHead.minorVersion);
  mText += "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription ModelName=\"" +
           MakeName(aHead.modelName.ToUtf8()) + "\" VendorName=\"" + MakeName(aHead.vendorName.ToUtf8()) +
           "\" ToolTip=\"Features of a simulated camera\"\n    StandardNameSpace=\"" + std::string(aHead.nameSpace) +
           "\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\"\n    MajorVersion=\"1\" "
           "MinorVersion=\"" +
           minor + "\" SubMinorVersion=\"0\"\n    ProductGuid=\"" + std::string(kProductGuid) + "\" VersionGuid=\"" +
           std::string(kVersionGuid) + minor + "\"\n    xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n";
}

std::string DescriptionWriter::Write(const DescriptionHead& aHead) {
  mText.clear();
  AddHead(aHead);
  AddRoot();
  for (const DescriptionCategory& category : mCategories)
    AddCategory(category);
  for (const Feature& feature : mFeatures.List())
    AddFeature(feature);
  if (const Feature* const chunks = mFeatures.Find(kChunkSelectorName)) {
    for (const FeatureEntry& chunk : chunks->entries)
      AddChunk(chunk);
  }
  mText += "</RegisterDescription>\n";
  return std::move(mText);
}

} // namespace krtransport
