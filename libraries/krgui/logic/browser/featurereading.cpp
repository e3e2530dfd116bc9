#include "logic/browser/featurereading.h"

#include "krbase/krresult.h"
#include "krgenicam/krgenboolean.h"
#include "krgenicam/krgencommand.h"
#include "krgenicam/krgenenum.h"
#include "krgenicam/krgenfloat.h"
#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgenregister.h"
#include "krgenicam/krgenstring.h"
#include "logic/browser/valuetext.h"

#include <array>
#include <exception>
#include <utility>

namespace krgui {

namespace {

constexpr const char* kOutOfRange = "Parameter out of range";
constexpr const char* kReadingValue = "Error reading value";
constexpr const char* kReadingUnit = "Error reading unit";
constexpr const char* kReadingRepresentation = "Error reading representation";
constexpr const char* kFindingEntry = "Enum value not matching any enum entry";

// The error of a step that failed; aContext names the step.
void Fail(FeatureReading& aReading, const KrString& aContext, const KrString& aReason) {
  aReading.hasError = true;
  aReading.error = aContext + ", " + aReason;
}

// True for success; else the step becomes the error.
bool Succeeds(const KrResult& aResult, const char* aContext, FeatureReading& aReading) {
  if (!aResult.IsOK())
    Fail(aReading, aContext, aResult.GetDescription());
  return aResult.IsOK();
}

struct AccessStep {
  KrResult (KrGenParameter::*ask)(bool&);
  bool AccessFlags::*flag;
  const char* context;
};

constexpr std::array kAccessSteps = {
    AccessStep{&KrGenParameter::IsImplemented, &AccessFlags::isImplemented, "Error retrieving implemented attribute"},
    AccessStep{&KrGenParameter::IsAvailable, &AccessFlags::isAvailable, "Error retrieving available attribute"},
    AccessStep{&KrGenParameter::IsReadable, &AccessFlags::isReadable, "Error retrieving readable attribute"},
    AccessStep{&KrGenParameter::IsWritable, &AccessFlags::isWritable, "Error retrieving writable attribute"},
};

bool ReadAccess(KrGenParameter& aFeature, FeatureReading& aReading) {
  for (const AccessStep& step : kAccessSteps) {
    bool answer = false;
    if (!Succeeds((aFeature.*step.ask)(answer), step.context, aReading))
      return false;
    aReading.access.*step.flag = answer;
  }
  return true;
}

// Bounds that cannot be read limit nothing.
template <typename Number, typename Feature>
void CheckRange(Feature& aFeature, Number aValue, FeatureReading& aReading) {
  Number min{};
  Number max{};
  const bool hasMin = aFeature.GetMin(min).IsOK();
  const bool hasMax = aFeature.GetMax(max).IsOK();
  if (hasMin && hasMax && (aValue < min || aValue > max)) {
    aReading.hasError = true;
    aReading.error = kOutOfRange;
  }
}

void ReadCommand(KrGenCommand& aCommand, FeatureReading& aReading) {
  bool isDone = true;
  if (aReading.access.isReadable)
    (void)aCommand.IsDone(isDone); // A command that does not tell counts as done.
  if (!isDone)
    aReading.access.isWritable = false;
  aReading.value = isDone ? kCommandText : kExecutingText;
}

void ReadBoolean(KrGenBoolean& aBoolean, FeatureReading& aReading) {
  bool value = false;
  if (Succeeds(aBoolean.GetValue(value), kReadingValue, aReading))
    aReading.value = value ? "True" : "False";
}

void ReadEnumeration(KrGenEnum& aEnumeration, const ValueStyle& aStyle, FeatureReading& aReading) {
  std::int64_t value = 0;
  KrGenEnumEntry* entry = nullptr;
  if (!Succeeds(aEnumeration.GetValue(value), kReadingValue, aReading))
    return;
  aReading.number = value;
  if (!Succeeds(aEnumeration.GetEntryByValue(value, entry), kFindingEntry, aReading))
    return;
  // A text that cannot be had stays empty.
  (void)(aStyle.showsDisplayNames ? entry->GetDisplayName(aReading.value) : entry->GetName(aReading.value));
}

void ReadFloat(KrGenFloat& aFloat, FeatureReading& aReading) {
  double value = 0;
  KrString unit;
  if (!Succeeds(aFloat.GetValue(value), kReadingValue, aReading))
    return;
  aReading.number = value;
  if (!Succeeds(aFloat.GetUnit(unit), kReadingUnit, aReading))
    return;
  aReading.value = JoinUnit(FormatFloat(value), unit);
  CheckRange(aFloat, value, aReading);
}

// False when a step failed, which leaves no text.
bool ReadIntegerText(KrGenInteger& aInteger, std::int64_t aValue, FeatureReading& aReading) {
  KrGenRepresentation representation = KrGenRepresentation::PureNumber;
  KrString unit;
  if (!Succeeds(aInteger.GetRepresentation(representation), kReadingRepresentation, aReading) ||
      !Succeeds(aInteger.GetUnit(unit), kReadingUnit, aReading))
    return false;
  aReading.value = JoinUnit(FormatInteger(aValue, representation == KrGenRepresentation::HexNumber), unit);
  return true;
}

void ReadInteger(KrGenInteger& aInteger, const ValueStyle& aStyle, FeatureReading& aReading) {
  std::int64_t value = 0;
  if (!Succeeds(aInteger.GetValue(value), kReadingValue, aReading))
    return;
  aReading.number = value;
  if (aStyle.isMACAddress)
    aReading.value = FormatMACAddress(value);
  else if (aStyle.isIPAddress)
    aReading.value = FormatIPAddress(value);
  else if (!ReadIntegerText(aInteger, value, aReading))
    return;
  CheckRange(aInteger, value, aReading);
}

void ReadString(KrGenString& aString, FeatureReading& aReading) {
  KrString value;
  if (!Succeeds(aString.GetValue(value), kReadingValue, aReading))
    return;
  aReading.isCut = IsTooLong(value);
  aReading.isTooLongToEdit = IsTooLongToEdit(value);
  aReading.value = std::move(value);
}

void ReadValue(KrGenParameter& aFeature, const ValueStyle& aStyle, FeatureReading& aReading) {
  if (auto* const command = dynamic_cast<KrGenCommand*>(&aFeature))
    ReadCommand(*command, aReading);
  if (!aReading.access.isReadable)
    aReading.keepsValue = true;
  else if (auto* const boolean = dynamic_cast<KrGenBoolean*>(&aFeature))
    ReadBoolean(*boolean, aReading);
  else if (auto* const enumeration = dynamic_cast<KrGenEnum*>(&aFeature))
    ReadEnumeration(*enumeration, aStyle, aReading);
  else if (auto* const number = dynamic_cast<KrGenFloat*>(&aFeature))
    ReadFloat(*number, aReading);
  else if (auto* const integer = dynamic_cast<KrGenInteger*>(&aFeature))
    ReadInteger(*integer, aStyle, aReading);
  else if (auto* const string = dynamic_cast<KrGenString*>(&aFeature))
    ReadString(*string, aReading);
  else if (dynamic_cast<KrGenRegister*>(&aFeature))
    aReading.value = kRegisterText;
}

// What cannot be had is missing from the tooltip and says nothing about the value; it is asked for again.
AccessReason ReadAccessReason(KrGenParameter& aFeature, const AccessFlags& aAccess) {
  AccessReason reason;
  if (aFeature.GetAccessReason(reason.text).IsOK())
    reason.access = aAccess;
  reason.text = KeepText(std::move(reason.text));
  return reason;
}

} // namespace

FeatureReading ReadFeature(KrGenParameter& aFeature, const ValueStyle& aStyle, const AccessReason& aKnown) {
  FeatureReading reading;
  // A register port's exceptions are results. What is raised all the same, when memory runs out, belongs to no step.
  try {
    if (ReadAccess(aFeature, reading)) {
      const AccessFlags access = reading.access;
      ReadValue(aFeature, aStyle, reading);
      reading.value = KeepText(std::move(reading.value));
      if (!access.isWritable)
        reading.accessReason = aKnown.access == access ? aKnown : ReadAccessReason(aFeature, access);
    }
  } catch (const std::exception& exception) {
    Fail(reading, {}, exception.what());
  }
  reading.error = KeepText(std::move(reading.error));
  return reading;
}

} // namespace krgui
