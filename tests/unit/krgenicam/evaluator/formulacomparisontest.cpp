#include "aravisformula.h"
#include "formulasupport.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <random>

using krgenicam::Formula;
using krgenicam::FormulaKind;
using krgenicam::Number;

namespace {

struct Comparison {
  const char* name;
  FormulaKind kind;
  FormulaMix mix;
  std::size_t largest; ///< Operators and operands of the largest formulas.
  std::vector<Number> values = {};
};

void PrintTo(const Comparison& aComparison, std::ostream* aStream) {
  *aStream << aComparison.name;
}

const std::vector<std::string> kFloatFunctions = {"SGN", "NEG", "ABS",  "SQRT", "EXP",  "LN",    "LG",    "SIN",
                                                  "COS", "TAN", "ASIN", "ACOS", "ATAN", "TRUNC", "FLOOR", "CEIL"};

// Each mix leaves out what Aravis is known to do otherwise: see the differences below.
const Comparison kComparisons[] = {
    {"LogicAndBitsOfLargeIntegers",
     FormulaKind::Integer,
     {.operators = {"+", "-", "*", "<<", ">>", "&", "|", "^", "=", "<>", "<", ">", "<=", ">=", "&&", "||"},
      .signs = {"-", "~"},
      .functions = {"SGN", "NEG"},
      .variables = {"A", "B", "C"},
      .largestLiteral = 100000},
     80,
     {Number(0), Number(-123456789012345678), Number(std::int64_t(1) << 60)}},
    {"DivisionOfIntegers",
     FormulaKind::Integer,
     {.operators = {"+", "-", "*", "/", "%"}, .signs = {"-"}, .variables = {"A", "B"}, .hasChoices = false},
     12,
     {Number(-7), Number(3)}},
    {"PowersOfIntegers",
     FormulaKind::Integer,
     {.operators = {"+", "-", "**"}, .signs = {"-"}, .variables = {"A"}, .largestLiteral = 3, .hasChoices = false},
     3,
     {Number(-2)}},
    {"ArithmeticOfFractions",
     FormulaKind::Float,
     {.operators = {"+", "-", "*", "/", "**", "<", ">", "<=", ">="},
      .signs = {"-"},
      .functions = kFloatFunctions,
      .variables = {"A", "B"},
      .hasChoices = false,
      .hasFractions = true},
     30,
     {Number(-2.25), Number(0.001)}},
    {"LogicOfWholeFloats",
     FormulaKind::Float,
     {.operators = {"+", "-", "*", "=", "<>", "<", ">", "<=", ">=", "&&", "||", "&", "|", "^"},
      .signs = {"-", "~"},
      .variables = {"A", "B"}},
     12,
     {Number(17), Number(-5)}},
    {"BitsOfFloats",
     FormulaKind::Float,
     {.operators = {"%", "&", "|", "^", "<<", ">>", "=", "<>"},
      .signs = {"~"},
      .variables = {"A", "B"},
      .hasChoices = false,
      .hasFractions = true},
     20,
     {Number(1000), Number(-3.75)}},
};

constexpr int kFormulasOfEach = 2000;

class FormulaComparison : public testing::TestWithParam<Comparison> {};

// Where functions of the library meet different roundings, the last digits may differ.
void ExpectSame(double aOurs, double aTheirs, const std::string& aText) {
  if (std::isinf(aOurs) || std::isinf(aTheirs)) {
    ASSERT_EQ(aOurs, aTheirs) << aText;
    return;
  }
  ASSERT_NEAR(aOurs, aTheirs, 1e-12 * std::max(1.0, std::fabs(aOurs))) << aText;
}

} // namespace

TEST_P(FormulaComparison, RandomFormulasWithAValue_HaveTheValueThatAravisGives) {
  const Comparison& comparison = GetParam();
  const std::vector<std::string>& names = comparison.mix.variables;
  const std::vector<std::string_view> variables(names.begin(), names.end());
  std::mt19937_64 random(20240607);
  int compared = 0;
  for (int i = 0; i < kFormulasOfEach; ++i) {
    const FormulaTree tree = MakeRandomTree(random, comparison.mix, 2 + random() % comparison.largest);
    const std::string text = PrintTree(tree, FormulaStyle::Careful);
    const FormulaOutcome ours = RunFormula(text, comparison.kind, {.variables = variables}, comparison.values);
    if (!ours.result.IsOK()) {
      ASSERT_EQ(ours.result.GetCode(), KrResult::Code::OutOfRange) << text << ": " << ours.GetText();
      continue;
    }
    AravisFormula theirs(text);
    for (std::size_t j = 0; j < names.size(); ++j)
      theirs.SetVariable(names[j], comparison.values[j]);
    ++compared;
    if (comparison.kind == FormulaKind::Integer)
      ASSERT_EQ(ours.value.ToInteger(), theirs.EvaluateInteger()) << text;
    else
      ASSERT_NO_FATAL_FAILURE(ExpectSame(ours.value.ToFloat(), theirs.EvaluateFloat(), text));
    ASSERT_FALSE(theirs.HasFailed()) << text;
  }
  EXPECT_GT(compared, kFormulasOfEach / 3) << "Too few of the formulas have a value.";
}

INSTANTIATE_TEST_SUITE_P(Mixes, FormulaComparison, testing::ValuesIn(kComparisons),
                         [](const auto& aInfo) { return aInfo.param.name; });

namespace {

struct Difference {
  const char* name;
  const char* text;
  FormulaKind kind;
  std::optional<Number> ours;   ///< Nothing where the formula has no value.
  std::optional<Number> theirs; ///< Nothing where Aravis reports an error.
};

void PrintTo(const Difference& aDifference, std::ostream* aStream) {
  *aStream << aDifference.text;
}

const Difference kDifferences[] = {
    {"SignBeforeAPower", "-3 ** 2", FormulaKind::Integer, Number(-9), Number(9)},
    {"TwoEqualSigns", "3 == 3", FormulaKind::Integer, Number(1), std::nullopt},
    {"NotEqualAsInC", "3 != 4", FormulaKind::Integer, Number(1), std::nullopt},
    {"LeadingZero", "010", FormulaKind::Integer, Number(10), Number(8)},
    {"PointFirst", ".5 * 2", FormulaKind::Float, Number(1.0), std::nullopt},
    {"FractionAsCondition", "0.5 ? 2 : 3", FormulaKind::Float, Number(2), Number(3.0)},
    {"FractionBeforeAnd", "0.5 && 1", FormulaKind::Float, Number(1), Number(0.0)},
    {"FractionBeforeOr", "0.5 || 0", FormulaKind::Float, Number(1), Number(0.0)},
    {"FunctionInAnIntegerFormula", "SQRT(16) + 1", FormulaKind::Integer, Number(5), std::nullopt},
    {"ExponentInAnIntegerFormula", "1e-1 * 50", FormulaKind::Integer, Number(5), Number(0)},
    {"IntegerBeyond53Bits", "9007199254740993", FormulaKind::Integer, Number(std::int64_t(9007199254740993)),
     Number(std::int64_t(9007199254740992))},
    {"HexadecimalOf64Bits", "0xFFFFFFFFFFFFFFFE", FormulaKind::Integer, Number(-2),
     Number(std::numeric_limits<std::int64_t>::min())},
    {"PowerBeyond53Bits", "3 ** 39", FormulaKind::Integer, Number(std::int64_t(4052555153018976267)),
     Number(std::int64_t(4052555153018976256))},
    {"DivisionByZeroThatIsNotNeeded", "1 ? 5 : 1 / 0", FormulaKind::Integer, Number(5), std::nullopt},
    {"OverflowOfAFloatFormula", "A + 1", FormulaKind::Float, Number(9223372036854775808.0),
     Number(-9223372036854775808.0)},
    {"LogarithmOfZero", "LN(0)", FormulaKind::Float, std::nullopt, Number(-std::numeric_limits<double>::infinity())},
    {"RootOfANegativeNumber", "SQRT(-4)", FormulaKind::Float, std::nullopt,
     Number(std::numeric_limits<double>::quiet_NaN())},
    {"ArcOutsideItsDomain", "ASIN(2)", FormulaKind::Float, std::nullopt,
     Number(std::numeric_limits<double>::quiet_NaN())},
    {"ConstantInSmallLetters", "2 * pi", FormulaKind::Float, Number(2 * std::numbers::pi), std::nullopt},
    {"VariableWithTheNameOfAFunction", "SIN + 1", FormulaKind::Integer, Number(6), std::nullopt},
    {"OperatorsEscapedOnceMore", "1 &lt; 2", FormulaKind::Integer, Number(1), std::nullopt},
    {"ChoiceInsideAChoice", "0 ? 1 ? 2 : 3 : 4", FormulaKind::Integer, Number(4), Number(3)},
    {"RoundBehindParentheses", "(26) / ROUND(2.2)", FormulaKind::Float, Number(13.0), std::nullopt},
    {"DigitsOfAFraction", "18.81", FormulaKind::Float, Number(18.81), Number(18.810000000000002)},
};

class FormulaDifference : public testing::TestWithParam<Difference> {};

} // namespace

TEST_P(FormulaDifference, Ours_IsRightAndAravisDiffers) {
  const Difference& difference = GetParam();
  const std::string_view variables[] = {"A", "SIN"};
  const std::vector<Number> values = {Number(std::numeric_limits<std::int64_t>::max()), Number(5)};
  AravisFormula theirs(difference.text);
  theirs.SetVariable("A", values[0]);
  theirs.SetVariable("SIN", values[1]);

  const FormulaOutcome ours = RunFormula(difference.text, difference.kind, {.variables = variables}, values);
  const Number theirValue =
      difference.kind == FormulaKind::Integer ? Number(theirs.EvaluateInteger()) : Number(theirs.EvaluateFloat());

  EXPECT_EQ(ours.result.IsOK(), difference.ours.has_value()) << ours.GetText();
  if (difference.ours) {
    EXPECT_EQ(ours.value, *difference.ours);
  }
  EXPECT_EQ(theirs.HasFailed(), !difference.theirs.has_value());
  if (difference.theirs) {
    EXPECT_EQ(theirValue, *difference.theirs);
  }
}

INSTANTIATE_TEST_SUITE_P(Known, FormulaDifference, testing::ValuesIn(kDifferences),
                         [](const auto& aInfo) { return aInfo.param.name; });
