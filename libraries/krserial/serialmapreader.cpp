#include "serialmapreader.h"

#include "krbase/krwholefile.h"
#include "krpersistence/yamlmap.h"

#include <algorithm>
#include <set>
#include <span>
#include <string>
#include <utility>

namespace krserial {

namespace {

using krpersistence::TextProblems;
using krpersistence::YamlKind;
using krpersistence::YamlMap;
using krpersistence::YamlNode;

constexpr std::size_t kMostMaps = 64;
constexpr std::size_t kMostNameBytes = 128;
constexpr std::string_view kPortList = "the list of ports";

enum class Way { FileAccess, Registers };
constexpr std::array<krpersistence::YamlWord, 2> kWays = {{
    {"fileAccess", static_cast<std::int32_t>(Way::FileAccess)},
    {"registers", static_cast<std::int32_t>(Way::Registers)},
}};

// A key whose value is the name of a feature.
template <typename Names>
struct NameRow {
  std::string_view key;
  KrString Names::*name;
  bool isNeeded;
};

constexpr NameRow<FileAccessNames> kFileAccessRows[] = {
    {"fileSelector", &FileAccessNames::fileSelector, false},
    {"fileOperationSelector", &FileAccessNames::fileOperationSelector, false},
    {"fileOperationExecute", &FileAccessNames::fileOperationExecute, false},
    {"fileOpenMode", &FileAccessNames::fileOpenMode, false},
    {"fileAccessOffset", &FileAccessNames::fileAccessOffset, false},
    {"fileAccessLength", &FileAccessNames::fileAccessLength, false},
    {"fileAccessBuffer", &FileAccessNames::fileAccessBuffer, false},
    {"fileOperationStatus", &FileAccessNames::fileOperationStatus, false},
    {"fileOperationResult", &FileAccessNames::fileOperationResult, false},
};

constexpr NameRow<RegisterNames> kRegisterRows[] = {
    {"selector", &RegisterNames::selector, false},
    {"receiveCommand", &RegisterNames::receiveCommand, false},
    {"receivedCount", &RegisterNames::receivedCount, true},
    {"receiveData", &RegisterNames::receiveData, true},
    {"takenCommand", &RegisterNames::takenCommand, false},
    {"transmitRoom", &RegisterNames::transmitRoom, false},
    {"transmitData", &RegisterNames::transmitData, true},
    {"transmitLength", &RegisterNames::transmitLength, false},
    {"transmitCommand", &RegisterNames::transmitCommand, false},
};

// The names of the ports, never destroyed: threads may still ask while the process ends.
const std::vector<std::string>& GetPortNames() {
  static const std::vector<std::string>& names = *[] {
    auto* const made = new std::vector<std::string>;
    for (const KrDeviceSerial port : kDeviceSerialPorts)
      made->push_back(GetPortName(port).ToUtf8());
    return made;
  }();
  return names;
}

// A name as GenICam has them, besides with its name space before it.
bool IsName(std::string_view aText) {
  for (const std::string_view space : {"Std::", "Cust::"})
    if (aText.starts_with(space)) {
      aText.remove_prefix(space.size());
      break;
    }
  return !aText.empty() && std::ranges::all_of(aText, [](char aCharacter) {
    return (aCharacter >= 'a' && aCharacter <= 'z') || (aCharacter >= 'A' && aCharacter <= 'Z') ||
           (aCharacter >= '0' && aCharacter <= '9') || aCharacter == '_';
  });
}

// Reads one map of the list.
class MapReader {
public:
  MapReader(const YamlNode& aNode, TextProblems& aProblems) : mMap(aNode, "a map of features", aProblems) {}

  SerialMap Read() {
    SerialMap map;
    if (mMap.FindNeeded("name"))
      mMap.TakeText("name", kMostNameBytes, map.name);
    const YamlNode* const wayNode = mMap.FindNeeded("way");
    const krpersistence::YamlWord* const way = wayNode ? mMap.ReadWord(*wayNode, "way", kWays) : nullptr;
    const YamlNode* const ports = mMap.FindNeeded("ports");
    if (!way) {
      ReadWithoutWay(ports);
      return map;
    }
    if (static_cast<Way>(way->value) == Way::FileAccess) {
      map.names = ReadNames<FileAccessNames>(kFileAccessRows);
      mHasSelector = true;
    } else {
      const RegisterNames names = ReadNames<RegisterNames>(kRegisterRows);
      mHasSelector = mMap.Find("selector") != nullptr;
      map.names = names;
    }
    if (ports)
      ReadPorts(*ports, map);
    mMap.Finish();
    return map;
  }

private:
  // Which keys there have to be is not known then; what is no key of any way, or has no name, is a mistake all the
  // same.
  void ReadWithoutWay(const YamlNode* aPorts) {
    for (const NameRow<FileAccessNames>& row : kFileAccessRows)
      ReadNameOf(row);
    for (const NameRow<RegisterNames>& row : kRegisterRows)
      ReadNameOf(row);
    if (aPorts) {
      YamlMap ports(*aPorts, kPortList, mMap.GetProblem());
      for (const std::string& port : GetPortNames())
        ports.Find(port);
      ports.Finish();
    }
    mMap.Finish();
  }

  template <typename Names>
  void ReadNameOf(const NameRow<Names>& aRow) {
    KrString name;
    if (const YamlNode* const node = mMap.Find(aRow.key))
      ReadName(*node, aRow.key, name);
  }

  template <typename Names>
  Names ReadNames(std::span<const NameRow<Names>> aRows) {
    Names names;
    for (const NameRow<Names>& row : aRows) {
      const YamlNode* const node = row.isNeeded ? mMap.FindNeeded(row.key) : mMap.Find(row.key);
      if (node)
        ReadName(*node, row.key, names.*row.name);
    }
    return names;
  }

  void ReadName(const YamlNode& aNode, std::string_view aKey, KrString& aName) {
    if (aNode.kind == YamlKind::Scalar && aNode.text.size() <= kMostNameBytes && IsName(aNode.text))
      aName = aNode.text;
    else
      mMap.Report(aNode.place, "\"" + std::string(aKey) +
                                   "\" has to be a name of letters, digits and underscores, of " +
                                   std::to_string(kMostNameBytes) + " bytes at most");
  }

  void ReadPorts(const YamlNode& aNode, SerialMap& aMap) {
    YamlMap ports(aNode, kPortList, mMap.GetProblem());
    std::size_t count = 0;
    for (std::size_t i = 0; i < aMap.entries.size(); ++i)
      if (const YamlNode* const node = ports.Find(GetPortNames()[i])) {
        ++count;
        ReadEntry(*node, i, aMap);
      }
    ports.Finish();
    if (aNode.kind == YamlKind::Map && count == 0)
      mMap.Report(aNode.place, "the list of ports needs a port, for example \"Serial0\"");
    if (!mHasSelector && count > 1)
      mMap.Report(aNode.place, "without the key \"selector\" there can be one port only");
  }

  void ReadEntry(const YamlNode& aNode, std::size_t aIndex, SerialMap& aMap) {
    const std::string& port = GetPortNames()[aIndex];
    KrString entry;
    if (mHasSelector)
      ReadName(aNode, port, entry);
    else if (aNode.kind != YamlKind::Null)
      mMap.Report(aNode.place, "\"" + port + "\" has to be empty (~) without the key \"selector\"");
    if (!entry.IsEmpty() && !mEntries.insert(entry.ToUtf8()).second)
      mMap.Report(aNode.place, "the entry \"" + entry.ToUtf8() + "\" has a port already");
    aMap.entries[aIndex] = entry;
  }

  YamlMap mMap;
  bool mHasSelector = false;
  std::set<std::string> mEntries;
};

SerialMaps Read(const YamlNode& aRoot, TextProblems& aProblems) {
  YamlMap file(aRoot, "a file of serial features", aProblems);
  SerialMaps maps;
  if (aRoot.kind == YamlKind::Map && file.FindNeeded("serialFeatures"))
    for (const YamlNode& item : file.TakeItems("serialFeatures", kMostMaps))
      maps.push_back(MapReader(item, aProblems).Read());
  file.Finish();
  return maps;
}

} // namespace

KrResult ParseSerialMaps(std::string_view aText, const KrString& aFile, SerialMaps& aMaps) {
  TextProblems problems;
  const YamlNode root = krpersistence::ParseYaml(aText, problems);
  SerialMaps maps;
  if (!problems.IsThere())
    maps = Read(root, problems);
  if (!problems.IsThere()) {
    aMaps = std::move(maps);
    return {};
  }
  std::string text;
  for (const std::string& problem : problems.GetTexts())
    text += (text.empty() ? "" : "\n") + aFile.ToUtf8() + ":" + problem;
  return {KrResult::Code::InvalidInput, text};
}

KrResult ReadSerialMaps(const KrString& aFile, SerialMaps& aMaps) {
  std::string text;
  // One byte more than is taken shows the parser that there are too many.
  const KrResult read = KrReadWholeFile(aFile, krpersistence::kMostYamlBytes + 1, text);
  if (read == KrResult::Code::OutOfRange)
    return {KrResult::Code::InvalidInput,
            aFile + ":1:1: the file has more than " + std::to_string(krpersistence::kMostYamlBytes) + " bytes"};
  if (!read.IsOK())
    return {KrResult::Code::NotFound, "Reading the file of serial features " + aFile + ": " + read.GetDescription()};
  return ParseSerialMaps(text, aFile, aMaps);
}

} // namespace krserial
