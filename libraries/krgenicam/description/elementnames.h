#pragma once
// How the elements of a description are spelled. What to do with an element is left to the reader.

#include "description/nodekind.h"

#include <optional>
#include <string_view>

namespace krgenicam {

/// The kind of node of an element inside the root or a group: StructEntry and StructReg are not among them, as they
/// need more than being read. Nothing for a name that is no node's.
std::optional<NodeKind> FindNodeKind(std::string_view aElement);
/// The property of an element inside a node; nothing for a name that means nothing.
std::optional<PropertyKind> FindPropertyKind(std::string_view aElement);
/// An element's name as the schema has it.
std::string_view GetElementName(PropertyKind aKind);
std::string_view GetElementName(NodeKind aKind);

/// Whether the text of the element names a node.
bool NamesNode(PropertyKind aKind);
/// Whether the element is a term of a register's address.
bool IsAddressTerm(PropertyKind aKind);
/// Whether nodes of the kind have an address, and so may have an IntSwissKnife inside.
bool IsRegister(NodeKind aKind);

} // namespace krgenicam
