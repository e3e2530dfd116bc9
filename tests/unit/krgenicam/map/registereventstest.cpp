#include "changingcamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(EventsOfRegisters, WhatIsTooLongOrCannotBeRead_IsNotReadAndToldWhenWritten) {
  struct {
    const char* what;
    const char* length;
    const char* mode;
    std::size_t bytesCount;
  } constexpr kRows[] = {{"too long", "65537", "RW", 65537}, {"cannot be read", "4", "WO", 4}};

  for (const auto& row : kRows) {
    ChangingCamera camera("<Register Name=\"Bytes\"><Address>0x100000</Address><Length>" + std::string(row.length) +
                          "</Length><AccessMode>" + row.mode + "</AccessMode><pPort>Device</pPort></Register>");
    RecordingSink sink;
    camera.Watch("Bytes", sink);
    camera.array->InvalidateCache();
    camera.AwaitNotifications();
    EXPECT_THAT(sink.TakeNames(), IsEmpty()) << row.what;

    ASSERT_TRUE(camera.Register("Bytes").SetValue(std::vector<std::uint8_t>(row.bytesCount)).IsOK()) << row.what;
    camera.AwaitNotifications();

    EXPECT_THAT(sink.TakeNames(), ElementsAre("Bytes")) << row.what;
    EXPECT_THAT(camera.port.TakeRecords(),
                testing::Not(Contains(RegisterAccessRecord{false, 0x100000, row.bytesCount})))
        << row.what;
  }
}

TEST(EventsOfOverlappingRegisters, BytesThatChangeWithEachReading_EndInNoCircle) {
  constexpr int kProbes = 8;
  constexpr std::uint64_t kProbePlace = 0x400;
  ChangingCamera camera(MakeRegister("Whole", 0x100) +
                        "<IntReg Name=\"Half\"><Address>0x100</Address><Length>2</Length><AccessMode>RO</AccessMode>"
                        "<pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>\n" +
                        MakeRegister("Probe", static_cast<int>(kProbePlace), "<pInvalidator>Half</pInvalidator>"));
  RecordingSink sink;
  camera.Watch("Whole", sink);
  camera.Watch("Half", sink);
  camera.Watch("Probe", sink);
  std::size_t readingsCount = 0;
  std::size_t foundCount = 0;
  int probesCount = 0;
  Occasion hasProbed;
  // A look that is cancelled comes again after all that waits, and changes nothing.
  const auto probe = [&] {
    if (++probesCount > kProbes)
      return KrResult();
    if (probesCount == kProbes / 2)
      foundCount = readingsCount;
    if (probesCount == kProbes)
      hasProbed.Happen();
    camera.array->Cancel();
    return KrResult(KrResult::Code::Aborted);
  };
  camera.port.SetFault([&](const RegisterAccessRecord& aAccess) {
    if (aAccess.address == 0x100)
      camera.Poke(0x100, {static_cast<std::uint8_t>(++readingsCount)});
    return aAccess.address == kProbePlace ? probe() : KrResult();
  });

  ASSERT_TRUE(camera.array->Invalidate("Half").IsOK());
  hasProbed.Await();
  camera.port.SetFault({});

  EXPECT_THAT(sink.TakeNames(), Contains("Whole"));
  EXPECT_GT(foundCount, 0u);
  EXPECT_EQ(readingsCount, foundCount);
}
