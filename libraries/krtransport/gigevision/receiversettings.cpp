#include "gigevision/receiversettings.h"

#include "gigevision/receivelimit.h"

#include <utility>

namespace krtransport {

namespace {

using krsystem::HostFeature;
using krsystem::HostFeatureEntry;
using krsystem::HostFeatureInfo;
using krsystem::HostFeatureKind;
using krsystem::MakeSetFeature;
using krsystem::MakeShownFeature;

constexpr std::string_view kReceiver = "StreamReceiver";
constexpr std::int64_t kPercent = 100;
constexpr std::int64_t kMinSocketBytes = 64 << 10;
constexpr std::int64_t kMaxSocketBytes = 1 << 30;

// How a property of Aravis' holds the setting's number.
enum class PropertyKind { Choice, Percentage, Number };

struct LiveSetting {
  HostFeatureInfo info;
  const char* property;
  PropertyKind kind;
  std::int64_t start;
};

// clang-format off
constexpr std::array<LiveSetting, ReceiverSettings::kLiveSettings> kLive = {{
    {{.name = "StreamPacketResendEnable", .category = kReceiver, .kind = HostFeatureKind::Boolean,
      .tip = "Whether packets that are missing are asked for again. Without it a frame with a lost packet stays "
             "incomplete, and is handed over sooner."},
     "packet-resend", PropertyKind::Choice, 1},
    {{.name = "StreamPacketResendRatio", .category = kReceiver,
      .tip = "The most packets of one frame that are asked for again, as a share of all its packets. A frame that "
             "lacks more is given up, so that the requests do not crowd out the frames behind it.",
      .maximum = 200, .unit = "%"},
     "packet-request-ratio", PropertyKind::Percentage, 25},
    {{.name = "StreamInitialPacketTimeout", .category = kReceiver,
      .tip = "How long after a gap was seen its packets are asked for the first time. Longer where packets overtake "
             "each other, as with bonded adapters.",
      .maximum = 10'000'000, .unit = "us"},
     "initial-packet-timeout", PropertyKind::Number, 1000},
    {{.name = "StreamPacketTimeout", .category = kReceiver,
      .tip = "How long an answer is awaited before packets are asked for once more.", .maximum = 10'000'000,
      .unit = "us"},
     "packet-timeout", PropertyKind::Number, 20000},
    {{.name = "StreamFrameRetention", .category = kReceiver,
      .tip = "How long after its last packet a frame waits for those that are missing, before it is handed over "
             "incomplete. Longer than the pause between two packets of a frame.",
      .minimum = 1000, .maximum = 60'000'000, .unit = "us"},
     "frame-retention", PropertyKind::Number, 100000},
}};
// clang-format on

constexpr StreamCounter kCounters[] = {
    {DescribeStreamCounter("StreamReceivedPacketCount", "Packets that came, of whatever frame."), "n_received_packets"},
    {DescribeStreamCounter("StreamResendRequestCount", "Packets that were asked for again."), "n_resend_requests"},
    {DescribeStreamCounter("StreamResendRatioReachedCount",
                           "Frames that were given up because they lacked more packets than the resend ratio allows."),
     "n_resend_ratio_reached"},
    {DescribeStreamCounter("StreamResendRefusedCount",
                           "Frames whose missing packets were not asked for, because the device does not resend."),
     "n_resend_disabled"},
    {DescribeStreamCounter("StreamDuplicatedPacketCount", "Packets that came more than once."), "n_duplicated_packets"},
    {DescribeStreamCounter("StreamErrorPacketCount", "Packets by which the device told of an error."),
     "n_error_packets"},
    {DescribeStreamCounter("StreamIgnoredPacketCount", "Packets that belong to no frame that is still awaited."),
     "n_ignored_packets"},
    {DescribeStreamCounter("StreamTimeoutFrameCount", "Frames whose retention ended with packets missing."),
     "n_timeouts"},
    {DescribeStreamCounter("StreamSizeMismatchFrameCount", "Frames that were larger than their buffer."),
     "n_size_mismatch_errors"},
    {DescribeStreamCounter("StreamTransferredByteCount", "Bytes that came, headers included.", "B"),
     "n_transferred_bytes"},
};

constexpr std::array kModes = {
    HostFeatureEntry{"Automatic", "Two frames, at least 4 MiB.", 0},
    HostFeatureEntry{"Fixed", "What StreamSocketBufferSize says.", 1},
};

void Set(ArvStream& aStream, const LiveSetting& aSetting, std::int64_t aValue) {
  if (aSetting.kind == PropertyKind::Percentage)
    g_object_set(&aStream, aSetting.property, static_cast<gdouble>(aValue) / kPercent, nullptr);
  else if (aSetting.kind == PropertyKind::Choice)
    g_object_set(&aStream, aSetting.property, static_cast<gint>(aValue), nullptr);
  else
    g_object_set(&aStream, aSetting.property, static_cast<guint>(aValue), nullptr);
}

std::int64_t Get(ArvStream& aStream, const LiveSetting& aSetting) {
  if (aSetting.kind == PropertyKind::Percentage) {
    gdouble share = 0;
    g_object_get(&aStream, aSetting.property, &share, nullptr);
    return static_cast<std::int64_t>(share * kPercent + 0.5);
  }
  if (aSetting.kind == PropertyKind::Choice) {
    gint choice = 0;
    g_object_get(&aStream, aSetting.property, &choice, nullptr);
    return choice;
  }
  guint number = 0;
  g_object_get(&aStream, aSetting.property, &number, nullptr);
  return number;
}

} // namespace

ReceiverSettings::ReceiverSettings() : mCounters(kCounters), mSocketBytes(GetSocketBufferSize(0)) {
  for (std::size_t i = 0; i < kLiveSettings; ++i)
    mLive[i] = kLive[i].start;
}

krsystem::HostFeatures ReceiverSettings::List(IStreamUse& aStream) {
  krsystem::HostFeatures features;
  for (std::size_t i = 0; i < kLiveSettings; ++i)
    features.push_back(MakeLiveSetting(aStream, i));
  AddSocketSettings(features);
  mCounters.List(aStream, features);
  return features;
}

// Stored first: whoever opens a stream meanwhile applies what is stored once others can use the stream.
HostFeature ReceiverSettings::MakeLiveSetting(IStreamUse& aStream, std::size_t aIndex) {
  const LiveSetting& setting = kLive[aIndex];
  const auto get = [this, &aStream, &setting, aIndex] {
    std::int64_t value = 0;
    if (aStream.Use([&](ArvStream& aUsed) { value = Get(aUsed, setting); }))
      return value;
    const std::lock_guard lock(mMutex);
    return mLive[aIndex];
  };
  const auto set = [this, &aStream, &setting, aIndex](std::int64_t aValue) {
    {
      const std::lock_guard lock(mMutex);
      mLive[aIndex] = aValue;
    }
    // Where there is no stream the next one gets it.
    static_cast<void>(aStream.Use([&](ArvStream& aUsed) { Set(aUsed, setting, aValue); }));
    return KrResult();
  };
  return MakeSetFeature(setting.info, get, set);
}

void ReceiverSettings::AddSocketSettings(krsystem::HostFeatures& aFeatures) {
  const auto get = [this](auto aMember) {
    return [this, aMember] {
      const std::lock_guard lock(mMutex);
      return this->*aMember;
    };
  };
  const auto set = [this](auto aMember) {
    return [this, aMember](auto aValue) {
      const std::lock_guard lock(mMutex);
      this->*aMember = aValue;
      return KrResult();
    };
  };
  aFeatures.push_back(MakeSetFeature({.name = "StreamSocketBufferMode",
                                      .category = kReceiver,
                                      .kind = HostFeatureKind::Enumeration,
                                      .tip = "How large the system's buffer for packets is that wait to be received.",
                                      .isLocked = true,
                                      .entries = kModes},
                                     get(&ReceiverSettings::mIsSocketSizeFixed),
                                     set(&ReceiverSettings::mIsSocketSizeFixed)));
  aFeatures.push_back(
      MakeSetFeature({.name = "StreamSocketBufferSize",
                      .category = kReceiver,
                      .tip = "The bytes of that buffer in the mode Fixed. The system gives no more than "
                             "its limit.",
                      .isLocked = true,
                      .minimum = kMinSocketBytes,
                      .maximum = kMaxSocketBytes,
                      .unit = "B"},
                     get(&ReceiverSettings::mSocketBytes), set(&ReceiverSettings::mSocketBytes)));
  aFeatures.push_back(MakeShownFeature({.name = "StreamSocketBufferLimit",
                                        .category = kReceiver,
                                        .tip = "The largest buffer that the system gives (net.core.rmem_max); 0 where "
                                               "it does not say.",
                                        .pollingMs = 5000,
                                        .unit = "B"},
                                       [] { return ReadReceiveLimit().value_or(0); }));
  aFeatures.push_back(MakeSetFeature({.name = "StreamPacketSocketEnable",
                                      .category = kReceiver,
                                      .kind = HostFeatureKind::Boolean,
                                      .tip = "Whether packets are taken past the kernel's network stack, which costs "
                                             "less. Has effect where this process has the right to (CAP_NET_RAW).",
                                      .isLocked = true},
                                     get(&ReceiverSettings::mIsPacketSocketEnabled),
                                     set(&ReceiverSettings::mIsPacketSocketEnabled)));
}

void ReceiverSettings::OnStreamOpened(ArvStream& aStream) {
  std::array<std::int64_t, kLiveSettings> live{};
  {
    const std::lock_guard lock(mMutex);
    live = mLive;
  }
  mCounters.Clear();
  for (std::size_t i = 0; i < kLiveSettings; ++i)
    Set(aStream, kLive[i], live[i]);
}

std::uint32_t ReceiverSettings::GetSocketBytes(std::uint64_t aPayloadBytes) const {
  const std::lock_guard lock(mMutex);
  return mIsSocketSizeFixed ? mSocketBytes : GetSocketBufferSize(aPayloadBytes);
}

bool ReceiverSettings::IsPacketSocketEnabled() const {
  const std::lock_guard lock(mMutex);
  return mIsPacketSocketEnabled;
}

} // namespace krtransport
