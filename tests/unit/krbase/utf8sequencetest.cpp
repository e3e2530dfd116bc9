#include "krbase/utf8sequence.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using krbase::AppendUtf8;
using krbase::ReadUtf8;
using krbase::Utf8Sequence;

TEST(Utf8, WellFormedSequences_AreReadAndWrittenTheSame) {
  constexpr struct {
    char32_t point;
    std::size_t length;
  } kRows[] = {{0x00, 1},   {'a', 1},    {0x7F, 1},   {0x80, 2},    {0x7FF, 2},   {0x800, 3},
               {0xD7FF, 3}, {0xE000, 3}, {0xFFFF, 3}, {0x10000, 4}, {0x10FFFF, 4}};
  for (const auto& row : kRows) {
    std::string text;
    AppendUtf8(text, row.point);
    text += 'b';

    const Utf8Sequence sequence = ReadUtf8(text);

    EXPECT_TRUE(sequence.isWellFormed) << std::uint32_t{row.point};
    EXPECT_EQ(sequence.point, row.point);
    EXPECT_EQ(sequence.length, row.length);
    EXPECT_EQ(text.size(), row.length + 1);
  }
}

TEST(Utf8, MalformedSequence_EndsBeforeWhatCannotContinueIt) {
  const struct {
    const char* name;
    std::string text;
    std::size_t length;
  } rows[] = {
      {"lone continuation", "\x80", 1},
      {"overlong of two bytes", "\xC0\xAF", 1},
      {"overlong of three bytes", "\xE0\x9F\xBF", 1},
      {"overlong of four bytes", "\xF0\x8F\xBF\xBF", 1},
      {"surrogate", "\xED\xA0\x80", 1},
      {"beyond Unicode", "\xF4\x90\x80\x80", 1},
      {"no lead byte", "\xFF", 1},
      {"cut off by the end", "\xE2\x82", 2},
      {"cut off by a letter", "\xF0\x9F\x93z", 3},
  };
  for (const auto& row : rows) {
    const Utf8Sequence sequence = ReadUtf8(row.text);

    EXPECT_FALSE(sequence.isWellFormed) << row.name;
    EXPECT_EQ(sequence.point, U'\uFFFD') << row.name;
    EXPECT_EQ(sequence.length, row.length) << row.name;
  }
}
