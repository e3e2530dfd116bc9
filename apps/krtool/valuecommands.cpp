#include "valuecommands.h"

#include "camerasession.h"
#include "featurelookup.h"
#include "featuresource.h"
#include "valuetext.h"

namespace krtool {

namespace {

// Reads a feature and writes its line.
KrResult WriteValue(KrGenParameter& aFeature, const std::string& aName, bool aIsOneOfSeveral, std::ostream& aOut) {
  std::string value;
  KrResult read = ReadValueText(aFeature, value);
  if (read.IsOK())
    aOut << (aIsOneOfSeveral ? aName + "\t" : "") << value << '\n';
  return read;
}

KrResult FindValue(const KrGenParameterArray& aArray, const std::string& aName, KrGenParameter*& aFeature) {
  KrResult found = FindFeature(aArray, aName, aFeature);
  if (found.IsOK() && aFeature->GetType() == KrGenType::Command)
    return {KrResult::Code::InvalidInput, "it is a command, which has no value; krtool execute carries it out."};
  return found;
}

} // namespace

int GetValues(const KrGenParameterArray& aArray, const std::string& aDevice, const std::vector<std::string>& aNames,
              std::ostream& aOut, std::ostream& aErrors) {
  int exitCode = 0;
  for (const std::string& name : aNames) {
    KrGenParameter* feature = nullptr;
    KrResult result = FindFeature(aArray, name, feature);
    if (result.IsOK())
      result = WriteValue(*feature, name, aNames.size() > 1, aOut);
    if (!result.IsOK())
      exitCode = Fail(aErrors, Explain("reading " + name + " of " + aDevice + " failed", result));
  }
  return exitCode;
}

int SetValues(const KrGenParameterArray& aArray, const std::string& aDevice, const std::vector<std::string>& aPairs,
              std::ostream& aOut, std::ostream& aErrors) {
  std::vector<KrGenParameter*> features(aPairs.size() / 2);
  const auto attempt = [&](std::size_t aIndex) {
    return "setting " + aPairs[2 * aIndex] + " of " + aDevice + " failed";
  };
  for (std::size_t i = 0; i < features.size(); ++i)
    if (KrResult found = FindValue(aArray, aPairs[2 * i], features[i]); !found.IsOK())
      return Fail(aErrors, Explain(attempt(i), found));

  for (std::size_t i = 0; i < features.size(); ++i) {
    KrResult result = WriteValueText(*features[i], aPairs[2 * i + 1]);
    if (!result.IsOK())
      return Fail(aErrors, Explain(attempt(i), result));
    if (features[i]->GetAccessMode() == KrGenAccessMode::WriteOnly)
      continue;
    result = WriteValue(*features[i], aPairs[2 * i], features.size() > 1, aOut);
    if (!result.IsOK())
      return Fail(aErrors, Explain(aPairs[2 * i] + " of " + aDevice + " was set, but reading it back failed", result));
  }
  return 0;
}

int RunGet(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  FeatureSource source;
  if (KrResult opened = source.OpenToRead(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);
  return GetValues(source.GetArray(), source.GetName(), aCommandLine.names, aOut, aErrors);
}

int RunSet(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  FeatureSource source;
  if (KrResult opened = source.OpenToWrite(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);
  return SetValues(source.GetArray(), source.GetName(), aCommandLine.names, aOut, aErrors);
}

} // namespace krtool
