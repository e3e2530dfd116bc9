// What a serial port can be set to, and how a tty of the system is told so.

#include "krserial/krserialportconfiguration.h"
#include "bridge/ttysettings.h"

#include <gmock/gmock.h>

#include <cstdint>

namespace {

KrSerialPortConfiguration Make(std::uint32_t aBaudRate, std::uint32_t aParity, std::uint32_t aByteSize,
                               std::uint32_t aStopBits) {
  return {.baudRate = aBaudRate, .parity = aParity, .byteSize = aByteSize, .stopBits = aStopBits};
}

} // namespace

TEST(KrSerialPortConfiguration, Default_IsValidAndHas9600BaudWithoutParity) {
  const KrSerialPortConfiguration configuration;

  EXPECT_TRUE(configuration.IsValid());
  EXPECT_EQ(configuration, Make(9600, 0, 8, 1));
}

TEST(KrSerialPortConfiguration, IsValid_AtAndBeyondTheLimitsOfEachSetting_SaysWhatAPortCouldBe) {
  const struct {
    const char* name;
    KrSerialPortConfiguration configuration;
    bool isValid;
  } rows[] = {
      {"slowest", Make(50, 0, 8, 1), true},
      {"too slow", Make(49, 0, 8, 1), false},
      {"fastest", Make(4'000'000, 0, 8, 1), true},
      {"too fast", Make(4'000'001, 0, 8, 1), false},
      {"no selection of speed", Make(0xFFFFFFFFU, 0, 8, 1), false},
      {"odd parity", Make(9600, 2, 8, 1), true},
      {"unknown parity", Make(9600, 3, 8, 1), false},
      {"no selection of parity", Make(9600, 0xFFFFFFFFU, 8, 1), false},
      {"shortest byte", Make(9600, 0, 5, 1), true},
      {"byte too short", Make(9600, 0, 4, 1), false},
      {"byte too long", Make(9600, 0, 9, 1), false},
      {"two stop bits", Make(9600, 0, 8, 2), true},
      {"no stop bit", Make(9600, 0, 8, 0), false},
      {"three stop bits", Make(9600, 0, 8, 3), false},
  };

  for (const auto& row : rows)
    EXPECT_EQ(row.configuration.IsValid(), row.isValid) << row.name;
}

TEST(TtySettings, Put_OfEveryParityByteSizeAndStopBits_IsWhatGetSays) {
  krserial::TtySettings settings;
  settings.MakeRaw();

  for (std::uint32_t parity = 0; parity <= 2; ++parity)
    for (std::uint32_t byteSize = 5; byteSize <= 8; ++byteSize)
      for (std::uint32_t stopBits = 1; stopBits <= 2; ++stopBits) {
        const KrSerialPortConfiguration wanted = Make(115200, parity, byteSize, stopBits);

        settings.Put(wanted);

        EXPECT_EQ(settings.Get(), wanted) << parity << " " << byteSize << " " << stopBits;
      }
}

TEST(IsNearEnough, SpeedsWithinThreePercent_AreTaken) {
  const KrSerialPortConfiguration wanted = Make(100'000, 0, 8, 1);

  EXPECT_TRUE(krserial::IsNearEnough(wanted, Make(97'000, 0, 8, 1)));
  EXPECT_TRUE(krserial::IsNearEnough(wanted, Make(103'000, 0, 8, 1)));
}

TEST(IsNearEnough, SpeedsMoreThanThreePercentOff_AreRefused) {
  const KrSerialPortConfiguration wanted = Make(100'000, 0, 8, 1);

  EXPECT_FALSE(krserial::IsNearEnough(wanted, Make(96'999, 0, 8, 1)));
  EXPECT_FALSE(krserial::IsNearEnough(wanted, Make(103'001, 0, 8, 1)));
  EXPECT_FALSE(krserial::IsNearEnough(wanted, Make(0, 0, 8, 1)));
}

TEST(IsNearEnough, OtherParityBitsOrStopBits_AreRefused) {
  const KrSerialPortConfiguration wanted = Make(9600, 1, 7, 2);

  EXPECT_FALSE(krserial::IsNearEnough(wanted, Make(9600, 0, 7, 2)));
  EXPECT_FALSE(krserial::IsNearEnough(wanted, Make(9600, 1, 8, 2)));
  EXPECT_FALSE(krserial::IsNearEnough(wanted, Make(9600, 1, 7, 1)));
}
