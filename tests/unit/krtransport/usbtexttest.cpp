#include "usb3vision/usbtext.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace krtransport;
using Bytes = std::vector<std::uint8_t>;

struct TextRow {
  const char* name;
  const char* text;
  const char* cleaned;
};

const TextRow kTexts[] = {
    {"Plain", "EO-2048", "EO-2048"},
    {"Empty", "", ""},
    {"Accents", "Optik M\xC3\xBCller", "Optik M\xC3\xBCller"},
    {"BeyondTheBasicPlane", "\xF0\x9F\x93\xB7", "\xF0\x9F\x93\xB7"},
    {"ControlCharacters", "a\x07\x1b[31m", "a\xEF\xBF\xBD\xEF\xBF\xBD[31m"},
    {"HighControlCharacter", "a\xC2\x85", "a\xEF\xBF\xBD"},
    {"NoUtf8", "a\xFFz", "a\xEF\xBF\xBDz"},
    {"Directions", "a\u202Egnp.\u2069", "a\xEF\xBF\xBDgnp.\xEF\xBF\xBD"},
    {"LinesAndNoWidth", "a\u2028\u200B\uFEFF", "a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
};

class UsbText : public testing::TestWithParam<TextRow> {};

TEST_P(UsbText, Clean_AnyText_CanBeShownAsItIs) {
  EXPECT_EQ(CleanUsbText(GetParam().text), GetParam().cleaned);
}

INSTANTIATE_TEST_SUITE_P(Texts, UsbText, testing::ValuesIn(kTexts),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(UsbText, Clean_LongText_IsCutInFrontOfAWholeCharacter) {
  std::string text(kMaxUsbText - 1, 'x');
  text += "\xC3\xBC";

  EXPECT_EQ(CleanUsbText(text), std::string(kMaxUsbText - 1, 'x'));
}

struct DescriptorRow {
  const char* name;
  Bytes bytes;
  const char* text;
};

const DescriptorRow kDescriptors[] = {
    {"Plain", {6, 3, 'E', 0, 'O', 0}, "EO"},
    {"Accent", {4, 3, 0xFC, 0}, "\xC3\xBC"},
    {"TerminatorCountedIn", {8, 3, 'E', 0, 0, 0, 'x', 0}, "E"},
    {"LoneSurrogate", {4, 3, 0x00, 0xD8}, "\xEF\xBF\xBD"},
    {"OddLength", {5, 3, 'E', 0, 'O'}, "E"},
    {"LengthBeyondTheBytes", {200, 3, 'E', 0}, "E"},
    {"LengthBelowTheHeader", {1, 3, 'E', 0}, ""},
    {"AnotherType", {4, 2, 'E', 0}, ""},
    {"NoBytes", {}, ""},
};

class UsbStringDescriptor : public testing::TestWithParam<DescriptorRow> {};

TEST_P(UsbStringDescriptor, Parse_AnyBytes_GiveTheTextThatIsThere) {
  EXPECT_EQ(ParseStringDescriptor(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Descriptors, UsbStringDescriptor, testing::ValuesIn(kDescriptors),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST(UsbText, FirstLanguage_DescriptorZero_IsItsFirstNumber) {
  EXPECT_EQ(ParseFirstLanguage(Bytes{6, 3, 0x09, 0x04, 0x07, 0x04}), 0x0409);
  EXPECT_EQ(ParseFirstLanguage(Bytes{2, 3}), 0);
}

} // namespace
