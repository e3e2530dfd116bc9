#pragma once
// All formats that the library names, as the rows of a test.

#include "krbuffer/krpixeltype.h"
#include "pixeltypetable.h"

#include <ostream>
#include <string>
#include <vector>

/// Tests of one format are named after it.
struct FormatCase {
  KrPixelTypeInfo format;
};

inline void PrintTo(const FormatCase& aCase, std::ostream* aStream) {
  *aStream << aCase.format.name;
}

template <typename Condition>
std::vector<FormatCase> SelectFormats(const Condition& aCondition) {
  std::vector<FormatCase> selected;
  for (const KrPixelTypeInfo& format : krbuffer::kPixelTypes)
    if (aCondition(format))
      selected.push_back({format});
  return selected;
}
