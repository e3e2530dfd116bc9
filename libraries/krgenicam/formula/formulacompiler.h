#pragma once
// Turns a formula's text into instructions for a stack of numbers. A constant or expression is compiled once, where it
// is used first: of a few instructions other uses are copies, of more they are calls of the block that it is. Cutting
// the text is left to the lexer, evaluation to Formula.

#include "formula/formula.h"
#include "formula/formulalexer.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace krgenicam {

/// Thread: one at a time. Ownership: borrows names and texts; used for one formula.
class FormulaCompiler {
public:
  FormulaCompiler(FormulaKind aKind, const FormulaNames& aNames, Formula& aFormula);

  KrResult Compile(std::string_view aText);

private:
  using Operation = Formula::Operation;

  enum class NameKind { Variable, Constant, Expression };
  struct NameTarget {
    NameKind kind;
    std::size_t index;
    // Of constants and expressions, from their first use on.
    bool isCompiled = false;
    std::vector<Formula::Instruction> copied = {}; ///< What it is compiled to; empty for a block.
    std::size_t block = 0;
    std::size_t stackSize = 0; ///< What the block needs, its value included.
  };
  // A text under compilation: the formula itself, or a constant or expression that it uses.
  struct Source {
    FormulaLexer lexer;
    FormulaToken token;
    std::string_view name; // Empty for the formula itself.
    bool isConstant = false;
  };
  class Nesting;

  // Each compiles what begins at the current token, and stops behind it; false when that failed.
  bool CompileText(std::string_view aText, std::string_view aName, bool aIsConstant);
  bool CompileExpression();
  bool CompileBinary(int aLowestPrecedence);
  bool CompileRightSide(std::size_t aOperator);
  bool CompileUnary();
  bool CompileSign(std::string_view aFunction);
  bool CompilePower();
  bool CompilePrimary();
  bool CompileName();
  bool CompileNamedText(NameTarget& aTarget, const FormulaToken& aToken);
  bool CompileBlock(NameTarget& aTarget, const FormulaText& aNamed);
  // Ends what was compiled behind a call and a jump: copies it or makes it a block.
  bool FinishBlock(NameTarget& aTarget, std::size_t aCall);
  bool EmitNamedText(const NameTarget& aTarget);
  bool CompileCall(std::size_t aFunction, std::size_t aColumn);
  bool CompileBuiltIn(const FormulaToken& aToken, double aValue);

  void Advance() { mSource->token = mSource->lexer.Next(); }
  bool IsAt(FormulaSymbol aSymbol) const { return mSource->token.symbol == aSymbol; }
  bool Expect(FormulaSymbol aSymbol, const char* aExpectation);

  bool Emit(Operation aOperation, std::size_t aFunction, std::size_t aArgument, const Number& aConstant = {});
  bool EmitPush(const Number& aConstant) { return Emit(Operation::Push, 0, 0, aConstant); }
  bool EmitUnary(std::size_t aFunction, std::size_t aColumn);
  bool EmitBinary(std::size_t aOperator, std::size_t aColumn);
  // Counts operands that come on the stack, aNeeded of them at a time.
  bool ReserveStack(std::size_t aNeeded);
  // Lets a jump go to the next instruction.
  void Land(std::size_t aJump);
  // The column for faults on evaluation; 0, for none, in texts that are not the formula itself.
  std::size_t GetFaultColumn(std::size_t aColumn) const;

  bool Refuse(std::size_t aColumn, const std::string& aReason);
  bool RefuseToken(const char* aExpectation);

  const FormulaNames& mNames;
  Formula& mFormula;
  std::unordered_map<std::string_view, NameTarget> mTargets;
  Source* mSource = nullptr;
  std::vector<std::string_view> mOpenNames; ///< Constants and expressions that are under compilation.
  std::size_t mNesting = 0;
  std::size_t mStackSize = 0;
  std::size_t mTextSize = 0;
  KrResult mResult;
};

} // namespace krgenicam
