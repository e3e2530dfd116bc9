// Whatever a camera may say of itself: its description and the bytes in its registers. All nodes are asked and set in
// every way there is. What cannot be read or written must say so, and the engine must stay whole.

#include "description/description.h"
#include "krgenicam/krgenmemoryport.h"
#include "krgenicam/krgenparameterarray.h"
#include "krgenicam/krgenparameterlist.h"
#include "require.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kMostTextBytes = std::size_t{64} << 10;
constexpr std::size_t kMostNodes = 300;
constexpr std::size_t kMostTriedNodes = 40;
constexpr std::size_t kRegisterBytes = 65536;
constexpr std::size_t kMostContentBytes = kRegisterBytes;

// Whether it fails is the description's business.
bool Check(const KrResult& aResult) {
  return RequireReason(aResult);
}

// Memory that is gone after so many accesses, so that one run is quick.
class BudgetPort final : public IKrRegisterPort {
public:
  explicit BudgetPort(IKrRegisterPort& aPort) : mPort(aPort) {}

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override {
    KrResult result = Spend(aLength);
    return result.IsOK() ? mPort.Read(aAddress, aData, aLength, aTimeoutMs, aCancel) : result;
  }
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override {
    KrResult result = Spend(aLength);
    return result.IsOK() ? mPort.Write(aAddress, aData, aLength, aTimeoutMs, aCancel) : result;
  }

private:
  KrResult Spend(std::size_t aLength) {
    constexpr std::size_t kAccess = 64;
    if (aLength + kAccess > mLeft)
      return {KrResult::Code::ConnectionLost, "The device is gone."};
    mLeft -= aLength + kAccess;
    return {};
  }

  IKrRegisterPort& mPort;
  std::size_t mLeft = std::size_t{4} << 20;
};

class CountingSink final : public KrGenEventSink {
public:
  void OnParameterUpdate(KrGenParameter* aParameter) override { Require(aParameter != nullptr); }
};

bool IsReadable(KrGenAccessMode aMode) {
  return aMode == KrGenAccessMode::ReadOnly || aMode == KrGenAccessMode::ReadWrite;
}
bool IsWritable(KrGenAccessMode aMode) {
  return aMode == KrGenAccessMode::WriteOnly || aMode == KrGenAccessMode::ReadWrite;
}

// Sets each value, where access allows it, and must be refused where it does not.
template <typename Parameter, typename Values>
void SetAll(Parameter& aParameter, const Values& aValues) {
  for (const auto& value : aValues) {
    const bool isWritable = IsWritable(aParameter.GetAccessMode());
    const bool isSet = Check(aParameter.SetValue(value));
    Require(isWritable || !isSet);
  }
}

template <typename Value, typename Parameter>
Value GetIfReadable(Parameter& aParameter) {
  Value value{};
  const bool isReadable = IsReadable(aParameter.GetAccessMode());
  const bool isRead = Check(aParameter.GetValue(value));
  Require(isReadable || !isRead);
  return value;
}

template <typename Parameter, typename Value>
void TryNumber(Parameter& aParameter, const std::vector<Value>& aOdd) {
  Value minimum{};
  Value maximum{};
  Value increment{};
  KrGenRepresentation representation{};
  KrString unit;
  std::vector<Value> values = aOdd;
  values.push_back(GetIfReadable<Value>(aParameter));
  if (Check(aParameter.GetMin(minimum)))
    values.push_back(minimum);
  if (Check(aParameter.GetMax(maximum)))
    values.push_back(maximum);
  Check(aParameter.GetIncrement(increment));
  Check(aParameter.GetRepresentation(representation));
  Check(aParameter.GetUnit(unit));
  std::vector<Value> valid;
  if (Check(aParameter.GetValidValues(valid)))
    Require(std::is_sorted(valid.begin(), valid.end()));
  SetAll(aParameter, values);
}

void TryEnum(KrGenEnum& aEnum) {
  GetIfReadable<std::int64_t>(aEnum);
  KrString name;
  Check(aEnum.GetEntry(name));
  KrStringList names;
  Check(aEnum.GetAvailableEntries(names));
  for (std::size_t index = 0; index < aEnum.GetEntriesCount(); ++index) {
    KrGenEnumEntry* entry = nullptr;
    Require(Check(aEnum.GetEntryByIndex(index, entry)) && entry);
    std::int64_t value = 0;
    double number = 0.0;
    bool isSelfClearing = false;
    Check(entry->GetNumericValue(number));
    Check(entry->IsSelfClearing(isSelfClearing));
    entry->GetAccessMode();
    Check(aEnum.SetEntry(entry->GetName()));
    if (Check(entry->GetValue(value)))
      SetAll(aEnum, std::array{value});
  }
  SetAll(aEnum, std::array{std::numeric_limits<std::int64_t>::min()});
}

void TryKind(KrGenParameter& aParameter) {
  constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
  constexpr double kMax = std::numeric_limits<double>::max();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
  if (auto* const integer = dynamic_cast<KrGenInteger*>(&aParameter))
    TryNumber<KrGenInteger, std::int64_t>(*integer, {0, 1, -1, kLowest, kHighest});
  if (auto* const number = dynamic_cast<KrGenFloat*>(&aParameter))
    TryNumber<KrGenFloat, double>(*number, {0.0, -0.5, kMax, -kMax, kInfinity, -kInfinity, kNoNumber});
  if (auto* const enumeration = dynamic_cast<KrGenEnum*>(&aParameter))
    TryEnum(*enumeration);
  if (auto* const boolean = dynamic_cast<KrGenBoolean*>(&aParameter)) {
    GetIfReadable<bool>(*boolean);
    SetAll(*boolean, std::array{true, false});
  }
  if (auto* const text = dynamic_cast<KrGenString*>(&aParameter)) {
    std::int64_t length = 0;
    Check(text->GetMaxLength(length));
    const KrString value = GetIfReadable<KrString>(*text);
    SetAll(*text,
           std::array{value, KrString(""), KrString(std::string(300, 'x')), KrString(std::string_view("\0", 1))});
  }
  if (auto* const bytes = dynamic_cast<KrGenRegister*>(&aParameter)) {
    std::int64_t number = 0;
    Check(bytes->GetAddress(number));
    Check(bytes->GetLength(number));
    SetAll(*bytes, std::array{GetIfReadable<std::vector<std::uint8_t>>(*bytes), std::vector<std::uint8_t>(3, 0xFF)});
  }
  if (auto* const command = dynamic_cast<KrGenCommand*>(&aParameter)) {
    bool isDone = false;
    Check(command->Execute());
    Check(command->IsDone(isDone));
  }
}

void TryParameter(KrGenParameter& aParameter) {
  CountingSink sink;
  Require(Check(aParameter.RegisterEventSink(&sink)));
  TryKind(aParameter);
  KrString text;
  if (Check(aParameter.ToString(text)))
    Check(aParameter.FromString(text));
  Check(aParameter.FromString("0x7FFFFFFFFFFFFFFF"));
  KrGenParameterList parameters;
  Check(aParameter.GetSelectedParameters(parameters));
  Check(aParameter.GetSelectingParameters(parameters));
  KrStringList categories;
  Check(aParameter.GetCategories(categories));
  aParameter.GetAlias();
  aParameter.GetCastAlias();
  Check(aParameter.GetDisplayName(text));
  aParameter.IsImplemented();
  aParameter.IsAvailable();
  Require(Check(aParameter.UnregisterEventSink(&sink)));
}

void TryArray(KrGenParameterArray& aArray, const krgenicam::Description& aDescription) {
  KrStringList faults;
  Check(aArray.GetFaults(faults));
  const std::span<const krgenicam::NodeDescription> nodes = aDescription.GetNodes();
  for (const krgenicam::NodeDescription& node : nodes.first(std::min(nodes.size(), kMostTriedNodes))) {
    if (KrGenParameter* const parameter = aArray.Get(KrString(node.name)))
      TryParameter(*parameter);
    if (KrGenCategory* const category = aArray.GetCategory(KrString(node.name))) {
      KrGenParameterList parameters;
      Check(category->GetParameters(parameters));
    }
  }
  Check(aArray.Poll());
  const std::array<std::uint8_t, 16> data{1, 2, 3};
  for (const std::uint64_t id : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{0x9001}}) {
    aArray.DeliverEvent(id, data.data(), data.size());
    aArray.SetChunkData(id, data.data(), data.size());
  }
  aArray.InvalidateCache();
  KrGenSettings settings;
  KrStringList problems;
  Check(aArray.StoreSettings(settings, problems));
  Check(aArray.RestoreSettings(settings, problems));
  for (std::size_t index = 0; index < aArray.GetCount(); ++index) {
    KrString text;
    Check(aArray[index]->ToString(text));
  }
  Check(aArray.Poll());
}

} // namespace

// The description, a zero byte, and what the registers hold, over and over.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::string_view input(reinterpret_cast<const char*>(aData), aSize);
  const std::string_view text = input.substr(0, input.find('\0'));
  const std::string_view content = input.substr(std::min(text.size() + 1, input.size()));
  KrGenDescription description;
  krgenicam::Description nodes;
  if (text.size() > kMostTextBytes || content.size() > kMostContentBytes ||
      !Check(KrGenDescription::ReadFromMemory(text, "input", description)))
    return 0;
  if (!Check(krgenicam::Description::Read(description, nodes)) || nodes.GetNodes().size() > kMostNodes)
    return 0;
  KrGenMemoryPort memory;
  if (!content.empty()) {
    std::vector<char> registers(kRegisterBytes);
    for (std::size_t done = 0; done < registers.size(); done += content.size())
      std::memcpy(registers.data() + done, content.data(), std::min(content.size(), registers.size() - done));
    Require(Check(memory.Write(0, registers.data(), registers.size(), 1)));
  }
  BudgetPort port(memory);
  std::uint64_t timeMs = 0;
  std::unique_ptr<KrGenParameterArray> array;
  const KrResult opened = KrGenParameterArray::Open(
      description, port, {.timeoutMs = 1, .getTimeMs = [&timeMs] { return timeMs += 50; }}, array);
  Require(Check(opened) && array);
  TryArray(*array, nodes);
  array->Close();
  return 0;
}
