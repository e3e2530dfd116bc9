#include "sync/imageformat.h"

#include "connection/grabberfeatures.h"

#include <string>

namespace krcamerabridge {

namespace {

KrString Describe(const KrResult& aResult) {
  return aResult.GetDescription().IsEmpty() ? aResult.GetCodeString() : aResult.GetDescription();
}

/// The source's features, with a sentence for everything that goes wrong.
class Carrier {
public:
  Carrier(const ImageFormat& aFormat, KrGenParameterArray& aDevice, const std::function<bool()>& aMayGoOn,
          KrStringList& aProblems)
      : mFormat(aFormat), mDevice(aDevice), mMayGoOn(aMayGoOn), mProblems(aProblems) {}

  bool Run() {
    if (IsDone())
      return true;
    for (const char* const name : {"OffsetX", "OffsetY"}) {
      if (!mMayGoOn())
        return false;
      ResetOffset(name);
    }
    for (std::size_t i = 0; i < mFormat.size(); ++i) {
      if (!mFormat[i])
        continue;
      if (!mMayGoOn())
        return false;
      Set(kCarriedFeatures[i], *mFormat[i]);
    }
    return true;
  }

private:
  bool IsDone() {
    for (std::size_t i = 0; i < mFormat.size(); ++i)
      if (mFormat[i] && !Has(kCarriedFeatures[i], *mFormat[i]))
        return false;
    return true;
  }

  bool Has(const char* aName, const KrString& aValue) {
    KrGenParameter* const parameter = mDevice.Get(aName);
    KrString present;
    return parameter && parameter->ToString(present).IsOK() && present == aValue;
  }

  // Only of an offset that is set afterwards; where that fails, setting it says why.
  void ResetOffset(const char* aName) {
    for (std::size_t i = 0; i < mFormat.size(); ++i) {
      if (kCarriedFeatures[i] != std::string_view(aName) || !mFormat[i])
        continue;
      KrGenInteger* const offset = mDevice.GetInteger(aName);
      std::int64_t least = 0;
      std::int64_t present = 0;
      if (offset && offset->GetMin(least).IsOK() && offset->GetValue(present).IsOK() && present != least)
        (void)offset->SetValue(least);
    }
  }

  void Set(const char* aName, const KrString& aValue) {
    if (Has(aName, aValue))
      return;
    KrGenParameter* const parameter = mDevice.Get(aName);
    const KrResult result =
        parameter ? parameter->FromString(aValue) : KrResult(KrResult::Code::NotFound, "it has no such feature.");
    if (!result.IsOK())
      mProblems.Add(KrString("The camera's ") + aName + " " + aValue +
                    " could not be set on the device: " + Describe(result));
  }

  const ImageFormat& mFormat;
  KrGenParameterArray& mDevice;
  const std::function<bool()>& mMayGoOn;
  KrStringList& mProblems;
};

} // namespace

KrResult ReadImageFormat(KrGenParameterArray& aCamera, ImageFormat& aFormat) {
  for (std::size_t i = 0; i < aFormat.size(); ++i) {
    aFormat[i].reset();
    KrGenParameter* const parameter = aCamera.Get(kCarriedFeatures[i]);
    bool isThere = false;
    if (parameter)
      if (KrResult result = parameter->IsReadable(isThere); !result.IsOK())
        return result;
    if (!isThere)
      continue;
    if (KrResult result = parameter->ToString(aFormat[i].emplace()); !result.IsOK())
      return result;
  }
  return {};
}

bool CarryImageFormat(const ImageFormat& aFormat, KrGenParameterArray& aDevice, const KrString& aSource,
                      const std::function<bool()>& aMayGoOn, KrStringList& aProblems) {
  if (!aMayGoOn())
    return false;
  Carrier carrier(aFormat, aDevice, aMayGoOn, aProblems);
  if (aSource.IsEmpty())
    return carrier.Run();
  KrGenEnum* const selector = aDevice.GetEnum(kSourceSelector);
  KrString former;
  KrResult result = selector ? selector->GetEntry(former)
                             : KrResult(KrResult::Code::NotFound, "The device has no sources to choose from.");
  if (result.IsOK() && former != aSource)
    result = selector->SetEntry(aSource);
  if (!result.IsOK()) {
    aProblems.Add("The device's source \"" + aSource + "\" could not be selected: " + Describe(result));
    return true;
  }
  const bool isDone = carrier.Run();
  if (former != aSource)
    result = selector->SetEntry(former);
  if (!result.IsOK())
    aProblems.Add("The device's source \"" + former + "\" could not be selected again: " + Describe(result));
  return isDone;
}

} // namespace krcamerabridge
