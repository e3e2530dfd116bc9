// Pseudo-terminals behind the serial ports of simulated cameras: real programs' ends of real lines.

#include "seriallinefixture.h"

#include "descriptorrefusal.h"
#include "krbase/filedescriptor.h"
#include "krbase/krlogger.h"
#include "pseudoterminal.h"
#include "simulation/serial/hosttty.h"
#include "simulation/serial/ttylineend.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <future>

using krtest::PseudoTerminal;
using testing::HasSubstr;

namespace {

/// How the other end has set up the line.
termios GetSettings(const PseudoTerminal& aTerminal) {
  termios settings = {};
  EXPECT_EQ(tcgetattr(aTerminal.GetDescriptor(), &settings), 0);
  return settings;
}

// A path in a folder of the test's own, which leads to one pseudo-terminal after the other.
class TtyPath {
public:
  TtyPath() {
    std::string name = testing::TempDir() + "ttyXXXXXX";
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    mFolder = name;
  }
  ~TtyPath() { std::filesystem::remove_all(mFolder); }
  TtyPath(const TtyPath&) = delete;
  TtyPath& operator=(const TtyPath&) = delete;

  std::string Get() const { return mFolder / "line"; }
  void LeadTo(const std::string& aPath) const {
    std::filesystem::remove(Get());
    std::filesystem::create_symlink(aPath, Get());
  }

private:
  std::filesystem::path mFolder;
};

// Another opening of a pseudo-terminal's other end, which sees what nobody has read of it yet.
class HostPath {
public:
  explicit HostPath(const std::string& aPath) : mTty(::open(aPath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    EXPECT_TRUE(mTty.IsOpen());
  }

  std::size_t CountWaiting() const {
    int count = 0;
    EXPECT_EQ(ioctl(mTty.Get(), FIONREAD, &count), 0);
    return static_cast<std::size_t>(count);
  }

private:
  krbase::FileDescriptor mTty;
};

std::string MakeBytes(std::size_t aSize, std::uint32_t aSeed) {
  std::string bytes(aSize, '\0');
  for (char& byte : bytes) {
    aSeed = aSeed * 1664525 + 1013904223;
    byte = static_cast<char>(aSeed >> 24);
  }
  return bytes;
}

class SerialTtyTest : public SerialLineTest {
protected:
  explicit SerialTtyTest(std::shared_ptr<TtyPath> aPath = std::make_shared<TtyPath>())
      : SerialLineTest(
            MakeSerialLab("{port: Serial0, rates: [115200, 250000, 9600], paced: false, behind: tty, path: \"" +
                          aPath->Get() + "\"}")),
        mPath(std::move(aPath)) {
    UseNewTerminal();
  }

  void UseNewTerminal() {
    mTerminal = std::make_unique<PseudoTerminal>();
    mPath->LeadTo(mTerminal->GetPath());
  }
  int CountLogged(KrLogLevel aLevel) const {
    int count = 0;
    for (const KrLogRecord& record : mLog.GetRecords())
      count += record.level == aLevel ? 1 : 0;
    return count;
  }

  const std::shared_ptr<TtyPath> mPath;
  std::unique_ptr<PseudoTerminal> mTerminal;
  KrLogCapture mLog;
};

} // namespace

TEST_F(SerialTtyTest, Bytes_OfEveryValue_PassBothWaysUnchanged) {
  const Channel channel = OpenPort(0);
  std::string bytes;
  for (int value = 0; value < 256; ++value)
    bytes += static_cast<char>(value);

  mTerminal->Write(bytes);
  EXPECT_TRUE(Write(*channel, bytes).IsOK());

  EXPECT_EQ(ReadBytes(*channel, bytes.size()), bytes);
  EXPECT_EQ(mTerminal->Read(bytes.size()), bytes);
  EXPECT_EQ(CountLogged(KrLogLevel::Warning), 0);
}

TEST_F(SerialTtyTest, Megabytes_InBothDirectionsAtOnce_AreWholeAndInOrder) {
  const Channel channel = OpenPort(0);
  const std::string sent = MakeBytes(1 << 20, 1);
  const std::string received = MakeBytes(1 << 20, 2);

  auto portWriting = std::async(std::launch::async, [&] { return Write(*channel, sent); });
  auto terminalWriting = std::async(std::launch::async, [&] { mTerminal->Write(received); });
  auto terminalReading = std::async(std::launch::async, [&] { return mTerminal->Read(sent.size()); });
  const std::string read = ReadBytes(*channel, received.size());

  EXPECT_TRUE(portWriting.get().IsOK());
  terminalWriting.get();
  EXPECT_TRUE(terminalReading.get() == sent) << "the bytes that the port sent differ";
  EXPECT_TRUE(read == received) << "the bytes that the port received differ";
}

TEST_F(SerialTtyTest, Tty_OnceOpened_IsRawAndHasThePortsRate) {
  const Channel channel = OpenPort(0);

  const termios opened = GetSettings(*mTerminal);
  EXPECT_EQ(cfgetospeed(&opened), static_cast<speed_t>(B115200));
  EXPECT_EQ(opened.c_lflag & (ICANON | ECHO | ISIG), 0u);
  EXPECT_EQ(opened.c_oflag & OPOST, 0u);
  ASSERT_TRUE(GetArray().GetEnum("Uart0BaudRate")->SetEntry("Baud9600").IsOK());

  EXPECT_TRUE(WaitUntil([&] {
    const termios changed = GetSettings(*mTerminal);
    return cfgetospeed(&changed) == static_cast<speed_t>(B9600);
  }));
}

TEST_F(SerialTtyTest, Tty_AtARateWithoutANameInTheSystem_IsOpened) {
  ASSERT_TRUE(Open(kMonoMAC, mDevice).IsOK());
  ASSERT_TRUE(GetArray().GetEnum("Uart0BaudRate")->SetEntry("Baud250000").IsOK());
  const Channel channel = OpenPort(0);

  EXPECT_TRUE(Write(*channel, "fast").IsOK());

  EXPECT_EQ(mTerminal->Read(4), "fast");
}

TEST_F(SerialTtyTest, BytesThatCameBeforeThePortWasOpened_AreNotHeard) {
  OpenPort(0).reset();
  mTerminal->Write("before");

  const Channel channel = OpenPort(0);
  mTerminal->Write("after");

  EXPECT_EQ(ReadBytes(*channel, 5), "after");
}

TEST_F(SerialTtyTest, Tty_ThatNobodyReads_HoldsUpWritersAndLetsThePortBeClosed) {
  const Channel channel = OpenPort(0);
  const std::string bytes = MakeBytes(1 << 20, 3);
  std::size_t written = 0;
  auto writing = std::async(std::launch::async, [&] {
    return channel->Write(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), written, kGenerousLimitMs);
  });
  ASSERT_EQ(mTerminal->Read(1000), bytes.substr(0, 1000));

  channel->Close();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
  EXPECT_LT(written, bytes.size());
}

TEST_F(SerialTtyTest, Bytes_ThatTheTtyHasTaken_AreReadAfterThePortWasClosed) {
  const Channel channel = OpenPort(0);
  ASSERT_TRUE(Write(*channel, "bye").IsOK());
  ASSERT_EQ(mTerminal->Read(1), "b") << "all of it was taken at once";

  channel->Close();

  EXPECT_EQ(mTerminal->Read(2), "ye");
}

TEST_F(SerialTtyTest, Tty_ThatVanishes_IsToldOnceAndTakenUpAgainWhenItIsBack) {
  const Channel channel = OpenPort(0);
  mTerminal->Write("first");
  ASSERT_EQ(ReadBytes(*channel, 5), "first");

  mTerminal.reset();
  ASSERT_TRUE(WaitUntil([&] { return CountLogged(KrLogLevel::Warning) == 1; }));
  EXPECT_TRUE(Write(*channel, "to nobody").IsOK()) << "a silent line takes what is sent";
  UseNewTerminal();
  ASSERT_TRUE(WaitUntil([&] { return CountLogged(KrLogLevel::Info) == 1; }));
  mTerminal->Write("second");
  ASSERT_TRUE(Write(*channel, "third").IsOK());

  EXPECT_EQ(ReadBytes(*channel, 6), "second");
  EXPECT_EQ(mTerminal->Read(5), "third");
  EXPECT_EQ(CountLogged(KrLogLevel::Warning), 1);
}

TEST_F(SerialTtyTest, Tty_ThatRefusesARate_IsTakenUpAgainWhenItIsBack) {
  // Another end on the path alone: while it is full its thread does not look at the tty.
  krtransport::TtyLineEnd end("Serial0", mPath->Get());
  end.Open(115200, [] {});
  const HostPath other(mTerminal->GetPath());
  constexpr std::size_t kRest = 100;
  mTerminal->Write(std::string(krtransport::TtyLineEnd::kBufferBytes + kRest, 'x'));
  ASSERT_TRUE(WaitUntil([&] { return other.CountWaiting() == kRest; }));
  mTerminal.reset();

  end.SetRate(9600);
  ASSERT_EQ(CountLogged(KrLogLevel::Warning), 1);
  UseNewTerminal();

  EXPECT_TRUE(WaitUntil([&] { return CountLogged(KrLogLevel::Info) == 1; }));
  end.Close();
}

TEST_F(SerialTtyTest, LineMadeWhileNoDescriptorWasLeft_IsHeardOnceItIsOpened) {
  std::unique_ptr<krtransport::TtyLineEnd> end;
  {
    const DescriptorRefusal refusal;
    ASSERT_FALSE(krbase::WakeEvent().IsOpen());
    end = std::make_unique<krtransport::TtyLineEnd>("Serial0", mPath->Get());
  }
  const std::string sent = "heard";

  end->Open(115200, [] {});
  ASSERT_EQ(CountLogged(KrLogLevel::Warning), 0);
  EXPECT_EQ(end->Take(reinterpret_cast<const std::uint8_t*>(sent.data()), sent.size(), 0), sent.size());

  EXPECT_EQ(mTerminal->Read(sent.size()), sent);
  end->Close();
}

TEST_F(SerialTtyTest, PathWithoutATty_LeavesTheLineSilent) {
  mPath->LeadTo("/dev/null");
  const Channel channel = OpenPort(0);

  EXPECT_TRUE(Write(*channel, "to nobody").IsOK());

  EXPECT_EQ(ReadWaiting(*channel), "");
  ASSERT_EQ(CountLogged(KrLogLevel::Warning), 1);
  const std::string text = mLog.GetRecords().front().text.ToUtf8();
  EXPECT_THAT(text, HasSubstr("M S1: Serial0"));
  EXPECT_THAT(text, HasSubstr(mPath->Get()));
}

TEST_F(SerialTtyTest, LossOfTheCamera_GivesTheTtyBack) {
  const Channel channel = OpenPort(0);

  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());

  const std::string path = mTerminal->GetPath();
  EXPECT_TRUE(WaitUntil([&] {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code error;
      if (std::filesystem::read_symlink(entry, error) == path)
        return false;
    }
    return true;
  }));
}

TEST_F(SerialTtyTest, Tty_OpenedByASessionWithoutATerminal_DoesNotBecomeItsTerminal) {
  const std::string path = mTerminal->GetPath();

  EXPECT_EXIT(
      {
        setsid();
        krtransport::HostTty tty;
        const bool isOpen = tty.Open(path, 9600).IsOK();
        const bool hasTerminal = open("/dev/tty", O_RDWR) >= 0;
        _exit(isOpen && !hasTerminal ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}
