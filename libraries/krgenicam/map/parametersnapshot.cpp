#include "map/parametersnapshot.h"

#include "map/tableorder.h"
#include "nodes/enumerationnode.h"

namespace krgenicam {

namespace {

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

// Of registers, only that they were written is told; nodes without a value have no more than their access.
void LookAtAccess(Evaluation&, Node&, ParameterSnapshot&) {}

struct Row {
  KrGenType type;
  void (*look)(Evaluation&, Node&, ParameterSnapshot&);
};

// In the order of KrGenType.
constexpr Row kRows[] = {
    {KrGenType::Integer, LookAtNumber},  {KrGenType::Enumeration, LookAtEnumeration},
    {KrGenType::Boolean, LookAtValue},   {KrGenType::String, LookAtText},
    {KrGenType::Command, LookAtCommand}, {KrGenType::Float, LookAtNumber},
    {KrGenType::Register, LookAtAccess}, {KrGenType::Other, LookAtAccess},
};

static_assert(IsInOrderOf(kRows, &Row::type));

} // namespace

ParameterSnapshot TakeSnapshot(Node& aNode, Evaluation& aEvaluation, std::uint64_t aWritesCount) {
  const KrGenType type = aNode.GetType();
  ParameterSnapshot snapshot;
  snapshot.access = aNode.GetAccess(aEvaluation);
  snapshot.writesCount = type == KrGenType::Register ? aWritesCount : 0;
  kRows[static_cast<std::size_t>(type)].look(aEvaluation, aNode, snapshot);
  return snapshot;
}

} // namespace krgenicam
