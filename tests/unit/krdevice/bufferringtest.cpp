#include "bufferring.h"

#include <gmock/gmock.h>

using krdevice::BufferRing;

namespace {

struct RefusedSize {
  const char* name;
  std::size_t count;
  std::uint64_t payloadBytes;
  KrResult::Code code;
};

constexpr RefusedSize kRefused[] = {
    {"payload of 0", 2, 0, KrResult::Code::ProtocolError},
    {"payload beyond 4 GiB", 2, (std::uint64_t{4} << 30) + 1, KrResult::Code::NotSupported},
    {"largest number", 2, UINT64_MAX, KrResult::Code::NotSupported},
    {"more than any memory together", 1u << 20, std::uint64_t{4} << 30, KrResult::Code::SystemError},
};

} // namespace

TEST(BufferRing, Allocate_SizeThatCannotBe_IsRefusedWithAText) {
  for (const RefusedSize& row : kRefused) {
    SCOPED_TRACE(row.name);
    BufferRing ring;

    const KrResult result = ring.Allocate(row.count, row.payloadBytes);

    EXPECT_TRUE(result == row.code) << result.GetCodeString().CStr();
    EXPECT_FALSE(result.GetDescription().IsEmpty());
    EXPECT_EQ(ring.GetCount(), 0u);
  }
}

TEST(BufferRing, Allocate_ValidSize_GivesBuffersOfThatSize) {
  BufferRing ring;

  ASSERT_TRUE(ring.Allocate(3, 100).IsOK());

  ASSERT_EQ(ring.GetCount(), 3u);
  for (std::size_t i = 0; i < ring.GetCount(); ++i)
    EXPECT_EQ(ring.GetBuffer(i)->GetSize(), 100u);
}

TEST(BufferRing, TakeBack_OnlyWhatWasLent_IsAccepted) {
  BufferRing ring;
  ASSERT_TRUE(ring.Allocate(2, 100).IsOK());
  const KrBuffer foreign;

  EXPECT_FALSE(ring.Lend(&foreign));
  EXPECT_FALSE(ring.TakeBack(&foreign));
  EXPECT_FALSE(ring.TakeBack(ring.GetBuffer(0)));
  EXPECT_TRUE(ring.Lend(ring.GetBuffer(0)));
  EXPECT_FALSE(ring.Lend(ring.GetBuffer(0)));
  EXPECT_TRUE(ring.TakeBack(ring.GetBuffer(0)));
  EXPECT_FALSE(ring.TakeBack(ring.GetBuffer(0)));
}
