#include "sync/imageformat.h"

#include "connection/grabberfeatures.h"
#include "krgenicam/krgenaccessstop.h"
#include "sync/unanswered.h"

#include <stop_token>
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
    const bool isDone = IsDone() || (ResetOffsets() && SetAll());
    if (!mLoss.IsOK())
      mProblems.Add("The camera's size and pixel format could not be set on the device: " + Describe(mLoss));
    return isDone;
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
    return parameter && Note(parameter->ToString(present)).IsOK() && present == aValue;
  }

  // Whether there is no stream to be left alone.
  bool ResetOffsets() {
    for (const char* const name : {"OffsetX", "OffsetY"}) {
      if (!mMayGoOn())
        return false;
      ResetOffset(name);
    }
    return true;
  }

  bool SetAll() {
    for (std::size_t i = 0; i < mFormat.size() && mLoss.IsOK(); ++i) {
      if (!mFormat[i])
        continue;
      if (!mMayGoOn())
        return false;
      Set(kCarriedFeatures[i], *mFormat[i]);
    }
    return true;
  }

  // Only of an offset that is set afterwards; where that fails, setting it says why.
  void ResetOffset(const char* aName) {
    for (std::size_t i = 0; i < mFormat.size() && mLoss.IsOK(); ++i) {
      if (kCarriedFeatures[i] != std::string_view(aName) || !mFormat[i])
        continue;
      KrGenInteger* const offset = mDevice.GetInteger(aName);
      std::int64_t least = 0;
      std::int64_t present = 0;
      if (offset && offset->GetMin(least).IsOK() && offset->GetValue(present).IsOK() && present != least)
        (void)Note(offset->SetValue(least));
    }
  }

  void Set(const char* aName, const KrString& aValue) {
    if (Has(aName, aValue) || !mLoss.IsOK())
      return;
    KrGenParameter* const parameter = mDevice.Get(aName);
    const KrResult result =
        parameter ? Note(parameter->FromString(aValue)) : KrResult(KrResult::Code::NotFound, "it has no such feature.");
    if (!result.IsOK() && mLoss.IsOK())
      mProblems.Add(KrString("The camera's ") + aName + " " + aValue +
                    " could not be set on the device: " + Describe(result));
  }

  // Everybody else waits for this: a device that does not answer is not asked again.
  KrResult Note(KrResult aResult) {
    if (IsUnanswered(aResult))
      mLoss = aResult;
    return aResult;
  }

  const ImageFormat& mFormat;
  KrGenParameterArray& mDevice;
  const std::function<bool()>& mMayGoOn;
  KrStringList& mProblems;
  KrResult mLoss; // Not OK once the device did not answer.
};

// What the device has selected, whatever was known of it.
KrResult AskSource(KrGenParameterArray& aDevice, KrString& aSource) {
  KrGenEnum* const selector = aDevice.GetEnum(kSourceSelector);
  if (!selector)
    return {KrResult::Code::NotFound, "The device has no sources to choose from."};
  const KrResult result = aDevice.Invalidate(kSourceSelector);
  return result.IsOK() ? selector->GetEntry(aSource) : result;
}

// Only where it is what was chosen meanwhile: the device, or another program at it, may have chosen anew. That is done
// also where all else was ended.
KrResult PutBack(KrGenParameterArray& aDevice, const KrString& aChosen, const KrString& aFormer) {
  const KrGenAccessStop never{std::stop_token()};
  KrString present;
  const KrResult result = AskSource(aDevice, present);
  return result.IsOK() && present == aChosen ? aDevice.GetEnum(kSourceSelector)->SetEntry(aFormer) : result;
}

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
  const KrGenParameterArray::Turn turn(aDevice);
  if (!aMayGoOn())
    return false;
  Carrier carrier(aFormat, aDevice, aMayGoOn, aProblems);
  if (aSource.IsEmpty())
    return carrier.Run();
  KrString former;
  KrResult result = AskSource(aDevice, former);
  if (result.IsOK() && former != aSource)
    result = aDevice.GetEnum(kSourceSelector)->SetEntry(aSource);
  if (!result.IsOK()) {
    // It may have been selected all the same.
    if (result == KrResult::Code::Aborted && !former.IsEmpty())
      (void)PutBack(aDevice, aSource, former);
    aProblems.Add("The device's source \"" + aSource + "\" could not be selected: " + Describe(result));
    return true;
  }
  const bool isDone = carrier.Run();
  if (former != aSource)
    result = PutBack(aDevice, aSource, former);
  if (!result.IsOK())
    aProblems.Add("The device's source \"" + former + "\" could not be selected again: " + Describe(result));
  return isDone;
}

} // namespace krcamerabridge
