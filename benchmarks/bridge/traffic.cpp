#include "traffic.h"

#include "pseudoterminal.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <thread>

namespace benchmarks {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kBlock = 4096;
constexpr std::size_t kPeriod = 251; // No power of two, so that a block that is lost or moved shows.

/// The bytes that belong at a place of what is sent, a block of them.
const std::uint8_t* GetBytes(std::size_t aPlace) {
  static const auto bytes = [] {
    std::array<std::uint8_t, kPeriod + kBlock> made;
    for (std::size_t i = 0; i < made.size(); ++i)
      made[i] = static_cast<std::uint8_t>(i % kPeriod);
    return made;
  }();
  return bytes.data() + aPlace % kPeriod;
}

void Send(int aTo, std::size_t aBytes) {
  for (std::size_t sum = 0; sum < aBytes;) {
    const ssize_t count = write(aTo, GetBytes(sum), std::min(kBlock, aBytes - sum));
    CheckSystem(count > 0, "write");
    sum += static_cast<std::size_t>(count);
  }
}

void Receive(int aFrom, std::size_t aBytes) {
  std::array<std::uint8_t, kBlock> block;
  for (std::size_t sum = 0; sum < aBytes;) {
    const ssize_t count = read(aFrom, block.data(), block.size());
    CheckSystem(count > 0, "read");
    if (std::memcmp(block.data(), GetBytes(sum), static_cast<std::size_t>(count)) != 0)
      Fail("a byte is missing or changed.");
    sum += static_cast<std::size_t>(count);
  }
}

double GetMegabytesPerSecond(std::size_t aBytes, Clock::time_point aBegin) {
  return static_cast<double>(aBytes) / std::chrono::duration<double, std::micro>(Clock::now() - aBegin).count();
}

double MeasureByte(int aFrom, int aTo) {
  std::uint8_t byte = 0;
  const auto begin = Clock::now();
  CheckSystem(write(aFrom, &byte, 1) == 1 && read(aTo, &byte, 1) == 1, "A byte cannot be passed");
  return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

} // namespace

double MeasureOneWay(int aFrom, int aTo, std::size_t aBytes) {
  const auto begin = Clock::now();
  {
    const std::jthread sender([=] { Send(aFrom, aBytes); });
    Receive(aTo, aBytes);
  }
  return GetMegabytesPerSecond(aBytes, begin);
}

double MeasureBothWays(const Line& aLine, std::size_t aBytes) {
  const auto begin = Clock::now();
  {
    const std::jthread toDevice([&] { Send(aLine.GetHostEnd(), aBytes); });
    const std::jthread fromDevice([&] { Send(aLine.GetDeviceEnd(), aBytes); });
    const std::jthread atHost([&] { Receive(aLine.GetHostEnd(), aBytes); });
    Receive(aLine.GetDeviceEnd(), aBytes);
  }
  return GetMegabytesPerSecond(2 * aBytes, begin);
}

std::vector<double> MeasureLatencies(const Line& aLine, int aBytes) {
  std::vector<double> times;
  for (int i = 0; i < aBytes; i += 2) {
    times.push_back(MeasureByte(aLine.GetHostEnd(), aLine.GetDeviceEnd()));
    times.push_back(MeasureByte(aLine.GetDeviceEnd(), aLine.GetHostEnd()));
  }
  return times;
}

} // namespace benchmarks
