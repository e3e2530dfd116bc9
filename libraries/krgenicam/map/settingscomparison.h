#pragma once
// Whether a parameter has the value that a text says, as settings are compared with the device they were written to.

#include "krgenicam/krgenparameter.h"

namespace krgenicam {

/// Floating-point numbers that differ by no more than this part of them are the same: a device that keeps them in
/// fewer bits, or in steps of its own clock, rounds.
inline constexpr double kFloatTolerance = 1e-6;

/// Reads the parameter. aIsSame is set on success, aValue to what the parameter has, as text. Numbers are compared as
/// numbers however they are written, floating-point ones with kFloatTolerance or, where that is more, half of the
/// increment; entries by name or number; bytes in any case of their digits; texts exactly. A text that is no value of
/// the type is the same as none.
KrResult CompareWithText(KrGenParameter& aParameter, const KrString& aText, bool& aIsSame, KrString& aValue);

} // namespace krgenicam
