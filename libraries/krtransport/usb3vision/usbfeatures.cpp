#include "usb3vision/usbfeatures.h"

namespace krtransport {

namespace {

using krsystem::HostFeature;
using krsystem::HostFeatureEntry;
using krsystem::HostFeatureInfo;
using krsystem::HostFeatureKind;
using krsystem::MakeSetFeature;
using krsystem::MakeShownFeature;

constexpr std::string_view kLink = "USBConnection";
constexpr std::uint32_t kPollingMs = 500;
constexpr std::uint32_t kKilobitsPerMegabit = 1000;

constexpr std::array kModes = {
    HostFeatureEntry{"Synchronous", "One transfer after the other.", 0},
    HostFeatureEntry{"Asynchronous", "Several transfers beside each other, which leaves no pauses on the bus.", 1},
};

struct Counter {
  HostFeatureInfo info;
  const char* figure;
};

constexpr HostFeatureInfo DescribeCount(std::string_view aName, std::string_view aTip, std::string_view aUnit = {}) {
  return {.name = aName,
          .category = "StreamStatistics",
          .tip = aTip,
          .isCounter = true,
          .pollingMs = kPollingMs,
          .unit = aUnit};
}

constexpr std::array<Counter, UsbTransferSettings::kCounters> kCounterRows = {{
    {DescribeCount("StreamFailedTransferFrameCount", "Frames of which a transfer failed."), "n_failures"},
    {DescribeCount("StreamTransferredByteCount", "Bytes that came, leaders and trailers included.", "B"),
     "n_transferred_bytes"},
    {DescribeCount("StreamIgnoredByteCount", "Bytes that came without a buffer for them.", "B"), "n_ignored_bytes"},
}};

HostFeature MakeText(std::string_view aName, std::string_view aTip, const std::string& aText) {
  return MakeShownFeature({.name = aName, .category = kLink, .kind = HostFeatureKind::Text, .tip = aTip},
                          [text = aText] { return text; });
}

HostFeature MakeNumber(const HostFeatureInfo& aInfo, std::uint64_t aNumber) {
  return MakeShownFeature(aInfo, [aNumber] { return aNumber; });
}

} // namespace

krsystem::HostFeatures UsbTransferSettings::List(IStreamUse& aStream) {
  krsystem::HostFeatures features;
  features.push_back(MakeSetFeature(
      {.name = "StreamUSBMode",
       .category = "StreamReceiver",
       .kind = HostFeatureKind::Enumeration,
       .tip = "How the transfers of frames are asked for.",
       .isLocked = true,
       .entries = kModes},
      [this] { return mIsAsynchronous.load(); },
      [this](bool aIsAsynchronous) {
        mIsAsynchronous = aIsAsynchronous;
        return KrResult();
      }));
  for (std::size_t i = 0; i < kCounters; ++i) {
    features.push_back(MakeShownFeature(kCounterRows[i].info, [this, &aStream, i] {
      std::uint64_t count = 0;
      if (aStream.Use(
              [&](ArvStream& aUsed) { count = arv_stream_get_info_uint64_by_name(&aUsed, kCounterRows[i].figure); }))
        return count;
      const std::lock_guard lock(mMutex);
      return mLastCounts[i];
    }));
  }
  return features;
}

void UsbTransferSettings::OnStreamEnding(ArvStream& aStream) {
  std::array<std::uint64_t, kCounters> counts{};
  for (std::size_t i = 0; i < kCounters; ++i)
    counts[i] = arv_stream_get_info_uint64_by_name(&aStream, kCounterRows[i].figure);
  const std::lock_guard lock(mMutex);
  mLastCounts = counts;
}

krsystem::HostFeatures ListUsbLinkFeatures(const UsbDevice& aDevice, std::size_t aMaxRegisterBytes) {
  return {
      MakeText("LinkUSBPort", "Where the device is plugged in, as the kernel names it.", aDevice.port),
      MakeText("LinkUSBVersion", "The version of the USB standard that the device is made for.", aDevice.version),
      MakeNumber({.name = "LinkUSBSpeed",
                  .category = kLink,
                  .tip =
                      "The speed at which the device is connected. A camera for USB 3 at 480 Mbit/s hangs on a port or "
                      "cable of USB 2.",
                  .visibility = "Beginner",
                  .unit = "Mbit/s"},
                 aDevice.speedKbit / kKilobitsPerMegabit),
      MakeNumber({.name = "LinkUSBMaxPower",
                  .category = kLink,
                  .tip = "What the device takes from the bus at most.",
                  .unit = "mA"},
                 aDevice.maxPowerMilliampere),
      MakeNumber({.name = "LinkMaxRegisterAccess",
                  .category = kLink,
                  .tip = "The most bytes of registers that one command reads or writes.",
                  .unit = "B"},
                 aMaxRegisterBytes),
  };
}

} // namespace krtransport
