#include "logic/display/nearestscaler.h"

namespace krgui {

void NearestScaler::PrepareColumns(const ColumnMapping& aMapping) {
  if (mPlan.mapping != aMapping)
    mPlan = MakeColumnPlan(aMapping);
}

} // namespace krgui
