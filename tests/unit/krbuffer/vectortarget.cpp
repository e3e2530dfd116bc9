#include "vectortarget.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "vectortarget.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace HWY_NAMESPACE {

namespace {

std::int64_t GetTarget() {
  return HWY_TARGET;
}

} // namespace

} // namespace HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

HWY_EXPORT(GetTarget);

std::vector<std::int64_t> GetVectorTargets() {
  return hwy::SupportedAndGeneratedTargets();
}

VectorTargetChoice::VectorTargetChoice(std::int64_t aTarget) {
  hwy::SetSupportedTargetsForTest(aTarget);
}

VectorTargetChoice::~VectorTargetChoice() {
  hwy::SetSupportedTargetsForTest(0);
}

std::int64_t VectorTargetChoice::AskKernel() {
  return HWY_DYNAMIC_DISPATCH(GetTarget)();
}

const char* VectorTargetChoice::GetName(std::int64_t aTarget) {
  return hwy::TargetName(aTarget);
}

#endif
