#pragma once
// Everything about a parameter that sinks are told of when it changes, as it was at one moment.

#include "krbase/krresult.h"
#include "krgenicam/krgentypes.h"
#include "nodes/node.h"
#include "number.h"

#include <cstdint>
#include <string>
#include <vector>

namespace krgenicam {

/// Thread: a value. Borrows texts of the description.
struct ParameterSnapshot {
  /// A number, or why there is none: of failures the code counts, not the words.
  struct Item {
    KrResult::Code code = KrResult::Code::OK;
    Number number = {};

    friend bool operator==(const Item&, const Item&) = default;
  };

  KrGenAccessMode access = KrGenAccessMode::NotAvailable;
  Item value; ///< Of a command, whether it is under way.
  Item minimum;
  Item maximum;
  Item increment;
  std::string text = {};
  std::vector<Number> validValues = {};
  std::vector<KrGenAccessMode> entries = {}; ///< The access of each entry of an enumeration.
  KrGenRepresentation representation = KrGenRepresentation::PureNumber;
  std::string_view unit = {};
  KrGenDisplayNotation notation = KrGenDisplayNotation::Automatic;
  std::int64_t precision = 0;
  std::size_t bytesLength = 0;   ///< Of a register, …
  std::size_t bytesHash = 0;     ///< … whose bytes are looked at.
  std::uint64_t writesCount = 0; ///< Of a register whose bytes are not.

  friend bool operator==(const ParameterSnapshot&, const ParameterSnapshot&) = default;
};

/// Whether a register, if the node is one, is short enough to be read only to find out whether it changed, and can be.
bool IsWorthReading(Node& aNode, Evaluation& aEvaluation);
/// Takes the snapshot of a node, which was written, or may have been, aWritesCount times. Failures are part of it.
ParameterSnapshot TakeSnapshot(Node& aNode, Evaluation& aEvaluation, std::uint64_t aWritesCount);

} // namespace krgenicam
