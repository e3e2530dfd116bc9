#pragma once
// A formula of a description, compiled once and evaluated without allocating. Where its variables come from is left to
// the node that has it.

#include "krbase/krresult.h"
#include "number.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace krgenicam {

/// How a formula computes.
enum class FormulaKind {
  Integer, ///< In 64 bits with sign (IntSwissKnife, IntConverter): division truncates, overflow wraps.
  Float,   ///< Whole numbers stay whole for + - * and comparisons, all else is floating-point (SwissKnife, Converter).
};

/// A name and the text it stands for.
struct FormulaText {
  std::string_view name;
  std::string_view text;
};

/// The names that a formula may use beside functions. Where one is named twice, variables win over constants, constants
/// over expressions.
struct FormulaNames {
  std::span<const std::string_view> variables = {}; ///< A variable is known by its index.
  std::span<const FormulaText> constants = {};
  std::span<const FormulaText> expressions =
      {}; ///< May use variables, constants, and expressions that do not use them.
};

/// Gives the values of variables, each asked for when the formula gets to it and not before.
class IFormulaVariables {
public:
  virtual KrResult GetVariable(std::size_t aIndex, Number& aValue) = 0;

protected:
  ~IFormulaVariables() = default;
};

/// Thread: constant once compiled; evaluated from several threads at a time. Ownership: owns what it was compiled to.
class Formula {
public:
  /// Compiles a text. BadData for what is no formula, with the place and what was expected there, for a name that is
  /// not known, for expressions that use each other in a circle, and beyond 10,000 operations or 200 levels of nesting.
  static KrResult Compile(std::string_view aText, FormulaKind aKind, const FormulaNames& aNames, Formula& aFormula);

  /// Evaluates it; Number::IsFloat() of the result is false for FormulaKind::Integer. OutOfRange for a division by zero
  /// and outside a function's domain, and what a variable gives. Nothing is evaluated behind the question mark, && and
  /// || that is not needed.
  KrResult Evaluate(IFormulaVariables& aVariables, Number& aResult) const;

  /// The indices of the variables that occur in it, ascending.
  std::span<const std::size_t> GetUsedVariables() const { return mUsedVariables; }

private:
  friend class FormulaCompiler;

  enum class Operation : std::uint8_t;
  struct Instruction {
    Operation operation;
    std::uint32_t argument = 0; ///< A variable's index, or where to go on.
    Number constant = {};
  };

  FormulaKind mKind = FormulaKind::Float;
  std::vector<Instruction> mInstructions;
  std::vector<std::size_t> mUsedVariables;
  std::size_t mStackSize = 0;
};

} // namespace krgenicam
