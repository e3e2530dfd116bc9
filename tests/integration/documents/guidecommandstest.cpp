// The commands of the guide, line by line as they stand there, on a computer with an adapter eth0 and a camera at
// 192.168.1.20. Three programs are not what they are elsewhere: sudo starts what follows it, as the test is root on its
// network; sysctl writes down what it was asked, as its settings are the whole machine's; krviewer is given an end, as
// nobody closes its windows.

#include "documentparts.h"
#include "fakecamera.h"
#include "networklab.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace krtest {
namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::HasSubstr;

/// What a command said, on both channels, and how it ended.
struct Outcome {
  int exitCode = -1;
  std::string output;
};

std::string ReadText(const fs::path& aFile) {
  std::ifstream stream(aFile, std::ios::binary);
  EXPECT_TRUE(stream) << aFile;
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

Outcome RunCommand(const std::string& aCommand) {
  Outcome outcome;
  std::FILE* const pipe = ::popen(("{ " + aCommand + "; } 2>&1").c_str(), "r");
  if (!pipe)
    return outcome;
  std::array<char, 4096> bytes{};
  while (const std::size_t count = std::fread(bytes.data(), 1, bytes.size(), pipe))
    outcome.output.append(bytes.data(), count);
  const int status = ::pclose(pipe);
  outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

/// A folder to work in, with the programs that the guide calls.
class GuideCommands : public testing::Test {
protected:
  void SetUp() override {
    fs::create_directory(mWork.GetPath() / "bin");
    fs::create_symlink(KRTOOL_PATH, mWork.GetPath() / "bin/krtool");
    WriteProgram("sudo", "exec \"$@\"");
    WriteProgram("sysctl", "echo \"$@\" >>" + mWork.GetFile("sysctl.txt"));
    WriteProgram("krviewer",
                 "exec " KRVIEWER_PATH " --headless --frames 5 --screenshot " + mWork.GetFile("pictures") + " \"$@\"");
    const std::string path = mWork.GetFile("bin") + ":" + std::getenv("PATH") + ":/usr/sbin:/sbin";
    ::setenv("PATH", path.c_str(), 1);
  }

  void WriteProgram(const std::string& aName, const std::string& aScript) {
    const std::string file = mWork.GetFile("bin/" + aName);
    std::ofstream(file) << "#!/bin/sh\n" << aScript << '\n';
    fs::permissions(file, fs::perms::owner_all);
  }
  /// What the guide has its reader make, and where it is built against: the package, installed for the test.
  void PrepareProject() {
    const std::string prefix = mWork.GetFile("prefix");
    const Outcome installed = RunCommand(CMAKE_PATH " --install " BUILD_FOLDER " --prefix " + prefix);
    ASSERT_EQ(installed.exitCode, 0) << installed.output;
    ::setenv("CMAKE_PREFIX_PATH", prefix.c_str(), 1);
    ::setenv("CXXFLAGS", SANITIZE_FLAG, 1);
    fs::copy(EXAMPLE_FOLDER, mWork.GetPath() / "my_camera");
  }
  /// Runs each line of the guide's commands; what they say, by the line.
  std::vector<std::pair<std::string, std::string>> RunGuide() {
    std::vector<std::pair<std::string, std::string>> said;
    for (const CodeBlock& block : ParseCodeBlocks(ReadText(GUIDE_PATH))) {
      std::istringstream lines(block.language == "sh" ? block.text : "");
      for (std::string line; std::getline(lines, line);) {
        const Outcome outcome = RunCommand("cd " + mWork.GetPath().string() + " && " + line);
        // Where there is anything to say, the diagnosis ends with 3.
        const bool mayEndWith3 = line.ends_with("--diagnose");
        EXPECT_TRUE(outcome.exitCode == 0 || (mayEndWith3 && outcome.exitCode == 3))
            << line << " ended with " << outcome.exitCode << ":\n"
            << outcome.output;
        said.emplace_back(line, outcome.output);
      }
    }
    return said;
  }

  TemporaryFolder mWork;
};

} // namespace

TEST_F(GuideCommands, EachLine_RunsAsItStandsThereAndDoesWhatTheGuideSays) {
  NetworkLab lab;
  NetworkHost& host = lab.AddHost("camera");
  lab.Connect("eth0", host, "port0");
  lab.SetAddress("eth0", "192.168.1.1/24");
  host.SetAddress("port0", "192.168.1.20/24");
  host.RunIp({"link", "set", "port0", "mtu", "9000"});
  const FakeCamera camera({.address = "192.168.1.20", .namespaceFile = host.GetNamespaceFile()});
  ASSERT_TRUE(camera.IsAnswering());
  ASSERT_NO_FATAL_FAILURE(PrepareProject());

  const auto said = RunGuide();

  const auto says = [](const char* aCommand, const char* aText) {
    return Contains(testing::Pair(aCommand, HasSubstr(aText)));
  };
  EXPECT_THAT(said, says("krtool list", "192.168.1.20"));
  EXPECT_THAT(said, says("krtool ip 192.168.1.20", "192.168.1.1/255.255.255.0"));
  EXPECT_THAT(said, says("krtool stream 192.168.1.20 --frames 50", "frames=50 "));
  EXPECT_THAT(said, says("krtool set 192.168.1.20 Width 256", "256"));
  EXPECT_THAT(said, says("krviewer 192.168.1.20", "frames=5"));
  EXPECT_THAT(said, says("krviewer --simulate", "frames=5"));
  EXPECT_THAT(RunCommand("ip link show eth0").output, HasSubstr("mtu 9000"));
  EXPECT_EQ(ReadText(mWork.GetFile("sysctl.txt")), "-w net.core.rmem_max=33554432\n");
  for (const char* const file : {"shot.png", "settings.txt", "my_camera/build/first_application"})
    EXPECT_TRUE(fs::exists(mWork.GetPath() / file)) << file;
}

TEST_F(GuideCommands, EachLab_LoadsAsItStandsThereAndHasItsCamera) {
  const std::string file = mWork.GetFile("lab.yaml");

  int count = 0;
  for (const CodeBlock& block : ParseCodeBlocks(ReadText(GUIDE_PATH))) {
    if (block.language != "yaml")
      continue;
    ++count;
    std::ofstream(file) << block.text;
    const Outcome listed = RunCommand("krtool list --lab " + file);
    EXPECT_EQ(listed.exitCode, 0) << "docs/guide.md:" << block.line << ":\n" << listed.output;
    EXPECT_THAT(listed.output, HasSubstr("line-1")) << "docs/guide.md:" << block.line;
  }
  EXPECT_GE(count, 1);
}

TEST_F(GuideCommands, PackagesToShip_HaveEachLibraryThatTheProgramWants) {
  if (std::string_view(SANITIZE_FLAG) != "")
    GTEST_SKIP() << "A sanitizer's checks want libraries that what is shipped does not.";
  const Outcome wanted = RunCommand("objdump -p " EXAMPLE_PROGRAM " | awk '/NEEDED/ { print $2 }'");
  const std::string guide = ReadText(GUIDE_PATH);

  std::istringstream libraries(wanted.output);
  int count = 0;
  for (std::string library; std::getline(libraries, library);) {
    if (library.starts_with("libkr"))
      continue; // Our own, where they are shared.
    ++count;
    const std::string owners = RunCommand("dpkg --search '*/" + library + "' | cut -d: -f1").output;
    std::istringstream packages(owners);
    bool isNamed = false;
    for (std::string package; std::getline(packages, package);)
      isNamed = isNamed || guide.find("`" + package + "`") != guide.npos;
    EXPECT_TRUE(isNamed) << library << " is in none of the packages of docs/guide.md but in " << owners;
  }
  EXPECT_GE(count, 10) << wanted.output;
}

} // namespace krtest
