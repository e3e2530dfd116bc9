#include "formulatree.h"

#include <cmath>
#include <compare>
#include <cstdlib>
#include <iterator>
#include <map>
#include <utility>

using krgenicam::FormulaKind;
using krgenicam::Number;

namespace {

__extension__ using Wide = __int128;
using Value = std::optional<Number>;

// How strongly operators bind, from the weakest on.
const std::map<std::string, int> kLevels = {{"?", 0},  {"||", 1}, {"&&", 2}, {"|", 3},  {"^", 4},  {"&", 5},  {"=", 6},
                                            {"<>", 6}, {"<", 7},  {">", 7},  {"<=", 7}, {">=", 7}, {"<<", 8}, {">>", 8},
                                            {"+", 9},  {"-", 9},  {"*", 10}, {"/", 10}, {"%", 10}, {"**", 12}};
constexpr int kSignLevel = 11;
constexpr int kPowerLevel = 12;
constexpr int kPrimaryLevel = 13;

std::int64_t Wrap(Wide aValue) {
  const Wide modulus = Wide(1) << 64;
  Wide rest = aValue % modulus;
  if (rest < 0)
    rest += modulus;
  return static_cast<std::int64_t>(rest >= modulus / 2 ? rest - modulus : rest);
}

bool Fits(Wide aValue) {
  return aValue == Wrap(aValue);
}

Value FromFloat(double aValue) {
  return std::isnan(aValue) ? Value() : Value(aValue);
}

std::optional<std::int64_t> Whole(double aWhole) {
  if (!(aWhole >= -0x1p63 && aWhole < 0x1p63))
    return std::nullopt;
  return static_cast<std::int64_t>(aWhole);
}

std::optional<std::int64_t> Truncated(const Number& aValue) {
  return aValue.IsFloat() ? Whole(std::trunc(aValue.ToFloat())) : std::optional(aValue.ToInteger());
}

Value CombineBits(const std::string& aSymbol, std::int64_t aLeft, std::int64_t aRight) {
  if (aSymbol == "%")
    return aRight == 0 ? Value() : Value(static_cast<std::int64_t>(Wide(aLeft) % aRight));
  if (aSymbol == "&")
    return Number(aLeft & aRight);
  if (aSymbol == "|")
    return Number(aLeft | aRight);
  if (aSymbol == "^")
    return Number(aLeft ^ aRight);
  const Wide factor = Wide(1) << (static_cast<std::uint64_t>(aRight) % 64);
  if (aSymbol == "<<")
    return Number(Wrap(Wide(aLeft) * factor));
  // Division that rounds down.
  return Number(static_cast<std::int64_t>((Wide(aLeft) - (aLeft < 0 ? factor - 1 : 0)) / factor));
}

// Whole numbers as they are: no floating-point type is sure to hold each of them.
bool Compare(const std::string& aSymbol, const Number& aLeft, const Number& aRight) {
  const bool isWhole = !aLeft.IsFloat() && !aRight.IsFloat();
  const std::partial_ordering order = isWhole ? std::partial_ordering(aLeft.ToInteger() <=> aRight.ToInteger())
                                              : aLeft.ToFloat() <=> aRight.ToFloat();
  if (aSymbol == "=")
    return std::is_eq(order);
  if (aSymbol == "<>")
    return std::is_neq(order);
  if (aSymbol == "<")
    return std::is_lt(order);
  if (aSymbol == ">")
    return std::is_gt(order);
  return aSymbol == "<=" ? std::is_lteq(order) : std::is_gteq(order);
}

Value Raise(FormulaKind aKind, const Number& aBase, const Number& aExponent) {
  const bool isWhole = aKind == FormulaKind::Integer && !aBase.IsFloat() && !aExponent.IsFloat();
  if (aBase.ToFloat() == 0.0 && aExponent.ToFloat() < 0.0)
    return {};
  if (!isWhole)
    return FromFloat(std::pow(aBase.ToFloat(), aExponent.ToFloat()));
  const std::int64_t base = aBase.ToInteger();
  const std::int64_t exponent = aExponent.ToInteger();
  if (base == 1 || (base == -1 && exponent % 2 == 0))
    return Number(1);
  if (base == -1)
    return Number(-1);
  if (exponent < 0)
    return Number(0);
  // A power of two that is beyond 64 is 0; odd numbers repeat with a period that divides 2^62.
  std::int64_t result = 1;
  std::int64_t square = base;
  for (std::int64_t rest = exponent; rest > 0; rest /= 2) {
    if (rest % 2 == 1)
      result = Wrap(Wide(result) * square);
    square = Wrap(Wide(square) * square);
  }
  return Number(result);
}

Value Calculate(const std::string& aSymbol, FormulaKind aKind, const Number& aLeft, const Number& aRight) {
  const double left = aLeft.ToFloat();
  const double right = aRight.ToFloat();
  if (aSymbol == "**")
    return Raise(aKind, aLeft, aRight);
  const bool isWhole = !aLeft.IsFloat() && !aRight.IsFloat();
  if (aSymbol == "/") {
    if (right == 0.0)
      return {};
    if (!isWhole || aKind == FormulaKind::Float)
      return FromFloat(left / right);
    return Number(Wrap(Wide(aLeft.ToInteger()) / aRight.ToInteger()));
  }
  if (isWhole) {
    const Wide wideLeft = aLeft.ToInteger();
    const Wide wideRight = aRight.ToInteger();
    const Wide wide = aSymbol == "+"   ? wideLeft + wideRight
                      : aSymbol == "-" ? wideLeft - wideRight
                                       : wideLeft * wideRight;
    if (aKind == FormulaKind::Integer || Fits(wide))
      return Number(Wrap(wide));
  }
  return FromFloat(aSymbol == "+" ? left + right : aSymbol == "-" ? left - right : left * right);
}

Value ApplyOperator(const std::string& aSymbol, FormulaKind aKind, const Number& aLeft, const Number& aRight) {
  if (kLevels.at(aSymbol) == kLevels.at("=") || kLevels.at(aSymbol) == kLevels.at("<"))
    return Number(Compare(aSymbol, aLeft, aRight) ? 1 : 0);
  if (aSymbol == "+" || aSymbol == "-" || aSymbol == "*" || aSymbol == "/" || aSymbol == "**")
    return Calculate(aSymbol, aKind, aLeft, aRight);
  const std::optional<std::int64_t> left = Truncated(aLeft);
  const std::optional<std::int64_t> right = Truncated(aRight);
  return left && right ? CombineBits(aSymbol, *left, *right) : Value();
}

Value ApplySign(const std::string& aSymbol, const Number& aValue) {
  if (aSymbol == "~") {
    const std::optional<std::int64_t> whole = Truncated(aValue);
    return whole ? Value(-1 - *whole) : Value();
  }
  if (aSymbol == "+")
    return aValue;
  return aValue.IsFloat() ? Number(-aValue.ToFloat()) : Number(Wrap(-Wide(aValue.ToInteger())));
}

Value ApplyFunction(const std::string& aName, const Number& aValue) {
  const double value = aValue.ToFloat();
  if (aName == "NEG")
    return ApplySign("-", aValue);
  if (aName == "SGN")
    return Number(value == 0.0 ? 0 : value < 0.0 ? -1 : 1);
  if (aName == "ABS")
    return value < 0.0 || (value == 0.0 && std::signbit(value)) ? ApplySign("-", aValue) : aValue;
  if (aName == "LN")
    return value > 0.0 ? FromFloat(std::log(value)) : Value();
  if (aName == "LG")
    return value > 0.0 ? FromFloat(std::log10(value)) : Value();
  using Function = double (*)(double);
  static const std::map<std::string, Function> kFractions = {
      {"TRUNC", std::trunc}, {"FLOOR", std::floor}, {"CEIL", std::ceil}, {"ROUND", std::round}};
  if (const auto found = kFractions.find(aName); found != kFractions.end())
    return aValue.IsFloat() ? FromFloat(found->second(value)) : Value(aValue);
  static const std::map<std::string, Function> kFunctions = {
      {"SQRT", std::sqrt}, {"EXP", std::exp},   {"SIN", std::sin},   {"COS", std::cos},
      {"TAN", std::tan},   {"ASIN", std::asin}, {"ACOS", std::acos}, {"ATAN", std::atan}};
  return FromFloat(kFunctions.at(aName)(value));
}

bool IsTrue(const Number& aValue) {
  return aValue.ToFloat() != 0.0;
}

Value Walk(const FormulaTree& aTree, FormulaKind aKind, std::span<const Number> aVariables) {
  if (aTree.kind == FormulaTree::Kind::Literal)
    return aTree.value;
  if (aTree.kind == FormulaTree::Kind::Variable)
    return aVariables[aTree.variable];
  const Value first = Walk(aTree.parts[0], aKind, aVariables);
  if (!first)
    return {};
  switch (aTree.kind) {
  case FormulaTree::Kind::Sign:
    return ApplySign(aTree.symbol, *first);
  case FormulaTree::Kind::Call:
    return ApplyFunction(aTree.symbol, *first);
  case FormulaTree::Kind::Choice:
    return Walk(aTree.parts[IsTrue(*first) ? 1 : 2], aKind, aVariables);
  default:
    break;
  }
  const bool isAnd = aTree.symbol == "&&";
  if ((isAnd && !IsTrue(*first)) || (aTree.symbol == "||" && IsTrue(*first)))
    return Number(isAnd ? 0 : 1);
  const Value second = Walk(aTree.parts[1], aKind, aVariables);
  if (!second)
    return {};
  if (isAnd || aTree.symbol == "||")
    return Number(IsTrue(*second) ? 1 : 0);
  return ApplyOperator(aTree.symbol, aKind, *first, *second);
}

int GetLevel(const FormulaTree& aTree) {
  switch (aTree.kind) {
  case FormulaTree::Kind::Sign:
    return kSignLevel;
  case FormulaTree::Kind::Choice:
    return 0;
  case FormulaTree::Kind::Operator:
    return kLevels.at(aTree.symbol);
  default:
    return kPrimaryLevel;
  }
}

std::string PrintPart(const FormulaTree& aTree, int aLowestLevel, FormulaStyle aStyle) {
  const std::string text = PrintTree(aTree, aStyle);
  return GetLevel(aTree) < aLowestLevel ? "(" + text + ")" : text;
}

const std::string& Pick(std::mt19937_64& aRandom, const std::vector<std::string>& aWords) {
  return aWords[aRandom() % aWords.size()];
}

FormulaTree MakeLeaf(std::mt19937_64& aRandom, const FormulaMix& aMix) {
  FormulaTree leaf;
  if (!aMix.variables.empty() && aRandom() % 3 == 0) {
    leaf.kind = FormulaTree::Kind::Variable;
    leaf.variable = aRandom() % aMix.variables.size();
    leaf.symbol = aMix.variables[leaf.variable];
    return leaf;
  }
  const auto whole = static_cast<std::int64_t>(aRandom() % static_cast<std::uint64_t>(aMix.largestLiteral + 1));
  if (aMix.hasFractions && aRandom() % 3 == 0) {
    leaf.symbol = std::to_string(whole) + "." + std::to_string(125 * (aRandom() % 8));
    leaf.value = Number(std::strtod(leaf.symbol.c_str(), nullptr));
    return leaf;
  }
  leaf.value = Number(whole);
  leaf.symbol = std::to_string(whole);
  return leaf;
}

} // namespace

std::optional<Number> EvaluateTree(const FormulaTree& aTree, FormulaKind aKind, std::span<const Number> aVariables) {
  std::vector<Number> variables(aVariables.begin(), aVariables.end());
  const Value value = Walk(aTree, aKind, variables);
  if (!value || aKind == FormulaKind::Float || !value->IsFloat())
    return value;
  const std::optional<std::int64_t> whole = Whole(std::round(value->ToFloat()));
  return whole ? Value(*whole) : Value();
}

std::string PrintTree(const FormulaTree& aTree, FormulaStyle aStyle) {
  const bool isCareful = aStyle == FormulaStyle::Careful;
  const auto part = [&](std::size_t aIndex, int aLowestLevel) {
    return PrintPart(aTree.parts[aIndex], aLowestLevel, aStyle);
  };
  switch (aTree.kind) {
  case FormulaTree::Kind::Literal:
  case FormulaTree::Kind::Variable:
    return aTree.symbol;
  case FormulaTree::Kind::Call:
    return aTree.symbol + "(" + part(0, 0) + ")";
  case FormulaTree::Kind::Sign:
    return aTree.symbol + part(0, isCareful ? kPrimaryLevel : kSignLevel);
  case FormulaTree::Kind::Choice:
    return part(0, 1) + " ? " + part(1, isCareful ? 1 : 0) + " : " + part(2, isCareful ? 1 : 0);
  case FormulaTree::Kind::Operator:
    break;
  }
  const int level = kLevels.at(aTree.symbol);
  if (level == kPowerLevel)
    return part(0, kPrimaryLevel) + " ** " + part(1, isCareful ? kPowerLevel : kSignLevel);
  return part(0, level) + " " + aTree.symbol + " " + part(1, level + 1);
}

FormulaTree MakeRandomTree(std::mt19937_64& aRandom, const FormulaMix& aMix, std::size_t aSize) {
  if (aSize <= 1)
    return MakeLeaf(aRandom, aMix);
  FormulaTree tree;
  const std::size_t rest = aSize - 1;
  const std::uint64_t kind = aRandom() % 10;
  if (kind < 2 && !(kind == 0 ? aMix.signs : aMix.functions).empty()) {
    tree.kind = kind == 0 ? FormulaTree::Kind::Sign : FormulaTree::Kind::Call;
    tree.symbol = Pick(aRandom, kind == 0 ? aMix.signs : aMix.functions);
    tree.parts.push_back(MakeRandomTree(aRandom, aMix, rest));
    return tree;
  }
  if (kind == 2 && aMix.hasChoices && rest >= 3) {
    tree.kind = FormulaTree::Kind::Choice;
    for (int i = 0; i < 3; ++i)
      tree.parts.push_back(MakeRandomTree(aRandom, aMix, rest / 3));
    return tree;
  }
  tree.kind = FormulaTree::Kind::Operator;
  tree.symbol = Pick(aRandom, aMix.operators);
  const std::size_t left = rest < 2 ? 1 : 1 + aRandom() % (rest - 1);
  tree.parts.push_back(MakeRandomTree(aRandom, aMix, left));
  tree.parts.push_back(MakeRandomTree(aRandom, aMix, rest > left ? rest - left : 1));
  return tree;
}
