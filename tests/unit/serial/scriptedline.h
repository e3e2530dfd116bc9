#pragma once
// A line of the terminal whose every call is the test's.

#include "logic/serial/iterminalline.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace krtest {

/// Reads and writes what its functions give. As it is made, reading times out at once and writing takes all.
///
/// Thread: that of the code under test; looked at when that has ended.
class ScriptedLine : public krgui::ITerminalLine {
public:
  struct ReadCall {
    std::uint32_t size = 0;
    std::uint32_t timeoutMs = 0;
  };

  /// Gives the result and what was read.
  std::function<std::pair<KrResult, std::string>()> onRead = [] {
    return std::pair(KrResult(KrResult::Code::TimeLimitExceeded), std::string());
  };
  /// Gives the result and how many bytes were taken.
  std::function<std::pair<KrResult, std::size_t>(const std::string&, const std::stop_token&)> onWrite =
      [](const std::string& aBytes, const std::stop_token&) { return std::pair(KrResult(), aBytes.size()); };

  std::vector<ReadCall> reads;
  std::vector<std::string> writes;

  KrResult Read(std::uint8_t* aBuffer, std::uint32_t aSize, std::uint32_t& aRead, std::uint32_t aTimeoutMs) override {
    reads.push_back({aSize, aTimeoutMs});
    const auto [result, bytes] = onRead();
    aRead = static_cast<std::uint32_t>(bytes.copy(reinterpret_cast<char*>(aBuffer), aSize));
    return result;
  }
  KrResult Write(const std::uint8_t* aData, std::uint32_t aSize, std::uint32_t& aWritten,
                 const std::stop_token& aCancel) override {
    writes.emplace_back(aData, aData + aSize);
    const auto [result, count] = onWrite(writes.back(), aCancel);
    aWritten = static_cast<std::uint32_t>(count);
    return result;
  }
  void Cancel() override {}
};

} // namespace krtest
