#include "featurescommand.h"

#include "camerasession.h"
#include "featuresource.h"
#include "featuretable.h"
#include "plaintext.h"

namespace krtool {

namespace {

void TellOfFaults(const KrGenParameterArray& aArray, bool aListsThem, std::ostream& aErrors) {
  KrStringList faults;
  const KrResult known = aArray.GetFaults(faults);
  if (!known.IsOK() || faults.IsEmpty())
    return;
  const std::size_t count = faults.GetCount();
  aErrors << "krtool: the description has " << count << (count == 1 ? " fault" : " faults")
          << (aListsThem ? ":\n" : "; --faults lists them.\n");
  if (!aListsThem)
    return;
  for (const KrString& fault : faults)
    aErrors << "krtool: " << krapps::MakeField(fault) << '\n';
}

} // namespace

int ListFeatures(KrGenParameterArray& aArray, const std::string& aDevice, const std::function<KrResult()>& aGetLoss,
                 const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  const FeatureFilter filter = {.category = aCommandLine.category, .visibility = aCommandLine.visibility};
  if (KrResult written = WriteFeatureTable(aArray, filter, aOut); !written.IsOK())
    return Fail(aErrors, Explain("listing the features of " + aDevice + " failed", written));
  if (aArray.GetCount() == 0)
    aErrors << "krtool: the description has no feature that its root category reaches.\n";
  TellOfFaults(aArray, aCommandLine.faults, aErrors);
  return FailForLoss(aErrors, aDevice, aGetLoss());
}

int RunFeatures(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  FeatureSource source;
  if (KrResult opened = source.OpenToRead(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);
  return ListFeatures(
      source.GetArray(), source.GetName(), [&source] { return source.GetLoss(); }, aCommandLine, aOut, aErrors);
}

} // namespace krtool
