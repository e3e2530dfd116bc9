#pragma once
// The camera of the test's CL Protocol drivers, at the end of a line with rates: "P" finds it, "L" and "X" give its
// description's length and text, "R" and "W", each with an address and a length of eight hexadecimal digits, its bytes.

#include "cameraend.h"
#include "line/icameraline.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace krtest {

/// Thread: the camera's end's. Ownership: value.
class TestCamera {
public:
  explicit TestCamera(std::string aDescription) : mDescription(std::move(aDescription)) {}

  std::string operator()(std::string_view aBytes) {
    mHeard += aBytes;
    std::string answers;
    while (!mHeard.empty() && Answer(answers)) {
    }
    return answers;
  }

private:
  static constexpr std::size_t kAccess = 17;

  std::size_t GetNumber(std::size_t aAt) const { return std::stoul(mHeard.substr(aAt, 8), nullptr, 16); }

  // Takes one command; false while it is not whole.
  bool Answer(std::string& aAnswers) {
    const char command = mHeard[0];
    std::size_t taken = 1;
    if (command == 'P')
      aAnswers += "HELLO";
    if (command == 'L') {
      char digits[9];
      std::snprintf(digits, sizeof digits, "%08zx", mDescription.size());
      aAnswers += digits;
    }
    if (command == 'X')
      aAnswers += mDescription;
    if (command == 'R' || command == 'W') {
      if (mHeard.size() < kAccess)
        return false;
      const std::size_t address = GetNumber(1) % mMemory.size();
      const std::size_t size = std::min(GetNumber(9), mMemory.size() - address);
      taken = kAccess + (command == 'W' ? size : 0);
      if (mHeard.size() < taken)
        return false;
      if (command == 'R')
        aAnswers += mMemory.substr(address, size);
      else {
        mMemory.replace(address, size, mHeard, kAccess, size);
        aAnswers += 'K';
      }
    }
    mHeard.erase(0, taken);
    return true;
  }

  std::string mDescription;
  std::string mHeard;
  std::string mMemory = std::string(65536, '\0');
};

/// The line to it, with the rates 9600, 57600 and 115200. Thread: as ICameraLine; the counters any.
class RatedLine final : public krcamerabridge::ICameraLine {
public:
  explicit RatedLine(krcamerabridge::ICameraLine& aLine) : mLine(aLine) {}

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    ++mReads;
    return mLine.Read(aBytes, aSize, aRead, aTimeoutMs, aCancel);
  }
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    return mLine.Write(aBytes, aSize, aTimeoutMs, aCancel);
  }
  void DropReceived() override { mLine.DropReceived(); }
  std::vector<std::uint32_t> GetSupportedBaudRates() override { return {9600, 57600, 115200}; }
  std::uint32_t GetBaudRate() override { return mRate; }
  KrResult SetBaudRate(std::uint32_t aBaudRate) override {
    mRate = aBaudRate;
    return {};
  }

  int CountReads() const { return mReads; }

private:
  krcamerabridge::ICameraLine& mLine;
  std::atomic<std::uint32_t> mRate{57600};
  std::atomic<int> mReads{0};
};

} // namespace krtest
