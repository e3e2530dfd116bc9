#pragma once
// Lab files that are refused, and how each has to be told of.

#include "simulation/labfile/labreader.h"

#include <gmock/gmock.h>

#include <ostream>
#include <string>

inline KrResult Parse(const std::string& aText, krtransport::Lab& aLab) {
  return krtransport::ParseLab(aText, "lab.yaml", aLab);
}

/// What parsing a bad file says; fails the test if it says nothing, or if anything is taken of the file.
inline std::string GetProblem(const std::string& aText) {
  krtransport::Lab lab;
  const KrResult result = Parse(aText, lab);
  EXPECT_TRUE(result == KrResult::Code::BadData) << aText;
  EXPECT_TRUE(lab.adapters.empty() && lab.controllers.empty());
  return result.GetDescription().ToUtf8();
}

struct BadLabFile {
  const char* name;
  const char* text;
  std::string place; // "line:column", "line:" where the column is the parser's, or nothing
  const char* reason;
};

inline void PrintTo(const BadLabFile& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

class BadLabFiles : public testing::TestWithParam<BadLabFile> {
protected:
  static void ExpectPlaceAndReason() {
    const std::string problem = GetProblem(GetParam().text);

    const std::string& place = GetParam().place;
    const bool isExact = !place.empty() && place.back() != ':';
    EXPECT_THAT(problem, testing::StartsWith("lab.yaml:" + place + (isExact ? ":" : "")));
    EXPECT_THAT(problem, testing::HasSubstr(GetParam().reason));
  }
};
