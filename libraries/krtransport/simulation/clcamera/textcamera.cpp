#include "simulation/clcamera/textcamera.h"

#include "simulation/clcamera/clcamerafeatures.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <numeric>
#include <utility>

namespace krtransport {

namespace {

constexpr char kEnd = '\r';
constexpr std::size_t kMostLineBytes = 128;
constexpr std::size_t kCheckBytes = 3; // The star and two digits.
constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;

constexpr std::string_view kDone = "OK";
constexpr std::string_view kBadChecksum = "ERR 1 checksum";
constexpr std::string_view kUnknown = "ERR 2 unknown name";
constexpr std::string_view kBadValue = "ERR 3 bad value";
constexpr std::string_view kOnlyRead = "ERR 4 cannot be set";
constexpr std::string_view kOnlyWritten = "ERR 5 cannot be asked";
constexpr std::string_view kNoCommand = "ERR 6 no command";

constexpr std::string_view kIdentity = "id";
constexpr std::string_view kRate = "baud";

char MakeLower(char aLetter) {
  return aLetter >= 'A' && aLetter <= 'Z' ? static_cast<char>(aLetter - 'A' + 'a') : aLetter;
}

bool IsSame(std::string_view aFirst, std::string_view aSecond) {
  return std::ranges::equal(aFirst, aSecond, {}, MakeLower, MakeLower);
}

std::string MakeCheck(std::string_view aText) {
  const auto add = [](unsigned aSum, char aCharacter) { return aSum + static_cast<unsigned char>(aCharacter); };
  std::array<char, 8> check;
  std::snprintf(check.data(), check.size(), "*%02X", std::accumulate(aText.begin(), aText.end(), 0U, add) % 0x100);
  return check.data();
}

template <typename Number>
std::optional<Number> ParseNumber(std::string_view aText) {
  Number value = 0;
  const auto [end, error] = std::from_chars(aText.data(), aText.data() + aText.size(), value);
  return error == std::errc() && end == aText.data() + aText.size() ? std::optional(value) : std::nullopt;
}

std::string FormatFloat(double aValue) {
  std::array<char, 32> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), aValue).ptr};
}

} // namespace

TextCamera::TextCamera(const LabCLCamera& aCamera) : mCamera(aCamera), mMemory(aCamera) {}

void TextCamera::Restart() {
  mMemory.Restart();
  mRate = kFirstRate;
  mReadyNs = 0;
  mLine.clear();
}

void TextCamera::Hear(std::uint8_t aByte, std::uint64_t aNowNs, const Speaker& aSpeak) {
  if (aByte != kEnd) {
    // One byte beyond the most shows that the line is too long.
    if (mLine.size() <= kMostLineBytes)
      mLine += static_cast<char>(aByte);
    return;
  }
  const std::string line = std::exchange(mLine, {});
  std::string answer = Answer(line, aNowNs);
  const std::uint64_t workNs = answer == kDone ? mCamera.pendingMs * kNanosecondsPerMillisecond : 0;
  mReadyNs = std::max(mReadyNs, aNowNs) + workNs;
  if (mCamera.hasCheckedAnswers)
    answer += MakeCheck(answer);
  CameraAnswer spoken{.bytes = {answer.begin(), answer.end()}, .dueNs = mReadyNs};
  spoken.bytes.push_back(kEnd);
  aSpeak(std::move(spoken));
}

std::string TextCamera::Answer(std::string_view aLine, std::uint64_t aNowNs) {
  if (aLine.size() > kMostLineBytes || aLine.size() <= kCheckBytes)
    return std::string(kNoCommand);
  const std::string_view command = aLine.substr(0, aLine.size() - kCheckBytes);
  if (aLine.substr(command.size()) != MakeCheck(command))
    return std::string(kBadChecksum);
  if (command.ends_with('?'))
    return Ask(command.substr(0, command.size() - 1), aNowNs);
  const std::size_t equals = command.find('=');
  return equals == std::string_view::npos ? std::string(kNoCommand)
                                          : Set(command.substr(0, equals), command.substr(equals + 1));
}

const Feature* TextCamera::Find(std::string_view aName) const {
  const std::vector<Feature>& features = mMemory.GetFeatures().List();
  const auto found =
      std::ranges::find_if(features, [&](const Feature& aFeature) { return IsSame(aFeature.name, aName); });
  return found == features.end() ? nullptr : &*found;
}

std::string TextCamera::Ask(std::string_view aName, std::uint64_t aNowNs) {
  if (IsSame(aName, kIdentity))
    return mMemory.GetText(clregister::kManufacturerName) + "," + mMemory.GetText(clregister::kModelName) + "," +
           mMemory.GetText(clregister::kSerialNumber);
  if (IsSame(aName, kRate))
    return std::to_string(mRate);
  const Feature* const feature = Find(aName);
  if (!feature)
    return std::string(kUnknown);
  if (feature->access == RegisterAccess::WriteOnly)
    return std::string(kOnlyWritten);
  CLCameraMemory::Bytes value(feature->length);
  (void)mMemory.Read(feature->address, value, aNowNs); // Brings what changes by itself up to date.
  return Format(*feature);
}

std::string TextCamera::Format(const Feature& aFeature) const {
  if (aFeature.kind == FeatureKind::Text)
    return mMemory.GetText(aFeature.address);
  if (aFeature.kind == FeatureKind::Float)
    return FormatFloat(mMemory.GetFloat(aFeature.address));
  const std::uint32_t value = mMemory.GetInteger(aFeature.address);
  if (aFeature.kind != FeatureKind::Enumeration)
    return std::to_string(value);
  const std::vector<FeatureEntry> entries = mMemory.GetFeatures().ListEntries(aFeature);
  return std::string(std::ranges::find(entries, value, &FeatureEntry::value)->name);
}

std::string TextCamera::Set(std::string_view aName, std::string_view aValue) {
  if (IsSame(aName, kRate))
    return SetRate(aValue);
  const Feature* const feature = Find(aName);
  if (!feature)
    return std::string(kUnknown);
  if (feature->access == RegisterAccess::ReadOnly)
    return std::string(kOnlyRead);
  const std::optional<CLCameraMemory::Bytes> value = Parse(*feature, aValue);
  const bool isDone = value && mMemory.Write(feature->address, *value) == CLAccess::Done;
  return std::string(isDone ? kDone : kBadValue);
}

std::string TextCamera::SetRate(std::string_view aValue) {
  const std::optional<std::uint32_t> rate = ParseNumber<std::uint32_t>(aValue);
  if (!rate || std::ranges::find(mCamera.rates, *rate) == mCamera.rates.end())
    return std::string(kBadValue);
  mRate = *rate; // The answer still goes out at the former one.
  return std::string(kDone);
}

std::optional<CLCameraMemory::Bytes> TextCamera::Parse(const Feature& aFeature, std::string_view aValue) const {
  CLCameraMemory::Bytes bytes(aFeature.length);
  if (aFeature.kind == FeatureKind::Text) {
    bytes.assign(aValue.begin(), aValue.end());
    bytes.push_back(0);
    if (bytes.size() > aFeature.length)
      bytes.pop_back();
    return bytes;
  }
  if (aFeature.kind == FeatureKind::Float) {
    const std::optional<double> value = ParseNumber<double>(aValue);
    EncodeFloat(value.value_or(0), bytes.data());
    return value ? std::optional(bytes) : std::nullopt;
  }
  std::optional<std::uint32_t> value = ParseNumber<std::uint32_t>(aValue);
  if (aFeature.kind == FeatureKind::Enumeration) {
    const std::vector<FeatureEntry> entries = mMemory.GetFeatures().ListEntries(aFeature);
    const auto entry =
        std::ranges::find_if(entries, [&](const FeatureEntry& aEntry) { return IsSame(aEntry.name, aValue); });
    value = entry == entries.end() ? std::nullopt : std::optional(entry->value);
  }
  EncodeInteger(value.value_or(0), bytes.data());
  return value ? std::optional(bytes) : std::nullopt;
}

} // namespace krtransport
