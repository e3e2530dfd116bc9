#include "logic/display/columnplan.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "logic/display/columnplan.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace krgui::HWY_NAMESPACE {

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using PixelTag = hn::ScalableTag<std::uint32_t>;
using SignedTag = hn::RebindToSigned<PixelTag>;

constexpr std::size_t kMostLoads = 4;

/// How many source vectors cost less than pixels that are fetched alone: the fewer pixels a vector has, the fewer.
HWY_INLINE std::size_t GetMostLoads(std::size_t aLanes) {
  return HWY_MIN(kMostLoads, aLanes * 3 / 8);
}

void ScaleSingly(const ColumnPlan& aPlan, const std::uint32_t* HWY_RESTRICT aSource,
                 std::uint32_t* HWY_RESTRICT aDestination, std::uint32_t aSetBits) {
  const std::uint32_t* HWY_RESTRICT columns = aPlan.offsets.data();
  const std::size_t count = aPlan.offsets.size();
  for (std::size_t x = 0; x < count; ++x)
    aDestination[x] = aSource[columns[x]] | aSetBits;
}

void CopyRow(const ColumnPlan& aPlan, const std::uint32_t* HWY_RESTRICT aSource,
             std::uint32_t* HWY_RESTRICT aDestination, std::uint32_t aSetBits) {
  const PixelTag pixels;
  const std::size_t lanes = hn::Lanes(pixels);
  const auto setBits = hn::Set(pixels, aSetBits);
  const std::uint32_t* HWY_RESTRICT source = aSource + aPlan.mapping.sourceLeft + aPlan.mapping.first;
  const auto count = static_cast<std::size_t>(aPlan.mapping.count);
  std::size_t x = 0;
  for (; x + lanes <= count; x += lanes)
    hn::StoreU(hn::Or(hn::LoadU(pixels, source + x), setBits), pixels, aDestination + x);
  for (; x < count; ++x)
    aDestination[x] = source[x] | aSetBits;
}

/// Picks pixels out of source vectors that follow each other, by how far each one is from the first vector's begin.
template <std::size_t Loads>
HWY_INLINE hn::Vec<PixelTag> Pick(const std::uint32_t* aSource, hn::Vec<PixelTag> aOffsets) {
  const PixelTag pixels;
  const SignedTag numbers;
  const std::size_t lanes = hn::Lanes(pixels);
  const auto places =
      hn::IndicesFromVec(pixels, hn::And(aOffsets, hn::Set(pixels, static_cast<std::uint32_t>(lanes - 1))));
  auto picked = hn::TableLookupLanes(hn::LoadU(pixels, aSource), places);
  for (std::size_t load = 1; load < Loads; ++load) {
    const auto last = hn::Set(numbers, static_cast<std::int32_t>(load * lanes - 1));
    const auto isFurther = hn::RebindMask(pixels, hn::Gt(hn::BitCast(numbers, aOffsets), last));
    const auto further = hn::TableLookupLanes(hn::LoadU(pixels, aSource + load * lanes), places);
    picked = hn::IfThenElse(isFurther, further, picked);
  }
  return picked;
}

template <std::size_t Loads>
void PickRow(const ColumnPlan& aPlan, const std::uint32_t* HWY_RESTRICT aSource,
             std::uint32_t* HWY_RESTRICT aDestination, std::uint32_t aSetBits) {
  const PixelTag pixels;
  const std::size_t lanes = hn::Lanes(pixels);
  const auto setBits = hn::Set(pixels, aSetBits);
  const std::size_t lastBegin = static_cast<std::size_t>(aPlan.mapping.count) - lanes;
  const std::uint32_t* HWY_RESTRICT offsets = aPlan.offsets.data();
  const std::size_t steps = aPlan.bases.size();
  for (std::size_t step = 0; step < steps; ++step) {
    const auto picked = Pick<Loads>(aSource + aPlan.bases[step], hn::LoadU(pixels, offsets + step * lanes));
    hn::StoreU(hn::Or(picked, setBits), pixels, aDestination + HWY_MIN(step * lanes, lastBegin));
  }
}

/// How many source vectors the widest destination vector takes pixels from, beginning with its first pixel's.
std::size_t CountLoads(const ColumnMapping& aMapping, std::size_t aLanes) {
  const auto lanes = static_cast<std::int32_t>(aLanes);
  std::int32_t widest = 1;
  for (std::int32_t x = 0; x + lanes <= aMapping.count; ++x)
    widest = HWY_MAX(widest, aMapping.FindColumn(x + lanes - 1) - aMapping.FindColumn(x) + 1);
  return (static_cast<std::size_t>(widest) + aLanes - 1) / aLanes;
}

void FillSingly(ColumnPlan& aPlan) {
  aPlan.offsets.reserve(static_cast<std::size_t>(aPlan.mapping.count));
  aPlan.scaleRow = &ScaleSingly;
  for (std::int32_t x = 0; x < aPlan.mapping.count; ++x)
    aPlan.offsets.push_back(static_cast<std::uint32_t>(aPlan.mapping.FindColumn(x)));
}

/// Source vectors never reach beyond the part of the source: near its end they begin earlier.
void FillVectors(ColumnPlan& aPlan, std::size_t aLanes, std::size_t aLoads) {
  const ColumnMapping& mapping = aPlan.mapping;
  const auto lanes = static_cast<std::int32_t>(aLanes);
  const std::int32_t lastBase = mapping.sourceRight - static_cast<std::int32_t>(aLoads * aLanes);
  for (std::int32_t x = 0; x < mapping.count; x += lanes) {
    const std::int32_t begin = HWY_MIN(x, mapping.count - lanes);
    const std::int32_t base = HWY_MIN(mapping.FindColumn(begin), lastBase);
    aPlan.bases.push_back(static_cast<std::uint32_t>(base));
    for (std::int32_t lane = 0; lane < lanes; ++lane)
      aPlan.offsets.push_back(static_cast<std::uint32_t>(mapping.FindColumn(begin + lane) - base));
  }
}

ColumnPlan MakePlanOfTarget(const ColumnMapping& aMapping) {
  static constexpr ColumnPlan::RowOperation kByLoads[kMostLoads] = {&PickRow<1>, &PickRow<2>, &PickRow<3>, &PickRow<4>};
  ColumnPlan plan;
  plan.mapping = aMapping;
  if (aMapping.IsOneToOne()) {
    plan.scaleRow = &CopyRow;
    return plan;
  }
  const std::size_t lanes = hn::Lanes(PixelTag());
  const std::size_t loads = CountLoads(aMapping, lanes);
  const auto sourceWidth = static_cast<std::size_t>(aMapping.sourceRight - aMapping.sourceLeft);
  if (static_cast<std::size_t>(aMapping.count) < lanes || loads > GetMostLoads(lanes) || sourceWidth < loads * lanes) {
    FillSingly(plan);
    return plan;
  }
  plan.scaleRow = kByLoads[loads - 1];
  FillVectors(plan, lanes, loads);
  return plan;
}

} // namespace

} // namespace krgui::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace krgui {

HWY_EXPORT(MakePlanOfTarget);

ColumnPlan MakeColumnPlan(const ColumnMapping& aMapping) {
  return HWY_DYNAMIC_DISPATCH(MakePlanOfTarget)(aMapping);
}

} // namespace krgui

#endif
