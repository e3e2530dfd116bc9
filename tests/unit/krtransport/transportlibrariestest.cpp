#include "krtransport/krtransport.h"

#include <gmock/gmock.h>

TEST(KrGetTransportLibraries, Libraries_AreNamedWithTheirVersions) {
  const KrStringList libraries = KrGetTransportLibraries();

  ASSERT_EQ(libraries.GetCount(), 2u);
  EXPECT_THAT(libraries[0].ToUtf8(), testing::MatchesRegex("Aravis [0-9]+\\.[0-9]+\\.[0-9]+"));
  EXPECT_THAT(libraries[1].ToUtf8(), testing::MatchesRegex("libusb [0-9]+\\.[0-9]+\\.[0-9]+"));
}
