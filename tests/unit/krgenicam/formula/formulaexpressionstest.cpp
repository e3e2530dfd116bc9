// Expressions are compiled once and evaluated at most once: what comes of it must be what comes of writing them out.

#include "formulasupport.h"

#include <random>
#include <string>

using krgenicam::FormulaKind;
using krgenicam::FormulaNames;
using krgenicam::FormulaText;
using krgenicam::Number;

namespace {

constexpr std::string_view kVariables[] = {"A", "B", "C"};

// A formula of named texts, and the same with all of them written out.
struct TwoTexts {
  std::string named;
  std::string writtenOut;
};

class RandomExpressions {
public:
  explicit RandomExpressions(unsigned aSeed) : mRandom(aSeed) {}

  // Uses any of the texts that are there already.
  TwoTexts Make(const std::vector<TwoTexts>& aExpressions, int aDepth) {
    if (aDepth == 0)
      return MakeOperand(aExpressions);
    const TwoTexts left = Make(aExpressions, Pick(aDepth));
    const TwoTexts right = Make(aExpressions, Pick(aDepth));
    if (Pick(4) == 0) {
      const TwoTexts last = Make(aExpressions, Pick(aDepth));
      return {"(" + left.named + " ? " + right.named + " : " + last.named + ")",
              "(" + left.writtenOut + " ? " + right.writtenOut + " : " + last.writtenOut + ")"};
    }
    constexpr const char* kOperators[] = {" + ", " - ", " * ", " / ", " && ", " || ", " < ", " & "};
    const char* const symbol = kOperators[Pick(static_cast<int>(std::size(kOperators)))];
    return {"(" + left.named + symbol + right.named + ")", "(" + left.writtenOut + symbol + right.writtenOut + ")"};
  }

  int Pick(int aCount) { return std::uniform_int_distribution<int>(0, aCount - 1)(mRandom); }

private:
  TwoTexts MakeOperand(const std::vector<TwoTexts>& aExpressions) {
    const std::size_t choice = static_cast<std::size_t>(Pick(static_cast<int>(aExpressions.size()) + 4));
    if (choice < aExpressions.size())
      return {"E" + std::to_string(choice), aExpressions[choice].writtenOut};
    const std::string text = choice == aExpressions.size() ? std::to_string(Pick(4))
                                                           : std::string(kVariables[choice - aExpressions.size() - 1]);
    return {text, text};
  }

  std::mt19937 mRandom;
};

} // namespace

TEST(FormulaExpressions, RandomOnes_HaveTheValueOfTheTextWrittenOut) {
  std::size_t withoutValue = 0;
  std::size_t compared = 0;
  for (unsigned seed = 0; seed < 3000; ++seed) {
    RandomExpressions random(seed);
    std::vector<TwoTexts> all;
    while (all.size() < 6 && (all.empty() || all.back().writtenOut.size() < 2000))
      all.push_back(random.Make(all, 3));
    const TwoTexts formula = random.Make(all, 4);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < all.size(); ++i)
      names.push_back("E" + std::to_string(i));
    std::vector<FormulaText> expressions;
    for (std::size_t i = 0; i < all.size(); ++i)
      expressions.push_back({names[i], all[i].named});
    const std::vector<Number> values = {Number(random.Pick(3)), Number(random.Pick(7) - 3), Number(random.Pick(100))};
    const FormulaKind kind = random.Pick(2) == 0 ? FormulaKind::Integer : FormulaKind::Float;

    const FormulaOutcome writtenOut = RunFormula(formula.writtenOut, kind, {.variables = kVariables}, values);
    if (writtenOut.result.GetCode() == KrResult::Code::BadData)
      continue; // Too long when written out.
    const FormulaOutcome named =
        RunFormula(formula.named, kind, {.variables = kVariables, .expressions = expressions}, values);

    ++compared;
    withoutValue += writtenOut.result.IsOK() ? 0 : 1;
    ASSERT_EQ(named.result.GetCode(), writtenOut.result.GetCode()) << "seed " << seed << ": " << formula.writtenOut;
    EXPECT_EQ(named.value, writtenOut.value) << "seed " << seed << ": " << formula.writtenOut;
    EXPECT_LE(named.asked.size(), writtenOut.asked.size());
  }
  EXPECT_GT(compared, 2000u);
  EXPECT_GT(withoutValue, 100u);
}

TEST(FormulaExpressions, ExpressionThatIsSkippedAtItsFirstUse_IsEvaluatedAtTheNext) {
  const FormulaText expressions[] = {{"X", "A + A * A - 1 + B"}, {"Y", "X * X + X / 1 - 1"}};
  const FormulaNames names{.variables = kVariables, .expressions = expressions};
  const std::vector<Number> values = {Number(2), Number(0), Number(0)};

  // Y stands first in what is skipped, and X in it.
  EXPECT_EQ(RunFormula("(B ? Y : 1) + X + Y + X", FormulaKind::Integer, names, values).value, Number(40));
}

TEST(FormulaExpressions, VariablesOfAnExpressionUsedTwice_AreAskedForOnce) {
  const FormulaText expressions[] = {{"X", "A + B + C + 1"}};
  const FormulaNames names{.variables = kVariables, .expressions = expressions};

  const FormulaOutcome outcome =
      RunFormula("X * X + X", FormulaKind::Integer, names, {Number(1), Number(2), Number(3)});

  EXPECT_EQ(outcome.value, Number(56));
  EXPECT_EQ(outcome.asked, (std::vector<std::size_t>{0, 1, 2}));
}

TEST(FormulaExpressions, FaultOfAnExpressionThatIsNotNeeded_DoesNoHarm) {
  const FormulaText expressions[] = {{"X", "1 + 2 + 3 + 4 / B"}};
  const FormulaNames names{.variables = kVariables, .expressions = expressions};
  const std::vector<Number> values = {Number(2), Number(0), Number(0)};

  EXPECT_EQ(RunFormula("B && X ? X : A", FormulaKind::Integer, names, values).value, Number(2));
  EXPECT_EQ(RunFormula("A ? X : X", FormulaKind::Integer, names, values).GetText(), "Formula: division by zero.");
}
