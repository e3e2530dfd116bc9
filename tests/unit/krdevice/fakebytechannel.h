#pragma once
// A serial line without anything at its end.

#include "krsystem/ibytechannel.h"

/// Carries nothing.
class FakeByteChannel : public krsystem::IByteChannel {
public:
  KrResult Open() override { return {}; }
  void Close() override {}
  KrResult Read(std::uint8_t*, std::size_t, std::size_t& aRead, std::uint32_t, const std::stop_token&) override {
    aRead = 0;
    return KrResult::Code::TimeLimitExceeded;
  }
  KrResult Write(const std::uint8_t*, std::size_t, std::size_t& aWritten, std::uint32_t,
                 const std::stop_token&) override {
    aWritten = 0;
    return KrResult::Code::TimeLimitExceeded;
  }
};
