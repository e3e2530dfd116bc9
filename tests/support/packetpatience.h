#pragma once
// A receiver that waits for each packet as long as a busy machine may need. By itself it gives a frame up a tenth of a
// second after the last packet, which may pass before the thread that sends or takes the next one gets a processor;
// a test that counts whole frames must not count those.

#include "parametertext.h"

#include "krdevice/krstream.h"
#include "krsystem/idevicelink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace krtest {

inline constexpr std::int64_t kLongestRetentionUs = 60'000'000;

/// What a receiver does about packets that are missing.
enum class MissingPackets {
  AskedForAgain, ///< Their frame waits for them, and for its retention where they never come.
  GivenUp,       ///< Their frame is handed over when the next one begins.
};

inline auto ListPatience(MissingPackets aMissing, std::int64_t aRetentionUs) {
  return std::array{std::pair{"StreamPacketResendEnable", std::int64_t{aMissing == MissingPackets::AskedForAgain}},
                    std::pair{"StreamFrameRetention", aRetentionUs}};
}

/// Before the source is started.
inline void WaitForPackets(krsystem::IBufferSource& aSource, MissingPackets aMissing = MissingPackets::GivenUp,
                           std::int64_t aRetentionUs = kLongestRetentionUs) {
  const krsystem::HostFeatures features = aSource.ListFeatures();
  for (const auto& [name, value] : ListPatience(aMissing, aRetentionUs)) {
    const auto feature = std::ranges::find(features, name, [](const auto& aEach) { return aEach.info.name; });
    ASSERT_NE(feature, features.end()) << name;
    EXPECT_TRUE(feature->write(value, {}).IsOK()) << name;
  }
}

/// The same of a stream, before it is started; missing packets are given up.
inline void WaitForPackets(KrStream& aStream) {
  KrGenParameterArray* receiver = nullptr;
  ASSERT_TRUE(aStream.GetParameters(receiver).IsOK());
  for (const auto& [name, value] : ListPatience(MissingPackets::GivenUp, kLongestRetentionUs))
    EXPECT_TRUE(SetText(*receiver, name, std::to_string(value)).IsOK()) << name;
}

} // namespace krtest
