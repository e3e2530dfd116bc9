#include "treecheck.h"

#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

#include <sys/wait.h>

namespace archcheck {
namespace {

namespace fs = std::filesystem;

// A small project in a folder of its own, which keeps all rules until a test adds a file that breaks one.
class TreeCheck : public testing::Test {
protected:
  TreeCheck() {
    Write("libraries/krbase/CMakeLists.txt",
          "kr_add_library(krbase ALIAS Base\n  HEADERS krbase/krstring.h\n  SOURCES krstring.cpp)\n");
    Write("libraries/krbase/include/krbase/krstring.h", "#pragma once\n// Text.\n#include <string>\n");
    Write("libraries/krbase/krstring.cpp", "#include \"krbase/krstring.h\"\n#include <spdlog/spdlog.h>\n");
    Write("libraries/krbuffer/CMakeLists.txt",
          "kr_add_library(krbuffer ALIAS Buffer HEADERS krbuffer/krbuffer.h\n  DEPENDS krbase)\n");
    Write("libraries/krbuffer/include/krbuffer/krbuffer.h",
          "#pragma once\n// A buffer.\n#include \"krbase/krstring.h\"\n");
    Write("libraries/krgui/CMakeLists.txt",
          "add_library(krguilogic logic/a.cpp)\ntarget_link_libraries(krguilogic PUBLIC krbase)\n"
          "kr_add_library(krgui ALIAS GUI\n  HEADERS krgui/krwnd.h\n  OBJECTS krguilogic SHOWN Qt6::Widgets)\n");
    Write("libraries/krgui/include/krgui/krwnd.h",
          "#pragma once\n// A window.\n#include <QWidget>\n#include <qwindowdefs.h>\n");
    Write("libraries/krgui/frame/wnd.h", "#pragma once\n#include <QWidget>\n#include \"logic/a.h\"\n");
    Write("libraries/krgui/logic/a.h", "#pragma once\n#include \"krbuffer/krbuffer.h\"\n");
    Write("libraries/krgui/logic/a.cpp", "#include \"a.h\"\n");
    Write("apps/krviewer/main.cpp", "#include <QApplication>\n#include \"krtransport/krtransport.h\"\n");
  }

  void Write(const std::string& aFile, const std::string& aText) {
    fs::create_directories((mRoot / aFile).parent_path());
    std::ofstream(mRoot / aFile) << aText;
  }

  std::vector<std::string> Check() const {
    std::vector<std::string> lines;
    for (const Violation& violation : CheckTree(mRoot).violations)
      lines.push_back(Format(violation));
    return lines;
  }

  TemporaryFolder mFolder;
  const fs::path mRoot = mFolder.GetPath();
};

TEST_F(TreeCheck, TreeThatKeepsTheRules_HasNoViolation) {
  const TreeReport report = CheckTree(mRoot);

  EXPECT_THAT(Check(), testing::IsEmpty());
  EXPECT_EQ(report.filesRead, 11);
}

struct Breach {
  const char* name;
  const char* file;
  const char* text;
  const char* expected;
};

class BrokenRule : public TreeCheck, public testing::WithParamInterface<Breach> {};

TEST_P(BrokenRule, OneFileBreaksIt_IsNamedWithFileAndLine) {
  Write(GetParam().file, GetParam().text);

  EXPECT_THAT(Check(), testing::ElementsAre(GetParam().expected));
}

constexpr Breach kBreaches[] = {
    {"LowerRoomIncludesHigher", "libraries/krbuffer/a.cpp", "\n#include \"krsystem/krsystem.h\"\n",
     "libraries/krbuffer/a.cpp:2: krbuffer may not include krsystem."},
    {"SiblingRoomIncluded", "libraries/krgenicam/a.cpp", "#include <krbuffer/krbuffer.h>\n",
     "libraries/krgenicam/a.cpp:1: krgenicam may not include krbuffer."},
    {"RoomReachedByRelativePath", "libraries/krbuffer/a.cpp", "#include \"../krgui/frame/wnd.h\"\n",
     "libraries/krbuffer/a.cpp:1: krbuffer may not include krgui."},
    {"WindowsIncludeTransports", "libraries/krgui/frame/a.cpp", "#include \"krtransport/krtransport.h\"\n",
     "libraries/krgui/frame/a.cpp:1: krgui may not include krtransport."},
    {"LogicIncludesFrame", "libraries/krgui/logic/b.cpp", "#include \"logic/a.h\"\n#include \"frame/wnd.h\"\n",
     "libraries/krgui/logic/b.cpp:2: krgui/logic may not include krgui."},
    {"LogicIncludesPublicWindow", "libraries/krgui/logic/b.h", "#include \"krgui/krwnd.h\"\n",
     "libraries/krgui/logic/b.h:1: krgui/logic may not include krgui."},
    {"LogicIncludesDevices", "libraries/krgui/logic/b.h", "#include \"krdevice/krdevice.h\"\n",
     "libraries/krgui/logic/b.h:1: krgui/logic may not include krdevice."},
    {"LogicSeesToolkit", "libraries/krgui/logic/b.h", "// Why.\n#include <QString>\n",
     "libraries/krgui/logic/b.h:2: The toolkit is seen by krgui outside logic/ and by programs alone, not <QString>."},
    {"LibrarySeesToolkitModule", "libraries/krsystem/a.cpp", "#include <QtCore/QString>\n",
     "libraries/krsystem/a.cpp:1: The toolkit is seen by krgui outside logic/ and by programs alone, not "
     "<QtCore/QString>."},
    {"LibrarySeesToolkitLowerCaseHeader", "libraries/krsystem/a.cpp", "#include <qglobal.h>\n",
     "libraries/krsystem/a.cpp:1: The toolkit is seen by krgui outside logic/ and by programs alone, not <qglobal.h>."},
    {"CommandLineToolSeesToolkit", "apps/krtool/a.cpp", "#include <QCoreApplication>\n",
     "apps/krtool/a.cpp:1: The toolkit is seen by krgui outside logic/ and by programs alone, not <QCoreApplication>."},
    {"LibraryIncludesProgram", "libraries/krbase/a.cpp", "#include \"../../apps/krviewer/main.cpp\"\n",
     "libraries/krbase/a.cpp:1: A library includes nothing outside the rooms, not apps/krviewer/main.cpp."},
    {"PublicHeaderShowsForeignLibrary", "libraries/krbase/include/krbase/krstring.h",
     "#pragma once\n// Text.\n\n#include <spdlog/spdlog.h>\n",
     "libraries/krbase/include/krbase/krstring.h:4: A public header shows no foreign library, not <spdlog/spdlog.h>."},
    {"PublicHeaderShowsSystemHeader", "libraries/krbase/include/krbase/krstring.h",
     "#pragma once\n// Text.\n#include <unistd.h>\n",
     "libraries/krbase/include/krbase/krstring.h:3: A public header shows no foreign library, not <unistd.h>."},
    {"PublicWindowShowsDialogHeader", "libraries/krgui/include/krgui/krwnd.h",
     "#pragma once\n// A window.\n#include <QDialog>\n",
     "libraries/krgui/include/krgui/krwnd.h:3: A public header shows no foreign library, not <QDialog>."},
    {"OtherPublicHeaderShowsWidget", "libraries/krbase/include/krbase/krstring.h",
     "#pragma once\n// Text.\n#include <QWidget>\n",
     "libraries/krbase/include/krbase/krstring.h:3: A public header shows no foreign library, not <QWidget>."},
    {"OtherPublicHeaderShowsNativeWindow", "libraries/krbase/include/krbase/krstring.h",
     "#pragma once\n// Text.\n#include <qwindowdefs.h>\n",
     "libraries/krbase/include/krbase/krstring.h:3: A public header shows no foreign library, not <qwindowdefs.h>."},
    {"PublicHeaderShowsInternalHeader", "libraries/krgui/include/krgui/krwnd.h",
     "#pragma once\n// A window.\n#include \"frame/wnd.h\"\n",
     "libraries/krgui/include/krgui/krwnd.h:3: A public header includes public headers alone, not "
     "libraries/krgui/frame/wnd.h."},
    {"PublicHeaderWithoutPragma", "libraries/krbase/include/krbase/krstring.h", "// Text.\n#pragma once\n",
     "libraries/krbase/include/krbase/krstring.h:1: A public header begins with #pragma once."},
    {"PublicHeaderWithoutReason", "libraries/krbase/include/krbase/krstring.h", "#pragma once\n\n#include <string>\n",
     "libraries/krbase/include/krbase/krstring.h:2: A comment that says why the header exists follows #pragma once."},
    {"PublicHeaderNotListed", "libraries/krbase/include/krbase/krtext.h", "#pragma once\n// Text.\n",
     "libraries/krbase/include/krbase/krtext.h:1: A public header is listed in the HEADERS of "
     "libraries/krbase/CMakeLists.txt."},
    {"NameWithUpperCase", "libraries/krbase/KrText.cpp", "int a;\n",
     "libraries/krbase/KrText.cpp:1: A file name is written in lower case."},
    {"RoomThatNobodyKnows", "libraries/krextra/a.cpp", "int a;\n",
     "libraries/krextra/a.cpp:1: The room krextra is not in the table of rooms."},
    {"RoomLinksHigher", "libraries/krsystem/CMakeLists.txt",
     "kr_add_library(krsystem ALIAS System\n  DEPENDS krbase\n    krdevice)\n",
     "libraries/krsystem/CMakeLists.txt:3: krsystem may not link krdevice."},
    {"RoomLinksTransportsByAlias", "libraries/krdevice/CMakeLists.txt",
     "kr_add_library(krdevice ALIAS Device)\ntarget_link_libraries(krdevice PRIVATE "
     "$<BUILD_INTERFACE:Kr::Transport>)\n",
     "libraries/krdevice/CMakeLists.txt:2: krdevice may not link krtransport."},
    {"RoomLinksToolkit", "libraries/krsystem/CMakeLists.txt",
     "kr_add_library(krsystem ALIAS System\n  FOREIGN Qt6::Core)\n",
     "libraries/krsystem/CMakeLists.txt:2: The toolkit is linked by krgui outside logic/ and by programs alone, not "
     "Qt6::Core."},
    {"RoomShowsToolkit", "libraries/krsystem/CMakeLists.txt",
     "kr_add_library(krsystem ALIAS System\n  SHOWN Qt6::Core)\n",
     "libraries/krsystem/CMakeLists.txt:2: The toolkit is linked by krgui outside logic/ and by programs alone, not "
     "Qt6::Core."},
    {"RoomTakesObjectsOfAHigherOne", "libraries/krsystem/CMakeLists.txt",
     "kr_add_library(krsystem ALIAS System\n  OBJECTS krguilogic)\n",
     "libraries/krsystem/CMakeLists.txt:2: krsystem may not link krgui/logic."},
    {"BackendLinksToolkit", "libraries/krtransport/simulation/CMakeLists.txt",
     "kr_add_backend(simulation FOREIGN Qt6::Core)\n",
     "libraries/krtransport/simulation/CMakeLists.txt:1: The toolkit is linked by krgui outside logic/ and by programs "
     "alone, not Qt6::Core."},
    {"LogicLinksToolkit", "libraries/krgui/logic/CMakeLists.txt",
     "target_link_libraries(krguilogic PRIVATE Qt6::Core)\n",
     "libraries/krgui/logic/CMakeLists.txt:1: The toolkit is linked by krgui outside logic/ and by programs alone, not "
     "Qt6::Core."},
    {"ToolLinksToolkit", "apps/krtool/CMakeLists.txt", "kr_add_executable(krtool SOURCES main.cpp DEPENDS Qt6::Core)\n",
     "apps/krtool/CMakeLists.txt:1: The toolkit is linked by krgui outside logic/ and by programs alone, not "
     "Qt6::Core."},
};

INSTANTIATE_TEST_SUITE_P(Rules, BrokenRule, testing::ValuesIn(kBreaches),
                         [](const auto& aInfo) { return std::string(aInfo.param.name); });

TEST_F(TreeCheck, InternalHeaderOfAnotherRoom_IsNoWayIn) {
  Write("libraries/krbase/internal.h", "#pragma once\n");
  Write("libraries/krgui/frame/a.cpp", "#include \"../../krbase/internal.h\"\n");

  EXPECT_THAT(Check(), testing::ElementsAre("libraries/krgui/frame/a.cpp:1: Of another room public headers alone are "
                                            "included, not libraries/krbase/internal.h."));
}

TEST_F(TreeCheck, LongFile_IsRefusedFromTheFirstLineBeyondTheLimit) {
  std::string text;
  for (int line = 0; line < 500; ++line)
    text += "int a;\n";
  Write("tests/unit/long.cpp", text);
  const std::vector<std::string> allowed = Check();
  Write("tests/unit/long.cpp", text + "int b;\n");

  EXPECT_THAT(allowed, testing::IsEmpty());
  EXPECT_THAT(Check(), testing::ElementsAre("tests/unit/long.cpp:501: A source file has 500 lines at most."));
}

TEST_F(TreeCheck, LongExample_IsRefusedForTheCodeOfAllItsFiles) {
  std::string code;
  for (int line = 0; line < 49; ++line)
    code += "int a; // Not the comment.\n";
  Write("examples/window/a.cpp", "// Not this,\n#include <b>\n\n" + code + "  /* nor\n this. */\n");
  Write("examples/window/b.h", code + "const char* a = R\"(//)\";\n");
  Write("examples/other/main.cpp", code);
  const std::vector<std::string> allowed = Check();
  Write("examples/window/b.h", code + "const char* a = R\"(//\n)\";\n");

  EXPECT_THAT(allowed, testing::IsEmpty());
  EXPECT_THAT(Check(), testing::ElementsAre("examples/window:1: An example has under 100 lines of code in all of its "
                                            "files, not 100."));
}

TEST_F(TreeCheck, LimitWithoutItsTest_IsNamedUntilThereIsOne) {
  Write("docs/security.md", "| what | test |\n|---|---|\n| frames | `Frames.TooLarge_AreRefused` |\n");
  const std::vector<std::string> without = Check();
  Write("tests/unit/a.cpp", "TEST(Frames, TooLarge_AreRefused) {}\n");

  EXPECT_THAT(without, testing::ElementsAre("docs/security.md:3: There is no test Frames.TooLarge_AreRefused."));
  EXPECT_THAT(Check(), testing::IsEmpty());
}

// What the program exits with for a tree.
int RunProgram(const fs::path& aRoot) {
  const int status = std::system((std::string(ARCHCHECK) + " '" + aRoot.string() + "' 2>/dev/null").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(TreeCheck, Program_FailsForABrokenRuleAlone) {
  const int whole = RunProgram(mRoot);
  Write("libraries/krbase/a.cpp", "#include <QString>\n");
  const int broken = RunProgram(mRoot);

  EXPECT_EQ(whole, 0);
  EXPECT_EQ(broken, 1);
  EXPECT_EQ(RunProgram(mRoot / "apps"), 2);
}

TEST(ProjectTree, AsItIs_KeepsTheRules) {
  const TreeReport report = CheckTree(PROJECT_ROOT);

  for (const Violation& violation : report.violations)
    ADD_FAILURE() << Format(violation);
  EXPECT_GT(report.filesRead, 30);
  EXPECT_GT(report.limitsRead, 30);
}

} // namespace
} // namespace archcheck
