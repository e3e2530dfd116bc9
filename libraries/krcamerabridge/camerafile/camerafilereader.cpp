#include "camerafile/camerafilereader.h"

#include "camerafile/doubledkeys.h"
#include "camerafile/featurecommands.h"
#include "camerafile/featurereader.h"
#include "camerafile/featurevaluesreader.h"
#include "camerafile/filemap.h"
#include "camerafile/protocolreader.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

namespace krcamerabridge {

namespace {

using Kind = TemplatePart::Kind;

constexpr std::size_t kMostFeatures = 2048;
constexpr std::size_t kMostCategories = 512;
// Of all features: what changes with each is written into the description.
constexpr std::size_t kMostChanges = 65536;

class Reader {
public:
  Reader(const YamlNode& aRoot, TextProblems& aProblems) : mMap(aRoot, "a camera file", aProblems) {}

  FileModel Read() {
    if (const YamlNode* const version = mMap.FindNeeded("cameraFile")) {
      std::uint64_t number = 0;
      mMap.YamlMap::ReadNumber(*version, "cameraFile", 1, 1, number);
    }
    if (const YamlNode* const camera = mMap.FindNeeded("camera"))
      ReadCamera(*camera);
    if (const YamlNode* const protocol = mMap.FindNeeded("protocol")) {
      mProtocol = ReadFileProtocol(*protocol, mMap.GetProblem());
      mModel.protocol = mProtocol.protocol;
    }
    if (mMap.FindNeeded("categories") && IsProtocolKnown())
      for (const YamlNode& item : mMap.TakeItems("categories", kMostCategories))
        ReadCategory(item, mModel.topCategories);
    mMap.Finish();
    if (mModel.features.empty() && mMap.Find("categories"))
      mMap.ReportMissing(mMap.Find("categories")->place, "there has to be a feature");
    for (std::size_t i = 0; i < mModel.features.size(); ++i)
      Resolve(i);
    ResolveProbe();
    return std::move(mModel);
  }

private:
  // What is wrong with a feature depends on the protocol, which may stand behind the place where a file is cut.
  bool IsProtocolKnown() {
    const YamlNode* const protocol = mMap.Find("protocol");
    return !mMap.IsCut() || (protocol && !protocol->isCut);
  }

  void ReadCamera(const YamlNode& aNode) {
    FileMap map(aNode, "the camera", mMap.GetProblem());
    if (map.FindNeeded("vendor"))
      map.TakeLine("vendor", mModel.vendor);
    if (map.FindNeeded("model"))
      map.TakeLine("model", mModel.model);
    map.TakeLine("description", mModel.description);
    map.Finish();
  }

  void ReadCategory(const YamlNode& aNode, std::vector<std::size_t>& aParent) {
    FileMap map(aNode, "a category", mMap.GetProblem());
    FileCategory category;
    if (map.TakeName("name", category.name))
      Announce(category.name, map.Find("name")->place);
    map.TakeLine("displayName", category.displayName);
    map.TakeLine("tooltip", category.toolTip);
    map.TakeLine("description", category.description);
    ReadVisibility(map, category.visibility);
    for (const YamlNode& item : map.TakeItems("features", kMostFeatures))
      AddFeature(item, category);
    for (const YamlNode& item : map.TakeItems("categories", kMostCategories))
      ReadCategory(item, category.categories);
    map.Finish();
    if (mModel.categories.size() >= kMostCategories) {
      map.Report(aNode.place, "there are more than " + std::to_string(kMostCategories) + " categories");
      return;
    }
    aParent.push_back(mModel.categories.size());
    mModel.categories.push_back(std::move(category));
  }

  void AddFeature(const YamlNode& aNode, FileCategory& aCategory) {
    if (mModel.features.size() >= kMostFeatures) {
      mMap.Report(aNode.place, "there are more than " + std::to_string(kMostFeatures) + " features");
      return;
    }
    ReadFeature read = ReadFileFeature(aNode, mProtocol, mMap.GetProblem());
    if (!read.feature.name.empty() && Announce(read.feature.name, read.references.namePlace))
      mFeatures[read.feature.name] = mModel.features.size();
    if (aNode.isCut)
      mCutFeature = mModel.features.size();
    aCategory.features.push_back(mModel.features.size());
    mModel.features.push_back(std::move(read.feature));
    mReferences.push_back(std::move(read.references));
  }

  // Features and categories share their names.
  bool Announce(const std::string& aName, const TextPlace& aPlace) {
    const auto [known, isNew] = mNames.emplace(aName, aPlace.line);
    if (!isNew)
      mMap.Report(aPlace, "the name " + FileMap::Quote(aName) + " is used in line " + std::to_string(known->second) +
                              " already");
    return isNew;
  }

  // Nothing for a feature that is cut, too, of which nobody knows what can be done with it.
  std::optional<std::size_t> Find(const PlacedWord& aName) {
    const auto feature = mFeatures.find(aName.word);
    if (feature != mFeatures.end())
      return feature->second == mCutFeature ? std::nullopt : std::optional(feature->second);
    mMap.ReportMissing(aName.place, "there is no feature " + FileMap::Quote(aName.word));
    return std::nullopt;
  }

  void Resolve(std::size_t aIndex) {
    FileFeature& feature = mModel.features[aIndex];
    const FeatureReferences& references = mReferences[aIndex];
    if (references.changesAll) {
      for (std::size_t i = 0; i < mModel.features.size(); ++i)
        if (i != aIndex)
          feature.changes.push_back(i);
    }
    for (const PlacedWord& name : references.changes)
      if (const std::optional<std::size_t> index = Find(name))
        feature.changes.push_back(*index);
    mChanges += feature.changes.size();
    if (mChanges > kMostChanges && mChanges - feature.changes.size() <= kMostChanges)
      mMap.Report(references.namePlace,
                  "the features up to this one change more than " + std::to_string(kMostChanges) + " others in all");
    if (mChanges > kMostChanges)
      feature.changes.clear();
    for (const FeatureReferences::Bound& bound : references.bounds)
      ResolveBound(feature, bound);
    for (const FeatureReferences::Condition& condition : references.conditions)
      ResolveCondition(feature, condition);
    for (CommandTemplate* const parts :
         {feature.get ? &*feature.get : nullptr, &feature.getAnswer, feature.set ? &*feature.set : nullptr,
          feature.setAnswer ? &*feature.setAnswer : nullptr})
      if (parts)
        ResolveTemplate(aIndex, *parts, references.commandPlace);
  }

  void ResolveBound(FileFeature& aFeature, const FeatureReferences::Bound& aBound) {
    const std::optional<std::size_t> index = Find(aBound.feature);
    if (!index)
      return;
    const FileFeature& other = mModel.features[*index];
    if (other.type != aFeature.type || !other.IsReadable() || &other == &aFeature)
      mMap.Report(aBound.feature.place, FileMap::Quote(other.name) +
                                            " cannot be a bound: it has to be another feature of the same type that "
                                            "can be read");
    else
      aFeature.*aBound.member = FileBound{.featureIndex = *index};
  }

  void ResolveCondition(FileFeature& aFeature, const FeatureReferences::Condition& aCondition) {
    const std::optional<std::size_t> index = Find(aCondition.feature);
    if (!index)
      return;
    const FileFeature& other = mModel.features[*index];
    const bool isCountable =
        other.type == FileType::Integer || other.type == FileType::Boolean || other.type == FileType::Enumeration;
    if (!isCountable || !other.IsReadable() || &other == &aFeature) {
      mMap.Report(aCondition.feature.place, FileMap::Quote(other.name) +
                                                " cannot be a condition: it has to be another integer, boolean or "
                                                "enumeration that can be read");
      return;
    }
    const std::optional<WireValue> value = ParseFeatureValue(other, aCondition.value.word);
    if (value)
      (aFeature.*aCondition.member).push_back({*index, std::get<std::int64_t>(*value)});
    else
      mMap.Report(aCondition.value.place,
                  FileMap::Quote(aCondition.value.word) + " is no value of " + FileMap::Quote(other.name));
  }

  void ResolveTemplate(std::size_t aIndex, CommandTemplate& aParts, const TextPlace& aPlace) {
    for (TemplatePart& part : aParts) {
      if (part.kind != Kind::Feature)
        continue;
      const std::optional<std::size_t> index = Find({part.text, aPlace});
      if (!index)
        continue;
      const FileFeature& other = mModel.features[*index];
      if (part.format.kind == WireKind::Automatic)
        part.format = GetDefaultFormat(other.type, mModel.protocol.isBinary);
      part.featureIndex = *index;
      if (!other.start || *index == aIndex)
        mMap.Report(aPlace, "the placeholder {" + part.text +
                                "} has to name another feature, one that the program remembers (with \"start\" or "
                                "\"constant\")");
      else if (part.format.kind == WireKind::Automatic)
        mMap.Report(aPlace, "in binary data {" + part.text + "} needs a format, for example {" + part.text + ":u8}");
    }
  }

  void ResolveProbe() {
    const auto canProbe = [](const FileFeature& aFeature) {
      return aFeature.get && !FindPart(*aFeature.get, Kind::Feature);
    };
    std::vector<FileFeature>& features = mModel.features;
    if (mProtocol.probe.empty()) {
      const auto first = std::ranges::find_if(features, canProbe);
      const auto any =
          std::ranges::find_if(features, [](const FileFeature& aFeature) { return aFeature.get.has_value(); });
      const auto probe = first == features.end() ? any : first;
      mModel.protocol.probeFeature = static_cast<std::size_t>(probe - features.begin());
    } else if (const std::optional<std::size_t> index = Find({mProtocol.probe, mProtocol.probePlace})) {
      mModel.protocol.probeFeature = *index;
      if (!features[*index].get)
        mMap.Report(mProtocol.probePlace, "the feature of \"probe\" needs the key \"get\"");
    }
  }

  FileMap mMap;
  FileModel mModel;
  ReadProtocol mProtocol;
  std::vector<FeatureReferences> mReferences;
  std::size_t mChanges = 0;
  std::optional<std::size_t> mCutFeature;
  std::unordered_map<std::string, std::size_t> mNames; // With their lines.
  std::unordered_map<std::string, std::size_t> mFeatures;
};

} // namespace

std::optional<FileModel> ReadCameraFileText(std::string_view aText, std::vector<std::string>& aErrors) {
  TextProblems problems;
  YamlNode root = krpersistence::ParseYaml(aText, problems);
  JoinDoubledLists(root);
  FileModel model = Reader(root, problems).Read();
  if (!problems.IsThere())
    return model;
  ForEachDoubledValue(root, [&](const std::set<TextPlace>& aPlaces) {
    TextProblems others;
    (void)Reader(root, others).Read(); // It is no model: the file has mistakes.
    for (const krpersistence::TextProblem& problem : others.GetProblems())
      if (aPlaces.contains(problem.place))
        problems.Report(problem.place, problem.reason);
  });
  problems.Sort();
  aErrors = problems.GetTexts();
  return std::nullopt;
}

} // namespace krcamerabridge
