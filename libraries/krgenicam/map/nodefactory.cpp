#include "map/nodefactory.h"

#include "map/tableorder.h"
#include "nodes/booleannode.h"
#include "nodes/categorynode.h"
#include "nodes/commandnode.h"
#include "nodes/converternode.h"
#include "nodes/enumentrynode.h"
#include "nodes/enumerationnode.h"
#include "nodes/floatnode.h"
#include "nodes/floatregisternode.h"
#include "nodes/integernode.h"
#include "nodes/integerregisternode.h"
#include "nodes/portnode.h"
#include "nodes/registernode.h"
#include "nodes/stringnode.h"
#include "nodes/stringregisternode.h"
#include "nodes/swissknifenode.h"

namespace krgenicam {

namespace {

template <typename Kind>
std::unique_ptr<Node> Make(const Description& aDescription, const NodeDescription& aNode) {
  return std::make_unique<Kind>(aDescription, aNode);
}

struct Row {
  NodeKind kind;
  std::unique_ptr<Node> (*make)(const Description&, const NodeDescription&);
};

// In the order of NodeKind.
constexpr Row kRows[] = {
    {NodeKind::Node, Make<Node>},
    {NodeKind::Category, Make<CategoryNode>},
    {NodeKind::Integer, Make<IntegerNode>},
    {NodeKind::IntReg, Make<IntegerRegisterNode>},
    {NodeKind::MaskedIntReg, Make<IntegerRegisterNode>},
    {NodeKind::Boolean, Make<BooleanNode>},
    {NodeKind::Command, Make<CommandNode>},
    {NodeKind::Enumeration, Make<EnumerationNode>},
    {NodeKind::EnumEntry, Make<EnumEntryNode>},
    {NodeKind::Float, Make<FloatNode>},
    {NodeKind::FloatReg, Make<FloatRegisterNode>},
    {NodeKind::String, Make<StringNode>},
    {NodeKind::StringReg, Make<StringRegisterNode>},
    {NodeKind::Register, Make<RegisterNode>},
    {NodeKind::Converter, Make<ConverterNode>},
    {NodeKind::IntConverter, Make<ConverterNode>},
    {NodeKind::SwissKnife, Make<SwissKnifeNode>},
    {NodeKind::IntSwissKnife, Make<SwissKnifeNode>},
    {NodeKind::Port, Make<PortNode>},
};

static_assert(IsInOrderOf(kRows, &Row::kind));

} // namespace

std::unique_ptr<Node> MakeNode(const Description& aDescription, const NodeDescription& aNode) {
  return kRows[static_cast<std::size_t>(aNode.kind)].make(aDescription, aNode);
}

} // namespace krgenicam
