// What it costs to listen to every feature of a device, as a feature browser does when it fills and when it clears, and
// to forget all values meanwhile. How long one getter takes that needs no device while another thread waits for one.

#include "figure.h"
#include "generateddescription.h"
#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"
#include "krgenicam/krgenparameterlist.h"

#include <atomic>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

namespace {

using benchmarks::PrintFigure;

void Check(const KrResult& aResult) {
  if (aResult.IsOK())
    return;
  std::fprintf(stderr, "%s\n", aResult.GetDescription().CStr());
  std::exit(1);
}

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
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
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

template <typename Work>
double MeasureMs(const Work& aWork) {
  return benchmarks::MeasureBestMs(1, aWork);
}

struct Costs {
  double fill = 0;
  double invalidate = 0;
  double clear = 0;
  double refill = 0;
};

Costs MeasureSinks(std::size_t aFeatures) {
  Camera camera(aFeatures);
  Costs costs;
  costs.fill = MeasureMs([&] { camera.Register(); });
  costs.invalidate = MeasureMs([&] { camera.array->InvalidateCache(); });
  costs.clear = MeasureMs([&] { camera.Unregister(); });
  costs.refill = MeasureMs([&] { camera.Register(); });
  camera.Unregister();
  return costs;
}

void PrintGrowth(const std::string& aName, double Costs::*aCost, const Costs& aFew, const Costs& aMany) {
  PrintFigure((aName + "_5000").c_str(), aFew.*aCost, "ms", "limit", 100);
  PrintFigure((aName + "_20000").c_str(), aMany.*aCost, "ms", "four_times_5000", 4 * aFew.*aCost);
}

// The longest of many rounds of what a user interface asks without the device, while others read registers.
void MeasureGetters() {
  Camera camera(500);
  camera.port.isSlow = true;
  std::atomic<bool> isEnded = false;
  std::jthread reader([&] {
    for (std::size_t i = 0; !isEnded; i = (i + 1) % camera.array->GetCount()) {
      KrString text;
      (void)(*camera.array)[i]->ToString(text); // Some features of the description cannot be read.
    }
  });
  double longest = 0;
  for (int round = 0; round < 200; ++round) {
    longest = std::max(longest, MeasureMs([&] {
                         for (std::size_t i = 0; i < camera.array->GetCount(); ++i) {
                           KrGenParameter& feature = *(*camera.array)[i];
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
                       }));
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  PrintFigure("getters_of_500_beside_a_read", longest, "ms", "one_read", 20);
  const double registering = MeasureMs([&] { Check((*camera.array)[0]->RegisterEventSink(&camera.sink)); });
  PrintFigure("register_beside_a_read", registering, "ms", "one_read", 20);
  Check((*camera.array)[0]->UnregisterEventSink(&camera.sink));
  isEnded = true;
}

} // namespace

int main() {
  const Costs few = MeasureSinks(5000);
  const Costs many = MeasureSinks(20000);
  PrintGrowth("register", &Costs::fill, few, many);
  PrintGrowth("invalidate", &Costs::invalidate, few, many);
  PrintGrowth("unregister", &Costs::clear, few, many);
  PrintGrowth("register_again", &Costs::refill, few, many);
  MeasureGetters();
}
