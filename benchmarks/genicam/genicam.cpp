// How long do loading a camera description, reading all of its features and setting one take, and does that grow with
// the description alone? The peer is Aravis' node map over the same memory, where it can do the same; what one of both
// cannot read at the moment is read by neither. Both take turns.

#include "checked.h"
#include "figure.h"
#include "generateddescription.h"
#include "genicamfeatures.h"
#include "growth.h"
#include "heap.h"
#include "statistics.h"
#include "timing.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using benchmarks::Check;
using benchmarks::Fail;
using benchmarks::OurFeatures;
using benchmarks::Peer;
using benchmarks::PrintFigure;
using benchmarks::SizedCost;
using benchmarks::TheirFeatures;
using benchmarks::Timing;

constexpr std::uint64_t kSeed = 1;
constexpr std::size_t kSmallest = 1000;
constexpr std::size_t kLargest = 20000;
constexpr std::size_t kSizes[] = {kSmallest, 5000, kLargest};
constexpr const char* kPeer = "aravis";

// Bytes that are there at once, so that what is measured is the node map.
class PlainMemory final : public IKrRegisterPort {
public:
  explicit PlainMemory(const GeneratedDescription& aDescription)
      : mAddress(aDescription.address), mBytes(aDescription.memory) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t,
                const std::stop_token&) override {
    std::memcpy(aData, mBytes.data() + (aAddress - mAddress), aLength);
    return {};
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t,
                 const std::stop_token&) override {
    std::memcpy(mBytes.data() + (aAddress - mAddress), aData, aLength);
    return {};
  }

private:
  std::uint64_t mAddress;
  std::vector<std::uint8_t> mBytes;
};

// Hears of parameters and says when all of them were told of.
class CountingSink final : public KrGenEventSink {
public:
  void OnParameterUpdate(KrGenParameter*) override {
    ++mCount;
    mCount.notify_all();
  }
  void Reset() { mCount = 0; }
  void WaitFor(int aCount) {
    for (int count = mCount; count < aCount; count = mCount)
      mCount.wait(count);
  }

private:
  std::atomic<int> mCount = 0;
};

std::unique_ptr<KrGenParameterArray> Open(const GeneratedDescription& aGenerated, IKrRegisterPort& aPort) {
  KrGenDescription description;
  Check(KrGenDescription::ReadFromMemory(aGenerated.xml, "generated", description));
  std::unique_ptr<KrGenParameterArray> array;
  Check(KrGenParameterArray::Open(description, aPort, {}, array));
  return array;
}

// What was printed beside the peer, by what it is and by the size of the description.
std::map<std::string, std::map<std::size_t, SizedCost>> gCosts;

std::string MakeName(const std::string& aWhat, std::size_t aFeatures) {
  return "genicam_" + aWhat + "_" + std::to_string(aFeatures);
}

void PrintBeside(const std::string& aWhat, std::size_t aFeatures, double aOurs, const char* aUnit, double aTheirs) {
  gCosts[aWhat][aFeatures] = {static_cast<double>(aFeatures), aOurs, aTheirs};
  PrintFigure({MakeName(aWhat, aFeatures), aOurs, aUnit, Peer{kPeer, aTheirs}});
}

void PrintAlone(const std::string& aWhat, std::size_t aFeatures, double aOurs, const char* aUnit) {
  PrintFigure({MakeName(aWhat, aFeatures), aOurs, aUnit});
}

void MeasureLoading(const GeneratedDescription& aGenerated, std::size_t aFeatures) {
  PlainMemory memory(aGenerated);
  const auto [ours, theirs] = benchmarks::MeasureInTurnsMs(
      Timing::Thread, 1, [&] { Open(aGenerated, memory); }, [&] { const AravisMap map(aGenerated.xml, memory); });
  PrintBeside("load", aFeatures, ours, "ms", theirs);
}

// Bytes of our array and of their map.
using Bytes = std::array<double, 2>;

Bytes LookAtMemory(std::size_t aFeatures) {
  const GeneratedDescription generated = GenerateDescription(aFeatures, kSeed);
  PlainMemory memory(generated);
  const double before = benchmarks::GetHeapBytes();
  const auto array = Open(generated, memory);
  const double between = benchmarks::GetHeapBytes();
  const AravisMap map(generated.xml, memory);
  return {between - before, benchmarks::GetHeapBytes() - between};
}

// In a process of its own, as GLib keeps what was freed for itself.
void MeasureMemory(std::size_t aFeatures) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0)
    Fail("there is no pipe to a process that looks at its memory.");
  const pid_t child = ::fork();
  if (child == 0) {
    const Bytes bytes = LookAtMemory(aFeatures);
    const bool isTold = ::write(ends[1], bytes.data(), sizeof bytes) == static_cast<ssize_t>(sizeof bytes);
    std::_Exit(isTold ? 0 : 1);
  }
  ::close(ends[1]);
  Bytes bytes{};
  const bool isTold = ::read(ends[0], bytes.data(), sizeof bytes) == static_cast<ssize_t>(sizeof bytes);
  ::close(ends[0]);
  int status = 0;
  if (::waitpid(child, &status, 0) != child || status != 0 || !isTold)
    Fail("the process that looks at its memory failed.");
  const auto features = static_cast<double>(aFeatures);
  gCosts["memory"][aFeatures] = {features, bytes[0], bytes[1]};
  PrintFigure({MakeName("memory_per_feature", aFeatures), bytes[0] / features, "B", Peer{kPeer, bytes[1] / features}});
}

void RequireAll(std::size_t aRead, std::size_t aFeatures) {
  if (aRead != aFeatures)
    Fail("a feature that was read before is not any more.");
}

void MeasureReading(KrGenParameterArray& aArray, OurFeatures& aOurs, TheirFeatures& aTheirs) {
  constexpr int kRunsPerTurn = 3;
  const std::size_t features = aOurs.all.size();
  PrintFigure({MakeName("features_read", features), static_cast<double>(aOurs.ReadAll()), "features",
               Peer{kPeer, static_cast<double>(aTheirs.ReadAll())}});
  KeepWhatBothRead(aOurs, aTheirs);
  const std::size_t readable = aOurs.views.size();
  if (readable < features / 2)
    Fail("most of the features have no value.");

  const auto readOurs = [&] { RequireAll(aOurs.ReadAll(), readable); };
  const auto [read, theirRead] = benchmarks::MeasureInTurnsMs(
      Timing::Thread, kRunsPerTurn,
      [&] {
        aArray.InvalidateCache();
        readOurs();
      },
      [&] { RequireAll(aTheirs.ReadAll(), readable); });
  PrintBeside("read_all", features, read, "ms", theirRead);
  PrintAlone("read_all_cached", features, benchmarks::MeasureBestMs(Timing::Thread, 9, readOurs), "ms");

  const std::size_t told = aTheirs.AskAccess();
  PrintFigure({MakeName("features_whose_access_is_told", features), static_cast<double>(features), "features",
               Peer{kPeer, static_cast<double>(told)}});
  const auto [access, theirAccess] = benchmarks::MeasureInTurnsMs(
      Timing::Thread, kRunsPerTurn,
      [&] {
        aArray.InvalidateCache();
        aOurs.AskAccess();
      },
      [&] { RequireAll(aTheirs.AskAccess(), told); });
  PrintBeside("access_of_all", features, access, "ms", theirAccess);
  PrintAlone("access_of_all_cached", features, benchmarks::MeasureBestMs(Timing::Thread, 9, [&] { aOurs.AskAccess(); }),
             "ms");
}

constexpr double kUsPerMs = 1000.0;

// One feature after the other, which nobody listens to and nobody has read since.
void MeasureWriting(KrGenParameterArray& aArray, const AravisMap& aMap, std::size_t aFeatures) {
  constexpr int kRunsPerTurn = 3;
  constexpr int kWrites = 100;
  constexpr std::int64_t kValues = 60000;
  KrGenInteger& driver = *aArray.GetInteger("Driver");
  ArvGcInteger* const theirDriver = ARV_GC_INTEGER(aMap.Find("Driver"));
  std::int64_t value = 0;
  const auto writeOurs = [&] {
    for (int i = 0; i < kWrites; ++i)
      Check(driver.SetValue(++value % kValues));
  };
  const auto writeTheirs = [&] {
    AravisError error;
    for (int i = 0; i < kWrites; ++i) {
      arv_gc_integer_set_value(theirDriver, ++value % kValues, error.Take());
      if (error.IsSet())
        Fail("the peer: " + error.GetText());
    }
  };
  const auto [ours, theirs] = benchmarks::MeasureInTurnsMs(Timing::Thread, kRunsPerTurn, writeOurs, writeTheirs);
  PrintBeside("write", aFeatures, ours / kWrites * kUsPerMs, "us", theirs / kWrites * kUsPerMs);
}

// With all features remembered, and ten that change with it listened to: the peer has no such thing.
void MeasureTelling(KrGenParameterArray& aArray, const OurFeatures& aOurs) {
  constexpr int kRuns = 300;
  constexpr int kAffected = 10;
  KrGenInteger& driver = *aArray.GetInteger("Driver");
  CountingSink sink;
  std::int64_t value = 0;
  for (int i = 0; i < kAffected; ++i)
    Check(aArray.Get("Driven" + std::to_string(i))->RegisterEventSink(&sink));
  std::vector<double> writes;
  std::vector<double> hearings;
  for (int i = 0; i < kRuns; ++i) {
    aOurs.ReadAll();
    sink.Reset();
    hearings.push_back(benchmarks::MeasureMs(Timing::Wall, [&] {
      // Whom the call wakes may run before it returns: what the call itself takes is processor time.
      writes.push_back(benchmarks::MeasureMs(Timing::Thread, [&] { Check(driver.SetValue(++value)); }));
      sink.WaitFor(kAffected);
    }));
  }
  PrintAlone("write_that_affects_ten", aOurs.all.size(), benchmarks::GetMedian(writes) * kUsPerMs, "us");
  PrintAlone("write_until_ten_were_heard", aOurs.all.size(), benchmarks::GetMedian(hearings) * kUsPerMs, "us");
  for (int i = 0; i < kAffected; ++i)
    Check(aArray.Get("Driven" + std::to_string(i))->UnregisterEventSink(&sink));
}

void Measure(std::size_t aFeatures) {
  const GeneratedDescription generated = GenerateDescription(aFeatures, kSeed);
  MeasureLoading(generated, aFeatures);
  PlainMemory memory(generated);
  const auto array = Open(generated, memory);
  const AravisMap map(generated.xml, memory);
  OurFeatures ours(*array);
  TheirFeatures theirs(map, ours);
  MeasureReading(*array, ours, theirs);
  MeasureWriting(*array, map, ours.all.size());
  MeasureTelling(*array, ours);
}

} // namespace

int main() {
  for (const std::size_t features : kSizes)
    MeasureMemory(features);
  for (const std::size_t features : kSizes)
    Measure(features);
  for (const char* const what : {"memory", "load", "read_all", "access_of_all"})
    benchmarks::PrintGrowth(std::string("genicam_") + what, gCosts[what][kSmallest], gCosts[what][kLargest], kPeer);
  // One feature is written, however many there are.
  SizedCost ofFew = gCosts["write"][kSmallest];
  SizedCost ofMany = gCosts["write"][kLargest];
  ofFew.items = ofMany.items = 1;
  benchmarks::PrintGrowth("genicam_write", ofFew, ofMany, kPeer);
}
