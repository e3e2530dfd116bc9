#include "textescape.h"

#include <gtest/gtest.h>

namespace krpersistence {
namespace {

std::string Unescape(std::string_view aValue) {
  std::string reason;
  return UnescapeText(aValue, reason).value_or("refused: " + reason);
}

TEST(TextEscape, PlainText_StandsAsItIs) {
  EXPECT_EQ(EscapeText("Größe 镜 🙂  two blanks "), "Größe 镜 🙂  two blanks ");
}

TEST(TextEscape, MarkupIsWrittenAsReferences) {
  EXPECT_EQ(EscapeText("a<b>\"c\"&'d'"), "a&lt;b&gt;&quot;c&quot;&amp;&apos;d&apos;");
}

TEST(TextEscape, ControlCharactersAndBackslashes_AreEscaped) {
  EXPECT_EQ(EscapeText("a\r\n\tb\\c\x7f"), "a\\x0D\\x0A\\x09b\\\\c\\x7F");
  EXPECT_EQ(EscapeText(std::string(1, '\0')), "\\x00");
  EXPECT_EQ(EscapeText("\xC2\x85"), "\\xC2\\x85");
  EXPECT_EQ(EscapeText("\xEF\xBF\xBF"), "\\xEF\\xBF\\xBF");
}

TEST(TextEscape, MalformedBytes_AreEscapedAloneAndTheRestIsKept) {
  EXPECT_EQ(EscapeText("a\xffz"), "a\\xFFz");
  EXPECT_EQ(EscapeText("\xE2\x82z"), "\\xE2\\x82z");
  EXPECT_EQ(EscapeText("\xC0\xAF"), "\\xC0\\xAF") << "an overlong form";
  EXPECT_EQ(EscapeText("\xED\xA0\x80"), "\\xED\\xA0\\x80") << "a surrogate";
  EXPECT_EQ(EscapeText("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80") << "beyond U+10FFFF";
}

TEST(TextEscape, EveryPairOfBytes_ComesBack) {
  for (int first = 0; first < 256; ++first)
    for (int second = 0; second < 256; ++second) {
      const std::string text = {static_cast<char>(first), static_cast<char>(second)};

      ASSERT_EQ(Unescape(EscapeText(text)), text) << first << " " << second;
    }
}

TEST(TextEscape, References_AreResolved) {
  EXPECT_EQ(Unescape("&#65;&#x42;&#xe9;&#x20AC;&#x1F642;&amp;&lt;&gt;&quot;&apos;"), "ABé€🙂&<>\"'");
}

TEST(TextEscape, ReferenceToABackslash_BeginsAnEscapeToo) {
  EXPECT_EQ(Unescape("&#92;x41"), "A");
}

TEST(TextEscape, LineEndsAndTabsInTheFile_AreBlanks) {
  EXPECT_EQ(Unescape("a\r\nb\nc\td\re"), "a b c d e");
}

TEST(TextEscape, WhatNoDocumentMayHold_IsRefused) {
  for (const char* value : {"a&b", "&unknown;", "&#0;", "&#xFFFF;", "&#xD800;", "&#x110000;", "&#;", "&#x;", "&#-5;",
                            "&#99999999999;", "&amp", "a<b", "\\", "\\y41", "\\x4", "\\x4g", "\\x-1", "a\\"})
    EXPECT_TRUE(Unescape(value).starts_with("refused: ")) << value << ": " << Unescape(value);
}

} // namespace
} // namespace krpersistence
