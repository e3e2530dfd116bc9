#pragma once
// What the operators and functions of formulas do to numbers, and how strongly operators bind. Names, jumps and the
// order of evaluation are left to the compiler.

#include "formula/formulalexer.h"
#include "number.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace krgenicam {

/// Works out a value in place. Null, or why there is none.
using FormulaUnary = const char* (*)(Number& aValue);
using FormulaBinary = const char* (*)(Number& aLeft, const Number& aRight);

struct BinaryOperator {
  FormulaSymbol symbol;
  int precedence; ///< Higher ones bind more; 0 for what the compiler has a rule of its own for (** and ROUND's comma).
  /// What it does in formulas of each kind; null for && and ||, which are jumps.
  FormulaBinary inInteger;
  FormulaBinary inFloat;
};

/// A function of one argument. Signs are here, too, under the names that no formula can call.
struct UnaryFunction {
  std::string_view name;
  FormulaUnary apply;
};

inline constexpr int kLowestPrecedence = 1;

std::span<const BinaryOperator> GetBinaryOperators();
std::span<const UnaryFunction> GetUnaryFunctions();
/// The index of an operator; the table's size where a symbol is none.
std::size_t FindBinaryOperator(FormulaSymbol aSymbol);
/// The index of a function by its name in any case; the table's size for an unknown one.
std::size_t FindUnaryFunction(std::string_view aName);

/// The whole number that is left without the fraction; false where it has no 64 bits.
bool TruncateToInteger(const Number& aValue, std::int64_t& aInteger);
/// The nearest whole number; false where it has no 64 bits.
bool RoundToInteger(const Number& aValue, std::int64_t& aInteger);

inline bool IsTrue(const Number& aValue) {
  return aValue.IsFloat() ? aValue.ToFloat() != 0.0 : aValue.ToInteger() != 0;
}

} // namespace krgenicam
