#pragma once
// A device whose only stream channel a test fills by hand.

#include "await.h"
#include "fakelink.h"
#include "krdevice/krdevicegev.h"
#include "krdevice/krstream.h"

#include <gtest/gtest.h>

class StreamTest : public testing::Test {
protected:
  inline static const std::uint32_t kGenerousLimitMs = krtest::GetGenerousMs();

  // Takes a frame and gives it back.
  static KrResult WaitForFrame(KrStream& aStream) {
    KrBuffer* buffer = nullptr;
    const KrResult result = aStream.Retrieve(buffer, kGenerousLimitMs);
    return result.IsOK() ? aStream.Release(buffer) : result;
  }

  FakeBufferSource mSource;
  KrDeviceGEV mDevice{std::make_unique<FakeLink>(&mSource), MakeDeviceFields()};
};
