#include "krpersistence/xmltext.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using krpersistence::WriteXmlText;

TEST(XmlText, PlainText_StandsAsItIs) {
  EXPECT_EQ(WriteXmlText("Größe 镜 🙂\ntwo lines, two blanks "), "Größe 镜 🙂\ntwo lines, two blanks ");
}

TEST(XmlText, MarkupIsWrittenAsReferences) {
  EXPECT_EQ(WriteXmlText("a<b>\"c\"&'d'"), "a&lt;b&gt;&quot;c&quot;&amp;&apos;d&apos;");
}

TEST(XmlText, WhatNoDocumentHolds_BecomesABlank) {
  EXPECT_EQ(WriteXmlText("a\x01z\x1f\x7f"), "a z \x7f");
  EXPECT_EQ(WriteXmlText(std::string_view("a\0z", 3)), "a z");
  EXPECT_EQ(WriteXmlText("a\xEF\xBF\xBEz\xEF\xBF\xBF"), "a z ") << "U+FFFE and U+FFFF";
}

TEST(XmlText, WhatReadingWouldChange_BecomesABlank) {
  EXPECT_EQ(WriteXmlText("a\tb\r\nc"), "a b \nc");
}

TEST(XmlText, EachByteThatIsNoUtf8_BecomesABlank) {
  EXPECT_EQ(WriteXmlText("a\xffz"), "a z");
  EXPECT_EQ(WriteXmlText("\xE2\x82"), "  ") << "a part of a character";
  EXPECT_EQ(WriteXmlText("\xED\xA0\x80<"), "   &lt;") << "a surrogate";
}
