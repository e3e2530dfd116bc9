#include "krdevice/krdeviceadapter.h"

#include "krdevice/krdevice.h"

namespace {

// Asks the features of a device; one without any refuses every name.
template <typename Question>
KrResult Ask(KrDevice& aDevice, const char* aAttempt, const KrString& aName, Question&& aQuestion) {
  if (krsystem::IFeatureAccess* const features = aDevice.GetFeatures())
    return aQuestion(*features);
  return {KrResult::Code::NotSupported, KrString(aAttempt) + " the parameter \"" + aName + "\" of " +
                                            aDevice.GetDisplayID() +
                                            ": this device offers no parameters by name; use its registers."};
}

} // namespace

KrDeviceAdapter::KrDeviceAdapter(KrDevice& aDevice) : mDevice(aDevice) {}

KrDeviceAdapter::~KrDeviceAdapter() = default;

bool KrDeviceAdapter::HasParameter(const KrString& aName) {
  krsystem::IFeatureAccess* const features = mDevice.GetFeatures();
  return features && features->HasFeature(aName);
}

bool KrDeviceAdapter::IsParameterAvailable(const KrString& aName) {
  krsystem::IFeatureAccess* const features = mDevice.GetFeatures();
  return features && features->IsFeatureAvailable(aName);
}

KrResult KrDeviceAdapter::GetEnumEntries(const KrString& aName, KrStringList& aEntries) {
  return Ask(mDevice, "Listing the entries of", aName, [&](krsystem::IFeatureAccess& aFeatures) {
    KrStringList entries;
    KrResult result = aFeatures.GetEnumerationEntries(aName, entries);
    if (result.IsOK())
      aEntries = entries;
    return result;
  });
}

KrResult KrDeviceAdapter::GetEnumValue(const KrString& aName, KrString& aValue) {
  return Ask(mDevice, "Reading", aName, [&](krsystem::IFeatureAccess& aFeatures) {
    KrString entry;
    KrResult result = aFeatures.GetEnumeration(aName, entry);
    if (result.IsOK())
      aValue = entry;
    return result;
  });
}

KrResult KrDeviceAdapter::SetEnumValue(const KrString& aName, const KrString& aValue) {
  return Ask(mDevice, "Setting", aName,
             [&](krsystem::IFeatureAccess& aFeatures) { return aFeatures.SetEnumeration(aName, aValue); });
}

KrResult KrDeviceAdapter::GetBooleanValue(const KrString& aName, bool& aValue) {
  return Ask(mDevice, "Reading", aName, [&](krsystem::IFeatureAccess& aFeatures) {
    bool value = false;
    KrResult result = aFeatures.GetBoolean(aName, value);
    if (result.IsOK())
      aValue = value;
    return result;
  });
}

KrResult KrDeviceAdapter::SetBooleanValue(const KrString& aName, bool aValue) {
  return Ask(mDevice, "Setting", aName,
             [&](krsystem::IFeatureAccess& aFeatures) { return aFeatures.SetBoolean(aName, aValue); });
}

KrString KrDeviceAdapter::GetDeviceText() const {
  const KrString& model = mDevice.GetModelName();
  return model.IsEmpty() ? mDevice.GetUniqueID() : model + " " + mDevice.GetUniqueID();
}

krsystem::IByteChannel* KrDeviceAdapter::GetByteChannel(std::uint32_t aNumber) {
  return mDevice.GetByteChannel(aNumber);
}
