#pragma once
// What tests look up in the documents: blocks of code, and messages that are quoted. What is right about them is left
// to the tests.

#include <string>
#include <string_view>
#include <vector>

namespace krtest {

/// A block between two lines of three backquotes.
struct CodeBlock {
  std::string language; ///< The word behind the first backquotes; may be empty.
  int line = 0;         ///< Of the first backquotes, counted from 1.
  std::string text;     ///< The lines between, each with its end.
};

/// The blocks of a Markdown text in their order. One that is not ended goes to the text's end.
std::vector<CodeBlock> ParseCodeBlocks(std::string_view aMarkdown);

/// A quotation (lines that begin with "> ") as one line.
struct Quotation {
  int line = 0; ///< Of its first line, counted from 1.
  std::string text;
};

/// The quotations of a Markdown text outside of its blocks of code; those that lines of another kind part are several.
std::vector<Quotation> ParseQuotations(std::string_view aMarkdown);

/// What a C++ source says: its literals, with those side by side joined and escaped quotes plain, one a line. Comments
/// and raw literals are left out.
std::string ReadLiterals(std::string_view aSource);

/// Whether literals have all pieces of a message, between its signs "…" for what differs, in their order or not:
/// sources may put a message together in any. A piece may be put together of two literals.
bool HasMessage(std::string_view aLiterals, std::string_view aMessage);

} // namespace krtest
