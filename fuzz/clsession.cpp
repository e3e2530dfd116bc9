// Whatever may be sent to a program of the Camera Link serial functions by what it takes for a bridge, until the bridge
// goes: a session is opened by the port's own welcome alone, bytes of the line come in their order, each once, and
// every call ends with a result of the standard's.

#include "port.h"
#include "require.h"

#include "krbase/krclsockets.h"
#include "krbase/krclwire.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/socket.h>

namespace {

using krclserial::Port;

constexpr std::size_t kMostBytes = std::size_t{16} << 10;
constexpr std::size_t kMostPackets = 64;
constexpr std::size_t kMostCalls = 16;
constexpr std::chrono::milliseconds kEndless{60'000}; // The bridge goes long before.

constexpr std::string_view kQuestion = "HELP?";

using Packets = std::vector<std::span<const std::uint8_t>>;

// A folder of our own, in which one port is published as long as the program runs.
class Station {
public:
  Station() {
    std::string folder = (std::filesystem::temp_directory_path() / "krfuzz-XXXXXX").string();
    Require(::mkdtemp(folder.data()) != nullptr);
    mFolder = folder;
    ::setenv("KRGUI_CAMERA_LINK_DIR", folder.c_str(), 1);
    Require(RequireReason(KrCLPublication::Make("Camera #1", mPublication)));
    std::vector<KrCLPort> ports;
    Require(RequireReason(KrListCLPorts(ports)) && ports.size() == 1);
    mPort = ports.front();
  }
  ~Station() {
    mPublication.reset();
    std::error_code error;
    std::filesystem::remove_all(mFolder, error);
  }
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;

  const KrCLPort& GetPort() const { return mPort; }

  // Sends the packets to who connects next, ends what it says, and hears the other until that one goes.
  void Serve(const Packets& aPackets) const {
    pollfd asked{.fd = mPublication->GetSocket(), .events = POLLIN, .revents = 0};
    Require(::poll(&asked, 1, static_cast<int>(kEndless.count())) == 1);
    const krbase::FileDescriptor socket(::accept(mPublication->GetSocket(), nullptr, nullptr));
    for (const std::span<const std::uint8_t> packet : aPackets)
      if (::send(socket.Get(), packet.data(), packet.size(), MSG_NOSIGNAL) < 0)
        break;
    ::shutdown(socket.Get(), SHUT_WR);
    std::array<char, kKrCLMostMessage> heard;
    while (::recv(socket.Get(), heard.data(), heard.size(), 0) > 0)
      continue;
  }

private:
  std::filesystem::path mFolder;
  std::unique_ptr<KrCLPublication> mPublication;
  KrCLPort mPort;
};

// Two bytes say how long each is.
Packets Split(std::span<const std::uint8_t> aBytes) {
  Packets packets;
  while (aBytes.size() >= 2 && packets.size() < kMostPackets) {
    const std::size_t length = std::min<std::size_t>(aBytes[0] + 256U * aBytes[1], aBytes.size() - 2);
    packets.push_back(aBytes.subspan(2, length));
    aBytes = aBytes.subspan(2 + length);
  }
  return packets;
}

// What the packets come to.
struct Expected {
  std::set<CLINT32> openings; // It depends on how much has come when it is looked at.
  std::string line;           // The bytes of the line that can be read.
  std::size_t flushes = 0;
};

Expected Judge(const Packets& aPackets, const std::string& aName) {
  Expected expected;
  bool isOurs = false;
  bool isWelcome = false;
  bool hasSpeeds = false;
  for (const std::span<const std::uint8_t> packet : aPackets) {
    const auto message = KrParseCLMessage(packet, KrCLSide::Bridge);
    if (!message)
      break; // Nothing behind it counts.
    if (message->kind == KrCLMessageKind::Welcome) {
      const bool isTaken = message->value == static_cast<std::uint32_t>(KrCLAnswer::Taken);
      isWelcome = true;
      isOurs = isTaken && message->bytes == aName;
      if (!isOurs)
        expected.openings.insert(isTaken ? CL_ERR_INVALID_INDEX : CL_ERR_PORT_IN_USE);
    }
    hasSpeeds = hasSpeeds || (message->kind == KrCLMessageKind::Speeds && isWelcome);
    if (isOurs && hasSpeeds)
      expected.openings.insert(CL_ERR_NO_ERR);
    if (message->kind == KrCLMessageKind::Data)
      expected.line += message->bytes;
    expected.flushes += message->kind == KrCLMessageKind::Flushed ? 1 : 0;
  }
  if (!isWelcome || (isOurs && !hasSpeeds))
    expected.openings.insert(CL_ERR_INVALID_INDEX);
  return expected;
}

// Takes bytes as they come; what was flushed is left out, and nothing comes again.
class LineReader {
public:
  LineReader(Port& aPort, std::string_view aLine) : mPort(aPort), mLine(aLine) {}

  void Read(std::size_t aSize) {
    std::string bytes(aSize, '\0');
    const CLINT32 result = mPort.Read(bytes.data(), aSize, kEndless);
    const std::size_t at = mLine.find(bytes, mAt);
    if (result == CL_ERR_NO_ERR) {
      Require(mIsFlushed ? at != mLine.npos : at == mAt);
      mAt = at + aSize;
    } else {
      Require(result == CL_ERR_INVALID_REFERENCE && (mIsFlushed || aSize > mLine.size() - mAt));
    }
  }
  void NoteFlush() { mIsFlushed = true; }

private:
  Port& mPort;
  std::string_view mLine;
  std::size_t mAt = 0;
  bool mIsFlushed = false;
};

void CheckOneOf(CLINT32 aResult, std::initializer_list<CLINT32> aResults) {
  Require(std::ranges::find(aResults, aResult) != aResults.end());
}

void Call(Port& aPort, LineReader& aReader, std::uint8_t aCall) {
  CLUINT32 value = aCall;
  switch (aCall % 7) {
  case 0:
    CheckOneOf(aPort.CountAvailable(value), {CL_ERR_NO_ERR, CL_ERR_INVALID_REFERENCE});
    break;
  case 1:
    CheckOneOf(aPort.GetSpeeds(value), {CL_ERR_NO_ERR, CL_ERR_INVALID_REFERENCE});
    break;
  case 2:
    CheckOneOf(aPort.SetSpeed(CLUINT32{1} << (aCall >> 4U)),
               {CL_ERR_NO_ERR, CL_ERR_BAUD_RATE_NOT_SUPPORTED, CL_ERR_TIMEOUT, CL_ERR_INVALID_REFERENCE});
    break;
  case 3:
    CheckOneOf(aPort.Flush(), {CL_ERR_NO_ERR, CL_ERR_INVALID_REFERENCE});
    aReader.NoteFlush();
    break;
  case 4:
    value = kQuestion.size();
    Require(aPort.Write(kQuestion.data(), value, kEndless) == CL_ERR_NO_ERR && value == kQuestion.size());
    break;
  default:
    aReader.Read(aCall);
  }
}

} // namespace

// The first byte says how many of the next ones are calls; behind them are the packets.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  static const Station station;
  if (aSize == 0 || aSize > kMostBytes)
    return 0;
  const std::span bytes(aData + 1, aSize - 1);
  const std::span calls = bytes.first(std::min<std::size_t>({aData[0] % kMostCalls, bytes.size()}));
  const Packets packets = Split(bytes.subspan(calls.size()));
  const Expected expected = Judge(packets, station.GetPort().name.ToUtf8());

  std::shared_ptr<Port> port;
  const std::jthread bridge([&] { station.Serve(packets); });
  const CLINT32 opened = Port::Open(station.GetPort(), port);
  Require(expected.openings.contains(opened) && (opened == CL_ERR_NO_ERR) == (port != nullptr));
  if (!port)
    return 0;
  LineReader reader(*port, expected.line);
  for (const std::uint8_t call : calls)
    Call(*port, reader, call);
  port->Close();
  Require(port->Flush() == CL_ERR_INVALID_REFERENCE);
  return 0;
}
