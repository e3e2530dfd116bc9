#include "simulation/labschedule.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

using krtransport::LabSchedule;

namespace {

struct ScheduleRow {
  const char* name;
  LabSchedule schedule;
  std::vector<bool> isOn; // From time 0 on.
  std::vector<std::uint64_t> next;
};

void PrintTo(const ScheduleRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

constexpr std::uint64_t kNone = LabSchedule::kNever;

const ScheduleRow kRows[] = {
    {"always", {}, {true, true, true}, {kNone, kNone, kNone}},
    {"never", krtransport::kNever, {false, false, false}, {kNone, kNone, kNone}},
    {"from 2 on", {.beginNs = 2}, {false, false, true, true}, {2, 2, kNone, kNone}},
    {"until 2", {.endNs = 2}, {true, true, false, false}, {2, 2, kNone, kNone}},
    {"from 1 to 3", {.beginNs = 1, .endNs = 3}, {false, true, true, false, false}, {1, 3, 3, kNone, kNone}},
    {"away from 1 to 3", {.beginNs = 3, .endNs = 1}, {true, false, false, true, true}, {1, 3, 3, kNone, kNone}},
    {"from 1 to 2 every 3",
     {.beginNs = 1, .endNs = 2, .periodNs = 3},
     {false, true, false, false, true, false, false},
     {1, 2, 3, 4, 5, 6, 7}},
    {"from 1 on every 3", {.beginNs = 1, .periodNs = 3}, {false, true, true, false, true}, {1, 3, 3, 4, 6}},
};

class LabScheduleRows : public testing::TestWithParam<ScheduleRow> {};

} // namespace

TEST_P(LabScheduleRows, IsOn_EachMoment_IsAsStated) {
  for (std::size_t i = 0; i < GetParam().isOn.size(); ++i)
    EXPECT_EQ(GetParam().schedule.IsOn(i), GetParam().isOn[i]) << i;
}

TEST_P(LabScheduleRows, GetNextChange_EachMoment_IsTheNextOneThatMayDiffer) {
  for (std::size_t i = 0; i < GetParam().next.size(); ++i)
    EXPECT_EQ(GetParam().schedule.GetNextChangeNs(i), GetParam().next[i]) << i;
}

INSTANTIATE_TEST_SUITE_P(Schedules, LabScheduleRows, testing::ValuesIn(kRows));
