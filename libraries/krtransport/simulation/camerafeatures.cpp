#include "simulation/camerafeatures.h"

#include "simulation/cameraregisters.h"

#include <algorithm>
#include <array>
#include <utility>

namespace krtransport {

using namespace cameraregister;

namespace {

constexpr std::string_view kCategory = "SerialPortControl";
constexpr std::string_view kSelector = "BulkSelector";

bool IsBulkPort(const LabSerialPort& aPort) {
  return aPort.number >= kFirstBulkPort;
}

// What belongs to the selected source of a frame grabber, and what follows from it.
constexpr std::string_view kSourceSelectorName = "SourceSelector";
constexpr std::array<std::string_view, 5> kOfSource = {"Width", "Height", "OffsetX", "OffsetY", "PixelFormat"};
constexpr std::string_view kPayloadSizeName = "PayloadSize";

} // namespace

CameraFeatures::CameraFeatures(const LabCamera& aCamera)
    : mFeatures(ListFeatures().begin(), ListFeatures().end()), mPixelFormats(aCamera.pixelFormats),
      mHasSerialPorts(!aCamera.serialPorts.empty()) {
  if (aCamera.hasWideTexts)
    WidenTexts();
  for (const LabSerialPort& port : aCamera.serialPorts) {
    if (!IsBulkPort(port))
      AddUart(port);
  }
  if (std::ranges::any_of(aCamera.serialPorts, IsBulkPort))
    AddBulkPorts(aCamera);
  AddFrameGrabber(aCamera.frameGrabber);
}

CameraFeatures::CameraFeatures(std::span<const Feature> aFeatures, std::vector<KrPixelType> aPixelFormats)
    : mFeatures(aFeatures.begin(), aFeatures.end()), mPixelFormats(std::move(aPixelFormats)), mHasSerialPorts(false) {}

void CameraFeatures::WidenTexts() {
  std::uint64_t address = kWideTexts;
  for (Feature& feature : mFeatures) {
    if (feature.kind != FeatureKind::Text)
      continue;
    feature.address = address;
    feature.length = kWideTextBytes;
    address += kWideTextBytes;
  }
}

const Feature* CameraFeatures::Find(std::string_view aName) const {
  const auto found = std::ranges::find(mFeatures, aName, &Feature::name);
  return found == mFeatures.end() ? nullptr : &*found;
}

std::vector<std::uint32_t> CameraFeatures::ListPositions(const Feature& aFeature) const {
  if (aFeature.selector.empty())
    return {0};
  std::vector<std::uint32_t> positions;
  for (const FeatureEntry& entry : Find(aFeature.selector)->entries)
    positions.push_back(entry.value);
  return positions;
}

std::vector<FeatureEntry> CameraFeatures::ListEntries(const Feature& aFeature) const {
  return krtransport::ListEntries(aFeature, mPixelFormats);
}

std::string_view CameraFeatures::Keep(std::string aText) {
  return mTexts.emplace_back(std::move(aText));
}

std::span<const FeatureEntry> CameraFeatures::Keep(Entries aEntries) {
  return mEntries.emplace_back(std::move(aEntries));
}

// "Baud9600", whose value is the rate, or "By5000", whose value divides the clock to the rate.
CameraFeatures::Entries CameraFeatures::MakeRates(const LabSerialPort& aPort, std::uint32_t aClock) {
  Entries entries;
  for (const std::uint32_t rate : aPort.rates) {
    const std::uint32_t value = aClock > 0 ? aClock / rate : rate;
    entries.push_back({.name = Keep((aClock > 0 ? "By" : "Baud") + std::to_string(value)),
                       .tip = Keep(std::to_string(rate) + " bits a second."),
                       .value = value});
  }
  return entries;
}

void CameraFeatures::AddUart(const LabSerialPort& aPort) {
  const std::string port = kSerialPortNames[aPort.number];
  const std::string prefix = "Uart" + std::to_string(aPort.number - kFirstUart);
  const std::uint64_t offset = std::uint64_t{aPort.number - kFirstUart} * kUartStride;
  mFeatures.push_back({.name = Keep(prefix + "BaudRate"),
                       .category = kCategory,
                       .kind = FeatureKind::Enumeration,
                       .address = kUartBaudRate + offset,
                       .tip = Keep("The speed of the port " + port + "."),
                       .isStandard = false,
                       .start = static_cast<double>(aPort.rate),
                       .entries = Keep(MakeRates(aPort, 0))});
  mFeatures.push_back({.name = Keep(prefix + "Loopback"),
                       .category = kCategory,
                       .kind = FeatureKind::Boolean,
                       .address = kUartLoopback + offset,
                       .tip = Keep("Whether what is sent to the port " + port + " comes back, and does not go out."),
                       .isStandard = false});
}

void CameraFeatures::AddBulkPorts(const LabCamera& aCamera) {
  Entries ports;
  Entries rates;
  for (const LabSerialPort& port : aCamera.serialPorts) {
    if (!IsBulkPort(port))
      continue;
    const std::uint32_t position = port.number - kFirstBulkPort;
    ports.push_back({.name = kSerialPortNames[port.number], .tip = {}, .value = position});
    for (FeatureEntry rate : MakeRates(port, aCamera.bulkClock)) {
      rate.positions = 0;
      const auto found = std::ranges::find(rates, rate.value, &FeatureEntry::value);
      (found == rates.end() ? rates.emplace_back(rate) : *found).positions |= 1U << position;
    }
  }
  const bool hasClock = aCamera.bulkClock > 0;
  const std::uint32_t first = ports.front().value;
  mFeatures.push_back({.name = kSelector,
                       .category = kCategory,
                       .kind = FeatureKind::Enumeration,
                       .address = kBulkSelector,
                       .tip = "The bulk port that the other features set up.",
                       .isStandard = false,
                       .start = static_cast<double>(first),
                       .entries = Keep(std::move(ports))});
  mFeatures.push_back({.name = "BulkLoopback",
                       .category = kCategory,
                       .kind = FeatureKind::Boolean,
                       .address = kBulkLoopback,
                       .tip = "Whether what is sent to the bulk port comes back, and does not go out.",
                       .isStandard = false,
                       .selector = kSelector,
                       .stride = kBulkStride});
  mFeatures.push_back({.name = hasClock ? "BulkSystemClockDivider" : "BulkBaudRate",
                       .category = kCategory,
                       .kind = FeatureKind::Enumeration,
                       .address = hasClock ? kBulkSystemClockDivider : kBulkBaudRate,
                       .tip = hasClock ? "What divides the camera's clock to the speed of the bulk port."
                                       : "The speed of the bulk port.",
                       .isStandard = false,
                       .entries = Keep(std::move(rates)),
                       .selector = kSelector,
                       .stride = kBulkStride});
}

void CameraFeatures::AddFrameGrabber(const LabFrameGrabber& aGrabber) {
  if (aGrabber.sources > 0)
    AddSources(aGrabber.sources);
  if (aGrabber.pocl != LabPocl::None)
    mFeatures.push_back({.name = "PoclEnable",
                         .category = "DeviceControl",
                         .kind = FeatureKind::Boolean,
                         .address = kPoclEnable,
                         .tip = "Whether the cables to the cameras carry power (Power over Camera Link).",
                         .isStandard = false,
                         .start = aGrabber.pocl == LabPocl::On ? 1.0 : 0.0});
}

// All sources share the registers of what belongs to them, which change with the selector.
void CameraFeatures::AddSources(std::uint32_t aSources) {
  Entries sources;
  for (std::uint32_t i = 0; i < aSources; ++i)
    sources.push_back({.name = Keep("Source" + std::to_string(i)), .tip = {}, .value = i});
  for (Feature& feature : mFeatures) {
    const bool isOfSource = std::ranges::find(kOfSource, feature.name) != kOfSource.end();
    if (isOfSource)
      feature.selector = kSourceSelectorName;
    if (!isOfSource && feature.name != kPayloadSizeName)
      continue;
    std::vector<std::string_view>& names =
        mDependencies.emplace_back(feature.dependsOn.begin(), feature.dependsOn.end());
    names.push_back(kSourceSelectorName);
    feature.dependsOn = names;
  }
  const auto first = std::ranges::find(mFeatures, kOfSource.front(), &Feature::name);
  mFeatures.insert(first, {.name = kSourceSelectorName,
                           .category = "ImageFormatControl",
                           .kind = FeatureKind::Enumeration,
                           .address = kSourceSelector,
                           .tip = "The input whose size and pixel format the other features are.",
                           .isLocked = true,
                           .entries = Keep(std::move(sources))});
}

} // namespace krtransport
