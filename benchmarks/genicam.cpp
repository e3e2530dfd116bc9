// How long do loading a camera description, reading all of its features and setting one take, and does that grow with
// the description alone? The peer is Aravis' node map over the same memory, where it can do the same.

#include "aravismap.h"
#include "figure.h"
#include "generateddescription.h"
#include "krgenicam/krgenparameterarray.h"

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace {

constexpr std::uint64_t kSeed = 1;
constexpr std::size_t kSmallest = 1000;
constexpr std::size_t kLargest = 20000;
constexpr std::size_t kSizes[] = {kSmallest, 5000, kLargest};
constexpr const char* kPeer = "aravis";
constexpr const char* kNoPeer = "none";

void Require(const KrResult& aResult) {
  if (aResult.IsOK())
    return;
  std::fprintf(stderr, "%s: %s\n", aResult.GetCodeString().CStr(), aResult.GetDescription().CStr());
  std::exit(1);
}

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
  Require(KrGenDescription::ReadFromMemory(aGenerated.xml, "generated", description));
  std::unique_ptr<KrGenParameterArray> array;
  Require(KrGenParameterArray::Open(description, aPort, {}, array));
  return array;
}

std::size_t GetAllocated() {
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// The features in their order, each by its type, as a program that reads them has them.
struct OurFeatures {
  using View = std::variant<KrGenInteger*, KrGenFloat*, KrGenEnum*, KrGenBoolean*, KrGenString*>;

  explicit OurFeatures(KrGenParameterArray& aArray) {
    for (std::size_t i = 0; i < aArray.GetCount(); ++i) {
      all.push_back(aArray[i]);
      AddView<KrGenInteger>(aArray[i]);
      AddView<KrGenFloat>(aArray[i]);
      AddView<KrGenEnum>(aArray[i]);
      AddView<KrGenBoolean>(aArray[i]);
      AddView<KrGenString>(aArray[i]);
    }
  }

  // Returns how many have a value at the moment.
  std::size_t ReadAll() const {
    std::size_t count = 0;
    for (const View& view : views)
      count +=
          std::visit([](auto* aFeature) { return HasValue(*aFeature, &std::decay_t<decltype(*aFeature)>::GetValue); },
                     view)
              ? 1
              : 0;
    return count;
  }

  std::vector<KrGenParameter*> all;
  std::vector<View> views;

private:
  template <typename Type>
  void AddView(KrGenParameter* aParameter) {
    if (auto* const view = dynamic_cast<Type*>(aParameter))
      views.emplace_back(view);
  }
  template <typename Type, typename Value>
  static bool HasValue(Type& aFeature, KrResult (Type::*aGetter)(Value&)) {
    Value value{};
    return (aFeature.*aGetter)(value).IsOK();
  }
};

struct TheirFeatures {
  using View = std::variant<ArvGcInteger*, ArvGcFloat*, ArvGcEnumeration*, ArvGcBoolean*, ArvGcString*>;

  TheirFeatures(const AravisMap& aMap, const OurFeatures& aOurs) {
    const auto find = [&aMap](KrGenParameter* aParameter) { return aMap.Find(aParameter->GetName().CStr()); };
    for (KrGenParameter* const parameter : aOurs.all)
      all.push_back(ARV_GC_FEATURE_NODE(find(parameter)));
    for (const OurFeatures::View& view : aOurs.views)
      views.push_back(std::visit([&](auto* aFeature) { return MakeView(aFeature, find(aFeature)); }, view));
  }

  void ReadAll() const {
    AravisError error;
    for (const View& view : views)
      std::visit([&error](auto* aNode) { Read(aNode, error.Take()); }, view);
  }
  void AskAccess() const {
    AravisError error;
    for (ArvGcFeatureNode* const node : all) {
      arv_gc_feature_node_is_implemented(node, error.Take());
      arv_gc_feature_node_is_available(node, error.Take());
      arv_gc_feature_node_is_locked(node, error.Take());
      arv_gc_feature_node_get_actual_access_mode(node);
    }
  }

  std::vector<ArvGcFeatureNode*> all;
  std::vector<View> views;

private:
  static View MakeView(KrGenInteger*, ArvGcNode* aNode) { return ARV_GC_INTEGER(aNode); }
  static View MakeView(KrGenFloat*, ArvGcNode* aNode) { return ARV_GC_FLOAT(aNode); }
  static View MakeView(KrGenEnum*, ArvGcNode* aNode) { return ARV_GC_ENUMERATION(aNode); }
  static View MakeView(KrGenBoolean*, ArvGcNode* aNode) { return ARV_GC_BOOLEAN(aNode); }
  static View MakeView(KrGenString*, ArvGcNode* aNode) { return ARV_GC_STRING(aNode); }

  static void Read(ArvGcInteger* aNode, GError** aError) { arv_gc_integer_get_value(aNode, aError); }
  static void Read(ArvGcFloat* aNode, GError** aError) { arv_gc_float_get_value(aNode, aError); }
  static void Read(ArvGcEnumeration* aNode, GError** aError) { arv_gc_enumeration_get_int_value(aNode, aError); }
  static void Read(ArvGcBoolean* aNode, GError** aError) { arv_gc_boolean_get_value(aNode, aError); }
  static void Read(ArvGcString* aNode, GError** aError) { arv_gc_string_get_value(aNode, aError); }
};

// Ours and theirs of one figure, by the size of the description.
struct Times {
  double ours = 0;
  double theirs = 0;
};
std::map<std::string, std::map<std::size_t, Times>> gTimes;

void Print(const std::string& aWhat, std::size_t aFeatures, double aOurs, const char* aUnit, double aTheirs) {
  gTimes[aWhat][aFeatures] = {aOurs, aTheirs};
  const std::string name = "genicam_" + aWhat + "_" + std::to_string(aFeatures);
  benchmarks::PrintFigure(name.c_str(), aOurs, aUnit, aTheirs == 0 ? kNoPeer : kPeer, aTheirs);
}

// Time for twenty times as much, by twenty: 1 where it grows with the description alone.
void PrintGrowth(const std::string& aWhat) {
  constexpr double kTimes = static_cast<double>(kLargest) / static_cast<double>(kSmallest);
  auto& times = gTimes[aWhat];
  const auto grow = [](double aLargest, double aSmallest) {
    return aSmallest == 0 ? 0 : aLargest / aSmallest / kTimes;
  };
  benchmarks::PrintFigure(("genicam_growth_of_" + aWhat).c_str(), grow(times[kLargest].ours, times[kSmallest].ours),
                          "times", kPeer, grow(times[kLargest].theirs, times[kSmallest].theirs));
}

void MeasureLoading(const GeneratedDescription& aGenerated, std::size_t aFeatures) {
  const int runs = aFeatures >= kLargest ? 5 : 9;
  PlainMemory memory(aGenerated);
  Print("load", aFeatures, benchmarks::MeasureBestProcessorMs(runs, [&] { Open(aGenerated, memory); }), "ms",
        benchmarks::MeasureBestProcessorMs(runs, [&] { const AravisMap map(aGenerated.xml, memory); }));
}

// In a process of its own, as GLib keeps what was freed for itself.
void MeasureMemory(std::size_t aFeatures) {
  const pid_t child = fork();
  if (child != 0) {
    waitpid(child, nullptr, 0);
    return;
  }
  const GeneratedDescription generated = GenerateDescription(aFeatures, kSeed);
  PlainMemory memory(generated);
  const std::size_t before = GetAllocated();
  const auto array = Open(generated, memory);
  const std::size_t between = GetAllocated();
  const AravisMap map(generated.xml, memory);
  const std::size_t after = GetAllocated();
  const double features = static_cast<double>(aFeatures);
  Print("memory_per_feature", aFeatures, static_cast<double>(between - before) / features, "B",
        static_cast<double>(after - between) / features);
  std::_Exit(0);
}

void MeasureReading(KrGenParameterArray& aArray, const OurFeatures& aOurs, const TheirFeatures& aTheirs) {
  constexpr int kRuns = 9;
  const std::size_t features = aOurs.all.size();
  if (aOurs.ReadAll() < features / 2) {
    std::fprintf(stderr, "Most of the features have no value.\n");
    std::exit(1);
  }
  const auto askAccess = [&] {
    std::size_t readable = 0;
    for (KrGenParameter* const parameter : aOurs.all)
      readable += parameter->GetAccessMode() >= KrGenAccessMode::ReadOnly ? 1 : 0;
    return readable;
  };
  const auto forgetting = [&aArray](const auto& aWork) {
    return [&aArray, &aWork] {
      aArray.InvalidateCache();
      aWork();
    };
  };
  const auto readAll = [&aOurs] { aOurs.ReadAll(); };
  Print("read_all", features, benchmarks::MeasureBestProcessorMs(kRuns, forgetting(readAll)), "ms",
        benchmarks::MeasureBestProcessorMs(kRuns, [&] { aTheirs.ReadAll(); }));
  Print("read_all_cached", features, benchmarks::MeasureBestProcessorMs(kRuns, readAll), "ms", 0);
  const double theirAccess = benchmarks::MeasureBestProcessorMs(kRuns, [&] { aTheirs.AskAccess(); });
  Print("access_of_all", features, benchmarks::MeasureBestProcessorMs(kRuns, forgetting(askAccess)), "ms", theirAccess);
  Print("access_of_all_cached", features, benchmarks::MeasureBestProcessorMs(kRuns, askAccess), "ms", 0);
}

void MeasureWriting(KrGenParameterArray& aArray, const OurFeatures& aOurs, const AravisMap& aMap) {
  constexpr int kRuns = 300;
  constexpr int kAffected = 10;
  constexpr double kUsPerMs = 1000.0;
  const std::size_t features = aOurs.all.size();
  KrGenInteger& driver = *aArray.GetInteger("Driver");
  CountingSink sink;
  std::int64_t value = 0;
  for (int i = 0; i < kAffected; ++i)
    Require(aArray.Get("Driven" + std::to_string(i))->RegisterEventSink(&sink));

  double ours = 1e9;
  double heard = 1e9;
  for (int i = 0; i < kRuns; ++i) {
    aOurs.ReadAll();
    sink.Reset();
    // Whom the call wakes may run before it returns: what the call itself takes is processor time.
    double setting = 0;
    const double hearing = benchmarks::MeasureBestMs(1, [&] {
      setting = benchmarks::MeasureBestProcessorMs(1, [&] { Require(driver.SetValue(++value)); });
      sink.WaitFor(kAffected);
    });
    ours = std::min(ours, setting);
    heard = std::min(heard, hearing);
  }
  ArvGcInteger* const theirDriver = ARV_GC_INTEGER(aMap.Find("Driver"));
  AravisError error;
  const double theirs = benchmarks::MeasureBestProcessorMs(
      kRuns, [&] { arv_gc_integer_set_value(theirDriver, ++value % 60000, error.Take()); });
  Print("write_that_affects_ten", features, ours * kUsPerMs, "us", theirs * kUsPerMs);
  Print("write_until_ten_were_heard", features, heard * kUsPerMs, "us", 0);
  for (int i = 0; i < kAffected; ++i)
    Require(aArray.Get("Driven" + std::to_string(i))->UnregisterEventSink(&sink));
}

void Measure(std::size_t aFeatures) {
  const GeneratedDescription generated = GenerateDescription(aFeatures, kSeed);
  MeasureLoading(generated, aFeatures);
  PlainMemory memory(generated);
  const auto array = Open(generated, memory);
  const AravisMap map(generated.xml, memory);
  const OurFeatures ours(*array);
  const TheirFeatures theirs(map, ours);
  MeasureReading(*array, ours, theirs);
  MeasureWriting(*array, ours, map);
}

} // namespace

int main() {
  for (const std::size_t features : kSizes)
    MeasureMemory(features);
  for (const std::size_t features : kSizes)
    Measure(features);
  for (const char* const what : {"load", "read_all", "access_of_all"})
    PrintGrowth(what);
}
