#pragma once
// What nodes with formulas have in common: variables that are aspects of other nodes, constants, expressions. What a
// formula's result means is left to the derived classes.

#include "formula/formula.h"
#include "nodes/node.h"

#include <optional>
#include <vector>

namespace krgenicam {

/// Thread, ownership: as Node.
class FormulaNode : public Node {
public:
  using Node::Node;

  void Link(INodeIndex& aIndex) override;
  NodeShown GetShown(Evaluation& aEvaluation) override;

protected:
  /// A formula, or why it is none.
  struct CompiledFormula {
    Formula formula;
    KrResult fault;
    std::uint32_t line = 0;
  };

  /// Compiles the text of a property. aOwnVariable is the variable of which the value comes with each evaluation;
  /// empty for none.
  CompiledFormula Compile(INodeIndex& aIndex, PropertyKind aKind, std::string_view aOwnVariable);
  /// The formula's value, a whole number where the node is one, else a floating-point one. OutOfRange that names node
  /// and line where the formula has none; what went wrong with a variable as it is.
  KrResult Evaluate(Evaluation& aEvaluation, const CompiledFormula& aFormula, const Number& aOwnValue, Number& aResult);
  /// The same, but nothing where the formula itself has no value, as 1/TO has none at 0. What its variables fail with
  /// is a failure here, too.
  KrResult TryEvaluate(Evaluation& aEvaluation, const CompiledFormula& aFormula, const Number& aOwnValue,
                       std::optional<Number>& aResult);
  /// Whether all nodes whose values a formula uses can be read.
  bool AreVariablesReadable(Evaluation& aEvaluation, const CompiledFormula& aFormula);
  /// Why not.
  KrResult ExplainVariables(Evaluation& aEvaluation, const CompiledFormula& aFormula, const std::string& aAttempt);
  /// Whether the node computes with whole numbers.
  bool IsWhole() const;
  Number GetNativeLimit(Facet aFacet) const;

private:
  class Variables;

  /// What of a node a variable stands for.
  enum class Aspect { Value, Minimum, Maximum, Increment, AccessMode, Visibility, CachingMode, Entry };
  struct Variable {
    NodeLink link;
    std::string_view name;
    Aspect aspect = Aspect::Value;
    std::string_view entry = {};
    std::int64_t cachingMode = 0;
  };

  // The names that a formula may use are the variables of the node, and aOwnVariable as the last.
  KrResult CompileText(const Property& aText, std::string_view aOwnVariable, Formula& aFormula) const;
  void TakeVariable(INodeIndex& aIndex, const Property& aProperty);
  KrResult GetVariable(Evaluation& aEvaluation, const Variable& aVariable, Number& aValue);
  const Variable* FindUnreadable(Evaluation& aEvaluation, const CompiledFormula& aFormula);

  std::vector<Variable> mVariables; ///< A formula knows them by their index here, plus one.
  NodeShown mShown;
};

} // namespace krgenicam
