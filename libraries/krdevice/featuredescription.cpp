#include "featuredescription.h"

#include "hostfeatureport.h"
#include "krpersistence/xmltext.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace krdevice {

namespace {

using krpersistence::WriteXmlText;
using krsystem::HostFeature;
using krsystem::HostFeatureKind;

struct KindNodes {
  HostFeatureKind kind;
  std::string_view node;
  std::string_view registerNode; // Empty where the node is its own register.
};

constexpr std::array<KindNodes, 6> kKindNodes = {{
    {HostFeatureKind::Text, "StringReg", {}},
    {HostFeatureKind::Integer, "Integer", "IntReg"},
    {HostFeatureKind::Float, "Float", "FloatReg"},
    {HostFeatureKind::Boolean, "Boolean", "IntReg"},
    {HostFeatureKind::Enumeration, "Enumeration", "IntReg"},
    {HostFeatureKind::Command, "Command", "IntReg"},
}};

const KindNodes& GetNodes(HostFeatureKind aKind) {
  return *std::ranges::find(kKindNodes, aKind, &KindNodes::kind);
}

bool IsNumber(HostFeatureKind aKind) {
  return aKind == HostFeatureKind::Integer || aKind == HostFeatureKind::Float;
}

// "StreamBufferCountManual" becomes "Stream Buffer Count Manual"; abbreviations stay whole.
std::string MakeDisplayName(std::string_view aName) {
  const auto isUpper = [&](std::size_t aIndex) {
    return aIndex < aName.size() && aName[aIndex] >= 'A' && aName[aIndex] <= 'Z';
  };
  std::string text;
  for (std::size_t i = 0; i < aName.size(); ++i) {
    const bool endsWord = i > 0 && isUpper(i) && !isUpper(i - 1);
    const bool endsAbbreviation = i > 0 && isUpper(i) && isUpper(i - 1) && i + 1 < aName.size() && !isUpper(i + 1);
    if (endsWord || endsAbbreviation)
      text += ' ';
    text += aName[i];
  }
  return text;
}

class Writer {
public:
  Writer(const FeatureModule& aModule, const krsystem::HostFeatures& aFeatures)
      : mModule(aModule), mFeatures(aFeatures) {}

  std::string Write();

private:
  void Open(std::string_view aNode, std::string_view aName, bool aIsStandard = false);
  void Close(std::string_view aNode) { mText += "  </" + std::string(aNode) + ">\n"; }
  void AddChild(std::string_view aElement, std::string_view aContent);
  void AddHead();
  void AddCategories();
  void AddCommonChildren(const HostFeature& aFeature);
  void AddEntries(const HostFeature& aFeature);
  void AddRange(const HostFeature& aFeature);
  void AddRegisterChildren(std::size_t aIndex);
  void AddRegister(std::size_t aIndex);
  void AddFeature(std::size_t aIndex);

  const FeatureModule& mModule;
  const krsystem::HostFeatures& mFeatures;
  std::string mText;
};

std::string GetRegisterName(std::string_view aFeature) {
  return std::string(aFeature) + "Reg";
}

void Writer::Open(std::string_view aNode, std::string_view aName, bool aIsStandard) {
  mText += "  <" + std::string(aNode) + " Name=\"" + std::string(aName) + "\"" +
           (aIsStandard ? " NameSpace=\"Standard\"" : "") + ">\n";
}

void Writer::AddChild(std::string_view aElement, std::string_view aContent) {
  const std::string element(aElement);
  mText += "    <" + element + ">" + WriteXmlText(aContent) + "</" + element + ">\n";
}

void Writer::AddHead() {
  mText += "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription ModelName=\"" +
           WriteXmlText(mModule.model) + "\" VendorName=\"KrGUI\" ToolTip=\"" + WriteXmlText(mModule.tip) +
           "\"\n    StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
           "SchemaSubMinorVersion=\"0\"\n    MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\"\n    "
           "ProductGuid=\"7C0B2E54-93A1-4D86-B7F0-52E1D94C6A10\" "
           "VersionGuid=\"7C0B2E54-93A1-4D86-B7F0-52E1D94C6A11\"\n    "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n";
}

void Writer::AddCategories() {
  std::vector<std::string_view> categories;
  for (const HostFeature& feature : mFeatures) {
    if (std::ranges::find(categories, feature.info.category) == categories.end())
      categories.push_back(feature.info.category);
  }
  Open("Category", "Root", true);
  for (const std::string_view category : categories)
    AddChild("pFeature", category);
  Close("Category");
  mText += "  <Port Name=\"Device\" NameSpace=\"Standard\"/>\n";
  for (const std::string_view category : categories) {
    Open("Category", category);
    AddChild("DisplayName", MakeDisplayName(category));
    for (const HostFeature& feature : mFeatures) {
      if (feature.info.category == category)
        AddChild("pFeature", feature.info.name);
    }
    Close("Category");
  }
}

void Writer::AddCommonChildren(const HostFeature& aFeature) {
  const krsystem::HostFeatureInfo& info = aFeature.info;
  AddChild("ToolTip", info.tip);
  AddChild("DisplayName", MakeDisplayName(info.name));
  AddChild("Visibility", info.visibility);
  if (info.isLocked && !mModule.lock.empty())
    AddChild("pIsLocked", GetRegisterName(mModule.lock));
  if (aFeature.read && aFeature.write && info.pollingMs == 0)
    AddChild("Streamable", "Yes");
}

void Writer::AddEntries(const HostFeature& aFeature) {
  for (const krsystem::HostFeatureEntry& entry : aFeature.info.entries) {
    mText += "    <EnumEntry Name=\"" + std::string(entry.name) + "\"" +
             (aFeature.info.isStandard ? " NameSpace=\"Standard\"" : "") + ">\n";
    if (!entry.tip.empty())
      AddChild("ToolTip", entry.tip);
    AddChild("Value", std::to_string(entry.value));
    mText += "    </EnumEntry>\n";
  }
}

void Writer::AddRange(const HostFeature& aFeature) {
  const krsystem::HostFeatureInfo& info = aFeature.info;
  const std::string_view point = info.kind == HostFeatureKind::Float ? ".0" : "";
  if (aFeature.write) {
    AddChild("Min", std::to_string(info.minimum) + std::string(point));
    AddChild("Max", std::to_string(info.maximum) + std::string(point));
  }
  if (!info.unit.empty())
    AddChild("Unit", info.unit);
  if (!info.representation.empty())
    AddChild("Representation", info.representation);
}

void Writer::AddRegisterChildren(std::size_t aIndex) {
  const HostFeature& feature = mFeatures[aIndex];
  AddChild("Address", std::to_string(HostFeaturePort::GetAddress(aIndex)));
  AddChild("Length", std::to_string(HostFeaturePort::GetLength(feature.info.kind)));
  AddChild("AccessMode", !feature.write ? "RO" : !feature.read ? "WO" : "RW");
  AddChild("pPort", "Device");
  if (feature.info.pollingMs > 0) {
    AddChild("Cachable", "NoCache");
    AddChild("PollingTime", std::to_string(feature.info.pollingMs));
  }
  if (feature.info.isCounter && !mModule.reset.empty())
    AddChild("pInvalidator", GetRegisterName(mModule.reset));
}

void Writer::AddRegister(std::size_t aIndex) {
  const krsystem::HostFeatureInfo& info = mFeatures[aIndex].info;
  const std::string_view node = GetNodes(info.kind).registerNode;
  Open(node, GetRegisterName(info.name));
  AddRegisterChildren(aIndex);
  if (info.kind != HostFeatureKind::Float)
    AddChild("Sign", "Signed");
  AddChild("Endianess", "LittleEndian");
  Close(node);
}

void Writer::AddFeature(std::size_t aIndex) {
  const HostFeature& feature = mFeatures[aIndex];
  const HostFeatureKind kind = feature.info.kind;
  const KindNodes& nodes = GetNodes(kind);
  Open(nodes.node, feature.info.name, feature.info.isStandard);
  AddCommonChildren(feature);
  if (nodes.registerNode.empty()) {
    AddRegisterChildren(aIndex);
    Close(nodes.node);
    return;
  }
  AddEntries(feature);
  AddChild("pValue", GetRegisterName(feature.info.name));
  if (IsNumber(kind))
    AddRange(feature);
  if (kind == HostFeatureKind::Command)
    AddChild("CommandValue", "1");
  Close(nodes.node);
  AddRegister(aIndex);
}

std::string Writer::Write() {
  AddHead();
  AddCategories();
  for (std::size_t i = 0; i < mFeatures.size(); ++i)
    AddFeature(i);
  mText += "</RegisterDescription>\n";
  return std::move(mText);
}

} // namespace

std::string WriteFeatureDescription(const FeatureModule& aModule, const krsystem::HostFeatures& aFeatures) {
  return Writer(aModule, aFeatures).Write();
}

} // namespace krdevice
