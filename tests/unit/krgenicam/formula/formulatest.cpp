#include "formulasupport.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

using krgenicam::Formula;
using krgenicam::FormulaKind;
using krgenicam::FormulaNames;
using krgenicam::FormulaText;
using krgenicam::Number;

namespace {

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

struct Row {
  const char* text;
  Number expected;
};

} // namespace

TEST(Formula_Integer, EachOperator_GivesWhatWasWorkedOutByHand) {
  const Row rows[] = {
      {"17 + 5", 22},       {"17 - 25", -8}, {"17 * -5", -85}, {"17 / 5", 3},  {"-17 / 5", -3},     {"17 / -5", -3},
      {"17 % 5", 2},        {"-17 % 5", -2}, {"17 % -5", 2},   {"3 ** 4", 81}, {"(-2) ** 3", -8},   {"7 ** 0", 1},
      {"0 ** 0", 1},        {"12 & 10", 8},  {"12 | 10", 14},  {"12 ^ 10", 6}, {"~12", -13},        {"-12", -12},
      {"+12", 12},          {"3 = 3", 1},    {"3 = 4", 0},     {"3 == 3", 1},  {"3 <> 3", 0},       {"3 <> 4", 1},
      {"3 != 4", 1},        {"3 < 4", 1},    {"4 < 4", 0},     {"5 > 4", 1},   {"4 > 4", 0},        {"4 <= 4", 1},
      {"5 <= 4", 0},        {"4 >= 4", 1},   {"3 >= 4", 0},    {"2 && 4", 1},  {"2 && 0", 0},       {"0 || 4", 1},
      {"0 || 0", 0},        {"3 << 4", 48},  {"-48 >> 4", -3}, {"48 >> 4", 3}, {"1 ? 10 : 20", 10}, {"0 ? 10 : 20", 20},
      {"-5 ? 10 : 20", 10},
  };
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateInteger(row.text), row.expected) << row.text;
}

TEST(Formula_Integer, Limits_WrapWithoutTrapping) {
  const Row rows[] = {
      {"9223372036854775807 + 1", kSmallest},
      {"-9223372036854775808 - 1", kLargest},
      {"9223372036854775807 * 2", -2},
      {"-(-9223372036854775808)", kSmallest},
      {"-9223372036854775808 / -1", kSmallest},
      {"-9223372036854775808 % -1", 0},
      {"ABS(-9223372036854775808)", kSmallest},
      {"NEG(-9223372036854775808)", kSmallest},
      {"3 ** 41", std::int64_t(-420491770248316829)},
      {"2 ** 63", kSmallest},
      {"2 ** 64", 0},
      {"3 ** 9223372036854775807", std::int64_t(-6148914691236517205)},
      {"9007199254740993 + 0", std::int64_t(9007199254740993)},
      {"9223372036854775807 = 9223372036854775806", 0},
  };
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateInteger(row.text), row.expected) << row.text;
}

TEST(Formula_Integer, NegativeExponent_GivesWhatIsLeftOfAFraction) {
  const Row rows[] = {{"2 ** -1", 0},     {"(-7) ** -3", 0}, {"1 ** -5", 1},
                      {"(-1) ** -5", -1}, {"(-1) ** -4", 1}, {"1 ** -9223372036854775808", 1}};
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateInteger(row.text), row.expected) << row.text;
}

TEST(Formula_Integer, FractionsAndTheirFunctions_AreComputedInFloatingPointAndRounded) {
  const Row rows[] = {{"2.5", 3},         {"-2.5", -3},    {"7 / 2.0", 4},
                      {"7.0 / 2 * 2", 7}, {"SQRT(16)", 4}, {"ROUND(SQRT(2)*100)", 141},
                      {"PI * 100", 314},  {"5.9 % 3", 2},  {"7.9 & 0xFF", 7},
                      {"~-0.5", -1},      {"2 ** 0.5", 1}};
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateInteger(row.text), row.expected) << row.text;
}

TEST(Formula_Integer, FloatingPointVariable_IsRounded) {
  const std::string_view variables[] = {"A"};

  const FormulaOutcome outcome = RunFormula("A / 2", FormulaKind::Integer, {.variables = variables}, {Number(4.6)});

  EXPECT_EQ(outcome.value, Number(2));
}

TEST(Formula_Float, EachOperator_GivesWhatWasWorkedOutByHand) {
  const Row rows[] = {
      {"17 + 5", 22},        {"17.5 + 5", 22.5},
      {"17 - 25", -8},       {"17 - 0.5", 16.5},
      {"17 * -5", -85},      {"1.5 * 2", 3.0},
      {"17 / 5", 3.4},       {"10 / 5", 2.0},
      {"17 % 5", 2},         {"-17 % 5", -2},
      {"17.9 % 5.9", 2},     {"3 ** 4", 81.0},
      {"2 ** -1", 0.5},      {"2 ** 0.5", std::sqrt(2.0)},
      {"(-2) ** 3", -8.0},   {"12 & 10", 8},
      {"12.9 & 10.9", 8},    {"12 | 10", 14},
      {"12 ^ 10", 6},        {"~12", -13},
      {"~12.9", -13},        {"-12", -12},
      {"-0.5", -0.5},        {"3 = 3.0", 1},
      {"0.5 = 0.5", 1},      {"0.5 <> 0.25", 1},
      {"0.25 < 0.5", 1},     {"0.25 > 0.5", 0},
      {"0.5 <= 0.5", 1},     {"0.25 >= 0.5", 0},
      {"0.5 && 0.25", 1},    {"0.5 && 0.0", 0},
      {"0.0 || 0.5", 1},     {"0.0 || 0", 0},
      {"3 << 4", 48},        {"-48 >> 4", -3},
      {"0.5 ? 10 : 20", 10}, {"0.0 ? 10 : 20.5", 20.5},
  };
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateFloat(row.text), row.expected) << row.text;
}

TEST(Formula_Float, EachFunction_GivesWhatWasWorkedOutByHand) {
  const Row rows[] = {
      {"SGN(-0.5)", -1},      {"SGN(0)", 0},
      {"SGN(7)", 1},          {"NEG(0.5)", -0.5},
      {"NEG(-3)", 3},         {"ABS(-0.5)", 0.5},
      {"ABS(-3)", 3},         {"SQRT(2.25)", 1.5},
      {"EXP(0)", 1.0},        {"EXP(1)", std::numbers::e},
      {"LN(1)", 0.0},         {"LG(1000)", 3.0},
      {"SIN(0)", 0.0},        {"COS(0)", 1.0},
      {"TAN(0)", 0.0},        {"ASIN(1)", std::asin(1.0)},
      {"ACOS(1)", 0.0},       {"ATAN(1)", std::atan(1.0)},
      {"TRUNC(-2.7)", -2.0},  {"FLOOR(-2.2)", -3.0},
      {"CEIL(-2.7)", -2.0},   {"CEIL(2.2)", 3.0},
      {"ROUND(2.5)", 3.0},    {"ROUND(-2.5)", -3.0},
      {"ROUND(2.4)", 2.0},    {"FLOOR(7)", 7},
      {"ROUND(7)", 7},        {"PI", std::numbers::pi},
      {"E", std::numbers::e}, {"PI()", std::numbers::pi},
  };
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateFloat(row.text), row.expected) << row.text;
}

TEST(Formula_Float, RoundToDigits_CountsThemFromThePoint) {
  const Row rows[] = {{"ROUND(2.567, 1)", 2.6},      {"ROUND(2.567, 0)", 3.0},    {"ROUND(-2.25, 1)", -2.3},
                      {"ROUND(1250.0, -2)", 1300.0}, {"ROUND(1250, -2)", 1300.0}, {"ROUND(7, 3)", 7},
                      {"ROUND(0.1, 400)", 0.1},      {"ROUND(5.5, -400)", 0.0},   {"ROUND(1e300, 20)", 1e300}};
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateFloat(row.text), row.expected) << row.text;
}

TEST(Formula_Float, WholeNumbers_StayWholeUntilTheyHaveNo64Bits) {
  const Row rows[] = {{"9007199254740993 + 0", std::int64_t(9007199254740993)},
                      {"9223372036854775807 = 9223372036854775806", 0},
                      {"9223372036854775807 + 1", 9223372036854775808.0},
                      {"4294967296 * 4294967296", 18446744073709551616.0},
                      {"-9223372036854775807 - 2", -9223372036854775808.0}};
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateFloat(row.text), row.expected) << row.text;
}

TEST(Formula, Literals_AreTakenInAllForms) {
  const Row rows[] = {{"010", 10},
                      {"0x1F", 31},
                      {"0XfF", 255},
                      {"0xFFFFFFFFFFFFFFFF", -1},
                      {".5", 0.5},
                      {"1e-3", 0.001},
                      {"2.5E+2", 250.0},
                      {"1e3", 1000.0},
                      {"7.", 7.0},
                      {"0.1", 0.1},
                      {"00", 0},
                      {"1e-320", 1e-320},
                      {"18446744073709551616", 18446744073709551616.0}};
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateFloat(row.text), row.expected) << row.text;
}

TEST(Formula, DecimalBeyondTheLargestNumber_WrapsInIntegerFormulasAlone) {
  EXPECT_EQ(EvaluateInteger("18446744073709551615"), Number(-1));
  EXPECT_EQ(EvaluateFloat("18446744073709551615"), Number(18446744073709551615.0));
}

TEST(Formula, ShiftCounts_AreTakenModulo64) {
  const Row rows[] = {{"1 << 63", kSmallest}, {"1 << 64", 1},    {"1 << 65", 2},
                      {"1 << -1", kSmallest}, {"-1 >> 127", -1}, {"8 >> 66", 2}};
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateInteger(row.text), row.expected) << row.text;
}

TEST(Formula, SignBeforeAPower_BelongsToThePower) {
  EXPECT_EQ(EvaluateInteger("-1 ** 2"), Number(-1));
  EXPECT_EQ(EvaluateInteger("~1 ** 2"), Number(-2));
  EXPECT_EQ(EvaluateInteger("(-1) ** 2"), Number(1));
  EXPECT_EQ(EvaluateFloat("2 ** -1 ** 2"), Number(0.5));
  EXPECT_EQ(EvaluateInteger("2 * -3 ** 2"), Number(-18));
}

TEST(Formula, OperatorsEscapedOnceMore_AreTaken) {
  const Row rows[] = {
      {"3 &amp; 2", 2}, {"3 &amp;&amp; 2", 1}, {"3 &lt; 2", 0},     {"3 &gt; 2", 1},     {"3 &lt;&gt; 2", 1},
      {"3 &gt;= 2", 1}, {"3 &lt;= 2", 0},      {"1 &lt;&lt; 2", 4}, {"8 &gt;&gt; 2", 2}, {"1&lt;2&amp;&amp;3&gt;2", 1}};
  for (const Row& row : rows)
    EXPECT_EQ(EvaluateInteger(row.text), row.expected) << row.text;
}

TEST(Formula, Functions_AreKnownInAnyCase) {
  EXPECT_EQ(EvaluateFloat("sqrt(4) + Sqrt (4) + SQRT(4)"), Number(6.0));
}

TEST(Formula, VariableNamedLikeAFunctionOrConstant_IsTheVariable) {
  const std::string_view variables[] = {"SIN", "E", "PI"};

  const FormulaOutcome outcome = RunFormula("SIN(0) + SIN + E * PI", FormulaKind::Float, {.variables = variables},
                                            {Number(5), Number(7), Number(11)});

  EXPECT_EQ(outcome.value, Number(82.0));
}

TEST(Formula, NamesWithDotsColonsAndUnderscores_AreOneName) {
  const std::string_view variables[] = {"G.Max", "X.Entry.Foo", "Std::Gain", "_A_1"};

  const FormulaOutcome outcome = RunFormula("G.Max+X.Entry.Foo*(1?Std::Gain:_A_1)", FormulaKind::Integer,
                                            {.variables = variables}, {Number(1), Number(2), Number(3), Number(4)});

  ASSERT_TRUE(outcome.result.IsOK()) << outcome.GetText();
  EXPECT_EQ(outcome.value, Number(7));
}

TEST(Formula, VariablesThatDifferInCase_AreDifferent) {
  const std::string_view variables[] = {"a", "A"};

  const FormulaOutcome outcome =
      RunFormula("a - A", FormulaKind::Integer, {.variables = variables}, {Number(10), Number(3)});

  EXPECT_EQ(outcome.value, Number(7));
}

TEST(Formula, ConstantsAndExpressions_StandForTheirTexts) {
  const std::string_view variables[] = {"A"};
  const FormulaText constants[] = {{"N", " -3 "}, {"H", "0x10"}, {"F", "1e-3"}, {"M", "N * 2"}};
  const FormulaText expressions[] = {{"SUM", "A + N"}, {"TWICE", "SUM * 2"}};
  const FormulaNames names{.variables = variables, .constants = constants, .expressions = expressions};

  EXPECT_EQ(RunFormula("TWICE * 10", FormulaKind::Integer, names, {Number(5)}).value, Number(40));
  EXPECT_EQ(RunFormula("H + M", FormulaKind::Integer, names, {Number(5)}).value, Number(10));
  EXPECT_EQ(RunFormula("F * 1000", FormulaKind::Float, names, {Number(5)}).value, Number(1.0));
}

TEST(Formula, NameUsedTwice_IsTheVariableThenTheConstantThenTheExpression) {
  const std::string_view variables[] = {"A"};
  const FormulaText constants[] = {{"A", "2"}, {"B", "3"}};
  const FormulaText expressions[] = {{"A", "4"}, {"B", "5"}, {"C", "6"}};
  const FormulaNames names{.variables = variables, .constants = constants, .expressions = expressions};

  const FormulaOutcome outcome = RunFormula("A * 100 + B * 10 + C", FormulaKind::Integer, names, {Number(1)});

  EXPECT_EQ(outcome.value, Number(136));
}

TEST(Formula, UnusedConstantWithAFault_DoesNoHarm) {
  const FormulaText constants[] = {{"N", "§"}};

  EXPECT_TRUE(RunFormula("1", FormulaKind::Integer, {.constants = constants}).result.IsOK());
}

TEST(Formula, Variables_AreAskedForOnlyWhereTheyAreNeeded) {
  const std::string_view variables[] = {"A", "B", "C"};
  struct Case {
    const char* text;
    std::vector<std::size_t> asked;
  };
  const Case cases[] = {{"A ? B : C", {0, 2}},
                        {"A && B", {0}},
                        {"B || A", {1}},
                        {"B && A", {1, 0}},
                        {"A || B", {0, 1}},
                        {"A && B || C", {0, 2}},
                        {"B || A && C", {1}},
                        {"A ? B : A ? B : C", {0, 0, 2}},
                        {"C ? B : A", {2, 1}},
                        {"1 ? A : B / 0", {0}},
                        {"(A && B) + (B || C)", {0, 1}}};

  for (const Case& each : cases) {
    const FormulaOutcome outcome =
        RunFormula(each.text, FormulaKind::Integer, {.variables = variables}, {Number(0), Number(1), Number(2)});
    EXPECT_EQ(outcome.asked, each.asked) << each.text;
  }
}

TEST(Formula, DivisionByZeroBehindWhatIsNotNeeded_DoesNoHarm) {
  EXPECT_EQ(EvaluateInteger("0 && 1 / 0"), Number(0));
  EXPECT_EQ(EvaluateInteger("1 || 1 / 0"), Number(1));
  EXPECT_EQ(EvaluateInteger("1 ? 5 : 1 / 0"), Number(5));
}

TEST(Formula, UsedVariables_AreThoseThatOccur) {
  const std::string_view variables[] = {"A", "B", "C", "D"};
  const FormulaText expressions[] = {{"X", "D + B"}, {"Y", "C"}};
  Formula formula;

  const KrResult result = Formula::Compile("B + (0 ? X : 1) + B", FormulaKind::Float,
                                           {.variables = variables, .expressions = expressions}, formula);

  ASSERT_TRUE(result.IsOK());
  EXPECT_THAT(formula.GetUsedVariables(), testing::ElementsAre(1, 3));
}
