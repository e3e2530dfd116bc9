#include "map/parametersnapshot.h"

#include "map/tableorder.h"
#include "nodes/enumerationnode.h"
#include "nodes/registernode.h"

#include <string_view>

namespace krgenicam {

namespace {

// The longest register that is read only to find out whether it changed.
constexpr std::int64_t kMostBytesLookedAt = std::int64_t{64} << 10;

ParameterSnapshot::Item Look(Evaluation& aEvaluation, Node& aNode, Facet aFacet) {
  Number number;
  const KrResult result =
      aFacet == Facet::Value ? aNode.GetValue(aEvaluation, number) : aNode.Get(aEvaluation, aFacet, number);
  return {.code = result.GetCode(), .number = result.IsOK() ? number : Number()};
}

void LookAtNumber(Evaluation& aEvaluation, Node& aNode, ParameterSnapshot& aSnapshot) {
  aSnapshot.value = Look(aEvaluation, aNode, Facet::Value);
  // The range of what is not there is nobody's business, and may not be there either.
  if (!IsReadable(aSnapshot.access) && !IsWritable(aSnapshot.access))
    return;
  aSnapshot.minimum = Look(aEvaluation, aNode, Facet::Minimum);
  aSnapshot.maximum = Look(aEvaluation, aNode, Facet::Maximum);
  aSnapshot.increment = Look(aEvaluation, aNode, Facet::Increment);
  if (!aNode.GetValidValues(aEvaluation, aSnapshot.validValues).IsOK())
    aSnapshot.validValues.clear();
  const NodeShown shown = aNode.GetShown(aEvaluation);
  aSnapshot.representation = shown.representation;
  aSnapshot.unit = shown.unit;
  aSnapshot.notation = shown.notation;
  aSnapshot.precision = shown.precision;
}

void LookAtValue(Evaluation& aEvaluation, Node& aNode, ParameterSnapshot& aSnapshot) {
  aSnapshot.value = Look(aEvaluation, aNode, Facet::Value);
}

// Whether it is under way is known of a command that cannot be read, too.
void LookAtCommand(Evaluation& aEvaluation, Node& aNode, ParameterSnapshot& aSnapshot) {
  Number number;
  aSnapshot.value.code = aNode.Get(aEvaluation, Facet::Value, number).GetCode();
  aSnapshot.value.number = number;
}

void LookAtEnumeration(Evaluation& aEvaluation, Node& aNode, ParameterSnapshot& aSnapshot) {
  LookAtValue(aEvaluation, aNode, aSnapshot);
  for (EnumEntryNode* entry : static_cast<EnumerationNode&>(aNode).GetEntries())
    aSnapshot.entries.push_back(entry->GetAccess(aEvaluation));
}

void LookAtText(Evaluation& aEvaluation, Node& aNode, ParameterSnapshot& aSnapshot) {
  const KrResult result = IsReadable(aSnapshot.access) ? aNode.ReadText(aEvaluation, aSnapshot.text)
                                                       : KrResult(KrResult::Code::AccessDenied);
  aSnapshot.value.code = result.GetCode();
  if (!result.IsOK())
    aSnapshot.text.clear();
  if (!IsReadable(aSnapshot.access) && !IsWritable(aSnapshot.access))
    return;
  std::int64_t length = 0;
  aSnapshot.maximum.code = aNode.GetMaxTextLength(aEvaluation, length).GetCode();
  aSnapshot.maximum.number = Number(length);
}

void LookAtRegister(Evaluation& aEvaluation, Node& aNode, ParameterSnapshot& aSnapshot) {
  if (!IsWorthReading(aNode, aEvaluation))
    return;
  aSnapshot.writesCount = 0;
  std::vector<std::uint8_t> bytes;
  aSnapshot.value.code = static_cast<RegisterNode&>(aNode).GetBytes(aEvaluation, bytes).GetCode();
  aSnapshot.bytesLength = bytes.size();
  aSnapshot.bytesHash = std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

// Nodes without a value have no more than their access.
void LookAtAccess(Evaluation&, Node&, ParameterSnapshot&) {}

struct Row {
  KrGenType type;
  void (*look)(Evaluation&, Node&, ParameterSnapshot&);
};

// In the order of KrGenType.
constexpr Row kRows[] = {
    {KrGenType::Integer, LookAtNumber},    {KrGenType::Enumeration, LookAtEnumeration},
    {KrGenType::Boolean, LookAtValue},     {KrGenType::String, LookAtText},
    {KrGenType::Command, LookAtCommand},   {KrGenType::Float, LookAtNumber},
    {KrGenType::Register, LookAtRegister}, {KrGenType::Other, LookAtAccess},
};

static_assert(IsInOrderOf(kRows, &Row::type));

} // namespace

bool IsWorthReading(Node& aNode, Evaluation& aEvaluation) {
  std::int64_t length = 0;
  return aNode.GetType() == KrGenType::Register && IsReadable(aNode.GetAccess(aEvaluation)) &&
         static_cast<RegisterNode&>(aNode).GetLength(aEvaluation, length).IsOK() && length <= kMostBytesLookedAt;
}

ParameterSnapshot TakeSnapshot(Node& aNode, Evaluation& aEvaluation, std::uint64_t aWritesCount) {
  const KrGenType type = aNode.GetType();
  ParameterSnapshot snapshot;
  snapshot.access = aNode.GetAccess(aEvaluation);
  snapshot.writesCount = type == KrGenType::Register ? aWritesCount : 0;
  kRows[static_cast<std::size_t>(type)].look(aEvaluation, aNode, snapshot);
  return snapshot;
}

} // namespace krgenicam
