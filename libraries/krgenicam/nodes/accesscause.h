#pragma once
// Which node it is that keeps another one from being had, read or written at the moment, and by what value, for those
// who tell people in words of their own. The sentences of refused operations are left to Node::ExplainAccess.

#include "number.h"

#include <cstdint>

namespace krgenicam {

class Node;

/// Thread: a value. Ownership: borrows the nodes.
struct AccessCause {
  enum class Verdict : std::uint8_t {
    Unknown,        ///< No predicate says so.
    ByDescription,  ///< It is so at all times, as the description has it.
    NotImplemented, ///< By pIsImplemented, …
    NotAvailable,   ///< … pIsAvailable …
    Locked,         ///< … and pIsLocked.
  };

  Verdict verdict = Verdict::Unknown;
  const Node* node = nullptr; ///< Whose predicate it is.
  Node* predicate = nullptr;
  Number value = {}; ///< Of the predicate.
};

} // namespace krgenicam
