#include "clprogram.h"
#include "publishedline.h"
#include "rawprogram.h"

#include <gmock/gmock.h>

#include <memory>
#include <vector>

namespace {

using Packet = std::vector<std::uint8_t>;
using Message = std::pair<KrCLMessageKind, std::uint32_t>;

constexpr auto kTaken = static_cast<std::uint32_t>(KrCLAnswer::Taken);
constexpr auto kInUse = static_cast<std::uint32_t>(KrCLAnswer::InUse);

struct WrongPacket {
  const char* what;
  Packet packet;
};

class HostileProgram : public testing::Test {
protected:
  // Whether an honest program is served, both ways.
  void ExpectService() {
    ClProgram program;
    std::string opened;
    do // The one before may have a moment to live.
      opened = program.Ask("init 0 0");
    while (opened == "-10003 0");
    ASSERT_EQ(opened, "0 0");
    EXPECT_EQ(program.Ask("write 0 9 100000"), "0 9");
    EXPECT_EQ(mLine.AwaitTaken(9), MakeLineBytes(9));
    mLine.Give(MakeLineBytes(9));
    EXPECT_EQ(program.Ask("read 0 9 100000"), "0 9 right");
  }

  SocketFolder mFolder;
  PublishedLine mLine{"Camera", PublishedLine::Taking::AtOnce, {{9600, 19200}, 9600}};
};

TEST_F(HostileProgram, EveryWrongPacket_EndsItsOwnSessionAlone) {
  const WrongPacket packets[] = {
      {"no bytes", {}},
      {"one byte", {2}},
      {"half a header", {2, 0, 0}},
      {"no bytes of the line", {2, 0, 0, 0, 0}},
      {"a value where none is", {2, 1, 0, 0, 0, 'x'}},
      {"an unknown kind", {77, 0, 0, 0, 0, 'x'}},
      {"what only a bridge may say", {1, 0, 0, 0, 0}},
      {"a speed of no bit that is known", {3, 0, 1, 0, 0}},
      {"a speed with bytes behind it", {3, 1, 0, 0, 0, 'x'}},
      {"a byte too many", Packet(kKrCLMostMessage + 1, 2)},
      {"a huge packet", Packet(100'000, 2)},
  };

  for (const WrongPacket& wrong : packets) {
    SCOPED_TRACE(wrong.what);
    RawProgram program(mFolder.GetPath());
    ASSERT_EQ(program.Await(), Message(KrCLMessageKind::Welcome, kTaken));
    EXPECT_TRUE(program.Send(wrong.packet));

    EXPECT_TRUE(program.IsClosed());
    ExpectService();
  }
}

TEST_F(HostileProgram, HundredsOfConnections_AreRefusedWhileOneIsServed) {
  auto first = std::make_unique<RawProgram>(mFolder.GetPath());
  ASSERT_EQ(first->Await(), Message(KrCLMessageKind::Welcome, kTaken));

  for (int i = 0; i < 300; ++i) {
    RawProgram next(mFolder.GetPath());
    ASSERT_EQ(next.Await(), Message(KrCLMessageKind::Welcome, kInUse));
    ASSERT_TRUE(next.IsClosed());
  }
  first.reset();

  ExpectService();
}

TEST_F(HostileProgram, ConnectionsThatGoAtOnce_LeaveThePortFree) {
  for (int i = 0; i < 300; ++i)
    RawProgram(mFolder.GetPath());

  ExpectService();
}

TEST_F(HostileProgram, RequestsWhoseAnswersAreNotRead_AreNotTakenForEver) {
  auto program = std::make_unique<RawProgram>(mFolder.GetPath());
  const Packet request = KrMakeCLMessage({KrCLMessageKind::SetSpeed, KrGetCLSpeedBit(19200)});

  std::size_t sent = 0;
  pollfd waited{.fd = program->GetSocket(), .events = POLLOUT, .revents = 0};
  // Until it is not taken for a while: the bridge waits, and has not grown.
  while (sent < 100'000 && ::poll(&waited, 1, 1000) > 0)
    sent += program->Send(request) ? 1 : 0;
  EXPECT_LT(sent, 100'000U);
  program.reset();

  ExpectService();
}

TEST_F(HostileProgram, SpeedSet_IsAnsweredOnce) {
  RawProgram program(mFolder.GetPath());
  ASSERT_EQ(program.Await(), Message(KrCLMessageKind::Welcome, kTaken));
  ASSERT_EQ(program.Await(), Message(KrCLMessageKind::Speeds, 3));

  ASSERT_TRUE(program.Send(KrMakeCLMessage({KrCLMessageKind::SetSpeed, 2})));
  ASSERT_TRUE(program.Send(KrMakeCLMessage({KrCLMessageKind::SetSpeed, 4})));

  EXPECT_EQ(program.Await(), Message(KrCLMessageKind::SpeedSet, kTaken));
  EXPECT_EQ(program.Await(), Message(KrCLMessageKind::SpeedSet, static_cast<std::uint32_t>(KrCLAnswer::NotSupported)));
}

// A device that takes nothing, and programs that each leave a socket full of bytes.
TEST(HostilePrograms, LeavingMoreThanTheLineTakes_FindItInUse) {
  const SocketFolder folder;
  PublishedLine line("Camera", PublishedLine::Taking::Later);
  const Packet packet = KrMakeCLMessage({KrCLMessageKind::Data, 0, std::string(kKrCLMostBytes, 'x')});

  std::size_t sent = 0;
  int served = 0;
  while (served < 100) {
    RawProgram program(folder.GetPath());
    const auto welcome = program.Await();
    ASSERT_TRUE(welcome.has_value());
    if (welcome->second == kInUse)
      break;
    ++served;
    while (program.Send(packet))
      sent += kKrCLMostBytes;
  }

  EXPECT_GT(served, 0);
  EXPECT_LT(served, 100) << "The bridge takes as much as programs like to leave.";
  line.Take();
  EXPECT_EQ(line.AwaitTaken(sent).size(), sent);
}

} // namespace
