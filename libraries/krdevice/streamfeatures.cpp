#include "streamfeatures.h"

#include "technologynumbers.h"

#include <array>
#include <string>
#include <utility>

namespace krdevice {

namespace {

using krsystem::HostFeatureInfo;
using krsystem::HostFeatureKind;
using krsystem::HostFeatures;
using krsystem::MakeSetFeature;
using krsystem::MakeShownFeature;

constexpr std::string_view kStream = "StreamInformation";
constexpr std::string_view kBuffers = "BufferHandlingControl";
constexpr std::string_view kCounts = "StreamStatistics";
constexpr std::string_view kLockName = "StreamIsGrabbing";
constexpr std::uint32_t kPollingMs = 500;

constexpr std::array kTypes =
    MakeTechnologyEntries("Packets on Ethernet, by the GigE Vision standard.",
                          "Transfers on USB, by the USB3 Vision standard.", "By a protocol of the device's maker.");

HostFeatures ListIdentity(IStreamState& aState, const KrDevice& aDevice, std::uint32_t aChannel) {
  HostFeatures features;
  features.push_back(MakeShownFeature({.name = "StreamID",
                                       .category = kStream,
                                       .kind = HostFeatureKind::Text,
                                       .tip = "Names the stream: its device and the number of its channel.",
                                       .visibility = "Beginner",
                                       .isStandard = true},
                                      [id = aDevice.GetUniqueID() + "/" + std::to_string(aChannel)] { return id; }));
  features.push_back(MakeShownFeature({.name = "StreamType",
                                       .category = kStream,
                                       .kind = HostFeatureKind::Enumeration,
                                       .tip = "By which technology frames come.",
                                       .visibility = "Beginner",
                                       .isStandard = true,
                                       .entries = kTypes},
                                      [type = aDevice.GetType()] { return GetTechnologyNumber(type); }));
  features.push_back(MakeShownFeature({.name = kLockName,
                                       .category = kStream,
                                       .kind = HostFeatureKind::Boolean,
                                       .tip = "Whether the stream runs. Some settings cannot be changed meanwhile.",
                                       .visibility = "Beginner",
                                       .isStandard = true,
                                       .pollingMs = kPollingMs},
                                      [&aState] { return aState.IsGrabbing(); }));
  return features;
}

HostFeatureInfo DescribeBuffers(std::string_view aName, std::string_view aTip, bool aIsStandard) {
  return {.name = aName, .category = kBuffers, .tip = aTip, .isStandard = aIsStandard, .pollingMs = kPollingMs};
}

HostFeatures ListBuffers(IStreamState& aState) {
  HostFeatures features;
  features.push_back(MakeSetFeature(
      {.name = "StreamBufferCountManual",
       .category = kBuffers,
       .tip = "How many buffers the stream has from its next start on. More of them "
              "bridge longer pauses of the application, and take more memory.",
       .visibility = "Beginner",
       .isStandard = true,
       .isLocked = true,
       .minimum = kFewestBuffers,
       .maximum = kMostBuffers},
      [&aState] { return aState.GetBufferCount(); },
      [&aState](std::size_t aCount) {
        aState.SetBufferCount(aCount);
        return KrResult();
      }));
  features.push_back(
      MakeShownFeature(DescribeBuffers("StreamAnnouncedBufferCount", "How many buffers the running stream has.", true),
                       [&aState] { return aState.CountAnnounced(); }));
  features.push_back(MakeShownFeature(
      DescribeBuffers("StreamInputBufferCount", "Buffers that wait to be filled, or are being filled.", true),
      [&aState] { return aState.CountSourceBuffers().empty; }));
  features.push_back(
      MakeShownFeature(DescribeBuffers("StreamOutputBufferCount",
                                       "Filled buffers that the application has not taken yet. When it grows, the "
                                       "application is slower than the camera.",
                                       true),
                       [&aState] { return aState.CountSourceBuffers().filled; }));
  features.push_back(MakeShownFeature(
      DescribeBuffers("StreamLentBufferCount", "Buffers that the application has taken and not given back yet.", false),
      [&aState] { return aState.CountLent(); }));
  HostFeatureInfo payload =
      DescribeBuffers("StreamBufferSize", "The bytes of one buffer of the running stream.", false);
  payload.unit = "B";
  features.push_back(MakeShownFeature(payload, [&aState] { return aState.GetPayloadBytes(); }));
  return features;
}

constexpr HostFeatureInfo DescribeCount(std::string_view aName, std::string_view aTip, bool aIsStandard = false,
                                        std::string_view aUnit = {}) {
  return {.name = aName,
          .category = kCounts,
          .tip = aTip,
          .visibility = "Beginner",
          .isStandard = aIsStandard,
          .isCounter = true,
          .pollingMs = kPollingMs,
          .unit = aUnit};
}

struct Counter {
  HostFeatureInfo info;
  std::uint64_t (*get)(const KrStreamStatistics&);
};

constexpr Counter kCounters[] = {
    {DescribeCount("StreamStartedFrameCount", "Frames of which at least a part came, whatever became of them.", true),
     [](const KrStreamStatistics& aCounts) { return aCounts.received + aCounts.incomplete + aCounts.discarded; }},
    {DescribeCount("StreamDeliveredFrameCount", "Frames that were handed over, whole or not.", true),
     [](const KrStreamStatistics& aCounts) { return aCounts.received + aCounts.incomplete; }},
    {DescribeCount("StreamLostFrameCount",
                   "Frames that were dropped because no buffer was free: the application gives them back too slowly, "
                   "or there are too few.",
                   true),
     [](const KrStreamStatistics& aCounts) { return aCounts.discarded; }},
    {DescribeCount("StreamIncompleteFrameCount", "Frames of which a part never came."),
     [](const KrStreamStatistics& aCounts) { return aCounts.incomplete; }},
    {DescribeCount("StreamMissingFrameCount",
                   "Frames of which nothing came, as the numbers show that the frames retrieved skip."),
     [](const KrStreamStatistics& aCounts) { return aCounts.missingFrames; }},
    {DescribeCount("StreamShownFrameCount", "Frames that the application says that it has shown."),
     [](const KrStreamStatistics& aCounts) { return aCounts.shown; }},
    {DescribeCount("StreamMissingPacketCount",
                   "Packets that did not come in time, whether or not a resend brought them."),
     [](const KrStreamStatistics& aCounts) { return aCounts.missingPackets; }},
    {DescribeCount("StreamResentPacketCount", "Packets that came after they were asked for again."),
     [](const KrStreamStatistics& aCounts) { return aCounts.resentPackets; }},
    {DescribeCount("StreamDeliveredByteCount", "Bytes of the frames that came whole.", false, "B"),
     [](const KrStreamStatistics& aCounts) { return aCounts.bytes; }},
};

} // namespace

FeatureModule GetStreamModule() {
  return {.model = "Stream", .tip = "a stream", .lock = kLockName, .reset = "StreamStatisticsReset"};
}

HostFeatures ListStreamFeatures(IStreamState& aState, const KrDevice& aDevice, std::uint32_t aChannel) {
  HostFeatures features = ListIdentity(aState, aDevice, aChannel);
  for (krsystem::HostFeature& feature : ListBuffers(aState))
    features.push_back(std::move(feature));
  for (const Counter& counter : kCounters)
    features.push_back(
        MakeShownFeature(counter.info, [&aState, get = counter.get] { return get(aState.CountFrames()); }));
  return features;
}

} // namespace krdevice
