// A serial port of the host as the end of a bridge: real pseudo-terminals, with the test at their other ends.

#include "bridge/ttyend.h"
#include "await.h"
#include "bridge/ttysettings.h"
#include "bridgeends.h"
#include "hostendreader.h"
#include "hostfolders.h"
#include "krbase/filedescriptor.h"
#include "portclient.h"
#include "pseudoterminal.h"
#include "socatline.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

using krserial::IHostEnd;
using krserial::TtyEnd;
using krserial::TtySettings;
using krtest::PseudoTerminal;
using krtest::SetSpeed;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

KrSerialPortConfiguration MakeSpeed(std::uint32_t aBaudRate) {
  return {.baudRate = aBaudRate};
}

// What a program sets at a pseudo-terminal's other end.
void Change(const PseudoTerminal& aTerminal, const std::function<void(termios2&)>& aChange) {
  termios2 settings = {};
  ASSERT_EQ(ioctl(aTerminal.GetDescriptor(), TCGETS2, &settings), 0);
  aChange(settings);
  ASSERT_EQ(ioctl(aTerminal.GetDescriptor(), TCSETS2, &settings), 0);
}

TtySettings GetSettings(const PseudoTerminal& aTerminal) {
  const std::optional<TtySettings> settings = TtySettings::Read(aTerminal.GetDescriptor());
  EXPECT_TRUE(settings);
  return settings.value_or(TtySettings());
}

// A process of another program, which holds a port until it is told to end.
class Holder {
public:
  enum class Way { Lock, Exclusive };

  Holder(const std::string& aPath, Way aWay) {
    std::array<int, 2> ready = {};
    EXPECT_EQ(pipe2(ready.data(), O_CLOEXEC), 0);
    mProcess = fork();
    if (mProcess == 0)
      Hold(aPath, aWay, ready[1]);
    close(ready[1]);
    char byte = 0;
    EXPECT_EQ(read(ready[0], &byte, 1), 1) << "the port could not be held";
    close(ready[0]);
  }
  ~Holder() {
    kill(mProcess, SIGKILL);
    waitpid(mProcess, nullptr, 0);
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;

private:
  [[noreturn]] static void Hold(const std::string& aPath, Way aWay, int aReady) {
    const int tty = open(aPath.c_str(), O_RDWR | O_NOCTTY);
    const int held = aWay == Way::Lock ? flock(tty, LOCK_EX | LOCK_NB) : ioctl(tty, TIOCEXCL);
    if (tty >= 0 && held == 0 && write(aReady, "r", 1) == 1)
      for (;;)
        pause();
    _exit(1);
  }

  pid_t mProcess = -1;
};

class TtyEndTest : public testing::Test {
protected:
  // A pseudo-terminal behind COM1.
  void UseNewTerminal() {
    mTerminal = std::make_unique<PseudoTerminal>();
    mHost.Link("com1", mTerminal->GetPath());
  }
  // The link leads nowhere first: the system may give the terminal's number to another program's at once.
  void EndTerminal() {
    mHost.Link("com1", mHost.GetFile("gone"));
    mTerminal.reset();
  }
  std::unique_ptr<IHostEnd> Open(const KrSerialPortConfiguration& aConfiguration = {}, const char* aName = "COM1") {
    std::unique_ptr<IHostEnd> end;
    const KrResult opened = TtyEnd::Open(aName, aConfiguration, end);
    EXPECT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    return end;
  }
  static KrResult TryToOpen(const char* aName, const KrSerialPortConfiguration& aConfiguration = {}) {
    std::unique_ptr<IHostEnd> end;
    KrResult opened = TtyEnd::Open(aName, aConfiguration, end);
    EXPECT_EQ(opened.IsOK(), end != nullptr);
    return opened;
  }

  // What is told of it is the test's mHindrances.
  KrResult Recover(IHostEnd& aEnd, const std::stop_token& aStop = {}) {
    return aEnd.Recover(aStop, [this](const KrResult& aHindrance) {
      const std::lock_guard lock(mMutex);
      mHindrances.push_back(aHindrance);
    });
  }
  KrResult GetLastHindrance() {
    const std::lock_guard lock(mMutex);
    return mHindrances.empty() ? KrResult() : mHindrances.back();
  }

  HostFolders mHost;
  std::unique_ptr<PseudoTerminal> mTerminal;
  std::mutex mMutex; // Guards the hindrances.
  std::vector<KrResult> mHindrances;
};

} // namespace

TEST_F(TtyEndTest, Bytes_OfEveryValueInBothDirectionsAtOnce_AreWholeAndInOrder) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  const std::string toHost = MakeMixedBytes(300000, 1);
  const std::string toDevice = MakeMixedBytes(300000, 2);

  auto hostWriting = std::async(std::launch::async, [&] { return WriteText(*end, toHost); });
  auto otherWriting = std::async(std::launch::async, [&] { mTerminal->Write(toDevice); });
  const std::string read = mTerminal->Read(toHost.size());

  EXPECT_TRUE(hostWriting.get().IsOK());
  otherWriting.get();
  EXPECT_TRUE(read == toHost) << "the bytes that the end sent differ";
  EXPECT_TRUE(reader.Await(toDevice.size()) == toDevice) << "the bytes that the end received differ";
}

TEST_F(TtyEndTest, Open_OfALinkToSocat_ReachesIt) {
  krtest::SocatLine line(mHost.GetLink("com5"));
  const std::unique_ptr<IHostEnd> end = Open({}, "com5");
  HostEndReader reader(*end);

  line.Send("to the device");
  EXPECT_TRUE(WriteText(*end, "to the host").IsOK());

  EXPECT_EQ(reader.Await(13), "to the device");
  EXPECT_EQ(line.Await(11), "to the host");
}

TEST_F(TtyEndTest, Open_WithAConfiguration_IsSeenAtTheOtherEnd) {
  UseNewTerminal();
  const KrSerialPortConfiguration configuration = {.baudRate = 115200, .parity = 0, .byteSize = 8, .stopBits = 2};

  const std::unique_ptr<IHostEnd> end = Open(configuration);

  EXPECT_EQ(GetSettings(*mTerminal).Get(), configuration);
}

TEST_F(TtyEndTest, Configure_WithNamedAndFreeSpeeds_SetsThem) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open();

  for (const std::uint32_t baudRate : {50U, 9600U, 14400U, 28800U, 31250U, 250000U, 921600U, 4000000U}) {
    EXPECT_TRUE(end->Configure(MakeSpeed(baudRate)).IsOK()) << baudRate;
    EXPECT_EQ(GetSettings(*mTerminal).GetSpeed(), baudRate);
  }
}

TEST_F(TtyEndTest, Configure_WithWhatNoPortCanTake_ChangesNothing) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open(MakeSpeed(19200));

  EXPECT_EQ(end->Configure(MakeSpeed(0)), KrResult::Code::InvalidInput);

  EXPECT_EQ(GetSettings(*mTerminal).GetSpeed(), 19200U);
}

TEST_F(TtyEndTest, Close_GivesThePortItsFormerSettings) {
  UseNewTerminal();
  SetSpeed(*mTerminal, 1200);
  std::unique_ptr<IHostEnd> end = Open(MakeSpeed(57600));
  ASSERT_EQ(GetSettings(*mTerminal).GetSpeed(), 57600U);

  end.reset();

  EXPECT_EQ(GetSettings(*mTerminal).GetSpeed(), 1200U);
}

TEST_F(TtyEndTest, Open_OfWhatIsNoPort_SaysWhy) {
  TemporaryFolder::WriteFile(mHost.GetFile("file"), "no tty");
  mHost.Link("com1", mHost.GetFile("file"));
  mHost.Link("com2", "/dev/null");
  mHost.Link("com3", mHost.GetFile("nothing"));
  const struct {
    const char* name;
    KrResult::Code code;
    const char* text;
  } rows[] = {{"COM1", KrResult::Code::SystemError, "no serial port"},
              {"COM2", KrResult::Code::SystemError, "no serial port"},
              {"COM3", KrResult::Code::NotFound, "nothing"},
              {"COM4", KrResult::Code::NotFound, "COM4"},
              {"TTY1", KrResult::Code::InvalidInput, "TTY1"}};

  for (const auto& row : rows) {
    const KrResult opened = TryToOpen(row.name);
    EXPECT_EQ(opened, row.code) << row.name;
    EXPECT_THAT(opened.GetDescription().ToUtf8(), HasSubstr(row.text));
  }
}

TEST_F(TtyEndTest, Open_WithAConfigurationThatIsNotValid_IsInvalidInput) {
  UseNewTerminal();

  EXPECT_EQ(TryToOpen("COM1", MakeSpeed(10)), KrResult::Code::InvalidInput);
}

TEST_F(TtyEndTest, Open_OfAPortThatThisProcessHas_IsBusyUntilItIsClosed) {
  UseNewTerminal();
  std::unique_ptr<IHostEnd> end = Open();
  EXPECT_EQ(TryToOpen("COM1"), KrResult::Code::Busy);

  end.reset();

  EXPECT_TRUE(TryToOpen("COM1").IsOK());
}

TEST_F(TtyEndTest, Open_OfAPortThatAnotherProgramHolds_IsBusyAndLeavesItsSettings) {
  for (const Holder::Way way : {Holder::Way::Lock, Holder::Way::Exclusive}) {
    UseNewTerminal();
    SetSpeed(*mTerminal, 1200);
    const Holder holder(mTerminal->GetPath(), way);

    const KrResult opened = TryToOpen("COM1");

    EXPECT_EQ(opened, KrResult::Code::Busy);
    EXPECT_THAT(opened.GetDescription().ToUtf8(), HasSubstr("Another program holds it"));
    EXPECT_EQ(GetSettings(*mTerminal).GetSpeed(), 1200U);
  }
}

TEST_F(TtyEndTest, Open_ByASessionWithoutATerminal_DoesNotBecomeItsTerminal) {
  UseNewTerminal();

  EXPECT_EXIT(
      {
        setsid();
        std::unique_ptr<IHostEnd> end;
        const bool isOpen = TtyEnd::Open("COM1", {}, end).IsOK();
        const bool hasTerminal = open("/dev/tty", O_RDWR) >= 0;
        _exit(isOpen && !hasTerminal ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(TtyEndTest, Bytes_ThatCameBeforeThePortWasOpened_AreNotRead) {
  UseNewTerminal();
  const krbase::FileDescriptor former(open(mTerminal->GetPath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  TtySettings settings = GetSettings(*mTerminal);
  settings.MakeRaw();
  ASSERT_TRUE(settings.Apply(former.Get()));
  mTerminal->Write("before");
  pollfd arrived = {.fd = former.Get(), .events = POLLIN, .revents = 0};
  ASSERT_EQ(poll(&arrived, 1, krtest::GetGenerousMs()), 1);

  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  mTerminal->Write("after");

  EXPECT_EQ(reader.Await(5), "after");
}

TEST_F(TtyEndTest, OtherEnd_ClosedAndOpenedAgain_IsLostAndRecovered) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open(MakeSpeed(57600));
  HostEndReader reader(*end);

  EndTerminal();
  EXPECT_EQ(reader.AwaitFailure(), KrResult::Code::ConnectionLost);
  EXPECT_EQ(WriteText(*end, "to nobody"), KrResult::Code::ConnectionLost);
  auto recovering = std::async(std::launch::async, [&] { return Recover(*end); });
  UseNewTerminal();
  EXPECT_TRUE(recovering.get().IsOK());
  reader.Start();
  mTerminal->Write("back");
  EXPECT_TRUE(WriteText(*end, "again").IsOK());

  EXPECT_EQ(reader.Await(4), "back");
  EXPECT_EQ(mTerminal->Read(5), "again");
  EXPECT_EQ(GetSettings(*mTerminal).GetSpeed(), 57600U);
}

TEST_F(TtyEndTest, Socat_EndedAndStartedAgain_IsRecovered) {
  auto line = std::make_unique<krtest::SocatLine>(mHost.GetLink("com5"));
  const std::unique_ptr<IHostEnd> end = Open({}, "COM5");
  HostEndReader reader(*end);

  line.reset();
  EXPECT_EQ(reader.AwaitFailure(), KrResult::Code::ConnectionLost);
  line = std::make_unique<krtest::SocatLine>(mHost.GetLink("com5"));
  ASSERT_TRUE(Recover(*end).IsOK());
  reader.Start();
  line->Send("back");

  EXPECT_EQ(reader.Await(4), "back");
}

TEST_F(TtyEndTest, Adapter_PulledAndBackAsAnotherTty_IsRecoveredByItsNumber) {
  auto before = std::make_unique<PseudoTerminal>();
  mHost.AddUsb("ttyUSB0", {.serial = "A", .place = "1-1"}, before->GetPath());
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);

  mHost.RemoveUsb("ttyUSB0", "1-1");
  before.reset();
  EXPECT_EQ(reader.AwaitFailure(), KrResult::Code::ConnectionLost);
  const PseudoTerminal other;
  mHost.AddUsb("ttyUSB0", {.serial = "B", .place = "1-1"}, other.GetPath());
  const PseudoTerminal after;
  mHost.AddUsb("ttyUSB1", {.serial = "A", .place = "1-2"}, after.GetPath());
  ASSERT_TRUE(Recover(*end).IsOK());
  EXPECT_TRUE(WriteText(*end, "found").IsOK());

  EXPECT_EQ(after.Read(5), "found");
}

TEST_F(TtyEndTest, Recover_WhileAnotherProgramHoldsThePort_WaitsForIt) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  EndTerminal();
  ASSERT_EQ(reader.AwaitFailure(), KrResult::Code::ConnectionLost);
  mTerminal = std::make_unique<PseudoTerminal>();
  auto holder = std::make_unique<Holder>(mTerminal->GetPath(), Holder::Way::Lock);
  mHost.Link("com1", mTerminal->GetPath());

  auto recovering = std::async(std::launch::async, [&] { return Recover(*end); });
  EXPECT_TRUE(krtest::Await([&] { return GetLastHindrance() == KrResult::Code::Busy; }));
  EXPECT_THAT(GetLastHindrance().GetDescription().ToUtf8(), HasSubstr("Another program holds it"));
  holder.reset();

  EXPECT_TRUE(recovering.get().IsOK());
}

TEST_F(TtyEndTest, Recover_OfAPortThatIsNotLost_IsOkAtOnce) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open();

  EXPECT_TRUE(Recover(*end).IsOK());
}

TEST_F(TtyEndTest, Configure_WhileThePortIsLost_CountsWhenItIsBack) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open();
  EndTerminal();

  EXPECT_TRUE(end->Configure(MakeSpeed(38400)).IsOK());
  UseNewTerminal();
  ASSERT_TRUE(Recover(*end).IsOK());

  EXPECT_EQ(GetSettings(*mTerminal).GetSpeed(), 38400U);
}

TEST_F(TtyEndTest, Stop_EndsWaitingReadWriteAndRecover) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  std::stop_source stop;
  auto writing =
      std::async(std::launch::async, [&] { return WriteText(*end, std::string(1 << 20, 'x'), stop.get_token()); });
  ASSERT_EQ(mTerminal->Read(1), "x") << "writing has begun, and nobody reads on";

  stop.request_stop();

  EXPECT_EQ(writing.get(), KrResult::Code::Aborted);
  EXPECT_EQ(reader.Stop(), KrResult::Code::Aborted);

  EndTerminal();
  reader.Start();
  ASSERT_EQ(reader.AwaitFailure(), KrResult::Code::ConnectionLost);
  std::stop_source recoverStop;
  auto recovering = std::async(std::launch::async, [&] { return Recover(*end, recoverStop.get_token()); });
  recoverStop.request_stop();
  EXPECT_EQ(recovering.get(), KrResult::Code::Aborted);
}

TEST_F(TtyEndTest, Speed_SetAtTheOtherEnd_IsAskedForBeforeTheBytesThatFollow) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open(MakeSpeed(9600));
  HostEndReader reader(*end);

  SetSpeed(*mTerminal, 57600);
  mTerminal->Write("x");

  EXPECT_THAT(reader.AwaitEvents(2), ElementsAre("57600 baud", "x"));
}

TEST_F(TtyEndTest, Speed_SetAtTheOtherEndWithoutBytes_IsAskedForOnce) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open(MakeSpeed(9600));
  HostEndReader reader(*end);
  reader.Answer({KrResult::Code::NotSupported, "No such speed."});

  SetSpeed(*mTerminal, 31250);
  EXPECT_THAT(reader.AwaitEvents(1), ElementsAre("31250 baud"));
  mTerminal->Write("x");

  EXPECT_THAT(reader.AwaitEvents(2), ElementsAre("31250 baud", "x"));
}

TEST_F(TtyEndTest, RefusedSpeed_IsTakenBackWhenThePortHasGone) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open(MakeSpeed(9600));
  HostEndReader reader(*end);
  reader.Answer({KrResult::Code::NotSupported, "No such speed."});
  SetSpeed(*mTerminal, 31250);
  ASSERT_THAT(reader.AwaitEvents(1), ElementsAre("31250 baud"));

  mTerminal.reset();

  EXPECT_THAT(reader.AwaitEvents(2), ElementsAre("31250 baud", "0 baud"));
}

TEST_F(TtyEndTest, Speed_SetAtTheOtherEndWithReadingThatDoesNotWait_IsAskedForAndNothingIsLost) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open({.baudRate = 9600, .stopBits = 2});
  HostEndReader reader(*end);

  Change(*mTerminal, [](termios2& aSettings) {
    aSettings.c_cflag = (aSettings.c_cflag & ~static_cast<tcflag_t>(CBAUD | CIBAUD)) | B57600;
    aSettings.c_cc[VMIN] = 0;
    aSettings.c_cc[VTIME] = 0;
  });
  EXPECT_THAT(reader.AwaitEvents(1), ElementsAre("57600 baud"));
  mTerminal->Write("x");

  EXPECT_THAT(reader.AwaitEvents(2), ElementsAre("57600 baud", "x"));
  EXPECT_TRUE(GetSettings(*mTerminal).ArePassingBytes());
  EXPECT_EQ(GetSettings(*mTerminal).Get().stopBits, 2U) << "what belongs to the line stays";
  EXPECT_EQ(reader.Stop(), KrResult::Code::Aborted);
}

TEST_F(TtyEndTest, LinesAndEcho_SetAtTheOtherEnd_EndNothingAndAreUndone) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open();
  HostEndReader reader(*end);
  constexpr char kEndOfFile = 4;

  Change(*mTerminal, [](termios2& aSettings) {
    aSettings.c_lflag |= ICANON | ECHO;
    aSettings.c_cc[VEOF] = kEndOfFile;
  });
  mTerminal->Write({kEndOfFile});
  ASSERT_TRUE(krtest::Await([&] { return GetSettings(*mTerminal).ArePassingBytes(); }));
  mTerminal->Write({'x', kEndOfFile});

  EXPECT_TRUE(krtest::Await([&] { return reader.Await(0).ends_with(std::string{'x', kEndOfFile}); }));
  EXPECT_EQ(reader.Stop(), KrResult::Code::Aborted);
}

TEST_F(TtyEndTest, Speed_ThatConfigureSets_IsNotAskedFor) {
  UseNewTerminal();
  const std::unique_ptr<IHostEnd> end = Open(MakeSpeed(9600));
  HostEndReader reader(*end);

  ASSERT_TRUE(end->Configure(MakeSpeed(115200)).IsOK());
  mTerminal->Write("x");

  EXPECT_THAT(reader.AwaitEvents(1), ElementsAre("x"));
}
