#pragma once
// Features of this host's side of a device: of a stream's receiver, of the connection. A row says what users see of a
// feature, and how it is read and written. Making a parameter array of rows is left to krdevice.

#include "krbase/krresult.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <stop_token>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace krsystem {

/// What kind of parameter a feature is.
enum class HostFeatureKind { Text, Integer, Float, Boolean, Enumeration, Command };

/// One value of an enumeration. The texts live as long as the program.
struct HostFeatureEntry {
  std::string_view name;  ///< As programs say it.
  std::string_view tip;   ///< What it means, for people.
  std::int64_t value = 0; ///< What stands for it.
};

/// What users see of a feature. The texts live as long as the program.
struct HostFeatureInfo {
  std::string_view name;                           ///< As programs say it.
  std::string_view category;                       ///< Under which it is listed.
  HostFeatureKind kind = HostFeatureKind::Integer; ///< What it holds.
  std::string_view tip;                            ///< What it is, for people, in whole sentences.
  std::string_view visibility = "Expert";          ///< For whom, as GenApi says it.
  bool isStandard = false;                         ///< Whether the name is one of the GenTL standard's (SFNC).
  bool isLocked = false;                           ///< Whether it cannot be written while frames are received.
  bool isCounter = false;                          ///< Whether it counts up from 0, and can be made to begin anew.
  std::uint32_t pollingMs = 0; ///< How often a look is worth while; 0 for what changes by writing alone.
  std::int64_t minimum = 0;    ///< Of a number that can be written.
  std::int64_t maximum = std::numeric_limits<std::int64_t>::max(); ///< The same.
  std::string_view unit = {};                                      ///< Of a number.
  std::string_view representation = {};                            ///< Of a number, as GenApi says it.
  std::span<const HostFeatureEntry> entries = {};                  ///< Of an enumeration.
};

/// A text, the number of an integer, boolean (0 or 1), entry or command (1), or a float's.
using HostFeatureValue = std::variant<std::int64_t, double, KrString>;

/// How long an access may take that has to ask a device.
struct HostFeatureAccess {
  std::uint32_t timeoutMs = 1000; ///< At least 1.
  std::stop_token cancel = {};    ///< Ends it early, with Aborted.
};

/// A feature. Its functions may be called from any thread, one at a time for each table; they must not call the array
/// that is made of it.
struct HostFeature {
  HostFeatureInfo info; ///< What it is.
  /// Gives the value, of the kind's type; empty for what cannot be read.
  std::function<KrResult(HostFeatureValue&, const HostFeatureAccess&)> read;
  /// Takes a value of the kind's type, within the range; empty for what cannot be written.
  std::function<KrResult(const HostFeatureValue&, const HostFeatureAccess&)> write;
};

/// A table, in the order in which it is shown.
using HostFeatures = std::vector<HostFeature>;

/// What stands for a value of any integral, enumeration, floating-point or text type.
template <typename T>
HostFeatureValue ToHostFeatureValue(const T& aValue) {
  if constexpr (std::is_floating_point_v<T>)
    return static_cast<double>(aValue);
  else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>)
    return static_cast<std::int64_t>(aValue);
  else
    return KrString(aValue);
}

/// A feature that is only read, by a function that gives the value at once.
template <typename Get>
HostFeature MakeShownFeature(const HostFeatureInfo& aInfo, Get aGet) {
  return {.info = aInfo,
          .read =
              [get = std::move(aGet)](HostFeatureValue& aValue, const HostFeatureAccess&) {
                aValue = ToHostFeatureValue(get());
                return KrResult();
              },
          .write = {}};
}

/// A feature that is set, too; aSet takes what aGet gives, and returns a KrResult.
template <typename Get, typename Set>
HostFeature MakeSetFeature(const HostFeatureInfo& aInfo, Get aGet, Set aSet) {
  using Value = std::decay_t<std::invoke_result_t<Get&>>;
  using Held = std::conditional_t<std::is_floating_point_v<Value>, double, std::int64_t>;
  HostFeature feature = MakeShownFeature(aInfo, std::move(aGet));
  feature.write = [set = std::move(aSet)](const HostFeatureValue& aValue, const HostFeatureAccess&) -> KrResult {
    return set(static_cast<Value>(std::get<Held>(aValue)));
  };
  return feature;
}

/// A command.
template <typename Run>
HostFeature MakeHostCommand(const HostFeatureInfo& aInfo, Run aRun) {
  return {.info = aInfo,
          .read = {},
          .write = [run = std::move(aRun)](const HostFeatureValue&, const HostFeatureAccess&) -> KrResult {
            return run();
          }};
}

} // namespace krsystem
