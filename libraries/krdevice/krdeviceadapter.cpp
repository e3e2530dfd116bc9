#include "krdevice/krdeviceadapter.h"

#include "krdevice/krdevice.h"

namespace {

// What a failure to get at the parameters means: a device that does not answer, or one that has none to offer.
KrResult MakeRefusal(const KrResult& aFailure, const KrString& aAttempt) {
  const bool isUnreached = aFailure == KrResult::Code::TimeLimitExceeded ||
                           aFailure == KrResult::Code::ConnectionLost || aFailure == KrResult::Code::Aborted;
  return {isUnreached ? aFailure.GetCode() : KrResult::Code::NotSupported,
          aAttempt + ": this device offers no parameters by name. " + aFailure.GetDescription()};
}

template <typename Parameter>
constexpr const char* kKind = nullptr;
template <>
constexpr const char* kKind<KrGenEnum> = "enumeration";
template <>
constexpr const char* kKind<KrGenBoolean> = "boolean";

// Asks a parameter of a type.
template <typename Parameter, typename Question>
KrResult Ask(KrDevice& aDevice, const char* aVerb, const KrString& aName, Question&& aQuestion) {
  const KrString attempt = KrString(aVerb) + " the parameter \"" + aName + "\" of " + aDevice.GetDisplayID();
  KrGenParameterArray* parameters = nullptr;
  if (const KrResult got = aDevice.GetParameters(parameters); !got.IsOK())
    return MakeRefusal(got, attempt);
  KrGenParameter* const parameter = parameters->Get(aName);
  if (!parameter)
    return {KrResult::Code::NotFound, attempt + ": it has no parameter of that name."};
  auto* const typed = dynamic_cast<Parameter*>(parameter);
  if (!typed)
    return {KrResult::Code::InvalidInput, attempt + ": it is no " + kKind<Parameter> + "."};
  return aQuestion(*typed);
}

KrGenParameter* Find(KrDevice& aDevice, const KrString& aName) {
  KrGenParameterArray* const parameters = aDevice.GetParameters();
  return parameters ? parameters->Get(aName) : nullptr;
}

} // namespace

KrDeviceAdapter::KrDeviceAdapter(KrDevice& aDevice) : mDevice(aDevice) {}

KrDeviceAdapter::~KrDeviceAdapter() = default;

bool KrDeviceAdapter::HasParameter(const KrString& aName) {
  return Find(mDevice, aName) != nullptr;
}

bool KrDeviceAdapter::IsParameterAvailable(const KrString& aName) {
  KrGenParameter* const parameter = Find(mDevice, aName);
  return parameter && parameter->IsAvailable();
}

KrResult KrDeviceAdapter::GetEnumEntries(const KrString& aName, KrStringList& aEntries) {
  return Ask<KrGenEnum>(mDevice, "Listing the entries of", aName, [&](KrGenEnum& aEnum) -> KrResult {
    // The entries of what is not available are of no use to anybody; why it is not says whoever reads it.
    bool isAvailable = false;
    if (KrResult asked = aEnum.IsAvailable(isAvailable); !asked.IsOK())
      return asked;
    if (!isAvailable)
      return {KrResult::Code::AccessDenied,
              "Listing the entries of the parameter \"" + aName + "\": it is not available at the moment."};
    return aEnum.GetAvailableEntries(aEntries);
  });
}

KrResult KrDeviceAdapter::GetEnumValue(const KrString& aName, KrString& aValue) {
  return Ask<KrGenEnum>(mDevice, "Reading", aName, [&](KrGenEnum& aEnum) { return aEnum.GetEntry(aValue); });
}

KrResult KrDeviceAdapter::SetEnumValue(const KrString& aName, const KrString& aValue) {
  return Ask<KrGenEnum>(mDevice, "Setting", aName, [&](KrGenEnum& aEnum) { return aEnum.SetEntry(aValue); });
}

KrResult KrDeviceAdapter::GetBooleanValue(const KrString& aName, bool& aValue) {
  return Ask<KrGenBoolean>(mDevice, "Reading", aName,
                           [&](KrGenBoolean& aBoolean) { return aBoolean.GetValue(aValue); });
}

KrResult KrDeviceAdapter::SetBooleanValue(const KrString& aName, bool aValue) {
  return Ask<KrGenBoolean>(mDevice, "Setting", aName,
                           [&](KrGenBoolean& aBoolean) { return aBoolean.SetValue(aValue); });
}

KrString KrDeviceAdapter::GetDeviceText() const {
  const KrString& model = mDevice.GetModelName();
  return model.IsEmpty() ? mDevice.GetUniqueID() : model + " " + mDevice.GetUniqueID();
}

std::shared_ptr<krsystem::IByteChannel> KrDeviceAdapter::GetByteChannel(std::uint32_t aNumber) {
  return mDevice.GetByteChannel(aNumber);
}
