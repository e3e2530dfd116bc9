#include "formula/formula.h"

#include "formula/formulacompiler.h"
#include "formula/formulaoperators.h"

#include <array>
#include <cmath>
#include <string>
#include <utility>

namespace krgenicam {

namespace {

constexpr const char* kResultBeyond64Bits = "the result is no whole number of 64 bits";

KrResult MakeFault(std::size_t aColumn, const char* aReason) {
  const std::string place = aColumn == 0 ? "" : "column " + std::to_string(aColumn) + ": ";
  return {KrResult::Code::OutOfRange, "Formula: " + place + aReason + "."};
}

// Takes the operand on top; where it decides the whole, its truth is left in its place.
bool Decides(bool aWhenTrue, Number*& aTop) {
  --aTop;
  if (IsTrue(*aTop) != aWhenTrue)
    return false;
  *aTop++ = Number(aWhenTrue ? 1 : 0);
  return true;
}

} // namespace

KrResult Formula::Compile(std::string_view aText, FormulaKind aKind, const FormulaNames& aNames, Formula& aFormula) {
  Formula formula;
  KrResult result = FormulaCompiler(aKind, aNames, formula).Compile(aText);
  if (result.IsOK())
    aFormula = std::move(formula);
  return result;
}

KrResult Formula::Evaluate(IFormulaVariables& aVariables, Number& aResult) const {
  // Nearly all formulas are small, and making room for all that are let pass takes longer than computing them.
  constexpr std::size_t kUsualStack = 16;
  constexpr std::size_t kUsualBlocks = 8;
  if (mStackSize <= kUsualStack && mBlocks.empty())
    return EvaluateWithRoom<kUsualStack, 0>(aVariables, aResult);
  if (mStackSize <= kUsualStack && mBlocks.size() <= kUsualBlocks)
    return EvaluateWithRoom<kUsualStack, kUsualBlocks>(aVariables, aResult);
  return EvaluateWithRoom<kMaxStack, kMaxBlocks>(aVariables, aResult);
}

// Never part of its caller, whose frame would have the largest room in it: variables evaluate other nodes' formulas.
template <std::size_t kStack, std::size_t kBlocks>
[[gnu::noinline]] KrResult Formula::EvaluateWithRoom(IFormulaVariables& aVariables, Number& aResult) const {
  std::array<Number, kStack> stack;
  std::array<BlockState, kBlocks> blocks;
  return Run(aVariables, stack.data(), blocks.data(), aResult);
}

KrResult Formula::Fetch(IFormulaVariables& aVariables, std::size_t aIndex, Number& aValue) const {
  KrResult result = aVariables.GetVariable(aIndex, aValue);
  if (!result.IsOK() || mKind == FormulaKind::Float || !aValue.IsFloat())
    return result;
  std::int64_t whole = 0;
  if (!RoundToInteger(aValue, whole))
    return MakeFault(0, "a variable's value is no whole number of 64 bits");
  aValue = Number(whole);
  return {};
}

KrResult Formula::Run(IFormulaVariables& aVariables, Number* aStack, BlockState* aBlocks, Number& aResult) const {
  if (mInstructions.empty())
    return {KrResult::Code::BadData, "Formula: there is none."};
  const std::span<const BinaryOperator> binary = GetBinaryOperators();
  const std::span<const UnaryFunction> unary = GetUnaryFunctions();
  Number* top = aStack; // Behind the last operand.
  for (std::size_t next = 0; next < mInstructions.size();) {
    const Instruction& instruction = mInstructions[next++];
    const char* fault = nullptr;
    switch (instruction.operation) {
    case Operation::Push:
      *top++ = instruction.constant;
      break;
    case Operation::PushVariable:
      if (KrResult result = Fetch(aVariables, instruction.argument, *top++); !result.IsOK())
        return result;
      break;
    case Operation::Unary:
      fault = unary[instruction.function].apply(top[-1]);
      break;
    case Operation::Binary: {
      const BinaryOperator& row = binary[instruction.function];
      --top;
      fault = (mKind == FormulaKind::Integer ? row.inInteger : row.inFloat)(top[-1], *top);
      break;
    }
    case Operation::Jump:
      next = instruction.argument;
      break;
    case Operation::JumpIfZero:
      if (!IsTrue(*--top))
        next = instruction.argument;
      break;
    case Operation::SkipIfZero:
    case Operation::SkipUnlessZero:
      if (Decides(instruction.operation == Operation::SkipUnlessZero, top))
        next = instruction.argument;
      break;
    case Operation::Truth:
      top[-1] = Number(IsTrue(top[-1]) ? 1 : 0);
      break;
    case Operation::Call: {
      BlockState& block = aBlocks[instruction.argument];
      if (block.hasValue)
        *top++ = block.value;
      else
        block.next = std::exchange(next, mBlocks[instruction.argument]);
      break;
    }
    case Operation::Return: {
      BlockState& block = aBlocks[instruction.argument];
      block.value = top[-1];
      block.hasValue = true;
      next = block.next;
      break;
    }
    }
    if (fault)
      return MakeFault(instruction.argument, fault);
  }
  return Finish(*aStack, aResult);
}

KrResult Formula::Finish(const Number& aValue, Number& aResult) const {
  if (aValue.IsFloat() && std::isnan(aValue.ToFloat()))
    return MakeFault(0, "the result is no number");
  aResult = aValue;
  if (mKind == FormulaKind::Float)
    return {};
  std::int64_t whole = 0;
  if (!RoundToInteger(aValue, whole))
    return MakeFault(0, kResultBeyond64Bits);
  aResult = Number(whole);
  return {};
}

} // namespace krgenicam
