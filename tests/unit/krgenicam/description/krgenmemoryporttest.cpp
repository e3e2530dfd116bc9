#include "krgenicam/krgenmemoryport.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <numeric>
#include <thread>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t kLastAddress = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

Bytes ReadBytes(KrGenMemoryPort& aPort, std::uint64_t aAddress, std::size_t aLength) {
  Bytes bytes(aLength, 0xEE);
  EXPECT_TRUE(aPort.Read(aAddress, bytes.data(), aLength, 1).IsOK());
  return bytes;
}

TEST(KrGenMemoryPort_, Memory_NeverWritten_IsZero) {
  KrGenMemoryPort port;

  EXPECT_EQ(ReadBytes(port, 0, 5), Bytes(5, 0));
  EXPECT_EQ(ReadBytes(port, kLastAddress - 9000, 9001), Bytes(9001, 0));
}

TEST(KrGenMemoryPort_, Writing_OverPages_IsReadAgain) {
  KrGenMemoryPort port;
  Bytes bytes(10000);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});

  ASSERT_TRUE(port.Write(4000, bytes.data(), bytes.size(), 1).IsOK());

  EXPECT_EQ(ReadBytes(port, 4000, bytes.size()), bytes);
  EXPECT_EQ(ReadBytes(port, 3999, 2), (Bytes{0, 1}));
  EXPECT_EQ(ReadBytes(port, 14000, 1), Bytes{0});
}

TEST(KrGenMemoryPort_, LastByte_OfAllAddresses_IsThere) {
  KrGenMemoryPort port;
  const std::uint8_t byte = 7;

  ASSERT_TRUE(port.Write(kLastAddress, &byte, 1, 1).IsOK());

  EXPECT_EQ(ReadBytes(port, kLastAddress, 1), Bytes{7});
  EXPECT_EQ(ReadBytes(port, 0, 1), Bytes{0});
}

TEST(KrGenMemoryPort_, Arguments_ThatCannotBe_AreRefused) {
  Bytes bytes(kMostBytes + 1);
  const struct {
    const char* name;
    std::uint64_t address;
    void* data;
    std::size_t length;
    std::uint32_t timeoutMs;
  } rows[] = {
      {"no place", 0, nullptr, 1, 1},
      {"no length", 0, bytes.data(), 0, 1},
      {"beyond 16 MiB", 0, bytes.data(), kMostBytes + 1, 1},
      {"no time", 0, bytes.data(), 1, 0},
      {"beyond the last address", kLastAddress, bytes.data(), 2, 1},
  };
  KrGenMemoryPort port;

  for (const auto& row : rows) {
    EXPECT_EQ(port.Read(row.address, row.data, row.length, row.timeoutMs), KrResult::Code::InvalidInput) << row.name;
    EXPECT_EQ(port.Write(row.address, row.data, row.length, row.timeoutMs), KrResult::Code::InvalidInput) << row.name;
  }
  EXPECT_TRUE(port.Read(0, bytes.data(), kMostBytes, 1).IsOK());
}

TEST(KrGenMemoryPort_, Accesses_OfAStoppedToken_AreAborted) {
  KrGenMemoryPort port;
  std::stop_source source;
  source.request_stop();
  std::uint8_t byte = 1;

  EXPECT_EQ(port.Read(0, &byte, 1, 1, source.get_token()), KrResult::Code::Aborted);
  EXPECT_EQ(port.Write(0, &byte, 1, 1, source.get_token()), KrResult::Code::Aborted);
  EXPECT_EQ(ReadBytes(port, 0, 1), Bytes{0});
}

TEST(KrGenMemoryPort_, Writing_MoreThan256MiB_IsRefusedAndLeavesMemoryAsItWas) {
  KrGenMemoryPort port;
  const std::uint8_t byte = 1;
  constexpr std::uint64_t kPages = 65536;
  for (std::uint64_t page = 0; page < kPages; ++page)
    ASSERT_TRUE(port.Write(page << 20, &byte, 1, 1).IsOK());
  const std::array<std::uint8_t, 2> two{2, 2};

  EXPECT_EQ(port.Write((kPages << 20) - 1, two.data(), two.size(), 1), KrResult::Code::OutOfRange);
  EXPECT_EQ(port.Write(4095, two.data(), two.size(), 1), KrResult::Code::OutOfRange);

  EXPECT_EQ(ReadBytes(port, 4095, 1), Bytes{0});
  EXPECT_TRUE(port.Write(4094, two.data(), two.size(), 1).IsOK());
}

TEST(KrGenMemoryPort_, Threads_WriteSideBySide) {
  KrGenMemoryPort port;
  {
    std::vector<std::jthread> threads;
    for (std::uint8_t thread = 0; thread < 4; ++thread)
      threads.emplace_back([&port, thread] {
        for (std::uint64_t index = 0; index < 1000; ++index)
          EXPECT_TRUE(port.Write(index * 16 + thread, &thread, 1, 1).IsOK());
      });
  }

  EXPECT_EQ(ReadBytes(port, 999 * 16, 4), (Bytes{0, 1, 2, 3}));
}

} // namespace
