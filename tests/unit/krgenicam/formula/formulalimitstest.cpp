#include "formulasupport.h"

#include <gmock/gmock.h>

#include <string>

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

TEST(FormulaLimits, ExpressionsThatDoubleEachOther_AreRefusedSoon) {
  std::vector<std::string> names;
  std::vector<std::string> texts;
  for (int i = 0; i < 100; ++i)
    names.push_back("E" + std::to_string(i));
  for (int i = 0; i < 100; ++i)
    texts.push_back(i == 0 ? "1" : names[i - 1] + "+" + names[i - 1]);
  std::vector<FormulaText> expressions;
  for (std::size_t i = 0; i < names.size(); ++i)
    expressions.push_back({names[i], texts[i]});

  const FormulaOutcome outcome = RunFormula("E99", FormulaKind::Float, {.expressions = expressions});

  EXPECT_THAT(outcome.GetText(), HasSubstr("more than 10000 operations"));
  EXPECT_EQ(RunFormula("E10", FormulaKind::Integer, {.expressions = expressions}).value, Number(1024));
}

TEST(FormulaLimits, LongTextUsedOftenEnough_IsRefused) {
  const std::string text = std::string(500000, ' ') + "1";
  const FormulaText expressions[] = {{"X", text}};
  const FormulaNames names{.expressions = expressions};

  EXPECT_EQ(RunFormula("X + X", FormulaKind::Integer, names).value, Number(2));
  EXPECT_THAT(RunFormula("X + X + X", FormulaKind::Integer, names).GetText(), HasSubstr("too long"));
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
