#include "rules.h"

#include <gtest/gtest.h>

namespace archcheck {
namespace {

TEST(Rules, EveryRoomBelowTheWindows_IsIncludableByThemButTheTransports) {
  const Room* windows = FindRoom("krgui");

  ASSERT_NE(windows, nullptr);
  for (const char* room : {"krbase", "krpersistence", "krbuffer", "krgenicam", "krsystem", "krdevice", "krserial",
                           "krcamerabridge", "krclserial"})
    EXPECT_TRUE(MayInclude(*windows, room)) << room;
  EXPECT_FALSE(MayInclude(*windows, "krtransport"));
}

TEST(Rules, PublicHeadersOfPlainValues_BelongToTheRulesOfTheWindows) {
  EXPECT_TRUE(IsValueHeader("libraries/krgui/include/krgui/krdisplaymapping.h"));
  EXPECT_TRUE(IsValueHeader("libraries/krgui/include/krgui/krdisplaymapping.h"));
  EXPECT_TRUE(IsValueHeader("libraries/krgui/include/krgui/krdisplaystatistics.h"));
  EXPECT_FALSE(IsValueHeader("libraries/krgui/include/krgui/krdisplaywnd.h"));
}

TEST(Rules, NoRoom_IncludesTransportsButTheyThemselves) {
  for (const char* name : {"krbase", "krpersistence", "krbuffer", "krgenicam", "krsystem", "krdevice", "krserial",
                           "krcamerabridge", "krclserial", "krgui", "krgui/logic"}) {
    const Room* room = FindRoom(name);
    ASSERT_NE(room, nullptr) << name;
    EXPECT_FALSE(MayInclude(*room, "krtransport")) << name;
  }
}

TEST(Rules, Targets_AreKnownByNameAndAlias) {
  EXPECT_EQ(FindRoomOfTarget("Kr::Base"), FindRoom("krbase"));
  EXPECT_EQ(FindRoomOfTarget("krtransport"), FindRoom("krtransport"));
  EXPECT_EQ(FindRoomOfTarget("krguilogic"), FindRoom("krgui/logic"));
  EXPECT_EQ(FindRoomOfTarget("Threads::Threads"), nullptr);
}

TEST(Rules, ToolkitHeaders_AreToldFromOthers) {
  for (const char* header : {"QWidget", "QtWidgets", "QtWidgets/QWidget", "qwindowdefs.h", "qpa/qplatformwindow.h"})
    EXPECT_TRUE(IsToolkitHeader(header)) << header;
  for (const char* header : {"queue", "vector", "xcb/xcb.h", "arv.h", "Q.h"})
    EXPECT_FALSE(IsToolkitHeader(header)) << header;
}

TEST(Rules, Toolkit_IsSeenInItsPlacesAlone) {
  for (const char* file : {"libraries/krgui/frame/wnd.cpp", "apps/krviewer/main.cpp", "examples/a/main.cpp",
                           "tests/widget/a.cpp", "benchmarks/display/a.cpp", "benchmarks/finder/a.cpp",
                           "benchmarks/terminal/a.cpp", "benchmarks/windows/a.cpp", "fuzz/viewer/a.cpp"})
    EXPECT_TRUE(MaySeeToolkit(file)) << file;
  for (const char* file : {"libraries/krgui/logic/frame/a.cpp", "libraries/krsystem/a.cpp", "apps/krtool/main.cpp",
                           "apps/common/deviceselection.h", "fuzz/a.cpp", "benchmarks/a.cpp"})
    EXPECT_FALSE(MaySeeToolkit(file)) << file;
}

} // namespace
} // namespace archcheck
