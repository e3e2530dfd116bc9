#include "description/descriptionurl.h"

#include <gmock/gmock.h>

namespace krgenicam {
namespace {

using testing::HasSubstr;

TEST(DescriptionUrl_, Local_NamesRegisters) {
  const struct {
    const char* url;
    std::uint64_t address;
    std::uint64_t length;
  } rows[] = {
      {"Local:camera.xml;1000;2A", 0x1000, 0x2A},
      {"local:camera.zip;C0000000;1", 0xC0000000, 1},
      {"LOCAL:///camera.zip;0x1000;0x2a", 0x1000, 0x2A},
      {"Local:camera.xml;1000;2A?SchemaVersion=1.1.0", 0x1000, 0x2A},
      {" Local: camera 1.xml ; 1000 ; 2A \n", 0x1000, 0x2A},
      {"Local:;0;4000000", 0, 0x4000000},
      {"Local:a;b.xml;1000;2A", 0x1000, 0x2A},
      {"Local:a.xml;FFFFFFFFFFFFFFFF;1", 0xFFFFFFFFFFFFFFFF, 1},
  };

  for (const auto& row : rows) {
    RegisterRange range;
    const KrResult result = ParseDescriptionUrl(row.url, range);
    EXPECT_TRUE(result.IsOK()) << row.url << ": " << result.GetDescription().CStr();
    EXPECT_EQ(range.address, row.address) << row.url;
    EXPECT_EQ(range.length, row.length) << row.url;
  }
}

TEST(DescriptionUrl_, Url_ThatCannotBeFollowed_IsRefusedWithTheReason) {
  constexpr KrResult::Code kBad = KrResult::Code::BadData;
  constexpr KrResult::Code kUnsupported = KrResult::Code::NotSupported;
  const struct {
    const char* url;
    KrResult::Code code;
    const char* expected;
  } rows[] = {
      {"", kBad, "it is empty"},
      {" \t", kBad, "it is empty"},
      {"camera.xml", kBad, "no URL"},
      {"Local", kBad, "no URL"},
      {"ftp://camera.xml", kBad, "no URL"},
      {"Local:camera.xml", kBad, "parted by semicolons"},
      {"Local:camera.xml;1000", kBad, "parted by semicolons"},
      {"Local:camera.xml;1000;0", kBad, "its length is 0"},
      {"Local:camera.xml;1000;-1", kBad, "its length \"-1\" is no hexadecimal number"},
      {"Local:camera.xml;1000;", kBad, "its length \"\" is no hexadecimal number"},
      {"Local:camera.xml;10 00;4", kBad, "its address \"10 00\" is no hexadecimal number"},
      {"Local:camera.xml;1000;4000001", kBad, "more than 64 MiB"},
      {"Local:camera.xml;1000;10000000000", kBad, "more than 64 MiB"},
      {"Local:camera.xml;1000;10000000000000000", kBad, "no hexadecimal number"},
      {"Local:camera.xml;FFFFFFFFFFFFFFFF;2", kBad, "beyond the last address"},
      {"File:///etc/passwd", kUnsupported, "it names a file of this computer"},
      {"file:camera.xml", kUnsupported, "it names a file of this computer"},
      {"http://example.com/camera.xml", kUnsupported, "Fetch that file"},
      {"HTTPS://example.com/camera.xml", kUnsupported, "Fetch that file"},
  };

  for (const auto& row : rows) {
    RegisterRange range{1, 2};
    const KrResult result = ParseDescriptionUrl(row.url, range);
    EXPECT_EQ(result.GetCode(), row.code) << row.url;
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(row.expected)) << row.url;
    EXPECT_EQ(range.address, 1U) << row.url;
  }
}

TEST(DescriptionUrl_, TextOfADevice_IsCutAndFreedOfControlCharacters) {
  EXPECT_EQ(QuoteDeviceText("a\x1B[1m\nb"), "\"a?[1m?b\"");
  EXPECT_EQ(QuoteDeviceText(std::string(200, 'x')), "\"" + std::string(120, 'x') + "…\"");
}

} // namespace
} // namespace krgenicam
