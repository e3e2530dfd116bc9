#include "camerafile/filedescription.h"

#include "camerafile/featurevalues.h"
#include "krpersistence/xmltext.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

namespace krcamerabridge {

namespace {

using krpersistence::WriteXmlText;

// No name of a camera file has two underscores in a row.
constexpr std::string_view kRegisterSuffix = "__Register";
constexpr std::string_view kAvailableSuffix = "__Available";
constexpr std::string_view kLockedSuffix = "__Locked";

constexpr std::string_view kNodes[] = {"Integer", "Float", "StringReg", "Boolean", "Enumeration", "Command"};

std::string ToText(double aNumber) {
  std::array<char, 32> place{};
  return {place.data(), std::to_chars(place.data(), place.data() + place.size(), aNumber).ptr};
}

std::string Element(std::string_view aName, std::string_view aText) {
  const std::string name(aName);
  return "    <" + name + ">" + WriteXmlText(aText) + "</" + name + ">\n";
}

std::string OptionalElement(std::string_view aName, std::string_view aText) {
  return aText.empty() ? std::string() : Element(aName, aText);
}

class Describer {
public:
  explicit Describer(const FileModel& aModel) : mModel(aModel) {}

  std::string Describe() {
    FindRelations();
    WriteRoot();
    for (const FileCategory& category : mModel.categories)
      WriteCategory(category);
    for (std::size_t i = 0; i < mModel.features.size(); ++i)
      WriteFeature(i);
    mText += "  <Port Name=\"Device\"/>\n</RegisterDescription>\n";
    return std::move(mText);
  }

private:
  // Who makes a feature be read again, and which features' commands name it.
  void FindRelations() {
    mInvalidators.resize(mModel.features.size());
    mSelected.resize(mModel.features.size());
    for (std::size_t i = 0; i < mModel.features.size(); ++i) {
      const FileFeature& feature = mModel.features[i];
      for (const std::size_t changed : feature.changes)
        mInvalidators[changed].insert(i);
      for (const CommandTemplate* const parts :
           {feature.get ? &*feature.get : nullptr, feature.set ? &*feature.set : nullptr})
        if (parts)
          for (const TemplatePart& part : *parts)
            if (part.kind == TemplatePart::Kind::Feature && !mModel.features[part.featureIndex].isConstant)
              Relate(part.featureIndex, i);
    }
  }

  // Texts have no positions that could be walked: what they select is only read again.
  void Relate(std::size_t aSelector, std::size_t aSelected) {
    if (mModel.features[aSelector].type == FileType::String)
      mInvalidators[aSelected].insert(aSelector);
    else
      mSelected[aSelector].insert(aSelected);
  }

  void WriteRoot() {
    mText =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription ModelName=\"" + WriteXmlText(mModel.model) +
        "\" VendorName=\"" + WriteXmlText(mModel.vendor) + "\" ToolTip=\"" + WriteXmlText(mModel.description) +
        "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\""
        " MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\""
        " ProductGuid=\"5C0D7A4E-93B1-4F26-8A6B-0E4C1D2F7B90\" VersionGuid=\"5C0D7A4E-93B1-4F26-8A6B-0E4C1D2F7B91\""
        " xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
        "  <Category Name=\"Root\">\n";
    for (const std::size_t index : mModel.topCategories)
      mText += Element("pFeature", mModel.categories[index].name);
    mText += "  </Category>\n";
  }

  void Begin(std::string_view aNode, std::string_view aName) {
    mText += "  <" + std::string(aNode) + " Name=\"" + std::string(aName) + "\">\n";
  }
  void End(std::string_view aNode) { mText += "  </" + std::string(aNode) + ">\n"; }

  void WriteCategory(const FileCategory& aCategory) {
    Begin("Category", aCategory.name);
    mText += OptionalElement("ToolTip", aCategory.toolTip) + OptionalElement("Description", aCategory.description) +
             OptionalElement("DisplayName", aCategory.displayName) + Element("Visibility", aCategory.visibility);
    for (const std::size_t index : aCategory.features)
      mText += Element("pFeature", mModel.features[index].name);
    for (const std::size_t index : aCategory.categories)
      mText += Element("pFeature", mModel.categories[index].name);
    End("Category");
  }

  std::string NameAt(std::size_t aIndex) const { return mModel.features[aIndex].name; }

  void WriteFeature(std::size_t aIndex) {
    const FileFeature& feature = mModel.features[aIndex];
    const std::string_view node = kNodes[static_cast<std::size_t>(feature.type)];
    Begin(node, feature.name);
    mText += OptionalElement("ToolTip", feature.toolTip) + OptionalElement("Description", feature.description) +
             OptionalElement("DisplayName", feature.displayName) + Element("Visibility", feature.visibility);
    if (!feature.availableIf.empty())
      mText += Element("pIsAvailable", feature.name + std::string(kAvailableSuffix));
    if (!feature.lockedIf.empty())
      mText += Element("pIsLocked", feature.name + std::string(kLockedSuffix));
    if (feature.isStreamable)
      mText += Element("Streamable", "Yes");
    if (feature.type == FileType::String) {
      WritePlace(aIndex);
    } else {
      WriteValues(feature);
      WriteSelected(aIndex);
    }
    End(node);
    if (feature.type != FileType::String)
      WriteRegister(aIndex);
    WriteConditions(feature, feature.availableIf, kAvailableSuffix, " && ");
    WriteConditions(feature, feature.lockedIf, kLockedSuffix, " || ");
  }

  void WriteSelected(std::size_t aIndex) {
    for (const std::size_t selected : mSelected[aIndex])
      mText += Element("pSelected", NameAt(selected));
  }

  void WriteBound(const FileFeature& aFeature, const std::optional<FileBound>& aBound, const std::string& aName) {
    if (!aBound)
      return;
    if (aBound->featureIndex)
      mText += Element("p" + aName, NameAt(*aBound->featureIndex));
    else
      mText +=
          Element(aName, aFeature.type == FileType::Integer ? std::to_string(aBound->whole) : ToText(aBound->number));
  }

  void WriteValues(const FileFeature& aFeature) {
    const std::string place = aFeature.name + std::string(kRegisterSuffix);
    switch (aFeature.type) {
    case FileType::Integer:
    case FileType::Float:
      mText += Element("pValue", place);
      WriteBound(aFeature, aFeature.minimum, "Min");
      WriteBound(aFeature, aFeature.maximum, "Max");
      WriteBound(aFeature, aFeature.increment, "Inc");
      mText += OptionalElement("Unit", aFeature.unit) + OptionalElement("Representation", aFeature.representation);
      break;
    case FileType::Boolean:
      mText += Element("pValue", place) + Element("OnValue", "1") + Element("OffValue", "0");
      break;
    case FileType::Enumeration:
      for (std::size_t i = 0; i < aFeature.entries.size(); ++i)
        WriteEntry(aFeature.entries[i], i);
      mText += Element("pValue", place);
      break;
    case FileType::Command:
      mText += Element("pValue", place) + Element("CommandValue", "1");
      break;
    case FileType::String:
      break;
    }
  }

  void WriteEntry(const FileEntry& aEntry, std::size_t aIndex) {
    mText += "    <EnumEntry Name=\"" + aEntry.name + "\">\n  " + OptionalElement("ToolTip", aEntry.toolTip) +
             OptionalElement("DisplayName", aEntry.displayName) + Element("Value", std::to_string(aIndex)) +
             "    </EnumEntry>\n";
  }

  void WriteRegister(std::size_t aIndex) {
    const FileFeature& feature = mModel.features[aIndex];
    const std::string_view node = feature.type == FileType::Float ? "FloatReg" : "IntReg";
    Begin(node, feature.name + std::string(kRegisterSuffix));
    WritePlace(aIndex);
    if (feature.type != FileType::Float)
      mText += Element("Sign", "Signed");
    mText += Element("Endianess", "LittleEndian");
    End(node);
  }

  void WritePlace(std::size_t aIndex) {
    const FileFeature& feature = mModel.features[aIndex];
    const bool isWritable = feature.IsWritable();
    mText += Element("Address", std::to_string(GetRegisterAddress(aIndex))) +
             Element("Length", std::to_string(GetRegisterLength(feature))) +
             Element("AccessMode", !isWritable            ? "RO"
                                   : feature.IsReadable() ? "RW"
                                                          : "WO") +
             Element("pPort", "Device") +
             // A camera may make something else of what it was sent.
             Element("Cachable", feature.isCached ? "WriteAround" : "NoCache");
    if (feature.pollMs > 0)
      mText += Element("PollingTime", std::to_string(feature.pollMs));
    for (const std::size_t invalidator : mInvalidators[aIndex])
      mText += Element("pInvalidator", NameAt(invalidator));
  }

  void WriteConditions(const FileFeature& aFeature, const std::vector<FileCondition>& aConditions,
                       std::string_view aSuffix, std::string_view aOperator) {
    if (aConditions.empty())
      return;
    Begin("IntSwissKnife", aFeature.name + std::string(aSuffix));
    std::string formula;
    for (std::size_t i = 0; i < aConditions.size(); ++i) {
      // By its register, which is there while the feature is not available, too.
      const std::string variable = "V" + std::to_string(i);
      mText += "    <pVariable Name=\"" + variable + "\">" + NameAt(aConditions[i].featureIndex) +
               std::string(kRegisterSuffix) + "</pVariable>\n";
      formula += (formula.empty() ? "" : std::string(aOperator)) + "(" + variable + " = " +
                 std::to_string(aConditions[i].value) + ")";
    }
    mText += Element("Formula", formula);
    End("IntSwissKnife");
  }

  const FileModel& mModel;
  std::string mText;
  std::vector<std::set<std::size_t>> mInvalidators;
  std::vector<std::set<std::size_t>> mSelected;
};

} // namespace

std::string DescribeCameraFile(const FileModel& aModel) {
  return Describer(aModel).Describe();
}

} // namespace krcamerabridge
