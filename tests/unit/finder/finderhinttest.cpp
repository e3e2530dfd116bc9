#include "logic/finder/finderhint.h"

#include <gmock/gmock.h>

namespace krgui {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(FindFinderHint, WhatStandsInTheWay_IsSaidByItsWeight) {
  struct Row {
    const char* name;
    FinderHintFacts facts;
    const char* said;
  };
  for (const Row& row :
       {Row{"no transports", {.hasTransports = false, .failure = "Stopped."}, "No transports are installed"},
        Row{"no thread", {.failure = "Stopped.", .roundCount = 1, .unreachableCount = 1}, "Stopped."},
        Row{"no thread any more", {.failure = "Stopped.", .showsDevices = true}, "Stopped."},
        Row{"one that cannot be reached", {.roundCount = 1, .unreachableCount = 1}, "One device answers"},
        Row{"some that cannot be reached", {.roundCount = 1, .unreachableCount = 3}, "3 devices answer"},
        Row{"the first round", {}, "Looking for devices"}, Row{"later rounds", {.roundCount = 2}, "Still looking"}})
    EXPECT_THAT(FindFinderHint(row.facts).ToUtf8(), HasSubstr(row.said)) << row.name;
}

TEST(FindFinderHint, DeviceInTheTree_LeavesNothingToSay) {
  EXPECT_THAT(FindFinderHint({.hasTransports = false, .showsDevices = true, .unreachableCount = 2}).ToUtf8(),
              IsEmpty());
}

} // namespace krgui
