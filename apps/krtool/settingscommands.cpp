#include "settingscommands.h"

#include "camerasession.h"
#include "cancellation.h"
#include "featuresource.h"
#include "plaintext.h"
#include "portwatch.h"
#include "settingsorigin.h"
#include "textfile.h"

#include <algorithm>

namespace krtool {

namespace {

// More than the largest settings file that is taken, so that its own reader says what is wrong.
constexpr std::size_t kMaxFileBytes = std::size_t{17} << 20;

void TellProblems(const KrStringList& aProblems, std::ostream& aErrors) {
  const std::size_t told = std::min(aProblems.GetCount(), kMostProblems);
  for (std::size_t i = 0; i < told; ++i)
    aErrors << "krtool: " << krapps::MakeField(aProblems[i]) << '\n';
  if (told < aProblems.GetCount())
    aErrors << "krtool: and " << aProblems.GetCount() - told << " more.\n";
}

int GetCutShortCode(const Cancellation& aCancellation) {
  return aCancellation.GetStop().IsRaised() ? aCancellation.GetStop().GetExitCode() : 1;
}

} // namespace

int SaveSettings(KrGenParameterArray& aArray, const std::function<KrResult()>& aGetLoss,
                 const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  const Cancellation cancellation(aArray);
  KrGenSettings settings;
  KrStringList problems;
  const KrResult stored = aArray.StoreSettings(settings, problems);
  TellProblems(problems, aErrors);
  const bool isStopped = cancellation.GetStop().IsRaised();
  if (isStopped || IsLoss(stored) || !aGetLoss().IsOK()) {
    aErrors << "krtool: the settings were not saved"
            << (isStopped ? ".\n" : ", because the device did not answer all along.\n");
    return GetCutShortCode(cancellation);
  }
  if (settings.GetCount() == 0) {
    aErrors << "krtool: nothing was saved: the description marks no feature that can be read and set as one to save.\n";
    return 1;
  }
  if (KrResult written = WriteTextFile(aCommandLine.file, aCommandLine.force, settings.ToText()); !written.IsOK())
    return FailToWrite(aErrors, written);
  aOut << "settings=" << settings.GetCount() << " problems=" << problems.GetCount() << " file=" << aCommandLine.file
       << '\n';
  return problems.IsEmpty() ? 0 : 1;
}

int LoadSettings(KrGenParameterArray& aArray, const KrGenSettings& aSettings, std::ostream& aOut,
                 std::ostream& aErrors) {
  if (const std::string warning = krapps::DescribeOtherModel(aSettings, aArray); !warning.empty())
    aErrors << "krtool: " << warning << '\n';
  const Cancellation cancellation(aArray);
  KrStringList problems;
  const KrResult restored = aArray.RestoreSettings(aSettings, problems);
  TellProblems(problems, aErrors);
  if (cancellation.GetStop().IsRaised() || IsLoss(restored)) {
    aErrors << "krtool: not all settings were set.\n";
    return GetCutShortCode(cancellation);
  }
  aOut << "settings=" << aSettings.GetCount() << " problems=" << problems.GetCount() << '\n';
  return problems.IsEmpty() ? 0 : 1;
}

int RunSave(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  if (KrResult checked = CheckTextFile(aCommandLine.file, aCommandLine.force); !checked.IsOK())
    return FailToWrite(aErrors, checked);
  FeatureSource source;
  if (KrResult opened = source.OpenToStore(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);
  return SaveSettings(
      source.GetArray(), [&source] { return source.GetLoss(); }, aCommandLine, aOut, aErrors);
}

int RunLoad(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  std::string text;
  KrGenSettings settings;
  KrResult read = ReadTextFile(aCommandLine.file, kMaxFileBytes, text);
  if (read.IsOK())
    read = Explain("reading \"" + aCommandLine.file + "\" failed", settings.FromText(text));
  if (!read.IsOK())
    return Fail(aErrors, read);
  FeatureSource source;
  if (KrResult opened = source.OpenToWrite(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);
  return LoadSettings(source.GetArray(), settings, aOut, aErrors);
}

} // namespace krtool
