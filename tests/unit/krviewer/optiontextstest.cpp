#include "panels/optiontexts.h"

#include "propertypairs.h"

#include <gtest/gtest.h>

TEST(OptionTexts, Options_AreNamesAndValuesInTurn) {
  const Properties options = {{"View", "Tree"}, {"Visibility", ""}};

  EXPECT_EQ(krviewer::ToTexts(MakeList(options)), (QStringList{"View", "Tree", "Visibility", ""}));
}

TEST(OptionTexts, OptionsOfAnyLetters_ComeBack) {
  const Properties options = {
      {"", ""}, {"\xEF\xBB\xBF mark", std::string("nul \0 within", 12)}, {"\xE2\x98\xBA", "a\nb"}};

  EXPECT_EQ(ToProperties(krviewer::ToOptions(krviewer::ToTexts(MakeList(options)))), options);
}

TEST(OptionTexts, NameWithoutAValue_IsLeftOut) {
  const Properties options = ToProperties(krviewer::ToOptions({"View", "Tree", "Visibility"}));

  EXPECT_EQ(options, (Properties{{"View", "Tree"}}));
}
