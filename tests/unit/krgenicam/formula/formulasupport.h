#pragma once
// Compiles and evaluates a formula in one go, for tests.

#include "formula/formula.h"
#include "formulatree.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace krgenicam {

inline void PrintTo(const Number& aNumber, std::ostream* aStream) {
  if (aNumber.IsFloat())
    *aStream << "floating-point " << aNumber.ToFloat();
  else
    *aStream << aNumber.ToInteger();
}

} // namespace krgenicam

/// What became of a formula.
struct FormulaOutcome {
  KrResult result;
  krgenicam::Number value;
  std::vector<std::size_t> asked; ///< The variables that were asked for, in their order.

  std::string GetText() const { return result.GetDescription().CStr(); }
};

inline FormulaOutcome RunFormula(std::string_view aText, krgenicam::FormulaKind aKind,
                                 const krgenicam::FormulaNames& aNames = {},
                                 std::vector<krgenicam::Number> aValues = {}) {
  FormulaOutcome outcome;
  krgenicam::Formula formula;
  outcome.result = krgenicam::Formula::Compile(aText, aKind, aNames, formula);
  if (!outcome.result.IsOK())
    return outcome;
  FormulaValues variables(std::move(aValues));
  outcome.result = formula.Evaluate(variables, outcome.value);
  outcome.asked = variables.asked;
  return outcome;
}

inline krgenicam::Number EvaluateInteger(std::string_view aText) {
  const FormulaOutcome outcome = RunFormula(aText, krgenicam::FormulaKind::Integer);
  EXPECT_TRUE(outcome.result.IsOK()) << aText << ": " << outcome.GetText();
  return outcome.value;
}

inline krgenicam::Number EvaluateFloat(std::string_view aText) {
  const FormulaOutcome outcome = RunFormula(aText, krgenicam::FormulaKind::Float);
  EXPECT_TRUE(outcome.result.IsOK()) << aText << ": " << outcome.GetText();
  return outcome.value;
}
