#include "plaintext.h"

#include <gmock/gmock.h>

namespace krapps {
namespace {

TEST(FormatFixed, Numbers_HaveTheirDigitsBehindAPoint) {
  EXPECT_EQ(krapps::FormatFixed(30.0, 2), "30.00");
  EXPECT_EQ(krapps::FormatFixed(36.864, 1), "36.9");
  EXPECT_EQ(krapps::FormatFixed(0.0, 2), "0.00");
  EXPECT_EQ(krapps::FormatFixed(1e300, 0).size(), 301u);
}

TEST(PlainText, EmptyText_IsADash) {
  EXPECT_EQ(MakeCell(""), "-");
  EXPECT_EQ(MakeCell(" \t "), "-");
}

TEST(PlainText, RunsOfBlanks_BecomeOne) {
  EXPECT_EQ(MakeCell("  a  b\tc "), "a b c");
}

TEST(PlainText, ControlCharacters_DoNotReachTheTerminal) {
  EXPECT_EQ(MakeCell("a\x1b[2J\nb"), "a?[2J?b");
  EXPECT_EQ(MakeCell(u"a\u009bb\u202ec"), "a?b?c");
}

TEST(PlainText, OtherCharacters_AreKept) {
  EXPECT_EQ(MakeCell("Größe 镜"), "Größe 镜");
}

TEST(PlainText, BytesThatAreNoUtf8_AreReplaced) {
  EXPECT_EQ(MakeCell("a\xff"), "a\xEF\xBF\xBD");
}

TEST(PlainText, Columns_AreAsWideAsTheirWidestCell) {
  const std::string text = AlignColumns({{"a", "b", "c"}, {"ääää", "b"}, {"aa", "bbb", "c"}});

  EXPECT_EQ(text, "a     b    c\nääää  b\naa    bbb  c\n");
}

} // namespace
} // namespace krapps
