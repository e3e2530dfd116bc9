// Camera bridges that one process saves and another loads.

#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <string>

using testing::HasSubstr;
using testing::Not;

namespace {

class SavedByAnotherProcess : public testing::TestWithParam<const char*> {
protected:
  // What a process writes that does something with a bridge (camerabridgechild.cpp).
  std::string Run(const std::string& aWhat) {
    const std::string command =
        "'" KR_TEST_CHILD "' " + aWhat + " " + GetParam() + " '" + mFolder.GetFile("settings.xml") + "'";
    std::FILE* const output = ::popen(command.c_str(), "re");
    if (!output) {
      ADD_FAILURE() << command;
      return {};
    }
    std::string text;
    std::array<char, 4096> bytes;
    while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), output))
      text.append(bytes.data(), count);
    EXPECT_EQ(::pclose(output), 0) << command;
    return text;
  }

  const TemporaryFolder mFolder;
};

} // namespace

TEST_P(SavedByAnotherProcess, Bridge_IsAsItWas) {
  const std::string begun = Run("show");
  const std::string saved = Run("save");

  const std::string loaded = Run("load");

  EXPECT_EQ(loaded, saved);
  for (const char* const line :
       {"\nWidth=320\n", "\nHeight=240\n", "\nOffsetX=64\n", "\nGain=4.5\n", "\nsource: Source1\n", "\nsync: 1\n",
        "\ndevice: Width=320\n", "\ndevice: Height=240\n", "\ndevice: OffsetX=64\n"}) {
    EXPECT_THAT("\n" + saved, HasSubstr(line));
    EXPECT_THAT("\n" + begun, Not(HasSubstr(line)));
  }
  EXPECT_THAT(saved, HasSubstr("\nselected: Source0\n"));
}

INSTANTIATE_TEST_SUITE_P(CameraBridge, SavedByAnotherProcess,
                         testing::Values("GenCP", "CLProtocol", "TolvanCameraFile"),
                         [](const testing::TestParamInfo<const char*>& aInfo) { return aInfo.param; });
