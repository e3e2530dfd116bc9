#include "camerafile/featurereader.h"

#include "camerafile/featurecommands.h"
#include "camerafile/featurevaluesreader.h"

#include <array>

namespace krcamerabridge {

namespace {

constexpr std::uint32_t kMostMs = 600000;
constexpr std::size_t kMostReferences = 256;

constexpr YamlWord kTypes[] = {
    {"integer", static_cast<std::int32_t>(FileType::Integer)},
    {"float", static_cast<std::int32_t>(FileType::Float)},
    {"string", static_cast<std::int32_t>(FileType::String)},
    {"boolean", static_cast<std::int32_t>(FileType::Boolean)},
    {"enumeration", static_cast<std::int32_t>(FileType::Enumeration)},
    {"command", static_cast<std::int32_t>(FileType::Command)},
};

constexpr unsigned Bit(FileType aType) {
  return 1U << static_cast<unsigned>(aType);
}

constexpr unsigned kAll = 0x3F;
constexpr unsigned kNumbers = Bit(FileType::Integer) | Bit(FileType::Float);
constexpr unsigned kValues = kAll & ~Bit(FileType::Command);

struct KeyRow {
  std::string_view key;
  unsigned types;
};

constexpr KeyRow kKeys[] = {
    {"name", kAll},
    {"type", kAll},
    {"displayName", kAll},
    {"tooltip", kAll},
    {"description", kAll},
    {"visibility", kAll},
    {"unit", kNumbers},
    {"representation", kNumbers},
    {"min", kNumbers},
    {"max", kNumbers},
    {"increment", kNumbers},
    {"scale", kNumbers},
    {"offset", kNumbers},
    {"get", kValues},
    {"getAnswer", kValues},
    {"set", kValues},
    {"setAnswer", kValues},
    {"start", kValues},
    {"constant", kValues},
    {"cached", kValues},
    {"pollMs", kValues},
    {"streamable", kValues},
    {"execute", Bit(FileType::Command)},
    {"executeAnswer", Bit(FileType::Command)},
    {"entries", Bit(FileType::Enumeration)},
    {"on", Bit(FileType::Boolean)},
    {"off", Bit(FileType::Boolean)},
    {"maxLength", Bit(FileType::String)},
    {"changes", kAll},
    {"availableIf", kAll},
    {"lockedIf", kAll},
    {"answerMs", kAll},
    {"pauseMs", kAll},
};

class FeatureReader {
public:
  FeatureReader(const YamlNode& aNode, const ReadProtocol& aProtocol, TextProblems& aProblems)
      : mMap(aNode, "a feature", aProblems), mProtocol(aProtocol) {}

  ReadFeature Read() {
    mRead.references.namePlace = mMap.GetPlace();
    mRead.references.commandPlace = mMap.GetPlace();
    if (mMap.TakeName("name", mFeature.name))
      mRead.references.namePlace = mMap.Find("name")->place;
    const YamlNode* const node = mMap.FindNeeded("type");
    const YamlWord* const type = node ? mMap.ReadWord(*node, "type", kTypes) : nullptr;
    ReadDescribing();
    ReadReferences();
    if (type) {
      mFeature.type = static_cast<FileType>(type->value);
      CheckKeys(type->word);
      ReadFeatureCommands(mMap, mProtocol, mFeature, mRead.references);
      ReadFeatureValues(mMap, mFeature, mRead.references);
      SetDefaults();
    } else {
      CheckKeys({});
    }
    mMap.Finish();
    return std::move(mRead);
  }

private:
  // What no feature has is told by Finish; what others have, here.
  void CheckKeys(std::string_view aType) {
    for (const KeyRow& row : kKeys) {
      const YamlNode* const node = mMap.Find(row.key);
      if (node && !aType.empty() && (row.types & Bit(mFeature.type)) == 0)
        mMap.Report(node->place,
                    "a feature of the type " + std::string(aType) + " has no key \"" + std::string(row.key) + "\"");
    }
  }

  void ReadDescribing() {
    ReadVisibility(mMap, mFeature.visibility);
    mMap.TakeLine("displayName", mFeature.displayName);
    mMap.TakeLine("tooltip", mFeature.toolTip);
    mMap.TakeLine("description", mFeature.description);
    mMap.TakeFlag("cached", mFeature.isCached);
    mMap.TakeNumber("pollMs", mFeature.pollMs, 10, kMostMs);
    mFeature.answerMs = mProtocol.protocol.answerMs;
    mMap.TakeNumber("answerMs", mFeature.answerMs, 1, kMostMs);
    mFeature.pauseMs = mProtocol.protocol.pauseMs;
    mMap.TakeNumber("pauseMs", mFeature.pauseMs, 0, kMostMs);
  }

  void ReadReferences() {
    const YamlNode* const changes = mMap.Find("changes");
    if (changes && changes->kind == YamlKind::Scalar && changes->text == "all")
      mRead.references.changesAll = true;
    else if (changes)
      for (const YamlNode& item : mMap.TakeItems("changes", kMostReferences))
        if (mMap.IsScalar(item, "changes"))
          mRead.references.changes.push_back({item.text, item.place});
    ReadConditions("availableIf", &FileFeature::availableIf);
    ReadConditions("lockedIf", &FileFeature::lockedIf);
  }

  void ReadConditions(std::string_view aKey, std::vector<FileCondition> FileFeature::*aMember) {
    const YamlNode* const node = mMap.Find(aKey);
    if (!node)
      return;
    if (node->kind != YamlKind::Map || node->items.size() > kMostReferences) {
      mMap.Report(node->place,
                  "\"" + std::string(aKey) + "\" has to be features with a value each, for example {Mode: Manual}");
      return;
    }
    for (std::size_t i = 0; i < node->items.size(); ++i)
      if (mMap.IsScalar(node->items[i], node->keys[i].first))
        mRead.references.conditions.push_back(
            {aMember, {node->keys[i].first, node->keys[i].second}, {node->items[i].text, node->items[i].place}});
  }

  void SetDefaults() {
    const bool isAsked = mFeature.get.has_value();
    if (mFeature.pollMs > 0 && !isAsked)
      mMap.ReportMissing(mMap.Find("pollMs")->place, "\"pollMs\" needs the key \"get\", by which the camera is asked");
    mFeature.isStreamable = mFeature.set && mFeature.IsReadable() && mFeature.type != FileType::Command;
    mMap.TakeFlag("streamable", mFeature.isStreamable);
  }

  FileMap mMap;
  const ReadProtocol& mProtocol;
  ReadFeature mRead;
  FileFeature& mFeature = mRead.feature;
};

} // namespace

ReadFeature ReadFileFeature(const YamlNode& aNode, const ReadProtocol& aProtocol, TextProblems& aProblems) {
  return FeatureReader(aNode, aProtocol, aProblems).Read();
}

} // namespace krcamerabridge
