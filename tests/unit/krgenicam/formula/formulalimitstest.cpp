#include "formulasupport.h"

#include <gmock/gmock.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

using krgenicam::Formula;
using krgenicam::FormulaKind;
using krgenicam::FormulaNames;
using krgenicam::FormulaText;
using krgenicam::Number;
using testing::HasSubstr;

namespace {

std::string Repeat(std::string_view aText, std::size_t aCount) {
  std::string all;
  for (std::size_t i = 0; i < aCount; ++i)
    all += aText;
  return all;
}

// Named texts E0, E1 … of which each is made of the name of the one before.
class ManyExpressions {
public:
  ManyExpressions(std::size_t aCount, const std::string& aFirst,
                  const std::function<std::string(const std::string&)>& aMakeNext) {
    for (std::size_t i = 0; i < aCount; ++i) {
      mTexts.push_back(i == 0 ? aFirst : aMakeNext(mNames.back()));
      mNames.push_back("E" + std::to_string(i));
    }
    for (std::size_t i = 0; i < aCount; ++i)
      mExpressions.push_back({mNames[i], mTexts[i]});
  }

  std::span<const FormulaText> GetTexts() const { return mExpressions; }

private:
  std::vector<std::string> mNames;
  std::vector<std::string> mTexts;
  std::vector<FormulaText> mExpressions;
};

} // namespace

TEST(FormulaLimits, Nesting_GoesTo200Levels) {
  const FormulaOutcome allowed = RunFormula(Repeat("(", 200) + "7" + Repeat(")", 200), FormulaKind::Integer);
  const FormulaOutcome refused = RunFormula(Repeat("(", 201) + "7" + Repeat(")", 201), FormulaKind::Integer);

  EXPECT_EQ(allowed.value, Number(7));
  EXPECT_EQ(refused.result.GetCode(), KrResult::Code::BadData);
  EXPECT_THAT(refused.GetText(), HasSubstr("more than 200 levels of nesting"));
}

TEST(FormulaLimits, EveryKindOfNesting_IsRefusedWhenEndless) {
  constexpr std::size_t kMany = 20000;
  const std::string texts[] = {Repeat("(", kMany),       Repeat("-", kMany) + "1",     Repeat("~", kMany) + "1",
                               Repeat("SIN(", kMany),    Repeat("2 ** ", kMany) + "2", Repeat("1 ? ", kMany),
                               Repeat("ROUND(1,", kMany)};
  for (const std::string& text : texts) {
    const FormulaOutcome outcome = RunFormula(text, FormulaKind::Float);
    EXPECT_EQ(outcome.result.GetCode(), KrResult::Code::BadData) << text.substr(0, 20);
    EXPECT_THAT(outcome.GetText(), HasSubstr("levels of nesting")) << text.substr(0, 20);
  }
}

TEST(FormulaLimits, QuestionsInARow_AreNoNesting) {
  std::string text;
  for (int i = 0; i < 1000; ++i)
    text += "A = " + std::to_string(i) + " ? " + std::to_string(i * 3) + " : ";
  const std::string_view variables[] = {"A"};

  const FormulaOutcome outcome = RunFormula(text + "-1", FormulaKind::Integer, {.variables = variables}, {Number(999)});

  ASSERT_TRUE(outcome.result.IsOK()) << outcome.GetText();
  EXPECT_EQ(outcome.value, Number(2997));
}

TEST(FormulaLimits, Operations_AreCounted) {
  const FormulaOutcome allowed = RunFormula("1" + Repeat("+1", 4999), FormulaKind::Integer);
  const FormulaOutcome refused = RunFormula("1" + Repeat("+1", 5000), FormulaKind::Integer);

  EXPECT_EQ(allowed.value, Number(5000));
  EXPECT_THAT(refused.GetText(), HasSubstr("more than 10000 operations"));
}

TEST(FormulaLimits, ExpressionsThatDoubleEachOther_AreCompiledAndEvaluatedOnce) {
  const ManyExpressions doubling(60, "A", [](const std::string& aPrevious) { return aPrevious + "+" + aPrevious; });
  const std::string_view variables[] = {"A"};
  const FormulaNames names{.variables = variables, .expressions = doubling.GetTexts()};
  Formula formula;

  ASSERT_TRUE(Formula::Compile("E59", FormulaKind::Integer, names, formula).IsOK());
  FormulaValues values({Number(3)});
  Number value;
  const KrResult result = formula.Evaluate(values, value);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(value, Number(std::int64_t{3} << 59));
  EXPECT_LT(formula.GetOperationsCount(), 600u);
  EXPECT_LE(values.asked.size(), 4u);
}

TEST(FormulaLimits, ConstantsThatDoubleEachOther_AreCompiledOnce) {
  const ManyExpressions doubling(60, "3", [](const std::string& aPrevious) { return aPrevious + "+" + aPrevious; });
  Formula formula;

  ASSERT_TRUE(Formula::Compile("E59", FormulaKind::Integer, {.constants = doubling.GetTexts()}, formula).IsOK());
  FormulaValues values;
  Number value;
  const KrResult result = formula.Evaluate(values, value);

  EXPECT_TRUE(result.IsOK());
  EXPECT_EQ(value, Number(std::int64_t{3} << 59));
  EXPECT_LT(formula.GetOperationsCount(), 600u);
}

TEST(FormulaLimits, ConstantsAndExpressions_AreUsedUpTo256) {
  const ManyExpressions chain(260, "1", [](const std::string& aPrevious) { return "1 ? " + aPrevious + " + 1 : 0"; });
  std::string sum = "0";
  for (int i = 1; i <= 256; ++i)
    sum += " + E" + std::to_string(i);
  const FormulaNames names{.expressions = chain.GetTexts()};

  EXPECT_EQ(RunFormula(sum, FormulaKind::Integer, names).value, Number(257 * 258 / 2 - 1));
  EXPECT_THAT(RunFormula(sum + " + E257", FormulaKind::Integer, names).GetText(),
              HasSubstr("more than 256 constants and expressions"));
}

TEST(FormulaLimits, OperandsOfAnExpression_CountWhereItIsUsed) {
  const std::string part = "0|0^0&1=1<2<<1+1*(";
  const std::string text = Repeat(part, 15) + "1" + Repeat(")", 15);
  const FormulaText expressions[] = {{"X", text}};
  const FormulaNames names{.expressions = expressions};

  const FormulaOutcome allowed =
      RunFormula("X + " + Repeat(part, 16) + "X" + Repeat(")", 16), FormulaKind::Integer, names);
  const FormulaOutcome refused =
      RunFormula("X + " + Repeat(part, 17) + "X" + Repeat(")", 17), FormulaKind::Integer, names);

  EXPECT_TRUE(allowed.result.IsOK()) << allowed.GetText();
  EXPECT_THAT(refused.GetText(), HasSubstr("more than 256 operands"));
}

TEST(FormulaLimits, TextWithAllThatItUses_HasRoomUpToOneMebibyte) {
  const std::string text = std::string(500000, ' ') + "1";
  const FormulaText expressions[] = {{"X", text}, {"Y", text}, {"Z", text}};
  const FormulaNames names{.expressions = expressions};

  EXPECT_EQ(RunFormula("X + X + X + Y", FormulaKind::Integer, names).value, Number(4));
  EXPECT_THAT(RunFormula("X + Y + Z", FormulaKind::Integer, names).GetText(), HasSubstr("too long"));
}

TEST(FormulaLimits, OperandsThatWait_HaveRoomUpTo256) {
  // Each part leaves eight operands on the stack.
  const std::string part = "0|0^0&1=1<2<<1+1*(";
  const std::size_t perPart = 8;
  const FormulaOutcome allowed =
      RunFormula(Repeat(part, 250 / perPart) + "1" + Repeat(")", 250 / perPart), FormulaKind::Integer);
  const FormulaOutcome refused =
      RunFormula(Repeat(part, 264 / perPart) + "1" + Repeat(")", 264 / perPart), FormulaKind::Integer);

  EXPECT_TRUE(allowed.result.IsOK()) << allowed.GetText();
  EXPECT_THAT(refused.GetText(), HasSubstr("more than 256 operands"));
}
