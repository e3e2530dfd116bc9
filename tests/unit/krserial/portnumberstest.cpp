// The file that remembers which serial port has which number.

#include "portnumbers.h"
#include "await.h"
#include "krbase/filedescriptor.h"
#include "krbase/krlogger.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

using krserial::AssignPortNumbers;
using krserial::PortNumbers;
using krserial::TtyIdentity;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

constexpr char kHeader[] = "krgui serial port numbers 1\n";

// The numbers of a text that must be good.
PortNumbers Parse(const std::string& aText) {
  PortNumbers numbers;
  const KrResult parsed = krserial::ParsePortNumbers(aText, numbers);
  EXPECT_TRUE(parsed.IsOK()) << parsed.GetDescription().CStr();
  return numbers;
}

class PortNumbersTest : public testing::Test {
protected:
  std::vector<std::uint32_t> Assign(const std::vector<TtyIdentity>& aTtys) const {
    return AssignPortNumbers(mFile, aTtys, {});
  }

  // Until both are remembered: who holds the file up for long, as on a busy disk, is not waited for each time.
  [[nodiscard]] bool AssignForGood(const std::string& aFirst, const std::string& aSecond) const {
    return krtest::Await([&] {
      PortNumbers kept;
      Assign({{aFirst}, {aSecond}});
      (void)krserial::ParsePortNumbers(TemporaryFolder::ReadFile(mFile), kept);
      return kept.contains(aFirst) && kept.contains(aSecond);
    });
  }

  const TemporaryFolder mFolder;
  const std::string mFile = mFolder.GetFile("numbers");
  KrLogCapture mLog;
};

} // namespace

TEST_F(PortNumbersTest, Format_OfNumbers_IsReadAgain) {
  const PortNumbers numbers = {{"usb 1:2 A interface 00", 4}, {"path /x", 1}, {"z", 4096}};

  EXPECT_EQ(Parse(krserial::FormatPortNumbers(numbers)), numbers);
}

TEST_F(PortNumbersTest, Parse_OfDamagedTexts_SaysInWhichLine) {
  const struct {
    const char* name;
    std::string text;
    const char* place;
  } rows[] = {
      {"nothing", "", "line 1"},
      {"another file", "something else\n1 a\n", "line 1"},
      {"number 0", std::string(kHeader) + "0 a\n", "line 2"},
      {"number too large", std::string(kHeader) + "4097 a\n", "line 2"},
      {"no number", std::string(kHeader) + "1 a\nb\n", "line 3"},
      {"no identity", std::string(kHeader) + "1 \n", "line 2"},
      {"cut off", std::string(kHeader) + "1 a\n2 b", "line 3"},
      {"number twice", std::string(kHeader) + "1 a\n1 b\n", "line 3"},
      {"identity twice", std::string(kHeader) + "1 a\n2 a\n", "line 3"},
      {"bytes that are no text", std::string(kHeader) + "1 a\x01\n", "line 2"},
  };

  for (const auto& row : rows) {
    PortNumbers numbers = {{"kept", 7}};
    const KrResult parsed = krserial::ParsePortNumbers(row.text, numbers);

    EXPECT_EQ(parsed, KrResult::Code::BadData) << row.name;
    EXPECT_THAT(parsed.GetDescription().ToUtf8(), HasSubstr(row.place)) << row.name;
    EXPECT_THAT(numbers, SizeIs(1)) << row.name;
  }
}

TEST_F(PortNumbersTest, Assign_OfAnotherPortAfterOneHasGone_GivesANumberThatNoneHad) {
  EXPECT_THAT(Assign({{"a"}, {"b"}}), ElementsAre(1, 2));

  EXPECT_THAT(Assign({{"c"}}), ElementsAre(3));
  EXPECT_THAT(Assign({{"b"}, {"a"}}), ElementsAre(2, 1));
  EXPECT_THAT(mLog.GetRecords(), SizeIs(0));
}

TEST_F(PortNumbersTest, Assign_WithNumbersTakenByLinks_PassesThemOver) {
  EXPECT_THAT(AssignPortNumbers(mFile, {{"a"}, {"b"}}, {1, 3}), ElementsAre(2, 4));
}

TEST_F(PortNumbersTest, Assign_OverADamagedFile_KeepsItAsideAndSaysSo) {
  TemporaryFolder::WriteFile(mFile, "1 a\n");

  EXPECT_THAT(Assign({{"b"}}), ElementsAre(1));

  EXPECT_EQ(TemporaryFolder::ReadFile(mFile + ".damaged"), "1 a\n");
  EXPECT_EQ(Parse(TemporaryFolder::ReadFile(mFile)).at("b"), 1U);
  ASSERT_THAT(mLog.GetRecords(), SizeIs(1));
  EXPECT_EQ(mLog.GetRecords().front().level, KrLogLevel::Warning);
  EXPECT_THAT(mLog.GetRecords().front().text.ToUtf8(), HasSubstr(mFile + ".damaged"));
}

TEST_F(PortNumbersTest, Assign_OverAnotherDamagedFile_KeepsBoth) {
  for (const char* text : {"1 first\n", "1 second\n"}) {
    TemporaryFolder::WriteFile(mFile, text);
    Assign({{"b"}});
  }

  EXPECT_EQ(TemporaryFolder::ReadFile(mFile + ".damaged"), "1 first\n");
  EXPECT_EQ(TemporaryFolder::ReadFile(mFile + ".damaged.2"), "1 second\n");
}

TEST_F(PortNumbersTest, Assign_OfOneThatIsMoved_KeepsItsNumber) {
  EXPECT_THAT(Assign({{"a", "@1-1"}}), ElementsAre(1));

  EXPECT_THAT(Assign({{"a", "@1-2"}}), ElementsAre(1));
  EXPECT_THAT(Assign({{"a", "@1-1"}}), ElementsAre(1));

  EXPECT_THAT(Parse(TemporaryFolder::ReadFile(mFile)), SizeIs(1));
}

TEST_F(PortNumbersTest, Assign_OfATwinOfOneThatIsThere_LeavesTheFirstItsNumber) {
  EXPECT_THAT(Assign({{"a", "@1-1"}}), ElementsAre(1));

  EXPECT_THAT(Assign({{"a", "@1-2"}, {"a", "@1-1"}}), ElementsAre(2, 1));
  EXPECT_THAT(Assign({{"a", "@1-2"}}), ElementsAre(2)) << "the first has gone";
  EXPECT_THAT(Assign({{"a", "@1-3"}}), ElementsAre(3)) << "which of the two, nobody can tell";

  EXPECT_THAT(Assign({{"a", "@1-1"}}), ElementsAre(1));
}

TEST_F(PortNumbersTest, Assign_OfTwinsThatComeTogether_KnowsThemByTheirPlaces) {
  EXPECT_THAT(Assign({{"a", "@1-1"}, {"a", "@1-2"}}), ElementsAre(1, 2));

  EXPECT_THAT(Assign({{"a", "@1-2"}}), ElementsAre(2));
  EXPECT_THAT(Assign({{"a", "@1-3"}}), ElementsAre(3));
}

TEST_F(PortNumbersTest, Assign_OverAFileOfEndlessLength_KeepsItAside) {
  TemporaryFolder::WriteFile(mFile, std::string(krserial::kMostNumbersBytes + 1, 'x'));

  EXPECT_THAT(Assign({{"b"}}), ElementsAre(1));

  EXPECT_EQ(TemporaryFolder::ReadFile(mFile + ".damaged").size(), krserial::kMostNumbersBytes + 1);
}

TEST_F(PortNumbersTest, Assign_WhereNoFileCanBe_GivesNumbersAndWarns) {
  TemporaryFolder::WriteFile(mFile, "no folder");

  EXPECT_THAT(AssignPortNumbers(mFile + "/numbers", {{"a"}}, {}), ElementsAre(1));

  ASSERT_THAT(mLog.GetRecords(), SizeIs(1));
  EXPECT_THAT(mLog.GetRecords().front().text.ToUtf8(), HasSubstr("are not kept"));
}

TEST_F(PortNumbersTest, Assign_WhileAnotherKeepsTheLock_LeavesWhatHasANumberThat) {
  TemporaryFolder::WriteFile(mFile, kHeader + "5 known\n"s);
  const krbase::FileDescriptor lock(::open((mFile + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  ASSERT_EQ(::flock(lock.Get(), LOCK_EX), 0);

  for (int round = 0; round < 2; ++round)
    EXPECT_THAT(Assign({{"new"}, {"known"}}), ElementsAre(1U, 5U));

  EXPECT_EQ(TemporaryFolder::ReadFile(mFile), kHeader + "5 known\n"s);
  EXPECT_THAT(mLog.GetRecords(), SizeIs(2));
}

TEST_F(PortNumbersTest, Assign_WhenAllNumbersAreGiven_LeavesTheNewPortWithoutOne) {
  PortNumbers all;
  for (std::uint32_t number = 1; number <= 4096; ++number)
    all.emplace("port" + std::to_string(number), number);
  TemporaryFolder::WriteFile(mFile, krserial::FormatPortNumbers(all));

  EXPECT_THAT(Assign({{"new"}, {"port7"}}), ElementsAre(0, 7));
}

TEST_F(PortNumbersTest, Assign_ByProcessesAtOnce_GivesEveryPortANumberOfItsOwn) {
  constexpr int kProcesses = 4;
  constexpr int kPorts = 25;
  std::vector<pid_t> processes;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (int port = 0; port < kPorts; ++port)
        if (!AssignForGood("shared" + std::to_string(port), std::to_string(process) + "-" + std::to_string(port)))
          _exit(1);
      _exit(0);
    }
    processes.push_back(child);
  }
  for (const pid_t process : processes) {
    int status = -1;
    ASSERT_EQ(waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
  }

  // A number that two ports had would make the text a damaged one.
  EXPECT_THAT(Parse(TemporaryFolder::ReadFile(mFile)), SizeIs(kPorts + kProcesses * kPorts));
}
