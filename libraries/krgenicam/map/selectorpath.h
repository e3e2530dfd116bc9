#pragma once
// The selectors that say which of several values a parameter stands for, and where they stand. Moving them through
// their positions is left to those who store and restore settings.

#include "krgenicam/krgenparameter.h"

#include <cstddef>
#include <string>
#include <vector>

namespace krgenicam {

class NodeMap;

/// A selector and where it stands or is to stand, as text.
struct SelectorPosition {
  KrGenParameter* selector = nullptr;
  KrString position;

  friend bool operator==(const SelectorPosition&, const SelectorPosition&) = default;
};

/// A parameter has fewer selectors than this; more are not looked at.
inline constexpr std::size_t kMaxSelectors = 16;
/// More positions of one integer are not listed: a device should not be moved through thousands, of which a description
/// that gives no range has them all.
inline constexpr std::size_t kMaxIntegerPositions = 256;

/// All selectors of a parameter, those of its selectors among them, each after those that select it; of selectors that
/// select one another in a circle each once.
std::vector<KrGenParameter*> ListSelectors(KrGenParameter& aParameter);

/// Whether the parameter selects any other.
bool IsSelector(KrGenParameter& aParameter);

/// What a selector can be set to as things stand, as text: available entries, valid values or the range by its
/// increment, false and true. Ends, with aIsCut set, after kMaxIntegerPositions of an integer. A selector of another
/// type has no positions. A failure where not all could be found out; those that could are there.
KrResult ListPositions(NodeMap& aMap, KrGenParameter& aSelector, KrStringList& aPositions, bool& aIsCut);

/// "Gain [GainSelector=Red]" or the name alone.
std::string DescribePlace(const KrString& aName, const std::vector<SelectorPosition>& aPositions);

/// The result's description, or its code where it has none.
std::string GetReason(const KrResult& aResult);

} // namespace krgenicam
