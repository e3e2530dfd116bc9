#include "simulation/labschedule.h"

#include <algorithm>

namespace krtransport {

bool LabSchedule::IsOn(std::uint64_t aNowNs) const {
  const std::uint64_t now = periodNs > 0 ? aNowNs % periodNs : aNowNs;
  if (endNs < beginNs)
    return now < endNs || now >= beginNs;
  return now >= beginNs && now < endNs;
}

std::uint64_t LabSchedule::GetNextChangeNs(std::uint64_t aNowNs) const {
  const std::uint64_t periodBegin = periodNs > 0 ? aNowNs - aNowNs % periodNs : 0;
  const std::uint64_t now = aNowNs - periodBegin;
  std::uint64_t next = periodNs > 0 ? periodNs : kNever;
  for (const std::uint64_t change : {beginNs, endNs}) {
    if (change > now)
      next = std::min(next, change);
  }
  return next == kNever ? kNever : periodBegin + next;
}

} // namespace krtransport
