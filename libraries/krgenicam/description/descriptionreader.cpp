#include "description/descriptionreader.h"

#include "description/elementnames.h"
#include "description/lexical.h"
#include "description/xmlelement.h"

#include <algorithm>
#include <bitset>

namespace krgenicam {

namespace {

constexpr std::size_t kPropertyKinds = static_cast<std::size_t>(PropertyKind::CacheChunkData) + 1;

// The attribute that belongs to an element's meaning.
const char* GetAttributeName(PropertyKind aKind) {
  switch (aKind) {
  case PropertyKind::pVariable:
  case PropertyKind::Constant:
  case PropertyKind::Expression:
    return "Name";
  case PropertyKind::ValueIndexed:
  case PropertyKind::pValueIndexed:
    return "Index";
  case PropertyKind::pIndex:
    return "Offset";
  default:
    return nullptr;
  }
}

// A formula inside another element needs no name: it has none where that is too long. Entries were looked at before.
std::string_view GetEmbeddedName(const pugi::xml_node& aElement) {
  const std::string_view name = GetAttribute(aElement, "Name");
  return name.size() <= DescriptionReader::kMostNameBytes ? name : std::string_view();
}

} // namespace

void DescriptionReader::ReadNodes(const pugi::xml_node& aRoot) {
  // Groups may lie in one another as deep as they like, so the walk goes along the tree's own links.
  pugi::xml_node node = aRoot.first_child();
  while (node && !mIsFull) {
    if (node.first_child() && GetLocalName(node) == "Group") {
      node = node.first_child();
      continue;
    }
    if (node.type() == pugi::node_element)
      ReadElement(node);
    while (node != aRoot && !node.next_sibling())
      node = node.parent();
    node = node == aRoot ? pugi::xml_node() : node.next_sibling();
  }
  Resolve();
  std::ranges::stable_sort(mDescription.mFaults, {}, &DescriptionFault::line);
}

void DescriptionReader::ReadElement(const pugi::xml_node& aElement) {
  const std::string_view name = GetLocalName(aElement);
  if (name == "StructReg")
    ReadStruct(aElement);
  else if (const std::optional<NodeKind> kind = FindNodeKind(name))
    ReadNode(aElement, *kind);
}

void DescriptionReader::ReadNode(const pugi::xml_node& aElement, NodeKind aKind) {
  const std::string_view name = GetAttribute(aElement, "Name");
  if (!MayBegin(aElement, aKind, name))
    return;
  AddNode(aElement, aKind, name, kNoNode);
  const auto index = static_cast<NodeIndex>(mNodes.size() - 1);
  mEmbedded.clear();
  ReadProperties(aElement, aKind, mProperties);
  EndNode(index);
  if (!mIsFull)
    ReadEmbedded(index);
}

void DescriptionReader::ReadEmbedded(NodeIndex aOwner) {
  for (const Embedded& embedded : mEmbedded) {
    const Property property = mProperties[embedded.property];
    const NodeKind kind = property.kind == PropertyKind::EnumEntry ? NodeKind::EnumEntry : NodeKind::IntSwissKnife;
    if (mNodes.size() >= kMostNodes)
      return Stop(property.line, "there are more than " + std::to_string(kMostNodes) + " nodes");
    AddNode(embedded.element, kind, GetEmbeddedName(embedded.element), aOwner);
    const auto index = static_cast<NodeIndex>(mNodes.size() - 1);
    mProperties[embedded.property].target = index;
    ReadProperties(embedded.element, kind, mProperties);
    EndNode(index);
    if (mIsFull)
      return;
  }
}

void DescriptionReader::ReadStruct(const pugi::xml_node& aElement) {
  std::vector<Property> common;
  mEmbedded.clear();
  ReadProperties(aElement, NodeKind::MaskedIntReg, common);
  // A formula of the address is one node for all entries.
  for (const Embedded& embedded : std::exchange(mEmbedded, {})) {
    if (mNodes.size() >= kMostNodes || mIsFull)
      break;
    AddNode(embedded.element, NodeKind::IntSwissKnife, GetEmbeddedName(embedded.element), kNoNode);
    const auto index = static_cast<NodeIndex>(mNodes.size() - 1);
    common[embedded.property].target = index;
    ReadProperties(embedded.element, NodeKind::IntSwissKnife, mProperties);
    EndNode(index);
  }
  const std::size_t firstEntry = mNodes.size();
  for (pugi::xml_node entry = aElement.first_child(); entry && !mIsFull; entry = entry.next_sibling()) {
    if (GetLocalName(entry) == "StructEntry")
      ReadStructEntry(entry, common);
  }
  if (firstEntry == mNodes.size())
    return AddFault(GetLine(aElement), {}, "A StructReg has no entry that can be used.");
  for (const Property& property : common) {
    if (property.kind == PropertyKind::IntSwissKnife && property.target != kNoNode)
      mNodes[property.target].owner = static_cast<NodeIndex>(firstEntry);
  }
}

void DescriptionReader::ReadStructEntry(const pugi::xml_node& aEntry, const std::vector<Property>& aCommon) {
  const std::string_view name = GetAttribute(aEntry, "Name");
  if (!MayBegin(aEntry, NodeKind::MaskedIntReg, name))
    return;
  AddNode(aEntry, NodeKind::MaskedIntReg, name, kNoNode);
  const std::size_t first = mProperties.size();
  ReadProperties(aEntry, NodeKind::MaskedIntReg, mProperties);
  mEmbedded.clear();
  // Where the register is, its StructReg says alone.
  const auto ownTerms = std::remove_if(mProperties.begin() + static_cast<std::ptrdiff_t>(first), mProperties.end(),
                                       [](const Property& aProperty) { return IsAddressTerm(aProperty.kind); });
  if (ownTerms != mProperties.end())
    AddFault(GetLine(aEntry), name, "An entry of a StructReg has no address of its own; it is passed over.");
  mProperties.erase(ownTerms, mProperties.end());
  std::bitset<kPropertyKinds> own;
  for (std::size_t index = first; index < mProperties.size(); ++index)
    own.set(static_cast<std::size_t>(mProperties[index].kind));
  for (const Property& property : aCommon) {
    if (!own.test(static_cast<std::size_t>(property.kind)))
      mProperties.push_back(property);
  }
  if (mProperties.size() > kMostProperties)
    Stop(GetLine(aEntry), "the nodes have more than " + std::to_string(kMostProperties) + " elements");
  EndNode(static_cast<NodeIndex>(mNodes.size() - 1));
}

bool DescriptionReader::MayBegin(const pugi::xml_node& aElement, NodeKind aKind, std::string_view aName) {
  const std::uint32_t line = GetLine(aElement);
  if (aName.empty()) {
    AddFault(line, {},
             "The element " + std::string(GetLocalName(aElement).substr(0, 60)) + " has no name and is left out.");
    return false;
  }
  if (!IsShortEnough(aName, line, aName, "The node's name"))
    return false;
  if (mNodes.size() >= kMostNodes) {
    Stop(line, "there are more than " + std::to_string(kMostNodes) + " nodes");
    return false;
  }
  const auto index = static_cast<NodeIndex>(mNodes.size());
  auto& names = aKind == NodeKind::EnumEntry ? mFreeEntries : mDescription.mNames;
  const auto [known, isNew] = names.try_emplace(aName, index);
  if (!isNew)
    AddFault(line, aName,
             "There is a node of this name in line " + std::to_string(mNodes[known->second].line) +
                 " already; this one is left out.");
  return isNew;
}

bool DescriptionReader::IsShortEnough(std::string_view aName, std::uint32_t aLine, std::string_view aNode,
                                      const char* aWhat) {
  if (aName.size() > kMostNameBytes)
    AddFault(aLine, aNode,
             std::string(aWhat) + " has more than " + std::to_string(kMostNameBytes) + " bytes; it is left out.");
  return aName.size() <= kMostNameBytes;
}

void DescriptionReader::AddNode(const pugi::xml_node& aElement, NodeKind aKind, std::string_view aName,
                                NodeIndex aOwner) {
  mNodes.push_back({.kind = aKind,
                    .name = aName,
                    .line = GetLine(aElement),
                    .isStandard = EqualsIgnoringCase(GetAttribute(aElement, "NameSpace"), "Standard"),
                    .owner = aOwner,
                    .firstProperty = static_cast<std::uint32_t>(mProperties.size())});
}

void DescriptionReader::EndNode(NodeIndex aNode) {
  NodeDescription& node = mNodes[aNode];
  // What was cut off by a limit is not used at all.
  if (mIsFull)
    mProperties.resize(node.firstProperty);
  node.propertyCount = static_cast<std::uint32_t>(mProperties.size() - node.firstProperty);
}

void DescriptionReader::ReadProperties(const pugi::xml_node& aElement, NodeKind aKind,
                                       std::vector<Property>& aProperties) {
  for (pugi::xml_node element = aElement.first_child(); element; element = element.next_sibling()) {
    if (element.type() != pugi::node_element)
      continue;
    const std::optional<Property> property = ReadProperty(element, aKind);
    if (!property)
      continue;
    const bool isNode = property->kind == PropertyKind::IntSwissKnife ||
                        (property->kind == PropertyKind::EnumEntry && GetLocalName(element) == "EnumEntry");
    if (isNode)
      mEmbedded.push_back({aProperties.size(), element});
    aProperties.push_back(*property);
  }
  if (aProperties.size() > kMostProperties)
    Stop(GetLine(aElement), "the nodes have more than " + std::to_string(kMostProperties) + " elements");
}

std::optional<Property> DescriptionReader::ReadProperty(const pugi::xml_node& aElement, NodeKind aKind) {
  const std::string_view name = GetLocalName(aElement);
  const std::optional<PropertyKind> kind = FindPropertyKind(name);
  if (!kind)
    return std::nullopt;
  Property property{.kind = *kind, .line = GetLine(aElement), .text = {}};
  if (*kind == PropertyKind::IntSwissKnife)
    return IsRegister(aKind) ? std::optional(property) : std::nullopt;
  if (*kind == PropertyKind::EnumEntry && aKind != NodeKind::Enumeration)
    return std::nullopt;
  if (*kind == PropertyKind::EnumEntry && name == "EnumEntry")
    return IsNewEntry(aElement) ? std::optional(property) : std::nullopt;
  property.text = GetContent(aElement, mDescription.mDocument->joined);
  if (*kind == PropertyKind::Symbolic && aKind == NodeKind::EnumEntry &&
      !IsShortEnough(property.text, property.line, mNodes.back().name, "An entry's symbolic name"))
    return std::nullopt;
  if (const char* const attribute = GetAttributeName(*kind))
    property.attribute = GetAttribute(aElement, attribute);
  if (*kind == PropertyKind::pIndex)
    property.offsetName = GetAttribute(aElement, "pOffset");
  return property;
}

bool DescriptionReader::IsNewEntry(const pugi::xml_node& aElement) {
  const std::string_view name = GetAttribute(aElement, "Name");
  const std::string_view enumeration = mNodes.back().name;
  const std::uint32_t line = GetLine(aElement);
  if (name.empty()) {
    AddFault(line, enumeration, "An entry has no name and is left out.");
    return false;
  }
  if (!IsShortEnough(name, line, enumeration, "An entry's name"))
    return false;
  const bool isNew = mEntries.insert({static_cast<NodeIndex>(mNodes.size() - 1), name}).second;
  if (!isNew)
    AddFault(line, enumeration, "There is an entry " + Quote(name) + " already; this one is left out.");
  return isNew;
}

std::uint32_t DescriptionReader::GetLine(const pugi::xml_node& aElement) const {
  return mLines.GetLine(static_cast<std::size_t>(std::max<std::ptrdiff_t>(aElement.offset_debug(), 0)));
}

void DescriptionReader::AddFault(std::uint32_t aLine, std::string_view aNode, const std::string& aText) {
  std::vector<DescriptionFault>& faults = mDescription.mFaults;
  constexpr std::size_t kLongestName = 60;
  if (faults.size() < kMostFaults)
    faults.push_back({aLine, std::string(aNode.substr(0, kLongestName)), aText});
  else if (faults.size() == kMostFaults)
    faults.push_back({aLine, {}, "There are more faults, which are not listed."});
}

void DescriptionReader::Stop(std::uint32_t aLine, const std::string& aText) {
  if (!std::exchange(mIsFull, true))
    AddFault(aLine, {}, "From here on nothing is read: " + aText + ".");
}

} // namespace krgenicam
