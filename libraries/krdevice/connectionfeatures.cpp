#include "connectionfeatures.h"

#include "gevfeatures.h"
#include "technologynumbers.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace krdevice {

namespace {

using krsystem::HostFeature;
using krsystem::HostFeatureEntry;
using krsystem::HostFeatureInfo;
using krsystem::HostFeatureKind;
using krsystem::HostFeatures;
using krsystem::MakeSetFeature;
using krsystem::MakeShownFeature;

constexpr std::string_view kDevice = "DeviceInformation";
constexpr std::string_view kLink = "DeviceLink";
constexpr std::string_view kCounts = "LinkStatistics";
constexpr std::string_view kLockName = "LinkIsStreaming";
constexpr std::uint32_t kPollingMs = 1000;
constexpr double kMicrosecondsPerMillisecond = 1000;
constexpr double kNanosecondsPerMicrosecond = 1000;

constexpr std::array kTypes = MakeTechnologyEntries(
    "Ethernet, by the GigE Vision standard.", "USB, by the USB3 Vision standard.", "By a protocol of its maker's.");
constexpr std::array kAccess = {
    HostFeatureEntry{"OpenReadWrite", "This application controls the device.", 0},
    HostFeatureEntry{"OpenReadOnly", "This application looks at the device only.", 1},
    HostFeatureEntry{"NoAccess", "The device was lost; it has to be opened anew.", 2},
};

std::int64_t GetAccessNumber(const ConnectionParts& aParts) {
  if (!aParts.link.IsConnected())
    return 2;
  return aParts.access == KrDeviceAccess::Monitor ? 1 : 0;
}

HostFeature MakeText(std::string_view aName, std::string_view aTip, const KrString& aText) {
  return MakeShownFeature({.name = aName,
                           .category = kDevice,
                           .kind = HostFeatureKind::Text,
                           .tip = aTip,
                           .visibility = "Beginner",
                           .isStandard = true},
                          [text = aText] { return text; });
}

HostFeatures ListIdentity(const ConnectionParts& aParts) {
  const krsystem::DeviceFields& fields = aParts.fields;
  HostFeatures features = {
      MakeText("DeviceID", "Names the device among all.", fields.uniqueID),
      MakeText("DeviceDisplayName", "The device's name for people.", fields.displayID),
      MakeText("DeviceVendorName", "Who made the device, as discovery found it.", fields.vendorName),
      MakeText("DeviceModelName", "The device's model, as discovery found it.", fields.modelName),
      MakeText("DeviceSerialNumber", "The device's serial number, as discovery found it.", fields.serialNumber),
      MakeText("DeviceUserID", "The name that a user gave the device, as discovery found it.", fields.userDefinedName),
  };
  features.push_back(MakeShownFeature({.name = "DeviceType",
                                       .category = kDevice,
                                       .kind = HostFeatureKind::Enumeration,
                                       .tip = "By which technology the device is connected.",
                                       .visibility = "Beginner",
                                       .isStandard = true,
                                       .entries = kTypes},
                                      [type = aParts.type] { return GetTechnologyNumber(type); }));
  features.push_back(MakeShownFeature({.name = "DeviceAccessStatus",
                                       .category = kDevice,
                                       .kind = HostFeatureKind::Enumeration,
                                       .tip = "What this application may do with the device at the moment.",
                                       .visibility = "Beginner",
                                       .isStandard = true,
                                       .pollingMs = kPollingMs,
                                       .entries = kAccess},
                                      [parts = aParts] { return GetAccessNumber(parts); }));
  return features;
}

HostFeatures ListLink(const ConnectionParts& aParts) {
  HostFeatures features;
  features.push_back(MakeShownFeature({.name = kLockName,
                                       .category = kLink,
                                       .kind = HostFeatureKind::Boolean,
                                       .tip = "Whether a stream of this device runs. Settings that its packets depend "
                                              "on cannot be changed meanwhile.",
                                       .pollingMs = kPollingMs},
                                      [&lock = aParts.lock] { return lock.HasStreams(); }));
  features.push_back(MakeSetFeature(
      {.name = "LinkCommandTimeout",
       .category = kLink,
       .kind = HostFeatureKind::Float,
       .tip = "How long one access to a register of the device may take before it counts as not answered.",
       .isStandard = true,
       .minimum = 10000,
       .maximum = 60000000,
       .unit = "us"},
      [&parameters = aParts.parameters] { return parameters.GetTimeoutMs() * kMicrosecondsPerMillisecond; },
      [&parameters = aParts.parameters](double aMicroseconds) {
        parameters.SetTimeoutMs(static_cast<std::uint32_t>(aMicroseconds / kMicrosecondsPerMillisecond));
        return KrResult();
      }));
  return features;
}

constexpr HostFeatureInfo DescribeCount(std::string_view aName, std::string_view aTip, bool aIsCounter = true) {
  return {.name = aName, .category = kCounts, .tip = aTip, .isCounter = aIsCounter, .pollingMs = kPollingMs};
}

constexpr std::pair<HostFeatureInfo, std::uint64_t AccessCounts::*> kCounters[] = {
    {DescribeCount("LinkReadCount", "Reads of the device's registers since it was opened."), &AccessCounts::reads},
    {DescribeCount("LinkWriteCount", "Writes of the device's registers since it was opened."), &AccessCounts::writes},
    {DescribeCount("LinkByteCount", "Bytes of registers that were read and written."), &AccessCounts::bytes},
    {DescribeCount("LinkTimeoutCount", "Accesses that the device left without an answer in time."),
     &AccessCounts::timeouts},
    {DescribeCount("LinkFailureCount", "Accesses that failed for another reason, mostly because the device refused."),
     &AccessCounts::failures},
};

HostFeature MakeTime(std::string_view aName, std::string_view aTip, std::function<double()> aGetNs) {
  HostFeatureInfo info = DescribeCount(aName, aTip, false);
  info.kind = HostFeatureKind::Float;
  info.unit = "us";
  return MakeShownFeature(info, [getNs = std::move(aGetNs)] { return getNs() / kNanosecondsPerMicrosecond; });
}

HostFeatures ListCounts(const ConnectionParts& aParts) {
  HostFeatures features;
  for (const auto& [info, count] : kCounters)
    features.push_back(
        MakeShownFeature(info, [&port = aParts.port, count = count] { return port.GetCounts().*count; }));
  features.push_back(
      MakeTime("LinkMeanAccessTime", "How long an access that succeeded took on average.", [&port = aParts.port] {
        const AccessCounts counts = port.GetCounts();
        return static_cast<double>(counts.succeededNs) /
               static_cast<double>(std::max<std::uint64_t>(counts.succeeded, 1));
      }));
  features.push_back(MakeTime("LinkLongestAccessTime", "How long the longest access that succeeded took.",
                              [&port = aParts.port] { return static_cast<double>(port.GetCounts().longestNs); }));
  return features;
}

void Append(HostFeatures& aAll, HostFeatures aMore) {
  std::ranges::move(aMore, std::back_inserter(aAll));
}

} // namespace

FeatureModule GetConnectionModule() {
  return {
      .model = "Connection", .tip = "the connection to a device", .lock = kLockName, .reset = "LinkStatisticsReset"};
}

HostFeatures ListConnectionFeatures(const ConnectionParts& aParts) {
  HostFeatures features = ListIdentity(aParts);
  Append(features, ListLink(aParts));
  Append(features, aParts.link.ListFeatures());
  if (aParts.type == KrDeviceInfoType::GEV)
    Append(features,
           ListGevFeatures(aParts.port, aParts.access == KrDeviceAccess::Monitor, [&parameters = aParts.parameters] {
             if (KrGenParameterArray* const array = parameters.Find())
               array->InvalidateCache();
           }));
  Append(features, ListCounts(aParts));
  return features;
}

} // namespace krdevice
