#include "panels/lineprofile.h"

#include "krbuffer/krpixelvalue.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace krviewer {

namespace {

/// The order in which channels are listed; whatever is not named comes behind.
constexpr std::string_view kOrder = "YRGBUV";
constexpr std::string_view kSharpened = "YRGB";
constexpr char kAlpha = 'A';

std::optional<ValueRange> FindFormatRange(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> format = KrFindPixelType(aType);
  if (!format || format->sampleKind == KrSampleKind::Float)
    return std::nullopt;
  const double values = std::ldexp(1.0, format->bitsPerSample);
  const double low = format->sampleKind == KrSampleKind::Signed ? -values / 2 : 0.0;
  return ValueRange{low, low + values - 1};
}

std::vector<ProfilePoint>& FindPoints(std::vector<ProfileChannel>& aChannels, char aComponent) {
  const auto found = std::ranges::find(aChannels, aComponent, &ProfileChannel::component);
  if (found != aChannels.end())
    return found->points;
  return aChannels.emplace_back(ProfileChannel{aComponent, {}}).points;
}

void AddPixel(const KrPixelValue& aPixel, std::uint32_t aPosition, std::vector<ProfileChannel>& aChannels) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(aPixel.sampleCount); ++i)
    if (aPixel.components[i] != kAlpha)
      FindPoints(aChannels, aPixel.components[i]).push_back({aPosition, aPixel.samples[i]});
}

} // namespace

KrResult LineProfile::Read(const Snapshot& aSnapshot) {
  mChannels.clear();
  if (!aSnapshot.result.IsOK())
    return aSnapshot.result;
  const bool isColumn = aSnapshot.request.kind == CutoutRequest::Kind::Column;
  const IKrImage* const image = aSnapshot.pixels.GetImage();
  if (aSnapshot.request.kind == CutoutRequest::Kind::Sample || !image || image->GetImageSize() == 0)
    return {KrResult::Code::InvalidInput, "A line of a frame was to be read, but there is none to read from."};
  mLength = isColumn ? aSnapshot.height : aSnapshot.width;
  const std::uint32_t last = (isColumn ? aSnapshot.width : aSnapshot.height) - 1;
  mIndex = static_cast<std::uint32_t>(std::min<std::uint64_t>(aSnapshot.request.index, last));
  mFormatRange = FindFormatRange(image->GetPixelType());
  KrResult read = ReadPixels(aSnapshot, isColumn);
  if (!read.IsOK())
    mChannels.clear();
  return read;
}

KrResult LineProfile::ReadPixels(const Snapshot& aSnapshot, bool aIsColumn) {
  const Cutout& cutout = aSnapshot.cutout;
  const IKrImage& image = *aSnapshot.pixels.GetImage();
  const std::uint32_t across = mIndex - (aIsColumn ? cutout.firstColumn : cutout.firstLine);
  const std::uint32_t count = aIsColumn ? cutout.lines : cutout.columns;
  for (std::uint32_t i = 0; i < count; ++i) {
    KrPixelValue pixel;
    if (KrResult read = KrReadPixel(image, aIsColumn ? across : i, aIsColumn ? i : across, pixel); !read.IsOK())
      return read;
    AddPixel(pixel, aIsColumn ? cutout.GetImageLine(i) : i, mChannels);
  }
  std::ranges::stable_sort(mChannels, {},
                           [](const ProfileChannel& aChannel) { return kOrder.find(aChannel.component); });
  return {};
}

std::optional<ValueRange> LineProfile::GetValueRange() const {
  std::optional<ValueRange> range;
  for (const ProfileChannel& channel : mChannels) {
    for (const ProfilePoint& point : channel.points) {
      if (!std::isfinite(point.value))
        continue;
      const ValueRange soFar = range.value_or(ValueRange{point.value, point.value});
      range = ValueRange{std::min(soFar.low, point.value), std::max(soFar.high, point.value)};
    }
  }
  return range;
}

double LineProfile::GetSharpness() const {
  double sum = 0;
  std::size_t steps = 0;
  for (const ProfileChannel& channel : mChannels) {
    if (kSharpened.find(channel.component) == std::string_view::npos)
      continue;
    for (std::size_t i = 1; i < channel.points.size(); ++i) {
      const ProfilePoint& before = channel.points[i - 1];
      const ProfilePoint& point = channel.points[i];
      const double step = std::abs(point.value - before.value) / (point.position - before.position);
      if (!std::isfinite(step))
        continue;
      sum += step;
      ++steps;
    }
  }
  return steps > 0 ? sum / static_cast<double>(steps) : 0.0;
}

std::vector<ProfilePoint> ReducePoints(const std::vector<ProfilePoint>& aPoints, std::uint32_t aLength,
                                       std::size_t aParts) {
  std::vector<ProfilePoint> finite;
  std::ranges::copy_if(aPoints, std::back_inserter(finite),
                       [](const ProfilePoint& aPoint) { return std::isfinite(aPoint.value); });
  if (finite.size() <= 2 * aParts || aParts == 0 || aLength == 0)
    return finite;
  const auto findPart = [aLength, aParts](const ProfilePoint& aPoint) { return aPoint.position * aParts / aLength; };
  std::vector<ProfilePoint> reduced;
  for (auto begin = finite.cbegin(); begin != finite.cend();) {
    const auto end = std::find_if(begin, finite.cend(),
                                  [&](const ProfilePoint& aPoint) { return findPart(aPoint) != findPart(*begin); });
    const auto [least, greatest] = std::minmax_element(
        begin, end, [](const ProfilePoint& aLeft, const ProfilePoint& aRight) { return aLeft.value < aRight.value; });
    reduced.push_back(*std::min(least, greatest));
    if (least != greatest)
      reduced.push_back(*std::max(least, greatest));
    begin = end;
  }
  return reduced;
}

} // namespace krviewer
