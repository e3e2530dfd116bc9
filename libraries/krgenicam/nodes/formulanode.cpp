#include "nodes/formulanode.h"

#include "description/lexical.h"
#include "nodes/enumerationnode.h"

#include <algorithm>
#include <limits>

namespace krgenicam {

namespace {

// In the order of the aspects; an entry's name follows the last.
constexpr std::string_view kAspects[] = {"Value",      "Min",        "Max",         "Inc",
                                         "AccessMode", "Visibility", "CachingMode", "Entry"};
constexpr std::string_view kCachingModes[] = {"NoCache", "WriteThrough", "WriteAround"};
constexpr std::int64_t kWriteThrough = 1;

// How a node's value is cached: what it says itself, or what it takes its value from does.
std::int64_t FindCachingMode(INodeIndex& aIndex, const Node* aNode) {
  for (std::size_t depth = 0; aNode && depth < Evaluation::kMaxDepth; ++depth) {
    if (const Property* const cachable = aNode->FindProperty(PropertyKind::Cachable))
      return static_cast<std::int64_t>(FindWord(kCachingModes, cachable->text).value_or(kWriteThrough));
    const Property* const target = aNode->FindProperty(PropertyKind::pValue);
    aNode = target ? aIndex.GetNode(target->target) : nullptr;
  }
  return kWriteThrough;
}

} // namespace

// Gives a formula its variables while one node evaluates it.
class FormulaNode::Variables final : public IFormulaVariables {
public:
  Variables(FormulaNode& aNode, Evaluation& aEvaluation, const Number& aOwnValue)
      : mNode(aNode), mEvaluation(aEvaluation), mOwnValue(aOwnValue) {}

  KrResult GetVariable(std::size_t aIndex, Number& aValue) override {
    if (aIndex < mNode.mVariables.size()) {
      KrResult result = mNode.GetVariable(mEvaluation, mNode.mVariables[aIndex], aValue);
      mHasFailed = mHasFailed || !result.IsOK();
      return result;
    }
    aValue = mOwnValue;
    return {};
  }
  /// Whether one of them could not be had.
  bool HasFailed() const { return mHasFailed; }

private:
  FormulaNode& mNode;
  Evaluation& mEvaluation;
  const Number& mOwnValue;
  bool mHasFailed = false;
};

void FormulaNode::Link(INodeIndex& aIndex) {
  Node::Link(aIndex);
  mShown = TakeShown(aIndex);
  for (const Property& property : GetProperties()) {
    if (property.kind == PropertyKind::pVariable)
      TakeVariable(aIndex, property);
  }
}

void FormulaNode::TakeVariable(INodeIndex& aIndex, const Property& aProperty) {
  Variable variable{.link = LinkTo(aIndex, aProperty), .name = aProperty.attribute};
  const std::size_t dot = variable.name.find('.');
  if (dot != std::string_view::npos) {
    std::string_view suffix = variable.name.substr(dot + 1);
    const std::size_t secondDot = suffix.find('.');
    if (secondDot != std::string_view::npos) {
      variable.entry = suffix.substr(secondDot + 1);
      suffix = suffix.substr(0, secondDot);
    }
    const std::optional<std::size_t> aspect = FindWord(kAspects, suffix);
    if (!aspect || (static_cast<Aspect>(*aspect) == Aspect::Entry) == variable.entry.empty()) {
      aIndex.AddFault(*this, aProperty.line,
                      "the variable " + Quote(variable.name) + " asks for nothing that a node has.");
      return;
    }
    variable.aspect = static_cast<Aspect>(*aspect);
  }
  if (variable.aspect == Aspect::CachingMode)
    variable.cachingMode = FindCachingMode(aIndex, variable.link.node);
  mVariables.push_back(variable);
}

FormulaNode::CompiledFormula FormulaNode::Compile(INodeIndex& aIndex, PropertyKind aKind,
                                                  std::string_view aOwnVariable) {
  CompiledFormula compiled;
  const Property* const text = FindProperty(aKind);
  if (!text) {
    compiled.fault = MakeFault(GetLine(), "a formula is missing.");
    aIndex.AddFault(*this, GetLine(), "a formula is missing.");
    return compiled;
  }
  compiled.line = text->line;
  std::string reason;
  if (const KrResult result = CompileText(*text, aOwnVariable, compiled.formula); !result.IsOK())
    reason = std::string("the formula is none that can be computed. ") + result.GetDescription().CStr();
  else if (!aIndex.ReserveFormulaOperations(compiled.formula.GetOperationsCount()))
    reason = "the formula is not taken, as all formulas of the description together have too many operations.";
  if (!reason.empty()) {
    compiled.formula = {};
    compiled.fault = MakeFault(text->line, reason);
    aIndex.AddFault(*this, text->line, reason);
  }
  return compiled;
}

KrResult FormulaNode::CompileText(const Property& aText, std::string_view aOwnVariable, Formula& aFormula) const {
  std::vector<std::string_view> variables;
  for (const Variable& variable : mVariables)
    variables.push_back(variable.name);
  // Reserved: a variable of the description that has the name gives way, which is why it is not found by it.
  std::ranges::replace(variables, aOwnVariable, std::string_view());
  variables.push_back(aOwnVariable);
  std::vector<FormulaText> constants;
  std::vector<FormulaText> expressions;
  for (const Property& property : GetProperties()) {
    if (property.kind == PropertyKind::Constant)
      constants.push_back({property.attribute, property.text});
    else if (property.kind == PropertyKind::Expression)
      expressions.push_back({property.attribute, property.text});
  }
  return Formula::Compile(aText.text, IsWhole() ? FormulaKind::Integer : FormulaKind::Float,
                          {.variables = variables, .constants = constants, .expressions = expressions}, aFormula);
}

KrResult FormulaNode::Evaluate(Evaluation& aEvaluation, const CompiledFormula& aFormula, const Number& aOwnValue,
                               Number& aResult) {
  if (!aFormula.fault.IsOK())
    return aFormula.fault;
  Variables variables(*this, aEvaluation, aOwnValue);
  Number value;
  if (KrResult result = aFormula.formula.Evaluate(variables, value); !result.IsOK())
    return variables.HasFailed()
               ? result
               : MakeFault(aFormula.line,
                           std::string("the formula has no value now. ") + result.GetDescription().CStr(),
                           result.GetCode());
  aResult = value;
  return {};
}

KrResult FormulaNode::TryEvaluate(Evaluation& aEvaluation, const CompiledFormula& aFormula, const Number& aOwnValue,
                                  std::optional<Number>& aResult) {
  aResult.reset();
  if (!aFormula.fault.IsOK())
    return aFormula.fault;
  Variables variables(*this, aEvaluation, aOwnValue);
  Number value;
  KrResult result = aFormula.formula.Evaluate(variables, value);
  if (result.IsOK())
    aResult = value;
  return result == KrResult::Code::OutOfRange && !variables.HasFailed() ? KrResult() : result;
}

KrResult FormulaNode::GetVariable(Evaluation& aEvaluation, const Variable& aVariable, Number& aValue) {
  Node* node = nullptr;
  if (KrResult result = Follow(aVariable.link, node); !result.IsOK())
    return result;
  switch (aVariable.aspect) {
  case Aspect::Value:
    return node->GetValue(aEvaluation, aValue);
  case Aspect::Minimum:
    return node->Get(aEvaluation, Facet::Minimum, aValue);
  case Aspect::Maximum:
    return node->Get(aEvaluation, Facet::Maximum, aValue);
  case Aspect::Increment:
    return node->Get(aEvaluation, Facet::Increment, aValue);
  case Aspect::AccessMode:
    aValue = Number(static_cast<std::int64_t>(node->GetAccess(aEvaluation)));
    return {};
  case Aspect::Visibility:
    aValue = Number(static_cast<std::int64_t>(node->GetVisibility()));
    return {};
  case Aspect::CachingMode:
    aValue = Number(aVariable.cachingMode);
    return {};
  case Aspect::Entry:
    break;
  }
  const auto* const enumeration = dynamic_cast<const EnumerationNode*>(node);
  const EnumEntryNode* const entry = enumeration ? enumeration->FindEntry(aVariable.entry) : nullptr;
  if (!entry)
    return MakeFault(aVariable.link.line, Quote(aVariable.link.name) + " has no entry " + Quote(aVariable.entry) + ".");
  aValue = Number(entry->GetEntryValue());
  return {};
}

const FormulaNode::Variable* FormulaNode::FindUnreadable(Evaluation& aEvaluation, const CompiledFormula& aFormula) {
  for (const std::size_t used : aFormula.formula.GetUsedVariables()) {
    if (used >= mVariables.size())
      continue;
    const Variable& variable = mVariables[used];
    const bool isReadable =
        variable.link.node && (variable.aspect != Aspect::Value ||
                               IsReadable(variable.link.node->GetAccess(aEvaluation, Facet::AccessUnlocked)));
    if (!isReadable)
      return &variable;
  }
  return nullptr;
}

bool FormulaNode::AreVariablesReadable(Evaluation& aEvaluation, const CompiledFormula& aFormula) {
  return !FindUnreadable(aEvaluation, aFormula);
}

KrResult FormulaNode::ExplainVariables(Evaluation& aEvaluation, const CompiledFormula& aFormula,
                                       const std::string& aAttempt) {
  const Variable* const variable = FindUnreadable(aEvaluation, aFormula);
  if (!variable)
    return {};
  Node* node = nullptr;
  KrResult result = Follow(variable->link, node);
  return result.IsOK() ? ExplainBy(aEvaluation, false, aAttempt, *node) : result;
}

bool FormulaNode::IsWhole() const {
  return GetKind() == NodeKind::IntSwissKnife || GetKind() == NodeKind::IntConverter;
}

Number FormulaNode::GetNativeLimit(Facet aFacet) const {
  using Whole = std::numeric_limits<std::int64_t>;
  using Real = std::numeric_limits<double>;
  const bool isMinimum = aFacet == Facet::Minimum;
  if (IsWhole())
    return Number(isMinimum ? Whole::min() : Whole::max());
  return Number(isMinimum ? Real::lowest() : Real::max());
}

NodeShown FormulaNode::GetShown(Evaluation&) {
  return mShown;
}

} // namespace krgenicam
