#include "logic/serial/senddata.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Bytes = std::vector<std::uint8_t>;

struct DataRow {
  const char* name;
  SendFormat format;
  const char16_t* text;
  bool isGood;
  Bytes bytes;
};

const DataRow kDataRows[] = {
    {"hexadecimal pairs",
     SendFormat::Hexadecimal,
     u"03 64 70 6D AB 43 72 01 02",
     true,
     {0x03, 0x64, 0x70, 0x6D, 0xAB, 0x43, 0x72, 0x01, 0x02}},
    {"a lone hexadecimal digit", SendFormat::Hexadecimal, u"3 64", true, {0x03, 0x64}},
    {"hexadecimal without blanks", SendFormat::Hexadecimal, u"0364", true, {0x03, 0x64}},
    {"hexadecimal in lower case", SendFormat::Hexadecimal, u"ab", true, {0xAB}},
    {"every lower-case digit", SendFormat::Hexadecimal, u"abcdef", true, {0xAB, 0xCD, 0xEF}},
    {"no hexadecimal digit", SendFormat::Hexadecimal, u"12G4", false, {}},
    {"no hexadecimal digit in lower case", SendFormat::Hexadecimal, u"12g4", false, {}},
    {"a prefix", SendFormat::Hexadecimal, u"0x12", false, {}},
    {"a ligature that two digits would be", SendFormat::Hexadecimal, u"\uFB00", false, {}},
    {"an empty hexadecimal field", SendFormat::Hexadecimal, u"", true, {}},
    {"ASCII", SendFormat::ASCII, u"Ab 1", true, {0x41, 0x62, 0x20, 0x31}},
    {"a Latin letter", SendFormat::ASCII, u"\u00E9", true, {0xE9}},
    {"the last Latin letter", SendFormat::ASCII, u"\u00FF", true, {0xFF}},
    {"a character beyond, cut to its low byte", SendFormat::ASCII, u"\u20AC", true, {0xAC}},
    {"a character whose low byte is null", SendFormat::ASCII, u"\u0100", true, {0x00}},
    {"each half of a surrogate pair", SendFormat::ASCII, u"\U0001F600", true, {0x3D, 0x00}},
    {"an empty ASCII field", SendFormat::ASCII, u"", true, {}},
};

struct TrailerRow {
  const char* name;
  bool cr;
  bool lf;
  bool null;
  bool other;
  const char16_t* otherText;
  bool isGood;
  Bytes bytes;
};

const TrailerRow kTrailerRows[] = {
    {"nothing", false, false, false, false, u"", true, {}},
    {"CR", true, false, false, false, u"", true, {0x0D}},
    {"LF", false, true, false, false, u"", true, {0x0A}},
    {"NULL", false, false, true, false, u"", true, {0x00}},
    {"other", false, false, false, true, u"FF", true, {0xFF}},
    {"all, in their order", true, true, true, true, u"FF", true, {0x0D, 0x0A, 0x00, 0xFF}},
    {"other in lower case", false, false, false, true, u"fe 1", true, {0xFE, 0x01}},
    {"an empty other", true, false, false, true, u"", true, {0x0D}},
    {"a text of other that is not chosen", true, false, false, false, u"FF", true, {0x0D}},
    {"a bad text of other that is not chosen", true, false, false, false, u"ZZ", true, {0x0D}},
    {"a bad other, left out", true, false, false, true, u"ZZ", false, {0x0D}},
    {"a bad other behind good bytes, left out whole", false, true, true, true, u"FF ZZ", false, {0x0A, 0x00}},
    {"a bad other alone", false, false, false, true, u"0x0D", false, {}},
};

} // namespace

TEST(EncodeSendData, EveryText_GivesItsBytesOrIsNoGood) {
  for (const DataRow& row : kDataRows) {
    SCOPED_TRACE(row.name);

    const ParsedBytes encoded = EncodeSendData(row.text, row.format);

    EXPECT_EQ(encoded.ok, row.isGood);
    EXPECT_EQ(encoded.bytes, row.bytes);
  }
}

TEST(BuildTrailer, EveryChoice_GivesItsBytesInOrder) {
  for (const TrailerRow& row : kTrailerRows) {
    SCOPED_TRACE(row.name);

    const ParsedBytes trailer = BuildTrailer({row.cr, row.lf, row.null, row.other, row.otherText});

    EXPECT_EQ(trailer.ok, row.isGood);
    EXPECT_EQ(trailer.bytes, row.bytes);
  }
}

TEST(BuildTrailer, AsTheWindowOpens_IsCRAlone) {
  const ParsedBytes trailer = BuildTrailer({});

  EXPECT_TRUE(trailer.ok);
  EXPECT_EQ(trailer.bytes, Bytes{0x0D});
}

TEST(SendDataError, ToTheUser_SaysWhatIsExpected) {
  EXPECT_EQ(kSendDataError, u"Error parsing send data string.\r\n\r\nBytes must be provided as pairs of hexadecimal "
                            u"digits\r\nseparated by spaces.\r\n\r\nExample: 03 64 70 6D AB 43 72 01 02");
  EXPECT_EQ(kOtherTrailerError,
            u"Error parsing other trailer string.\r\n\r\nBytes must be provided as pairs of hexadecimal "
            u"digits\r\nseparated by spaces.\r\n\r\nExample: 03 64 70 6D AB 43 72 01 02");
}

} // namespace krgui
