#include "usb3vision/usbfeatures.h"

#include <array>

namespace krtransport {

namespace {

using krsystem::HostFeature;
using krsystem::HostFeatureEntry;
using krsystem::HostFeatureInfo;
using krsystem::HostFeatureKind;
using krsystem::MakeSetFeature;
using krsystem::MakeShownFeature;

constexpr std::string_view kLink = "USBConnection";
constexpr std::uint32_t kKilobitsPerMegabit = 1000;

constexpr std::array kModes = {
    HostFeatureEntry{"Synchronous", "One transfer after the other.", 0},
    HostFeatureEntry{"Asynchronous", "Several transfers beside each other, which leaves no pauses on the bus.", 1},
};

constexpr StreamCounter kCounters[] = {
    {DescribeStreamCounter("StreamFailedTransferFrameCount", "Frames of which a transfer failed."), "n_failures"},
    {DescribeStreamCounter("StreamTransferredByteCount", "Bytes that came, leaders and trailers included.", "B"),
     "n_transferred_bytes"},
    {DescribeStreamCounter("StreamIgnoredByteCount", "Bytes that came without a buffer for them.", "B"),
     "n_ignored_bytes"},
};

HostFeature MakeText(std::string_view aName, std::string_view aTip, const std::string& aText) {
  return MakeShownFeature({.name = aName, .category = kLink, .kind = HostFeatureKind::Text, .tip = aTip},
                          [text = aText] { return text; });
}

HostFeature MakeNumber(const HostFeatureInfo& aInfo, std::uint64_t aNumber) {
  return MakeShownFeature(aInfo, [aNumber] { return aNumber; });
}

} // namespace

UsbTransferSettings::UsbTransferSettings() : mCounters(kCounters) {}

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
  mCounters.List(aStream, features);
  return features;
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
