#include "description/textencoding.h"

#include <gmock/gmock.h>

namespace krgenicam {
namespace {

using testing::HasSubstr;

std::string ToUtf16(std::u16string_view aText, bool aIsBigEndian) {
  std::string bytes;
  for (const char16_t unit : aText) {
    const auto high = static_cast<char>(unit >> 8);
    const auto low = static_cast<char>(unit & 0xFF);
    bytes += {aIsBigEndian ? high : low, aIsBigEndian ? low : high};
  }
  return bytes;
}

TEST(TextEncoding_, Text_BecomesUtf8) {
  const std::string micro = "<a>\xC2\xB5</a>";
  const struct {
    const char* name;
    std::string bytes;
    std::string expected;
  } rows[] = {
      {"UTF-8", micro, micro},
      {"UTF-8 with a mark", "\xEF\xBB\xBF" + micro, micro},
      {"zeros at the end", micro + std::string(7, '\0'), micro},
      {"blanks before and behind", " \n" + micro + "\n", " \n" + micro + "\n"},
      {"UTF-16 with a mark, little-endian", "\xFF\xFE" + ToUtf16(u"<a>µ</a>", false), micro},
      {"UTF-16 with a mark, big-endian", "\xFE\xFF" + ToUtf16(u"<a>µ</a>", true), micro},
      {"UTF-16 without a mark, little-endian", ToUtf16(u"<a>µ</a>", false), micro},
      {"UTF-16 without a mark, big-endian", ToUtf16(u"<a>µ</a>", true), micro},
      {"UTF-16 with zeros at the end", ToUtf16(u"<a>µ</a>", false) + std::string(5, '\0'), micro},
      {"ISO-8859-1", "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xB5\xFF</a>",
       "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC2\xB5\xC3\xBF</a>"},
      {"windows-1252", "<?xml encoding=\"Windows-1252\" ?><a>\xB5</a>",
       "<?xml encoding=\"Windows-1252\" ?><a>\xC2\xB5</a>"},
      {"UTF-8 by name", "<?xml encoding='utf-8'?>" + micro, "<?xml encoding='utf-8'?>" + micro},
      {"any encoding of ASCII", "<?xml encoding='Shift_JIS'?><a/>", "<?xml encoding='Shift_JIS'?><a/>"},
      {"an encoding that is not closed", "<?xml encoding='Shift", "<?xml encoding='Shift"},
  };

  for (const auto& row : rows) {
    std::string text;
    const KrResult result = TakeAsUtf8(row.bytes, text);
    EXPECT_TRUE(result.IsOK()) << row.name << ": " << result.GetDescription().CStr();
    EXPECT_EQ(text, row.expected) << row.name;
  }
}

TEST(TextEncoding_, Text_OfAnotherKind_IsRefusedWithWhatIsExpected) {
  const struct {
    const char* name;
    std::string bytes;
    const char* expected;
  } rows[] = {
      {"nothing", "", "it is empty"},
      {"zeros", std::string(4, '\0'), "it is empty"},
      {"blanks", " \r\n\t", "it is empty"},
      {"a mark alone", "\xEF\xBB\xBF", "it is empty"},
      {"a UTF-16 mark alone", "\xFF\xFE", "it is empty"},
      {"other text", "hello", "no XML, nor a ZIP archive"},
      {"UTF-32, little-endian", std::string("<\0\0\0a\0\0\0", 8),
       "UTF-32. Cameras' descriptions are expected in UTF-8"},
      {"UTF-32, big-endian", std::string("\0\0\xFE\xFF\0\0\0<", 8), "UTF-32."},
      {"an encoding that nobody knows", "<?xml encoding='Shift_JIS'?><a>\x83\x41</a>",
       "written in Shift_JIS. Cameras' descriptions are expected in UTF-8"},
  };

  for (const auto& row : rows) {
    std::string text = "as before";
    const KrResult result = TakeAsUtf8(row.bytes, text);
    EXPECT_EQ(result, KrResult::Code::BadData) << row.name;
    EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr(row.expected)) << row.name;
    EXPECT_EQ(text, "as before") << row.name;
  }
}

} // namespace
} // namespace krgenicam
