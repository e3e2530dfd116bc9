#pragma once
// Cuts a formula's text into numbers, names and operators. What they mean together is left to the compiler.

#include "number.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace krgenicam {

enum class FormulaSymbol : std::uint8_t {
  End,
  Invalid, ///< What no formula has; the token's fault says what was expected.
  Value,
  Name,
  OpenParenthesis,
  CloseParenthesis,
  Comma,
  Question,
  Colon,
  Plus,
  Minus,
  Times,
  Divide,
  Remainder,
  Power,
  BitAnd,
  BitOr,
  BitXor,
  Complement,
  LogicalAnd,
  LogicalOr,
  ShiftLeft,
  ShiftRight,
  Equal,
  NotEqual,
  Less,
  Greater,
  LessEqual,
  GreaterEqual,
};

struct FormulaToken {
  FormulaSymbol symbol = FormulaSymbol::End;
  std::size_t column = 1; ///< In bytes, from 1 on.
  std::string_view text = {};
  Number value = {};
  const char* fault = nullptr;
};

/// Whole numbers that have no 64 bits with sign: of those without sign, hexadecimal ones wrap to negative ones; decimal
/// ones do where aWraps, else they become floating-point. Operators may be escaped once more than XML wants (&amp;lt;).
///
/// Thread: one at a time. Ownership: borrows the text.
class FormulaLexer {
public:
  FormulaLexer(std::string_view aText, bool aWraps) : mText(aText), mWraps(aWraps) {}

  FormulaToken Next();

private:
  // A character as it is meant, and the length that it has in the text.
  struct Character {
    char meaning = '\0';
    std::size_t length = 0;
  };

  Character PeekCharacter(std::size_t aPosition) const;
  FormulaToken TakeNumber();
  FormulaToken TakeHexNumber();
  FormulaToken TakeName();
  FormulaToken TakeOperator();
  FormulaToken Finish(FormulaSymbol aSymbol, std::size_t aEnd);
  FormulaToken Refuse(const char* aFault) const;
  void ReadDecimal(FormulaToken& aToken) const;

  std::string_view mText;
  std::size_t mPosition = 0;
  bool mWraps;
};

} // namespace krgenicam
