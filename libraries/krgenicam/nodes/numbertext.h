#pragma once
// Numbers as text, without a locale: for messages and for values that are stored and read back.

#include "number.h"

#include <string>

namespace krgenicam {

/// A whole number in decimal, a floating-point one with as many digits as it takes to read the same number back ("0.1",
/// "1e+300", "inf").
std::string FormatNumber(const Number& aValue);

} // namespace krgenicam
