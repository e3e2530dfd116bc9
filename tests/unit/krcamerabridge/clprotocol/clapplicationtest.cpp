// When the application dies, the processes of its drivers end, whatever they do.

#include "driverfolder.h"

#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

// A started program with its output.
class Program {
public:
  Program(const krtest::DriverFolder& aFolder, const std::string& aDriver,
          const std::string& aPath = KR_TEST_APPLICATION) {
    int pipes[2];
    EXPECT_EQ(pipe(pipes), 0);
    const std::string root = aFolder.GetRoot();
    const std::string clTemplate = aFolder.GetTemplate(aDriver);
    mID = fork();
    if (mID == 0) {
      dup2(pipes[1], STDOUT_FILENO);
      execl(aPath.c_str(), aPath.c_str(), root.c_str(), clTemplate.c_str(),
            "SchemaVersion.1.1@Maker#Family@XMLVersion.1.2.0", nullptr);
      _exit(127);
    }
    close(pipes[1]);
    mOutput = fdopen(pipes[0], "r");
  }
  ~Program() {
    std::fclose(mOutput);
    Kill();
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  int ReadNumber() {
    char text[32] = {};
    return std::fgets(text, sizeof text, mOutput) != nullptr ? std::atoi(text) : 0;
  }
  void Kill() {
    if (mID > 0) {
      kill(mID, SIGKILL);
      waitpid(mID, nullptr, 0);
    }
    mID = -1;
  }

private:
  pid_t mID = -1;
  std::FILE* mOutput = nullptr;
};

class ApplicationTest : public testing::TestWithParam<const char*> {};

} // namespace

TEST_P(ApplicationTest, Killed_TakesTheDriversProcessAlong) {
  // What is left behind becomes this process' child, so that its end can be waited for.
  ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
  krtest::DriverFolder folder;
  folder.Install(GetParam());
  Program application(folder, GetParam());
  const pid_t driver = application.ReadNumber();
  ASSERT_GT(driver, 0);

  application.Kill();

  while (waitpid(-1, nullptr, 0) > 0) {
  }
  EXPECT_EQ(errno, ECHILD);
  EXPECT_EQ(kill(driver, 0), -1);
}

TEST(InstalledApplication, FindsTheProgramForDriversFromItsOwnPlace) {
  krtest::DriverFolder folder;
  folder.Install("libgood.so");
  const TemporaryFolder prefix;
  const std::filesystem::path host = prefix.GetPath() / KR_TEST_HOST_FROM_PREFIX;
  std::filesystem::create_directories(host.parent_path());
  std::filesystem::create_directories(prefix.GetPath() / "bin");
  std::filesystem::copy_file(KR_TEST_HOST, host);
  std::filesystem::copy_file(KR_TEST_APPLICATION, prefix.GetPath() / "bin/application");
  unsetenv("KRGUI_CLPROTOCOL_HOST");

  Program application(folder, "libgood.so", prefix.GetFile("bin/application"));

  const pid_t driver = application.ReadNumber();
  ASSERT_GT(driver, 0);
  EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(driver) + "/exe"), host);
}

INSTANTIATE_TEST_SUITE_P(Drivers, ApplicationTest,
                         testing::Values("libgood.so", "libhang-clpWriteRegister.so", "libspawn-clpInitLib.so"),
                         [](const auto& aInfo) {
                           const std::string name = aInfo.param;
                           return name.substr(3, name.find_first_of("-.") - 3);
                         });
