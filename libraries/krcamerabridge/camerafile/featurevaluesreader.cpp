#include "camerafile/featurevaluesreader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>
#include <system_error>
#include <utility>

namespace krcamerabridge {

namespace {

using Kind = TemplatePart::Kind;

constexpr std::size_t kMostEntries = 1024;
constexpr std::size_t kMostWireBytes = 64;
constexpr std::size_t kMostStringBytes = 1024;

constexpr YamlWord kRepresentations[] = {{"linear", 0}, {"logarithmic", 1}, {"pureNumber", 2}, {"hexNumber", 3}};
constexpr std::string_view kRepresentationsSpelt[] = {"Linear", "Logarithmic", "PureNumber", "HexNumber"};

class ValuesReader {
public:
  ValuesReader(FileMap& aMap, FileFeature& aFeature, FeatureReferences& aReferences)
      : mMap(aMap), mFeature(aFeature), mReferences(aReferences) {}

  void Read() {
    switch (mFeature.type) {
    case FileType::Integer:
    case FileType::Float:
      ReadNumbers();
      break;
    case FileType::String:
      mMap.TakeNumber("maxLength", mFeature.maxLength, 1, kMostStringBytes);
      break;
    case FileType::Boolean:
      ReadSwitch("off", "0");
      ReadSwitch("on", "1");
      break;
    case FileType::Enumeration:
      if (const YamlNode* const node = mMap.FindNeeded("entries"))
        ReadEntries(*node);
      break;
    case FileType::Command:
      return;
    }
    // Of a feature that is cut it is not known what values it has.
    if (mMap.IsCut())
      return;
    CheckWires();
    ReadHeld();
  }

private:
  void ReadNumbers() {
    mMap.TakeLine("unit", mFeature.unit);
    std::size_t representation = std::size(kRepresentationsSpelt);
    mMap.TakeWord("representation", kRepresentations, representation);
    if (representation < std::size(kRepresentationsSpelt))
      mFeature.representation = kRepresentationsSpelt[representation];
    if (const YamlNode* const node = mMap.Find("scale")) {
      const std::optional<double> scale = mMap.ReadNumber(*node, "scale");
      if (scale == 0.0)
        mMap.Report(node->place, "\"scale\" cannot be 0");
      else
        mFeature.scale = scale.value_or(mFeature.scale);
    }
    if (const YamlNode* const node = mMap.Find("offset"))
      mFeature.offset = mMap.ReadNumber(*node, "offset").value_or(mFeature.offset);
    ReadBound("min", &FileFeature::minimum);
    ReadBound("max", &FileFeature::maximum);
    ReadBound("increment", &FileFeature::increment);
    CheckBounds();
    SetBoundsOfFormat();
  }

  void ReadBound(std::string_view aKey, std::optional<FileBound> FileFeature::*aMember) {
    const YamlNode* const node = mMap.Find(aKey);
    if (!node || !mMap.IsScalar(*node, aKey))
      return;
    const std::string& text = node->text;
    if (!text.empty() && ((text[0] >= 'A' && text[0] <= 'Z') || (text[0] >= 'a' && text[0] <= 'z'))) {
      mReferences.bounds.push_back({aMember, {text, node->place}});
      return;
    }
    FileBound bound;
    if (mFeature.type == FileType::Integer) {
      const std::optional<std::int64_t> whole = mMap.ReadWhole(*node, aKey);
      if (!whole)
        return;
      bound.whole = *whole;
      bound.number = static_cast<double>(*whole);
    } else {
      const std::optional<double> number = mMap.ReadNumber(*node, aKey);
      if (!number)
        return;
      bound.number = *number;
    }
    mFeature.*aMember = bound;
  }

  void CheckBounds() {
    const auto& [minimum, maximum, increment] = std::tie(mFeature.minimum, mFeature.maximum, mFeature.increment);
    const bool isAbove = mFeature.type == FileType::Integer ? minimum && maximum && minimum->whole > maximum->whole
                                                            : minimum && maximum && minimum->number > maximum->number;
    if (isAbove)
      mMap.Report(mMap.Find("max")->place, "\"max\" is less than \"min\"");
    if (increment && increment->number <= 0)
      mMap.Report(mMap.Find("increment")->place, "\"increment\" has to be greater than 0");
  }

  // What the command cannot carry cannot be set.
  void SetBoundsOfFormat() {
    const TemplatePart* const part = mFeature.set ? FindPart(*mFeature.set, Kind::Value) : nullptr;
    if (!part || !IsWholeNumber(part->format) || GetFixedSize(part->format) == 0 || GetFixedSize(part->format) > 6)
      return; // Larger numbers cannot be scaled exactly.
    const WireRange range = GetWireRange(part->format);
    double least = static_cast<double>(range.least) * mFeature.scale + mFeature.offset;
    double most = static_cast<double>(range.most) * mFeature.scale + mFeature.offset;
    if (least > most)
      std::swap(least, most);
    if (std::max(std::abs(least), std::abs(most)) > 9e15)
      return;
    const auto isNamed = [this](std::optional<FileBound> FileFeature::*aMember) {
      return std::ranges::any_of(
          mReferences.bounds, [aMember](const FeatureReferences::Bound& aBound) { return aBound.member == aMember; });
    };
    if (!mFeature.minimum && !isNamed(&FileFeature::minimum))
      mFeature.minimum = FileBound{.number = least, .whole = static_cast<std::int64_t>(std::ceil(least))};
    if (!mFeature.maximum && !isNamed(&FileFeature::maximum))
      mFeature.maximum = FileBound{.number = most, .whole = static_cast<std::int64_t>(std::floor(most))};
  }

  void SetWire(FileEntry& aEntry, const YamlNode& aNode, std::string_view aKey) {
    if (!mMap.IsScalar(aNode, aKey))
      return;
    if (aNode.text.size() > kMostWireBytes)
      mMap.Report(aNode.place,
                  "\"" + std::string(aKey) + "\" has more than " + std::to_string(kMostWireBytes) + " bytes");
    aEntry.wire = aNode.text;
    aEntry.wireNumber = ParseWhole(aNode.text);
  }

  void ReadSwitch(std::string_view aKey, const char* aDefault) {
    FileEntry entry{.name = std::string(aKey), .wire = aDefault, .wireNumber = ParseWhole(aDefault)};
    if (const YamlNode* const node = mMap.Find(aKey))
      SetWire(entry, *node, aKey);
    mFeature.entries.push_back(entry);
    mEntryPlaces.push_back(mMap.Find(aKey) ? mMap.Find(aKey)->place : mMap.GetPlace());
  }

  void ReadEntries(const YamlNode& aNode) {
    if (aNode.kind == YamlKind::Map && aNode.items.size() <= kMostEntries) {
      for (std::size_t i = 0; i < aNode.items.size(); ++i) {
        FileEntry entry;
        SetWire(entry, aNode.items[i], aNode.keys[i].first);
        AddEntry(entry, {aNode.keys[i].first, aNode.keys[i].second});
      }
    } else if (aNode.kind == YamlKind::Sequence) {
      for (const YamlNode& item : mMap.TakeItems("entries", kMostEntries))
        ReadEntry(item);
    } else {
      mMap.Report(aNode.place, "\"entries\" has to be a list, or names with what the camera has for them; at most " +
                                   std::to_string(kMostEntries));
      return;
    }
    if (aNode.items.empty() && !aNode.isCut)
      mMap.Report(aNode.place, "\"entries\" needs an entry");
  }

  void ReadEntry(const YamlNode& aNode) {
    FileMap map(aNode, "an entry", mMap.GetProblem());
    FileEntry entry;
    std::string name;
    const bool isNamed = map.TakeName("name", name);
    map.TakeLine("displayName", entry.displayName);
    map.TakeLine("tooltip", entry.toolTip);
    if (const YamlNode* const wire = map.FindNeeded("wire"))
      SetWire(entry, *wire, "wire");
    map.Finish();
    if (isNamed)
      AddEntry(entry, {name, map.Find("name")->place});
  }

  void AddEntry(FileEntry& aEntry, const PlacedWord& aName) {
    if (!mMap.CheckName(aName.place, aName.word))
      return;
    if (!mNames.insert(aName.word).second) {
      mMap.Report(aName.place, "there is an entry " + FileMap::Quote(aName.word) + " already");
      return;
    }
    aEntry.name = aName.word;
    mFeature.entries.push_back(aEntry);
    mEntryPlaces.push_back(aName.place);
  }

  bool HasNumberFormat() const {
    for (const CommandTemplate* const commands : {mFeature.set ? &*mFeature.set : nullptr, &mFeature.getAnswer,
                                                  mFeature.setAnswer ? &*mFeature.setAnswer : nullptr})
      if (commands)
        for (const TemplatePart& part : *commands)
          if (part.kind == Kind::Value && IsWholeNumber(part.format))
            return true;
    return false;
  }

  // Whether no answer can be this entry, as the blanks around texts are passed over.
  bool IsOutOfReach(const FileEntry& aEntry) const {
    const TemplatePart* const part = FindPart(mFeature.getAnswer, Kind::Value);
    constexpr std::string_view kBlanks = " \t";
    return part && part->format.kind == WireKind::Text && !aEntry.wire.empty() &&
           (kBlanks.find(aEntry.wire.front()) != std::string_view::npos ||
            kBlanks.find(aEntry.wire.back()) != std::string_view::npos);
  }

  // Answers have to tell the entries apart.
  void CheckWires() {
    const bool hasNumbers = HasNumberFormat();
    std::set<std::string> wires;
    for (std::size_t i = 0; i < mFeature.entries.size(); ++i) {
      const FileEntry& entry = mFeature.entries[i];
      if (hasNumbers && !entry.wireNumber)
        mMap.Report(mEntryPlaces[i], "what the camera has for " + FileMap::Quote(entry.name) +
                                         " has to be a whole number, as the format of {value} is one; not " +
                                         FileMap::Quote(entry.wire));
      else if (!wires.insert(hasNumbers ? std::to_string(*entry.wireNumber) : entry.wire).second)
        mMap.Report(mEntryPlaces[i], "the camera has " + FileMap::Quote(entry.wire) + " for another entry, too");
      if (!hasNumbers && IsOutOfReach(entry))
        mMap.Report(mEntryPlaces[i], "blanks at the ends of " + FileMap::Quote(entry.wire) +
                                         " count only where the answer has {value:raw}");
    }
  }

  void ReadHeld() {
    const YamlNode* const constant = mMap.Find("constant");
    const YamlNode* const start = mMap.Find("start");
    if (constant && (start || mMap.Find("get") || mMap.Find("set")))
      mMap.Report(constant->place, "with \"constant\" there can be none of the keys \"get\", \"set\" and \"start\"");
    else if (start && mMap.Find("get"))
      mMap.Report(start->place, "\"start\" is for what the camera cannot tell; with \"get\" it is asked");
    const YamlNode* const node = constant ? constant : start;
    if (!node || !mMap.IsScalar(*node, constant ? "constant" : "start"))
      return;
    mFeature.isConstant = constant != nullptr;
    mFeature.start = ParseFeatureValue(mFeature, node->text);
    if (!mFeature.start)
      mMap.Report(node->place, FileMap::Quote(node->text) + " is no value of the feature");
    else if (!IsWithinBounds(*mFeature.start))
      mMap.Report(node->place, FileMap::Quote(node->text) + " is not from \"min\" to \"max\"");
  }

  bool IsWithinBounds(const WireValue& aValue) const {
    if (const auto* const whole = std::get_if<std::int64_t>(&aValue); whole && mFeature.type == FileType::Integer)
      return (!mFeature.minimum || *whole >= mFeature.minimum->whole) &&
             (!mFeature.maximum || *whole <= mFeature.maximum->whole);
    const auto* const real = std::get_if<double>(&aValue);
    return !real || ((!mFeature.minimum || *real >= mFeature.minimum->number) &&
                     (!mFeature.maximum || *real <= mFeature.maximum->number));
  }

  FileMap& mMap;
  FileFeature& mFeature;
  FeatureReferences& mReferences;
  std::set<std::string> mNames;
  std::vector<TextPlace> mEntryPlaces;
};

} // namespace

void ReadFeatureValues(FileMap& aMap, FileFeature& aFeature, FeatureReferences& aReferences) {
  ValuesReader(aMap, aFeature, aReferences).Read();
}

std::optional<WireValue> ParseFeatureValue(const FileFeature& aFeature, const std::string& aWord) {
  switch (aFeature.type) {
  case FileType::Integer:
    if (const std::optional<std::int64_t> whole = ParseWhole(aWord))
      return *whole;
    return std::nullopt;
  case FileType::Float: {
    double number = 0;
    const auto [end, error] = std::from_chars(aWord.data(), aWord.data() + aWord.size(), number);
    if (error != std::errc() || end != aWord.data() + aWord.size() || !std::isfinite(number))
      return std::nullopt;
    return number;
  }
  case FileType::String:
    if (aWord.size() > aFeature.maxLength)
      return std::nullopt;
    return aWord;
  case FileType::Boolean:
    if (aWord != "true" && aWord != "false")
      return std::nullopt;
    return std::int64_t{aWord == "true"};
  case FileType::Enumeration: {
    const auto entry = std::ranges::find(aFeature.entries, aWord, &FileEntry::name);
    if (entry == aFeature.entries.end())
      return std::nullopt;
    return static_cast<std::int64_t>(entry - aFeature.entries.begin());
  }
  case FileType::Command:
    return std::nullopt;
  }
  return std::nullopt;
}

} // namespace krcamerabridge
