#pragma once
// A camera description as read, before it comes to life: its nodes with their properties in the order of the document,
// names resolved. What properties mean is left to the nodes.

#include "description/nodekind.h"
#include "krbase/krresult.h"
#include "krgenicam/krgendescription.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace krgenicam {

using NodeIndex = std::uint32_t;
inline constexpr NodeIndex kNoNode = 0xFFFFFFFF;

/// One child element of a node. Texts have no blanks around them; they live as long as the description.
struct Property {
  PropertyKind kind;
  std::uint32_t line = 0; ///< From 1 on.
  std::string_view text;
  /// The attribute Name (pVariable, Constant, Expression), Index (ValueIndexed, pValueIndexed) or Offset (pIndex).
  std::string_view attribute = {};
  /// The node that the text names, where the property is one that names a node (also EnumEntry and IntSwissKnife, whose
  /// elements are nodes of their own); kNoNode when there is none of that name.
  NodeIndex target = kNoNode;
  /// The node that the attribute pOffset of a pIndex names; kNoNode when there is no such attribute, or no such node.
  NodeIndex offsetTarget = kNoNode;
  /// The attribute pOffset as written; empty where there is none.
  std::string_view offsetName = {};
};

/// One node. StructEntry elements are nodes of kind MaskedIntReg that have been given what their StructReg says for
/// all; EnumEntry elements and IntSwissKnife elements inside a register are nodes of their own.
struct NodeDescription {
  NodeKind kind = NodeKind::Node;
  std::string_view name;
  std::uint32_t line = 0;
  bool isStandard = false;         ///< NameSpace="Standard".
  NodeIndex owner = kNoNode;       ///< The enumeration of an entry, the register of an IntSwissKnife inside it.
  std::uint32_t firstProperty = 0; ///< Into Description::GetProperties().
  std::uint32_t propertyCount = 0;
};

/// What is wrong in one place.
struct DescriptionFault {
  std::uint32_t line = 0;
  std::string node; ///< Empty where no node is concerned.
  std::string text; ///< A whole sentence.
};

/// Thread: constant once read. Ownership: owns the document's memory, into which its texts point.
class Description {
public:
  /// Reads a text. BadData, with line and column where there is one, for what is no XML, has another root than
  /// RegisterDescription, or a schema version above 1.1 (the major or minor number; the sub-minor one does not matter).
  /// Faults in single nodes are noted, and what they make unusable is left out: a second node of a name that is there
  /// already, an element without a name, more than 2^20 nodes, or properties of a node.
  static KrResult Read(const KrGenDescription& aText, Description& aDescription);

  Description();
  ~Description();
  Description(Description&&) noexcept;
  Description& operator=(Description&&) noexcept;

  const std::vector<NodeDescription>& GetNodes() const { return mNodes; }
  std::span<const Property> GetProperties(const NodeDescription& aNode) const {
    return std::span(mProperties).subspan(aNode.firstProperty, aNode.propertyCount);
  }
  /// The node of a name, entries not among them; kNoNode where there is none.
  NodeIndex Find(std::string_view aName) const;
  const std::vector<DescriptionFault>& GetFaults() const { return mFaults; }

  std::string_view GetVendorName() const { return mVendorName; }
  std::string_view GetModelName() const { return mModelName; }
  std::string_view GetStandardNameSpace() const { return mStandardNameSpace; }
  /// The version of the document itself, "1.0.2".
  const std::string& GetVersion() const { return mVersion; }
  /// The schema that the document follows: 0 or 1 for 1.0 and 1.1.
  int GetSchemaMinorVersion() const { return mSchemaMinorVersion; }

private:
  friend class DescriptionReader;
  struct Document;

  std::unique_ptr<Document> mDocument;
  std::vector<NodeDescription> mNodes;
  std::vector<Property> mProperties;
  std::unordered_map<std::string_view, NodeIndex> mNames;
  std::vector<DescriptionFault> mFaults;
  std::string_view mVendorName;
  std::string_view mModelName;
  std::string_view mStandardNameSpace;
  std::string mVersion;
  int mSchemaMinorVersion = 1;
};

} // namespace krgenicam
