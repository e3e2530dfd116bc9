// What it costs to listen to every feature of a device, as a feature browser does when it fills and when it clears, and
// to forget all values meanwhile. How long one getter takes that needs no device while another thread waits for one.
// The cost of a feature is that of the call in processor time, the best of turns that few and many features take; a
// getter may have to wait, and is measured by the clock.

#include "checked.h"
#include "figure.h"
#include "generateddescription.h"
#include "growth.h"
#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"
#include "krgenicam/krgenparameterlist.h"
#include "statistics.h"
#include "timing.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using benchmarks::Check;
using benchmarks::Limit;
using benchmarks::PrintFigure;
using benchmarks::Timing;

constexpr std::size_t kFew = 5000;
constexpr std::size_t kMany = 20000;
constexpr int kTurns = 5;
constexpr int kReadMs = 20;
constexpr double kBrowserLimitMs = 100; // What a user does not feel when a browser fills or clears.

class SilentSink final : public KrGenEventSink {
public:
  void OnParameterUpdate(KrGenParameter*) override {}
};

/// Memory whose every read takes as long as a slow camera's, on order.
class SlowPort final : public IKrRegisterPort {
public:
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    if (isSlow)
      std::this_thread::sleep_for(std::chrono::milliseconds(kReadMs));
    return memory.Read(aAddress, aData, aLength, aTimeoutMs, aCancel);
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    return memory.Write(aAddress, aData, aLength, aTimeoutMs, aCancel);
  }

  KrGenMemoryPort memory;
  std::atomic<bool> isSlow = false;
};

class Camera {
public:
  explicit Camera(std::size_t aFeatures) {
    const GeneratedDescription generated = GenerateDescription(aFeatures, 1);
    Check(port.memory.Write(generated.address, generated.memory.data(), generated.memory.size(), 1000));
    KrGenDescription description;
    Check(KrGenDescription::ReadFromMemory(generated.xml, "generated", description));
    Check(KrGenParameterArray::Open(description, port, {}, array));
  }

  void Register() {
    for (std::size_t i = 0; i < array->GetCount(); ++i)
      Check((*array)[i]->RegisterEventSink(&sink));
  }
  void Unregister() {
    for (std::size_t i = 0; i < array->GetCount(); ++i)
      Check((*array)[i]->UnregisterEventSink(&sink));
  }

  SlowPort port;
  SilentSink sink;
  std::unique_ptr<KrGenParameterArray> array;
};

struct Costs {
  double fill = std::numeric_limits<double>::max();
  double invalidate = std::numeric_limits<double>::max();
  double clear = std::numeric_limits<double>::max();
  double refill = std::numeric_limits<double>::max();
};

// Each turn has a camera of its own, as only what was never listened to is filled for the first time.
void TakeTurn(std::size_t aFeatures, Costs& aBest) {
  Camera camera(aFeatures);
  const auto measure = [](double& aCost, const auto& aWork) {
    aCost = std::min(aCost, benchmarks::MeasureMs(Timing::Thread, aWork));
  };
  measure(aBest.fill, [&] { camera.Register(); });
  measure(aBest.invalidate, [&] { camera.array->InvalidateCache(); });
  measure(aBest.clear, [&] { camera.Unregister(); });
  measure(aBest.refill, [&] { camera.Register(); });
  camera.Unregister();
}

void Print(const std::string& aName, double Costs::*aCost, const Costs& aFew, const Costs& aMany) {
  PrintFigure({aName + "_" + std::to_string(kFew), aFew.*aCost, "ms", {}, Limit{"unfelt", kBrowserLimitMs}});
  PrintFigure({aName + "_" + std::to_string(kMany), aMany.*aCost, "ms"});
  benchmarks::PrintGrowth(aName, {.items = kFew, .ours = aFew.*aCost}, {.items = kMany, .ours = aMany.*aCost}, {});
}

void MeasureSinks() {
  Costs few;
  Costs many;
  for (int turn = 0; turn < kTurns; ++turn) {
    TakeTurn(kFew, few);
    TakeTurn(kMany, many);
  }
  Print("register", &Costs::fill, few, many);
  Print("invalidate", &Costs::invalidate, few, many);
  Print("unregister", &Costs::clear, few, many);
  Print("register_again", &Costs::refill, few, many);
}

// What a user interface asks without the device.
void AskAll(KrGenParameterArray& aArray) {
  for (std::size_t i = 0; i < aArray.GetCount(); ++i) {
    KrGenParameter& feature = *aArray[i];
    KrString text;
    KrGenVisibility visibility = KrGenVisibility::Beginner;
    KrGenType type = KrGenType::Other;
    KrGenParameterList selectors;
    Check(feature.GetName(text));
    Check(feature.GetDisplayName(text));
    Check(feature.GetVisibility(visibility));
    Check(feature.GetType(type));
    Check(feature.GetSelectingParameters(selectors));
    (void)feature.IsVisible(KrGenVisibility::Guru); // How long it takes alone is asked.
  }
}

void PrintTimes(const std::string& aName, const std::vector<double>& aTimes) {
  PrintFigure({aName + "_median", benchmarks::GetMedian(aTimes), "ms", {}, Limit{"one_read", kReadMs}});
  PrintFigure({aName + "_95_percent", benchmarks::GetQuantile(aTimes, 0.95), "ms", {}, Limit{"one_read", kReadMs}});
}

// Rounds while another thread reads registers: one that waits for the device does so in as good as every round, one
// that has no processor for a while does not count.
void MeasureGetters() {
  constexpr int kRounds = 200;
  Camera camera(500);
  camera.port.isSlow = true;
  const std::jthread reader([&](const std::stop_token& aStop) {
    for (std::size_t i = 0; !aStop.stop_requested(); i = (i + 1) % camera.array->GetCount()) {
      KrString text;
      (void)(*camera.array)[i]->ToString(text); // Some features of the description cannot be read.
    }
  });
  std::vector<double> getters;
  std::vector<double> registering;
  for (int round = 0; round < kRounds; ++round) {
    getters.push_back(benchmarks::MeasureMs(Timing::Wall, [&] { AskAll(*camera.array); }));
    registering.push_back(
        benchmarks::MeasureMs(Timing::Wall, [&] { Check((*camera.array)[0]->RegisterEventSink(&camera.sink)); }));
    Check((*camera.array)[0]->UnregisterEventSink(&camera.sink));
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  PrintTimes("getters_of_500_beside_a_read", getters);
  PrintTimes("register_beside_a_read", registering);
}

} // namespace

int main() {
  MeasureSinks();
  MeasureGetters();
}
