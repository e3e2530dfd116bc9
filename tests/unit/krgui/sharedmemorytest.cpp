// Memory to share: it is what was asked for, others can attach to it, and nothing of it stays.

#include "platform/sharedmemory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <limits>
#include <utility>

namespace krgui {

namespace {

TEST(SharedMemory, None_IsEmpty) {
  SharedMemory memory;

  EXPECT_EQ(memory.GetPixels(), nullptr);
  EXPECT_EQ(memory.GetSize(), 0U);
  EXPECT_EQ(memory.TakeDescriptor(), -1);
  EXPECT_EQ(memory.GetSegmentNumber(), -1);
}

TEST(SharedMemory, ByDescriptor_IsSeenByWhoGetsTheDescriptor) {
  SharedMemory memory = SharedMemory::MakeByDescriptor(10000);
  ASSERT_NE(memory.GetPixels(), nullptr);
  ASSERT_EQ(memory.GetSize(), 10000U);
  memory.GetPixels()[2499] = 0xff123456;

  const int descriptor = memory.TakeDescriptor();

  EXPECT_EQ(memory.TakeDescriptor(), -1);
  const auto* seen = static_cast<const std::uint32_t*>(mmap(nullptr, 10000, PROT_READ, MAP_SHARED, descriptor, 0));
  ASSERT_NE(seen, MAP_FAILED);
  EXPECT_EQ(seen[2499], 0xff123456);
  munmap(const_cast<std::uint32_t*>(seen), 10000);
  close(descriptor);
}

TEST(SharedMemory, ByDescriptor_CannotBeMadeSmallerByAnother) {
  SharedMemory memory = SharedMemory::MakeByDescriptor(10000);
  const int descriptor = memory.TakeDescriptor();

  EXPECT_NE(ftruncate(descriptor, 100), 0);

  close(descriptor);
}

TEST(SharedMemory, ByDescriptor_ClosesADescriptorThatNobodyTook) {
  const auto countDescriptors = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  };
  const auto before = countDescriptors();
  {
    const SharedMemory memory = SharedMemory::MakeByDescriptor(10000);
    EXPECT_EQ(countDescriptors(), before + 1);
  }

  EXPECT_EQ(countDescriptors(), before);
}

TEST(SharedMemory, SystemV_IsSeenByWhoGetsTheNumber) {
  const SharedMemory memory = SharedMemory::MakeSystemV(10000);
  ASSERT_NE(memory.GetPixels(), nullptr);
  ASSERT_EQ(memory.GetSize(), 10000U);
  memory.GetPixels()[2499] = 0xff654321;

  auto* seen = static_cast<std::uint32_t*>(shmat(memory.GetSegmentNumber(), nullptr, SHM_RDONLY));

  ASSERT_NE(seen, reinterpret_cast<void*>(-1));
  EXPECT_EQ(seen[2499], 0xff654321);
  shmdt(seen);
}

TEST(SharedMemory, SystemV_EndsWithItsOwner) {
  int number = -1;
  {
    const SharedMemory memory = SharedMemory::MakeSystemV(10000);
    number = memory.GetSegmentNumber();
  }

  shmid_ds state = {};
  EXPECT_EQ(shmctl(number, IPC_STAT, &state), -1);
}

TEST(SharedMemory, MoreThanThereIs_GivesNone) {
  for (const std::size_t size : {std::numeric_limits<std::size_t>::max(), std::size_t(1) << 62, std::size_t(0)}) {
    EXPECT_EQ(SharedMemory::MakeByDescriptor(size).GetPixels(), nullptr) << size;
    EXPECT_EQ(SharedMemory::MakeSystemV(size).GetPixels(), nullptr) << size;
  }
}

TEST(SharedMemory, Moved_IsInOnePlaceOnly) {
  SharedMemory from = SharedMemory::MakeSystemV(5000);
  std::uint32_t* pixels = from.GetPixels();

  const SharedMemory to = std::move(from);

  EXPECT_EQ(to.GetPixels(), pixels);
  EXPECT_EQ(to.GetSize(), 5000U);
  pixels[0] = 7;
}

} // namespace

} // namespace krgui
