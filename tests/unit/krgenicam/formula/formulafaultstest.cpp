#include "formulasupport.h"

#include <gmock/gmock.h>

#include <limits>

using krgenicam::Formula;
using krgenicam::FormulaKind;
using krgenicam::FormulaNames;
using krgenicam::FormulaText;
using krgenicam::Number;

namespace {

struct Fault {
  const char* text;
  const char* description;
};

class SilentVariables final : public krgenicam::IFormulaVariables {
public:
  KrResult GetVariable(std::size_t, Number&) override { return {KrResult::Code::TimeLimitExceeded, "No answer."}; }
};

} // namespace

TEST(Formula, TextThatIsNone_IsRefusedWithThePlaceAndWhatWasExpected) {
  const Fault faults[] = {
      {"", "Formula: column 1: expected a value, found the end."},
      {"   ", "Formula: column 4: expected a value, found the end."},
      {"1 +", "Formula: column 4: expected a value, found the end."},
      {"1 2", "Formula: column 3: expected an operator or the end, found \"2\"."},
      {"(1 + 2", "Formula: column 7: expected an operator or \")\", found the end."},
      {"1 + 2)", "Formula: column 6: expected an operator or the end, found \")\"."},
      {"1 ? 2", "Formula: column 6: expected \":\", found the end."},
      {"1 : 2", "Formula: column 3: expected an operator or the end, found \":\"."},
      {"1 $ 2", "Formula: column 3: expected a number, a name or an operator, found \"$\"."},
      {"* 2", "Formula: column 1: expected a value, found \"*\"."},
      {"SIN()", "Formula: column 5: expected a value, found \")\"."},
      {"SIN(1, 2)", "Formula: column 6: expected an operator or \")\", found \",\"."},
      {"ROUND(1, 2, 3)", "Formula: column 11: expected an operator or \")\", found \",\"."},
      {"ROUND(1", "Formula: column 8: expected an operator, \",\" or \")\", found the end."},
      {"PI(3)", "Formula: column 4: expected \")\", as PI takes no argument, found \"3\"."},
      {"1e", "Formula: column 1: expected a number whose exponent has digits, found \"1\"."},
      {"1.2.3", "Formula: column 1: expected a number, found \"1\"."},
      {"12abc", "Formula: column 1: expected a number, found \"1\"."},
      {"0x", "Formula: column 1: expected a hexadecimal number, found \"0\"."},
      {"0x1G", "Formula: column 1: expected a hexadecimal number, found \"0\"."},
      {"0x10000000000000000", "Formula: column 1: expected a hexadecimal number of at most 64 bits, found \"0\"."},
      {"1e999", "Formula: column 1: expected a number that a floating-point one can hold, found \"1e999\"."},
      {"2 + GAIN", "Formula: column 5: there is no variable, constant or function \"GAIN\"."},
      {"SINUS(1)", "Formula: column 1: there is no variable, constant or function \"SINUS\"."},
      {"1 =< 2", "Formula: column 4: expected a value, found \"<\"."},
      {"!1", "Formula: column 1: expected a number, a name or an operator, found \"!\"."},
  };
  for (const Fault& fault : faults) {
    const FormulaOutcome outcome = RunFormula(fault.text, FormulaKind::Float);
    EXPECT_EQ(outcome.result.GetCode(), KrResult::Code::BadData) << fault.text;
    EXPECT_EQ(outcome.GetText(), fault.description) << fault.text;
  }
}

TEST(Formula, RefusedText_LeavesTheFormulaAsItWas) {
  Formula formula;
  ASSERT_TRUE(Formula::Compile("42", FormulaKind::Integer, {}, formula).IsOK());

  const KrResult result = Formula::Compile("42 +", FormulaKind::Integer, {}, formula);

  FormulaValues variables;
  Number value;
  EXPECT_FALSE(result.IsOK());
  ASSERT_TRUE(formula.Evaluate(variables, value).IsOK());
  EXPECT_EQ(value, Number(42));
}

TEST(Formula, FaultInANamedText_NamesIt) {
  const FormulaText constants[] = {{"N", "3 4"}, {"V", "A"}};
  const FormulaText expressions[] = {{"X", "N + 1"}};
  const std::string_view variables[] = {"A"};
  const FormulaNames names{.variables = variables, .constants = constants, .expressions = expressions};

  EXPECT_EQ(RunFormula("1 + X", FormulaKind::Integer, names).GetText(),
            "Formula: \"N\", column 3: expected an operator or the end, found \"4\".");
  EXPECT_EQ(RunFormula("V", FormulaKind::Integer, names).GetText(),
            "Formula: \"V\", column 1: a constant cannot use \"A\".");
}

TEST(Formula, ExpressionsInACircle_AreRefused) {
  const FormulaText expressions[] = {{"X", "Y + 1"}, {"Y", "1 + X"}, {"Z", "Z"}};
  const FormulaNames names{.expressions = expressions};

  EXPECT_EQ(RunFormula("X", FormulaKind::Float, names).GetText(), "Formula: \"Y\", column 5: \"X\" uses itself.");
  EXPECT_EQ(RunFormula("Z", FormulaKind::Float, names).GetText(), "Formula: \"Z\", column 1: \"Z\" uses itself.");
}

TEST(Formula, WhatHasNoValue_IsRefusedWithThePlaceAndTheReason) {
  struct Case {
    const char* text;
    FormulaKind kind;
    const char* description;
  };
  const Case cases[] = {
      {"7 / (3 - 3)", FormulaKind::Integer, "Formula: column 3: division by zero."},
      {"7 % 0", FormulaKind::Integer, "Formula: column 3: division by zero."},
      {"7 / 0", FormulaKind::Float, "Formula: column 3: division by zero."},
      {"7 / 0.0", FormulaKind::Float, "Formula: column 3: division by zero."},
      {"7 / 0.0", FormulaKind::Integer, "Formula: column 3: division by zero."},
      {"7 % 0.5", FormulaKind::Float, "Formula: column 3: division by zero."},
      {"0 ** -1", FormulaKind::Integer, "Formula: column 3: division by zero."},
      {"0 ** -1", FormulaKind::Float, "Formula: column 3: division by zero."},
      {"1 + LN(0)", FormulaKind::Float, "Formula: column 5: the logarithm of 0 or less."},
      {"LN(-1)", FormulaKind::Float, "Formula: column 1: the logarithm of 0 or less."},
      {"LG(0)", FormulaKind::Float, "Formula: column 1: the logarithm of 0 or less."},
      {"SQRT(-1)", FormulaKind::Float, "Formula: column 1: the result is no number."},
      {"ASIN(2)", FormulaKind::Float, "Formula: column 1: the result is no number."},
      {"ACOS(-1.5)", FormulaKind::Float, "Formula: column 1: the result is no number."},
      {"(-2) ** 0.5", FormulaKind::Float, "Formula: column 6: the result is no number."},
      {"EXP(1000) - EXP(1000)", FormulaKind::Float, "Formula: column 11: the result is no number."},
      {"1e19 & 1", FormulaKind::Float,
       "Formula: column 6: a whole number of 64 bits is needed, and the value is none."},
      {"~-1e19", FormulaKind::Float, "Formula: column 1: a whole number of 64 bits is needed, and the value is none."},
      {"1 << 1e19", FormulaKind::Float,
       "Formula: column 3: a whole number of 64 bits is needed, and the value is none."},
      {"1e19", FormulaKind::Integer, "Formula: the result is no whole number of 64 bits."},
      {"ROUND(1.5, 0 * EXP(1000))", FormulaKind::Float, "Formula: column 14: the result is no number."},
  };
  for (const Case& each : cases) {
    const FormulaOutcome outcome = RunFormula(each.text, each.kind);
    EXPECT_EQ(outcome.result.GetCode(), KrResult::Code::OutOfRange) << each.text;
    EXPECT_EQ(outcome.GetText(), each.description) << each.text;
  }
}

TEST(Formula, FaultInsideAnExpression_NamesNoColumnOfAnotherText) {
  const FormulaText expressions[] = {{"X", "1 / 0"}};

  EXPECT_EQ(RunFormula("1 + X", FormulaKind::Float, {.expressions = expressions}).GetText(),
            "Formula: division by zero.");
}

TEST(Formula, VariableThatIsNoNumber_IsRefused) {
  const std::string_view variables[] = {"A"};
  const FormulaNames names{.variables = variables};
  const double none = std::numeric_limits<double>::quiet_NaN();

  EXPECT_EQ(RunFormula("A", FormulaKind::Float, names, {Number(none)}).result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_EQ(RunFormula("A + 1", FormulaKind::Float, names, {Number(none)}).result.GetCode(),
            KrResult::Code::OutOfRange);
  EXPECT_EQ(RunFormula("A", FormulaKind::Integer, names, {Number(1e30)}).result.GetCode(), KrResult::Code::OutOfRange);
}

TEST(Formula, VariableWithoutValue_GivesItsResult) {
  const std::string_view variables[] = {"A"};
  Formula formula;
  ASSERT_TRUE(Formula::Compile("1 + A", FormulaKind::Float, {.variables = variables}, formula).IsOK());
  SilentVariables silent;
  Number value(7);

  const KrResult result = formula.Evaluate(silent, value);

  EXPECT_EQ(result.GetCode(), KrResult::Code::TimeLimitExceeded);
  EXPECT_STREQ(result.GetDescription().CStr(), "No answer.");
  EXPECT_EQ(value, Number(7));
}

TEST(Formula, NeverCompiled_HasNoValue) {
  FormulaValues variables;
  Number value;

  EXPECT_EQ(Formula().Evaluate(variables, value).GetCode(), KrResult::Code::BadData);
}
