#pragma once
// Formulas as trees, evaluated by walking them and printed with as few parentheses as can be: what the engine's
// formulas are compared with. Knows nothing of how those are read.

#include "formula/formula.h"

#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <vector>

struct FormulaTree {
  enum class Kind { Literal, Variable, Sign, Call, Operator, Choice };

  Kind kind = Kind::Literal;
  std::string symbol = {};      ///< Of a sign or operator, the name of a function or variable, a literal's text.
  krgenicam::Number value = {}; ///< A literal's.
  std::size_t variable = 0;     ///< A variable's index.
  std::vector<FormulaTree> parts = {};
};

/// Values of variables by index; remembers which ones were asked for.
class FormulaValues final : public krgenicam::IFormulaVariables {
public:
  explicit FormulaValues(std::vector<krgenicam::Number> aValues = {}) : values(std::move(aValues)) {}
  KrResult GetVariable(std::size_t aIndex, krgenicam::Number& aValue) override {
    asked.push_back(aIndex);
    aValue = values.at(aIndex);
    return {};
  }

  std::vector<krgenicam::Number> values;
  std::vector<std::size_t> asked;
};

/// Nothing where the formula has no value.
std::optional<krgenicam::Number> EvaluateTree(const FormulaTree& aTree, krgenicam::FormulaKind aKind,
                                              std::span<const krgenicam::Number> aVariables);

/// How many parentheses a text gets.
enum class FormulaStyle {
  Short,   ///< As few as can be.
  Careful, ///< Also where readers differ: around powers that have a sign, and choices within choices.
};

std::string PrintTree(const FormulaTree& aTree, FormulaStyle aStyle = FormulaStyle::Short);

/// What a random formula is made of.
struct FormulaMix {
  std::vector<std::string> operators = {};
  std::vector<std::string> signs = {};
  std::vector<std::string> functions = {};
  std::vector<std::string> variables = {};
  std::int64_t largestLiteral = 100;
  bool hasChoices = true;
  bool hasFractions = false; ///< Multiples of an eighth, which every reader of numbers can read exactly.
};

/// A formula of up to aSize operators and operands.
FormulaTree MakeRandomTree(std::mt19937_64& aRandom, const FormulaMix& aMix, std::size_t aSize);
