// What does the serial terminal hold? A megabyte in each direction through its window, over a simulated
// port with a pseudo-terminal and socat behind it: how fast, what of a processor it takes, for how long it keeps the
// user-interface thread, and what its bounded buffer drops. Beside a plain text edit that is given each read as it
// comes, the port's own speed, and bare loops on the pseudo-terminal.

#include "baresides.h"
#include "figure.h"
#include "heartbeat.h"
#include "numberedlines.h"
#include "plainterminal.h"
#include "seriallab.h"
#include "socatline.h"
#include "terminalwindow.h"

#include <QApplication>

#include <fstream>
#include <future>
#include <string>
#include <string_view>

#include <sys/resource.h>

namespace {

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

constexpr const char* kLineSpeed = "line_speed";

double GetMs(const timeval& aTime) {
  return static_cast<double>(aTime.tv_sec) * 1e3 + static_cast<double>(aTime.tv_usec) / 1e3;
}

// Of all threads of this process, the simulated line's among them.
double GetProcessMs() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return GetMs(usage.ru_utime) + GetMs(usage.ru_stime);
}

struct Streamed {
  bool isWhole = false;
  double seconds = 0;
  double processMs = 0;
  double uiMs = 0;
  benchmarks::Gaps gaps;
  std::uint64_t droppedUnits = 0;
};

// Runs the loop until a condition holds or the limit is over.
template <typename Condition>
Streamed Stream(const QElapsedTimer& aClock, const Condition& aIsOver) {
  Streamed streamed;
  const double processMs = GetProcessMs();
  const double uiMs = benchmarks::GetThreadMs();
  streamed.gaps = benchmarks::MeasureLargestGaps([&] {
    streamed.isWhole = aIsOver();
    return streamed.isWhole || aClock.elapsed() > kLimitMs;
  });
  streamed.processMs = GetProcessMs() - processMs;
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
  streamed.droppedUnits = window.GetDroppedUnits();
  // What was counted at the port may still be missing in the window.
  streamed.isWhole = streamed.isWhole && (streamed.droppedUnits > 0 || window.ShowsEndOf(aBytes));
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
  streamed.droppedUnits = window.GetDroppedUnits();
  return streamed;
}

void PrintRun(const std::string& aName, const Streamed& aRun, double aLimitMBps, const char* aLimit,
              const Streamed* aPlain) {
  const auto print = [&](const char* aWhat, double aValue, const char* aUnit, const char* aPeer, double aPeerValue) {
    PrintFigure((aName + aWhat).c_str(), aValue, aUnit, aPeer, aPeerValue);
  };
  print("", kMegabytes / aRun.seconds, "MB/s", aLimit, aLimitMBps);
  const char* const peer = aPlain ? "plain_text_edit" : "none";
  const Streamed none;
  const Streamed& plain = aPlain ? *aPlain : none;
  print("_processor", aRun.processMs / kMegabytes, "ms/MB", peer, plain.processMs / kMegabytes);
  print("_ui_processor", aRun.uiMs / kMegabytes, "ms/MB", peer, plain.uiMs / kMegabytes);
  // What is counted goes on a little after the last byte: too much rather than too little at a line's speed, and
  // nothing that could be told of a run of milliseconds.
  if (std::string_view(aLimit) == kLineSpeed)
    print("_core", 100 * aRun.processMs / 1e3 / aRun.seconds, "%", peer,
          aPlain ? 100 * plain.processMs / 1e3 / plain.seconds : 0);
  print("_largest_gap", aRun.gaps.wallMs, "ms", peer, plain.gaps.wallMs);
  print("_largest_busy_gap", aRun.gaps.busyMs, "ms", peer, plain.gaps.busyMs);
}

void PrintDropped(const std::string& aName, const Streamed& aRun, const FormatRow& aFormat) {
  PrintFigure((aName + "_dropped").c_str(), static_cast<double>(aRun.droppedUnits), "units", "rendered",
              static_cast<double>(kBytes) * aFormat.unitsPerByte);
}

bool MeasureReceiving(SerialLab& aLab, KrDeviceSerial aPort, const char* aName, double aLimitMBps, const char* aLimit,
                      const std::string& aBytes) {
  const Streamed plain = ReceivePlainly(aLab, aPort, aBytes);
  bool isWhole = plain.isWhole;
  for (const FormatRow& format : kFormats) {
    const Streamed run = ReceiveInWindow(aLab, aPort, format, aBytes);
    const std::string name = std::string("terminal_receive_") + aName + format.name;
    PrintRun(name, run, aLimitMBps, aLimit, &plain);
    PrintDropped(name, run, format);
    isWhole = run.isWhole && isWhole;
  }
  PrintFigure((std::string("plain_receive_") + aName).c_str(), kMegabytes / plain.seconds, "MB/s", aLimit, aLimitMBps);
  return isWhole;
}

bool MeasureSending(SerialLab& aLab, KrDeviceSerial aPort, const char* aName, double aLimitMBps, const char* aLimit,
                    const std::string& aBytes, const KrString& aFile) {
  bool isWhole = true;
  const auto measure = [&](const std::string& aForm, const FormatRow& aFormat, bool aEchoes) {
    const Streamed run = SendInWindow(aLab, aPort, aFormat, aEchoes, aBytes, aFile);
    const std::string name = std::string("terminal_send_") + aName + aForm;
    PrintRun(name, run, aLimitMBps, aLimit, nullptr);
    if (aEchoes)
      PrintDropped(name, run, aFormat);
    isWhole = run.isWhole && isWhole;
  };
  measure("silent", kFormats[0], false);
  for (const FormatRow& format : kFormats)
    measure(std::string("echoed_") + format.name, format, true);
  return isWhole;
}

} // namespace

int main(int aArgumentCount, char** aArguments) {
  const QApplication application(aArgumentCount, aArguments);
  QApplication::setQuitOnLastWindowClosed(false);
  SerialLab lab;
  const std::string bytes = krtest::MakeNumberedLines(kBytes);
  const std::string file = lab.GetFile("sent.txt");
  std::ofstream(file) << bytes;

  const double paced = benchmarks::kPacedBytesPerSecond / 1e6;
  const double read = benchmarks::MeasureBareReading(lab.GetFile("bare"), bytes);
  const double written = benchmarks::MeasureBareWriting(lab.GetFile("bare"), bytes);
  bool isWhole = MeasureReceiving(lab, SerialLab::kPaced, "3Mbaud_", paced, kLineSpeed, bytes);
  isWhole = MeasureReceiving(lab, SerialLab::kUnpaced, "", read, "bare_read_loop", bytes) && isWhole;
  isWhole = MeasureSending(lab, SerialLab::kPaced, "3Mbaud_", paced, kLineSpeed, bytes, file) && isWhole;
  isWhole = MeasureSending(lab, SerialLab::kUnpaced, "", written, "bare_write_loop", bytes, file) && isWhole;
  if (!isWhole)
    std::fprintf(stderr, "A megabyte did not come whole.\n");
  return isWhole ? 0 : 1;
}
