#pragma once
// Makes the nodes of a description from the elements of its parsed text. Finding the nodes that properties name is left
// to the resolver.

#include "description/description.h"
#include "description/linetable.h"

#include <pugixml.hpp>

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace krgenicam {

/// What was parsed, and where the pieces that had to be joined are kept.
struct Description::Document {
  std::string text;
  std::deque<std::string> joined;
};

/// Thread: used by one thread, for one description.
class DescriptionReader {
public:
  static constexpr std::size_t kMostNodes = std::size_t{1} << 20;
  static constexpr std::size_t kMostProperties = std::size_t{1} << 22;
  static constexpr std::size_t kMostFaults = 1000;
  /// Names of nodes and entries are copied into values, errors and settings, as often as they are asked for.
  static constexpr std::size_t kMostNameBytes = 1024;

  DescriptionReader(Description& aDescription, const LineTable& aLines)
      : mDescription(aDescription), mLines(aLines), mNodes(aDescription.mNodes), mProperties(aDescription.mProperties) {
  }

  /// Takes all nodes below the root, and finds what they name.
  void ReadNodes(const pugi::xml_node& aRoot);

private:
  // An element inside a node that is a node, too, and its property.
  struct Embedded {
    std::size_t property;
    pugi::xml_node element;
  };
  struct EntryKey {
    NodeIndex owner;
    std::string_view name;
    friend bool operator==(const EntryKey&, const EntryKey&) = default;
  };
  struct EntryHash {
    std::size_t operator()(const EntryKey& aKey) const {
      return std::hash<std::string_view>()(aKey.name) ^ (std::size_t{aKey.owner} * 0x9E3779B97F4A7C15U);
    }
  };

  void ReadElement(const pugi::xml_node& aElement);
  void ReadNode(const pugi::xml_node& aElement, NodeKind aKind);
  void ReadStruct(const pugi::xml_node& aElement);
  void ReadStructEntry(const pugi::xml_node& aEntry, const std::vector<Property>& aCommon);
  void ReadEmbedded(NodeIndex aOwner);

  bool MayBegin(const pugi::xml_node& aElement, NodeKind aKind, std::string_view aName);
  bool IsShortEnough(std::string_view aName, std::uint32_t aLine, std::string_view aNode, const char* aWhat);
  void AddNode(const pugi::xml_node& aElement, NodeKind aKind, std::string_view aName, NodeIndex aOwner);
  void ReadProperties(const pugi::xml_node& aElement, NodeKind aKind, std::vector<Property>& aProperties);
  std::optional<Property> ReadProperty(const pugi::xml_node& aElement, NodeKind aKind);
  bool IsNewEntry(const pugi::xml_node& aElement);
  void EndNode(NodeIndex aNode);

  void Resolve();
  void ResolveProperty(NodeIndex aNode, Property& aProperty);
  NodeIndex FindTarget(NodeIndex aNode, const Property& aProperty);

  std::uint32_t GetLine(const pugi::xml_node& aElement) const;
  void AddFault(std::uint32_t aLine, std::string_view aNode, const std::string& aText);
  void Stop(std::uint32_t aLine, const std::string& aText);

  Description& mDescription;
  const LineTable& mLines;
  std::vector<NodeDescription>& mNodes;
  std::vector<Property>& mProperties;
  std::vector<Embedded> mEmbedded; // Of the node that is being read.
  std::unordered_set<EntryKey, EntryHash> mEntries;
  std::unordered_map<std::string_view, NodeIndex> mFreeEntries; // Schema 1.0: named by pEnumEntry.
  bool mIsFull = false;
};

} // namespace krgenicam
