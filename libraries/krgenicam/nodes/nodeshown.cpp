#include "nodes/node.h"

#include <algorithm>

// What a description says of how a number is best shown.

namespace krgenicam {

namespace {

// In the order of the enumerations.
constexpr std::string_view kRepresentations[] = {"Linear",    "Logarithmic", "Boolean",   "PureNumber",
                                                 "HexNumber", "IPV4Address", "MACAddress"};
constexpr std::string_view kNotations[] = {"Automatic", "Fixed", "Scientific"};
// More digits than a number of 64 bits can have.
constexpr std::int64_t kMostDigits = 40;

} // namespace

NodeShown Node::TakeShown(INodeIndex& aIndex) {
  NodeShown shown;
  shown.representation = static_cast<KrGenRepresentation>(
      TakeWord(aIndex, PropertyKind::Representation, kRepresentations, static_cast<std::size_t>(shown.representation)));
  shown.unit = GetText(PropertyKind::Unit);
  shown.notation = static_cast<KrGenDisplayNotation>(
      TakeWord(aIndex, PropertyKind::DisplayNotation, kNotations, static_cast<std::size_t>(shown.notation)));
  shown.precision =
      std::clamp<std::int64_t>(TakeInteger(aIndex, PropertyKind::DisplayPrecision, shown.precision), 0, kMostDigits);
  return shown;
}

} // namespace krgenicam
