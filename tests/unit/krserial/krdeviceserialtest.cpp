#include "krserial/krdeviceserial.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

struct PortRow {
  std::int32_t value;
  const char* name;
  bool isBulk;
};

constexpr PortRow kRows[] = {
    {0, "Serial0", false}, {1, "Serial1", false}, {2, "Bulk0", true}, {3, "Bulk1", true}, {4, "Bulk2", true},
    {5, "Bulk3", true},    {6, "Bulk4", true},    {7, "Bulk5", true}, {8, "Bulk6", true}, {9, "Bulk7", true},
};

class EachPort : public testing::TestWithParam<PortRow> {};

TEST_P(EachPort, Value_HasItsName) {
  const PortRow& row = GetParam();

  EXPECT_EQ(GetPortName(static_cast<KrDeviceSerial>(row.value)), KrString(row.name));
}

TEST_P(EachPort, Name_IsFound) {
  const PortRow& row = GetParam();

  EXPECT_EQ(static_cast<std::int32_t>(FindPort(row.name)), row.value);
}

TEST_P(EachPort, BulkPorts_AreTheEightNamedBulk) {
  const PortRow& row = GetParam();

  EXPECT_EQ(IsBulkPort(static_cast<KrDeviceSerial>(row.value)), row.isBulk);
}

TEST_P(EachPort, List_HasItInOrder) {
  const PortRow& row = GetParam();

  EXPECT_EQ(static_cast<std::int32_t>(kDeviceSerialPorts.at(static_cast<std::size_t>(row.value))), row.value);
}

INSTANTIATE_TEST_SUITE_P(KrDeviceSerial, EachPort, testing::ValuesIn(kRows),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(KrDeviceSerial, OtherValues_AreNamedInvalidAndNoBulkPorts) {
  for (const std::int32_t value :
       {-1, -2, 10, 11, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
    const auto port = static_cast<KrDeviceSerial>(value);

    EXPECT_EQ(GetPortName(port), KrString("Invalid")) << value;
    EXPECT_FALSE(IsBulkPort(port)) << value;
  }
}

TEST(KrDeviceSerial, OtherTexts_AreNoPorts) {
  for (const char* name : {"", "Invalid", "serial0", "Serial", "Serial2", "Serial0 ", " Serial0", "Bulk8", "Bulk00"})
    EXPECT_EQ(FindPort(name), KrDeviceSerial::Invalid) << name;
}

} // namespace
