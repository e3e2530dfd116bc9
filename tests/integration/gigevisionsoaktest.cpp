// Many small frames as fast as the camera sends them: what grows after the first few hundred would grow for ever.
// A thousand frames by default; KRGUI_SOAK_FRAMES=10000 scripts/with-network.sh
// BUILD/tests/integration/gigevisionsoaktest takes longer.

#include "await.h"
#include "footprint.h"
#include "gigevisionfixture.h"

#include <cstdlib>

namespace {

constexpr std::uint32_t kSmall = 64;
constexpr std::uint32_t kShortestPeriodUs = 1000;
constexpr int kWarmUpFrames = 300;
constexpr int kFrames = 1000;
// More than the allocator's own changes, a quarter of what a frame's bytes lost for each frame would come to.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr std::int64_t kMostGrowthBytes = 256 << 20; // The sanitizers remember what was freed.
#else
constexpr std::int64_t kMostGrowthBytes = 1 << 20;
#endif

int GetFrameCount() {
  const char* text = std::getenv("KRGUI_SOAK_FRAMES");
  return text != nullptr ? std::atoi(text) : kFrames;
}

class GigEVisionSoak : public GigEVisionStreamTest {
protected:
  /// Takes so many whole frames and gives their buffers back; how many there were. Besides them any number of others: a
  /// receiver that gets no time for two frames loses packets, which the camera here does not send again.
  int TakeWholeFrames(int aCount) {
    int whole = 0;
    for (int taken = 0; whole < aCount && taken < 10 * aCount; ++taken) {
      KrBuffer* buffer = Retrieve();
      if (buffer == nullptr)
        break;
      whole += buffer->GetStatus() == KrBufferStatus::Complete ? 1 : 0;
      EXPECT_TRUE(mSource->Queue(buffer).IsOK());
    }
    return whole;
  }
  /// What is held once no more threads are there than before; one that was joined is among the kernel's a little
  /// longer.
  static Footprint MeasureAfter(const Footprint& aBefore) {
    Footprint after;
    EXPECT_TRUE(krtest::Await([&] {
      after = MeasureFootprint();
      return after.threads <= aBefore.threads;
    }));
    return after;
  }
};

TEST_F(GigEVisionSoak, ManySmallFrames_NothingGrows) {
  ASSERT_TRUE(WriteRegister(*mLink, kWidthRegister, kSmall).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kHeightRegister, kSmall).IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kFramePeriodRegister, kShortestPeriodUs).IsOK());
  ASSERT_TRUE(Start(kSmall * kSmall).IsOK());
  ASSERT_EQ(TakeWholeFrames(kWarmUpFrames), kWarmUpFrames);
  const Footprint before = MeasureFootprint();

  const int frames = GetFrameCount();
  EXPECT_EQ(TakeWholeFrames(frames), frames);

  const Footprint after = MeasureAfter(before);
  EXPECT_LE(after.residentBytes - before.residentBytes, kMostGrowthBytes);
  EXPECT_LE(after.threads, before.threads);
  EXPECT_EQ(after.descriptors, before.descriptors);
}

TEST_F(GigEVisionSoak, StartedAndStoppedOften_NothingIsLeftBehind) {
  ASSERT_TRUE(Start().IsOK());
  mSource->Stop();
  const Footprint before = MeasureFootprint();

  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(Start().IsOK());
    ASSERT_NE(Retrieve(), nullptr);
    mSource->Stop();
  }

  const Footprint after = MeasureAfter(before);
  EXPECT_LE(after.threads, before.threads);
  EXPECT_EQ(after.descriptors, before.descriptors);
}

} // namespace
