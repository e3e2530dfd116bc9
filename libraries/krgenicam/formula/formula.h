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

/// How a formula computes. A floating-point number becomes whole by dropping its fraction where an operator needs a
/// whole one (% & | ^ ~ << >>), and by rounding to the nearest where it enters or leaves an integer formula; OutOfRange
/// where it has no 64 bits.
enum class FormulaKind {
  Integer, ///< In 64 bits with sign (IntSwissKnife, IntConverter): division truncates, overflow wraps. Literals and
           ///< functions that are not whole are let pass: what they are part of is floating-point.
  Float,   ///< Whole numbers stay whole for + - * and comparisons, as long as they have 64 bits; all else is
           ///< floating-point (SwissKnife, Converter).
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
  /// May use variables, constants, and expressions that do not use them.
  std::span<const FormulaText> expressions = {};
};

/// Gives the values of variables, each asked for when the formula gets to it and not before.
class IFormulaVariables {
public:
  virtual KrResult GetVariable(std::size_t aIndex, Number& aValue) = 0;

protected:
  ~IFormulaVariables() = default;
};

/// From what binds least: ?: || && | ^ & (= == <> !=) (< > <= >=) (<< >>) (+ -) (* / %) (unary + - ~) ** and functions.
/// ?: and ** go from right to left, all else from left to right. As in mathematics -1**2 is -1; 2 ** -1 is a half, and
/// 0 in an integer formula. Shift counts are taken modulo 64; >> keeps the sign. Functions are known in any case, and
/// only before a parenthesis; E and PI unless something else has that name.
///
/// Thread: constant once compiled; evaluated from several threads at a time. Ownership: owns what it was compiled to.
class Formula {
public:
  static constexpr std::size_t kMaxOperations = 10000;
  static constexpr std::size_t kMaxNesting = 200;   ///< Parentheses, signs, functions and named texts in one another.
  static constexpr std::size_t kMaxStack = 256;     ///< Operands that wait for their operators.
  static constexpr std::size_t kMaxBlocks = 256;    ///< Named texts that are more than a few operations.
  static constexpr std::size_t kMaxText = 1u << 20; ///< Characters, with those of the constants and expressions used.

  /// Compiles a text. BadData for what is no formula, with the place and what was expected there, for a name that is
  /// not known, for constants or expressions that use each other in a circle, and beyond the limits. A constant may use
  /// other constants.
  static KrResult Compile(std::string_view aText, FormulaKind aKind, const FormulaNames& aNames, Formula& aFormula);

  /// Evaluates it, without allocating unless it fails; Number::IsFloat() of the result is false for
  /// FormulaKind::Integer. OutOfRange, with the place, for a division by zero, outside a function's domain and for what
  /// is no number; and what a variable gives. Nothing is evaluated behind the question mark, && and || that is not
  /// needed. No operation is executed twice: an expression that is used again has its value already.
  KrResult Evaluate(IFormulaVariables& aVariables, Number& aResult) const;

  /// The indices of the variables that occur in it, ascending.
  std::span<const std::size_t> GetUsedVariables() const { return mUsedVariables; }

  /// How many it was compiled to, at most kMaxOperations.
  std::size_t GetOperationsCount() const { return mInstructions.size(); }

private:
  friend class FormulaCompiler;

  enum class Operation : std::uint8_t {
    Push,           ///< The constant.
    PushVariable,   ///< The variable of the index that is the argument.
    Unary,          ///< kUnaryFunctions[function] on the top.
    Binary,         ///< kBinaryOperators[function] on the two on top.
    Jump,           ///< To the argument.
    JumpIfZero,     ///< To the argument if the top is 0; takes the top.
    SkipIfZero,     ///< To the argument if the top is 0, leaving 0; takes the top otherwise.
    SkipUnlessZero, ///< To the argument unless the top is 0, leaving 1; takes the top otherwise.
    Truth,          ///< Makes the top 0 or 1.
    Call,           ///< Pushes the value of the block that is the argument, going there if it has none yet.
    Return,         ///< Makes the top the value of the block that is the argument, and goes on behind its call.
  };
  struct Instruction {
    Operation operation;
    std::uint8_t function = 0;
    std::uint32_t argument = 0; ///< A variable's or block's index, where to go on, or the column for faults.
    Number constant = {};
  };
  // What became of a block in one evaluation. No block is under way twice, as none uses itself.
  struct BlockState {
    Number value;
    std::size_t next = 0; ///< Behind the call that is under way.
    bool hasValue = false;
  };

  template <std::size_t kStack, std::size_t kBlocks>
  KrResult EvaluateWithRoom(IFormulaVariables& aVariables, Number& aResult) const;
  KrResult Run(IFormulaVariables& aVariables, Number* aStack, BlockState* aBlocks, Number& aResult) const;
  KrResult Fetch(IFormulaVariables& aVariables, std::size_t aIndex, Number& aValue) const;
  KrResult Finish(const Number& aValue, Number& aResult) const;

  FormulaKind mKind = FormulaKind::Float;
  std::vector<Instruction> mInstructions;
  std::vector<std::uint32_t> mBlocks; ///< Where each begins.
  std::vector<std::size_t> mUsedVariables;
  std::size_t mStackSize = 0;
};

} // namespace krgenicam
