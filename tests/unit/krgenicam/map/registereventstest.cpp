#include "changingcamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>

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
  std::string nodes = MakeRegister("Whole", 0x100) +
                      "<IntReg Name=\"Half\"><Address>0x100</Address><Length>2</Length><AccessMode>RO</AccessMode>"
                      "<pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>\n";
  for (int i = 0; i < kProbes; ++i)
    nodes += MakeRegister("Probe" + std::to_string(i), static_cast<int>(kProbePlace) + 4 * i);
  ChangingCamera camera(nodes);
  RecordingSink sink;
  camera.Watch("Whole", sink);
  camera.Watch("Half", sink);
  std::atomic<std::size_t> readingsCount = 0;
  std::array<Occasion, kProbes> probed;
  camera.port.SetFault([&](const RegisterAccessRecord& aAccess) {
    if (aAccess.address >= kProbePlace && aAccess.address < kProbePlace + 4 * kProbes)
      probed[(aAccess.address - kProbePlace) / 4].Happen();
    if (aAccess.address == 0x100)
      camera.Poke(0x100, {static_cast<std::uint8_t>(++readingsCount)});
    return KrResult();
  });
  // What is listened to for the first time is looked at after all that waits, and changes nothing.
  const auto probe = [&](int aFirst, int aLast) {
    for (int i = aFirst; i <= aLast; ++i) {
      sink.Listen(camera.Integer(("Probe" + std::to_string(i)).c_str()));
      probed[static_cast<std::size_t>(i)].Await();
    }
  };

  ASSERT_TRUE(camera.array->Invalidate("Half").IsOK());
  probe(0, 4);
  const std::size_t foundCount = readingsCount;
  probe(5, kProbes - 1);

  EXPECT_THAT(sink.TakeNames(), Contains("Whole"));
  EXPECT_EQ(readingsCount, foundCount);
  camera.port.SetFault({});
}
