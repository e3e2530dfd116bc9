#include "krbuffer/krpixeltype.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct FormatRow {
  std::string name;
  KrPixelType type;
  int bitsPerPixel;
  int bitsPerSample;
  KrPixelLayout layout;
};

void PrintTo(const FormatRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

const std::vector<FormatRow> kRows = {
    {"Mono8", 0x01080001, 8, 8, KrPixelLayout::Mono},       {"Mono10", 0x01100003, 16, 10, KrPixelLayout::Mono},
    {"Mono12", 0x01100005, 16, 12, KrPixelLayout::Mono},    {"Mono14", 0x01100025, 16, 14, KrPixelLayout::Mono},
    {"Mono16", 0x01100007, 16, 16, KrPixelLayout::Mono},    {"Mono12p", 0x010C0047, 12, 12, KrPixelLayout::Mono},
    {"BayerGR8", 0x01080008, 8, 8, KrPixelLayout::BayerGR}, {"BayerRG8", 0x01080009, 8, 8, KrPixelLayout::BayerRG},
    {"BayerGB8", 0x0108000A, 8, 8, KrPixelLayout::BayerGB}, {"BayerBG8", 0x0108000B, 8, 8, KrPixelLayout::BayerBG},
    {"RGB8", 0x02180014, 24, 8, KrPixelLayout::RGB},        {"BGR8", 0x02180015, 24, 8, KrPixelLayout::BGR},
    {"RGBa8", 0x02200016, 32, 8, KrPixelLayout::RGBa},      {"BGRa8", 0x02200017, 32, 8, KrPixelLayout::BGRa},
};

class EveryFormat : public testing::TestWithParam<FormatRow> {};

} // namespace

TEST_P(EveryFormat, IsFoundByItsCode) {
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(GetParam().type);

  ASSERT_TRUE(info.has_value());
  EXPECT_EQ(info->type, GetParam().type);
  EXPECT_EQ(info->name, GetParam().name);
  EXPECT_EQ(info->bitsPerPixel, GetParam().bitsPerPixel);
  EXPECT_EQ(info->bitsPerSample, GetParam().bitsPerSample);
  EXPECT_EQ(info->layout, GetParam().layout);
}

TEST_P(EveryFormat, IsFoundByItsName) {
  EXPECT_EQ(KrFindPixelType(GetParam().name), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(KrPixelType, EveryFormat, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<FormatRow>& aInfo) { return aInfo.param.name; });

TEST(KrPixelType, CodeOutsideTheTable_IsNotFound) {
  EXPECT_EQ(KrFindPixelType(KrPixelType{0}), std::nullopt);
  EXPECT_EQ(KrFindPixelType(KrPixelType{0x81080001}), std::nullopt);
}

TEST(KrPixelType, NameComparison_IsExact) {
  EXPECT_EQ(KrFindPixelType(std::string_view("mono8")), std::nullopt);
  EXPECT_EQ(KrFindPixelType(std::string_view("Mono8 ")), std::nullopt);
  EXPECT_EQ(KrFindPixelType(std::string_view()), std::nullopt);
}

TEST(KrPixelType, BitsPerPixel_AreReadFromTheCodeOfUnknownFormatsToo) {
  constexpr KrPixelType kCoord3DABC32f = 0x026000C0;

  EXPECT_EQ(KrGetBitsPerPixel(KrPixel::Mono12p), 12u);
  EXPECT_EQ(KrGetBitsPerPixel(kCoord3DABC32f), 96u);
  EXPECT_EQ(KrGetBitsPerPixel(0), 0u);
}
