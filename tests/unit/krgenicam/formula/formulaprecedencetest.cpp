#include "formulasupport.h"

#include <gmock/gmock.h>

#include <map>
#include <random>
#include <set>

using krgenicam::FormulaKind;
using krgenicam::Number;

namespace {

// All binary operators, in rows of those that bind alike.
const std::vector<std::string> kRows[] = {
    {"||"},       {"&&"},     {"|"},           {"^"},  {"&"}, {"=", "<>"}, {"<", ">", "<=", ">="},
    {"<<", ">>"}, {"+", "-"}, {"*", "/", "%"}, {"**"},
};

// How "a 1 b 2 c" is read, where 1 is of the row and 2 of the column: L for (a 1 b) 2 c, R for a 1 (b 2 c).
// Rows and columns as above, from || to **.
const char* const kReadings[] = {
    "LRRRRRRRRRR", // ||
    "LLRRRRRRRRR", // &&
    "LLLRRRRRRRR", // |
    "LLLLRRRRRRR", // ^
    "LLLLLRRRRRR", // &
    "LLLLLLRRRRR", // =
    "LLLLLLLRRRR", // <
    "LLLLLLLLRRR", // <<
    "LLLLLLLLLRR", // +
    "LLLLLLLLLLR", // *
    "LLLLLLLLLLR", // **
};

// Pairs whose readings have the same value whatever the operands are.
const std::set<std::string> kAssociative = {"||||", "&&&&", "||", "^^", "&&", "++", "+-", "**", "*<<"};

FormulaTree MakeVariable(std::size_t aIndex) {
  FormulaTree leaf;
  leaf.kind = FormulaTree::Kind::Variable;
  leaf.variable = aIndex;
  return leaf;
}

FormulaTree Join(const std::string& aSymbol, FormulaTree aLeft, FormulaTree aRight) {
  FormulaTree tree;
  tree.kind = FormulaTree::Kind::Operator;
  tree.symbol = aSymbol;
  tree.parts = {std::move(aLeft), std::move(aRight)};
  return tree;
}

struct Pair {
  std::string first;
  std::string second;
  bool isReadFromLeft;

  FormulaTree Read(bool aFromLeft) const {
    return aFromLeft ? Join(second, Join(first, MakeVariable(0), MakeVariable(1)), MakeVariable(2))
                     : Join(first, MakeVariable(0), Join(second, MakeVariable(1), MakeVariable(2)));
  }
};

std::vector<Pair> ListPairs() {
  std::vector<Pair> pairs;
  for (std::size_t row = 0; row < std::size(kRows); ++row) {
    for (std::size_t column = 0; column < std::size(kRows); ++column) {
      for (const std::string& first : kRows[row]) {
        for (const std::string& second : kRows[column])
          pairs.push_back({first, second, kReadings[row][column] == 'L'});
      }
    }
  }
  return pairs;
}

// Compares a pair's value with that of its reading; true when the other reading's value was another one.
bool ComparePair(const Pair& aPair, const std::vector<Number>& aValues) {
  const std::string_view variables[] = {"A", "B", "C"};
  const std::string text = "A " + aPair.first + " B " + aPair.second + " C";
  const auto expected = EvaluateTree(aPair.Read(aPair.isReadFromLeft), FormulaKind::Integer, aValues);

  const FormulaOutcome outcome = RunFormula(text, FormulaKind::Integer, {.variables = variables}, aValues);

  EXPECT_EQ(outcome.result.IsOK(), expected.has_value()) << text;
  if (expected && outcome.result.IsOK()) {
    EXPECT_EQ(outcome.value, *expected) << text;
  }
  return EvaluateTree(aPair.Read(!aPair.isReadFromLeft), FormulaKind::Integer, aValues) != expected;
}

} // namespace

TEST(FormulaPrecedence, EachPairOfOperators_IsReadAsTheTableSays) {
  const std::vector<std::vector<Number>> operands = {
      {7, 2, 3}, {1, 0, 0}, {0, 0, 1},   {2, 3, 2}, {5, -3, 2}, {12, 10, 6}, {0, 3, 1},  {-1, 4, 2}, {1, 1, 2},
      {3, 0, 5}, {2, 2, 0}, {100, 7, 4}, {1, 2, 4}, {2, 1, 0},  {4, 4, 4},   {0, 2, 64}, {1, 2, 64}, {2, 4, 2}};
  for (const Pair& pair : ListPairs()) {
    bool tellsReadingsApart = false;
    for (const std::vector<Number>& values : operands)
      tellsReadingsApart = ComparePair(pair, values) || tellsReadingsApart;
    EXPECT_TRUE(tellsReadingsApart || kAssociative.contains(pair.first + pair.second))
        << pair.first << " " << pair.second;
  }
}

TEST(FormulaPrecedence, Choice_BindsLeastAndGoesFromRightToLeft) {
  EXPECT_EQ(EvaluateInteger("0 || 1 ? 2 : 3"), Number(2));
  EXPECT_EQ(EvaluateInteger("1 ? 2 : 3 + 10"), Number(2));
  EXPECT_EQ(EvaluateInteger("1 ? 2 : 0 ? 3 : 4"), Number(2));
  EXPECT_EQ(EvaluateInteger("1 ? 0 ? 3 : 4 : 5"), Number(4));
  EXPECT_EQ(EvaluateInteger("(1 ? 0 : 1) ? 5 : 6"), Number(6));
}

TEST(FormulaPrecedence, Signs_BindMoreThanAllButPowers) {
  EXPECT_EQ(EvaluateInteger("-7 + 2"), Number(-5));
  EXPECT_EQ(EvaluateInteger("-7 % 4"), Number(-3));
  EXPECT_EQ(EvaluateInteger("~1 << 2"), Number(-8));
  EXPECT_EQ(EvaluateInteger("~0 & 6"), Number(6));
  EXPECT_EQ(EvaluateInteger("5 - -3"), Number(8));
  EXPECT_EQ(EvaluateInteger("- ~ - 3"), Number(-2));
}

namespace {

void CompareRandomFormulas(FormulaKind aKind, const FormulaMix& aMix,
                           const std::vector<std::vector<Number>>& aOperands) {
  constexpr int kFormulas = 4000;
  constexpr std::size_t kLargest = 60;
  std::mt19937_64 random(20240607);
  const std::vector<std::string_view> variables(aMix.variables.begin(), aMix.variables.end());
  int withValue = 0;
  for (int i = 0; i < kFormulas; ++i) {
    const FormulaTree tree = MakeRandomTree(random, aMix, 2 + random() % kLargest);
    const std::string text = PrintTree(tree);
    krgenicam::Formula formula;
    const KrResult compiled = krgenicam::Formula::Compile(text, aKind, {.variables = variables}, formula);
    ASSERT_TRUE(compiled.IsOK()) << text << ": " << compiled.GetDescription().CStr();
    for (const std::vector<Number>& values : aOperands) {
      FormulaValues given(values);
      Number value;
      const KrResult result = formula.Evaluate(given, value);
      const auto expected = EvaluateTree(tree, aKind, values);
      ASSERT_EQ(result.IsOK(), expected.has_value()) << text << ": " << result.GetDescription().CStr();
      if (!expected)
        continue;
      ++withValue;
      ASSERT_EQ(value, *expected) << text;
    }
  }
  EXPECT_GT(withValue, kFormulas / 2) << "Too many of the formulas have no value for the test to say much.";
}

const std::vector<std::string> kAllOperators = {
    "||", "&&", "|", "^", "&", "=", "<>", "<", ">", "<=", ">=", "<<", ">>", "+", "-", "*", "/", "%", "**"};

} // namespace

TEST(FormulaPrecedence, RandomIntegerFormulas_AgreeWithAWalkThroughTheirTrees) {
  const FormulaMix mix{.operators = kAllOperators,
                       .signs = {"-", "~", "+"},
                       .functions = {"SGN", "NEG", "ABS"},
                       .variables = {"A", "B.Max", "C_1"}};

  CompareRandomFormulas(
      FormulaKind::Integer, mix,
      {{Number(3), Number(-7), Number(0)},
       {Number(std::int64_t(1) << 62), Number(std::numeric_limits<std::int64_t>::min()), Number(-1)}});
}

TEST(FormulaPrecedence, RandomFloatFormulas_AgreeWithAWalkThroughTheirTrees) {
  const FormulaMix mix{.operators = kAllOperators,
                       .signs = {"-", "~", "+"},
                       .functions = {"SGN", "NEG", "ABS", "SQRT", "EXP", "LN", "LG", "SIN", "COS", "TAN", "ASIN",
                                     "ACOS", "ATAN", "TRUNC", "FLOOR", "CEIL", "ROUND"},
                       .variables = {"A", "B", "C"},
                       .hasFractions = true};

  CompareRandomFormulas(FormulaKind::Float, mix,
                        {{Number(3), Number(-7.25), Number(0.5)}, {Number(0), Number(1e18), Number(-3)}});
}

TEST(FormulaPrecedence, RandomIntegerFormulasWithFractions_AgreeWithAWalkThroughTheirTrees) {
  const FormulaMix mix{.operators = kAllOperators,
                       .signs = {"-", "~"},
                       .functions = {"SQRT", "FLOOR", "SGN"},
                       .variables = {"A", "B"},
                       .hasFractions = true};

  CompareRandomFormulas(FormulaKind::Integer, mix, {{Number(3), Number(-7)}});
}
