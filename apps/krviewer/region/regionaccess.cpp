#include "region/regionaccess.h"

#include <algorithm>

namespace krviewer {

namespace {

/// Beyond what any sensor has, and small enough that sums do not overflow and doubles hold each whole number.
constexpr std::int64_t kMostPixels = std::int64_t{1} << 48U;

struct AxisNames {
  const char* length;
  const char* offset;
  const char* extent;
};

constexpr AxisNames kHorizontal = {"Width", "OffsetX", "WidthMax"};
constexpr AxisNames kVertical = {"Height", "OffsetY", "HeightMax"};

/// A feature's value, limits and step.
struct Readings {
  std::int64_t value = 0;
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
  std::int64_t increment = 1;
};

KrResult ReadFeature(KrGenInteger& aFeature, Readings& aReadings) {
  KrResult read = aFeature.GetValue(aReadings.value);
  if (read.IsOK())
    read = aFeature.GetMin(aReadings.minimum);
  if (read.IsOK())
    read = aFeature.GetMax(aReadings.maximum);
  return read.IsOK() ? aFeature.GetIncrement(aReadings.increment) : read;
}

bool IsPlausible(const Readings& aReadings) {
  const auto isSize = [](std::int64_t aValue) { return aValue >= 0 && aValue <= kMostPixels; };
  return isSize(aReadings.value) && isSize(aReadings.minimum) && isSize(aReadings.maximum) &&
         aReadings.increment >= 1 && aReadings.increment <= kMostPixels;
}

KrResult Explain(const char* aFeature, const KrResult& aReason) {
  return {aReason.GetCode(), std::string("The camera's region of interest cannot be read: its feature ") + aFeature +
                                 " fails: " + aReason.GetDescription().ToUtf8()};
}

KrResult MakeImplausible(const char* aFeature) {
  return {KrResult::Code::BadData, std::string("The camera's region of interest cannot be edited: its feature ") +
                                       aFeature + " has limits that no sensor can have."};
}

/// The features that the camera has now; null for one that it has not.
KrGenInteger* FindFeature(KrGenParameterArray& aParameters, const char* aName) {
  KrGenInteger* const feature = aParameters.GetInteger(aName);
  return feature && feature->IsReadable() ? feature : nullptr;
}

/// Whether the feature can never be set; one that is locked while the camera streams can.
bool IsReadOnly(KrGenInteger& aFeature) {
  KrString reason;
  return !aFeature.IsWritable() && aFeature.GetAccessReason(reason).IsOK() && reason.IsEmpty();
}

KrResult ReadOffset(KrGenParameterArray& aParameters, const AxisNames& aNames, const Readings& aLength,
                    RegionAxis& aAxis) {
  // The longest from where it begins now; cameras whose length does not depend on the offset say more.
  aAxis.extent = aLength.maximum;
  aAxis.isOffsetFixed = true;
  KrGenInteger* const feature = FindFeature(aParameters, aNames.offset);
  if (!feature)
    return {};
  Readings offset;
  if (KrResult read = ReadFeature(*feature, offset); !read.IsOK())
    return Explain(aNames.offset, read);
  if (!IsPlausible(offset))
    return MakeImplausible(aNames.offset);
  aAxis.present.offset = offset.value;
  aAxis.offsetMin = offset.minimum;
  aAxis.offsetIncrement = offset.increment;
  aAxis.extent = std::min(offset.maximum + aLength.value, aLength.maximum + offset.value);
  aAxis.isOffsetFixed = IsReadOnly(*feature);
  return {};
}

KrResult ReadExtent(KrGenParameterArray& aParameters, const AxisNames& aNames, RegionAxis& aAxis) {
  KrGenInteger* const feature = FindFeature(aParameters, aNames.extent);
  std::int64_t extent = 0;
  if (!feature)
    return {};
  if (KrResult read = feature->GetValue(extent); !read.IsOK())
    return Explain(aNames.extent, read);
  if (extent < 0 || extent > kMostPixels)
    return MakeImplausible(aNames.extent);
  // Where there is no offset, the length's own limit counts.
  if (aParameters.GetInteger(aNames.offset))
    aAxis.extent = extent;
  return {};
}

KrResult ReadAxis(KrGenParameterArray& aParameters, const AxisNames& aNames, RegionAxis& aAxis) {
  KrGenInteger* const feature = FindFeature(aParameters, aNames.length);
  if (!feature)
    return {KrResult::Code::NotSupported,
            std::string("The camera has no region of interest: it lacks the feature ") + aNames.length + "."};
  Readings length;
  if (KrResult read = ReadFeature(*feature, length); !read.IsOK())
    return Explain(aNames.length, read);
  if (!IsPlausible(length) || length.value == 0)
    return MakeImplausible(aNames.length);
  aAxis = {};
  aAxis.present.length = length.value;
  aAxis.lengthMin = std::max<std::int64_t>(length.minimum, 1);
  aAxis.lengthIncrement = length.increment;
  KrResult read = ReadOffset(aParameters, aNames, length, aAxis);
  if (read.IsOK())
    read = ReadExtent(aParameters, aNames, aAxis);
  // What the camera has at the moment is valid whatever its limits say.
  aAxis.extent = std::max(aAxis.extent, aAxis.present.offset + aAxis.present.length);
  aAxis.isLengthFixed = IsReadOnly(*feature) || aAxis.lengthMin + aAxis.lengthIncrement > aAxis.extent;
  return read;
}

KrResult SetFeature(KrGenParameterArray& aParameters, const char* aName, std::int64_t aValue) {
  KrGenInteger* const feature = aParameters.GetInteger(aName);
  if (!feature)
    return {KrResult::Code::NotSupported, std::string("the camera has no feature ") + aName + "."};
  return feature->SetValue(aValue);
}

KrResult WriteSpan(KrGenParameterArray& aParameters, const AxisNames& aNames, const RegionSpan& aFrom,
                   const RegionSpan& aTo) {
  for (const RegionStep& step : PlanSteps(aFrom, aTo)) {
    const char* const name = step.isOffset ? aNames.offset : aNames.length;
    if (KrResult set = SetFeature(aParameters, name, step.value); !set.IsOK())
      return set;
  }
  return {};
}

KrResult WriteFromPresent(KrGenParameterArray& aParameters, const Region& aRegion) {
  RegionLimits limits;
  KrResult result = ReadRegion(aParameters, limits);
  if (result.IsOK())
    result = WriteSpan(aParameters, kHorizontal, limits.x.present, aRegion.x);
  return result.IsOK() ? WriteSpan(aParameters, kVertical, limits.y.present, aRegion.y) : result;
}

KrResult WriteOrRestore(KrGenParameterArray& aParameters, const Region& aBefore, const Region& aRegion) {
  const KrResult written = WriteFromPresent(aParameters, aRegion);
  if (written.IsOK())
    return written;
  const KrResult restored = WriteFromPresent(aParameters, aBefore);
  const std::string end = restored.IsOK()
                              ? " The region " + FormatRegion(aBefore) + " is set again."
                              : " The region before, " + FormatRegion(aBefore) +
                                    ", could not be set again either: " + restored.GetDescription().ToUtf8();
  return {written.GetCode(), "The camera does not take the region " + FormatRegion(aRegion) + ": " +
                                 written.GetDescription().ToUtf8() + end};
}

} // namespace

std::string FormatRegion(const Region& aRegion) {
  return std::to_string(aRegion.x.length) + " x " + std::to_string(aRegion.y.length) + " at " +
         std::to_string(aRegion.x.offset) + ", " + std::to_string(aRegion.y.offset);
}

KrResult ReadRegion(KrGenParameterArray& aParameters, RegionLimits& aLimits) {
  const KrGenParameterArray::Turn turn(aParameters);
  if (KrResult read = ReadAxis(aParameters, kHorizontal, aLimits.x); !read.IsOK())
    return read;
  return ReadAxis(aParameters, kVertical, aLimits.y);
}

KrResult WriteRegion(KrGenParameterArray& aParameters, const Region& aRegion) {
  const KrGenParameterArray::Turn turn(aParameters);
  RegionLimits limits;
  if (KrResult read = ReadRegion(aParameters, limits); !read.IsOK())
    return read;
  return WriteOrRestore(aParameters, limits.GetPresent(), aRegion);
}

KrResult WriteFullRegion(KrGenParameterArray& aParameters) {
  const KrGenParameterArray::Turn turn(aParameters);
  RegionLimits limits;
  if (KrResult read = ReadRegion(aParameters, limits); !read.IsOK())
    return read;
  return WriteOrRestore(aParameters, limits.GetPresent(), {GetFullSpan(limits.x), GetFullSpan(limits.y)});
}

} // namespace krviewer
