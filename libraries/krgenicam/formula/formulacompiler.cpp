#include "formula/formulacompiler.h"

#include "description/lexical.h"
#include "formula/formulaoperators.h"

#include <algorithm>
#include <numbers>
#include <utility>

namespace krgenicam {

namespace {

struct BuiltInConstant {
  std::string_view name;
  double value;
};

constexpr BuiltInConstant kBuiltInConstants[] = {{"PI", std::numbers::pi}, {"E", std::numbers::e}};

// What is no longer is copied where it is used: a call would take as long.
constexpr std::size_t kMostCopied = 4;

} // namespace

// Counts levels while they are open.
class FormulaCompiler::Nesting {
public:
  explicit Nesting(FormulaCompiler& aCompiler) : mCompiler(aCompiler) { ++mCompiler.mNesting; }
  ~Nesting() { --mCompiler.mNesting; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

  bool Check() const {
    return mCompiler.mNesting <= Formula::kMaxNesting ||
           mCompiler.Refuse(mCompiler.mSource->token.column,
                            "more than " + std::to_string(Formula::kMaxNesting) + " levels of nesting");
  }

private:
  FormulaCompiler& mCompiler;
};

FormulaCompiler::FormulaCompiler(FormulaKind aKind, const FormulaNames& aNames, Formula& aFormula)
    : mNames(aNames), mFormula(aFormula) {
  mFormula.mKind = aKind;
  // What is named twice keeps its first meaning.
  for (std::size_t i = 0; i < aNames.variables.size(); ++i)
    mTargets.try_emplace(aNames.variables[i], NameTarget{NameKind::Variable, i});
  for (std::size_t i = 0; i < aNames.constants.size(); ++i)
    mTargets.try_emplace(aNames.constants[i].name, NameTarget{NameKind::Constant, i});
  for (std::size_t i = 0; i < aNames.expressions.size(); ++i)
    mTargets.try_emplace(aNames.expressions[i].name, NameTarget{NameKind::Expression, i});
}

KrResult FormulaCompiler::Compile(std::string_view aText) {
  if (!CompileText(aText, {}, false))
    return mResult;
  std::vector<std::size_t>& used = mFormula.mUsedVariables;
  std::ranges::sort(used);
  used.erase(std::unique(used.begin(), used.end()), used.end());
  used.shrink_to_fit();
  mFormula.mInstructions.shrink_to_fit();
  return {};
}

bool FormulaCompiler::CompileText(std::string_view aText, std::string_view aName, bool aIsConstant) {
  Source source{.lexer = FormulaLexer(aText, mFormula.mKind == FormulaKind::Integer),
                .token = {},
                .name = aName,
                .isConstant = aIsConstant};
  Source* const outer = std::exchange(mSource, &source);
  mTextSize += aText.size();
  bool isCompiled = mTextSize <= Formula::kMaxText || Refuse(1, "the text is too long with all that it uses");
  if (isCompiled) {
    Advance();
    isCompiled = CompileExpression() && Expect(FormulaSymbol::End, "an operator or the end");
  }
  mSource = outer;
  return isCompiled;
}

// Questions in a row (a ? 1 : b ? 2 : 3) are common and long, and so no nesting.
bool FormulaCompiler::CompileExpression() {
  std::vector<std::size_t> endings;
  while (true) {
    if (!CompileBinary(kLowestPrecedence))
      return false;
    if (!IsAt(FormulaSymbol::Question))
      break;
    Advance();
    const std::size_t choice = mFormula.mInstructions.size();
    const Nesting nesting(*this);
    if (!nesting.Check() || !Emit(Operation::JumpIfZero, 0, 0) || !CompileExpression() ||
        !Expect(FormulaSymbol::Colon, "\":\""))
      return false;
    Advance();
    endings.push_back(mFormula.mInstructions.size());
    if (!Emit(Operation::Jump, 0, 0))
      return false;
    // Of the two values one is made.
    --mStackSize;
    Land(choice);
  }
  for (const std::size_t ending : endings)
    Land(ending);
  return true;
}

bool FormulaCompiler::CompileBinary(int aLowestPrecedence) {
  if (!CompileUnary())
    return false;
  while (true) {
    const std::size_t index = FindBinaryOperator(mSource->token.symbol);
    if (index == GetBinaryOperators().size())
      return true;
    const int precedence = GetBinaryOperators()[index].precedence;
    if (precedence < aLowestPrecedence || precedence == 0)
      return true;
    if (!CompileRightSide(index))
      return false;
  }
}

bool FormulaCompiler::CompileRightSide(std::size_t aOperator) {
  const BinaryOperator& row = GetBinaryOperators()[aOperator];
  const std::size_t column = mSource->token.column;
  Advance();
  if (row.inFloat)
    return CompileBinary(row.precedence + 1) && EmitBinary(aOperator, column);
  const std::size_t skip = mFormula.mInstructions.size();
  const bool isAnd = row.symbol == FormulaSymbol::LogicalAnd;
  if (!Emit(isAnd ? Operation::SkipIfZero : Operation::SkipUnlessZero, 0, 0) || !CompileBinary(row.precedence + 1) ||
      !Emit(Operation::Truth, 0, 0))
    return false;
  Land(skip);
  return true;
}

bool FormulaCompiler::CompileUnary() {
  if (IsAt(FormulaSymbol::Minus))
    return CompileSign("-");
  if (IsAt(FormulaSymbol::Complement))
    return CompileSign("~");
  return IsAt(FormulaSymbol::Plus) ? CompileSign({}) : CompilePower();
}

bool FormulaCompiler::CompileSign(std::string_view aFunction) {
  const Nesting nesting(*this);
  const std::size_t column = mSource->token.column;
  Advance();
  if (!nesting.Check() || !CompileUnary())
    return false;
  return aFunction.empty() || EmitUnary(FindUnaryFunction(aFunction), column);
}

bool FormulaCompiler::CompilePower() {
  if (!CompilePrimary())
    return false;
  if (!IsAt(FormulaSymbol::Power))
    return true;
  const Nesting nesting(*this);
  const std::size_t column = mSource->token.column;
  Advance();
  // The exponent may have a sign, and a power of its own.
  return nesting.Check() && CompileUnary() && EmitBinary(FindBinaryOperator(FormulaSymbol::Power), column);
}

bool FormulaCompiler::CompilePrimary() {
  const FormulaToken token = mSource->token;
  if (token.symbol == FormulaSymbol::Name)
    return CompileName();
  if (token.symbol == FormulaSymbol::Value) {
    Advance();
    return EmitPush(token.value);
  }
  if (token.symbol != FormulaSymbol::OpenParenthesis)
    return RefuseToken("a value");
  const Nesting nesting(*this);
  Advance();
  if (!nesting.Check() || !CompileExpression() || !Expect(FormulaSymbol::CloseParenthesis, "an operator or \")\""))
    return false;
  Advance();
  return true;
}

bool FormulaCompiler::CompileName() {
  const FormulaToken token = mSource->token;
  Advance();
  if (IsAt(FormulaSymbol::OpenParenthesis)) {
    const std::size_t function = FindUnaryFunction(token.text);
    if (function != GetUnaryFunctions().size())
      return CompileCall(function, token.column);
  }
  if (const auto target = mTargets.find(token.text); target != mTargets.end())
    return CompileNamedText(target->second, token);
  for (const BuiltInConstant& constant : kBuiltInConstants) {
    if (EqualsIgnoringCase(constant.name, token.text))
      return CompileBuiltIn(token, constant.value);
  }
  return Refuse(token.column, "there is no variable, constant or function " + Quote(token.text));
}

bool FormulaCompiler::CompileNamedText(NameTarget& aTarget, const FormulaToken& aToken) {
  if (mSource->isConstant && aTarget.kind != NameKind::Constant)
    return Refuse(aToken.column, "a constant cannot use " + Quote(aToken.text));
  if (aTarget.kind == NameKind::Variable) {
    mFormula.mUsedVariables.push_back(aTarget.index);
    return Emit(Operation::PushVariable, 0, aTarget.index);
  }
  if (aTarget.isCompiled)
    return EmitNamedText(aTarget);
  const FormulaText& named =
      (aTarget.kind == NameKind::Constant ? mNames.constants : mNames.expressions)[aTarget.index];
  if (std::ranges::find(mOpenNames, named.name) != mOpenNames.end())
    return Refuse(aToken.column, Quote(named.name) + " uses itself");
  const Nesting nesting(*this);
  mOpenNames.push_back(named.name);
  const bool isCompiled = nesting.Check() && CompileBlock(aTarget, named);
  mOpenNames.pop_back();
  return isCompiled;
}

bool FormulaCompiler::CompileBlock(NameTarget& aTarget, const FormulaText& aNamed) {
  const std::size_t outerStackSize = std::exchange(mFormula.mStackSize, mStackSize);
  const std::size_t waiting = mStackSize;
  const std::size_t call = mFormula.mInstructions.size();
  // The block stands behind its first call, which goes on behind the block.
  if (!Emit(Operation::Call, 0, 0) || !Emit(Operation::Jump, 0, 0) ||
      !CompileText(aNamed.text, aNamed.name, aTarget.kind == NameKind::Constant))
    return false;
  aTarget.stackSize = mFormula.mStackSize - waiting;
  mFormula.mStackSize = std::max(mFormula.mStackSize, outerStackSize);
  aTarget.isCompiled = FinishBlock(aTarget, call);
  return aTarget.isCompiled;
}

bool FormulaCompiler::FinishBlock(NameTarget& aTarget, std::size_t aCall) {
  std::vector<Formula::Instruction>& all = mFormula.mInstructions;
  const auto call = all.begin() + static_cast<std::ptrdiff_t>(aCall);
  const auto begin = call + 2;
  // What jumps nowhere can be anywhere.
  const bool isMovable = std::all_of(begin, all.end(), [](const Formula::Instruction& aInstruction) {
    return aInstruction.operation <= Operation::Binary;
  });
  if (isMovable && all.end() - begin <= static_cast<std::ptrdiff_t>(kMostCopied)) {
    aTarget.copied.assign(begin, all.end());
    all.erase(call, begin);
    return true;
  }
  aTarget.block = mFormula.mBlocks.size();
  if (aTarget.block == Formula::kMaxBlocks)
    return Refuse(mSource->token.column,
                  "more than " + std::to_string(Formula::kMaxBlocks) + " constants and expressions are used");
  mFormula.mBlocks.push_back(static_cast<std::uint32_t>(aCall + 2));
  call->argument = static_cast<std::uint32_t>(aTarget.block);
  if (!Emit(Operation::Return, 0, aTarget.block))
    return false;
  Land(aCall + 1);
  return true;
}

bool FormulaCompiler::EmitNamedText(const NameTarget& aTarget) {
  for (const Formula::Instruction& copied : aTarget.copied) {
    if (!Emit(copied.operation, copied.function, copied.argument, copied.constant))
      return false;
  }
  if (!aTarget.copied.empty())
    return true;
  if (!Emit(Operation::Call, 0, aTarget.block) || !ReserveStack(aTarget.stackSize))
    return false;
  ++mStackSize;
  return true;
}

bool FormulaCompiler::CompileBuiltIn(const FormulaToken& aToken, double aValue) {
  // Some write PI().
  if (IsAt(FormulaSymbol::OpenParenthesis)) {
    Advance();
    if (!Expect(FormulaSymbol::CloseParenthesis,
                ("\")\", as " + std::string(aToken.text) + " takes no argument").c_str()))
      return false;
    Advance();
  }
  return EmitPush(Number(aValue));
}

bool FormulaCompiler::CompileCall(std::size_t aFunction, std::size_t aColumn) {
  const Nesting nesting(*this);
  Advance();
  if (!nesting.Check() || !CompileExpression())
    return false;
  const bool takesTwo = GetUnaryFunctions()[aFunction].name == "ROUND";
  const bool hasTwo = takesTwo && IsAt(FormulaSymbol::Comma);
  if (hasTwo) {
    Advance();
    if (!CompileExpression())
      return false;
  }
  if (!Expect(FormulaSymbol::CloseParenthesis,
              takesTwo && !hasTwo ? "an operator, \",\" or \")\"" : "an operator or \")\""))
    return false;
  Advance();
  return hasTwo ? EmitBinary(FindBinaryOperator(FormulaSymbol::Comma), aColumn) : EmitUnary(aFunction, aColumn);
}

bool FormulaCompiler::Expect(FormulaSymbol aSymbol, const char* aExpectation) {
  return IsAt(aSymbol) || RefuseToken(aExpectation);
}

bool FormulaCompiler::EmitUnary(std::size_t aFunction, std::size_t aColumn) {
  return Emit(Operation::Unary, aFunction, GetFaultColumn(aColumn));
}

bool FormulaCompiler::EmitBinary(std::size_t aOperator, std::size_t aColumn) {
  return Emit(Operation::Binary, aOperator, GetFaultColumn(aColumn));
}

bool FormulaCompiler::Emit(Operation aOperation, std::size_t aFunction, std::size_t aArgument,
                           const Number& aConstant) {
  if (mFormula.mInstructions.size() == Formula::kMaxOperations)
    return Refuse(mSource->token.column, "more than " + std::to_string(Formula::kMaxOperations) + " operations");
  mFormula.mInstructions.push_back({.operation = aOperation,
                                    .function = static_cast<std::uint8_t>(aFunction),
                                    .argument = static_cast<std::uint32_t>(aArgument),
                                    .constant = aConstant});
  switch (aOperation) {
  case Operation::Push:
  case Operation::PushVariable:
    if (!ReserveStack(1))
      return false;
    ++mStackSize;
    break;
  case Operation::Binary:
  case Operation::JumpIfZero:
  case Operation::SkipIfZero:
  case Operation::SkipUnlessZero:
    --mStackSize;
    break;
  // A call's operand is counted with the block's.
  case Operation::Unary:
  case Operation::Jump:
  case Operation::Truth:
  case Operation::Call:
  case Operation::Return:
    break;
  }
  return true;
}

bool FormulaCompiler::ReserveStack(std::size_t aNeeded) {
  mFormula.mStackSize = std::max(mFormula.mStackSize, mStackSize + aNeeded);
  return mFormula.mStackSize <= Formula::kMaxStack ||
         Refuse(mSource->token.column,
                "more than " + std::to_string(Formula::kMaxStack) + " operands wait for their operators");
}

void FormulaCompiler::Land(std::size_t aJump) {
  mFormula.mInstructions[aJump].argument = static_cast<std::uint32_t>(mFormula.mInstructions.size());
}

std::size_t FormulaCompiler::GetFaultColumn(std::size_t aColumn) const {
  return mSource->name.empty() ? aColumn : 0;
}

bool FormulaCompiler::Refuse(std::size_t aColumn, const std::string& aReason) {
  const std::string place = mSource->name.empty() ? "" : Quote(mSource->name) + ", ";
  mResult = {KrResult::Code::BadData, "Formula: " + place + "column " + std::to_string(aColumn) + ": " + aReason + "."};
  return false;
}

bool FormulaCompiler::RefuseToken(const char* aExpectation) {
  const FormulaToken& token = mSource->token;
  const std::string expected = token.fault ? token.fault : "expected " + std::string(aExpectation);
  const std::string found = token.symbol == FormulaSymbol::End ? "the end" : Quote(token.text);
  return Refuse(token.column, expected + ", found " + found);
}

} // namespace krgenicam
