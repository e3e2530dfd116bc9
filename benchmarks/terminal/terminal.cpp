// What does the serial terminal hold? A megabyte in each direction through its window, over a simulated
// port with a pseudo-terminal and socat behind it: how fast, what of a processor it takes, for how long it keeps the
// user-interface thread, and what its bounded buffer drops. Beside a plain text edit that is given each read as it
// comes, the port's own speed, and bare loops on the pseudo-terminal. All take turns; printed are their medians.

#include "baresides.h"
#include "failing.h"
#include "figure.h"
#include "heartbeat.h"
#include "numberedlines.h"
#include "plainterminal.h"
#include "seriallab.h"
#include "socatline.h"
#include "statistics.h"
#include "terminalwindow.h"

#include <QApplication>

#include <array>
#include <fstream>
#include <future>
#include <optional>
#include <string>
#include <vector>

namespace {

using benchmarks::Figure;
using benchmarks::Limit;
using benchmarks::Peer;
using benchmarks::PrintFigure;
using benchmarks::SerialLab;

constexpr std::size_t kBytes = 1'000'000;
constexpr double kMegabytes = 1;
constexpr qint64 kLimitMs = 120'000;

struct FormatRow {
  const char* name;
  krgui::DisplayFormat format;
  double unitsPerByte; // Of what is rendered.
};

constexpr FormatRow kFormats[] = {{"ascii", krgui::DisplayFormat::ASCII, 1.0},
                                  {"hexadecimal", krgui::DisplayFormat::Hexadecimal, 3.0 + 2.0 / 16},
                                  {"hybrid", krgui::DisplayFormat::Hybrid, 3.0 + (3.0 + 16 + 2) / 16}};

constexpr int kTurns = 3;
constexpr const char* kPlain = "plain_text_edit";

struct Streamed {
  bool isWhole = false;
  double seconds = 0;
  double processMs = 0; ///< Of all threads of this process, the simulated line's among them.
  double uiMs = 0;
  double gapMs = 0;
  double busyGapMs = 0;
  double droppedUnits = 0;
};

// Runs the loop until a condition holds or the limit is over.
template <typename Condition>
Streamed Stream(const QElapsedTimer& aClock, const Condition& aIsOver) {
  Streamed streamed;
  const double processMs = benchmarks::GetProcessMs();
  const double uiMs = benchmarks::GetThreadMs();
  const benchmarks::Gaps gaps = benchmarks::MeasureLargestGaps([&] {
    streamed.isWhole = aIsOver();
    return streamed.isWhole || aClock.elapsed() > kLimitMs;
  });
  streamed.gapMs = gaps.wallMs;
  streamed.busyGapMs = gaps.busyMs;
  streamed.processMs = benchmarks::GetProcessMs() - processMs;
  streamed.uiMs = benchmarks::GetThreadMs() - uiMs;
  streamed.seconds = static_cast<double>(aClock.nsecsElapsed()) / 1e9;
  return streamed;
}

Streamed ReceiveInWindow(SerialLab& aLab, KrDeviceSerial aPort, const FormatRow& aFormat, const std::string& aBytes) {
  krtest::SocatLine line(aLab.GetPath(aPort));
  benchmarks::TerminalWindow window(aLab.GetAdapter(), aPort, aFormat.format);
  const std::uint64_t before = aLab.CountReceived(aPort);
  QElapsedTimer clock;
  clock.start();
  window.SetClock(clock);
  line.Send(aBytes);
  Streamed streamed =
      Stream(clock, [&] { return aLab.CountReceived(aPort) - before >= aBytes.size() && window.IsQuiet(); });
  streamed.seconds = window.GetLastChangeMs() / 1e3;
  streamed.droppedUnits = static_cast<double>(window.GetDroppedUnits());
  // What was counted at the port may still be missing in the window.
  streamed.isWhole =
      streamed.isWhole && streamed.seconds > 0 && (streamed.droppedUnits > 0 || window.ShowsEndOf(aBytes));
  return streamed;
}

Streamed ReceivePlainly(SerialLab& aLab, KrDeviceSerial aPort, const std::string& aBytes) {
  krtest::SocatLine line(aLab.GetPath(aPort));
  benchmarks::PlainTerminal plain;
  if (!plain.Open(aLab.GetAdapter(), aPort).IsOK())
    return {};
  QElapsedTimer clock;
  clock.start();
  line.Send(aBytes);
  return Stream(clock, [&] { return plain.CountShown() >= aBytes.size(); });
}

Streamed SendInWindow(SerialLab& aLab, KrDeviceSerial aPort, const FormatRow& aFormat, bool aEchoes,
                      const std::string& aBytes, const KrString& aFile) {
  krtest::SocatLine line(aLab.GetPath(aPort));
  benchmarks::TerminalWindow window(aLab.GetAdapter(), aPort, aFormat.format);
  QElapsedTimer clock;
  clock.start();
  window.SetClock(clock);
  auto arrival = std::async(std::launch::async, [&] {
    const bool isWhole = line.Await(aBytes.size()) == aBytes;
    return isWhole ? static_cast<double>(clock.nsecsElapsed()) / 1e9 : -1;
  });
  window.SendFile(aFile, aEchoes);
  Streamed streamed = Stream(clock, [&] { return !window.IsSendingFile(); });
  streamed.seconds = arrival.get();
  streamed.isWhole = streamed.isWhole && streamed.seconds > 0;
  streamed.droppedUnits = static_cast<double>(window.GetDroppedUnits());
  return streamed;
}

// The same in several turns.
class Turns {
public:
  void Add(const Streamed& aTurn) {
    if (!aTurn.isWhole)
      benchmarks::Fail("a megabyte did not come whole.");
    mTurns.push_back(aTurn);
  }
  double Get(double Streamed::*aMember) const { return benchmarks::GetMedian(mTurns, aMember); }
  double GetMBps() const { return kMegabytes / Get(&Streamed::seconds); }

private:
  std::vector<Streamed> mTurns;
};

/// What a way for bytes is held against: a bare loop in the same run, or the speed that the line has by itself.
struct Reference {
  std::optional<Peer> peer;
  std::optional<Limit> limit;
};

void PrintRate(const std::string& aName, const Turns& aTurns, const Reference& aReference) {
  PrintFigure({aName, aTurns.GetMBps(), "MB/s", aReference.peer, aReference.limit});
}

void PrintRun(const std::string& aName, const Turns& aRun, const Reference& aReference, const Turns* aPlain) {
  const auto print = [&](const char* aWhat, const char* aUnit, double Streamed::*aMember, double aBy) {
    Figure figure{aName + aWhat, aRun.Get(aMember) / aBy, aUnit};
    if (aPlain)
      figure.peer = Peer{kPlain, aPlain->Get(aMember) / aBy};
    PrintFigure(figure);
  };
  PrintRate(aName, aRun, aReference);
  print("_processor", "ms/MB", &Streamed::processMs, kMegabytes);
  print("_ui_processor", "ms/MB", &Streamed::uiMs, kMegabytes);
  print("_largest_gap", "ms", &Streamed::gapMs, 1);
  print("_largest_busy_gap", "ms", &Streamed::busyGapMs, 1);
  // What is counted goes on a little after the last byte: too much rather than too little at a line's speed, and
  // nothing that could be told of a run of milliseconds.
  if (!aReference.limit)
    return;
  const auto getCore = [](const Turns& aTurns) {
    return 100 * aTurns.Get(&Streamed::processMs) / 1e3 / aTurns.Get(&Streamed::seconds);
  };
  Figure core{aName + "_core", getCore(aRun), "%"};
  if (aPlain)
    core.peer = Peer{kPlain, getCore(*aPlain)};
  PrintFigure(core);
}

void PrintDropped(const std::string& aName, const Turns& aRun, const FormatRow& aFormat) {
  PrintFigure({aName + "_dropped",
               aRun.Get(&Streamed::droppedUnits),
               "units",
               {},
               Limit{"rendered", static_cast<double>(kBytes) * aFormat.unitsPerByte}});
}

/// What is streamed, and where it is.
struct Load {
  SerialLab& lab;
  std::string bytes;
  std::string file;
};

/// A port, and what its figures are called after it.
struct Port {
  KrDeviceSerial number;
  const char* name;
  bool isPaced;
};

constexpr Port kPorts[] = {{SerialLab::kPaced, "3Mbaud_", true}, {SerialLab::kUnpaced, "", false}};

// A bare loop is measured where nothing else holds the line.
Reference MakeReference(const Port& aPort, const char* aLoop, const std::vector<double>& aLoopMBps) {
  if (aPort.isPaced)
    return {{}, Limit{"line_speed", benchmarks::kPacedBytesPerSecond / 1e6}};
  return {Peer{aLoop, benchmarks::GetMedian(aLoopMBps)}, {}};
}

void MeasureReceiving(const Load& aLoad, const Port& aPort) {
  Turns plain;
  std::array<Turns, std::size(kFormats)> ours;
  std::vector<double> bare;
  for (int turn = 0; turn < kTurns; ++turn) {
    if (!aPort.isPaced)
      bare.push_back(benchmarks::MeasureBareReading(aLoad.lab.GetFile("bare"), aLoad.bytes));
    plain.Add(ReceivePlainly(aLoad.lab, aPort.number, aLoad.bytes));
    for (std::size_t format = 0; format < ours.size(); ++format)
      ours[format].Add(ReceiveInWindow(aLoad.lab, aPort.number, kFormats[format], aLoad.bytes));
  }
  const Reference reference = MakeReference(aPort, "bare_read_loop", bare);
  for (std::size_t format = 0; format < ours.size(); ++format) {
    const std::string name = std::string("terminal_receive_") + aPort.name + kFormats[format].name;
    PrintRun(name, ours[format], reference, &plain);
    PrintDropped(name, ours[format], kFormats[format]);
  }
  PrintRate(std::string("plain_receive_") + aPort.name + "text", plain, reference);
}

void MeasureSending(const Load& aLoad, const Port& aPort) {
  Turns silent;
  std::array<Turns, std::size(kFormats)> echoed;
  std::vector<double> bare;
  const auto send = [&](const FormatRow& aFormat, bool aEchoes) {
    return SendInWindow(aLoad.lab, aPort.number, aFormat, aEchoes, aLoad.bytes, aLoad.file);
  };
  for (int turn = 0; turn < kTurns; ++turn) {
    if (!aPort.isPaced)
      bare.push_back(benchmarks::MeasureBareWriting(aLoad.lab.GetFile("bare"), aLoad.bytes));
    silent.Add(send(kFormats[0], false));
    for (std::size_t format = 0; format < echoed.size(); ++format)
      echoed[format].Add(send(kFormats[format], true));
  }
  const Reference reference = MakeReference(aPort, "bare_write_loop", bare);
  const std::string name = std::string("terminal_send_") + aPort.name;
  PrintRun(name + "silent", silent, reference, nullptr);
  for (std::size_t format = 0; format < echoed.size(); ++format) {
    const std::string echoName = name + "echoed_" + kFormats[format].name;
    PrintRun(echoName, echoed[format], reference, nullptr);
    PrintDropped(echoName, echoed[format], kFormats[format]);
  }
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  SerialLab lab;
  const Load load{lab, krtest::MakeNumberedLines(kBytes), lab.GetFile("sent.txt")};
  std::ofstream(load.file) << load.bytes;
  for (const Port& port : kPorts)
    MeasureReceiving(load, port);
  for (const Port& port : kPorts)
    MeasureSending(load, port);
  return 0;
}
