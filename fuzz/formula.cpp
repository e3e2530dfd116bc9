// Whatever a description may give as a formula, with its constants and expressions: it is compiled and computed, or
// refused with a reason, within the limits. Parentheses around the whole change nothing.
//
// The first line says by its first character of which kind the formula is (I for an integer one), and is the formula
// behind it. Each further line is a constant (C) or an expression (E): a name, a blank and its text.

#include "formula/formula.h"
#include "require.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace {

using krgenicam::Formula;
using krgenicam::FormulaKind;
using krgenicam::FormulaNames;
using krgenicam::FormulaText;
using krgenicam::Number;

constexpr std::array<std::string_view, 3> kVariables = {"A", "B", "TO"};

class Variables final : public krgenicam::IFormulaVariables {
public:
  explicit Variables(std::size_t aRound) : mRound(aRound) {}

  KrResult GetVariable(std::size_t aIndex, Number& aValue) override {
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    const std::array<Number, 7> values = {
        Number(std::int64_t{0}), Number(std::int64_t{-1}), Number(kLowest), Number(0.5), Number(1e300), Number(-0.0),
        Number(std::int64_t{7})};
    Require(aIndex < kVariables.size());
    if (mRound == values.size())
      return {KrResult::Code::ConnectionLost, "The device is gone."};
    aValue = values[(mRound + aIndex) % values.size()];
    return {};
  }

  static constexpr std::size_t kRounds = 8;

private:
  std::size_t mRound;
};

std::string_view TakeLine(std::string_view& aText) {
  const std::size_t end = std::min(aText.find('\n'), aText.size());
  const std::string_view line = aText.substr(0, end);
  aText.remove_prefix(std::min(end + 1, aText.size()));
  return line;
}

// The texts of one kind, each under its name.
std::vector<FormulaText> ListTexts(std::string_view aLines, char aKind) {
  std::vector<FormulaText> texts;
  while (!aLines.empty()) {
    const std::string_view line = TakeLine(aLines);
    const std::size_t blank = line.find(' ');
    if (line.starts_with(aKind) && blank != std::string_view::npos)
      texts.push_back({line.substr(1, blank - 1), line.substr(blank + 1)});
  }
  return texts;
}

bool Compile(std::string_view aText, FormulaKind aKind, const FormulaNames& aNames, Formula& aFormula) {
  const KrResult compiled = Formula::Compile(aText, aKind, aNames, aFormula);
  Require(compiled.IsOK() || compiled == KrResult::Code::BadData);
  if (!RequireReason(compiled))
    return false;
  Require(aFormula.GetOperationsCount() <= Formula::kMaxOperations);
  for (const std::size_t variable : aFormula.GetUsedVariables())
    Require(variable < kVariables.size());
  return true;
}

KrResult Evaluate(const Formula& aFormula, FormulaKind aKind, std::size_t aRound, Number& aValue) {
  Variables variables(aRound);
  const KrResult evaluated = aFormula.Evaluate(variables, aValue);
  if (RequireReason(evaluated))
    Require(aKind == FormulaKind::Integer ? !aValue.IsFloat() : !std::isnan(aValue.ToFloat()));
  return evaluated;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  std::string_view input(reinterpret_cast<const char*>(aData), aSize);
  const std::string_view first = TakeLine(input);
  if (first.empty())
    return 0;
  const FormulaKind kind = first.front() == 'I' ? FormulaKind::Integer : FormulaKind::Float;
  const std::string text(first.substr(1));
  const std::vector<FormulaText> constants = ListTexts(input, 'C');
  const std::vector<FormulaText> expressions = ListTexts(input, 'E');
  const FormulaNames names = {.variables = kVariables, .constants = constants, .expressions = expressions};

  Formula formula;
  Formula enclosed;
  const bool isFormula = Compile(text, kind, names, formula);
  // Only the limits of length and depth may tell them apart.
  if (!isFormula || !Compile("(" + text + ")", kind, names, enclosed))
    return 0;
  for (std::size_t round = 0; round < Variables::kRounds; ++round) {
    Number value;
    Number same;
    const KrResult evaluated = Evaluate(formula, kind, round, value);
    Require(Evaluate(enclosed, kind, round, same) == evaluated.GetCode());
    Require(!evaluated.IsOK() || value == same);
  }
  return 0;
}
