// Lock files of programs of others at the ports that a bridge opens.

#include "bridge/ttylocks.h"
#include "bridge/ttyend.h"
#include "hostfolders.h"
#include "pseudoterminal.h"

#include <gmock/gmock.h>

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

using krserial::IHostEnd;
using krserial::ParseTtyLock;
using testing::HasSubstr;
using namespace std::string_literals;

namespace {

pid_t MakeProcessThatHasEnded() {
  const pid_t process = fork();
  if (process == 0)
    _exit(0);
  EXPECT_EQ(waitpid(process, nullptr, 0), process);
  return process;
}

class TtyLocksTest : public testing::Test {
protected:
  // An adapter behind COM1 and a link to it behind COM7.
  TtyLocksTest() {
    mHost.AddUsb("ttyUSB0", {}, mTerminal.GetPath());
    mHost.Link("com7", mHost.GetFile("dev/ttyUSB0"));
  }
  void Lock(const std::string& aName, const std::string& aText) const {
    TemporaryFolder::WriteFile(GetLock(aName), aText);
  }
  std::string GetLock(const std::string& aName) const { return mHost.GetFile("locks/LCK.." + aName); }
  static KrResult TryToOpen(const char* aName) {
    std::unique_ptr<IHostEnd> end;
    return krserial::TtyEnd::Open(aName, {}, end);
  }

  HostFolders mHost;
  const krtest::PseudoTerminal mTerminal;
};

} // namespace

TEST_F(TtyLocksTest, Parse_OfWhatProgramsWrite_IsTheProcess) {
  const pid_t process = 1234;
  const std::string bytes(reinterpret_cast<const char*>(&process), sizeof(process));
  const struct {
    const char* name;
    std::string text;
    std::optional<pid_t> process;
  } rows[] = {{"ten characters", "      1234\n", 1234},
              {"a number alone", "1234", 1234},
              {"with the program's name", "      1234 picocom root\n", 1234},
              {"bytes", bytes, 1234},
              {"nothing", "", {}},
              {"a word", "nobody\n", {}},
              {"a number within a word", "12ab56", {}},
              {"no process", "         0\n", {}},
              {"all processes", "        -1\n", {}},
              {"negative bytes", "\xff\xff\xff\xff", {}},
              {"too large a number", "99999999999\n", {}}};

  for (const auto& row : rows)
    EXPECT_EQ(ParseTtyLock(row.text), row.process) << row.name;
}

TEST_F(TtyLocksTest, Open_OfAPortThatARunningProcessHasLocked_IsBusyAndSaysByWhat) {
  const std::string running = "      " + std::to_string(getpid()) + "\n";
  const std::string terminal = std::filesystem::path(mTerminal.GetPath()).filename();
  for (const std::string& name : {"ttyUSB0"s, "pts_" + terminal, terminal}) {
    Lock(name, running);

    for (const char* port : {"COM1", "COM7"}) {
      const KrResult opened = TryToOpen(port);

      EXPECT_EQ(opened, KrResult::Code::Busy) << name;
      EXPECT_THAT(opened.GetDescription().ToUtf8(), HasSubstr(GetLock(name)));
      EXPECT_THAT(opened.GetDescription().ToUtf8(), HasSubstr(std::to_string(getpid())));
    }
    std::filesystem::remove(GetLock(name));
  }

  EXPECT_TRUE(TryToOpen("COM1").IsOK());
}

TEST_F(TtyLocksTest, Open_OfAPortWithALockLongerThanAny_TakesItForNone) {
  Lock("ttyUSB0", std::to_string(getpid()) + std::string(4096, ' '));

  EXPECT_TRUE(TryToOpen("COM1").IsOK());
}

TEST_F(TtyLocksTest, Open_OfAPortWhoseLockNoProcessHolds_LeavesTheLock) {
  const std::string ended = std::to_string(MakeProcessThatHasEnded()) + "\n";
  for (const std::string& text : {ended, "nonsense"s, ""s}) {
    Lock("ttyUSB0", text);

    EXPECT_TRUE(TryToOpen("COM1").IsOK()) << text;

    EXPECT_EQ(TemporaryFolder::ReadFile(GetLock("ttyUSB0")), text);
  }
}

TEST_F(TtyLocksTest, Open_OfAnotherPortThanTheLockedOne_IsOkAndMakesNoLock) {
  Lock("ttyUSB1", std::to_string(getpid()) + "\n");
  Lock("com7", std::to_string(getpid()) + "\n"); // A link's name means another port to another user.
  std::unique_ptr<IHostEnd> end;

  EXPECT_TRUE(krserial::TtyEnd::Open("COM7", {}, end).IsOK());

  EXPECT_FALSE(std::filesystem::exists(GetLock("ttyUSB0")));
}
